#include <tests/browser/BrowserStage.h>
#include <tests/gui/PanelPictures.h>
#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::ProtocolRaxion;
using Gui::ProtocolZWTP;

namespace {

/// The dialog and a folder of images that the real server publishes.
class ServedStage : public BrowserStage
{
public:
    explicit ServedStage(Gui::BrowserProtocol protocol, const QStringList& options = {})
        : BrowserStage(protocol)
    {
        QDir(folder.path()).mkpath("coast/2024");
        isMade = makeRaster(folder.filePath("plain.tif"), {}) && makeJpeg2000("coast/north.jp2") &&
                 makeJpeg2000("coast/2024/harbour.jp2");
        program = std::make_unique<ServerProcess>(folder.path(), options);
    }
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(program->port()); }
    bool connectTo()
    {
        type("serverNameCombo", host());
        click("connectButton");
        // The tree and then the services.
        return isBusy() && comesIdle() && comesTrue([this] {
                   return messages.all().filter("came from cache").size() == 2 && isIdle();
               });
    }
    bool showsPicture() { return !find<QLabel>("imageLabel").pixmap(Qt::ReturnByValue).isNull(); }

    bool isMade = false;
    QTemporaryDir folder;
    std::unique_ptr<ServerProcess> program;

private:
    bool makeJpeg2000(const QString& name) const
    {
        const QString plain = folder.filePath("source.tif");
        if (!makeRaster(plain, {})) {
            return false;
        }
        {
            const Dataset source = openRaster(plain);
            const Dataset copy(GDALCreateCopy(GDALGetDriverByName("JP2OpenJPEG"),
                                              qPrintable(folder.filePath(name)), source.get(), 0,
                                              nullptr, nullptr, nullptr));
            if (!copy) {
                return false;
            }
        }
        return QFile::remove(plain);
    }
};

} // namespace

class BrowsedServerTest : public QObject
{
    Q_OBJECT
private slots:
    void streamedImagesAreListedAndPreviewed();
    void allImagesAreListedForHttp();
    void theServerTellsOfItself();
    void credentialsOpenAGuardedServer();
    void withoutCredentialsTheServerStaysClosed();
    void aServerThatStopsIsToldOf();
};

void BrowsedServerTest::streamedImagesAreListedAndPreviewed()
{
    ServedStage stage(ProtocolZWTP);
    QVERIFY(stage.isMade && stage.program->isRunning());
    QVERIFY(stage.connectTo());
    QCOMPARE(stage.text("serviceNameCombo"), QString("default"));
    QCOMPARE(
        stage.treeLines(),
        QStringList({"127.0.0.1 [default] | _ROOT | ", " coast | _FOLDER | ", "  2024 | _FOLDER | ",
                     "   harbour.jp2 | /coast/2024/harbour.jp2 | /coast/2024/harbour.jp2",
                     "  north.jp2 | /coast/north.jp2 | /coast/north.jp2"}));
    stage.dialog().resize(700, 760);
    stage.tree().expandAll();
    stage.clickItem("north.jp2");
    QVERIFY(comesTrue([&stage] { return stage.showsPicture() && !stage.text("bands").isEmpty(); }));
    QCOMPARE(stage.text("zwtpCombo"), "zwtp://" + stage.host() + "/coast/north.jp2");
    QStringList details;
    for (const char* name : {"srsCode", "dimensions", "topLeftX", "topLeftY", "bottomRightX",
                             "bottomRightY", "cellType", "bands", "colorSpace", "diskSize"})
    {
        details << stage.text(name);
    }
    QCOMPARE(details,
             QStringList({"EPSG:32633", "600 x 500", "1000.000000", "5000.000000", "2200.000000",
                          "4000.000000", "UINT8", "3", "RGB", "878.91 KB"}));
    QVERIFY(stage.text("cellSize").startsWith("2.000000 , "));
    const auto& label = stage.find<QLabel>("imageLabel");
    const QSize picture = label.pixmap(Qt::ReturnByValue).size();
    QVERIFY(picture.width() <= label.width() && picture.height() <= label.height());
    QCOMPARE(takePictures(stage.dialog(), "browser-with-server"), QStringList());
}

