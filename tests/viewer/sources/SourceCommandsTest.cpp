#include <tests/viewer/support/TestImages.h>

#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/frame/Panels.h>
#include <viewer/sources/SourceCommands.h>
#include <viewer/sources/SourceTexts.h>
#include <viewer/sources/SourceWatch.h>
#include <viewer/sources/SourcesPanel.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/plugins/SourceServer.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QDateTime>
#include <QDockWidget>
#include <QDomDocument>
#include <QLabel>
#include <QMdiArea>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>

#include <algorithm>
#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

using State = Map::SourceReport::State;

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time

QString element(const char* layerClass, const QString& source, const QString& name)
{
    return QString("<layer class=\"Corvane::Map::%1\"><datasource value=\"%2\"/>"
                   "<param name=\"Description\" value=\"%3\"/>"
                   "<param name=\"Deadline\" value=\"1\"/></layer>")
        .arg(layerClass, source, name);
}

} // namespace

/// What the window tells of layers whose servers do not answer.
class SourceCommandsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aMapOfDeadServersOpensAtOnceAndFillsWhenTheyCome_data();
    void aMapOfDeadServersOpensAtOnceAndFillsWhenTheyCome();
    void aMapOfDeadServersIsSavedWhole();
    void aRefusalIsToldAsBefore();
    void thePanelListsTheLayersOfAllMaps();
    void thePanelStandsStillWhileItIsHidden();
    void aRowGoesWithItsLayer();
    void theButtonsAskAgain();
    void theStatusLineIsAboutTheActiveMap();
    void theStatusLineOpensThePanel();
    void statesHaveTheirTexts_data();
    void statesHaveTheirTexts();
    void marksDifferInGreyToo();

private:
    template <typename Widget>
    Widget* find(const char* name) const
    {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    QString write(const QString& name, const QStringList& layers) const;
    QString mapOf(int port, const QString& name = "far.cmap") const;
    MapWindow* open(const QString& file, int layers);
    QList<Map::Layer*> remoteLayers(MapWindow* map) const;
    bool allWait(MapWindow* map) const;
    QTreeWidget* showPanel() const;
    QStringList column(int number) const;
    void serve(SourceServer& server) const;

    QTemporaryDir images;
    QByteArray raster;
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<ViewerWindow> window;
};

