#include <tests/browser/BrowserStage.h>
#include <tests/support/Fetching.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPixmap>
#include <QTimer>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::ProtocolRaxion;
using Gui::ProtocolZWTP;

namespace {

constexpr char oldPath[] = "/zwtp/raxion.dll%3Fimage";
constexpr char askForCredentials[] =
    "warning Authentication Error: This server requires authentication. Please enter your "
    "credentials. [OK] on ZWTPBrowserClass";

bool asksForDetails(const HttpRequest& request)
{
    return request.target.find("request=dsinfo") != std::string::npos;
}

/// A browser that is connected to a server of this build, with one image clicked away from.
class DatasetStage : public BrowserStage
{
public:
    explicit DatasetStage(const QByteArray& build, const QByteArray& name = "/coast/north.jp2",
                          Gui::BrowserProtocol protocol = ProtocolZWTP)
        : BrowserStage(protocol)
    {
        server.on(discoveryPath, [build, name](const HttpRequest& request) {
            const bool services = request.target.find("getserviceinfo") != std::string::npos;
            return HttpReply::data(services ? serviceList({"default", "Aerial"})
                                            : discovery(build, dataset(name) + dataset("/b.jp2")));
        });
        const int requests = build == "13.0.0.0" ? 2 : 1; // a new server tells its services
        isConnected = connectToServer() && waitForRequests(requests) && comesIdle();
        connected = requests;
        messages.clear();
        log.clear();
    }
    /// Answers for pictures and details.
    void answer(const HttpReply& picture, const HttpReply& details)
    {
        server.on(imagePath, [picture, details](const HttpRequest& request) {
            return asksForDetails(request) ? details : picture;
        });
        server.on(oldPath, picture);
    }
    /// What was asked since the connection, in the order of the alphabet: two connections race.
    QStringList requests() const
    {
        QStringList lines = asked().mid(connected);
        lines.sort();
        return lines;
    }
    /// Clicks and waits for both replies.
    bool look(const QString& item)
    {
        const int before = messages.all().filter("came from cache").size();
        clickItem(item);
        return comesTrue([this, before] {
            return messages.all().filter("came from cache").size() == before + 2;
        });
    }
    QString size() // as the picture is asked for
    {
        const auto& label = find<QLabel>("imageLabel");
        return QStringLiteral("&sizex=%1&sizey=%2").arg(label.width() - 2).arg(label.height() - 2);
    }
    QStringList details()
    {
        QStringList texts;
        for (const char* name :
             {"srsCode", "dimensions", "topLeftX", "topLeftY", "bottomRightX", "bottomRightY",
              "cellSize", "cellType", "bands", "colorSpace", "opacity", "diskSize"})
        {
            texts << text(name);
        }
        return texts;
    }
    /// Whether a description is being read.
    bool isDescribing() { return dialog().findChild<QObject*>("detailsTurns") != nullptr; }
    QSize picture() { return find<QLabel>("imageLabel").pixmap(Qt::ReturnByValue).size(); }

    bool isConnected = false;
    int connected = 0; // requests
};

HttpReply picture(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    return HttpReply::data(encodedImage(image), "image/png");
}

const QByteArray everything =
    "<info><DSINFO width='100' height='200' layers='x' colorspace='RGB'/>"
    "<COORDSPACE epsg='32633' units='Meters'/>"
    "<BBOX cellsizeX='0.5' cellsizeY='-0.25' tlX='500000' tlY='4000000.1234567' brX='500050' "
    "brY='3999950'/><LAYER celltype='UINT8'/><Bands num='3' HasAllOpacity='false'/></info>";

constexpr int leastTurns = 90; // the reading takes a hundred, at two tokens for each element

QByteArray longDescription(const QByteArray& dataset)
{
    return "<info><LAYER celltype='first'/>" +
           QByteArray("<LAYER celltype='more'/>").repeated(200000) + '<' + dataset + "/></info>";
}

const QStringList everythingShown = {"EPSG:32633",
                                     "100 x 200",
                                     "500000.000000",
                                     "4000000.123457",
                                     "500050.000000",
                                     "3999950.000000",
                                     "0.500000 , -0.250000 (Meters)",
                                     "UINT8",
                                     "3",
                                     "RGB",
                                     "false",
                                     "58.59 KB"};

} // namespace

