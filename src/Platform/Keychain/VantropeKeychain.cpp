// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "VantropeKeychain.h"

#include "Libraries/Core/Localized.h"

#include <QEventLoop>
#include <qt6keychain/keychain.h>
#include <QTimer>

namespace Vantrope {

namespace {

// Runs a job to its end on a local loop; the job's own thread needs one, and callers want an answer.
bool runJob(QKeychain::Job& job)
{
    job.setAutoDelete(false);
    job.setInsecureFallback(false);
    QEventLoop loop;
    bool finished = false;
    QObject::connect(&job, &QKeychain::Job::finished, &loop, [&] {
        finished = true;
        loop.quit();
    });
    QTimer::singleShot(std::chrono::milliseconds(VantropeKeychain::timeout), &loop, &QEventLoop::quit);
    job.start();
    if (!finished) {
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return finished;
}

VantropeKeychain::Error failure(VantropeKeychain::Error::Kind kind, const QKeychain::Job& job, bool finished)
{
    if (!finished) {
        return {kind, int(QKeychain::OtherError), QStringLiteral("the secret store did not answer in time")};
    }
    return {kind, int(job.error()), job.errorString()};
}

} // namespace

QString VantropeKeychain::Error::description() const
{
    switch (kind) {
    case Kind::itemNotFound:
        return Localized("keychain.error.not-found", "Nothing is stored for this service yet.");
    case Kind::invalidValue:
        return Localized("keychain.error.invalid", "What is stored for this service cannot be read.");
    case Kind::failedWriting:
    case Kind::failedReading:
    case Kind::failedDeleting:
        break;
    }
    if (status == int(QKeychain::NoBackendAvailable)) {
        return Localized(
            "keychain.error.no-store",
            "No secret store is running. Install and start one (such as GNOME Keyring or KWallet) "
            "to keep service logins.");
    }
    if (status == int(QKeychain::AccessDeniedByUser) || status == int(QKeychain::AccessDenied)) {
        return Localized("keychain.error.denied", "The secret store is locked or refused access (%1).")
            .arg(message);
    }
    return Localized("keychain.error.other", "The secret store failed: %1").arg(message);
}

VantropeKeychain::VantropeKeychain(QString service)
    : m_service(std::move(service))
{}

std::expected<QString, VantropeKeychain::Error> VantropeKeychain::readString(const QString& account) const
{
    QKeychain::ReadPasswordJob job(m_service);
    job.setKey(account);
    const bool finished = runJob(job);
    if (finished && job.error() == QKeychain::EntryNotFound) {
        return std::unexpected(Error{Error::Kind::itemNotFound, int(job.error()), job.errorString()});
    }
    if (!finished || job.error() != QKeychain::NoError) {
        return std::unexpected(failure(Error::Kind::failedReading, job, finished));
    }
    // Stored as text, so that other Secret Service clients show the same JSON.
    const QString text = job.textData();
    if (text.contains(QChar::ReplacementCharacter)) {
        return std::unexpected(Error{Error::Kind::invalidValue, 0, QStringLiteral("not UTF-8")});
    }
    return text;
}

std::expected<bool, VantropeKeychain::Error> VantropeKeychain::itemExists(const QString& account) const
{
    const auto read = readString(account);
    if (read) {
        return true;
    }
    if (read.error().kind == Error::Kind::itemNotFound) {
        return false;
    }
    if (read.error().kind == Error::Kind::invalidValue) {
        return true;
    }
    return std::unexpected(read.error());
}

std::expected<void, VantropeKeychain::Error> VantropeKeychain::writeString(const QString& account,
                                                                           const QString& value) const
{
    QKeychain::WritePasswordJob job(m_service);
    job.setKey(account);
    job.setTextData(value);
    const bool finished = runJob(job);
    if (!finished || job.error() != QKeychain::NoError) {
        return std::unexpected(failure(Error::Kind::failedWriting, job, finished));
    }
    return {};
}

std::expected<void, VantropeKeychain::Error> VantropeKeychain::deleteItem(const QString& account) const
{
    QKeychain::DeletePasswordJob job(m_service);
    job.setKey(account);
    const bool finished = runJob(job);
    if (finished && (job.error() == QKeychain::NoError || job.error() == QKeychain::EntryNotFound)) {
        return {};
    }
    return std::unexpected(failure(Error::Kind::failedDeleting, job, finished));
}

} // namespace Vantrope
