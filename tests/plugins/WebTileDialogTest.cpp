#include <plugins/webtiles/AddWebTilesDialog.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/WebTileTools.h>

#include <plugins/common/TileCache.h>
#include <plugins/webtiles/WebTileLayer.h>
#include <plugins/webtiles/WebTilePlugin.h>

#include <corvane/map/MapView.h>

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QMainWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QThreadPool>
#include <QTimer>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int generous = 60000; // milliseconds

template <typename Widget>
Widget* part(QWidget& dialog, const char* name)
{
    return dialog.findChild<Widget*>(QLatin1String(name));
}

QPushButton* addButton(QWidget& dialog)
{
    return part<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Ok);
}

void type(QWidget& dialog, const char* name, const QString& text)
{
    auto* const line = part<QLineEdit>(dialog, name);
    line->setFocus();
    line->selectAll();
    QTest::keyClicks(line, text);
}

void press(QAbstractButton* button)
{
    QTest::mouseClick(button, Qt::LeftButton);
}

bool hasPicture(QWidget& dialog)
{
    return !part<QLabel>(dialog, "previewLabel")->pixmap(Qt::ReturnByValue).isNull();
}

QString status(QWidget& dialog)
{
    return part<QLabel>(dialog, "statusLabel")->text();
}

} // namespace

/// The dialog that adds web tiles, with a server behind it and a user before it.
class WebTileDialogTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void nothingCanBeAddedUntested();
    void aTestShowsTheTile();
    void whatIsChangedAfterATestHasToBeTestedAgain_data();
    void whatIsChangedAfterATestHasToBeTestedAgain();
    void aTestThatFailsSaysWhy_data();
    void aTestThatFailsSaysWhy();
    void anotherTileCanBeTested();
    void enterTests();
    void theDialogGoesWhileATestIsUnderWay();
    void aTestThatWasChangedMeanwhileShowsNothing();
    void theLayerHasWhatWasEntered();
    void theActionAddsALayerToTheView();
    void cancelAddsNothing();
};

void WebTileDialogTest::initTestCase()
{
    TileCache::instance().setFolder(QString(), 0);
}

void WebTileDialogTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
}

void WebTileDialogTest::nothingCanBeAddedUntested()
{
    AddWebTilesDialog dialog;
    dialog.show();
    QVERIFY(!addButton(dialog)->isEnabled());
    QVERIFY(!part<QPushButton>(dialog, "testButton")->isEnabled());
    type(dialog, "urlLineEdit", "http://127.0.0.1/{z}/{x}/{y}.png");
    QVERIFY(!addButton(dialog)->isEnabled());
    QVERIFY(part<QPushButton>(dialog, "testButton")->isEnabled());
}

void WebTileDialogTest::aTestShowsTheTile()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) { return tileReply(tile).held(); });
    AddWebTilesDialog dialog;
    dialog.show();
    type(dialog, "urlLineEdit", server.tiles());
    QSignalSpy tested(&dialog, &AddWebTilesDialog::tested);
    press(part<QPushButton>(dialog, "testButton"));
    QVERIFY(server.waitForHeld(1));
    QVERIFY(!hasPicture(dialog));
    server.release();
    QTRY_COMPARE_WITH_TIMEOUT(tested.size(), 1, generous);
    QVERIFY(hasPicture(dialog));
    const QImage picture =
        part<QLabel>(dialog, "previewLabel")->pixmap(Qt::ReturnByValue).toImage();
    QCOMPARE(picture.pixel(picture.rect().center()), (TileNumbers{0, 0, 0}.colour()));
    QVERIFY(addButton(dialog)->isEnabled());
}

void WebTileDialogTest::whatIsChangedAfterATestHasToBeTestedAgain_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"urlLineEdit", "hostsLineEdit", "userAgentLineEdit", "minZoomSpinBox",
                             "maxZoomSpinBox", "tileSizeComboBox", "testZoomSpinBox"})
    {
        QTest::newRow(name) << QByteArray(name);
    }
}

