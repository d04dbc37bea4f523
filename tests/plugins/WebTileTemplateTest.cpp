#include <plugins/webtiles/TileTemplate.h>

#include <plugins/webtiles/WebTileOffer.h>
#include <plugins/webtiles/WmtsCapabilities.h>

#include <QtTest>

#include <cmath>
#include <set>

using namespace Corvane::Map;

namespace {

// A document with one layer "chart" for each of the links; matrixSets follow.
QByteArray capabilities(const QByteArray& layers, const QByteArray& matrixSets,
                        const QByteArray& operations = QByteArray())
{
    return "<?xml version=\"1.0\"?><Capabilities xmlns=\"http://www.opengis.net/wmts/1.0\" "
           "xmlns:ows=\"http://www.opengis.net/ows/1.1\" "
           "xmlns:xlink=\"http://www.w3.org/1999/xlink\">" +
           operations + "<Contents>" + layers + matrixSets + "</Contents></Capabilities>";
}

QByteArray layer(const QByteArray& name, const QByteArray& set, const QByteArray& rest)
{
    return "<Layer><ows:Title>The " + name + "</ows:Title><ows:Identifier>" + name +
           "</ows:Identifier><Style><ows:Identifier>plain</ows:Identifier></Style>"
           "<Style isDefault=\"true\"><ows:Identifier>fine</ows:Identifier></Style>"
           "<TileMatrixSetLink><TileMatrixSet>" +
           set + "</TileMatrixSet></TileMatrixSetLink>" + rest + "</Layer>";
}

QByteArray matrix(const QByteArray& name, double denominator, int edge = 256,
                  const QByteArray& corner = "-20037508.3427892 20037508.3427892")
{
    const QByteArray size = QByteArray::number(edge);
    return "<TileMatrix><ows:Identifier>" + name + "</ows:Identifier><ScaleDenominator>" +
           QByteArray::number(denominator, 'f', 9) + "</ScaleDenominator><TopLeftCorner>" + corner +
           "</TopLeftCorner><TileWidth>" + size + "</TileWidth><TileHeight>" + size +
           "</TileHeight></TileMatrix>";
}

QByteArray matrixSet(const QByteArray& name, const QByteArray& matrices,
                     const QByteArray& crs = "urn:ogc:def:crs:EPSG::3857")
{
    return "<TileMatrixSet><ows:Identifier>" + name + "</ows:Identifier><ows:SupportedCRS>" + crs +
           "</ows:SupportedCRS>" + matrices + "</TileMatrixSet>";
}

constexpr double world = 559082264.0287178; // the scale denominator of zoom 0

const char* const resource =
    "<ResourceURL format=\"image/png\" resourceType=\"tile\" "
    "template=\"http://e.org/{Style}/{TileMatrixSet}/{TileMatrix}/{TileRow}/{TileCol}.png\"/>";

} // namespace

/// From the texts that name tiles to the URL of each.
class WebTileTemplateTest : public QObject
{
    Q_OBJECT
private slots:
    void placesAreReplaced_data();
    void placesAreReplaced();
    void aUrlThatCannotNameTilesIsRefused_data();
    void aUrlThatCannotNameTilesIsRefused();
    void quadKeysCountFromTheCoarsestZoom_data();
    void quadKeysCountFromTheCoarsestZoom();
    void aTileKeepsItsHostAndAllHostsAreUsed();

    void capabilitiesGiveTheUrlOfALayer();
    void capabilitiesWithoutTemplatesGiveAQuery();
    void aSetMayBeginFinerAndNameItsZoomsAsItLikes();
    void limitsOfALayerAreKeptByZoom();
    void largeTilesAreAZoomApart();
    void otherGridsAreRefused_data();
    void otherGridsAreRefused();
    void aNameChoosesTheLayer();
    void aDocumentNestedWithoutEndIsRefused();
    void namesAreEscapedWhereTheyStand_data();
    void namesAreEscapedWhereTheyStand();
    void aNameThatLooksLikeAPlaceIsAName();
    void urlsWithoutEndAreRefused_data();
    void urlsWithoutEndAreRefused();
    void documentsOfAnotherKindAreRefused_data();
    void documentsOfAnotherKindAreRefused();
};

