// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionDropIntake.h"

#include "DraggablePasteboardReader.h"
#include "DragSessionDropValidator.h"
#include "DragSessionLogging.h"
#include "Libraries/Core/Clock.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Draggable/DraggableText.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Models/Pasteboard/PasteboardTypes.h"

#include <atomic>
#include <QMimeData>
#include <QPointer>
#include <QSet>

namespace Vantrope {

namespace {

const QString octetStream = QStringLiteral("application/octet-stream");

// The types some item kind reads. Images are read only for a browser's image drag, the one case in
// which they become items; their bytes are the largest a drag carries.
const QSet<QString>& readableTypes()
{
    static const QSet<QString> types = [] {
        QSet<QString> all;
        for (const QStringList& list : {DraggableFile::readableTypes(), DraggableWeblocation::readableTypes(),
                                        DraggableText::readableTypes(), DraggablePromise::readableTypes()}) {
            for (const QString& type : list) {
                all.insert(type);
            }
        }
        all.insert(PasteboardTypes::arkExtractPath);
        return all;
    }();
    return types;
}

bool isBrowserImage(const QStringList& formats)
{
    const bool hasImage = std::any_of(formats.cbegin(), formats.cend(), [](const QString& format) {
        return format.startsWith(QLatin1String("image/"));
    });
    return formats.contains(PasteboardTypes::mozillaNativeImage) ||
           (formats.contains(PasteboardTypes::mozillaFilePromiseURL) && hasImage);
}

bool isPlainText(const QString& format)
{
    return format == PasteboardTypes::plainText || format == PasteboardTypes::utf8PlainText ||
           format == PasteboardTypes::utf8String;
}

qsizetype uriCount(const QByteArray& uriList)
{
    qsizetype count = 0;
    for (const QByteArray& line : uriList.split('\n')) {
        const QByteArray trimmed = line.trimmed();
        if (!trimmed.isEmpty() && !trimmed.startsWith('#')) {
            ++count;
        }
    }
    return count;
}

// Process-wide, so that promises of different shelves never share a folder.
std::atomic<quint64> nextSequenceNumber = 0;

} // namespace

DragSessionDropIntake::DragSessionDropIntake(Clock& clock, QObject* parent)
    : QObject(parent)
    , m_clock(clock)
{}

DragSessionDropIntake::~DragSessionDropIntake() = default;

bool DragSessionDropIntake::accepts(const QStringList& formats)
{
    return std::any_of(formats.cbegin(), formats.cend(),
                       [](const QString& format) { return readableTypes().contains(format); }) ||
           isBrowserImage(formats);
}

Pasteboard DragSessionDropIntake::pasteboard(const QMimeData& data,
                                             const std::optional<QByteArray>& directSaveName)
{
    const QStringList formats = data.formats();
    const bool browserImage = isBrowserImage(formats);
    QMimeData copy;
    for (const QString& format : formats) {
        if (format == PasteboardTypes::directSave) {
            copy.setData(format, directSaveName.value_or(QByteArray()));
        } else if (format == PasteboardTypes::mozillaNativeImage) {
            // Only its presence marks the drag.
            copy.setData(format, QByteArray());
        } else if (format == PasteboardTypes::mozillaFilePromiseURL ||
                   format == PasteboardTypes::mozillaFilePromiseDestinationName) {
            // Where the picture came from and its name: a few bytes that name the file on the shelf.
            copy.setData(format, browserImage ? data.data(format) : QByteArray());
        } else if (format == octetStream) {
            // The body of a direct save; fetched only when the source asks for it.
        } else if (format.startsWith(QLatin1String("image/"))) {
            if (browserImage) {
                copy.setData(format, data.data(format));
            }
        } else if (isPlainText(format)) {
            // GTK sends plain text in the MIME canonical form, with CRLF line ends; a text file here has LF.
            copy.setData(format, data.data(format).replace("\r\n", "\n"));
        } else if (readableTypes().contains(format)) {
            copy.setData(format, data.data(format));
        }
    }
    return Pasteboard::fromMimeData(copy);
}

DraggableList DragSessionDropIntake::read(const Pasteboard& pasteboard,
                                          const PromiseTransportFactory& promiseFactory, bool forcePlainText)
{
    DraggableContext context;
    context.forcePlainText = forcePlainText;
    context.promiseTransportFactory = promiseFactory;
    return DraggablePasteboardReader::read(pasteboard, context);
}

std::optional<DragSessionDropIntake::Rejection>
DragSessionDropIntake::validate(const DraggableList& shelfItems, const DraggableList& dropped)
{
    const std::optional<DragError> error = DragSessionDropValidator::validateDrop(shelfItems, dropped);
    if (!error) {
        return std::nullopt;
    }
    // The counts the message names: duplicates and empty files refused.
    QSet<QString> keys;
    for (const DraggablePtr& item : shelfItems) {
        keys.insert(item->cacheKey());
    }
    int existing = 0;
    int empty = 0;
    for (const DraggablePtr& item : dropped) {
        if (keys.contains(item->cacheKey())) {
            ++existing;
        } else if (const auto* file = dynamic_cast<const DraggableFile*>(item.get());
                   file && file->size() == 0) {
            ++empty;
        }
    }
    if (error->kind == DragError::Kind::rejected && existing > 0 && empty > 0) {
        return Rejection{DragError::rejected(DragError::RejectionType::combined), existing + empty};
    }
    return Rejection{*error, error->rejection == DragError::RejectionType::existing ? existing : empty};
}

bool DragSessionDropIntake::enter(const QMimeData& data)
{
    m_draggingEntered = false;
    m_isEfficiencyModeActive = false;
    if (m_isAsyncDragInProgress) {
        return false;
    }
    if (!accepts(data.formats())) {
        qCInfo(lcDragSession) << "Entered a non-draggable item";
        return false;
    }
    m_draggingEntered = true;
    m_sequenceNumber = ++nextSequenceNumber;
    const qsizetype count = data.hasFormat(PasteboardTypes::uriList)
                                ? qMax<qsizetype>(1, uriCount(data.data(PasteboardTypes::uriList)))
                                : 1;
    m_isEfficiencyModeActive = count >= efficiencyModeThreshold;
    return true;
}

bool DragSessionDropIntake::exit()
{
    const bool wasEntered = m_draggingEntered;
    m_draggingEntered = false;
    m_isEfficiencyModeActive = false;
    return wasEntered;
}

std::optional<DragSessionDropIntake::Outcome>
DragSessionDropIntake::drop(const QMimeData& data, const std::optional<QByteArray>& directSaveName,
                            const std::function<PromiseTransportFactory(quint64)>& promiseFactory,
                            bool forcePlainText, const DraggableList& shelfItems)
{
    m_draggingEntered = false;
    m_isDragInProgress = true;
    const quint64 sequenceNumber = m_sequenceNumber;
    if (m_isEfficiencyModeActive) {
        readLargeDrop(data.data(PasteboardTypes::uriList), sequenceNumber);
        return std::nullopt;
    }
    const DraggableList draggables =
        read(pasteboard(data, directSaveName), promiseFactory ? promiseFactory(sequenceNumber) : nullptr,
             forcePlainText);
    if (auto rejection = validate(shelfItems, draggables)) {
        return Outcome{std::move(*rejection), sequenceNumber};
    }
    return Outcome{draggables, sequenceNumber};
}

void DragSessionDropIntake::finish()
{
    m_isDragInProgress = false;
    m_isAsyncDragInProgress = false;
    m_isEfficiencyModeActive = false;
}

void DragSessionDropIntake::readLargeDrop(const QByteArray& uriList, quint64 sequenceNumber)
{
    m_isAsyncDragInProgress = true;
    if (!m_queue) {
        m_queue = std::make_unique<DispatchQueue>(QStringLiteral("com.vantropeapp.mac.inbound-drop-view"));
    }
    m_clock.schedule(efficiencyModeReadDelay, *m_queue, [self = QPointer(this), uriList, sequenceNumber] {
        QMimeData data;
        data.setData(PasteboardTypes::uriList, uriList);
        DraggableList files = DraggablePasteboardReader::readFiles(Pasteboard::fromMimeData(data));
        DispatchQueue::main().async([self, files = std::move(files), sequenceNumber] {
            if (self) {
                Q_EMIT self->largeDropRead(files, sequenceNumber);
            }
        });
    });
}

} // namespace Vantrope
