// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "QtDragSessionView.h"

#include "Domains/DragSession/DragSessionLogging.h"
#include "Domains/DragSession/MessageWindowCenter.h"
#include "DragSessionButton.h"
#include "DragSessionInlineEditor.h"
#include "DragSessionOutlinePanel.h"
#include "DragSessionOverlayView.h"
#include "DragSessionSearchView.h"
#include "DragSessionSettingsPopover.h"
#include "DragSessionStackView.h"
#include "Libraries/Core/Localized.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "OutboundDrag.h"
#include "Preferences/Preferences.h"
#include "QtActionsMenu.h"

#include <chrono>
#include <memory>
#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QDrag>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QWindow>

namespace Vantrope {

namespace {

constexpr std::chrono::milliseconds attentionDuration{1050};
constexpr double grabberWidth = 34.0;
constexpr double titleHeight = 34.0;

DragSessionOverlayView::Icon overlayIcon(Message::Icon icon)
{
    switch (icon) {
    case Message::Icon::warning:
        return DragSessionOverlayView::Icon::warning;
    case Message::Icon::error:
        return DragSessionOverlayView::Icon::error;
    case Message::Icon::info:
        return DragSessionOverlayView::Icon::info;
    case Message::Icon::screenshot:
        return DragSessionOverlayView::Icon::screenshot;
    }
    return DragSessionOverlayView::Icon::none;
}

QString summary(const DraggableList& draggables)
{
    QMap<QString, int> kinds;
    for (const DraggablePtr& draggable : draggables.mid(qMax<qsizetype>(0, draggables.size() - 200))) {
        ++kinds[DraggableItemImage::kindName(*draggable)];
    }
    if (kinds.size() > 3) {
        return Localized("shelf.summary.mixed", "%n kinds of items", int(kinds.size()));
    }
    QStringList names = kinds.keys();
    std::stable_sort(names.begin(), names.end(), [&kinds](const QString& a, const QString& b) {
        return kinds.value(a) > kinds.value(b);
    });
    return names.join(QLatin1String(", "));
}

} // namespace

QtDragSessionView::QtDragSessionView(const Dependencies& dependencies, QWidget* parent)
    : QWidget(parent)
    , m_delegate(dependencies.delegate)
    , m_preferences(dependencies.preferences)
    , m_windowNumber(dependencies.windowNumber)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setMouseTracking(true);
    // Typing on a shelf opens its search.
    setFocusPolicy(Qt::StrongFocus);

    m_dropView = new DragSessionInboundDropView(m_delegate, this);
    m_stack = new DragSessionStackView(m_dropView);
    m_closeButton = new DragSessionButton(DragSessionButton::Glyph::close, m_dropView);
    m_restoreButton = new DragSessionButton(DragSessionButton::Glyph::restore, m_dropView);
    m_menuButton = new DragSessionButton(DragSessionButton::Glyph::menu, m_dropView);
    m_menuButton->setToolTip(Localized("shelf.actions.tooltip", "Actions"));
    m_outlineButton = new DragSessionButton(DragSessionButton::Glyph::disclosure, m_dropView);
    m_outlineButton->setCheckable(true);
    m_outlineButton->setToolTip(Localized("shelf.item-list.tooltip", "Show Items"));
    m_shareView = new DragSessionOverlayView(m_dropView);
    m_messageView = new DragSessionOverlayView(m_dropView);
    m_closeButton->setToolTip(Localized("shelf.close.tooltip", "Close Shelf (Alt: empty it)"));
    m_restoreButton->setToolTip(Localized("shelf.restore.tooltip", "Bring Back the Last Shelf"));

    m_dropView->setOwnDragSource(m_stack);
    m_dropView->setCanDragHandler([this] { return m_interactionEnabled; });
    connect(m_dropView, &DragSessionInboundDropView::willBeginDragging, this, [this] {
        m_highlighted = true;
        updateChrome();
    });
    connect(m_dropView, &DragSessionInboundDropView::exited, this, &QtDragSessionView::endInboundDrop);

