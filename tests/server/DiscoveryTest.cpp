#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Corvane::Tests;

namespace {

const QByteArray treeRequest("/tavro-krs/discovery.dll?request=getkrsinfo&folder=/&format=xml");
const QByteArray wholeTree = treeRequest + "&recursive=true&version=1.0";
const QByteArray searchPath("/tavro-orivex/catalog/content/search.json");

/// What clients send.
const QByteArray usualSearch(
    R"({"maxresults":500,"start":0,"profile":"tvc-brief","orderby":["class asc","registrationDate desc"],)"
    R"("maxresultcount":501,"template":{"wmsEnabled":{"_op":"eq","value":true,"type":"boolean"},)"
    R"("decoderName":["ZWT","JP2"],"class":"com.tavro.rsp.lexon.model.imagery.ImageReference",)"
    R"("nameQualifier":"lexon://coverages"}})");

bool makeImage(const QString& path)
{
    RasterRecipe recipe;
    recipe.size = QSize(32, 32);
    recipe.options.clear();
    if (!QDir().mkpath(QFileInfo(path).path())) {
        return false;
    }
    if (!path.endsWith(".jp2")) {
        return makeRaster(path, recipe);
    }
    const QString plain = path + ".tif";
    const bool made = makeRaster(plain, recipe);
    {
        const Dataset source = openRaster(plain);
        const Dataset copy(GDALCreateCopy(GDALGetDriverByName("JP2OpenJPEG"), qPrintable(path),
                                          source.get(), 0, nullptr, nullptr, nullptr));
        if (!made || !copy) {
            return false;
        }
    }
    return QFile::remove(plain);
}

/// One line for each folder and image, indented by depth.
void describe(const QDomElement& folder, int depth, QStringList* lines)
{
    const QString indent(depth * 2, ' ');
    for (QDomElement child = folder.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        if (child.tagName() == "folders" || child.tagName() == "datasets") {
            describe(child, depth, lines);
        } else if (child.tagName() == "folder") {
            lines->append(indent + child.attribute("title"));
            describe(child, depth + 1, lines);
        } else {
            const QDomElement services = child.firstChildElement("services");
            lines->append(indent + child.attribute("name") + " zwtp=" + services.attribute("zwtp") +
                          " raxion=" + services.attribute("raxion"));
        }
    }
}

QDomElement rootOf(const ServerAnswer& answer)
{
    QDomDocument document;
    document.setContent(answer.body);
    return document.documentElement();
}

QStringList treeOf(const ServerAnswer& answer)
{
    QStringList lines;
    describe(rootOf(answer).firstChildElement("folder"), 0, &lines);
    return lines;
}

QString errorOf(const ServerAnswer& answer)
{
    const QDomElement root = rootOf(answer);
    return answer.status == 200 && root.tagName() == "error" ? root.text() : QString();
}

} // namespace

/// What the server tells of its folder.
class DiscoveryTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void theTreeListsFoldersBeforeImagesInOrderOfName();
    void onlyStreamedSuffixesOfferStreaming_data();
    void onlyStreamedSuffixesOfferStreaming();
    void namesThatUrlsPackComeAsTheyAre();
    void namesWithJoinersAreListed();
    void whatCannotBeNamedOrFoundIsLeftOutWithALine();
    void aFolderIsAskedForAlone();
    void withoutRecursionOneLevelComes();
    void theServerDescribesItself();
    void everyTopFolderIsAService();
    void aServiceShowsItsFolderAlone();
    void theUsualServiceIsTheWholeInAnyCapitals();
    void whatIsWrongComesAsAnErrorThatClientsShow_data();
    void whatIsWrongComesAsAnErrorThatClientsShow();
    void repliesAreNotKeptByClients();
    void imagesThatComeChangeAndGoAreNoticed();
    void aVirtualRasterComesWithTheSourceThatItLacked();
    void badRastersAreLeftOutWithOneLine();
    void theUsualSearchFindsStreamedImages();
    void aSearchKeepsToItsPage();
    void aSearchWithoutAPatternFindsAll();
    void whoSearchesForHiddenImagesFindsNone();
    void aSearchThatIsNoObjectIsRefused_data();
    void aSearchThatIsNoObjectIsRefused();

private:
    QString file(const QString& path) const { return base->filePath(path); }
    QStringList search(ServerProcess& server, const QByteArray& body) const;

    std::unique_ptr<QTemporaryDir> base;
};

void DiscoveryTest::init()
{
    base = std::make_unique<QTemporaryDir>();
}

