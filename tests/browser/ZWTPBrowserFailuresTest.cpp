#include <tests/browser/BrowserStage.h>
#include <tests/support/Fetching.h>

#include <QComboBox>
#include <QMessageBox>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::ProtocolZWTP;

namespace {

constexpr char askForCredentials[] =
    "warning Authentication Error: This server requires authentication. Please enter your "
    "credentials. [OK] on ZWTPBrowserClass";
constexpr char refusal[] =
    "warning TAVRO ORIVEX Browser Error: Host requires authentication [OK] on ZWTPBrowserClass";

QString boxOnDialog(const QString& text)
{
    return QStringLiteral("warning TAVRO ORIVEX Browser Error: %1 [OK] on ZWTPBrowserClass")
        .arg(text);
}

/// The slots that ask the server, with the words of their failures.
void addRequests()
{
    QTest::addColumn<QString>("slot");
    QTest::newRow("discovery") << "serverConnectKRS";
    QTest::newRow("server information") << "serverInfo";
    QTest::newRow("services") << "servicesInfo";
    QTest::newRow("catalog") << "serverConnectOrivex";
}

/// Asks for credentials until they are these.
HttpTestServer::Handler guarded(const QByteArray& credentials, const HttpReply& reply)
{
    return [wanted = "Basic " + credentials.toBase64(), reply](const HttpRequest& request) {
        if (request.header("Authorization") == wanted) {
            return reply;
        }
        return HttpReply::withStatus(401, "no").header("WWW-Authenticate",
                                                       "Basic realm=\"images\"");
    };
}

} // namespace

class ZWTPBrowserFailuresTest : public QObject
{
    Q_OBJECT
private slots:
    void aNameThatNamesNoServerIsToldAtOnce_data();
    void aNameThatNamesNoServerIsToldAtOnce();
    void anErrorOfTheNetworkIsTold_data();
    void anErrorOfTheNetworkIsTold();
    void theCursorIsBackBeforeTheBoxAndTheDialogAfterIt_data();
    void theCursorIsBackBeforeTheBoxAndTheDialogAfterIt();
    void everyFailureIsToldByItsKind_data();
    void everyFailureIsToldByItsKind();
    void anErrorLeavesTreeAndServices();
    void aReplyThatIsNoTreeLeavesABareRoot_data();
    void aReplyThatIsNoTreeLeavesABareRoot();
    void aFailureIsNotRemembered();
    void textsOfAServerAreNotTakenForMarkup();
    void otherEncodingsAreRead_data();
    void otherEncodingsAreRead();
    void folderInFolderFiveThousandTimes();
    void whatIsNestedBeyondReasonIsRefused_data();
    void whatIsNestedBeyondReasonIsRefused();
    void aHundredThousandImagesAreListedBetweenOtherEvents();
    void aDialogMayGoWhileItReads();
    void credentialsAreGivenOnRequest();
    void eachRequestAsksOnceMore();
    void withoutCredentialsTheUserIsAskedForThem_data();
    void withoutCredentialsTheUserIsAskedForThem();
    void wrongCredentialsAreTriedOnce();
    void noPasswordIsLogged();
    void aDialogMayGoWhileItWaits();
    void aDialogMayBeClosedWhileItWaits();
    void aDialogMayGoWhileItsBoxIsOpen();
};

void ZWTPBrowserFailuresTest::aNameThatNamesNoServerIsToldAtOnce_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    for (const char* name : {"", "two words", "/etc/hosts", "http://", "user:word@host", "a..b"}) {
        QTest::addRow("discovery of \"%s\"", name)
            << "serverConnectKRS" << name << "Not a valid server or service name.";
        for (const char* slot : {"serverInfo", "servicesInfo", "serverConnectOrivex"}) {
            QTest::addRow("%s of \"%s\"", slot, name) << slot << name << "Not a valid server name.";
        }
    }
}

void ZWTPBrowserFailuresTest::aNameThatNamesNoServerIsToldAtOnce()
{
    QFETCH(QString, slot);
    QFETCH(QString, name);
    QFETCH(QString, text);
    BrowserStage stage;
    QStringList states;
    stage.answers.expect([&](QDialog& box) {
        states << (stage.isIdle() ? "idle" : "not idle");
        box.accept();
    });
    stage.type("serverNameCombo", name);
    QVERIFY(stage.call(qPrintable(slot)));
    QCOMPARE(stage.answers.shown,
             QStringList({"warning TAVRO ORIVEX Browser Error: " + text + " [OK] without parent"}));
    QCOMPARE(states, QStringList({"idle"}));
    QVERIFY(stage.isIdle());
    QCOMPARE(stage.entries("serverNameCombo"), QStringList());
}

