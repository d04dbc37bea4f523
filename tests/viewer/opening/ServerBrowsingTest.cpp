#include <viewer/opening/ServerBrowsing.h>

#include <corvane/browser/ZWTPBrowser.h>
#include <tests/browser/BrowserStage.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::ZWTPBrowser;
using Viewer::ServerBrowsing;

namespace {

/// A window that browses a server with two images.
class Stage
{
public:
    Stage() : browsing(&window)
    {
        settings().clear();
        qputenv("TMPDIR", QFile::encodeName(temporary.path()));
        QObject::connect(&browsing, &ServerBrowsing::chosen,
                         [this](const QString& source) { chosen << source; });
        server.on(BrowserStage::discoveryPath,
                  HttpReply::data(discovery("12.0.0.0", dataset("/a.tif") + dataset("/b.jp2"))));
        window.show();
    }
    ZWTPBrowser* dialog() { return window.findChild<ZWTPBrowser*>(); }
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(server.port()); }
    bool open()
    {
        browsing.browse();
        if (!dialog() || !QTest::qWaitForWindowExposed(dialog())) {
            return false;
        }
        dialog()->findChild<QGroupBox*>("previewGroupBox")->setChecked(false);
        dialog()->findChild<QComboBox*>("serverNameCombo")->setEditText(host());
        QTest::mouseClick(dialog()->findChild<QPushButton*>("connectButton"), Qt::LeftButton);
        return comesTrue([this] { return tree().topLevelItemCount() == 1; }) &&
               comesTrue([this] { return dialog()->isEnabled(); });
    }
    QTreeWidget& tree() { return *dialog()->findChild<QTreeWidget*>("treeWidget"); }
    QPoint placeOf(int image)
    {
        return tree().visualItemRect(tree().topLevelItem(0)->child(image)).center();
    }
    void click(int image)
    {
        QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, placeOf(image));
    }
    void add()
    {
        QTest::mouseClick(dialog()->findChild<QPushButton*>("addButton"), Qt::LeftButton);
    }
    void press(QDialogButtonBox::StandardButton which)
    {
        auto* const box = dialog()->findChild<QDialogButtonBox*>("buttonBox");
        QTest::mouseClick(box->button(which), Qt::LeftButton);
    }
    bool isGone()
    {
        return comesTrue([this] { return dialog() == nullptr; });
    }

    QWidget window;
    ServerBrowsing browsing;
    HttpTestServer server;
    DialogAnswers answers;
    QStringList chosen;

private:
    QTemporaryDir temporary;
};

} // namespace

class ServerBrowsingTest : public QObject
{
    Q_OBJECT
private slots:
    void aSourceLeavesNoDoubt_data();
    void aSourceLeavesNoDoubt();
    void addChoosesOneAfterTheOther();
    void aDoubleClickChoosesOnceAndCloses();
    void okChoosesAndCloses();
    void okAfterAddChoosesNothingAgain();
    void closeChoosesNothing();
    void aUrlThatIsNoneIsToldAndKeepsTheDialog();
    void credentialsGoAlong();
    void oneDialogAtATime();
    void serversAndImagesAreRemembered();
};

void ServerBrowsingTest::aSourceLeavesNoDoubt_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("source");
    QTest::newRow("http") << "http://host/a.tif"
                          << ""
                          << ""
                          << "zwtp://host/a.tif";
    QTest::newRow("https") << "https://host/a.tif"
                           << ""
                           << ""
                           << "zwtps://host/a.tif";
    QTest::newRow("streaming") << "zwtp://host/a.jp2"
                               << ""
                               << ""
                               << "zwtp://host/a.jp2";
    QTest::newRow("secure streaming") << "ZWTPS://host/A.jp2"
                                      << ""
                                      << ""
                                      << "zwtps://host/A.jp2";
    QTest::newRow("credentials") << "http://host/a"
                                 << "anna"
                                 << "p|w"
                                 << "zwtp://host/a|anna|p|w";
    QTest::newRow("a user alone") << "http://host/a"
                                  << "anna"
                                  << ""
                                  << "zwtp://host/a";
    QTest::newRow("a password alone") << "http://host/a"
                                      << ""
                                      << "secret"
                                      << "zwtp://host/a";
    QTest::newRow("credentials that are there already") << "zwtp://host/a|otto|x"
                                                        << "anna"
                                                        << "secret"
                                                        << "zwtp://host/a|otto|x";
    QTest::newRow("something else") << "/data/a.tif"
                                    << "anna"
                                    << "secret"
                                    << "/data/a.tif";
}

