// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "VantropeServiceProvider.h"

#include "AppDelegate.h"
#include "CommandLine.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "LocalFileName.h"
#include "RootCoordinator.h"
#include "SettingsService.h"
#include "WatchedFolderService.h"

#include <QDir>
#include <QHash>
#include <QPointer>
#include <QSet>

namespace Vantrope {

namespace {

using Error = ApplicationRequestHandler::Error;

// A file operation's setting as `actions --json` lists it.
QVariantMap describeSetting(const OperationSetting& setting)
{
    static const QHash<OperationSetting::Type, QString> types{
        {OperationSetting::Type::integer, QStringLiteral("integer")},
        {OperationSetting::Type::choice, QStringLiteral("choice")},
        {OperationSetting::Type::boolean, QStringLiteral("boolean")},
        {OperationSetting::Type::text, QStringLiteral("text")},
        {OperationSetting::Type::folder, QStringLiteral("folder")}};
    QVariantMap description{{QStringLiteral("key"), setting.key},
                            {QStringLiteral("title"), setting.title},
                            {QStringLiteral("type"), types.value(setting.type)}};
    if (setting.defaultValue.isValid()) {
        description.insert(QStringLiteral("default"), setting.defaultValue);
    }
    if (setting.type == OperationSetting::Type::integer) {
        description.insert(QStringLiteral("minimum"), setting.minimum);
        description.insert(QStringLiteral("maximum"), setting.maximum);
    }
    if (setting.type == OperationSetting::Type::choice) {
        QStringList values;
        for (const OperationSetting::Choice& choice : setting.choices) {
            values.append(choice.value);
        }
        description.insert(QStringLiteral("choices"), values);
    }
    return description;
}

QString newestShelfIdentifier(const SessionController& sessions)
{
    const auto coordinators = sessions.coordinators();
    return coordinators.isEmpty() ? QString() : coordinators.last()->id();
}

} // namespace

VantropeServiceProvider::VantropeServiceProvider(AppDelegate& appDelegate, RootCoordinator& coordinator)
    : m_appDelegate(appDelegate)
    , m_coordinator(coordinator)
{}

void VantropeServiceProvider::activate()
{
    m_appDelegate.handleReopen();
}

std::expected<QString, Error> VantropeServiceProvider::addFiles(const QList<QByteArray>& paths)
{
    if (paths.isEmpty()) {
        return std::unexpected(Error{Error::Kind::invalidArguments, QStringLiteral("no files given")});
    }
    QStringList names;
    for (const QByteArray& path : paths) {
        const QString name = LocalFileName::decode(path);
        if (!path.startsWith('/')) {
            return std::unexpected(
                Error{Error::Kind::invalidArguments,
                      QStringLiteral("not an absolute path: %1").arg(LocalFileName::displayName(name))});
        }
        names.append(QDir::cleanPath(name));
    }
    // As with a drop, a file goes on the shelf once.
    names.removeDuplicates();
    if (const auto problem = CommandLine::firstUnusable(names)) {
        return std::unexpected(Error{problem->kind == CommandLine::FileProblem::Kind::missing
                                         ? Error::Kind::missingFile
                                         : Error::Kind::unreadableFile,
                                     problem->message});
    }
    QList<QUrl> urls;
    for (const QString& name : std::as_const(names)) {
        const auto reachable = LocalFileName::reachableName(name);
        if (!reachable) {
            return std::unexpected(
                Error{Error::Kind::unreadableFile,
                      QStringLiteral("cannot make %1 reachable").arg(LocalFileName::displayName(name))});
        }
        urls.append(QUrl::fromLocalFile(*reachable));
    }
    SessionController& sessions = m_coordinator.sessionController();
    const qsizetype before = sessions.coordinators().size();
    sessions.openFiles(urls);
    if (sessions.coordinators().size() == before) {
        return std::unexpected(
            Error{Error::Kind::missingFile, QStringLiteral("none of the files could be read")});
    }
    return newestShelfIdentifier(sessions);
}

QString VantropeServiceProvider::newShelf()
{
    return m_coordinator.sessionController().startSession(DragSessionSource::MenuBar{})->id();
}

std::expected<QString, Error> VantropeServiceProvider::openRecent(const QString& identifier)
{
    SessionController& sessions = m_coordinator.sessionController();
    if (identifier.isEmpty()) {
        if (!sessions.openMostRecentClosedDragSession()) {
            return std::unexpected(
                Error{Error::Kind::noRecentShelf, QStringLiteral("there is no closed recent shelf to open")});
        }
        return newestShelfIdentifier(sessions);
    }
    if (sessions.openDragSession(identifier)) {
        return identifier;
    }
    if (m_coordinator.sessionStore().session(identifier)) {
        return std::unexpected(
            Error{Error::Kind::unknownShelf,
                  QStringLiteral("none of the files of shelf \"%1\" can be found any more").arg(identifier)});
    }
    return std::unexpected(
        Error{Error::Kind::unknownShelf,
              QStringLiteral("no recent shelf has the identifier \"%1\"").arg(identifier)});
}

void VantropeServiceProvider::closeAll(std::function<void()> done)
{
    SessionController& sessions = m_coordinator.sessionController();
    sessions.closeSessions(SessionController::CloseFilter::all);

    QSet<const DragSessionCoordinator*> closing;
    for (const auto& coordinator : sessions.coordinators()) {
        if (coordinator->isStopping()) {
            closing.insert(coordinator.get());
        }
    }
    const auto stillClosing = [&sessions, closing] {
        for (const auto& coordinator : sessions.coordinators()) {
            if (closing.contains(coordinator.get())) {
                return true;
            }
        }
        return false;
    };
    if (!done || !stillClosing()) {
        if (done) {
            done();
        }
        return;
    }
    // A shelf leaves the list only after its saved copy has reached the store.
    auto* watcher = new QObject(&sessions);
    QObject::connect(&sessions, &SessionController::sessionsChanged, watcher, [watcher, stillClosing, done] {
        if (!stillClosing()) {
            done();
            watcher->deleteLater();
        }
    });
}

void VantropeServiceProvider::quit()
{
    m_appDelegate.terminate();
}

namespace {

// A shelf's items as scripts see them: those with an address, by local path or by the address.
QList<std::pair<QString, DraggablePtr>> listedItems(const DragSessionCoordinator& coordinator)
{
    QList<std::pair<QString, DraggablePtr>> listed;
    for (const DraggablePtr& item : coordinator.itemsController().items()) {
        if (const auto url = item->url()) {
            listed.append({url->isLocalFile() ? url->toLocalFile() : url->toString(), item});
        }
    }
    return listed;
}

} // namespace

QList<ShelfSummary> VantropeServiceProvider::shelves() const
{
    QList<ShelfSummary> result;
    for (const auto& coordinator : m_coordinator.sessionController().coordinators()) {
        if (coordinator->isStopping()) {
            continue;
        }
        const DragSessionLabel& label = coordinator->label();
        ShelfSummary shelf{coordinator->id(),
                           label.name,
                           DragSessionLabelColor::rawValue(label.color.id()),
                           label.pinned,
                           {}};
        for (const auto& [listed, item] : listedItems(*coordinator)) {
            shelf.items.append(listed);
        }
        result.append(shelf);
    }
    return result;
}

std::expected<std::shared_ptr<DragSessionCoordinator>, VantropeServiceProvider::Error>
VantropeServiceProvider::shelfFor(const QString& identifier) const
{
    SessionController& sessions = m_coordinator.sessionController();
    if (identifier.isEmpty()) {
        if (auto shelf = sessions.lastUsedCoordinator()) {
            return shelf;
        }
        return std::unexpected(Error{Error::Kind::noShelf, QStringLiteral("no shelf is open")});
    }
    if (auto shelf = sessions.coordinator(identifier)) {
        return shelf;
    }
    return std::unexpected(Error{Error::Kind::unknownShelf,
                                 QStringLiteral("no open shelf has the identifier \"%1\"").arg(identifier)});
}

void VantropeServiceProvider::shelfActions(
    const QString& shelf, std::function<void(const std::expected<QList<ShelfActionSummary>, Error>&)> done)
{
    const auto coordinator = shelfFor(shelf);
    if (!coordinator) {
        done(std::unexpected(coordinator.error()));
        return;
    }
    (*coordinator)
        ->availableActions([done, shelf = QPointer<DragSessionCoordinator>(coordinator->get())](
                               const DragSessionCoordinator::AvailableActions& actions) {
            if (!actions) {
                done(std::unexpected(Error{Error::Kind::actionFailed,
                                           QStringLiteral("the shelf's items could not be prepared: %1")
                                               .arg(actions.error().description())}));
                return;
            }
            QList<ShelfActionSummary> result;
            for (const ActionSearchItem& item : *actions) {
                QVariantList options;
                for (const OperationSetting& setting :
                     shelf ? shelf->operationSettings(item.identifier) : OperationSettings()) {
                    options.append(describeSetting(setting));
                }
                result.append({item.identifier, item.title, options});
            }
            done(result);
        });
}

void VantropeServiceProvider::runAction(const QString& shelf, const QString& action,
                                        const QVariantMap& settings,
                                        std::function<void(const std::expected<QString, Error>&)> done)
{
    const auto coordinator = shelfFor(shelf);
    if (!coordinator) {
        done(std::unexpected(coordinator.error()));
        return;
    }
    if ((*coordinator)->itemsController().items().isEmpty()) {
        done(std::unexpected(Error{Error::Kind::actionFailed, QStringLiteral("the shelf is empty")}));
        return;
    }
    (*coordinator)->runAction(action, settings, [done](const Action::Result& result) {
        if (!result) {
            done(std::unexpected(Error{Error::Kind::actionFailed, result.error().description()}));
            return;
        }
        if (const auto* link = std::get_if<ActionResultContext::Link>(&result->value)) {
            done(link->url.isLocalFile() ? link->url.toLocalFile() : link->url.toString(QUrl::FullyEncoded));
        } else if (const auto* message = std::get_if<ActionResultContext::Message>(&result->value)) {
            done(message->body);
        } else {
            done(QString());
        }
    });
}

std::expected<QStringList, VantropeServiceProvider::Error>
VantropeServiceProvider::removeItems(const QString& shelf, const QStringList& items)
{
    const auto coordinator = shelfFor(shelf);
    if (!coordinator) {
        return std::unexpected(coordinator.error());
    }
    if (items.isEmpty()) {
        return std::unexpected(Error{Error::Kind::invalidArguments, QStringLiteral("no item was named")});
    }
    const auto listed = listedItems(**coordinator);
    DraggableList chosen;
    QStringList removed;
    // Every name is checked before anything goes: a typo must not leave half of a removal done.
    for (const QString& item : items) {
        qsizetype found = -1;
        bool isNumber = false;
        const qlonglong position = item.toLongLong(&isNumber);
        if (isNumber) {
            if (position < 1 || position > listed.size()) {
                return std::unexpected(
                    Error{Error::Kind::unknownItem,
                          listed.isEmpty()
                              ? QStringLiteral("shelf %1 has no items, so it has no item %2")
                                    .arg((*coordinator)->id(), item)
                              : QStringLiteral("shelf %1 has no item %2; its items are numbered 1 to %3")
                                    .arg((*coordinator)->id(), item)
                                    .arg(listed.size())});
            }
            found = position - 1;
        } else {
            for (qsizetype index = 0; index < listed.size(); ++index) {
                if (listed[index].first == item) {
                    found = index;
                    break;
                }
            }
            if (found < 0) {
                return std::unexpected(
                    Error{Error::Kind::unknownItem,
                          QStringLiteral("shelf %1 holds no item \"%2\"").arg((*coordinator)->id(), item)});
            }
        }
        if (!chosen.contains(listed[found].second)) {
            chosen.append(listed[found].second);
            removed.append(listed[found].first);
        }
    }
    (*coordinator)->removeDraggables(chosen);
    return removed;
}

std::expected<QString, VantropeServiceProvider::Error>
VantropeServiceProvider::changeLabel(const QString& shelf, const LabelChange& change)
{
    const auto coordinator = shelfFor(shelf);
    if (!coordinator) {
        return std::unexpected(coordinator.error());
    }
    DragSessionLabel label = (*coordinator)->label();
    if (change.color) {
        const auto color = DragSessionLabelColor::identifier(*change.color);
        if (!color) {
            QStringList known;
            for (const auto identifier : DragSessionLabelColor::allIdentifiers()) {
                known.append(DragSessionLabelColor::rawValue(identifier));
            }
            return std::unexpected(Error{Error::Kind::invalidArguments,
                                         QStringLiteral("there is no colour \"%1\"; the colours are %2")
                                             .arg(*change.color, known.join(QStringLiteral(", ")))});
        }
        label.color = DragSessionLabelColor(*color);
        // Chosen on purpose, as in the settings: automatic recolouring leaves it alone.
        label.userDefined = true;
    }
    if (change.name) {
        label.name = *change.name;
    }
    if (change.pinned) {
        label.pinned = *change.pinned;
    }
    (*coordinator)->setLabel(label);
    return (*coordinator)->id();
}

WatchedFolderRequestHandler* VantropeServiceProvider::watchedFolders()
{
    return &m_coordinator.watchedFolderService();
}

SettingsRequestHandler* VantropeServiceProvider::settings()
{
    return &m_coordinator.settingsService();
}

} // namespace Vantrope
