// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggablePromise.h"

#include "DraggableContext.h"
#include "DraggableFile.h"
#include "DraggableLogging.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/FileImages.h"
#include "Libraries/Core/Localized.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Libraries/Core/URL.h"
#include "Models/Pasteboard/PasteboardTypes.h"

#include <QDir>
#include <QFileInfo>
#include <QThreadPool>
#include <QUuid>

namespace Vantrope {

namespace {

using Kind = DraggablePromise::ReceivingState::Kind;

DraggablePromise::ReceivingState receivedState(const QUrl& url)
{
    return {Kind::received, url, {}};
}

DraggablePromise::ReceivingState errorState(const DraggableError& error)
{
    return {Kind::error, {}, error};
}

QString stateName(Kind kind)
{
    switch (kind) {
    case Kind::none:
        return QStringLiteral("none");
    case Kind::receiving:
        return QStringLiteral("receiving");
    case Kind::received:
        return QStringLiteral("received");
    case Kind::error:
        return QStringLiteral("error");
    }
    return {};
}

// Sequence numbers start again with every run, so they are made unique by a mark of this run.
const QString& runMark()
{
    static const QString mark = QUuid::createUuid().toString(QUuid::Id128).left(8);
    return mark;
}

// A source may answer any path: only an existing file inside the destination, also after symbolic
// links are followed, is taken.
std::optional<QUrl> checkedDelivery(const QUrl& url, const QString& destination)
{
    if (!url.isLocalFile()) {
        qCWarning(lcDraggable) << "Refused promised file that is not local:" << url;
        return std::nullopt;
    }
    const QString path = QDir::cleanPath(QFileInfo(url.toLocalFile()).absoluteFilePath());
    const QFileInfo info(path);
    if (!info.exists()) {
        qCWarning(lcDraggable) << "Promised file does not exist:" << path;
        return std::nullopt;
    }
    const QUrl folder = QUrl::fromLocalFile(QDir::cleanPath(destination));
    const QUrl canonicalFolder = QUrl::fromLocalFile(QFileInfo(destination).canonicalFilePath());
    const QUrl lexical = QUrl::fromLocalFile(path);
    const QUrl canonical = QUrl::fromLocalFile(info.canonicalFilePath());
    if (lexical == folder || canonical == canonicalFolder || !URL::isWithin(lexical, folder) ||
        !URL::isWithin(canonical, canonicalFolder)) {
        qCWarning(lcDraggable) << "Refused promised file outside its destination:" << path;
        return std::nullopt;
    }
    return lexical;
}

// Gathers the answers of a transport until each announced file has one or the source is done.
class Collector final {
public:
    using Outcome =
        std::function<void(DraggablePromise::ReceivingState, QList<std::shared_ptr<DraggableFile>>)>;

    Collector(QString destination, qsizetype expected, Outcome outcome)
        : m_destination(std::move(destination))
        , m_expected(expected)
        , m_outcome(std::move(outcome))
    {}

    void add(const FilePromiseTransport::FileResult& result)
    {
        QList<FilePromiseTransport::FileResult> results;
        {
            std::lock_guard lock(m_mutex);
            if (m_done) {
                return;
            }
            m_results.append(result);
            // A transport that announced no files says when it is done through `finish`.
            if (m_expected == 0 || m_results.size() < m_expected) {
                return;
            }
            m_done = true;
            results = m_results;
        }
        complete(results);
    }

    void finish()
    {
        QList<FilePromiseTransport::FileResult> results;
        {
            std::lock_guard lock(m_mutex);
            if (m_done) {
                return;
            }
            m_done = true;
            results = m_results;
        }
        complete(results);
    }

private:
    void complete(const QList<FilePromiseTransport::FileResult>& results)
    {
        QList<QUrl> urls;
        for (const auto& result : results) {
            if (!result) {
                qCWarning(lcDraggable).noquote() << "Promised file failed:" << result.error().description;
                continue;
            }
            if (const auto url = checkedDelivery(*result, m_destination)) {
                urls.append(*url);
            }
        }
        if (urls.isEmpty()) {
            m_outcome(errorState(DraggablePromise::missingReceivedFilesError()), {});
            return;
        }
        QList<std::shared_ptr<DraggableFile>> additional;
        for (qsizetype i = 1; i < urls.size(); ++i) {
            if (auto file = DraggableFile::make(urls.at(i))) {
                additional.append(std::move(file));
            }
        }
        qCInfo(lcDraggable) << "Promise succeeded";
        m_outcome(receivedState(urls.first()), std::move(additional));
    }

