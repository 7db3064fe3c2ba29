// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// File operations run on a real agent's shelf through its command line: the results land on the shelf,
// the options are listed and checked, the Trash and the user's scripts are the real ones.
// Test data reads better as plain literals; the program itself keeps the strict casts.
#undef QT_NO_CAST_FROM_ASCII

#include "AgentUnderTest.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Vantrope::Test;

namespace {

QJsonObject actionNamed(const QByteArray& json, const QString& identifier)
{
    for (const QJsonValue& value : QJsonDocument::fromJson(json).array()) {
        if (value.toObject().value("identifier").toString() == identifier) {
            return value.toObject();
        }
    }
    return {};
}

QStringList itemPaths(const QJsonArray& items)
{
    QStringList paths;
    for (const QJsonValue& item : items) {
        paths.append(item.isObject() ? item.toObject().value("path").toString() : item.toString());
    }
    return paths;
}

} // namespace

// A 40 x 20 picture.
static QByteArray widePicture()
{
    return QByteArray::fromBase64(
        "iVBORw0KGgoAAAANSUhEUgAAACgAAAAUCAIAAABwJOjsAAAFcElEQVR4nA3NEduqMQCA4ZeiUTSKRtEoGkWjaBSNolE0"
        "6npgFL0UjaLRR6NoFI2iUTTqV5xz/"
        "4F7WRY2C2JhuyAXdgtqYb+gFw4LZuG4YBdOC27hvOAXLgth4boQF24LaeG+sC48FvLCc6Es/"
        "C3UhddCW3gv9IXPwlj4LsyF38KyCDYCIdgKpGAnUIK9QAsOAiM4CqzgJHCCs8ALLoIguAqi4CZIgrtgFTwEWfAUFMGfo"
        "ApegiZ4C7rgIxiCr2AKfuJ/LNlIhGQrkZKdREn2Ei05SIzkKLGSk8RJzhIvuUiC5CqJkpskSe6SVfKQZMlTUiR/"
        "kip5SZrkLemSj2RIvpIp+cn/"
        "sWKjEIqtQip2CqXYK7TioDCKo8IqTgqnOCu84qIIiqsiKm6KpLgrVsVDkRVPRVH8KaripWiKt6IrPoqh+Cqm4qf+"
        "x5qNRmi2GqnZaZRmr9Gag8ZojhqrOWmc5qzxmosmaK6aqLlpkuauWTUPTdY8NUXzp6mal6Zp3pqu+WiG5quZmp/"
        "+Hxs2BmHYGqRhZ1CGvUEbDgZjOBqs4WRwhrPBGy6GYLgaouFmSIa7YTU8DNnwNBTDn6EaXoZmeBu64WMYhq9hGn7mf2z"
        "ZWIRla5GWnUVZ9hZtOViM5WixlpPFWc4Wb7lYguVqiZabJVnultXysGTL01Isf5ZqeVma5W3plo9lWL6WafnZ/"
        "7Fj4xCOrUM6dg7l2Du04+AwjqPDOk4O5zg7vOPiCI6rIzpujuS4O1bHw5EdT0dx/Dmq4+VojrejOz6O4fg6puPn/"
        "seejUd4th7p2XmUZ+/RnoPHeI4e6zl5nOfs8Z6LJ3iunui5eZLn7lk9D0/2PD3F8+epnpened6e7vl4hufrmZ6f/"
        "x8HNgER2AZkYBdQgX1ABw4BEzgGbOAUcIFzwAcugRC4BmLgFkiBe2ANPAI58AyUwF+gBl6BFngHeuATGIFvYAZ+"
        "4X8c2UREZBuRkV1ERfYRHTlETOQYsZFTxEXOER+5RELkGomRWyRF7pE18ojkyDNSIn+RGnlFWuQd6ZFPZES+"
        "kRn5xf9xYpMQiW1CJnYJldgndOKQMIljwiZOCZc4J3zikgiJayImbomUuCfWxCORE89ESfwlauKVaIl3oic+"
        "iZH4Jmbil/"
        "7HK5sVsbJdkSu7FbWyX9ErhxWzclyxK6cVt3Je8SuXlbByXYkrt5W0cl9ZVx4reeW5Ulb+"
        "VurKa6WtvFf6ymdlrHxX5spv/"
        "R9nNhmR2WZkZpdRmX1GZw4ZkzlmbOaUcZlzxmcumZC5ZmLmlkmZe2bNPDI588yUzF+mZl6ZlnlneuaTGZlvZmZ++"
        "X9c2BREYVuQhV1BFfYFXTgUTOFYsIVTwRXOBV+4FELhWoiFWyEV7oW18CjkwrNQCn+FWngVWuFd6IVPYRS+"
        "hVn4lf9xZVMRlW1FVnYVVdlXdOVQMZVjxVZOFVc5V3zlUgmVayVWbpVUuVfWyqOSK89KqfxVauVVaZV3pVc+"
        "lVH5VmblV//"
        "HjU1DNLYN2dg1VGPf0I1DwzSODds4NVzj3PCNSyM0ro3YuDVS495YG49GbjwbpfHXqI1XozXejd74NEbj25iNX/"
        "sfdzYd0dl2ZGfXUZ19R3cOHdM5dmzn1HGdc8d3Lp3QuXZi59ZJnXtn7Tw6ufPslM5fp3ZendZ5d3rn0xmdb2d2fv1/"
        "PNgMxGA7kIPdQA32Az04DMzgOLCD08ANzgM/uAzC4DqIg9sgDe6DdfAY5MFzUAZ/gzp4DdrgPeiDz2AMvoM5+I3/"
        "8WQzEZPtRE52EzXZT/TkMDGT48ROThM3OU/85DIJk+skTm6TNLlP1sljkifPSZn8TerkNWmT96RPPpMx+U7m5Df5B/"
        "cYYh0XsBHwAAAAAElFTkSuQmCC");
}

