#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/WebTileTools.h>

#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QElapsedTimer>
#include <QMdiArea>
#include <QPointer>
#include <QProcess>
#include <QSettings>
#include <QThreadPool>
#include <QtTest>

#include <algorithm>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

namespace {

constexpr int threads = 8;      // of the pool: as many transfers are under way at once
constexpr int generous = 60000; // milliseconds, for what has to come at some time
// A map as high as this shows the whole world from zoom 4, which has 256 tiles.
constexpr QSize hundredsOfTiles(4400, 3400);

/// A server that takes every request for a tile and answers none.
class SilentServer : public TileServer
{
public:
    SilentServer()
    {
        onTile([](const TileNumbers&) { return HttpReply::data("").held(); });
    }

    /// Whether the map of hundreds of tiles has all transfers under way that are possible at once:
    /// the four tiles of zoom 1, which lie beneath it, and as many of its own.
    bool isBusy() const
    {
        const std::vector<HttpRequest> asked = requests();
        const auto count =
            std::count_if(asked.begin(), asked.end(), [](const HttpRequest& request) {
                return TileNumbers::of(request).zoom == 4;
            });
        return count >= threads - 4;
    }
};

/// The program, and a hand that works it.
class ViewerProcess
{
public:
    ViewerProcess(const QSize& size, const QStringList& arguments)
    {
        const QString hand = QString("userhand:%1x%2").arg(size.width()).arg(size.height());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.insert("QT_PLUGIN_PATH", USER_HAND_FOLDER);
        environment.insert("QT_QPA_GENERIC_PLUGINS", hand);
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(CORVANE_VIEWER, arguments);
    }
    ~ViewerProcess()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished();
        }
    }

    void order(const QByteArray& line) { process.write(line + '\n'); }
    bool tells(const QByteArray& line)
    {
        return QTest::qWaitFor(
            [this, &line] {
                output += process.readAllStandardOutput();
                return output.contains(line);
            },
            generous);
    }
    bool ends()
    {
        return QTest::qWaitFor([this] { return process.state() == QProcess::NotRunning; },
                               generous);
    }
    bool endedWell() const
    {
        return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    }

private:
    QProcess process;
    QByteArray output;
};

} // namespace

/// Leaving a map of web tiles, and the program, while hundreds of them are asked for and the server
/// answers nothing, ever: what ends here ends by itself.
class WebTilesLeavingTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void aMapWindowCloses();
    void theProgramEnds_data();
    void theProgramEnds();
};

void WebTilesLeavingTest::initTestCase()
{
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
}

void WebTilesLeavingTest::aMapWindowCloses()
{
    LogLines log;
    SilentServer server;
    ViewerWindow window;
    window.resize(hundredsOfTiles);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.openFiles({server.tiles()});
    QTRY_VERIFY_WITH_TIMEOUT(server.isBusy(), generous);
    const QPointer<MapWindow> map(window.getActiveMapWindow());
    QVERIFY(map);
    QCOMPARE(int(map->getView()->getLayerAt(0)->getPercentComplete()), 0);

    QElapsedTimer clock;
    clock.start();
    map->close();
    QTRY_VERIFY_WITH_TIMEOUT(!map, generous);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    qInfo("closed, and all transfers ended, after %lld ms", clock.elapsed());
    // transfers that had run into their deadlines would have ended, too, and been told of
    QCOMPARE(log.holding("left alone for"), QStringList());
    for (const HttpRequest& request : server.requests()) { // no other plugin has tried its luck
        QVERIFY2(TileNumbers::of(request).zoom >= 0, request.target.c_str());
    }
}

void WebTilesLeavingTest::theProgramEnds_data()
{
    QTest::addColumn<QByteArray>("order");
    QTest::addColumn<bool>("closesMap");
    QTest::newRow("its window is closed") << QByteArray("close window") << false;
    QTest::newRow("it is told to quit") << QByteArray("quit") << false;
    QTest::newRow("the map is closed, then the window") << QByteArray("close window") << true;
}

void WebTilesLeavingTest::theProgramEnds()
{
    QFETCH(QByteArray, order);
    QFETCH(bool, closesMap);
    SilentServer server;
    ViewerProcess viewer(hundredsOfTiles, {server.tiles()});
    QTRY_VERIFY_WITH_TIMEOUT(server.isBusy(), generous);

    QElapsedTimer clock;
    clock.start();
    if (closesMap) {
        viewer.order("close map");
        QVERIFY(viewer.tells("map closed"));
    }
    viewer.order(order);
    QVERIFY2(viewer.ends(), "the server still answers nothing");
    qInfo("ended after %lld ms", clock.elapsed());
    QVERIFY(viewer.endedWell());
    QVERIFY2(viewer.tells("ended in order"), "it waited for the pool, and gave up");
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Viewer Test");
    WebTilesLeavingTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WebTilesLeavingTest.moc"