    const QString m_destination;
    const qsizetype m_expected;
    const Outcome m_outcome;
    std::mutex m_mutex;
    QList<FilePromiseTransport::FileResult> m_results;
    bool m_done = false;
};

} // namespace

QStringList DraggablePromise::readableTypes()
{
    return {PasteboardTypes::directSave, PasteboardTypes::arkExtractService};
}

std::shared_ptr<DraggablePromise> DraggablePromise::fromPasteboard(const PasteboardItem& item,
                                                                   const QString& type,
                                                                   const DraggableContext& context)
{
    std::unique_ptr<FilePromiseTransport> transport;
    if (item.hasType(type) && context.promiseTransportFactory) {
        transport = context.promiseTransportFactory(item);
    }
    if (!transport) {
        qCWarning(lcDraggable) << "No way to receive a promise of type" << type;
        return nullptr;
    }
    return make(std::move(transport));
}

std::shared_ptr<DraggablePromise> DraggablePromise::make(std::unique_ptr<FilePromiseTransport> transport)
{
    return std::make_shared<DraggablePromise>(Tag{}, std::move(transport), VantropePromise());
}

std::shared_ptr<DraggablePromise> DraggablePromise::make(VantropePromise vantropePromise)
{
    return std::make_shared<DraggablePromise>(Tag{}, nullptr, std::move(vantropePromise));
}

std::optional<QString> DraggablePromise::destinationDirectory(std::optional<quint64> draggingSequenceNumber)
{
    const std::optional<QString> promises = TemporaryDirectories::path(ReservedTemporaryDirectory::promises);
    if (!promises) {
        return std::nullopt;
    }
    const QString name = draggingSequenceNumber
                             ? runMark() + QLatin1Char('-') + QString::number(*draggingSequenceNumber)
                             : QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QString path = *promises + QLatin1Char('/') + name;
    if (!QDir().mkpath(path)) {
        qCWarning(lcDraggable) << "Could not create the promise destination" << path;
        return std::nullopt;
    }
    return path;
}

DraggableError DraggablePromise::missingReceivedFilesError()
{
    return {DraggableError::Kind::missingReceivedFiles,
            Localized("receive-error.missing-received-files", "The promised files did not arrive.")};
}

DraggablePromise::DraggablePromise(Tag, std::unique_ptr<FilePromiseTransport> transport,
                                   VantropePromise vantropePromise)
    : m_cacheKey(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_transport(std::move(transport))
    , m_vantropePromise(std::move(vantropePromise))
{}

DraggablePromise::~DraggablePromise() = default;

std::optional<QUrl> DraggablePromise::url() const
{
    std::lock_guard lock(m_mutex);
    if (m_state.kind != Kind::received) {
        return std::nullopt;
    }
    return m_state.url;
}

std::optional<quint64> DraggablePromise::systemFileNumber() const
{
    std::lock_guard lock(m_mutex);
    return m_systemFileNumber;
}

bool DraggablePromise::isReady() const
{
    std::lock_guard lock(m_mutex);
    return m_state.kind == Kind::received;
}

QImage DraggablePromise::image(bool iconOnly, const QSize& size) const
{
    std::optional<QUrl> received;
    QImage cached;
    {
        std::lock_guard lock(m_mutex);
        if (m_state.kind == Kind::received) {
            received = m_state.url;
        }
        cached = m_cachedImage;
    }
    if (iconOnly) {
        return received ? FileImages::iconImage(received->toLocalFile(), size)
                        : FileImages::genericIconImage(size);
    }
    if (cached.isNull()) {
        return FileImages::genericIconImage(size);
    }
    return cached.size() == size ? cached
                                 : cached.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

void DraggablePromise::resolveUrl(ResolveCompletion completion)
{
    onReceives(std::move(completion));
}

PasteboardItem DraggablePromise::pasteboardItem() const
{
    PasteboardItem item;
    if (const std::optional<QUrl> received = url()) {
        item.setData(PasteboardTypes::uriList, received->toEncoded());
    }
    return item;
}

QString DraggablePromise::description() const
{
    return QStringLiteral("<DraggablePromise: 0x%1, state: %2>")
        .arg(quintptr(this), 0, 16)
        .arg(stateName(receivingState().kind));
}

DraggablePromise::ReceivingState DraggablePromise::receivingState() const
{
    std::lock_guard lock(m_mutex);
    return m_state;
}

QList<std::shared_ptr<DraggableFile>> DraggablePromise::additionalDraggables() const
{
    std::lock_guard lock(m_mutex);
    return m_additionalDraggables;
}

void DraggablePromise::onReceives(ResolveCompletion callback)
{
    if (!callback) {
        return;
    }
    ResolveResult result;
    {
        std::lock_guard lock(m_mutex);
        switch (m_state.kind) {
        case Kind::none:
        case Kind::receiving:
            m_onReceives.append(std::move(callback));
            return;
        case Kind::received:
            result = m_state.url;
            break;
        case Kind::error:
            result = std::unexpected(m_state.error);
            break;
        }
    }
    resolveOnMain(std::move(callback), std::move(result));
}

void DraggablePromise::receiveFiles(std::optional<quint64> draggingSequenceNumber)
{
    {
        std::lock_guard lock(m_mutex);
        if (m_state.kind == Kind::receiving) {
            qCCritical(lcDraggable)
                << "Attempted to receive promise while it's already in process of receiving";
            return;
        }
        // A source keeps its promise once; there is no second attempt after an ending.
        if (m_state.kind != Kind::none) {
            qCWarning(lcDraggable) << "Promise has already ended receiving as" << stateName(m_state.kind);
            return;
        }
        m_state = {Kind::receiving, {}, {}};
    }

    if (m_vantropePromise) {
        // Only the item's weak handle goes to other threads: if the last owner let go there, the item
        // would end on a thread its transport may have to wait for.
        QThreadPool::globalInstance()->start([weak = weak_from_this(), promise = m_vantropePromise] {
            const VantropePromiseResult result = promise();
            if (result.url) {
                finish(weak, receivedState(*result.url), {});
            } else if (result.error) {
                finish(weak, errorState({DraggableError::Kind::underlying, result.error->description}), {});
            } else {
                finish(weak, errorState(missingReceivedFilesError()), {});
            }
        });
        return;
    }
    receiveThroughTransport(draggingSequenceNumber);
}

void DraggablePromise::receiveThroughTransport(std::optional<quint64> draggingSequenceNumber)
{
    if (!m_transport) {
        qCWarning(lcDraggable) << "Promise has no transport to receive through";
        finish(weak_from_this(), errorState(missingReceivedFilesError()), {});
        return;
    }
    const std::optional<QString> destination = destinationDirectory(draggingSequenceNumber);
    if (!destination) {
        finish(
            weak_from_this(),
            errorState({DraggableError::Kind::underlying,
                        Localized("receive-error.no-destination", "No folder could be made for the files.")}),
            {});
        return;
    }
    if (!QFileInfo(*destination).isWritable()) {
        qCWarning(lcDraggable) << "Promise destination is not writable";
    }

    const QStringList names = m_transport->fileNames();
    const QStringList types = m_transport->fileTypes();
    qCInfo(lcDraggable).noquote() << QStringLiteral("About to receive promised files, fileNames: ") +
                                         names.join(QLatin1String(", ")) + QStringLiteral(", fileTypes: ") +
                                         types.join(QLatin1String(", "));

    std::weak_ptr<Draggable> weak = weak_from_this();
    auto collector = std::make_shared<Collector>(
        *destination, qMax(names.size(), types.size()),
        [weak](ReceivingState state, QList<std::shared_ptr<DraggableFile>> additional) {
            finish(weak, std::move(state), std::move(additional));
        });
    m_transport->receive(
        *destination, [collector](const FilePromiseTransport::FileResult& result) { collector->add(result); },
        [collector] { collector->finish(); });
}

void DraggablePromise::finish(std::weak_ptr<Draggable> weak, ReceivingState state,
                              QList<std::shared_ptr<DraggableFile>> additional)
{
    const std::optional<quint64> fileNumber =
        state.kind == Kind::received ? URL::systemFileNumber(state.url) : std::nullopt;
    DispatchQueue::main().async(
        [weak = std::move(weak), state = std::move(state), additional = std::move(additional), fileNumber] {
            const auto self = std::static_pointer_cast<DraggablePromise>(weak.lock());
            if (!self) {
                return;
            }
            QList<ResolveCompletion> callbacks;
            {
                std::lock_guard lock(self->m_mutex);
                self->m_state = state;
                self->m_systemFileNumber = fileNumber;
                self->m_additionalDraggables = additional;
                callbacks.swap(self->m_onReceives);
            }
            const ResolveResult result = state.kind == Kind::received
                                             ? ResolveResult(state.url)
                                             : ResolveResult(std::unexpected(state.error));
            for (const ResolveCompletion& callback : std::as_const(callbacks)) {
                callback(result);
            }
        });
}

void DraggablePromise::makeCachedImage(const QSize& size,
                                       std::function<void(std::expected<void, ImageError>)> completion)
{
    const std::optional<QUrl> received = url();
    auto reply = [weak = weak_from_this(), completion = std::move(completion)](const QImage& image) {
        const auto self = std::static_pointer_cast<DraggablePromise>(weak.lock());
        if (!self) {
            return;
        }
        if (!image.isNull()) {
            std::lock_guard lock(self->m_mutex);
            self->m_cachedImage = image;
        }
        if (completion) {
            completion(image.isNull() ? std::expected<void, ImageError>(
                                            std::unexpected(ImageError::failedGeneratingImage))
                                      : std::expected<void, ImageError>());
        }
    };
    if (!received) {
        DispatchQueue::main().async([reply] { reply({}); });
        return;
    }
    QThreadPool::globalInstance()->start([path = received->toLocalFile(), size, reply] {
        const QImage image = FileImages::thumbnailImage(path, size);
        DispatchQueue::main().async([reply, image] { reply(image); });
    });
}

} // namespace Vantrope
