#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include <cpl_conv.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

using namespace Corvane::Tests;

namespace {

void write(const QString& fileName, const QByteArray& text)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

QByteArray virtualRaster(const QByteArray& source, bool relative)
{
    return R"(<VRTDataset rasterXSize="64" rasterYSize="64"><VRTRasterBand dataType="Byte" band="1">)"
           R"(<SimpleSource><SourceFilename relativeToVRT=")" +
           QByteArray(relative ? "1" : "0") + "\">" + source +
           R"(</SourceFilename><SourceBand>1</SourceBand></SimpleSource></VRTRasterBand></VRTDataset>)";
}

// open.tif, put into the reference of latitude and longitude.
QByteArray warpedRaster(const QByteArray& source, const QByteArray& target,
                        const QByteArray& operation)
{
    return "<VRTDataset rasterXSize=\"64\" rasterYSize=\"64\" subClass=\"VRTWarpedDataset\">"
           "<GeoTransform>10,0.015625,0,50,0,-0.015625</GeoTransform>"
           "<VRTRasterBand dataType=\"Byte\" band=\"1\" subClass=\"VRTWarpedRasterBand\"/>"
           "<BlockXSize>64</BlockXSize><BlockYSize>64</BlockYSize><GDALWarpOptions>"
           "<WarpMemoryLimit>6.71089e+07</WarpMemoryLimit>"
           "<ResampleAlg>NearestNeighbour</ResampleAlg><WorkingDataType>Byte</WorkingDataType>"
           "<SourceDataset relativeToVRT=\"1\">open.tif</SourceDataset><Transformer>"
           "<GenImgProjTransformer><SrcGeoTransform>10,0.015625,0,50,0,-0.015625</SrcGeoTransform>"
           "<SrcInvGeoTransform>-640,64,0,3200,0,-64</SrcInvGeoTransform>"
           "<ReprojectTransformer><ReprojectionTransformer><SourceSRS>" +
           source + "</SourceSRS><TargetSRS>" + target + "</TargetSRS>" + operation +
           "</ReprojectionTransformer></ReprojectTransformer>"
           "<DstGeoTransform>10,0.015625,0,50,0,-0.015625</DstGeoTransform>"
           "<DstInvGeoTransform>-640,64,0,3200,0,-64</DstInvGeoTransform>"
           "</GenImgProjTransformer></Transformer><BandList><BandMapping src=\"1\" dst=\"1\"/>"
           "</BandList></GDALWarpOptions></VRTDataset>";
}

QByteArray escaped(QByteArray text)
{
    return text.replace('&', "&amp;").replace('<', "&lt;").replace('"', "&quot;");
}

// Whether somebody reads from the pipe, or waits for what comes.
bool isOpened(const QString& pipe)
{
    const int handle = ::open(pipe.toUtf8().constData(), O_WRONLY | O_NONBLOCK);
    const bool nobody = handle < 0 && errno == ENXIO;
    if (handle >= 0) {
        ::close(handle);
    }
    return !nobody;
}

RasterRecipe small(double value)
{
    RasterRecipe recipe;
    recipe.size = QSize(64, 64);
    recipe.bands = 1;
    recipe.options.clear();
    recipe.value = [value](int, int, int) { return value; };
    return recipe;
}

} // namespace

