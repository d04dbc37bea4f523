#include <plugins/common/TiledView.h>

#include <plugins/common/TileExchange.h>

#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/tiles/ITileRequest.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/LayerLevel.h>
#include <corvane/tiles/TileRequestRegistry.h>

#include <QApplication>
#include <QLoggingCategory>
#include <QScreen>
#include <QThreadPool>
#include <QWidget>
#include <QWindow>
#include <QtTest>

#include <algorithm>
#include <utility>

using namespace Corvane;
using namespace Corvane::Map;

namespace {

constexpr unsigned int edge = 64;
constexpr int side = 2048; // of the image, in pixels; levels 0 to 4

// The colour of a level: what is painted tells where it came from.
QRgb colourOf(unsigned int level)
{
    static const QRgb colours[] = {qRgb(200, 0, 0), qRgb(0, 200, 0), qRgb(0, 0, 200),
                                   qRgb(200, 200, 0), qRgb(0, 200, 200)};
    return colours[level];
}

// Does nothing on the pool and never calls the layer; the test delivers by hand.
class IdleRequest final : public ITileRequest
{
public:
    using ITileRequest::ITileRequest;
    void run() override
    {
        TileRequestRegistry::instance().synchronize();
        cancel();
        ITileRequest::run();
    }
    bool processTile() override { return false; }
};

// A layer of 2048 x 2048 cells whose tiles come when the test brings them.
class HandCrankedLayer final : public ITiledLayer
{
public:
    explicit HandCrankedLayer(bool coarsestIsCheap = true)
        : exchange(std::make_shared<TileExchange>()),
          view(this, &levels)
    {
        static int count = 0;
        id = QStringLiteral("cranked%1").arg(++count);
        view.start(exchange, edge, coarsestIsCheap);
    }
    ~HandCrankedLayer()
    {
        QThreadPool::globalInstance()->waitForDone();
        view.stop();
    }

    QString getTileUrl(unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, double,
                       double, double, double) override
    {
        return {};
    }
    int getWidth() override { return side; }
    int getHeight() override { return side; }
    double getWorldPerPixelX() override { return 1.0; }
    double getWorldPerPixelY() override { return -1.0; }
    QRectF getBounds() override { return QRectF(0.0, 0.0, side, -side); }
    void tileReady(ITileRequest*) override {}
    void tileFailed(ITileRequest*) override {}
    ITileRequest* createTileRequest(const QString& key, const QString&, unsigned int level,
                                    unsigned int tx, unsigned int ty, double tlx, double tly,
                                    double brx, double bry) override
    {
        exchange->ask({level, tx, ty});
        asked.push_back({level, tx, ty});
        if (eager) {
            bring(asked.back());
        }
        return new IdleRequest(this, key, level, tx, ty, edge, edge, tlx, tly, brx, bry);
    }
    QString getTileLayerId() override { return id; }

