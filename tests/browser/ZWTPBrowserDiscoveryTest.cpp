#include <tests/browser/BrowserPrivates.h>
#include <tests/browser/BrowserStage.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

#include <memory>
#include <vector>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::ProtocolRaxion;
using Gui::ProtocolZWTP;

namespace {

constexpr char discoveryQuery[] =
    "GET /tavro-krs/discovery.dll?request=getkrsinfo&folder=/&format=xml&recursive=true&version=1.0";
constexpr char serviceQuery[] = "GET /tavro-krs/discovery.dll?request=getserviceinfo";

bool asksForServices(const HttpRequest& request)
{
    return request.target.find("getserviceinfo") != std::string::npos;
}

/// Picks an entry of the list of services as a user does.
void pickService(BrowserStage& stage, const QString& name)
{
    auto& combo = stage.find<QComboBox>("serviceNameCombo");
    const int index = combo.findText(name);
    combo.setFocus();
    combo.setCurrentIndex(index > 0 ? index - 1 : index + 1);
    QTest::keyClick(&combo, index > 0 ? Qt::Key_Down : Qt::Key_Up);
    QCOMPARE(combo.currentText(), name);
}

} // namespace

class ZWTPBrowserDiscoveryTest : public QObject
{
    Q_OBJECT
private slots:
    void theRequestGoesOutAsItIs();
    void theHostComesFromWhatIsTyped_data();
    void theHostComesFromWhatIsTyped();
    void theLogNamesTheUrlButNoPassword();
    void aSecureConnectionIsAskedForOnRequest();
    void everyRequestTakesTheSchemeOfTheBox_data();
    void everyRequestTakesTheSchemeOfTheBox();
    void theDialogWaitsForTheReply();
    void aReplyFillsTheTree();
    void eachModeListsWhatItCanUse_data();
    void eachModeListsWhatItCanUse();
    void foldersWithoutImagesAreNotListed();
    void wrappersCountAsTheFolderAroundThem();
    void whatIsUnknownIsPassedOver();
    void aTrailingSlashGoesInHttpModeOnly();
    void iconsAreThoseOfTheLibraryButForFolders();
    void theRootIsExpandedAndItsFirstChildCurrent();
    void aReplyReplacesTheTree();
    void aRootWithoutChildrenLeavesNothingCurrent();
    void theFirstFolderAloneIsTheTree();
    void theServersNumberDecidesOnServices_data();
    void theServersNumberDecidesOnServices();
    void connectStartsFromTheDefaultService();
    void connectLeavesNoTypedServiceBehind();
    void aPickedServiceIsAskedForAndTheListStays();
    void anOldServerEmptiesTheListAfterAPickToo();
    void aServiceNameIsAskedForByAnotherCaller_data();
    void aServiceNameIsAskedForByAnotherCaller();
    void theListOfServicesArrivesUnderAWaitCursorWithTheDialogOfUse();
    void defaultIsCurrentInWhateverCase_data();
    void defaultIsCurrentInWhateverCase();
    void aServiceWithoutANameIsTheDefault();
    void servicesAreFoundAtAnyDepth();
    void aReplyWithoutServicesLeavesTheList();
    void anEmptyListOfServicesEmptiesTheCombo();
    void theServerIsRemembered();
    void theStandardPortIsNotWritten_data();
    void theStandardPortIsNotWritten();
    void elevenServersStayInTheListAndTenAreStored();
    void aFetchedTreeComesFromTheCacheWhileItIsFresh();
    void everyGetPrefersTheCacheAndThePostDoesNot();
    void aStaleTreeIsFetchedAgain();
    void enterInTheServiceNameAsksForThatService();
    void theCacheServesTheNextDialog();
};

void ZWTPBrowserDiscoveryTest::theRequestGoesOutAsItIs()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    QCOMPARE(stage.asked(), QStringList({discoveryQuery}));
    QCOMPARE(QString::fromUtf8(stage.server.requests()[0].header("Host")), stage.address());
    QVERIFY(stage.server.requests()[0].header("Authorization").isNull());
}

void ZWTPBrowserDiscoveryTest::theHostComesFromWhatIsTyped_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("host and port") << "127.0.0.1:%1";
    QTest::newRow("blanks around") << "  127.0.0.1:%1 ";
    QTest::newRow("a scheme") << "http://127.0.0.1:%1";
    QTest::newRow("another scheme") << "https://127.0.0.1:%1";
    QTest::newRow("a path and a query") << "http://127.0.0.1:%1/some/page.html?query=1";
}

