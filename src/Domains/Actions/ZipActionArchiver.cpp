// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ZipActionArchiver.h"

#include "Libraries/FileOperations/Zip.h"

#include <QUrl>
#include <stop_token>

namespace Vantrope {

namespace {

class ZipJob final : public ActionArchiver::Job {
public:
    void cancel() override { m_stop.request_stop(); }
    std::stop_token token() const { return m_stop.get_token(); }

private:
    std::stop_source m_stop;
};

} // namespace

ZipActionArchiver::ZipActionArchiver()
{
    // An archive deflates on the zip library's own pool; this one only waits on it, a few at a time.
    m_pool.setMaxThreadCount(2);
}

ZipActionArchiver::~ZipActionArchiver()
{
    m_pool.waitForDone();
}

std::shared_ptr<ActionArchiver::Job>
ZipActionArchiver::makeArchive(const QStringList& paths, const QString& destination, Completion completion)
{
    return makeArchiveReportingProgress(paths, destination, {}, std::move(completion));
}

std::shared_ptr<ActionArchiver::Job>
ZipActionArchiver::makeArchiveReportingProgress(const QStringList& paths, const QString& destination,
                                                Progress progress, Completion completion)
{
    auto job = std::make_shared<ZipJob>();
    m_pool.start(
        [job, paths, destination, progress = std::move(progress), completion = std::move(completion)] {
            Zip::Options options;
            options.stopToken = job->token();
            if (progress) {
                options.progress = [progress](const Zip::Progress& step) { progress(step.fraction()); };
            }
            const auto written = Zip::zipFiles(paths, destination, options);
            if (!written) {
                completion(std::unexpected(Error{written.error().description()}));
                return;
            }
            completion(QUrl::fromLocalFile(*written));
        });
    return job;
}

} // namespace Vantrope
