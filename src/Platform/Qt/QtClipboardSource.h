// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Pasteboard/PasteboardSource.h"

#include <QObject>

namespace Vantrope {

// The clipboard (the CLIPBOARD selection) as a pasteboard. X11 keeps no change count, so every change
// Qt reports counts one.
class QtClipboardSource final : public QObject, public PasteboardSource {
    Q_OBJECT
public:
    explicit QtClipboardSource(QObject* parent = nullptr);

    int changeCount() const override { return m_changeCount; }
    Pasteboard pasteboard() const override;

private:
    int m_changeCount = 0;
};

} // namespace Vantrope
