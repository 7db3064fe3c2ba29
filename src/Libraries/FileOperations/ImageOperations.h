// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/FileOperations/OperationSetting.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <utility>

namespace Vantrope {

// The operations on images: each one describes the choices it asks for, then runs on a list of files
// with those choices resolved (every key present, typed). Outputs go into `outputDirectory` (created when
// missing) under names that follow the input's, never over an existing file: a taken name gets " 2",
// " 3"... One file that cannot be read fails alone, with its name in the outcome's failures; a cancelled
// run leaves none of its outputs behind. The functions block; run them off the GUI thread.
class ImageOperations final {
public:
    // "mode" (longSide, width, height, percent), "size" (pixels, or percent), "enlarge".
    static OperationSettings resizeSettings();
    static FileOperationOutcome resize(const QStringList& files, const QVariantMap& values,
                                       const QString& outputDirectory, const FileOperationContext& context);

    // "format" (the formats this machine can write), "quality" for the lossy ones.
    static OperationSettings convertSettings();
    static FileOperationOutcome convert(const QStringList& files, const QVariantMap& values,
                                        const QString& outputDirectory, const FileOperationContext& context);

    // "quality" (JPEG, WebP, HEIF/AVIF), "pngCompression"; the format stays.
    static OperationSettings compressSettings();
    static FileOperationOutcome compress(const QStringList& files, const QVariantMap& values,
                                         const QString& outputDirectory, const FileOperationContext& context);

    // "remove" (all, location). The image data is copied as it is, never encoded again.
    static OperationSettings stripMetadataSettings();
    static FileOperationOutcome stripMetadata(const QStringList& files, const QVariantMap& values,
                                              const QString& outputDirectory,
                                              const FileOperationContext& context);

    // "direction" (horizontal, vertical), "spacing", "background", "format"; one output.
    static OperationSettings stitchSettings();
    static FileOperationOutcome stitch(const QStringList& files, const QVariantMap& values,
                                       const QString& outputDirectory, const FileOperationContext& context);

    // "language" (of the language data installed); the text is in the outcome's text, no file is written.
    static OperationSettings recognizeTextSettings();
    static FileOperationOutcome recognizeText(const QStringList& files, const QVariantMap& values,
                                              const QString& outputDirectory,
                                              const FileOperationContext& context);

    // "pageSize" (fit, a4, letter); one page per image, one output.
    static OperationSettings imagesToPdfSettings();
    static FileOperationOutcome imagesToPdf(const QStringList& files, const QVariantMap& values,
                                            const QString& outputDirectory,
                                            const FileOperationContext& context);

    // Whether these operations can load images of `mimeType` on this machine.
    static bool canRead(const QString& mimeType);

    // Title and value rows for a file's information: dimensions, camera, date taken, location...
    static QList<std::pair<QString, QString>> describeMetadata(const QString& path);
};

} // namespace Vantrope