void DiscoveryTest::theTreeListsFoldersBeforeImagesInOrderOfName()
{
    for (const char* const path :
         {"b.tif", "A.tif", "north/z.tif", "north/deep/y.tif", "Alps/x.tif"}) {
        QVERIFY(makeImage(file(path)));
    }
    QVERIFY(QDir().mkpath(file("empty")));
    QFile notes(file("notes.txt"));
    QVERIFY(notes.open(QIODevice::WriteOnly));
    ServerProcess server(base->path());
    QCOMPARE(treeOf(server.ask(wholeTree)), QStringList({
                                                "Alps",
                                                "  /Alps/x.tif zwtp=false raxion=true",
                                                "north",
                                                "  deep",
                                                "    /north/deep/y.tif zwtp=false raxion=true",
                                                "  /north/z.tif zwtp=false raxion=true",
                                                "/A.tif zwtp=false raxion=true",
                                                "/b.tif zwtp=false raxion=true",
                                            }));
    QVERIFY(server.log().isEmpty());
}

void DiscoveryTest::onlyStreamedSuffixesOfferStreaming_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("streams");
    for (const char* const suffix : {"zwt", "jp2", "jpc", "jpf", "jpx", "j2c", "j2k", "ntf", "JP2"})
    {
        QTest::newRow(suffix) << QString("a.%1").arg(suffix) << "true";
    }
    for (const char* const name : {"a.tif", "jp2", "a.jp2.tif", "a.nitf"}) {
        QTest::newRow(name) << QString(name) << "false";
    }
}

void DiscoveryTest::onlyStreamedSuffixesOfferStreaming()
{
    QFETCH(QString, name);
    QFETCH(QString, streams);
    QVERIFY(makeImage(file("image.tif")));
    QVERIFY(name == "image.tif" || QFile::rename(file("image.tif"), file(name)));
    ServerProcess server(base->path());
    QCOMPARE(treeOf(server.ask(wholeTree)),
             QStringList('/' + name + " zwtp=" + streams + " raxion=true"));
}

void DiscoveryTest::namesThatUrlsPackComeAsTheyAre()
{
    const QString name = QString::fromUtf8("a b&c<d>'\"#1%20+;\xc3\xbc\xe2\x82\xac.tif");
    QVERIFY(makeImage(file(name)));
    ServerProcess server(base->path());
    QCOMPARE(treeOf(server.ask(wholeTree)), QStringList('/' + name + " zwtp=false raxion=true"));
    QUrl url;
    url.setPath("/tiles/" + name);
    QCOMPARE(server.ask(url.toEncoded()).json()["path"].toString(), '/' + name);
    QUrlQuery query; // packed as clients pack it
    query.addQueryItem("request", "dsinfo");
    query.addQueryItem("layers", '/' + QString(name).replace('%', "%25"));
    QUrl details("/tavro-krs/tavro/raxion");
    details.setQuery(query);
    // Qt leaves an ampersand in a value alone; clients that want one pack it themselves
    const QByteArray target = details.toEncoded().replace("&c", "%26c");
    QCOMPARE(rootOf(server.ask(target)).attribute("name"), '/' + name);
}

void DiscoveryTest::namesWithJoinersAreListed()
{
    const QString name = QString::fromUtf8("\xd9\x85\xdb\x8c\xe2\x80\x8c\xd8\xb1\xd9\x88.tif");
    QVERIFY(makeImage(file("image.tif")));
    QVERIFY(QFile::rename(file("image.tif"), file(name)));
    ServerProcess server(base->path());
    QCOMPARE(treeOf(server.ask(wholeTree)), QStringList('/' + name + " zwtp=false raxion=true"));
    QUrl url;
    url.setPath("/tiles/" + name);
    QCOMPARE(server.ask(url.toEncoded()).json()["path"].toString(), '/' + name);
}

void DiscoveryTest::whatCannotBeNamedOrFoundIsLeftOutWithALine()
{
    QVERIFY(makeImage(file("good.tif")));
    QVERIFY(makeImage(file("folder/inner.tif")));
    QVERIFY(QFile::copy(file("good.tif"), file("line\nend.tif")));
    QVERIFY(QFile::copy(file("good.tif"), file("line\nend.txt"))); // nobody takes it for an image
    QVERIFY(QFile::rename(file("folder"), file("tab\tfolder")));
    QVERIFY(QFile::link("gone.tif", file("broken.tif")));
    QVERIFY(QFile::link("round.tif", file("round.tif")));
    ServerProcess server(base->path());
    QCOMPARE(treeOf(server.ask(wholeTree)), QStringList("/good.tif zwtp=false raxion=true"));
    QVERIFY(makeImage(file("second.tif"))); // the folder is looked through again
    QTRY_COMPARE(treeOf(server.ask(wholeTree)).size(), 2);
    const QString log = server.log();
    for (const char* const line : {"/line\\u000aend.tif: its name has control characters",
                                   "/tab\\u0009folder: its name has control characters",
                                   "/broken.tif: it leads out of the published folder, or nowhere",
                                   "/round.tif: it leads out of the published folder, or nowhere"})
    {
        QVERIFY2(log.count(QLatin1String("left out ") + line) == 1, qPrintable(log));
    }
    QCOMPARE(log.count("left out"), 4);
}

