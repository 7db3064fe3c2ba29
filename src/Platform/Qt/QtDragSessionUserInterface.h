// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/DragSessionUserInterface.h"

#include <QObject>

namespace Vantrope {

class Clock;
class QtDragSessionWindow;
class MessageWindowCenter;
class Preferences;

// Makes the Qt windows and views of shelves. One window always waits, mapped off screen, for the next
// shelf: some drag sources (Chromium among them) only send drops to windows that were mapped when their
// drag began, and a shelf opened by a shake comes after that.
class QtDragSessionUserInterface final : public DragSessionUserInterface {
public:
    struct Dependencies {
        // The messages the coordinators show, by window number.
        MessageWindowCenter& messages;
        Preferences& preferences;
        Clock& clock;
    };

    explicit QtDragSessionUserInterface(const Dependencies& dependencies);
    ~QtDragSessionUserInterface() override;

    Parts makeShelf(DragSessionViewDelegate& delegate, const QSizeF& size) override;

private:
    void prepareSpareWindow();

    Dependencies m_dependencies;
    quint64 m_lastWindowNumber = 0;
    std::unique_ptr<QtDragSessionWindow> m_spareWindow;
    // Context of the queued spare window preparation: gone with this object.
    QObject m_context;
};

} // namespace Vantrope