/// Nothing outside of the published folder is ever read. Beside it lies a folder with secrets.
class ImageConfinementTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void pathsThatLeadOutFindNothing_data();
    void pathsThatLeadOutFindNothing();
    void linksThatLeadOutAreNotFollowed();
    void linksThatStayInsideAre();
    void virtualRastersShowWhatLiesInTheFolder();
    void virtualRastersThatReferElsewhereAreLeftOut_data();
    void virtualRastersThatReferElsewhereAreLeftOut();
    void aSourceThatBecomesALinkLaterGivesNothing();
    void overviewsAndMasksFromElsewhereAreNotUsed();
    void metadataThatNamesOverviewsElsewhereIsNotFollowed();
    void filesThatAskServersAreLeftOut();
    void coordinateSystemsThatAreUrlsAreNotAskedFor();
    void gridsOfCoordinateSystemsAreNotOpened_data();
    void gridsOfCoordinateSystemsAreNotOpened();
    void gridsThatComeWithProjAreUsed();
    void errorsDoNotTellClientsWhereTheFolderLies();
    void aFileCannotForgeALineOfTheLog();
    void aPipeDoesNotHoldTheServer();
    void nothingIsWrittenIntoTheFolder();
    void aRootThatIsItselfALinkIsPublished();

private:
    QString inside(const char* name) const { return base->filePath("public/") + name; }
    QString outside(const char* name) const { return base->filePath("secret/") + name; }
    QStringList paths(ServerProcess& server) const;
    QImage tile(ServerProcess& server, const QByteArray& path) const;

    std::unique_ptr<QTemporaryDir> base;
};

void ImageConfinementTest::init()
{
    base = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkpath(base->filePath("public/folder")));
    QVERIFY(QDir().mkpath(base->filePath("secret")));
    QVERIFY(makeRaster(inside("open.tif"), small(100)));
    QVERIFY(makeRaster(outside("secret.tif"), small(200)));
}

QStringList ImageConfinementTest::paths(ServerProcess& server) const
{
    QStringList result;
    const ServerAnswer answer = server.ask("/tavro-orivex/catalog/content/search.json",
                                           {"Content-Type: application/json"}, "POST", "{}");
    for (const QJsonValue& entry : answer.json()["results"].toArray()) {
        result.append('/' + entry["name"].toString() + '.' +
                      entry["decoderName"].toString().toLower());
    }
    result.sort();
    return result;
}

QImage ImageConfinementTest::tile(ServerProcess& server, const QByteArray& path) const
{
    return QImage::fromData(server.ask("/tiles" + path + "/0/0/0.png").body);
}

void ImageConfinementTest::pathsThatLeadOutFindNothing_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("dots") << QByteArray("/../secret/secret.tif");
    QTest::newRow("dots behind a folder") << QByteArray("/folder/../../secret/secret.tif");
    QTest::newRow("packed dots") << QByteArray("/%2e%2e/secret/secret.tif");
    QTest::newRow("packed slashes") << QByteArray("/..%2fsecret%2fsecret.tif");
    QTest::newRow("packed twice") << QByteArray("/%252e%252e/secret/secret.tif");
    QTest::newRow("backslashes") << QByteArray("/..%5csecret%5csecret.tif");
    QTest::newRow("a byte that ends names") << QByteArray("/open.tif%00/../../secret/secret.tif");
    QTest::newRow("an absolute path") << QByteArray("{secret}/secret.tif");
    QTest::newRow("an absolute path behind slashes") << QByteArray("//{secret}/secret.tif");
    QTest::newRow("a file of the machine") << QByteArray("//etc/passwd");
    QTest::newRow("GDAL's file system over the network")
        << QByteArray("/vsicurl/http%3a//127.0.0.1/secret.tif");
    QTest::newRow("GDAL's window into files") << QByteArray("/vsisubfile/0_10,{secret}/secret.tif");
    QTest::newRow("GDAL's archives") << QByteArray("/vsizip/{secret}/secret.zip/secret.tif");
    QTest::newRow("a raster in the name")
        << virtualRaster("{secret}/secret.tif", false).toPercentEncoding();
    QTest::newRow("dots that come back") << QByteArray("/../public/open.tif");
}

