// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QFile>
#include <QIODevice>

namespace Vantrope::AWS {

// A read-only window onto part of a file, so that a request body streams from the disk instead of
// sitting in memory. Seeking (for a resend) stays inside the window.
class FileRangeDevice final : public QIODevice {
    Q_OBJECT
public:
    FileRangeDevice(const QString& path, qint64 offset, qint64 length, QObject* parent = nullptr);

    bool open(OpenMode mode) override;
    void close() override;
    bool isSequential() const override { return false; }
    qint64 size() const override { return m_length; }
    bool seek(qint64 position) override;
    QString fileErrorString() const { return m_file.errorString(); }

protected:
    qint64 readData(char* data, qint64 maximumSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QFile m_file;
    qint64 m_offset;
    qint64 m_length;
};

} // namespace Vantrope::AWS
