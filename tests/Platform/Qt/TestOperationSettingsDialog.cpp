// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// The windows the file operations ask through, on a real display: the fields made from an operation's
// settings, typing into them, Enter and Escape, the clash question, the batch rename preview.
// Test data reads better as plain literals; the program itself keeps the strict casts.
#undef QT_NO_CAST_FROM_ASCII

#include "Libraries/FileOperations/OperationChoiceStore.h"
#include "Libraries/FileOperations/OperationsController.h"
#include "Libraries/FileOperations/OperationsControllerDelegate.h"
#include "Platform/Qt/FileInformationWindow.h"
#include "Platform/Qt/OperationSettingsDialog.h"
#include "Platform/Qt/QtOperationsDisplayController.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;

namespace {

OperationsDisplayController::SettingsRequest everyKindOfField()
{
    OperationsDisplayController::SettingsRequest request;
    request.title = "Resize";
    request.settings = {
        {"width", "Width", OperationSetting::Type::integer, 800, 1, 10000, {}},
        {"format", "Format", OperationSetting::Type::choice, "png", 0, 0, {{"png", "PNG"}, {"webp", "WebP"}}},
        {"enlarge", "Enlarge", OperationSetting::Type::boolean, false, 0, 0, {}},
        {"suffix", "Suffix", OperationSetting::Type::text, "-small", 0, 0, {}},
        {"destination", "Folder", OperationSetting::Type::folder, "/tmp", 0, 0, {}},
    };
    request.values = {{"width", 1200}, {"format", "webp"}};
    return request;
}

// The dialog the display controller put up, once it is shown.
template<typename Window> Window* shownWindow()
{
    Window* found = nullptr;
    const bool shown = QTest::qWaitFor(
        [&found] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (auto* window = qobject_cast<Window*>(widget); window && window->isVisible()) {
                    found = window;
                    return true;
                }
            }
            return false;
        },
        5000);
    return shown ? found : nullptr;
}

class Recorder final : public OperationsControllerDelegate {
public:
    QStringList replaced;
    bool ended = false;
    void operationDidStart(OperationsController&, const QString&) override {}
    void operationDidProgress(OperationsController&, double, const QString&) override {}
    void operationReplaceContent(OperationsController&, const QStringList& paths) override
    {
        replaced = paths;
    }
    void operationRemoveContent(OperationsController&, const QStringList&) override {}
    void operationProduceText(OperationsController&, const QString&, bool) override {}
    void operationDidFinish(OperationsController&, const QString&) override { ended = true; }
    void operationDidFail(OperationsController&, const QString&) override { ended = true; }
    void operationDidCancel(OperationsController&) override { ended = true; }
};

} // namespace

