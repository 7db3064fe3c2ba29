// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "UnixSignalWatcher.h"

#include "Libraries/Core/Logging.h"

#include <csignal>
#include <fcntl.h>
#include <QSocketNotifier>
#include <sys/socket.h>
#include <unistd.h>

namespace Vantrope {

namespace {
int s_fds[2] = {-1, -1};

void handler(int signalNumber)
{
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    [[maybe_unused]] const ssize_t written = ::write(s_fds[0], &byte, 1);
}
} // namespace

UnixSignalWatcher::UnixSignalWatcher(std::initializer_list<int> signalNumbers, QObject* parent)
    : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, s_fds) != 0) {
        qCWarning(lcCore) << "Could not watch for termination signals";
        return;
    }
    ::fcntl(s_fds[0], F_SETFL, O_NONBLOCK);
    m_notifier = new QSocketNotifier(s_fds[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &UnixSignalWatcher::readSignal);

    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signalNumber : signalNumbers) {
        ::sigaction(signalNumber, &action, nullptr);
    }
}

UnixSignalWatcher::~UnixSignalWatcher()
{
    delete m_notifier;
    for (int& fd : s_fds) {
        if (fd >= 0) {
            ::close(fd);
            fd = -1;
        }
    }
}

void UnixSignalWatcher::readSignal()
{
    unsigned char byte = 0;
    if (::read(s_fds[1], &byte, 1) == 1) {
        Q_EMIT received(byte);
    }
}

} // namespace Vantrope
