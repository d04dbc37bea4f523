#include <corvane/map/GeoPainter.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <tests/map/TestLayers.h>

#include <QDomDocument>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Map;

namespace {

/// Fills the whole device, and leaves its brush in the painter.
class FillLayer : public TestLayer
{
    Q_OBJECT
public:
    explicit FillLayer(const QColor& fill) : colour(fill) {}
    void paint(GeoPainter& painter, QRectF*, QRect* device) override
    {
        painter.fillRect(*device, colour);
        painter.setBrush(colour);
    }

private:
    QColor colour;
};

const QSize viewSize(200, 100);

} // namespace

/// One layer of the stack can be taken off a part of the screen.
class ScreenClipTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void theLayerIsPaintedInsideAlone();
    void layersAboveAndBelowArePaintedEverywhere();
    void anEmptyRectangleTakesTheLayerAway();
    void withoutALayerThereIsNoClip();
    void aPictureShowsTheWholeLayer();
    void theDocumentKnowsNothingOfIt();
    void aLayerThatGoesTakesItsClipAlong();
    void theBoxesAreDrawnAsEver();

private:
    QColor at(int x, int y) { return view->grab().toImage().pixelColor(x, y); }
    MapCanvas& canvas() { return *view->getMapCanvas(); }

    std::unique_ptr<MapView> view;
    FillLayer* lower = nullptr;
    FillLayer* upper = nullptr;
};

void ScreenClipTest::init()
{
    view = std::make_unique<MapView>(nullptr, Qt::WindowFlags());
    view->setAttribute(Qt::WA_DeleteOnClose, false);
    view->resize(viewSize);
    lower = new FillLayer(Qt::blue);
    upper = new FillLayer(Qt::red);
    view->addLayer(lower);
    view->addLayer(upper);
    QCOMPARE(at(10, 10), QColor(Qt::red));
}

void ScreenClipTest::cleanup()
{
    view.reset();
}

void ScreenClipTest::theLayerIsPaintedInsideAlone()
{
    canvas().setScreenClip(upper, QRect(0, 0, 80, 100));
    QCOMPARE(canvas().getClippedLayer(), upper);
    QCOMPARE(canvas().getScreenClip(), QRect(0, 0, 80, 100));
    QCOMPARE(at(0, 0), QColor(Qt::red));
    QCOMPARE(at(79, 99), QColor(Qt::red));
    QCOMPARE(at(80, 0), QColor(Qt::blue));
    QCOMPARE(at(199, 99), QColor(Qt::blue));
}

void ScreenClipTest::layersAboveAndBelowArePaintedEverywhere()
{
    canvas().setScreenClip(lower, QRect(0, 0, 80, 100));
    QCOMPARE(at(10, 10), QColor(Qt::red));
    QCOMPARE(at(150, 10), QColor(Qt::red));
    upper->visible = false;
    QCOMPARE(at(10, 10), QColor(Qt::blue));
    QCOMPARE(at(150, 10), view->getBackgroundColor());
}

void ScreenClipTest::anEmptyRectangleTakesTheLayerAway()
{
    canvas().setScreenClip(upper, QRect());
    QCOMPARE(at(10, 10), QColor(Qt::blue));
    QVERIFY(upper->isVisible());
}

void ScreenClipTest::withoutALayerThereIsNoClip()
{
    canvas().setScreenClip(upper, QRect(0, 0, 80, 100));
    canvas().setScreenClip(nullptr, QRect(0, 0, 80, 100));
    QCOMPARE(at(150, 10), QColor(Qt::red));
    QCOMPARE(canvas().getScreenClip(), QRect());
}

void ScreenClipTest::aPictureShowsTheWholeLayer()
{
    canvas().setScreenClip(upper, QRect());
    QImage picture(viewSize, QImage::Format_RGB32);
    QRectF world = view->getBounds();
    QRect device = picture.rect();
    GeoPainter painter(&picture, world, device);
    canvas().paint(painter, &world, &device);
    painter.end();
    QCOMPARE(picture.pixelColor(10, 10), QColor(Qt::red));
}

void ScreenClipTest::theDocumentKnowsNothingOfIt()
{
    const std::unique_ptr<QDomDocument> before(view->saveMapXML());
    canvas().setScreenClip(upper, QRect(0, 0, 80, 100));
    const std::unique_ptr<QDomDocument> after(view->saveMapXML());
    QCOMPARE(after->toString(), before->toString());
}

void ScreenClipTest::aLayerThatGoesTakesItsClipAlong()
{
    canvas().setScreenClip(upper, QRect());
    view->deleteLayer(upper);
    QVERIFY(!canvas().getClippedLayer());
    QCOMPARE(at(10, 10), QColor(Qt::blue));
    canvas().setScreenClip(lower, QRect());
    view->deleteAllLayers();
    QVERIFY(!canvas().getClippedLayer());
}

void ScreenClipTest::theBoxesAreDrawnAsEver()
{
    view->setBounds(-50.0, 125.0, 150.0, 25.0);
    canvas().setDrawMapBBox(true);
    canvas().setMapBBoxColor(Qt::green);
    const int left = 50; // of the layers' world, 0 to 100
    QCOMPARE(at(left, 50), QColor(Qt::green));
    canvas().setScreenClip(upper, QRect(0, 0, 20, 100));
    QCOMPARE(at(left, 50), QColor(Qt::green)); // though it lies beside the clip
}

QTEST_MAIN(ScreenClipTest)
#include "ScreenClipTest.moc"
