// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionOutlinePanel.h"

#include "Domains/Actions/ActionIdentifiers.h"
#include "Domains/DragSession/DragSessionContentOutlineCoordinator.h"
#include "DragSessionInlineEditor.h"
#include "DragSessionOutlineListView.h"
#include "DragSessionOutlineModel.h"
#include "Libraries/Core/Localized.h"
#include "OutboundDrag.h"
#include "Preferences/Preferences.h"
#include "QtActionsMenu.h"

#include <algorithm>
#include <QApplication>
#include <QCursor>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace Vantrope {

namespace {

constexpr int failureShownMs = 5000;

} // namespace

DragSessionOutlinePanel::DragSessionOutlinePanel(DragSessionContentOutlineCoordinator& outline,
                                                 Preferences& preferences, QWidget* shelf)
    : QWidget(shelf, Qt::Popup | Qt::FramelessWindowHint)
    , m_outline(outline)
    , m_preferences(preferences)
{
    setObjectName(QStringLiteral("shelfItemList"));
    const double ratio = shelf ? shelf->devicePixelRatioF() : qApp->devicePixelRatio();
    m_model = new DragSessionOutlineModel(outline, DragSessionOutlineItemDelegate::gridPicture, ratio, this);
    m_delegate = new DragSessionOutlineItemDelegate(this);

    m_title = new QLabel(this);
    QFont titleFont = m_title->font();
    titleFont.setWeight(QFont::DemiBold);
    m_title->setFont(titleFont);
    m_modeButton = new QToolButton(this);
    m_modeButton->setCheckable(true);
    m_modeButton->setAutoRaise(true);
    m_modeButton->setFocusPolicy(Qt::NoFocus);
    m_modeButton->setToolTip(Localized("shelf.item-list.grid.tooltip", "Show as Grid"));
    connect(m_modeButton, &QToolButton::toggled, this,
            [this](bool grid) { setDisplayMode(grid ? DisplayMode::grid : DisplayMode::list); });

    m_list = new DragSessionOutlineListView(this);
    m_list->setModel(m_model);
    m_list->setItemDelegate(m_delegate);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setUniformItemSizes(true);
    m_list->setMouseTracking(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->installEventFilter(this);
    m_list->viewport()->setAutoFillBackground(false);

    m_status = new QLabel(this);
    m_status->setWordWrap(true);
    m_status->hide();

    auto* header = new QHBoxLayout;
    header->setContentsMargins(6, 0, 0, 0);
    header->addWidget(m_title, 1);
    header->addWidget(m_modeButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 6, 8, 8);
    layout->setSpacing(4);
    layout->addLayout(header);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_status);

    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DragSessionOutlinePanel::syncSelection);
    connect(m_list, &DragSessionOutlineListView::dragRequested, this,
            &DragSessionOutlinePanel::dragSelection);
    connect(m_list, &QWidget::customContextMenuRequested, this, [this](const QPoint& position) {
        const QModelIndex at = m_list->indexAt(position);
        if (!at.isValid()) {
            return;
        }
        if (!m_list->selectionModel()->isSelected(at)) {
            m_list->selectionModel()->select(at, QItemSelectionModel::ClearAndSelect);
            m_list->selectionModel()->setCurrentIndex(at, QItemSelectionModel::NoUpdate);
        }
        m_outline.requestActionsMenu();
    });
    connect(m_list, &QAbstractItemView::doubleClicked, this,
            [this] { m_outline.performOnSelection(ActionIdentifiers::openFile); });
    connect(&outline, &DragSessionContentOutlineCoordinator::itemsInserted, this,
            &DragSessionOutlinePanel::updateHeader);
    connect(&outline, &DragSessionContentOutlineCoordinator::itemRemoved, this,
            &DragSessionOutlinePanel::updateHeader);
    connect(&outline, &DragSessionContentOutlineCoordinator::failed, this,
            &DragSessionOutlinePanel::showFailure);

    const int stored = m_preferences.value(PreferenceKeys::lastOutlineDisplayMode);
    const DisplayMode mode = stored == int(DisplayMode::grid) ? DisplayMode::grid : DisplayMode::list;
    m_mode = mode == DisplayMode::grid ? DisplayMode::list : DisplayMode::grid;
    setDisplayMode(mode);
    updateHeader();
    outline.setView(this);
    // Should the list's logic go first (its shelf torn down at once), the panel follows without it.
    connect(&outline, &QObject::destroyed, this, [this] {
        m_outlineGone = true;
        m_closing = true;
        m_list->setModel(nullptr);
        hide();
        deleteLater();
    });
}

DragSessionOutlinePanel::~DragSessionOutlinePanel()
{
    if (m_editor) {
        m_editor->giveUp();
    }
    if (!m_closing && !m_outlineGone) {
        m_closing = true;
        m_outline.setView(nullptr);
        m_outline.close();
    }
}

