// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Libraries/Core/URL.h"
#include "Models/Draggable/DraggableContext.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <thread>

using namespace Vantrope;
using namespace Qt::StringLiterals;

using Kind = DraggablePromise::ReceivingState::Kind;
Q_DECLARE_METATYPE(Kind)

namespace {

// Plays a drag source on a thread of its own. Each step is "how:name": "file" writes the file where
// asked, "outside" writes it elsewhere, "symlink" puts a link to an outside file in the folder,
// "missing" names a file it never wrote, "error" reports a failure.
class TestTransport final : public FilePromiseTransport {
public:
    TestTransport(QStringList steps, QStringList names, bool finishes, QString outside)
        : m_steps(std::move(steps))
        , m_names(std::move(names))
        , m_finishes(finishes)
        , m_outside(std::move(outside))
    {}
    ~TestTransport() override { join(); }

    QStringList fileNames() const override { return m_names; }
    QStringList fileTypes() const override { return {}; }

    void receive(const QString& destination, FileHandler onFile, FinishedHandler onFinished) override
    {
        ++receiveCalls;
        this->destination = destination;
        m_thread = std::thread([this, destination, onFile, onFinished] {
            for (const QString& step : std::as_const(m_steps)) {
                const QString how = step.section(u':', 0, 0);
                const QString inside = destination + u'/' + step.section(u':', 1);
                const QString outside = m_outside + u'/' + step.section(u':', 1);
                if (how == u"error") {
                    onFile(std::unexpected(
                        DraggableError{DraggableError::Kind::underlying, u"source said no"_s}));
                    continue;
                }
                if (how == u"file") {
                    Test::writeFile(inside, "promised");
                } else if (how != u"missing") {
                    Test::writeFile(outside, "elsewhere");
                }
                if (how == u"symlink") {
                    QFile::link(outside, inside);
                }
                onFile(QUrl::fromLocalFile(how == u"outside" ? outside : inside));
            }
            if (m_finishes) {
                onFinished();
            }
        });
    }

    void join()
    {
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

    int receiveCalls = 0;
    QString destination;

private:
    const QStringList m_steps;
    const QStringList m_names;
    const bool m_finishes;
    const QString m_outside;
    std::thread m_thread;
};

void settle(TestTransport* transport)
{
    transport->join();
    DispatchQueue::main().drain();
    QCoreApplication::processEvents();
}

} // namespace

class TestDraggablePromise final : public QObject {
    Q_OBJECT

    std::pair<std::shared_ptr<DraggablePromise>, TestTransport*> promise(QStringList steps, QStringList names,
                                                                         bool finishes = true)
    {
        auto transport = std::make_unique<TestTransport>(steps, names, finishes, m_outside.path());
        TestTransport* raw = transport.get();
        return {DraggablePromise::make(std::move(transport)), raw};
    }

    QTemporaryDir m_outside;

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QVERIFY(m_outside.isValid());
    }

    void receive_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("received"); // the first, then the additional ones
        QTest::addColumn<QString>("logged");

