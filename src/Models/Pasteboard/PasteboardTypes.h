// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope::PasteboardTypes {

// What a pasteboard item offers, as the MIME types X11 drags and the clipboard carry.

// One URL per item (file or web). An item with a "file" URL is the file-URL type.
inline const QString uriList = QStringLiteral("text/uri-list");
// Web addresses as browsers offer them: UTF-16 "url\ntitle" and its older plain-text form.
inline const QString mozillaURL = QStringLiteral("text/x-moz-url");
inline const QString netscapeURL = QStringLiteral("_NETSCAPE_URL");

inline const QString rtf = QStringLiteral("text/rtf");
inline const QString applicationRTF = QStringLiteral("application/rtf");
inline const QString html = QStringLiteral("text/html");
inline const QString utf8PlainText = QStringLiteral("text/plain;charset=utf-8");
inline const QString utf8String = QStringLiteral("UTF8_STRING");
inline const QString plainText = QStringLiteral("text/plain");

inline const QString png = QStringLiteral("image/png");
inline const QString jpeg = QStringLiteral("image/jpeg");
// A browser's image drag: Firefox marks it with one of these beside an image type.
inline const QString mozillaNativeImage = QStringLiteral("application/x-moz-nativeimage");
inline const QString mozillaFilePromiseURL = QStringLiteral("application/x-moz-file-promise-url");
inline const QString mozillaFilePromiseDestinationName =
    QStringLiteral("application/x-moz-file-promise-dest-filename");

// File promises: the X Direct Save protocol and KDE Ark's extraction service.
inline const QString directSave = QStringLiteral("XdndDirectSave0");
inline const QString arkExtractService = QStringLiteral("application/x-kde-ark-dndextract-service");
inline const QString arkExtractPath = QStringLiteral("application/x-kde-ark-dndextract-path");

} // namespace Vantrope::PasteboardTypes