class TestOperationSettingsDialog final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }
    void cleanup()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            widget->close();
        }
    }

    void fieldsStartWithTheGivenValuesAndEnterRuns()
    {
        QtOperationsDisplayController display;
        std::optional<std::optional<QVariantMap>> answer;
        display.askForSettings(everyKindOfField(),
                               [&answer](const std::optional<QVariantMap>& values) { answer = values; });
        auto* dialog = shownWindow<OperationSettingsDialog>();
        QVERIFY(dialog);
        QVERIFY(QTest::qWaitForWindowActive(dialog));
        auto* width = qobject_cast<QSpinBox*>(dialog->field("width"));
        auto* format = qobject_cast<QComboBox*>(dialog->field("format"));
        auto* enlarge = qobject_cast<QCheckBox*>(dialog->field("enlarge"));
        auto* suffix = qobject_cast<QLineEdit*>(dialog->field("suffix"));
        QVERIFY(width && format && enlarge && suffix);
        // Remembered values win over the defaults; the rest are the defaults.
        QCOMPARE(width->value(), 1200);
        QCOMPARE(format->currentText(), QStringLiteral("WebP"));
        QVERIFY(!enlarge->isChecked());
        QCOMPARE(suffix->text(), QStringLiteral("-small"));

        width->setFocus();
        width->selectAll();
        QTest::keyClicks(width, "1600");
        enlarge->setFocus();
        QTest::keyClick(enlarge, Qt::Key_Space);
        suffix->setFocus();
        suffix->selectAll();
        QTest::keyClicks(suffix, "-web");
        QTest::keyClick(suffix, Qt::Key_Return);
        QTRY_VERIFY(answer.has_value());
        QVERIFY(answer->has_value());
        const QVariantMap values = **answer;
        QCOMPARE(values.value("width").toInt(), 1600);
        QCOMPARE(values.value("format").toString(), QStringLiteral("webp"));
        QCOMPARE(values.value("enlarge").toBool(), true);
        QCOMPARE(values.value("suffix").toString(), QStringLiteral("-web"));
        QCOMPARE(values.value("destination").toString(), QStringLiteral("/tmp"));
        // What the dialog answers is what the operation accepts.
        QVERIFY(resolveOperationSettings(everyKindOfField().settings, values));
    }

    void escapeCancels()
    {
        QtOperationsDisplayController display;
        std::optional<std::optional<QVariantMap>> answer;
        display.askForSettings(everyKindOfField(),
                               [&answer](const std::optional<QVariantMap>& values) { answer = values; });
        auto* dialog = shownWindow<OperationSettingsDialog>();
        QVERIFY(dialog);
        QVERIFY(QTest::qWaitForWindowActive(dialog));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(answer.has_value());
        QVERIFY(!answer->has_value());
    }

    void batchRenameShowsItsPreviewAndTheChoiceIsRemembered()
    {
        QTemporaryDir folder;
        const QStringList files{folder.path() + "/one.txt", folder.path() + "/two.txt"};
        for (const QString& file : files) {
            QVERIFY(Test::writeFile(file, "x"));
        }
        QtOperationsDisplayController display;
        OperationChoiceStore choices(folder.path() + "/choices.json");
        OperationsController::Environment environment;
        environment.display = &display;
        environment.choices = &choices;
        OperationsController controller(environment);
        Recorder recorder;
        controller.setDelegate(&recorder);
        controller.setItems({QUrl::fromLocalFile(files[0]), QUrl::fromLocalFile(files[1])});
        QVERIFY(controller.performOperationType(FileOperationType::batchRename));
        auto* dialog = shownWindow<OperationSettingsDialog>();
        QVERIFY(dialog);
        QVERIFY(dialog->preview());
        QCOMPARE(dialog->preview()->text(), QStringLiteral("one 1.txt\ntwo 2.txt"));
        auto* pattern = qobject_cast<QLineEdit*>(dialog->field("pattern"));
        pattern->setFocus();
        pattern->selectAll();
        QTest::keyClicks(pattern, "Note {counter}");
        QCOMPARE(dialog->preview()->text(), QStringLiteral("Note 1.txt\nNote 2.txt"));
        QTest::keyClick(pattern, Qt::Key_Enter);
        QTRY_VERIFY(recorder.ended);
        QCOMPARE(recorder.replaced,
                 (QStringList{folder.path() + "/Note 1.txt", folder.path() + "/Note 2.txt"}));
        QCOMPARE(choices.lastChoice("operationBatchRename").value("pattern").toString(),
                 QStringLiteral("Note {counter}"));
    }

    void getInfoShowsTheItemsDetails()
    {
        QTemporaryDir folder;
        const QString path = folder.path() + "/notes for May.txt";
        QVERIFY(Test::writeFile(path, QByteArray(2048, 'n')));
        QtOperationsDisplayController display;
        OperationsController::Environment environment;
        environment.display = &display;
        OperationsController controller(environment);
        controller.setItems({QUrl::fromLocalFile(path)});
        QVERIFY(controller.performableOperationTypes().contains(FileOperationType::getInfo));
        QVERIFY(controller.performOperationType(FileOperationType::getInfo));
        auto* window = shownWindow<FileInformationWindow>();
        QVERIFY(window);
        QStringList texts;
        for (const QLabel* label : window->findChildren<QLabel*>()) {
            texts.append(label->text());
        }
        QVERIFY2(texts.contains("notes for May.txt"), qPrintable(texts.join('|')));
        QVERIFY2(texts.contains("Plain text document"), qPrintable(texts.join('|')));
        QVERIFY2(std::any_of(texts.cbegin(), texts.cend(),
                             [](const QString& text) { return text.contains("2,048 bytes"); }),
                 qPrintable(texts.join('|')));
        QVERIFY(texts.contains(folder.path()));
        QVERIFY(QTest::qWaitForWindowActive(window));
        const QPointer<FileInformationWindow> open(window);
        QTest::keyClick(window, Qt::Key_Escape);
        // Escape closes it, and a closed one is gone.
        QTRY_VERIFY(open.isNull());
    }

    void clashQuestionAnswersWithTheButtonPressed_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("keep both") << "keepBoth" << QStringList{"a 2.txt", "a.txt"};
        QTest::newRow("skip") << "skip" << QStringList{"a.txt"};
    }

    void clashQuestionAnswersWithTheButtonPressed()
    {
        QFETCH(QString, button);
        QFETCH(QStringList, names);
        QTemporaryDir source;
        QTemporaryDir destination;
        QVERIFY(Test::writeFile(source.path() + "/a.txt", "new"));
        QVERIFY(Test::writeFile(destination.path() + "/a.txt", "old"));
        QtOperationsDisplayController display;
        OperationsController::Environment environment;
        environment.display = &display;
        OperationsController controller(environment);
        Recorder recorder;
        controller.setDelegate(&recorder);
        controller.setItems({QUrl::fromLocalFile(source.path() + "/a.txt")});
        QVERIFY(controller.performTransfer(FileOperationType::copyTo, destination.path()));
        auto* box = shownWindow<QMessageBox>();
        QVERIFY(box);
        auto* pressed = box->findChild<QPushButton*>(button);
        QVERIFY(pressed);
        QTest::mouseClick(pressed, Qt::LeftButton);
        QTRY_VERIFY(recorder.ended);
        QCOMPARE(QDir(destination.path()).entryList(QDir::Files, QDir::Name), names);
        QCOMPARE(Test::readFile(destination.path() + "/a.txt"), QByteArray("old"));
    }
};

QTEST_MAIN(TestOperationSettingsDialog)
#include "TestOperationSettingsDialog.moc"
