// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Draggable.h"

#include <QByteArray>
#include <QStringList>

namespace Vantrope {

struct DraggableContext;

// A web address, kept on disk as a ".webloc" file: an XML property list holding the address under "URL".
class DraggableWeblocation final : public Draggable {
    struct Tag {};

public:
    static QStringList readableTypes();
    static std::shared_ptr<DraggableWeblocation>
    fromPasteboard(const PasteboardItem& item, const QString& type, const DraggableContext& context);
    // Writes the ".webloc" file for a web address; null for a file URL or when the write fails.
    static std::shared_ptr<DraggableWeblocation> make(const QUrl& address);
    // Takes an existing ".webloc" file as it is, as a restored shelf does; null when it holds no address.
    static std::shared_ptr<DraggableWeblocation> fromWeblocFile(const QUrl& weblocUrl);

    // The host without "www.", then ".webloc"; "Link.webloc" for an address without a host.
    static QString fileName(const QUrl& address);
    static QByteArray propertyList(const QUrl& address);
    static std::optional<QUrl> address(const QByteArray& propertyList);

    DraggableWeblocation(Tag, const QUrl& weblocUrl, const QUrl& address);

    std::optional<QUrl> url() const override { return m_weblocUrl; }
    std::optional<quint64> systemFileNumber() const override { return m_systemFileNumber; }
    QString cacheKey() const override { return m_cacheKey; }
    bool isWebLocation() const override { return true; }
    std::optional<QString> locationTitle() const override;
    QImage image(bool iconOnly, const QSize& size) const override;
    void resolveUrl(ResolveCompletion completion) override;
    PasteboardItem pasteboardItem() const override;
    QString description() const override;

    QUrl address() const { return m_address; }

private:
    const QUrl m_weblocUrl;
    const QUrl m_address;
    const QString m_cacheKey;
    const std::optional<quint64> m_systemFileNumber;
};

} // namespace Vantrope