void BrowsedServerTest::allImagesAreListedForHttp()
{
    ServedStage stage(ProtocolRaxion);
    QVERIFY(stage.isMade && stage.program->isRunning());
    QVERIFY(stage.connectTo());
    QCOMPARE(stage.treeLines().size(), 6);
    stage.doubleClickItem("plain.tif");
    QCOMPARE(stage.selected, QStringList({"http://" + stage.host() + "/plain.tif"}));
    QVERIFY(!stage.dialog().isVisible());
}

void BrowsedServerTest::theServerTellsOfItself()
{
    ServedStage stage(ProtocolZWTP, {"--title", "Our coast"});
    QVERIFY(stage.isMade && stage.program->isRunning());
    QString title;
    QString hostname;
    stage.answers.expect([&](QDialog& dialog) {
        title = dialog.findChild<QLineEdit*>("title")->text();
        hostname = dialog.findChild<QLineEdit*>("hostname")->text();
        dialog.accept();
    });
    stage.type("serverNameCombo", stage.host());
    stage.click("infoButton");
    QVERIFY(stage.isBusy() && stage.comesIdle());
    QCOMPARE(stage.answers.shown, QStringList({"dialog ORIVEX Core Server Information"}));
    QCOMPARE(title, QString("Our coast"));
    QCOMPARE(hostname, stage.host());
}

void BrowsedServerTest::credentialsOpenAGuardedServer()
{
    QTemporaryDir secrets;
    QFile file(secrets.filePath("password"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("s3cret\n") > 0);
    file.close();
    ServedStage stage(ProtocolZWTP, {"--user", "anna", "--password-file", file.fileName()});
    QVERIFY(stage.isMade && stage.program->isRunning());
    stage.type("userEdit", "anna");
    stage.type("passwordEdit", "s3cret");
    QVERIFY(stage.connectTo());
    stage.tree().expandAll();
    stage.clickItem("north.jp2");
    QVERIFY(comesTrue([&stage] { return stage.showsPicture() && !stage.text("bands").isEmpty(); }));
    QCOMPARE(stage.dialog().getUrl(), "zwtp://" + stage.host() + "/coast/north.jp2|anna|s3cret");
    QCOMPARE(stage.answers.shown, QStringList());
    QCOMPARE((stage.log + stage.messages.all()).filter("s3cret"), QStringList());
}

void BrowsedServerTest::withoutCredentialsTheServerStaysClosed()
{
    QTemporaryDir secrets;
    QFile file(secrets.filePath("password"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("s3cret\n") > 0);
    file.close();
    ServedStage stage(ProtocolZWTP, {"--user", "anna", "--password-file", file.fileName()});
    QVERIFY(stage.isMade && stage.program->isRunning());
    stage.answers.expectMessage();
    stage.answers.expectMessage();
    stage.type("serverNameCombo", stage.host());
    stage.click("connectButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.answers.shown,
             QStringList({"warning Authentication Error: This server requires authentication. "
                          "Please enter your credentials. [OK] on ZWTPBrowserClass",
                          "warning TAVRO ORIVEX Browser Error: Host requires authentication [OK] "
                          "on ZWTPBrowserClass"}));
    QCOMPARE(stage.treeLines(), QStringList());
}

void BrowsedServerTest::aServerThatStopsIsToldOf()
{
    ServedStage stage(ProtocolZWTP);
    QVERIFY(stage.isMade && stage.program->isRunning());
    const QString host = stage.host();
    QCOMPARE(stage.program->stop(), 0);
    stage.answers.expectMessage();
    stage.type("serverNameCombo", host);
    stage.click("connectButton");
    QVERIFY(stage.comesIdle());
    QCOMPARE(stage.answers.shown, QStringList({"warning TAVRO ORIVEX Browser Error: Connection "
                                               "refused [OK] on ZWTPBrowserClass"}));
}

BROWSER_TEST_MAIN(BrowsedServerTest)

#include "BrowsedServerTest.moc"
