// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ItemStoreFile.h"

#include "Logging.h"
#include "URL.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonParseError>

namespace Vantrope {

namespace {

QString safeFileName(QString identifier)
{
    for (QChar& c : identifier) {
        if (c == QLatin1Char('/') || c.category() == QChar::Other_Control) {
            c = QLatin1Char('_');
        }
    }
    if (identifier.isEmpty() || identifier.startsWith(QLatin1Char('.'))) {
        identifier.prepend(QLatin1Char('_'));
    }
    return identifier;
}

} // namespace

ItemStoreFile::ItemStoreFile(const QString& identifier, const QString& directory)
    : m_identifier(identifier)
{
    QString folder = directory;
    if (folder.isEmpty()) {
        folder = URL::groupContainer().value_or(QDir::tempPath()) + QStringLiteral("/ItemStore");
    }
    m_path = QDir(folder).filePath(safeFileName(identifier) + QStringLiteral(".json"));
}

QJsonArray ItemStoreFile::load() const
{
    QFile file(m_path);
    if (!file.exists()) {
        return {};
    }
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcCore).noquote() << "Failed to read item store" << m_identifier << "at" << m_path << ":"
                                    << file.errorString();
        return {};
    }
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    file.close();
    if (error.error != QJsonParseError::NoError || !document.isArray()) {
        const QString reason =
            error.error != QJsonParseError::NoError ? error.errorString() : QStringLiteral("not a list");
        qCWarning(lcCore).noquote() << "Item store" << m_identifier
                                    << QStringLiteral("is unreadable (%1); starting empty").arg(reason);
        AtomicFileWriter::setAside(m_path);
        return {};
    }
    return document.array();
}

std::expected<void, AtomicFileWriter::Error> ItemStoreFile::save(const QJsonArray& items) const
{
    auto result = AtomicFileWriter::write(m_path, QJsonDocument(items).toJson(QJsonDocument::Indented));
    if (!result) {
        qCWarning(lcCore).noquote() << "Failed to save item store" << m_identifier << ":"
                                    << result.error().description();
    }
    return result;
}

} // namespace Vantrope