void DiscoveryTest::aFolderIsAskedForAlone()
{
    QVERIFY(makeImage(file("a.tif")));
    QVERIFY(makeImage(file("north/deep/y.tif")));
    ServerProcess server(base->path());
    const QByteArray request("/tavro-krs/discovery.dll?request=getkrsinfo&format=xml&folder=");
    const QStringList expected{"deep", "  /north/deep/y.tif zwtp=false raxion=true"};
    QCOMPARE(treeOf(server.ask(request + "/north")), expected);
    QCOMPARE(treeOf(server.ask(request + "north/")), expected);
    QCOMPARE(rootOf(server.ask(request + "north")).firstChildElement("folder").attribute("title"),
             QString("north"));
}

void DiscoveryTest::withoutRecursionOneLevelComes()
{
    QVERIFY(makeImage(file("a.tif")));
    QVERIFY(makeImage(file("north/deep/y.tif")));
    ServerProcess server(base->path());
    QCOMPARE(treeOf(server.ask(treeRequest + "&recursive=false")),
             QStringList({"north", "/a.tif zwtp=false raxion=true"}));
}

void DiscoveryTest::theServerDescribesItself()
{
    QVERIFY(makeImage(file("a.tif")));
    ServerProcess server(base->path(),
                         {"--title", "Survey <2026>", "--contact", "maps@example.org"});
    const QDomElement root = rootOf(server.ask(treeRequest + "&recursive=false"));
    QCOMPARE(root.tagName(), QString("krsinfo"));
    const QDomElement info = root.firstChildElement("serverinfo");
    QCOMPARE(info.attribute("title"), QString("Survey <2026>"));
    QCOMPARE(info.attribute("contactinformation"), QString("maps@example.org"));
    QCOMPARE(info.attribute("abstract"), QString("1 images in one folder"));
    QCOMPARE(info.attribute("onlineresource"), server.url("/"));
    const QStringList build = info.attribute("build").split('.');
    QCOMPARE(build.size(), 4);
    QCOMPARE(build.first(), QString("13"));
    QCOMPARE(root.elementsByTagName("format").at(0).toElement().text(), QString("image/png"));
    QCOMPARE(root.elementsByTagName("format").at(1).toElement().text(), QString("image/jpeg"));
    QCOMPARE(root.elementsByTagName("keyword").at(0).toElement().text(), QString("imagery"));
    QCOMPARE(root.elementsByTagName("serveralias").at(0).toElement().text(), server.url("/"));
}

void DiscoveryTest::everyTopFolderIsAService()
{
    for (const char* const path : {"a.tif", "north/deep/y.tif", "Alps/x.tif", "Default/w.tif"}) {
        QVERIFY(makeImage(file(path)));
    }
    QVERIFY(QDir().mkpath(file("empty")));
    ServerProcess server(base->path());
    const QDomElement root = rootOf(server.ask("/tavro-krs/discovery.dll?request=getserviceinfo"));
    QCOMPARE(root.tagName(), QString("serviceinfo"));
    QStringList names;
    const QDomElement services = root.firstChildElement("services");
    for (QDomElement service = services.firstChildElement("service"); !service.isNull();
         service = service.nextSiblingElement("service"))
    {
        names.append(service.attribute("name"));
    }
    QCOMPARE(names, QStringList({"default", "Alps", "north"}));
    QVERIFY(!root.firstChildElement("serverinfo").isNull());
}

void DiscoveryTest::aServiceShowsItsFolderAlone()
{
    QVERIFY(makeImage(file("a.tif")));
    QVERIFY(makeImage(file("north/deep/y.tif")));
    QVERIFY(makeImage(file("north/z.tif")));
    ServerProcess server(base->path());
    QCOMPARE(treeOf(server.ask(wholeTree + "&service=north")),
             QStringList({"deep", "  /deep/y.tif zwtp=false raxion=true",
                          "/z.tif zwtp=false raxion=true"}));
    const QByteArray details("/tavro-krs/tavro/raxion?request=dsinfo&service=north&layers=");
    QCOMPARE(rootOf(server.ask(details + "/z.tif")).attribute("name"), QString("/north/z.tif"));
    QCOMPARE(server.ask(details + "/a.tif").status, 404);
    QCOMPARE(server.ask("/tiles/north/z.tif").status, 200); // a path behind its service
}

