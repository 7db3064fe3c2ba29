// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AppDelegate.h"
#include "AppLogging.h"
#include "CommandLine.h"
#include "CommandLineClient.h"
#include "DisplayEnvironment.h"
#include "Domains/DragSession/MessageWindowCenter.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Launcher.h"
#include "Libraries/Core/Clock.h"
#include "Libraries/Core/Localized.h"
#include "Libraries/Core/Logging.h"
#include "Libraries/Core/PrivateFolders.h"
#include "LocalFileName.h"
#include "Platform/DBus/ApplicationDBusClient.h"
#include "Platform/DBus/ApplicationDBusService.h"
#include "Platform/DBus/SessionBusAddress.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Linux/UnixSignalWatcher.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtDragSessionUserInterface.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsPreferenceStorage.h"
#include "VantropeApplication.h"
#include "Version.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <QCoreApplication>
#include <QDir>
#include <QUrl>
#include <unistd.h>

using namespace Vantrope;

namespace {

void print(FILE* stream, const QString& text)
{
    if (text.isEmpty()) {
        return;
    }
    // A file name goes out as the very bytes it came in as.
    const QByteArray bytes = LocalFileName::encode(text);
    std::fputs(bytes.constData(), stream);
    if (!text.endsWith(QLatin1Char('\n'))) {
        std::fputc('\n', stream);
    }
}

int fail(const QString& message, int exitCode = 1)
{
    print(stderr, QStringLiteral("vantrope: ") + message);
    return exitCode;
}

template<class... Ts> struct Overloaded : Ts... {
    using Ts::operator()...;
};

// A command for the running agent: no display needed, only the session bus.
int runClient(int argc, char* argv[], const CommandLine::Request& request)
{
    QCoreApplication app(argc, argv);
    const ApplicationDBusClient client;
    const CommandLineClient::Outcome outcome = CommandLineClient(client).run(request);
    print(stdout, outcome.output);
    if (!outcome.error.isEmpty()) {
        return fail(outcome.error, outcome.exitCode);
    }
    return outcome.exitCode;
}

// Another agent holds the bus name: it gets the launch, and this process ends.
std::optional<int> forwardToRunningAgent(const QStringList& files)
{
    const ApplicationDBusClient client;
    std::optional<ApplicationDBusClient::Error> error;
    if (files.isEmpty()) {
        if (const auto activated = client.activate(); !activated) {
            error = activated.error();
        }
    } else {
        QList<QByteArray> paths;
        for (const QString& file : files) {
            paths.append(LocalFileName::encode(file));
        }
        if (const auto added = client.addFiles(paths); !added) {
            error = added.error();
        }
    }
    if (!error) {
        return 0;
    }
    if (error->kind == ApplicationDBusClient::Error::Kind::notRunning) {
        // It ended in the meantime: this process takes over.
        return std::nullopt;
    }
    return fail(error->message);
}

// An exit status when this process must end because another agent runs or cannot be told apart.
std::optional<int> becomeTheOnlyAgent(ApplicationDBusService& service, const QStringList& files)
{
    for (int attempt = 0; attempt < 2; ++attempt) {
        switch (service.claim()) {
        case ApplicationDBusService::Claim::claimed:
            return std::nullopt;
        case ApplicationDBusService::Claim::noBus:
            qCWarning(lcApp) << "No D-Bus session bus: the command line cannot reach this instance, and a "
                                "second start is not detected";
            return std::nullopt;
        case ApplicationDBusService::Claim::alreadyRunning:
            if (const auto forwarded = forwardToRunningAgent(files)) {
                return forwarded;
            }
            break;
        }
    }
    return fail(
        QStringLiteral("another Vantrope keeps appearing and vanishing on the session bus; try again"));
}

int runAgent(int argc, char* argv[], const CommandLine::RunAgent& request)
{
    if (const auto problem = CommandLine::firstUnusable(request.files)) {
        if (problem->kind == CommandLine::FileProblem::Kind::missing) {
            // Quite likely a mistyped command rather than a file.
            return fail(QStringLiteral("no such file or command: %1; see \"vantrope --help\"")
                            .arg(LocalFileName::displayName(problem->path)),
                        CommandLine::usageExitCode);
        }
        return fail(problem->message);
    }
    const DisplayEnvironment display = DisplayEnvironment::detect();
    if (!display.isUsable()) {
        return fail(display.problem());
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !display.preferredPlatform().isEmpty()) {
        qputenv("QT_QPA_PLATFORM", display.preferredPlatform().toLatin1());
    }

    Logging::install();
    VantropeApplication app(argc, argv);
    installTranslations();

    // The bus name is the single-instance guard; it is taken before anything else is built.
    ApplicationDBusService service;
    if (const auto handedOver = becomeTheOnlyAgent(service, request.files)) {
        return *handedOver;
    }

    PrivateFolders::tightenAll();

    Preferences preferences(
        std::make_unique<SettingsPreferenceStorage>(SettingsPreferenceStorage::defaultFilePath()));
    PersistentDragSessionStore sessionStore({}, nullptr, Clock::system());
    MessageWindowCenter messages(Clock::system());
    QtDragSessionUserInterface shelfInterface({messages, preferences, Clock::system()});
    QtScreenEnvironment screens;
    QtClipboardSource clipboard;
    const Launcher launcher;
    AppDelegate appDelegate(
        {preferences, sessionStore, shelfInterface, screens, clipboard, messages, launcher,
         [&service](ApplicationRequestHandler* provider) { service.setHandler(provider); }, Clock::system(),
         InotifyFileWatcher::shared()});
    // Queued, so that the answer to a `quit` request leaves before the event loop ends.
    QObject::connect(&appDelegate, &AppDelegate::quitRequested, &app, &QApplication::quit,
                     Qt::QueuedConnection);

    UnixSignalWatcher unixSignals({SIGTERM, SIGINT, SIGHUP});
    QObject::connect(&unixSignals, &UnixSignalWatcher::received, &app, [](int signalNumber) {
        qCInfo(lcApp) << "Received signal" << signalNumber << "- quitting";
        QApplication::quit();
    });

    if (!request.files.isEmpty()) {
        QList<QUrl> urls;
        for (const QString& file : request.files) {
            if (const auto reachable = LocalFileName::reachableName(file)) {
                urls.append(QUrl::fromLocalFile(*reachable));
            }
        }
        appDelegate.openFiles(urls);
    }
    appDelegate.applicationDidFinishLaunching();

    qCInfo(lcApp).noquote() << "Vantrope" << VANTROPE_VERSION << "started on"
                            << QGuiApplication::platformName();
    const int status = QApplication::exec();
    qCInfo(lcApp) << "Vantrope stopped";
    return status;
}

} // namespace

int main(int argc, char* argv[])
{
    // Before anything, Qt included, looks for the session bus.
    SessionBusAddress::preventAutolaunch();

    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(LocalFileName::decode(argv[i]));
    }
    QString workingDirectory = QDir::currentPath();
    if (char* current = ::getcwd(nullptr, 0)) {
        workingDirectory = LocalFileName::decode(current);
        std::free(current);
    }

    const CommandLine::Request request = CommandLine::parse(arguments, workingDirectory);
    return std::visit(Overloaded{
                          [&](const CommandLine::RunAgent& run) { return runAgent(argc, argv, run); },
                          [](const CommandLine::ShowHelp&) {
                              print(stdout, CommandLine::helpText());
                              return 0;
                          },
                          [](const CommandLine::ShowVersion&) {
                              print(stdout, CommandLine::versionText());
                              return 0;
                          },
                          [](const CommandLine::Invalid& invalid) {
                              return fail(invalid.message, CommandLine::usageExitCode);
                          },
                          [&](const auto&) { return runClient(argc, argv, request); },
                      },
                      request);
}
