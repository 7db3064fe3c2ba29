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

} // namespace Vantrope::Test