void ZWTPBrowserFailuresTest::anErrorOfTheNetworkIsTold_data()
{
    addRequests();
}

void ZWTPBrowserFailuresTest::anErrorOfTheNetworkIsTold()
{
    QFETCH(QString, slot);
    BrowserStage stage;
    stage.type("serverNameCombo", QUrl(deadUrl()).authority());
    stage.answers.expectMessage();
    QVERIFY(stage.call(qPrintable(slot)));
    QVERIFY(stage.isBusy() && stage.comesIdle());
    QCOMPARE(stage.answers.shown, QStringList({boxOnDialog("Connection refused")}));
}

void ZWTPBrowserFailuresTest::theCursorIsBackBeforeTheBoxAndTheDialogAfterIt_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("discovery refused") << "serverConnectKRS" << 500 << false;
    QTest::newRow("discovery of something else") << "serverConnectKRS" << 200 << false;
    QTest::newRow("information refused") << "serverInfo" << 500 << false;
    QTest::newRow("information of something else") << "serverInfo" << 200 << true;
    QTest::newRow("services refused") << "servicesInfo" << 500 << false;
    QTest::newRow("services of something else") << "servicesInfo" << 200 << true;
    QTest::newRow("catalog refused") << "serverConnectOrivex" << 500 << false;
    QTest::newRow("catalog of something else") << "serverConnectOrivex" << 200 << false;
}

void ZWTPBrowserFailuresTest::theCursorIsBackBeforeTheBoxAndTheDialogAfterIt()
{
    QFETCH(QString, slot);
    QFETCH(int, status);
    QFETCH(bool, enabled);
    BrowserStage stage;
    stage.server.onOther(
        [status](const HttpRequest&) { return HttpReply::withStatus(status, "<page/>"); });
    stage.type("serverNameCombo", stage.address());
    QStringList states;
    stage.answers.expect([&](QDialog& box) {
        states << (QApplication::overrideCursor() ? "cursor" : "no cursor")
               << (stage.dialog().isEnabled() ? "enabled" : "disabled")
               << (box.isEnabled() ? "box enabled" : "box disabled");
        box.accept();
    });
    QVERIFY(stage.call(qPrintable(slot)));
    QVERIFY(stage.isBusy());
    QVERIFY(comesTrue([&] { return !states.isEmpty() && stage.isIdle(); }));
    QCOMPARE(states, QStringList({"no cursor", enabled ? "enabled" : "disabled", "box enabled"}));
}

void ZWTPBrowserFailuresTest::everyFailureIsToldByItsKind_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("box");
    const QString on = " [OK] on ZWTPBrowserClass";
    const QString notFound = boxOnDialog("Error transferring http://%1%2 - server replied: Status");
    const QString tree =
        "warning ORIVEX Browser Error: Invalid response from the server.\n\nEnsure the server name "
        "is correct and is running TAVRO ORIVEX or contact the server administrator." +
        on;
    const QString information =
        "warning ORIVEX Browser Error: The web server responded with an unrecognized reply.\n\nTo "
        "browse ZWTP images, the server must be running TAVRO ORIVEX Core 2013 or higher. Please "
        "contact your server administrator." +
        on;
    const QString services =
        "warning ORIVEX Browser Error: Could not query service names for this host. This feature "
        "requires TAVRO ORIVEX Core 2013 or higher." +
        on;
    const QString catalog = boxOnDialog("The response was not a JSON document.");
    const struct
    {
        const char* slot;
        QString complaint;
    } requests[] = {{"serverConnectKRS", tree},
                    {"serverInfo", information},
                    {"servicesInfo", services},
                    {"serverConnectOrivex", catalog}};
    for (const auto& request : requests) {
        QTest::addRow("%s: no such page", request.slot) << request.slot << 0 << notFound;
        QTest::addRow("%s: no XML", request.slot) << request.slot << 1 << request.complaint;
        QTest::addRow("%s: another root", request.slot) << request.slot << 2 << request.complaint;
        QTest::addRow("%s: empty", request.slot) << request.slot << 3 << request.complaint;
        QTest::addRow("%s: reset", request.slot)
            << request.slot << 4 << boxOnDialog("Connection closed");
        QTest::addRow("%s: cut", request.slot)
            << request.slot << 5 << boxOnDialog("Connection closed");
        QTest::addRow("%s: moved", request.slot) << request.slot << 6 << request.complaint;
        QTest::addRow("%s: broken off in the middle", request.slot)
            << request.slot << 7 << request.complaint;
        QTest::addRow("%s: slow", request.slot) << request.slot << 8 << request.complaint;
        QTest::addRow("%s: 30 megabytes of no XML", request.slot)
            << request.slot << 9 << request.complaint;
    }
}

