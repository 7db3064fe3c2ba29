// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "QtClipboardSource.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace Vantrope {

QtClipboardSource::QtClipboardSource(QObject* parent)
    : QObject(parent)
{
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, [this] { ++m_changeCount; });
}

Pasteboard QtClipboardSource::pasteboard() const
{
    const QMimeData* data = QGuiApplication::clipboard()->mimeData(QClipboard::Clipboard);
    return data ? Pasteboard::fromMimeData(*data, m_changeCount) : Pasteboard({}, m_changeCount);
}

} // namespace Vantrope
