// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Preferences/Preferences.h"
#include "Preferences/SettingsPreferenceStorage.h"
#include "support/TestSupport.h"

#include <cstdio>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <sys/inotify.h>
#include <unistd.h>

using namespace Vantrope;

namespace {

// What the helper process writes, so that both sides know what to expect.
const QDateTime s_helperDate(QDate(2023, 11, 5), QTime(6, 7, 8, 90), Qt::UTC);
const QStringList s_helperApplications{QStringLiteral("org.example.editor"),
                                       QStringLiteral("org.example.viewer")};
constexpr int s_helperDrops = 123456;

// The other process: "--write <file>" writes the values above; "--read <file> <stored name>" prints
// the type and value it finds.
int runHelper(const QStringList& arguments)
{
    SettingsPreferenceStorage storage(arguments.at(2));
    if (arguments.at(1) == u"--write") {
        storage.setValue(PreferenceKey::numberOfDrops, s_helperDrops);
        storage.setValue(PreferenceKey::lastTemporaryDataSanitationDate, s_helperDate);
        storage.setValue(PreferenceKey::ignoredApplication, s_helperApplications);
        return 0;
    }
    const PreferenceDefinition* definition = PreferenceDefinition::find(arguments.value(3));
    const auto value = definition ? storage.value(definition->key) : std::nullopt;
    const QString line = value ? QString::fromLatin1(value->metaType().name()) + u' ' + value->toString()
                               : QStringLiteral("absent");
    std::fputs(line.toUtf8().constData(), stdout);
    return 0;
}

QString runHelperProcess(const QStringList& arguments)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0) {
        return QStringLiteral("helper failed: ") + QString::fromUtf8(process.readAllStandardError());
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

QJsonObject fileObject(const QString& path)
{
    return QJsonDocument::fromJson(Test::readFile(path)).object();
}

} // namespace