void ImageConfinementTest::pathsThatLeadOutFindNothing()
{
    QFETCH(QByteArray, path);
    path.replace("{secret}", base->filePath("secret").toUtf8());
    ServerProcess server(base->filePath("public"));
    QVERIFY(server.isRunning());
    QCOMPARE(server.ask("/tiles" + path).status, 404);
    QCOMPARE(server.ask("/tiles" + path + "/0/0/0.png").status, 404);
    QCOMPARE(server.ask("/tavro-krs/tavro/raxion?request=image&layers=" + path).status, 404);
    QCOMPARE(server.ask("/tavro-krs/tavro/raxion?request=dsinfo&layers=" + path).status, 404);
    QCOMPARE(server.ask("/tavro-krs/tavro/raxion?request=image&service=..&layers=" + path).status,
             404);
    QCOMPARE(server.ask("/zwtp/raxion.dll%3Fimage?layers=" + path).status, 404);
    QCOMPARE(server.ask(path).status, 404);
    const QByteArray tree =
        server.ask("/tavro-krs/discovery.dll?request=getkrsinfo&folder=" + path).body;
    QVERIFY(tree.contains("<error>there is no folder"));
    QCOMPARE(server.ask("/tiles/open.tif/0/0/0.png").status, 200);
}

void ImageConfinementTest::linksThatLeadOutAreNotFollowed()
{
    QVERIFY(QFile::link(outside("secret.tif"), inside("absolute.tif")));
    QVERIFY(QFile::link("../secret/secret.tif", inside("relative.tif")));
    QVERIFY(QFile::link(base->filePath("secret"), inside("elsewhere")));
    QVERIFY(QFile::link(inside("absolute.tif"), inside("chained.tif")));
    ServerProcess server(base->filePath("public"));
    QCOMPARE(paths(server), QStringList("/open.tif"));
    QCOMPARE(server.ask("/tiles/absolute.tif").status, 404);
    QCOMPARE(server.ask("/tiles/elsewhere/secret.tif").status, 404);
    QCOMPARE(server.log().count("leads out of the published folder"), 3);
}

void ImageConfinementTest::linksThatStayInsideAre()
{
    QVERIFY(QFile::link(inside("open.tif"), inside("folder/absolute.tif")));
    QVERIFY(QFile::link("../open.tif", inside("folder/relative.tif")));
    QVERIFY(QFile::link(base->filePath("public"), inside("folder/up"))); // would not end
    ServerProcess server(base->filePath("public"));
    QCOMPARE(paths(server),
             QStringList({"/folder/absolute.tif", "/folder/relative.tif", "/open.tif"}));
    QCOMPARE(qRed(tile(server, "/folder/relative.tif").pixel(0, 0)), 100);
}

void ImageConfinementTest::virtualRastersShowWhatLiesInTheFolder()
{
    write(inside("relative.vrt"), virtualRaster("open.tif", true));
    write(inside("folder/above.vrt"), virtualRaster("../open.tif", true));
    write(inside("absolute.vrt"), virtualRaster(inside("open.tif").toUtf8(), false));
    ServerProcess server(base->filePath("public"));
    for (const char* const path : {"/relative.vrt", "/folder/above.vrt", "/absolute.vrt"}) {
        QCOMPARE(qRed(tile(server, path).pixel(0, 0)), 100);
    }
}

void ImageConfinementTest::virtualRastersThatReferElsewhereAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<bool>("relative");
    QTest::newRow("by an absolute path")
        << QByteArray("a.vrt") << QByteArray("{secret}/secret.tif") << false;
    QTest::newRow("by dots") << QByteArray("a.vrt") << QByteArray("../secret/secret.tif") << true;
    QTest::newRow("under the name of another format")
        << QByteArray("a.tif") << QByteArray("{secret}/secret.tif") << false;
    QTest::newRow("through a link") << QByteArray("a.vrt") << QByteArray("link/secret.tif") << true;
    QTest::newRow("through a window")
        << QByteArray("a.vrt") << QByteArray("/vsisubfile/0_100000,{secret}/secret.tif") << false;
    QTest::newRow("through an archive")
        << QByteArray("a.vrt") << QByteArray("/vsizip/{secret}/secret.zip/secret.tif") << false;
    QTest::newRow("through a raster in the name")
        << QByteArray("a.vrt")
        << virtualRaster("{secret}/secret.tif", false).replace('<', "&lt;").replace('>', "&gt;")
        << false;
    QTest::newRow("at a server") << QByteArray("a.vrt")
                                 << QByteArray("/vsicurl/http://127.0.0.1:{port}/a.tif") << false;
    QTest::newRow("at a server, without saying so")
        << QByteArray("a.vrt") << QByteArray("http://127.0.0.1:{port}/a.tif") << false;
}

