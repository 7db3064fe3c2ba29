// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SettingsWindow.h"

#include "Libraries/Core/Localized.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsPreferenceStorage.h"
#include "Settings/ActivationAvailability.h"
#include "Settings/ActivationSettingsPage.h"
#include "Settings/GeneralSettingsPage.h"
#include "Settings/ScreenshotSettingsPage.h"
#include "Settings/ShelvesSettingsPage.h"
#include "Settings/WatchedFoldersSettingsPage.h"

#include <algorithm>
#include <QFrame>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QScrollArea>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Vantrope {

namespace {

constexpr int identifierRole = Qt::UserRole;

QIcon themeIcon(const QString& name)
{
    // Desktops without a theme of their own (a bare window manager) still have the freedesktop one.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QStringLiteral("hicolor")) {
        if (QIcon::fallbackThemeName().isEmpty() || QIcon::fallbackThemeName() == QStringLiteral("hicolor")) {
            QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
        }
    }
    QIcon icon = QIcon::fromTheme(name);
    if (icon.isNull()) {
        icon = QIcon::fromTheme(name + QStringLiteral("-symbolic"));
    }
    if (icon.isNull()) {
        icon = QIcon::fromTheme(QStringLiteral("preferences-other"));
    }
    return icon;
}

} // namespace

SettingsWindow::SettingsWindow(Preferences& preferences, QWidget* parent)
    : SettingsWindow(Context{preferences}, parent)
{}

