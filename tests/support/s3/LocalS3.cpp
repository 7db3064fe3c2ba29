// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "LocalS3.h"

#include <QDir>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QStandardPaths>
#include <QTimer>

namespace Vantrope::Test {

namespace {

quint16 waitForReady(QProcess& process, QString& error, const QString& what)
{
    QByteArray output;
    while (process.waitForReadyRead(60000)) {
        output += process.readAllStandardOutput();
        const qsizetype at = output.indexOf("ready ");
        const qsizetype end = output.indexOf('\n', at);
        if (at >= 0 && end > at) {
            return quint16(output.mid(at + 6, end - at - 6).trimmed().toUInt());
        }
    }
    error =
        what + QStringLiteral(" did not start: ") + QString::fromLocal8Bit(process.readAllStandardError());
    return 0;
}

} // namespace

LocalS3::LocalS3()
{
    const QString folder = QStringLiteral(VANTROPE_TEST_S3_DIR);
    const QString node = QStandardPaths::findExecutable(QStringLiteral("node"));
    const QString python =
        QStandardPaths::findExecutable(QStringLiteral("python3"), {QStringLiteral("/usr/bin")});
    if (node.isEmpty() || !QDir(folder + QStringLiteral("/node_modules/s3rver")).exists()) {
        m_error =
            QStringLiteral("the local S3 server is not installed: run scripts/test, or npm ci in ") + folder;
        return;
    }
    m_server.setProcessChannelMode(QProcess::SeparateChannels);
    m_server.start(node,
                   {folder + QStringLiteral("/s3-server.js"), m_storage.path(), QString::fromLatin1(bucket)});
    const quint16 serverPort = waitForReady(m_server, m_error, QStringLiteral("s3rver"));
    if (serverPort == 0) {
        return;
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VANTROPE_S3_REQUEST_LOG"), requestLogPath());
    m_proxy.setProcessEnvironment(environment);
    m_proxy.start(python, {folder + QStringLiteral("/sigv4-proxy.py"), QString::number(serverPort),
                           QString::fromLatin1(accessKey)});
    // The secret goes on standard input, never on a command line.
    m_proxy.write(QByteArray(secret) + '\n');
    m_proxyPort = waitForReady(m_proxy, m_error, QStringLiteral("the signature proxy"));
}

LocalS3::~LocalS3()
{
    for (QProcess* process : {&m_proxy, &m_server}) {
        if (process->state() != QProcess::NotRunning) {
            process->terminate();
            if (!process->waitForFinished(3000)) {
                process->kill();
                process->waitForFinished(3000);
            }
        }
    }
}

AWS::S3Client::Configuration LocalS3::configuration() const
{
    AWS::S3Client::Configuration configuration;
    configuration.credentials = {QString::fromLatin1(accessKey), QString::fromLatin1(secret)};
    configuration.bucket = QString::fromLatin1(bucket);
    configuration.region = QStringLiteral("us-east-1");
    configuration.endpoint = {QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_proxyPort)), true};
    return configuration;
}

QString LocalS3::requestLogPath() const
{
    return m_log.filePath(QStringLiteral("requests.log"));
}

QStringList LocalS3::requests() const
{
    QFile log(requestLogPath());
    if (!log.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

std::pair<int, QByteArray> httpGet(const QUrl& url)
{
    QNetworkAccessManager network;
    QNetworkReply* reply = network.get(QNetworkRequest(url));
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(60000, &loop, &QEventLoop::quit);
    loop.exec();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QByteArray body = reply->readAll();
    delete reply;
    return {status, body};
}

} // namespace Vantrope::Test
