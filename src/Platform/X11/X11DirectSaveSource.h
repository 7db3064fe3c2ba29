// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QString>

namespace Vantrope {

// The source side of the X Direct Save protocol, for a drag of the program's own: the drag's source
// window names the file, the target (a file manager) writes where it wants it, and the source saves it
// there. Qt drags from the window that owns the drag selection, so that window carries the property.
class X11DirectSaveSource final {
public:
    X11DirectSaveSource() = delete;

    // Puts the suggested file name on the window of the drag in progress; false when no drag of this
    // program holds the drag selection.
    static bool announce(const QString& fileName);
    // The local path the target asked for, absent when it wrote none (or no file:// URI).
    static std::optional<QString> destination();
};

} // namespace Vantrope