void ImageConfinementTest::virtualRastersThatReferElsewhereAreLeftOut()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, source);
    QFETCH(bool, relative);
    QTcpServer network;
    QVERIFY(network.listen(QHostAddress::LocalHost));
    source.replace("{secret}", base->filePath("secret").toUtf8());
    source.replace("{port}", QByteArray::number(network.serverPort()));
    QVERIFY(QFile::link(base->filePath("secret"), inside("link")));
    write(inside(name), virtualRaster(source, relative));
    ServerProcess server(base->filePath("public"));
    QVERIFY(server.isRunning());
    QCOMPARE(paths(server), QStringList("/open.tif"));
    QCOMPARE(server.ask("/tiles/" + name + "/0/0/0.png").status, 404);
    QCOMPARE(server.log().count("left out /" + name), 1);
    QVERIFY(!network.waitForNewConnection(0));
}

// What was checked when the image was listed may be something else when it is read.
void ImageConfinementTest::aSourceThatBecomesALinkLaterGivesNothing()
{
    QVERIFY(makeRaster(inside("part.tif"), small(100)));
    write(inside("inner.vrt"), virtualRaster("part.tif", true));
    write(inside("outer.vrt"), virtualRaster("inner.vrt", true));
    ServerProcess server(base->filePath("public"));
    QVERIFY(paths(server).contains("/outer.vrt"));
    QVERIFY(QFile::remove(inside("part.tif")));
    QVERIFY(QFile::link(outside("secret.tif"), inside("part.tif")));
    const ServerAnswer answer = server.ask("/tiles/outer.vrt/0/0/0.png");
    QVERIFY(answer.status != 0);
    const QImage picture = QImage::fromData(answer.body);
    QVERIFY(picture.isNull() || qRed(picture.pixel(0, 0)) != 200);
}

void ImageConfinementTest::overviewsAndMasksFromElsewhereAreNotUsed()
{
    RasterRecipe large = small(100);
    large.size = QSize(1024, 1024);
    QVERIFY(makeRaster(inside("large.tif"), large));
    RasterRecipe half = small(200);
    half.size = QSize(512, 512);
    QVERIFY(makeRaster(outside("large.ovr"), half));
    QVERIFY(QFile::link(outside("large.ovr"), inside("large.tif.ovr")));
    large.value = [](int, int, int) { return 0; };
    QVERIFY(makeRaster(outside("large.msk"), large));
    QVERIFY(QFile::link(outside("large.msk"), inside("large.tif.msk")));
    ServerProcess server(base->filePath("public"));
    const QImage coarsest = tile(server, "/large.tif");
    QCOMPARE(coarsest.size(), QSize(256, 256));
    QCOMPARE(coarsest.pixelColor(128, 128), QColor(100, 100, 100));
}

void ImageConfinementTest::metadataThatNamesOverviewsElsewhereIsNotFollowed()
{
    RasterRecipe large = small(100);
    large.size = QSize(1024, 1024);
    QVERIFY(makeRaster(inside("large.tif"), large));
    RasterRecipe half = small(200);
    half.size = QSize(512, 512);
    QVERIFY(makeRaster(outside("large.ovr"), half));
    write(inside("large.tif.aux.xml"),
          "<PAMDataset><Metadata domain=\"OVERVIEWS\"><MDI key=\"OVERVIEW_FILE\">" +
              outside("large.ovr").toUtf8() + "</MDI></Metadata></PAMDataset>");
    ServerProcess server(base->filePath("public"));
    QCOMPARE(tile(server, "/large.tif").pixelColor(128, 128), QColor(100, 100, 100));
}