void SourceCommandsTest::initTestCase()
{
    qputenv("GDAL_HTTP_TIMEOUT", "1"); // seconds, for a server that never answers
    qputenv("GDAL_HTTP_CONNECTTIMEOUT", "1");
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    TestImages::Layout layout;
    layout.size = QSize(300, 200);
    layout.epsg = 3857;
    layout.cell = 100.0;
    TestImages::writeRgb(images.filePath("near.tif"), layout);
    QFile file(images.filePath("near.tif"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    raster = file.readAll();
}

void SourceCommandsTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    Application::instance()->getSettings()->remove("Viewer");
    Application::instance()->getSettings()->remove("Gui/MainWindow");
    window = std::make_unique<ViewerWindow>();
    window->resize(1000, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void SourceCommandsTest::cleanup()
{
    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QString SourceCommandsTest::write(const QString& name, const QStringList& layers) const
{
    QFile file(folder->filePath(name));
    const bool ok = file.open(QIODevice::WriteOnly);
    const QString text = "<!DOCTYPE CorvaneMapCanvas><mapcanvas><bounds tlx=\"500000\" "
                         "tly=\"4650000\" brx=\"530000\" bry=\"4630000\"/><layers>" +
                         layers.join(QString()) + "</layers></mapcanvas>";
    return ok && file.write(text.toUtf8()) > 0 ? file.fileName() : QString();
}

/// A file of this machine at the bottom, and above it three whose server is at this port.
QString SourceCommandsTest::mapOf(int port, const QString& name) const
{
    return write(name,
                 {element("GdalRasterLayer", images.filePath("near.tif"), "near"),
                  element("GdalRasterLayer", sourceAt(port, "/far.tif"), "raster"),
                  element("WebTileLayer", sourceAt(port, "/wmts.xml"), "tiles"),
                  element("ImageServerLayer", sourceAt(port, "/image.tif|ann|secret"), "image")});
}

MapWindow* SourceCommandsTest::open(const QString& file, int layers)
{
    window->openFiles({file});
    MapWindow* const map = window->getMapWindows().last();
    const auto isOpen = [map, layers] {
        return !map->isOpening() && map->getView()->getNumberOfLayers() == layers;
    };
    return QTest::qWaitFor(isOpen, generous) ? map : nullptr;
}

QList<Map::Layer*> SourceCommandsTest::remoteLayers(MapWindow* map) const
{
    QList<Map::Layer*> layers;
    for (Map::Layer* layer : map->getView()->getLayers()) {
        if (SourceWatch::reportOf(layer).state != State::Local) {
            layers << layer;
        }
    }
    return layers;
}

bool SourceCommandsTest::allWait(MapWindow* map) const
{
    const QList<Map::Layer*> layers = remoteLayers(map);
    return std::all_of(layers.begin(), layers.end(), [](Map::Layer* layer) {
        return SourceWatch::reportOf(layer).state == State::Waiting;
    });
}

QTreeWidget* SourceCommandsTest::showPanel() const
{
    find<QDockWidget>("sourcesDock")->show();
    return find<QTreeWidget>("sources");
}

QStringList SourceCommandsTest::column(int number) const
{
    QStringList texts;
    const auto* const list = find<QTreeWidget>("sources");
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        texts << list->topLevelItem(i)->text(number);
    }
    return texts;
}

void SourceCommandsTest::serve(SourceServer& server) const
{
    server.serve("/far.tif", raster);
    server.on("/wmts.xml", HttpReply::data(capabilities(server.port()), "application/xml"));
}

void SourceCommandsTest::aMapOfDeadServersOpensAtOnceAndFillsWhenTheyCome_data()
{
    QTest::addColumn<bool>("silent");
    QTest::newRow("connections are refused") << false;
    QTest::newRow("connections are taken and nothing comes") << true;
}

void SourceCommandsTest::aMapOfDeadServersOpensAtOnceAndFillsWhenTheyCome()
{
    QFETCH(bool, silent);
    auto blackHole = std::make_unique<QTcpServer>(); // its system takes connections, nobody reads
    QVERIFY(blackHole->listen(QHostAddress::LocalHost));
    const int port = blackHole->serverPort();
    if (!silent) {
        blackHole.reset();
    }
    MapWindow* const map = open(mapOf(port), 4);
    QVERIFY(map);
    QSignalSpy failures(map, &MapWindow::openFailed);
    Map::MapView& view = *map->getView();
    QTRY_VERIFY_WITH_TIMEOUT(view.getLayerAt(0)->isValid(), generous); // the others hold up nothing
    QStringList names;
    for (Map::Layer* layer : view.getLayers()) {
        names << layer->getDescription();
    }
    QCOMPARE(names, QStringList({"near", "raster", "tiles", "image"}));
    QTRY_VERIFY_WITH_TIMEOUT(allWait(map), generous);
    QCOMPARE(failures.size(), 0);
    QVERIFY(!find<QMessageBox>("openFailures"));
    QTRY_COMPARE_WITH_TIMEOUT(find<QToolButton>("sourceTrouble")->accessibleName(),
                              QString("3 layers are not reachable"), generous);

    blackHole.reset();
    SourceServer server(port);
    serve(server);
    for (Map::Layer* layer : remoteLayers(map)) {
        QTRY_VERIFY_WITH_TIMEOUT(layer->isValid(), generous);
    }
    const QRgb tile = qRgb(20, 160, 60); // of the server
    QTRY_COMPARE_WITH_TIMEOUT(view.grab().toImage().pixel(view.width() / 2, view.height() / 2),
                              tile, generous);
    QTRY_VERIFY_WITH_TIMEOUT(!find<QToolButton>("sourceTrouble")->isVisible(), generous);
    QCOMPARE(failures.size(), 0);
}

void SourceCommandsTest::aMapOfDeadServersIsSavedWhole()
{
    const int port = closedPort();
    MapWindow* const map = open(mapOf(port), 4);
    QVERIFY(map);
    QTRY_VERIFY_WITH_TIMEOUT(allWait(map), generous);
    QSignalSpy saved(map->getDocument(), &MapDocument::saved);
    map->getDocument()->save(folder->filePath("again.cmap"));
    QTRY_COMPARE_WITH_TIMEOUT(saved.size(), 1, generous);
    QVERIFY(saved.first().first().toBool());

    QFile file(folder->filePath("again.cmap"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QDomDocument document;
    QVERIFY(document.setContent(&file));
    QStringList sources;
    const QDomNodeList elements = document.elementsByTagName("datasource");
    for (int i = 0; i < elements.size(); ++i) {
        sources << elements.at(i).toElement().attribute("value");
    }
    QCOMPARE(sources, QStringList({images.filePath("near.tif"), sourceAt(port, "/far.tif"),
                                   sourceAt(port, "/wmts.xml"), sourceAt(port, "/image.tif")}));
}

void SourceCommandsTest::aRefusalIsToldAsBefore()
{
    const SourceServer server; // which has no such file
    const QString file =
        write("gone.cmap", {element("GdalRasterLayer", server.url("/gone.tif"), "gone")});
    window->openFiles({file});
    MapWindow* const map = window->getMapWindows().last();
    const QSignalSpy failures(map, &MapWindow::openFailed);
    QTRY_COMPARE_WITH_TIMEOUT(failures.size(), 1, generous);
    QCOMPARE(SourceWatch::reportOf(map->getView()->getLayerAt(0)).state, State::Failed);
}

void SourceCommandsTest::thePanelListsTheLayersOfAllMaps()
{
    const int port = closedPort();
    QTreeWidget* const list = showPanel();
    QVERIFY(find<QLabel>("noSources")->isVisible());
    QVERIFY(!list->isVisible());
    MapWindow* const map = open(mapOf(port), 4);
    QVERIFY(map);
    QVERIFY(
        open(write("other.cmap", {element("GdalRasterLayer", sourceAt(port, "/b.tif"), "b")}), 1));
    QTRY_COMPARE_WITH_TIMEOUT(column(0), QStringList({"image", "tiles", "raster", "b"}), generous);
    QVERIFY(list->isVisible());
    QVERIFY(!find<QLabel>("noSources")->isVisible());
    const QString host = QString("127.0.0.1:%1").arg(port);
    QCOMPARE(column(1), QStringList({host, host, host, host}));
    QCOMPARE(column(3), QStringList({"far.cmap", "far.cmap", "far.cmap", "other.cmap"}));
    const auto allTell = [this] {
        return column(2)
                   .filter(QRegularExpression("^waiting until \\d\\d:\\d\\d:\\d\\d "
                                              "\\(\\d+ s\\): .+"))
                   .size() == 4;
    };
    QTRY_VERIFY_WITH_TIMEOUT(allTell(), generous);
    QVERIFY(!list->topLevelItem(0)->icon(2).isNull());

    list->setCurrentItem(list->topLevelItem(2));
    map->getView()->getLayerAt(1)->setDescription("renamed");
    QTRY_COMPARE_WITH_TIMEOUT(column(0).value(2), QString("renamed"), generous);
    QCOMPARE(list->currentItem(), list->topLevelItem(2));
}

void SourceCommandsTest::thePanelStandsStillWhileItIsHidden()
{
    QTreeWidget* const list = showPanel();
    find<QDockWidget>("sourcesDock")->hide();
    MapWindow* const map = open(mapOf(closedPort()), 4);
    QVERIFY(map);
    QTRY_VERIFY_WITH_TIMEOUT(find<QToolButton>("sourceTrouble")->isVisible(), generous);
    QCOMPARE(list->topLevelItemCount(), 0);
    showPanel();
    QTRY_COMPARE_WITH_TIMEOUT(list->topLevelItemCount(), 3, generous);
}

void SourceCommandsTest::aRowGoesWithItsLayer()
{
    QTreeWidget* const list = showPanel();
    MapWindow* const map = open(mapOf(closedPort()), 4);
    QVERIFY(map);
    QTRY_COMPARE_WITH_TIMEOUT(list->topLevelItemCount(), 3, generous);
    list->setCurrentItem(list->topLevelItem(1));
    QString uid = map->getView()->getLayerAt(2)->getUid().toString();
    map->getView()->deleteLayer(uid);
    find<QPushButton>("tryAgain")->click(); // the row is there for up to a second
    QTRY_COMPARE_WITH_TIMEOUT(column(0), QStringList({"image", "raster"}), generous);
    QVERIFY(!list->currentItem());
    // the window goes with its layers
    delete map;
    QTRY_COMPARE_WITH_TIMEOUT(list->topLevelItemCount(), 0, generous);
    QTRY_VERIFY_WITH_TIMEOUT(!find<QToolButton>("sourceTrouble")->isVisible(), generous);
}

void SourceCommandsTest::theButtonsAskAgain()
{
    const SourceServer server; // which knows the image, and none of the files
    QTreeWidget* const list = showPanel();
    MapWindow* const map = open(mapOf(server.port()), 4);
    QVERIFY(map);
    const auto state = [map](int layer) {
        return SourceWatch::reportOf(map->getView()->getLayerAt(layer)).state;
    };
    QTRY_COMPARE_WITH_TIMEOUT(state(1), State::Failed, generous);
    QTRY_COMPARE_WITH_TIMEOUT(state(2), State::Failed, generous);
    QTRY_VERIFY_WITH_TIMEOUT(map->getView()->getLayerAt(3)->isValid(), generous);
    QTRY_COMPARE_WITH_TIMEOUT(column(2).filter("failed: ").size(), 2, generous);
    auto* const tryAgain = find<QPushButton>("tryAgain");
    QVERIFY(!tryAgain->isEnabled());
    list->setCurrentItem(list->topLevelItem(0));
    QVERIFY(!tryAgain->isEnabled()); // it is well
    list->setCurrentItem(list->topLevelItem(2));
    QVERIFY(tryAgain->isEnabled());
    tryAgain->click();
    QCOMPARE(column(2).value(2), QString("waiting for the first answer"));
    QVERIFY(column(2).value(1).startsWith("failed: "));
    QVERIFY(!tryAgain->isEnabled());
    QTRY_COMPARE_WITH_TIMEOUT(state(1), State::Failed, generous);

    QTRY_COMPARE_WITH_TIMEOUT(column(2).filter("failed: ").size(), 2, generous);
    find<QPushButton>("tryAll")->click();
    QCOMPARE(column(2).filter("waiting for the first answer").size(), 2);
    QVERIFY(!find<QPushButton>("tryAll")->isEnabled());
    QVERIFY(!find<QAction>("actionTrySources")->isEnabled());
    QTRY_VERIFY_WITH_TIMEOUT(find<QAction>("actionTrySources")->isEnabled(), generous);
    find<QAction>("actionTrySources")->trigger();
    QCOMPARE(column(2).filter("waiting for the first answer").size(), 2);
}

void SourceCommandsTest::theStatusLineIsAboutTheActiveMap()
{
    auto* const line = find<QToolButton>("sourceTrouble");
    QVERIFY(!line->isVisible());
    const int port = closedPort();
    MapWindow* const one = open(
        write("one.cmap", {element("GdalRasterLayer", sourceAt(port, "/b.tif"), "R&amp;D")}), 1);
    QVERIFY(one);
    QTRY_VERIFY_WITH_TIMEOUT(allWait(one) && line->isVisible(), generous);
    QVERIFY2(line->text().startsWith("R&&D: "), qPrintable(line->text())); // shown as R&D
    QVERIFY2(QRegularExpression("^R&D: waiting until \\d\\d:\\d\\d:\\d\\d: .+")
                 .match(line->accessibleName())
                 .hasMatch(),
             qPrintable(line->accessibleName()));
    MapWindow* const near =
        open(write("two.cmap", {element("GdalRasterLayer", images.filePath("near.tif"), "n")}), 1);
    QVERIFY(near);
    QTRY_VERIFY_WITH_TIMEOUT(!line->isVisible(), generous);
    window->getMdiArea()->setActiveSubWindow(one);
    QTRY_VERIFY_WITH_TIMEOUT(line->isVisible(), generous);
}

void SourceCommandsTest::theStatusLineOpensThePanel()
{
    QVERIFY(open(mapOf(closedPort()), 4));
    auto* const line = find<QToolButton>("sourceTrouble");
    QTRY_VERIFY_WITH_TIMEOUT(line->isVisible(), generous);
    QVERIFY(!find<QDockWidget>("sourcesDock")->isVisible());
    QTest::mouseClick(line, Qt::LeftButton);
    QVERIFY(find<QDockWidget>("sourcesDock")->isVisible());
    QTRY_COMPARE_WITH_TIMEOUT(find<QTreeWidget>("sources")->topLevelItemCount(), 3, generous);
}

void SourceCommandsTest::statesHaveTheirTexts_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QString>("text");
    const auto row = [](State state, const char* reason, const char* text) {
        QTest::newRow(text) << static_cast<int>(state) << QString(reason) << QString(text);
    };
    row(State::Local, "", "on this computer");
    row(State::Unasked, "", "not asked yet");
    row(State::Opening, "old", "waiting for the first answer");
    row(State::Reachable, "", "reachable");
    row(State::Slow, "", "slow: 3.2 s for an answer");
    row(State::Waiting, "no route", "waiting until 14:03:12: no route");
    row(State::Waiting, "", "waiting until 14:03:12");
    row(State::Stale, "no route", "stale, shown as it was: no route");
    row(State::Failed, "no such file", "failed: no such file");
    row(State::Failed, "", "failed");
}

void SourceCommandsTest::statesHaveTheirTexts()
{
    QFETCH(int, state);
    QFETCH(QString, reason);
    QFETCH(QString, text);
    QLocale::setDefault(QLocale("en_US"));
    Map::SourceReport report;
    report.state = static_cast<State>(state);
    report.reason = reason;
    report.answerTime = 3200;
    const QDateTime then(QDate(2020, 1, 2), QTime(14, 3, 12));
    report.waitingUntil = then.toMSecsSinceEpoch();
    QCOMPARE(lastingStateText(report), text);
    QCOMPARE(sourceStateText(report), text.replace("14:03:12", "14:03:12 (0 s)"));
}

void SourceCommandsTest::marksDifferInGreyToo()
{
    QVector<QImage> marks;
    for (const State state : {State::Unasked, State::Reachable, State::Slow, State::Waiting,
                              State::Stale, State::Failed})
    {
        Map::SourceReport report;
        report.state = state;
        const QImage mark = sourceStateIcon(report).pixmap(16).toImage();
        QVERIFY(!mark.isNull());
        const QImage grey = mark.convertToFormat(QImage::Format_Grayscale8);
        QVERIFY(!marks.contains(grey));
        marks << grey;
    }
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Viewer Test");
    SourceCommandsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "SourceCommandsTest.moc"
