#pragma once

#include <corvane/map/CellRequest.h>
#include <corvane/map/IRasterLayerCells.h>
#include <corvane/map/RasterLayer.h>

#include <QStringList>
#include <QtTest>

#include <memory>

namespace Corvane::Tests {

/// Asks a layer for cells and waits for the answer, which is Failed with "never" where none comes.
inline Map::CellReading cellsOf(Map::RasterLayer& layer, const Map::CellRequest::Window& window)
{
    auto answer = std::make_shared<Map::CellReading>();
    answer->failure = QStringLiteral("never");
    auto done = std::make_shared<bool>(false);
    auto* const cells = qobject_cast<Map::IRasterLayerCells*>(&layer);
    if (!cells) {
        answer->failure = QStringLiteral("gives no cells");
        return *answer;
    }
    const auto request = Map::CellRequest::make(window, [=](const Map::CellReading& reading) {
        *answer = reading;
        *done = true;
    });
    cells->readCells(request);
    if (!QTest::qWaitFor([done] { return *done; }, 60000)) {
        request->abandon();
    }
    return *answer;
}

/// The world position of the middle of a cell of the grid that the layer shows.
inline QPointF middleOfCell(Map::RasterLayer& layer, int column, int row)
{
    return layer.getBounds().topLeft() +
           QPointF((column + 0.5) * layer.getCellSizeX(), (row + 0.5) * layer.getCellSizeY());
}

/// "12", "no data (0)" or "-" outside, row by row.
inline QStringList textsOf(const Map::CellBand& band)
{
    QStringList texts;
    for (const Map::CellValue& cell : band.values) {
        switch (cell.kind) {
        case Map::CellValue::Kind::Outside:
            texts << QStringLiteral("-");
            break;
        case Map::CellValue::Kind::NoData:
            texts << QStringLiteral("no data (%1)").arg(cell.text);
            break;
        case Map::CellValue::Kind::Value:
            texts << cell.text;
        }
    }
    return texts;
}

} // namespace Corvane::Tests
