// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ApplicationScript.h"

#include <QList>
#include <QString>

namespace Vantrope {

// The scripts the user keeps in the safe scripts folder: regular executable files of their own that
// nobody else may change. Listed afresh on each call, in name order.
class ApplicationScriptsStore final {
public:
    // Empty means `safeApplicationScriptsDirectory()`.
    explicit ApplicationScriptsStore(QString directory = {});

    // $XDG_DATA_HOME/vantrope/scripts.
    static QString safeApplicationScriptsDirectory();

    QList<ApplicationScript> scripts() const;
    const QString& directory() const { return m_directory; }

private:
    QString m_directory;
};

} // namespace Vantrope
