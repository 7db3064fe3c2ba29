// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/Screen.h"
#include "SettingsWindow.h"

#include <functional>
#include <memory>
#include <optional>
#include <QObject>
#include <QPointer>

class QWidget;

namespace Vantrope {

class IntroductionWindow;
class Preferences;

// The program's ordinary windows: settings and the introduction.
class WindowCoordinator final : public QObject {
    Q_OBJECT
public:
    explicit WindowCoordinator(Preferences& preferences, QObject* parent = nullptr);
    ~WindowCoordinator() override;

    // What the settings pages work on; without it the window has the pages of the preferences only.
    void setSettingsContext(const SettingsWindow::Context& context);
    // Runs for every settings window made from now on, to add a page of another part of the program.
    void addSettingsPages(std::function<void(SettingsWindow&)> provider);
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
    std::optional<SettingsWindow::Context> m_settingsContext;
    QList<std::function<void(SettingsWindow&)>> m_settingsPageProviders;
    std::unique_ptr<IntroductionWindow> m_introductionWindow;
};

} // namespace Vantrope
