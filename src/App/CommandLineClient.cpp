// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "CommandLineClient.h"

#include "LocalFileName.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Vantrope {

namespace {

template<class... Ts> struct Overloaded : Ts... {
    using Ts::operator()...;
};

using Outcome = CommandLineClient::Outcome;

Outcome failure(const ApplicationDBusClient::Error& error)
{
    return {1, {}, error.message};
}

template<typename T> Outcome printing(const std::expected<T, ApplicationDBusClient::Error>& result)
{
    if (!result) {
        return failure(result.error());
    }
    if constexpr (std::is_same_v<T, void>) {
        return {};
    } else {
        return {0, *result, {}};
    }
}

} // namespace

CommandLineClient::CommandLineClient(const ApplicationDBusClient& client)
    : m_client(client)
{}

CommandLineClient::Outcome CommandLineClient::run(const CommandLine::Request& request) const
{
    return std::visit(
        Overloaded{
            [this](const CommandLine::AddFiles& add) -> Outcome {
                if (const auto problem = CommandLine::firstUnusable(add.files)) {
                    return {1, {}, problem->message};
                }
                QList<QByteArray> paths;
                for (const QString& file : add.files) {
                    paths.append(LocalFileName::encode(file));
                }
                return printing(m_client.addFiles(paths));
            },
            [this](const CommandLine::NewShelf&) { return printing(m_client.newShelf()); },
            [this](const CommandLine::OpenRecent& open) {
                return printing(m_client.openRecent(open.identifier));
            },
            [this](const CommandLine::CloseAll&) { return printing(m_client.closeAll()); },
            [this](const CommandLine::Quit&) { return printing(m_client.quit()); },
            [this](const CommandLine::List& list) -> Outcome {
                const auto shelves = m_client.shelves();
                if (!shelves) {
                    return failure(shelves.error());
                }
                return {0, list.json ? listJson(*shelves) : listText(*shelves), {}};
            },
            [this](const CommandLine::ListActions& list) -> Outcome {
                const auto actions = m_client.shelfActions(list.shelf);
                if (!actions) {
                    return failure(actions.error());
                }
                return {0, list.json ? actionsJson(*actions) : actionsText(*actions), {}};
            },
            [this](const CommandLine::RunAction& run) -> Outcome {
                const auto result = m_client.runAction(run.shelf, run.action, run.settings);
                if (!result) {
                    return failure(result.error());
                }
                return {0, result->isEmpty() ? QString() : *result + QLatin1Char('\n'), {}};
            },
            [this](const CommandLine::RemoveItems& remove) -> Outcome {
                const auto removed = m_client.removeItems(remove.shelf, remove.items);
                if (!removed) {
                    return failure(removed.error());
                }
                QString text;
                for (const QString& item : *removed) {
                    text += printable(item) + QLatin1Char('\n');
                }
                return {0, text, {}};
            },
            [this](const CommandLine::SetLabel& label) -> Outcome {
                return printing(m_client.changeLabel(label.shelf, {label.name, label.color, label.pinned}));
            },
            [this](const CommandLine::Folders& folders) { return runFolders(folders); },
            [this](const CommandLine::Settings& settings) -> Outcome {
                const auto value = settings.value ? m_client.setSetting(settings.key, *settings.value)
                                                  : m_client.setting(settings.key);
                if (!value) {
                    return failure(value.error());
                }
                return {0, *value + QLatin1Char('\n'), {}};
            },
            [](const auto&) -> Outcome {
                return {
                    CommandLine::usageExitCode, {}, QStringLiteral("this is no command for a running agent")};
            },
        },
        request);
}

QString CommandLineClient::listJson(const QList<ShelfSummary>& shelves)
{
    QJsonArray array;
    for (const ShelfSummary& shelf : shelves) {
        const QJsonObject label{
            {QStringLiteral("name"), shelf.name ? QJsonValue(*shelf.name) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("color"), shelf.color},
            {QStringLiteral("pinned"), shelf.pinned},
        };
        array.append(QJsonObject{
            {QStringLiteral("identifier"), shelf.identifier},
            {QStringLiteral("label"), label},
            {QStringLiteral("items"), QJsonArray::fromStringList(shelf.items)},
        });
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented));
}