    void bring(const TileId& tile)
    {
        double tlx = 0.0;
        double tly = 0.0;
        double brx = 0.0;
        double bry = 0.0;
        levels.at(static_cast<int>(tile.level))
            ->getTileCoords(tile.x, tile.y, &tlx, &tly, &brx, &bry);
        auto image = std::make_unique<GeoImage>(
            int(edge), int(edge), tlx, tly, brx, bry,
            dappled ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32, nullptr);
        image->QImage::fill(colourOf(tile.level));
        for (int y = 0; dappled && y < int(edge); ++y) {
            for (int x = 0; x < int(edge); ++x) {
                image->setPixel(x, y, qRgba(x * 2, y * 2, int(tile.x * 16 + tile.y) % 128, 128));
            }
        }
        for (int y = 0; striped && y < int(edge); ++y) {
            for (int x = 0; x < int(edge); ++x) {
                image->setPixel(x, y, x % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
            }
        }
        exchange->deliver(tile, std::move(image));
    }
    // Brings what was asked for, of a level or of all; how many.
    int bringAsked(int level = -1)
    {
        QThreadPool::globalInstance()->waitForDone();
        int brought = 0;
        for (const TileId& tile : std::exchange(asked, {})) {
            if (level < 0 || tile.level == static_cast<unsigned int>(level)) {
                bring(tile);
                ++brought;
            }
        }
        return brought;
    }
    int countAsked(unsigned int level) const
    {
        return static_cast<int>(
            std::count_if(asked.begin(), asked.end(),
                          [level](const TileId& tile) { return tile.level == level; }));
    }
    // A view of 256 x 256 pixels from (x, y) on, with scale cells to a pixel.
    void look(double x, double y, double scale)
    {
        looked = QRectF(x, -y, 256.0 * scale, -256.0 * scale);
        view.setView(256, 256, x, -y, x + 256.0 * scale, -y - 256.0 * scale);
    }
    QImage picture()
    {
        QImage result(256, 256, QImage::Format_ARGB32_Premultiplied);
        result.fill(Qt::transparent);
        QRect device = result.rect();
        GeoPainter painter(&result, looked, device);
        view.paint(painter, &looked, &device);
        return result;
    }
    // The colours of the picture and the number of their pixels; 0 is a hole.
    QMap<QRgb, int> colours()
    {
        const QImage image = picture();
        QMap<QRgb, int> result;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                ++result[image.pixel(x, y)];
            }
        }
        return result;
    }

    std::shared_ptr<TileExchange> exchange;
    std::vector<TileId> asked;
    TiledView view;
    QRectF looked;
    bool striped = false; // the tiles to come
    bool dappled = false; // the same: no pixel like its neighbours, all half transparent
    bool eager = false;   // tiles come when they are asked for

private:
    QString id;
};

// Shows the layer on the screen.
class Screen final : public QWidget
{
public:
    explicit Screen(HandCrankedLayer& shown) : layer(shown)
    {
        resize(256, 256);
        layer.view.repaint = [this] { update(); };
        show();
        exposed = QTest::qWaitForWindowExposed(this);
    }
    ~Screen() override { layer.view.repaint = nullptr; }

    QImage picture() { return windowHandle()->screen()->grabWindow(winId()).toImage(); }

    bool exposed = false; // what is not shown yet is not painted

protected:
    void paintEvent(QPaintEvent*) override
    {
        QRect device = rect();
        GeoPainter painter(this, layer.looked, device);
        layer.view.paint(painter, &layer.looked, &device);
    }

private:
    HandCrankedLayer& layer;
};

// Of black and white stripes smoothing makes grey.
bool isSmooth(const QImage& stripes)
{
    for (int x = 0; x < stripes.width(); ++x) {
        const int value = qGray(stripes.pixel(x, stripes.height() / 2));
        if (value > 0 && value < 255) {
            return true;
        }
    }
    return false;
}

constexpr double betweenLevels = 1.5;

// A page that the layer is printed on, as the canvas does it.
struct Page
{
    // scale cells to a pixel
    Page(QSize pageSize, double scale)
        : size(pageSize),
          world(10.0, -20.0, pageSize.width() * scale, -pageSize.height() * scale),
          picture(pageSize, QImage::Format_ARGB32_Premultiplied)
    {
        picture.fill(Qt::transparent);
        layer.view.progressive = false;
        layer.dappled = true;
        layer.eager = true;
    }

    // The source answers no more, and is waited for no longer than a millisecond; waits counts.
    void makeDead(int* waits)
    {
        layer.eager = false;
        layer.view.waitLimit = 1;
        layer.view.whileWaiting = [waits] {
            ++*waits;
            return TiledView::Waiting::GoOn;
        };
    }
    void paint()
    {
        QRect device = picture.rect();
        GeoPainter painter(&picture, world, device);
        layer.view.paint(painter, &world, &device);
    }
    void printInOneGo()
    {
        layer.view.setView(size.width(), size.height(), world.left(), world.top(), world.right(),
                           world.bottom());
        paint();
    }
    void setStrip(int y)
    {
        const double unitsX = world.width() / (size.width() - 1);
        const double unitsY = world.height() / (size.height() - 1);
        layer.view.setView(size.width(), 512, world.left(), world.top() + unitsY * y,
                           world.left() + unitsX * size.width(), world.top() + unitsY * (y + 512));
    }
    void printInStrips()
    {
        for (int y = 0; y < size.height(); y += 512) {
            setStrip(y);
            paint();
        }
    }
    bool hasHoles() const
    {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (qAlpha(picture.pixel(x, y)) == 0) {
                    return true;
                }
            }
        }
        return false;
    }

    QSize size;
    QRectF world;
    QImage picture;
    HandCrankedLayer layer{false};
};

