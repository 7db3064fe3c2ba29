// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "NullDragMonitor.h"

#include "Domains/Activation/RecognizerLogging.h"

namespace Vantrope {

NullDragMonitor::NullDragMonitor(QString reason)
    : m_reason(std::move(reason))
{
    qCWarning(lcRecognizer).noquote() << "Drag gestures are unavailable:" << m_reason;
}

} // namespace Vantrope
