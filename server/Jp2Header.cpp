#include <server/Jp2Header.h>

#include <algorithm>
#include <array>
#include <map>

namespace Corvane::Server {

namespace {

// Of the library that decodes, measured.
constexpr qint64 codeBlockBytes = 400;
constexpr qint64 precinctBytes = 600;
constexpr qint64 tileBytes = 6000;
constexpr qint64 tileComponentBytes = 1100;

constexpr qint64 smallestCodeBlock = 16; // pixels
constexpr qint64 smallestPrecinct = 4;
constexpr int mostBoxes = 1000;
constexpr int mostMarkers = 1000;
constexpr int mostTileParts = 1 << 17;
constexpr qint64 fewTiles = 64;

enum Marker
{
    StartOfStream = 0xff4f,
    Size = 0xff51,
    CodingStyle = 0xff52,
    ComponentStyle = 0xff53,
    StartOfTilePart = 0xff90,
    StartOfData = 0xff93
};

/// Numbers as the file has them, the highest byte first.
class Place
{
public:
    Place(const Jp2Header::Read& fileRead, qint64 start) : at(start), read(fileRead) {}

    /// False at the file's end.
    bool number(int bytes, qint64* value)
    {
        if (at < first || at + bytes > first + count) {
            first = at;
            count = read(at, ahead.data(), static_cast<int>(ahead.size()));
        }
        *value = 0;
        for (qint64 i = at - first; i < at - first + bytes && i < count; ++i) {
            *value = *value * 256 + static_cast<unsigned char>(ahead[static_cast<std::size_t>(i)]);
        }
        at += bytes;
        return at <= first + count && *value >= 0;
    }

    qint64 at;

private:
    const Jp2Header::Read& read;
    std::array<char, 64> ahead{};
    qint64 first = 0; // place of what was read ahead
    int count = 0;    // of its bytes
};

// Where the stream of pixels begins, after its mark; -1 where there is none.
qint64 streamPlace(const Jp2Header::Read& read, qint64 fileBytes)
{
    Place place(read, 0);
    qint64 mark = 0;
    if (place.number(2, &mark) && mark == StartOfStream) {
        return place.at;
    }
    place.at = 0;
    for (int box = 0; box < mostBoxes && place.at < fileBytes; ++box) {
        const qint64 begin = place.at;
        qint64 length = 0;
        qint64 type = 0;
        if (!place.number(4, &length) || !place.number(4, &type) ||
            (length == 1 && !place.number(8, &length)))
        {
            return -1;
        }
        if (type == 0x6a703263) { // "jp2c"
            return place.number(2, &mark) && mark == StartOfStream ? place.at : -1;
        }
        if (length < place.at - begin || length > fileBytes - begin) {
            return -1;
        }
        place.at = begin + length;
    }
    return -1;
}

bool readSize(Place place, Jp2Header* header)
{
    std::array<qint64, 8> numbers{};
    qint64 skipped = 0;
    qint64 components = 0;
    bool good = place.number(4, &skipped); // length and capabilities
    for (qint64& number : numbers) {
        good = good && place.number(4, &number);
    }
    good = good && place.number(2, &components);
    const auto [right, bottom, left, top, width, height, tilesLeft, tilesTop] = numbers;
    if (!good || right <= left || bottom <= top || width < 1 || height < 1 || components < 1) {
        return false;
    }
    header->tileWidth = std::min(width, right - left);
    header->tileHeight = std::min(height, bottom - top);
    header->tiles =
        ((right - tilesLeft + width - 1) / width) * ((bottom - tilesTop + height - 1) / height);
    header->components = static_cast<int>(components);
    return header->tiles > 0;
}

// Of the style for all components; precincts are as large as can be unless it tells.
bool readStyle(Place place, Jp2Header* header)
{
    std::array<qint64, 9> numbers{}; // length, style, order, layers, transform, levels, block
    constexpr std::array<int, 9> sizes{2, 1, 1, 2, 1, 1, 1, 1, 2};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (!place.number(sizes[i], &numbers[i])) {
            return false;
        }
    }
    header->levels = static_cast<int>(numbers[5]);
    header->codeBlockPixels =
        qint64{1} << (std::min<qint64>(numbers[6], 8) + std::min<qint64>(numbers[7], 8) + 4);
    header->precinctPixels = qint64{1} << 30;
    if ((numbers[1] & 1) != 0) {
        for (int level = 0; level <= header->levels && level <= 32; ++level) {
            qint64 size = 0;
            if (!place.number(1, &size)) {
                return false;
            }
            header->precinctPixels =
                std::min(header->precinctPixels, qint64{1} << ((size & 15) + (size >> 4)));
        }
    }
    return true;
}

// Whether a tile has a style of its own; and how long the longest tile is.
bool lookAtTiles(Place place, qint64 fileBytes, Jp2Header* header)
{
    std::map<qint64, qint64> lengths;
    for (int part = 0; part < mostTileParts; ++part) {
        const qint64 begin = place.at;
        qint64 mark = 0;
        qint64 tile = 0;
        qint64 length = 0;
        qint64 skipped = 0;
        if (!place.number(2, &mark) || mark != StartOfTilePart || !place.number(2, &skipped) ||
            !place.number(2, &tile) || !place.number(4, &length) || !place.number(2, &skipped))
        {
            break;
        }
        length = length == 0 ? fileBytes - begin : length;
        qint64& all = lengths[tile];
        all += std::min(length, fileBytes - begin);
        header->packedBytes = std::max(header->packedBytes, all);
        for (int i = 0; i < mostMarkers && place.number(2, &mark) && mark != StartOfData; ++i) {
            if (mark == CodingStyle || mark == ComponentStyle || !place.number(2, &skipped)) {
                return true;
            }
            place.at += skipped - 2;
        }
        place.at = begin + std::max<qint64>(length, 14);
    }
    return false;
}

void assumeTheWorst(Jp2Header* header)
{
    header->codeBlockPixels = smallestCodeBlock;
    header->precinctPixels = smallestPrecinct;
}

} // namespace

