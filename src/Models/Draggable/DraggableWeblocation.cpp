// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableWeblocation.h"

#include "DraggableLogging.h"
#include "DraggableStorage.h"
#include "DraggableValues.h"
#include "Libraries/Core/FileImages.h"
#include "Libraries/Core/URL.h"
#include "Models/Pasteboard/PasteboardTypes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace Vantrope {

namespace {

// A restored shelf may point at anything with the extension; nothing this large is a web location.
constexpr qint64 maximumWeblocSize = 1024 * 1024;

QString hostWithoutWww(const QUrl& address)
{
    return address.host().remove(QStringLiteral("www."));
}

std::optional<QUrl> webAddress(const QString& text)
{
    const QUrl address(text.trimmed(), QUrl::TolerantMode);
    if (!address.isValid() || address.isRelative()) {
        qCWarning(lcDraggable) << "Not a web address:" << text.left(200);
        return std::nullopt;
    }
    if (address.isLocalFile() || address.scheme() == QLatin1String("file")) {
        qCDebug(lcDraggable) << "A file URL is a file, not a web location:" << address;
        return std::nullopt;
    }
    return address;
}

} // namespace

QStringList DraggableWeblocation::readableTypes()
{
    return {PasteboardTypes::uriList, PasteboardTypes::mozillaURL, PasteboardTypes::netscapeURL};
}

std::shared_ptr<DraggableWeblocation>
DraggableWeblocation::fromPasteboard(const PasteboardItem& item, const QString& type, const DraggableContext&)
{
    const std::optional<QByteArray> data = item.data(type);
    // Only the Mozilla form comes as UTF-16; the others are UTF-8 by definition.
    const std::optional<QString> text = !data ? std::nullopt
                                        : type == PasteboardTypes::mozillaURL
                                            ? DraggableValues::decodeText(*data)
                                            : item.string(type);
    if (!text) {
        qCWarning(lcDraggable) << "Web address of type" << type << "is not a string";
        return nullptr;
    }
    // Mozilla's forms put the title on the line after the address.
    const QString line = type == PasteboardTypes::uriList ? DraggableValues::firstUriListEntry(*text)
                                                          : text->section(QLatin1Char('\n'), 0, 0);
    const std::optional<QUrl> address = webAddress(line);
    return address ? make(*address) : nullptr;
}

std::shared_ptr<DraggableWeblocation> DraggableWeblocation::make(const QUrl& address)
{
    if (!webAddress(address.toString(QUrl::FullyEncoded))) {
        return nullptr;
    }
    const std::optional<QString> path = DraggableStorage::filePath(ReservedTemporaryDirectory::textFiles,
                                                                   fileName(address), address.toEncoded());
    if (!path) {
        return nullptr;
    }
    if (const auto written = DraggableStorage::overwrite(*path, propertyList(address)); !written) {
        qCWarning(lcDraggable).noquote() << "Failed to write web location" << *path << written.error();
        return nullptr;
    }
    return std::make_shared<DraggableWeblocation>(Tag{}, QUrl::fromLocalFile(*path), address);
}

std::shared_ptr<DraggableWeblocation> DraggableWeblocation::fromWeblocFile(const QUrl& weblocUrl)
{
    QFile file(weblocUrl.toLocalFile());
    if (!weblocUrl.isLocalFile() || !file.open(QIODevice::ReadOnly)) {
        qCWarning(lcDraggable) << "Failed to open web location" << weblocUrl;
        return nullptr;
    }
    if (file.size() > maximumWeblocSize) {
        qCWarning(lcDraggable) << "Web location file is too large:" << weblocUrl;
        return nullptr;
    }
    const std::optional<QUrl> found = address(file.read(maximumWeblocSize));
    if (!found || !webAddress(found->toString(QUrl::FullyEncoded))) {
        qCWarning(lcDraggable) << "Web location file holds no web address:" << weblocUrl;
        return nullptr;
    }
    return std::make_shared<DraggableWeblocation>(
        Tag{}, QUrl::fromLocalFile(QDir::cleanPath(weblocUrl.toLocalFile())), *found);
}

QString DraggableWeblocation::fileName(const QUrl& address)
{
    QString name = hostWithoutWww(address);
    name.remove(QLatin1Char('/'));
    name.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..")) {
        name = QStringLiteral("Link");
    }
    return name + QStringLiteral(".webloc");
}

QByteArray DraggableWeblocation::propertyList(const QUrl& address)
{
    QByteArray bytes;
    QXmlStreamWriter writer(&bytes);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(-1);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("plist"));
    writer.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    writer.writeStartElement(QStringLiteral("dict"));
    writer.writeTextElement(QStringLiteral("key"), QStringLiteral("URL"));
    writer.writeTextElement(QStringLiteral("string"), address.toString(QUrl::FullyEncoded));
    writer.writeEndDocument();
    return bytes;
}

std::optional<QUrl> DraggableWeblocation::address(const QByteArray& propertyList)
{
    QXmlStreamReader reader(propertyList);
    if (!reader.readNextStartElement() || reader.name() != QLatin1String("plist") ||
        !reader.readNextStartElement() || reader.name() != QLatin1String("dict")) {
        return std::nullopt;
    }
    // Only the top dictionary's own "URL" entry counts, not one nested in another value.
    bool isUrlKey = false;
    while (reader.readNextStartElement()) {
        if (reader.name() == QLatin1String("key")) {
            isUrlKey = reader.readElementText() == QLatin1String("URL");
            continue;
        }
        if (isUrlKey && reader.name() == QLatin1String("string")) {
            const QUrl url(reader.readElementText().trimmed(), QUrl::TolerantMode);
            if (reader.hasError() || !url.isValid()) {
                return std::nullopt;
            }
            return url;
        }
        isUrlKey = false;
        reader.skipCurrentElement();
    }
    return std::nullopt;
}

DraggableWeblocation::DraggableWeblocation(Tag, const QUrl& weblocUrl, const QUrl& address)
    : m_weblocUrl(weblocUrl)
    , m_address(address)
    , m_cacheKey(address.adjusted(QUrl::NormalizePathSegments).toString(QUrl::FullyEncoded))
    , m_systemFileNumber(URL::systemFileNumber(weblocUrl))
{}

std::optional<QString> DraggableWeblocation::locationTitle() const
{
    const QString host = hostWithoutWww(m_address);
    return host.isEmpty() ? QFileInfo(m_weblocUrl.toLocalFile()).fileName() : host;
}

QImage DraggableWeblocation::image(bool iconOnly, const QSize& size) const
{
    const QString path = m_weblocUrl.toLocalFile();
    return iconOnly ? FileImages::iconImage(path, size) : FileImages::previewImage(path, size);
}

void DraggableWeblocation::resolveUrl(ResolveCompletion completion)
{
    resolveOnMain(std::move(completion), m_weblocUrl);
}

PasteboardItem DraggableWeblocation::pasteboardItem() const
{
    PasteboardItem item;
    const QByteArray address = m_address.toEncoded();
    item.setData(PasteboardTypes::uriList, address);
    item.setData(PasteboardTypes::utf8PlainText, address);
    return item;
}

QString DraggableWeblocation::description() const
{
    return QStringLiteral("<DraggableWeblocation: 0x%1, address: %2>")
        .arg(quintptr(this), 0, 16)
        .arg(m_address.toDisplayString());
}

} // namespace Vantrope
