// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "UserOperationStore.h"

#include "FileOperationsLogging.h"
#include "Libraries/Core/AtomicFileWriter.h"
#include "Libraries/Core/Localized.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>

namespace Vantrope {

UserOperationStore::UserOperationStore(QString path, QObject* parent)
    : QObject(parent)
    , m_path(path.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                                  QStringLiteral("/vantrope/user-operations.json")
                            : std::move(path))
{
    reload();
}

std::optional<UserOperation> UserOperationStore::operation(const QUuid& identifier) const
{
    for (const UserOperation& operation : m_operations) {
        if (operation.identifier == identifier) {
            return operation;
        }
    }
    return std::nullopt;
}

void UserOperationStore::reload()
{
    m_operations.clear();
    m_loadError.reset();
    QFile file(m_path);
    if (!file.exists()) {
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        m_loadError = Localized("user-operations.error.unreadable", "Your operations could not be read: %1")
                          .arg(file.errorString());
        qCWarning(lcFileOperations).noquote() << *m_loadError;
        return;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    file.close();
    QString problem;
    QList<UserOperation> operations;
    if (!document.isArray()) {
        problem = parseError.error != QJsonParseError::NoError
                      ? parseError.errorString()
                      : Localized("user-operations.error.not-list", "not a list");
    } else {
        for (const QJsonValue& value : document.array()) {
            auto operation = UserOperation::fromJson(value.toObject());
            if (!operation) {
                problem = operation.error();
                break;
            }
            operations.append(*operation);
        }
    }
    if (!problem.isEmpty()) {
        const QString aside = AtomicFileWriter::setAside(m_path);
        m_loadError = Localized("user-operations.error.corrupt",
                                "Your operations could not be read (%1). The file was kept as \"%2\".")
                          .arg(problem, aside);
        qCWarning(lcFileOperations).noquote() << *m_loadError;
        return;
    }
    m_operations = operations;
}

std::expected<void, QString> UserOperationStore::save(const QList<UserOperation>& operations)
{
    QJsonArray array;
    for (const UserOperation& operation : operations) {
        array.append(operation.toJson());
    }
    if (const auto written = AtomicFileWriter::write(m_path, QJsonDocument(array).toJson()); !written) {
        return std::unexpected(written.error().description());
    }
    m_operations = operations;
    return {};
}

std::expected<void, QString> UserOperationStore::insert(const UserOperation& operation)
{
    if (this->operation(operation.identifier)) {
        return update(operation);
    }
    QList<UserOperation> operations = m_operations;
    operations.append(operation);
    if (auto saved = save(operations); !saved) {
        return saved;
    }
    Q_EMIT didInsertOperation(operation.identifier);
    return {};
}

std::expected<void, QString> UserOperationStore::update(const UserOperation& operation)
{
    QList<UserOperation> operations = m_operations;
    const auto found = std::find_if(operations.begin(), operations.end(), [&](const UserOperation& each) {
        return each.identifier == operation.identifier;
    });
    if (found == operations.end()) {
        return std::unexpected(Localized("user-operations.error.unknown", "There is no such operation."));
    }
    *found = operation;
    if (auto saved = save(operations); !saved) {
        return saved;
    }
    Q_EMIT didUpdateOperation(operation.identifier);
    return {};
}

std::expected<void, QString> UserOperationStore::remove(const QUuid& identifier)
{
    QList<UserOperation> operations = m_operations;
    const auto removed =
        operations.removeIf([&](const UserOperation& each) { return each.identifier == identifier; });
    if (removed == 0) {
        return std::unexpected(Localized("user-operations.error.unknown", "There is no such operation."));
    }
    if (auto saved = save(operations); !saved) {
        return saved;
    }
    Q_EMIT didDeleteOperation(identifier);
    return {};
}

} // namespace Vantrope