void WebTileTemplateTest::placesAreReplaced_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("url");
    QTest::newRow("zoom, column, row") << "http://e.org/{z}/{x}/{y}.png"
                                       << "http://e.org/5/17/11.png";
    QTest::newRow("rows from the south") << "http://e.org/{z}/{x}/{-y}.png"
                                         << "http://e.org/5/17/20.png";
    QTest::newRow("a quadkey") << "https://e.org/t?q={q}&v=1"
                               << "https://e.org/t?q=12023&v=1";
    QTest::newRow("a host") << "http://{s}.e.org/{z}/{x}/{y}"
                            << "http://b.e.org/5/17/11";
    QTest::newRow("in another order, twice") << "http://e.org/{y}/{x}/{z}/{z}"
                                             << "http://e.org/11/17/5/5";
}

void WebTileTemplateTest::placesAreReplaced()
{
    QFETCH(QString, text);
    QFETCH(QString, url);
    QString error;
    const auto urls = TileTemplate::parse(text, {"a", "b", "c"}, &error);
    QVERIFY2(urls, qPrintable(error));
    QCOMPARE(urls->urlOf({5, 17, 11}), url);
}

void WebTileTemplateTest::aUrlThatCannotNameTilesIsRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("no row") << "http://e.org/{z}/{x}";
    QTest::newRow("no zoom") << "http://e.org/{x}/{y}";
    QTest::newRow("an unknown place") << "http://e.org/{z}/{x}/{y}/{r}";
    QTest::newRow("an open brace") << "http://e.org/{z}/{x}/{y}/{";
    QTest::newRow("another protocol") << "file:///{z}/{x}/{y}";
    QTest::newRow("a host and none is named") << "http://{s}.e.org/{z}/{x}/{y}";
    QTest::newRow("a port that is none") << "http://e.org:port/{z}/{x}/{y}";
}

void WebTileTemplateTest::aUrlThatCannotNameTilesIsRefused()
{
    QFETCH(QString, text);
    QString error;
    QVERIFY(!TileTemplate::parse(text, {}, &error));
    QVERIFY(!error.isEmpty());
}

void WebTileTemplateTest::quadKeysCountFromTheCoarsestZoom_data()
{
    QTest::addColumn<int>("zoom");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<QString>("key");
    QTest::newRow("the world") << 0 << 0 << 0 << "";
    QTest::newRow("north-east") << 1 << 1 << 0 << "1";
    QTest::newRow("south-west") << 1 << 0 << 1 << "2";
    QTest::newRow("three digits") << 3 << 3 << 5 << "213";
    QTest::newRow("zeros in front") << 4 << 1 << 0 << "0001";
}

void WebTileTemplateTest::quadKeysCountFromTheCoarsestZoom()
{
    QFETCH(int, zoom);
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(QString, key);
    QCOMPARE(quadKey({zoom, unsigned(x), unsigned(y)}), key);
}

void WebTileTemplateTest::aTileKeepsItsHostAndAllHostsAreUsed()
{
    QString error;
    const auto urls = TileTemplate::parse("http://{s}/{z}/{x}/{y}", {"a", "b", "c"}, &error);
    QVERIFY(urls);
    std::set<QChar> hosts;
    for (unsigned int x = 0; x < 4; ++x) {
        for (unsigned int y = 0; y < 4; ++y) {
            const QString url = urls->urlOf({2, x, y});
            QCOMPARE(urls->urlOf({2, x, y}), url);
            hosts.insert(url.at(7));
        }
    }
    QCOMPARE(hosts, (std::set<QChar>{'a', 'b', 'c'}));
}

void WebTileTemplateTest::capabilitiesGiveTheUrlOfALayer()
{
    const QByteArray set = matrixSet("web", matrix("0", world) + matrix("1", world / 2));
    QString error;
    const auto offer =
        readCapabilities(capabilities(layer("chart", "web", resource), set), "", &error);
    QVERIFY2(offer, qPrintable(error));
    QCOMPARE(offer->url, QString("http://e.org/fine/web/{z}/{y}/{x}.png"));
    QCOMPARE(offer->title, QString("The chart"));
    QCOMPARE(*offer->minZoom, 0);
    QCOMPARE(*offer->maxZoom, 1);
    QCOMPARE(*offer->tileSize, 256);
}