void ZWTPBrowserDiscoveryTest::theHostComesFromWhatIsTyped()
{
    QFETCH(QString, typed);
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2"))));
    stage.type("serverNameCombo", typed.arg(stage.server.port()));
    stage.click("connectButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.asked(), QStringList({discoveryQuery}));
    QCOMPARE(stage.treeLines(),
             QStringList({"127.0.0.1 [default] | _ROOT | ", " a.jp2 | /a.jp2 | /a.jp2"}));
}

void ZWTPBrowserDiscoveryTest::theLogNamesTheUrlButNoPassword()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, [](const HttpRequest& request) {
        return HttpReply::data(asksForServices(request) ? serviceList({"a"})
                                                        : discovery("13.0.0.0", ""));
    });
    stage.type("userEdit", "anna");
    stage.type("passwordEdit", "secret");
    stage.type("serverNameCombo", "http://anna:secret@" + stage.address());
    stage.click("connectButton");
    QVERIFY(stage.waitForRequests(2) && stage.comesIdle());
    const QString start = "http://anna@" + stage.address() + "/tavro-krs/discovery.dll?request=";
    QCOMPARE(stage.log,
             QStringList({"0 Discovery URL: " + start +
                              "getkrsinfo&folder=/&format=xml&recursive=true&version=1.0",
                          "0 ServiceInfo URL: " + start + "getserviceinfo"}));
    QCOMPARE(stage.messages.all().filter("debug: "),
             QStringList({"debug: QNetworkReply came from cache: false",
                          "debug: QNetworkReply came from cache: false"}));
}

// The server does not speak TLS, so a secure connection ends with an error, on the same port.
void ZWTPBrowserDiscoveryTest::aSecureConnectionIsAskedForOnRequest()
{
    BrowserStage stage;
    stage.find<QCheckBox>("useSSLCheckBox").setChecked(true);
    stage.server.on(BrowserStage::discoveryPath, HttpReply::reset());
    stage.answers.expectMessage();
    stage.type("serverNameCombo", "127.0.0.1:1");
    stage.click("connectButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.answers.shown.size(), 1);
    QCOMPARE(stage.log.size(), 1);
    QVERIFY(stage.log[0].startsWith("0 Discovery URL: https://127.0.0.1:1/tavro-krs/"));
}

void ZWTPBrowserDiscoveryTest::everyRequestTakesTheSchemeOfTheBox_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<bool>("secure");
    QTest::addColumn<QString>("url");
    for (const bool secure : {false, true}) {
        const QString start = QString(secure ? "https" : "http") + "://127.0.0.1:1";
        const QString discoveryStart = start + "/tavro-krs/discovery.dll?request=";
        const char* const with = secure ? "with" : "without";
        QTest::addRow("the tree %s", with)
            << "serverConnectKRS" << secure
            << discoveryStart + "getkrsinfo&folder=/&format=xml&recursive=true&version=1.0";
        QTest::addRow("the description %s", with)
            << "serverInfo" << secure
            << discoveryStart + "getkrsinfo&folder=/&format=xml&recursive=false";
        QTest::addRow("the services %s", with)
            << "servicesInfo" << secure << discoveryStart + "getserviceinfo";
        QTest::addRow("the catalog %s", with)
            << "serverConnectOrivex" << secure
            << start + "/tavro-orivex/catalog/content/search.json";
    }
}

// Whatever scheme is typed. Nobody listens on that port.
void ZWTPBrowserDiscoveryTest::everyRequestTakesTheSchemeOfTheBox()
{
    QFETCH(QString, slot);
    QFETCH(bool, secure);
    QFETCH(QString, url);
    BrowserStage stage(ProtocolRaxion);
    stage.find<QCheckBox>("useSSLCheckBox").setChecked(secure);
    QStringList sent;
    QObject::connect(&managerOf(stage.dialog()), &QNetworkAccessManager::finished,
                     [&sent](QNetworkReply* reply) { sent << reply->request().url().toString(); });
    stage.type("serverNameCombo", secure ? "http://127.0.0.1:1" : "https://127.0.0.1:1");
    stage.answers.expectMessage();
    QVERIFY(stage.call(qPrintable(slot)));
    QVERIFY(stage.comesIdle());
    QCOMPARE(sent, QStringList({url}));
}

