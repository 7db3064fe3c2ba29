// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OperationChoiceStore.h"

#include "FileOperationsLogging.h"
#include "Libraries/Core/AtomicFileWriter.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

namespace Vantrope {

namespace {

QString recentKey()
{
    return QStringLiteral("_recentDestinations");
}

} // namespace

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
    QVariantMap values = m_choices.value(operationIdentifier);
    values.remove(recentKey());
    return values;
}

void OperationChoiceStore::remember(const QString& operationIdentifier, const QVariantMap& values)
{
    QVariantMap stored = values;
    // The recent folders live beside the values and survive a new choice.
    if (const QVariant recent = m_choices.value(operationIdentifier).value(recentKey()); recent.isValid()) {
        stored.insert(recentKey(), recent);
    }
    m_choices.insert(operationIdentifier, stored);
    save();
}

QStringList OperationChoiceStore::recentDestinations(const QString& operationIdentifier) const
{
    QStringList folders;
    for (const QString& folder : m_choices.value(operationIdentifier).value(recentKey()).toStringList()) {
        if (QFileInfo(folder).isDir()) {
            folders.append(folder);
        }
    }
    return folders;
}

void OperationChoiceStore::addRecentDestination(const QString& operationIdentifier, const QString& folder)
{
    QVariantMap& stored = m_choices[operationIdentifier];
    QStringList folders = stored.value(recentKey()).toStringList();
    folders.removeAll(folder);
    folders.prepend(folder);
    stored.insert(recentKey(), QStringList(folders.mid(0, recentDestinationsLimit)));
    save();
}

void OperationChoiceStore::save()
{
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
