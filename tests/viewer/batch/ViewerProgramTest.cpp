#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/support/TestImages.h>
#include <tests/viewer/support/ViewerRun.h>

#include <tests/support/FileContent.h>
#include <tests/support/PdfPixels.h>

#include <corvane/map/ViewManager.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <cmath>

using namespace Corvane;

namespace {

/// A client that does nothing, for a manager of its own.
class NoClient : public Map::IClient
{
public:
    void beginClientUpdate(bool) override {}
    void endClientUpdate() override {}
    void onExtentChange(double, double, double, double, bool) override {}
    GeolinkMode getGeolinkMode() override { return GeolinkNone; }
    void setGeolinkMode(GeolinkMode) override {}
};

/// The world rectangle that a view of this size shows when it is told to show these corners.
std::array<double, 4> shownExtent(const QSize& size, const std::array<double, 4>& wanted)
{
    NoClient client;
    Map::ViewManager manager(&client);
    manager.setDeviceExtents(0, 0, size.width() - 1, size.height() - 1);
    manager.setWorldExtents(wanted[0], wanted[1], wanted[2], wanted[3], false);
    std::array<double, 4> shown = {};
    manager.getWorldExtents(&shown[0], &shown[1], &shown[2], &shown[3]);
    return shown;
}

QString extentText(const std::array<double, 4>& extent)
{
    QStringList parts;
    for (double value : extent) {
        parts << QString::number(value, 'g', 17);
    }
    return parts.join(',');
}

/// The cells of the image that a world rectangle covers.
QRectF cellsOf(const TestImages::Layout& layout, const std::array<double, 4>& extent)
{
    return QRectF((extent[0] - layout.origin.x()) / layout.cell,
                  (layout.origin.y() - extent[1]) / layout.cell,
                  (extent[2] - extent[0]) / layout.cell, (extent[1] - extent[3]) / layout.cell);
}

std::array<double, 4> worldOf(const TestImages::Layout& layout, const QRect& cells)
{
    return {layout.origin.x() + cells.x() * layout.cell,
            layout.origin.y() - cells.y() * layout.cell,
            layout.origin.x() + (cells.x() + cells.width()) * layout.cell,
            layout.origin.y() - (cells.y() + cells.height()) * layout.cell};
}

} // namespace

class ViewerProgramTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void textsGoToStandardOutput_data();
    void textsGoToStandardOutput();
    void pluginsAreListedOneToALine();
    void wrongUsageEndsWithOne_data();
    void wrongUsageEndsWithOne();
    void aWindowWithoutADisplayEndsWithOne_data();
    void aWindowWithoutADisplayEndsWithOne();
    void oneToOneInASquareIsGdalsOwnRendering_data();
    void oneToOneInASquareIsGdalsOwnRendering();
    void otherShapesAndScalesAreNearGdalsRendering_data();
    void otherShapesAndScalesAreNearGdalsRendering();
    void withoutExtentEverythingIsShown();
    void laterFilesLieAboveEarlierOnes();
    void jpegIsWrittenAsJpeg();
    void aPdfIsAPageOfThePicturesSize_data();
    void aPdfIsAPageOfThePicturesSize();
    void aPdfThatIsThereStaysWhenNothingOpens();
    void aScaleFactorOfTheDesktopChangesNothing();
    void sourcesThatFailEndWithTwo_data();
    void sourcesThatFailEndWithTwo();
    void aPictureThatIsThereStaysWhenNothingOpens();
    void aServerThatSaysNothingEndsWithThree();
    void tilesThatDoNotComeEndWithThree();
    void informationAboutAServerThatSaysNothingEndsWithTwo();
    void informationIsExactJson();
    void informationNamesFilesThatFail();
    void aFolderStandsForItsImages();
    void tileLinesComeOnlyWhenAskedFor();

private:
    QString path(const QString& name) const { return folder.filePath(name); }
    QString write(const QString& name, const TestImages::Layout& layout);

    QTemporaryDir folder;
    QString picture;
    TestImages::Layout plain;
};

void ViewerProgramTest::initTestCase()
{
    QVERIFY(folder.isValid());
    picture = path("out.png");
    write("plain.tif", plain);
}

void ViewerProgramTest::cleanup()
{
    QFile::remove(picture);
}

