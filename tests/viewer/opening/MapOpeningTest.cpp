#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/opening/MapStage.h>

#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QSet>
#include <QTimer>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

/// The corners in full.
QString corners(const QRectF& rect)
{
    return QString("%1 %2 %3 %4")
        .arg(rect.left(), 0, 'g', 12)
        .arg(rect.top(), 0, 'g', 12)
        .arg(rect.right(), 0, 'g', 12)
        .arg(rect.bottom(), 0, 'g', 12);
}

} // namespace

/// Map documents that open in the window, as they were saved or as they are damaged.
class MapOpeningTest : public MapStage
{
    Q_OBJECT
private slots:
    void allKindsOfLayersComeBack();
    void theViewComesBackWithItsFractions();
    void aMapWithoutExtentsIsShownWhole();
    void manyLayersComeInTurns();
    void anOpenMapComesToTheFront();
    void aMapThatIsBeingReadIsNotOpenedASecondTime();
    void aMapAmongLayersOpensInItsOwnWindow();
    void aMapThatCannotBeReadIsTold();
    void layersThatFailAreListedInOneBox();
    void xmlThatIsNoMapOpensAsALayer();
    void aSlowLayerLeavesTheWindowAlive();

    void theOpenDialogShowsMaps();
};

void MapOpeningTest::allKindsOfLayersComeBack()
{
    MapWindow* map = open({images.filePath("metres.tif")});
    auto* raster = qobject_cast<Map::RasterLayer*>(map->getView()->getLayerAt(0));
    raster->setBandList({3, 1, 2});
    raster->setTransparency(0.25);
    raster->setDescription("the coast <1>");
    raster->setComments("two\nlines");
    raster->setMaxScale(123456.5);
    const QString tiles = "http://127.0.0.1:9/{z}/{x}/{y}.png?a=b&c=d";
    QCOMPARE(map->getView()->addLayer("Corvane::Map::WebTileLayer", tiles, "the streets"), 1);
    map->getView()->getLayerAt(1)->setVisible(false);
    map->getView()->getLayerAt(1)->setProperty("MaxZoom", 12);
    map->getView()->getLayerAt(1)->setProperty("UserAgentSuffix", "me");
    const QString remote = "http://127.0.0.1:9/remote.tif"; // nobody is there: it stays invalid
    map->getView()->addLayer("Corvane::Map::GdalRasterLayer", remote, "far");
    map->getView()->getLayerAt(2)->setProperty("Bands", "2");
    map->getView()->setBounds(500100.5, 4649900.25, 500200.5, 4649800.25);
    const QRectF shown = map->getView()->getBounds();
    action("actionSave")->trigger();
    choose(path("all.cmap"));
    QTRY_VERIFY(QFile::exists(path("all.cmap")));
    QTRY_VERIFY(!map->getDocument()->isChanged());
    map->close();
    QTRY_VERIFY(mapWindows().isEmpty());

    window->openFiles({path("all.cmap")});
    map = mapWindows().first();
    QTRY_COMPARE(map->getView()->getNumberOfLayers(), 3);
    raster = qobject_cast<Map::RasterLayer*>(map->getView()->getLayerAt(0));
    QTRY_VERIFY(raster->isValid());
    QCOMPARE(raster->getDataSource(), images.filePath("metres.tif"));
    QCOMPARE(raster->getBandList(), (QVector<qint32>{3, 1, 2}));
    QCOMPARE(raster->getTransparency(), 0.25);
    QCOMPARE(raster->getDescription(), QString("the coast <1>"));
    QCOMPARE(raster->getComments(), QString("two\nlines"));
    QCOMPARE(raster->getMaxScale(), 123456.5);
    Map::Layer* web = map->getView()->getLayerAt(1);
    QVERIFY(web->isValid());
    QCOMPARE(web->getDataSource(), tiles);
    QCOMPARE(web->getDescription(), QString("the streets"));
    QVERIFY(!web->isVisible());
    QCOMPARE(web->property("MaxZoom").toInt(), 12);
    QCOMPARE(web->property("UserAgentSuffix").toString(), QString("me"));
    Map::Layer* far = map->getView()->getLayerAt(2);
    QCOMPARE(far->getDataSource(), remote);
    QCOMPARE(far->getDescription(), QString("far"));
    QCOMPARE(far->property("Bands").toString(), QString("2"));
    QCOMPARE(corners(map->getView()->getBounds()), corners(shown));
    // the one that nobody serves stops nobody
    QTRY_VERIFY(window->findChild<QWidget*>("sourceTrouble")->isVisible());
    QVERIFY(!dialog<QMessageBox>("openFailures"));
    QVERIFY(!map->getDocument()->isChanged());
}