class ZWTPBrowserDatasetTest : public QObject
{
    Q_OBJECT
private slots:
    void theRequestsGoOutAsTheyAre_data();
    void theRequestsGoOutAsTheyAre();
    void theRequestsAreLogged();
    void theSchemeIsThatOfTheBoxInBothModes_data();
    void theSchemeIsThatOfTheBoxInBothModes();
    void thePictureIsAskedForAtTheLabelsSize();
    void withoutThePreviewNothingIsAskedFor();
    void thePreviewAndTheDetailsAreShown();
    void theUserIsNotHeldUp();
    void aLongDescriptionIsReadBetweenOtherEvents();
    void aLongDescriptionDoesNotReplaceALaterOne();
    void theLabelTellsWhatFailed_data();
    void theLabelTellsWhatFailed();
    void whatIsNoPictureIsLogged();
    void aPictureBeyondReasonIsNotDecoded();
    void aLabelTakesNoTextForMarkup();
    void anOldServerGetsItsPictureAndNoDetails();
    void aHostThatIsNoServerLeavesThePreviewWaiting();
    void theDetailsAreShownAsTold_data();
    void theDetailsAreShownAsTold();
    void sidesAreGroupedAsTheUserWritesThem();
    void whatIsNoDescriptionLeavesTheFields_data();
    void whatIsNoDescriptionLeavesTheFields();
    void aDescriptionOverwritesAllFields();
    void theReplyThatComesLastIsShown();
    void clickingBackAndForthCostsNothing();
    void theDetailsAskForCredentialsAndThePictureDoesNot();
};

void ZWTPBrowserDatasetTest::theRequestsGoOutAsTheyAre_data()
{
    QTest::addColumn<QByteArray>("build");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("service");
    QTest::addColumn<QStringList>("requests");
    const QString path = "GET /tavro-krs/tavro/raxion?";
    const QByteArray north = "/coast/north.jp2";
    QTest::newRow("a new server")
        << QByteArray("13.0.0.0") << north << "north.jp2"
        << "default"
        << QStringList({path + "request=dsinfo&layers=/coast/north.jp2&verbose=true",
                        path + "request=image&cache=true&layers=/coast/north.jp2%1"});
    QTest::newRow("default in capitals")
        << QByteArray("13.0.0.0") << north << "north.jp2"
        << "DEFAULT"
        << QStringList({path + "request=dsinfo&layers=/coast/north.jp2&verbose=true",
                        path + "request=image&cache=true&layers=/coast/north.jp2%1"});
    QTest::newRow("a named service keeps its case")
        << QByteArray("13.0.0.0") << north << "north.jp2"
        << "Aerial 2"
        << QStringList(
               {path + "service=Aerial%202&request=dsinfo&layers=/coast/north.jp2&verbose=true",
                path + "service=Aerial%202&request=image&cache=true&layers=/coast/north.jp2%1"});
    QTest::newRow("an empty service is an empty item")
        << QByteArray("13.0.0.0") << north << "north.jp2"
        << ""
        << QStringList({path + "service=&request=dsinfo&layers=/coast/north.jp2&verbose=true",
                        path + "service=&request=image&cache=true&layers=/coast/north.jp2%1"});
    QTest::newRow("an old server")
        << QByteArray("12.0.0.0") << north << "north.jp2"
        << "default"
        << QStringList({path + "request=dsinfo&layers=/coast/north.jp2&verbose=true",
                        QString("GET ") + oldPath + "?cache=true&layers=/coast/north.jp2%1"});
    QTest::newRow("an old server and a service")
        << QByteArray("13.0.0") << north << "north.jp2"
        << "Aerial"
        << QStringList({path + "service=Aerial&request=dsinfo&layers=/coast/north.jp2&verbose=true",
                        QString("GET ") + oldPath + "?cache=true&layers=/coast/north.jp2%1"});
    QTest::newRow("characters that a query spells")
        << QByteArray("13.0.0.0") << QByteArray("/a b/ä#&amp;=+?.jp2") << "ä#&=+?.jp2"
        << "default"
        << QStringList({path + "request=dsinfo&layers=/a%20b/%C3%A4%23%26%3D+?.jp2&verbose=true",
                        path + "request=image&cache=true&layers=/a%20b/%C3%A4%23%26%3D+?.jp2%1"});
}

