// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace Vantrope {

// The values last chosen for each operation, offered again the next time. Kept as one JSON object
// keyed by the operation's identifier; a file that cannot be read is set aside and the defaults apply.
class OperationChoiceStore final {
public:
    // Empty means "operation-choices.json" in the program's data folder.
    explicit OperationChoiceStore(QString path = {});

    QVariantMap lastChoice(const QString& operationIdentifier) const;
    void remember(const QString& operationIdentifier, const QVariantMap& values);
    // The folders last copied or moved to by that operation, most recent first, at most
    // `recentDestinationsLimit`; folders that are gone are left out.
    QStringList recentDestinations(const QString& operationIdentifier) const;
    void addRecentDestination(const QString& operationIdentifier, const QString& folder);
    static constexpr int recentDestinationsLimit = 3;
    const QString& path() const { return m_path; }

private:
    void load();
    void save();

    QString m_path;
    QHash<QString, QVariantMap> m_choices;
};

} // namespace Vantrope
