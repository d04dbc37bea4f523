#include <corvane/browser/JsonReader.h>
#include <tests/browser/BrowserStage.h>

#include <QComboBox>
#include <QTreeWidget>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;

namespace {

constexpr char catalogPath[] = "/tavro-orivex/catalog/content/search.json";
constexpr char body[] =
    "{\"maxresults\":500,\"start\":0,\"profile\":\"tvc-brief\",\"orderby\":[\"class asc\","
    "\"registrationDate desc\"],\"maxresultcount\":501,\"template\":{\"wmsEnabled\":{\"_op\":"
    "\"eq\",\"value\":true,\"type\":\"boolean\"},\"decoderName\":[\"ZWT\",\"JP2\"],\"class\":"
    "\"com.tavro.rsp.lexon.model.imagery.ImageReference\",\"nameQualifier\":"
    "\"lexon://coverages\"}}";

bool search(BrowserStage& stage)
{
    stage.type("serverNameCombo", stage.address());
    return stage.call("serverConnectOrivex") && stage.isBusy() && stage.comesIdle();
}

} // namespace

class ZWTPBrowserCatalogTest : public QObject
{
    Q_OBJECT
private slots:
    void theSearchGoesOutAsItIs();
    void credentialsGoOutInAdvance_data();
    void credentialsGoOutInAdvance();
    void aSearchIsNeverServedFromTheCache();
    void nothingIsLogged();
    void noControlStartsIt();
    void theTypeOfTheReplyIsTested_data();
    void theTypeOfTheReplyIsTested();
    void aReplyThatTheReaderRefusesChangesNothing_data();
    void aReplyThatTheReaderRefusesChangesNothing();
    void theHostIsNotRemembered();
};

void ZWTPBrowserCatalogTest::theSearchGoesOutAsItIs()
{
    BrowserStage stage;
    stage.server.on(catalogPath, HttpReply::data("{}", "application/json"));
    QVERIFY(search(stage));
    QCOMPARE(stage.asked(), QStringList({QString("POST ") + catalogPath}));
    const HttpRequest request = stage.server.requests()[0];
    QCOMPARE(QString::fromStdString(request.body), QString(body));
    QCOMPARE(request.header("Content-Type"), QByteArray("application/x-www-form-urlencoded"));
    QCOMPARE(stage.answers.shown, QStringList());
}

void ZWTPBrowserCatalogTest::credentialsGoOutInAdvance_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::newRow("both") << "anna"
                          << "secret";
    QTest::newRow("a lone colon") << ""
                                  << "";
    QTest::newRow("no password") << "anna"
                                 << "";
    QTest::newRow("other letters and places of arguments") << "%2ä"
                                                           << "%1:ß";
}

void ZWTPBrowserCatalogTest::credentialsGoOutInAdvance()
{
    QFETCH(QString, user);
    QFETCH(QString, password);
    BrowserStage stage;
    stage.server.on(catalogPath, HttpReply::data("{}", "application/json"));
    stage.type("userEdit", user);
    stage.type("passwordEdit", password);
    QVERIFY(search(stage));
    QCOMPARE(stage.server.requests()[0].header("Authorization"),
             "Basic " + (user + ":" + password).toUtf8().toBase64());
}

void ZWTPBrowserCatalogTest::aSearchIsNeverServedFromTheCache()
{
    BrowserStage stage;
    stage.server.on(
        catalogPath,
        HttpReply::data("{}", "application/json").header("Cache-Control", "max-age=10000"));
    QVERIFY(search(stage));
    QVERIFY(search(stage));
    QCOMPARE(stage.server.requestCount(), 2);
    QCOMPARE(stage.messages.all().filter("came from cache"),
             QStringList({"debug: QNetworkReply came from cache: false",
                          "debug: QNetworkReply came from cache: false"}));
}

void ZWTPBrowserCatalogTest::nothingIsLogged()
{
    BrowserStage stage;
    stage.server.on(catalogPath, HttpReply::data("{}", "application/json"));
    QVERIFY(search(stage));
    QCOMPARE(stage.log, QStringList());
}

void ZWTPBrowserCatalogTest::noControlStartsIt()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    stage.answers.expectMessage();
    stage.click("infoButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.asked().filter("POST"), QStringList());
}

void ZWTPBrowserCatalogTest::theTypeOfTheReplyIsTested_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<bool>("taken");
    QTest::newRow("JSON") << QByteArray("application/json") << true;
    QTest::newRow("capitals and a charset")
        << QByteArray("APPLICATION/JSON; Charset=UTF-8") << true;
    QTest::newRow("text") << QByteArray("text/plain") << false;
    QTest::newRow("HTML") << QByteArray("text/html") << false;
    QTest::newRow("none") << QByteArray() << false;
}

void ZWTPBrowserCatalogTest::theTypeOfTheReplyIsTested()
{
    QFETCH(QByteArray, type);
    QFETCH(bool, taken);
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    const QStringList tree = stage.treeLines();
    HttpReply reply;
    reply.body = "{\"results\":[]}";
    if (!type.isEmpty()) {
        reply.header("Content-Type", type);
    }
    stage.server.on(catalogPath, reply);
    if (!taken) {
        stage.answers.expectMessage();
    }
    QVERIFY(search(stage));
    QCOMPARE(stage.answers.shown,
             taken ? QStringList()
                   : QStringList({"warning TAVRO ORIVEX Browser Error: The response was not a JSON "
                                  "document. [OK] on ZWTPBrowserClass"}));
    QCOMPARE(stage.treeLines(), tree);
}

void ZWTPBrowserCatalogTest::aReplyThatTheReaderRefusesChangesNothing_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("a list of images")
        << QByteArray("{\"results\":[{\"name\":\"coast\",\"decoderName\":\"ZWT\"}]}");
    QTest::newRow("an empty object") << QByteArray("{}");
    QTest::newRow("a word that is no object") << QByteArray("true");
    QTest::newRow("null") << QByteArray("null");
    QTest::newRow("no JSON") << QByteArray("<html/>");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("bytes that are no UTF-8") << QByteArray("\xff\xfe{\x80");
    QTest::newRow("a hundred thousand brackets") << QByteArray(100000, '[');
}

void ZWTPBrowserCatalogTest::aReplyThatTheReaderRefusesChangesNothing()
{
    QFETCH(QByteArray, reply);
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    const QStringList tree = stage.treeLines();
    stage.server.on(catalogPath, HttpReply::data(reply, "application/json"));
    QVERIFY(search(stage));
    QCOMPARE(stage.answers.shown, QStringList());
    QCOMPARE(stage.treeLines(), tree);
}

void ZWTPBrowserCatalogTest::theHostIsNotRemembered()
{
    BrowserStage stage;
    stage.server.on(catalogPath, HttpReply::data("{}", "application/json"));
    QVERIFY(search(stage));
    QCOMPARE(stage.entries("serverNameCombo"), QStringList());
}

BROWSER_TEST_MAIN(ZWTPBrowserCatalogTest)

#include "ZWTPBrowserCatalogTest.moc"