void ZWTPBrowserDatasetTest::theRequestsGoOutAsTheyAre()
{
    QFETCH(QByteArray, build);
    QFETCH(QByteArray, name);
    QFETCH(QString, item);
    QFETCH(QString, service);
    QFETCH(QStringList, requests);
    DatasetStage stage(build, name);
    QVERIFY(stage.isConnected);
    stage.answer(picture(10, 10), HttpReply::data(everything));
    stage.type("serviceNameCombo", service);
    requests[1].replace("%1", stage.size());
    QVERIFY(stage.look(item));
    QCOMPARE(stage.requests(), requests);
}

void ZWTPBrowserDatasetTest::theRequestsAreLogged()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(10, 10), HttpReply::data(everything));
    stage.type("serverNameCombo", "http://anna:secret@" + stage.address());
    const QString query = "request=image&cache=true&layers=/coast/north.jp2" + stage.size();
    QVERIFY(stage.look("north.jp2"));
    const QString start = "http://anna@" + stage.address() + "/tavro-krs/tavro/raxion?";
    QCOMPARE(stage.log, QStringList({"0 Preview Image URL: " + start + query,
                                     "0 DsInfo URL: " + start +
                                         "request=dsinfo&layers=/coast/north.jp2&verbose=true"}));
    QStringList lines = stage.messages.all().filter("debug: ");
    QCOMPARE(lines.takeFirst(), "debug: " + query);
    lines.sort();
    QCOMPARE(lines, QStringList({"debug: Image request Url: " + start + query,
                                 "debug: QNetworkReply came from cache: false",
                                 "debug: QNetworkReply came from cache: false"}));
}

void ZWTPBrowserDatasetTest::theSchemeIsThatOfTheBoxInBothModes_data()
{
    QTest::addColumn<int>("protocol");
    QTest::addColumn<bool>("secure");
    QTest::addColumn<QString>("scheme");
    QTest::newRow("streaming") << int(ProtocolZWTP) << false << "http";
    QTest::newRow("streaming, secure") << int(ProtocolZWTP) << true << "https";
    QTest::newRow("http") << int(ProtocolRaxion) << false << "http";
    QTest::newRow("http, secure") << int(ProtocolRaxion) << true << "https";
}

// Nobody listens on that port; what counts is what goes out.
void ZWTPBrowserDatasetTest::theSchemeIsThatOfTheBoxInBothModes()
{
    QFETCH(int, protocol);
    QFETCH(bool, secure);
    QFETCH(QString, scheme);
    DatasetStage stage("13.0.0.0", "/north.jp2", static_cast<Gui::BrowserProtocol>(protocol));
    QVERIFY(stage.isConnected);
    stage.find<QCheckBox>("useSSLCheckBox").setChecked(secure);
    stage.type("serverNameCombo", "127.0.0.1:1");
    const QString size = stage.size();
    QVERIFY(stage.look("north.jp2"));
    const QString start = scheme + "://127.0.0.1:1/tavro-krs/tavro/raxion?request=";
    QCOMPARE(
        stage.log,
        QStringList({"0 Preview Image URL: " + start + "image&cache=true&layers=/north.jp2" + size,
                     "0 DsInfo URL: " + start + "dsinfo&layers=/north.jp2&verbose=true"}));
}

void ZWTPBrowserDatasetTest::thePictureIsAskedForAtTheLabelsSize()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(10, 10), HttpReply::data(everything));
    QVERIFY(stage.look("north.jp2"));
    const QString before = stage.size();
    stage.find<QLabel>("imageLabel").setMinimumSize(220, 260);
    QVERIFY(comesTrue([&] { return stage.size() != before; }));
    const QString after = stage.size();
    QVERIFY(stage.look("north.jp2"));
    QCOMPARE(stage.asked().filter("request=image").size(), 2);
    QVERIFY(stage.asked().filter("request=image")[0].endsWith(before));
    QVERIFY(stage.asked().filter("request=image")[1].endsWith(after));
}

