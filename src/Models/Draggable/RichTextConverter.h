// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QByteArray>
#include <QString>

namespace Vantrope {

// The plain text of rich text, for naming text files and for keeping rich text as plain text.
class RichTextConverter final {
public:
    // Qt reads no RTF, so this is a reader of its own: groups and control words are taken apart,
    // destinations that hold no body text (fonts, colours, pictures, ignorable "\*" groups) are
    // dropped, and escapes become characters (Windows-1252 for "\'hh", UTF-16 for "\u").
    // Absent when the bytes do not start as RTF.
    static std::optional<QString> plainTextFromRTF(const QByteArray& rtf);

    // Through Qt's HTML reader; UTF-8 or UTF-16 as browsers send it. Absent when undecodable.
    static std::optional<QString> plainTextFromHTML(const QByteArray& html);
};

} // namespace Vantrope