void ZWTPBrowserDiscoveryTest::theDialogWaitsForTheReply()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2"))).held());
    stage.type("serverNameCombo", stage.address());
    stage.type("serviceNameCombo", "typed");
    stage.click("connectButton");
    QVERIFY(stage.isBusy());
    QVERIFY(stage.server.waitForHeld(1));
    QCoreApplication::processEvents();
    QVERIFY(stage.isBusy());
    QCOMPARE(stage.treeLines(), QStringList());
    QCOMPARE(stage.text("serviceNameCombo"), QString());
    stage.server.release();
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.treeLines().size(), 2);
}

void ZWTPBrowserDiscoveryTest::aReplyFillsTheTree()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery(
        "12.0.0.0", "<folders><folder title=\"Coast\"><datasets>" + dataset("/coast/north.jp2") +
                        dataset("/coast/south.zwt") + "</datasets></folder></folders><datasets>" +
                        dataset("/last.jp2") + "</datasets>")));
    QCOMPARE(stage.treeLines(),
             QStringList({"127.0.0.1 [default] | _ROOT | ", " Coast | _FOLDER | ",
                          "  north.jp2 | /coast/north.jp2 | /coast/north.jp2",
                          "  south.zwt | /coast/south.zwt | /coast/south.zwt",
                          " last.jp2 | /last.jp2 | /last.jp2"}));
}

void ZWTPBrowserDiscoveryTest::eachModeListsWhatItCanUse_data()
{
    QTest::addColumn<int>("protocol");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("streaming") << int(ProtocolZWTP) << QStringList({"both", "zwtp"});
    QTest::newRow("http") << int(ProtocolRaxion) << QStringList({"both", "raxion"});
    QTest::newRow("any other lists all that offer something")
        << int(otherProtocol())
        << QStringList({"both", "zwtp", "raxion", "neither", "capitals", "number"});
}

void ZWTPBrowserDiscoveryTest::eachModeListsWhatItCanUse()
{
    QFETCH(int, protocol);
    QFETCH(QStringList, names);
    BrowserStage stage(static_cast<Gui::BrowserProtocol>(protocol));
    QVERIFY(stage.connectToServer(discovery(
        "12.0.0.0",
        "<dataset name='/both'><services zwtp='true' raxion='true'/></dataset>"
        "<dataset name='/zwtp'><services zwtp='true' raxion='false'/></dataset>"
        "<dataset name='/raxion'><services raxion='true'/></dataset>"
        "<dataset name='/neither'><services/></dataset>"
        "<dataset name='/capitals'><services zwtp='TRUE' raxion='True'/></dataset>"
        "<dataset name='/number'><services zwtp='1' raxion=' true'/></dataset>"
        "<dataset name='/without'/>"
        "<dataset name='/deeper'><x><services zwtp='true' raxion='true'/></x></dataset>")));
    QStringList listed;
    for (int i = 0; i < stage.tree().topLevelItem(0)->childCount(); ++i) {
        listed << stage.tree().topLevelItem(0)->child(i)->text(0);
    }
    QCOMPARE(listed, names);
}

void ZWTPBrowserDiscoveryTest::foldersWithoutImagesAreNotListed()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(
        discovery("12.0.0.0",
                  "<folder title='empty'/>"
                  "<folder title='of empty ones'><folder title='a'/><folders><folder title='b'>"
                  "<folder title='c'/></folder></folders></folder>"
                  "<folder title='of what cannot be used'><dataset name='/x'><services "
                  "raxion='true'/></dataset></folder>"
                  "<folder title='kept'><folder title='gone'/>" +
                      dataset("/a.jp2") + "</folder><folder>" + dataset("/b.jp2") + "</folder>")));
    QCOMPARE(stage.treeLines(), QStringList({"127.0.0.1 [default] | _ROOT | ", " kept | _FOLDER | ",
                                             "  a.jp2 | /a.jp2 | /a.jp2", "  | _FOLDER | ",
                                             "  b.jp2 | /b.jp2 | /b.jp2"}));
}

