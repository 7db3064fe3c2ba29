// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ObservedDirectoryStore.h"

#include "DirectoryObserverLogging.h"
#include "Libraries/Core/AtomicFileWriter.h"
#include "Libraries/Core/FileBookmark.h"
#include "Libraries/Core/URL.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

namespace Vantrope {

namespace {

QString debugText(const ObservedDirectory& item)
{
    QString text;
    QDebug(&text) << item;
    return text;
}

} // namespace

ObservedDirectoryStore::ObservedDirectoryStore(const QString& filePath, bool requiresBookmarkDataResolving,
                                               QObject* parent)
    : QObject(parent)
    , m_filePath(filePath.isEmpty() ? defaultFilePath() : filePath)
    , m_requiresBookmarkDataResolving(requiresBookmarkDataResolving)
{
    loadFromDisk();
}

QString ObservedDirectoryStore::defaultFilePath()
{
    const std::optional<QString> container = URL::groupContainer();
    return container ? *container + QStringLiteral("/.observed_directories") : QString();
}

void ObservedDirectoryStore::loadFromDisk()
{
    QFile file(m_filePath);
    if (m_filePath.isEmpty() || !file.exists()) {
        qCInfo(lcDirectoryObserver) << "Attempted to load items from disk but we don't have any";
        return;
    }
    QList<ObservedDirectory> decoded;
    QString problem;
    if (!file.open(QIODevice::ReadOnly)) {
        problem = file.errorString();
    } else {
        QJsonParseError parseError{};
        const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
        if (parseError.error != QJsonParseError::NoError) {
            problem = parseError.errorString();
        } else if (!document.isArray()) {
            problem = QStringLiteral("not a list");
        } else {
            for (const QJsonValue& value : document.array()) {
                auto item = ObservedDirectory::fromJson(value);
                if (!item) {
                    problem = item.error().description();
                    break;
                }
                decoded.append(std::move(*item));
            }
        }
    }
    if (!problem.isEmpty()) {
        // One bad entry fails the whole file: saving the rest would quietly drop it.
        qCWarning(lcDirectoryObserver)
            << "Failed to decode observed directories loaded from disk, returning an empty array...";
        qCWarning(lcDirectoryObserver).noquote() << problem;
        m_keepFileAside = true;
        return;
    }

    m_items = securityScopedResolvedItems(decoded);
    if (m_items.isEmpty()) {
        qCInfo(lcDirectoryObserver) << "We have items on disk but we failed to load them";
    } else {
        qCInfo(lcDirectoryObserver).noquote() << QStringLiteral("Loaded ") + QString::number(m_items.size()) +
                                                     QStringLiteral(" items from disk");
    }
}

QList<ObservedDirectory>
ObservedDirectoryStore::securityScopedResolvedItems(const QList<ObservedDirectory>& items) const
{
    if (!m_requiresBookmarkDataResolving) {
        qCInfo(lcDirectoryObserver) << "Store will not resolve security scoped items";
        return items;
    }
    QList<ObservedDirectory> result;
    result.reserve(items.size());
    for (const ObservedDirectory& item : items) {
        const auto resolution = FileBookmark::resolve(item.bookmarkData);
        if (!resolution) {
            qCWarning(lcDirectoryObserver).noquote()
                << QStringLiteral("Failed to resolve bookmark data for item ") + debugText(item);
            result.append(item);
            continue;
        }
        // Access needs no opening on Linux; a stale bookmark is renewed only to prove it still can be.
        if (resolution->isStale && !FileBookmark::create(resolution->url)) {
            result.append(item);
            continue;
        }
        ObservedDirectory resolved = item;
        resolved.matchers.clear();
        resolved.lifecycle.isSecureScoped = true;
        result.append(resolved);
    }
    return result;
}

bool ObservedDirectoryStore::saveItem(const ObservedDirectory& item)
{
    qCDebug(lcDirectoryObserver).noquote() << QStringLiteral("Saving item ") + debugText(item);
    const auto found = std::find_if(m_items.begin(), m_items.end(), [&](const ObservedDirectory& stored) {
        return stored.identifier == item.identifier;
    });
    if (found != m_items.end()) {
        qCDebug(lcDirectoryObserver).noquote() << QStringLiteral("Changing store item at ") +
                                                      QString::number(found - m_items.begin()) +
                                                      QStringLiteral(" with ") + debugText(item);
        *found = item;
    } else {
        qCDebug(lcDirectoryObserver).noquote() << QStringLiteral("Inserting new item ") + debugText(item);
        m_items.append(item);
    }
    const bool saved = synchronize();
    postUpdate();
    return saved;
}

bool ObservedDirectoryStore::deleteItem(const ObservedDirectory& item)
{
    const auto found = std::find_if(m_items.begin(), m_items.end(), [&](const ObservedDirectory& stored) {
        return stored.identifier == item.identifier;
    });
    if (found == m_items.end()) {
        qCInfo(lcDirectoryObserver) << "Attempted to delete an item that does not exist";
        return false;
    }
    m_items.erase(found);
    const bool saved = synchronize();
    postUpdate();
    return saved;
}

bool ObservedDirectoryStore::synchronize()
{
    qCDebug(lcDirectoryObserver) << "Persisting items ...";
    if (m_filePath.isEmpty()) {
        qCWarning(lcDirectoryObserver).noquote()
            << QStringLiteral("Failed to save the encoded items. This is a serious error. Error: ") +
                   QStringLiteral("there is no folder to keep them in");
        return false;
    }
    QJsonArray array;
    for (const ObservedDirectory& item : std::as_const(m_items)) {
        array.append(item.toJson());
    }
    if (m_keepFileAside) {
        AtomicFileWriter::setAside(m_filePath);
        m_keepFileAside = false;
    }
    const auto written =
        AtomicFileWriter::write(m_filePath, QJsonDocument(array).toJson(QJsonDocument::Compact));
    if (!written) {
        qCWarning(lcDirectoryObserver).noquote()
            << QStringLiteral("Failed to save the encoded items. This is a serious error. Error: ") +
                   written.error().description();
        return false;
    }
    qCDebug(lcDirectoryObserver) << "Succesfully persisted items";
    return true;
}

void ObservedDirectoryStore::postUpdate()
{
    QMetaObject::invokeMethod(this, &ObservedDirectoryStore::didUpdateItems, Qt::QueuedConnection);
}

} // namespace Vantrope
