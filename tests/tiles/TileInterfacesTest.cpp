#include <corvane/tiles/HttpTileRequest.h>
#include <corvane/tiles/ITileRequest.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/LayerLevels.h>
#include <corvane/tiles/TileMatrixSet.h>
#include <tests/support/VirtualSlot.h>

#include <QRectF>
#include <QtTest>

#include <type_traits>

using namespace Corvane::Map;

// the pyramid is the one thing that the interface holds
static_assert(sizeof(ITiledLayer) == sizeof(void*) + sizeof(LayerLevels));
static_assert(std::is_abstract_v<ITiledLayer> && std::is_abstract_v<ITileRequest>);
static_assert(std::is_base_of_v<QVector<LayerLevel*>, LayerLevels>);

/// The order of virtual operations: plugins are built against it.
class TileInterfacesTest : public QObject
{
    Q_OBJECT
private slots:
    void theOperationsOfATiledLayerStandInOrder();
    void theOperationsOfARequestFollowThoseOfARunnable();
    void thePyramidPaintsBehindItsDestructor();
    void theOperationsOfATileMatrixSetFollowThoseOfQObject();
};

void TileInterfacesTest::theOperationsOfATiledLayerStandInOrder()
{
    QCOMPARE(QVector<int>({slotOf(&ITiledLayer::getTileUrl), slotOf(&ITiledLayer::getWidth),
                           slotOf(&ITiledLayer::getHeight), slotOf(&ITiledLayer::getWorldPerPixelX),
                           slotOf(&ITiledLayer::getWorldPerPixelY), slotOf(&ITiledLayer::getBounds),
                           slotOf(&ITiledLayer::tileReady), slotOf(&ITiledLayer::tileFailed),
                           slotOf(&ITiledLayer::createTileRequest),
                           slotOf(&ITiledLayer::getTileLayerId)}),
             slotsFrom(0, 10));
}

// A destructor takes two entries.
void TileInterfacesTest::theOperationsOfARequestFollowThoseOfARunnable()
{
    QCOMPARE(slotOf(&ITileRequest::run), 0);
    QCOMPARE(slotOf(&ITileRequest::processTile), 3);
    QCOMPARE(slotOf(&ITileRequest::cancel), 4);
    QCOMPARE(slotOf(&HttpTileRequest::processTile), 3);
    QCOMPARE(slotOf(&HttpTileRequest::cancel), 4);
}

void TileInterfacesTest::thePyramidPaintsBehindItsDestructor()
{
    QCOMPARE(slotOf(&LayerLevels::paint), 2);
}

void TileInterfacesTest::theOperationsOfATileMatrixSetFollowThoseOfQObject()
{
    QCOMPARE(QVector<int>({slotOf(&TileMatrixSet::getIdentifier),
                           slotOf(&TileMatrixSet::getSupportedCRS),
                           slotOf(&TileMatrixSet::getWellKnownScaleSet),
                           slotOf(&TileMatrixSet::getBoundingBox)}),
             slotsFrom(lastSlotOfQObject() + 1, 4));
}

QTEST_APPLESS_MAIN(TileInterfacesTest)
#include "TileInterfacesTest.moc"
