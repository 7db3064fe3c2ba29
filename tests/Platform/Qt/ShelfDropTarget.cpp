// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// A window that takes drops the way a file manager does, for the tests that drag a shelf's items out.
// It prints "ready X Y" (its centre in root coordinates) once placed and, for each drop, "dropped ACTION"
// followed by one line per offered type: "type NAME BYTES-AS-PERCENT-ENCODING".
//   --action copy|move|refuse   the action it takes (refuse: it turns every drag away)

#include <cstdio>
#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
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

class DropTargetWidget final : public QWidget {
public:
    explicit DropTargetWidget(QString action)
        : m_action(std::move(action))
    {
        setAcceptDrops(true);
    }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override { answer(event); }
    void dragMoveEvent(QDragMoveEvent* event) override { answer(event); }

    void dropEvent(QDropEvent* event) override
    {
        answer(event);
        if (!event->isAccepted()) {
            return;
        }
        say("dropped " + m_action.toUtf8());
        for (const QString& format : event->mimeData()->formats()) {
            say("type " + format.toUtf8() + ' ' + event->mimeData()->data(format).toPercentEncoding());
        }
        say("end");
    }

private:
    void answer(QDropEvent* event) const
    {
        if (m_action == QLatin1String("refuse")) {
            event->ignore();
            return;
        }
        event->setDropAction(m_action == QLatin1String("move") ? Qt::MoveAction : Qt::CopyAction);
        event->accept();
    }

    QString m_action;
};

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const qsizetype index = arguments.indexOf(QStringLiteral("--action"));
    DropTargetWidget window(index >= 0 && index + 1 < arguments.size() ? arguments.at(index + 1)
                                                                       : QStringLiteral("copy"));
    window.setWindowTitle(QStringLiteral("Shelf drop target"));
    window.setGeometry(1400, 60, 300, 220);
    window.show();
    QTimer::singleShot(500, &window, [&window] {
        const QPoint centre = window.mapToGlobal(window.rect().center());
        say("ready " + QByteArray::number(centre.x()) + ' ' + QByteArray::number(centre.y()));
    });
    return QApplication::exec();
}
