// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/TemporaryDataSanitizer.h"
#include "Libraries/Core/DispatchQueue.h"
#include "SettingsPage.h"

#include <functional>
#include <QList>

class QLabel;
class QPushButton;

namespace Vantrope {

// Where the program keeps its files, how much its cache takes, and clearing what closed shelves left.
class ApplicationDataSettingsPage final : public SettingsPage {
    Q_OBJECT
public:
    struct Location {
        QString title;
        QString path;
    };
    using PurgeCompletion = std::function<void(const TemporaryDataSanitizer::Result&)>;
    // Clears the temporary data no open or recent shelf holds; calls back on the main thread.
    using Purge = std::function<void(PurgeCompletion)>;

    // `cacheFolder` is measured, off the main thread.
    ApplicationDataSettingsPage(const QList<Location>& locations, QString cacheFolder, Purge purge,
                                QWidget* parent = nullptr);
    ~ApplicationDataSettingsPage() override;

    // The program's own folders for the user running it.
    static QList<Location> defaultLocations(const QString& preferencesFile);
    static QString defaultCacheFolder();
    // Every byte of the regular files under `folder`; links are not followed.
    static qint64 folderSize(const QString& folder);

    // Measures the cache again; `cacheSizeShown` follows.
    void measureCache();

Q_SIGNALS:
    void cacheSizeShown(qint64 bytes);

private:
    void confirmPurge();
    void purge();

    QString m_cacheFolder;
    Purge m_purge;
    QLabel* m_cacheSize;
    QLabel* m_purgeResult;
    QPushButton* m_purgeButton;
    int m_measurement = 0;
    DispatchQueue m_queue{QStringLiteral("settings-cache-size")};
};

} // namespace Vantrope
