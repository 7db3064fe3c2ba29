// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "RenameAction.h"

#include "DragSessionLogging.h"
#include "Libraries/Core/Localized.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <QDir>
#include <QFileInfo>

namespace Vantrope {

RenameAction::RenameAction(Handler handler)
    : m_handler(std::move(handler))
{}

QString RenameAction::identifier() const
{
    return QStringLiteral("drag_session_stack_rename");
}

QString RenameAction::title() const
{
    return Localized("action.rename.title", "Rename…");
}

bool RenameAction::canPerform(const ActionItemList& items) const
{
    return items.size() == 1;
}

void RenameAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    if (items.size() != 1 || !m_handler) {
        completion(std::unexpected(ActionError(ActionError::Kind::reserved)));
        return;
    }
    m_handler(items.first(), std::move(completion));
}

std::expected<QString, RenameAction::Error> RenameAction::renameFile(const QString& path,
                                                                     const QString& newName)
{
    const QString name = newName.trimmed();
    if (name.isEmpty()) {
        return std::unexpected(
            Error{Error::Kind::emptyName, Localized("action.rename.error.empty", "A name can't be empty.")});
    }
    if (name.contains(QLatin1Char('/')) || name == QStringLiteral(".") || name == QStringLiteral("..") ||
        name.contains(QChar(0))) {
        return std::unexpected(Error{Error::Kind::invalidName, Localized("action.rename.error.invalid",
                                                                         "A name can't contain \"/\".")});
    }
    const QFileInfo source(path);
    if (!source.exists() && !source.isSymLink()) {
        return std::unexpected(Error{
            Error::Kind::missing,
            Localized("action.rename.error.missing", "\"%1\" is no longer there.").arg(source.fileName())});
    }
    const QString target = source.dir().filePath(name);
    if (target == source.filePath()) {
        return target;
    }
    const QByteArray from = QFile::encodeName(source.filePath());
    const QByteArray to = QFile::encodeName(target);
    // RENAME_NOREPLACE: the kernel refuses a taken name, so nothing is ever overwritten.
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) != 0) {
        const int error = errno;
        qCWarning(lcDragSession).noquote()
            << QStringLiteral("Failed to rename %1 to %2: %3")
                   .arg(source.filePath(), name, QString::fromLocal8Bit(strerror(error)));
        if (error == EEXIST) {
            return std::unexpected(
                Error{Error::Kind::exists, Localized("action.rename.error.exists",
                                                     "An item named \"%1\" already exists in this folder.")
                                               .arg(name)});
        }
        return std::unexpected(Error{
            Error::Kind::failed, Localized("action.rename.error.failed", "\"%1\" could not be renamed: %2")
                                     .arg(source.fileName(), QString::fromLocal8Bit(strerror(error)))});
    }
    return target;
}

} // namespace Vantrope