void ImageConfinementTest::filesThatAskServersAreLeftOut()
{
    QTcpServer network;
    QVERIFY(network.listen(QHostAddress::LocalHost));
    write(inside("wms.xml"),
          "<GDAL_WMS><Service name=\"TMS\"><ServerUrl>http://127.0.0.1:" +
              QByteArray::number(network.serverPort()) +
              "/${z}/${x}/${y}.png</ServerUrl></Service><DataWindow><UpperLeftX>-20037508.34"
              "</UpperLeftX><UpperLeftY>20037508.34</UpperLeftY><LowerRightX>20037508.34"
              "</LowerRightX><LowerRightY>-20037508.34</LowerRightY><TileLevel>3</TileLevel>"
              "<TileCountX>1</TileCountX><TileCountY>1</TileCountY></DataWindow>"
              "<Projection>EPSG:3857</Projection><BlockSizeX>256</BlockSizeX>"
              "<BlockSizeY>256</BlockSizeY><BandsCount>3</BandsCount></GDAL_WMS>");
    write(inside("wms.vrt"), virtualRaster("wms.xml", true));
    ServerProcess server(base->filePath("public"));
    QVERIFY(!paths(server).contains("/wms.xml"));
    server.ask("/tiles/wms.vrt/0/0/0.png");
    QVERIFY(!network.waitForNewConnection(0));
}

void ImageConfinementTest::coordinateSystemsThatAreUrlsAreNotAskedFor()
{
    QTcpServer network;
    QVERIFY(network.listen(QHostAddress::LocalHost));
    const QByteArray url = "http://127.0.0.1:" + QByteArray::number(network.serverPort()) + "/";
    write(
        inside("warped.vrt"),
        "<VRTDataset rasterXSize=\"64\" rasterYSize=\"64\" subClass=\"VRTWarpedDataset\">"
        "<GeoTransform>0,1,0,0,0,-1</GeoTransform>"
        "<VRTRasterBand dataType=\"Byte\" band=\"1\" subClass=\"VRTWarpedRasterBand\"/>"
        "<BlockXSize>64</BlockXSize><BlockYSize>64</BlockYSize><GDALWarpOptions>"
        "<WarpMemoryLimit>6.71089e+07</WarpMemoryLimit><ResampleAlg>NearestNeighbour</ResampleAlg>"
        "<WorkingDataType>Byte</WorkingDataType>"
        "<SourceDataset relativeToVRT=\"1\">open.tif</SourceDataset><Transformer>"
        "<ReprojectTransformer><ReprojectionTransformer><SourceSRS>" +
            url + "source</SourceSRS><TargetSRS>" + url +
            "target</TargetSRS></ReprojectionTransformer></ReprojectTransformer></Transformer>"
            "<BandList><BandMapping src=\"1\" dst=\"1\"/></BandList></GDALWarpOptions></VRTDataset>");
    ServerProcess server(base->filePath("public"));
    QVERIFY(server.isRunning());
    server.ask("/tiles/warped.vrt/0/0/0.png");
    QVERIFY(!network.waitForNewConnection(0));
    QCOMPARE(server.log().count("left out /warped.vrt: "), 1); // it came as far as to the URL
}