void DragSessionOutlinePanel::popUp(const QRect& control)
{
    QScreen* screen = QGuiApplication::screenAt(control.center());
    if (!screen) {
        screen = QGuiApplication::primaryScreen();
    }
    const QRect available = screen->availableGeometry();
    QSize size = preferredSize;
    const QWidget* shelf = parentWidget() ? parentWidget()->window() : nullptr;
    if (shelf) {
        size.setWidth(std::max(size.width(), shelf->width()));
    }
    size.setHeight(std::min(size.height(), contentHeight(size.width())));
    // Under the shelf, centred on it; its top 4 pixels under the control.
    const int centre = shelf ? shelf->frameGeometry().center().x() : control.center().x();
    QPoint origin(centre - size.width() / 2, control.bottom() + 1 + gapBelowControl);
    // Kept on the screen: a shelf near the bottom gets a shorter list, never one off the edge.
    size.setHeight(std::max(minimumHeight, std::min(size.height(), available.bottom() - origin.y())));
    origin.setX(std::clamp(origin.x(), available.left(),
                           std::max(available.left(), available.right() - size.width())));
    origin.setY(std::min(origin.y(), available.bottom() - size.height()));
    setGeometry(QRect(origin, size));
    show();
    raise();
    activateWindow();
    m_list->setFocus(Qt::PopupFocusReason);
    if (!m_list->currentIndex().isValid() && m_model->rowCount() > 0) {
        m_list->selectionModel()->setCurrentIndex(m_model->index(0), QItemSelectionModel::NoUpdate);
    }
}

int DragSessionOutlinePanel::contentHeight(int width) const
{
    // The header, the margins and the rows or tiles, so that a short list gets a short panel.
    const int chrome = 6 + m_modeButton->sizeHint().height() + 4 + 8 + 4;
    const int items = m_model->rowCount();
    int content = 0;
    if (m_mode == DisplayMode::grid) {
        const int usable = width - 16 - m_list->verticalScrollBar()->sizeHint().width();
        const int columns = std::max(1, usable / DragSessionOutlineItemDelegate::gridCell.width());
        content = (items + columns - 1) / columns * DragSessionOutlineItemDelegate::gridCell.height();
    } else {
        content = items * DragSessionOutlineItemDelegate::listRowHeight;
    }
    return std::max(minimumHeight, chrome + content + 4);
}

void DragSessionOutlinePanel::setDisplayMode(DisplayMode mode)
{
    if (mode == m_mode) {
        return;
    }
    m_mode = mode;
    const bool grid = mode == DisplayMode::grid;
    m_delegate->setMode(grid ? DragSessionOutlineItemDelegate::Mode::grid
                             : DragSessionOutlineItemDelegate::Mode::list);
    if (grid) {
        m_list->setViewMode(QListView::IconMode);
        m_list->setGridSize(DragSessionOutlineItemDelegate::gridCell);
        m_list->setMovement(QListView::Static);
        m_list->setResizeMode(QListView::Adjust);
        m_list->setWrapping(true);
    } else {
        m_list->setViewMode(QListView::ListMode);
        m_list->setGridSize(QSize());
        m_list->setWrapping(false);
        m_list->setResizeMode(QListView::Adjust);
    }
    // The drag is the panel's own, whatever the view mode turned on.
    m_list->setDragDropMode(QAbstractItemView::DragOnly);
    {
        const QSignalBlocker blocker(m_modeButton);
        m_modeButton->setChecked(grid);
    }
    const QIcon icon =
        QIcon::fromTheme(grid ? QStringLiteral("view-list-details") : QStringLiteral("view-grid"));
    m_modeButton->setIcon(icon);
    m_modeButton->setText(icon.isNull() ? (grid ? QStringLiteral("☰") : QStringLiteral("▦")) : QString());
    m_modeButton->setToolTip(grid ? Localized("shelf.item-list.list.tooltip", "Show as List")
                                  : Localized("shelf.item-list.grid.tooltip", "Show as Grid"));
    m_preferences.setValue(PreferenceKeys::lastOutlineDisplayMode, int(mode));
    m_list->doItemsLayout();
}

void DragSessionOutlinePanel::updateHeader()
{
    m_title->setText(Localized("shelf.items.count", "%n Items", int(m_outline.items().size())));
}

