// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DragSession/PersistentDragSessionFetchController.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Libraries/Core/FileBookmark.h"
#include "Libraries/Core/ManualClock.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggableWeblocation.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

using namespace Vantrope;
using namespace std::chrono_literals;

namespace {

const QDateTime baseDate(QDate(2026, 3, 1), QTime(8, 0), Qt::UTC);

// Blank squares, so tests need neither files nor an icon theme.
std::unique_ptr<FilesSnapshotController> snapshots()
{
    FilesSnapshotController::Configuration configuration;
    configuration.imageProvider = [](const QUrl&, const QSize& size) {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        return image;
    };
    return std::make_unique<FilesSnapshotController>(FilesSnapshotNamespace::defaultNamespace(),
                                                     configuration);
}

// "identifier:minutes:file,file[:pinned]"; bookmark bytes are placeholders the store never reads.
PersistentDragSessionPtr session(const QString& spec)
{
    const QStringList parts = spec.split(QLatin1Char(':'));
    PersistentDragSession::Bookmarks bookmarks;
    for (const QString& name : parts.at(2).split(QLatin1Char(','))) {
        bookmarks.insert(QUrl::fromLocalFile(QStringLiteral("/shelf/") + name), name.toUtf8());
    }
    std::optional<DragSessionLabel> label;
    if (parts.size() > 3) {
        label = DragSessionLabel{};
        label->pinned = true;
    }
    return std::make_shared<PersistentDragSession>(parts.at(0), baseDate.addSecs(parts.at(1).toInt() * 60),
                                                   label, bookmarks, std::nullopt);
}

QStringList identifiers(const QList<PersistentDragSessionPtr>& sessions)
{
    QStringList result;
    for (const auto& session : sessions) {
        result.append(session->identifier());
    }
    return result;
}

QStringList setAsideFiles(const QString& path)
{
    const QFileInfo info(path);
    return info.dir().entryList({info.fileName() + QStringLiteral(".corrupt-*")}, QDir::Files | QDir::Hidden);
}

} // namespace

