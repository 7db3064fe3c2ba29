#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtMessageHandler>

namespace Vantrope::Test {

// Collects every log message emitted while it lives, so a test can check the program's own log lines.
class LogCapture final {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList messages() const;
    bool contains(const QString& fragment) const;
    int count(const QString& fragment) const;
    void clear();

private:
    QtMessageHandler m_previous = nullptr;
};

// Points XDG_DATA_HOME, XDG_CONFIG_HOME and XDG_CACHE_HOME into a fresh temporary folder and turns on
// QStandardPaths' test mode, so a test never touches the real home.
void isolateStandardPaths();

bool writeFile(const QString& path, const QByteArray& data);
QByteArray readFile(const QString& path);

// Runs xdotool with `arguments` (a PointerScript's, say) while this thread's event loop goes on, so the
// program under test answers the input as it comes. True when xdotool finished in time and succeeded.
bool runXdotool(const QStringList& arguments, int timeoutMilliseconds = 30000);

// While it lives, a folder without permissions that this thread cannot list even as root: it drops the
// capabilities that override permissions. The destructor gives them back and the owner every permission.
// Where the folder can still be listed (some sandboxes), isEnforced() is false and the test should skip.
class UnreadableFolder final {
public:
    explicit UnreadableFolder(const QString& folder);
    ~UnreadableFolder();
    UnreadableFolder(const UnreadableFolder&) = delete;
    UnreadableFolder& operator=(const UnreadableFolder&) = delete;

    bool isEnforced() const;

private:
    QString m_folder;
    quint32 m_savedCapabilities[2] = {0, 0};
    bool m_dropped = false;
};

} // namespace Vantrope::Test
