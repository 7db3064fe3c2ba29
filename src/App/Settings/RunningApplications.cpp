// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "RunningApplications.h"

#include "Domains/Activation/DragMonitor.h"

#include <algorithm>
#include <optional>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QStandardPaths>

namespace Vantrope {

namespace {

void sortByTitle(QList<RunningApplications::Application>& applications)
{
    std::sort(applications.begin(), applications.end(),
              [](const auto& a, const auto& b) { return a.title.localeAwareCompare(b.title) < 0; });
}

// The program of an Exec line: its first word without arguments or folders.
QString executableName(const QString& exec)
{
    QString first = exec.trimmed().section(QLatin1Char(' '), 0, 0);
    first.remove(QLatin1Char('"'));
    return QFileInfo(first).fileName();
}

} // namespace

QList<RunningApplications::Application> RunningApplications::running(DragMonitor& monitor)
{
    QList<Application> applications;
    QSet<QString> seen;
    for (const DragMonitor::WindowEntry& window : monitor.windowList()) {
        if (window.isDock || window.ownerName.isEmpty() || seen.contains(window.ownerName)) {
            continue;
        }
        seen.insert(window.ownerName);
        applications.append({window.ownerName, window.ownerName});
    }
    sortByTitle(applications);
    return applications;
}

QList<RunningApplications::Application> RunningApplications::installed()
{
    QHash<QString, Application> byName;
    // Earlier folders win, as for the desktop itself.
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
        const QDir directory(folder);
        for (const QString& entry : directory.entryList({QStringLiteral("*.desktop")}, QDir::Files)) {
            if (const auto application = fromDesktopFile(directory.filePath(entry))) {
                if (!byName.contains(application->name)) {
                    byName.insert(application->name, *application);
                }
            }
        }
    }
    QList<Application> applications = byName.values();
    sortByTitle(applications);
    return applications;
}

std::optional<RunningApplications::Application> RunningApplications::fromDesktopFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return std::nullopt;
    }
    bool inEntry = false;
    QString name;
    QString exec;
    QString windowClass;
    QString type;
    bool hidden = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            inEntry = line == QStringLiteral("[Desktop Entry]");
            continue;
        }
        if (!inEntry) {
            continue;
        }
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals <= 0) {
            continue;
        }
        const QString key = line.left(equals).trimmed();
        const QString value = line.mid(equals + 1).trimmed();
        if (key == QStringLiteral("Name")) {
            name = value;
        } else if (key == QStringLiteral("Exec")) {
            exec = value;
        } else if (key == QStringLiteral("StartupWMClass")) {
            windowClass = value;
        } else if (key == QStringLiteral("Type")) {
            type = value;
        } else if ((key == QStringLiteral("NoDisplay") || key == QStringLiteral("Hidden")) &&
                   value == QStringLiteral("true")) {
            hidden = true;
        }
    }
    if (hidden || type != QStringLiteral("Application") || name.isEmpty()) {
        return std::nullopt;
    }
    const QString identifier = windowClass.isEmpty() ? executableName(exec) : windowClass;
    if (identifier.isEmpty()) {
        return std::nullopt;
    }
    return Application{identifier, name};
}

} // namespace Vantrope
