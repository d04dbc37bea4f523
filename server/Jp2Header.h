#pragma once

#include <QtGlobal>

#include <functional>
#include <optional>

namespace Corvane::Server {

/// What the head of a JPEG 2000 file says of the work that its tiles make: a few bytes can call for any
/// amount of memory before a single pixel is decoded.
struct Jp2Header
{
    static constexpr qint64 decoderLimit = 256 << 20; ///< bytes that a decoder may take

    /// Reads up to count bytes from a place in the file; how many it were.
    using Read = std::function<int(qint64 place, char* target, int count)>;

    /// Nothing where the file has no such head.
    static std::optional<Jp2Header> read(const Read& read, qint64 fileBytes);

    /// What a decoder takes for a tile at the most, and for knowing of all tiles. About right.
    qint64 decoderBytes() const;

    qint64 tileWidth = 0; ///< pixels, of the largest tile
    qint64 tileHeight = 0;
    qint64 tiles = 0;
    int components = 0;
    int levels = 0;             ///< of the wavelet
    qint64 codeBlockPixels = 0; ///< of the smallest
    qint64 precinctPixels = 0;  ///< the same
    qint64 packedBytes = 0;     ///< of the longest tile
};

} // namespace Corvane::Server
