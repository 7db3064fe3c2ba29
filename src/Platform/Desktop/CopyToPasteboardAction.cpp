// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "CopyToPasteboardAction.h"

#include "Domains/Actions/ActionIdentifiers.h"
#include "Libraries/Core/Localized.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace Vantrope {

QString CopyToPasteboardAction::identifier() const
{
    return ActionIdentifiers::copyToPasteboard;
}

QString CopyToPasteboardAction::iconName() const
{
    return QStringLiteral("edit-copy");
}

QString CopyToPasteboardAction::title() const
{
    return Localized("action.copy-to-clipboard.title", "Copy to Clipboard");
}

QMimeData* CopyToPasteboardAction::makeMimeData(const QList<QUrl>& urls)
{
    auto* data = new QMimeData;
    data->setUrls(urls);
    QByteArray copied = "copy";
    QStringList paths;
    for (const QUrl& url : urls) {
        copied += '\n' + url.toEncoded();
        paths.append(url.isLocalFile() ? url.toLocalFile() : url.toString());
    }
    data->setData(QStringLiteral("x-special/gnome-copied-files"), copied);
    data->setText(paths.join(QLatin1Char('\n')));
    return data;
}

void CopyToPasteboardAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard) {
        completion(std::unexpected(ActionError(ActionError::Kind::reserved)));
        return;
    }
    clipboard->setMimeData(makeMimeData(actionItemUrls(items)), QClipboard::Clipboard);
    completion(ActionResultContext{
        ActionResultContext::Message{Localized("hotkey-action.copy.message", "Copied to the clipboard")}});
}

} // namespace Vantrope
