// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "FileWatcher.h"

#include <functional>
#include <memory>
#include <QString>
#include <QUrl>

namespace Vantrope {

// Follows one file of a shelf and calls `onChange` when it is renamed, moved or deleted.
// `onChange` runs on the file watcher's thread.
class DraggableFileObserver final {
public:
    DraggableFileObserver(const QUrl& url, const QString& identifier, FileWatcher& watcher);

    QUrl url() const { return m_url; }
    QString identifier() const { return m_identifier; }
    bool hasSource() const { return m_watch != nullptr; }

    std::function<void()> onChange;

    // Starts following the file. When it cannot be followed the change is reported at once, so the
    // shelf learns where the file went, or that it is gone.
    void configure();
    void cancel();

private:
    QUrl m_url;
    QString m_identifier;
    FileWatcher& m_watcher;
    std::unique_ptr<FileWatcher::Watch> m_watch;
};

} // namespace Vantrope