void ZWTPBrowserDiscoveryTest::wrappersCountAsTheFolderAroundThem()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(
        discovery("12.0.0.0", dataset("/1.jp2") + "<datasets><folders>" + dataset("/2.jp2") +
                                  "<folder title='f'><datasets><datasets>" + dataset("/3.jp2") +
                                  "</datasets></datasets></folder></folders></datasets>" +
                                  dataset("/4.jp2"))));
    QCOMPARE(stage.treeLines(),
             QStringList({"127.0.0.1 [default] | _ROOT | ", " 1.jp2 | /1.jp2 | /1.jp2",
                          " 2.jp2 | /2.jp2 | /2.jp2", " f | _FOLDER | ",
                          "  3.jp2 | /3.jp2 | /3.jp2", " 4.jp2 | /4.jp2 | /4.jp2"}));
}

void ZWTPBrowserDiscoveryTest::whatIsUnknownIsPassedOver()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery(
        "12.0.0.0", "text<!-- a comment --><Folder title='x'>" + dataset("/x.jp2") +
                        "</Folder><Dataset name='/y'><services zwtp='true'/></Dataset><other>" +
                        dataset("/z.jp2") + "</other><![CDATA[<dataset>]]>" +
                        "<dataset><services zwtp='true'/></dataset>" + dataset("/a.jp2"))));
    QCOMPARE(stage.treeLines(), QStringList({"127.0.0.1 [default] | _ROOT | ", "  |  | ",
                                             " a.jp2 | /a.jp2 | /a.jp2"}));
}

void ZWTPBrowserDiscoveryTest::aTrailingSlashGoesInHttpModeOnly()
{
    const QByteArray reply = discovery("12.0.0.0", dataset("/folder/mosaic/") + dataset("/two//"));
    BrowserStage http(ProtocolRaxion);
    QVERIFY(http.connectToServer(reply));
    QCOMPARE(http.treeLines(),
             QStringList({"127.0.0.1 [default] | _ROOT | ",
                          " mosaic | /folder/mosaic | /folder/mosaic/", "  | /two/ | /two//"}));
    http.openBrowser(ProtocolZWTP);
    QVERIFY(http.connectToServer(reply));
    QCOMPARE(http.treeLines(),
             QStringList({"127.0.0.1 [default] | _ROOT | ", "  | /folder/mosaic/ | /folder/mosaic/",
                          "  | /two// | /two//"}));
}

void ZWTPBrowserDiscoveryTest::iconsAreThoseOfTheLibraryButForFolders()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(
        discovery("12.0.0.0", "<folder title='f'>" + dataset("/a.jp2") + "</folder>")));
    const auto picture = [&stage](const QString& item) {
        return stage.item(item)->icon(0).pixmap(24).toImage();
    };
    QCOMPARE(picture("127.0.0.1 [default]"), QIcon(":/resources/home.png").pixmap(24).toImage());
    QCOMPARE(picture("a.jp2"), QIcon(":/resources/image.png").pixmap(24).toImage());
    QVERIFY(!picture("a.jp2").isNull());
    QVERIFY(picture("f").isNull());
    QVERIFY(QFile::exists(":/resources/folder.png"));
}

void ZWTPBrowserDiscoveryTest::theRootIsExpandedAndItsFirstChildCurrent()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("13.0.0.0", dataset("/a.jp2") + dataset("/b.jp2"))));
    QVERIFY(stage.tree().topLevelItem(0)->isExpanded());
    QCOMPARE(stage.tree().currentItem(), stage.item("a.jp2"));
    QCOMPARE(stage.text("zwtpCombo"), QString());
    QCOMPARE(stage.text("imageLabel"), QString("No preview"));
}

void ZWTPBrowserDiscoveryTest::aReplyReplacesTheTree()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/b.jp2"))));
    QCOMPARE(stage.treeLines(),
             QStringList({"127.0.0.1 [default] | _ROOT | ", " b.jp2 | /b.jp2 | /b.jp2"}));
}

void ZWTPBrowserDiscoveryTest::aRootWithoutChildrenLeavesNothingCurrent()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", "<folder title='empty'/>")));
    QCOMPARE(stage.treeLines(), QStringList({"127.0.0.1 [default] | _ROOT | "}));
    QVERIFY(!stage.tree().currentItem());
    QCOMPARE(stage.answers.shown, QStringList());

    QVERIFY(stage.connectToServer("<krsinfo/>"));
    QCOMPARE(stage.treeLines(), QStringList({"127.0.0.1 [default] | _ROOT | "}));
    QCOMPARE(stage.answers.shown, QStringList());
}

