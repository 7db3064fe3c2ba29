// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/DragSessionContentOutlineView.h"
#include "DragSessionOutlineItemDelegate.h"

#include <QPointer>
#include <QWidget>

class QLabel;
class QMenu;
class QToolButton;

namespace Vantrope {

class DragSessionContentOutlineCoordinator;
class DragSessionInlineEditor;
class DragSessionOutlineListView;
class DragSessionOutlineModel;
class Preferences;

// The item list of a shelf: a frameless popup under the shelf's disclosure control with every item, in
// a list or a grid. The selection can be dragged out, previewed (Space), renamed (F2), removed from the
// shelf (Delete), opened (Enter) or acted on from its context menu. Escape or a click outside closes it.
class DragSessionOutlinePanel final : public QWidget, public DragSessionContentOutlineView {
    Q_OBJECT
public:
    // The values of the display mode preference.
    enum class DisplayMode { list = 0, grid = 1 };

    static constexpr int gapBelowControl = 4;
    static constexpr QSize preferredSize{380, 420};
    static constexpr int minimumHeight = 120;

    DragSessionOutlinePanel(DragSessionContentOutlineCoordinator& outline, Preferences& preferences,
                            QWidget* shelf);
    ~DragSessionOutlinePanel() override;

    // Places the panel under `control` (a rectangle in screen pixels) and shows it.
    void popUp(const QRect& control);

    DisplayMode displayMode() const { return m_mode; }
    void setDisplayMode(DisplayMode mode);

    DragSessionOutlineListView& listView() const { return *m_list; }
    DragSessionOutlineModel& model() const { return *m_model; }
    QToolButton& modeButton() const { return *m_modeButton; }
    DragSessionInlineEditor* nameEditor() const;
    QMenu* actionsMenu() const { return m_actionsMenu; }
    // The last failure shown at the panel's foot.
    QString statusText() const;

    // DragSessionContentOutlineView
    void editName(const DraggablePtr& item, const QString& text,
                  std::function<void(const std::optional<QString>&)> done) override;
    void showActionsMenu(const ActionsControllerMenu& menu) override;
    void closeOutline() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    // True when the key was one of the list's own.
    bool handleKey(QKeyEvent* event);
    // The height that shows every item at `width`, header included.
    int contentHeight(int width) const;
    void syncSelection();
    void updateHeader();
    void dragSelection();
    void showFailure(const QString& text);

    DragSessionContentOutlineCoordinator& m_outline;
    Preferences& m_preferences;
    DragSessionOutlineModel* m_model = nullptr;
    DragSessionOutlineItemDelegate* m_delegate = nullptr;
    DragSessionOutlineListView* m_list = nullptr;
    QLabel* m_title = nullptr;
    QLabel* m_status = nullptr;
    QToolButton* m_modeButton = nullptr;
    QPointer<DragSessionInlineEditor> m_editor;
    QPointer<QMenu> m_actionsMenu;
    DisplayMode m_mode = DisplayMode::list;
    // The panel stays while its own drag, menu or editor runs.
    bool m_dragging = false;
    bool m_closing = false;
    bool m_outlineGone = false;
};

} // namespace Vantrope