void ZWTPBrowserFailuresTest::everyFailureIsToldByItsKind()
{
    QFETCH(QString, slot);
    QFETCH(int, kind);
    QFETCH(QString, box);
    const QByteArray unfinished = "<krsinfo><serverinfo build='13.0.0.0'/><folder>" +
                                  dataset("/a.jp2") + "<serviceinfo><services>";
    const HttpReply replies[] = {
        HttpReply::withStatus(404, "no such page"),
        HttpReply::data("this is no document at all"),
        HttpReply::data("<html><body>krsinfo</body></html>", "text/html"),
        HttpReply::data(""),
        HttpReply::reset(),
        HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2"))).cutAfter(60),
        HttpReply::redirect("/elsewhere"),
        HttpReply::data(unfinished, "text/xml"),
        HttpReply::data("late").held(),
        HttpReply::data(QByteArray(30 << 20, 'x')),
    };
    BrowserStage stage;
    const HttpReply& reply = replies[kind];
    stage.server.onOther([&reply](const HttpRequest&) { return reply; });
    stage.server.release();
    stage.answers.expectMessage();
    stage.type("serverNameCombo", stage.address());
    QVERIFY(stage.call(qPrintable(slot)));
    QVERIFY(stage.comesIdle());
    if (box.contains("%1")) {
        box =
            box.arg(stage.address(), QString::fromStdString(stage.server.requests().back().target));
    }
    QCOMPARE(stage.answers.shown, QStringList({box}));
    QCOMPARE(stage.entries("serverNameCombo"), QStringList());
    QVERIFY(stage.dialog().isVisible());
}

void ZWTPBrowserFailuresTest::anErrorLeavesTreeAndServices()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    const QStringList tree = stage.treeLines();
    stage.find<QComboBox>("serviceNameCombo").addItems({"default", "aerial"});
    stage.server.on(BrowserStage::discoveryPath, HttpReply::withStatus(500, "no"));
    for (const char* slot : {"serverConnectKRS", "serverInfo", "servicesInfo"}) {
        stage.answers.expectMessage();
        QVERIFY(stage.call(slot));
        QVERIFY(stage.comesIdle());
        QCOMPARE(stage.treeLines(), tree);
        QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"default", "aerial"}));
    }
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data("<other/>"));
    for (const char* slot : {"serverInfo", "servicesInfo"}) {
        stage.answers.expectMessage();
        QVERIFY(stage.call(slot));
        QVERIFY(stage.comesIdle());
        QCOMPARE(stage.treeLines(), tree);
        QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"default", "aerial"}));
    }
    QVERIFY(stage.answers.isDone());
}

void ZWTPBrowserFailuresTest::aReplyThatIsNoTreeLeavesABareRoot_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("box");
    const QString invalid =
        "warning ORIVEX Browser Error: Invalid response from the server.\n\nEnsure the server name "
        "is correct and is running TAVRO ORIVEX or contact the server administrator. [OK] on "
        "ZWTPBrowserClass";
    QTest::newRow("an error of the server") << QByteArray("<error>No such <b>folder</b></error>")
                                            << boxOnDialog("Server returned error: No such folder");
    QTest::newRow("an error without words")
        << QByteArray("<error/>") << boxOnDialog("Server returned error: ");
    QTest::newRow("an error that is not on top")
        << QByteArray("<a><error>x</error></a>") << invalid;
    QTest::newRow("a tree that is not on top")
        << "<a>" + discovery("13.0.0.0", dataset("/a.jp2")).mid(39) + "</a>" << invalid;
    QTest::newRow("another case") << QByteArray("<KrsInfo/>") << invalid;
    QTest::newRow("no XML") << QByteArray("plain words") << invalid;
    QTest::newRow("XML with an end that is missing")
        << discovery("13.0.0.0", dataset("/a.jp2")).chopped(10) << invalid;
}