void ZWTPBrowserDatasetTest::withoutThePreviewNothingIsAskedFor()
{
    DatasetStage stage("13.0.0.0");
    stage.find<QGroupBox>("previewGroupBox").setChecked(false);
    stage.clickItem("north.jp2");
    QCOMPARE(stage.text("zwtpCombo"), "zwtp://" + stage.address() + "/coast/north.jp2");
    QCOMPARE(stage.text("imageLabel"), QString("No preview"));
    QCOMPARE(stage.log, QStringList());
    QCOMPARE(stage.requests(), QStringList());
}

void ZWTPBrowserDatasetTest::thePreviewAndTheDetailsAreShown()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(120, 90), HttpReply::data(everything));
    stage.find<QLabel>("imageLabel").setAlignment(Qt::AlignLeft);
    QVERIFY(stage.look("north.jp2"));
    QCOMPARE(stage.picture(), QSize(120, 90));
    QCOMPARE(stage.find<QLabel>("imageLabel").alignment(),
             Qt::Alignment(Qt::AlignHCenter | Qt::AlignVCenter));
    QCOMPARE(stage.details(), everythingShown);
    QCOMPARE(stage.answers.shown, QStringList());
    QCOMPARE(stage.find<QLineEdit>("topLeftX").cursorPosition(), 0); // long ones show their start
}

void ZWTPBrowserDatasetTest::theUserIsNotHeldUp()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(120, 90).held(), HttpReply::data(everything).held());
    stage.clickItem("north.jp2");
    QVERIFY(stage.isIdle());
    QCOMPARE(stage.text("imageLabel"), QString("Generating preview..."));
    QVERIFY(stage.server.waitForHeld(2));
    QVERIFY(stage.isIdle());
    stage.clickItem("127.0.0.1 [default]");
    QCOMPARE(stage.text("imageLabel"), QString("No preview"));
    stage.server.release();
    QVERIFY(comesTrue([&stage] { return stage.picture() == QSize(120, 90); }));
}

void ZWTPBrowserDatasetTest::aLongDescriptionIsReadBetweenOtherEvents()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(10, 10), HttpReply::data(longDescription("DSINFO width='7'")));
    int turns = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &timer, [&] { turns += stage.isDescribing() ? 1 : 0; });
    timer.start(0);
    QVERIFY(stage.look("north.jp2"));
    QVERIFY(comesTrue([&stage] { return !stage.isDescribing(); }));
    QCOMPARE(stage.text("dimensions"), QString("7 x 0"));
    QCOMPARE(stage.text("cellType"), QString("first")); // of the many
    QVERIFY2(turns >= leastTurns, qPrintable(QString::number(turns)));
}

void ZWTPBrowserDatasetTest::aLongDescriptionDoesNotReplaceALaterOne()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(10, 10), HttpReply::data(longDescription("DSINFO width='7'")));
    QVERIFY(stage.look("north.jp2"));
    stage.answer(picture(10, 10), HttpReply::data("<none/>"));
    QVERIFY(stage.look("b.jp2"));
    QVERIFY(comesTrue([&stage] { return !stage.isDescribing(); }));
    QCOMPARE(stage.text("dimensions"), QString("7 x 0")); // what says nothing takes nothing away
    stage.answer(picture(10, 10), HttpReply::data(longDescription("DSINFO width='8'")));
    QVERIFY(stage.look("north.jp2"));
    stage.answer(picture(10, 10), HttpReply::data(everything));
    QVERIFY(stage.look("b.jp2"));
    QVERIFY(comesTrue([&stage] { return !stage.isDescribing(); }));
    QCOMPARE(stage.details(), everythingShown);
}

