// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "App/DragMonitorFactory.h"
#include "App/Settings/ActivationAvailability.h"
#include "App/Settings/RunningApplications.h"
#include "App/Settings/WatchedFoldersSettingsPage.h"
#include "App/SettingsService.h"
#include "App/SettingsWindow.h"
#include "Domains/DirectoryObserver/DirectoryObserverCoordinator.h"
#include "Domains/DirectoryObserver/ObservedDirectoryStore.h"
#include "Domains/DirectoryObserver/WatchedFolderController.h"
#include "Domains/DragSession/TemporaryDataSanitizer.h"
#include "Domains/UserScreenshot/UserScreenshotObserver.h"
#include "Libraries/Core/BookmarkStore.h"
#include "Libraries/Core/Clock.h"
#include "Platform/Linux/InotifyDirectoryWatcher.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsPreferenceStorage.h"
#include "support/TestSupport.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QStandardPaths>
#include <QStyleOptionButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x2b, 0x2b, 0x2b));
    palette.setColor(QPalette::WindowText, QColor(0xee, 0xee, 0xee));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x1e));
    palette.setColor(QPalette::AlternateBase, QColor(0x33, 0x33, 0x33));
    palette.setColor(QPalette::Text, QColor(0xee, 0xee, 0xee));
    palette.setColor(QPalette::Button, QColor(0x3a, 0x3a, 0x3a));
    palette.setColor(QPalette::ButtonText, QColor(0xee, 0xee, 0xee));
    palette.setColor(QPalette::Highlight, QColor(0x35, 0x84, 0xe4));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0xa0, 0xa0, 0xa0));
    palette.setColor(QPalette::Light, QColor(0x4a, 0x4a, 0x4a));
    palette.setColor(QPalette::Midlight, QColor(0x3e, 0x3e, 0x3e));
    palette.setColor(QPalette::Mid, QColor(0x30, 0x30, 0x30));
    palette.setColor(QPalette::Dark, QColor(0x1a, 0x1a, 0x1a));
    palette.setColor(QPalette::Shadow, Qt::black);
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x80, 0x80, 0x80));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x80, 0x80, 0x80));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x80, 0x80, 0x80));
    return palette;
}

// Types `path` into the widget file dialog that `owner` opened, and accepts it.
bool chooseInFileDialog(QWidget* owner, const QString& dialogName, const QString& path)
{
    QFileDialog* dialog = nullptr;
    if (!QTest::qWaitFor([&] {
            dialog = owner->findChild<QFileDialog*>(dialogName);
            return dialog && dialog->isVisible();
        })) {
        return false;
    }
    auto* name = dialog->findChild<QLineEdit*>(u"fileNameEdit"_s);
    if (!name) {
        return false;
    }
    // Pasted whole, as typing it a letter at a time lets the dialog's completion rewrite it.
    QGuiApplication::clipboard()->setText(path);
    QTest::keyClick(name, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(name, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(name, Qt::Key_Return);
    return QTest::qWaitFor([&] { return !owner->findChild<QFileDialog*>(dialogName); });
}

// Clicks the box itself: the widget may reach far beyond its label, where a click does nothing.
void clickCheckBox(QCheckBox* box)
{
    QStyleOptionButton option;
    option.initFrom(box);
    option.text = box->text();
    const QRect indicator = box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box);
    QTest::mouseClick(box, Qt::LeftButton, {}, indicator.center());
}

void eraseAndType(QLineEdit* edit, const QString& text)
{
    QTest::mouseClick(edit, Qt::LeftButton);
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClicks(edit, text);
}

} // namespace