void ImageConfinementTest::gridsOfCoordinateSystemsAreNotOpened_data()
{
    const QByteArray bound =
        R"(BOUNDCRS[SOURCECRS[GEOGCRS["a",DATUM["a",ELLIPSOID["Bessel 1841",6377397.155,)"
        R"(299.1528128]],CS[ellipsoidal,2],AXIS["longitude",east],AXIS["latitude",north],)"
        R"(ANGLEUNIT["degree",0.0174532925199433]]],TARGETCRS[GEOGCRS["WGS 84",DATUM["World )"
        R"(Geodetic System 1984",ELLIPSOID["WGS 84",6378137,298.257223563]],CS[ellipsoidal,2],)"
        R"(AXIS["latitude",north],AXIS["longitude",east],ANGLEUNIT["degree",0.0174532925199433],)"
        R"(ID["EPSG",4326]]],ABRIDGEDTRANSFORMATION["a",METHOD["NTv2",ID["EPSG",9615]],)"
        R"(PARAMETERFILE["Latitude and longitude difference file","{pipe}"]]])";
    const QByteArray extension =
        R"(GEOGCS["a",DATUM["a",SPHEROID["Bessel 1841",6377397.155,299.1528128],)"
        R"(EXTENSION["PROJ4_GRIDS","{pipe}"]],PRIMEM["Greenwich",0],)"
        R"(UNIT["degree",0.0174532925199433]])";
    const QByteArray heights =
        R"(COMPD_CS["a",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,)"
        R"(298.257223563]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],)"
        R"(VERT_CS["b",VERT_DATUM["b",2005,EXTENSION["PROJ4_GRIDS","{pipe}"]],UNIT["metre",1]]])";
    const QByteArray datum("+proj=longlat +ellps=bessel +nadgrids={pipe} +no_defs");
    const QByteArray pipeline("+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step "
                              "+proj=hgridshift +grids={pipe} +step +proj=unitconvert +xy_in=rad "
                              "+xy_out=deg");
    const QByteArray wgs("EPSG:4326");
    const auto option = [](const QByteArray& text) {
        return "<Options><Option key=\"COORDINATE_OPERATION\">" + escaped(text) +
               "</Option></Options>";
    };
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("operation");
    QTest::newRow("of a datum") << datum << wgs << QByteArray();
    QTest::newRow("of the other side's datum") << wgs << datum << QByteArray();
    QTest::newRow("in letters as numbers")
        << QByteArray(datum).replace("nadgrids", "nad&#x67;rids") << wgs << QByteArray();
    QTest::newRow("in raw text") << "<![CDATA[" + datum + "]]>" << wgs << QByteArray();
    QTest::newRow("of heights")
        << QByteArray("+proj=longlat +datum=WGS84 +geoidgrids={pipe} +vunits=m +no_defs")
        << QByteArray("EPSG:4979") << QByteArray();
    QTest::newRow("of heights, in well-known text")
        << escaped(heights) << QByteArray("EPSG:4979") << QByteArray();
    QTest::newRow("in an extension of well-known text")
        << escaped(extension) << wgs << QByteArray();
    QTest::newRow("in the second kind of well-known text") << escaped(bound) << wgs << QByteArray();
    QTest::newRow("in a list of systems") << QByteArray("+init={pipe}:1") << wgs << QByteArray();
    QTest::newRow("in steps") << wgs << wgs << option(pipeline);
    QTest::newRow("of heights, in steps")
        << wgs << wgs << option("+proj=vgridshift +grids={pipe} +multiplier=1");
    QTest::newRow("in a list of steps") << wgs << wgs << option("+init={pipe}:1");
    QTest::newRow("of a model of movements")
        << wgs << wgs << option("+proj=defmodel +model={pipe}");
    QTest::newRow("of triangles") << wgs << wgs << option("+proj=tinshift +file={pipe}");
}

// Those that PROJ opens by itself, for which a pipe is the worst that can be.
void ImageConfinementTest::gridsOfCoordinateSystemsAreNotOpened()
{
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, operation);
    for (const QString& pipe : {inside("grid"), outside("grid")}) {
        QCOMPARE(::mkfifo(pipe.toUtf8().constData(), 0600), 0);
        const QByteArray text = warpedRaster(source, target, operation);
        write(inside("warped.vrt"), QByteArray(text).replace("{pipe}", pipe.toUtf8()));
        ServerProcess server(base->filePath("public"));
        QVERIFY(server.isRunning());
        server.ask("/tiles/warped.vrt/0/0/0.png");
        QVERIFY(!isOpened(pipe));
        QCOMPARE(server.stop(), 0);
    }
}

