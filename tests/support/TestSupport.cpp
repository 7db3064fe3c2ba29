// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "TestSupport.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <QDir>
#include <QDirIterator>
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

QStringList filesUnder(const QString& folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        files.append(it.next());
    }
    return files;
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

HelperProgram::HelperProgram()
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

HelperProgram::~HelperProgram()
{
    stop();
}

QPoint HelperProgram::start(const QString& program, const QStringList& arguments)
{
    stop();
    m_process.start(program, arguments);
    if (!m_process.waitForStarted() || !waitFor("ready ")) {
        return {};
    }
    const QList<QByteArray> ready = m_output.mid(m_output.indexOf("ready ")).split('\n').first().split(' ');
    return ready.size() == 3 ? QPoint(ready[1].toInt(), ready[2].toInt()) : QPoint();
}

void HelperProgram::stop()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished();
    }
    m_output.clear();
}

bool HelperProgram::waitFor(const QByteArray& text, int timeoutMilliseconds)
{
    return QTest::qWaitFor([&] { return output().contains(text); }, timeoutMilliseconds);
}

QByteArray HelperProgram::output()
{
    return m_output.append(m_process.readAllStandardOutput());
}

QByteArray HelperProgram::typeValue(const QByteArray& type)
{
    const QByteArray prefix = "type " + type + ' ';
    for (const QByteArray& line : output().split('\n')) {
        if (line.startsWith(prefix)) {
            return line.mid(prefix.size());
        }
    }
    return {};
}

bool takeDragSelection()
{
    return QProcess::execute(
               QStringLiteral("/usr/bin/python3"),
               {QStringLiteral("-c"),
                QStringLiteral("from Xlib import X, display\n"
                               "d = display.Display()\n"
                               "w = d.screen().root.create_window(0, 0, 1, 1, 0, 0)\n"
                               "w.set_selection_owner(d.intern_atom('XdndSelection'), X.CurrentTime)\n"
                               "d.sync()\n")}) == 0;
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
