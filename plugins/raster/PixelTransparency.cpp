#include <plugins/raster/PixelTransparency.h>

#include <algorithm>
#include <cmath>

namespace Corvane::Map {

namespace {

constexpr QRgb colourBits = 0x00ffffffU;
constexpr QRgb opaqueBlack = 0xff000000U;

QRgb* pixelsOf(QImage& image)
{
    return reinterpret_cast<QRgb*>(image.bits());
}

std::size_t countOf(const QImage& image)
{
    return static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height());
}

// Opaque pixels read the same in both formats, so the memory stays as it is.
void markTransparent(QImage& image)
{
    image.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
}

QRgb faded(QRgb pixel, unsigned int alpha)
{
    const auto channel = [pixel, alpha](int shift) {
        return ((pixel >> shift & 0xffU) * alpha + 127U) / 255U << shift;
    };
    return channel(24) | channel(16) | channel(8) | channel(0);
}

} // namespace

void makeTransparent(QImage& image, const std::vector<unsigned char>& alpha)
{
    if (std::all_of(alpha.begin(), alpha.end(), [](unsigned char a) { return a == 255; })) {
        return;
    }
    QRgb* const pixels = pixelsOf(image);
    for (std::size_t i = 0; i < alpha.size(); ++i) {
        if (alpha[i] == 0) {
            pixels[i] = 0;
        } else if (alpha[i] != 255) {
            pixels[i] = faded(pixels[i], alpha[i]);
        }
    }
    markTransparent(image);
}

void makeColourTransparent(QImage& image, const std::array<double, 3>& colour)
{
    QRgb wanted = 0;
    for (const double value : colour) {
        if (!(value >= 0.0 && value <= 255.0) || value != std::floor(value)) {
            return;
        }
        wanted = wanted << 8 | static_cast<QRgb>(value);
    }
    QRgb* const pixels = pixelsOf(image);
    bool any = false;
    for (std::size_t i = 0; i < countOf(image); ++i) {
        if ((pixels[i] & colourBits) == wanted) {
            pixels[i] = 0;
            any = true;
        }
    }
    if (any) {
        markTransparent(image);
    }
}

void fillFromColours(QImage& image, const std::vector<quint16>& indices,
                     const QVector<QRgb>& colours)
{
    std::vector<QRgb> table;
    bool opaque = true;
    for (const QRgb colour : colours) {
        table.push_back(qPremultiply(colour));
    }
    QRgb* const pixels = pixelsOf(image);
    for (std::size_t i = 0; i < indices.size(); ++i) {
        pixels[i] = indices[i] < table.size() ? table[indices[i]] : opaqueBlack;
        opaque = opaque && qAlpha(pixels[i]) == 255;
    }
    if (!opaque) {
        markTransparent(image);
    }
}

QImage opaqueIfPossible(QImage image)
{
    if (image.format() == QImage::Format_RGB32) {
        return image;
    }
    const auto* const pixels = reinterpret_cast<const QRgb*>(image.constBits());
    if (std::all_of(pixels, pixels + countOf(image), [](QRgb p) { return qAlpha(p) == 255; })) {
        image.reinterpretAsFormat(QImage::Format_RGB32);
    }
    return image;
}

} // namespace Corvane::Map
