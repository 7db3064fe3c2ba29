// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QByteArray>
#include <QUrl>

namespace Vantrope {

// A file bookmark with the location it last resolved to.
struct BookmarkURL {
    QByteArray bookmark;
    QUrl url;

    friend bool operator==(const BookmarkURL&, const BookmarkURL&) = default;
};

} // namespace Vantrope