// The settings window through its real controls on a real display: what the controls write lands in
// the files the program reads, and what changes elsewhere shows in the controls.
class TestSettingsWindow final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        m_lightPalette = QApplication::palette();
    }

    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(m_home->isValid());
        m_preferencesFile = m_home->filePath(u"preferences.json"_s);
        m_preferences =
            std::make_unique<Preferences>(std::make_unique<SettingsPreferenceStorage>(m_preferencesFile));
        m_preferences->registerDefaults();
        m_foldersFile = m_home->filePath(u".observed_directories"_s);
        m_store = std::make_unique<ObservedDirectoryStore>(m_foldersFile, false);
        m_coordinator = std::make_unique<DirectoryObserverCoordinator>(Clock::system(), m_watcher);
        m_folders =
            std::make_unique<WatchedFolderController>(*m_store, *m_coordinator, Clock::system(), m_watcher);
        m_folders->startAtLaunch();
        m_screenshotBookmarks = std::make_unique<BookmarkStore>(u"settings-test-screenshot"_s, 1);
        m_screenshots =
            std::make_unique<UserScreenshotObserver>(*m_screenshotBookmarks, m_watcher, Clock::system());
        m_sanitizer = std::make_unique<TemporaryDataSanitizer>(TemporaryDataSanitizer::reservedDirectories(),
                                                               *m_preferences, Clock::system());
        m_monitor = DragMonitorFactory::create(DisplayEnvironment::detect());
        m_screenshotFolderChanges = 0;
        m_kept.clear();
        m_window = makeWindow();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    void cleanup()
    {
        m_window.reset();
        m_monitor.reset();
        m_sanitizer.reset();
        m_screenshots.reset();
        m_screenshotBookmarks.reset();
        m_folders.reset();
        m_coordinator.reset();
        m_store.reset();
        m_preferences.reset();
        m_home.reset();
    }

    void checkBoxWritesThePreferencesFile_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("storedName");
        // The box says the opposite of the stored key.
        QTest::addColumn<bool>("inverted");
        const auto row = [](const char* page, const char* control, const char* stored,
                            bool inverted = false) {
            QTest::addRow("%s %s", page, control) << QString::fromLatin1(page) << QString::fromLatin1(control)
                                                  << QString::fromLatin1(stored) << inverted;
        };
        row("general", "launchAtLogin", "LaunchAtLogin");
        row("general", "prefersHiddenStatusItem", "PrefersHiddenStatusItem");
        row("general", "fileLoggingEnabled", "FileLoggingEnabled");
        row("shelves", "copiesContentOnDrag", "CopiesContentOnDrag");
        row("shelves", "alwaysCloseShelf", "AlwaysCloseShelf");
        row("shelves", "keepShelfInSpace", "KeepShelfInSpace");
        row("shelves", "shelfLabelsEnabled", "ShelfLabelsEnabled");
        row("shelves", "shelfRetractionEnabled", "ShelfRetractionEnabled");
        row("shelves", "automaticWindowSnappingEnabled", "AutomaticWindowSnappingEnabled");
        row("shelves", "draggableTextForcesPlainText", "DraggableTextForcesPlainText");
        row("activation", "shakeGestureEnabled", "ShakeGestureDisabled", true);
        row("activation", "shelfTriggerModifierKeyEnabled", "ShelfTriggerModifierKeyEnabled");
        row("activation", "notchDragEnabled", "NotchDragEnabled");
        row("screenshots", "screenshotObservationEnabled", "ScreenshotObservationEnabled");
        row("screenshots", "userScreenshotCopyToClipboard", "UserScreenshotCopyToClipboard");
        row("screenshots", "userScreenshotShowConfirmationMessage", "UserScreenshotShowConfirmationMessage");
    }

    void checkBoxWritesThePreferencesFile()
    {
        QFETCH(QString, page);
        QFETCH(QString, control);
        QFETCH(QString, storedName);
        QFETCH(bool, inverted);
        auto* box = visibleControl<QCheckBox>(page, control);
        QVERIFY(box);
        const bool before = box->isChecked();
        clickCheckBox(box);
        QCOMPARE(box->isChecked(), !before);
        QCOMPARE(storedValue(storedName), QJsonValue(box->isChecked() != inverted));
        clickCheckBox(box);
        QCOMPARE(storedValue(storedName), QJsonValue(before != inverted));
    }

    void comboBoxWritesTheStoredForm_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("storedName");
        // The stored value after one step down from the value shown at first.
        QTest::addColumn<QJsonValue>("stored");
        QTest::newRow("tray icon") << u"general"_s << u"preferredMenuBarIconIdentifier"_s
                                   << u"PreferredMenuBarIconIdentifier"_s << QJsonValue(u"document"_s);
        QTest::newRow("shelf location") << u"shelves"_s << u"defaultShelfLocation"_s
                                        << u"DefaultShelfLocation"_s << QJsonValue(u"topLeft"_s);
        QTest::newRow("double click, an index")
            << u"shelves"_s << u"doubleClickAction"_s << u"DoubleClickAction"_s << QJsonValue(1);
        QTest::newRow("docked shelf") << u"shelves"_s << u"doubleClickEdgeAction"_s
                                      << u"DoubleClickEdgeAction"_s << QJsonValue(u"retract"_s);
        QTest::newRow("shake sensitivity") << u"activation"_s << u"shakeGestureSensitivity"_s
                                           << u"ShakeGestureSensitivity"_s << QJsonValue(1);
        QTest::newRow("modifier key") << u"activation"_s << u"shelfTriggerModifierKey"_s
                                      << u"ShelfTriggerModifierKey"_s << QJsonValue(u"control"_s);
        QTest::newRow("drop zone highlight") << u"activation"_s << u"notchDragHighlightBehavior"_s
                                             << u"NotchDragHighlightBehavior"_s << QJsonValue(1);
        QTest::newRow("screenshot shelf")
            << u"screenshots"_s << u"screenshotObservationDistributionOption"_s
            << u"ScreenshotObservationDistributionOption"_s << QJsonValue(u"append"_s);
    }

    void comboBoxWritesTheStoredForm()
    {
        QFETCH(QString, page);
        QFETCH(QString, control);
        QFETCH(QString, storedName);
        QFETCH(QJsonValue, stored);
        auto* box = visibleControl<QComboBox>(page, control);
        QVERIFY(box);
        QVERIFY2(box->isEnabled(), "the control is greyed out with the defaults of a first start");
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(storedValue(storedName), stored);
    }

    void changeElsewhereShowsInTheControl_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("storedName");
        QTest::addColumn<QString>("value");
        // What the control shows afterwards: a box's state, a list's entries, a combo box's data.
        QTest::addColumn<QVariant>("shown");
        QTest::newRow("a check box") << u"shelves"_s << u"copiesContentOnDrag"_s << u"CopiesContentOnDrag"_s
                                     << u"true"_s << QVariant(true);
        QTest::newRow("an inverted check box") << u"activation"_s << u"shakeGestureEnabled"_s
                                               << u"ShakeGestureDisabled"_s << u"true"_s << QVariant(false);
        QTest::newRow("a choice") << u"shelves"_s << u"defaultShelfLocation"_s << u"DefaultShelfLocation"_s
                                  << u"cursor"_s << QVariant(u"cursor"_s);
        QTest::newRow("a list") << u"activation"_s << u"ignoredApplications"_s << u"IgnoredApplications"_s
                                << u"[\"gimp\", \"inkscape\"]"_s
                                << QVariant(QStringList{u"gimp"_s, u"inkscape"_s});
    }

    void changeElsewhereShowsInTheControl()
    {
        QFETCH(QString, page);
        QFETCH(QString, control);
        QFETCH(QString, storedName);
        QFETCH(QString, value);
        QFETCH(QVariant, shown);
        QWidget* widget = visibleControl<QWidget>(page, control);
        QVERIFY(widget);
        // The path `vantrope settings set` takes in the running program.
        SettingsService service(*m_preferences);
        QVERIFY(service.setSetting(storedName, value).has_value());
        if (auto* box = qobject_cast<QCheckBox*>(widget)) {
            QCOMPARE(QVariant(box->isChecked()), shown);
        } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
            QCOMPARE(combo->currentData(), shown);
        } else if (auto* list = qobject_cast<QListWidget*>(widget)) {
            QStringList entries;
            for (int row = 0; row < list->count(); ++row) {
                entries.append(list->item(row)->text());
            }
            QCOMPARE(QVariant(entries), shown);
        } else {
            QFAIL("no control of a known kind");
        }
    }

    void ignoredApplicationFromTheRunningOnes()
    {
        QVERIFY2(m_monitor->isAvailable(), qPrintable(m_monitor->unavailableReason()));
        // A window of another program, as the test display has no other.
        auto* other = new QWidget;
        other->setWindowTitle(u"Other program"_s);
        other->show();
        QVERIFY(QTest::qWaitForWindowExposed(other));
        auto* add = visibleControl<QPushButton>(u"activation"_s, u"addIgnoredApplication"_s);
        QVERIFY(add);
        QTest::mouseClick(add, Qt::LeftButton);
        QMenu* menu = nullptr;
        QVERIFY(QTest::qWaitFor([&] {
            menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            return menu != nullptr;
        }));
        const auto running = RunningApplications::running(*m_monitor);
        QVERIFY2(!running.isEmpty(), "the window list names no program on the test display");
        QAction* entry = nullptr;
        for (QAction* action : menu->actions()) {
            if (action->isEnabled() && action->text() == running.first().title) {
                entry = action;
            }
        }
        QVERIFY2(entry, qPrintable(running.first().name));
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entry).center());
        QTRY_COMPARE(storedValue(u"IgnoredApplications"_s), QJsonValue(QJsonArray{running.first().name}));
        delete other;

        auto* list = visibleControl<QListWidget>(u"activation"_s, u"ignoredApplications"_s);
        QCOMPARE(list->count(), 1);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
        auto* remove = visibleControl<QPushButton>(u"activation"_s, u"removeIgnoredApplication"_s);
        QVERIFY(remove->isEnabled());
        QTest::mouseClick(remove, Qt::LeftButton);
        QCOMPARE(storedValue(u"IgnoredApplications"_s), QJsonValue(QJsonArray{}));
        QCOMPARE(list->count(), 0);
    }

    void watchedFolderAddedPausedAndMissing()
    {
        const QString folder = m_home->filePath(u"Inbox"_s);
        QVERIFY(QDir().mkpath(folder));
        auto* add = visibleControl<QPushButton>(u"watched-folders"_s, u"addWatchedFolder"_s);
        QVERIFY(add);
        QTest::mouseClick(add, Qt::LeftButton);
        QVERIFY(chooseInFileDialog(m_window.get(), u"addWatchedFolderDialog"_s, folder));
        auto* list = visibleControl<QTreeWidget>(u"watched-folders"_s, u"watchedFolders"_s);
        QVERIFY2(list->topLevelItemCount() == 1,
                 qPrintable(m_window->findChild<QLabel*>(u"watchedFolderMessage"_s)->text()));
        QCOMPARE(list->topLevelItem(0)->text(0), folder);
        QCOMPARE(list->topLevelItem(0)->data(1, Qt::UserRole).toString(), u"active"_s);
        QCOMPARE(storedFolders().size(), 1);

        auto* pause = visibleControl<QPushButton>(u"watched-folders"_s, u"pauseWatchedFolder"_s);
        QTest::mouseClick(pause, Qt::LeftButton);
        QVERIFY(storedFolders().value(0).lifecycle.isStopped);
        QCOMPARE(list->topLevelItem(0)->data(1, Qt::UserRole).toString(), u"paused"_s);
        QCOMPARE(pause->text(), u"Resume"_s);
        QTest::mouseClick(pause, Qt::LeftButton);
        QVERIFY(!storedFolders().value(0).lifecycle.isStopped);
        QCOMPARE(list->topLevelItem(0)->data(1, Qt::UserRole).toString(), u"active"_s);

        // Gone while watched: the list says so once the controller has looked again.
        QVERIFY(QDir(folder).removeRecursively());
        QTRY_COMPARE_WITH_TIMEOUT(list->topLevelItem(0)->data(1, Qt::UserRole).toString(), u"missing"_s,
                                  8000);
        QCOMPARE(list->topLevelItem(0)->text(1), u"Missing"_s);

        // Adding the same folder twice says why it cannot.
        QVERIFY(QDir().mkpath(folder));
        QTest::mouseClick(add, Qt::LeftButton);
        QVERIFY(chooseInFileDialog(m_window.get(), u"addWatchedFolderDialog"_s, folder));
        auto* message = m_window->findChild<QLabel*>(u"watchedFolderMessage"_s);
        QVERIFY(message->isVisible());
        QVERIFY2(message->text().contains(u"watched already"_s), qPrintable(message->text()));
        QCOMPARE(storedFolders().size(), 1);

        auto* remove = visibleControl<QPushButton>(u"watched-folders"_s, u"removeWatchedFolder"_s);
        QTest::mouseClick(remove, Qt::LeftButton);
        QCOMPARE(list->topLevelItemCount(), 0);
        QCOMPARE(storedFolders().size(), 0);
        QVERIFY2(QFileInfo(folder).isDir(), "removing the watch leaves the folder itself alone");
    }

    void ruleEditorRefusesASizeThatIsNoNumber()
    {
        const QString folder = m_home->filePath(u"Downloads"_s);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(m_folders->add(folder).has_value());
        auto* addRule = visibleControl<QPushButton>(u"watched-folders"_s, u"addRule"_s);
        QVERIFY(addRule);
        QTest::mouseClick(addRule, Qt::LeftButton);
        auto* row = m_window->findChild<QWidget*>(u"rule0"_s);
        QVERIFY(row);
        auto* property = row->findChild<QComboBox*>(u"property"_s);
        // Name, extension, type, size.
        for (int step = 0; step < 3; ++step) {
            QTest::keyClick(property, Qt::Key_Down);
        }
        QCOMPARE(property->currentText(), u"Size"_s);
        auto* size = row->findChild<QLineEdit*>(u"size"_s);
        QTRY_VERIFY(size->isVisible());
        eraseAndType(size, u"12abc"_s);
        auto* problem = m_window->findChild<QLabel*>(u"ruleProblem"_s);
        QTRY_VERIFY(problem->isVisible());
        QVERIFY2(problem->text().contains(u"\"12abc\" is not a size"_s), qPrintable(problem->text()));
        // Nothing of the broken rule reaches the file, even after the save delay.
        QTest::qWait(WatchedFoldersSettingsPage::ruleSaveDelayMs * 2);
        QCOMPARE(storedFolders().value(0).filters.size(), 0);

        QTest::keyClick(row->findChild<QComboBox*>(u"unit"_s), Qt::Key_Down);
        eraseAndType(size, u"12"_s);
        QTRY_COMPARE(storedFolders().value(0).filters.size(), 1);
        QVERIFY(!problem->isVisible());
        const DirectoryObserverFilter rule = storedFolders().value(0).filters.value(0);
        QVERIFY(rule.matcher.sizeMatching());
        QCOMPARE(rule.matcher.sizeMatching()->bytes, quint64(12) * 1024 * 1024);
        QCOMPARE(rule.matcher.sizeMatching()->comparison,
                 DirectoryObserverItemMatcher::SizeMatching::Comparison::greaterThan);
        // Saved and running again with it.
        QCOMPARE(m_folders->folders().value(0).state, WatchedFolderController::State::active);

        // "any" of the rules: a second rule on the name, both stored as alternatives.
        QTest::keyClick(visibleControl<QComboBox>(u"watched-folders"_s, u"ruleOperator"_s), Qt::Key_Down);
        QTest::mouseClick(addRule, Qt::LeftButton);
        auto* second = m_window->findChild<QWidget*>(u"rule1"_s);
        QTest::keyClicks(second->findChild<QLineEdit*>(u"text"_s), u"invoice"_s);
        QTRY_COMPARE(storedFolders().value(0).filters.size(), 2);
        for (const DirectoryObserverFilter& stored : storedFolders().value(0).filters) {
            QCOMPARE(stored.operatorType, DirectoryObserverFilter::OperatorType::Or);
        }
        QCOMPARE(storedFolders().value(0).filters.value(1).matcher.stringMatching()->pattern, u"invoice"_s);
    }

    void folderOptionsApplyAtOnce()
    {
        const QString folder = m_home->filePath(u"Scans"_s);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(m_folders->add(folder).has_value());
        auto* nested = visibleControl<QCheckBox>(u"watched-folders"_s, u"observesNestedDirectories"_s);
        QVERIFY(nested);
        QVERIFY(!nested->isChecked());
        clickCheckBox(nested);
        QVERIFY(storedFolders().value(0).options.observesNestedDirectories);
        QCOMPARE(m_folders->folders().value(0).state, WatchedFolderController::State::active);
    }

    void screenshotFolderChangedWithThePicker()
    {
        const QString folder = m_home->filePath(u"Shots"_s);
        QVERIFY(QDir().mkpath(folder));
        auto* change = visibleControl<QPushButton>(u"screenshots"_s, u"changeScreenshotFolder"_s);
        QVERIFY(change);
        QTest::mouseClick(change, Qt::LeftButton);
        QVERIFY(chooseInFileDialog(m_window.get(), u"screenshotFolderDialog"_s, folder));
        QCOMPARE(m_screenshots->directory().value_or(QUrl()).toLocalFile(), folder);
        QCOMPARE(m_screenshotFolderChanges, 1);
        QCOMPARE(m_window->findChild<QLabel*>(u"screenshotFolder"_s)->text(), folder);
        QVERIFY(!m_window->findChild<QLabel*>(u"screenshotFolderProblem"_s)->isVisible());
    }

    void purgeAsksFirst_data()
    {
        QTest::addColumn<bool>("confirmed");
        QTest::newRow("confirmed") << true;
        QTest::newRow("cancelled") << false;
    }

    void purgeAsksFirst()
    {
        QFETCH(bool, confirmed);
        const QStringList folders = TemporaryDataSanitizer::reservedDirectories();
        QVERIFY(!folders.isEmpty());
        const QString orphan = folders.first() + u"/orphan.txt"_s;
        const QString kept = folders.first() + u"/recent-shelf.txt"_s;
        QVERIFY(Test::writeFile(orphan, QByteArray(4096, 'o')));
        QVERIFY(Test::writeFile(kept, "text on a recent shelf"));
        // Older than a file that may still be growing.
        for (const QString& path : {orphan, kept}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-3600),
                                     QFileDevice::FileModificationTime));
        }
        m_kept = {QUrl::fromLocalFile(kept)};

        auto* purge = visibleControl<QPushButton>(u"application-data"_s, u"purgeTemporaryData"_s);
        QVERIFY(purge);
        QTest::mouseClick(purge, Qt::LeftButton);
        QMessageBox* question = nullptr;
        QVERIFY(QTest::qWaitFor([&] {
            question = m_window->findChild<QMessageBox*>(u"purgeConfirmation"_s);
            return question && question->isVisible();
        }));
        QAbstractButton* answer = confirmed ? question->findChild<QPushButton*>(u"confirmPurge"_s)
                                            : question->button(QMessageBox::Cancel);
        QVERIFY(answer);
        QTest::mouseClick(answer, Qt::LeftButton);
        auto* result = m_window->findChild<QLabel*>(u"purgeResult"_s);
        if (confirmed) {
            QTRY_VERIFY(!QFileInfo::exists(orphan));
            QTRY_VERIFY(result->text().contains(u"Items removed: "_s));
            // The size shown is that of the cache after the purge.
            const QString cache = ApplicationDataSettingsPage::defaultCacheFolder();
            auto* size = m_window->findChild<QLabel*>(u"cacheSize"_s);
            QTRY_COMPARE(size->text(),
                         QLocale().formattedDataSize(ApplicationDataSettingsPage::folderSize(cache)));
        } else {
            QTest::qWait(300);
            QVERIFY(QFileInfo::exists(orphan));
            QVERIFY(!result->isVisible());
        }
        QVERIFY(QFileInfo::exists(kept));
        QFile::remove(kept);
        QFile::remove(orphan);
    }

    void lastPageIsRemembered()
    {
        auto* sidebar = m_window->findChild<QListWidget*>(u"settingsSidebar"_s);
        const int row = m_window->pageIdentifiers().indexOf(u"screenshots"_s);
        QVERIFY(row >= 0);
        QTest::mouseClick(sidebar->viewport(), Qt::LeftButton, {},
                          sidebar->visualItemRect(sidebar->item(row)).center());
        QCOMPARE(m_window->currentPage(), u"screenshots"_s);
        QCOMPARE(m_window->findChild<QLabel*>(u"settingsPageTitle"_s)->text(), u"Screenshots"_s);
        m_window.reset();
        m_window = makeWindow();
        QCOMPARE(m_window->currentPage(), u"screenshots"_s);
    }

    void pagesAddedByOtherParts()
    {
        QVERIFY(m_window->addPage(u"services"_s, u"Services"_s, u"network-server"_s,
                                  new QLabel(u"services"_s), u"application-data"_s));
        QVERIFY(!m_window->addPage(u"services"_s, u"Services again"_s, u"network-server"_s, new QLabel));
        const QStringList pages = m_window->pageIdentifiers();
        QCOMPARE(pages.indexOf(u"services"_s) + 1, pages.indexOf(u"application-data"_s));
        // The page on show stays the same page.
        QCOMPARE(m_window->currentPage(), u"general"_s);
        QVERIFY(m_window->showPage(u"services"_s));
        QCOMPARE(m_preferences->value(PreferenceKeys::lastSettingsPage), u"services"_s);
        // Remembered even though it comes after the built-in pages.
        m_window.reset();
        m_window = makeWindow();
        QCOMPARE(m_window->currentPage(), u"general"_s);
        m_window->addPage(u"services"_s, u"Services"_s, u"network-server"_s, new QLabel);
        QCOMPARE(m_window->currentPage(), u"services"_s);
    }

    void activationSummary_data()
    {
        QTest::addColumn<int>("session");
        QTest::addColumn<bool>("dragsVisible");
        QTest::addColumn<QString>("says");
        QTest::addColumn<QString>("note");
        using Kind = DisplayEnvironment::Kind;
        QTest::newRow("X11") << int(Kind::x11) << true << u"work with every program"_s << QString();
        QTest::newRow("XWayland") << int(Kind::xwayland) << true << u"start in X11 programs"_s << QString();
        QTest::newRow("Wayland") << int(Kind::wayland) << false << u"do not work here: no drags for you"_s
                                 << u"Not available in this session (Wayland)."_s;
        QTest::newRow("X11 without the extensions")
            << int(Kind::x11) << false << u"do not work here"_s << u"Not available in this session (X11)."_s;
    }

    void activationSummary()
    {
        QFETCH(int, session);
        QFETCH(bool, dragsVisible);
        QFETCH(QString, says);
        QFETCH(QString, note);
        const ActivationAvailability availability(DisplayEnvironment::Kind(session), dragsVisible,
                                                  dragsVisible ? QString() : u"no drags for you"_s);
        QVERIFY2(availability.summary().contains(says), qPrintable(availability.summary()));
        QVERIFY(availability.summary().contains(u"tray icon"_s));
        QCOMPARE(availability.unavailableNote(), note);
    }

    // The programs offered for ignoring are named as the recognizer sees their windows.
    void installedProgramsByWindowClass_data()
    {
        QTest::addColumn<QByteArray>("desktopFile");
        // Empty when the file offers no program.
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("title");
        QTest::newRow("window class")
            << QByteArray("[Desktop Entry]\nType=Application\nName=GNU Image Manipulation "
                          "Program\nExec=gimp-2.10 %U\nStartupWMClass=Gimp-2.10\n")
            << u"Gimp-2.10"_s << u"GNU Image Manipulation Program"_s;
        QTest::newRow("executable with a folder and arguments")
            << QByteArray("[Desktop Entry]\nType=Application\nName=Inkscape\nExec=\"/usr/bin/inkscape\" %F\n")
            << u"inkscape"_s << u"Inkscape"_s;
        QTest::newRow("keys of an action group do not count")
            << QByteArray("[Desktop Entry]\nType=Application\nName=Editor\nExec=editor\n"
                          "[Desktop Action new]\nName=New Window\nExec=other --new\n")
            << u"editor"_s << u"Editor"_s;
        QTest::newRow("hidden from menus")
            << QByteArray("[Desktop Entry]\nType=Application\nName=Helper\nExec=helper\nNoDisplay=true\n")
            << QString() << QString();
        QTest::newRow("a link, not a program")
            << QByteArray("[Desktop Entry]\nType=Link\nName=Site\nURL=https://example.org\n") << QString()
            << QString();
    }

    void installedProgramsByWindowClass()
    {
        QFETCH(QByteArray, desktopFile);
        QFETCH(QString, name);
        QFETCH(QString, title);
        const QString path = m_home->filePath(u"program.desktop"_s);
        QVERIFY(Test::writeFile(path, desktopFile));
        const auto application = RunningApplications::fromDesktopFile(path);
        QCOMPARE(application.has_value(), !name.isEmpty());
        if (application) {
            QCOMPARE(application->name, name);
            QCOMPARE(application->title, title);
        }
    }

    void theGeneralPageSaysWhatWorksHere()
    {
        auto* summary = visibleControl<QLabel>(u"general"_s, u"activationSummary"_s);
        QVERIFY(summary);
        QVERIFY2(summary->text().contains(u"X11"_s), qPrintable(summary->text()));
        QVERIFY2(summary->text().contains(u"work with every program"_s), qPrintable(summary->text()));
        // Nothing under the drag controls says they are unavailable where they are not.
        QVERIFY(!m_window->findChild<QLabel*>(u"topDropZoneUnavailable"_s));
    }

    // Leaves a picture of every page, light and dark, beside the test binary, and checks that no page is
    // wider than the room it has: the pages do not scroll sideways, so what is wider is cut off.
    void everyPageFitsAndIsPictured_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }

    void everyPageFitsAndIsPictured()
    {
        QFETCH(bool, dark);
        m_window.reset();
        QApplication::setPalette(dark ? darkPalette() : m_lightPalette);
        m_window = makeWindow();
        const QString folder = m_home->filePath(u"Documents"_s);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(m_folders->add(folder).has_value());
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        const QString pictures = QCoreApplication::applicationDirPath() + u"/settings-screenshots"_s;
        QVERIFY(QDir().mkpath(pictures));
        for (const QString& identifier : m_window->pageIdentifiers()) {
            QVERIFY(m_window->showPage(identifier));
            QApplication::processEvents();
            QTest::qWait(50);
            auto* scroll = m_window->findChild<QScrollArea*>(identifier + u"-scroll"_s);
            QVERIFY(scroll);
            QVERIFY2(scroll->widget()->minimumSizeHint().width() <= scroll->viewport()->width(),
                     qPrintable(u"%1 needs %2 pixels, has %3"_s.arg(identifier)
                                    .arg(scroll->widget()->minimumSizeHint().width())
                                    .arg(scroll->viewport()->width())));
            const QImage picture = m_window->grab().toImage();
            QVERIFY(!picture.isNull());
            QVERIFY(picture.save(u"%1/%2-%3.png"_s.arg(pictures, identifier, dark ? u"dark"_s : u"light"_s)));
        }
        QApplication::setPalette(m_lightPalette);
    }

