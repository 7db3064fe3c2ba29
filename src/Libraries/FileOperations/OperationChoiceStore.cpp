// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OperationChoiceStore.h"

#include "FileOperationsLogging.h"
#include "Libraries/Core/AtomicFileWriter.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

namespace Vantrope {

OperationChoiceStore::OperationChoiceStore(QString path)
    : m_path(path.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                                  QStringLiteral("/vantrope/operation-choices.json")
                            : std::move(path))
{
    load();
}

void OperationChoiceStore::load()
{
    QFile file(m_path);
    if (!file.exists()) {
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcFileOperations).noquote()
            << "Could not read the remembered choices:" << file.errorString();
        return;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    file.close();
    if (!document.isObject()) {
        const QString aside = AtomicFileWriter::setAside(m_path);
        qCWarning(lcFileOperations).noquote()
            << QStringLiteral("The remembered choices could not be read (%1), set aside as")
                   .arg(error.errorString())
            << aside;
        return;
    }
    const QJsonObject object = document.object();
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (it->isObject()) {
            m_choices.insert(it.key(), it->toObject().toVariantMap());
        }
    }
}

QVariantMap OperationChoiceStore::lastChoice(const QString& operationIdentifier) const
{
    return m_choices.value(operationIdentifier);
}

void OperationChoiceStore::remember(const QString& operationIdentifier, const QVariantMap& values)
{
    m_choices.insert(operationIdentifier, values);
    QJsonObject object;
    for (auto it = m_choices.cbegin(); it != m_choices.cend(); ++it) {
        object.insert(it.key(), QJsonObject::fromVariantMap(it.value()));
    }
    if (const auto written = AtomicFileWriter::write(m_path, QJsonDocument(object).toJson()); !written) {
        qCWarning(lcFileOperations).noquote()
            << "Could not keep the chosen values:" << written.error().description();
    }
}

} // namespace Vantrope
