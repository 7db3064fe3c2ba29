// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ApplicationRequestHandler.h"
#include "SettingsRequestHandler.h"
#include "WatchedFolderRequestHandler.h"

#include <QDBusContext>
#include <QObject>
#include <QVariantMap>

namespace Vantrope {

// The running agent's interface on the session bus. Its bus name is also what keeps the agent single:
// the bus gives a name to one connection only and takes it back when that process ends in any way,
// so a killed agent leaves nothing behind that could block the next start.
class ApplicationDBusService final : public QObject, protected QDBusContext {
    Q_OBJECT
    // Must equal ApplicationDBusInterface::interfaceName(); moc wants a literal.
    Q_CLASSINFO("D-Bus Interface", "com.vantropeapp.Vantrope")

public:
    enum class Claim {
        claimed,
        // Another process of this session holds the name.
        alreadyRunning,
        noBus,
    };

    explicit ApplicationDBusService(QObject* parent = nullptr);
    ~ApplicationDBusService() override;

    // Exports the object, then takes the bus name.
    Claim claim();
    bool isClaimed() const { return m_claimed; }

    // Until a handler is set, requests are refused with "NotReady". Not owned.
    void setHandler(ApplicationRequestHandler* handler) { m_handler = handler; }

public Q_SLOTS:
    void Activate();
    QString AddFiles(const QStringList& paths);
    // The same for paths as the file system spells them, which need not be UTF-8.
    QString AddLocalFiles(const QList<QByteArray>& paths);
    QString NewShelf();
    QString OpenRecent(const QString& identifier);
    void CloseAll();
    void Quit();
    // Each shelf: "identifier" (s), "name" (s, absent without one), "color" (s), "pinned" (b), "items" (as).
    QList<QVariantMap> ListShelves();
    // Each action: "identifier" (s), "title" (s), and for a file operation with settings "options" (aa{sv}).
    // An empty shelf identifier means the shelf used last.
    QList<QVariantMap> ListActions(const QString& shelf);
    // Answers once the action has ended, with its link or message (maybe empty), or an error.
    QString RunAction(const QString& shelf, const QString& action);
    // The same with a file operation's settings, key to value as text ("width" -> "1600").
    QString RunActionWithSettings(const QString& shelf, const QString& action, const QVariantMap& settings);
    // Removes items (positions from 1 or the items as ListShelves gives them); returns those removed.
    QStringList RemoveItems(const QString& shelf, const QStringList& items);
    // Changes the label: "name" (s, empty to remove it), "color" (s), "pinned" (b); returns the shelf.
    QString SetLabel(const QString& shelf, const QVariantMap& changes);

    // Watched folders. Each: "identifier" (s), "path" (ay), "status" (s). Every change answers with the
    // folder as it now stands.
    QList<QVariantMap> ListFolders();
    QVariantMap AddFolder(const QByteArray& path);
    QVariantMap RemoveFolder(const QString& identifier);
    QVariantMap PauseFolder(const QString& identifier);
    QVariantMap ResumeFolder(const QString& identifier);

    // Preferences by their stored names; the value as text, as it stands after the call.
    QString GetSetting(const QString& name);
    QString SetSetting(const QString& name, const QString& value);

private:
    // False, and nothing to do, once the caller who waits for the answer has left the bus: a request
    // that sat in a stopped agent must not take effect after its caller reported a failure.
    bool ready();
    QString refuse(const ApplicationRequestHandler::Error& error);
    WatchedFolderRequestHandler* watchedFolderHandler();
    QVariantMap
    folderReply(const std::expected<WatchedFolderSummary, ApplicationRequestHandler::Error>& folder);

    ApplicationRequestHandler* m_handler = nullptr;
    bool m_claimed = false;
};

} // namespace Vantrope
