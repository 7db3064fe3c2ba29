// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ApplicationDataSettingsPage.h"

#include "Domains/DirectoryObserver/ObservedDirectoryStore.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Libraries/Core/Localized.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"

#include <QDesktopServices>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QUrl>

namespace Vantrope {

ApplicationDataSettingsPage::ApplicationDataSettingsPage(const QList<Location>& locations,
                                                         QString cacheFolder, Purge purge, QWidget* parent)
    : SettingsPage(parent)
    , m_cacheFolder(std::move(cacheFolder))
    , m_purge(std::move(purge))
    , m_cacheSize(new QLabel(this))
    , m_purgeResult(new QLabel(this))
    , m_purgeButton(new QPushButton(Localized("settings.data.purge", "Clear Temporary Data…"), this))
{
    QFormLayout* places =
        addSection(Localized("settings.data.section.places", "Where Vantrope keeps things"));
    int index = 0;
    for (const Location& location : locations) {
        auto* path = new QLabel(QDir::toNativeSeparators(location.path), this);
        path->setObjectName(QStringLiteral("location%1").arg(index));
        path->setTextFormat(Qt::PlainText);
        path->setTextInteractionFlags(Qt::TextSelectableByMouse);
        path->setWordWrap(true);
        path->setMinimumWidth(fontMetrics().averageCharWidth() * 30);
        auto* open = new QPushButton(QIcon::fromTheme(QStringLiteral("folder-open")),
                                     Localized("settings.data.open-folder", "Open Folder"), this);
        open->setObjectName(QStringLiteral("openLocation%1").arg(index));
        open->setEnabled(QFileInfo(location.path).isDir());
        connect(open, &QPushButton::clicked, this,
                [folder = location.path] { QDesktopServices::openUrl(QUrl::fromLocalFile(folder)); });
        auto* row = new QHBoxLayout;
        row->addWidget(path, 1);
        row->addWidget(open, 0, Qt::AlignTop);
        places->addRow(location.title, row);
        ++index;
    }

    QFormLayout* cache = addSection(Localized("settings.data.section.cache", "Temporary data"));
    m_cacheSize->setObjectName(QStringLiteral("cacheSize"));
    cache->addRow(Localized("settings.data.cache-size", "Size"), m_cacheSize);
    addNote(cache,
            Localized("settings.data.purge.note",
                      "Text turned into files, received files and thumbnails are kept while a shelf "
                      "needs them and cleared by themselves now and then. Clearing now keeps what open "
                      "and recent shelves hold."));
    m_purgeButton->setObjectName(QStringLiteral("purgeTemporaryData"));
    m_purgeButton->setEnabled(static_cast<bool>(m_purge));
    auto* purgeRow = new QHBoxLayout;
    purgeRow->addWidget(m_purgeButton);
    purgeRow->addStretch();
    cache->addRow(purgeRow);
    m_purgeResult->setObjectName(QStringLiteral("purgeResult"));
    m_purgeResult->setWordWrap(true);
    m_purgeResult->setVisible(false);
    cache->addRow(m_purgeResult);
    connect(m_purgeButton, &QPushButton::clicked, this, &ApplicationDataSettingsPage::confirmPurge);
    finish();
    measureCache();
}

ApplicationDataSettingsPage::~ApplicationDataSettingsPage() = default;

QList<ApplicationDataSettingsPage::Location>
ApplicationDataSettingsPage::defaultLocations(const QString& preferencesFile)
{
    QList<Location> locations;
    locations.append({Localized("settings.data.location.settings", "Settings"),
                      QFileInfo(preferencesFile).absolutePath()});
    const QString shelves = QFileInfo(PersistentDragSessionStore::defaultFilePath()).absolutePath();
    locations.append({Localized("settings.data.location.shelves", "Recent shelves"), shelves});
    const QString folders = ObservedDirectoryStore::defaultFilePath();
    if (!folders.isEmpty() && QFileInfo(folders).absolutePath() != shelves) {
        locations.append({Localized("settings.data.location.folders", "Watched folders"),
                          QFileInfo(folders).absolutePath()});
    }
    locations.append({Localized("settings.data.location.cache", "Temporary data"), defaultCacheFolder()});
    if (const auto logs = TemporaryDirectories::path(ReservedTemporaryDirectory::logs)) {
        locations.append({Localized("settings.data.location.logs", "Log files"), *logs});
    }
    return locations;
}

QString ApplicationDataSettingsPage::defaultCacheFolder()
{
    return TemporaryDirectories::temporaryDirectory().value_or(QString());
}

qint64 ApplicationDataSettingsPage::folderSize(const QString& folder)
{
    if (folder.isEmpty()) {
        return 0;
    }
    qint64 total = 0;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        total += files.nextFileInfo().size();
    }
    return total;
}

void ApplicationDataSettingsPage::measureCache()
{
    m_cacheSize->setText(Localized("settings.data.cache-size.measuring", "Measuring…"));
    const int measurement = ++m_measurement;
    m_queue.async([folder = m_cacheFolder, page = QPointer<ApplicationDataSettingsPage>(this), measurement] {
        const qint64 bytes = folderSize(folder);
        DispatchQueue::main().async([page, measurement, bytes] {
            // Only the last measurement counts: an earlier one may finish after it.
            if (!page || measurement != page->m_measurement) {
                return;
            }
            page->m_cacheSize->setText(QLocale().formattedDataSize(bytes));
            Q_EMIT page->cacheSizeShown(bytes);
        });
    });
}

void ApplicationDataSettingsPage::confirmPurge()
{
    auto* question = new QMessageBox(
        QMessageBox::Question, Localized("settings.data.purge.title", "Clear Temporary Data?"),
        Localized("settings.data.purge.question", "Vantrope removes the files it made for shelves that are "
                                                  "closed and no longer among the recent shelves. Open and "
                                                  "recent shelves keep their items."),
        QMessageBox::Cancel, this);
    question->setObjectName(QStringLiteral("purgeConfirmation"));
    question->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton* clear =
        question->addButton(Localized("settings.data.purge.confirm", "Clear"), QMessageBox::DestructiveRole);
    clear->setObjectName(QStringLiteral("confirmPurge"));
    question->setDefaultButton(QMessageBox::Cancel);
    connect(question, &QMessageBox::buttonClicked, this, [this, clear](QAbstractButton* button) {
        if (button == clear) {
            purge();
        }
    });
    question->open();
}

void ApplicationDataSettingsPage::purge()
{
    m_purgeButton->setEnabled(false);
    m_purgeResult->setText(Localized("settings.data.purge.running", "Clearing…"));
    m_purgeResult->setVisible(true);
    m_purge(
        [page = QPointer<ApplicationDataSettingsPage>(this)](const TemporaryDataSanitizer::Result& result) {
            if (!page) {
                return;
            }
            page->m_purgeButton->setEnabled(true);
            QString text = Localized("settings.data.purge.done", "Items removed: %n.", result.removed);
            if (result.busy > 0) {
                text += QLatin1Char(' ') + Localized("settings.data.purge.busy",
                                                     "%n still being written, kept for now.", result.busy);
            }
            if (result.failed > 0) {
                text += QLatin1Char(' ') +
                        Localized("settings.data.purge.failed", "%n could not be removed.", result.failed);
            }
            page->m_purgeResult->setText(text);
            page->measureCache();
        });
}

} // namespace Vantrope
