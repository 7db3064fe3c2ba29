// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableText.h"

#include "DraggableContext.h"
#include "DraggableFile.h"
#include "DraggableLogging.h"
#include "DraggableStorage.h"
#include "Libraries/Core/FileImages.h"
#include "Libraries/Core/URL.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "RichTextConverter.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTextBoundaryFinder>
#include <QThreadPool>
#include <QUuid>

namespace Vantrope {

namespace {

constexpr int minimumLineLength = 4;
constexpr int maximumNameLength = 40;
// Forty characters can still be many bytes (a letter with a pile of combining marks is one
// character); file names end at 255 bytes.
constexpr qsizetype maximumNameBytes = 200;

bool isRTF(const QString& type)
{
    return type == PasteboardTypes::rtf || type == PasteboardTypes::applicationRTF;
}

bool isHTML(const QString& type)
{
    return type == PasteboardTypes::html;
}

QList<qsizetype> graphemeBoundaries(const QString& text)
{
    QList<qsizetype> boundaries;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    while (finder.toNextBoundary() > 0) {
        boundaries.append(finder.position());
    }
    return boundaries;
}

// Control characters and the direction overrides that can make a name read as something else.
bool isUnwantedInName(QChar c)
{
    const char16_t u = c.unicode();
    return c.category() == QChar::Other_Control || (u >= 0x202A && u <= 0x202E) ||
           (u >= 0x2066 && u <= 0x2069);
}

QString withinByteLimit(const QString& name)
{
    if (name.toUtf8().size() <= maximumNameBytes) {
        return name;
    }
    qsizetype cut = 0;
    for (const qsizetype boundary : graphemeBoundaries(name)) {
        if (name.left(boundary).toUtf8().size() > maximumNameBytes) {
            break;
        }
        cut = boundary;
    }
    if (cut == 0) {
        // A single character too long for a name: cut between code points instead.
        cut = name.size();
        while (cut > 0 &&
               (name.left(cut).toUtf8().size() > maximumNameBytes || name.at(cut - 1).isHighSurrogate())) {
            --cut;
        }
    }
    return name.left(cut);
}

} // namespace

QStringList DraggableText::readableTypes()
{
    return {PasteboardTypes::rtf,           PasteboardTypes::applicationRTF, PasteboardTypes::html,
            PasteboardTypes::utf8PlainText, PasteboardTypes::utf8String,     PasteboardTypes::plainText};
}

std::shared_ptr<DraggableText> DraggableText::fromPasteboard(const PasteboardItem& item, const QString& type,
                                                             const DraggableContext& context)
{
    const std::optional<QByteArray> data = item.data(type);
    if (!data) {
        qCWarning(lcDraggable) << "Initialized object is not data";
        return nullptr;
    }
    return make(*data, type, context.forcePlainText);
}

std::shared_ptr<DraggableText> DraggableText::make(const QByteArray& data, const QString& type,
                                                   bool forcePlainText)
{
    QByteArray bytes = data;
    QString kept = type;
    if (forcePlainText && (isRTF(type) || isHTML(type))) {
        if (const std::optional<QString> text = plainText(data, type)) {
            bytes = text->toUtf8();
            kept = PasteboardTypes::utf8PlainText;
        } else {
            qCWarning(lcDraggable) << "Rich text of type" << type << "could not be read; kept as it is";
        }
    }
    const QString name = baseName(plainText(bytes, kept)) + QLatin1Char('.') + fileExtension(kept);
    const std::optional<QString> path =
        DraggableStorage::filePath(ReservedTemporaryDirectory::textFiles, name, kept.toUtf8() + '\0' + bytes);
    if (!path) {
        return nullptr;
    }
    return std::make_shared<DraggableText>(Tag{}, bytes, kept, QUrl::fromLocalFile(*path));
}

std::optional<QString> DraggableText::plainText(const QByteArray& data, const QString& type)
{
    if (isRTF(type)) {
        return RichTextConverter::plainTextFromRTF(data);
    }
    if (isHTML(type)) {
        return RichTextConverter::plainTextFromHTML(data);
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(data);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    return text;
}

QString DraggableText::baseName(const std::optional<QString>& text)
{
    if (!text) {
        return QUuid::createUuid().toString(QUuid::WithoutBraces);
    }
    static const QRegularExpression newlines(QStringLiteral("\r\n|[\n\r\v\f\u0085\u2028\u2029]"));
    const QStringList lines = text->split(newlines);
    for (const QString& line : lines) {
        const QList<qsizetype> boundaries = graphemeBoundaries(line);
        if (boundaries.size() < minimumLineLength) {
            continue;
        }
        QString name =
            boundaries.size() > maximumNameLength ? line.left(boundaries.at(maximumNameLength - 1)) : line;
        name.remove(QLatin1Char('/'));
        name.removeIf(isUnwantedInName);
        name = withinByteLimit(name.trimmed()).trimmed();
        // "////" or a line of spaces leaves no name, and "." and ".." are not files.
        if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..")) {
            break;
        }
        return name;
    }
    return QStringLiteral("Text");
}

QString DraggableText::fileExtension(const QString& type)
{
    if (isRTF(type)) {
        return QStringLiteral("rtf");
    }
    if (isHTML(type)) {
        return QStringLiteral("html");
    }
    return QStringLiteral("txt");
}

DraggableText::DraggableText(Tag, const QByteArray& data, const QString& type, const QUrl& url)
    : m_data(data)
    , m_type(type)
    , m_url(url)
    , m_cacheKey(DraggableFile::standardizedKey(url))
{}

QImage DraggableText::image(bool iconOnly, const QSize& size) const
{
    const QString path = m_url.toLocalFile();
    return iconOnly ? FileImages::iconImage(path, size) : FileImages::previewImage(path, size);
}

void DraggableText::resolveUrl(ResolveCompletion completion)
{
    if (isWrittenToUrl()) {
        resolveOnMain(std::move(completion), m_url);
        return;
    }
    QThreadPool::globalInstance()->start([weak = weak_from_this(), completion = std::move(completion)] {
        const auto self = std::static_pointer_cast<DraggableText>(weak.lock());
        if (self) {
            self->resolveOnMain(completion, self->writeIfNeeded());
        }
    });
}

Draggable::ResolveResult DraggableText::writeIfNeeded()
{
    // Held across the write, so that a second request waits for the first instead of writing again.
    std::lock_guard lock(m_writeMutex);
    if (isWrittenToUrl()) {
        return m_url;
    }
    const QString path = m_url.toLocalFile();
    // The folder may have been cleared since the item was made.
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (const auto written = DraggableStorage::overwrite(path, m_data); !written) {
        qCWarning(lcDraggable).noquote() << "Failed to write text to" << path << written.error();
        return std::unexpected(DraggableError{DraggableError::Kind::failedWriting, written.error()});
    }
    m_systemFileNumber.setValue(URL::systemFileNumber(m_url));
    m_isWrittenToUrl.store(true, std::memory_order_release);
    return m_url;
}

PasteboardItem DraggableText::pasteboardItem() const
{
    PasteboardItem item;
    item.setData(PasteboardTypes::uriList, m_url.toEncoded());
    item.setData(m_type, m_data);
    return item;
}

QString DraggableText::description() const
{
    return QStringLiteral("<DraggableText: 0x%1, file: %2>")
        .arg(quintptr(this), 0, 16)
        .arg(QFileInfo(m_url.toLocalFile()).fileName());
}

} // namespace Vantrope
