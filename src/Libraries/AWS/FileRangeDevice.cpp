// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileRangeDevice.h"

namespace Vantrope::AWS {

FileRangeDevice::FileRangeDevice(const QString& path, qint64 offset, qint64 length, QObject* parent)
    : QIODevice(parent)
    , m_file(path)
    , m_offset(offset)
    , m_length(length)
{}

bool FileRangeDevice::open(OpenMode mode)
{
    if ((mode & WriteOnly) || !m_file.open(QIODevice::ReadOnly) || !m_file.seek(m_offset)) {
        return false;
    }
    return QIODevice::open(mode | Unbuffered);
}

void FileRangeDevice::close()
{
    m_file.close();
    QIODevice::close();
}

bool FileRangeDevice::seek(qint64 position)
{
    if (position < 0 || position > m_length || !m_file.seek(m_offset + position)) {
        return false;
    }
    return QIODevice::seek(position);
}

qint64 FileRangeDevice::readData(char* data, qint64 maximumSize)
{
    const qint64 left = m_length - pos();
    if (left <= 0) {
        return 0;
    }
    const qint64 read = m_file.read(data, std::min(left, maximumSize));
    // A file cut short under us ends the body early; the server then refuses the part.
    return read < 0 ? -1 : read;
}

} // namespace Vantrope::AWS