const QMap<QRgb, int> nothing = {{0U, 256 * 256}};

QMap<QRgb, int> only(unsigned int level)
{
    return {{colourOf(level), 256 * 256}};
}

} // namespace

/// What a tiled layer asks for, paints and gives back, with tiles that come when the test says so.
class TiledViewTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void aViewAsksForItsOwnLevelAndForTheCoarsest();
    void theCoarsestIsLeftAloneWhereItIsDear();
    void theCoarsestIsNotFetchedBeneathItsNeighbour();
    void aViewThatIsInMemoryAsksForNothing();
    void aViewWithoutPixelsAsksForNothing_data();
    void aViewWithoutPixelsAsksForNothing();

    void whereATileIsMissingTheCoarserOneShows();
    void eachTileTakesThePlaceOfTheCoarserOne();
    void afterZoomingOutTheFinerTilesShow();
    void afterPanningNoHoleIsLeftOnceTheCoarsestIsThere();
    void thereIsNoHoleOnAWalkThroughAllLevels();
    void seeThroughTilesAreNotPaintedOverEachOther();

    void whileTheViewMovesMissingTilesComeOneLevelCoarser();
    void atTheEndOfAMoveTheFullLevelIsAskedFor();
    void aViewThatRestsInAnOpenBracketIsAskedForInFull();
    void withoutAdaptiveRoamAMoveAsksForTheFullLevel();

    void onTheScreenAViewIsSmoothedOnceItRests();
    void aTileThatComesToAViewAtRestIsSmoothAtOnce();
    void aViewThatIsNotProgressiveIsSmoothedAtOnce();
    void aPictureIsSmoothedAtOnce();

    void aPageInStripsIsThePageInOneGo_data();
    void aPageInStripsIsThePageInOneGo();
    void aStripIsPaintedFromItsOwnLevel();
    void aStripIsPaintedWithoutTheRestOfThePage();
    void whileTilesComeProgressivelyThePageIsPaintedWhole();
    void aSourceThatDoesNotAnswerIsWaitedForOncePerPage();
    void aTileThatComesLateLetsTheNextStripWaitAgain();
    void aProgressiveViewLetsTheNextPageWaitAgain();

    void percentIsOfTheLevelOfTheView();
    void aViewBesideTheImageIsCompleteWithItsNearestTiles();

    void memoryStaysWithinTheBudgetOnALongWalk();
    void whatIsInViewIsNeverGivenBack();
    void theLayerSeenLongestAgoGivesBackFirst();
    void aTileThatWasGivenBackIsAskedForAgain();

    void anUnwantedTileIsForgotten();
    void aTileAskedForMeanwhileIsTold();
    void oneReaderBringsTheRowsOfAll();
    void afterTheEndNothingIsTaken();
};

void TiledViewTest::init()
{
    TileBudget::instance().setLimit(0);
}

void TiledViewTest::cleanup()
{
    TileBudget::instance().setLimit(0);
}

void TiledViewTest::aViewAsksForItsOwnLevelAndForTheCoarsest()
{
    HandCrankedLayer layer;
    layer.look(0.5, 0.5, 1.0);
    QCOMPARE(layer.countAsked(0), 25);
    QCOMPARE(layer.countAsked(4), 1);
    QCOMPARE(layer.asked.size(), 26U);
    QCOMPARE(layer.asked.front().level, 4U);
}