    connect(m_stack, &DragSessionStackView::dragRequested, this, &QtDragSessionView::mouseDragged);
    connect(m_stack, &DragSessionStackView::doubleClicked, this, [this] {
        if (m_interactionEnabled && m_shareState.isNone()) {
            m_delegate.didDoubleClickItems();
        }
    });
    connect(m_stack, &DragSessionStackView::countChanged, this, [this] {
        updateCaption();
        updateChrome();
        Q_EMIT itemsLaidOut();
    });
    connect(m_closeButton, &QAbstractButton::clicked, this, [this] {
        m_delegate.didSelectCloseButton(QApplication::keyboardModifiers().testFlag(Qt::AltModifier));
    });
    connect(m_outlineButton, &QAbstractButton::clicked, this, [this] {
        // Checked only while the list really is open.
        m_outlineButton->setChecked(m_outlinePanel != nullptr);
        if (!m_outlinePanel) {
            m_delegate.didRequestOutline();
        }
    });
    connect(m_restoreButton, &QAbstractButton::clicked, this,
            [this] { m_delegate.didSelectRestoreButton(); });
    connect(m_menuButton, &QAbstractButton::clicked, this,
            [this] { requestActionsMenu(m_menuButton->geometry().bottomLeft() + m_dropView->pos()); });

    connect(&dependencies.messages, &MessageWindowCenter::messageShown, this,
            &QtDragSessionView::showMessage);
    connect(&dependencies.messages, &MessageWindowCenter::messageHidden, this,
            &QtDragSessionView::hideMessage);
    if (const std::optional<Message> shown = dependencies.messages.message(m_windowNumber)) {
        showMessage(m_windowNumber, *shown);
    }

    m_attentionAnimation.setDuration(int(attentionDuration.count()));
    m_attentionAnimation.setKeyValueAt(0.0, 0.7);
    m_attentionAnimation.setKeyValueAt(0.7, 0.7);
    m_attentionAnimation.setKeyValueAt(1.0, 0.0);
    connect(&m_attentionAnimation, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_attention = value.toDouble();
        update();
    });
    updateChrome();
}

QtDragSessionView::~QtDragSessionView()
{
    if (m_hasDraggedOutItems) {
        // The shelf goes while its items are out: the drag ends with it instead of returning to nothing.
        QDrag::cancel();
    }
}

const DraggableList& QtDragSessionView::draggables() const
{
    return m_stack->draggables();
}

void QtDragSessionView::addDraggables(const DraggableList& draggables, bool isRestoration)
{
    m_stack->addDraggables(draggables, !isRestoration);
}

void QtDragSessionView::removeDraggable(const DraggablePtr& draggable)
{
    m_stack->removeDraggable(draggable);
}

void QtDragSessionView::replaceDraggable(const DraggablePtr& oldDraggable, const DraggablePtr& newDraggable)
{
    if (!m_stack->replaceDraggable(oldDraggable, newDraggable)) {
        qCWarning(lcDragSession) << "Attempted to replace a draggable that does not have an associated view";
        return;
    }
    updateCaption();
}

void QtDragSessionView::removeAllDraggables(bool animated)
{
    m_stack->removeAllDraggables(animated);
}

void QtDragSessionView::setLabel(const DragSessionLabel& label)
{
    m_label = label;
    m_stack->setAccentColor(accentColor());
    m_shareView->setAccentColor(accentColor());
    m_messageView->setAccentColor(accentColor());
    updateCaption();
}

void QtDragSessionView::setHasPermanentCloseButton(bool permanent)
{
    m_permanentClose = permanent;
    updateChrome();
}

void QtDragSessionView::updateHoverState(bool hovering)
{
    m_hovering = hovering;
    updateChrome();
}

void QtDragSessionView::playAttentionAnimation()
{
    m_attentionAnimation.stop();
    m_attentionAnimation.start();
}

void QtDragSessionView::setShareState(const DragSessionActionState& state)
{
    m_shareState = state;
    DragSessionOverlayView::Content content;
    if (const auto* loading = std::get_if<DragSessionActionState::Loading>(&state.value)) {
        content.title = loading->title;
        content.progress = loading->progress;
    } else if (const auto* error = std::get_if<DragSessionActionState::Error>(&state.value)) {
        content.icon = DragSessionOverlayView::Icon::error;
        content.title = error->title;
        content.text = error->body;
    } else if (const auto* confirmation = std::get_if<DragSessionActionState::Confirmation>(&state.value)) {
        content.icon = DragSessionOverlayView::Icon::link;
        content.title = Localized("shelf.share.link-copied", "Link copied");
        content.text = confirmation->url.toDisplayString();
        content.link = confirmation->url;
    }
    m_shareView->setContent(content);
    m_shareView->setVisible(!state.isNone());
    layoutChildren();
}