void MapOpeningTest::theViewComesBackWithItsFractions()
{
    MapWindow* map = open({images.filePath("degrees.tif")});
    action("actionZoomIn")->trigger();
    const QRectF shown = map->getView()->getBounds();
    QVERIFY(shown.width() < 0.1); // a fraction of a degree
    action("actionSave")->trigger();
    choose(path("degrees.cmap"));
    QTRY_VERIFY(!map->getDocument()->getFileName().isEmpty());
    map->close();
    QTRY_VERIFY(mapWindows().isEmpty());

    map = open({path("degrees.cmap")});
    QCOMPARE(corners(map->getView()->getBounds()), corners(shown));
}

void MapOpeningTest::aMapWithoutExtentsIsShownWhole()
{
    MapWindow* plain = open({images.filePath("metres.tif")});
    const QRectF whole = plain->getView()->getBounds();
    plain->close();
    QTRY_VERIFY(mapWindows().isEmpty());
    MapWindow* map =
        open({write("a.cmap", "<mapcanvas><layers>" + rasterElement(images.filePath("metres.tif")) +
                                  "</layers></mapcanvas>")});
    QCOMPARE(corners(map->getView()->getBounds()), corners(whole));
}

void MapOpeningTest::manyLayersComeInTurns()
{
    constexpr int count = 3000;
    const QString file =
        write("a.cmap", "<mapcanvas><layers>" + rasterElement("/missing.tif").repeated(count) +
                            "</layers></mapcanvas>");
    window->openFiles({file});
    QPointer<MapWindow> map = mapWindows().first();
    QSet<int> seen; // between two turns
    QTimer timer;
    connect(&timer, &QTimer::timeout, [&] { seen.insert(map->getView()->getNumberOfLayers()); });
    timer.start(0);
    QTRY_COMPARE_WITH_TIMEOUT(map->getView()->getNumberOfLayers(), count, 30000);
    timer.stop();
    QVERIFY2(seen.size() > 3, "the window stood still");
    QTRY_COMPARE(map->windowTitle(), QString("a.cmap"));
    QVERIFY(!map->getDocument()->isChanged());

    // one that is closed meanwhile is no change either
    map->close();
    QTRY_VERIFY(!map);
    window->openFiles({file});
    map = mapWindows().first();
    QTRY_VERIFY(map->getView()->getNumberOfLayers() > 0);
    QVERIFY(map->getView()->getNumberOfLayers() < count);
    map->close();
    QTRY_VERIFY(!map);
    QVERIFY(!dialog<QMessageBox>("saveQuestion"));
}

void MapOpeningTest::anOpenMapComesToTheFront()
{
    MapWindow* map = changedMap();
    MapWindow* other = open({images.filePath("degrees.tif")});
    QCOMPARE(window->getActiveMapWindow(), other);
    window->openFiles({path("coast.cmap")});
    QCOMPARE(window->getActiveMapWindow(), map);
    QCOMPARE(mapWindows().size(), 2);
}

void MapOpeningTest::aMapThatIsBeingReadIsNotOpenedASecondTime()
{
    const QString file =
        write("a.cmap", "<mapcanvas><layers>" + rasterElement(images.filePath("metres.tif")) +
                            "</layers></mapcanvas>");
    window->openFiles({file, file});
    window->openFiles({file});
    QCOMPARE(mapWindows().size(), 1);
    QTRY_COMPARE(mapWindows().first()->getDocument()->getFileName(), file);
    QTRY_COMPARE(mapWindows().first()->getView()->getNumberOfLayers(), 1);
}

void MapOpeningTest::aMapAmongLayersOpensInItsOwnWindow()
{
    MapWindow* map = open({images.filePath("metres.tif")});
    const QString file =
        write("a.cmap", "<mapcanvas><layers>" + rasterElement(images.filePath("degrees.tif")) +
                            "</layers></mapcanvas>");
    window->addFiles({file, images.filePath("degrees.tif")}, map);
    QCOMPARE(mapWindows().size(), 2);
    QTRY_COMPARE(map->getView()->getNumberOfLayers(), 2);
    QTRY_COMPARE(mapWindows().last()->getView()->getNumberOfLayers(), 1);
    QCOMPARE(mapWindows().last()->windowTitle(), QString("a.cmap"));
}