void DiscoveryTest::theUsualServiceIsTheWholeInAnyCapitals()
{
    QVERIFY(makeImage(file("a.tif")));
    ServerProcess server(base->path());
    const QStringList whole("/a.tif zwtp=false raxion=true");
    for (const char* const service : {"", "&service=", "&service=default", "&service=Default"}) {
        QCOMPARE(treeOf(server.ask(wholeTree + service)), whole);
    }
}

void DiscoveryTest::whatIsWrongComesAsAnErrorThatClientsShow_data()
{
    QTest::addColumn<QByteArray>("query");
    QTest::addColumn<QString>("error");
    QTest::newRow("another request")
        << QByteArray("request=getmap") << "unknown request \"getmap\"";
    QTest::newRow("no request") << QByteArray() << "unknown request \"\"";
    QTest::newRow("another format")
        << QByteArray("request=getkrsinfo&format=json") << "there is no format \"json\", only xml";
    QTest::newRow("no such folder")
        << QByteArray("request=getkrsinfo&folder=/none") << "there is no folder \"/none\"";
    QTest::newRow("a folder whose name another begins with")
        << QByteArray("request=getkrsinfo&folder=/nor") << "there is no folder \"/nor\"";
    QTest::newRow("no such service")
        << QByteArray("request=getkrsinfo&folder=/&service=none") << "there is no service \"none\"";
}

void DiscoveryTest::whatIsWrongComesAsAnErrorThatClientsShow()
{
    QFETCH(QByteArray, query);
    QFETCH(QString, error);
    QVERIFY(makeImage(file("north/a.tif")));
    ServerProcess server(base->path());
    QCOMPARE(errorOf(server.ask("/tavro-krs/discovery.dll?" + query)), error);
}

void DiscoveryTest::repliesAreNotKeptByClients()
{
    ServerProcess server(base->path());
    QCOMPARE(server.ask(wholeTree).header("Cache-Control"), QByteArray("no-cache"));
    QCOMPARE(server.ask(wholeTree).header("Content-Type"), QByteArray("text/xml; charset=utf-8"));
}

void DiscoveryTest::imagesThatComeChangeAndGoAreNoticed()
{
    ServerProcess server(base->path());
    QCOMPARE(treeOf(server.ask(wholeTree)), QStringList());
    QVERIFY(makeImage(file("new.tif")));
    QTRY_COMPARE(treeOf(server.ask(wholeTree)), QStringList("/new.tif zwtp=false raxion=true"));
    const QString version = server.ask("/tiles/new.tif").json()["version"].toString();
    QVERIFY(!version.isEmpty());

    RasterRecipe other;
    other.size = QSize(48, 48);
    QVERIFY(makeRaster(file("new.tif"), other));
    QTRY_COMPARE(server.ask("/tiles/new.tif").json()["size"].toArray(), QJsonArray({48, 48}));
    QVERIFY(server.ask("/tiles/new.tif").json()["version"].toString() != version);
    QCOMPARE(server.ask("/tiles/new.tif/0/0/0.png?v=" + version.toLatin1()).status, 409);

    QVERIFY(QFile::remove(file("new.tif")));
    QTRY_COMPARE(treeOf(server.ask(wholeTree)), QStringList());
    QCOMPARE(server.ask("/tiles/new.tif").status, 404);
}

void DiscoveryTest::aVirtualRasterComesWithTheSourceThatItLacked()
{
    QFile vrt(file("mosaic.vrt"));
    QVERIFY(vrt.open(QIODevice::WriteOnly));
    vrt.write(
        R"(<VRTDataset rasterXSize="32" rasterYSize="32"><VRTRasterBand dataType="Byte" band="1">)"
        R"(<SimpleSource><SourceFilename relativeToVRT="1">part.tif</SourceFilename>)"
        R"(<SourceBand>1</SourceBand></SimpleSource></VRTRasterBand></VRTDataset>)");
    vrt.close();
    ServerProcess server(base->path());
    QCOMPARE(treeOf(server.ask(wholeTree)), QStringList());
    QVERIFY(makeImage(file("part.tif")));
    QTRY_COMPARE(treeOf(server.ask(wholeTree)).size(), 2);
    QCOMPARE(server.log().count("left out /mosaic.vrt"), 1);
}