void QtDragSessionView::setOpaque(bool opaque)
{
    m_opaque = opaque;
    update();
}

bool QtDragSessionView::isDark() const
{
    return palette().color(QPalette::Window).lightness() < 128;
}

QColor QtDragSessionView::accentColor() const
{
    // A gray label would give a gray badge; the desktop's highlight reads better.
    if (m_label.color.id() == DragSessionLabelColor::Identifier::monochrome) {
        return palette().color(QPalette::Highlight);
    }
    return m_label.color.color().color(isDark());
}

QRectF QtDragSessionView::cardRect() const
{
    return QRectF(rect()).adjusted(cardInset, cardInset, -cardInset, -cardInset);
}

QPainterPath QtDragSessionView::cardPath() const
{
    QPainterPath path;
    path.addRoundedRect(cardRect(), cardRadius, cardRadius);
    return path;
}

QRectF QtDragSessionView::pileRect() const
{
    const QRectF card = cardRect();
    return {card.left() + 10, card.top() + 22, card.width() - 20, card.height() - 22 - titleHeight};
}

void QtDragSessionView::layoutChildren()
{
    m_dropView->setGeometry(rect());
    m_stack->setGeometry(pileRect().toAlignedRect());
    const QRectF card = cardRect();
    m_closeButton->move(int(card.left() + 7), int(card.top() + 7));
    m_restoreButton->move(int(card.right() - 7 - DragSessionButton::diameter), int(card.top() + 7));
    // Where the restore button sits on an empty shelf; the two never show together.
    m_menuButton->move(m_restoreButton->pos());
    m_outlineButton->move(int(card.right() - 8 - DragSessionButton::diameter),
                          int(card.bottom() - titleHeight / 2 - 2 - DragSessionButton::diameter / 2.0));
    if (m_searchView) {
        m_searchView->setGeometry(card.adjusted(6, 6, -6, -6).toAlignedRect());
    }
    if (m_inlineEditor) {
        m_inlineEditor->setGeometry(int(card.left() + 10),
                                    int(card.bottom() - 10 - m_inlineEditor->sizeHint().height()),
                                    int(card.width() - 20), m_inlineEditor->sizeHint().height());
    }
    const int width = int(card.width() - 12);
    for (DragSessionOverlayView* overlay : {m_shareView, m_messageView}) {
        const int height = qMin(overlay->heightForWidth(width), int(card.height() - 12));
        overlay->setGeometry(int(card.left() + 6), int(card.bottom() - 6 - height), width, height);
    }
    m_messageView->raise();
}

void QtDragSessionView::updateChrome()
{
    const bool dark = isDark();
    m_closeButton->setDark(dark);
    m_restoreButton->setDark(dark);
    m_closeButton->setVisible(m_permanentClose || m_hovering);
    m_restoreButton->setVisible(m_stack->draggables().isEmpty() && !m_highlighted &&
                                (m_permanentClose || m_hovering));
    m_menuButton->setDark(dark);
    m_outlineButton->setDark(dark);
    m_outlineButton->setVisible(!m_stack->draggables().isEmpty() && !m_highlighted);
    m_menuButton->setVisible(!m_stack->draggables().isEmpty() && !m_highlighted &&
                             (m_hovering || m_actionsMenu));
    update();
}

void QtDragSessionView::showMessage(quint64 windowNumber, const Message& message)
{
    if (windowNumber != m_windowNumber) {
        return;
    }
    DragSessionOverlayView::Content content;
    content.icon = overlayIcon(message.icon);
    content.title = message.title.value_or(QString());
    content.text = message.text;
    m_messageView->setContent(content);
    m_messageView->show();
    layoutChildren();
}

void QtDragSessionView::hideMessage(quint64 windowNumber)
{
    if (windowNumber == m_windowNumber) {
        m_messageView->hide();
    }
}

