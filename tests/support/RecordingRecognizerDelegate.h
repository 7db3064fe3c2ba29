// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Activation/DragRecognizerDelegate.h"

#include <QList>

namespace Vantrope::Test {

// Remembers every beginning and end the drag recognizer reports.
class RecordingRecognizerDelegate final : public DragRecognizerDelegate {
public:
    void dragRecognizerDidBegin(std::optional<QPointF> location) override { began.append(location); }
    void dragRecognizerDidEnd(SessionCloseFilter filter) override { ended.append(filter); }

    QList<std::optional<QPointF>> began;
    QList<SessionCloseFilter> ended;
};

} // namespace Vantrope::Test