class TestPersistentDragSessionStore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        m_path = m_dir->filePath(QStringLiteral(".drag_sessions"));
        snapshots()->purgeSnapshots(FilesSnapshotController::PurgeStrategy::all());
    }

    void sampleFileReadsAndWritesBack()
    {
        const QByteArray sample = Test::readFile(QStringLiteral(VANTROPE_SAMPLE_DRAG_SESSIONS));
        QVERIFY(Test::writeFile(m_path, sample));
        ManualClock clock;
        PersistentDragSessionStore store(m_path, snapshots(), clock);
        const auto sessions = store.sessions();

        QCOMPARE(identifiers(sessions),
                 (QStringList{QStringLiteral("3F1C6A2E-9B7D-4C1E-A5F0-2D8E6B4C9A17"),
                              QStringLiteral("8D4B2F61-0E3A-4B7C-9D15-7A6C3E2F1B08"),
                              QStringLiteral("C5E0D9A4-6F2B-4E81-B3C7-1A9D8E7F6054")}));
        QCOMPARE(sessions[0]->date(), QDateTime(QDate(2026, 2, 14), QTime(9, 30), Qt::UTC));
        QCOMPARE(sessions[0]->label()->name, std::optional(QStringLiteral("Q1 Invoices")));
        QVERIFY(sessions[0]->isPinned());
        QCOMPARE(sessions[1]->label()->name, std::nullopt);
        QCOMPARE(sessions[1]->order()->first(), QStringLiteral("https://example.org/"));
        QVERIFY(!sessions[2]->label() && !sessions[2]->order());

        // Keys are decoded URLs and each value is the bookmark of its own key.
        const QUrl beach = QUrl::fromLocalFile(QStringLiteral("/home/ada/Pictures/Beach Day.jpg"));
        QVERIFY(sessions[1]->bookmarks().contains(beach));
        int count = 0;
        for (const auto& session : sessions) {
            const auto bookmarks = session->bookmarks();
            for (auto entry = bookmarks.cbegin(); entry != bookmarks.cend(); ++entry, ++count) {
                QCOMPARE(QUrl::fromLocalFile(FileBookmark::decode(entry.value()).value().path), entry.key());
            }
        }
        QCOMPARE(count, 6);

        QCOMPARE(PersistentDragSessionStore::encode(sessions), sample);
    }

    // Escapes, time zones and URL encoding; the key order, and leaving out an absent label and order, are
    // fixed by the sample file above.
    void recordRoundTrip()
    {
        DragSessionLabel label{DragSessionLabelColor(DragSessionLabelColor::Identifier::khaki)};
        label.name = QStringLiteral("Tab\t\"quoted\" \\ naïve");
        const QStringList order{QStringLiteral("second"), QStringLiteral("first")};
        const QUrl odd = QUrl::fromLocalFile(QStringLiteral("/tmp/a b/ç#1?.txt"));
        const QByteArray bytes("\x00\xff\x10 bytes", 9);
        // Milliseconds and a time zone that the file must turn into whole seconds in UTC.
        const QDateTime date(QDate(2026, 3, 2), QTime(18, 5, 12, 345), Qt::OffsetFromUTC, 3600);
        const PersistentDragSession original(QStringLiteral("id\n1"), date, label, {{odd, bytes}}, order);

        const QByteArray json = original.toJson();
        const QJsonObject object = QJsonDocument::fromJson(json).object();
        QVERIFY(json.startsWith("{\"identifier\":"));
        QCOMPARE(object.keys().size(), 5);
        QCOMPARE(object.value(QStringLiteral("date")).toString(), QStringLiteral("2026-03-02T17:05:12Z"));
        QCOMPARE(object.value(QStringLiteral("bookmarks")).toArray(),
                 (QJsonArray{odd.toString(QUrl::FullyEncoded), QString::fromLatin1(bytes.toBase64())}));

        const auto decoded = PersistentDragSession::fromJson(object);
        QVERIFY(decoded);
        QCOMPARE((*decoded)->date(), QDateTime(QDate(2026, 3, 2), QTime(17, 5, 12), Qt::UTC));
        QCOMPARE((*decoded)->label(), std::optional(label));
        QCOMPARE((*decoded)->bookmarks(), original.bookmarks());
        QCOMPARE((*decoded)->toJson(), json);
    }

    void badFileKeepsWhatIsReadable_data()
    {
        const QByteArray sample = Test::readFile(QStringLiteral(VANTROPE_SAMPLE_DRAG_SESSIONS));
        const QByteArray good = PersistentDragSessionStore::encode({session(QStringLiteral("good:0:a"))});
        const auto withRecord = [&](const QByteArray& record) -> QByteArray {
            return good.chopped(1) + ',' + record + ']';
        };

        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("kept");
        QTest::addColumn<bool>("setAside");
        QTest::addColumn<QString>("logged");
        QTest::newRow("missing") << QByteArray() << 0 << false
                                 << QStringLiteral("No drag sessions on disk (");
        QTest::newRow("not JSON") << sample.left(200) << 0 << true << QStringLiteral("not a JSON array");
        QTest::newRow("an object") << QByteArray("{\"sessions\":[]}") << 0 << true
                                   << QStringLiteral("not a JSON array");
        QTest::newRow("unknown label colour") << QByteArray(sample).replace("\"coral\"", "\"mauve\"") << 2
                                              << true << QStringLiteral("\"label\"");
        QTest::newRow("odd bookmark array")
            << withRecord(
                   "{\"identifier\":\"x\",\"date\":\"2026-01-01T00:00:00Z\",\"bookmarks\":[\"file:///a\"]}")
            << 1 << true << QStringLiteral("the first, record 1");
        QTest::newRow("bad base64") << withRecord("{\"identifier\":\"x\",\"date\":\"2026-01-01T00:00:00Z\","
                                                  "\"bookmarks\":[\"file:///a\",\"%%\"]}")
                                    << 1 << true << QStringLiteral("base64");
        QTest::newRow("no date") << withRecord("{\"identifier\":\"x\",\"bookmarks\":[]}") << 1 << true
                                 << QStringLiteral("\"date\"");
        QByteArray many = "{\"identifier\":\"x\"}";
        for (int i = 1; i < 5000; ++i) {
            many += ",{\"identifier\":\"x\"}";
        }
        // Thousands of bad records make a line or two, not thousands, and only so many are read.
        QByteArray tricky = "{\"identifier\":\"a,]\\\"}[\",\"x\":[{}]}";
        for (int i = 1; i < 1500; ++i) {
            tricky += ", {\"identifier\":\"a,]\\\"}[\",\"x\":[{}]}";
        }
        QTest::newRow("many records with brackets in strings")
            << withRecord(tricky) << 1 << true
            << QStringLiteral("Reading only the first 1000 of 1501 recent shelves");
        QTest::newRow("many bad records")
            << withRecord(many) << 1 << true
            << QStringLiteral("Reading only the first 1000 of 5001 recent shelves");
    }

    void badFileKeepsWhatIsReadable()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, kept);
        QFETCH(bool, setAside);
        QFETCH(QString, logged);
        if (!content.isEmpty()) {
            QVERIFY(Test::writeFile(m_path, content));
        }
        Test::LogCapture log;
        ManualClock clock;
        PersistentDragSessionStore store(m_path, snapshots(), clock);
        QCOMPARE(store.sessions().size(), kept);
        QVERIFY2(log.contains(logged), qPrintable(log.messages().join(QLatin1Char('\n')).left(2000)));
        QVERIFY(log.messages().filter(QStringLiteral("Skipping")).size() <= 1);

        store.addSessionNow(session(QStringLiteral("new:9:z")));
        store.flush();
        const QStringList asides = setAsideFiles(m_path);
        QCOMPARE(asides.size(), setAside ? 1 : 0);
        if (setAside) {
            QCOMPARE(Test::readFile(m_dir->filePath(asides.first())), content);
        }
        const auto rewritten = PersistentDragSessionStore::decode(Test::readFile(m_path));
        QVERIFY(!rewritten.isDamaged);
        QCOMPARE(rewritten.sessions.size(), kept + 1);
    }

    void addSession_data()
    {
        QTest::addColumn<QStringList>("initial");
        QTest::addColumn<QString>("added");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QStringList>("purged");

        QStringList ten;
        QStringList newestFirst;
        for (int i = 0; i < 10; ++i) {
            ten.append(QStringLiteral("u%1:%1:f%1").arg(i));
            newestFirst.prepend(QStringLiteral("u%1").arg(i));
        }
        QTest::newRow("eleventh unpinned drops the oldest")
            << ten << QStringLiteral("new:20:g") << QStringList{QStringLiteral("new")} + newestFirst.mid(0, 9)
            << QStringList{QStringLiteral("u0")};
        QTest::newRow("pinned drops nothing")
            << ten << QStringLiteral("pin:-5:g:pinned") << QStringList{QStringLiteral("pin")} + newestFirst
            << QStringList{};
        QStringList resaved = newestFirst;
        resaved.move(resaved.indexOf(QStringLiteral("u5")), 0);
        QTest::newRow("saving a listed shelf again drops nothing")
            << ten << QStringLiteral("u5:20:f5,g") << resaved << QStringList{};

        const auto ids = [](const char* list) { return QString::fromLatin1(list).split(QLatin1Char(' ')); };
        QTest::newRow("same identifier replaces")
            << ids("a:0:x,y") << QStringLiteral("a:1:z") << ids("a") << ids("");
        QTest::newRow("older session with the same files goes")
            << ids("a:0:x,y") << QStringLiteral("b:1:y,x") << ids("b") << ids("a");
        QTest::newRow("newer session with the same files stays")
            << ids("a:5:x,y") << QStringLiteral("b:1:x,y") << ids("a b") << ids("");
        QTest::newRow("other files stay")
            << ids("a:0:x,y") << QStringLiteral("b:1:x") << ids("b a") << ids("");
        QTest::newRow("one duplicate at most")
            << ids("a:1:x c:0:x") << QStringLiteral("b:2:x") << ids("b c") << ids("a");
        QTest::newRow("pinned first, then newest")
            << ids("p:0:x:pinned a:5:y") << QStringLiteral("b:3:z") << ids("p a b") << ids("");
    }

    void addSession()
    {
        QFETCH(QStringList, initial);
        QFETCH(QString, added);
        QFETCH(QStringList, expected);
        QFETCH(QStringList, purged);
        ManualClock clock;
        PersistentDragSessionStore store(m_path, snapshots(), clock);
        for (const QString& spec : initial) {
            store.addSessionNow(session(spec));
        }
        const PersistentDragSessionPtr newSession = session(added);
        store.addSessionNow(newSession);

        QCOMPARE(identifiers(store.sessions()), expected);
        QCOMPARE(store.session(newSession->identifier()), newSession);
        for (const QString& id : purged) {
            if (!id.isEmpty()) {
                QVERIFY2(!store.snapshotController().snapshot(id), qPrintable(id));
            }
        }
        for (const QString& id : expected) {
            QVERIFY2(store.snapshotController().snapshot(id), qPrintable(id));
        }
    }

    void savesAreThrottledAndWhole()
    {
        ManualClock clock;
        auto store = std::make_unique<PersistentDragSessionStore>(m_path, snapshots(), clock);
        store->addSessionNow(session(QStringLiteral("a:0:x")));
        clock.advance(200ms);
        store->addSessionNow(session(QStringLiteral("b:1:y")));
        clock.advance(290ms);
        QVERIFY(!QFile::exists(m_path));
        clock.advance(20ms);
        QCOMPARE(identifiers(PersistentDragSessionStore::decode(Test::readFile(m_path)).sessions),
                 (QStringList{QStringLiteral("b"), QStringLiteral("a")}));

        store->deleteSessionNow(QStringLiteral("a"));
        clock.advance(490ms);
        QCOMPARE(PersistentDragSessionStore::decode(Test::readFile(m_path)).sessions.size(), 2);
        clock.advance(20ms);
        QCOMPARE(identifiers(PersistentDragSessionStore::decode(Test::readFile(m_path)).sessions),
                 QStringList{QStringLiteral("b")});

        // A change still waiting for the throttle reaches the disk when the store goes away.
        store->addSessionNow(session(QStringLiteral("c:2:z")));
        store.reset();
        QCOMPARE(PersistentDragSessionStore::decode(Test::readFile(m_path)).sessions.size(), 2);
    }

    void asynchronousChangesNotifyOnTheMainThread()
    {
        ManualClock clock;
        PersistentDragSessionStore store(m_path, snapshots(), clock);
        QSignalSpy changes(&store, &PersistentDragSessionStore::sessionsChanged);
        Test::LogCapture log;

        QThread* completedOn = nullptr;
        store.addSession(session(QStringLiteral("a:0:x")), [&] { completedOn = QThread::currentThread(); });
        QTRY_VERIFY(completedOn != nullptr);
        QCOMPARE(completedOn, QThread::currentThread());
        QCOMPARE(identifiers(store.sessions()), QStringList{QStringLiteral("a")});
        QTRY_COMPARE(changes.size(), 1);

        bool deleted = false;
        store.deleteSession(QStringLiteral("missing"), [&] { deleted = true; });
        QTRY_VERIFY(deleted);
        QVERIFY(
            log.contains(QStringLiteral("Attempted to delete a session which is not present in the store")));

        store.addSessionNow(session(QStringLiteral("b:1:y")));
        store.deleteSession(QStringLiteral("a"));
        QTRY_COMPARE(changes.size(), 3);
        QCOMPARE(identifiers(store.sessions()), QStringList{QStringLiteral("b")});
        QVERIFY(!store.snapshotController().snapshot(QStringLiteral("a")));

        store.clearSessionsNow();
        QVERIFY(store.sessions().isEmpty());
        QVERIFY(!store.snapshotController().snapshot(QStringLiteral("b")));
        QTRY_COMPARE(changes.size(), 4);
    }

    void validate_data()
    {
        QTest::addColumn<QStringList>("moved");
        QTest::addColumn<QStringList>("deleted");
        QTest::addColumn<QStringList>("expected");

        // The order puts b before the link before a, whatever the bookmarks' own order.
        QTest::newRow("all there, in the saved order")
            << QStringList{} << QStringList{}
            << QStringList{QStringLiteral("b.txt"), QStringLiteral("web"), QStringLiteral("a.txt")};
        QTest::newRow("moved file is found and bookmarked afresh")
            << QStringList{QStringLiteral("a.txt")} << QStringList{}
            << QStringList{QStringLiteral("b.txt"), QStringLiteral("web"), QStringLiteral("a moved.txt")};
        QTest::newRow("deleted file is dropped")
            << QStringList{} << QStringList{QStringLiteral("b.txt")}
            << QStringList{QStringLiteral("web"), QStringLiteral("a.txt")};
        QTest::newRow("nothing left")
            << QStringList{}
            << QStringList{QStringLiteral("a.txt"), QStringLiteral("b.txt"), QStringLiteral("link.webloc")}
            << QStringList{};
    }

    void validate()
    {
        QFETCH(QStringList, moved);
        QFETCH(QStringList, deleted);
        QFETCH(QStringList, expected);
        const QUrl address(QStringLiteral("https://example.org/"));
        const QString folder = m_dir->filePath(QStringLiteral("shelf"));
        QVERIFY(Test::writeFile(folder + QStringLiteral("/a.txt"), "a"));
        QVERIFY(Test::writeFile(folder + QStringLiteral("/b.txt"), "b"));
        QVERIFY(Test::writeFile(folder + QStringLiteral("/link.webloc"),
                                DraggableWeblocation::propertyList(address)));
        PersistentDragSession::Bookmarks bookmarks;
        for (const char* name : {"a.txt", "b.txt", "link.webloc"}) {
            const QUrl url = QUrl::fromLocalFile(folder + QLatin1Char('/') + QLatin1String(name));
            bookmarks.insert(url, FileBookmark::create(url).value());
        }
        const QStringList order{
            DraggableFile::standardizedKey(QUrl::fromLocalFile(folder + QStringLiteral("/b.txt"))),
            DraggableWeblocation::fromWeblocFile(QUrl::fromLocalFile(folder + QStringLiteral("/link.webloc")))
                ->cacheKey(),
            DraggableFile::standardizedKey(QUrl::fromLocalFile(folder + QStringLiteral("/a.txt")))};
        for (const QString& name : moved) {
            QVERIFY(QDir(folder).mkpath(QStringLiteral("inner")));
            QVERIFY(QFile::rename(folder + QLatin1Char('/') + name,
                                  folder + QStringLiteral("/inner/a moved.txt")));
        }
        for (const QString& name : deleted) {
            QVERIFY(QFile::remove(folder + QLatin1Char('/') + name));
        }

        PersistentDragSession session(QStringLiteral("v"), baseDate, std::nullopt, bookmarks, order);
        QVERIFY(!session.draggables());
        Test::LogCapture log;
        QCOMPARE(session.validate(), !expected.isEmpty());

        QStringList names;
        const DraggableList items = session.draggables().value();
        for (const DraggablePtr& item : items) {
            if (item->isWebLocation()) {
                QCOMPARE(std::static_pointer_cast<DraggableWeblocation>(item)->address(), address);
                names.append(QStringLiteral("web"));
                continue;
            }
            const auto file = std::dynamic_pointer_cast<DraggableFile>(item);
            QVERIFY(file && file->bookmark());
            names.append(file->url()->fileName());
            // A moved file carries a bookmark of where it is now.
            QCOMPARE(file->bookmark()->data == bookmarks.value(file->bookmark()->sourceUrl),
                     !moved.contains(file->bookmark()->sourceUrl.fileName()));
            QCOMPARE(FileBookmark::decode(file->bookmark()->data)->path, file->url()->toLocalFile());
        }
        QCOMPARE(names, expected);
        QCOMPARE(session.bookmarks().size(), 3 - deleted.size());
        QCOMPARE(log.count(QStringLiteral("Could not longer read file://")), deleted.size());
        QCOMPARE(
            log.contains(QStringLiteral("Found %1 removeable bookmarks (original: 3)").arg(deleted.size())),
            !deleted.isEmpty());
    }

    void collectBookmarks()
    {
        const QString stored = m_dir->filePath(QStringLiteral("stored.txt"));
        const QString fresh = m_dir->filePath(QStringLiteral("fresh.txt"));
        const QString gone = m_dir->filePath(QStringLiteral("gone.txt"));
        for (const QString& path : {stored, fresh, gone}) {
            QVERIFY(Test::writeFile(path, "x"));
        }
        const auto storedItem = DraggableFile::make(QUrl::fromLocalFile(stored));
        const auto goneItem = DraggableFile::make(QUrl::fromLocalFile(gone));
        QVERIFY(QFile::remove(gone));
        const DraggableList items{storedItem, DraggableFile::make(QUrl::fromLocalFile(fresh)), goneItem};

        const auto bookmarks = PersistentDragSession::collectBookmarks(items, [&](quint64 number) {
            return number == storedItem->systemFileNumber() ? std::optional(QByteArray("kept by the shelf"))
                                                            : std::nullopt;
        });
        QCOMPARE(bookmarks.keys(), (QList<QUrl>{QUrl::fromLocalFile(fresh), QUrl::fromLocalFile(stored)}));
        QCOMPARE(bookmarks.value(QUrl::fromLocalFile(stored)), QByteArray("kept by the shelf"));
        QCOMPARE(FileBookmark::decode(bookmarks.value(QUrl::fromLocalFile(fresh)))->path, fresh);

        const QUrl unplaced = PersistentDragSession::bookmarkKey({});
        QVERIFY(unplaced.isLocalFile() && unplaced.fileName().endsWith(QStringLiteral(".dat")));
        QVERIFY(unplaced != PersistentDragSession::bookmarkKey({}));
    }

    void fetch_data()
    {
        QTest::addColumn<bool>("pinnedOnly");
        QTest::addColumn<int>("limit");
        QTest::addColumn<bool>("unlimited");
        QTest::addColumn<QStringList>("expected");
        const QStringList all{QStringLiteral("p1"), QStringLiteral("p2"), QStringLiteral("u2"),
                              QStringLiteral("u3")};
        QTest::newRow("unlimited leaves out open shelves") << false << 0 << true << all;
        QTest::newRow("limit beyond the list") << false << 40 << false << all;
        QTest::newRow("negative") << false << -1 << false << QStringList{};
        QTest::newRow("pinned only, limited") << true << 1 << false << all.mid(0, 1);
    }

    void fetch()
    {
        QFETCH(bool, pinnedOnly);
        QFETCH(int, limit);
        QFETCH(bool, unlimited);
        QFETCH(QStringList, expected);
        ManualClock clock;
        PersistentDragSessionStore store(m_path, snapshots(), clock);
        for (const char* spec :
             {"u1:9:a", "p2:1:b:pinned", "u2:8:c", "p1:2:d:pinned", "u3:7:e", "po:3:f:pinned"}) {
            store.addSessionNow(session(QString::fromLatin1(spec)));
        }
        const PersistentDragSessionFetchController controller(store, [] {
            return QSet<QString>{QStringLiteral("u1"), QStringLiteral("po")};
        });
        QCOMPARE(identifiers(controller.fetch({pinnedOnly, limit, unlimited})), expected);
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
};

QTEST_MAIN(TestPersistentDragSessionStore)
#include "TestPersistentDragSessionStore.moc"
