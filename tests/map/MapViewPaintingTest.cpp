#include "MapViewTools.h"

#include <corvane/map/MapCanvas.h>
#include <corvane/map/ViewManager.h>

#include <QPixmap>

using Corvane::Map::IClient;
using Corvane::Map::MapView;

namespace {

QImage logo()
{
    return QImage(QStringLiteral(":/resources/corvanegeospatial.png"));
}

QImage crosshair()
{
    return QImage(QStringLiteral(":/resources/zoombox.png"));
}

/// Paints what a frame of the view should be.
class ExpectedFrame
{
public:
    explicit ExpectedFrame(MapView& view) : pixmap(view.size()), painter(&pixmap)
    {
        painter.fillRect(pixmap.rect(), view.getBackgroundColor());
    }

    QImage image()
    {
        painter.end();
        return pixmap.toImage();
    }

private:
    QPixmap pixmap;

public:
    QPainter painter;
};

QImage frameOf(MapView& view)
{
    return view.grab().toImage();
}

/// A shown view with one layer of one colour from (20, 80) to (80, 20), on a beige ground.
struct PaintedView
{
    PaintedView() : view(makeView(Motion::Direct))
    {
        QColor beige(240, 230, 210);
        view->setBackgroundColor(beige);
        layer = new JournalLayer("a", &journal, Qt::blue);
        layer->bounds = world(20.0, 80.0, 80.0, 20.0);
        view->addLayer(layer);
        view->setBounds(0.0, 100.0, 100.0, 0.0);
    }

    QStringList journal;
    std::unique_ptr<MapView> view;
    JournalLayer* layer = nullptr; // owned by the view
};

} // namespace

class MapViewPaintingTest : public QObject
{
    Q_OBJECT
private slots:
    void anEmptyMapShowsTheLogoInTheMiddle_data();
    void anEmptyMapShowsTheLogoInTheMiddle();
    void aMapWithALayerShowsNoLogo();
    void aSideLayerAloneDoesNotHideTheLogo();
    void aLayerIsDrawnOnTheBackground();
    void theLastLayerLiesOnTop();
    void eachPaintBuildsTheWholeFrameAnew();

    void theSelectedLayerIsHatched();
    void aSelectionIsNotShownUnlessWanted();
    void aSelectionFarOutsideThePixelsIsHarmless();

    void aZoomBoxIsDrawnFromThePressToThePointer();
    void theBoxGoesWithTheRelease();
    void theNextBoxStartsWithTheFirstMove();
    void noBoxIsDrawnWithACornerAtMinusOne_data();
    void noBoxIsDrawnWithACornerAtMinusOne();
    void noBoxIsDrawnInAnotherMode();

    void theCrosshairIsCentredOnThePressWhileZooming();
    void theCrosshairIsLeftOutWhereItIsNotWanted_data();
    void theCrosshairIsLeftOutWhereItIsNotWanted();
};

void MapViewPaintingTest::anEmptyMapShowsTheLogoInTheMiddle_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("in a view of even sides") << QSize(600, 400);
    QTest::newRow("in a view of odd sides") << QSize(601, 401);
    QTest::newRow("in a view smaller than the logo") << QSize(101, 33);
}

void MapViewPaintingTest::anEmptyMapShowsTheLogoInTheMiddle()
{
    QFETCH(QSize, size);
    MapView view;
    QColor green(10, 120, 60);
    view.setBackgroundColor(green);
    view.resize(size);
    view.show();
    QVERIFY(!logo().isNull());

    ExpectedFrame expected(view);
    expected.painter.drawImage(size.width() / 2 - logo().width() / 2,
                               size.height() / 2 - logo().height() / 2, logo());
    QCOMPARE(frameOf(view), expected.image());
}

void MapViewPaintingTest::aMapWithALayerShowsNoLogo()
{
    PaintedView painted;
    painted.layer->visible = false;

    QCOMPARE(frameOf(*painted.view), ExpectedFrame(*painted.view).image());
}

void MapViewPaintingTest::aSideLayerAloneDoesNotHideTheLogo()
{
    QStringList journal;
    JournalLayer side("side", &journal, Qt::red);
    auto view = makeView(Motion::Direct);
    const QImage before = frameOf(*view);

    view->getMapCanvas()->getOverlayLayers().append(&side);

    QCOMPARE(frameOf(*view), before);
    QCOMPARE(journal, QStringList());
    view->getMapCanvas()->getOverlayLayers().clear();
}

