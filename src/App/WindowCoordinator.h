// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/Screen.h"

#include <memory>
#include <QObject>
#include <QPointer>

class QWidget;

namespace Vantrope {

class IntroductionWindow;
class Preferences;
class SettingsWindow;

// The program's ordinary windows: settings and the introduction.
class WindowCoordinator final : public QObject {
    Q_OBJECT
public:
    explicit WindowCoordinator(Preferences& preferences, QObject* parent = nullptr);
    ~WindowCoordinator() override;

    void showSettings();
    // Centred on `screen`, or wherever the window manager likes without one.
    void showIntroduction(const std::optional<Screen>& screen);
    // Hides the settings and the introduction, so that a new shelf never opens behind them.
    void orderOutPageWindows();

    QWidget* settingsWindow() const;
    QWidget* introductionWindow() const;

Q_SIGNALS:
    void quitRequested();

private:
    Preferences& m_preferences;
    // Weak: the window deletes itself when closed.
    QPointer<SettingsWindow> m_settingsWindow;
    std::unique_ptr<IntroductionWindow> m_introductionWindow;
};

} // namespace Vantrope