SettingsWindow::SettingsWindow(const Context& context, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_preferences(context.preferences)
    , m_sidebar(new QListWidget(this))
    , m_title(new QLabel(this))
    , m_pages(new QStackedWidget(this))
    , m_pageToRestore(context.preferences.value(PreferenceKeys::lastSettingsPage))
{
    setObjectName(QStringLiteral("Vantrope.SettingsWindow"));
    setWindowTitle(Localized("settings.window.title", "Vantrope Settings"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/vantrope.svg")));

    m_sidebar->setObjectName(QStringLiteral("settingsSidebar"));
    m_sidebar->setAccessibleName(Localized("settings.window.sidebar", "Settings pages"));
    m_sidebar->setIconSize(QSize(22, 22));
    m_sidebar->setFrameShape(QFrame::NoFrame);
    m_sidebar->setSpacing(2);
    m_sidebar->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_sidebar->setBackgroundRole(QPalette::Window);
    m_sidebar->viewport()->setBackgroundRole(QPalette::Window);
    m_sidebar->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);

    QFont titleFont = m_title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.35);
    titleFont.setBold(true);
    m_title->setFont(titleFont);
    m_title->setObjectName(QStringLiteral("settingsPageTitle"));

    auto* separator = new QFrame(this);
    separator->setFrameShape(QFrame::VLine);
    separator->setFrameShadow(QFrame::Sunken);

    auto* content = new QVBoxLayout;
    content->setContentsMargins(18, 14, 18, 14);
    content->addWidget(m_title);
    content->addSpacing(6);
    content->addWidget(m_pages, 1);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* sidebarBox = new QVBoxLayout;
    sidebarBox->setContentsMargins(8, 10, 8, 10);
    sidebarBox->addWidget(m_sidebar);
    layout->addLayout(sidebarBox);
    layout->addWidget(separator);
    layout->addLayout(content, 1);

    connect(m_sidebar, &QListWidget::currentRowChanged, this, &SettingsWindow::pageChosen);

    const ActivationAvailability availability =
        ActivationAvailability::of(context.session, context.dragMonitor);
    addPage(generalPage, Localized("settings.page.general", "General"), QStringLiteral("preferences-system"),
            new GeneralSettingsPage(context.preferences, availability));
    addPage(shelvesPage, Localized("settings.page.shelves", "Shelves"), QStringLiteral("user-desktop"),
            new ShelvesSettingsPage(context.preferences));
    addPage(activationPage, Localized("settings.page.activation", "Activation"),
            QStringLiteral("input-mouse"),
            new ActivationSettingsPage(context.preferences, availability, context.dragMonitor));
    if (context.watchedFolders) {
        addPage(watchedFoldersPage, Localized("settings.page.watched-folders", "Watched Folders"),
                QStringLiteral("folder-saved-search"),
                new WatchedFoldersSettingsPage(*context.watchedFolders));
    }
    if (context.screenshots) {
        addPage(screenshotsPage, Localized("settings.page.screenshots", "Screenshots"),
                QStringLiteral("applets-screenshooter"),
                new ScreenshotSettingsPage(context.preferences, *context.screenshots,
                                           context.screenshotFolderChanged));
    }
    QString preferencesFile = context.preferencesFile;
    if (preferencesFile.isEmpty()) {
        const auto* file = dynamic_cast<const SettingsPreferenceStorage*>(&context.preferences.storage());
        preferencesFile = file ? file->filePath() : SettingsPreferenceStorage::defaultFilePath();
    }
    addPage(applicationDataPage, Localized("settings.page.application-data", "Application Data"),
            QStringLiteral("drive-harddisk"),
            new ApplicationDataSettingsPage(ApplicationDataSettingsPage::defaultLocations(preferencesFile),
                                            ApplicationDataSettingsPage::defaultCacheFolder(),
                                            context.purgeTemporaryData));
    if (m_sidebar->currentRow() < 0) {
        const QSignalBlocker blocker(m_sidebar);
        m_sidebar->setCurrentRow(0);
        showRow(0);
    }

    const int lineHeight = fontMetrics().height();
    resize(lineHeight * 60, lineHeight * 44);

    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    connect(new QShortcut(QKeySequence::Quit, this), &QShortcut::activated, this,
            &SettingsWindow::quitRequested);
}

bool SettingsWindow::addPage(const QString& identifier, const QString& title, const QString& iconName,
                             QWidget* page, const QString& before)
{
    if (!page || pageIdentifiers().contains(identifier)) {
        delete page;
        return false;
    }
    page->setObjectName(identifier);
    auto* scroll = new QScrollArea(m_pages);
    scroll->setObjectName(identifier + QStringLiteral("-scroll"));
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setBackgroundRole(QPalette::Window);

    int row = m_sidebar->count();
    if (!before.isEmpty()) {
        const int found = pageIdentifiers().indexOf(before);
        row = found >= 0 ? found : row;
    }
    auto* item = new QListWidgetItem(themeIcon(iconName), title);
    item->setData(identifierRole, identifier);
    item->setSizeHint(QSize(0, std::max(32, fontMetrics().height() + 14)));
    {
        const QSignalBlocker blocker(m_sidebar);
        m_sidebar->insertItem(row, item);
        m_pages->insertWidget(row, scroll);
    }
    // Wide enough for the longest title, never narrower than a sidebar looks right.
    int width = 0;
    for (int index = 0; index < m_sidebar->count(); ++index) {
        width = std::max(width, fontMetrics().horizontalAdvance(m_sidebar->item(index)->text()));
    }
    m_sidebar->setFixedWidth(
        std::max(width + m_sidebar->iconSize().width() + 48, fontMetrics().height() * 11));
    const QSignalBlocker blocker(m_sidebar);
    if (identifier == m_pageToRestore) {
        m_pageToRestore.clear();
        m_sidebar->setCurrentRow(row);
    }
    if (m_sidebar->currentRow() >= 0) {
        // Inserting before the page on show moved its row.
        showRow(m_sidebar->currentRow());
    }
    return true;
}

QStringList SettingsWindow::pageIdentifiers() const
{
    QStringList identifiers;
    for (int index = 0; index < m_sidebar->count(); ++index) {
        identifiers.append(m_sidebar->item(index)->data(identifierRole).toString());
    }
    return identifiers;
}

QWidget* SettingsWindow::page(const QString& identifier) const
{
    const int row = pageIdentifiers().indexOf(identifier);
    if (row < 0) {
        return nullptr;
    }
    return static_cast<QScrollArea*>(m_pages->widget(row))->widget();
}

QString SettingsWindow::currentPage() const
{
    const QListWidgetItem* item = m_sidebar->currentItem();
    return item ? item->data(identifierRole).toString() : QString();
}

bool SettingsWindow::showPage(const QString& identifier)
{
    const int row = pageIdentifiers().indexOf(identifier);
    if (row < 0) {
        return false;
    }
    m_sidebar->setCurrentRow(row);
    return true;
}

void SettingsWindow::showRow(int row)
{
    m_pages->setCurrentIndex(row);
    m_title->setText(m_sidebar->item(row)->text());
}

void SettingsWindow::pageChosen(int row)
{
    if (row < 0) {
        return;
    }
    showRow(row);
    // A page chosen now outranks one remembered that is not there yet.
    m_pageToRestore.clear();
    const QString identifier = m_sidebar->item(row)->data(identifierRole).toString();
    if (m_preferences.value(PreferenceKeys::lastSettingsPage) != identifier) {
        m_preferences.setValue(PreferenceKeys::lastSettingsPage, identifier);
    }
}

} // namespace Vantrope
