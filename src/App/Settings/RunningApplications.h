// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace Vantrope {

class DragMonitor;

// The programs a person can pick to ignore, by the names the drag recognizer compares: the class of
// their windows, as the window system reports it.
class RunningApplications final {
public:
    struct Application {
        // What the recognizer compares and the preference stores.
        QString name;
        // What the list shows: the desktop file's name where one is known.
        QString title;
        bool operator==(const Application&) const = default;
    };

    RunningApplications() = delete;

    // Owners of the windows on screen now, panels left out, each once, sorted by title.
    static QList<Application> running(DragMonitor& monitor);
    // Programs with a desktop file in the XDG application folders, named by their window class when the
    // file gives one and by their executable otherwise.
    static QList<Application> installed();
    // A desktop file's application, when it is one a person launches.
    static std::optional<Application> fromDesktopFile(const QString& path);
};

} // namespace Vantrope
