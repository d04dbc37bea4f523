#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/support/TestImages.h>
#include <tests/viewer/window/WindowStage.h>

#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QFile>
#include <QMdiArea>
#include <QProgressBar>
#include <QStatusBar>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

/// What the window's status bar tells of its maps.
class WindowStatusBarTest : public WindowStage
{
    Q_OBJECT
private slots:
    void theStatusBarShowsWhereThePointerIs();
    void theStatusBarFollowsTheMapUnderThePointer();
    void theStatusBarTellsOfTheActiveWindow();
    void theProgressBarHidesWhenTheMapIsComplete();
    void theStatusBarKeepsItsWidths();
};

void WindowStatusBarTest::theStatusBarShowsWhereThePointerIs()
{
    Map::MapView* view = openMap("metres.tif")->getView();
    view->setBounds(500000.0, 4650000.0, 500000.0 + view->width() - 1,
                    4650000.0 - view->height() + 1);
    for (const char* mode : {"actionRoam", "actionZoom", "actionZoomBox", "actionPoint"}) {
        action(mode)->trigger();
        move(view, QPoint(10, 20));
        QTRY_COMPARE(statusText("coordinates"), QString("X: 500010  Y: 4649980"));
        move(view, QPoint(11, 20));
        QTRY_COMPARE(statusText("coordinates"), QString("X: 500011  Y: 4649980"));
    }
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(view, &leave);
    QCOMPARE(statusText("coordinates"), QString());
}

void WindowStatusBarTest::theStatusBarFollowsTheMapUnderThePointer()
{
    Map::MapView* view = openMap("metres.tif")->getView();
    move(view, QPoint(0, 0));
    view->setBounds(500000.0, 4650000.0, 500000.0 + view->width() - 1,
                    4650000.0 - view->height() + 1);
    QTRY_COMPARE(statusText("coordinates"), QString("X: 500000  Y: 4650000"));
    action("actionZoomOut")->trigger();
    QVERIFY(statusText("coordinates") != QString("X: 500000  Y: 4650000"));
}

void WindowStatusBarTest::theStatusBarTellsOfTheActiveWindow()
{
    MapWindow* metres = openMap("metres.tif");
    const QString ofMetres = shownScale();
    QVERIFY2(ofMetres.startsWith("1:"), qPrintable(ofMetres));
    MapWindow* degrees = openMap("degrees.tif");
    QVERIFY2(shownScale().startsWith("1:") && shownScale() != ofMetres, qPrintable(shownScale()));
    move(degrees->getView(), QPoint(50, 50));
    move(degrees->getView(), QPoint(5, 5));
    QTRY_VERIFY(statusText("coordinates").contains(QChar(0xb0)));

    window->getMdiArea()->setActiveSubWindow(metres);
    QCOMPARE(statusText("coordinates"), QString());
    QCOMPARE(shownScale(), ofMetres);
    action("actionZoomIn")->trigger();
    QVERIFY(shownScale() != ofMetres);
}

void WindowStatusBarTest::theProgressBarHidesWhenTheMapIsComplete()
{
    openMap("metres.tif");
    const auto bar = window->statusBar()->findChild<QProgressBar*>("progress");
    QTRY_VERIFY(!bar->isVisible());

    TestImages::Layout layout;
    layout.size = QSize(1024, 1024);
    layout.noise = true;
    layout.options = QStringList{"TILED=YES"};
    TestImages::writeRgb(path("remote.tif"), layout);
    QFile file(path("remote.tif"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    StallingServer server(file.readAll(), 16384); // its tiles never come
    window->openFiles({server.addressOf("remote.tif")});
    QTRY_VERIFY(bar->isVisible());
    QVERIFY(bar->value() < 100);
    action("actionClose")->trigger();
    QTRY_VERIFY(!bar->isVisible());
}

void WindowStatusBarTest::theStatusBarKeepsItsWidths()
{
    const auto edges = [this] {
        QList<int> x;
        for (const char* name : {"coordinateForm", "coordinates", "scale", "zoom", "progress"}) {
            const auto part = window->statusBar()->findChild<QWidget*>(name);
            x << part->x() << part->width();
        }
        return x;
    };
    const QList<int> empty = edges();
    Map::MapView* view = openMap("degrees.tif")->getView();
    move(view, QPoint(50, 50));
    move(view, QPoint(5, 5));
    QTRY_VERIFY(!statusText("coordinates").isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(edges(), empty);
    window->statusBar()->findChild<QProgressBar*>("progress")->show();
    QCoreApplication::processEvents();
    QCOMPARE(edges(), empty);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Status Bar Test");
    WindowStatusBarTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "WindowStatusBarTest.moc"