void ServerBrowsingTest::aSourceLeavesNoDoubt()
{
    QFETCH(QString, url);
    QFETCH(QString, user);
    QFETCH(QString, password);
    QFETCH(QString, source);
    QCOMPARE(ServerBrowsing::sourceOf(url, user, password), source);
}

void ServerBrowsingTest::addChoosesOneAfterTheOther()
{
    Stage stage;
    QVERIFY(stage.open());
    stage.click(0);
    stage.add();
    stage.click(1);
    stage.add();
    QCOMPARE(stage.chosen, QStringList({"zwtp://" + stage.host() + "//a.tif",
                                        "zwtp://" + stage.host() + "//b.jp2"}));
    QVERIFY(stage.dialog()->isVisible());
}

void ServerBrowsingTest::aDoubleClickChoosesOnceAndCloses()
{
    Stage stage;
    QVERIFY(stage.open());
    stage.click(0);
    QTest::mouseDClick(stage.tree().viewport(), Qt::LeftButton, {}, stage.placeOf(0));
    QVERIFY(stage.isGone());
    QCOMPARE(stage.chosen, QStringList({"zwtp://" + stage.host() + "/a.tif"}));
}

void ServerBrowsingTest::okChoosesAndCloses()
{
    Stage stage;
    QVERIFY(stage.open());
    stage.click(1);
    stage.press(QDialogButtonBox::Ok);
    QVERIFY(stage.isGone());
    QCOMPARE(stage.chosen, QStringList({"zwtp://" + stage.host() + "//b.jp2"}));
}

void ServerBrowsingTest::okAfterAddChoosesNothingAgain()
{
    Stage stage;
    QVERIFY(stage.open());
    stage.click(1);
    stage.add();
    stage.press(QDialogButtonBox::Ok);
    QVERIFY(stage.isGone());
    QCOMPARE(stage.chosen.size(), 1);
}

void ServerBrowsingTest::closeChoosesNothing()
{
    Stage stage;
    QVERIFY(stage.open());
    stage.click(0);
    stage.press(QDialogButtonBox::Close);
    QVERIFY(stage.isGone());
    QCOMPARE(stage.chosen, QStringList());
}

void ServerBrowsingTest::aUrlThatIsNoneIsToldAndKeepsTheDialog()
{
    Stage stage;
    QVERIFY(stage.open());
    stage.answers.expectMessage();
    stage.press(QDialogButtonBox::Ok);
    QCOMPARE(stage.answers.shown,
             QStringList({"warning TAVRO ORIVEX Browser Error: Invalid Raxion Url. [OK] on "
                          "ZWTPBrowserClass"}));
    QVERIFY(stage.dialog()->isVisible());
    stage.click(0);
    stage.press(QDialogButtonBox::Close);
    QVERIFY(stage.isGone());
    QCOMPARE(stage.chosen, QStringList());
}

void ServerBrowsingTest::credentialsGoAlong()
{
    Stage stage;
    QVERIFY(stage.open());
    stage.dialog()->findChild<QLineEdit*>("userEdit")->setText("anna");
    stage.dialog()->findChild<QLineEdit*>("passwordEdit")->setText("s3cret");
    stage.click(0);
    stage.press(QDialogButtonBox::Ok);
    QVERIFY(stage.isGone());
    QCOMPARE(stage.chosen, QStringList({"zwtp://" + stage.host() + "//a.tif|anna|s3cret"}));
    for (const QString& key : settings().allKeys()) {
        QVERIFY2(!settings().value(key).toStringList().join(' ').contains("s3cret"),
                 qPrintable(key));
    }
}

void ServerBrowsingTest::oneDialogAtATime()
{
    Stage stage;
    QVERIFY(stage.open());
    stage.browsing.browse();
    QCOMPARE(stage.window.findChildren<ZWTPBrowser*>().size(), 1);
    QCOMPARE(stage.tree().topLevelItemCount(), 1);
    stage.dialog()->close();
    QVERIFY(stage.isGone());
    stage.browsing.browse();
    QVERIFY(stage.dialog());
    QCOMPARE(stage.tree().topLevelItemCount(), 0);
}

void ServerBrowsingTest::serversAndImagesAreRemembered()
{
    Stage stage;
    QVERIFY(stage.open());
    stage.click(0);
    stage.press(QDialogButtonBox::Ok);
    QVERIFY(stage.isGone());
    stage.browsing.browse();
    QCOMPARE(stage.dialog()->findChild<QComboBox*>("serverNameCombo")->currentText(), stage.host());
    QCOMPARE(stage.dialog()->findChild<QComboBox*>("zwtpCombo")->currentText(),
             "http://" + stage.host() + "//a.tif");
}

BROWSER_TEST_MAIN(ServerBrowsingTest)

#include "ServerBrowsingTest.moc"
