// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragSessionView.h"
#include "DragSessionWindow.h"

#include <memory>
#include <QSizeF>

namespace Vantrope {

// Makes the window and view of a new shelf: Qt widgets in the program, fakes in tests.
class DragSessionUserInterface {
public:
    struct Parts {
        std::unique_ptr<DragSessionWindow> window;
        std::unique_ptr<DragSessionView> view;
    };

    virtual ~DragSessionUserInterface() = default;
    virtual Parts makeShelf(DragSessionViewDelegate& delegate, const QSizeF& size) = 0;
};

} // namespace Vantrope