void QtDragSessionView::endInboundDrop()
{
    m_highlighted = false;
    updateChrome();
}

void QtDragSessionView::refreshDraggable(const DraggablePtr& draggable)
{
    m_stack->refreshDraggable(draggable);
    updateCaption();
    const auto promise = std::dynamic_pointer_cast<DraggablePromise>(draggable);
    if (!promise) {
        return;
    }
    // The file has come: its picture now shows what it is.
    const QSize pictureSize = (DragSessionStackView::itemSize * devicePixelRatioF()).toSize();
    std::weak_ptr<DraggablePromise> weak = promise;
    promise->makeCachedImage(
        pictureSize, [self = QPointer(this), weak](std::expected<void, DraggablePromise::ImageError>) {
            if (const auto item = weak.lock(); self && item) {
                self->m_stack->refreshDraggable(item);
            }
        });
}

bool QtDragSessionView::mouseDragged(const QPoint& pressPosition)
{
    if (!m_interactionEnabled) {
        qCInfo(lcDragSession) << "Interaction disabled, ignoring mosue drag";
        return false;
    }
    if (!m_shareState.isNone()) {
        qCInfo(lcDragSession) << "Share state in progress, ignoring mouse drag";
        return false;
    }
    if (m_stack->isCancelAnimationRunning()) {
        qCInfo(lcDragSession) << "Cancel animation is in progress, ignoring mouse drag";
        return false;
    }
    if (!m_stack->hasItemAt(pressPosition)) {
        qCInfo(lcDragSession) << "No eligible item views, ignoring mouse drag";
        return false;
    }
    m_hasDraggedOutItems = true;
    m_stack->setLifted(true);
    const QPointer<QtDragSessionView> self(this);
    const std::optional<Qt::DropAction> action = OutboundDrag::exec(
        m_stack, m_stack->draggables(), m_stack->dragPixmap(),
        m_preferences.value(PreferenceKeys::copiesContentOnDrag), this, [self](bool moved) {
            if (self) {
                self->m_hasDraggedOutItems = false;
                self->m_stack->setLifted(false);
                self->m_delegate.didDragItems({true, DragSessionViewDelegate::DragEvent::Kind::ended}, moved);
            }
        });
    if (!self) {
        return true;
    }
    m_hasDraggedOutItems = false;
    m_stack->setLifted(false);
    if (!action) {
        return false;
    }
    if (*action == Qt::IgnoreAction) {
        qCInfo(lcDragSession) << "No drag operation, cancelling drag session...";
        m_stack->cancelDragSession(m_stack->mapFromGlobal(QCursor::pos()));
        return true;
    }
    qCInfo(lcDragSession) << "Finishing drag session";
    return true;
}

void QtDragSessionView::resizeEvent(QResizeEvent*)
{
    layoutChildren();
}

void QtDragSessionView::enterEvent(QEnterEvent*)
{
    updateHoverState(true);
}

void QtDragSessionView::leaveEvent(QEvent*)
{
    updateHoverState(false);
}

void QtDragSessionView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        setLabel(m_label);
        updateChrome();
    }
    QWidget::changeEvent(event);
}

DragSessionInlineEditor* QtDragSessionView::inlineEditor() const
{
    return m_inlineEditor;
}

DragSessionSearchView* QtDragSessionView::searchView() const
{
    return m_searchView;
}

void QtDragSessionView::contextMenuEvent(QContextMenuEvent* event)
{
    requestActionsMenu(event->pos());
    event->accept();
}

void QtDragSessionView::requestActionsMenu(const QPoint& position)
{
    if (m_stack->draggables().isEmpty() || m_actionsMenu) {
        return;
    }
    m_menuRequestPosition = mapToGlobal(position);
    m_delegate.didRequestActionsMenu();
}

