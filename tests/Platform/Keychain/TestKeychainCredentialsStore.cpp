// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Sharing/ServiceCredentials.h"
#include "Platform/Keychain/KeychainCredentialsStore.h"

#include <QDirIterator>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

// What `secret-tool`, another Secret Service client, finds under the program's service and account.
QByteArray lookedUpElsewhere(const QString& account)
{
    QProcess tool;
    tool.start(u"secret-tool"_s, {u"lookup"_s, u"server"_s, u"service-credentials"_s, u"user"_s, account});
    tool.waitForFinished(30000);
    return tool.readAllStandardOutput();
}

} // namespace

// Credentials kept in a real GNOME Keyring on a private bus (tests/support/with-keyring.sh).
class TestKeychainCredentialsStore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (qEnvironmentVariableIsEmpty("VANTROPE_KEYRING_BUS")) {
            QSKIP("needs tests/support/with-keyring.sh");
        }
    }

    void storedReplacedReadElsewhereRemoved()
    {
        KeychainCredentialsStore first;
        QVERIFY(!first.has<AmazonServiceCredentials>());
        QCOMPARE(first.read<AmazonServiceCredentials>(), std::nullopt);

        const AmazonServiceCredentials original{u"AKIAFIRST"_s, u"first secret"_s, u"bucket-one"_s,
                                                u"eu-west-1"_s};
        QVERIFY2(first.store(original), qPrintable(first.lastError()));
        QVERIFY(first.has<AmazonServiceCredentials>());

        const AmazonServiceCredentials replacement{u"AKIASECOND"_s, u"sécret/two+=="_s, u"bucket-two"_s,
                                                   u"us-west-2"_s};
        QVERIFY(first.store(replacement));

        // A second store, as another part of the program makes one, reads what the first wrote.
        KeychainCredentialsStore second;
        QVERIFY(second.has<AmazonServiceCredentials>());
        QCOMPARE(second.read<AmazonServiceCredentials>(), std::optional(replacement));
        // Another client of the Secret Service finds it under the documented service and account.
        if (!QStandardPaths::findExecutable(u"secret-tool"_s).isEmpty()) {
            QCOMPARE(AmazonServiceCredentials::fromJson(lookedUpElsewhere(u"service.aws"_s)),
                     std::optional(replacement));
        }

        QVERIFY(second.remove<AmazonServiceCredentials>());
        QVERIFY(!first.has<AmazonServiceCredentials>());
        QCOMPARE(first.read<AmazonServiceCredentials>(), std::nullopt);
        // Removing what is gone is no failure.
        QVERIFY(first.remove<AmazonServiceCredentials>());
    }

    void undecodableCredentialsCountAsAbsent()
    {
        VantropeKeychain keychain;
        QVERIFY(keychain.writeString(AmazonServiceCredentials::accountName(), uR"({"key":"only a key"})"_s));
        KeychainCredentialsStore store(keychain);
        QCOMPARE(store.read<AmazonServiceCredentials>(), std::nullopt);
        QVERIFY(keychain.deleteItem(AmazonServiceCredentials::accountName()));
    }

    // The keyring on disk is encrypted: the secret is nowhere in the clear.
    void secretsAreNotWrittenInTheClear()
    {
        KeychainCredentialsStore store;
        const QString secret = u"unmistakable-secret-5f1d0c"_s;
        QVERIFY(store.store(AmazonServiceCredentials{u"AKIA"_s, secret, u"b"_s, u"r"_s}));
        QDirIterator files(qEnvironmentVariable("XDG_DATA_HOME"), QDir::Files | QDir::Hidden,
                           QDirIterator::Subdirectories);
        int looked = 0;
        while (files.hasNext()) {
            QFile file(files.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY2(!file.readAll().contains(secret.toUtf8()), qPrintable(file.fileName()));
            ++looked;
        }
        QVERIFY(looked > 0);
        QVERIFY(store.remove<AmazonServiceCredentials>());
    }
};

QTEST_GUILESS_MAIN(TestKeychainCredentialsStore)
#include "TestKeychainCredentialsStore.moc"
