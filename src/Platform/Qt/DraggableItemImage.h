// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/Draggable.h"

#include <QImage>
#include <QSize>

namespace Vantrope {

// The picture of one shelf item in the pile: a photo for an image file, a sheet with the first lines for
// a text, a card with the site for a link, the file type's icon otherwise.
class DraggableItemImage final {
public:
    enum class Style { photo, icon, card };

    struct Rendered {
        QImage image;
        Style style = Style::icon;
    };

    DraggableItemImage() = delete;

    // `size` in pixels. Main thread: icons come from the theme.
    static Rendered render(const Draggable& draggable, const QSize& size);
    // What the item is, in a word, for the shelf's title.
    static QString kindName(const Draggable& draggable);
    // The name under which the item is shown.
    static QString displayName(const Draggable& draggable);
};

} // namespace Vantrope
