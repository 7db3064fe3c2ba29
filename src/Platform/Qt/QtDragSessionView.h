// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/DragSessionView.h"
#include "Domains/DragSession/Message.h"
#include "DragSessionInboundDropView.h"
#include "DragSessionSettingsPopover.h"

#include <QElapsedTimer>
#include <QMenu>
#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

namespace Vantrope {

class Clock;
class DragSessionButton;
class DragSessionOutlinePanel;
class DragSessionInlineEditor;
class DragSessionSearchView;
class DragSessionOverlayView;
class DragSessionStackView;
class MessageWindowCenter;
class Preferences;

// The content of a shelf window: a rounded card with the pile of items, their count and title, the label's
// colour grabber and pin mark, the close and restore buttons, and panels for messages and action states.
// Drags out start here; drops in are taken by the `DragSessionInboundDropView` it holds.
class QtDragSessionView final : public QWidget, public DragSessionView {
    Q_OBJECT
public:
    struct Dependencies {
        DragSessionViewDelegate& delegate;
        MessageWindowCenter& messages;
        Preferences& preferences;
        Clock& clock;
        quint64 windowNumber = 0;
    };

    // The card's inset from the window's edge, room for its shadow and the attention ring.
    static constexpr double cardInset = 6.0;
    static constexpr double cardRadius = 16.0;

    explicit QtDragSessionView(const Dependencies& dependencies, QWidget* parent = nullptr);
    ~QtDragSessionView() override;

    // DragSessionView
    void addDraggables(const DraggableList& draggables, bool isRestoration) override;
    void removeDraggable(const DraggablePtr& draggable) override;
    void replaceDraggable(const DraggablePtr& oldDraggable, const DraggablePtr& newDraggable) override;
    void removeAllDraggables(bool animated) override;
    void setLabel(const DragSessionLabel& label) override;
    void setHasPermanentCloseButton(bool permanent) override;
    bool hasPermanentCloseButton() const override { return m_permanentClose; }
    void updateHoverState(bool hovering) override;
    void playAttentionAnimation() override;
    void setShareState(const DragSessionActionState& state) override;
    void refreshDraggable(const DraggablePtr& draggable) override;
    void endInboundDrop() override;
    bool hasDraggedOutItems() const override { return m_hasDraggedOutItems; }
    void editInline(const QString& text, std::function<void(const std::optional<QString>&)> done) override;
    void showActionsMenu(const ActionsControllerMenu& menu) override;
    void presentSearch(const SearchRequest& request) override;
    void dismissSearch() override;
    DragSessionSearchView* searchView() const;

    // The settings popover and the double click.
    void presentSettings(const SettingsRequest& request) override;
    void dismissSettings() override;
    DragSessionSettingsPopover* settingsPopover() const { return m_settingsPopover; }
    // Where a click opens the settings: around the colour grabber, in this view's coordinates.
    QRect grabberHitRect() const;
    // End of the settings popover and the double click.
    // --- Item list ---
    void presentOutline(DragSessionContentOutlineCoordinator& outline) override;
    // The disclosure control that opens the item list, and the list while it is open.
    DragSessionButton& outlineButton() const { return *m_outlineButton; }
    DragSessionOutlinePanel* outlinePanel() const;
    // Where the item count is drawn; a click on it opens the list too.
    QRectF countRect() const;
    // --- End of item list ---

    // The open action menu or inline editor, if any.
    QMenu* actionsMenu() const { return m_actionsMenu; }
    DragSessionInlineEditor* inlineEditor() const;
    DragSessionButton& menuButton() const { return *m_menuButton; }
    // Asks for the action menu as a right click at `position` (in this view) does.
    void requestActionsMenu(const QPoint& position);

    // Off while a search or panel covers the shelf: nothing can be dragged out then.
    void setInteractionEnabled(bool enabled) { m_interactionEnabled = enabled; }
    bool interactionEnabled() const { return m_interactionEnabled; }
    // Without a compositing manager nothing shows through the window: the card is drawn opaque.
    void setOpaque(bool opaque);
    // The card's outline, for windows that must be cut to its shape.
    QPainterPath cardPath() const;

    const DraggableList& draggables() const;
    DragSessionInboundDropView& dropView() const { return *m_dropView; }
    DragSessionStackView& stackView() const { return *m_stack; }
    // Starts dragging the shelf's items out, as a press on the pile moved by the pointer does; true when a
    // drag ran.
    bool mouseDragged(const QPoint& pressPosition);

Q_SIGNALS:
    // Every item view has its place (after adding or removing items).
    void itemsLaidOut();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QRectF cardRect() const;
    QRectF pileRect() const;
    QColor accentColor() const;
    bool isDark() const;
    void layoutChildren();
    void updateChrome();
    void showMessage(quint64 windowNumber, const Message& message);
    void hideMessage(quint64 windowNumber);
    // The title and subtitle under the pile, worked out when the items or the label change: naming the
    // kinds of items looks at the files, too slow for every frame of an animation.
    void updateCaption();
    void paintTitle(QPainter& painter, const QRectF& card) const;
    void paintEmptyState(QPainter& painter) const;
    void paintGrabber(QPainter& painter, const QRectF& card) const;

    DragSessionViewDelegate& m_delegate;
    Preferences& m_preferences;
    const quint64 m_windowNumber;
    DragSessionInboundDropView* m_dropView = nullptr;
    DragSessionStackView* m_stack = nullptr;
    DragSessionButton* m_closeButton = nullptr;
    DragSessionButton* m_restoreButton = nullptr;
    DragSessionButton* m_menuButton = nullptr;
    QPointer<QMenu> m_actionsMenu;
    // --- Item list ---
    DragSessionButton* m_outlineButton = nullptr;
    QPointer<DragSessionOutlinePanel> m_outlinePanel;
    // --- End of item list ---
    QPointer<DragSessionInlineEditor> m_inlineEditor;
    QPointer<DragSessionSearchView> m_searchView;
    QPointer<DragSessionSettingsPopover> m_settingsPopover;
    QElapsedTimer m_settingsClosed;
    // Typed while the search is being opened: it goes into the field once it stands.
    QString m_pendingSearchText;
    QElapsedTimer m_searchRequested;
    // Where the menu was asked for, in global coordinates; it opens there once it is ready.
    std::optional<QPoint> m_menuRequestPosition;
    DragSessionOverlayView* m_messageView = nullptr;
    DragSessionOverlayView* m_shareView = nullptr;
    DragSessionLabel m_label;
    QString m_title;
    QString m_subtitle;
    // What the share panel shows; it covers the pile, so nothing is dragged out from under it.
    DragSessionActionState m_shareState;
    bool m_permanentClose = false;
    bool m_hovering = false;
    bool m_highlighted = false;
    bool m_interactionEnabled = true;
    bool m_hasDraggedOutItems = false;
    bool m_opaque = false;
    double m_attention = 0.0;
    QVariantAnimation m_attentionAnimation;
};

} // namespace Vantrope
