// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ScreenshotSettingsPage.h"

#include "Domains/UserScreenshot/UserScreenshotObserver.h"
#include "Libraries/Core/Localized.h"
#include "PreferenceBinding.h"
#include "Preferences/Preferences.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace Vantrope {

ScreenshotSettingsPage::ScreenshotSettingsPage(Preferences& preferences, UserScreenshotObserver& observer,
                                               std::function<void()> folderChanged, QWidget* parent)
    : SettingsPage(parent)
    , m_observer(observer)
    , m_folderChanged(std::move(folderChanged))
    , m_folder(new QLabel(this))
    , m_folderProblem(new QLabel(this))
{
    QFormLayout* shelf = addSection(Localized("settings.screenshots.section.shelf", "Screenshot shelf"));
    auto* enabled = addCheckBox(shelf, QStringLiteral("screenshotObservationEnabled"),
                                PreferenceBinding::label(PreferenceKey::screenshotObservationEnabled));
    PreferenceBinding::bind(enabled, preferences, PreferenceKeys::screenshotObservationEnabled);
    addNote(shelf, Localized("settings.screenshots.note",
                             "Screenshots are recognised by the names and marks the desktop's screenshot "
                             "tools give them; other pictures saved in the folder stay where they are."));

    m_folder->setObjectName(QStringLiteral("screenshotFolder"));
    m_folder->setTextFormat(Qt::PlainText);
    m_folder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_folder->setWordWrap(true);
    auto* change = new QPushButton(Localized("settings.screenshots.folder.change", "Change…"), this);
    change->setObjectName(QStringLiteral("changeScreenshotFolder"));
    auto* folderRow = new QHBoxLayout;
    folderRow->addWidget(m_folder, 1);
    folderRow->addWidget(change);
    shelf->addRow(Localized("settings.screenshots.folder", "Folder"), folderRow);
    m_folderProblem->setObjectName(QStringLiteral("screenshotFolderProblem"));
    m_folderProblem->setWordWrap(true);
    m_folderProblem->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    shelf->addRow(QString(), m_folderProblem);
    connect(change, &QPushButton::clicked, this, &ScreenshotSettingsPage::chooseFolder);

    auto* distribution = new QComboBox(this);
    distribution->setObjectName(QStringLiteral("screenshotObservationDistributionOption"));
    distribution->addItem(Localized("settings.screenshots.distribution.new", "A new shelf for each"),
                          QStringLiteral("newShelf"));
    distribution->addItem(
        Localized("settings.screenshots.distribution.append", "The open screenshot shelf, if there is one"),
        QStringLiteral("append"));
    PreferenceBinding::bind(distribution, preferences,
                            PreferenceKeys::screenshotObservationDistributionOption);
    shelf->addRow(PreferenceBinding::label(PreferenceKey::screenshotObservationDistributionOption),
                  distribution);

    PreferenceBinding::bind(
        addCheckBox(shelf, QStringLiteral("userScreenshotCopyToClipboard"),
                    PreferenceBinding::label(PreferenceKey::userScreenshotCopyToClipboard)),
        preferences, PreferenceKeys::userScreenshotCopyToClipboard);
    PreferenceBinding::bind(
        addCheckBox(shelf, QStringLiteral("userScreenshotShowConfirmationMessage"),
                    PreferenceBinding::label(PreferenceKey::userScreenshotShowConfirmationMessage)),
        preferences, PreferenceKeys::userScreenshotShowConfirmationMessage);
    showFolder();
    finish();
}

void ScreenshotSettingsPage::showFolder()
{
    const auto stored = m_observer.directory();
    const QString path = stored ? stored->toLocalFile() : UserScreenshotObserver::defaultDirectory();
    m_folder->setText(QDir::toNativeSeparators(path));
    const QFileInfo info(path);
    QString problem;
    if (!info.isDir()) {
        problem =
            UserScreenshotObserver::message(UserScreenshotObserver::ValidationError::nonExistingDirectory);
    } else if (!info.isReadable()) {
        problem =
            UserScreenshotObserver::message(UserScreenshotObserver::ValidationError::inaccessibleDirectory);
    }
    m_folderProblem->setText(problem.isEmpty() ? QString() : QStringLiteral("⚠ ") + problem);
    m_folderProblem->setVisible(!problem.isEmpty());
}

void ScreenshotSettingsPage::chooseFolder()
{
    const auto stored = m_observer.directory();
    auto* dialog =
        new QFileDialog(this, Localized("settings.screenshots.folder.title", "Folder for Screenshots"),
                        stored ? stored->toLocalFile() : UserScreenshotObserver::defaultDirectory());
    dialog->setObjectName(QStringLiteral("screenshotFolderDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) {
        if (path.isEmpty()) {
            return;
        }
        m_observer.changeDirectory(QUrl::fromLocalFile(QDir::cleanPath(path)));
        if (m_folderChanged) {
            m_folderChanged();
        }
        showFolder();
    });
    dialog->open();
}

} // namespace Vantrope
