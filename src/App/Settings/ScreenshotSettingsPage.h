// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "SettingsPage.h"

#include <functional>

class QLabel;

namespace Vantrope {

class Preferences;
class UserScreenshotObserver;

// The screenshot shelf: on or off, the folder it watches, which shelf new screenshots go to.
class ScreenshotSettingsPage final : public SettingsPage {
    Q_OBJECT
public:
    // `folderChanged` runs after the observer is given another folder, to watch it from then on.
    ScreenshotSettingsPage(Preferences& preferences, UserScreenshotObserver& observer,
                           std::function<void()> folderChanged, QWidget* parent = nullptr);

private:
    void showFolder();
    void chooseFolder();

    UserScreenshotObserver& m_observer;
    std::function<void()> m_folderChanged;
    QLabel* m_folder;
    QLabel* m_folderProblem;
};

} // namespace Vantrope