void ImageConfinementTest::gridsThatComeWithProjAreUsed()
{
    const QByteArray system("+proj=longlat +ellps=bessel +nadgrids=BETA2007.gsb +no_defs");
    write(inside("warped.vrt"), warpedRaster(system, "EPSG:4326", QByteArray()));
    ServerProcess server(base->filePath("public"));
    QCOMPARE(server.log(), QString());
    QCOMPARE(qRed(tile(server, "/warped.vrt").pixel(32, 32)), 100);
}

void ImageConfinementTest::errorsDoNotTellClientsWhereTheFolderLies()
{
    RasterRecipe packed = small(100);
    packed.options = QStringList{"COMPRESS=DEFLATE"};
    QVERIFY(makeRaster(inside("broken.tif"), packed));
    QFile file(inside("broken.tif"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    for (int start = bytes.indexOf('\x78'); start >= 0; start = bytes.indexOf('\x78', start + 1)) {
        bytes[start] = '\xff'; // no packing begins like this
    }
    file.seek(0);
    file.write(bytes);
    file.close();
    ServerProcess server(base->filePath("public"));
    for (int i = 0; i < 3; ++i) {
        const ServerAnswer answer = server.ask("/tiles/broken.tif/0/0/0.png");
        QCOMPARE(answer.status, 500);
        QCOMPARE(answer.body, QByteArray("the image cannot be read\n"));
    }
    QCOMPARE(server.ask("/tavro-krs/tavro/raxion?request=image&layers=/broken.tif").body,
             QByteArray("the image cannot be read\n"));
    QCOMPARE(server.log().count("cannot read /broken.tif: "), 1);
}

void ImageConfinementTest::aFileCannotForgeALineOfTheLog()
{
    write(inside("a.vrt"), virtualRaster("none&#10;2026-01-01 00:00:00 forged", true));
    ServerProcess server(base->filePath("public"));
    const QString log = server.log();
    QVERIFY2(log.contains("it refers to none\\u000a2026-01-01 00:00:00 forged"), qPrintable(log));
    QCOMPARE(log.count('\n'), 1);
}

void ImageConfinementTest::aPipeDoesNotHoldTheServer()
{
    QCOMPARE(::mkfifo(inside("pipe.tif").toUtf8().constData(), 0600), 0);
    write(inside("pipe.vrt"), virtualRaster("pipe.tif", true));
    ServerProcess server(base->filePath("public"));
    QVERIFY(server.isRunning());
    const ServerAnswer answer = server.ask("/tiles/pipe.vrt/0/0/0.png");
    QVERIFY(answer.status == 404 || answer.status == 500);
}

void ImageConfinementTest::nothingIsWrittenIntoTheFolder()
{
    RasterRecipe wide = small(1000);
    wide.type = GDT_UInt16; // whose values are stretched by statistics
    QVERIFY(makeRaster(inside("wide.tif"), wide));
    const QStringList before = QDir(inside("")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    ServerProcess server(base->filePath("public"));
    QVERIFY(!tile(server, "/wide.tif").isNull());
    QCOMPARE(server.stop(), 0);
    QCOMPARE(QDir(inside("")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);
}

void ImageConfinementTest::aRootThatIsItselfALinkIsPublished()
{
    QVERIFY(QFile::link(base->filePath("public"), base->filePath("link")));
    ServerProcess server(base->filePath("link"));
    QCOMPARE(paths(server), QStringList("/open.tif"));
    QCOMPARE(qRed(tile(server, "/open.tif").pixel(0, 0)), 100);
}

QTEST_GUILESS_MAIN(ImageConfinementTest)
#include "ImageConfinementTest.moc"