void MapViewPaintingTest::aLayerIsDrawnOnTheBackground()
{
    PaintedView painted;

    ExpectedFrame expected(*painted.view);
    expected.painter.fillRect(20, 20, 60, 60, Qt::blue);
    QCOMPARE(frameOf(*painted.view), expected.image());
}

void MapViewPaintingTest::theLastLayerLiesOnTop()
{
    PaintedView painted;
    auto* top = new JournalLayer("top", &painted.journal, Qt::green);
    top->bounds = world(50.0, 50.0, 90.0, 10.0);
    painted.view->addLayer(top);

    ExpectedFrame expected(*painted.view);
    expected.painter.fillRect(20, 20, 60, 60, Qt::blue);
    expected.painter.fillRect(50, 50, 40, 40, Qt::green);
    QCOMPARE(frameOf(*painted.view), expected.image());
}

void MapViewPaintingTest::eachPaintBuildsTheWholeFrameAnew()
{
    PaintedView painted;
    frameOf(*painted.view);
    painted.journal.clear();

    frameOf(*painted.view);
    frameOf(*painted.view);

    QCOMPARE(painted.journal, QStringList({"a paint", "a paint"}));
}

void MapViewPaintingTest::theSelectedLayerIsHatched()
{
    PaintedView painted;
    TestLayer selected; // need not be in the stack
    selected.bounds = world(10.0, 70.0, 60.0, 30.0);
    painted.view->setLayerSelection(&selected);
    painted.view->setShowLayerSelection(true);

    ExpectedFrame expected(*painted.view);
    expected.painter.fillRect(20, 20, 60, 60, Qt::blue);
    expected.painter.setPen(QPen(QBrush(QColor(255, 0, 0)), 1));
    expected.painter.setBrush(QBrush(QColor(255, 0, 0), Qt::DiagCrossPattern));
    expected.painter.drawRect(10, 30, 50, 40);
    QCOMPARE(frameOf(*painted.view), expected.image());
}

void MapViewPaintingTest::aSelectionIsNotShownUnlessWanted()
{
    PaintedView painted;
    const QImage plain = frameOf(*painted.view);

    painted.view->setLayerSelection(painted.layer);
    QCOMPARE(frameOf(*painted.view), plain);

    painted.view->setShowLayerSelection(true);
    QVERIFY(frameOf(*painted.view) != plain);

    painted.view->setLayerSelection(nullptr);
    QCOMPARE(frameOf(*painted.view), plain);
}

void MapViewPaintingTest::aSelectionFarOutsideThePixelsIsHarmless()
{
    PaintedView painted;
    painted.layer->visible = false;
    painted.view->setLayerSelection(painted.layer);
    painted.view->setShowLayerSelection(true);

    // a corner that fits no pixel number, and one that lies as far on the other side
    painted.layer->bounds = world(-1e12, 50.0, 2.1e9, 20.0);
    const QImage frame = frameOf(*painted.view);

    QCOMPARE(frame.size(), painted.view->size());
    QCOMPARE(frame.pixelColor(50, 10), painted.view->getBackgroundColor());
}

namespace {

void drawBox(QPainter& painter, const QRect& rect)
{
    const QBrush veil(QColor(255, 255, 255, 50));
    painter.fillRect(rect, veil);
    painter.setPen(QPen(QBrush(QColor(225, 0, 0)), 2));
    painter.setBrush(veil);
    painter.drawRect(rect);
}

} // namespace

void MapViewPaintingTest::aZoomBoxIsDrawnFromThePressToThePointer()
{
    PaintedView painted;
    press(*painted.view, QPoint(70, 30), Qt::LeftButton, Qt::ControlModifier);
    move(*painted.view, QPoint(60, 60));
    move(*painted.view, QPoint(40, 55));

    ExpectedFrame expected(*painted.view);
    expected.painter.fillRect(20, 20, 60, 60, Qt::blue);
    drawBox(expected.painter, QRect(40, 30, 30, 25));
    QCOMPARE(frameOf(*painted.view), expected.image());
}

