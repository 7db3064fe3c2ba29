// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QList>
#include <QString>
#include <QStringList>

namespace Vantrope {

// The built-in operations on a shelf's files. The raw values are stored (instant actions, history) and
// must not change.
class FileOperationType final {
public:
    enum Value : int {
        imageResize = 1,
        imageConvert = 2,
        imageCompress = 3,
        imageRemoveMetadata = 4,
        imageStitch = 5,
        imageTextRecognition = 6,
        imagesToPdf = 7,
        setWallpaper = 8,
        copyTextContent = 9,
        getInfo = 12,
        rename = 13,
        batchRename = 14,
        zip = 15,
        copyPath = 16,
        copyTo = 17,
        moveTo = 18,
        moveToTrash = 19,
    };

    constexpr FileOperationType(Value value)
        : m_value(value)
    {}

    constexpr Value value() const { return m_value; }
    constexpr int rawValue() const { return int(m_value); }
    constexpr bool operator==(const FileOperationType&) const = default;

    static QList<FileOperationType> all();
    static std::optional<FileOperationType> fromRawValue(int rawValue);
    // Also accepts the identifier "operationRename" for both renames.
    static std::optional<FileOperationType> fromIdentifier(const QString& identifier);

    // "operationImageResize", "operationZip"...; what instant actions, search and the command line use.
    QString identifier() const;
    QString title() const;
    // A freedesktop icon name.
    QString iconName() const;
    // Further words the search matches besides the title.
    QStringList keywords() const;

    // Whether the operation can work on files of these MIME types (one per file, in order; folders are
    // "inode/directory"). Counts matter too: rename takes one item, batch rename two or more.
    bool canPerform(const QStringList& mimeTypes) const;
    // The operations that write their results into the output folder rather than touching the originals.
    bool isImageOperation() const;

private:
    Value m_value;
};

} // namespace Vantrope