QString ViewerProgramTest::write(const QString& name, const TestImages::Layout& layout)
{
    TestImages::writeRgb(path(name), layout);
    return path(name);
}

void ViewerProgramTest::textsGoToStandardOutput_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("the version") << QStringList{"--version"} << QByteArray("Corvane Viewer 16.7.");
    QTest::newRow("its short form") << QStringList{"-v"} << QByteArray("Corvane Viewer 16.7.");
    QTest::newRow("help") << QStringList{"--help"} << QByteArray("--extent <tlx,tly,brx,bry>");
}

void ViewerProgramTest::textsGoToStandardOutput()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, text);
    const Run run = runViewer(arguments);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.output.contains(text), run.output);
}

void ViewerProgramTest::pluginsAreListedOneToALine()
{
    const Run run = runViewer({"--list-plugins"});
    QCOMPARE(run.exitCode, 0);
    const QList<QByteArray> lines = run.output.trimmed().split('\n');
    const auto raster = std::find_if(lines.begin(), lines.end(), [](const QByteArray& line) {
        return line.startsWith("Corvane::Map::GdalRasterLayer\t");
    });
    QVERIFY2(raster != lines.end(), run.output);
    const QList<QByteArray> columns = raster->split('\t');
    QCOMPARE(columns.size(), 4);
    QVERIFY(!columns[1].isEmpty());
    QVERIFY2(columns[2].contains("*.tif"), columns[2]);
    QVERIFY2(QFile::exists(columns[3]), columns[3]);
}

void ViewerProgramTest::wrongUsageEndsWithOne_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("named");

    const QString file = path("plain.tif");
    QTest::newRow("an unknown option") << QStringList{"--bogus"} << QByteArray("bogus");
    QTest::newRow("a size that is none")
        << QStringList{"--snapshot", picture, "--size", "big", file} << QByteArray("--size");
    QTest::newRow("a snapshot of nothing")
        << QStringList{"--snapshot", picture} << QByteArray("--snapshot");
    QTest::newRow("an unknown kind of picture")
        << QStringList{"--snapshot", path("out.xyz"), file} << QByteArray("out.xyz");
    QTest::newRow("a folder that is not there")
        << QStringList{"--snapshot", path("nowhere/out.png"), file}
        << QByteArray("nowhere/out.png");
    QTest::newRow("a place where nothing can be written")
        << QStringList{"--snapshot", "/proc/out.png", file} << QByteArray("/proc/out.png");
}

void ViewerProgramTest::wrongUsageEndsWithOne()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, named);
    const Run run = runViewer(arguments);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains(named), run.errors);
    QVERIFY(!QFile::exists(picture));
}

void ViewerProgramTest::aWindowWithoutADisplayEndsWithOne_data()
{
    QTest::addColumn<QString>("platform");
    QTest::newRow("with no platform named") << QString();
    QTest::newRow("with the X server's platform named") << "xcb";
}

void ViewerProgramTest::aWindowWithoutADisplayEndsWithOne()
{
    QFETCH(QString, platform);
    QMap<QString, QString> variables;
    if (!platform.isEmpty()) {
        variables["QT_QPA_PLATFORM"] = platform;
    }
    const Run run = runViewer({path("plain.tif")}, variables);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains("no display"), run.errors);
}

void ViewerProgramTest::oneToOneInASquareIsGdalsOwnRendering_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("overviews");
    QTest::addColumn<QRect>("cells");

    const QStringList tiled{"TILED=YES"};
    QTest::newRow("the corner of a tiled file") << tiled << true << QRect(0, 0, 256, 256);
    QTest::newRow("across tiles") << tiled << true << QRect(100, 200, 300, 300);
    QTest::newRow("the last cells") << tiled << false << QRect(724, 468, 300, 300);
    QTest::newRow("all rows") << tiled << true << QRect(13, 0, 768, 768);
    QTest::newRow("a file of strips") << QStringList() << false << QRect(41, 77, 512, 512);
    QTest::newRow("a compressed file of odd blocks")
        << QStringList{"TILED=YES", "COMPRESS=DEFLATE", "BLOCKXSIZE=112", "BLOCKYSIZE=80"} << false
        << QRect(333, 111, 200, 200);
}