void DragSessionOutlinePanel::syncSelection()
{
    DraggableList selection;
    QModelIndexList rows = m_list->selectionModel()->selectedIndexes();
    std::sort(rows.begin(), rows.end(),
              [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    for (const QModelIndex& row : rows) {
        if (const DraggablePtr item = m_model->item(row)) {
            selection.append(item);
        }
    }
    m_outline.setSelection(selection);
}

void DragSessionOutlinePanel::dragSelection()
{
    DraggableList dragged;
    for (const DraggablePtr& item : m_outline.selection()) {
        if (!m_outline.isMissing(item)) {
            dragged.append(item);
        }
    }
    if (dragged.isEmpty()) {
        return;
    }
    QPixmap pixmap;
    const QVariant picture = m_model->data(m_model->indexOf(dragged.first()), Qt::DecorationRole);
    const int edge = DragSessionOutlineItemDelegate::gridPicture;
    if (picture.userType() == QMetaType::QIcon) {
        pixmap = picture.value<QIcon>().pixmap(QSize(edge, edge), devicePixelRatioF());
    } else {
        pixmap = picture.value<QPixmap>();
    }
    m_dragging = true;
    const QPointer<DragSessionOutlinePanel> self(this);
    const std::optional<Qt::DropAction> action =
        OutboundDrag::exec(m_list, dragged, pixmap, m_preferences.value(PreferenceKeys::copiesContentOnDrag),
                           this, [self, dragged](bool moved) {
                               if (self) {
                                   self->m_outline.didDragSelection(dragged, moved);
                               }
                           });
    if (!self) {
        return;
    }
    m_dragging = false;
    if (!action) {
        showFailure(
            Localized("shelf.item-list.drag-not-ready", "These items are not ready to be dragged yet."));
    }
}

bool DragSessionOutlinePanel::handleKey(QKeyEvent* event)
{
    if (m_editor) {
        return false;
    }
    switch (event->key()) {
    case Qt::Key_Escape:
        hide();
        return true;
    case Qt::Key_Space:
        m_outline.performOnSelection(ActionIdentifiers::preview);
        return true;
    case Qt::Key_F2:
        m_outline.renameSelection();
        return true;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        m_outline.removeSelection();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        m_outline.performOnSelection(ActionIdentifiers::openFile);
        return true;
    default:
        return false;
    }
}

bool DragSessionOutlinePanel::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_list && event->type() == QEvent::KeyPress && handleKey(static_cast<QKeyEvent*>(event))) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void DragSessionOutlinePanel::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (m_closing) {
        return;
    }
    // Escape, a click outside or the shelf going: the list is over.
    m_closing = true;
    if (m_editor) {
        m_editor->giveUp();
    }
    m_outline.setView(nullptr);
    m_outline.close();
    deleteLater();
}

void DragSessionOutlinePanel::closeOutline()
{
    if (m_closing) {
        return;
    }
    m_closing = true;
    hide();
    deleteLater();
}

DragSessionInlineEditor* DragSessionOutlinePanel::nameEditor() const
{
    return m_editor;
}

QString DragSessionOutlinePanel::statusText() const
{
    return m_status->isVisible() ? m_status->text() : QString();
}

void DragSessionOutlinePanel::editName(const DraggablePtr& item, const QString& text,
                                       std::function<void(const std::optional<QString>&)> done)
{
    if (m_editor) {
        m_editor->giveUp();
    }
    const QModelIndex at = m_model->indexOf(item);
    QRect area = at.isValid() ? m_list->visualRect(at) : QRect(0, 0, m_list->viewport()->width(), 30);
    const QPointer<DragSessionOutlinePanel> self(this);
    auto* editor = new DragSessionInlineEditor(
        text,
        [self, done = std::move(done)](const std::optional<QString>& name) {
            done(name);
            if (self && !self->m_closing) {
                self->m_list->setFocus(Qt::OtherFocusReason);
            }
        },
        m_list->viewport());
    m_editor = editor;
    const int height = editor->sizeHint().height();
    editor->setGeometry(area.left() + 2, area.center().y() - height / 2, std::max(160, area.width() - 4),
                        height);
    editor->show();
    editor->setFocus(Qt::OtherFocusReason);
    // The name without its extension is what is usually changed.
    const int dot = text.lastIndexOf(QLatin1Char('.'));
    editor->setSelection(0, dot > 0 ? dot : int(text.size()));
}

void DragSessionOutlinePanel::showActionsMenu(const ActionsControllerMenu& menu)
{
    if (m_actionsMenu || m_closing) {
        return;
    }
    const QPointer<DragSessionOutlinePanel> self(this);
    QMenu* qmenu = QtActionsMenu::build(menu, this, [self](const ActionMenuEntry& entry) {
        if (self) {
            self->m_outline.didChooseActionsMenuEntry(entry);
        }
    });
    m_actionsMenu = qmenu;
    connect(qmenu, &QMenu::aboutToHide, this, [this, qmenu] {
        // Deleted once the chosen row has been handled, which comes after the menu hides.
        qmenu->deleteLater();
        QTimer::singleShot(0, this, [this] { m_outline.didCloseActionsMenu(); });
    });
    qmenu->popup(QCursor::pos());
}

void DragSessionOutlinePanel::showFailure(const QString& text)
{
    m_status->setText(text);
    m_status->show();
    QTimer::singleShot(failureShownMs, m_status, [status = m_status, text] {
        if (status->text() == text) {
            status->hide();
        }
    });
}

void DragSessionOutlinePanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QPalette& colours = palette();
    painter.fillRect(rect(), colours.color(QPalette::Window));
    QColor border = colours.color(QPalette::WindowText);
    border.setAlpha(60);
    painter.setPen(border);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace Vantrope