private:
    std::unique_ptr<SettingsWindow> makeWindow()
    {
        auto window = std::make_unique<SettingsWindow>(SettingsWindow::Context{
            .preferences = *m_preferences,
            .session = DisplayEnvironment::detect().kind(),
            .dragMonitor = m_monitor.get(),
            .watchedFolders = m_folders.get(),
            .screenshots = m_screenshots.get(),
            .screenshotFolderChanged = [this] { ++m_screenshotFolderChanges; },
            .purgeTemporaryData =
                [this](ApplicationDataSettingsPage::PurgeCompletion done) {
                    m_sanitizer->purge({m_kept, {}, {}}, std::move(done));
                },
            .preferencesFile = m_preferencesFile,
        });
        window->show();
        return window;
    }

    // The control on its page, the page on show and the control scrolled into view.
    template<typename Widget> Widget* visibleControl(const QString& page, const QString& name)
    {
        if (!m_window->showPage(page)) {
            return nullptr;
        }
        auto* widget = m_window->page(page)->findChild<Widget*>(name);
        if (!widget) {
            return nullptr;
        }
        // A page shown for the first time lays itself out, and shows widgets added to it, a moment later.
        if (!QTest::qWaitFor([widget] { return widget->isVisible() && !widget->rect().isEmpty(); })) {
            return nullptr;
        }
        m_window->findChild<QScrollArea*>(page + u"-scroll"_s)->ensureWidgetVisible(widget);
        QTest::qWait(20);
        return widget;
    }

    QJsonValue storedValue(const QString& storedName) const
    {
        return QJsonDocument::fromJson(Test::readFile(m_preferencesFile)).object().value(storedName);
    }

    QList<ObservedDirectory> storedFolders() const
    {
        return ObservedDirectoryStore(m_foldersFile, false).items();
    }

    QPalette m_lightPalette;
    std::unique_ptr<QTemporaryDir> m_home;
    QString m_preferencesFile;
    QString m_foldersFile;
    std::unique_ptr<Preferences> m_preferences;
    InotifyDirectoryWatcher m_watcher;
    std::unique_ptr<ObservedDirectoryStore> m_store;
    std::unique_ptr<DirectoryObserverCoordinator> m_coordinator;
    std::unique_ptr<WatchedFolderController> m_folders;
    std::unique_ptr<BookmarkStore> m_screenshotBookmarks;
    std::unique_ptr<UserScreenshotObserver> m_screenshots;
    std::unique_ptr<TemporaryDataSanitizer> m_sanitizer;
    std::unique_ptr<DragMonitor> m_monitor;
    std::unique_ptr<SettingsWindow> m_window;
    QList<QUrl> m_kept;
    int m_screenshotFolderChanges = 0;
};

QTEST_MAIN(TestSettingsWindow)
#include "TestSettingsWindow.moc"
