#include "BlockDeflater.h"

#include <zlib.h>

namespace Vantrope {

namespace {

// A deflate state costs about 256 KiB to set up; each pool thread keeps one and resets it per block.
class ThreadDeflater {
public:
    ~ThreadDeflater()
    {
        if (m_level != 0) {
            deflateEnd(&m_stream);
        }
    }

    z_stream* streamFor(int level)
    {
        if (m_level == level) {
            return deflateReset(&m_stream) == Z_OK ? &m_stream : nullptr;
        }
        if (m_level != 0) {
            deflateEnd(&m_stream);
            m_level = 0;
        }
        m_stream = z_stream{};
        if (deflateInit2(&m_stream, level, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
            return nullptr;
        }
        m_level = level;
        return &m_stream;
    }

private:
    z_stream m_stream{};
    int m_level = 0;
};

} // namespace

QByteArray BlockDeflater::deflate(const char* input, qsizetype dictionaryLength, qsizetype blockLength,
                                  int level, bool isLast)
{
    thread_local ThreadDeflater deflater;
    z_stream* stream = deflater.streamFor(level);
    if (!stream) {
        return {};
    }
    if (dictionaryLength > 0 &&
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
