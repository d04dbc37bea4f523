#include <plugins/imageserver/ImageServerLayer.h>
#include <plugins/imageserver/ServerLogins.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <plugins/common/TileCache.h>

#include <corvane/browser/ZWTPBrowser.h>

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPixmap>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time

/// Text of each item, indented by depth.
void describe(const QTreeWidgetItem* item, int depth, QStringList* lines)
{
    lines->append(QString(depth * 2, ' ') + item->text(0));
    for (int i = 0; i < item->childCount(); ++i) {
        describe(item->child(i), depth + 1, lines);
    }
}

} // namespace

/// The dialog, the server program and the layer, one behind the other.
class BrowseServerTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void theTreeOfTheServerIsShown_data();
    void theTreeOfTheServerIsShown();
    void aServiceOfTheServerIsShown();
    void aClickShowsThePictureAndTheDetails();
    void whatIsChosenOpensAsALayer();
    void aProtectedImageOpensWithTheCredentialsOfTheDialog();

private:
    template <typename Widget>
    Widget* child(const char* name) const
    {
        return browser->findChild<Widget*>(name);
    }
    void open(Gui::BrowserProtocol protocol);
    void connectTo(const ServerProcess& server);
    QStringList tree() const;
    QTreeWidgetItem* item(const QString& text) const;
    void click(QTreeWidgetItem* item, bool twice);

    std::unique_ptr<QTemporaryDir> base;
    std::unique_ptr<Gui::ZWTPBrowser> browser;
};

void BrowseServerTest::init()
{
    TileCache::instance().setFolder(QString(), 0);
    ServerLogins::forgetAll();
    Application::instance()->getSettings()->clear();
    base = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkpath(base->filePath("images/north")));
    RasterRecipe recipe;
    recipe.overviews = {2, 4};
    QVERIFY(makeRaster(base->filePath("images/a.tif"), recipe));
    QVERIFY(makeRaster(base->filePath("images/north/b.tif"), recipe));
    QVERIFY(QFile::copy(base->filePath("images/a.tif"), base->filePath("images/north/c.ntf")));
    QFile password(base->filePath("password"));
    QVERIFY(password.open(QIODevice::WriteOnly));
    password.write("sesame\n");
}

void BrowseServerTest::cleanup()
{
    browser.reset();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
}

void BrowseServerTest::open(Gui::BrowserProtocol protocol)
{
    browser = std::make_unique<Gui::ZWTPBrowser>(nullptr, protocol);
    browser->show();
    QVERIFY(QTest::qWaitForWindowExposed(browser.get()));
}

