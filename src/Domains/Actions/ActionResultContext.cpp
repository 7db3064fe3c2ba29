// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionResultContext.h"

namespace Vantrope {

QDebug operator<<(QDebug debug, const ActionResultContext& context)
{
    QDebugStateSaver saver(debug);
    debug.nospace();
    if (const auto* link = std::get_if<ActionResultContext::Link>(&context.value)) {
        debug << "link(" << link->url.toString() << ')';
    } else if (const auto* message = std::get_if<ActionResultContext::Message>(&context.value)) {
        debug << "message(" << message->body << ')';
    } else {
        debug << "none";
    }
    return debug;
}

} // namespace Vantrope
