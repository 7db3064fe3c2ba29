// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <initializer_list>
#include <QObject>

class QSocketNotifier;

namespace Vantrope {

// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the main thread, so the program can end cleanly
// when the session or a service manager asks it to.
class UnixSignalWatcher final : public QObject {
    Q_OBJECT
public:
    explicit UnixSignalWatcher(std::initializer_list<int> signalNumbers, QObject* parent = nullptr);
    ~UnixSignalWatcher() override;

Q_SIGNALS:
    void received(int signalNumber);

private:
    void readSignal();

    QSocketNotifier* m_notifier = nullptr;
};

} // namespace Vantrope
