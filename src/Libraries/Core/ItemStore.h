// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ItemStoreFile.h"
#include "Logging.h"

#include <concepts>
#include <optional>
#include <QJsonValue>
#include <QList>

namespace Vantrope {

template<typename T>
concept StorableItem = requires(const T item, const QJsonValue json)
{
    {
        item.toJson()
        } -> std::convertible_to<QJsonValue>;
    {
        T::fromJson(json)
        } -> std::convertible_to<std::optional<T>>;
};

// A persistent list of coded items under an identifier. Entries this version cannot decode are kept as
// they were and written back, so that nothing stored by a newer version is lost.
template<StorableItem T> class ItemStore final {
public:
    explicit ItemStore(const QString& identifier, const QString& directory = {})
        : m_file(identifier, directory)
    {
        reload();
    }

    QString identifier() const { return m_file.identifier(); }
    QString path() const { return m_file.path(); }
    const QList<T>& items() const { return m_items; }

    void reload()
    {
        m_items.clear();
        m_undecodable = QJsonArray();
        const QJsonArray stored = m_file.load();
        for (const QJsonValue& value : stored) {
            if (std::optional<T> item = T::fromJson(value)) {
                m_items.append(std::move(*item));
            } else {
                m_undecodable.append(value);
            }
        }
        if (!m_undecodable.isEmpty()) {
            qCWarning(lcCore) << "Item store" << identifier() << "kept" << m_undecodable.size()
                              << "entries it cannot read";
        }
    }

    bool setItems(QList<T> items)
    {
        m_items = std::move(items);
        return save();
    }

    bool append(T item)
    {
        m_items.append(std::move(item));
        return save();
    }

    template<typename Predicate> bool removeIf(Predicate predicate)
    {
        const auto removed = m_items.removeIf(predicate);
        return removed == 0 || save();
    }

private:
    bool save()
    {
        QJsonArray array;
        for (const T& item : std::as_const(m_items)) {
            array.append(item.toJson());
        }
        for (const QJsonValue& value : std::as_const(m_undecodable)) {
            array.append(value);
        }
        return m_file.save(array).has_value();
    }

    ItemStoreFile m_file;
    QList<T> m_items;
    QJsonArray m_undecodable;
};

} // namespace Vantrope