void ZWTPBrowserDatasetTest::theLabelTellsWhatFailed_data()
{
    QTest::addColumn<int>("pictureStatus");
    QTest::addColumn<int>("detailsStatus");
    QTest::addColumn<QString>("text");
    const QString transfer = "Error transferring %1 - server replied: Status";
    QTest::newRow("the picture") << 500 << 200 << transfer;
    QTest::newRow("the details") << 200 << 500 << "Error: " + transfer;
    QTest::newRow("no picture, told in words") << 0 << 200 << "Could not decode image data.";
}

void ZWTPBrowserDatasetTest::theLabelTellsWhatFailed()
{
    QFETCH(int, pictureStatus);
    QFETCH(int, detailsStatus);
    QFETCH(QString, text);
    DatasetStage stage("13.0.0.0");
    HttpReply failing = picture(10, 10);
    failing.status = pictureStatus == 0 ? 200 : pictureStatus;
    if (pictureStatus == 0) {
        failing = HttpReply::data("no such image", "text/plain");
    }
    HttpReply details = HttpReply::data(everything);
    details.status = detailsStatus;
    // The details are held, so the last word is theirs if they fail.
    stage.answer(failing, details.held());
    const QString size = stage.size();
    stage.clickItem("north.jp2");
    QVERIFY(comesTrue([&stage] { return stage.text("imageLabel") != "Generating preview..."; }));
    const QString first = stage.text("imageLabel");
    stage.server.release();
    QVERIFY(
        comesTrue([&stage] { return stage.messages.all().filter("came from cache").size() == 2; }));
    const QString start = "http://" + stage.address() + "/tavro-krs/tavro/raxion?request=";
    const bool ofDetails = detailsStatus != 200;
    const QString url = start + (ofDetails ? QString("dsinfo&layers=/coast/north.jp2&verbose=true")
                                           : "image&cache=true&layers=/coast/north.jp2" + size);
    QCOMPARE(stage.text("imageLabel"), text.contains("%1") ? text.arg(url) : text);
    QCOMPARE(first, ofDetails ? QString() : stage.text("imageLabel"));
    QCOMPARE(stage.answers.shown, QStringList());
    QVERIFY(stage.isIdle());
}

void ZWTPBrowserDatasetTest::whatIsNoPictureIsLogged()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(HttpReply::data("no such läyer", "image/png"), HttpReply::data(everything));
    QVERIFY(stage.look("north.jp2"));
    QCOMPARE(stage.log.filter("no such"), QStringList({"3 no such läyer"}));
    QCOMPARE(stage.picture(), QSize(0, 0));
}

void ZWTPBrowserDatasetTest::aPictureBeyondReasonIsNotDecoded()
{
    QImage image(16000, 8000, QImage::Format_Mono);
    image.fill(0);
    DatasetStage stage("13.0.0.0");
    stage.answer(HttpReply::data(encodedImage(image), "image/png"), HttpReply::data(everything));
    QVERIFY(stage.look("north.jp2"));
    QCOMPARE(stage.text("imageLabel"), QString("Could not decode image data."));
}

void ZWTPBrowserDatasetTest::aLabelTakesNoTextForMarkup()
{
    DatasetStage stage("13.0.0.0");
    QCOMPARE(stage.find<QLabel>("imageLabel").textFormat(), Qt::PlainText);
}

void ZWTPBrowserDatasetTest::anOldServerGetsItsPictureAndNoDetails()
{
    DatasetStage stage("12.0.0.0");
    stage.type("serviceNameCombo", "default");
    stage.server.on(oldPath, picture(120, 90));
    stage.server.on(BrowserStage::imagePath, HttpReply::withStatus(404, "no").held());
    stage.clickItem("north.jp2");
    QVERIFY(comesTrue([&stage] { return stage.picture() == QSize(120, 90); }));
    stage.server.release();
    QVERIFY(comesTrue([&stage] { return stage.picture() == QSize(0, 0); }));
    QCOMPARE(stage.text("imageLabel"),
             "Error: Error transferring http://" + stage.address() +
                 "/tavro-krs/tavro/raxion?request=dsinfo&layers=/coast/north.jp2&verbose=true - "
                 "server replied: Status");
}

