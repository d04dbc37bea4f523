#pragma once

class QString;

namespace Corvane::Map {

/// Whether a mask says which pixels of the image count, beside its bands.
bool hasMask(const QString& image);

/// Writes a view (VRT) of a reduced copy with the mask of the image that it was made of, which the copy
/// itself lacks: without it the next reduction would mix what the mask hides into what it shows. A pixel
/// counts where one of those beneath it does. False with the reason in error.
bool writeMaskedCopy(const QString& copy, const QString& image, const QString& view,
                     QString* error);

} // namespace Corvane::Map
