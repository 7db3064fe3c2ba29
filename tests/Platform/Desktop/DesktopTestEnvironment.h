// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QTemporaryDir>
#include <QUrl>

namespace Vantrope::Test {

// A desktop of the test's own for GIO: the XDG data and config folders point into a temporary home that
// holds the test's .desktop files and mimeapps.list, beside the system's MIME database. Must be made
// before anything asks GIO about applications: GIO reads the folders once.
//
// Its applications: "test-painter" and "test-viewer" take PNG and JPEG (the painter is the default for
// PNG, the viewer for JPEG), "test-png" only PNG, "test-jpeg" only JPEG, "test-hidden" takes both but
// is hidden from menus. "test-recorder" takes plain text, folders and PNG and is their default for text
// and folders: it appends each argument it gets, one a line, to recorded().
class DesktopTestEnvironment final {
public:
    DesktopTestEnvironment()
    {
        isolateStandardPaths();
        const QString data = QString::fromLocal8Bit(qgetenv("XDG_DATA_HOME"));
        const QString config = QString::fromLocal8Bit(qgetenv("XDG_CONFIG_HOME"));
        const QString system = m_root.filePath(QStringLiteral("system"));
        m_applications = data + QStringLiteral("/applications");
        QDir().mkpath(m_applications);
        QDir().mkpath(system);
        QDir().mkpath(config);
        // The MIME database stays the system's; the applications are ours alone.
        QFile::link(QStringLiteral("/usr/share/mime"), system + QStringLiteral("/mime"));
        qputenv("XDG_DATA_DIRS", system.toLocal8Bit());

        m_recorded = m_root.filePath(QStringLiteral("recorded.txt"));
        const QString script = m_root.filePath(QStringLiteral("record.sh"));
        writeFile(script, "#!/bin/sh\nfor argument in \"$@\"; do printf '%s\\n' \"$argument\"; done >> '" +
                              m_recorded.toLocal8Bit() + "'\n");
        QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

        addApplication(QStringLiteral("test-painter"), "Test Painter", "image/png;image/jpeg;");
        addApplication(QStringLiteral("test-viewer"), "Test Viewer", "image/png;image/jpeg;");
        addApplication(QStringLiteral("test-png"), "Test PNG Only", "image/png;");
        addApplication(QStringLiteral("test-jpeg"), "Test JPEG Only", "image/jpeg;");
        addApplication(QStringLiteral("test-hidden"), "Test Hidden", "image/png;image/jpeg;",
                       "NoDisplay=true\n");
        addApplication(QStringLiteral("test-recorder"), "Test Recorder",
                       "text/plain;inode/directory;image/png;", {},
                       "/bin/sh " + script.toLocal8Bit() + " %U");
        writeFile(config + QStringLiteral("/mimeapps.list"), "[Default Applications]\n"
                                                             "image/png=test-painter.desktop\n"
                                                             "image/jpeg=test-viewer.desktop\n"
                                                             "text/plain=test-recorder.desktop\n"
                                                             "inode/directory=test-recorder.desktop\n");
    }

    void addApplication(const QString& id, const QByteArray& name, const QByteArray& mimeTypes,
                        const QByteArray& extra = {}, const QByteArray& exec = "/bin/true %U")
    {
        writeFile(applicationFile(id), "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + exec +
                                           "\nIcon=" + id.toUtf8() + "-icon\nMimeType=" + mimeTypes + "\n" +
                                           extra);
        refresh();
    }

    void removeApplication(const QString& id)
    {
        QFile::remove(applicationFile(id));
        refresh();
    }

    // GIO finds the applications of a type in the folder's mimeinfo.cache, as a package's installation
    // leaves it.
    void refresh() const
    {
        QProcess::execute(QStringLiteral("update-desktop-database"), {QStringLiteral("-q"), m_applications});
    }

    QString applicationFile(const QString& id) const
    {
        return m_applications + QLatin1Char('/') + id + QStringLiteral(".desktop");
    }

    // The arguments test-recorder was started with so far, one a line.
    QStringList recorded() const
    {
        const QString text = QString::fromUtf8(readFile(m_recorded));
        return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    // GIO hands a local file to "%U" as its path or as its URI; either way, the paths, without a
    // folder's closing slash.
    static QStringList asPaths(const QStringList& arguments)
    {
        QStringList paths;
        for (const QString& argument : arguments) {
            QString path =
                argument.startsWith(QStringLiteral("file:")) ? QUrl(argument).toLocalFile() : argument;
            if (path.size() > 1 && path.endsWith(QLatin1Char('/'))) {
                path.chop(1);
            }
            paths.append(path);
        }
        return paths;
    }

    void clearRecorded() const { QFile::remove(m_recorded); }

    QString root() const { return m_root.path(); }

private:
    QTemporaryDir m_root;
    QString m_applications;
    QString m_recorded;
};

} // namespace Vantrope::Test
