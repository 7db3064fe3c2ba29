// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/DragSessionUserInterface.h"
#include "Domains/DragSession/Screen.h"
#include "Models/Pasteboard/PasteboardSource.h"

#include <functional>
#include <optional>
#include <QList>
#include <utility>

namespace Vantrope::Test {

// Shelf windows and views that only remember what they were told, for running the shelf logic
// without a display.
class FakeShelfWindow final : public DragSessionWindow {
public:
    bool isVisible() const override { return m_visible && !m_closed; }
    double alphaValue() const override { return m_alpha; }
    void setAlphaValue(double alpha, bool) override { m_alpha = alpha; }
    QRectF frame() const override { return m_frame; }
    void setFrameOrigin(const QPointF& origin) override { m_frame.moveTopLeft(origin); }
    void showAndActivate() override { m_visible = true; }
    void showWithoutActivating() override { m_visible = true; }
    quint64 windowNumber() const override { return m_number; }
    void close() override { m_closed = true; }
    void setTitle(const QString& title) override { m_title = title; }
    void applyLabel(const DragSessionLabel& label) override { m_label = label; }
    bool isRetracted() const override { return m_retracted; }
    void retract() override { m_retracted = true; }
    std::optional<Screen> screen() const override { return std::nullopt; }
    bool containsMouse() const override { return false; }

    bool m_visible = false;
    bool m_closed = false;
    bool m_retracted = false;
    double m_alpha = 1.0;
    QRectF m_frame{0, 0, 180, 188};
    QString m_title;
    DragSessionLabel m_label;
    quint64 m_number = 0;
};

class FakeShelfView final : public DragSessionView {
public:
    void addDraggables(const DraggableList& draggables, bool) override { m_shown.append(draggables); }
    void removeDraggable(const DraggablePtr& draggable) override { m_shown.removeAll(draggable); }
    void replaceDraggable(const DraggablePtr& oldDraggable, const DraggablePtr& newDraggable) override
    {
        const auto index = m_shown.indexOf(oldDraggable);
        if (index >= 0) {
            m_shown[index] = newDraggable;
        }
    }
    void removeAllDraggables(bool) override { m_shown.clear(); }
    void setLabel(const DragSessionLabel& label) override { m_label = label; }
    void setHasPermanentCloseButton(bool permanent) override { m_permanentClose = permanent; }
    bool hasPermanentCloseButton() const override { return m_permanentClose; }
    void updateHoverState(bool) override {}
    void playAttentionAnimation() override { ++m_attentionCount; }
    void setShareState(const DragSessionActionState& state) override { m_shareState = state; }
    void refreshDraggable(const DraggablePtr& draggable) override { m_refreshed.append(draggable); }
    void endInboundDrop() override { ++m_dropsEnded; }
    bool hasDraggedOutItems() const override { return m_draggedOut; }
    void editInline(const QString& text, std::function<void(const std::optional<QString>&)> done) override
    {
        m_editedText = text;
        m_editDone = std::move(done);
    }
    void showActionsMenu(const ActionsControllerMenu& menu) override { m_shownMenus.append(menu); }
    void presentSearch(const SearchRequest& request) override { m_search = request; }
    void dismissSearch() override { m_search.reset(); }
    void presentSettings(const SettingsRequest& request) override { m_settings = request; }
    void dismissSettings() override
    {
        if (auto settings = std::exchange(m_settings, std::nullopt); settings && settings->closed) {
            settings->closed();
        }
    }
    void presentOutline(DragSessionContentOutlineCoordinator& outline) override
    {
        m_outline = &outline;
        ++m_outlinesPresented;
    }

    // Answers the open inline editor as the user would; false when none is open.
    bool finishInlineEdit(const std::optional<QString>& text)
    {
        auto done = std::exchange(m_editDone, nullptr);
        if (!done) {
            return false;
        }
        done(text);
        return true;
    }

    DraggableList m_shown;
    DragSessionLabel m_label;
    bool m_permanentClose = false;
    int m_attentionCount = 0;
    DragSessionActionState m_shareState;
    DraggableList m_refreshed;
    int m_dropsEnded = 0;
    bool m_draggedOut = false;
    QString m_editedText;
    std::function<void(const std::optional<QString>&)> m_editDone;
    QList<ActionsControllerMenu> m_shownMenus;
    std::optional<SearchRequest> m_search;
    std::optional<SettingsRequest> m_settings;
    DragSessionContentOutlineCoordinator* m_outline = nullptr;
    int m_outlinesPresented = 0;
};

class FakeShelfInterface final : public DragSessionUserInterface {
public:
    Parts makeShelf(DragSessionViewDelegate&, const QSizeF& size) override
    {
        auto window = std::make_unique<FakeShelfWindow>();
        window->m_number = ++m_nextNumber;
        window->m_frame.setSize(size);
        auto view = std::make_unique<FakeShelfView>();
        m_windows.append(window.get());
        m_views.append(view.get());
        return {std::move(window), std::move(view)};
    }

    QList<FakeShelfWindow*> m_windows;
    QList<FakeShelfView*> m_views;
    quint64 m_nextNumber = 0;
};

class FakeScreens final : public ScreenEnvironment {
public:
    QList<Screen> screens() const override { return m_screens; }
    QPointF mouseLocation() const override { return m_mouse; }
    std::optional<Screen> mainScreen() const override
    {
        return m_screens.isEmpty() ? std::nullopt : std::optional<Screen>(m_screens.first());
    }

    QList<Screen> m_screens{{QStringLiteral("main"), QRectF(0, 0, 1440, 900), QRectF(0, 0, 1440, 875)}};
    QPointF m_mouse{700, 400};
};

class FakeClipboard final : public PasteboardSource {
public:
    int changeCount() const override { return m_pasteboard.changeCount(); }
    Pasteboard pasteboard() const override { return m_pasteboard; }
    // New content, as another program's copy would leave it.
    void set(QList<PasteboardItem> items)
    {
        m_pasteboard = Pasteboard(std::move(items), m_pasteboard.changeCount() + 1);
    }

    Pasteboard m_pasteboard;
};

} // namespace Vantrope::Test
