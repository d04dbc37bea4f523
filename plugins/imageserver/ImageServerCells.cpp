#include <plugins/imageserver/ImageServerCells.h>

#include <plugins/common/PoolActivity.h>
#include <plugins/imageserver/ImageGrid.h>
#include <plugins/imageserver/ImageServerLoader.h>

#include <corvane/core/Integer.h>
#include <corvane/map/CellRequest.h>

#include <QColor>
#include <QCoreApplication>
#include <QRect>

#include <algorithm>

namespace Corvane::Map {

namespace {

bool isGrey(const ImageGrid& grid)
{
    return grid.colorSpace == QLatin1String("Greyscale");
}

// Pictures have bytes: those of other images are stretched, and those of many bands show three.
bool showsValuesAsTheyAre(const ImageGrid& grid)
{
    const int opacity = grid.opacity ? 1 : 0;
    const int shown = isGrey(grid) ? 1 : 3;
    return grid.cellType.compare(QLatin1String("UInt8"), Qt::CaseInsensitive) == 0 &&
           (grid.bands == shown || grid.bands == shown + opacity);
}

QStringList bandNames(const ImageGrid& grid)
{
    QStringList names =
        isGrey(grid) ? QStringList(QCoreApplication::translate("ImageServerCells", "Gray"))
                     : QStringList({QCoreApplication::translate("ImageServerCells", "Red"),
                                    QCoreApplication::translate("ImageServerCells", "Green"),
                                    QCoreApplication::translate("ImageServerCells", "Blue")});
    if (grid.opacity) {
        names << QCoreApplication::translate("ImageServerCells", "Alpha");
    }
    return names;
}

CellValue valueOf(const QColor& colour, int band, bool isAlpha)
{
    if (!isAlpha && colour.alpha() == 0) {
        return {CellValue::Kind::NoData, QString()};
    }
    const int parts[] = {colour.red(), colour.green(), colour.blue()};
    return {CellValue::Kind::Value, QString::number(isAlpha ? colour.alpha() : parts[band])};
}

CellReading ofState(CellReading::State state, const QString& failure = QString())
{
    CellReading reading;
    reading.state = state;
    reading.failure = failure;
    return reading;
}

// The bands that are asked for, with all cells outside.
QVector<CellBand> emptyBands(const ImageGrid& grid, const CellRequest::Window& window)
{
    const QStringList names = bandNames(grid);
    QVector<CellBand> bands;
    for (int i = 0; i < names.size(); ++i) {
        if (window.band == 0 || window.band == i + 1) {
            bands.append(
                {names[i], QStringLiteral("UInt8"), QVector<CellValue>(window.edge * window.edge)});
        }
    }
    return bands.isEmpty() ? QVector<CellBand>(1) : bands; // as for any band that is not there
}

// What one tile has of the window.
void takeCells(const QImage& picture, const QRect& tile, const QRect& wanted,
               const CellRequest::Window& window, const ImageGrid& grid, CellReading* reading)
{
    const int colours = isGrey(grid) ? 1 : 3;
    const int bandCount = colours + (grid.opacity ? 1 : 0);
    const QRect part = tile & wanted;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            const QColor colour = picture.pixelColor(x - tile.left(), y - tile.top());
            const int place = (y - wanted.top()) * window.edge + x - wanted.left();
            for (int i = 0; i < reading->bands.size(); ++i) {
                const int band = window.band > 0 ? window.band - 1 : i;
                if (band < bandCount) {
                    reading->bands[i].values[place] = valueOf(colour, band, band == colours);
                }
            }
        }
    }
}

CellReading readCells(ImageServerLoader& loader, const CellRequest& request)
{
    const ImageGrid& grid = loader.grid();
    const CellRequest::Window& window = request.getWindow();
    const double x = (window.world.x() - grid.originX) / grid.cellX;
    const double y = (window.world.y() - grid.originY) / grid.cellY;
    // written so that a NaN lies outside
    if (!(x >= 0.0 && x < grid.size.width() && y >= 0.0 && y < grid.size.height())) {
        return ofState(CellReading::State::Outside);
    }
    const auto isUnwanted = [&request] {
        return request.isCancelled() || PoolActivity::isEnding();
    };
    CellReading reading = ofState(CellReading::State::Read);
    reading.column = Util::truncateToInt(x);
    reading.row = Util::truncateToInt(y);
    reading.bands = emptyBands(grid, window);
    if (!showsValuesAsTheyAre(grid)) {
        reading.note =
            QCoreApplication::translate("ImageServerCells", "the colours of the server's picture");
    }
    const int half = window.edge / 2;
    const QRect wanted(reading.column - half, reading.row - half, window.edge, window.edge);
    const QRect inside = wanted & QRect(QPoint(0, 0), grid.size);
    for (int row = inside.top() / grid.tileSize; row <= inside.bottom() / grid.tileSize; ++row) {
        for (int column = inside.left() / grid.tileSize; column <= inside.right() / grid.tileSize;
             ++column) {
            const TileId tile{0, static_cast<unsigned int>(column), static_cast<unsigned int>(row)};
            const TileAnswer answer = loader.pictureOf(tile, isUnwanted);
            if (answer.kind != TileAnswer::Kind::Picture) {
                return isUnwanted() ? ofState(CellReading::State::Dropped)
                                    : ofState(CellReading::State::Failed, answer.failure);
            }
            const QRect place(QPoint(column * grid.tileSize, row * grid.tileSize),
                              answer.picture.size());
            takeCells(answer.picture, place, wanted, window, grid, &reading);
        }
    }
    return reading;
}

} // namespace

void answerCells(ImageServerLoader& loader, const std::shared_ptr<CellRequest>& request)
{
    request->finish(readCells(loader, *request));
}

} // namespace Corvane::Map
