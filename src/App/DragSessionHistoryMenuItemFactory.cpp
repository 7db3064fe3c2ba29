// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionHistoryMenuItemFactory.h"

#include "AppLogging.h"
#include "Domains/DragSession/PersistentDragSessionFetchController.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "Libraries/Core/Localized.h"
#include "Models/Draggable/DraggableFile.h"

#include <QFileInfo>
#include <QHash>
#include <QIcon>
#include <QMenu>
#include <QPixmap>

namespace Vantrope {

namespace {

// Marks the session submenus, whose picture is loaded when their parent opens.
const char* const sessionIdentifierProperty = "vantropeSessionIdentifier";

} // namespace

DragSessionHistoryMenuItemFactory::DragSessionHistoryMenuItemFactory(
    PersistentDragSessionFetchController& fetchController, SessionController& sessionController,
    QObject* parent)
    : QObject(parent)
    , m_fetchController(fetchController)
    , m_sessionController(sessionController)
{}

QString DragSessionHistoryMenuItemFactory::title(const PersistentDragSession& session)
{
    if (session.label() && session.label()->name && !session.label()->name->isEmpty()) {
        return *session.label()->name;
    }
    const QList<QUrl> urls = session.bookmarkUrls();
    if (urls.isEmpty()) {
        return Localized("menu.item.recent-windows.untitled", "Empty Shelf");
    }
    // The saved order, so the title names the shelf's first item as the user saw it. One pass over each
    // list: shelves of thousands of items are titled on every rebuild of the menu.
    QUrl firstUrl = urls.first();
    if (const auto& order = session.order(); order && !order->isEmpty()) {
        QHash<QString, qsizetype> position;
        position.reserve(order->size());
        for (qsizetype i = order->size() - 1; i >= 0; --i) {
            position.insert(order->at(i), i);
        }
        qsizetype best = order->size();
        for (const QUrl& url : urls) {
            const QString key =
                url.isLocalFile() ? DraggableFile::standardizedKey(url) : url.toString(QUrl::FullyEncoded);
            const qsizetype index = position.value(key, order->size());
            if (index < best) {
                best = index;
                firstUrl = url;
            }
        }
    }
    const QString first =
        firstUrl.isLocalFile() ? QFileInfo(firstUrl.toLocalFile()).fileName() : firstUrl.toDisplayString();
    if (urls.size() == 1) {
        return first;
    }
    return Localized("menu.item.recent-windows.title", "%1 and %n more", static_cast<int>(urls.size() - 1))
        .arg(first);
}

void DragSessionHistoryMenuItemFactory::addItems(QMenu& menu)
{
    const auto pinned = m_fetchController.fetch({.pinnedOnly = true, .unlimited = true});
    if (!pinned.isEmpty()) {
        menu.addSection(Localized("menu.item.pinned-windows.header", "Pinned Shelves"));
        for (const PersistentDragSessionPtr& session : pinned) {
            addSessionMenu(menu, session);
        }
        menu.addSeparator();
    }

    QList<PersistentDragSessionPtr> recent = m_fetchController.fetch({.unlimited = true});
    recent.removeIf([](const PersistentDragSessionPtr& session) { return session->isPinned(); });
    recent.resize(std::min<qsizetype>(recent.size(), PersistentDragSessionStore::maxNumberOfItems));

    QMenu* recentMenu = menu.addMenu(Localized("menu.item.recent-windows", "Recent Shelves"));
    recentMenu->setToolTipsVisible(true);
    recentMenu->setEnabled(!recent.isEmpty());
    for (const PersistentDragSessionPtr& session : recent) {
        addSessionMenu(*recentMenu, session);
    }
    recentMenu->addSeparator();
    QAction* clear = recentMenu->addAction(Localized("menu.item.recent-windows.clear-list", "Clear List"));
    clear->setToolTip(
        Localized("menu.item.recent-windows.clear-item-tip",
                  "Forgets every recent shelf, pinned ones included. The files stay where they are."));
    connect(clear, &QAction::triggered, this, &DragSessionHistoryMenuItemFactory::didSelectClearHistoryItem);
    connect(recentMenu, &QMenu::aboutToShow, this, [this, recentMenu] { menuWillOpen(*recentMenu); });
}

QMenu* DragSessionHistoryMenuItemFactory::addSessionMenu(QMenu& menu, const PersistentDragSessionPtr& session)
{
    QMenu* sessionMenu = menu.addMenu(title(*session));
    sessionMenu->setProperty(sessionIdentifierProperty, session->identifier());
    QAction* open = sessionMenu->addAction(Localized("menu.item.recent-windows.open", "Open Shelf"));
    open->setData(session->identifier());
    connect(open, &QAction::triggered, this, [this, open] { didSelectItem(*open); });
    QAction* remove = sessionMenu->addAction(
        Localized("menu.item.recent-windows.clear-item", "Remove from Recent Shelves"));
    remove->setData(session->identifier());
    connect(remove, &QAction::triggered, this, [this, remove] { didSelectDeleteMenuItem(*remove); });
    return sessionMenu;
}

void DragSessionHistoryMenuItemFactory::menuWillOpen(QMenu& menu)
{
    const FilesSnapshotController& snapshots = m_fetchController.sessionStore().snapshotController();
    for (QMenu* sessionMenu : menu.findChildren<QMenu*>(Qt::FindDirectChildrenOnly)) {
        const QString identifier = sessionMenu->property(sessionIdentifierProperty).toString();
        if (identifier.isEmpty() || !sessionMenu->icon().isNull()) {
            continue;
        }
        if (const auto image = snapshots.snapshot(identifier)) {
            sessionMenu->setIcon(QIcon(QPixmap::fromImage(*image)));
        }
    }
}

void DragSessionHistoryMenuItemFactory::didSelectItem(const QAction& action)
{
    const QString identifier = action.data().toString();
    Q_EMIT itemSelected();
    if (!identifier.isEmpty()) {
        m_sessionController.openDragSession(identifier);
    }
}

void DragSessionHistoryMenuItemFactory::didSelectDeleteMenuItem(const QAction& action)
{
    Q_EMIT itemSelected();
    const QVariant represented = action.data();
    if (!represented.isValid()) {
        qCWarning(lcApp) << "Attempted to delete session but menu item does not have a represented object";
        return;
    }
    if (represented.typeId() != QMetaType::QString) {
        qCWarning(lcApp) << "Attempted to delete session but the represented object is not what we expect";
        return;
    }
    m_fetchController.sessionStore().deleteSession(represented.toString());
}

void DragSessionHistoryMenuItemFactory::didSelectClearHistoryItem()
{
    Q_EMIT itemSelected();
    m_fetchController.sessionStore().clearSessions();
}

} // namespace Vantrope