void ViewerProgramTest::oneToOneInASquareIsGdalsOwnRendering()
{
    QFETCH(QStringList, options);
    QFETCH(bool, overviews);
    QFETCH(QRect, cells);
    TestImages::Layout layout;
    layout.options = options;
    layout.overviews = overviews;
    layout.noise = true;
    const QString file = write("noise.tif", layout);

    const Run run = runViewer({"--snapshot", picture, "--size",
                               QString("%1x%2").arg(cells.width()).arg(cells.height()), "--extent",
                               extentText(worldOf(layout, cells)), file});
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(QImage(picture).convertToFormat(QImage::Format_RGB32),
             TestImages::read(file, cells, cells.size()));
}

void ViewerProgramTest::otherShapesAndScalesAreNearGdalsRendering_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("cells");
    QTest::addColumn<bool>("overviews");

    QTest::newRow("wide, one to one") << QSize(400, 225) << QRect(50, 60, 400, 225) << false;
    QTest::newRow("half the scale") << QSize(320, 240) << QRect(100, 100, 640, 480) << false;
    QTest::newRow("half the scale from overviews")
        << QSize(320, 240) << QRect(100, 100, 640, 480) << true;
    QTest::newRow("a third of the scale") << QSize(200, 200) << QRect(200, 100, 600, 600) << true;
    QTest::newRow("two and a half times as large")
        << QSize(400, 300) << QRect(300, 200, 160, 120) << false;
    QTest::newRow("tall") << QSize(150, 450) << QRect(500, 150, 150, 450) << false;
}

void ViewerProgramTest::otherShapesAndScalesAreNearGdalsRendering()
{
    QFETCH(QSize, size);
    QFETCH(QRect, cells);
    QFETCH(bool, overviews);
    TestImages::Layout layout;
    layout.overviews = overviews;
    layout.options = QStringList{"TILED=YES"};
    const QString file = write("waves.tif", layout);
    const auto wanted = worldOf(layout, cells);

    const Run run = runViewer({"--snapshot", picture, "--size",
                               QString("%1x%2").arg(size.width()).arg(size.height()), "--extent",
                               extentText(wanted), file});
    QVERIFY2(run.exitCode == 0, run.errors);
    const QRectF shown = cellsOf(layout, shownExtent(size, wanted));
    QVERIFY(QRectF(QPointF(), layout.size).contains(shown));
    const double error =
        TestImages::meanError(QImage(picture), TestImages::read(file, shown, size));
    QVERIFY2(error < 2.0, qPrintable(QString::number(error)));
}

void ViewerProgramTest::withoutExtentEverythingIsShown()
{
    const QSize size(500, 300);
    const Run run = runViewer({"--snapshot", picture, "--size", "500x300", path("plain.tif")});
    QVERIFY2(run.exitCode == 0, run.errors);

    const auto shown = shownExtent(size, worldOf(plain, QRect(QPoint(), plain.size)));
    const double cellsPerPixel = (shown[2] - shown[0]) / size.width() / plain.cell;
    const QRectF cells = cellsOf(plain, shown);
    const QRect inside(qRound(-cells.x() / cellsPerPixel), qRound(-cells.y() / cellsPerPixel),
                       qRound(plain.size.width() / cellsPerPixel),
                       qRound(plain.size.height() / cellsPerPixel));
    const QImage image(picture);
    QCOMPARE(image.size(), size);
    QVERIFY(inside.left() > 20); // the map is narrower than the picture
    QCOMPARE(image.pixelColor(inside.left() - 3, 150), QColor(Qt::white));
    QCOMPARE(image.pixelColor(inside.right() + 3, 150), QColor(Qt::white));

    const QRect middle = inside.adjusted(10, 10, -10, -10);
    const QRectF middleCells(cells.x() + middle.x() * cellsPerPixel,
                             cells.y() + middle.y() * cellsPerPixel, middle.width() * cellsPerPixel,
                             middle.height() * cellsPerPixel);
    const double error = TestImages::meanError(
        image.copy(middle), TestImages::read(path("plain.tif"), middleCells, middle.size()));
    QVERIFY2(error < 2.0, qPrintable(QString::number(error)));
}