void TiledViewTest::theCoarsestIsLeftAloneWhereItIsDear()
{
    HandCrankedLayer layer(false);
    layer.look(0.5, 0.5, 1.0);
    QCOMPARE(layer.countAsked(0), 25);
    QCOMPARE(layer.asked.size(), 25U);
}

void TiledViewTest::theCoarsestIsNotFetchedBeneathItsNeighbour()
{
    HandCrankedLayer layer;
    layer.look(0.5, 0.5, 7.9);
    QVERIFY(layer.countAsked(2) > 0);
    QVERIFY(layer.countAsked(4) > 0);
    layer.bringAsked();
    HandCrankedLayer other;
    other.look(0.5, 0.5, 8.0);
    QVERIFY(other.countAsked(3) > 0);
    QCOMPARE(other.countAsked(4), 0);
}

void TiledViewTest::aViewThatIsInMemoryAsksForNothing()
{
    HandCrankedLayer layer;
    layer.look(0.0, 0.0, 1.0);
    layer.bringAsked();
    layer.look(0.0, 0.0, 1.0);
    QCOMPARE(layer.asked.size(), 0U);
    QCOMPARE(layer.view.percentComplete(), 100);
}

void TiledViewTest::aViewWithoutPixelsAsksForNothing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("none") << QSize(0, 0);
    QTest::newRow("no column") << QSize(0, 256);
    QTest::newRow("no row") << QSize(256, 0);
    QTest::newRow("less than none") << QSize(-1, -1);
    QTest::newRow("less than no column") << QSize(-256, 256);
}

void TiledViewTest::aViewWithoutPixelsAsksForNothing()
{
    QFETCH(QSize, size);
    HandCrankedLayer layer;
    layer.view.setView(size.width(), size.height(), 0.0, 0.0, side, -side);
    QCOMPARE(layer.asked.size(), 0U);
    QCOMPARE(layer.view.percentComplete(), 100);
}

void TiledViewTest::whereATileIsMissingTheCoarserOneShows()
{
    HandCrankedLayer layer;
    layer.look(0.0, 0.0, 1.0);
    QCOMPARE(layer.colours(), nothing);
    layer.bringAsked(4);
    QCOMPARE(layer.colours(), only(4));
}

void TiledViewTest::eachTileTakesThePlaceOfTheCoarserOne()
{
    HandCrankedLayer layer;
    layer.look(0.0, 0.0, 1.0);
    layer.bring({4, 0, 0});
    layer.bring({0, 1, 2});
    const QImage picture = layer.picture();
    QCOMPARE(picture.pixel(64, 128), colourOf(0));
    QCOMPARE(picture.pixel(127, 191), colourOf(0));
    QCOMPARE(picture.pixel(63, 128), colourOf(4));
    QCOMPARE(picture.pixel(128, 191), colourOf(4));
    QCOMPARE(layer.colours().value(colourOf(0)), 64 * 64);
}

void TiledViewTest::afterZoomingOutTheFinerTilesShow()
{
    HandCrankedLayer layer(false);
    layer.look(0.0, 0.0, 1.0);
    layer.bringAsked();
    QCOMPARE(layer.colours(), only(0));
    layer.look(0.0, 0.0, 2.0);
    // the tiles of the last look reach 64 pixels further than it did
    QCOMPARE(layer.picture().pixel(127, 127), colourOf(0));
    QCOMPARE(qAlpha(layer.picture().pixel(200, 200)), 0);
}

void TiledViewTest::afterPanningNoHoleIsLeftOnceTheCoarsestIsThere()
{
    HandCrankedLayer layer;
    layer.look(0.0, 0.0, 1.0);
    layer.bringAsked();
    layer.look(700.0, 300.0, 1.0);
    QCOMPARE(layer.colours(), only(4));
}

