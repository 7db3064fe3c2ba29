// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ApplicationDBusService.h"

#include "ApplicationDBusInterface.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QFile>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcDBus, "vantrope.dbus")

namespace Vantrope {

namespace {

QString errorSuffix(ApplicationRequestHandler::Error::Kind kind)
{
    using Kind = ApplicationRequestHandler::Error::Kind;
    switch (kind) {
    case Kind::missingFile:
        return QStringLiteral("MissingFile");
    case Kind::unreadableFile:
        return QStringLiteral("UnreadableFile");
    case Kind::unknownShelf:
        return QStringLiteral("UnknownShelf");
    case Kind::noRecentShelf:
        return QStringLiteral("NoRecentShelf");
    case Kind::noShelf:
        return QStringLiteral("NoShelf");
    case Kind::actionFailed:
        return QStringLiteral("ActionFailed");
    case Kind::unknownItem:
        return QStringLiteral("UnknownItem");
    case Kind::invalidArguments:
        break;
    }
    return QStringLiteral("InvalidArguments");
}

} // namespace

ApplicationDBusService::ApplicationDBusService(QObject* parent)
    : QObject(parent)
{
    qDBusRegisterMetaType<QList<QVariantMap>>();
    qDBusRegisterMetaType<QList<QByteArray>>();
}

ApplicationDBusService::~ApplicationDBusService()
{
    if (m_claimed) {
        QDBusConnection bus = QDBusConnection::sessionBus();
        bus.unregisterService(ApplicationDBusInterface::serviceName());
        bus.unregisterObject(ApplicationDBusInterface::objectPath());
    }
}

ApplicationDBusService::Claim ApplicationDBusService::claim()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return Claim::noBus;
    }
    // The object goes first, so that a caller who sees the name also finds the object.
    if (!bus.registerObject(ApplicationDBusInterface::objectPath(), this, QDBusConnection::ExportAllSlots)) {
        qCWarning(lcDBus) << "Could not export the application object:" << bus.lastError().message();
        return Claim::noBus;
    }
    if (!bus.registerService(ApplicationDBusInterface::serviceName())) {
        bus.unregisterObject(ApplicationDBusInterface::objectPath());
        return Claim::alreadyRunning;
    }
    m_claimed = true;
    return Claim::claimed;
}

bool ApplicationDBusService::ready()
{
    if (calledFromDBus() && message().isReplyRequired() &&
        !connection().interface()->isServiceRegistered(message().service())) {
        qCInfo(lcDBus).noquote() << "The caller of" << message().member()
                                 << "gave up waiting before it was handled; not doing it";
        setDelayedReply(true);
        return false;
    }
    if (m_handler) {
        return true;
    }
    if (calledFromDBus()) {
        sendErrorReply(ApplicationDBusInterface::errorName(QStringLiteral("NotReady")),
                       QStringLiteral("Vantrope is still starting; try again in a moment"));
    }
    return false;
}

QString ApplicationDBusService::refuse(const ApplicationRequestHandler::Error& error)
{
    if (calledFromDBus()) {
        sendErrorReply(ApplicationDBusInterface::errorName(errorSuffix(error.kind)), error.message);
    }
    return {};
}

void ApplicationDBusService::Activate()
{
    if (ready()) {
        m_handler->activate();
    }
}

QString ApplicationDBusService::AddFiles(const QStringList& paths)
{
    QList<QByteArray> encoded;
    for (const QString& path : paths) {
        encoded.append(QFile::encodeName(path));
    }
    return AddLocalFiles(encoded);
}

QString ApplicationDBusService::AddLocalFiles(const QList<QByteArray>& paths)
{
    if (!ready()) {
        return {};
    }
    const auto identifier = m_handler->addFiles(paths);
    return identifier ? *identifier : refuse(identifier.error());
}

QString ApplicationDBusService::NewShelf()
{
    return ready() ? m_handler->newShelf() : QString();
}

