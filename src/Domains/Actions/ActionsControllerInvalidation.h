// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QObject>

namespace Vantrope {

// The process-wide call to rebuild every shelf's actions, after a change of credentials or of the file
// operations' settings.
class ActionsControllerInvalidation final : public QObject {
    Q_OBJECT

public:
    static ActionsControllerInvalidation& instance();

    // Any thread.
    void post();

Q_SIGNALS:
    void invalidated();

private:
    ActionsControllerInvalidation() = default;
};

} // namespace Vantrope