void TiledViewTest::thereIsNoHoleOnAWalkThroughAllLevels()
{
    HandCrankedLayer layer;
    layer.look(0.0, 0.0, 8.0);
    layer.bringAsked();
    for (const double scale : {4.0, 2.0, 1.0, 0.5, 1.0, 3.0, 6.0, 8.0}) {
        const double from = scale < 8.0 ? 100.0 : 0.0; // at 8 the view shows the whole image
        layer.look(from, from, scale);
        QVERIFY2(!layer.colours().contains(0), qPrintable(QString::number(scale)));
        if (layer.asked.size() > 3) { // half of it comes
            layer.asked.resize(layer.asked.size() / 2);
        }
        layer.bringAsked();
        QVERIFY2(!layer.colours().contains(0), qPrintable(QString::number(scale)));
    }
}

// A half transparent colour twice would come out darker.
void TiledViewTest::seeThroughTilesAreNotPaintedOverEachOther()
{
    HandCrankedLayer layer;
    layer.look(0.0, 0.0, 1.0);
    for (const TileId& tile : {TileId{4, 0, 0}, TileId{3, 0, 0}, TileId{2, 0, 0}, TileId{0, 0, 0}})
    {
        const double size = edge * (1 << tile.level);
        auto image = std::make_unique<GeoImage>(int(edge), int(edge), 0.0, 0.0, size, -size,
                                                QImage::Format_ARGB32_Premultiplied, nullptr);
        image->QImage::fill(qRgba(0, 0, 100, 100));
        layer.exchange->deliver(tile, std::move(image));
    }
    const QImage picture = layer.picture();
    for (const QPoint& pixel : {QPoint(10, 10), QPoint(100, 100), QPoint(250, 250)}) {
        QCOMPARE(qAlpha(picture.pixel(pixel)), 100);
    }
}

void TiledViewTest::whileTheViewMovesMissingTilesComeOneLevelCoarser()
{
    HandCrankedLayer layer(false);
    layer.view.beginUpdate();
    layer.look(0.0, 0.0, 1.0);
    QCOMPARE(layer.countAsked(0), 0);
    QCOMPARE(layer.countAsked(1), 9);
    layer.bringAsked();
    QCOMPARE(layer.colours(), only(1));
    QCOMPARE(layer.view.percentComplete(), 0);
}

void TiledViewTest::atTheEndOfAMoveTheFullLevelIsAskedFor()
{
    HandCrankedLayer layer(false);
    layer.view.beginUpdate();
    layer.look(0.0, 0.0, 1.0);
    layer.bringAsked();
    layer.view.endUpdate();
    QCOMPARE(layer.countAsked(0), 25);
    layer.bringAsked();
    QCOMPARE(layer.colours(), only(0));
    QCOMPARE(layer.view.percentComplete(), 100);
}

void TiledViewTest::aViewThatRestsInAnOpenBracketIsAskedForInFull()
{
    HandCrankedLayer layer(false);
    layer.view.beginUpdate();
    layer.view.beginUpdate();
    layer.look(0.0, 0.0, 1.0);
    QCOMPARE(layer.countAsked(0), 0);
    QTRY_COMPARE(layer.countAsked(0), 25);
}

void TiledViewTest::withoutAdaptiveRoamAMoveAsksForTheFullLevel()
{
    HandCrankedLayer layer(false);
    layer.view.adaptiveRoam = false;
    layer.view.beginUpdate();
    layer.look(0.0, 0.0, 1.0);
    QCOMPARE(layer.countAsked(0), 25);
    QCOMPARE(layer.countAsked(1), 0);
}

void TiledViewTest::onTheScreenAViewIsSmoothedOnceItRests()
{
    HandCrankedLayer layer;
    layer.striped = true;
    Screen screen(layer);
    QVERIFY(screen.exposed);
    layer.look(0.0, 0.0, betweenLevels);
    layer.bringAsked();
    screen.repaint();
    QVERIFY(!isSmooth(screen.picture()));
    QTRY_VERIFY(isSmooth(screen.picture()));

    layer.look(64.0, 0.0, betweenLevels);
    layer.bringAsked();
    screen.repaint();
    QVERIFY(!isSmooth(screen.picture()));
    layer.picture(); // smooth, and no matter of the screen
    QTRY_VERIFY(isSmooth(screen.picture()));
}