QString ApplicationDBusService::OpenRecent(const QString& identifier)
{
    if (!ready()) {
        return {};
    }
    const auto opened = m_handler->openRecent(identifier);
    return opened ? *opened : refuse(opened.error());
}

void ApplicationDBusService::CloseAll()
{
    if (!ready()) {
        return;
    }
    if (!calledFromDBus()) {
        m_handler->closeAll({});
        return;
    }
    // Answered once the shelves are saved, so that the caller's next request sees them closed.
    setDelayedReply(true);
    m_handler->closeAll(
        [connection = connection(), reply = message().createReply()] { connection.send(reply); });
}

void ApplicationDBusService::Quit()
{
    if (ready()) {
        m_handler->quit();
    }
}

QList<QVariantMap> ApplicationDBusService::ListShelves()
{
    QList<QVariantMap> result;
    if (!ready()) {
        return result;
    }
    for (const ShelfSummary& shelf : m_handler->shelves()) {
        QVariantMap entry{
            {QStringLiteral("identifier"), shelf.identifier},
            {QStringLiteral("color"), shelf.color},
            {QStringLiteral("pinned"), shelf.pinned},
            {QStringLiteral("items"), shelf.items},
        };
        if (shelf.name) {
            entry.insert(QStringLiteral("name"), *shelf.name);
        }
        result.append(entry);
    }
    return result;
}

QList<QVariantMap> ApplicationDBusService::ListActions(const QString& shelf)
{
    if (!ready() || !calledFromDBus()) {
        return {};
    }
    // Answered once the shelf's items are prepared, which takes a moment for a large shelf.
    setDelayedReply(true);
    m_handler->shelfActions(
        shelf,
        [connection = connection(), request = message()](
            const std::expected<QList<ShelfActionSummary>, ApplicationRequestHandler::Error>& actions) {
            if (!actions) {
                connection.send(request.createErrorReply(
                    ApplicationDBusInterface::errorName(errorSuffix(actions.error().kind)),
                    actions.error().message));
                return;
            }
            QList<QVariantMap> entries;
            for (const ShelfActionSummary& action : *actions) {
                QVariantMap entry{{QStringLiteral("identifier"), action.identifier},
                                  {QStringLiteral("title"), action.title}};
                if (!action.options.isEmpty()) {
                    entry.insert(QStringLiteral("options"), action.options);
                }
                entries.append(entry);
            }
            connection.send(request.createReply(QVariant::fromValue(entries)));
        });
    return {};
}

QString ApplicationDBusService::RunAction(const QString& shelf, const QString& action)
{
    return RunActionWithSettings(shelf, action, {});
}

QString ApplicationDBusService::RunActionWithSettings(const QString& shelf, const QString& action,
                                                      const QVariantMap& settings)
{
    if (!ready() || !calledFromDBus()) {
        return {};
    }
    setDelayedReply(true);
    m_handler->runAction(shelf, action, settings,
                         [connection = connection(), request = message()](
                             const std::expected<QString, ApplicationRequestHandler::Error>& result) {
                             if (!result) {
                                 connection.send(request.createErrorReply(
                                     ApplicationDBusInterface::errorName(errorSuffix(result.error().kind)),
                                     result.error().message));
                                 return;
                             }
                             connection.send(request.createReply(*result));
                         });
    return {};
}

QStringList ApplicationDBusService::RemoveItems(const QString& shelf, const QStringList& items)
{
    if (!ready()) {
        return {};
    }
    const auto removed = m_handler->removeItems(shelf, items);
    if (!removed) {
        refuse(removed.error());
        return {};
    }
    return *removed;
}

