// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Draggable.h"

#include <QStringList>

namespace Vantrope {

struct DraggableContext;

// Picture data dropped from a web page, kept as a JPEG file of its own.
class DraggableWebImage final : public Draggable {
    struct Tag {};

public:
    static QStringList readableTypes();
    // Decodes and recodes the picture on the calling thread; null (and logged) when it cannot.
    static std::shared_ptr<DraggableWebImage> fromPasteboard(const PasteboardItem& item, const QString& type,
                                                             const DraggableContext& context);

    DraggableWebImage(Tag, const QUrl& url);

    std::optional<QUrl> url() const override { return m_url; }
    std::optional<quint64> systemFileNumber() const override { return m_systemFileNumber; }
    QString cacheKey() const override { return m_cacheKey; }
    QImage image(bool iconOnly, const QSize& size) const override;
    void resolveUrl(ResolveCompletion completion) override;
    PasteboardItem pasteboardItem() const override;
    QString description() const override;

private:
    const QUrl m_url;
    const QString m_cacheKey;
    const std::optional<quint64> m_systemFileNumber;
};

} // namespace Vantrope
