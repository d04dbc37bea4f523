#include <tests/viewer/support/TestImages.h>

#include <viewer/maps/MapNotice.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>
#include <viewer/frame/Tasks.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/ILayerOverviews.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

using State = Map::OverviewProgress::State;

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time

} // namespace

/// How overviews are offered, built and given up in the program's window.
class OverviewCommandsTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void aLargeFileIsOfferedOverviews();
    void theOfferBuildsThem();
    void notNowHoldsForTheTime();
    void escapePutsTheOfferAway();
    void neverForThisFileHoldsForGood();
    void neverAskHoldsForAllFiles();
    void theCommandBuildsWithoutAnOffer();
    void theOfferGoesWithItsLayer();
    void theOfferFollowsTheMap();
    void theTaskCanBeGivenUp();
    void closingAsksFirst();
    void aMapThatStaysIsAskedAboutAgain();
    void aFailureIsToldOverTheMap();
    void tasksComeAndGo();

private:
    template <typename Widget>
    Widget* find(const char* name) const
    {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    QString image(const QString& name, const QSize& size = QSize(1500, 1200)) const;
    MapWindow* open(const QString& file) const;
    bool isOffered() const { return find<MapNotice>("mapNotice") != nullptr; }
    State stateOf(MapWindow* map) const;

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<ViewerWindow> window;
};

void OverviewCommandsTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QSettings& settings = *Application::instance()->getSettings();
    settings.remove("Viewer");
    settings.setValue("Plugins/Raster/LargeImagePixels", 1000000);
    window = std::make_unique<ViewerWindow>();
    window->resize(1000, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void OverviewCommandsTest::cleanup()
{
    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QString OverviewCommandsTest::image(const QString& name, const QSize& size) const
{
    TestImages::Layout layout;
    layout.size = size;
    layout.options = QStringList{"TILED=YES"};
    TestImages::writeRgb(folder->filePath(name), layout);
    return folder->filePath(name);
}

MapWindow* OverviewCommandsTest::open(const QString& file) const
{
    window->openFiles({file});
    MapWindow* const map = window->getMapWindows().last();
    const auto isOpen = [map] {
        return map->getView()->getNumberOfLayers() == 1 && map->getView()->getLayerAt(0)->isValid();
    };
    return QTest::qWaitFor(isOpen, generous) ? map : nullptr;
}

State OverviewCommandsTest::stateOf(MapWindow* map) const
{
    auto* const overviews = qobject_cast<Map::ILayerOverviews*>(map->getView()->getLayerAt(0));
    return overviews->getOverviewProgress().state;
}

void OverviewCommandsTest::aLargeFileIsOfferedOverviews()
{
    QVERIFY(open(image("small.tif", QSize(600, 500))));
    QTRY_VERIFY(!find<QAction>("actionBuildOverviews")->isEnabled());
    QVERIFY(!isOffered());
    MapWindow* const map = open(image("big.tif"));
    QVERIFY(map);
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    QCOMPARE(find<QLabel>("noticeText")->text(),
             QString("\"big.tif\" is large and has no overviews, so showing much of it is slow."));
    QVERIFY(find<MapNotice>("mapNotice")->isVisible());
    QVERIFY(find<QAction>("actionBuildOverviews")->isEnabled());
    QVERIFY(!find<QWidget>("taskBar")->isVisible());
}

void OverviewCommandsTest::theOfferBuildsThem()
{
    MapWindow* const map = open(image("big.tif"));
    QVERIFY(map);
    Map::Layer* const layer = map->getView()->getLayerAt(0);
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    find<QPushButton>("buildOverviews")->click();
    QVERIFY(find<QWidget>("taskBar")->isVisible());
    QCOMPARE(find<QLabel>("taskTitle")->text(), QString("Overviews of big.tif"));
    QTRY_VERIFY_WITH_TIMEOUT(!layer->property("Overviews").toString().isEmpty(), generous);
    QTRY_VERIFY_WITH_TIMEOUT(!find<QWidget>("taskBar")->isVisible(), generous);
    QVERIFY(QFile::exists(folder->filePath("big.tif.ovr")));
    QCOMPARE(map->getView()->getLayerAt(0), layer); // the same one
    QTRY_VERIFY_WITH_TIMEOUT(!isOffered(), generous);
    QTRY_VERIFY(!find<QAction>("actionBuildOverviews")->isEnabled());
}

void OverviewCommandsTest::notNowHoldsForTheTime()
{
    QVERIFY(open(image("big.tif")));
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    find<QPushButton>("noticeClose")->click();
    QTRY_VERIFY_WITH_TIMEOUT(!isOffered(), generous);
    QVERIFY(open(image("other.tif"))); // which makes it look again
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    QVERIFY(find<QLabel>("noticeText")->text().startsWith("\"other.tif\""));
}

void OverviewCommandsTest::escapePutsTheOfferAway()
{
    QVERIFY(open(image("big.tif")));
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    QTest::keyClick(find<QPushButton>("buildOverviews"), Qt::Key_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(!isOffered(), generous);
}

void OverviewCommandsTest::neverForThisFileHoldsForGood()
{
    const QString file = image("big.tif");
    QVERIFY(open(file));
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    find<QAction>("neverForThisFile")->trigger();
    QTRY_VERIFY_WITH_TIMEOUT(!isOffered(), generous);
    QCOMPARE(Application::instance()->getSettings()->value("Viewer/Overviews/Never").toStringList(),
             QStringList({file}));
    MapWindow* const again = open(file);
    QVERIFY(again);
    QVERIFY(open(image("other.tif")));
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous); // of the other one
    QVERIFY(find<QLabel>("noticeText")->text().startsWith("\"other.tif\""));
}

void OverviewCommandsTest::neverAskHoldsForAllFiles()
{
    QVERIFY(open(image("big.tif")));
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    find<QAction>("neverAsk")->trigger();
    QTRY_VERIFY_WITH_TIMEOUT(!isOffered(), generous);
    QVERIFY(open(image("other.tif")));
    QTRY_VERIFY_WITH_TIMEOUT(find<QAction>("actionBuildOverviews")->isEnabled(), generous);
    QVERIFY(!isOffered());
}

void OverviewCommandsTest::theCommandBuildsWithoutAnOffer()
{
    Application::instance()->getSettings()->setValue("Viewer/Overviews/Ask", false);
    MapWindow* const map = open(image("big.tif"));
    QVERIFY(map);
    QTRY_VERIFY_WITH_TIMEOUT(find<QAction>("actionBuildOverviews")->isEnabled(), generous);
    find<QAction>("actionBuildOverviews")->trigger();
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(map), State::Done, generous);
}

void OverviewCommandsTest::theOfferGoesWithItsLayer()
{
    MapWindow* const map = open(image("big.tif"));
    QVERIFY(map);
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    delete map;
    QTRY_VERIFY_WITH_TIMEOUT(!isOffered(), generous);
    QTRY_VERIFY(!find<QAction>("actionBuildOverviews")->isEnabled());
}

void OverviewCommandsTest::theOfferFollowsTheMap()
{
    MapWindow* const map = open(image("big.tif"));
    QVERIFY(map);
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    const auto* const notice = find<MapNotice>("mapNotice");
    QTRY_COMPARE(notice->geometry().topLeft(), map->getView()->geometry().topLeft());
    window->resize(800, 600);
    QTRY_COMPARE(notice->width(), map->getView()->width());
    QVERIFY(notice->height() < map->getView()->height() / 2);
}

void OverviewCommandsTest::theTaskCanBeGivenUp()
{
    MapWindow* const map = open(image("big.tif", QSize(6000, 6000)));
    QVERIFY(map);
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    find<QPushButton>("buildOverviews")->click();
    QCOMPARE(stateOf(map), State::Building);
    QCOMPARE(find<QToolButton>("taskCancel")->toolTip(), QString("Give up: Overviews of big.tif"));
    find<QToolButton>("taskCancel")->click();
    QCOMPARE(stateOf(map), State::None);
    QVERIFY(!find<QWidget>("taskBar")->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(find<QAction>("actionBuildOverviews")->isEnabled(), generous);
    QVERIFY(!QFile::exists(folder->filePath("big.tif.ovr")));
}

void OverviewCommandsTest::closingAsksFirst()
{
    MapWindow* const map = open(image("big.tif", QSize(6000, 6000)));
    QVERIFY(map);
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    find<QPushButton>("buildOverviews")->click();
    window->close();
    QVERIFY(window->isVisible());
    QVERIFY(find<QMessageBox>("overviewQuestion"));
    find<QPushButton>("keepBuilding")->click();
    QTRY_VERIFY(!find<QMessageBox>("overviewQuestion"));
    QVERIFY(window->isVisible());
    if (stateOf(map) == State::Building) { // it may be faster than the dialog
        window->close();
        QVERIFY(find<QMessageBox>("overviewQuestion"));
        find<QPushButton>("giveUp")->click();
        QTRY_VERIFY(!window->isVisible());
    }
}

void OverviewCommandsTest::aMapThatStaysIsAskedAboutAgain()
{
    MapWindow* const map = open(image("big.tif", QSize(6000, 6000)));
    QVERIFY(map);
    map->getView()->setDescription("another map");
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    find<QPushButton>("buildOverviews")->click();
    find<QAction>("actionCloseAll")->trigger();
    find<QMessageBox>("saveQuestion")->button(QMessageBox::Discard)->click();
    QVERIFY(find<QMessageBox>("overviewQuestion")); // no event has come that could end the task
    find<QPushButton>("keepBuilding")->click();
    QTRY_VERIFY_WITH_TIMEOUT(!find<QWidget>("taskBar")->isVisible(), generous);
    QTRY_VERIFY(!find<QMessageBox>("saveQuestion"));
    map->close();
    QVERIFY(find<QMessageBox>("saveQuestion"));
    QVERIFY(map->isVisible());
}

void OverviewCommandsTest::aFailureIsToldOverTheMap()
{
    const QString file = image("big.tif");
    QVERIFY(open(file));
    QTRY_VERIFY_WITH_TIMEOUT(isOffered(), generous);
    QFile torn(file);
    QVERIFY(torn.resize(torn.size() / 2));
    find<QPushButton>("buildOverviews")->click();
    const auto isTold = [this] {
        for (const QLabel* label : window->findChildren<QLabel*>("noticeText")) {
            if (label->text().startsWith("The overviews of \"big.tif\" cannot be built: ")) {
                return true;
            }
        }
        return false;
    };
    QTRY_VERIFY_WITH_TIMEOUT(isTold(), generous);
    QVERIFY(!find<QWidget>("taskBar")->isVisible());
}

void OverviewCommandsTest::tasksComeAndGo()
{
    auto* const tasks = window->findChild<Tasks*>();
    QVERIFY(tasks);
    const QSignalSpy changed(tasks, &Tasks::changed);
    Task* const first = tasks->begin("one");
    Task* const second = tasks->begin("two of 100%2");
    QCOMPARE(tasks->getTasks(), QList<Task*>({first, second}));
    QCOMPARE(find<QLabel>("taskTitle")->text(), QString("one (and 1 more)"));
    first->setPercent(40);
    first->setPercent(40); // nothing new
    QCOMPARE(find<QProgressBar>("taskProgress")->value(), 40);
    QCOMPARE(find<QLabel>("taskTitle")->toolTip(), QString("one: 40 %\ntwo of 100%2: 0 %"));
    const QSignalSpy cancelled(first, &Task::cancelled);
    find<QToolButton>("taskCancel")->click();
    QCOMPARE(cancelled.size(), 1);
    first->end();
    first->end();
    QCOMPARE(find<QLabel>("taskTitle")->text(), QString("two of 100%2"));
    second->end();
    QVERIFY(!find<QWidget>("taskBar")->isVisible());
    QCOMPARE(changed.size(), 5);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Viewer Test");
    OverviewCommandsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "OverviewCommandsTest.moc"