void WebTileDialogTest::whatIsChangedAfterATestHasToBeTestedAgain()
{
    QFETCH(QByteArray, name);
    TileServer server;
    AddWebTilesDialog dialog;
    dialog.show();
    type(dialog, "urlLineEdit", server.tiles());
    press(part<QPushButton>(dialog, "testButton"));
    QTRY_VERIFY_WITH_TIMEOUT(addButton(dialog)->isEnabled(), generous);
    auto* const widget = part<QWidget>(dialog, name.constData());
    widget->setFocus();
    if (qobject_cast<QLineEdit*>(widget)) {
        QTest::keyClicks(widget, "a");
    } else {
        QTest::keyClick(widget, qobject_cast<QComboBox*>(widget) ? Qt::Key_Down : Qt::Key_Up);
    }
    QVERIFY(!addButton(dialog)->isEnabled());
    QVERIFY(!hasPicture(dialog));
}

void WebTileDialogTest::aTestThatFailsSaysWhy_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("words");
    QTest::newRow("a server error") << "/error/{z}/{x}/{y}"
                                    << "status 500";
    QTest::newRow("no such tile") << "/nothing/{z}/{x}/{y}"
                                  << "no such tile";
    QTest::newRow("no places") << "/{z}.png"
                               << "no places";
    QTest::newRow("an unknown place") << "/{z}/{x}/{y}/{day}"
                                      << "{day}";
    QTest::newRow("another kind of source") << "/image.tif"
                                            << "no source of web tiles";
}

void WebTileDialogTest::aTestThatFailsSaysWhy()
{
    QFETCH(QString, path);
    QFETCH(QString, words);
    TileServer server;
    server.on("/error/0/0/0", HttpReply::withStatus(500));
    server.on("/nothing/0/0/0", HttpReply::withStatus(404));
    AddWebTilesDialog dialog;
    dialog.show();
    type(dialog, "urlLineEdit", server.url(path));
    QSignalSpy tested(&dialog, &AddWebTilesDialog::tested);
    press(part<QPushButton>(dialog, "testButton"));
    QTRY_COMPARE_WITH_TIMEOUT(tested.size(), 1, generous);
    QVERIFY2(status(dialog).contains(words), qPrintable(status(dialog)));
    QVERIFY(!hasPicture(dialog));
    QVERIFY(!addButton(dialog)->isEnabled());
}

void WebTileDialogTest::anotherTileCanBeTested()
{
    TileServer server;
    AddWebTilesDialog dialog;
    dialog.show();
    type(dialog, "urlLineEdit", server.tiles());
    part<QSpinBox>(dialog, "testZoomSpinBox")->setValue(4);
    part<QSpinBox>(dialog, "testColumnSpinBox")->setValue(99); // there are 16
    part<QSpinBox>(dialog, "testRowSpinBox")->setValue(6);
    press(part<QPushButton>(dialog, "testButton"));
    QTRY_VERIFY_WITH_TIMEOUT(hasPicture(dialog), generous);
    QCOMPARE(server.requests().back().target, std::string("/4/15/6.png"));
}

void WebTileDialogTest::enterTests()
{
    TileServer server;
    AddWebTilesDialog dialog;
    dialog.show();
    type(dialog, "urlLineEdit", server.tiles());
    QTest::keyClick(part<QLineEdit>(dialog, "urlLineEdit"), Qt::Key_Return);
    QTRY_VERIFY_WITH_TIMEOUT(hasPicture(dialog), generous);
    QVERIFY(dialog.isVisible());
}

void WebTileDialogTest::theDialogGoesWhileATestIsUnderWay()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) { return tileReply(tile).held(); });
    {
        AddWebTilesDialog dialog;
        dialog.show();
        type(dialog, "urlLineEdit", server.tiles());
        press(part<QPushButton>(dialog, "testButton"));
        QVERIFY(server.waitForHeld(1));
    }
    QVERIFY2(QThreadPool::globalInstance()->waitForDone(10000), "the answer is never released");
}

