// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/ItemStore.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;

namespace {

struct Entry {
    QString identifier;
    int weight = 0;

    QJsonValue toJson() const
    {
        return QJsonObject{{QStringLiteral("identifier"), identifier}, {QStringLiteral("weight"), weight}};
    }
    static std::optional<Entry> fromJson(const QJsonValue& value)
    {
        const QJsonObject object = value.toObject();
        if (!object.value(QStringLiteral("identifier")).isString() ||
            !object.value(QStringLiteral("weight")).isDouble()) {
            return std::nullopt;
        }
        return Entry{object.value(QStringLiteral("identifier")).toString(),
                     object.value(QStringLiteral("weight")).toInt()};
    }
    bool operator==(const Entry&) const = default;
};

} // namespace

class TestItemStore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void roundTripsThroughTheFile()
    {
        QTemporaryDir dir;
        {
            ItemStore<Entry> store(QStringLiteral("instant-actions"), dir.path());
            QVERIFY(store.items().isEmpty());
            QVERIFY(store.setItems({{QStringLiteral("mail"), 1}, {QStringLiteral("zip"), 2}}));
            QVERIFY(store.append({QStringLiteral("copy"), 3}));
            QVERIFY(store.removeIf([](const Entry& e) { return e.identifier == QStringLiteral("zip"); }));
        }
        ItemStore<Entry> reopened(QStringLiteral("instant-actions"), dir.path());
        const QList<Entry> expected{{QStringLiteral("mail"), 1}, {QStringLiteral("copy"), 3}};
        QCOMPARE(reopened.items(), expected);
        QCOMPARE(QFileInfo(reopened.path()).fileName(), QStringLiteral("instant-actions.json"));
    }

    void defaultsToTheApplicationDataDirectory()
    {
        ItemStore<Entry> store(QStringLiteral("instant-actions"));
        QVERIFY(store.append({QStringLiteral("mail"), 1}));
        const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        QVERIFY2(store.path().startsWith(data + QStringLiteral("/vantrope/")), qPrintable(store.path()));
        QVERIFY(QFile::exists(store.path()));
    }

    void unreadableFileStartsEmptyAndIsKept_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("not json") << QByteArray("{{{ definitely not json");
        QTest::newRow("object instead of list") << QByteArray("{\"identifier\": \"mail\"}");
    }

    void unreadableFileStartsEmptyAndIsKept()
    {
        QFETCH(QByteArray, content);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("shelf.json"));
        QVERIFY(Test::writeFile(path, content));

        Test::LogCapture log;
        ItemStore<Entry> store(QStringLiteral("shelf"), dir.path());
        QVERIFY(store.items().isEmpty());
        QVERIFY(log.contains(QStringLiteral("Item store shelf is unreadable")));

        // The next save must not destroy what was there.
        QVERIFY(store.append({QStringLiteral("copy"), 1}));
        const QStringList aside =
            QDir(dir.path()).entryList({QStringLiteral("shelf.json.corrupt-*")}, QDir::Files);
        QCOMPARE(aside.size(), 1);
        QCOMPARE(Test::readFile(dir.filePath(aside.first())), content);
    }

    void keepsEntriesItCannotDecode()
    {
        QTemporaryDir dir;
        const QByteArray stored = "[{\"identifier\": \"mail\", \"weight\": 1}, {\"identifier\": \"future\", "
                                  "\"shape\": \"new\"}, 7]";
        QVERIFY(Test::writeFile(dir.filePath(QStringLiteral("mixed.json")), stored));

        ItemStore<Entry> store(QStringLiteral("mixed"), dir.path());
        QCOMPARE(store.items().size(), 1);
        QVERIFY(store.append({QStringLiteral("zip"), 2}));

        const QJsonArray written = QJsonDocument::fromJson(Test::readFile(store.path())).array();
        QCOMPARE(written.size(), 4);
        QVERIFY(written.contains(QJsonObject{{QStringLiteral("identifier"), QStringLiteral("future")},
                                             {QStringLiteral("shape"), QStringLiteral("new")}}));
        QVERIFY(written.contains(QJsonValue(7)));
    }

    void failedSaveKeepsItemsInMemory()
    {
        QTemporaryDir dir;
        // A file where the store's folder should be: no write can succeed, not even as root.
        const QString blocker = dir.filePath(QStringLiteral("blocker"));
        QVERIFY(Test::writeFile(blocker, "x"));
        Test::LogCapture log;
        ItemStore<Entry> store(QStringLiteral("list"), blocker + QStringLiteral("/stores"));
        QVERIFY(!store.append({QStringLiteral("mail"), 1}));
        QCOMPARE(store.items().size(), 1);
        QVERIFY(log.contains(QStringLiteral("Failed to save item store")));
    }
};

QTEST_GUILESS_MAIN(TestItemStore)
#include "TestItemStore.moc"
