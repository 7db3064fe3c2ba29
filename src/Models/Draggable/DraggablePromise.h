// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Draggable.h"
#include "FilePromiseTransport.h"

#include <mutex>
#include <QList>
#include <QStringList>

namespace Vantrope {

class DraggableFile;
struct DraggableContext;

// A file the drag source has promised and writes only when asked to.
class DraggablePromise final : public Draggable {
    struct Tag {};

public:
    struct ReceivingState {
        enum class Kind { none, receiving, received, error };
        Kind kind = Kind::none;
        QUrl url;             // received
        DraggableError error; // error
    };

    enum class ImageError { failedGeneratingImage };

    // A promise made inside this program: it hands over its file (or says why not) when called.
    struct VantropePromiseResult {
        std::optional<QUrl> url;
        std::optional<DraggableError> error;
    };
    using VantropePromise = std::function<VantropePromiseResult()>;

    static QStringList readableTypes();
    // Null when the context has no transport for the item's promise.
    static std::shared_ptr<DraggablePromise> fromPasteboard(const PasteboardItem& item, const QString& type,
                                                            const DraggableContext& context);
    static std::shared_ptr<DraggablePromise> make(std::unique_ptr<FilePromiseTransport> transport);
    static std::shared_ptr<DraggablePromise> make(VantropePromise vantropePromise);

    // The folder one drag's promises are received into, made on first use: named after the drag's
    // sequence number (shared by every promise of that drag) or, without one, after a new UUID.
    static std::optional<QString> destinationDirectory(std::optional<quint64> draggingSequenceNumber);

    static DraggableError missingReceivedFilesError();

    DraggablePromise(Tag, std::unique_ptr<FilePromiseTransport> transport, VantropePromise vantropePromise);
    ~DraggablePromise() override;

    std::optional<QUrl> url() const override;
    std::optional<quint64> systemFileNumber() const override;
    bool isReady() const override;
    QString cacheKey() const override { return m_cacheKey; }
    QImage image(bool iconOnly, const QSize& size) const override;
    void resolveUrl(ResolveCompletion completion) override;
    PasteboardItem pasteboardItem() const override;
    QString description() const override;

    // Fetches the promised files once; the outcome reaches `onReceives` and `resolveUrl`.
    void receiveFiles(std::optional<quint64> draggingSequenceNumber = std::nullopt);
    ReceivingState receivingState() const;
    // Runs `callback` once on the main queue when receiving has ended (at once, asynchronously, when
    // it already has), in the order of registration; never after the item is gone.
    void onReceives(ResolveCompletion callback);
    // The files received beyond the first.
    QList<std::shared_ptr<DraggableFile>> additionalDraggables() const;

    // Makes the preview of the received file off the main thread and keeps it for `image`. The
    // completion runs on the main queue.
    void makeCachedImage(const QSize& size, std::function<void(std::expected<void, ImageError>)> completion);

private:
    static void finish(std::weak_ptr<Draggable> weak, ReceivingState state,
                       QList<std::shared_ptr<DraggableFile>> additional);
    void receiveThroughTransport(std::optional<quint64> draggingSequenceNumber);

    const QString m_cacheKey;
    const std::unique_ptr<FilePromiseTransport> m_transport;
    const VantropePromise m_vantropePromise;

    mutable std::mutex m_mutex;
    ReceivingState m_state;
    std::optional<quint64> m_systemFileNumber;
    QList<std::shared_ptr<DraggableFile>> m_additionalDraggables;
    QList<ResolveCompletion> m_onReceives;
    QImage m_cachedImage;
};

} // namespace Vantrope
