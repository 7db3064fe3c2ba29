// A window that drags a real file out, the way a file manager does, for the tests that drive it with X
// input. It prints "ready X Y" (the centre of its window, in root coordinates) once placed, then
// "drag started" and "drag finished" around each drag.
//   --class NAME   the class part of WM_CLASS (default FileDragSource)
//   --delay MS     start the drag MS milliseconds after the press instead of on the first motion

#include <cstdio>
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QTemporaryFile>
#include <QTimer>
#include <QUrl>
#include <QWidget>

namespace {

void say(const QByteArray& line)
{
    std::fputs(line.constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

class DragSourceWidget final : public QWidget {
public:
    DragSourceWidget(QUrl file, int delay)
        : m_file(std::move(file))
        , m_delay(delay)
    {}

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        if (event->button() != Qt::LeftButton) {
            return;
        }
        m_pressPosition = event->position().toPoint();
        if (m_delay >= 0) {
            QTimer::singleShot(m_delay, this, [this] { startDrag(); });
        }
    }

    void mouseMoveEvent(QMouseEvent* event) override
    {
        if (m_delay < 0 && (event->buttons() & Qt::LeftButton) &&
            (event->position().toPoint() - m_pressPosition).manhattanLength() >=
                QApplication::startDragDistance()) {
            startDrag();
        }
    }

private:
    void startDrag()
    {
        if (m_dragging) {
            return;
        }
        m_dragging = true;
        auto* data = new QMimeData;
        data->setUrls({m_file});
        QDrag drag(this);
        drag.setMimeData(data);
        say("drag started");
        drag.exec(Qt::CopyAction | Qt::MoveAction);
        say("drag finished");
        m_dragging = false;
    }

    QUrl m_file;
    int m_delay;
    QPoint m_pressPosition;
    bool m_dragging = false;
};

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const auto option = [&arguments](const QString& name, const QString& fallback) {
        const qsizetype index = arguments.indexOf(name);
        return index >= 0 && index + 1 < arguments.size() ? arguments.at(index + 1) : fallback;
    };
    // Qt takes the class part of WM_CLASS from the application name.
    QApplication::setApplicationName(option(QStringLiteral("--class"), QStringLiteral("FileDragSource")));
    const int delay = option(QStringLiteral("--delay"), QStringLiteral("-1")).toInt();

    QTemporaryFile file(QStringLiteral("/tmp/vantrope-dragged-XXXXXX.txt"));
    if (!file.open()) {
        return 1;
    }
    file.write("dragged\n");
    file.flush();

    DragSourceWidget window(QUrl::fromLocalFile(file.fileName()), delay);
    window.setWindowTitle(QStringLiteral("File drag source"));
    window.setGeometry(600, 300, 400, 300);
    window.show();
    // Give the window manager time to place the window before the centre is read.
    QTimer::singleShot(500, &window, [&window] {
        const QPoint centre = window.mapToGlobal(window.rect().center());
        say("ready " + QByteArray::number(centre.x()) + ' ' + QByteArray::number(centre.y()));
    });
    return QApplication::exec();
}
