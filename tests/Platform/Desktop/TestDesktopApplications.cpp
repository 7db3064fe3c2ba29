// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DesktopTestEnvironment.h"
#include "Domains/Actions/ActionMenuItemProvider.h"
#include "Platform/Desktop/DesktopApplications.h"
#include "Platform/Desktop/OpenFileAction.h"
#include "Platform/Desktop/OpenWithAction.h"
#include "Platform/Desktop/OpenWithApplicationAction.h"

#include <QImage>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

// Applications, defaults and launches through the real GIO, on a desktop of the test's own.
class TestDesktopApplications final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_desktop = std::make_unique<Test::DesktopTestEnvironment>();
        m_files = m_desktop->root() + u"/files/"_s;
        QDir().mkpath(m_files + u"folder"_s);
        QImage picture(8, 8, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(m_files + u"picture.png"_s));
        QVERIFY(picture.save(m_files + u"photo.jpg"_s));
        QVERIFY(picture.save(m_files + u"second.png"_s));
        QVERIFY(Test::writeFile(m_files + u"notes.txt"_s, "notes"));
        QVERIFY(Test::writeFile(m_files + u"mit Leerzeichen ü.txt"_s, "text"));
        QVERIFY(Test::writeFile(m_files + u"data.vantrope-unknown"_s, QByteArray(64, '\x01')));
    }

    void init() { m_desktop->clearRecorded(); }

    void commonApplications_data()
    {
        QTest::addColumn<QStringList>("files");
        // The ids, the first one first and the rest in any order.
        QTest::addColumn<QString>("first");
        QTest::addColumn<QStringList>("others");

        QTest::newRow("a PNG and a JPEG")
            << QStringList{u"picture.png"_s, u"photo.jpg"_s} << u"test-painter.desktop"_s
            << QStringList{u"test-viewer.desktop"_s};
        QTest::newRow("the JPEG first: its default leads")
            << QStringList{u"photo.jpg"_s, u"picture.png"_s} << u"test-viewer.desktop"_s
            << QStringList{u"test-painter.desktop"_s};
        QTest::newRow("two PNGs are one type")
            << QStringList{u"picture.png"_s, u"second.png"_s} << u"test-painter.desktop"_s
            << QStringList{u"test-viewer.desktop"_s, u"test-png.desktop"_s, u"test-recorder.desktop"_s};
        QTest::newRow("a PNG and a text")
            << QStringList{u"picture.png"_s, u"notes.txt"_s} << u"test-recorder.desktop"_s << QStringList();
        QTest::newRow("nothing takes all three")
            << QStringList{u"picture.png"_s, u"photo.jpg"_s, u"notes.txt"_s} << QString() << QStringList();
        QTest::newRow("a type nobody takes")
            << QStringList{u"data.vantrope-unknown"_s} << QString() << QStringList();
    }

    void commonApplications()
    {
        QFETCH(QStringList, files);
        QFETCH(QString, first);
        QFETCH(QStringList, others);

        const QList<DesktopApplication> common = DesktopApplications::commonTo(urls(files));
        QStringList ids;
        for (const DesktopApplication& application : common) {
            ids.append(application.id);
        }
        if (first.isEmpty()) {
            QCOMPARE(ids, QStringList());
        } else {
            QVERIFY(!ids.isEmpty());
            QCOMPARE(ids.first(), first);
            QStringList rest = ids.mid(1);
            rest.sort();
            others.sort();
            QCOMPARE(rest, others);
            QCOMPARE(common.first().name, u"Test "_s + (first == u"test-painter.desktop"_s  ? u"Painter"_s
                                                        : first == u"test-viewer.desktop"_s ? u"Viewer"_s
                                                                                            : u"Recorder"_s));
            QCOMPARE(common.first().iconName, first.chopped(8) + u"-icon"_s);
        }

        // The menu shows the same applications, each row runnable on its own.
        OpenWithAction openWith;
        const ActionItemList actionItems = items(files);
        QCOMPARE(openWith.canPerform(actionItems), !first.isEmpty());
        const auto entry =
            openWith.menuItemProvider()->makeMenuEntry(std::make_shared<OpenWithAction>(), actionItems);
        QCOMPARE(entry.has_value(), !first.isEmpty());
        if (entry) {
            const auto* submenu = std::get_if<ActionMenuEntry::Submenu>(&entry->value);
            QVERIFY(submenu);
            QCOMPARE(qsizetype(submenu->entries.size()), ids.size());
            for (size_t index = 0; index < submenu->entries.size(); ++index) {
                const auto* row = std::get_if<ActionMenuEntry::ActionRow>(&submenu->entries[index].value);
                QVERIFY(row && row->action);
                QCOMPARE(row->action->identifier(), u"openfilewith."_s + ids[index]);
                QVERIFY(!row->action->isSearchable());
                QCOMPARE(row->title, common[index].name);
            }
        }
    }

    void openFileTitleAndAvailability_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<bool>("performable");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("icon");

        QTest::newRow("one file names its application")
            << QStringList{u"picture.png"_s} << true << u"Open with Test Painter"_s << u"image-png"_s;
        QTest::newRow("two files, one application") << QStringList{u"picture.png"_s, u"second.png"_s} << true
                                                    << u"Open with Test Painter"_s << u"image-png"_s;
        QTest::newRow("a text and a folder, one application")
            << QStringList{u"notes.txt"_s, u"folder"_s} << true << u"Open with Test Recorder"_s
            << u"document-open"_s;
        QTest::newRow("two files, two applications")
            << QStringList{u"picture.png"_s, u"photo.jpg"_s} << true << u"Open"_s << u"document-open"_s;
        QTest::newRow("a file nothing opens") << QStringList{u"picture.png"_s, u"data.vantrope-unknown"_s}
                                              << false << u"Open"_s << u"document-open"_s;
    }

    void openFileTitleAndAvailability()
    {
        QFETCH(QStringList, files);
        QFETCH(bool, performable);
        QFETCH(QString, title);
        QFETCH(QString, icon);
        OpenFileAction action;
        QCOMPARE(action.canPerform(items(files)), performable);
        QCOMPARE(action.title(), title);
        QCOMPARE(action.iconName(), icon);
    }

    void launchesPassTheFiles_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QStringList>("files");

        QTest::newRow("open with the default application") << u"default"_s << QStringList{u"notes.txt"_s};
        QTest::newRow("open a name with spaces and umlauts")
            << u"default"_s << QStringList{u"mit Leerzeichen ü.txt"_s};
        QTest::newRow("open with, all at once")
            << u"with"_s << QStringList{u"picture.png"_s, u"mit Leerzeichen ü.txt"_s, u"folder"_s};
    }

    void launchesPassTheFiles()
    {
        QFETCH(QString, how);
        QFETCH(QStringList, files);

        QList<Action::Result> results;
        const auto record = [&results](const Action::Result& result) { results.append(result); };
        if (how == u"default"_s) {
            OpenFileAction action;
            QVERIFY(action.canPerform(items(files)));
            action.perform(items(files), {}, record);
        } else {
            OpenWithApplicationAction action(
                DesktopApplication{u"test-recorder.desktop"_s, u"Test Recorder"_s, QString()});
            action.perform(items(files), {}, record);
        }
        QCOMPARE(results.size(), 1);
        QVERIFY(results.first().has_value());
        QCOMPARE(*results.first(), ActionResultContext{});

        QStringList expected;
        for (const QString& file : files) {
            expected.append(m_files + file);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_desktop->recorded().size(), expected.size(), 10000);
        QCOMPARE(Test::DesktopTestEnvironment::asPaths(m_desktop->recorded()), expected);
    }

    void anApplicationThatIsGoneGivesAMessage()
    {
        m_desktop->addApplication(u"test-short-lived"_s, "Test Short Lived", "image/png;");
        QTRY_VERIFY_WITH_TIMEOUT(hasApplication(u"test-short-lived.desktop"_s), 10000);
        const DesktopApplication application =
            *std::find_if(m_common.begin(), m_common.end(), [](const DesktopApplication& candidate) {
                return candidate.id == u"test-short-lived.desktop"_s;
            });
        m_desktop->removeApplication(u"test-short-lived"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!hasApplication(u"test-short-lived.desktop"_s), 10000);

        OpenWithApplicationAction action(application);
        QList<Action::Result> results;
        action.perform(items({u"picture.png"_s}), {},
                       [&results](const Action::Result& result) { results.append(result); });
        QCOMPARE(results.size(), 1);
        QVERIFY(results.first().has_value());
        const auto* message = std::get_if<ActionResultContext::Message>(&results.first()->value);
        QVERIFY(message);
        QCOMPARE(message->body, u"Test Short Lived could not open the files"_s);
    }

private:
    bool hasApplication(const QString& id)
    {
        m_common = DesktopApplications::commonTo(urls({u"picture.png"_s}));
        return std::any_of(m_common.begin(), m_common.end(),
                           [&id](const DesktopApplication& application) { return application.id == id; });
    }

    QList<QUrl> urls(const QStringList& files) const
    {
        QList<QUrl> list;
        for (const QString& file : files) {
            list.append(QUrl::fromLocalFile(m_files + file));
        }
        return list;
    }

    ActionItemList items(const QStringList& files) const
    {
        ActionItemList list;
        for (const QUrl& url : urls(files)) {
            list.append(*ActionItem::fromFile(url));
        }
        return list;
    }

    std::unique_ptr<Test::DesktopTestEnvironment> m_desktop;
    QString m_files;
    QList<DesktopApplication> m_common;
};

QTEST_GUILESS_MAIN(TestDesktopApplications)
#include "TestDesktopApplications.moc"
