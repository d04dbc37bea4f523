#include <plugins/imageserver/ImageServerLayer.h>
#include <plugins/raster/GdalRasterLayer.h>

#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <plugins/common/TileCache.h>

#include <corvane/map/MapView.h>

#include <QDir>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <cmath>
#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int generous = 60000;  // milliseconds, for what has to come at some time
constexpr double borderZone = 1; // pixels on either side of a cell's border

bool isLight(int column, int row)
{
    return (column * 7 + row * 13) % 3 == 0;
}

} // namespace

/// Cells that are larger than a pixel of the screen are squares of one colour each.
class OverzoomTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void cellsAreCrispSquaresInTheirPlaces_data();
    void cellsAreCrispSquaresInTheirPlaces();

private:
    TiledRasterLayer* open(bool served);

    QTemporaryDir base;
    std::unique_ptr<ServerProcess> server;
};

void OverzoomTest::initTestCase()
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    TileCache::instance().setFolder(QString(), 0);
    QVERIFY(QDir().mkpath(base.filePath("images")));
    RasterRecipe recipe;
    recipe.size = QSize(600, 500);
    recipe.overviews = {2};
    recipe.value = [](int, int x, int y) { return isLight(x, y) ? 255 : 0; };
    QVERIFY(makeRaster(base.filePath("images/a.tif"), recipe));
    server = std::make_unique<ServerProcess>(base.filePath("images"));
    QVERIFY(server->isRunning());
}

void OverzoomTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
}

TiledRasterLayer* OverzoomTest::open(bool served)
{
    TiledRasterLayer* layer = nullptr;
    if (served) {
        layer = new ImageServerLayer;
    } else {
        layer = new GdalRasterLayer;
    }
    layer->setProgressive(false); // it is there when this returns
    layer->setDataSource(served ? server->url("/a.tif") : base.filePath("images/a.tif"));
    layer->setProgressive(true);
    return layer;
}

void OverzoomTest::cellsAreCrispSquaresInTheirPlaces_data()
{
    QTest::addColumn<bool>("served");
    QTest::addColumn<double>("factor"); // pixels of a cell's edge
    QTest::addColumn<QPointF>("corner");
    for (const bool served : {false, true}) {
        const QByteArray kind = served ? "served, " : "a file, ";
        QTest::newRow(kind + "8 times") << served << 8.0 << QPointF(40.0, 30.0);
        QTest::newRow(kind + "between whole cells") << served << 8.0 << QPointF(40.3, 30.7);
        QTest::newRow(kind + "over the corner of tiles") << served << 11.3 << QPointF(240.2, 245.9);
        QTest::newRow(kind + "37 and a half times") << served << 37.5 << QPointF(253.1, 253.6);
        QTest::newRow(kind + "100 times") << served << 100.0 << QPointF(254.4, 100.1);
        QTest::newRow(kind + "over the image's corner") << served << 16.0 << QPointF(590.4, 490.2);
    }
}

void OverzoomTest::cellsAreCrispSquaresInTheirPlaces()
{
    QFETCH(bool, served);
    QFETCH(double, factor);
    QFETCH(QPointF, corner);
    MapView view(nullptr, Qt::WindowFlags());
    view.setAttribute(Qt::WA_DeleteOnClose, false);
    view.resize(401, 301);
    view.show();
    TiledRasterLayer* const layer = open(served);
    QVERIFY2(layer->isValid(), qPrintable(layer->getLastError()));
    QVERIFY(layer->isPixmapSmoothing());
    view.addLayer(layer, -1);
    const double cell = layer->getCellSizeX();
    const QPointF origin = layer->getBounds().topLeft();
    const QRectF world(origin.x() + corner.x() * cell, origin.y() - corner.y() * cell,
                       400 / factor * cell, -300 / factor * cell);
    view.setBounds(world);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer->getPercentComplete()), 100, generous);
    // what is due at rest has been done when a timer that starts now, and lasts longer, ends
    bool rested = false;
    QTimer::singleShot(200, &view, [&rested] { rested = true; });
    QTRY_VERIFY(rested);

    const QImage picture = view.grab().toImage().convertToFormat(QImage::Format_RGB32);

    const QRectF shown = view.getBounds();
    int judged = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const double column =
                (shown.left() + shown.width() * (x + 0.5) / picture.width() - origin.x()) / cell;
            const double row =
                (origin.y() - shown.top() - shown.height() * (y + 0.5) / picture.height()) / cell;
            const double edgeX = std::abs(column - std::round(column)) * factor;
            const double edgeY = std::abs(row - std::round(row)) * factor;
            const QRgb colour = picture.pixel(x, y);
            const QString place =
                QStringLiteral("%1, %2: %3").arg(column).arg(row).arg(QColor(colour).name());
            // also on the border between two cells it is the colour of one of them
            QVERIFY2(colour == 0xff000000U || colour == 0xffffffffU, qPrintable(place));
            if (edgeX > borderZone && edgeY > borderZone) {
                const bool outside = column >= 600.0 || row >= 500.0;
                const bool light = outside || isLight(int(column), int(row));
                QVERIFY2((colour == 0xffffffffU) == light, qPrintable(place));
                ++judged;
            }
        }
    }
    QVERIFY(judged > picture.width() * picture.height() / 3);
}

QTEST_MAIN(OverzoomTest)
#include "OverzoomTest.moc"
