// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Logging.h"

#include <cstdio>
#include <QDate>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QTextStream>

Q_LOGGING_CATEGORY(lcCore, "vantrope.core")

namespace Vantrope {

namespace {

struct FileSink {
    QMutex mutex;
    QString directory;
    QFile file;
};

FileSink& sink()
{
    static FileSink instance;
    return instance;
}

const char* levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return "debug";
    case QtInfoMsg:
        return "info";
    case QtWarningMsg:
        return "warning";
    case QtCriticalMsg:
        return "error";
    case QtFatalMsg:
        return "fatal";
    }
    return "debug";
}

QString logFileName()
{
    return QStringLiteral("vantrope-") + QDate::currentDate().toString(Qt::ISODate) + QStringLiteral(".log");
}

void writeToFile(const QString& line)
{
    FileSink& s = sink();
    QMutexLocker lock(&s.mutex);
    if (s.directory.isEmpty()) {
        return;
    }
    const QString wanted = QDir(s.directory).filePath(logFileName());
    if (s.file.fileName() != wanted || !s.file.isOpen()) {
        s.file.close();
        QDir().mkpath(s.directory);
        s.file.setFileName(wanted);
        // Log lines name the user's files.
        if (!s.file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text,
                         QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
            return;
        }
    }
    s.file.write(line.toUtf8());
    s.file.write("\n", 1);
    s.file.flush();
}

void messageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const QString line = Logging::formatLine(type, context, message);
    const QByteArray bytes = line.toLocal8Bit();
    std::fprintf(stderr, "%s\n", bytes.constData());
    std::fflush(stderr);
    writeToFile(line);
}

} // namespace

QString Logging::formatLine(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    QString line = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs) + QLatin1Char(' ') +
                   QLatin1String(levelName(type)) + QLatin1Char(' ');
    if (context.category && *context.category) {
        line += QLatin1String(context.category) + QStringLiteral(": ");
    }
    line += message;
    if (context.file) {
        line += QStringLiteral(" (") + QFileInfo(QString::fromUtf8(context.file)).fileName() +
                QLatin1Char(':') + QString::number(context.line);
        if (context.function) {
            line += QStringLiteral(", ") + QString::fromUtf8(context.function);
        }
        line += QLatin1Char(')');
    }
    return line;
}

void Logging::install()
{
    // Debug lines are for whoever asks for them with QT_LOGGING_RULES, which overrides this.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    qInstallMessageHandler(messageHandler);
}

void Logging::setFileLoggingDirectory(const QString& directory)
{
    FileSink& s = sink();
    QMutexLocker lock(&s.mutex);
    if (s.directory == directory) {
        return;
    }
    s.file.close();
    s.directory = directory;
}

QString Logging::fileLoggingDirectory()
{
    FileSink& s = sink();
    QMutexLocker lock(&s.mutex);
    return s.directory;
}

QString Logging::currentLogFilePath()
{
    const QString dir = fileLoggingDirectory();
    return dir.isEmpty() ? QString() : QDir(dir).filePath(logFileName());
}

} // namespace Vantrope
