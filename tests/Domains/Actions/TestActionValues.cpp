// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Actions/ActionControllerHistory.h"
#include "Domains/Actions/ActionError.h"
#include "Domains/Actions/ActionItem.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;

Q_DECLARE_METATYPE(ActionError::Kind)
Q_DECLARE_METATYPE(ActionItemType)

// The small values every action works with: items read from disk, error texts, the recent actions.
class TestActionValues final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void itemTypeFollowsTheExtensionAlone_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<ActionItemType>("type");
        QTest::newRow("png") << QStringLiteral("shot.png") << ActionItemType::image;
        QTest::newRow("upper case JPG") << QStringLiteral("IMG_0001.JPG") << ActionItemType::image;
        QTest::newRow("tiff") << QStringLiteral("scan.tiff") << ActionItemType::image;
        QTest::newRow("tif is not listed") << QStringLiteral("scan.tif") << ActionItemType::other;
        QTest::newRow("image extension in the middle")
            << QStringLiteral("a.png.txt") << ActionItemType::other;
        QTest::newRow("no extension") << QStringLiteral("png") << ActionItemType::other;
        QTest::newRow("hidden file named like an extension")
            << QStringLiteral(".png") << ActionItemType::other;
    }

    void itemTypeFollowsTheExtensionAlone()
    {
        QFETCH(QString, fileName);
        QFETCH(ActionItemType, type);
        // PNG bytes in a text file and text in a PNG file: only the name counts.
        const QByteArray contents =
            type == ActionItemType::image ? QByteArray("plain text") : QByteArray("\x89PNG\r\n\x1a\n", 8);
        const QString path = m_dir.filePath(fileName);
        QVERIFY(Test::writeFile(path, contents));
        const auto item = ActionItem::fromFile(QUrl::fromLocalFile(path));
        QVERIFY(item.has_value());
        QCOMPARE(item->type(), type);
        QCOMPARE(item->filesize(), quint64(contents.size()));
        QCOMPARE(item->url(), QUrl::fromLocalFile(path));
    }

    void itemOfAFolderIsMade()
    {
        const QString folder = m_dir.filePath(QStringLiteral("photos.png"));
        QVERIFY(QDir().mkpath(folder));
        const auto item = ActionItem::fromFile(QUrl::fromLocalFile(folder));
        QVERIFY(item.has_value());
        QCOMPARE(item->type(), ActionItemType::image);
    }

    void itemThatCannotBeReadIsAnError_data()
    {
        QTest::addColumn<QUrl>("url");
        QTest::addColumn<ActionError::Kind>("kind");
        QTest::newRow("missing file") << QUrl::fromLocalFile(m_dir.filePath(QStringLiteral("gone.txt")))
                                      << ActionError::Kind::underlying;
        QTest::newRow("inside a file") << QUrl::fromLocalFile(m_dir.filePath(QStringLiteral("plain.txt/x")))
                                       << ActionError::Kind::underlying;
        QTest::newRow("web address") << QUrl(QStringLiteral("https://example.org/a.png"))
                                     << ActionError::Kind::reserved;
        QTest::newRow("empty") << QUrl() << ActionError::Kind::reserved;
    }

    void itemThatCannotBeReadIsAnError()
    {
        QFETCH(QUrl, url);
        QFETCH(ActionError::Kind, kind);
        QVERIFY(Test::writeFile(m_dir.filePath(QStringLiteral("plain.txt")), "x"));
        const auto item = ActionItem::fromFile(url);
        QVERIFY(!item.has_value());
        QCOMPARE(item.error().kind(), kind);
        QVERIFY(!item.error().description().isEmpty());
        if (kind == ActionError::Kind::underlying) {
            // The user learns which file it was.
            QVERIFY(item.error().description().contains(url.fileName()));
        }
    }

    void underlyingErrorKeepsItsOwnText()
    {
        const ActionError error = ActionError::underlying(QStringLiteral("The bucket does not exist"));
        QCOMPARE(error.kind(), ActionError::Kind::underlying);
        QCOMPARE(error.description(), QStringLiteral("The bucket does not exist"));
        QVERIFY(error != ActionError::underlying(QStringLiteral("Another failure")));
        // Without a text of its own it says what any unexplained failure says.
        QCOMPARE(ActionError(ActionError::Kind::underlying).description(),
                 ActionError(ActionError::Kind::reserved).description());
    }

    void historyRecords_data()
    {
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<QString>("recorded");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("first ever") << QStringList() << QStringLiteral("compress")
                                    << QStringList{QStringLiteral("compress")};
        QTest::newRow("new one goes in front")
            << QStringList{QStringLiteral("a"), QStringLiteral("b")} << QStringLiteral("c")
            << QStringList{QStringLiteral("c"), QStringLiteral("a"), QStringLiteral("b")};
        QTest::newRow("repeat moves to the front and occurs once")
            << QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}
            << QStringLiteral("b")
            << QStringList{QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("c")};
        QTest::newRow("repeat already in front")
            << QStringList{QStringLiteral("a"), QStringLiteral("b")} << QStringLiteral("a")
            << QStringList{QStringLiteral("a"), QStringLiteral("b")};
        QTest::newRow("sixth pushes out the oldest")
            << QStringList{QStringLiteral("e"), QStringLiteral("d"), QStringLiteral("c"), QStringLiteral("b"),
                           QStringLiteral("a")}
            << QStringLiteral("f")
            << QStringList{QStringLiteral("f"), QStringLiteral("e"), QStringLiteral("d"), QStringLiteral("c"),
                           QStringLiteral("b")};
        QTest::newRow("repeat of the oldest of five keeps all five")
            << QStringList{QStringLiteral("e"), QStringLiteral("d"), QStringLiteral("c"), QStringLiteral("b"),
                           QStringLiteral("a")}
            << QStringLiteral("a")
            << QStringList{QStringLiteral("a"), QStringLiteral("e"), QStringLiteral("d"), QStringLiteral("c"),
                           QStringLiteral("b")};
        QTest::newRow("duplicates stored by an older version are folded")
            << QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("a")}
            << QStringLiteral("a") << QStringList{QStringLiteral("a"), QStringLiteral("b")};
        QTest::newRow("overlong stored list is cut")
            << QStringList{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4"),
                           QStringLiteral("5"), QStringLiteral("6"), QStringLiteral("7")}
            << QStringLiteral("0")
            << QStringList{QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                           QStringLiteral("4")};
    }

    void historyRecords()
    {
        QFETCH(QStringList, stored);
        QFETCH(QString, recorded);
        QFETCH(QStringList, expected);
        Preferences preferences(std::make_unique<MemoryPreferenceStorage>());
        if (!stored.isEmpty()) {
            preferences.setValue(PreferenceKeys::recentActions, stored);
        }
        ActionControllerHistory history(preferences);
        history.record(recorded);
        QCOMPARE(preferences.storedValue(PreferenceKeys::recentActions),
                 std::optional<QStringList>(expected));
        QCOMPARE(history.identifiers(), expected);
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestActionValues)
#include "TestActionValues.moc"
