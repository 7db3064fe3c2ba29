// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace Vantrope {

// Compresses one block of a file as a piece of a raw deflate stream. Blocks of one file are
// compressed independently, each primed with the 32 KiB of input before it, so they can run in
// parallel and still compress about as well as one stream; every block but the last ends on a byte
// boundary (a sync flush) and the last one ends the stream, so their outputs simply concatenate.
// A block that samples show to be incompressible goes in as stored blocks of the same stream.
class BlockDeflater final {
public:
    static constexpr qsizetype dictionarySize = 32 * 1024;

    // `input` holds up to dictionarySize bytes of preceding data, then the block itself.
    // `level` is a zlib level, 1 to 9. Answers an empty array only when zlib fails.
    static QByteArray deflate(const char* input, qsizetype dictionaryLength, qsizetype blockLength, int level,
                              bool isLast);
};

} // namespace Vantrope
