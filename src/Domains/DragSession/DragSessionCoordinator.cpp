#include "DragSessionCoordinator.h"

#include "DragSessionLogging.h"
#include "DragSessionWindowPlacement.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/Localized.h"
#include "MessageWindowCenter.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "PersistentDragSession.h"
#include "PersistentDragSessionStore.h"
#include "Preferences/Preferences.h"

#include <algorithm>
#include <QFileInfo>
#include <QUuid>

namespace Vantrope {

namespace {

QString identifierFor(const DragSessionSource& source)
{
    if (const auto* restore = std::get_if<DragSessionSource::Restore>(&source.value)) {
        return restore->identifier;
    }
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

// Independent of order, so a reordered shelf does not count as new content.
size_t itemsHash(const DraggableList& items)
{
    QStringList keys;
    keys.reserve(items.size());
    for (const DraggablePtr& item : items) {
        keys.append(item->cacheKey());
    }
    keys.sort();
    return qHash(keys);
}

} // namespace

DragSessionCoordinator::DragSessionCoordinator(DragSessionSource source, const DragSessionLabel& label,
                                               std::unique_ptr<DragSessionItemsController> itemsController,
                                               const Dependencies& dependencies, QObject* parent)
    : QObject(parent)
    , m_id(identifierFor(source))
    , m_source(std::move(source))
    , m_label(label)
    , m_sessionStore(dependencies.sessionStore)
    , m_preferences(dependencies.preferences)
    , m_messages(dependencies.messages)
    , m_clock(dependencies.clock)
    , m_itemsController(std::move(itemsController))
    , m_pasteboardController(dependencies.clipboard)
    , m_dropIntake(dependencies.clock)
    , m_saveThrottler(saveDelay, DispatchQueue::main(), dependencies.clock)
{
    auto parts = dependencies.userInterface.makeShelf(*this, DragSessionWindowPlacement::defaultSize);
    m_view = std::move(parts.view);
    m_window = std::move(parts.window);
    if (const auto* restore = std::get_if<DragSessionSource::Restore>(&m_source.value);
        restore && restore->label) {
        m_label = *restore->label;
    }

    refreshLabel();
    const bool permanentClose = m_source.is<DragSessionSource::MenuBarDrop>() ||
                                m_source.is<DragSessionSource::MenuBar>() ||
                                m_source.is<DragSessionSource::HotKey>();
    m_view->setHasPermanentCloseButton(permanentClose);

    connect(m_itemsController.get(), &DragSessionItemsController::itemsChanged, this,
            &DragSessionCoordinator::scheduleItemsUpdate);
    connect(m_itemsController.get(), &DragSessionItemsController::itemsDeleted, this,
            &DragSessionCoordinator::handleDeletedItems);
    connect(m_itemsController.get(), &DragSessionItemsController::itemChanged, this,
            &DragSessionCoordinator::handleChangedItem);
    connect(&m_dropIntake, &DragSessionDropIntake::largeDropRead, this,
            [this](const DraggableList& files, quint64 sequenceNumber) {
                // Judged against what the shelf holds now, not when the drop began.
                if (auto rejection = DragSessionDropIntake::validate(m_itemsController->items(), files)) {
                    concludeDrop({*rejection, sequenceNumber});
                } else {
                    concludeDrop({files, sequenceNumber});
                }
            });
}

DragSessionCoordinator::~DragSessionCoordinator()
{
    m_saveThrottler.cancel();
}

void DragSessionCoordinator::start(const QPointF& origin)
{
    m_window->setFrameOrigin(origin);
    // A shelf the user asked for takes the keyboard. One that comes by itself (mid-drag, from a watched
    // folder or another program) must not: focus would leave the window the user works in.
    if (m_source.is<DragSessionSource::Gesture>() || m_source.is<DragSessionSource::MenuBarDrop>() ||
        m_source.is<DragSessionSource::Custom>()) {
        m_window->showWithoutActivating();
    } else {
        m_window->showAndActivate();
    }
    if (!m_source.is<DragSessionSource::Gesture>() && !m_source.is<DragSessionSource::HotKey>()) {
        m_view->playAttentionAnimation();
    }
    const DraggableList draggables = m_source.draggables();
    if (!draggables.isEmpty()) {
        for (const DraggablePtr& draggable : draggables) {
            if (auto file = std::dynamic_pointer_cast<DraggableFile>(draggable); file && file->bookmark()) {
                file->startAccessingBookmark();
            }
        }
        appendItems(draggables, m_source.is<DragSessionSource::Restore>());
        if (!m_source.is<DragSessionSource::Restore>()) {
            // Items handed over by another program are kept from the start, as dropped ones are.
            throttleSave();
        }
    }
    m_view->updateHoverState(m_window->containsMouse());
}

void DragSessionCoordinator::appendItems(const DraggableList& draggables, bool isRestoration)
{
    if (draggables.isEmpty()) {
        return;
    }
    m_itemsController->addItems(draggables);
    m_view->addDraggables(draggables, isRestoration);
}

void DragSessionCoordinator::playAttention()
{
    m_view->playAttentionAnimation();
}

void DragSessionCoordinator::setLabel(const DragSessionLabel& label)
{
    m_label = label;
    refreshLabel();
    throttleSave();
}

void DragSessionCoordinator::refreshLabel()
{
    m_view->setLabel(m_label);
    m_window->applyLabel(m_label);
    m_window->setTitle(m_label.name.value_or(QString()));
    Q_EMIT labelChanged();
}

void DragSessionCoordinator::throttleSave()
{
    m_saveThrottler.throttle([self = QPointer(this)] {
        if (self) {
            self->saveSession();
        }
    });
}

void DragSessionCoordinator::saveSession(std::function<void()> completion)
{
    const auto complete = [completion = std::move(completion)] {
        if (completion) {
            DispatchQueue::main().async(completion);
        }
    };
    const DraggableList& items = m_itemsController->items();
    if (items.isEmpty()) {
        if (m_sessionStore.session(m_id)) {
            qCInfo(lcDragSession) << "Deleting existing session as we don't have any items anymore";
            m_sessionStore.deleteSession(m_id);
        }
        qCInfo(lcDragSession) << "Bailing out as we don't have any items to save";
        complete();
        return;
    }
    DragSessionItemsController* controller = m_itemsController.get();
    const auto bookmarks = PersistentDragSession::collectBookmarks(
        items, [controller](quint64 number) { return controller->bookmark(number); });
    if (bookmarks.isEmpty()) {
        qCCritical(lcDragSession) << "Failed to obtain bookmarks for items";
        complete();
        return;
    }
    QStringList order;
    order.reserve(items.size());
    for (const DraggablePtr& item : items) {
        order.append(item->cacheKey());
    }
    auto session =
        std::make_shared<PersistentDragSession>(m_id, m_clock.currentDateTime(), m_label, bookmarks, order);
    m_sessionStore.addSession(std::move(session), complete);
}

void DragSessionCoordinator::stop(bool save, std::function<void()> completion)
{
    qCInfo(lcDragSession).noquote() << "Stopping session" << m_id
                                    << (save ? "after saving it" : "without saving");
    m_isStopping = true;
    if (!save) {
        teardown(completion);
        return;
    }
    m_window->setAlphaValue(0, false);
    saveSession([self = QPointer(this), completion] {
        if (self) {
            self->teardown(completion);
        }
    });
}

void DragSessionCoordinator::teardown(const std::function<void()>& completion)
{
    if (m_hasStopped) {
        return;
    }
    m_hasStopped = true;
    m_saveThrottler.cancel();
    m_itemsController->removeAllItems();
    m_preparedItemsHash.reset();
    m_window->close();
    // The delegate may let go of this coordinator; nothing of it is touched after this line.
    if (m_delegate) {
        m_delegate->coordinatorDidStop(*this);
    }
    if (completion) {
        completion();
    }
}

void DragSessionCoordinator::clear()
{
    m_pasteboardController.reset();
    m_itemsController->removeAllItems();
    m_label.pinned = false;
    refreshLabel();
    throttleSave();
    m_pendingInstantAction.reset();
}

void DragSessionCoordinator::scheduleItemsUpdate()
{
    // Debounced: bursts of changes reach the action machinery once.
    const quint64 generation = ++m_itemsUpdateGeneration;
    m_clock.schedule(itemsUpdateDelay, DispatchQueue::main(), [self = QPointer(this), generation] {
        if (self && self->m_itemsUpdateGeneration == generation) {
            self->itemsUpdate();
        }
    });
}

void DragSessionCoordinator::itemsUpdate()
{
    if (m_supressItemPreparationOnItemsUpdate) {
        qCInfo(lcDragSession) << "supressItemPreparationOnItemsUpdate is true, so ignoring updates...";
        return;
    }
    const DraggableList& items = m_itemsController->items();
    if (items.isEmpty() && m_label.pinned) {
        m_label.pinned = false;
        refreshLabel();
        throttleSave();
    }
    prepareActionsIfNeeded(items);
}

void DragSessionCoordinator::prepareActionsIfNeeded(const DraggableList& items)
{
    const size_t hash = itemsHash(items);
    if (m_preparedItemsHash && m_preparedItemsCount == items.size() && *m_preparedItemsHash == hash) {
        qCInfo(lcDragSession) << "Skipping item preparation as nothing changed";
        return;
    }
    m_supressItemPreparationOnItemsUpdate = false;
    if (items.isEmpty()) {
        qCInfo(lcDragSession) << "Resetting state as we don't have any items";
        m_preparedItemsHash.reset();
        m_preparedItemsCount = 0;
        return;
    }
    qCInfo(lcDragSession).noquote()
        << QStringLiteral("Preparing the actions controller for %1 items").arg(items.size());
    m_preparedItemsHash = hash;
    m_preparedItemsCount = items.size();
}

bool DragSessionCoordinator::shouldAcceptDrag(const QMimeData& data)
{
    if (!m_dropIntake.enter(data)) {
        return false;
    }
    if (m_preferences.value(PreferenceKeys::shelfRetractionEnabled) && m_itemsController->items().isEmpty()) {
        m_retractOnItemDrop = true;
    }
    return true;
}

void DragSessionCoordinator::didExitDrag()
{
    if (m_dropIntake.exit()) {
        // The drag went elsewhere: nothing to save, but what waited for its drop is over.
        didDragItems({false, DragEvent::Kind::passedBy}, false);
    }
}

bool DragSessionCoordinator::isReceivingDrop() const
{
    return m_dropIntake.isDraggingEntered() || m_dropIntake.isDragInProgress();
}

bool DragSessionCoordinator::didDrop(const InboundDrop& drop)
{
    if (!m_dropIntake.isDraggingEntered()) {
        return false;
    }
    const std::optional<DragSessionDropIntake::Outcome> outcome = m_dropIntake.drop(
        drop.data, drop.directSaveName, drop.promiseFactory,
        m_preferences.value(PreferenceKeys::draggableTextForcesPlainText), m_itemsController->items());
    // A large drop is taken now and read in a moment.
    return !outcome || concludeDrop(*outcome);
}

bool DragSessionCoordinator::concludeDrop(const DragSessionDropIntake::Outcome& outcome)
{
    const QPointer<DragSessionCoordinator> self(this);
    const auto* draggables = std::get_if<DraggableList>(&outcome.value);
    if (draggables) {
        appendItems(*draggables);
        // What the shelf shows after a drop is the items, not an old message.
        m_messages.hide(m_window->windowNumber());
        throttleSave();
        receivePromises(*draggables, outcome.sequenceNumber);
    } else {
        showDropFailure(std::get<DragSessionDropIntake::Rejection>(outcome.value));
    }
    if (self) {
        m_dropIntake.finish();
        m_view->endInboundDrop();
    }
    return draggables != nullptr;
}

void DragSessionCoordinator::receivePromises(const DraggableList& draggables, quint64 sequenceNumber)
{
    for (const DraggablePtr& draggable : draggables) {
        const auto promise = std::dynamic_pointer_cast<DraggablePromise>(draggable);
        if (!promise) {
            continue;
        }
        std::weak_ptr<DraggablePromise> weak = promise;
        promise->onReceives([self = QPointer(this), weak](const Draggable::ResolveResult& result) {
            const auto received = weak.lock();
            if (!self || !received) {
                return;
            }
            if (!result) {
                qCWarning(lcDragSession).noquote()
                    << QStringLiteral("Failed to receive promise with error ") + result.error().description;
                self->failReceiving(received, result.error());
                return;
            }
            DraggableList additional;
            for (const auto& file : received->additionalDraggables()) {
                additional.append(file);
            }
            if (!additional.isEmpty()) {
                self->appendItems(additional);
                self->throttleSave();
            }
            self->m_view->refreshDraggable(received);
        });
        promise->receiveFiles(sequenceNumber);
    }
}

void DragSessionCoordinator::didDragItems(const DragEvent& event, bool hasMoved)
{
    if (event.endedInDrop) {
        const bool closes = hasMoved || m_preferences.value(PreferenceKeys::alwaysCloseShelf);
        // Files still being received were not in the drag; closing now would lose them.
        const auto stillArriving = [this] {
            const DraggableList items = m_itemsController->items();
            return std::any_of(items.cbegin(), items.cend(),
                               [](const DraggablePtr& item) { return !item->isReady(); });
        };
        if (closes && !stillArriving()) {
            stop(true);
        } else {
            saveSession();
        }
        const int drops = m_preferences.value(PreferenceKeys::numberOfDrops) + 1;
        m_preferences.setValue(PreferenceKeys::numberOfDrops, drops);
    } else {
        if (event.kind == DragEvent::Kind::ended && m_retractOnItemDrop) {
            m_window->retract();
        }
        if (event.kind != DragEvent::Kind::passedBy) {
            throttleSave();
        }
        m_messages.hide(m_window->windowNumber());
    }
    m_retractOnItemDrop = false;
}

void DragSessionCoordinator::showDropFailure(const DragSessionDropIntake::Rejection& rejection)
{
    const DragError& error = rejection.error;
    const int rejectedCount = rejection.count;
    m_retractOnItemDrop = false;
    qCInfo(lcDragSession) << "Showing mesages controller...";
    const bool hasItems = !m_itemsController->items().isEmpty();
    QString text;
    if (error.kind == DragError::Kind::rejected && error.rejection == DragError::RejectionType::empty) {
        text = hasItems && rejectedCount > 0
                   ? Localized("shelf.drag-error.empty-append", "%n empty file(s) could not be added.",
                               rejectedCount)
                   : Localized("shelf.drag-error.empty-item", "Empty files can't be put on a shelf.");
    } else if (error.kind == DragError::Kind::rejected &&
               error.rejection == DragError::RejectionType::existing) {
        text = Localized("shelf.drag-error.already-present", "This is already on the shelf.");
    } else if (error.kind == DragError::Kind::rejected &&
               error.rejection == DragError::RejectionType::combined) {
        text = Localized("shelf.drag-error.empty-and-existing-append",
                         "%n item(s) were empty or already on the shelf and were not added.", rejectedCount);
    } else {
        text = Localized("shelf.drag-error.general", "These items can't be added to the shelf.");
    }
    showMessage(text, Message::Icon::warning, failureMessageDuration);
    if (!hasItems) {
        // The shelf will not close by itself now: give the user a way to close it.
        m_view->setHasPermanentCloseButton(true);
    }
}

void DragSessionCoordinator::didSelectCloseButton(bool alternateModifier)
{
    if (alternateModifier && m_shareState.isNone()) {
        clear();
        m_view->setHasPermanentCloseButton(true);
        m_view->removeAllDraggables(true);
        saveSession();
        return;
    }
    stop(true);
}

void DragSessionCoordinator::didSelectRestoreButton()
{
    const auto sessions = m_sessionStore.sessions();
    if (sessions.isEmpty()) {
        qCInfo(lcDragSession) << "No session to restore";
        return;
    }
    const auto& session = sessions.first();
    if (!session->validate()) {
        qCInfo(lcDragSession) << "Failed to validate draggables";
        return;
    }
    const auto draggables = session->draggables();
    if (!draggables || draggables->isEmpty()) {
        qCInfo(lcDragSession) << "Session does not have any draggables";
        return;
    }
    appendItems(*draggables, true);
}

void DragSessionCoordinator::failReceiving(const DraggablePtr& draggable, const DraggableError& error)
{
    m_view->removeDraggable(draggable);
    m_itemsController->remove(draggable);
    throttleSave();
    // The item vanishes from the pile; say why, or it looks as if the drop was lost.
    m_messages.show(
        m_window->windowNumber(),
        Message::highlighted(Message::Icon::error,
                             Localized("shelf.receive-failed.title", "A file could not be received"),
                             error.description),
        failureMessageDuration);
}

void DragSessionCoordinator::handleDeletedItems(
    const QList<DragSessionItemsController::DeleteContext>& contexts)
{
    if (contexts.isEmpty()) {
        return;
    }
    for (const auto& context : contexts) {
        m_view->removeDraggable(context.draggable);
        m_itemsController->remove(context.draggable);
    }
    const QString text = contexts.size() >= 2
                             ? Localized("shelf.items-removed-disk.body",
                                         "%n items were removed from the shelf because their files are gone.",
                                         int(contexts.size()))
                             : Localized("shelf.item-removed-disk.body",
                                         "\"%1\" was removed from the shelf because its file is gone.")
                                   .arg(contexts.first().url.fileName());
    showMessage(text, Message::Icon::info, failureMessageDuration);
}

void DragSessionCoordinator::handleChangedItem(const DragSessionItemsController::ItemChangeContext& context)
{
    auto replacement = DraggableFile::make(context.newUrl);
    if (!replacement) {
        return;
    }
    m_itemsController->remove(context.draggable);
    m_itemsController->addItems({replacement});
    m_view->replaceDraggable(context.draggable, replacement);
    throttleSave();
}

void DragSessionCoordinator::replaceContent(const QList<QUrl>& urls)
{
    DraggableList draggables;
    for (const QUrl& url : urls) {
        if (auto file = DraggableFile::make(url)) {
            draggables.append(std::move(file));
        }
    }
    if (draggables.isEmpty()) {
        qCInfo(lcDragSession)
            << "Was required to reload content but it failed, so we will just show the initial content";
        return;
    }
    m_itemsController->removeAllItems();
    m_view->removeAllDraggables(false);
    qCInfo(lcDragSession).noquote()
        << QStringLiteral("Reloading content with %1 items...").arg(draggables.size());
    appendItems(draggables);
}

void DragSessionCoordinator::setShareState(const DragSessionActionState& state)
{
    m_shareState = state;
    m_view->setShareState(state);
}

void DragSessionCoordinator::showMessage(const QString& text, Message::Icon icon, Clock::Duration duration)
{
    m_messages.show(m_window->windowNumber(), Message::plain(icon, text), duration);
}

} // namespace Vantrope