void ZWTPBrowserDiscoveryTest::theFirstFolderAloneIsTheTree()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer("<krsinfo><folder>" + dataset("/a.jp2") + "</folder><folder>" +
                                  dataset("/b.jp2") + "</folder>" + dataset("/c.jp2") +
                                  "</krsinfo>"));
    QCOMPARE(stage.treeLines(),
             QStringList({"127.0.0.1 [default] | _ROOT | ", " a.jp2 | /a.jp2 | /a.jp2"}));
}

void ZWTPBrowserDiscoveryTest::theServersNumberDecidesOnServices_data()
{
    QTest::addColumn<QByteArray>("build");
    QTest::addColumn<bool>("asks");
    QTest::newRow("the first new one") << QByteArray("13.0.0.0") << true;
    QTest::newRow("a later one") << QByteArray("14.1.22.333") << true;
    QTest::newRow("an old one") << QByteArray("12.99.99.99") << false;
    QTest::newRow("three numbers") << QByteArray("13.0.0") << false;
    QTest::newRow("five numbers") << QByteArray("13.0.0.0.0") << false;
    QTest::newRow("an empty part counts") << QByteArray("13...") << true;
    QTest::newRow("a part that is no number counts as 0") << QByteArray("x.13.13.13") << false;
    QTest::newRow("only the first has to be a number") << QByteArray("13.a.b.c") << true;
    QTest::newRow("none") << QByteArray("") << false;
}

void ZWTPBrowserDiscoveryTest::theServersNumberDecidesOnServices()
{
    QFETCH(QByteArray, build);
    QFETCH(bool, asks);
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, [build](const HttpRequest& request) {
        return HttpReply::data(asksForServices(request) ? serviceList({"one", "default"})
                                                        : discovery(build, dataset("/a.jp2")));
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("connectButton");
    stage.find<QComboBox>("serviceNameCombo").addItem("there before the reply");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.asked(),
             asks ? QStringList({discoveryQuery, serviceQuery}) : QStringList({discoveryQuery}));
    QCOMPARE(stage.entries("serviceNameCombo"),
             asks ? QStringList({"one", "default"}) : QStringList());
    QCOMPARE(stage.text("serviceNameCombo"), QString(asks ? "default" : ""));
}

void ZWTPBrowserDiscoveryTest::connectStartsFromTheDefaultService()
{
    BrowserStage stage;
    stage.find<QComboBox>("serviceNameCombo").addItems({"aerial", "default"});
    QCOMPARE(stage.text("serviceNameCombo"), QString("aerial"));
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    QCOMPARE(stage.asked(), QStringList({discoveryQuery}));
    QCOMPARE(stage.item("a.jp2")->parent()->text(0), QString("127.0.0.1 [default]"));
}

void ZWTPBrowserDiscoveryTest::connectLeavesNoTypedServiceBehind()
{
    BrowserStage stage;
    stage.type("serviceNameCombo", "typed");
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    QCOMPARE(stage.asked(), QStringList({discoveryQuery}));
    QCOMPARE(stage.text("serviceNameCombo"), QString());
}

void ZWTPBrowserDiscoveryTest::aPickedServiceIsAskedForAndTheListStays()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, [](const HttpRequest& request) {
        return HttpReply::data(asksForServices(request) ? serviceList({"default", "Aerial & co"})
                                                        : discovery("13.0.0.0", dataset("/a.jp2")));
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("connectButton");
    QVERIFY(stage.waitForRequests(2) && stage.comesIdle());
    QCOMPARE(stage.text("serviceNameCombo"), QString("default"));

    pickService(stage, "Aerial & co");
    QVERIFY(!stage.isBusy()); // the list closes first
    QVERIFY(stage.waitForRequests(3) && stage.comesIdle());
    QCOMPARE(stage.asked(), QStringList({discoveryQuery, serviceQuery,
                                         QString(discoveryQuery) + "&service=Aerial%20%26%20co"}));
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"default", "Aerial & co"}));
    QCOMPARE(stage.text("serviceNameCombo"), QString("Aerial & co"));
    QCOMPARE(stage.treeLines()[0], QString("127.0.0.1 [Aerial & co] | _ROOT | "));

    pickService(stage, "default");
    QVERIFY(stage.waitForRequests(4) && stage.comesIdle());
    QCOMPARE(stage.lastAsked(), QString(discoveryQuery));
    QCOMPARE(stage.entries("serviceNameCombo").size(), 2);
}