void ZWTPBrowserFailuresTest::aReplyThatIsNoTreeLeavesABareRoot()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, box);
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/a.jp2"))));
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data(reply));
    stage.find<QComboBox>("serviceNameCombo").addItems({"aerial", "default"});
    QStringList trees;
    stage.answers.expect([&](QDialog& shown) {
        trees = stage.treeLines();
        shown.accept();
    });
    QVERIFY(stage.call("serverConnectKRS"));
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.answers.shown, QStringList({box}));
    QCOMPARE(trees, QStringList({"127.0.0.1 [aerial] | _ROOT | "}));
    QCOMPARE(stage.treeLines(), trees);
    QCOMPARE(stage.entries("serviceNameCombo"), QStringList({"aerial", "default"}));
}

void ZWTPBrowserFailuresTest::aFailureIsNotRemembered()
{
    BrowserStage stage;
    for (const char* reply : {"<error>no</error>", "<other/>", ""}) {
        stage.server.on(BrowserStage::discoveryPath, HttpReply::data(reply));
        stage.answers.expectMessage();
        QVERIFY(stage.connectToServer());
    }
    stage.answers.expectMessage();
    QVERIFY(stage.call("serverInfo"));
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.entries("serverNameCombo"), QStringList());
    stage.closeBrowser();
    QCOMPARE(settings().value("ZWTPChooser/Servers").toStringList(), QStringList());
}

void ZWTPBrowserFailuresTest::textsOfAServerAreNotTakenForMarkup()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data("<error>&lt;b&gt;bold&lt;/b&gt;</error>"));
    Qt::TextFormat format = Qt::AutoText;
    stage.answers.expect([&format](QDialog& box) {
        format = qobject_cast<QMessageBox*>(&box)->textFormat();
        box.accept();
    });
    QVERIFY(stage.connectToServer());
    QCOMPARE(stage.answers.shown, QStringList({boxOnDialog("Server returned error: <b>bold</b>")}));
    QCOMPARE(format, Qt::PlainText);
}

void ZWTPBrowserFailuresTest::otherEncodingsAreRead_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("name");
    const QString text = "<krsinfo><folder><dataset name='/ä.jp2'><services "
                         "zwtp='true'/></dataset></folder></krsinfo>";
    QTest::newRow("UTF-8 without a word of it") << text.toUtf8() << "ä.jp2";
    QTest::newRow("UTF-8 with a mark of order") << "\xEF\xBB\xBF" + text.toUtf8() << "ä.jp2";
    QTest::newRow("Latin 1 that says so")
        << "<?xml version='1.0' encoding='ISO-8859-1'?>" + text.toLatin1() << "ä.jp2";
    QByteArray utf16("\xFF\xFE");
    for (const QChar character : text) {
        utf16 += char(character.cell());
        utf16 += char(character.row());
    }
    QTest::newRow("UTF-16") << utf16 << "ä.jp2";
    QTest::newRow("Latin 1 that says nothing")
        << text.toLatin1() << QString(QChar::ReplacementCharacter) + ".jp2";
}

void ZWTPBrowserFailuresTest::otherEncodingsAreRead()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, name);
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data(reply, "text/plain"));
    QVERIFY(stage.connectToServer());
    QCOMPARE(stage.answers.shown, QStringList());
    QCOMPARE(stage.treeLines().size(), 2);
    QVERIFY2(stage.item(name), qPrintable(stage.treeLines()[1]));
}

void ZWTPBrowserFailuresTest::folderInFolderFiveThousandTimes()
{
    constexpr int levels = 5000;
    QByteArray content;
    for (int i = 0; i < levels; ++i) {
        content += "<folders><folder title='f'>";
    }
    content += dataset("/deep.jp2");
    for (int i = 0; i < levels; ++i) {
        content += "</folder></folders>";
    }
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", content)));
    QCOMPARE(stage.answers.shown, QStringList());
    QTreeWidgetItem* item = stage.tree().topLevelItem(0);
    int depth = 0;
    while (item->childCount() == 1) {
        item = item->child(0);
        ++depth;
    }
    QCOMPARE(depth, levels + 1);
    QCOMPARE(item->text(0), QString("deep.jp2"));
}

