// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActionArchiver.h"

#include <memory>
#include <QThreadPool>

namespace Vantrope {

// The archiver of the actions over the zip library: each archive is written on a thread of its own
// pool, and cancelling asks the zip library to stop between blocks, which removes what it wrote.
class ZipActionArchiver final : public ActionArchiver {
public:
    ZipActionArchiver();
    // Waits for the archives still being written.
    ~ZipActionArchiver() override;

    std::shared_ptr<Job> makeArchive(const QStringList& paths, const QString& destination,
                                     Completion completion) override;
    std::shared_ptr<Job> makeArchiveReportingProgress(const QStringList& paths, const QString& destination,
                                                      Progress progress, Completion completion) override;

private:
    QThreadPool m_pool;
};

} // namespace Vantrope