void ZWTPBrowserDiscoveryTest::anOldServerEmptiesTheListAfterAPickToo()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2"))));
    stage.type("serverNameCombo", stage.address());
    stage.find<QComboBox>("serviceNameCombo").addItems({"default", "aerial"});
    pickService(stage, "aerial");
    QVERIFY(stage.waitForRequests(1) && stage.comesIdle());
    QCOMPARE(stage.asked(), QStringList({QString(discoveryQuery) + "&service=aerial"}));
    QCOMPARE(stage.treeLines()[0], QString("127.0.0.1 [aerial] | _ROOT | "));
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList());
    QCOMPARE(stage.text("serviceNameCombo"), QString());
}

void ZWTPBrowserDiscoveryTest::aServiceNameIsAskedForByAnotherCaller_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("label");
    QTest::newRow("none") << ""
                          << ""
                          << "default";
    QTest::newRow("default with blanks") << "  default  "
                                         << ""
                                         << "default";
    QTest::newRow("the case counts") << "Default"
                                     << "&service=Default"
                                     << "Default";
    QTest::newRow("blanks around are dropped") << " aerial "
                                               << "&service=aerial"
                                               << "aerial";
    QTest::newRow("marks are encoded") << "a=b&c#d"
                                       << "&service=a%3Db%26c%23d"
                                       << "a=b&c#d";
    QTest::newRow("other letters") << "ä"
                                   << "&service=%C3%A4"
                                   << "ä";
    QTest::newRow("a plus stays") << "a+b"
                                  << "&service=a+b"
                                  << "a+b";
}

void ZWTPBrowserDiscoveryTest::aServiceNameIsAskedForByAnotherCaller()
{
    QFETCH(QString, typed);
    QFETCH(QString, item);
    QFETCH(QString, label);
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2"))));
    stage.type("serverNameCombo", stage.address());
    stage.type("serviceNameCombo", typed);
    QVERIFY(stage.call("serverConnectKRS"));
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.asked(), QStringList({discoveryQuery + item}));
    QCOMPARE(stage.treeLines()[0], "127.0.0.1 [" + label + "] | _ROOT | ");
    QCOMPARE(stage.text("serviceNameCombo"), QString()); // an old server has none
}

void ZWTPBrowserDiscoveryTest::theListOfServicesArrivesUnderAWaitCursorWithTheDialogOfUse()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, [](const HttpRequest& request) {
        return asksForServices(request) ? HttpReply::data(serviceList({"default"})).held()
                                        : HttpReply::data(discovery("13.0.0.0", ""));
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("connectButton");
    QVERIFY(comesTrue([&stage] { return stage.dialog().isEnabled(); }));
    QVERIFY(stage.server.waitForHeld(1));
    QVERIFY(QApplication::overrideCursor());
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QCOMPARE(stage.treeLines(), QStringList({"127.0.0.1 [default] | _ROOT | "}));
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList());
    stage.server.release();
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"default"}));
}

void ZWTPBrowserDiscoveryTest::defaultIsCurrentInWhateverCase_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("current");
    QTest::newRow("in the middle") << QStringList({"a", "default", "b"}) << "default";
    QTest::newRow("in capitals") << QStringList({"a", "DEFAULT"}) << "DEFAULT";
    QTest::newRow("none") << QStringList({"aerial", "b"}) << "aerial";
    QTest::newRow("a part of a name is none") << QStringList({"a", "defaults"}) << "a";
}

void ZWTPBrowserDiscoveryTest::defaultIsCurrentInWhateverCase()
{
    QFETCH(QStringList, names);
    QFETCH(QString, current);
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data(serviceList(names)));
    stage.type("serverNameCombo", stage.address());
    const QSignalSpy changes(&stage.find<QComboBox>("serviceNameCombo"),
                             SIGNAL(currentIndexChanged(int)));
    QVERIFY(stage.call("servicesInfo"));
    QVERIFY(stage.isBusy() && stage.comesIdle());
    QCOMPARE(changes.last()[0].toInt(), 0); // the way to "default" is not told
    QCOMPARE(stage.entries("serviceNameCombo"), names);
    QCOMPARE(stage.text("serviceNameCombo"), current);
    QCoreApplication::processEvents();
    QCOMPARE(stage.asked(), QStringList({serviceQuery})); // no discovery of its own
}

