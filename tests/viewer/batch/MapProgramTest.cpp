#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/support/TestImages.h>
#include <tests/viewer/support/ViewerRun.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

QString layer(const QString& source, const QString& settings = QString())
{
    return QString("<layer class=\"Corvane::Map::GdalRasterLayer\"><datasource value=\"%1\"/>%2"
                   "</layer>")
        .arg(source.toHtmlEscaped(), settings);
}

/// The corners of a rectangle of an image's cells, as a document has them.
QString bounds(const TestImages::Layout& layout, const QRect& cells)
{
    const auto number = [](double value) { return QString::number(value, 'g', 17); };
    const double left = layout.origin.x() + cells.x() * layout.cell;
    const double top = layout.origin.y() - cells.y() * layout.cell;
    return QString("<bounds tlx=\"%1\" tly=\"%2\" brx=\"%3\" bry=\"%4\"/>")
        .arg(number(left), number(top), number(left + cells.width() * layout.cell),
             number(top - cells.height() * layout.cell));
}

} // namespace

/// The program without a window, on map documents.
class MapProgramTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void aMapIsRenderedAsItWasSaved();
    void fractionsOfAUnitAreKept();
    void anExtentGoesBeforeThatOfTheMap();
    void withoutExtentsEverythingIsShown();
    void sourcesAreLookedForBesideTheMap();
    void filesAndMapsLieInTheirOrder_data();
    void filesAndMapsLieInTheirOrder();
    void layersThatFailEndWithTwo_data();
    void layersThatFailEndWithTwo();
    void eachLayerThatFailsHasItsLine();
    void aMapThatCannotBeReadEndsWithTwo_data();
    void aMapThatCannotBeReadEndsWithTwo();
    void otherXmlIsOpenedAsAnImage();
    void anEmptyMapIsRendered();
    void aLayerThatDoesNotOpenInTimeEndsWithThree();

private:
    QString path(const QString& name) const { return folder.filePath(name); }
    QString write(const QString& name, const QString& text);
    Run render(const QStringList& sources, const QStringList& more = {});
    QImage rendered() const { return QImage(picture).convertToFormat(QImage::Format_RGB32); }

    QTemporaryDir folder;
    QString picture;
    TestImages::Layout plain;
    TestImages::Layout degrees;
    const QRect cells = QRect(100, 200, 64, 64);
    QImage expected; // those cells of plain.tif
};

QString MapProgramTest::write(const QString& name, const QString& text)
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly)) {
        qFatal("cannot write %s", qPrintable(name));
    }
    file.write(text.toUtf8());
    return path(name);
}

Run MapProgramTest::render(const QStringList& sources, const QStringList& more)
{
    return runViewer(QStringList{"--snapshot", picture, "--size", "64x64"} + more + sources);
}

void MapProgramTest::initTestCase()
{
    QVERIFY(folder.isValid());
    picture = path("picture.png");
    TestImages::writeRgb(path("plain.tif"), plain);
    degrees.epsg = 4326;
    degrees.origin = QPointF(10.25, 50.75);
    degrees.cell = 0.0001;
    TestImages::writeRgb(path("degrees.tif"), degrees);
    TestImages::Layout noisy = plain;
    noisy.noise = true;
    TestImages::writeRgb(path("noisy.tif"), noisy);
    expected = TestImages::read(path("plain.tif"), cells, cells.size());
    write("damaged.tif", "II*");
}

void MapProgramTest::init()
{
    QFile::remove(picture);
}

void MapProgramTest::aMapIsRenderedAsItWasSaved()
{
    const QString map =
        write("a.cmap", "<?xml version=\"1.0\"?><!DOCTYPE CorvaneMapCanvas><mapcanvas>" +
                            bounds(plain, cells) + "<layers>" + layer(path("plain.tif")) +
                            layer(path("noisy.tif"), "<param name=\"Visible\" value=\"false\"/>") +
                            "</layers></mapcanvas>");
    const Run run = render({map});
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(rendered(), expected);
}

