// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "BlockDeflater.h"

#include <array>
#include <zlib.h>

namespace Vantrope {

namespace {

constexpr qsizetype sampleSize = 4096;
constexpr int sampleCount = 4;

// A deflate state costs about 256 KiB to set up; each pool thread keeps one per level it has used
// and resets it per block.
class ThreadDeflaters {
public:
    ~ThreadDeflaters()
    {
        for (Entry& entry : m_entries) {
            if (entry.ready) {
                deflateEnd(&entry.stream);
            }
        }
    }

    z_stream* streamFor(int level)
    {
        Entry& entry = m_entries[size_t(level)];
        if (entry.ready) {
            return deflateReset(&entry.stream) == Z_OK ? &entry.stream : nullptr;
        }
        entry.stream = z_stream{};
        if (deflateInit2(&entry.stream, level, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
            return nullptr;
        }
        entry.ready = true;
        return &entry.stream;
    }

private:
    struct Entry {
        z_stream stream{};
        bool ready = false;
    };
    std::array<Entry, 10> m_entries{};
};

ThreadDeflaters& deflaters()
{
    thread_local ThreadDeflaters instance;
    return instance;
}

// Photos, films and archives do not shrink, and searching them for matches is most of the cost of
// compressing them. A few samples at the fastest level tell such a block apart for little work;
// its bytes then go into the stream as stored blocks.
bool looksIncompressible(const char* block, qsizetype length)
{
    if (length < sampleSize * sampleCount * 2) {
        return false;
    }
    z_stream* stream = deflaters().streamFor(1);
    if (!stream) {
        return false;
    }
    std::array<Bytef, sampleSize + 64> output{};
    qsizetype compressed = 0;
    for (int sample = 0; sample < sampleCount; ++sample) {
        if (sample > 0 && deflateReset(stream) != Z_OK) {
            return false;
        }
        const qsizetype offset = (length - sampleSize) * sample / (sampleCount - 1);
        stream->next_in = reinterpret_cast<Bytef*>(const_cast<char*>(block + offset));
        stream->avail_in = uInt(sampleSize);
        stream->next_out = output.data();
        stream->avail_out = uInt(output.size());
        if (::deflate(stream, Z_FINISH) != Z_STREAM_END) {
            return false;
        }
        compressed += qsizetype(output.size()) - qsizetype(stream->avail_out);
    }
    return compressed * 100 >= sampleSize * sampleCount * 97;
}

} // namespace

QByteArray BlockDeflater::deflate(const char* input, qsizetype dictionaryLength, qsizetype blockLength,
                                  int level, bool isLast)
{
    if (looksIncompressible(input + dictionaryLength, blockLength)) {
        level = 0;
    }
    z_stream* stream = deflaters().streamFor(level);
    if (!stream) {
        return {};
    }
    if (level > 0 && dictionaryLength > 0 &&
        deflateSetDictionary(stream, reinterpret_cast<const Bytef*>(input), uInt(dictionaryLength)) != Z_OK) {
        return {};
    }
    // deflateBound covers a finished stream; a sync flush adds an empty stored block of five bytes.
    QByteArray output(qsizetype(deflateBound(stream, uLong(blockLength))) + 16, Qt::Uninitialized);
    stream->next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input + dictionaryLength));
    stream->avail_in = uInt(blockLength);
    stream->next_out = reinterpret_cast<Bytef*>(output.data());
    stream->avail_out = uInt(output.size());
    const int result = ::deflate(stream, isLast ? Z_FINISH : Z_SYNC_FLUSH);
    const bool complete = isLast ? result == Z_STREAM_END : (result == Z_OK && stream->avail_out > 0);
    if (!complete || stream->avail_in != 0) {
        return {};
    }
    output.truncate(output.size() - qsizetype(stream->avail_out));
    return output;
}

} // namespace Vantrope
