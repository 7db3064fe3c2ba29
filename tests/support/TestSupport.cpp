#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace Vantrope::Test {

namespace {
QMutex s_mutex;
QStringList s_messages;
LogCapture* s_active = nullptr;

void captureHandler(QtMsgType, const QMessageLogContext&, const QString& message)
{
    QMutexLocker lock(&s_mutex);
    s_messages.append(message);
}
} // namespace

LogCapture::LogCapture()
{
    QMutexLocker lock(&s_mutex);
    s_messages.clear();
    s_active = this;
    m_previous = qInstallMessageHandler(captureHandler);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    QMutexLocker lock(&s_mutex);
    s_active = nullptr;
}

QStringList LogCapture::messages() const
{
    QMutexLocker lock(&s_mutex);
    return s_messages;
}

bool LogCapture::contains(const QString& fragment) const
{
    return count(fragment) > 0;
}

int LogCapture::count(const QString& fragment) const
{
    QMutexLocker lock(&s_mutex);
    int n = 0;
    for (const QString& line : std::as_const(s_messages)) {
        if (line.contains(fragment)) {
            ++n;
        }
    }
    return n;
}

void LogCapture::clear()
{
    QMutexLocker lock(&s_mutex);
    s_messages.clear();
}

void isolateStandardPaths()
{
    static QTemporaryDir home;
    const QByteArray base = home.path().toUtf8();
    qputenv("HOME", base);
    qputenv("XDG_DATA_HOME", base + "/data");
    qputenv("XDG_CONFIG_HOME", base + "/config");
    qputenv("XDG_CACHE_HOME", base + "/cache");
    qputenv("XDG_RUNTIME_DIR", base + "/runtime");
    QDir().mkpath(home.path() + QStringLiteral("/runtime"));
    QFile::setPermissions(home.path() + QStringLiteral("/runtime"),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QStandardPaths::setTestModeEnabled(true);
}

bool writeFile(const QString& path, const QByteArray& data)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return false;
    }
    return file.write(data) == data.size();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll();
}

} // namespace Vantrope::Test