void MapOpeningTest::aMapThatCannotBeReadIsTold()
{
    window->openFiles({path("missing.cmap"),
                       write("deep.cmap", QString("<mapcanvas>").repeated(100000)),
                       write("other.cmap", "<actions/>")});
    QTRY_VERIFY(dialog<QMessageBox>("openFailures"));
    QTRY_VERIFY(mapWindows().isEmpty());
    const auto text = [this] { return dialog<QMessageBox>("openFailures")->informativeText(); };
    QTRY_VERIFY(text().contains(path("missing.cmap") + ": No such file or directory"));
    QTRY_VERIFY(text().contains(path("deep.cmap") + ": its elements are nested too deeply"));
    QTRY_VERIFY(text().contains(path("other.cmap") + ": "));
    QCOMPARE(recentEntries(), QStringList());
}

void MapOpeningTest::layersThatFailAreListedInOneBox()
{
    write("damaged.tif", "II*");
    const QString file =
        write("a.cmap", "<mapcanvas><layers><layer class=\"Nobody\"/><layer class=\"No\"/>" +
                            rasterElement("missing.tif") + rasterElement(path("damaged.tif")) +
                            rasterElement(images.filePath("metres.tif")) + "</layers></mapcanvas>");
    window->openFiles({file});
    QTRY_VERIFY(dialog<QMessageBox>("openFailures"));
    const auto lines = [this] {
        return dialog<QMessageBox>("openFailures")->informativeText().split('\n');
    };
    QTRY_COMPARE(lines().size(), 4);
    QCOMPARE(window->findChildren<QMessageBox*>().size(), 1);
    const QString nobody =
        ": The plugin manager could not find a layer class to handle the type '%1'.";
    QVERIFY(lines().contains(file + nobody.arg("Nobody")));
    QVERIFY(lines().contains(file + nobody.arg("No")));
    QVERIFY(lines().contains(file + ": cannot open " + path("missing.tif") +
                             ": the file does not exist"));
    QCOMPARE(lines().filter(file + ": cannot open " + path("damaged.tif") + ": ").size(), 1);
    QTRY_COMPARE(mapWindows().first()->windowTitle(), QString("a.cmap"));
}

void MapOpeningTest::xmlThatIsNoMapOpensAsALayer()
{
    const QString image =
        write("image.xml", "<VRTDataset rasterXSize=\"300\" rasterYSize=\"200\"><VRTRasterBand "
                           "dataType=\"Byte\" band=\"1\"><SimpleSource><SourceFilename>" +
                               images.filePath("metres.tif") +
                               "</SourceFilename><SourceBand>1</SourceBand></SimpleSource>"
                               "</VRTRasterBand></VRTDataset>");
    MapWindow* map = open({image});
    QCOMPARE(map->getView()->getLayerAt(0)->getDataSource(), image);
    QCOMPARE(map->windowTitle(), QString("image.xml"));
    QCOMPARE(map->getDocument()->getFileName(), QString());
}

void MapOpeningTest::aSlowLayerLeavesTheWindowAlive()
{
    StallingServer server(QByteArray(1000, ' '), 0);
    QString layers;
    for (int i = 0; i < 20; ++i) {
        layers += rasterElement(server.addressOf(QString("silent%1.tif").arg(i)));
    }
    window->openFiles(
        {write("slow.cmap", "<mapcanvas><layers>" + layers + "</layers></mapcanvas>")});
    QPointer<MapWindow> map = mapWindows().first();
    QTRY_COMPARE(map->getView()->getNumberOfLayers(), 20);
    QTRY_COMPARE(map->windowTitle(), QString("slow.cmap"));
    // saving needs none of the threads that wait for the server
    QSignalSpy saved(map->getDocument(), &MapDocument::saved);
    action("actionSave")->trigger();
    QTRY_COMPARE(saved.size(), 1);
    action("actionClose")->trigger();
    QTRY_VERIFY(!map);
}

void MapOpeningTest::theOpenDialogShowsMaps()
{
    action("actionOpen")->trigger();
    const QStringList filters = dialog<QFileDialog>("openDialog")->nameFilters();
    QVERIFY2(filters.first().startsWith("All supported files (") &&
                 filters.first().endsWith(" *.xml *.cmap)"),
             qPrintable(filters.first()));
    QCOMPARE(filters.last(), QString("Corvane map (*.cmap)"));
    dialog<QFileDialog>("openDialog")->close();
    QTRY_VERIFY(!dialog<QFileDialog>("openDialog"));

    open({images.filePath("metres.tif")});
    action("actionAddLayer")->trigger();
    QVERIFY(!dialog<QFileDialog>("openDialog")->nameFilters().first().contains("cmap"));
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Map Opening Test");
    MapOpeningTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "MapOpeningTest.moc"