void ZWTPBrowserFailuresTest::whatIsNestedBeyondReasonIsRefused_data()
{
    QTest::addColumn<QString>("slot");
    QTest::newRow("discovery") << "serverConnectKRS";
    QTest::newRow("server information") << "serverInfo";
    QTest::newRow("services") << "servicesInfo";
}

void ZWTPBrowserFailuresTest::whatIsNestedBeyondReasonIsRefused()
{
    QFETCH(QString, slot);
    constexpr int levels = 300000;
    QByteArray reply = "<krsinfo><serviceinfo>";
    for (int i = 0; i < levels; ++i) {
        reply += "<folder title='>'>";
    }
    for (int i = 0; i < levels; ++i) {
        reply += "</folder>";
    }
    reply += "</serviceinfo></krsinfo>";
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, HttpReply::data(reply));
    stage.answers.expectMessage();
    stage.type("serverNameCombo", stage.address());
    QVERIFY(stage.call(qPrintable(slot)));
    QVERIFY(stage.comesIdle());
    QVERIFY(stage.answers.isDone());
    QCOMPARE(stage.answers.shown.size(), 1);
    QVERIFY(stage.answers.shown[0].startsWith("warning ORIVEX Browser Error: "));
}

void ZWTPBrowserFailuresTest::aHundredThousandImagesAreListedBetweenOtherEvents()
{
    constexpr int images = 100000;
    QByteArray content;
    for (int i = 0; i < images; ++i) {
        content += dataset("/folder/of/images/number_" + QByteArray::number(i) + ".jp2");
    }
    BrowserStage stage;
    int others = 0; // events while the reply is read
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (stage.isBusy() && !stage.messages.all().filter("came from cache").isEmpty()) {
            ++others;
        }
    });
    timer.start(0);
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", content)));
    QCOMPARE(stage.tree().topLevelItem(0)->childCount(), images);
    QCOMPARE(stage.tree().topLevelItem(0)->child(images - 1)->text(0), QString("number_99999.jp2"));
    QVERIFY2(others > 20, qPrintable(QString::number(others)));
}

void ZWTPBrowserFailuresTest::aDialogMayGoWhileItReads()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2").repeated(50000))));
    stage.type("serverNameCombo", stage.address());
    stage.click("connectButton");
    QVERIFY(
        comesTrue([&stage] { return !stage.messages.all().filter("came from cache").isEmpty(); }));
    QVERIFY(stage.isBusy());
    stage.closeBrowser();
    QVERIFY(!QApplication::overrideCursor());
    QCoreApplication::processEvents();
    QCOMPARE(stage.answers.shown, QStringList());
}

void ZWTPBrowserFailuresTest::credentialsAreGivenOnRequest()
{
    BrowserStage stage;
    stage.server.on(
        BrowserStage::discoveryPath,
        guarded("anna:sec:ret", HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2")))));
    stage.type("userEdit", "anna");
    stage.type("passwordEdit", "sec:ret");
    QVERIFY(stage.connectToServer());
    QCOMPARE(stage.answers.shown, QStringList());
    QCOMPARE(stage.treeLines().size(), 2);
    QCOMPARE(stage.server.requestCount(), 2);
    QVERIFY(stage.server.requests()[0].header("Authorization").isNull());
}

void ZWTPBrowserFailuresTest::eachRequestAsksOnceMore()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    guarded("anna:secret", HttpReply::data(discovery("12.0.0.0", ""))));
    QStringList expected;
    for (int requests = 1; requests <= 3; ++requests) {
        for (int i = 0; i < requests; ++i) {
            stage.answers.expectMessage();
            expected << askForCredentials;
        }
        stage.answers.expectMessage();
        expected << refusal;
        QVERIFY(stage.connectToServer());
        QCOMPARE(stage.answers.shown, expected);
    }
    // The catalog does not ask for more: it is answered by those that asked before.
    stage.server.onOther(guarded("anna:secret", HttpReply::data("{}", "application/json")));
    for (int i = 0; i < 3; ++i) {
        stage.answers.expectMessage();
        expected << askForCredentials;
    }
    stage.answers.expectMessage();
    expected << refusal;
    QVERIFY(stage.call("serverConnectOrivex"));
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.answers.shown, expected);
}

