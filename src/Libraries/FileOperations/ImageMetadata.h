// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QList>
#include <QString>
#include <utility>

namespace Vantrope {

// The metadata in image files, through exiv2: removed in place without touching the image data (a JPEG's
// compressed scans stay byte for byte), and described for a file's information.
class ImageMetadata final {
public:
    enum class Removal {
        all, // EXIF, IPTC, XMP and comments; the orientation and the colour profile stay, as they change how
             // it looks
        location, // GPS tags and the place names of IPTC and XMP
    };

    // Whether metadata can be removed from files like `path` (JPEG, PNG, WebP).
    static bool canStrip(const QString& path);

    // Removes metadata from the file at `path`, rewriting only its metadata. Answers the reason on failure.
    static std::expected<void, QString> strip(const QString& path, Removal removal);

    // Title and value rows: dimensions, camera, lens, date taken, exposure, location; empty when the file
    // cannot be read.
    static QList<std::pair<QString, QString>> describe(const QString& path);
};

} // namespace Vantrope