void TiledViewTest::aTileThatComesToAViewAtRestIsSmoothAtOnce()
{
    HandCrankedLayer layer;
    layer.striped = true;
    Screen screen(layer);
    QVERIFY(screen.exposed);
    layer.look(0.0, 0.0, betweenLevels);
    QTRY_VERIFY(layer.view.isAtRest());
    layer.bringAsked();
    screen.repaint();
    QVERIFY(isSmooth(screen.picture()));
}

void TiledViewTest::aViewThatIsNotProgressiveIsSmoothedAtOnce()
{
    HandCrankedLayer layer;
    layer.striped = true;
    Screen screen(layer);
    QVERIFY(screen.exposed);
    layer.look(0.0, 0.0, betweenLevels);
    layer.bringAsked();
    layer.view.progressive = false;
    layer.look(0.0, 0.0, betweenLevels);
    screen.repaint();
    QVERIFY(isSmooth(screen.picture()));
}

void TiledViewTest::aPictureIsSmoothedAtOnce()
{
    HandCrankedLayer layer;
    layer.striped = true;
    layer.look(0.0, 0.0, betweenLevels);
    layer.bringAsked();
    QVERIFY(isSmooth(layer.picture()));
}

void TiledViewTest::aPageInStripsIsThePageInOneGo_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("scale");

    QTest::newRow("a cell for each pixel") << QSize(200, 1300) << 1.0;
    QTest::newRow("between two levels") << QSize(200, 1300) << 1.37;
    QTest::newRow("enlarged") << QSize(200, 1300) << 0.3;
    QTest::newRow("a page of whole strips") << QSize(200, 1024) << 1.37;
    QTest::newRow("a page of less than a strip") << QSize(200, 300) << 1.37;
}

// Pixel for pixel, and no half transparent pixel twice.
void TiledViewTest::aPageInStripsIsThePageInOneGo()
{
    QFETCH(QSize, size);
    QFETCH(double, scale);
    Page inStrips(size, scale);
    Page inOneGo(size, scale);

    inStrips.printInStrips();
    inOneGo.printInOneGo();

    QCOMPARE(inStrips.picture, inOneGo.picture);
    QVERIFY(!inStrips.hasHoles());
}

void TiledViewTest::aStripIsPaintedFromItsOwnLevel()
{
    Page page(QSize(200, 900), 1.999); // a strip is wider by a pixel: there are two cells to one

    page.printInStrips();

    QCOMPARE(page.layer.countAsked(0), 0);
    QVERIFY(page.layer.countAsked(1) > 0);
    QVERIFY(!page.hasHoles());
}

void TiledViewTest::aStripIsPaintedWithoutTheRestOfThePage()
{
    Page page(QSize(200, 1300), 1.0);
    page.setStrip(0);
    page.setStrip(512);

    page.paint(); // of the first strip, which is in memory, nothing comes

    QCOMPARE(qAlpha(page.picture.pixel(100, 511)), 0);
    QCOMPARE(qAlpha(page.picture.pixel(100, 513)), 128);
    QCOMPARE(qAlpha(page.picture.pixel(100, 1023)), 128);
    QCOMPARE(qAlpha(page.picture.pixel(100, 1026)), 0);
}

void TiledViewTest::whileTilesComeProgressivelyThePageIsPaintedWhole()
{
    Page page(QSize(200, 1300), 1.0);
    page.layer.view.progressive = true;
    page.setStrip(0);
    page.setStrip(512);

    page.paint();

    QCOMPARE(qAlpha(page.picture.pixel(100, 100)), 128);
    QCOMPARE(qAlpha(page.picture.pixel(100, 600)), 128);
}

void TiledViewTest::aSourceThatDoesNotAnswerIsWaitedForOncePerPage()
{
    Page page(QSize(200, 1300), 1.0);
    int waits = 0;
    page.makeDead(&waits);

    page.setStrip(0);
    const int ofTheFirst = waits;
    page.setStrip(512);
    page.setStrip(1024);

    QVERIFY(ofTheFirst > 0);
    QCOMPARE(waits, ofTheFirst);
}

