// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/Clock.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/FilesSnapshotController.h"
#include "Libraries/Core/Throttler.h"
#include "PersistentDragSession.h"

#include <atomic>
#include <functional>
#include <memory>
#include <QList>
#include <QObject>
#include <QString>

namespace Vantrope {

// The recent shelves: pinned ones first, then the newest, at most `maxNumberOfItems` unpinned ones.
// The list lives on its own serial queue (synchronous reads, whole-list writes); changes run one after
// another on a utility queue, because a change composes a snapshot, and the file is written at most
// every half second.
class PersistentDragSessionStore final : public QObject {
    Q_OBJECT
public:
    using Completion = std::function<void()>;

    static constexpr int maxNumberOfItems = 10;
    static constexpr std::chrono::milliseconds saveDelay{500};

    // `filePath` empty for defaultFilePath(); `snapshotController` null for the default namespace with
    // three files at 180 by 180.
    PersistentDragSessionStore(const QString& filePath,
                               std::unique_ptr<FilesSnapshotController> snapshotController, Clock& clock,
                               QObject* parent = nullptr);
    // Writes a change that is still waiting for the throttle.
    ~PersistentDragSessionStore() override;

    // ".drag_sessions" in the application data folder, or in Documents when there is none.
    static QString defaultFilePath();

    QString filePath() const { return m_filePath; }
    FilesSnapshotController& snapshotController() const { return *m_snapshotController; }

    // Waits for the file to be read the first time.
    QList<PersistentDragSessionPtr> sessions() const;
    PersistentDragSessionPtr session(const QString& identifier) const;

    // Queued on the utility queue; the completion runs on the main queue afterwards.
    void addSession(PersistentDragSessionPtr session, Completion completion = {});
    void deleteSession(const QString& identifier, Completion completion = {});
    void clearSessions(Completion completion = {});

    // The same changes run on the calling thread, which must not be the main thread in the program:
    // snapshots are slow. Tests call them directly.
    void addSessionNow(const PersistentDragSessionPtr& session);
    void deleteSessionNow(const QString& identifier);
    void clearSessionsNow();

    // Waits for queued changes and writes the file at once, whatever the throttle holds.
    void flush();

    // The whole file, as the writer produces it; `decode` keeps every readable record.
    static QByteArray encode(const QList<PersistentDragSessionPtr>& sessions);
    struct Decoded {
        QList<PersistentDragSessionPtr> sessions;
        // Something in the file could not be read; it must be set aside before it is replaced.
        bool isDamaged = false;
    };
    static Decoded decode(const QByteArray& data);

Q_SIGNALS:
    // Posted on the main queue after every add, delete and clear.
    void sessionsChanged();

private:
    void load();
    void save();
    void replaceSessions(QList<PersistentDragSessionPtr> sessions);
    void scheduleSave();
    void postChange();
    void runChange(std::function<void()> change, Completion completion);

    QString m_filePath;
    std::unique_ptr<FilesSnapshotController> m_snapshotController;
    // Guards m_sessions: it is only touched from work running on this queue.
    mutable DispatchQueue m_sessionsQueue;
    QList<PersistentDragSessionPtr> m_sessions;
    DispatchQueue m_utilityQueue;
    std::atomic<bool> m_setAsideBeforeSave = false;
    Throttler m_saveThrottler;
};

} // namespace Vantrope