void ZWTPBrowserDatasetTest::aHostThatIsNoServerLeavesThePreviewWaiting()
{
    DatasetStage stage("13.0.0.0");
    stage.type("serverNameCombo", "two words");
    stage.clickItem("north.jp2");
    QCOMPARE(stage.text("imageLabel"), QString("Generating preview..."));
    QCoreApplication::processEvents();
    QCOMPARE(stage.requests(), QStringList());
    QCOMPARE(stage.text("imageLabel"), QString("Generating preview..."));
    QCOMPARE(stage.log.size(), 2);
    QCOMPARE(stage.answers.shown, QStringList());
}

void ZWTPBrowserDatasetTest::theDetailsAreShownAsTold_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QStringList>("fields");
    const QStringList bare = {"EPSG:",  "0 x 0", "", "", "", "",
                              " ,  ()", "",      "", "", "", "0 bytes"};
    const auto with = [bare](std::initializer_list<std::pair<int, QString>> changes) {
        QStringList fields = bare;
        for (const auto& change : changes) {
            fields[change.first] = change.second;
        }
        return fields;
    };
    const auto side = [](int cells) { return QLocale::system().toString(cells); };
    QTest::newRow("everything") << everything << everythingShown;
    QTest::newRow("nothing but its element") << QByteArray("<DSINFO/>") << bare;
    QTest::newRow("at any depth") << QByteArray("<a><b><DSINFO colorspace='x'/></b></a>")
                                  << with({{9, "x"}});
    QTest::newRow("the first of a name counts")
        << QByteArray("<a><DSINFO colorspace='1'/><DSINFO colorspace='2'/><Bands num='4'/><Bands "
                      "num='5'/></a>")
        << with({{8, "4"}, {9, "1"}});
    QTest::newRow("numbers that are missing or none read as zero")
        << QByteArray("<a><DSINFO/><BBOX tlX='x' tlY='' brX='1e3'/></a>")
        << with({{2, "0.000000"},
                 {3, "0.000000"},
                 {4, "1000.000000"},
                 {5, "0.000000"},
                 {6, "0.000000 , 0.000000 ()"}});
    QTest::newRow("units without a box")
        << QByteArray("<a><DSINFO/><COORDSPACE units='Degrees'/></a>")
        << with({{6, " ,  (Degrees)"}});
    QTest::newRow("a small one") << QByteArray(
                                        "<a><DSINFO width='100' height='100'/><Bands num='3'/></a>")
                                 << with({{1, "100 x 100"}, {8, "3"}, {11, "29.30 KB"}});
    QTest::newRow("one that is larger than an int")
        << QByteArray("<a><DSINFO width='100000' height='100000'/><Bands num='4'/></a>")
        << with({{1, side(100000) + " x " + side(100000)}, {8, "4"}, {11, "37.25 GB"}});
    QTest::newRow("as large as it can be told")
        << QByteArray("<a><DSINFO width='2147483647' height='2147483647'/><Bands num='3'/></a>")
        << with({{1, side(2147483647) + " x " + side(2147483647)}, {8, "3"}, {11, "12288.00 PB"}});
    QTest::newRow("sides that are no numbers")
        << QByteArray("<a><DSINFO width='wide' height='2.5'/><Bands num='many'/></a>")
        << with({{8, "many"}});
    QTest::newRow("one kilobyte and a half")
        << QByteArray("<a><DSINFO width='32' height='48'/><Bands num='1'/></a>")
        << with({{1, "32 x 48"}, {8, "1"}, {11, "1.50 KB"}});
}

void ZWTPBrowserDatasetTest::theDetailsAreShownAsTold()
{
    QFETCH(QByteArray, reply);
    QFETCH(QStringList, fields);
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(10, 10), HttpReply::data(reply, "text/plain"));
    QVERIFY(stage.look("north.jp2"));
    QCOMPARE(stage.details(), fields);
}

void ZWTPBrowserDatasetTest::sidesAreGroupedAsTheUserWritesThem()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(10, 10), HttpReply::data("<DSINFO width='1234567' height='-1000'/>"));
    QVERIFY(stage.look("north.jp2"));
    QCOMPARE(stage.text("dimensions"),
             QLocale::system().toString(1234567) + " x " + QLocale::system().toString(-1000));
}

