// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionError.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

ActionError ActionError::underlying(const QString& description)
{
    ActionError error(Kind::underlying);
    error.m_underlyingDescription = description;
    return error;
}

QString ActionError::description() const
{
    switch (m_kind) {
    case Kind::underlying:
        if (!m_underlyingDescription.isEmpty()) {
            return m_underlyingDescription;
        }
        break;
    case Kind::canceled:
        return Localized("action.error.canceled", "Canceled by the user");
    case Kind::failedPreparation:
        return Localized("action.error.failed-preparation",
                         "One or more files cannot be used to perform this action");
    case Kind::failedGeneratingUrl:
        return Localized("action.error.failed-generating-url",
                         "One or more files cannot be used to perform this action");
    case Kind::exceededAllowedFileSize:
        return Localized("action.error.exceeded-allowed-file-size",
                         "The combined file size for the selected files exceeds the allowed file size");
    case Kind::exceededAllowedNumberOfFiles:
        return Localized("action.error.exceeded-allowed-number-of-files",
                         "The allowed number of files for this action are exceeded");
    case Kind::reserved:
        break;
    }
    // An underlying failure that brought no text of its own reads like any unforeseen one.
    return Localized("action.error.reserved", "Something went wrong while performing this action");
}

QDebug operator<<(QDebug debug, const ActionError& error)
{
    QDebugStateSaver saver(debug);
    debug.nospace() << "ActionError(" << int(error.kind()) << ", " << error.description() << ')';
    return debug;
}

} // namespace Vantrope
