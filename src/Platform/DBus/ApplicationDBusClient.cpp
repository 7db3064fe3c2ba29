// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ApplicationDBusClient.h"

#include "ApplicationDBusInterface.h"
#include "SessionBusAddress.h"

#include <climits>
#include <limits>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDeadlineTimer>
#include <QFile>
#include <thread>

namespace Vantrope {

namespace {

using Error = ApplicationDBusClient::Error;

Error notRunning()
{
    return {Error::Kind::notRunning, QStringLiteral("Vantrope is not running; start it with \"vantrope\"")};
}

template<typename T> std::expected<void, Error> withoutValue(const std::expected<T, Error>& result)
{
    if (!result) {
        return std::unexpected(result.error());
    }
    return {};
}

} // namespace

ApplicationDBusClient::ApplicationDBusClient(std::chrono::milliseconds timeout)
    : m_timeout(timeout)
{
    qDBusRegisterMetaType<QList<QVariantMap>>();
    qDBusRegisterMetaType<QList<QByteArray>>();
}

bool ApplicationDBusClient::isAgentRunning() const
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() && bus.interface()->isServiceRegistered(ApplicationDBusInterface::serviceName());
}

std::expected<QVariantList, Error>
ApplicationDBusClient::call(const QString& method, const QVariantList& arguments,
                            std::optional<std::chrono::milliseconds> timeout) const
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return std::unexpected(
            Error{Error::Kind::noBus, QStringLiteral("cannot reach the D-Bus session bus (%1), so no running "
                                                     "Vantrope can be found")
                                          .arg(SessionBusAddress::describe())});
    }
    QDBusMessage message = QDBusMessage::createMethodCall(ApplicationDBusInterface::serviceName(),
                                                          ApplicationDBusInterface::objectPath(),
                                                          ApplicationDBusInterface::interfaceName(), method);
    message.setArguments(arguments);
    // Nothing may be started on the caller's behalf: "not running" is an answer.
    message.setAutoStartService(false);
    const std::chrono::milliseconds wait = timeout.value_or(m_timeout);
    // The bus takes milliseconds as an int; longer than that is as good as no limit.
    const QDBusMessage reply =
        bus.call(message, QDBus::Block, int(std::min<std::chrono::milliseconds::rep>(wait.count(), INT_MAX)));
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return reply.arguments();
    }
    const QString name = reply.errorName();
    if (name == QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown") ||
        name == QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner") ||
        name == QStringLiteral("org.freedesktop.DBus.Error.UnknownObject")) {
        return std::unexpected(notRunning());
    }
    if (name == QStringLiteral("org.freedesktop.DBus.Error.NoReply") ||
        name == QStringLiteral("org.freedesktop.DBus.Error.Timeout")) {
        // Also what a caller gets from an agent that died holding the name.
        if (!isAgentRunning()) {
            return std::unexpected(notRunning());
        }
        return std::unexpected(Error{
            Error::Kind::noAnswer, QStringLiteral("Vantrope is running but did not answer within %1 seconds")
                                       .arg(std::chrono::duration<double>(wait).count())});
    }
    if (name.startsWith(ApplicationDBusInterface::errorName(QString()))) {
        return std::unexpected(Error{Error::Kind::refused, reply.errorMessage()});
    }
    return std::unexpected(Error{
        Error::Kind::noAnswer, QStringLiteral("the call to Vantrope failed: %1").arg(reply.errorMessage())});
}

std::expected<QString, Error>
ApplicationDBusClient::callForString(const QString& method, const QVariantList& arguments,
                                     std::optional<std::chrono::milliseconds> timeout) const
{
    const auto values = call(method, arguments, timeout);
    if (!values) {
        return std::unexpected(values.error());
    }
    return values->isEmpty() ? QString() : values->first().toString();
}

std::expected<void, Error> ApplicationDBusClient::activate() const
{
    return withoutValue(call(QStringLiteral("Activate")));
}

std::expected<QString, Error> ApplicationDBusClient::addFiles(const QList<QByteArray>& paths) const
{
    return callForString(QStringLiteral("AddLocalFiles"), {QVariant::fromValue(paths)});
}

std::expected<QString, Error> ApplicationDBusClient::newShelf() const
{
    return callForString(QStringLiteral("NewShelf"), {});
}

std::expected<QString, Error> ApplicationDBusClient::openRecent(const QString& identifier) const
{
    return callForString(QStringLiteral("OpenRecent"), {identifier});
}

std::expected<void, Error> ApplicationDBusClient::closeAll() const
{
    return withoutValue(call(QStringLiteral("CloseAll")));
}