void ZWTPBrowserDatasetTest::whatIsNoDescriptionLeavesTheFields_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("another element") << QByteArray("<info/>");
    QTest::newRow("another case") << QByteArray("<DsInfo width='1'/>");
    QTest::newRow("no XML") << QByteArray("no such image");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("an end that is missing") << everything.chopped(7);
}

void ZWTPBrowserDatasetTest::whatIsNoDescriptionLeavesTheFields()
{
    QFETCH(QByteArray, reply);
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(10, 10), HttpReply::data(everything));
    QVERIFY(stage.look("north.jp2"));
    stage.answer(picture(10, 10), HttpReply::data(reply));
    QVERIFY(stage.look("b.jp2"));
    QCOMPARE(stage.details(), everythingShown);
    QCOMPARE(stage.picture(), QSize(10, 10));
}

void ZWTPBrowserDatasetTest::aDescriptionOverwritesAllFields()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(10, 10), HttpReply::data(everything));
    QVERIFY(stage.look("north.jp2"));
    stage.clickItem("127.0.0.1 [default]");
    QCOMPARE(stage.details(), everythingShown);
    QCOMPARE(stage.text("imageLabel"), QString("No preview"));
    stage.answer(picture(10, 10), HttpReply::data("<DSINFO/>"));
    QVERIFY(stage.look("b.jp2"));
    QCOMPARE(stage.details(),
             QStringList({"EPSG:", "0 x 0", "", "", "", "", " ,  ()", "", "", "", "", "0 bytes"}));
}

void ZWTPBrowserDatasetTest::theReplyThatComesLastIsShown()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(40, 30).held(), HttpReply::data("<DSINFO colorspace='old'/>").held());
    stage.clickItem("north.jp2");
    QVERIFY(stage.server.waitForHeld(2));
    stage.answer(picture(20, 10), HttpReply::data("<DSINFO colorspace='new'/>"));
    QVERIFY(stage.look("b.jp2"));
    QCOMPARE(stage.text("colorSpace"), QString("new"));
    QCOMPARE(stage.picture(), QSize(20, 10));
    stage.server.release();
    QVERIFY(comesTrue([&stage] { return stage.text("colorSpace") == "old"; }));
    QVERIFY(comesTrue([&stage] { return stage.picture() == QSize(40, 30); }));
    QVERIFY(stage.text("zwtpCombo").endsWith("/b.jp2"));
}

void ZWTPBrowserDatasetTest::clickingBackAndForthCostsNothing()
{
    DatasetStage stage("13.0.0.0");
    stage.answer(picture(10, 10).header("Cache-Control", "max-age=10000"),
                 HttpReply::data(everything).header("Cache-Control", "max-age=10000"));
    for (const char* item : {"north.jp2", "b.jp2", "north.jp2", "b.jp2"}) {
        QVERIFY(stage.look(item));
        QCOMPARE(stage.picture(), QSize(10, 10));
    }
    QCOMPARE(stage.requests().size(), 4);
    QCOMPARE(stage.messages.all().filter("cache: true").size(), 4);
}

// One request for the tree and one for the services have connected before; each click adds one.
void ZWTPBrowserDatasetTest::theDetailsAskForCredentialsAndThePictureDoesNot()
{
    DatasetStage stage("13.0.0.0");
    const HttpReply refused =
        HttpReply::withStatus(401, "no").header("WWW-Authenticate", "Basic realm=\"images\"");
    stage.answer(picture(10, 10).held(), refused);
    QStringList expected;
    for (int asked = 3; asked <= 4; ++asked) {
        for (int i = 0; i < asked; ++i) {
            stage.answers.expectMessage();
            expected << askForCredentials;
        }
        stage.clickItem("north.jp2");
        QVERIFY(comesTrue([&stage] {
            return stage.text("imageLabel") == "Error: Host requires authentication";
        }));
        QCOMPARE(stage.answers.shown, expected);
    }
}

BROWSER_TEST_MAIN(ZWTPBrowserDatasetTest)

#include "ZWTPBrowserDatasetTest.moc"