void BrowseServerTest::connectTo(const ServerProcess& server)
{
    child<QComboBox>("serverNameCombo")->setEditText(QString("127.0.0.1:%1").arg(server.port()));
    QTest::mouseClick(child<QPushButton>("connectButton"), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(browser->isEnabled(), generous);
    QTRY_VERIFY_WITH_TIMEOUT(child<QComboBox>("serviceNameCombo")->count() > 0, generous);
    QTRY_VERIFY_WITH_TIMEOUT(!QApplication::overrideCursor(), generous);
}

QStringList BrowseServerTest::tree() const
{
    QStringList lines;
    const auto* const widget = child<QTreeWidget>("treeWidget");
    if (widget->topLevelItemCount() > 0) {
        describe(widget->topLevelItem(0), 0, &lines);
    }
    return lines;
}

QTreeWidgetItem* BrowseServerTest::item(const QString& text) const
{
    return child<QTreeWidget>("treeWidget")
        ->findItems(text, Qt::MatchExactly | Qt::MatchRecursive)
        .value(0);
}

void BrowseServerTest::click(QTreeWidgetItem* target, bool twice)
{
    auto* const widget = child<QTreeWidget>("treeWidget");
    QVERIFY(target);
    widget->expandAll();
    widget->scrollToItem(target);
    const QPoint place = widget->visualItemRect(target).center();
    QTest::mouseClick(widget->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    if (twice) {
        QTest::mouseDClick(widget->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    }
    // Qt drops what unpacks an answer that is still coming when the dialog goes
    QTRY_VERIFY_WITH_TIMEOUT(!child<QLineEdit>("dimensions")->text().isEmpty(), generous);
    QTRY_VERIFY_WITH_TIMEOUT(!child<QLabel>("imageLabel")->pixmap(Qt::ReturnByValue).isNull(),
                             generous);
}

void BrowseServerTest::theTreeOfTheServerIsShown_data()
{
    QTest::addColumn<int>("protocol");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("all images over HTTP")
        << int(Gui::ProtocolRaxion)
        << QStringList({"127.0.0.1 [default]", "  north", "    b.tif", "    c.ntf", "  a.tif"});
    QTest::newRow("those that stream")
        << int(Gui::ProtocolZWTP) << QStringList({"127.0.0.1 [default]", "  north", "    c.ntf"});
}

void BrowseServerTest::theTreeOfTheServerIsShown()
{
    QFETCH(int, protocol);
    QFETCH(QStringList, lines);
    ServerProcess server(base->filePath("images"));
    open(static_cast<Gui::BrowserProtocol>(protocol));
    connectTo(server);
    QCOMPARE(tree(), lines);
    const auto* const services = child<QComboBox>("serviceNameCombo");
    QCOMPARE(services->count(), 2);
    QCOMPARE(services->itemText(0), QString("default"));
    QCOMPARE(services->itemText(1), QString("north"));
    QCOMPARE(services->currentText(), QString("default"));
}

void BrowseServerTest::aServiceOfTheServerIsShown()
{
    ServerProcess server(base->filePath("images"));
    open(Gui::ProtocolRaxion);
    connectTo(server);
    auto* const services = child<QComboBox>("serviceNameCombo");
    services->setCurrentIndex(1);
    emit services->activated(1);
    QTRY_COMPARE_WITH_TIMEOUT(tree(), QStringList({"127.0.0.1 [north]", "  b.tif", "  c.ntf"}),
                              generous);
    QTRY_VERIFY_WITH_TIMEOUT(browser->isEnabled(), generous);
    QSignalSpy chosen(browser.get(), &Gui::ZWTPBrowser::urlSelected);
    click(item("b.tif"), true);
    QCOMPARE(chosen.size(), 1);
    const QString url = chosen.first().first().toString();
    QCOMPARE(url, server.url("/north/b.tif"));
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY2(layer.setDataSource(url), qPrintable(layer.getLastError()));
}

void BrowseServerTest::aClickShowsThePictureAndTheDetails()
{
    ServerProcess server(base->filePath("images"));
    open(Gui::ProtocolRaxion);
    connectTo(server);
    click(item("b.tif"), false);
    QTRY_COMPARE_WITH_TIMEOUT(child<QLineEdit>("dimensions")->text(), QString("600 x 500"),
                              generous);
    const auto* const label = child<QLabel>("imageLabel");
    QTRY_VERIFY_WITH_TIMEOUT(!label->pixmap(Qt::ReturnByValue).isNull(), generous);
    const QSize picture = label->pixmap(Qt::ReturnByValue).size();
    QVERIFY(picture.width() <= label->width() && picture.height() <= label->height());
    QCOMPARE(child<QLineEdit>("srsCode")->text(), QString("EPSG:32633"));
    QCOMPARE(child<QLineEdit>("topLeftX")->text(), QString("1000.000000"));
    QCOMPARE(child<QLineEdit>("bottomRightY")->text(), QString("4000.000000"));
    QCOMPARE(child<QLineEdit>("cellSize")->text(), QString("2.000000 , 2.000000 (METERS)"));
    QCOMPARE(child<QLineEdit>("cellType")->text(), QString("UINT8"));
    QCOMPARE(child<QLineEdit>("bands")->text(), QString("3"));
    QCOMPARE(child<QLineEdit>("colorSpace")->text(), QString("RGB"));
    QCOMPARE(child<QLineEdit>("opacity")->text(), QString("false"));
    QCOMPARE(child<QLineEdit>("diskSize")->text(), QString("878.91 KB"));
    QCOMPARE(child<QComboBox>("zwtpCombo")->currentText(), server.url("/north/b.tif"));
}

void BrowseServerTest::whatIsChosenOpensAsALayer()
{
    ServerProcess server(base->filePath("images"));
    open(Gui::ProtocolZWTP);
    connectTo(server);
    QSignalSpy chosen(browser.get(), &Gui::ZWTPBrowser::urlSelected);
    click(item("c.ntf"), true);
    QCOMPARE(chosen.size(), 1);
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY2(layer.setDataSource(browser->getUrl()), qPrintable(layer.getLastError()));
    QCOMPARE(complete(layer, {200, 200, 0, 0}).pixelColor(100, 100).alpha(), 255);
}

void BrowseServerTest::aProtectedImageOpensWithTheCredentialsOfTheDialog()
{
    ServerProcess server(base->filePath("images"),
                         {"--user", "ann", "--password-file", base->filePath("password")});
    open(Gui::ProtocolZWTP);
    child<QLineEdit>("userEdit")->setText("ann");
    child<QLineEdit>("passwordEdit")->setText("sesame");
    connectTo(server);
    click(item("c.ntf"), false);
    const QString url = browser->getUrl();
    QVERIFY(url.endsWith("|ann|sesame"));
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY2(layer.setDataSource(url), qPrintable(layer.getLastError()));
    QCOMPARE(layer.getDataSource(), QString("zwtp://127.0.0.1:%1/north/c.ntf").arg(server.port()));
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "BrowseServerTest");
    BrowseServerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "BrowseServerTest.moc"