QString ApplicationDBusService::SetLabel(const QString& shelf, const QVariantMap& changes)
{
    if (!ready()) {
        return {};
    }
    ApplicationRequestHandler::LabelChange change;
    for (auto entry = changes.cbegin(); entry != changes.cend(); ++entry) {
        const QMetaType type = entry.value().metaType();
        if (entry.key() == QStringLiteral("name") && type.id() == QMetaType::QString) {
            change.name = entry.value().toString();
        } else if (entry.key() == QStringLiteral("color") && type.id() == QMetaType::QString) {
            change.color = entry.value().toString();
        } else if (entry.key() == QStringLiteral("pinned") && type.id() == QMetaType::Bool) {
            change.pinned = entry.value().toBool();
        } else {
            return refuse({ApplicationRequestHandler::Error::Kind::invalidArguments,
                           QStringLiteral("\"%1\" is no label setting of this type").arg(entry.key())});
        }
    }
    const auto changed = m_handler->changeLabel(shelf, change);
    return changed ? *changed : refuse(changed.error());
}

// Watched folders

namespace {

QVariantMap folderEntry(const WatchedFolderSummary& folder)
{
    return {{QStringLiteral("identifier"), folder.identifier},
            {QStringLiteral("path"), QFile::encodeName(folder.path)},
            {QStringLiteral("status"), folder.status}};
}

} // namespace

WatchedFolderRequestHandler* ApplicationDBusService::watchedFolderHandler()
{
    if (!ready()) {
        return nullptr;
    }
    WatchedFolderRequestHandler* folders = m_handler->watchedFolders();
    if (!folders && calledFromDBus()) {
        sendErrorReply(ApplicationDBusInterface::errorName(QStringLiteral("NotReady")),
                       QStringLiteral("this Vantrope does not watch folders"));
    }
    return folders;
}

QVariantMap ApplicationDBusService::folderReply(
    const std::expected<WatchedFolderSummary, ApplicationRequestHandler::Error>& folder)
{
    if (!folder) {
        refuse(folder.error());
        return {};
    }
    return folderEntry(*folder);
}

QList<QVariantMap> ApplicationDBusService::ListFolders()
{
    QList<QVariantMap> result;
    if (WatchedFolderRequestHandler* folders = watchedFolderHandler()) {
        for (const WatchedFolderSummary& folder : folders->watchedFolders()) {
            result.append(folderEntry(folder));
        }
    }
    return result;
}

QVariantMap ApplicationDBusService::AddFolder(const QByteArray& path)
{
    WatchedFolderRequestHandler* folders = watchedFolderHandler();
    return folders ? folderReply(folders->addWatchedFolder(path)) : QVariantMap();
}

QVariantMap ApplicationDBusService::RemoveFolder(const QString& identifier)
{
    WatchedFolderRequestHandler* folders = watchedFolderHandler();
    return folders ? folderReply(folders->removeWatchedFolder(identifier)) : QVariantMap();
}

QVariantMap ApplicationDBusService::PauseFolder(const QString& identifier)
{
    WatchedFolderRequestHandler* folders = watchedFolderHandler();
    return folders ? folderReply(folders->pauseWatchedFolder(identifier)) : QVariantMap();
}

QVariantMap ApplicationDBusService::ResumeFolder(const QString& identifier)
{
    WatchedFolderRequestHandler* folders = watchedFolderHandler();
    return folders ? folderReply(folders->resumeWatchedFolder(identifier)) : QVariantMap();
}

// Settings

QString ApplicationDBusService::GetSetting(const QString& name)
{
    if (!ready()) {
        return {};
    }
    SettingsRequestHandler* settings = m_handler->settings();
    if (!settings) {
        return refuse({ApplicationRequestHandler::Error::Kind::invalidArguments,
                       QStringLiteral("this Vantrope offers no settings")});
    }
    const auto value = settings->setting(name);
    return value ? *value : refuse(value.error());
}

QString ApplicationDBusService::SetSetting(const QString& name, const QString& value)
{
    if (!ready()) {
        return {};
    }
    SettingsRequestHandler* settings = m_handler->settings();
    if (!settings) {
        return refuse({ApplicationRequestHandler::Error::Kind::invalidArguments,
                       QStringLiteral("this Vantrope offers no settings")});
    }
    const auto stored = settings->setSetting(name, value);
    return stored ? *stored : refuse(stored.error());
}

} // namespace Vantrope