void WebTileTemplateTest::capabilitiesWithoutTemplatesGiveAQuery()
{
    const QByteArray set = matrixSet("web", matrix("0", world));
    const QByteArray operations =
        "<ows:OperationsMetadata><ows:Operation name=\"GetTile\"><ows:DCP><ows:HTTP>"
        "<ows:Get xlink:href=\"http://e.org/service?map=a\"><ows:Constraint name=\"GetEncoding\">"
        "<ows:AllowedValues><ows:Value>KVP</ows:Value></ows:AllowedValues></ows:Constraint>"
        "</ows:Get></ows:HTTP></ows:DCP></ows:Operation></ows:OperationsMetadata>";
    QString error;
    const auto offer = readCapabilities(
        capabilities(layer("chart", "web", "<Format>image/jpeg</Format><Format>image/png</Format>"),
                     set, operations),
        "", &error);
    QVERIFY2(offer, qPrintable(error));
    QCOMPARE(offer->url,
             QString("http://e.org/service?map=a&SERVICE=WMTS&REQUEST=GetTile&VERSION=1.0.0"
                     "&LAYER=chart&STYLE=fine&FORMAT=image/png&TILEMATRIXSET=web"
                     "&TILEMATRIX={z}&TILECOL={x}&TILEROW={y}"));
}

void WebTileTemplateTest::aSetMayBeginFinerAndNameItsZoomsAsItLikes()
{
    const QByteArray set = matrixSet(
        "web", matrix("coarse", world / 4) + matrix("fine", world / 8) + matrix("gap", world / 32));
    QString error;
    const auto offer =
        readCapabilities(capabilities(layer("chart", "web", resource), set), "", &error);
    QVERIFY(offer);
    QCOMPARE(*offer->minZoom, 2);
    QCOMPARE(*offer->maxZoom, 3);
    auto urls = TileTemplate::parse(offer->url, {}, &error);
    QVERIFY(urls);
    urls->setZoomNames(offer->zoomNames);
    QCOMPARE(urls->urlOf({3, 1, 2}), QString("http://e.org/fine/web/fine/2/1.png"));
    QCOMPARE(urls->urlOf({2, 1, 2}), QString("http://e.org/fine/web/coarse/2/1.png"));
}

void WebTileTemplateTest::limitsOfALayerAreKeptByZoom()
{
    const auto limits = [](const QByteArray& zoom, const QByteArray& columns) {
        return "<TileMatrixLimits><TileMatrix>" + zoom +
               "</TileMatrix><MinTileRow>1</MinTileRow><MaxTileRow>2</MaxTileRow>" + columns +
               "</TileMatrixLimits>";
    };
    const auto columns = [](const QByteArray& first, const QByteArray& last) {
        return "<MinTileCol>" + first + "</MinTileCol><MaxTileCol>" + last + "</MaxTileCol>";
    };
    QByteArray layers = layer("chart", "web", resource);
    layers.replace("</TileMatrixSet>",
                   "</TileMatrixSet><TileMatrixSetLimits>" + limits("c", columns("3", "5")) +
                       limits("d", columns("5", "3")) + limits("e", columns("-1", "3")) +
                       limits("f", "") + limits("", columns("3", "5")) +
                       limits("none", columns("3", "5")) + "</TileMatrixSetLimits>");
    const QByteArray set = matrixSet("web", matrix("c", world / 8) + matrix("d", world / 16) +
                                                matrix("e", world / 32) + matrix("f", world / 64));
    QString error;
    const auto offer = readCapabilities(capabilities(layers, set), "", &error);
    QVERIFY(offer);
    QCOMPARE(offer->limits, (QHash<int, QRect>{{3, QRect(QPoint(3, 1), QPoint(5, 2))}}));
}

