#include <tests/browser/BrowserStage.h>

#include <corvane/browser/KRSServerInfo.h>

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTextEdit>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::KRSServerInfo;

namespace {

constexpr char infoQuery[] =
    "GET /tavro-krs/discovery.dll?request=getkrsinfo&folder=/&format=xml&recursive=false";

/// "name: text" of every field.
QStringList fieldsOf(const QWidget& dialog)
{
    QStringList fields;
    for (const QLineEdit* edit : dialog.findChildren<QLineEdit*>()) {
        fields << edit->objectName() + ": " + edit->text();
    }
    for (const QTextEdit* edit : dialog.findChildren<QTextEdit*>()) {
        fields << edit->objectName() + ": " + edit->toPlainText();
    }
    fields.sort();
    return fields;
}

} // namespace

class ZWTPBrowserInfoTest : public QObject
{
    Q_OBJECT
private slots:
    void theServerIsDescribed();
    void theRequestIsLogged();
    void whatTheServerDoesNotTellStaysEmpty_data();
    void whatTheServerDoesNotTellStaysEmpty();
    void elementsCountAtAnyDepthAndTheFirstServerAlone();
    void theBrowserIsDisabledUntilTheDescriptionIsClosed();
    void theDescriptionLeavesTreeServicesAndBuildAlone();
    void theServerIsRememberedBeforeTheDescriptionShows();
    void theBrowserMayGoWhileTheDescriptionShows();
};

void ZWTPBrowserInfoTest::theServerIsDescribed()
{
    BrowserStage stage;
    stage.server.on(
        BrowserStage::discoveryPath,
        HttpReply::data("<krsinfo><serverinfo title='Coast' build='13.1.2.3' "
                        "onlineresource='http://coast.example/' abstract='All &lt;b&gt;flights&lt;"
                        "/b&gt;' contactinformation='Harbour'><keyword>one</keyword>"
                        "<keyword>two</keyword><serveralias>coast</serveralias>"
                        "<formats><format>png</format><format>jpeg</format></formats>"
                        "</serverinfo></krsinfo>",
                        "text/xml"));
    QStringList fields;
    QString kind;
    stage.answers.expect([&](QDialog& dialog) {
        kind = QString("%1 on %2")
                   .arg(dialog.metaObject()->className(), dialog.parentWidget()->objectName());
        fields = fieldsOf(dialog);
        QTest::mouseClick(dialog.findChild<QPushButton*>("okButton"), Qt::LeftButton);
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("infoButton");
    QVERIFY(stage.isBusy() && stage.comesIdle());
    QCOMPARE(stage.asked(), QStringList({infoQuery}));
    QCOMPARE(stage.answers.shown, QStringList({"dialog ORIVEX Core Server Information"}));
    QCOMPARE(kind, QString("Corvane::Gui::KRSServerInfo on ZWTPBrowserClass"));
    QCOMPARE(fields,
             QStringList({"abstract_2: All flights", "build: 13.1.2.3", "contactInfo: Harbour",
                          "formats: png,jpeg", "hostname: " + stage.address(), "keywords: one,two",
                          "onlineResource: http://coast.example/", "serverAliases: coast",
                          "title: Coast"}));
}

void ZWTPBrowserInfoTest::theRequestIsLogged()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data("<krsinfo/>"));
    stage.type("serverNameCombo", stage.address());
    stage.click("infoButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.log, QStringList({"0 ServerInfo URL: http://" + stage.address() +
                                     "/tavro-krs/discovery.dll?request=getkrsinfo&folder=/&format="
                                     "xml&recursive=false"}));
    QVERIFY(stage.messages.all().contains("debug: QNetworkReply came from cache: false"));
}

void ZWTPBrowserInfoTest::whatTheServerDoesNotTellStaysEmpty_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QStringList>("filled");
    QTest::newRow("nothing") << QByteArray("<krsinfo/>") << QStringList();
    QTest::newRow("a server without attributes")
        << QByteArray("<krsinfo><serverinfo/></krsinfo>") << QStringList({"hostname"});
    QTest::newRow("a keyword alone")
        << QByteArray("<krsinfo><keyword>k</keyword></krsinfo>") << QStringList({"keywords"});
    QTest::newRow("elements of another case")
        << QByteArray("<krsinfo><Keyword>k</Keyword><ServerInfo/></krsinfo>") << QStringList();
}