void DiscoveryTest::badRastersAreLeftOutWithOneLine()
{
    QVERIFY(makeImage(file("good.tif")));
    for (const char* const name : {"bad.tif", "notes.txt", "good.tif.aux.xml", "data.xml"}) {
        QFile bad(file(name));
        QVERIFY(bad.open(QIODevice::WriteOnly));
        bad.write("this is no image");
    }
    ServerProcess server(base->path());
    const QStringList onlyGood("/good.tif zwtp=false raxion=true");
    QCOMPARE(treeOf(server.ask(wholeTree)), onlyGood);
    QVERIFY(makeImage(file("second.tif"))); // the folder is looked through again
    QTRY_COMPARE(treeOf(server.ask(wholeTree)).size(), 2);
    QCOMPARE(server.log().count("left out"), 1);
    QVERIFY(server.log().contains("warning: left out /bad.tif: "));
}

QStringList DiscoveryTest::search(ServerProcess& server, const QByteArray& body) const
{
    const ServerAnswer answer =
        server.ask(searchPath, {"Content-Type: application/x-www-form-urlencoded"}, "POST", body);
    QStringList names;
    for (const QJsonValue& entry : answer.json()["results"].toArray()) {
        names.append(entry["name"].toString() + ' ' + entry["decoderName"].toString());
    }
    return answer.header("Content-Type") == "application/json; charset=utf-8"
               ? names
               : QStringList("no JSON");
}

void DiscoveryTest::theUsualSearchFindsStreamedImages()
{
    for (const char* const path : {"a.tif", "b.jp2", "north/c.jp2"}) {
        QVERIFY(makeImage(file(path)));
    }
    ServerProcess server(base->path());
    QStringList found = search(server, usualSearch);
    found.sort();
    QCOMPARE(found, QStringList({"b JP2", "north/c JP2"}));
}

void DiscoveryTest::aSearchKeepsToItsPage()
{
    for (int i = 0; i < 5; ++i) {
        const QString path = file(QString("image%1.tif").arg(i));
        QVERIFY(makeImage(path));
        QFile image(path); // the newest comes first
        QVERIFY(image.open(QIODevice::ReadWrite));
        QVERIFY(image.setFileTime(QDateTime(QDate(2026, 1, 10 - i), QTime(0, 0)),
                                  QFileDevice::FileModificationTime));
    }
    ServerProcess server(base->path());
    QCOMPARE(search(server, R"({"start":1,"maxresults":2})"),
             QStringList({"image1 TIF", "image2 TIF"}));
    QCOMPARE(search(server, R"({"start":4,"maxresults":2})"), QStringList("image4 TIF"));
    QCOMPARE(search(server, R"({"start":9})"), QStringList());
    QCOMPARE(search(server, R"({"start":-3,"maxresults":-1})"), QStringList());
    const ServerAnswer answer = server.ask(searchPath, {}, "POST", R"({"maxresultcount":3})");
    QCOMPARE(answer.json()["resultcount"].toInt(), 3);
}

void DiscoveryTest::aSearchWithoutAPatternFindsAll()
{
    QVERIFY(makeImage(file("a.tif")));
    QVERIFY(makeImage(file("b.jp2")));
    ServerProcess server(base->path());
    QCOMPARE(search(server, "{}").size(), 2);
    QCOMPARE(search(server, R"({"template":{"decoderName":"tif"}})"), QStringList("a TIF"));
}

void DiscoveryTest::whoSearchesForHiddenImagesFindsNone()
{
    QVERIFY(makeImage(file("a.tif")));
    ServerProcess server(base->path());
    QCOMPARE(search(server, R"({"template":{"wmsEnabled":{"_op":"eq","value":false}}})"),
             QStringList());
}

void DiscoveryTest::aSearchThatIsNoObjectIsRefused_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("an array") << QByteArray("[]");
    QTest::newRow("half an object") << QByteArray("{\"start\":");
    QTest::newRow("no JSON") << QByteArray("start=1");
}

void DiscoveryTest::aSearchThatIsNoObjectIsRefused()
{
    QFETCH(QByteArray, body);
    ServerProcess server(base->path());
    const ServerAnswer answer = server.ask(searchPath, {}, "POST", body);
    QCOMPARE(answer.status, 400);
    QCOMPARE(answer.body, QByteArray("the search is no JSON object\n"));
}

QTEST_GUILESS_MAIN(DiscoveryTest)
#include "DiscoveryTest.moc"