std::expected<void, Error> ApplicationDBusClient::quit() const
{
    if (auto called = call(QStringLiteral("Quit")); !called) {
        return std::unexpected(called.error());
    }
    const QDeadlineTimer deadline(m_timeout);
    while (isAgentRunning()) {
        if (deadline.hasExpired()) {
            return std::unexpected(Error{Error::Kind::noAnswer,
                                         QStringLiteral("Vantrope agreed to quit but is still running after "
                                                        "%1 seconds")
                                             .arg(std::chrono::duration<double>(m_timeout).count())});
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return {};
}

std::expected<QList<ShelfSummary>, Error> ApplicationDBusClient::shelves() const
{
    const auto values = call(QStringLiteral("ListShelves"));
    if (!values) {
        return std::unexpected(values.error());
    }
    QList<ShelfSummary> result;
    if (values->isEmpty()) {
        return result;
    }
    const auto entries = qdbus_cast<QList<QVariantMap>>(values->first());
    for (const QVariantMap& entry : entries) {
        ShelfSummary shelf;
        shelf.identifier = entry.value(QStringLiteral("identifier")).toString();
        if (entry.contains(QStringLiteral("name"))) {
            shelf.name = entry.value(QStringLiteral("name")).toString();
        }
        shelf.color = entry.value(QStringLiteral("color")).toString();
        shelf.pinned = entry.value(QStringLiteral("pinned")).toBool();
        shelf.items = entry.value(QStringLiteral("items")).toStringList();
        result.append(shelf);
    }
    return result;
}

std::expected<QList<ShelfActionSummary>, Error>
ApplicationDBusClient::shelfActions(const QString& shelf) const
{
    // Preparing the items of a large shelf reads every file once.
    const auto values =
        call(QStringLiteral("ListActions"), {shelf}, std::max(m_timeout, std::chrono::milliseconds(60000)));
    if (!values) {
        return std::unexpected(values.error());
    }
    QList<ShelfActionSummary> result;
    if (values->isEmpty()) {
        return result;
    }
    for (const QVariantMap& entry : qdbus_cast<QList<QVariantMap>>(values->first())) {
        QVariantList options;
        // Maps inside the answer arrive as D-Bus arguments still to be read.
        const QVariant rawOptions = entry.value(QStringLiteral("options"));
        const QVariantList optionList = rawOptions.canConvert<QDBusArgument>()
                                            ? qdbus_cast<QVariantList>(rawOptions)
                                            : rawOptions.toList();
        for (const QVariant& option : optionList) {
            QVariantMap map =
                option.canConvert<QDBusArgument>() ? qdbus_cast<QVariantMap>(option) : option.toMap();
            if (const QVariant choices = map.value(QStringLiteral("choices"));
                choices.canConvert<QDBusArgument>()) {
                map.insert(QStringLiteral("choices"), qdbus_cast<QStringList>(choices));
            }
            options.append(map);
        }
        result.append({entry.value(QStringLiteral("identifier")).toString(),
                       entry.value(QStringLiteral("title")).toString(), options});
    }
    return result;
}

std::expected<QString, Error> ApplicationDBusClient::runAction(const QString& shelf, const QString& action,
                                                               const QVariantMap& settings) const
{
    if (!settings.isEmpty()) {
        return callForString(QStringLiteral("RunActionWithSettings"), {shelf, action, settings},
                             std::chrono::milliseconds::max());
    }
    return callForString(QStringLiteral("RunAction"), {shelf, action}, std::chrono::milliseconds::max());
}

std::expected<QStringList, Error> ApplicationDBusClient::removeItems(const QString& shelf,
                                                                     const QStringList& items) const
{
    const auto values = call(QStringLiteral("RemoveItems"), {shelf, items});
    if (!values) {
        return std::unexpected(values.error());
    }
    return values->isEmpty() ? QStringList() : values->first().toStringList();
}

std::expected<QString, Error>
ApplicationDBusClient::changeLabel(const QString& shelf,
                                   const ApplicationRequestHandler::LabelChange& change) const
{
    QVariantMap changes;
    if (change.name) {
        changes.insert(QStringLiteral("name"), *change.name);
    }
    if (change.color) {
        changes.insert(QStringLiteral("color"), *change.color);
    }
    if (change.pinned) {
        changes.insert(QStringLiteral("pinned"), *change.pinned);
    }
    return callForString(QStringLiteral("SetLabel"), {shelf, changes});
}

// Watched folders

namespace {

WatchedFolderSummary folderFrom(const QVariantMap& entry)
{
    return {entry.value(QStringLiteral("identifier")).toString(),
            QFile::decodeName(entry.value(QStringLiteral("path")).toByteArray()),
            entry.value(QStringLiteral("status")).toString()};
}

std::expected<WatchedFolderSummary, Error> oneFolder(const std::expected<QVariantList, Error>& values)
{
    if (!values) {
        return std::unexpected(values.error());
    }
    if (values->isEmpty()) {
        return std::unexpected(
            Error{Error::Kind::noAnswer, QStringLiteral("Vantrope answered with nothing")});
    }
    return folderFrom(qdbus_cast<QVariantMap>(values->first()));
}

} // namespace

std::expected<QList<WatchedFolderSummary>, Error> ApplicationDBusClient::watchedFolders() const
{
    const auto values = call(QStringLiteral("ListFolders"));
    if (!values) {
        return std::unexpected(values.error());
    }
    QList<WatchedFolderSummary> result;
    if (!values->isEmpty()) {
        for (const QVariantMap& entry : qdbus_cast<QList<QVariantMap>>(values->first())) {
            result.append(folderFrom(entry));
        }
    }
    return result;
}

std::expected<WatchedFolderSummary, Error>
ApplicationDBusClient::addWatchedFolder(const QByteArray& path) const
{
    return oneFolder(call(QStringLiteral("AddFolder"), {path}));
}

std::expected<WatchedFolderSummary, Error>
ApplicationDBusClient::changeWatchedFolder(const QString& method, const QString& identifier) const
{
    return oneFolder(call(method, {identifier}));
}

// Settings

std::expected<QString, Error> ApplicationDBusClient::setting(const QString& name) const
{
    return callForString(QStringLiteral("GetSetting"), {name});
}

std::expected<QString, Error> ApplicationDBusClient::setSetting(const QString& name,
                                                                const QString& value) const
{
    return callForString(QStringLiteral("SetSetting"), {name, value});
}

} // namespace Vantrope
