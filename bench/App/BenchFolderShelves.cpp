// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// watched_file_to_shelf_ms: from a file written whole into a watched folder to its shelf listing it, as
// the running agent reports its shelves on the session bus (median of 10 files, each on a new shelf).
// screenshot_to_shelf_ms: the same for a GNOME screenshot (its name and "Software" text) written into the
// screenshot folder with the screenshot shelf on (median of 10).
// The shelves are read over the bus every 5 ms, which bounds the resolution.

#include "support/BenchSupport.h"

#include <cstdio>
#include <QBuffer>
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <vector>

using namespace Vantrope;

namespace {

constexpr int samples = 10;

QByteArray screenshotPng()
{
    QImage image(800, 600, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    writer.setText(QStringLiteral("Software"), QStringLiteral("gnome-screenshot"));
    writer.write(image);
    return buffer.data();
}

bool writeWhole(const QString& path, const QByteArray& data)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

class FolderShelvesBench final {
public:
    FolderShelvesBench()
    {
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(QStringLiteral("HOME"), m_home.path());
        for (const char* name : {"CONFIG", "DATA", "CACHE"}) {
            m_environment.insert(QStringLiteral("XDG_%1_HOME").arg(QLatin1String(name)),
                                 m_home.filePath(QString::fromLatin1(name).toLower()));
        }
        // The figures are what matters here, not the agent's log.
        m_environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("vantrope.*.info=false"));
    }

    int run()
    {
        const QString inbox = m_home.filePath(QStringLiteral("Inbox"));
        const QString screenshots = m_home.filePath(QStringLiteral("Pictures/Screenshots"));
        QDir().mkpath(inbox);
        QDir().mkpath(screenshots);
        QDir().mkpath(m_home.filePath(QStringLiteral("config/vantrope")));
        writeWhole(m_home.filePath(QStringLiteral("config/vantrope/preferences.json")),
                   R"({"ScreenshotObservationEnabled": true, "ScreenshotObservationDistributionOption": "newShelf"})");

        QProcess agent;
        agent.setProcessEnvironment(m_environment);
        agent.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        agent.start(QStringLiteral(VANTROPE_BINARY), {});
        if (!agent.waitForStarted() || !waitForAgent() || !cli({QStringLiteral("folders"), QStringLiteral("add"), inbox})) {
            std::fprintf(stderr, "vantrope did not start or took no folder\n");
            return 1;
        }

        std::vector<double> files;
        std::vector<double> shots;
        const QByteArray png = screenshotPng();
        for (int i = 0; i < samples; ++i) {
            // Each file on a shelf of its own: the folder's shelf is closed first.
            if (!cli({QStringLiteral("close-all")})) {
                return 1;
            }
            const double file = untilListed(inbox + QStringLiteral("/report-%1.txt").arg(i), "a report\n");
            if (!cli({QStringLiteral("close-all")})) {
                return 1;
            }
            // Screenshot names carry the second; one a second, as a person takes them.
            QThread::msleep(1000);
            const QString name = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH-mm-ss"));
            const double shot = untilListed(screenshots + QStringLiteral("/Screenshot from %1.png").arg(name), png);
            if (file < 0 || shot < 0) {
                return 1;
            }
            files.push_back(file);
            shots.push_back(shot);
        }
        cli({QStringLiteral("quit")});
        agent.waitForFinished(10000);

        std::printf("watched_file_to_shelf_ms %.1f ms\n", Bench::median(files));
        std::printf("screenshot_to_shelf_ms %.1f ms\n", Bench::median(shots));
        return 0;
    }

private:
    bool waitForAgent()
    {
        for (int attempt = 0; attempt < 200; ++attempt) {
            if (listed().has_value()) {
                return true;
            }
            QThread::msleep(50);
        }
        return false;
    }

    // The paths on the open shelves, or nothing while the agent does not answer.
    std::optional<QStringList> listed() const
    {
        QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("com.vantropeapp.Vantrope"),
                                                           QStringLiteral("/com/vantropeapp/Vantrope"),
                                                           QStringLiteral("com.vantropeapp.Vantrope"),
                                                           QStringLiteral("ListShelves"));
        const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 2000);
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
            return std::nullopt;
        }
        QStringList items;
        for (const QVariantMap& shelf : qdbus_cast<QList<QVariantMap>>(reply.arguments().first())) {
            items += shelf.value(QStringLiteral("items")).toStringList();
        }
        return items;
    }

    // Milliseconds from writing the file to a shelf holding it, or -1 after 10 s.
    double untilListed(const QString& path, const QByteArray& content)
    {
        QElapsedTimer timer;
        timer.start();
        if (!writeWhole(path, content)) {
            return -1;
        }
        while (timer.elapsed() < 10000) {
            const auto items = listed();
            if (items && items->contains(path)) {
                return static_cast<double>(timer.nsecsElapsed()) / 1e6;
            }
            QThread::msleep(5);
        }
        std::fprintf(stderr, "%s never reached a shelf\n", qPrintable(path));
        return -1;
    }

    bool cli(const QStringList& arguments)
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.start(QStringLiteral(VANTROPE_BINARY), arguments);
        if (!process.waitForFinished(20000) || process.exitCode() != 0) {
            std::fprintf(stderr, "vantrope %s failed: %s\n", qPrintable(arguments.join(u' ')),
                         process.readAllStandardError().constData());
            return false;
        }
        return true;
    }

    QTemporaryDir m_home;
    QProcessEnvironment m_environment;
};

} // namespace

int main(int argc, char* argv[])
{
    if (const std::optional<int> exitCode = Bench::runOnOwnDisplay(argv, {"Xvfb", "openbox", "dbus-run-session"})) {
        return *exitCode;
    }
    QCoreApplication app(argc, argv);
    qDBusRegisterMetaType<QList<QVariantMap>>();
    return FolderShelvesBench().run();
}
