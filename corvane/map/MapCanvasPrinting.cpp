#include <corvane/map/MapCanvas.h>

#include <corvane/core/Integer.h>
#include <corvane/map/DeviceSpan_p.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/map/Layer.h>
#include <corvane/map/WholeUnits_p.h>

#include <QCoreApplication>
#include <QDebug>
#include <QPageLayout>
#include <QPen>
#include <QPrinter>
#include <QProgressDialog>

#include <cmath>

namespace Corvane::Map {

namespace {

constexpr int stripHeight = 512; // device pixels, whatever the printer's resolution
constexpr double stripsPerPixel = 1.0 / stripHeight;
constexpr int frameWidth = 2; // device pixels

QRect pageOf(const QPrinter& printer)
{
    return printer.pageLayout().paintRectPixels(printer.resolution());
}

// The shape of a north-up page is negative, so that such a world keeps its width and its top: the
// bottom is cut or added to. MapPrintingTest::aNorthUpWorldKeepsItsWidthAndItsTop holds it.
QRectF fittedTo(const QRect& page, const QRectF& world)
{
    const double worldAspect = std::abs(world.width()) / std::abs(world.height());
    const double pageWidth = page.width();
    const double pageHeight = page.height();
    const bool northUp = world.top() > world.bottom();
    const double pageAspect = northUp ? -(pageWidth / pageHeight) : pageWidth / pageHeight;
    double right = world.right();
    double bottom = world.bottom();
    if (worldAspect > pageAspect) {
        bottom = (right - world.left()) / pageAspect + world.top();
    } else {
        right = (bottom - world.top()) * pageAspect + world.left();
    }
    return QRectF(world.topLeft(), QPointF(wholeUnits(right), wholeUnits(bottom)));
}

} // namespace

void MapCanvas::print(QPrinter& printer, QProgressDialog* progress)
{
    printExtents(printer, progress, fittedTo(pageOf(printer), getBounds()));
}

void MapCanvas::printExtents(QPrinter& printer, QProgressDialog* progress, const QRectF& extents)
{
    prepareLayersForPrint();
    QRectF world = extents;
    QRect page = pageOf(printer).normalized();
    page.moveTo(0, 0);
    GeoPainter painter(&printer, world, page);
    if (printer.outputFormat() == QPrinter::PdfFormat) {
        setView(page.width(), page.height(), world.left(), world.top(), world.right(),
                world.bottom());
        paint(painter, &world, &page);
    } else {
        printStrips(painter, world, page, progress);
    }
    painter.setClipping(false);
    painter.setPen(QPen(QColor(44, 44, 44, 255), frameWidth));
    painter.drawRects(&page, 1);
    painter.end();
}

// A layer without these properties gets them as dynamic ones, which do nothing.
void MapCanvas::prepareLayersForPrint()
{
    for (Layer* layer : qAsConst(layers)) {
        if (layer) {
            layer->setProperty("Progressive", false);
            layer->setProperty("AdaptiveRoam", false);
            layer->setProperty("PixmapSmoothing", true);
        }
    }
}

void MapCanvas::printStrips(GeoPainter& painter, const QRectF& world, const QRect& page,
                            QProgressDialog* progress)
{
    constexpr int complete = 100; // percent
    for (int y = 0; y < page.height(); y += stripHeight) {
        printStrip(painter, world, page, y);
        qDebug().nospace() << "Printing strip " << y / stripHeight << " of "
                           << page.height() / stripHeight;
        const int percent =
            Util::truncateToInt((y * stripsPerPixel * 100.0) / (page.height() * stripsPerPixel));
        qDebug().nospace() << "Printing " << percent << "% complete";
        if (progress) {
            if (progress->wasCanceled()) {
                break;
            }
            progress->setValue(percent);
            QCoreApplication::processEvents();
        }
    }
    if (progress) {
        progress->setValue(complete);
    }
}

// The layers learn the strip from setView; painting gets the whole page, which the scale ranges and
// the places of pixels belong to. The last strip asks for all its rows, too.
void MapCanvas::printStrip(GeoPainter& painter, QRectF world, QRect page, int y)
{
    const double unitsX = (world.right() - world.left()) / deviceSpan(page.left(), page.right());
    const double unitsY = (world.bottom() - world.top()) / deviceSpan(page.top(), page.bottom());
    const double rows = deviceSpan(page.top(), y);
    QPointF topLeft = world.topLeft();
    QPointF bottomRight = world.bottomRight();
    painter.setWorldClip(topLeft, bottomRight);

    beginUpdate(false);
    setView(page.width(), stripHeight, world.left() - unitsX * page.left(),
            unitsY * rows + world.top(),
            unitsX * deviceSpan(page.left(), page.width()) + world.left(),
            unitsY * (rows + stripHeight) + world.top());
    paint(painter, &world, &page);
    endUpdate();
}

} // namespace Corvane::Map
