// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "LocalFileName.h"

#include "Libraries/Core/ReservedTemporaryDirectory.h"

#include <cerrno>
#include <cstring>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QUuid>
#include <sys/stat.h>
#include <unistd.h>

Q_LOGGING_CATEGORY(lcFileName, "vantrope.filenames")

namespace Vantrope {

namespace {

constexpr char16_t firstEscape = 0xDC80;
constexpr char16_t lastEscape = 0xDCFF;

// The length of the well-formed UTF-8 sequence at `at`, or 0.
qsizetype sequenceLength(const QByteArray& bytes, qsizetype at)
{
    const auto byte = [&bytes](qsizetype i) { return static_cast<unsigned char>(bytes.at(i)); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) {
        return 1;
    }
    qsizetype length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        // No overlong forms, no surrogates.
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (at + length > bytes.size()) {
        return 0;
    }
    if (byte(at + 1) < low || byte(at + 1) > high) {
        return 0;
    }
    for (qsizetype i = 2; i < length; ++i) {
        if (byte(at + i) < 0x80 || byte(at + i) > 0xBF) {
            return 0;
        }
    }
    return length;
}

bool isEscape(const QString& name, qsizetype at)
{
    const char16_t unit = name.at(at).unicode();
    return unit >= firstEscape && unit <= lastEscape && (at == 0 || !name.at(at - 1).isHighSurrogate());
}

} // namespace

QString LocalFileName::decode(const QByteArray& bytes)
{
    QString name;
    name.reserve(bytes.size());
    qsizetype runStart = 0;
    qsizetype at = 0;
    while (at < bytes.size()) {
        const qsizetype length = sequenceLength(bytes, at);
        if (length > 0) {
            at += length;
            continue;
        }
        name += QString::fromUtf8(bytes.constData() + runStart, at - runStart);
        name += QChar(char16_t(firstEscape + static_cast<unsigned char>(bytes.at(at)) - 0x80));
        runStart = ++at;
    }
    name += QString::fromUtf8(bytes.constData() + runStart, bytes.size() - runStart);
    return name;
}

QByteArray LocalFileName::encode(const QString& name)
{
    QByteArray bytes;
    bytes.reserve(name.size());
    qsizetype runStart = 0;
    for (qsizetype at = 0; at < name.size(); ++at) {
        if (!isEscape(name, at)) {
            continue;
        }
        bytes += QStringView(name).mid(runStart, at - runStart).toUtf8();
        bytes += static_cast<char>(name.at(at).unicode() - firstEscape + 0x80);
        runStart = at + 1;
    }
    bytes += QStringView(name).mid(runStart).toUtf8();
    return bytes;
}

bool LocalFileName::isPlain(const QByteArray& bytes)
{
    return QFile::encodeName(QFile::decodeName(bytes)) == bytes;
}

QString LocalFileName::displayName(const QString& name)
{
    QString shown = name;
    for (qsizetype at = 0; at < shown.size(); ++at) {
        if (isEscape(shown, at)) {
            shown[at] = QChar::ReplacementCharacter;
        }
    }
    return shown;
}

std::optional<QString> LocalFileName::reachableName(const QString& name)
{
    const QByteArray bytes = encode(name);
    if (isPlain(bytes)) {
        return name;
    }
    const auto cache = TemporaryDirectories::temporaryDirectory();
    if (!cache) {
        return std::nullopt;
    }
    // One folder per link, so that two files whose names differ only in their stray bytes both fit.
    const QString links = *cache + QStringLiteral("/Links");
    const QString folder = links + QLatin1Char('/') + QUuid::createUuid().toString(QUuid::WithoutBraces);
    for (const QString& path : {links, folder}) {
        if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0 && errno != EEXIST) {
            qCWarning(lcFileName).noquote() << "Cannot create" << path << ":" << std::strerror(errno);
            return std::nullopt;
        }
    }
    const QString link = folder + QLatin1Char('/') + displayName(QFileInfo(name).fileName());
    if (::symlink(bytes.constData(), QFile::encodeName(link).constData()) != 0) {
        qCWarning(lcFileName).noquote()
            << "Cannot link" << link << "to" << displayName(name) << ":" << std::strerror(errno);
        return std::nullopt;
    }
    qCInfo(lcFileName).noquote() << "Reaching" << displayName(name) << "through" << link;
    return link;
}

} // namespace Vantrope
