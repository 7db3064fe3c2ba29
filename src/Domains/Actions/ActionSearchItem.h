// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>
#include <QStringList>

namespace Vantrope {

// One entry of a shelf's type-to-search list; typed text is matched against title and keywords.
struct ActionSearchItem {
    QString identifier;
    QString title;
    QString iconName;
    QStringList keywords;

    bool operator==(const ActionSearchItem&) const = default;
};

} // namespace Vantrope