class TestOperationsAgent final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<AgentUnderTest> m_agent;
    QString file(const QString& name) const { return m_agent->path("files/" + name); }

private Q_SLOTS:
    void init()
    {
        m_agent = std::make_unique<AgentUnderTest>();
        QVERIFY(writeFile(file("a.txt"), "first file"));
        QVERIFY(writeFile(file("b c.txt"), "second file"));
    }

    void cleanup() { m_agent.reset(); }

    void zipRunsFromTheCommandLineAndTheShelfHoldsTheArchive()
    {
        QVERIFY(m_agent->start());
        const auto added = m_agent->run({"add", file("a.txt"), file("b c.txt")});
        QCOMPARE(added.exitCode, 0);
        const QString shelf = added.text();

        const auto listed = m_agent->run({"actions", "--json"});
        QCOMPARE(listed.exitCode, 0);
        const QJsonObject zip = actionNamed(listed.output, "operationZip");
        QVERIFY2(!zip.isEmpty(), listed.output.constData());
        QStringList keys;
        for (const QJsonValue& option : zip.value("options").toArray()) {
            keys.append(option.toObject().value("key").toString());
        }
        QCOMPARE(keys, (QStringList{"name", "compression"}));
        const QJsonObject compression = zip.value("options").toArray().at(1).toObject();
        QCOMPARE(compression.value("type").toString(), QStringLiteral("choice"));
        QVERIFY(compression.value("choices").toArray().contains(QJsonValue("best")));
        // Operations for one item or for pictures are not offered for two text files.
        QVERIFY(actionNamed(listed.output, "operationRename").isEmpty());
        QVERIFY(actionNamed(listed.output, "operationImageResize").isEmpty());
        QVERIFY(!actionNamed(listed.output, "operationBatchRename").isEmpty());

        const auto run = m_agent->run(
            {"run", "operationZip", "--shelf", shelf, "--set", "name=Bundle", "--set=compression=best"});
        QCOMPARE(run.error, QString());
        QCOMPARE(run.exitCode, 0);
        const QString archive = run.text();
        QVERIFY2(archive.startsWith(m_agent->path("cache/vantrope/Operations/")), qPrintable(archive));
        QCOMPARE(QFileInfo(archive).fileName(), QStringLiteral("Bundle.zip"));
        const auto unzip = m_agent->runTool("unzip", {"-l", archive});
        QCOMPARE(unzip.exitCode, 0);
        QVERIFY2(unzip.output.contains(" a.txt\n") && unzip.output.contains(" b c.txt\n"),
                 unzip.output.constData());
        QTRY_COMPARE(itemPaths(m_agent->items(0)), QStringList{archive});
        // The originals are where they were.
        QCOMPARE(readFile(file("a.txt")), QByteArray("first file"));
    }

    void imagesAreResizedIntoNewFilesOnTheShelf()
    {
        QVERIFY(writeFile(file("wide picture.png"), widePicture()));
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({"add", file("wide picture.png")}).exitCode, 0);
        const auto listed = m_agent->run({"actions", "--json"});
        const QJsonObject resize = actionNamed(listed.output, "operationImageResize");
        QVERIFY2(!resize.isEmpty(), listed.output.constData());
        QVERIFY(!resize.value("options").toArray().isEmpty());
        // Text operations are not offered for a picture.
        QVERIFY(actionNamed(listed.output, "operationTextCopyContent").isEmpty());
        const auto run =
            m_agent->run({"run", "operationImageResize", "--set", "mode=longSide", "--set", "size=10"});
        QCOMPARE(run.error, QString());
        QCOMPARE(run.exitCode, 0);
        const QString output = run.text();
        QVERIFY2(output.startsWith(m_agent->path("cache/vantrope/Operations/")), qPrintable(output));
        const auto described = m_agent->runTool("file", {"-b", output});
        QVERIFY2(described.output.contains("10 x 5"), described.output.constData());
        QTRY_COMPARE(itemPaths(m_agent->items(0)), QStringList{output});
        QCOMPARE(readFile(file("wide picture.png")).size(), widePicture().size());
    }

    void badSettingsAreRefusedAndNothingHappens_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("error");
        QTest::newRow("unknown choice")
            << QStringList{"run", "operationZip", "--set", "compression=ultra"} << 1 << "compression";
        QTest::newRow("unknown key") << QStringList{"run", "operationZip", "--set", "width=1600"} << 1
                                     << "width";
        QTest::newRow("no value") << QStringList{"run", "operationZip", "--set", "compression"} << 2
                                  << "key=value";
        QTest::newRow("settings for an action")
            << QStringList{"run", "custom_pin", "--set", "a=b"} << 1 << "takes no settings";
        QTest::newRow("not on offer")
            << QStringList{"run", "operationRename", "--set", "name=x.txt"} << 1 << "not on offer";
        QTest::newRow("missing destination")
            << QStringList{"run", "operationMoveTo", "--set", "destination=/no/such/folder"} << 1
            << "does not exist";
    }

    void badSettingsAreRefusedAndNothingHappens()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, error);
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({"add", file("a.txt"), file("b c.txt")}).exitCode, 0);
        const auto result = m_agent->run(arguments);
        QCOMPARE(result.exitCode, exitCode);
        QVERIFY2(result.error.contains(error), qPrintable(result.error));
        QCOMPARE(itemPaths(m_agent->items(0)), (QStringList{file("a.txt"), file("b c.txt")}));
        QVERIFY(QFile::exists(file("a.txt")) && QFile::exists(file("b c.txt")));
    }

    void moveToTrashLandsInTheTrashAndLeavesTheShelf()
    {
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({"add", file("a.txt"), file("b c.txt")}).exitCode, 0);
        const auto run = m_agent->run({"run", "operationRecycle"});
        QCOMPARE(run.error, QString());
        QCOMPARE(run.exitCode, 0);
        const QString trash = m_agent->path("data/Trash");
        QCOMPARE(readFile(trash + "/files/b c.txt"), QByteArray("second file"));
        const QString info = QString::fromUtf8(readFile(trash + "/info/b c.txt.trashinfo"));
        QVERIFY2(info.startsWith("[Trash Info]\n") && info.contains("DeletionDate="), qPrintable(info));
        QVERIFY(!QFile::exists(file("a.txt")));
        // Both left the shelf; an empty shelf may close, which is the same to the user.
        QTRY_VERIFY(m_agent->list().isEmpty() || m_agent->items(0).isEmpty());
    }

    void aScriptsOutputBecomesTheShelf()
    {
        const QString scripts = m_agent->path("data/vantrope/scripts");
        QVERIFY(QDir().mkpath(scripts));
        QFile::setPermissions(m_agent->path("data/vantrope"),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QFile::setPermissions(scripts, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(writeFile(scripts + "/Count words",
                          "#!/bin/sh\nfor f in \"$@\"; do wc -w < \"$f\" > \"$(basename \"$f\").count\"; "
                          "echo \"$PWD/$(basename \"$f\").count\"; done\necho /etc/passwd\n"));
        QFile::setPermissions(scripts + "/Count words",
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({"add", file("a.txt"), file("b c.txt")}).exitCode, 0);
        const auto listed = m_agent->run({"actions", "--json"});
        QString identifier;
        for (const QJsonValue& value : QJsonDocument::fromJson(listed.output).array()) {
            if (value.toObject().value("title").toString() == "Count words") {
                identifier = value.toObject().value("identifier").toString();
            }
        }
        QVERIFY2(identifier.startsWith("applicationScript_"), listed.output.constData());
        const auto run = m_agent->run({"run", identifier});
        QCOMPARE(run.error, QString());
        QCOMPARE(run.exitCode, 0);
        QStringList names;
        QStringList paths;
        QTRY_COMPARE((paths = itemPaths(m_agent->items(0))).size(), 2);
        for (const QString& path : paths) {
            names.append(QFileInfo(path).fileName());
            QVERIFY2(path.startsWith(m_agent->path("cache/vantrope/Operations/")), qPrintable(path));
        }
        QCOMPARE(names, (QStringList{"a.txt.count", "b c.txt.count"}));
        QCOMPARE(readFile(paths.first()).trimmed(), QByteArray("2"));
    }
};

QTEST_GUILESS_MAIN(TestOperationsAgent)
#include "TestOperationsAgent.moc"
