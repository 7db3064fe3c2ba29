// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "PersistentDragSession.h"

#include <functional>
#include <QList>
#include <QSet>
#include <QString>

namespace Vantrope {

class PersistentDragSessionStore;

// What the recent-shelves menu and the hot keys offer: the store's sessions without the shelves that
// are open at this moment, since those are on the screen already.
class PersistentDragSessionFetchController final {
public:
    // The identifiers of the open shelves; SessionController answers from its coordinators.
    using OpenSessionIdentifiers = std::function<QSet<QString>()>;

    struct Request {
        bool pinnedOnly = false;
        // Cut to the first `limit` sessions unless `unlimited`; a negative limit gives none.
        int limit = 0;
        bool unlimited = false;
    };

    explicit PersistentDragSessionFetchController(PersistentDragSessionStore& sessionStore,
                                                  OpenSessionIdentifiers openSessionIdentifiers = {});

    QList<PersistentDragSessionPtr> fetch(const Request& request) const;

    PersistentDragSessionStore& sessionStore() const { return m_sessionStore; }

private:
    PersistentDragSessionStore& m_sessionStore;
    OpenSessionIdentifiers m_openSessionIdentifiers;
};

} // namespace Vantrope
