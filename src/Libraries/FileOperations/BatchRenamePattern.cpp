// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "BatchRenamePattern.h"

#include "Libraries/Core/Localized.h"

#include <QFileInfo>
#include <QSet>

namespace Vantrope {

namespace {

// "archive.tar.gz" keeps ".tar.gz"; a leading dot (".bashrc") is part of the name, not an extension.
std::pair<QString, QString> splitExtension(const QString& fileName)
{
    static const QStringList doubleExtensions{QStringLiteral(".tar.gz"), QStringLiteral(".tar.bz2"),
                                              QStringLiteral(".tar.xz"), QStringLiteral(".tar.zst")};
    for (const QString& extension : doubleExtensions) {
        if (fileName.size() > extension.size() && fileName.endsWith(extension, Qt::CaseInsensitive)) {
            return {fileName.chopped(extension.size()), fileName.right(extension.size())};
        }
    }
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0) {
        return {fileName, QString()};
    }
    return {fileName.left(dot), fileName.mid(dot)};
}

bool isValidFileName(const QString& name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QChar(0)) && name.toUtf8().size() <= 255;
}

} // namespace

QString BatchRenamePattern::Error::description() const
{
    switch (kind) {
    case Kind::empty:
        return Localized("batch-rename.error.empty", "The pattern gives an empty name.");
    case Kind::invalidName:
        return Localized("batch-rename.error.invalid-name", "\"%1\" cannot be a file name.").arg(name);
    case Kind::duplicateNames:
        return Localized("batch-rename.error.duplicate-names",
                         "The pattern gives two items the name \"%1\"; add {counter} to it.")
            .arg(name);
    }
    return {};
}

BatchRenamePattern::BatchRenamePattern(QString pattern, int start, int digits)
    : m_pattern(std::move(pattern))
    , m_start(start)
    , m_digits(digits)
{}

QString BatchRenamePattern::newName(const QString& path, int index) const
{
    const QFileInfo info(path);
    return newName(info.fileName(), info.lastModified(), index);
}

QString BatchRenamePattern::newName(const QString& fileName, const QDateTime& modified, int index) const
{
    const auto [base, extension] = splitExtension(fileName);
    QString name = m_pattern;
    name.replace(QLatin1String("{name}"), base);
    name.replace(QLatin1String("{counter}"),
                 QStringLiteral("%1").arg(m_start + index, m_digits, 10, QLatin1Char('0')));
    name.replace(QLatin1String("{date}"), modified.date().toString(Qt::ISODate));
    name = name.trimmed();
    if (name.isEmpty()) {
        return {};
    }
    return name + extension;
}

std::expected<QStringList, BatchRenamePattern::Error>
BatchRenamePattern::newNames(const QStringList& paths) const
{
    QStringList names;
    QSet<QString> taken;
    for (qsizetype index = 0; index < paths.size(); ++index) {
        const QString name = newName(paths[index], int(index));
        if (name.isEmpty()) {
            return std::unexpected(Error{Error::Kind::empty, {}});
        }
        if (!isValidFileName(name)) {
            return std::unexpected(Error{Error::Kind::invalidName, name});
        }
        const QString key = QFileInfo(paths[index]).absolutePath() + QLatin1Char('/') + name;
        if (taken.contains(key)) {
            return std::unexpected(Error{Error::Kind::duplicateNames, name});
        }
        taken.insert(key);
        names.append(name);
    }
    return names;
}

} // namespace Vantrope