void QtDragSessionView::showActionsMenu(const ActionsControllerMenu& menu)
{
    if (m_actionsMenu) {
        return;
    }
    const QPoint position = m_menuRequestPosition.value_or(QCursor::pos());
    m_menuRequestPosition.reset();
    QPointer<QtDragSessionView> self(this);
    QMenu* qmenu = QtActionsMenu::build(menu, this, [self](const ActionMenuEntry& entry) {
        if (self) {
            self->m_delegate.didChooseActionsMenuEntry(entry);
        }
    });
    m_actionsMenu = qmenu;
    connect(qmenu, &QMenu::aboutToHide, this, [this, qmenu] {
        // Deleted once the chosen row has been handled, which comes after the menu hides.
        qmenu->deleteLater();
        QTimer::singleShot(0, this, [this] {
            updateChrome();
            m_delegate.didCloseActionsMenu();
        });
    });
    qmenu->popup(position);
    updateChrome();
}

void QtDragSessionView::editInline(const QString& text,
                                   std::function<void(const std::optional<QString>&)> done)
{
    if (m_inlineEditor) {
        m_inlineEditor->giveUp();
    }
    auto* editor = new DragSessionInlineEditor(text, std::move(done), this);
    m_inlineEditor = editor;
    layoutChildren();
    editor->show();
    editor->raise();
    window()->activateWindow();
    editor->setFocus(Qt::OtherFocusReason);
}