void MapProgramTest::fractionsOfAUnitAreKept()
{
    const QString map =
        write("degrees.cmap", "<mapcanvas>" + bounds(degrees, cells) + "<layers>" +
                                  layer(path("degrees.tif")) + "</layers></mapcanvas>");
    const Run run = render({map});
    QVERIFY2(run.exitCode == 0, run.errors);
    QVERIFY(TestImages::meanError(
                rendered(), TestImages::read(path("degrees.tif"), cells, cells.size())) < 1.0);
}

void MapProgramTest::anExtentGoesBeforeThatOfTheMap()
{
    const QString map =
        write("b.cmap", "<mapcanvas>" + bounds(plain, QRect(0, 0, 500, 500)) + "<layers>" +
                            layer(path("plain.tif")) + "</layers></mapcanvas>");
    const Run run = render({map}, {"--extent", "500200,4649600,500328,4649472"});
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(rendered(), expected);
}

void MapProgramTest::withoutExtentsEverythingIsShown()
{
    const QString map =
        write("c.cmap", "<mapcanvas><layers>" + layer(path("plain.tif")) + "</layers></mapcanvas>");
    QCOMPARE(render({map}).exitCode, 0);
    const QImage shown = rendered();
    QCOMPARE(render({path("plain.tif")}).exitCode, 0);
    QCOMPARE(shown, rendered());
}

void MapProgramTest::sourcesAreLookedForBesideTheMap()
{
    QVERIFY(QDir(folder.path()).mkdir("maps"));
    const QString map = write("maps/d.cmap", "<mapcanvas>" + bounds(plain, cells) + "<layers>" +
                                                 layer("../plain.tif") + "</layers></mapcanvas>");
    const Run run = render({map});
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(rendered(), expected);
}

void MapProgramTest::filesAndMapsLieInTheirOrder_data()
{
    QTest::addColumn<QStringList>("sources");
    QTest::addColumn<QString>("top");
    const auto map = [this](const QString& name, const QStringList& files) {
        QString layers;
        for (const QString& file : files) {
            layers += layer(path(file));
        }
        return write(name, "<mapcanvas>" + bounds(plain, cells) + "<layers>" + layers +
                               "</layers></mapcanvas>");
    };
    const QString plainMap = map("plain.cmap", {"noisy.tif", "plain.tif"});
    const QString noisyMap = map("noisy.cmap", {"plain.tif", "noisy.tif"});
    QTest::newRow("a file above a map") << QStringList{plainMap, path("noisy.tif")} << "noisy.tif";
    QTest::newRow("a map above a file") << QStringList{path("noisy.tif"), plainMap} << "plain.tif";
    QTest::newRow("a map above a map") << QStringList{plainMap, noisyMap} << "noisy.tif";
    QTest::newRow("the other map above") << QStringList{noisyMap, plainMap} << "plain.tif";
    QTest::newRow("a map between files")
        << QStringList{path("noisy.tif"), noisyMap, path("plain.tif")} << "plain.tif";
}

void MapProgramTest::filesAndMapsLieInTheirOrder()
{
    QFETCH(QStringList, sources);
    QFETCH(QString, top);
    const Run run = render(sources);
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(rendered(), TestImages::read(path(top), cells, cells.size()));
}

void MapProgramTest::layersThatFailEndWithTwo_data()
{
    QTest::addColumn<QString>("broken");
    QTest::addColumn<QString>("line");
    const QString map = path("broken.cmap");
    QTest::newRow("a file that is missing")
        << layer("/missing/a.tif") << ": cannot open /missing/a.tif: the file does not exist\n";
    QTest::newRow("a relative file that is missing")
        << layer("no/a.tif") << ": cannot open " + path("no/a.tif") + ": the file does not exist\n";
    QTest::newRow("a file that is damaged")
        << layer(path("damaged.tif")) << ": cannot open " + path("damaged.tif") + ": ";
    QTest::newRow("a server that is not there")
        << layer("http://127.0.0.1:9/a.tif") << ": cannot open http://127.0.0.1:9/a.tif: ";
    QTest::newRow("a class that no plugin serves")
        << "<layer class=\"Nobody\"/>"
        << ": The plugin manager could not find a layer class to handle the type 'Nobody'.\n";
}

