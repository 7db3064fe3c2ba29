#include "CommandLine.h"

#include "Version.h"

namespace Vantrope {

CommandLine::Request CommandLine::parse(const QStringList& arguments)
{
    Request request = RunAgent{};
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (argument == QStringLiteral("--help") || argument == QStringLiteral("-h")) {
            return ShowHelp{};
        }
        if (argument == QStringLiteral("--version") || argument == QStringLiteral("-v")) {
            request = ShowVersion{};
            continue;
        }
        return Invalid{QStringLiteral("unknown argument \"%1\"; see \"vantrope --help\"").arg(argument)};
    }
    return request;
}

QString CommandLine::helpText()
{
    return QStringLiteral(
        "Usage: vantrope [OPTION]\n"
        "A floating shelf for the things you drag: shake the pointer during a drag, set things down on the\n"
        "shelf, and drag them out again wherever you need them.\n"
        "\n"
        "Started without arguments, Vantrope runs in the background with an item in the system tray.\n"
        "\n"
        "Options:\n"
        "  -h, --help     show this help and exit\n"
        "  -v, --version  show the version and exit\n");
}

QString CommandLine::versionText()
{
    return QStringLiteral("vantrope " VANTROPE_VERSION);
}

} // namespace Vantrope
