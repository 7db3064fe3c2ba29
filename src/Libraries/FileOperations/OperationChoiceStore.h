// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QHash>
#include <QString>
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
    const QString& path() const { return m_path; }

private:
    void load();

    QString m_path;
    QHash<QString, QVariantMap> m_choices;
};

} // namespace Vantrope