void TiledViewTest::aTileThatComesLateLetsTheNextStripWaitAgain()
{
    Page page(QSize(200, 1300), 1.0);
    int waits = 0;
    page.makeDead(&waits);
    page.setStrip(0);
    const int ofTheFirst = waits;

    page.layer.bring({0, 0, 0});
    page.setStrip(512);

    QVERIFY(waits > ofTheFirst);
}

void TiledViewTest::aProgressiveViewLetsTheNextPageWaitAgain()
{
    Page page(QSize(200, 1300), 1.0);
    int waits = 0;
    page.makeDead(&waits);
    page.setStrip(0);
    const int ofTheFirst = waits;

    page.layer.view.progressive = true;
    page.setStrip(0); // the screen again
    page.layer.view.progressive = false;
    QCOMPARE(waits, ofTheFirst);
    page.setStrip(0);

    QVERIFY(waits > ofTheFirst);
}

void TiledViewTest::percentIsOfTheLevelOfTheView()
{
    HandCrankedLayer layer;
    QCOMPARE(layer.view.percentComplete(), 100); // without a view there is nothing to load
    layer.look(0.5, 0.5, 1.0);
    QCOMPARE(layer.view.percentComplete(), 0);
    layer.bring({4, 0, 0});
    QCOMPARE(layer.view.percentComplete(), 0);
    layer.bring({0, 0, 0});
    QCOMPARE(layer.view.percentComplete(), 4); // one of 25
    layer.bringAsked();
    QCOMPARE(layer.view.percentComplete(), 100);
}

void TiledViewTest::aViewBesideTheImageIsCompleteWithItsNearestTiles()
{
    HandCrankedLayer layer(false);
    layer.look(5000.0, 5000.0, 1.0);
    QCOMPARE(layer.asked.size(), 1U);
    QVERIFY(layer.asked.front() == (TileId{0, 31, 31}));
    layer.bringAsked();
    QCOMPARE(layer.view.percentComplete(), 100);
    QCOMPARE(layer.colours(), nothing);
}

void TiledViewTest::memoryStaysWithinTheBudgetOnALongWalk()
{
    constexpr qint64 tileBytes = edge * edge * 4;
    constexpr qint64 limit = 60 * tileBytes;
    TileBudget::instance().setLimit(limit);
    HandCrankedLayer layer;
    for (int step = 0; step < 40; ++step) {
        layer.look(step * 40.0, step * 30.0, step % 4 == 3 ? 2.0 : 1.0);
        layer.bringAsked();
        QCOMPARE(layer.view.percentComplete(), 100);
        QVERIFY(layer.view.tiles().bytes() <= limit);
        QVERIFY(TileBudget::instance().heldBytes() <= limit);
    }
    QVERIFY2(layer.view.tiles().bytes() > limit / 2, "it gives back no more than it must");
}

void TiledViewTest::whatIsInViewIsNeverGivenBack()
{
    TileBudget::instance().setLimit(1);
    HandCrankedLayer layer;
    layer.look(0.5, 0.5, 1.0);
    layer.bringAsked();
    QCOMPARE(layer.view.percentComplete(), 100);
    QCOMPARE(layer.colours(), only(0));
    layer.look(900.5, 0.5, 1.0);
    layer.bringAsked();
    QCOMPARE(layer.view.percentComplete(), 100);
    QVERIFY(layer.view.tiles().has({4, 0, 0})); // beneath the view
    QVERIFY(!layer.view.tiles().has({0, 0, 0}));
}

void TiledViewTest::theLayerSeenLongestAgoGivesBackFirst()
{
    HandCrankedLayer first(false);
    HandCrankedLayer second(false);
    for (HandCrankedLayer* layer : {&second, &first}) {
        layer->look(0.0, 0.0, 2.0);
        layer->bringAsked();
        layer->picture();
        layer->look(0.0, 0.0, 1.0);
        layer->bringAsked();
        layer->picture();
    }
    const std::size_t before = first.view.tiles().tilesOf(1).size();
    QVERIFY(before > 0);
    QCOMPARE(second.view.tiles().tilesOf(1).size(), before);
    TileBudget::instance().setLimit(TileBudget::instance().heldBytes() - 1);
    TileBudget::instance().enforce();
    QCOMPARE(second.view.tiles().tilesOf(1).size(), 0U);
    QCOMPARE(first.view.tiles().tilesOf(1).size(), before);
}

