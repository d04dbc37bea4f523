#pragma once

#include <QImage>
#include <QRgb>
#include <QVector>

#include <array>
#include <vector>

namespace Corvane::Map {

/// Gives each pixel of image, which is opaque or premultiplied, the alpha of the plane on top of
/// its own. image becomes Format_ARGB32_Premultiplied where anything is not opaque.
void makeTransparent(QImage& image, const std::vector<unsigned char>& alpha);
/// Clears the pixels of exactly this red, green and blue. Values that no byte holds match nothing.
void makeColourTransparent(QImage& image, const std::array<double, 3>& colour);
/// Writes the colour of each index, which need not be premultiplied; opaque black where there is
/// none.
void fillFromColours(QImage& image, const std::vector<quint16>& indices,
                     const QVector<QRgb>& colours);

/// image, as Format_RGB32 where no pixel lets anything through.
QImage opaqueIfPossible(QImage image);

} // namespace Corvane::Map
