// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/DesktopActions.h"

namespace Vantrope {

class ZipActionArchiver;

// The desktop's actions on a Linux session: GIO for applications, the file manager over D-Bus, the Qt
// clipboard, our own preview window, and the share targets found when asked.
class LinuxDesktopActions final : public DesktopActions {
public:
    LinuxDesktopActions();
    ~LinuxDesktopActions() override;

    ActionList makeItemActions() override;
    ActionList makeShareActions(const QList<QUrl>& urls) override;
    std::shared_ptr<ActionArchiver> archiver() override;

private:
    std::shared_ptr<ZipActionArchiver> m_archiver;
};

} // namespace Vantrope
