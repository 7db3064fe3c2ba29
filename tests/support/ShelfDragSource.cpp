// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// A window that starts one real drag of a chosen kind when pressed and moved, for the tests that drop
// things on a shelf with X input. It prints "ready X Y" (its centre in root coordinates) once placed,
// then "drag started" and "drag finished ACTION" around the drag.
//   --kind files|text|link|image|xds|ark   what the drag carries
//   --file PATH (repeatable)               the files of a "files" drag
//   --xds-name NAME --xds-mode S|F|E       the name a direct save proposes and how the source answers
//   --delay MS                             start the drag MS milliseconds after the press instead of
//                                          on the first motion
//
// A direct save source names its file in the XdndDirectSave0 property of its XDND window (Qt's
// selection owner window) and, asked for the XdndDirectSave0 target, saves to the URI the drop target
// wrote there ("S"), or says "F" and hands the bytes over as application/octet-stream, or says "E".
// An archive drag carries its D-Bus service and object; this program serves the extraction call itself.

#include <cstdio>
#include <QApplication>
#include <QBuffer>
#include <QDBusConnection>
#include <QDir>
#include <QDrag>
#include <QFile>
#include <QImage>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QtGui/qguiapplication_platform.h>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <xcb/xcb.h>

namespace {

void say(const QByteArray& line)
{
    std::fputs(line.constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

const QByteArray directSaveContent = "saved by the source\n";

xcb_connection_t* connection()
{
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

xcb_atom_t atom(const char* name)
{
    const auto cookie = xcb_intern_atom(connection(), false, uint16_t(qstrlen(name)), name);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection(), cookie, nullptr);
    const xcb_atom_t value = reply ? reply->atom : XCB_NONE;
    std::free(reply);
    return value;
}

// Qt's XDND source window is the owner of the XdndSelection while the drag runs.
xcb_window_t dragWindow()
{
    const auto cookie = xcb_get_selection_owner(connection(), atom("XdndSelection"));
    xcb_get_selection_owner_reply_t* reply = xcb_get_selection_owner_reply(connection(), cookie, nullptr);
    const xcb_window_t window = reply ? reply->owner : XCB_NONE;
    std::free(reply);
    return window;
}

QByteArray readDirectSaveProperty()
{
    const auto cookie = xcb_get_property(connection(), false, dragWindow(), atom("XdndDirectSave0"),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, 4096);
    xcb_get_property_reply_t* reply = xcb_get_property_reply(connection(), cookie, nullptr);
    QByteArray value;
    if (reply) {
        value = QByteArray(static_cast<const char*>(xcb_get_property_value(reply)),
                           xcb_get_property_value_length(reply));
        std::free(reply);
    }
    return value;
}

class DirectSaveData final : public QMimeData {
public:
    explicit DirectSaveData(char mode)
        : m_mode(mode)
    {
        setData(QStringLiteral("XdndDirectSave0"), QByteArray());
        setData(QStringLiteral("application/octet-stream"), QByteArray());
    }

protected:
    QVariant retrieveData(const QString& mimeType, QMetaType type) const override
    {
        if (mimeType == QLatin1String("application/octet-stream")) {
            say("fetched");
            return directSaveContent;
        }
        if (mimeType != QLatin1String("XdndDirectSave0")) {
            return QMimeData::retrieveData(mimeType, type);
        }
        const QByteArray uri = readDirectSaveProperty();
        say("asked to save to " + uri);
        if (m_mode == 'S') {
            QFile file(QUrl::fromEncoded(uri).toLocalFile());
            if (!file.open(QIODevice::WriteOnly) ||
                file.write(directSaveContent) != directSaveContent.size()) {
                return QByteArray("E");
            }
        }
        return QByteArray(1, m_mode);
    }

private:
    char m_mode;
};

// Stands in for the archive manager's window on the session bus.
class ArkExtractor final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.ark.DndExtract")

public Q_SLOTS:
    void extractSelectedFilesTo(const QString& localPath)
    {
        say("extracting to " + localPath.toUtf8());
        QFile first(QDir(localPath).filePath(QStringLiteral("first.txt")));
        if (first.open(QIODevice::WriteOnly)) {
            first.write("first entry\n");
        }
        // The second entry comes a little later, as a real extraction writes one entry after another.
        QTimer::singleShot(300, this, [localPath] {
            QFile second(QDir(localPath).filePath(QStringLiteral("second.txt")));
            if (second.open(QIODevice::WriteOnly)) {
                second.write("second entry\n");
            }
        });
    }
};

QByteArray pictureBytes()
{
    QImage image(64, 48, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient gradient(0, 0, 64, 48);
    gradient.setColorAt(0, QColor(255, 170, 60));
    gradient.setColorAt(1, QColor(220, 60, 120));
    painter.fillRect(image.rect(), gradient);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

class DragSourceWidget final : public QWidget {
public:
    DragSourceWidget(QString kind, QStringList files, QByteArray xdsName, char xdsMode, int delay)
        : m_kind(std::move(kind))
        , m_files(std::move(files))
        , m_xdsName(std::move(xdsName))
        , m_xdsMode(xdsMode)
        , m_delay(delay)
    {
        if (m_kind == QLatin1String("ark")) {
            QDBusConnection::sessionBus().registerObject(QStringLiteral("/DndExtract/1"), &m_extractor,
                                                         QDBusConnection::ExportAllSlots);
        }
    }

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        if (event->button() == Qt::LeftButton) {
            m_pressPosition = event->position().toPoint();
            if (m_delay >= 0) {
                QTimer::singleShot(m_delay, this, [this] { startDrag(); });
            }
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
    QMimeData* makeData() const
    {
        if (m_kind == QLatin1String("xds")) {
            return new DirectSaveData(m_xdsMode);
        }
        auto* data = new QMimeData;
        if (m_kind == QLatin1String("files")) {
            QList<QUrl> urls;
            for (const QString& file : m_files) {
                urls.append(QUrl::fromLocalFile(file));
            }
            data->setUrls(urls);
        } else if (m_kind == QLatin1String("text")) {
            data->setText(QStringLiteral("Shopping list\nMilk, bread and a good deal of coffee"));
        } else if (m_kind == QLatin1String("link")) {
            data->setUrls({QUrl(QStringLiteral("https://www.example.org/articles/shelf"))});
            const QString mozUrl = QStringLiteral("https://www.example.org/articles/shelf\nAn article");
            data->setData(QStringLiteral("text/x-moz-url"),
                          QByteArray(reinterpret_cast<const char*>(mozUrl.utf16()), mozUrl.size() * 2));
        } else if (m_kind == QLatin1String("image")) {
            // As a browser drags a picture out of a page: its own marker, the picture, the page's link.
            data->setData(QStringLiteral("application/x-moz-nativeimage"), QByteArray("native"));
            data->setData(QStringLiteral("image/png"), pictureBytes());
            data->setUrls({QUrl(QStringLiteral("https://www.example.org/photo.png"))});
        } else if (m_kind == QLatin1String("ark")) {
            data->setData(QStringLiteral("application/x-kde-ark-dndextract-service"),
                          QDBusConnection::sessionBus().baseService().toUtf8());
            data->setData(QStringLiteral("application/x-kde-ark-dndextract-path"),
                          QByteArray("/DndExtract/1"));
        }
        return data;
    }

    void startDrag()
    {
        if (m_dragging) {
            return;
        }
        m_dragging = true;
        // On the heap: Qt's X11 drag answers the target's requests for the data after exec() has returned,
        // and deletes the drag itself when the drop's transaction is over.
        auto* drag = new QDrag(this);
        drag->setMimeData(makeData());
        if (m_kind == QLatin1String("xds")) {
            // The window exists once the drag has begun; name the file on it then.
            QTimer::singleShot(0, this, [this] {
                xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, dragWindow(),
                                    atom("XdndDirectSave0"), atom("text/plain"), 8,
                                    uint32_t(m_xdsName.size()), m_xdsName.constData());
                xcb_flush(connection());
            });
        }
        say("drag started");
        const Qt::DropAction action = drag->exec(Qt::CopyAction | Qt::MoveAction);
        say("drag finished " + QByteArray::number(int(action)));
        m_dragging = false;
    }

    QString m_kind;
    QStringList m_files;
    QByteArray m_xdsName;
    char m_xdsMode;
    int m_delay;
    ArkExtractor m_extractor;
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
    QStringList files;
    for (qsizetype i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments.at(i) == QLatin1String("--file")) {
            files.append(arguments.at(i + 1));
        }
    }
    DragSourceWidget window(option(QStringLiteral("--kind"), QStringLiteral("files")), files,
                            option(QStringLiteral("--xds-name"), QStringLiteral("promised.txt")).toUtf8(),
                            option(QStringLiteral("--xds-mode"), QStringLiteral("S")).at(0).toLatin1(),
                            option(QStringLiteral("--delay"), QStringLiteral("-1")).toInt());
    window.setWindowTitle(QStringLiteral("Shelf drag source"));
    window.setGeometry(40, 60, 300, 220);
    window.show();
    QTimer::singleShot(500, &window, [&window] {
        const QPoint centre = window.mapToGlobal(window.rect().center());
        say("ready " + QByteArray::number(centre.x()) + ' ' + QByteArray::number(centre.y()));
    });
    return QApplication::exec();
}

#include "ShelfDragSource.moc"