void ZWTPBrowserDiscoveryTest::aServiceWithoutANameIsTheDefault()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data("<serviceinfo><services><service name='a'/><service/>"
                                    "<service name=''/></services></serviceinfo>"));
    stage.type("serverNameCombo", stage.address());
    QVERIFY(stage.call("servicesInfo"));
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"a", "default", "default"}));
}

void ZWTPBrowserDiscoveryTest::servicesAreFoundAtAnyDepth()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data("<reply><serviceinfo/><serverinfo build='13.0.0.0' "
                                    "raxion.dll='x' onlineresource='y'/><x><services><group>"
                                    "<service name='a'/></group><service name='b'/></services>"
                                    "<services><service name='c'/></services></x></reply>"));
    stage.type("serverNameCombo", stage.address());
    QVERIFY(stage.call("servicesInfo"));
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"a", "b"}));
}

void ZWTPBrowserDiscoveryTest::aReplyWithoutServicesLeavesTheList()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data("<serviceinfo/>"));
    stage.type("serverNameCombo", stage.address());
    stage.find<QComboBox>("serviceNameCombo").addItems({"a", "b"});
    QVERIFY(stage.call("servicesInfo"));
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"a", "b"}));
    QCOMPARE(stage.answers.shown, QStringList());
}

void ZWTPBrowserDiscoveryTest::anEmptyListOfServicesEmptiesTheCombo()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data(serviceList({})));
    stage.type("serverNameCombo", stage.address());
    stage.type("serviceNameCombo", "typed");
    QVERIFY(stage.call("servicesInfo"));
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList());
    QCOMPARE(stage.text("serviceNameCombo"), QString());
}

void ZWTPBrowserDiscoveryTest::theServerIsRemembered()
{
    BrowserStage stage;
    QCOMPARE(stage.entries("serverNameCombo"), QStringList());
    const QString typed = "http://" + stage.address() + "/page";
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2"))));
    stage.type("serverNameCombo", typed);
    stage.click("connectButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.entries("serverNameCombo"),
             QStringList({"http://localhost:8460/", stage.address()}));
    QCOMPARE(stage.text("serverNameCombo"), typed);
    stage.click("connectButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.entries("serverNameCombo").size(), 2);

    stage.openBrowser(ProtocolRaxion);
    QCOMPARE(stage.entries("serverNameCombo"), QStringList({stage.address()}));
}

void ZWTPBrowserDiscoveryTest::theStandardPortIsNotWritten_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("entry");
    QTest::newRow("no port") << "images.example"
                             << "images.example";
    QTest::newRow("80") << "images.example:80"
                        << "images.example";
    QTest::newRow("another") << "images.example:443"
                             << "images.example:443";
}

// The replies come from the cache, so no such host is asked.
void ZWTPBrowserDiscoveryTest::theStandardPortIsNotWritten()
{
    QFETCH(QString, host);
    QFETCH(QString, entry);
    BrowserStage stage;
    stage.server.on(
        BrowserStage::discoveryPath,
        HttpReply::data(discovery("12.0.0.0", "")).header("Cache-Control", "max-age=10000"));
    // The loopback plays proxy for names that nobody has.
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, "127.0.0.1", quint16(stage.server.port())));
    stage.server.onOther(
        [](const HttpRequest&) { return HttpReply::data(discovery("12.0.0.0", "")); });
    stage.type("serverNameCombo", host);
    stage.click("connectButton");
    const bool idle = stage.comesIdle();
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    QVERIFY(idle);
    QCOMPARE(stage.answers.shown, QStringList());
    QCOMPARE(stage.entries("serverNameCombo"), QStringList({"http://localhost:8460/", entry}));
    stage.closeBrowser();
    QCOMPARE(settings().value("ZWTPChooser/Servers").toStringList(), QStringList({entry}));
}

void ZWTPBrowserDiscoveryTest::elevenServersStayInTheListAndTenAreStored()
{
    BrowserStage stage;
    std::vector<std::unique_ptr<HttpTestServer>> servers;
    QStringList entries;
    for (int i = 0; i < 11; ++i) {
        servers.push_back(std::make_unique<HttpTestServer>());
        servers.back()->on(BrowserStage::discoveryPath, HttpReply::data(discovery("12.0.0.0", "")));
        const QString host = QStringLiteral("127.0.0.1:%1").arg(servers.back()->port());
        entries.prepend(host);
        stage.type("serverNameCombo", host);
        stage.click("connectButton");
        QVERIFY(stage.comesIdle());
    }
    QCOMPARE(stage.entries("serverNameCombo"), QStringList({"http://localhost:8460/"}) + entries);
    stage.closeBrowser();
    QCOMPARE(settings().value("ZWTPChooser/Servers").toStringList(), entries.mid(0, 10));
}

