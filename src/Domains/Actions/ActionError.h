// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QDebug>
#include <QString>

namespace Vantrope {

// Why an action did not run to its end. The description is the text the shelf shows.
class ActionError final {
public:
    enum class Kind {
        underlying,
        canceled,
        failedPreparation,
        failedGeneratingUrl,
        exceededAllowedFileSize,
        exceededAllowedNumberOfFiles,
        reserved,
    };

    ActionError(Kind kind)
        : m_kind(kind)
    {}
    // Another layer's failure, shown with that layer's own text.
    static ActionError underlying(const QString& description);

    Kind kind() const { return m_kind; }
    QString description() const;

    bool operator==(const ActionError&) const = default;

private:
    Kind m_kind;
    QString m_underlyingDescription;
};

QDebug operator<<(QDebug debug, const ActionError& error);

} // namespace Vantrope
