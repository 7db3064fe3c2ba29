#include "AppLogging.h"
#include "CommandLine.h"
#include "Libraries/Core/Localized.h"
#include "Libraries/Core/Logging.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Platform/DisplayEnvironment.h"
#include "Platform/UnixSignalWatcher.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsPreferenceStorage.h"
#include "StatusItemController.h"
#include "Version.h"

#include <csignal>
#include <cstdio>
#include <QApplication>
#include <QIcon>

using namespace Vantrope;

namespace {

void print(FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fputs(bytes.constData(), stream);
    if (!text.endsWith(QLatin1Char('\n'))) {
        std::fputc('\n', stream);
    }
}

template<class... Ts> struct Overloaded : Ts... {
    using Ts::operator()...;
};

} // namespace

int main(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }

    const int early = std::visit(Overloaded{
                                     [](const CommandLine::RunAgent&) { return -1; },
                                     [](const CommandLine::ShowHelp&) {
                                         print(stdout, CommandLine::helpText());
                                         return 0;
                                     },
                                     [](const CommandLine::ShowVersion&) {
                                         print(stdout, CommandLine::versionText());
                                         return 0;
                                     },
                                     [](const CommandLine::Invalid& invalid) {
                                         print(stderr, QStringLiteral("vantrope: ") + invalid.message);
                                         return 2;
                                     },
                                 },
                                 CommandLine::parse(arguments));
    if (early >= 0) {
        return early;
    }

    const DisplayEnvironment display = DisplayEnvironment::detect();
    if (!display.isUsable()) {
        print(stderr, QStringLiteral("vantrope: ") + display.problem());
        return 1;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !display.preferredPlatform().isEmpty()) {
        qputenv("QT_QPA_PLATFORM", display.preferredPlatform().toLatin1());
    }

    Logging::install();
    QApplication::setApplicationName(QStringLiteral("vantrope"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vantrope"));
    QApplication::setApplicationVersion(QStringLiteral(VANTROPE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral(VANTROPE_APPLICATION_ID));
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/vantrope.svg")));
    installTranslations();

    Preferences preferences(
        std::make_unique<SettingsPreferenceStorage>(SettingsPreferenceStorage::defaultFilePath()));
    preferences.registerDefaults();
    const auto applyFileLogging = [&preferences] {
        const bool enabled = preferences.value(PreferenceKeys::fileLoggingEnabled, false);
        const auto folder =
            enabled ? TemporaryDirectories::path(ReservedTemporaryDirectory::logs) : std::nullopt;
        Logging::setFileLoggingDirectory(folder.value_or(QString()));
    };
    applyFileLogging();
    QObject::connect(&preferences, &Preferences::changed, &app, [applyFileLogging](PreferenceKey key) {
        if (key == PreferenceKey::fileLoggingEnabled) {
            applyFileLogging();
        }
    });

    UnixSignalWatcher unixSignals({SIGTERM, SIGINT, SIGHUP});
    QObject::connect(&unixSignals, &UnixSignalWatcher::received, &app, [](int signalNumber) {
        qCInfo(lcApp) << "Received signal" << signalNumber << "- quitting";
        QApplication::quit();
    });

    StatusItemController statusItem;
    QObject::connect(&statusItem, &StatusItemController::quitRequested, &app, &QApplication::quit);
    statusItem.show();

    qCInfo(lcApp).noquote() << "Vantrope" << VANTROPE_VERSION << "started on"
                            << QGuiApplication::platformName();
    const int status = QApplication::exec();
    qCInfo(lcApp) << "Vantrope stopped";
    return status;
}
