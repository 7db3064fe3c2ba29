// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AgentUnderTest.h"

#include <csignal>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QTest>

namespace Vantrope::Test {

namespace {

// xdotool's "--shell" output: NAME=number lines.
QMap<QString, int> shellValues(const QByteArray& output)
{
    QMap<QString, int> values;
    for (const QByteArray& line : output.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        if (equals > 0) {
            values.insert(QString::fromLatin1(line.left(equals)), line.mid(equals + 1).toInt());
        }
    }
    return values;
}

} // namespace

AgentUnderTest::AgentUnderTest()
{
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("HOME"), m_home.path());
    for (const char* name : {"CONFIG", "DATA", "CACHE"}) {
        m_environment.insert(QStringLiteral("XDG_%1_HOME").arg(QLatin1String(name)),
                             m_home.filePath(QString::fromLatin1(name).toLower()));
    }
    m_environment.remove(QStringLiteral("QT_LOGGING_RULES"));
}

AgentUnderTest::~AgentUnderTest()
{
    kill();
}

QString AgentUnderTest::path(const QString& relative) const
{
    return m_home.filePath(relative);
}

bool AgentUnderTest::start(const QStringList& arguments, const QStringList& prefix)
{
    kill();
    m_log.clear();
    const QStringList command = prefix + QStringList{QStringLiteral(VANTROPE_BINARY)} + arguments;
    m_agent.setProcessEnvironment(m_environment);
    m_agent.start(command.first(), command.mid(1));
    return m_agent.waitForStarted() &&
           QTest::qWaitFor([this] { return log().contains("started on"); }, 10000) &&
           m_agent.state() == QProcess::Running;
}

void AgentUnderTest::kill()
{
    if (m_agent.state() != QProcess::NotRunning) {
        ::kill(static_cast<pid_t>(m_agent.processId()), SIGCONT);
        m_agent.kill();
        m_agent.waitForFinished();
    }
}

QByteArray AgentUnderTest::log()
{
    return m_log.append(m_agent.readAllStandardError());
}

AgentUnderTest::Result AgentUnderTest::run(const QStringList& arguments, const QString& workingDirectory)
{
    return runTool(QStringLiteral(VANTROPE_BINARY), arguments, workingDirectory);
}

AgentUnderTest::Result AgentUnderTest::runRaw(const QList<QByteArray>& arguments)
{
    // The shell builds each argument from octal escapes.
    QByteArray script = "set --;";
    for (const QByteArray& argument : arguments) {
        QByteArray escaped;
        for (const char byte : argument) {
            escaped += '\\' + QByteArray::number(static_cast<unsigned char>(byte), 8).rightJustified(3, '0');
        }
        script += " a=$(printf '" + escaped + "_'); set -- \"$@\" \"${a%_}\";";
    }
    script += " exec \"$0\" \"$@\"";
    return runTool(QStringLiteral("/bin/sh"),
                   {QStringLiteral("-c"), QString::fromLatin1(script), QStringLiteral(VANTROPE_BINARY)},
                   m_home.path());
}

AgentUnderTest::Result AgentUnderTest::runTool(const QString& program, const QStringList& arguments,
                                               const QString& workingDirectory)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.setWorkingDirectory(workingDirectory);
    process.start(program, arguments);
    if (!process.waitForFinished(20000)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return {process.exitCode(), process.readAllStandardOutput(),
            QString::fromLocal8Bit(process.readAllStandardError())};
}

QJsonArray AgentUnderTest::list()
{
    const Result result = run({QStringLiteral("list"), QStringLiteral("--json")});
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(result.output, &error);
    if (result.exitCode != 0 || error.error != QJsonParseError::NoError || !document.isArray()) {
        qWarning().noquote() << "list --json failed:" << result.exitCode << result.error << result.output;
        return {{QStringLiteral("list failed")}};
    }
    return document.array();
}

QJsonArray AgentUnderTest::items(qsizetype index)
{
    return list().at(index).toObject().value(QStringLiteral("items")).toArray();
}

QRect AgentUnderTest::shelfGeometry()
{
    const Result windows =
        runTool(QStringLiteral("xdotool"), {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                            QStringLiteral("--pid"), QString::number(m_agent.processId())});
    for (const QByteArray& window : windows.output.split('\n')) {
        const QRect frame = window.isEmpty() ? QRect() : windowGeometry(QString::fromLatin1(window));
        if (frame.size() == QSize(180, 188)) {
            return frame;
        }
    }
    return {};
}

QRect AgentUnderTest::windowGeometry(const QString& window)
{
    const QMap<QString, int> geometry =
        shellValues(runTool(QStringLiteral("xdotool"),
                            {QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), window})
                        .output);
    return {geometry.value(QStringLiteral("X")), geometry.value(QStringLiteral("Y")),
            geometry.value(QStringLiteral("WIDTH")), geometry.value(QStringLiteral("HEIGHT"))};
}

QPoint AgentUnderTest::pointer()
{
    const QMap<QString, int> location = shellValues(
        runTool(QStringLiteral("xdotool"), {QStringLiteral("getmouselocation"), QStringLiteral("--shell")})
            .output);
    return {location.value(QStringLiteral("X"), -1), location.value(QStringLiteral("Y"), -1)};
}

} // namespace Vantrope::Test
