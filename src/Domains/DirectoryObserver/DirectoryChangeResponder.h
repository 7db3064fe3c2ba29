// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DirectoryObserverItem.h"

#include <QList>
#include <QUrl>

namespace Vantrope {

// A level in the tree of a watched folder: the folder's `DirectoryObserver` at the top, a
// `SubdirectoryObserver` for each directory observed below it. Reports travel upward.
class DirectoryChangeResponder {
public:
    virtual ~DirectoryChangeResponder() = default;

    virtual QUrl url() const = 0;
    virtual QList<DirectoryChangeResponder*> childResponders() const = 0;
    virtual void start() = 0;
    virtual void stop() = 0;
    // May one more directory below be observed?
    virtual bool shouldObserve(const QUrl& url) = 0;
    virtual void didStartResponder(DirectoryChangeResponder* child) = 0;
    virtual void didStopResponder(DirectoryChangeResponder* child) = 0;
    // Items that reached this level: new ones, or (`removed`) an observed directory that has gone.
    virtual bool handle(const QList<DirectoryObserverItem>& items, bool removed) = 0;

    // Everything below, depth first: each child's own descendants, then the child.
    QList<DirectoryChangeResponder*> descendants() const;
};

} // namespace Vantrope
