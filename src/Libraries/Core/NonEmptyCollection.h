// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QList>

namespace Vantrope {

// A list that holds at least one element; there is no way to build or leave an empty one.
template<typename T> class NonEmptyCollection final {
public:
    explicit NonEmptyCollection(T first, QList<T> rest = {})
    {
        m_elements.reserve(rest.size() + 1);
        m_elements.append(std::move(first));
        m_elements.append(std::move(rest));
    }

    static std::optional<NonEmptyCollection> from(QList<T> elements)
    {
        if (elements.isEmpty()) {
            return std::nullopt;
        }
        T first = elements.takeFirst();
        return NonEmptyCollection(std::move(first), std::move(elements));
    }

    const T& first() const { return m_elements.first(); }
    const T& last() const { return m_elements.last(); }
    qsizetype size() const { return m_elements.size(); }
    const T& operator[](qsizetype index) const { return m_elements[index]; }
    const QList<T>& toList() const { return m_elements; }
    void append(T element) { m_elements.append(std::move(element)); }
    auto begin() const { return m_elements.cbegin(); }
    auto end() const { return m_elements.cend(); }

    bool operator==(const NonEmptyCollection&) const = default;

private:
    QList<T> m_elements;
};

} // namespace Vantrope
