// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "UserOperation.h"

#include <expected>
#include <optional>
#include <QList>
#include <QObject>
#include <QString>

namespace Vantrope {

// The user's own operations, kept in order as a JSON array in the program's data folder. A file that
// cannot be read is set aside whole (nothing in it is lost) and `loadError()` says so in words.
class UserOperationStore final : public QObject {
    Q_OBJECT
public:
    // Empty means "user-operations.json" in the program's data folder.
    explicit UserOperationStore(QString path = {}, QObject* parent = nullptr);

    const QList<UserOperation>& operations() const { return m_operations; }
    std::optional<UserOperation> operation(const QUuid& identifier) const;
    const std::optional<QString>& loadError() const { return m_loadError; }
    const QString& path() const { return m_path; }

    // Each answers a sentence for the user when the change could not be kept.
    std::expected<void, QString> insert(const UserOperation& operation);
    std::expected<void, QString> update(const UserOperation& operation);
    std::expected<void, QString> remove(const QUuid& identifier);
    void reload();

Q_SIGNALS:
    void didInsertOperation(const QUuid& identifier);
    void didUpdateOperation(const QUuid& identifier);
    void didDeleteOperation(const QUuid& identifier);

private:
    std::expected<void, QString> save(const QList<UserOperation>& operations);

    QString m_path;
    QList<UserOperation> m_operations;
    std::optional<QString> m_loadError;
};

} // namespace Vantrope
