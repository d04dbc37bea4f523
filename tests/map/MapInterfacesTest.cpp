#include <corvane/map/IClient.h>
#include <corvane/map/ILayerMagnifier.h>
#include <corvane/map/IRasterLayerHistogram.h>
#include <corvane/map/IRenderer.h>
#include <corvane/map/IRendererClient.h>
#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>
#include <corvane/map/SpatialReference.h>
#include <corvane/map/ZoomBox.h>
#include <tests/support/VirtualSlot.h>

#include <QtTest>

#include <type_traits>

using namespace Corvane::Map;

namespace {

/// Nothing but operations, and assignable as the base of what implements them.
template <typename Interface>
constexpr bool isBare()
{
    return sizeof(Interface) == sizeof(void*) && std::is_abstract_v<Interface> &&
           std::is_copy_assignable_v<Interface>;
}

static_assert(isBare<IClient>());
static_assert(isBare<IRenderer>());
static_assert(isBare<IRendererClient>());
static_assert(isBare<ILayerMagnifier>());
static_assert(isBare<IRasterLayerHistogram>());
static_assert(std::is_same_v<std::underlying_type_t<IClient::PointerMode>, qint32>);
static_assert(std::is_same_v<std::underlying_type_t<IClient::GeolinkMode>, qint32>);

class OpenWidget : public QWidget
{
public:
    static int lastSlot() { return slotOf(&OpenWidget::focusNextPrevChild); }
};

} // namespace

/// The door to the place of an operation that only derived classes of a program replace. An explicit
/// instantiation may name private members.
template <void (MapView::*member)()>
struct ContextMenuSlotDoor
{
    friend int slotOfBuildContextMenu() { return slotOf(member); }
};
int slotOfBuildContextMenu();
template struct ContextMenuSlotDoor<&MapView::buildContextMenu>;

/// The order of virtual operations: plugins and programs are built against it.
class MapInterfacesTest : public QObject
{
    Q_OBJECT
private slots:
    void modesHaveTheirNumbers();
    void theOperationsOfAClientStandInOrder();
    void theOperationsOfARendererStandInOrder();
    void theOperationsOfARenderersClientStandInOrder();
    void theOperationsOfALayerFollowThoseOfQObject();
    void theOperationsOfARasterLayerFollowThoseOfALayer();
    void theOperationsOfAMapViewFollowThoseOfQWidget();
    void theOperationsOfSmallClassesStandInOrder();
};

void MapInterfacesTest::modesHaveTheirNumbers()
{
    QCOMPARE(QVector<int>({IClient::Roam, IClient::Zoom, IClient::ZoomBox, IClient::Point}),
             QVector<int>({0, 1, 2, 3}));
    QCOMPARE(QVector<int>({IClient::GeolinkNone, IClient::GeolinkWindow, IClient::GeolinkScreen}),
             QVector<int>({0, 1, 2}));
}

void MapInterfacesTest::theOperationsOfAClientStandInOrder()
{
    QCOMPARE(QVector<int>({slotOf(&IClient::beginClientUpdate), slotOf(&IClient::endClientUpdate),
                           slotOf(&IClient::onExtentChange), slotOf(&IClient::getGeolinkMode),
                           slotOf(&IClient::setGeolinkMode)}),
             slotsFrom(0, 5));
}

void MapInterfacesTest::theOperationsOfARendererStandInOrder()
{
    QCOMPARE(QVector<int>({slotOf(&IRenderer::beginUpdate), slotOf(&IRenderer::endUpdate),
                           slotOf(&IRenderer::setView), slotOf(&IRenderer::paint),
                           slotOf(&IRenderer::setClient), slotOf(&IRenderer::getClient)}),
             slotsFrom(0, 6));
}

void MapInterfacesTest::theOperationsOfARenderersClientStandInOrder()
{
    QCOMPARE(QVector<int>({slotOf(&IRendererClient::onRendererUpdate),
                           slotOf(&IRendererClient::onRendererError)}),
             slotsFrom(0, 2));
}

void MapInterfacesTest::theOperationsOfALayerFollowThoseOfQObject()
{
    QCOMPARE(QVector<int>({slotOf(&Layer::getDataSource),  slotOf(&Layer::setDataSource),
                           slotOf(&Layer::getIcon),        slotOf(&Layer::isVisible),
                           slotOf(&Layer::setVisible),     slotOf(&Layer::getUid),
                           slotOf(&Layer::getComments),    slotOf(&Layer::setComments),
                           slotOf(&Layer::getDescription), slotOf(&Layer::setDescription),
                           slotOf(&Layer::getFormat),      slotOf(&Layer::getCoordSysName),
                           slotOf(&Layer::setView),        slotOf(&Layer::beginUpdate),
                           slotOf(&Layer::endUpdate),      slotOf(&Layer::getBounds),
                           slotOf(&Layer::isValid),        slotOf(&Layer::getLastError),
                           slotOf(&Layer::getProtocol),    slotOf(&Layer::getPercentComplete),
                           slotOf(&Layer::readXML),        slotOf(&Layer::writeXML),
                           slotOf(&Layer::paint)}),
             slotsFrom(lastSlotOfQObject() + 1, 23));
}

void MapInterfacesTest::theOperationsOfARasterLayerFollowThoseOfALayer()
{
    QCOMPARE(
        QVector<int>({slotOf(&RasterLayer::getCellSizeX), slotOf(&RasterLayer::getCellSizeY),
                      slotOf(&RasterLayer::getTransparency), slotOf(&RasterLayer::setTransparency),
                      slotOf(&RasterLayer::getNumberOfBands), slotOf(&RasterLayer::getBandList),
                      slotOf(&RasterLayer::setBandList), slotOf(&RasterLayer::getSize),
                      slotOf(&RasterLayer::getCellType), slotOf(&RasterLayer::getOpacity),
                      slotOf(&RasterLayer::getNoDataValue), slotOf(&RasterLayer::getRotation),
                      slotOf(&RasterLayer::getColorSpace)}),
        slotsFrom(slotOf(&Layer::paint) + 1, 13));
}

void MapInterfacesTest::theOperationsOfAMapViewFollowThoseOfQWidget()
{
    using Update = void (MapView::*)(double, double, double, double);
    const int update = slotOf(static_cast<Update>(&MapView::update));
    QVERIFY(update > OpenWidget::lastSlot());
    QCOMPARE(slotOfBuildContextMenu(), update + 1);
}

void MapInterfacesTest::theOperationsOfSmallClassesStandInOrder()
{
    QCOMPARE(slotOf(&SpatialReference::setEpsg), 0);
    QCOMPARE(slotOf(&SpatialReference::toString), 1);
    QCOMPARE(slotOf(&IRasterLayerHistogram::getHistograms), 0);
    QCOMPARE(slotOf(&ZoomBox::paint), 2); // behind the two entries of the destructor
}

QTEST_APPLESS_MAIN(MapInterfacesTest)
#include "MapInterfacesTest.moc"
