// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "WatchedFolderService.h"

#include "Domains/DirectoryObserver/WatchedFolderController.h"

#include <QFile>

namespace Vantrope {

namespace {

using Controller = WatchedFolderController;

WatchedFolderSummary summary(const Controller::Folder& folder)
{
    return {folder.directory.identifier, folder.directory.url.toLocalFile(),
            Controller::stateName(folder.state)};
}

std::expected<WatchedFolderSummary, WatchedFolderRequestHandler::Error>
answer(const std::expected<Controller::Folder, Controller::Error>& result)
{
    using Kind = ApplicationRequestHandler::Error::Kind;
    if (result) {
        return summary(*result);
    }
    Kind kind = Kind::invalidArguments;
    switch (result.error().kind) {
    case Controller::Error::Kind::missing:
        kind = Kind::missingFile;
        break;
    case Controller::Error::Kind::unreadable:
        kind = Kind::unreadableFile;
        break;
    case Controller::Error::Kind::saveFailed:
        kind = Kind::actionFailed;
        break;
    case Controller::Error::Kind::notAFolder:
    case Controller::Error::Kind::alreadyWatched:
    case Controller::Error::Kind::restricted:
    case Controller::Error::Kind::unknownFolder:
        break;
    }
    return std::unexpected(WatchedFolderRequestHandler::Error{kind, result.error().message});
}

} // namespace

WatchedFolderService::WatchedFolderService(WatchedFolderController& controller)
    : m_controller(controller)
{}

QList<WatchedFolderSummary> WatchedFolderService::watchedFolders() const
{
    QList<WatchedFolderSummary> result;
    for (const Controller::Folder& folder : m_controller.folders()) {
        result.append(summary(folder));
    }
    return result;
}

std::expected<WatchedFolderSummary, WatchedFolderRequestHandler::Error>
WatchedFolderService::addWatchedFolder(const QByteArray& path)
{
    const QString name = QFile::decodeName(path);
    if (!name.startsWith(QLatin1Char('/'))) {
        return std::unexpected(
            Error{Error::Kind::invalidArguments,
                  QStringLiteral("the folder must be given as an absolute path, not \"%1\"").arg(name)});
    }
    return answer(m_controller.add(name));
}

std::expected<WatchedFolderSummary, WatchedFolderRequestHandler::Error>
WatchedFolderService::removeWatchedFolder(const QString& identifier)
{
    return answer(m_controller.remove(identifier));
}

std::expected<WatchedFolderSummary, WatchedFolderRequestHandler::Error>
WatchedFolderService::pauseWatchedFolder(const QString& identifier)
{
    return answer(m_controller.pause(identifier));
}

std::expected<WatchedFolderSummary, WatchedFolderRequestHandler::Error>
WatchedFolderService::resumeWatchedFolder(const QString& identifier)
{
    return answer(m_controller.resume(identifier));
}

} // namespace Vantrope