std::optional<Jp2Header> Jp2Header::read(const Read& read, qint64 fileBytes)
{
    Place place(read, streamPlace(read, fileBytes));
    Jp2Header header;
    qint64 mark = 0;
    bool hasOwnStyles = false;
    for (int i = 0; i < mostMarkers && place.at > 0 && place.number(2, &mark); ++i) {
        if (mark == StartOfTilePart) {
            place.at -= 2;
            break;
        }
        if ((mark == Size && !readSize(place, &header)) ||
            (mark == CodingStyle && !readStyle(place, &header)))
        {
            return std::nullopt;
        }
        hasOwnStyles = hasOwnStyles || mark == ComponentStyle;
        qint64 length = 0;
        if (!place.number(2, &length) || length < 2) {
            return std::nullopt;
        }
        place.at += length - 2;
    }
    if (mark != StartOfTilePart || header.tiles == 0 || header.codeBlockPixels == 0) {
        return std::nullopt;
    }
    Jp2Header worst = header;
    assumeTheWorst(&worst);
    if (header.tiles <= fewTiles || worst.decoderBytes() > decoderLimit) {
        hasOwnStyles = lookAtTiles(place, fileBytes, &header) || hasOwnStyles;
    }
    if (hasOwnStyles) {
        assumeTheWorst(&header);
    }
    return header;
}

qint64 Jp2Header::decoderBytes() const
{
    // a wavelet's levels are a third of the pixels more, and each may end in parts of blocks
    const double pixels =
        static_cast<double>(tileWidth) * static_cast<double>(tileHeight) * 4.0 / 3.0;
    const double blocks = pixels / static_cast<double>(codeBlockPixels) + 3.0 * (levels + 1);
    const double precincts = pixels / static_cast<double>(precinctPixels) + levels + 1.0;
    const double bytes = components * (blocks * codeBlockBytes + precincts * precinctBytes) +
                         static_cast<double>(tiles) *
                             (tileBytes + static_cast<double>(components) * tileComponentBytes) +
                         static_cast<double>(packedBytes);
    return static_cast<qint64>(std::min(bytes, 1e18));
}

} // namespace Corvane::Server