void ZWTPBrowserFailuresTest::withoutCredentialsTheUserIsAskedForThem_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    for (const char* slot : {"serverConnectKRS", "serverInfo", "servicesInfo"}) {
        QTest::addRow("%s: none", slot) << slot << ""
                                        << "";
        QTest::addRow("%s: no password", slot) << slot << "anna"
                                               << "";
        QTest::addRow("%s: no user", slot) << slot << ""
                                           << "secret";
    }
}

void ZWTPBrowserFailuresTest::withoutCredentialsTheUserIsAskedForThem()
{
    QFETCH(QString, slot);
    QFETCH(QString, user);
    QFETCH(QString, password);
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, guarded("anna:secret", HttpReply::data("x")));
    stage.type("serverNameCombo", stage.address());
    stage.type("userEdit", user);
    stage.type("passwordEdit", password);
    stage.answers.expectMessage();
    stage.answers.expectMessage();
    QVERIFY(stage.call(qPrintable(slot)));
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.answers.shown, QStringList({askForCredentials, refusal}));
    QCOMPARE(stage.server.requestCount(), 1);
    QCOMPARE(stage.text("userEdit"), user);
}

void ZWTPBrowserFailuresTest::wrongCredentialsAreTriedOnce()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath, guarded("anna:secret", HttpReply::data("x")));
    stage.type("userEdit", "anna");
    stage.type("passwordEdit", "wrong");
    stage.answers.expectMessage();
    QVERIFY(stage.connectToServer());
    QCOMPARE(stage.answers.shown, QStringList({refusal}));
    QCOMPARE(stage.server.requestCount(), 2);
    QCOMPARE(stage.treeLines(), QStringList());
}

void ZWTPBrowserFailuresTest::noPasswordIsLogged()
{
    BrowserStage stage;
    stage.server.onOther(guarded("anna:s3cret", HttpReply::data("{}", "application/json")));
    stage.type("userEdit", "anna");
    stage.type("passwordEdit", "s3cret");
    stage.type("serverNameCombo", "http://anna:s3cret@" + stage.address());
    for (const char* slot :
         {"serverConnectKRS", "serverInfo", "servicesInfo", "serverConnectOrivex"}) {
        stage.answers.expectMessage();
        QVERIFY(stage.call(slot));
        QVERIFY(stage.comesIdle());
    }
    const QStringList lines = stage.log + stage.messages.all();
    QVERIFY(lines.size() > 6);
    QCOMPARE(lines.filter("s3cret"), QStringList());
    QCOMPARE(lines.filter("anna:"), QStringList());
}

void ZWTPBrowserFailuresTest::aDialogMayGoWhileItWaits()
{
    BrowserStage stage;
    stage.server.onOther([](const HttpRequest&) { return HttpReply::data("late").held(); });
    stage.type("serverNameCombo", stage.address());
    for (const char* slot :
         {"serverConnectKRS", "serverInfo", "servicesInfo", "serverConnectOrivex"}) {
        QVERIFY(stage.call(slot));
    }
    QVERIFY(stage.waitForRequests(1));
    QVERIFY(stage.isBusy());
    stage.closeBrowser();
    QVERIFY(!QApplication::overrideCursor());
    stage.server.release();
    QCoreApplication::processEvents();
    QCOMPARE(stage.answers.shown, QStringList());
}

void ZWTPBrowserFailuresTest::aDialogMayBeClosedWhileItWaits()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    HttpReply::data(discovery("12.0.0.0", dataset("/a.jp2"))).held());
    stage.type("serverNameCombo", stage.address());
    stage.click("connectButton");
    QVERIFY(stage.server.waitForHeld(1));
    QVERIFY(stage.dialog().close());
    stage.server.release();
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.treeLines().size(), 2);
}

void ZWTPBrowserFailuresTest::aDialogMayGoWhileItsBoxIsOpen()
{
    BrowserStage stage;
    stage.type("serverNameCombo", QUrl(deadUrl()).authority());
    stage.answers.expect([&stage](QDialog&) { stage.closeBrowser(); });
    stage.click("connectButton");
    QVERIFY(comesTrue([&stage] { return stage.answers.isDone(); }));
    QCoreApplication::processEvents();
    QVERIFY(!QApplication::overrideCursor());
}

BROWSER_TEST_MAIN(ZWTPBrowserFailuresTest)

#include "ZWTPBrowserFailuresTest.moc"