void WebTileDialogTest::aTestThatWasChangedMeanwhileShowsNothing()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) { return tileReply(tile).held(); });
    AddWebTilesDialog dialog;
    dialog.show();
    type(dialog, "urlLineEdit", server.tiles());
    press(part<QPushButton>(dialog, "testButton"));
    QVERIFY(server.waitForHeld(1));
    QTest::keyClicks(part<QLineEdit>(dialog, "urlLineEdit"), "?");
    server.release();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QCoreApplication::processEvents();
    QVERIFY(!hasPicture(dialog));
    QVERIFY(!addButton(dialog)->isEnabled());
}

void WebTileDialogTest::theLayerHasWhatWasEntered()
{
    AddWebTilesDialog dialog;
    type(dialog, "urlLineEdit", " http://{s}.example.org/{z}/{x}/{y}.png ");
    type(dialog, "hostsLineEdit", "n,m");
    type(dialog, "attributionLineEdit", "by somebody");
    type(dialog, "userAgentLineEdit", "me@example.org");
    part<QSpinBox>(dialog, "minZoomSpinBox")->setValue(2);
    part<QComboBox>(dialog, "tileSizeComboBox")->setCurrentText("512");
    const auto layer = dialog.makeLayer();
    QVERIFY(layer);
    QCOMPARE(layer->getDataSource(), QString("http://{s}.example.org/{z}/{x}/{y}.png"));
    QCOMPARE(layer->getHosts(), QString("n,m"));
    QCOMPARE(layer->getAttribution(), QString("by somebody"));
    QCOMPARE(layer->getUserAgentSuffix(), QString("me@example.org"));
    QCOMPARE(layer->getMinZoom(), 2);
    QCOMPARE(layer->getMaxZoom(), 19);
    QCOMPARE(layer->getTileSize(), 512);
}

void WebTileDialogTest::theActionAddsALayerToTheView()
{
    TileServer server;
    QMainWindow window;
    auto* const view = new MapView(&window);
    window.setCentralWidget(view);
    window.resize(600, 500);
    window.show();
    WebTilePlugin plugin;
    QTimer::singleShot(0, this, [&server] {
        auto* const dialog = qobject_cast<AddWebTilesDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        type(*dialog, "urlLineEdit", server.tiles());
        press(part<QPushButton>(*dialog, "testButton"));
        QTRY_VERIFY_WITH_TIMEOUT(addButton(*dialog)->isEnabled(), generous);
        press(addButton(*dialog));
    });
    plugin.getAddLayerActions().first()->trigger();
    QCOMPARE(view->getNumberOfLayers(), 1);
    QCOMPARE(view->getLayerAt(0)->getDataSource(), server.tiles());
    QTRY_COMPARE_WITH_TIMEOUT(int(view->getLayerAt(0)->getPercentComplete()), 100, generous);
    const auto showsTheWorld = [view] {
        const QColor middle = view->grab().toImage().pixelColor(view->rect().center());
        return middle != view->getBackgroundColor();
    };
    QTRY_VERIFY_WITH_TIMEOUT(showsTheWorld(), generous);
}

void WebTileDialogTest::cancelAddsNothing()
{
    QMainWindow window;
    auto* const view = new MapView(&window);
    window.setCentralWidget(view);
    window.show();
    WebTilePlugin plugin;
    QTimer::singleShot(0, this, [] {
        QWidget* const dialog = QApplication::activeModalWidget();
        QVERIFY(dialog);
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    plugin.getAddLayerActions().first()->trigger();
    QCOMPARE(view->getNumberOfLayers(), 0);
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "WebTileDialogTest");
    WebTileDialogTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WebTileDialogTest.moc"
