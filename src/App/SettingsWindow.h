// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QWidget>

class QCheckBox;

namespace Vantrope {

class Preferences;

// The settings. It starts with the one setting the agent itself needs and grows with the features.
class SettingsWindow final : public QWidget {
    Q_OBJECT
public:
    explicit SettingsWindow(Preferences& preferences, QWidget* parent = nullptr);

Q_SIGNALS:
    // The standard Quit shortcut, which the termination rule judges.
    void quitRequested();

private:
    Preferences& m_preferences;
    QCheckBox* m_launchAtLogin;
};

} // namespace Vantrope
