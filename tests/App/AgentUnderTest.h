// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRect>
#include <QStringList>
#include <QTemporaryDir>

namespace Vantrope::Test {

// The real program in a home of its own on the test display and its private session bus, and the
// command line and xdotool run against it.
class AgentUnderTest final {
public:
    struct Result {
        int exitCode = -1;
        QByteArray output;
        QString error;
        QString text() const { return QString::fromLocal8Bit(output).trimmed(); }
    };

    AgentUnderTest();
    ~AgentUnderTest();
    AgentUnderTest(const AgentUnderTest&) = delete;
    AgentUnderTest& operator=(const AgentUnderTest&) = delete;

    QString home() const { return m_home.path(); }
    // A path in the agent's home.
    QString path(const QString& relative) const;
    QProcessEnvironment& environment() { return m_environment; }

    // Starts the agent, run through `prefix` if given, and waits until it says it has started.
    bool start(const QStringList& arguments = {}, const QStringList& prefix = {});
    // Ends it at once, a stopped one too.
    void kill();
    QProcess& process() { return m_agent; }
    // What it has logged so far.
    QByteArray log();

    Result run(const QStringList& arguments, const QString& workingDirectory = {});
    // The command line with arguments that are bytes, not text: QProcess would pass them on as UTF-8.
    Result runRaw(const QList<QByteArray>& arguments);
    Result runTool(const QString& program, const QStringList& arguments,
                   const QString& workingDirectory = {});

    // The open shelves as `list --json` gives them; one "list failed" entry when it fails.
    QJsonArray list();
    // The items of the open shelf at `index`.
    QJsonArray items(qsizetype index = 0);
    // The frame of the agent's shelf window on the screen, or an empty one.
    QRect shelfGeometry();
    QRect windowGeometry(const QString& window);
    QPoint pointer();

private:
    QTemporaryDir m_home;
    QProcessEnvironment m_environment;
    QProcess m_agent;
    QByteArray m_log;
};

} // namespace Vantrope::Test
