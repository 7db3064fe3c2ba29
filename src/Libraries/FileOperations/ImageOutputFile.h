// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QString>

namespace Vantrope {

// A file an operation writes: first under a hidden temporary name in the output folder, then given its
// readable name only once complete, so a failed or cancelled write never leaves a file that looks done.
// The final name never replaces an existing file: "photo.jpg" becomes "photo 2.jpg", "photo 3.jpg"...
class ImageOutputFile final {
public:
    // `suffix` is the extension with its dot (".jpg"); writers such as vips pick the format from it.
    static std::expected<ImageOutputFile, QString> create(const QString& directory, const QString& suffix);

    ImageOutputFile(ImageOutputFile&& other) noexcept;
    ImageOutputFile& operator=(ImageOutputFile&& other) noexcept;
    ImageOutputFile(const ImageOutputFile&) = delete;
    ImageOutputFile& operator=(const ImageOutputFile&) = delete;
    ~ImageOutputFile(); // removes the temporary file unless committed

    QString temporaryPath() const { return m_temporaryPath; }

    // Moves the written file to "<baseName><suffix>" in the folder, or the first free numbered name, and
    // answers the path it has now.
    std::expected<QString, QString> commit(const QString& baseName);

    // "photo.tar.gz" -> "photo.tar", "photo.jpg" -> "photo": the name an output follows.
    static QString baseNameOf(const QString& path);

private:
    ImageOutputFile(QString directory, QString suffix, QString temporaryPath);

    QString m_directory;
    QString m_suffix;
    QString m_temporaryPath;
};

} // namespace Vantrope