void MapViewPaintingTest::theBoxGoesWithTheRelease()
{
    PaintedView painted;
    painted.view->setPointerMode(IClient::ZoomBox);
    press(*painted.view, QPoint(20, 20));
    move(*painted.view, QPoint(80, 80));
    release(*painted.view, QPoint(80, 80));
    QCOMPARE(painted.view->getViewManager()->getPointerMode(), IClient::ZoomBox);

    ExpectedFrame expected(*painted.view); // the layer fills the view
    expected.painter.fillRect(0, 0, 100, 100, Qt::blue);
    QCOMPARE(frameOf(*painted.view), expected.image());
}

void MapViewPaintingTest::theNextBoxStartsWithTheFirstMove()
{
    PaintedView painted;
    painted.view->setPointerMode(IClient::ZoomBox);
    press(*painted.view, QPoint(20, 20));
    move(*painted.view, QPoint(80, 80));
    release(*painted.view, QPoint(80, 80));
    const QImage idle = frameOf(*painted.view);

    press(*painted.view, QPoint(30, 30));
    QCOMPARE(frameOf(*painted.view), idle);

    move(*painted.view, QPoint(50, 60));
    ExpectedFrame expected(*painted.view);
    expected.painter.fillRect(0, 0, 100, 100, Qt::blue);
    drawBox(expected.painter, QRect(30, 30, 20, 30));
    QCOMPARE(frameOf(*painted.view), expected.image());
}

void MapViewPaintingTest::noBoxIsDrawnWithACornerAtMinusOne_data()
{
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("to");
    QTest::newRow("moved out to the left") << QPoint(50, 50) << QPoint(-1, 60);
    QTest::newRow("moved out at the top") << QPoint(50, 50) << QPoint(60, -1);
}

void MapViewPaintingTest::noBoxIsDrawnWithACornerAtMinusOne()
{
    QFETCH(QPoint, from);
    QFETCH(QPoint, to);
    PaintedView painted;
    const QImage idle = frameOf(*painted.view);

    press(*painted.view, from, Qt::LeftButton, Qt::ControlModifier);
    move(*painted.view, to);

    QCOMPARE(frameOf(*painted.view), idle);
}

void MapViewPaintingTest::noBoxIsDrawnInAnotherMode()
{
    PaintedView painted;
    press(*painted.view, QPoint(20, 20), Qt::LeftButton, Qt::ControlModifier);
    move(*painted.view, QPoint(80, 80));
    painted.view->setPointerMode(IClient::Roam);

    ExpectedFrame expected(*painted.view);
    expected.painter.fillRect(20, 20, 60, 60, Qt::blue);
    QCOMPARE(frameOf(*painted.view), expected.image());
}

void MapViewPaintingTest::theCrosshairIsCentredOnThePressWhileZooming()
{
    PaintedView painted;
    painted.view->setDrawCrosshair(true);
    QVERIFY(!crosshair().isNull());

    press(*painted.view, QPoint(45, 52), Qt::RightButton);
    move(*painted.view, QPoint(47, 52), Qt::RightButton); // aside: the extents stay

    ExpectedFrame expected(*painted.view);
    expected.painter.fillRect(20, 20, 60, 60, Qt::blue);
    expected.painter.drawImage(45 - crosshair().width() / 2, 52 - crosshair().height() / 2,
                               crosshair());
    QCOMPARE(frameOf(*painted.view), expected.image());
}

void MapViewPaintingTest::theCrosshairIsLeftOutWhereItIsNotWanted_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("wanted");
    QTest::newRow("zooming with the crosshair off") << int(IClient::Zoom) << false;
    QTest::newRow("roaming") << int(IClient::Roam) << true;
    QTest::newRow("drawing a box") << int(IClient::ZoomBox) << true;
    QTest::newRow("pointing") << int(IClient::Point) << true;
}

void MapViewPaintingTest::theCrosshairIsLeftOutWhereItIsNotWanted()
{
    QFETCH(int, mode);
    QFETCH(bool, wanted);
    PaintedView painted;
    painted.view->setDrawCrosshair(wanted);
    painted.view->setPointerMode(IClient::PointerMode(mode));

    press(*painted.view, QPoint(50, 50));

    ExpectedFrame expected(*painted.view);
    expected.painter.fillRect(20, 20, 60, 60, Qt::blue);
    QCOMPARE(frameOf(*painted.view), expected.image());
}

MAP_TEST_MAIN(MapViewPaintingTest)
#include "MapViewPaintingTest.moc"
