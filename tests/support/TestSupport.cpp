#include "TestSupport.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <sys/syscall.h>
#include <unistd.h>

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

bool runXdotool(const QStringList& arguments, int timeoutMilliseconds)
{
    QProcess xdotool;
    xdotool.setProcessChannelMode(QProcess::ForwardedChannels);
    xdotool.start(QStringLiteral("xdotool"), arguments);
    if (!xdotool.waitForStarted()) {
        return false;
    }
    if (!QTest::qWaitFor([&xdotool] { return xdotool.state() == QProcess::NotRunning; },
                         timeoutMilliseconds)) {
        xdotool.kill();
        xdotool.waitForFinished();
        return false;
    }
    return xdotool.exitStatus() == QProcess::NormalExit && xdotool.exitCode() == 0;
}

UnreadableFolder::UnreadableFolder(const QString& folder)
    : m_folder(folder)
{
    QFile::setPermissions(m_folder, QFileDevice::Permissions());
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct saved[2]{};
    if (::geteuid() == 0 && ::syscall(SYS_capget, &header, saved) == 0) {
        m_savedCapabilities[0] = saved[0].effective;
        m_savedCapabilities[1] = saved[1].effective;
        saved[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
        m_dropped = ::syscall(SYS_capset, &header, saved) == 0;
    }
}

UnreadableFolder::~UnreadableFolder()
{
    if (m_dropped) {
        __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
        __user_cap_data_struct current[2]{};
        ::syscall(SYS_capget, &header, current);
        current[0].effective = m_savedCapabilities[0];
        current[1].effective = m_savedCapabilities[1];
        ::syscall(SYS_capset, &header, current);
    }
    QFile::setPermissions(m_folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

bool UnreadableFolder::isEnforced() const
{
    const int fd = ::open(QFile::encodeName(m_folder).constData(), O_RDONLY | O_DIRECTORY);
    return fd < 0 || ::close(fd) != 0;
}

} // namespace Vantrope::Test