void QtDragSessionView::keyPressEvent(QKeyEvent* event)
{
    // A search that has not opened by then is not coming (the items could not be read).
    constexpr qint64 searchOpeningTimeout = 3000;
    const QString text = event->text();
    const bool typing = !text.isEmpty() && text.at(0).isPrint() && !text.at(0).isSpace() &&
                        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (typing && !m_stack->draggables().isEmpty() && !m_searchView && !m_inlineEditor) {
        // The search opens once the actions are known; what is typed meanwhile is kept for its field.
        const bool waiting = !m_pendingSearchText.isEmpty() && m_searchRequested.isValid() &&
                             m_searchRequested.elapsed() < searchOpeningTimeout;
        if (waiting) {
            m_pendingSearchText += text;
        } else {
            m_pendingSearchText = text;
            m_searchRequested.start();
            m_delegate.didTypeToSearch(text);
        }
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

void QtDragSessionView::presentSearch(const SearchRequest& request)
{
    if (m_searchView) {
        m_searchView->close();
    }
    QPointer<QtDragSessionView> self(this);
    SearchRequest shown = request;
    if (!m_pendingSearchText.isEmpty()) {
        shown.initialText = std::exchange(m_pendingSearchText, QString());
    }
    shown.dismiss = [self, dismiss = request.dismiss] {
        if (self) {
            self->m_interactionEnabled = true;
        }
        if (dismiss) {
            dismiss();
        }
    };
    shown.select = [self, select = request.select](const QString& identifier) {
        if (self) {
            self->m_interactionEnabled = true;
        }
        if (select) {
            select(identifier);
        }
    };
    auto* search = new DragSessionSearchView(std::move(shown), this);
    m_searchView = search;
    m_interactionEnabled = false;
    layoutChildren();
    search->show();
    search->raise();
    window()->activateWindow();
    search->field().setFocus(Qt::OtherFocusReason);
}

void QtDragSessionView::dismissSearch()
{
    if (m_searchView) {
        m_searchView->close();
    }
    m_interactionEnabled = true;
}

void QtDragSessionView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    if (m_interactionEnabled && grabberHitRect().contains(event->position().toPoint())) {
        event->accept();
        // The click on the grabber that closed the popover reaches the grabber too; it means "close".
        if (!m_settingsClosed.isValid() || m_settingsClosed.elapsed() > 250) {
            m_delegate.didSelectLabelGrabber();
        }
        return;
    }
    if (!m_stack->draggables().isEmpty() && countRect().contains(event->position())) {
        m_delegate.didRequestOutline();
        return;
    }
    // The card is the handle by which the shelf is moved.
    if (QWindow* handle = window()->windowHandle(); handle && handle->startSystemMove()) {
        return;
    }
    event->ignore();
}

void QtDragSessionView::paintGrabber(QPainter& painter, const QRectF& card) const
{
    const QRectF grabber(card.center().x() - grabberWidth / 2, card.top() + 8, grabberWidth, 5);
    const bool coloured =
        m_label.colorVisibility == DragSessionLabel::ColorVisibility::always || m_hovering || m_highlighted;
    QColor colour = coloured ? m_label.color.color().color(isDark())
                             : (isDark() ? QColor(255, 255, 255, 70) : QColor(0, 0, 0, 55));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(grabber, 2.5, 2.5);
    if (m_label.pinned) {
        // The pin mark stays quiet: it says the shelf is kept, nothing more.
        painter.save();
        painter.setOpacity(0.3);
        const QPointF head(grabber.right() + 10, grabber.center().y() - 1);
        painter.setBrush(isDark() ? Qt::white : Qt::black);
        painter.drawEllipse(head, 3, 3);
        painter.setPen(QPen(painter.brush().color(), 1.4, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(head, head + QPointF(0, 7));
        painter.restore();
    }
}

void QtDragSessionView::paintEmptyState(QPainter& painter) const
{
    const QRectF zone = pileRect().adjusted(6, 4, -6, -2);
    const QColor ink =
        m_highlighted ? accentColor() : (isDark() ? QColor(255, 255, 255, 90) : QColor(0, 0, 0, 80));
    QPen dashed(ink, 1.5, Qt::DashLine, Qt::RoundCap);
    dashed.setDashPattern({4, 3});
    painter.setPen(dashed);
    QColor tint = accentColor();
    tint.setAlpha(28);
    painter.setBrush(m_highlighted ? QBrush(tint) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(zone, 12, 12);

    // An arrow into a tray.
    const QPointF centre(zone.center().x(), zone.center().y() - 8);
    QPen stroke(ink, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(stroke);
    painter.setBrush(Qt::NoBrush);
    painter.drawLine(centre + QPointF(0, -12), centre + QPointF(0, 6));
    painter.drawPolyline(
        QPolygonF({centre + QPointF(-6, 0), centre + QPointF(0, 6), centre + QPointF(6, 0)}));
    painter.drawPolyline(QPolygonF({centre + QPointF(-12, 6), centre + QPointF(-12, 12),
                                    centre + QPointF(12, 12), centre + QPointF(12, 6)}));

    QFont font = this->font();
    font.setPixelSize(11);
    font.setWeight(QFont::Medium);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(QRectF(zone.left(), centre.y() + 16, zone.width(), 18), Qt::AlignHCenter | Qt::AlignTop,
                     Localized("shelf.empty.hint", "Drop here"));
}

void QtDragSessionView::updateCaption()
{
    const DraggableList& items = m_stack->draggables();
    m_title.clear();
    m_subtitle.clear();
    if (items.size() == 1) {
        m_title = DraggableItemImage::displayName(*items.first());
        m_subtitle = DraggableItemImage::kindName(*items.first());
    } else if (!items.isEmpty()) {
        m_title = Localized("shelf.items.count", "%n Items", int(items.size()));
        m_subtitle = summary(items);
    }
    if (m_label.name && !m_label.name->isEmpty()) {
        m_subtitle = m_title;
        m_title = *m_label.name;
    }
    update();
}

void QtDragSessionView::paintTitle(QPainter& painter, const QRectF& card) const
{
    if (m_title.isEmpty()) {
        return;
    }
    // Clear of the disclosure control on the right, and as far from the left to stay centred.
    const double inset = 12 + DragSessionButton::diameter;
    const QRectF area(card.left() + inset, card.bottom() - titleHeight - 2, card.width() - 2 * inset,
                      titleHeight);
    QFont titleFont = font();
    titleFont.setPixelSize(12);
    titleFont.setWeight(QFont::DemiBold);
    QFont subtitleFont = font();
    subtitleFont.setPixelSize(10);
    const QColor ink = isDark() ? QColor(255, 255, 255, 235) : QColor(24, 24, 28, 235);
    painter.setFont(titleFont);
    painter.setPen(ink);
    painter.drawText(QRectF(area.left(), area.top(), area.width(), 17), Qt::AlignCenter,
                     QFontMetrics(titleFont).elidedText(m_title, Qt::ElideMiddle, int(area.width())));
    if (!m_subtitle.isEmpty()) {
        painter.setFont(subtitleFont);
        painter.setPen(QColor(ink.red(), ink.green(), ink.blue(), 140));
        painter.drawText(
            QRectF(area.left(), area.top() + 16, area.width(), 14), Qt::AlignCenter,
            QFontMetrics(subtitleFont).elidedText(m_subtitle, Qt::ElideRight, int(area.width())));
    }
}

void QtDragSessionView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF card = cardRect();
    const bool dark = isDark();

    if (!m_opaque) {
        // A soft shadow lifts the card off whatever lies below.
        painter.setPen(Qt::NoPen);
        for (int step = 5; step >= 1; --step) {
            painter.setBrush(QColor(0, 0, 0, 7 * (6 - step)));
            painter.drawRoundedRect(card.adjusted(-step, -step + 2, step, step + 2), cardRadius + step,
                                    cardRadius + step);
        }
    }
    QColor fill = dark ? QColor(38, 38, 42, 232) : QColor(248, 248, 250, 236);
    if (m_opaque) {
        fill.setAlpha(255);
    }
    painter.setBrush(fill);
    painter.setPen(QPen(dark ? QColor(255, 255, 255, 34) : QColor(0, 0, 0, 30), 1));
    painter.drawRoundedRect(card.adjusted(0.5, 0.5, -0.5, -0.5), cardRadius, cardRadius);

    if (m_highlighted) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(accentColor(), 2));
        painter.drawRoundedRect(card.adjusted(1, 1, -1, -1), cardRadius - 1, cardRadius - 1);
    }
    if (m_attention > 0) {
        QColor ring = m_label.color.color().color(dark);
        ring.setAlphaF(float(m_attention));
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(ring, 3));
        painter.drawRoundedRect(card.adjusted(-2.5, -2.5, 2.5, 2.5), cardRadius + 2.5, cardRadius + 2.5);
    }

    paintGrabber(painter, card);
    if (m_stack->draggables().isEmpty()) {
        paintEmptyState(painter);
    }
    paintTitle(painter, card);
}

// The settings popover and the double click.

QRect QtDragSessionView::grabberHitRect() const
{
    // Wider and taller than the grabber itself: it is a thin bar, and a near miss should still open.
    const QRectF card = cardRect();
    return QRectF(card.center().x() - grabberWidth, card.top(), grabberWidth * 2, 20).toAlignedRect();
}

void QtDragSessionView::presentSettings(const SettingsRequest& request)
{
    if (m_settingsPopover) {
        return;
    }
    auto* popover = new DragSessionSettingsPopover(request.label, this);
    m_settingsPopover = popover;
    connect(popover, &DragSessionSettingsPopover::labelChanged, this,
            [change = request.change](const DragSessionLabel& label) {
                if (change) {
                    change(label);
                }
            });
    connect(popover, &DragSessionSettingsPopover::closed, this, [this, popover, closed = request.closed] {
        if (m_settingsPopover == popover) {
            m_settingsPopover.clear();
        }
        m_settingsClosed.start();
        updateChrome();
        if (closed) {
            closed();
        }
    });
    const QRect hit = grabberHitRect();
    popover->anchorAt(mapToGlobal(QPoint(hit.center().x(), int(cardRect().top()) + 16)));
    popover->show();
    popover->nameField().setFocus(Qt::PopupFocusReason);
    updateChrome();
}

void QtDragSessionView::dismissSettings()
{
    if (m_settingsPopover) {
        m_settingsPopover->close();
    }
}

// End of the settings popover and the double click.

// --- Item list ---

QRectF QtDragSessionView::countRect() const
{
    const QRectF card = cardRect();
    const double inset = 12 + DragSessionButton::diameter;
    return {card.left() + inset, card.bottom() - titleHeight - 2, card.width() - 2 * inset, titleHeight};
}

DragSessionOutlinePanel* QtDragSessionView::outlinePanel() const
{
    return m_outlinePanel;
}

void QtDragSessionView::presentOutline(DragSessionContentOutlineCoordinator& outline)
{
    auto* panel = new DragSessionOutlinePanel(outline, m_preferences, window());
    m_outlinePanel = panel;
    m_outlineButton->setChecked(true);
    connect(panel, &QObject::destroyed, this, [this] {
        m_outlineButton->setChecked(false);
        updateChrome();
    });
    const QRect control(m_outlineButton->mapToGlobal(QPoint(0, 0)), m_outlineButton->size());
    panel->popUp(control);
}

// --- End of item list ---

} // namespace Vantrope