void ViewerProgramTest::laterFilesLieAboveEarlierOnes()
{
    TestImages::Layout above;
    above.noise = true;
    above.size = QSize(128, 128);
    const QString file = write("above.tif", above);
    const auto extent = extentText(worldOf(above, QRect(0, 0, 200, 200)));
    const QStringList options{"--snapshot", picture, "--size", "200x200", "--extent", extent};

    QCOMPARE(runViewer(options + QStringList{path("plain.tif"), file}).exitCode, 0);
    const QImage noiseAbove = QImage(picture).convertToFormat(QImage::Format_RGB32);
    QCOMPARE(noiseAbove.copy(0, 0, 128, 128),
             TestImages::read(file, QRectF(0, 0, 128, 128), QSize(128, 128)));
    QCOMPARE(noiseAbove.copy(128, 0, 72, 200),
             TestImages::read(path("plain.tif"), QRectF(128, 0, 72, 200), QSize(72, 200)));

    QCOMPARE(runViewer(options + QStringList{file, path("plain.tif")}).exitCode, 0);
    QCOMPARE(QImage(picture).convertToFormat(QImage::Format_RGB32),
             TestImages::read(path("plain.tif"), QRectF(0, 0, 200, 200), QSize(200, 200)));
}

void ViewerProgramTest::jpegIsWrittenAsJpeg()
{
    const QString jpeg = path("out.JPG");
    const Run run =
        runViewer({"--snapshot", jpeg, "--size", "128x128", "--extent",
                   extentText(worldOf(plain, QRect(64, 64, 128, 128))), path("plain.tif")});
    QVERIFY2(run.exitCode == 0, run.errors);
    QVERIFY(contentOf(jpeg).startsWith("\xff\xd8\xff"));
    const double error = TestImages::meanError(
        QImage(jpeg),
        TestImages::read(path("plain.tif"), QRectF(64, 64, 128, 128), QSize(128, 128)));
    QVERIFY2(error < 2.0, qPrintable(QString::number(error)));
}

void ViewerProgramTest::aPdfIsAPageOfThePicturesSize_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("in metres") << "plain.tif";
    QTest::newRow("in degrees") << "degrees.tif";
}

// A pixel of the picture is a point of the page.
void ViewerProgramTest::aPdfIsAPageOfThePicturesSize()
{
    QFETCH(QString, file);
    TestImages::Layout degrees;
    degrees.epsg = 4326;
    degrees.origin = QPointF(10.0, 50.0);
    degrees.cell = 0.001;
    write("degrees.tif", degrees);
    const QString page = path("page.pdf");
    Run run = runViewer({"--snapshot", page, "--size", "401x303", path(file)});
    QVERIFY2(run.exitCode == 0, run.errors);
    run = runViewer({"--snapshot", picture, "--size", "401x303", path(file)});
    QVERIFY2(run.exitCode == 0, run.errors);

    const QImage pixels = pdfFilePixels(page, 72);
    QCOMPARE(pixels.size(), QSize(401, 303));
    // without the frame; what lies beside the image is white in both
    const QRect inside = pixels.rect().adjusted(3, 3, -3, -3);
    const double error =
        TestImages::meanError(pixels.copy(inside).convertToFormat(QImage::Format_RGB32),
                              QImage(picture).copy(inside).convertToFormat(QImage::Format_RGB32));
    QVERIFY2(error < 2.0, qPrintable(QString::number(error)));
}

