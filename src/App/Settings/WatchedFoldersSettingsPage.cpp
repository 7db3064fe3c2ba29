// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "WatchedFoldersSettingsPage.h"

#include "Libraries/Core/Localized.h"
#include "WatchedFolderRuleEditor.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <utility>

namespace Vantrope {

namespace {

using State = WatchedFolderController::State;

constexpr int identifierRole = Qt::UserRole;

} // namespace

WatchedFoldersSettingsPage::WatchedFoldersSettingsPage(WatchedFolderController& controller, QWidget* parent)
    : SettingsPage(parent)
    , m_controller(controller)
    , m_list(new QTreeWidget(this))
    , m_add(new QPushButton(QIcon::fromTheme(QStringLiteral("list-add")),
                            Localized("settings.folders.add", "Add Folder…"), this))
    , m_remove(new QPushButton(QIcon::fromTheme(QStringLiteral("list-remove")),
                               Localized("settings.folders.remove", "Remove"), this))
    , m_pause(new QPushButton(Localized("settings.folders.pause", "Pause"), this))
    , m_message(new QLabel(this))
    , m_detail(new QWidget(this))
    , m_detailTitle(new QLabel(m_detail))
    , m_appends(new QCheckBox(Localized("settings.folders.options.append",
                                        "Put new items on the shelf this folder opened while it is open"),
                              m_detail))
    , m_caseSensitive(new QCheckBox(
          Localized("settings.folders.options.case-sensitive", "Rules tell capitals apart"), m_detail))
    , m_nested(new QCheckBox(Localized("settings.folders.options.nested", "Watch the folders inside it too"),
                             m_detail))
    , m_rules(new WatchedFolderRuleEditor(m_detail))
    , m_ruleSaveTimer(new QTimer(this))
{
    m_list->setObjectName(QStringLiteral("watchedFolders"));
    m_add->setObjectName(QStringLiteral("addWatchedFolder"));
    m_remove->setObjectName(QStringLiteral("removeWatchedFolder"));
    m_pause->setObjectName(QStringLiteral("pauseWatchedFolder"));
    m_message->setObjectName(QStringLiteral("watchedFolderMessage"));
    m_appends->setObjectName(QStringLiteral("appendsToInitialShelf"));
    m_caseSensitive->setObjectName(QStringLiteral("rulesCaseSensitive"));
    m_nested->setObjectName(QStringLiteral("observesNestedDirectories"));
    m_rules->setObjectName(QStringLiteral("ruleEditor"));

    QFormLayout* folders = addSection(Localized("settings.folders.section.list", "Watched folders"));
    auto* intro = new QLabel(Localized("settings.folders.intro",
                                       "When something new appears in one of these folders, it is put on a "
                                       "shelf."),
                             this);
    intro->setWordWrap(true);
    folders->addRow(intro);
    m_list->setColumnCount(2);
    m_list->setHeaderLabels({Localized("settings.folders.column.folder", "Folder"),
                             Localized("settings.folders.column.state", "State")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_list->setMinimumHeight(fontMetrics().height() * 7);
    m_list->setMaximumHeight(fontMetrics().height() * 12);
    folders->addRow(m_list);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_add);
    buttons->addWidget(m_remove);
    buttons->addWidget(m_pause);
    buttons->addStretch();
    folders->addRow(buttons);
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setVisible(false);
    folders->addRow(m_message);

    QFont bold = m_detailTitle->font();
    bold.setBold(true);
    m_detailTitle->setFont(bold);
    m_detailTitle->setTextFormat(Qt::PlainText);
    m_detailTitle->setWordWrap(true);
    auto* detailLayout = new QVBoxLayout(m_detail);
    detailLayout->setContentsMargins(0, 12, 0, 0);
    detailLayout->addWidget(m_detailTitle);
    auto* options = new QVBoxLayout;
    options->setContentsMargins(12, 0, 0, 0);
    options->addWidget(m_appends);
    options->addWidget(m_caseSensitive);
    options->addWidget(m_nested);
    options->addSpacing(8);
    options->addWidget(m_rules);
    detailLayout->addLayout(options);
    pageLayout()->addWidget(m_detail);
    finish();

    m_ruleSaveTimer->setSingleShot(true);
    m_ruleSaveTimer->setInterval(ruleSaveDelayMs);
    connect(m_ruleSaveTimer, &QTimer::timeout, this, &WatchedFoldersSettingsPage::saveRules);
    connect(m_rules, &WatchedFolderRuleEditor::edited, m_ruleSaveTimer, qOverload<>(&QTimer::start));
    for (QCheckBox* box : {m_appends, m_caseSensitive, m_nested}) {
        connect(box, &QCheckBox::toggled, this, &WatchedFoldersSettingsPage::saveOptions);
    }
    connect(m_add, &QPushButton::clicked, this, &WatchedFoldersSettingsPage::chooseFolderToAdd);
    connect(m_remove, &QPushButton::clicked, this, &WatchedFoldersSettingsPage::removeSelectedFolder);
    connect(m_pause, &QPushButton::clicked, this, &WatchedFoldersSettingsPage::togglePause);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this,
            &WatchedFoldersSettingsPage::showSelectedFolder);
    connect(&m_controller, &WatchedFolderController::foldersChanged, this,
            &WatchedFoldersSettingsPage::showFolders);
    showFolders();
}

QString WatchedFoldersSettingsPage::stateTitle(State state)
{
    switch (state) {
    case State::active:
        return Localized("settings.folders.state.running", "Running");
    case State::paused:
        return Localized("settings.folders.state.stopped", "Stopped");
    case State::missing:
        return Localized("settings.folders.state.missing", "Missing");
    case State::unreadable:
        return Localized("settings.folders.state.unreadable", "Not readable");
    case State::restricted:
        return Localized("settings.folders.state.restricted", "Restricted: the screenshot shelf watches it");
    case State::inactive:
        break;
    }
    return Localized("settings.folders.state.inactive", "Not running");
}

void WatchedFoldersSettingsPage::showFolders()
{
    const QString selected =
        m_list->currentItem() ? m_list->currentItem()->data(0, identifierRole).toString() : m_shownIdentifier;
    {
        const QSignalBlocker blocker(m_list);
        m_list->clear();
        for (const WatchedFolderController::Folder& folder : m_controller.folders()) {
            auto* item = new QTreeWidgetItem(m_list);
            const QString path = QDir::toNativeSeparators(folder.directory.url.toLocalFile());
            item->setText(0, path);
            item->setToolTip(0, path);
            item->setIcon(0, QIcon::fromTheme(QStringLiteral("folder")));
            item->setText(1, stateTitle(folder.state));
            item->setData(0, identifierRole, folder.directory.identifier);
            item->setData(1, identifierRole, WatchedFolderController::stateName(folder.state));
            if (folder.directory.identifier == selected) {
                m_list->setCurrentItem(item);
            }
        }
        if (!m_list->currentItem() && m_list->topLevelItemCount() > 0) {
            m_list->setCurrentItem(m_list->topLevelItem(0));
        }
    }
    showSelectedFolder();
}

std::optional<WatchedFolderController::Folder> WatchedFoldersSettingsPage::selectedFolder() const
{
    const QTreeWidgetItem* item = m_list->currentItem();
    if (!item) {
        return std::nullopt;
    }
    return folder(item->data(0, identifierRole).toString());
}

std::optional<WatchedFolderController::Folder>
WatchedFoldersSettingsPage::folder(const QString& identifier) const
{
    for (const WatchedFolderController::Folder& folder : m_controller.folders()) {
        if (folder.directory.identifier == identifier) {
            return folder;
        }
    }
    return std::nullopt;
}

void WatchedFoldersSettingsPage::showSelectedFolder()
{
    const auto folder = selectedFolder();
    m_remove->setEnabled(folder.has_value());
    m_pause->setEnabled(folder.has_value());
    m_detail->setVisible(folder.has_value());
    if (!folder) {
        m_shownIdentifier.clear();
        return;
    }
    m_pause->setText(folder->directory.lifecycle.isStopped ? Localized("settings.folders.resume", "Resume")
                                                           : Localized("settings.folders.pause", "Pause"));
    if (folder->directory.identifier == m_shownIdentifier) {
        return;
    }
    // A rule being typed for the folder shown before is saved before another folder takes its place.
    if (m_ruleSaveTimer->isActive()) {
        m_ruleSaveTimer->stop();
        saveRules();
    }
    m_shownIdentifier = folder->directory.identifier;
    m_detailTitle->setText(Localized("settings.folders.detail.title", "Options for %1")
                               .arg(QDir(folder->directory.url.toLocalFile()).dirName()));
    const ObservedDirectory::Options& options = folder->directory.options;
    for (auto [box, value] : {std::pair{m_appends, options.appendsToInitialShelf},
                              std::pair{m_caseSensitive, options.rulesCaseSensitive},
                              std::pair{m_nested, options.observesNestedDirectories}}) {
        const QSignalBlocker blocker(box);
        box->setChecked(value);
    }
    m_rules->setRules(folder->directory.filters);
}

void WatchedFoldersSettingsPage::chooseFolderToAdd()
{
    auto* dialog =
        new QFileDialog(this, Localized("settings.folders.add.title", "Watch a Folder"), QDir::homePath());
    dialog->setObjectName(QStringLiteral("addWatchedFolderDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    connect(dialog, &QFileDialog::fileSelected, this, &WatchedFoldersSettingsPage::addFolder);
    dialog->open();
}

void WatchedFoldersSettingsPage::addFolder(const QString& path)
{
    if (path.isEmpty()) {
        return;
    }
    const auto added = m_controller.add(path);
    if (!added) {
        showMessage(Localized("settings.folders.add.failed", "Could not watch this folder: %1")
                        .arg(added.error().message));
        return;
    }
    showMessage({});
    for (int index = 0; index < m_list->topLevelItemCount(); ++index) {
        QTreeWidgetItem* item = m_list->topLevelItem(index);
        if (item->data(0, identifierRole).toString() == added->directory.identifier) {
            m_list->setCurrentItem(item);
        }
    }
}

void WatchedFoldersSettingsPage::removeSelectedFolder()
{
    const auto folder = selectedFolder();
    if (!folder) {
        return;
    }
    m_ruleSaveTimer->stop();
    m_shownIdentifier.clear();
    const auto removed = m_controller.remove(folder->directory.identifier);
    showMessage(removed ? QString()
                        : Localized("settings.folders.remove.failed", "Could not remove the folder: %1")
                              .arg(removed.error().message));
}

void WatchedFoldersSettingsPage::togglePause()
{
    const auto folder = selectedFolder();
    if (!folder) {
        return;
    }
    const auto result = folder->directory.lifecycle.isStopped
                            ? m_controller.resume(folder->directory.identifier)
                            : m_controller.pause(folder->directory.identifier);
    showMessage(result ? QString() : result.error().message);
}

void WatchedFoldersSettingsPage::saveOptions()
{
    auto folder = this->folder(m_shownIdentifier);
    if (!folder) {
        return;
    }
    folder->directory.options.appendsToInitialShelf = m_appends->isChecked();
    folder->directory.options.rulesCaseSensitive = m_caseSensitive->isChecked();
    folder->directory.options.observesNestedDirectories = m_nested->isChecked();
    const auto changed = m_controller.change(folder->directory);
    showMessage(changed ? QString() : changed.error().message);
}

void WatchedFoldersSettingsPage::saveRules()
{
    auto folder = this->folder(m_shownIdentifier);
    if (!folder) {
        return;
    }
    const auto rules = m_rules->rules();
    if (!rules) {
        // Nothing is saved: the folder keeps the rules it had until these are complete.
        m_rules->showProblem(rules.error());
        return;
    }
    m_rules->showProblem({});
    if (*rules == folder->directory.filters) {
        return;
    }
    folder->directory.filters = *rules;
    const auto changed = m_controller.change(folder->directory);
    showMessage(changed ? QString() : changed.error().message);
}

void WatchedFoldersSettingsPage::showMessage(const QString& text)
{
    m_message->setText(text.isEmpty() ? QString() : QStringLiteral("⚠ ") + text);
    m_message->setVisible(!text.isEmpty());
}

} // namespace Vantrope