void TiledViewTest::aTileThatWasGivenBackIsAskedForAgain()
{
    TileBudget::instance().setLimit(1);
    HandCrankedLayer layer(false);
    layer.look(0.0, 0.0, 1.0);
    layer.bringAsked();
    layer.look(1000.0, 1000.0, 1.0);
    layer.bringAsked();
    layer.picture();
    layer.look(0.0, 0.0, 1.0);
    QVERIFY(layer.countAsked(0) >= 16);
    layer.bringAsked();
    QCOMPARE(layer.colours(), only(0));
}

void TiledViewTest::anUnwantedTileIsForgotten()
{
    TileExchange exchange;
    TileRange range;
    range.level = 1;
    range.left = 2;
    range.right = 4;
    range.top = 0;
    range.bottom = 0;
    exchange.setWanted({range});
    exchange.ask({1, 2, 0});
    exchange.ask({1, 9, 0});
    exchange.endAsking();
    QVERIFY(exchange.isOwed({1, 2, 0}));
    QVERIFY(!exchange.isOwed({1, 3, 0})); // wanted, but nobody asked
    QVERIFY(!exchange.isOwed({1, 9, 0})); // asked for, but not wanted
    QVERIFY(!exchange.wasAskedMeanwhile({1, 9, 0}));
}

void TiledViewTest::aTileAskedForMeanwhileIsTold()
{
    TileExchange exchange;
    exchange.setWanted({});
    exchange.ask({0, 1, 1});
    exchange.endAsking();
    QVERIFY(!exchange.isOwed({0, 1, 1}));
    exchange.ask({0, 1, 1});
    QVERIFY(exchange.wasAskedMeanwhile({0, 1, 1}));
    QVERIFY(exchange.waitForNews(1, 0));
    QVERIFY(!exchange.waitForNews(1, 0));
}

void TiledViewTest::oneReaderBringsTheRowsOfAll()
{
    TileExchange exchange;
    TileRange range;
    range.left = 0;
    range.top = 0;
    range.right = 9;
    range.bottom = 9;
    exchange.setWanted({range});
    for (const TileId& tile : {TileId{0, 5, 3}, TileId{0, 1, 3}, TileId{0, 2, 1}, TileId{0, 12, 1}})
    {
        exchange.ask(tile);
    }
    exchange.endAsking();
    QVERIFY(exchange.startReadingRuns());
    QVERIFY(!exchange.startReadingRuns());
    TileId next;
    QVERIFY(exchange.nextRun(1U, &next));
    QVERIFY(next == (TileId{0, 2, 1}));
    QCOMPARE(exchange.owedInRow(next).size(), 1U);
    exchange.deliver(next, nullptr);
    QVERIFY(exchange.nextRun(1U, &next));
    const std::vector<TileId> row = exchange.owedInRow(next);
    QCOMPARE(row.size(), 2U);
    QCOMPARE(row[0].x, 1U);
    QCOMPARE(row[1].x, 5U);
    exchange.deliver(row[0], nullptr);
    exchange.deliver(row[1], nullptr);
    QVERIFY(!exchange.nextRun(1U, &next));
    QVERIFY(exchange.startReadingRuns());
}

void TiledViewTest::afterTheEndNothingIsTaken()
{
    TileExchange exchange;
    exchange.deliver({0, 0, 0}, nullptr);
    exchange.cancel();
    exchange.deliver({0, 1, 0}, nullptr);
    QVERIFY(exchange.isCancelled());
    QCOMPARE(exchange.takeDelivered().size(), 0U);
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    QApplication application(argc, argv);
    TiledViewTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "TiledViewTest.moc"