void WebTileTemplateTest::largeTilesAreAZoomApart()
{
    const QByteArray set =
        matrixSet("web", matrix("0", world / 2, 512) + matrix("1", world / 4, 512));
    QString error;
    const auto offer =
        readCapabilities(capabilities(layer("chart", "web", resource), set), "", &error);
    QVERIFY(offer);
    QCOMPARE(*offer->tileSize, 512);
    QCOMPARE(*offer->minZoom, 0);
    QCOMPARE(*offer->maxZoom, 1);
}

void WebTileTemplateTest::otherGridsAreRefused_data()
{
    QTest::addColumn<QByteArray>("set");
    QTest::newRow("another projection")
        << matrixSet("web", matrix("0", world), "urn:ogc:def:crs:EPSG::4326");
    QTest::newRow("another corner") << matrixSet("web", matrix("0", world, 256, "0 20037508.34"));
    QTest::newRow("other scales") << matrixSet("web", matrix("0", world * 0.7));
    QTest::newRow("another tile size") << matrixSet("web", matrix("0", world / 4, 1024));
    QTest::newRow("no set of that name") << matrixSet("other", matrix("0", world));
    QTest::newRow("numbers that are none") << matrixSet("web", matrix("0", std::nan("")));
}

void WebTileTemplateTest::otherGridsAreRefused()
{
    QFETCH(QByteArray, set);
    QString error;
    QVERIFY(!readCapabilities(capabilities(layer("chart", "web", resource), set), "", &error));
    QCOMPARE(error, QString("no layer comes in Web Mercator tiles"));
}

void WebTileTemplateTest::aNameChoosesTheLayer()
{
    const QByteArray document =
        capabilities(layer("chart", "web", resource) + layer("photo", "web", resource),
                     matrixSet("web", matrix("0", world)));
    QString error;
    const auto offer = readCapabilities(document, "photo", &error);
    QVERIFY(offer);
    QCOMPARE(offer->title, QString("The photo"));
    QVERIFY(!readCapabilities(document, "nothing", &error));
    QCOMPARE(error, QString("there is no layer nothing"));
}

// More levels than a stack has room for.
void WebTileTemplateTest::aDocumentNestedWithoutEndIsRefused()
{
    constexpr int levels = 1000000;
    QString error;
    const QByteArray depth = QByteArray("<a>").repeated(levels);
    QVERIFY(!readCapabilities(capabilities(depth, ""), "", &error));
    QCOMPARE(error, QString("the capabilities cannot be read: they are nested too deeply"));
}

void WebTileTemplateTest::namesAreEscapedWhereTheyStand_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("inPath");
    QTest::addColumn<QString>("inQuery");
    QTest::newRow("one that needs nothing") << "EPSG:3857"
                                            << "EPSG:3857"
                                            << "EPSG:3857";
    QTest::newRow("a hash") << "no#1"
                            << "no%231"
                            << "no%231";
    QTest::newRow("a plus") << "a+b"
                            << "a%2Bb"
                            << "a%2Bb";
    QTest::newRow("an ampersand") << "a&b=c"
                                  << "a%26b%3Dc"
                                  << "a%26b%3Dc";
    QTest::newRow("a percent sign") << "50%"
                                    << "50%25"
                                    << "50%25";
    QTest::newRow("what looks escaped already") << "a%2Fb"
                                                << "a%252Fb"
                                                << "a%252Fb";
    QTest::newRow("a blank") << "a b"
                             << "a%20b"
                             << "a%20b";
    QTest::newRow("a question mark") << "a?b"
                                     << "a%3Fb"
                                     << "a%3Fb";
    QTest::newRow("a slash") << "a/b"
                             << "a%2Fb"
                             << "a/b";
    QTest::newRow("letters beyond ASCII") << QString::fromUtf8("Straße") << "Stra%C3%9Fe"
                                          << "Stra%C3%9Fe";
}