void MapProgramTest::layersThatFailEndWithTwo()
{
    QFETCH(QString, broken);
    QFETCH(QString, line);
    const QString map =
        write("broken.cmap", "<mapcanvas>" + bounds(plain, cells) + "<layers>" +
                                 layer(path("plain.tif")) + broken + "</layers></mapcanvas>");
    const Run run = render({map});
    QVERIFY2(run.exitCode == 2, run.errors);
    QVERIFY2(run.errors.contains("corvane-viewer: " + map.toUtf8() + line.toUtf8()), run.errors);
    QCOMPARE(rendered(), expected); // what there is, is written
}

void MapProgramTest::eachLayerThatFailsHasItsLine()
{
    const QString map =
        write("broken.cmap", "<mapcanvas><layers><layer class=\"One\"/><layer class=\"Two\"/>" +
                                 layer("/missing/a.tif") + "<layer class=\"Three\"/>" +
                                 "</layers></mapcanvas>");
    const Run run = render({map});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.errors.count("corvane-viewer: " + map.toUtf8() + ": "), 4);
    QVERIFY(!QFile::exists(picture));
}

void MapProgramTest::aMapThatCannotBeReadEndsWithTwo_data()
{
    QTest::addColumn<QString>("map");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << path("missing.cmap") << "No such file or directory";
    QTest::newRow("cut off") << write("cut.cmap", "<mapcanvas><layers>") << "line 1: ";
    QTest::newRow("of another kind") << write("other.cmap", "<actions/>") << "";
    QTest::newRow("nested without end")
        << write("deep.cmap", "<mapcanvas>" + QString("<a>").repeated(1000000))
        << "its elements are nested too deeply";
}

void MapProgramTest::aMapThatCannotBeReadEndsWithTwo()
{
    QFETCH(QString, map);
    QFETCH(QString, reason);
    const Run run = render({map});
    QVERIFY2(run.exitCode == 2, run.errors);
    const QString line = "corvane-viewer: cannot open " + map + ": " + reason;
    QVERIFY2(run.errors.contains(line.toUtf8()), run.errors);
    QVERIFY(!QFile::exists(picture));
}

void MapProgramTest::otherXmlIsOpenedAsAnImage()
{
    QString bands;
    for (int band = 1; band <= 3; ++band) {
        bands += QString("<VRTRasterBand dataType=\"Byte\" band=\"%1\"><SimpleSource>"
                         "<SourceFilename>%2</SourceFilename><SourceBand>%1</SourceBand>"
                         "</SimpleSource></VRTRasterBand>")
                     .arg(band)
                     .arg(path("plain.tif"));
    }
    const QString image =
        write("image.xml", "<VRTDataset rasterXSize=\"1024\" rasterYSize=\"768\"><GeoTransform>"
                           "500000, 2, 0, 4650000, 0, -2</GeoTransform>" +
                               bands + "</VRTDataset>");
    const Run run = render({image}, {"--extent", "500200,4649600,500328,4649472"});
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(rendered(), expected);
}

void MapProgramTest::anEmptyMapIsRendered()
{
    const Run run = render({write("empty.cmap", "<mapcanvas/>")});
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(rendered().size(), QSize(64, 64));
}

void MapProgramTest::aLayerThatDoesNotOpenInTimeEndsWithThree()
{
    StallingServer server(QByteArray(1000, ' '), 0);
    const QString map = write(
        "slow.cmap", "<mapcanvas>" + bounds(plain, cells) + "<layers>" + layer(path("plain.tif")) +
                         layer(server.addressOf("silent.tif")) + "</layers></mapcanvas>");
    const Run run = render({map}, {"--timeout", "2"});
    QVERIFY2(run.exitCode == 3, run.errors);
    QVERIFY2(run.errors.contains("not open in time: " + map.toUtf8()), run.errors);
    QCOMPARE(rendered(), expected);
}

QTEST_GUILESS_MAIN(MapProgramTest)
#include "MapProgramTest.moc"