        const QString refused = u"Refused promised file outside its destination"_s;
        QTest::newRow("one file") << QStringList{u"file:a.png"_s} << QStringList{u"a.png"_s}
                                  << u"Promise succeeded"_s;
        QTest::newRow("three files") << QStringList{u"file:a"_s, u"file:b"_s, u"file:c"_s}
                                     << QStringList{u"a"_s, u"b"_s, u"c"_s} << u"Promise succeeded"_s;
        QTest::newRow("none") << QStringList{} << QStringList{} << QString();
        QTest::newRow("error") << QStringList{u"error:"_s} << QStringList{} << u"source said no"_s;
        QTest::newRow("written elsewhere") << QStringList{u"outside:o"_s} << QStringList{} << refused;
        QTest::newRow("link to elsewhere") << QStringList{u"symlink:s"_s} << QStringList{} << refused;
        QTest::newRow("never written")
            << QStringList{u"missing:m"_s} << QStringList{} << u"Promised file does not exist"_s;
        QTest::newRow("one refused, one kept")
            << QStringList{u"outside:x"_s, u"file:k"_s} << QStringList{u"k"_s} << refused;
    }

    void receive()
    {
        QFETCH(QStringList, steps);
        QFETCH(QStringList, received);
        QFETCH(QString, logged);

        Test::LogCapture log;
        QStringList names;
        for (const QString& step : steps) {
            names.append(step.section(u':', 1));
        }
        auto [item, transport] = promise(steps, names);
        QVERIFY(!item->isReady() && !item->url());
        item->receiveFiles();
        settle(transport);

        QVERIFY(log.contains(u"About to receive promised files, fileNames: "_s + names.join(u", "_s)));
        QVERIFY2(logged.isEmpty() || log.contains(logged), qPrintable(log.messages().join(u'\n')));
        const auto state = item->receivingState();
        QCOMPARE(item->isReady(), !received.isEmpty());
        if (received.isEmpty()) {
            QCOMPARE(state.kind, Kind::error);
            QCOMPARE(state.error.kind, DraggableError::Kind::missingReceivedFiles);
            QVERIFY(!item->url());
            return;
        }
        QCOMPARE(state.kind, Kind::received);
        QCOMPARE(item->url()->toLocalFile(), transport->destination + u'/' + received.first());
        QCOMPARE(item->systemFileNumber(), URL::systemFileNumber(*item->url()));
        QStringList additional;
        for (const auto& file : item->additionalDraggables()) {
            additional.append(QFileInfo(file->url()->toLocalFile()).fileName());
        }
        QCOMPARE(additional, received.mid(1));
    }

    void waitsForEveryFileAndRefusesASecondReceive()
    {
        Test::LogCapture log;
        auto [item, transport] = promise({u"file:a"_s}, {u"a"_s, u"b"_s}, false);
        item->receiveFiles();
        item->receiveFiles();
        settle(transport);
        QCOMPARE(item->receivingState().kind, Kind::receiving);
        QCOMPARE(transport->receiveCalls, 1);
        QVERIFY(log.contains(u"Attempted to receive promise while it's already in process of receiving"_s));
    }

    void onReceivesRunOnceInOrderOnMain()
    {
        auto [item, transport] = promise({u"file:a"_s}, {u"a"_s});
        QStringList calls;
        auto record = [&calls](const QString& name) {
            return [&calls, name](const Draggable::ResolveResult& result) {
                const bool onMain = QThread::currentThread() == qApp->thread();
                calls.append(name + (result && onMain ? u":ok"_s : u":wrong"_s));
            };
        };
        item->onReceives(record(u"first"_s));
        item->resolveUrl(record(u"resolve"_s));
        item->onReceives(record(u"second"_s));
        item->receiveFiles();
        settle(transport);
        QCOMPARE(calls, (QStringList{u"first:ok"_s, u"resolve:ok"_s, u"second:ok"_s}));

        item->onReceives(record(u"late"_s)); // after the end: answered too, once
        QTRY_COMPARE(calls.size(), 4);
        DispatchQueue::main().drain();
        QCoreApplication::processEvents();
        QCOMPARE(calls.last(), u"late:ok"_s);
        QCOMPARE(calls.size(), 4);
    }

    void itemGoneWhileReceiving()
    {
        auto [item, transport] = promise({u"file:a"_s, u"file:b"_s}, {u"a"_s, u"b"_s});
        bool called = false;
        item->onReceives([&called](const Draggable::ResolveResult&) { called = true; });
        item->receiveFiles();
        item.reset(); // takes the transport and its thread with it
        DispatchQueue::main().drain();
        QCoreApplication::processEvents();
        QVERIFY(!called);
    }

    void vantropePromise_data()
    {
        QTest::addColumn<std::optional<QUrl>>("url");
        QTest::addColumn<std::optional<DraggableError>>("error");
        const QUrl made = QUrl::fromLocalFile(m_outside.path() + u"/made.txt"_s);
        const DraggableError failure{DraggableError::Kind::underlying, u"could not make it"_s};
        QTest::newRow("url") << std::optional(made) << std::optional<DraggableError>();
        QTest::newRow("error") << std::optional<QUrl>() << std::optional(failure);
        QTest::newRow("neither") << std::optional<QUrl>() << std::optional<DraggableError>();
    }

    void vantropePromise()
    {
        QFETCH(std::optional<QUrl>, url);
        QFETCH(std::optional<DraggableError>, error);

        auto item = DraggablePromise::make([=] {
            return DraggablePromise::VantropePromiseResult{url, error};
        });
        std::optional<Draggable::ResolveResult> answer;
        item->resolveUrl([&answer](const Draggable::ResolveResult& result) { answer = result; });
        item->receiveFiles();
        QTRY_VERIFY(answer.has_value());
        QCOMPARE(item->url(), url);
        QCOMPARE(answer->has_value(), url.has_value());
        if (!url) {
            const DraggableError expected = error.value_or(DraggablePromise::missingReceivedFilesError());
            QCOMPARE(answer->error().kind, expected.kind);
            QCOMPARE(answer->error().description, expected.description);
        }
    }

    void destinationIsUniquePerDrag()
    {
        const auto seven = DraggablePromise::destinationDirectory(7);
        const auto eight = DraggablePromise::destinationDirectory(8);
        const auto first = DraggablePromise::destinationDirectory(std::nullopt);
        const auto second = DraggablePromise::destinationDirectory(std::nullopt);
        QVERIFY(seven && eight && first && second);
        QCOMPARE(DraggablePromise::destinationDirectory(7), seven); // a drag's promises land together
        QCOMPARE(QSet<QString>({*seven, *eight, *first, *second}).size(), 4);
        for (const QString& folder : {*seven, *first}) {
            QVERIFY(QFileInfo(folder).isDir());
            QCOMPARE(QFileInfo(folder).path(),
                     *TemporaryDirectories::path(ReservedTemporaryDirectory::promises));
        }
    }

    void noTransportNoItem()
    {
        PasteboardItem item;
        item.setData(PasteboardTypes::directSave, "name.png");
        QVERIFY(!DraggablePromise::fromPasteboard(item, PasteboardTypes::directSave, DraggableContext{}));
    }
};

QTEST_MAIN(TestDraggablePromise)
#include "TestDraggablePromise.moc"
