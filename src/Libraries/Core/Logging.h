// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QLoggingCategory>
#include <QString>

Q_DECLARE_LOGGING_CATEGORY(lcCore)

namespace Vantrope {

// The process-wide message handler: every line carries time, level, category, file, function and line.
// While a log folder is set the same lines also go to "<folder>/vantrope-<date>.log". Debug lines are
// off unless QT_LOGGING_RULES turns them on.
class Logging final {
public:
    static void install();
    static void setFileLoggingDirectory(const QString& directory);
    static QString fileLoggingDirectory();
    static QString currentLogFilePath();

    // The line as the handler writes it; public so that its shape can be checked.
    static QString formatLine(QtMsgType type, const QMessageLogContext& context, const QString& message);
};

} // namespace Vantrope
