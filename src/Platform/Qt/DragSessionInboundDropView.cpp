#include "DragSessionInboundDropView.h"

#include "Domains/DragSession/DraggablePasteboardReader.h"
#include "Domains/DragSession/DragSessionDropValidator.h"
#include "Domains/DragSession/DragSessionLogging.h"
#include "Libraries/Core/Clock.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Draggable/DraggableText.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "Models/Pasteboard/Pasteboard.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "Preferences/Preferences.h"

#include <atomic>
#include <QDragEnterEvent>
#include <QMimeData>
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

// Items refused by the duplicate rule and by the empty-file rule, for the message that names a count.
std::pair<int, int> rejectedCounts(const DraggableList& held, const DraggableList& dropped)
{
    QSet<QString> keys;
    for (const DraggablePtr& item : held) {
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
    return {existing, empty};
}

std::atomic<quint64> nextSequenceNumber = 0;

} // namespace

DragSessionInboundDropView::DragSessionInboundDropView(Preferences& preferences, Clock& clock,
                                                       QWidget* parent)
    : QWidget(parent)
    , m_preferences(preferences)
    , m_clock(clock)
{
    setAcceptDrops(true);
}

DragSessionInboundDropView::~DragSessionInboundDropView() = default;

Pasteboard DragSessionInboundDropView::pasteboard(const QMimeData& data,
                                                  const std::optional<QByteArray>& directSaveName)
{
    const QStringList formats = data.formats();
    const bool browserImage = isBrowserImage(formats);
    QMimeData copy;
    for (const QString& format : formats) {
        if (format == PasteboardTypes::directSave) {
            copy.setData(format, directSaveName.value_or(QByteArray()));
        } else if (format == PasteboardTypes::mozillaNativeImage ||
                   format == PasteboardTypes::mozillaFilePromiseURL) {
            // Only their presence marks the drag.
            copy.setData(format, QByteArray());
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

DraggableList DragSessionInboundDropView::read(const Pasteboard& pasteboard,
                                               const DropPromiseTransports::Factory& promiseFactory,
                                               bool forcePlainText)
{
    DraggableContext context;
    context.forcePlainText = forcePlainText;
    context.promiseTransportFactory = promiseFactory;
    return DraggablePasteboardReader::read(pasteboard, context);
}

bool DragSessionInboundDropView::accepts(const QMimeData& data) const
{
    const QStringList formats = data.formats();
    return std::any_of(formats.cbegin(), formats.cend(),
                       [](const QString& format) { return readableTypes().contains(format); }) ||
           isBrowserImage(formats);
}

void DragSessionInboundDropView::acceptAsCopy(QDropEvent* event) const
{
    // The shelf never takes the originals away from their owner: it keeps a reference, so a copy or a
    // link is what happens. Only a source that offers neither gets its own proposal, a move, which for
    // text means the source drops its copy and the shelf's is the one left.
    const Qt::DropActions possible = event->possibleActions();
    event->setDropAction(possible.testFlag(Qt::CopyAction)   ? Qt::CopyAction
                         : possible.testFlag(Qt::LinkAction) ? Qt::LinkAction
                                                             : event->proposedAction());
    event->accept();
}

void DragSessionInboundDropView::reset()
{
    m_draggingEntered = false;
    m_isEfficiencyModeActive = false;
}

void DragSessionInboundDropView::dragEnterEvent(QDragEnterEvent* event)
{
    reset();
    if (m_ownDragSource && event->source() == m_ownDragSource) {
        event->ignore();
        return;
    }
    if ((m_canDragHandler && !m_canDragHandler()) || m_isAsyncDragInProgress) {
        event->ignore();
        return;
    }
    const QMimeData* data = event->mimeData();
    if (!data || !accepts(*data)) {
        qCInfo(lcDragSession) << "Entered a non-draggable item";
        event->ignore();
        return;
    }
    m_draggingEntered = true;
    m_sequenceNumber = ++nextSequenceNumber;
    const qsizetype count = data->hasFormat(PasteboardTypes::uriList)
                                ? qMax<qsizetype>(1, uriCount(data->data(PasteboardTypes::uriList)))
                                : 1;
    m_isEfficiencyModeActive = count >= efficiencyModeThreshold;
    acceptAsCopy(event);
    Q_EMIT willBeginDragging();
}

void DragSessionInboundDropView::dragMoveEvent(QDragMoveEvent* event)
{
    if (m_draggingEntered) {
        acceptAsCopy(event);
    } else {
        event->ignore();
    }
}

void DragSessionInboundDropView::dragLeaveEvent(QDragLeaveEvent*)
{
    const bool wasEntered = m_draggingEntered;
    reset();
    if (wasEntered) {
        Q_EMIT exited();
    }
}

void DragSessionInboundDropView::dropEvent(QDropEvent* event)
{
    const QMimeData* data = event->mimeData();
    if (!m_draggingEntered || !data) {
        event->ignore();
        return;
    }
    m_draggingEntered = false;
    const quint64 sequenceNumber = m_sequenceNumber;
    if (m_isEfficiencyModeActive) {
        acceptAsCopy(event);
        readLargeDrop(data->data(PasteboardTypes::uriList), sequenceNumber);
        return;
    }
    m_isDragInProgress = true;
    const Pasteboard dropped = pasteboard(*data, DropPromiseTransports::directSaveName());
    const DraggableList draggables =
        read(dropped, DropPromiseTransports::forDrop(*data, sequenceNumber),
             m_preferences.value(PreferenceKeys::draggableTextForcesPlainText));
    const QPointer<DragSessionInboundDropView> self(this);
    const bool taken = finish(draggables, sequenceNumber);
    if (!self) {
        return;
    }
    // A refused drop goes back to its source, which shows it did not land.
    if (taken) {
        acceptAsCopy(event);
    } else {
        event->ignore();
    }
}

void DragSessionInboundDropView::readLargeDrop(const QByteArray& uriList, quint64 sequenceNumber)
{
    m_isDragInProgress = true;
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
                self->finish(files, sequenceNumber);
            }
        });
    });
}

bool DragSessionInboundDropView::finish(const DraggableList& draggables,
                                        std::optional<quint64> sequenceNumber)
{
    const QPointer<DragSessionInboundDropView> self(this);
    const DraggableList held = m_shelfItems ? m_shelfItems() : DraggableList();
    std::optional<DragError> error = DragSessionDropValidator::validateDrop(held, draggables);
    if (error) {
        const auto [existing, empty] = rejectedCounts(held, draggables);
        int rejected = error->rejection == DragError::RejectionType::existing ? existing : empty;
        if (error->kind == DragError::Kind::rejected && existing > 0 && empty > 0) {
            error = DragError::rejected(DragError::RejectionType::combined);
            rejected = existing + empty;
        }
        Q_EMIT failed(*error, rejected);
    } else {
        Q_EMIT concluded({draggables, sequenceNumber});
    }
    if (!self) {
        return !error;
    }
    m_isDragInProgress = false;
    m_isAsyncDragInProgress = false;
    m_isEfficiencyModeActive = false;
    Q_EMIT ended();
    return !error;
}

} // namespace Vantrope
