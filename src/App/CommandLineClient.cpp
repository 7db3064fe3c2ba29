#include "CommandLineClient.h"

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
    return std::visit(Overloaded{
                          [this](const CommandLine::AddFiles& add) -> Outcome {
                              if (const auto missing = CommandLine::firstMissing(add.files)) {
                                  return {1, {}, QStringLiteral("no such file: %1").arg(*missing)};
                              }
                              return printing(m_client.addFiles(add.files));
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
                          [](const auto&) -> Outcome {
                              return {CommandLine::usageExitCode,
                                      {},
                                      QStringLiteral("this is no command for a running agent")};
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

QString CommandLineClient::listText(const QList<ShelfSummary>& shelves)
{
    QString text;
    for (const ShelfSummary& shelf : shelves) {
        text += shelf.identifier;
        if (shelf.name && !shelf.name->isEmpty()) {
            text += QStringLiteral("  \"%1\"").arg(*shelf.name);
        }
        text += QStringLiteral("  %1 item(s)\n").arg(shelf.items.size());
        for (const QString& item : shelf.items) {
            text += QStringLiteral("    ") + item + QLatin1Char('\n');
        }
    }
    return text;
}

} // namespace Vantrope
