// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// s3_upload_512mb_ms: our upload of a 512 MB file to the local S3 server (through the signature-checking
// proxy the tests use), multipart, from start to the completed object.
// s3_upload_awscli_ms: `aws s3 cp` of the same file to the same server in the same run.
// s3_upload_vs_awscli_ratio: ours over theirs (aim at most 1.0).
// s3_upload_512mb_peak_mb: the peak resident memory of this process during our upload (aim under 100).
#include "Libraries/AWS/Uploader.h"
#include "support/s3/LocalS3.h"

#include <cstdio>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;

namespace {

constexpr qint64 fileSize = 512LL * 1024 * 1024;

double peakResidentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:")) {
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024.0;
        }
    }
    return -1;
}

// Forgets the peak so far, so that the next reading covers only what follows.
void resetPeak()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    if (clear.open(QIODevice::WriteOnly)) {
        clear.write("5");
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    Test::LocalS3 s3;
    if (!s3.startError().isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(s3.startError()));
        return 1;
    }
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("big.bin"));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            return 1;
        }
        QByteArray block(1024 * 1024, Qt::Uninitialized);
        for (qint64 written = 0; written < fileSize; written += block.size()) {
            QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(block.data()), block.size() / 4);
            file.write(block);
        }
    }

    resetPeak();
    AWS::Uploader uploader(s3.configuration(), {path, QStringLiteral("bench/ours.bin")}, {});
    bool done = false;
    bool succeeded = false;
    QElapsedTimer timer;
    timer.start();
    uploader.upload([&](auto result) {
        done = true;
        succeeded = result.has_value();
        if (!result) {
            std::fprintf(stderr, "our upload failed: %s\n", qPrintable(result.error().description()));
        }
    });
    while (!done) {
        QTest::qWait(5);
    }
    const double ours = double(timer.nsecsElapsed()) / 1e6;
    const double peak = peakResidentMegabytes();
    if (!succeeded) {
        return 1;
    }
    std::printf("s3_upload_512mb_ms %.0f ms\n", ours);
    std::printf("s3_upload_512mb_peak_mb %.1f MB\n", peak);

    const QString aws = QStandardPaths::findExecutable(QStringLiteral("aws"));
    if (aws.isEmpty()) {
        std::fprintf(stderr, "aws is not installed (Debian package awscli); no comparison\n");
        return 0;
    }
    const auto configuration = s3.configuration();
    QProcess cli;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("AWS_ACCESS_KEY_ID"), configuration.credentials.accessKeyId);
    environment.insert(QStringLiteral("AWS_SECRET_ACCESS_KEY"), configuration.credentials.secretAccessKey);
    environment.insert(QStringLiteral("AWS_DEFAULT_REGION"), configuration.region);
    environment.insert(QStringLiteral("AWS_CONFIG_FILE"), folder.filePath(QStringLiteral("aws-config")));
    environment.insert(QStringLiteral("AWS_SHARED_CREDENTIALS_FILE"),
                       folder.filePath(QStringLiteral("aws-credentials")));
    cli.setProcessEnvironment(environment);
    timer.restart();
    cli.start(aws, {QStringLiteral("--endpoint-url"), configuration.endpoint.url.toString(),
                    QStringLiteral("s3"), QStringLiteral("cp"), QStringLiteral("--only-show-errors"), path,
                    QStringLiteral("s3://%1/bench/theirs.bin").arg(configuration.bucket)});
    cli.waitForFinished(-1);
    const double theirs = double(timer.nsecsElapsed()) / 1e6;
    if (cli.exitCode() != 0) {
        std::fprintf(stderr, "aws s3 cp failed: %s\n", cli.readAllStandardError().constData());
        return 1;
    }
    std::printf("s3_upload_awscli_ms %.0f ms\n", theirs);
    std::printf("s3_upload_vs_awscli_ratio %.2f\n", ours / theirs);
    return 0;
}
