#include <tests/browser/BrowserStage.h>

#include <corvane/browser/JsonReader.h>
#include <corvane/browser/JsonReader_p.h>

#include <QComboBox>
#include <QTreeWidget>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;

// The list as it shows once the reader tells marks and digits apart: this program is linked with
// the dialog, the reader and the codes of Latin-1.
namespace JsonReader {

signed char codeOf(QChar character)
{
    return static_cast<signed char>(character.toLatin1());
}

} // namespace JsonReader

namespace {

constexpr char catalogPath[] = "/tavro-orivex/catalog/content/search.json";

bool search(BrowserStage& stage, const QByteArray& reply)
{
    stage.server.on(catalogPath, HttpReply::data(reply, "application/json"));
    stage.type("serverNameCombo", stage.address());
    return stage.call("serverConnectOrivex") && stage.isBusy() && stage.comesIdle();
}

} // namespace

class CatalogListTest : public QObject
{
    Q_OBJECT
private slots:
    void imagesAreListedFlatInTheServersOrder();
    void aPartThatIsMissingIsLeftOut();
    void anotherSearchReplacesTheTree();
    void resultsThatAreMissingLeaveABareRoot();
    void anEmptyObjectLeavesTheTree();
    void theListIsNeitherExpandedNorCurrentNorRemembered();
    void anImageOfTheListIsPreviewedOnTheOldPath();
};

void CatalogListTest::imagesAreListedFlatInTheServersOrder()
{
    BrowserStage stage;
    QVERIFY(search(stage, "{\"count\":2,\"results\":[{\"name\":\"west/coast\",\"decoderName\":"
                          "\"ZWT\",\"other\":1},{\"decoderName\":\"JP2\",\"name\":\"\u00e4\"}]}"));
    QCOMPARE(stage.treeLines(),
             QStringList({"127.0.0.1 | _ROOT | ", " /west/coast.zwt | /west/coast.zwt | ",
                          " /\u00e4.jp2 | /\u00e4.jp2 | "}));
    const auto picture = [&stage](const QString& item) {
        return stage.item(item)->icon(0).pixmap(24).toImage();
    };
    QCOMPARE(picture("127.0.0.1"), QIcon(":/resources/home.png").pixmap(24).toImage());
    QCOMPARE(picture("/west/coast.zwt"), QIcon(":/resources/image.png").pixmap(24).toImage());
}

void CatalogListTest::aPartThatIsMissingIsLeftOut()
{
    BrowserStage stage;
    QVERIFY(search(stage, "{\"results\":[{\"name\":\"a\"},{\"decoderName\":\"ZWT\"},{},true]}"));
    QCOMPARE(stage.treeLines(), QStringList({"127.0.0.1 | _ROOT | ", " /a. | /a. | ",
                                             " /.zwt | /.zwt | ", " /. | /. | ", " /. | /. | "}));
}

void CatalogListTest::anotherSearchReplacesTheTree()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    QVERIFY(search(stage, "{\"results\":[{\"name\":\"b\",\"decoderName\":\"ZWT\"}]}"));
    QCOMPARE(stage.treeLines(), QStringList({"127.0.0.1 | _ROOT | ", " /b.zwt | /b.zwt | "}));
    QVERIFY(search(stage, "{\"results\":[{\"name\":\"c\",\"decoderName\":\"ZWT\"}]}"));
    QCOMPARE(stage.treeLines(), QStringList({"127.0.0.1 | _ROOT | ", " /c.zwt | /c.zwt | "}));
}

void CatalogListTest::resultsThatAreMissingLeaveABareRoot()
{
    BrowserStage stage;
    QVERIFY(search(stage, "{\"count\":0}"));
    QCOMPARE(stage.treeLines(), QStringList({"127.0.0.1 | _ROOT | "}));
}

void CatalogListTest::anEmptyObjectLeavesTheTree()
{
    BrowserStage stage;
    QVERIFY(search(stage, "{\"results\":[{\"name\":\"b\",\"decoderName\":\"ZWT\"}]}"));
    for (const char* reply : {"{}", "[]", "{\"results\":"}) {
        QVERIFY(search(stage, reply));
        QCOMPARE(stage.treeLines().size(), 2);
    }
    QCOMPARE(stage.answers.shown, QStringList());
}

void CatalogListTest::theListIsNeitherExpandedNorCurrentNorRemembered()
{
    BrowserStage stage;
    stage.find<QComboBox>("serviceNameCombo").addItems({"default", "aerial"});
    QVERIFY(search(stage, "{\"results\":[{\"name\":\"b\",\"decoderName\":\"ZWT\"}]}"));
    QVERIFY(!stage.tree().topLevelItem(0)->isExpanded());
    QVERIFY(!stage.tree().currentItem());
    QCOMPARE(stage.entries("serverNameCombo"), QStringList());
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"default", "aerial"}));
}

void CatalogListTest::anImageOfTheListIsPreviewedOnTheOldPath()
{
    BrowserStage stage;
    QVERIFY(search(stage, "{\"results\":[{\"name\":\"b\",\"decoderName\":\"ZWT\"}]}"));
    stage.type("serviceNameCombo", "default");
    stage.tree().expandAll();
    stage.clickItem("/b.zwt");
    QVERIFY(stage.waitForRequests(3));
    QCOMPARE(stage.text("zwtpCombo"), "zwtp://" + stage.address() + "/b.zwt");
    QCOMPARE(stage.asked().filter("GET /zwtp/raxion.dll%3Fimage?cache=true&layers=/b.zwt&").size(),
             1);
}

BROWSER_TEST_MAIN(CatalogListTest)

#include "CatalogListTest.moc"