void ZWTPBrowserInfoTest::whatTheServerDoesNotTellStaysEmpty()
{
    QFETCH(QByteArray, reply);
    QFETCH(QStringList, filled);
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data(reply));
    QStringList names;
    stage.answers.expect([&names](QDialog& dialog) {
        for (const QString& field : fieldsOf(dialog)) {
            if (!field.endsWith(": ")) {
                names << field.section(':', 0, 0);
            }
        }
        dialog.reject();
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("infoButton");
    QVERIFY(stage.comesIdle());
    QVERIFY(stage.answers.isDone());
    QCOMPARE(names, filled);
}

void ZWTPBrowserInfoTest::elementsCountAtAnyDepthAndTheFirstServerAlone()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data("<reply><keyword>before</keyword><a><krsinfo/><serverinfo "
                                    "title='first'/></a><serverinfo title='second' build='1'/>"
                                    "<b><c><keyword>after</keyword></c></b></reply>"));
    QStringList fields;
    stage.answers.expect([&fields](QDialog& dialog) {
        fields = fieldsOf(dialog);
        dialog.reject();
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("infoButton");
    QVERIFY(stage.comesIdle());
    QVERIFY(fields.contains("title: first"));
    QVERIFY(fields.contains("build: "));
    QVERIFY(fields.contains("keywords: before,after"));
}

void ZWTPBrowserInfoTest::theBrowserIsDisabledUntilTheDescriptionIsClosed()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data("<krsinfo/>"));
    QStringList states;
    stage.answers.expect([&](QDialog& dialog) {
        states << (stage.dialog().isEnabled() ? "enabled" : "disabled")
               << (QApplication::overrideCursor() ? "cursor" : "no cursor")
               << (dialog.isEnabled() ? "description enabled" : "description disabled")
               << (dialog.isModal() ? "modal" : "not modal");
        dialog.reject();
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("infoButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(states, QStringList({"disabled", "no cursor", "description enabled", "modal"}));
}

void ZWTPBrowserInfoTest::theDescriptionLeavesTreeServicesAndBuildAlone()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    const QStringList tree = stage.treeLines();
    stage.find<QComboBox>("serviceNameCombo").addItems({"default", "aerial"});
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data("<krsinfo><serverinfo build='13.0.0.0'/></krsinfo>"));
    stage.click("infoButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.treeLines(), tree);
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"default", "aerial"}));
    // A preview still goes to the path of old servers.
    stage.clickItem("a.jp2");
    QVERIFY(stage.waitForRequests(4));
    QCOMPARE(stage.asked().filter("raxion.dll%3Fimage").size(), 1);
}

void ZWTPBrowserInfoTest::theServerIsRememberedBeforeTheDescriptionShows()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data("<krsinfo/>"));
    QStringList entries;
    stage.answers.expect([&](QDialog& dialog) {
        entries = stage.entries("serverNameCombo");
        dialog.reject();
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("infoButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(entries, QStringList({"http://localhost:8460/", stage.address()}));
}

void ZWTPBrowserInfoTest::theBrowserMayGoWhileTheDescriptionShows()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data("<krsinfo/>"));
    QPointer<QDialog> description;
    stage.answers.expect([&](QDialog& dialog) {
        description = &dialog;
        stage.closeBrowser();
    });
    stage.type("serverNameCombo", stage.address());
    stage.click("infoButton");
    QVERIFY(comesTrue([&stage] { return stage.answers.isDone(); }));
    QCoreApplication::processEvents();
    QVERIFY(!description);
    QVERIFY(!QApplication::overrideCursor());
    QCOMPARE(stage.answers.shown, QStringList({"dialog ORIVEX Core Server Information"}));
}

BROWSER_TEST_MAIN(ZWTPBrowserInfoTest)

#include "ZWTPBrowserInfoTest.moc"