class TestPreferenceStorage final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void valuesComeBackWithTheirType_data()
    {
        QTest::addColumn<PreferenceKey>("key");
        QTest::addColumn<QVariant>("value");

        const QDateTime utc(QDate(2024, 2, 29), QTime(23, 59, 58, 7), Qt::UTC);
        const QByteArray binary("\x00\x01\x7f\x80\xfe\xff", 6);
        using K = PreferenceKey;

        QTest::newRow("bool") << K::launchAtLogin << QVariant(false);
        QTest::newRow("largest int") << K::numberOfDrops << QVariant(std::numeric_limits<int>::max());
        QTest::newRow("unicode") << K::lastSeenWhatsNewVersion << QVariant(QStringLiteral("2.4 “Ünïcødé” ✓"));
        QTest::newRow("list") << K::recentActions << QVariant(QStringList{QStringLiteral("a"), QString()});
        QTest::newRow("date") << K::lastTemporaryDataSanitationDate << QVariant(utc);
        QTest::newRow("data") << K::bucketDestinationPath << QVariant(binary);
        QTest::newRow("empty data") << K::bucketDestinationPath << QVariant(QByteArray(""));
        QTest::newRow("dictionary") << K::showHideHotKeyCombo
                                    << QVariant(QVariantMap{
                                           {QStringLiteral("keyCode"), 49},
                                           {QStringLiteral("title"), QStringLiteral("⇧⌘Space")},
                                           {QStringLiteral("when"), utc},
                                           {QStringLiteral("blob"), binary},
                                           {QStringLiteral("list"),
                                            QVariantList{1, QStringLiteral("x"), false}},
                                           {QStringLiteral("$date"), QStringLiteral("a key, not a tag")},
                                           {QStringLiteral("nothing"), QVariant()},
                                       });
        QTest::newRow("dictionary like a tag")
            << K::showHideClipboardHotKeyCombo
            << QVariant(QVariantMap{{QStringLiteral("$data"), QStringLiteral("AAEC")}});
        QTest::newRow("dictionaries")
            << K::registeredKeyboardActionCombinations
            << QVariant(QVariantMap{
                   {QStringLiteral("custom_pin"), QVariantMap{{QStringLiteral("keyCode"), 35}}},
                   {QStringLiteral("custom_unpin"), QVariantMap()},
               });
    }

    void valuesComeBackWithTheirType()
    {
        QFETCH(PreferenceKey, key);
        QFETCH(QVariant, value);

        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("preferences.json"));
        SettingsPreferenceStorage(path).setValue(key, value);
        // A copy under another name is parsed from disk: within a process QSettings shares what it
        // read among all objects on the same path.
        const QString copy = folder.filePath(QStringLiteral("copy.json"));
        QVERIFY(QFile::copy(path, copy));

        const std::optional<QVariant> read = SettingsPreferenceStorage(copy).value(key);
        QVERIFY(read);
        QCOMPARE(read->metaType(), value.metaType());
        QCOMPARE(*read, value);
    }

    void fileIsPlainJsonInTheConfigFolder()
    {
        const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                             QStringLiteral("/vantrope/preferences.json");
        QVERIFY(path.startsWith(QString::fromLocal8Bit(qgetenv("HOME"))));
        SettingsPreferenceStorage storage;
        QCOMPARE(storage.filePath(), path);
        storage.setValue(PreferenceKey::hasLaunchedApp, true);
        storage.setValue(PreferenceKey::numberOfDrops, 12);
        storage.setValue(PreferenceKey::lastTemporaryDataSanitationDate,
                         QDateTime(QDate(2024, 3, 1), QTime(13, 34, 56, 789), Qt::OffsetFromUTC, 3600));
        storage.setValue(PreferenceKey::bucketDestinationPath, QByteArray("bookmark"));
        storage.setValue(PreferenceKey::showHideHotKeyCombo, QVariantMap{{QStringLiteral("$date"), 1}});
        storage.setValue(PreferenceKey::launchAtLogin, true);
        storage.setValue(PreferenceKey::launchAtLogin, QVariant());

        QCOMPARE(fileObject(path),
                 QJsonObject({
                     {QStringLiteral("IsFirstLaunch"), true},
                     {QStringLiteral("NumberOfDrops"), 12},
                     {QStringLiteral("LastTemporaryDataSanitationDate"),
                      QJsonObject{{QStringLiteral("$date"), QStringLiteral("2024-03-01T12:34:56.789Z")}}},
                     {QStringLiteral("BucketDestinationPath"),
                      QJsonObject{{QStringLiteral("$data"), QStringLiteral("Ym9va21hcms=")}}},
                     {QStringLiteral("ShowHideHotKeyCombo"), QJsonObject{{QStringLiteral("$$date"), 1}}},
                 }));
    }

    void wholeNumbersReadAsIntegers_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QVariant>("expected"); // null: no int (other types are the preference's concern)
        QTest::newRow("integer") << QByteArray("5") << QVariant(5);
        QTest::newRow("written as fraction") << QByteArray("5.0") << QVariant(5);
        QTest::newRow("negative exponent") << QByteArray("-1e3") << QVariant(-1000);
        QTest::newRow("fraction") << QByteArray("5.5") << QVariant();
        QTest::newRow("beyond int") << QByteArray("4294967296") << QVariant();
    }

    void wholeNumbersReadAsIntegers()
    {
        QFETCH(QByteArray, json);
        QFETCH(QVariant, expected);

        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("preferences.json"));
        QVERIFY(Test::writeFile(path, "{\"NumberOfDrops\": " + json + "}"));
        const Preferences preferences(std::make_unique<SettingsPreferenceStorage>(path));
        QVERIFY(preferences.storage().value(PreferenceKey::numberOfDrops));
        QCOMPARE(preferences.storedValue(PreferenceKeys::numberOfDrops),
                 expected.isNull() ? std::nullopt : std::optional(expected.toInt()));
    }

    void droppedKeysAndEntriesOfOthersSurvive()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("preferences.json"));
        const QJsonObject combination{
            {QStringLiteral("keyCode"), Qt::Key_Space},
            {QStringLiteral("modifiers"), int(Qt::ControlModifier | Qt::AltModifier)}};
        // Written by an older version, with keys this one no longer has, and by others.
        const QJsonObject before{
            {QStringLiteral("CloudKitDisabled"), true},
            {QStringLiteral("RatingPromptHistory"), QJsonArray{QStringLiteral("2.0")}},
            {QStringLiteral("CloudLinkExpiration"),
             QJsonObject{{QStringLiteral("$date"), QStringLiteral("2023-01-01T00:00:00.000Z")}}},
            {QStringLiteral("SomethingElse"),
             QJsonObject{{QStringLiteral("deep"), QJsonArray{1, QStringLiteral("x"), QJsonValue::Null}},
                         {QStringLiteral("$date"), QStringLiteral("not a date")}}},
            {QStringLiteral("$odd"), 1},
            {QStringLiteral("IsFirstLaunch"), QStringLiteral("yes")},
            {QStringLiteral("LaunchAtLogin"), true},
            {QStringLiteral("ShowHideHotKeyCombo"), combination},
            {QStringLiteral("RegisteredKeyboardActionCombinations"),
             QJsonObject{{QStringLiteral("newShelf"), combination},
                         {QStringLiteral("closeAllShelves"), QJsonObject{{QStringLiteral("keyCode"), 49}}}}},
        };
        QVERIFY(Test::writeFile(path, QJsonDocument(before).toJson()));

        Preferences preferences(std::make_unique<SettingsPreferenceStorage>(path));
        preferences.registerDefaults();
        QCOMPARE(preferences.value(PreferenceKeys::launchAtLogin), true);
        const auto space = KeyCombination::from(Qt::Key_Space, Qt::ControlModifier | Qt::AltModifier);
        QCOMPARE(preferences.storedValue(PreferenceKeys::showHideHotKeyCombo), space);
        QCOMPARE(preferences.value(PreferenceKeys::registeredKeyboardActionCombinations),
                 (KeyCombinations{{QStringLiteral("newShelf"), *space}}));
        // "yes" is no bool, so this start counts as the first.
        QCOMPARE(preferences.storedValue(PreferenceKeys::notchDragEnabled), std::optional(true));

        const QJsonObject after = fileObject(path);
        for (auto it = before.constBegin(); it != before.constEnd(); ++it) {
            QCOMPARE(after.value(it.key()), it.value());
        }
        QCOMPARE(after.value(QStringLiteral("NotchDragEnabled")), QJsonValue(true));
    }

    void unreadableFileIsSetAside_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("not JSON") << QByteArray("{\"NumberOfDrops\": 3,\n\"IsFirstLaunch\": tr");
        QTest::newRow("array") << QByteArray("[1, 2]");
    }

    void unreadableFileIsSetAside()
    {
        QFETCH(QByteArray, content);

        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("preferences.json"));
        QVERIFY(Test::writeFile(path, content));

        Test::LogCapture log;
        SettingsPreferenceStorage storage(path);
        QCOMPARE(log.count(QStringLiteral("is not valid JSON")), 1);
        QVERIFY(log.contains(path));
        for (const PreferenceDefinition& definition : PreferenceDefinition::all()) {
            QCOMPARE(storage.value(definition.key), std::nullopt);
        }
        const QStringList aside =
            QDir(folder.path()).entryList({QStringLiteral("preferences.json.corrupt-*")}, QDir::Files);
        QCOMPARE(aside.size(), 1);

        storage.setValue(PreferenceKey::numberOfDrops, 1);
        storage.sync();
        QCOMPARE(fileObject(path), QJsonObject({{QStringLiteral("NumberOfDrops"), 1}}));
        QCOMPARE(Test::readFile(folder.filePath(aside.constFirst())), content);
        QCOMPARE(log.count(QStringLiteral("is not valid JSON")), 1);
    }

    void refusedAndFailedWritesAreLogged()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("preferences.json"));
        SettingsPreferenceStorage storage(path);
        storage.setValue(PreferenceKey::amazonAccessControl, QStringLiteral("short"));

        Test::LogCapture log;
        storage.setValue(PreferenceKey::amazonAccessControl, QUrl(QStringLiteral("https://example.org")));
        QVERIFY(log.contains(QStringLiteral("cannot be stored")));
        QCOMPARE(storage.value(PreferenceKey::amazonAccessControl),
                 std::optional(QVariant(QStringLiteral("short"))));
        QCOMPARE(fileObject(path).value(QStringLiteral("AmazonAccessControl")),
                 QJsonValue(QStringLiteral("short")));

        // A folder where the file should be: nothing can be saved there, whoever runs the test.
        const QString blocked = folder.filePath(QStringLiteral("blocked.json"));
        QVERIFY(QDir().mkpath(blocked));
        SettingsPreferenceStorage(blocked).setValue(PreferenceKey::numberOfDrops, 1);
        QVERIFY(log.contains(QStringLiteral("Could not save NumberOfDrops to ") + blocked));
    }

    void otherProcessSeesWrites()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("preferences.json"));
        SettingsPreferenceStorage storage(path);
        storage.setValue(PreferenceKey::numberOfDrops, 1);
        storage.setValue(PreferenceKey::amazonAccessControl, QStringLiteral("long"));

        QCOMPARE(runHelperProcess({QStringLiteral("--write"), path}), QString());
        storage.sync();
        QCOMPARE(storage.value(PreferenceKey::numberOfDrops), std::optional(QVariant(s_helperDrops)));
        QCOMPARE(storage.value(PreferenceKey::lastTemporaryDataSanitationDate),
                 std::optional(QVariant(s_helperDate)));
        QCOMPARE(storage.value(PreferenceKey::ignoredApplication),
                 std::optional(QVariant(s_helperApplications)));
        QCOMPARE(storage.value(PreferenceKey::amazonAccessControl),
                 std::optional(QVariant(QStringLiteral("long"))));

        // Written here without a sync first: the other process's values must survive it.
        storage.setValue(PreferenceKey::launchAtLogin, true);
        const QString read = QStringLiteral("--read");
        QCOMPARE(runHelperProcess({read, path, QStringLiteral("LaunchAtLogin")}),
                 QStringLiteral("bool true"));
        QCOMPARE(runHelperProcess({read, path, QStringLiteral("NumberOfDrops")}),
                 QStringLiteral("int %1").arg(s_helperDrops));
        QCOMPARE(runHelperProcess({read, path, QStringLiteral("LastTemporaryDataSanitationDate")}),
                 QStringLiteral("QDateTime ") + s_helperDate.toString(Qt::ISODateWithMs));
    }

    // Each save puts a whole new file in place (created the first time, moved over the old one after), so
    // the saves are counted by the file appearing; a first start used to save once per default.
    void firstStartSavesTheFileOnce()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("preferences.json"));
        const int inotify = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        QVERIFY(inotify >= 0);
        const auto closeInotify = qScopeGuard([inotify] { ::close(inotify); });
        QVERIFY(::inotify_add_watch(inotify, QFile::encodeName(folder.path()).constData(),
                                    IN_CREATE | IN_MOVED_TO) >= 0);

        Preferences preferences(std::make_unique<SettingsPreferenceStorage>(path));
        preferences.registerDefaults();

        int saves = 0;
        alignas(inotify_event) char buffer[4096];
        for (ssize_t length; (length = ::read(inotify, buffer, sizeof buffer)) > 0;) {
            for (char* at = buffer; at < buffer + length;) {
                const auto* event = reinterpret_cast<const inotify_event*>(at);
                if (event->len > 0 && qstrcmp(event->name, "preferences.json") == 0) {
                    ++saves;
                }
                at += sizeof(inotify_event) + event->len;
            }
        }
        QCOMPARE(saves, 1);
        // And the one save holds them all.
        SettingsPreferenceStorage reread(path);
        QCOMPARE(reread.value(PreferenceKey::userScreenshotShowConfirmationMessage),
                 std::optional(QVariant(true)));
    }
};

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() >= 3 && (arguments.at(1) == u"--write" || arguments.at(1) == u"--read")) {
        return runHelper(arguments);
    }
    TestPreferenceStorage test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "TestPreferenceStorage.moc"
