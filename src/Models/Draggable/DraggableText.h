// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Draggable.h"
#include "Libraries/Core/ThreadSafe.h"

#include <atomic>
#include <mutex>
#include <QByteArray>
#include <QStringList>

namespace Vantrope {

struct DraggableContext;

// Text or rich text, kept as a file in the text folder that is written when first asked for.
class DraggableText final : public Draggable {
    struct Tag {};

public:
    static QStringList readableTypes();
    static std::shared_ptr<DraggableText> fromPasteboard(const PasteboardItem& item, const QString& type,
                                                         const DraggableContext& context);
    // With `forcePlainText`, rich text that can be read is kept as UTF-8 plain text.
    static std::shared_ptr<DraggableText> make(const QByteArray& data, const QString& type,
                                               bool forcePlainText);

    // The text of the bytes as the naming rule reads it; absent when undecodable.
    static std::optional<QString> plainText(const QByteArray& data, const QString& type);
    // The name's stem: the first line of 4 or more characters, cut to 40, without "/" and control
    // characters; "Text" without such a line, a UUID when the text could not be decoded.
    static QString baseName(const std::optional<QString>& text);
    static QString fileExtension(const QString& type);

    DraggableText(Tag, const QByteArray& data, const QString& type, const QUrl& url);

    std::optional<QUrl> url() const override { return m_url; }
    std::optional<quint64> systemFileNumber() const override { return m_systemFileNumber.value(); }
    QString cacheKey() const override { return m_cacheKey; }
    QImage image(bool iconOnly, const QSize& size) const override;
    // Writes the file first when it has not been written, off the main thread.
    void resolveUrl(ResolveCompletion completion) override;
    PasteboardItem pasteboardItem() const override;
    QString description() const override;

    QByteArray data() const { return m_data; }
    QString type() const { return m_type; }
    bool isWrittenToUrl() const { return m_isWrittenToUrl.load(std::memory_order_acquire); }

private:
    ResolveResult writeIfNeeded();

    const QByteArray m_data;
    const QString m_type;
    const QUrl m_url;
    const QString m_cacheKey;
    ThreadSafe<std::optional<quint64>> m_systemFileNumber;
    std::mutex m_writeMutex;
    std::atomic<bool> m_isWrittenToUrl = false;
};

} // namespace Vantrope