QString CommandLineClient::printable(const QString& name)
{
    QString shown;
    shown.reserve(name.size());
    for (const QChar c : name) {
        switch (c.unicode()) {
        case u'\\':
            shown += QStringLiteral("\\\\");
            continue;
        case u'\n':
            shown += QStringLiteral("\\n");
            continue;
        case u'\t':
            shown += QStringLiteral("\\t");
            continue;
        case u'\r':
            shown += QStringLiteral("\\r");
            continue;
        default:
            break;
        }
        const bool lineBreak =
            c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph;
        if (c.category() == QChar::Other_Control || lineBreak) {
            shown += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        } else {
            shown += c;
        }
    }
    return shown;
}

QString CommandLineClient::listText(const QList<ShelfSummary>& shelves)
{
    QString text;
    for (const ShelfSummary& shelf : shelves) {
        text += shelf.identifier;
        if (shelf.name && !shelf.name->isEmpty()) {
            text += QStringLiteral("  \"%1\"").arg(printable(*shelf.name));
        }
        text += QStringLiteral("  %1 item(s)\n").arg(shelf.items.size());
        for (const QString& item : shelf.items) {
            text += QStringLiteral("    ") + printable(item) + QLatin1Char('\n');
        }
    }
    return text;
}

QString CommandLineClient::actionsJson(const QList<ShelfActionSummary>& actions)
{
    QJsonArray array;
    for (const ShelfActionSummary& action : actions) {
        QJsonObject object{{QStringLiteral("identifier"), action.identifier},
                           {QStringLiteral("title"), action.title}};
        if (!action.options.isEmpty()) {
            object.insert(QStringLiteral("options"), QJsonArray::fromVariantList(action.options));
        }
        array.append(object);
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented));
}

QString CommandLineClient::actionsText(const QList<ShelfActionSummary>& actions)
{
    QString text;
    for (const ShelfActionSummary& action : actions) {
        text += action.identifier + QLatin1Char('\t') + printable(action.title) + QLatin1Char('\n');
    }
    return text;
}

// Watched folders

CommandLineClient::Outcome CommandLineClient::runFolders(const CommandLine::Folders& folders) const
{
    using Verb = CommandLine::Folders::Verb;
    std::expected<WatchedFolderSummary, ApplicationDBusClient::Error> changed;
    switch (folders.verb) {
    case Verb::list: {
        const auto list = m_client.watchedFolders();
        if (!list) {
            return failure(list.error());
        }
        return {0, folders.json ? foldersJson(*list) : foldersText(*list), {}};
    }
    case Verb::add:
        changed = m_client.addWatchedFolder(LocalFileName::encode(folders.argument));
        break;
    case Verb::remove:
        changed = m_client.changeWatchedFolder(QStringLiteral("RemoveFolder"), folders.argument);
        break;
    case Verb::pause:
        changed = m_client.changeWatchedFolder(QStringLiteral("PauseFolder"), folders.argument);
        break;
    case Verb::resume:
        changed = m_client.changeWatchedFolder(QStringLiteral("ResumeFolder"), folders.argument);
        break;
    }
    if (!changed) {
        return failure(changed.error());
    }
    return {0, foldersText({*changed}), {}};
}

QString CommandLineClient::foldersText(const QList<WatchedFolderSummary>& folders)
{
    QString text;
    for (const WatchedFolderSummary& folder : folders) {
        text += folder.identifier + QLatin1Char('\t') + folder.status + QLatin1Char('\t') +
                printable(folder.path) + QLatin1Char('\n');
    }
    return text;
}

QString CommandLineClient::foldersJson(const QList<WatchedFolderSummary>& folders)
{
    QJsonArray array;
    for (const WatchedFolderSummary& folder : folders) {
        array.append(QJsonObject{{QStringLiteral("identifier"), folder.identifier},
                                 {QStringLiteral("path"), folder.path},
                                 {QStringLiteral("status"), folder.status}});
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented));
}

} // namespace Vantrope
