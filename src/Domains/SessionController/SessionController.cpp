// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SessionController.h"

#include "Domains/DragSession/DragSessionLogging.h"
#include "Domains/DragSession/DragSessionWindowPlacement.h"
#include "Domains/DragSession/MessageWindowCenter.h"
#include "Domains/DragSession/PersistentDragSession.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Libraries/Core/Localized.h"
#include "Models/Draggable/DraggableFile.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsItem.h"

#include <QSet>
#include <QTimer>
#include <utility>

namespace Vantrope {

SessionController::SessionController(const Dependencies& dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
    , m_labelController(DragSessionLabelColorController::shuffledStandardColors())
    , m_coordinatorsQueue(QStringLiteral("com.vantropeapp.mac.sessioncontroller-coordinators"))
{
    connect(&m_dependencies.preferences, &Preferences::changed, this, [this](PreferenceKey key) {
        if (key == PreferenceKey::shelfLabelsEnabled) {
            relabel();
        }
    });
}

SessionController::~SessionController()
{
    for (const auto& coordinator : coordinators()) {
        coordinator->setDelegate(nullptr);
    }
    // Taken off the queue and let go of here, on the main thread.
    auto remaining = m_coordinatorsQueue.syncResult([this] { return std::exchange(m_coordinators, {}); });
    remaining.clear();
    m_released.clear();
}

QList<std::shared_ptr<DragSessionCoordinator>> SessionController::coordinators() const
{
    return m_coordinatorsQueue.syncResult([this] { return m_coordinators; });
}

void SessionController::setCoordinators(QList<std::shared_ptr<DragSessionCoordinator>> coordinators)
{
    // The old list comes back to this (main) thread: a coordinator owns windows, so its last reference
    // must never be dropped on the queue's thread.
    QList<std::shared_ptr<DragSessionCoordinator>> previous = m_coordinatorsQueue.syncResult(
        [this, &coordinators] { return std::exchange(m_coordinators, std::move(coordinators)); });
    m_released.append(std::move(previous));
    if (!m_releaseScheduled) {
        m_releaseScheduled = true;
        // Released on the next turn of the event loop, never inside a coordinator's own stop; tied to this
        // object so that nothing is left queued when the program ends.
        QTimer::singleShot(0, this, [this] {
            m_releaseScheduled = false;
            m_released.clear();
        });
    }
}

DragSessionLabel SessionController::newLabel()
{
    const bool keepInOwnSpace = m_dependencies.preferences.value(PreferenceKeys::keepShelfInSpace);
    if (!m_dependencies.preferences.value(PreferenceKeys::shelfLabelsEnabled)) {
        return DragSessionLabel::gray(keepInOwnSpace);
    }
    DragSessionLabel label = DragSessionLabel::gray(keepInOwnSpace);
    label.color = m_labelController.nextColor();
    return label;
}

QPointF SessionController::originFor(const DragSessionSource& source) const
{
    const QSizeF size = DragSessionWindowPlacement::defaultSize;
    const ScreenEnvironment& screens = m_dependencies.screens;
    QList<QRectF> others;
    for (const auto& coordinator : coordinators()) {
        if (coordinator->window().isVisible()) {
            others.append(coordinator->window().frame());
        }
    }
    const auto stored = m_dependencies.preferences.value(PreferenceKeys::defaultShelfLocation);
    const auto location = SettingsItem::shelfLocation(stored).value_or(SettingsItem::ShelfLocation::topRight);

    if (source.is<DragSessionSource::Gesture>()) {
        return DragSessionWindowPlacement::centredOrigin(m_lastDraggingPoint, size,
                                                         screens.screenUnderMouse());
    }
    if (source.is<DragSessionSource::HotKey>()) {
        return DragSessionWindowPlacement::centredOrigin(screens.mouseLocation(), size,
                                                         screens.screenUnderMouse());
    }
    if (const auto* custom = std::get_if<DragSessionSource::Custom>(&source.value)) {
        return DragSessionWindowPlacement::centredOrigin(custom->location, size, custom->screen);
    }
    std::optional<Screen> screen = screens.screenUnderMouse();
    if (const auto* drop = std::get_if<DragSessionSource::MenuBarDrop>(&source.value); drop && drop->screen) {
        screen = drop->screen;
    }
    if (!screen) {
        screen = screens.mainScreen();
    }
    return DragSessionWindowPlacement::origin(location, size, screen, screens.mouseLocation(), others);
}

std::shared_ptr<DragSessionCoordinator> SessionController::startSession(DragSessionSource source)
{
    const QPointF origin = originFor(source);
    auto itemsController =
        std::make_unique<DragSessionItemsController>(m_dependencies.clock, m_dependencies.fileWatcher);
    const DragSessionCoordinator::Dependencies dependencies{
        m_dependencies.sessionStore,   m_dependencies.preferences, m_dependencies.userInterface,
        m_dependencies.messages,       m_dependencies.clipboard,   m_dependencies.clock,
        m_dependencies.desktopActions, m_dependencies.copyText,    m_dependencies.openPreferences,
        m_dependencies.fileOperations};
    auto coordinator = std::make_shared<DragSessionCoordinator>(std::move(source), newLabel(),
                                                                std::move(itemsController), dependencies);
    coordinator->setDelegate(this);
    coordinator->start(origin);
    auto list = coordinators();
    list.append(coordinator);
    setCoordinators(std::move(list));
    Q_EMIT sessionsChanged();
    return coordinator;
}

std::shared_ptr<DragSessionCoordinator> SessionController::coordinator(const QString& identifier) const
{
    for (const auto& shelf : coordinators()) {
        if (shelf->id().compare(identifier, Qt::CaseInsensitive) == 0 && !shelf->isStopping()) {
            return shelf;
        }
    }
    return nullptr;
}

std::shared_ptr<DragSessionCoordinator> SessionController::lastUsedCoordinator() const
{
    std::shared_ptr<DragSessionCoordinator> newest;
    for (const auto& shelf : coordinators()) {
        if (shelf->isStopping()) {
            continue;
        }
        if (!newest || shelf->lastUsed() >= newest->lastUsed()) {
            newest = shelf;
        }
    }
    return newest;
}

void SessionController::gestureBegan(std::optional<QPointF> point)
{
    m_lastDraggingPoint = point.value_or(QPointF());
    for (const auto& coordinator : coordinators()) {
        if (coordinator->window().isVisible() && coordinator->itemsController().items().isEmpty()) {
            // The empty shelf on screen is where this drag goes.
            return;
        }
    }
    startSession(DragSessionSource::Gesture{});
}

bool SessionController::isClosable(const DragSessionCoordinator& coordinator, CloseFilter filter) const
{
    switch (filter) {
    case CloseFilter::empty:
        return !coordinator.pendingInstantAction() && !coordinator.isReceivingDrop() &&
               !coordinator.isReadingDropInBackground() && !coordinator.view().hasDraggedOutItems() &&
               coordinator.itemsController().items().isEmpty();
    case CloseFilter::withItems:
        return !coordinator.itemsController().items().isEmpty();
    case CloseFilter::all:
        return true;
    }
    return false;
}

void SessionController::saveOpenSessions()
{
    for (const auto& coordinator : coordinators()) {
        if (!coordinator->isStopping()) {
            coordinator->saveSession();
        }
    }
}

void SessionController::closeSessions(CloseFilter filter)
{
    QList<std::shared_ptr<DragSessionCoordinator>> closing;
    for (const auto& coordinator : coordinators()) {
        if (!coordinator->isStopping() && isClosable(*coordinator, filter) &&
            !m_dependencies.messages.hasMessage(coordinator->window().windowNumber())) {
            closing.append(coordinator);
        }
    }
    for (const auto& coordinator : closing) {
        coordinator->stop(true);
    }
}

void SessionController::coordinatorDidStop(DragSessionCoordinator& coordinator)
{
    auto list = coordinators();
    const auto index = std::find_if(list.cbegin(), list.cend(), [&coordinator](const auto& entry) {
        return entry.get() == &coordinator;
    });
    if (index == list.cend()) {
        Q_EMIT sessionsChanged();
        return;
    }
    // Keep the coordinator alive until its own stop has returned.
    std::shared_ptr<DragSessionCoordinator> keep = *index;
    list.erase(index);
    setCoordinators(std::move(list));
    m_labelController.giveBack(keep->label().color);
    Q_EMIT sessionsChanged();
}

bool SessionController::openDragSession(const QString& identifier)
{
    for (const auto& coordinator : coordinators()) {
        if (coordinator->id() == identifier) {
            qCInfo(lcDragSession).noquote()
                << QStringLiteral("Found an already open session for id '%1', will draw attention")
                       .arg(identifier);
            coordinator->playAttention();
            return true;
        }
    }
    if (auto session = m_dependencies.sessionStore.session(identifier)) {
        session->validate();
        if (const auto draggables = session->draggables(); draggables && !draggables->isEmpty()) {
            qCInfo(lcDragSession).noquote()
                << QStringLiteral("Will show new session for '%1").arg(identifier);
            startSession(DragSessionSource::Restore{identifier, *draggables, session->label()});
            return true;
        }
    }
    qCWarning(lcDragSession).noquote() << QStringLiteral("Failed to restore session with %1").arg(identifier);
    return false;
}

bool SessionController::openMostRecentClosedDragSession()
{
    QSet<QString> open;
    for (const auto& coordinator : coordinators()) {
        open.insert(coordinator->id());
    }
    PersistentDragSessionPtr candidate;
    for (const auto& session : m_dependencies.sessionStore.sessions()) {
        if (!open.contains(session->identifier())) {
            candidate = session;
            break;
        }
    }
    if (!candidate) {
        qCInfo(lcDragSession) << "Failed to find recently closed session. Will fail silently.";
        return false;
    }
    const auto draggables = candidate->validate() ? candidate->draggables() : std::nullopt;
    if (!draggables || draggables->isEmpty()) {
        qCInfo(lcDragSession)
            << "Failed to validate contents of most recent session or no draggables. Will fail silently.";
        return false;
    }
    startSession(DragSessionSource::Restore{candidate->identifier(), *draggables, candidate->label()});
    return true;
}

void SessionController::openFiles(const QList<QUrl>& urls, const std::optional<Screen>& screen)
{
    DraggableList draggables;
    for (const QUrl& url : urls) {
        if (!url.isLocalFile()) {
            continue;
        }
        if (auto file = DraggableFile::make(url)) {
            draggables.append(std::move(file));
        }
    }
    if (!draggables.isEmpty()) {
        startSession(DragSessionSource::MenuBarDrop{draggables, screen});
    }
}

void SessionController::openNewSession(const DraggableList& draggables, const std::optional<Screen>& screen)
{
    if (!draggables.isEmpty()) {
        startSession(DragSessionSource::MenuBarDrop{draggables, screen});
    }
}

void SessionController::handleDropZoneDrop(const DraggableList& draggables, const QPointF& point,
                                           const Screen& screen)
{
    startSession(DragSessionSource::Custom{draggables, point, screen});
}

void SessionController::handleScreenshot(const QUrl& url)
{
    auto file = DraggableFile::make(url);
    if (!file) {
        return;
    }
    Preferences& preferences = m_dependencies.preferences;
    std::shared_ptr<DragSessionCoordinator> target;
    if (preferences.value(PreferenceKeys::screenshotObservationDistributionOption) ==
        QStringLiteral("append")) {
        for (const auto& coordinator : coordinators()) {
            if (coordinator->tag() == screenshotShelfTag && coordinator->window().alphaValue() != 0 &&
                !coordinator->window().isRetracted() && coordinator->shareState().isNone() &&
                !coordinator->isStopping()) {
                target = coordinator;
                break;
            }
        }
    }
    if (target) {
        target->appendItems({file});
        target->throttleSave();
    } else {
        target = startSession(DragSessionSource::MenuBarDrop{{file}, m_dependencies.screens.mainScreen()});
        target->setTag(screenshotShelfTag);
    }
    if (preferences.value(PreferenceKeys::userScreenshotCopyToClipboard)) {
        qCInfo(lcDragSession) << "Copying captured screenshot to clipboard...";
        if (copyToClipboard) {
            copyToClipboard(url);
        }
    }
    if (preferences.value(PreferenceKeys::userScreenshotShowConfirmationMessage)) {
        m_dependencies.messages.show(
            target->window().windowNumber(),
            Message::plain(Message::Icon::screenshot,
                           Localized("shelf.screenshot-added.body", "Your screenshot is on the shelf.")),
            screenshotMessageDuration);
    }
}

void SessionController::relabel()
{
    const bool enabled = m_dependencies.preferences.value(PreferenceKeys::shelfLabelsEnabled);
    for (const auto& coordinator : coordinators()) {
        if (coordinator->label().userDefined) {
            continue;
        }
        DragSessionLabel label = coordinator->label();
        if (enabled) {
            label.color = m_labelController.nextColor();
        }
        coordinator->setLabel(label);
    }
}

} // namespace Vantrope
