// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PersistentDragSessionFetchController.h"

#include "PersistentDragSessionStore.h"

#include <algorithm>

namespace Vantrope {

PersistentDragSessionFetchController::PersistentDragSessionFetchController(
    PersistentDragSessionStore& sessionStore, OpenSessionIdentifiers openSessionIdentifiers)
    : m_sessionStore(sessionStore)
    , m_openSessionIdentifiers(std::move(openSessionIdentifiers))
{}

QList<PersistentDragSessionPtr> PersistentDragSessionFetchController::fetch(const Request& request) const
{
    const QSet<QString> open = m_openSessionIdentifiers ? m_openSessionIdentifiers() : QSet<QString>();
    QList<PersistentDragSessionPtr> sessions = m_sessionStore.sessions();
    sessions.removeIf([&](const PersistentDragSessionPtr& session) {
        return open.contains(session->identifier()) || (request.pinnedOnly && !session->isPinned());
    });
    if (!request.unlimited) {
        sessions.resize(std::clamp<qsizetype>(request.limit, 0, sessions.size()));
    }
    return sessions;
}

} // namespace Vantrope