void ZWTPBrowserDiscoveryTest::aFetchedTreeComesFromTheCacheWhileItIsFresh()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2")), "text/xml")
                        .header("Cache-Control", "max-age=10000")
                        .header("Last-Modified", "Mon, 01 Jan 2001 00:00:00 GMT"));
    QVERIFY(stage.connectToServer());
    QVERIFY(stage.connectToServer());
    QCOMPARE(stage.asked(), QStringList({discoveryQuery}));
    QCOMPARE(stage.messages.all().filter("debug: "),
             QStringList({"debug: QNetworkReply came from cache: false",
                          "debug: QNetworkReply came from cache: true"}));
    QCOMPARE(stage.treeLines().size(), 2);
}

void ZWTPBrowserDiscoveryTest::everyGetPrefersTheCacheAndThePostDoesNot()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    QStringList sent;
    QObject::connect(&managerOf(stage.dialog()), &QNetworkAccessManager::finished,
                     [&sent](QNetworkReply* reply) {
                         const QVariant control =
                             reply->request().attribute(QNetworkRequest::CacheLoadControlAttribute);
                         const bool prefers = control == QVariant(QNetworkRequest::PreferCache);
                         sent << reply->url().path() + (prefers             ? " cache"
                                                        : control.isValid() ? " other"
                                                                            : " none");
                     });
    for (const char* slot :
         {"serverConnectKRS", "serverInfo", "servicesInfo", "serverConnectOrivex"}) {
        stage.answers.expect([](QDialog& box) { box.reject(); });
        QVERIFY(stage.call(slot));
        QVERIFY(stage.comesIdle());
    }
    stage.clickItem("a.jp2");
    QVERIFY(comesTrue([&sent] { return sent.size() == 6; }));
    sent.sort();
    QCOMPARE(sent, QStringList({"/tavro-krs/discovery.dll cache", "/tavro-krs/discovery.dll cache",
                                "/tavro-krs/discovery.dll cache", "/tavro-krs/tavro/raxion cache",
                                "/tavro-orivex/catalog/content/search.json none",
                                "/zwtp/raxion.dll?image cache"}));
}

void ZWTPBrowserDiscoveryTest::enterInTheServiceNameAsksForThatService()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, [](const HttpRequest& request) {
        return HttpReply::data(asksForServices(request) ? serviceList({"default", "Aerial"})
                                                        : discovery("13.0.0.0", ""));
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("connectButton");
    QVERIFY(stage.waitForRequests(2) && stage.comesIdle());
    stage.type("serviceNameCombo", "Aerial");
    stage.find<QComboBox>("serviceNameCombo").setFocus();
    QTest::keyClick(stage.dialog().windowHandle(), Qt::Key_Return);
    QVERIFY(stage.waitForRequests(3) && stage.comesIdle());
    QCOMPARE(stage.asked().mid(2), QStringList({QString(discoveryQuery) + "&service=Aerial"}));
    QCOMPARE(stage.treeLines()[0], QString("127.0.0.1 [Aerial] | _ROOT | "));
}

void ZWTPBrowserDiscoveryTest::aStaleTreeIsFetchedAgain()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2")), "text/xml")
                        .header("Expires", "Mon, 01 Jan 2001 00:00:00 GMT")
                        .header("Cache-Control", "no-store"));
    QVERIFY(stage.connectToServer());
    QVERIFY(stage.connectToServer());
    QCOMPARE(stage.asked(), QStringList({discoveryQuery, discoveryQuery}));
}

void ZWTPBrowserDiscoveryTest::theCacheServesTheNextDialog()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2")), "text/xml")
                        .header("Cache-Control", "max-age=10000"));
    QVERIFY(stage.connectToServer());
    stage.openBrowser(ProtocolZWTP);
    QVERIFY(stage.connectToServer());
    QCOMPARE(stage.asked(), QStringList({discoveryQuery}));
    QCOMPARE(stage.treeLines().size(), 2);
}

BROWSER_TEST_MAIN(ZWTPBrowserDiscoveryTest)

#include "ZWTPBrowserDiscoveryTest.moc"