void WebTileTemplateTest::namesAreEscapedWhereTheyStand()
{
    QFETCH(QString, name);
    QFETCH(QString, inPath);
    QFETCH(QString, inQuery);
    QString error;
    auto urls = TileTemplate::parse("http://e.org/{z}/{x}/{y}?zoom={z}", {}, &error);
    QVERIFY2(urls, qPrintable(error));
    urls->setZoomNames({name});
    QCOMPARE(urls->urlOf({0, 0, 0}), "http://e.org/" + inPath + "/0/0?zoom=" + inQuery);

    const QByteArray escapedXml = name.toHtmlEscaped().toUtf8();
    const QByteArray rest =
        "<Dimension><ows:Identifier>Time</ows:Identifier><Default>" + escapedXml +
        "</Default></Dimension><ResourceURL format=\"image/png\" resourceType=\"tile\" "
        "template=\"http://e.org/{time}/{TileMatrixSet}/{TileMatrix}/{TileRow}/{TileCol}?t={TIME}\"/>";
    const auto offer = readCapabilities(
        capabilities(layer("chart", escapedXml, rest), matrixSet(escapedXml, matrix("0", world))),
        "", &error);
    QVERIFY2(offer, qPrintable(error));
    QCOMPARE(offer->url, "http://e.org/" + inPath + "/" + inPath + "/{z}/{y}/{x}?t=" + inQuery);
}

void WebTileTemplateTest::aNameThatLooksLikeAPlaceIsAName()
{
    const QByteArray rest =
        "<Dimension><ows:Identifier>time</ows:Identifier><Default>{Style}{x}</Default></Dimension>"
        "<ResourceURL format=\"image/png\" resourceType=\"tile\" "
        "template=\"http://e.org/{Time}/{TileMatrix}/{TileRow}/{TileCol}.png\"/>";
    QString error;
    const QByteArray set = matrixSet("web", matrix("0", world));
    const auto offer = readCapabilities(capabilities(layer("chart", "web", rest), set), "", &error);
    QVERIFY2(offer, qPrintable(error));
    QCOMPARE(offer->url, QString("http://e.org/%7BStyle%7D%7Bx%7D/{z}/{y}/{x}.png"));
}

void WebTileTemplateTest::urlsWithoutEndAreRefused_data()
{
    QTest::addColumn<QByteArray>("places");
    QTest::addColumn<QByteArray>("value");
    const QByteArray kilobyte(1024, 'a');
    QTest::newRow("a long value") << QByteArray("{d}") << kilobyte.repeated(10);
    QTest::newRow("many places for a value") << QByteArray("{d}").repeated(10) << kilobyte;
    QTest::newRow("a long template") << kilobyte.repeated(10) << QByteArray("a");
    QTest::newRow("many places for nothing") << QByteArray("{d}").repeated(5000) << QByteArray();
}

void WebTileTemplateTest::urlsWithoutEndAreRefused()
{
    QFETCH(QByteArray, places);
    QFETCH(QByteArray, value);
    const QByteArray rest =
        "<ResourceURL format=\"image/png\" resourceType=\"tile\" template=\"http://e.org/" +
        places +
        "/{TileMatrix}/{TileRow}/{TileCol}.png\"/><Dimension><ows:Identifier>d</ows:Identifier>"
        "<Default>" +
        value + "</Default></Dimension>";
    QString error;
    const QByteArray set = matrixSet("web", matrix("0", world));
    QVERIFY(!readCapabilities(capabilities(layer("chart", "web", rest), set), "", &error));
    QCOMPARE(error, QString("no layer comes in Web Mercator tiles"));
}

void WebTileTemplateTest::documentsOfAnotherKindAreRefused_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("a web page") << QByteArray("<html><body>Sorry<br></body></html>");
    QTest::newRow("another document") << QByteArray("<mapcanvas/>");
    QTest::newRow("no contents") << QByteArray(
        "<Capabilities xmlns=\"http://www.opengis.net/wmts/1.0\"/>");
    QTest::newRow("cut off") << capabilities(layer("chart", "web", resource), "").left(300);
}

void WebTileTemplateTest::documentsOfAnotherKindAreRefused()
{
    QFETCH(QByteArray, document);
    QString error;
    QVERIFY(!readCapabilities(document, "", &error));
    QVERIFY(!error.isEmpty());
}

QTEST_GUILESS_MAIN(WebTileTemplateTest)

#include "WebTileTemplateTest.moc"