void ViewerProgramTest::aPdfThatIsThereStaysWhenNothingOpens()
{
    QFile old(path("old.pdf"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    const Run run = runViewer({"--snapshot", path("old.pdf"), path("missing.tif")});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(contentOf(path("old.pdf")), QByteArray("old"));
}

void ViewerProgramTest::aScaleFactorOfTheDesktopChangesNothing()
{
    const QRect cells(10, 20, 200, 200);
    const Run run = runViewer({"--snapshot", picture, "--size", "200x200", "--extent",
                               extentText(worldOf(plain, cells)), path("plain.tif")},
                              {{"QT_SCALE_FACTOR", "2"}});
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(QImage(picture).convertToFormat(QImage::Format_RGB32),
             TestImages::read(path("plain.tif"), cells, cells.size()));
}

void ViewerProgramTest::sourcesThatFailEndWithTwo_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("named");
    QTest::addColumn<bool>("written");

    const QString good = path("plain.tif");
    const QString damaged = path("damaged.tif");
    QFile file(damaged);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("II*\0 and no more of it");
    QTest::newRow("a file that is not there")
        << QStringList{path("missing.tif")} << path("missing.tif") << false;
    QTest::newRow("a file that is none") << QStringList{damaged} << damaged << false;
    QTest::newRow("one of two files is not there")
        << QStringList{path("missing.tif"), good} << path("missing.tif") << true;
    QTest::newRow("a server that is not there")
        << QStringList{"http://127.0.0.1:9/a.tif", good} << "http://127.0.0.1:9/a.tif" << true;
    QTest::newRow("an image behind a password")
        << QStringList{"zwtp://127.0.0.1:9/a.ecw|me|hush", good} << "zwtp://127.0.0.1:9/a.ecw"
        << true;
    QTest::newRow("a signed address") << QStringList{"http://127.0.0.1:9/a.tif?sig=hush", good}
                                      << "http://127.0.0.1:9/a.tif?sig=" << true;
}

void ViewerProgramTest::sourcesThatFailEndWithTwo()
{
    QFETCH(QStringList, files);
    QFETCH(QString, named);
    const QRect cells(0, 0, 64, 64);
    const Run run = runViewer(QStringList{"--snapshot", picture, "--size", "64x64", "--extent",
                                          extentText(worldOf(plain, cells))} +
                              files);
    QVERIFY2(run.exitCode == 2, run.errors);
    const QString first = "corvane-viewer: cannot open " + named + ": ";
    QVERIFY2(run.errors.contains(first.toUtf8()), run.errors);
    QVERIFY2(!run.errors.contains("hush"), run.errors);
    QTEST(QFile::exists(picture), "written");
    if (QFile::exists(picture)) {
        QCOMPARE(QImage(picture).convertToFormat(QImage::Format_RGB32),
                 TestImages::read(path("plain.tif"), cells, cells.size()));
    }
}

void ViewerProgramTest::aPictureThatIsThereStaysWhenNothingOpens()
{
    QFile old(picture);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    QCOMPARE(runViewer({"--snapshot", picture, path("missing.tif")}).exitCode, 2);
    QCOMPARE(contentOf(picture), QByteArray("old"));
}

void ViewerProgramTest::aServerThatSaysNothingEndsWithThree()
{
    StallingServer server(QByteArray(1000, ' '), 0);
    const QRect cells(0, 0, 64, 64);
    const Run run = runViewer({"--snapshot", picture, "--size", "64x64", "--timeout", "1",
                               "--extent", extentText(worldOf(plain, cells)), path("plain.tif"),
                               server.addressOf("silent.tif")});
    QVERIFY2(run.exitCode == 3, run.errors);
    QVERIFY2(run.errors.contains(server.addressOf("silent.tif").toUtf8()), run.errors);
    QCOMPARE(QImage(picture).convertToFormat(QImage::Format_RGB32),
             TestImages::read(path("plain.tif"), cells, cells.size()));
}

void ViewerProgramTest::tilesThatDoNotComeEndWithThree()
{
    TestImages::Layout large;
    large.size = QSize(1024, 1024);
    large.noise = true;
    large.options = QStringList{"TILED=YES"};
    // the directory of the file stands in front, the tiles behind it
    StallingServer server(contentOf(write("large.tif", large)), 16384);
    const Run run = runViewer({"--snapshot", picture, "--size", "300x200", "--timeout", "2",
                               server.addressOf("large.tif")});
    QVERIFY2(run.exitCode == 3, run.errors);
    QVERIFY2(run.errors.contains("not complete in time"), run.errors);
    QCOMPARE(QImage(picture).size(), QSize(300, 200));

    const Run onPaper = runViewer({"--snapshot", path("late.pdf"), "--size", "300x200", "--timeout",
                                   "2", server.addressOf("large.tif")});
    QVERIFY2(onPaper.exitCode == 3, onPaper.errors);
    QCOMPARE(pdfFilePixels(path("late.pdf"), 72).size(), QSize(300, 200));
}

void ViewerProgramTest::informationAboutAServerThatSaysNothingEndsWithTwo()
{
    StallingServer server(QByteArray(1000, ' '), 0);
    const Run run =
        runViewer({"--info", "--timeout", "1", server.addressOf("silent.tif"), path("plain.tif")});
    QCOMPARE(run.exitCode, 2);
    const QJsonArray files = QJsonDocument::fromJson(run.output).array();
    QCOMPARE(files.size(), 2);
    QCOMPARE(files[0].toObject()["error"].toString(), QString("not open in time"));
    QVERIFY(!files[1].toObject().contains("error"));
}

void ViewerProgramTest::informationIsExactJson()
{
    const Run run = runViewer({"--info", path("plain.tif")});
    QVERIFY2(run.exitCode == 0, run.errors);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(run.output, &error);
    QVERIFY2(error.error == QJsonParseError::NoError, run.output);
    QVERIFY(run.output.startsWith("[\n    {\n")); // for people, too

    QCOMPARE(document.array().size(), 1);
    const QJsonObject file = document.array()[0].toObject();
    QCOMPARE(file["file"].toString(), path("plain.tif"));
    QVERIFY(!file.contains("error"));
    QCOMPARE(file["class"].toString(), QString("Corvane::Map::GdalRasterLayer"));
    QCOMPARE(file["spatialReference"].toString(), QString("epsg:32633"));
    QCOMPARE(file["size"].toObject(), (QJsonObject{{"width", 1024}, {"height", 768}}));
    QCOMPARE(file["bounds"].toObject(),
             (QJsonObject{
                 {"tlx", 500000.0}, {"tly", 4650000.0}, {"brx", 502048.0}, {"bry", 4648464.0}}));
    const QJsonObject properties = file["properties"].toObject();
    QCOMPARE(properties["CellSizeX"], QJsonValue(2.0));
    QCOMPARE(properties["CellSizeY"], QJsonValue(-2.0));
    QCOMPARE(properties["NumberOfBands"], QJsonValue(3));
    QCOMPARE(properties["BandList"].toArray(), (QJsonArray{1, 2, 3}));
    QCOMPARE(properties["MaxScale"].toDouble(), 1.7976931348623157e308);
    QCOMPARE(properties["DataSource"].toString(), path("plain.tif"));
}

void ViewerProgramTest::informationNamesFilesThatFail()
{
    const Run run = runViewer({"--info", path("plain.tif"), path("missing.tif")});
    QCOMPARE(run.exitCode, 2);
    const QJsonArray files = QJsonDocument::fromJson(run.output).array();
    QCOMPARE(files.size(), 2);
    QVERIFY(!files[0].toObject().contains("error"));
    QCOMPARE(files[1].toObject().keys(), QStringList({"error", "file"}));
    QCOMPARE(files[1].toObject()["file"].toString(), path("missing.tif"));
    QVERIFY(!files[1].toObject()["error"].toString().isEmpty());
}

void ViewerProgramTest::aFolderStandsForItsImages()
{
    QTemporaryDir images;
    const QDir inside(images.path());
    for (const char* name : {"sheet10.tif", "sheet9.tif"}) {
        QVERIFY(QFile::copy(path("plain.tif"), inside.filePath(name)));
    }
    const Run run = runViewer({"--info", images.path()});
    QVERIFY2(run.exitCode == 0, run.errors);
    const QJsonArray files = QJsonDocument::fromJson(run.output).array();
    QCOMPARE(files.size(), 2);
    QCOMPARE(files[0].toObject()["file"].toString(), inside.filePath("sheet9.tif"));
    QCOMPARE(files[1].toObject()["file"].toString(), inside.filePath("sheet10.tif"));

    const Run rendering = runViewer({"--render", picture, images.path()});
    QVERIFY2(rendering.exitCode == 0, rendering.errors);
    QVERIFY(!QImage(picture).isNull());
}

void ViewerProgramTest::tileLinesComeOnlyWhenAskedFor()
{
    const QStringList arguments{"--snapshot", picture, "--size", "300x300", path("plain.tif")};
    const Run quiet = runViewer(arguments);
    const Run verbose = runViewer(arguments + QStringList{"--verbose"});
    QCOMPARE(quiet.exitCode, 0);
    QCOMPARE(verbose.exitCode, 0);
    QVERIFY2(!quiet.errors.contains("corvane.tiles") && !quiet.errors.contains("Plugin directory"),
             quiet.errors);
    QVERIFY2(verbose.errors.contains("corvane.tiles"), verbose.errors.left(2000));
    QVERIFY2(verbose.errors.contains("Plugin directory"), verbose.errors.left(2000));
}

QTEST_GUILESS_MAIN(ViewerProgramTest)
#include "ViewerProgramTest.moc"
