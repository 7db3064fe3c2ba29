// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QByteArray>
#include <QPoint>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QtMessageHandler>

namespace Vantrope::Test {

// Collects every log message emitted while it lives, so a test can check the program's own log lines.
class LogCapture final {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList messages() const;
    bool contains(const QString& fragment) const;
    int count(const QString& fragment) const;
    void clear();

private:
    QtMessageHandler m_previous = nullptr;
};

// Points XDG_DATA_HOME, XDG_CONFIG_HOME and XDG_CACHE_HOME into a fresh temporary folder and turns on
// QStandardPaths' test mode, so a test never touches the real home.
void isolateStandardPaths();

bool writeFile(const QString& path, const QByteArray& data);
QByteArray readFile(const QString& path);
// Every file below `folder`, hidden ones too, as paths.
QStringList filesUnder(const QString& folder);

// The description of a failed result, for QVERIFY2; empty for a success. QVERIFY2 builds its message
// even when the check passes, so the error may only be read on failure.
template<typename Result> QByteArray failureText(const Result& result)
{
    return result ? QByteArray() : result.error().description().toUtf8();
}

// Runs xdotool with `arguments` (a PointerScript's, say) while this thread's event loop goes on, so the
// program under test answers the input as it comes. True when xdotool finished in time and succeeded.
bool runXdotool(const QStringList& arguments, int timeoutMilliseconds = 30000);

// One of the small programs that play the other side of a drag on the test display. Each prints
// "ready X Y" (its centre in root coordinates) once it is placed, then a line for each thing it saw.
class HelperProgram final {
public:
    HelperProgram();
    ~HelperProgram();
    HelperProgram(const HelperProgram&) = delete;
    HelperProgram& operator=(const HelperProgram&) = delete;

    // Starts it and waits until it is placed: its centre, or a null point.
    QPoint start(const QString& program, const QStringList& arguments = {});
    // Kills it and forgets what it printed.
    void stop();
    // True once it has printed `text`.
    bool waitFor(const QByteArray& text, int timeoutMilliseconds = 15000);
    // Everything it has printed so far.
    QByteArray output();
    // What a drop target printed on its "type TYPE VALUE" line.
    QByteArray typeValue(const QByteArray& type);

private:
    QProcess m_process;
    QByteArray m_output;
};

// Makes another program own the drag selection, as its own drag would.
bool takeDragSelection();

// While it lives, a folder without permissions that this thread cannot list even as root: it drops the
// capabilities that override permissions. The destructor gives them back and the owner every permission.
// Where the folder can still be listed (some sandboxes), isEnforced() is false and the test should skip.
class UnreadableFolder final {
public:
    explicit UnreadableFolder(const QString& folder);
    ~UnreadableFolder();
    UnreadableFolder(const UnreadableFolder&) = delete;
    UnreadableFolder& operator=(const UnreadableFolder&) = delete;

    bool isEnforced() const;

private:
    QString m_folder;
    quint32 m_savedCapabilities[2] = {0, 0};
    bool m_dropped = false;
};

} // namespace Vantrope::Test
