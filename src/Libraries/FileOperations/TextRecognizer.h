// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/FileOperations/OperationSetting.h"

#include <expected>
#include <QString>
#include <QStringList>

class QImage;

namespace Vantrope {

// Text recognition through tesseract, with the language data installed on this machine.
class TextRecognizer final {
public:
    // The folder of tesseract's language data: $TESSDATA_PREFIX, else the distribution's.
    static QString dataDirectory();
    // The languages installed there, as tesseract names them ("eng", "deu", "chi_sim"), sorted.
    static QStringList installedLanguages();
    // The language of the user's locale when its data is installed, else "eng" (or the first installed).
    static QString defaultLanguage();
    // The language's name in words ("English", "Deutsch"), or its code when unknown.
    static QString languageTitle(const QString& language);

    // Reads the text in `image` (grey, 8 bits a pixel), made at `dotsPerInch`. The context's cancel stops
    // it; its progress is reported from `progressStart` over `progressSpan`.
    static std::expected<QString, QString> recognize(const QImage& image, int dotsPerInch,
                                                     const QString& language,
                                                     const FileOperationContext& context,
                                                     double progressStart, double progressSpan,
                                                     const QString& title);
};

} // namespace Vantrope
