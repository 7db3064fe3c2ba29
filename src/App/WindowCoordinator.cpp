// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "WindowCoordinator.h"

#include "IntroductionWindow.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "SettingsWindow.h"

namespace Vantrope {

WindowCoordinator::WindowCoordinator(Preferences& preferences, QObject* parent)
    : QObject(parent)
    , m_preferences(preferences)
{}

WindowCoordinator::~WindowCoordinator()
{
    delete m_settingsWindow;
}

void WindowCoordinator::setSettingsContext(const SettingsWindow::Context& context)
{
    m_settingsContext.reset();
    m_settingsContext.emplace(context);
}

void WindowCoordinator::addSettingsPages(std::function<void(SettingsWindow&)> provider)
{
    m_settingsPageProviders.append(std::move(provider));
}

void WindowCoordinator::showSettings()
{
    if (!m_settingsWindow) {
        m_settingsWindow =
            m_settingsContext ? new SettingsWindow(*m_settingsContext) : new SettingsWindow(m_preferences);
        for (const auto& provider : std::as_const(m_settingsPageProviders)) {
            provider(*m_settingsWindow);
        }
        m_settingsWindow->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_settingsWindow, &SettingsWindow::quitRequested, this, &WindowCoordinator::quitRequested);
    }
    m_settingsWindow->show();
    m_settingsWindow->raise();
    m_settingsWindow->activateWindow();
}

void WindowCoordinator::showIntroduction(const std::optional<Screen>& screen)
{
    if (!m_introductionWindow) {
        m_introductionWindow = std::make_unique<IntroductionWindow>();
    }
    if (screen) {
        QRect frame = m_introductionWindow->frameGeometry();
        frame.moveCenter(QtScreenEnvironment::toTopLeft(screen->visibleFrame).center().toPoint());
        m_introductionWindow->move(frame.topLeft());
    }
    m_introductionWindow->show();
    m_introductionWindow->raise();
    m_introductionWindow->activateWindow();
}

void WindowCoordinator::orderOutPageWindows()
{
    for (QWidget* window : {settingsWindow(), introductionWindow()}) {
        if (window) {
            window->hide();
        }
    }
}

QWidget* WindowCoordinator::settingsWindow() const
{
    return m_settingsWindow;
}

QWidget* WindowCoordinator::introductionWindow() const
{
    return m_introductionWindow.get();
}

} // namespace Vantrope
