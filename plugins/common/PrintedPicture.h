#pragma once

#include <functional>

class QRect;
class QRectF;

namespace Corvane {

class GeoPainter;

namespace Map {

/// Whether the painter works for a printer, or a file of a printer's pages.
bool isPrinting(const GeoPainter& painter);

/// Paints part of a page as a picture of the printer's own pixels. Tiles that are given to a printer
/// one by one are resampled by whoever shows the page, and overlap there by a pixel, which shows where
/// they are transparent. paintPage paints as if on the whole of device, which shows world. A part that
/// is larger than memory should bear comes in bands.
void paintPrintedPicture(GeoPainter& painter, QRectF world, QRect device, const QRect& part,
                         const std::function<void(GeoPainter& page)>& paintPage);

} // namespace Map
} // namespace Corvane
