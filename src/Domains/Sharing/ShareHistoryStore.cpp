// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ShareHistoryStore.h"

#include "Libraries/Core/AtomicFileWriter.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QStandardPaths>

namespace Vantrope {

namespace {

Q_LOGGING_CATEGORY(lcShareHistory, "vantrope.sharing")

} // namespace

ShareHistoryStore::ShareHistoryStore(const QString& filePath, QObject* parent)
    : QObject(parent)
    , m_filePath(filePath.isEmpty() ? defaultFilePath() : filePath)
{
    load();
}

QString ShareHistoryStore::defaultFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
           QStringLiteral("/.share_history");
}

void ShareHistoryStore::load()
{
    QFile file(m_filePath);
    if (!file.exists()) {
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcShareHistory).noquote()
            << "Could not read the share history at" << m_filePath << "-" << file.errorString();
        m_fileUnreadable = true;
        return;
    }
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !document.isArray()) {
        qCWarning(lcShareHistory).noquote()
            << "The share history at" << m_filePath << "is not a list of links; it starts empty";
        m_fileUnreadable = true;
        return;
    }
    qsizetype dropped = 0;
    for (const QJsonValue& value : document.array()) {
        const auto item = value.isObject() ? ShareHistoryItem::fromJson(value.toObject()) : std::nullopt;
        if (item && m_items.size() < maxNumberOfItems) {
            m_items.append(*item);
        } else {
            ++dropped;
        }
    }
    if (dropped > 0) {
        qCWarning(lcShareHistory).noquote()
            << "Skipped" << dropped << "unreadable entries of the share history";
    }
}

void ShareHistoryStore::save()
{
    if (m_fileUnreadable) {
        const QString aside = AtomicFileWriter::setAside(m_filePath);
        if (!aside.isEmpty()) {
            qCWarning(lcShareHistory).noquote() << "The unreadable share history was kept as" << aside;
        }
        m_fileUnreadable = false;
    }
    QJsonArray array;
    for (const ShareHistoryItem& item : std::as_const(m_items)) {
        array.append(item.toJson());
    }
    const auto written =
        AtomicFileWriter::write(m_filePath, QJsonDocument(array).toJson(QJsonDocument::Compact));
    if (!written) {
        // The list in memory stays right; the next change writes it again.
        qCWarning(lcShareHistory).noquote() << "Could not save the share history at" << m_filePath;
    }
}

void ShareHistoryStore::changed()
{
    save();
    QMetaObject::invokeMethod(this, &ShareHistoryStore::itemsChanged, Qt::QueuedConnection);
}

void ShareHistoryStore::add(const ShareHistoryItem& item)
{
    while (m_items.size() >= maxNumberOfItems) {
        m_items.removeLast();
    }
    m_items.prepend(item);
    changed();
}

bool ShareHistoryStore::remove(const ShareHistoryItem& item)
{
    const qsizetype index = m_items.indexOf(item);
    if (index < 0) {
        return false;
    }
    m_items.removeAt(index);
    changed();
    return true;
}

qsizetype ShareHistoryStore::removeIf(const std::function<bool(const ShareHistoryItem&)>& predicate)
{
    const qsizetype removed = m_items.removeIf(predicate);
    if (removed > 0) {
        changed();
    }
    return removed;
}

} // namespace Vantrope
