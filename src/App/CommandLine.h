#pragma once

#include <QString>
#include <QStringList>
#include <variant>

namespace Vantrope {

// What the command line asks for. Parsing touches no display, so `--help` and `--version` work anywhere.
class CommandLine final {
public:
    struct RunAgent {};
    struct ShowHelp {};
    struct ShowVersion {};
    struct Invalid {
        QString message;
    };
    using Request = std::variant<RunAgent, ShowHelp, ShowVersion, Invalid>;

    static Request parse(const QStringList& arguments);
    static QString helpText();
    static QString versionText();
};

} // namespace Vantrope
