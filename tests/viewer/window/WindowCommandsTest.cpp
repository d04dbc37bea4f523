#include <tests/viewer/support/OpenViewer.h>

#include <viewer/maps/MapDocument.h>
#include <viewer/output/MapPicture.h>
#include <viewer/batch/Startup.h>

#include <tests/support/EachInItsProcess.h>

#include <QMdiArea>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <QWindow>

using namespace Corvane;
using namespace Corvane::Viewer;

class WindowCommandsTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { viewer.reset(); }

    void ctrlNMakesAnEmptyMap();
    void aMapWithoutANameIsUntitled();
    void aMapOfTheUsersStaysThoughNothingOpensInIt();
    void ctrlMShowsTheMapInASecondWindow();
    void aCopyHasStyleOrderAndVisibilityOfItsOwn();
    void aCopyOfAnUnchangedMapIsUnchanged();
    void aCopyOfAChangedMapIsChanged();
    void aCopyIsNoRecentFile();
    void copiesAreNumbered();
    void aCopyKeepsTheNameAsItIs();
    void aSourceThatIsGoneIsAnEmptyPlaceInTheCopy();
    void commandsNeedWindowsToWorkOn();

    void tabsStandInTheirOrderAndCloseMaps();
    void tabsAreKeptForTheNextStart();
    void tabsThatWereKeptAreThere();
    void filesThatOpenTogetherFillTheirTabs();
    void aTabHasTheNameAsItIs();
    void anArrangementEndsTheTabs();
    void ctrlTabGoesRoundInBothDirections();
    void theMenuNumbersTheMapsAndTicksTheActiveOne();
    void closeAllClosesUnchangedMaps();
    void closeAllAsksOfEachChangedMap();
    void closeAllEndsWithTheFirstMapThatIsKept();

private:
    void press(int key, Qt::KeyboardModifiers modifiers)
    {
        QTest::keyClick(viewer->window->windowHandle(), Qt::Key(key), modifiers);
    }
    QStringList titles() const
    {
        QStringList all;
        for (const MapWindow* map : viewer->window->getMapWindows()) {
            all << map->windowTitle();
        }
        return all;
    }
    QStringList windowMenu() const;
    QMessageBox* question() const
    {
        return viewer->window->findChild<QMessageBox*>("saveQuestion");
    }

    std::unique_ptr<OpenViewer> viewer;
};

void WindowCommandsTest::init()
{
    const bool withTabs = qstrcmp(QTest::currentTestFunction(), "tabsThatWereKeptAreThere") == 0;
    viewer = std::make_unique<OpenViewer>(withTabs ? QVariantMap{{"Viewer/Windows/Tabs", true}}
                                                   : QVariantMap());
}

/// Below the last separator; the ticked one in brackets.
QStringList WindowCommandsTest::windowMenu() const
{
    auto* const menu = viewer->window->findChild<QMenu*>("windowMenu");
    emit menu->aboutToShow();
    emit menu->aboutToShow(); // a second time adds nothing
    QStringList entries;
    for (const QAction* entry : menu->actions()) {
        if (entry->isSeparator()) {
            entries.clear();
        } else {
            entries << (entry->isChecked() ? "[" + entry->text() + "]" : entry->text());
        }
    }
    return entries;
}

void WindowCommandsTest::ctrlNMakesAnEmptyMap()
{
    viewer->openMap({"one.tif"});
    press(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(viewer->window->getMapWindows().size(), 2);
    MapWindow* const made = viewer->window->getMapWindows().last();
    QCOMPARE(viewer->window->getActiveMapWindow(), made);
    QCOMPARE(made->getView()->getNumberOfLayers(), 0);
    QVERIFY(!made->getDocument()->isChanged());
}

void WindowCommandsTest::aMapWithoutANameIsUntitled()
{
    press(Qt::Key_N, Qt::ControlModifier);
    MapWindow* const made = viewer->window->getMapWindows().last();
    QCOMPARE(made->windowTitle(), QString("Untitled"));
    QCOMPARE(windowMenu(), QStringList("[&1 Untitled]"));
    made->open(viewer->path("one.tif"));
    QTRY_COMPARE(made->windowTitle(), QString("one.tif"));
}

/// One that was made for a source goes with it; this one the user has made.
void WindowCommandsTest::aMapOfTheUsersStaysThoughNothingOpensInIt()
{
    press(Qt::Key_N, Qt::ControlModifier);
    const QPointer<MapWindow> made = viewer->window->getMapWindows().last();
    const QPointer<MapWindow> emptied = viewer->openMap({"one.tif"});
    emptied->getView()->deleteAllLayers();
    viewer->window->addFiles({viewer->path("gone.tif")}, made);
    viewer->window->addFiles({viewer->path("gone.tif")}, emptied);
    QTRY_VERIFY(viewer->window->findChild<QMessageBox*>("openFailures"));
    QTRY_VERIFY(!made->isOpening() && !emptied->isOpening());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(made && emptied);
    QVERIFY(made->isVisible() && emptied->isVisible());
    QCOMPARE(made->windowTitle(), QString("Untitled"));
}

void WindowCommandsTest::ctrlMShowsTheMapInASecondWindow()
{
    MapWindow* const original = viewer->openMap({"one.tif", "two.tif"});
    original->showNormal();
    original->resize(480, 430);
    original->getView()->setBounds(500100.25, 4649900.5, 500200.75, 4649800.0);
    original->getView()->setDescription("Two images");
    QColor grey(200, 201, 202);
    original->getView()->setBackgroundColor(grey);
    viewer->complete(original);

    press(Qt::Key_M, Qt::ControlModifier);
    MapWindow* const copy = viewer->window->getMapWindows().last();
    QTRY_COMPARE(viewer->layersOf(copy), QStringList({"one.tif", "two.tif"}));
    viewer->complete(copy);
    QCOMPARE(viewer->window->getActiveMapWindow(), copy);
    QCOMPARE(copy->getView()->getDescription(), QString("Two images"));
    QCOMPARE(copy->getView()->getBackgroundColor(), grey);
    QCOMPARE(copy->getView()->size(), original->getView()->size());
    QCOMPARE(copy->getView()->getBounds(), original->getView()->getBounds());
    QVERIFY(copy->getView()->getLayerAt(0) != original->getView()->getLayerAt(0));
    QCOMPARE(paintMapPicture(*copy->getView(), 1.0), paintMapPicture(*original->getView(), 1.0));

    original->close();
    question()->button(QMessageBox::Discard)->click();
    QTRY_COMPARE(viewer->window->getMapWindows(), QList<MapWindow*>{copy});
    QVERIFY(copy->getView()->getLayerAt(0)->isValid());
}

void WindowCommandsTest::aCopyHasStyleOrderAndVisibilityOfItsOwn()
{
    MapWindow* const original = viewer->openMap({"one.tif", "two.tif"});
    Map::Layer* const upper = original->getView()->getLayerAt(1);
    upper->setVisible(false);
    upper->setProperty("Transparency", 0.25);
    upper->setDescription("Above");
    original->getView()->moveLayer(1, 0);

    viewer->action("actionCloneMap")->trigger();
    MapWindow* const copy = viewer->window->getMapWindows().last();
    QTRY_COMPARE(viewer->layersOf(copy), QStringList({"Above", "one.tif"}));
    Map::Layer* const copied = copy->getView()->getLayerAt(0);
    QVERIFY(!copied->isVisible());
    QCOMPARE(copied->property("Transparency"), QVariant(0.25));
    copied->setVisible(true);
    copied->setProperty("Transparency", 0.5);
    QVERIFY(!upper->isVisible());
    QCOMPARE(upper->property("Transparency"), QVariant(0.25));
}

void WindowCommandsTest::aCopyOfAnUnchangedMapIsUnchanged()
{
    MapWindow* const original = viewer->openMap({"one.tif"});
    QVERIFY(!original->getDocument()->isChanged());
    viewer->action("actionCloneMap")->trigger();
    MapWindow* const copy = viewer->window->getMapWindows().last();
    QTRY_COMPARE(viewer->layersOf(copy), QStringList("one.tif"));
    QTRY_VERIFY(!copy->isOpening());
    QVERIFY(!copy->getDocument()->isChanged());
    QCOMPARE(copy->windowTitle(), QString("one.tif:2"));
}

void WindowCommandsTest::aCopyOfAChangedMapIsChanged()
{
    MapWindow* const original = viewer->openMap({"one.tif"});
    original->getView()->setDescription("Mine");
    QVERIFY(original->getDocument()->isChanged());
    viewer->action("actionCloneMap")->trigger();
    MapWindow* const copy = viewer->window->getMapWindows().last();
    QTRY_COMPARE(copy->windowTitle(), QString("one.tif:2 *"));
    QVERIFY(copy->getDocument()->isChanged());
    QVERIFY(copy->getDocument()->getFileName().isEmpty());
}

void WindowCommandsTest::aCopyIsNoRecentFile()
{
    MapWindow* const original = viewer->openMap({"one.tif"});
    viewer->action("actionCloneMap")->trigger();
    MapWindow* const copy = viewer->window->getMapWindows().last();
    QSignalSpy recent(copy, &MapWindow::opened);
    QTRY_VERIFY(!copy->isOpening());
    QCOMPARE(recent.count(), 0);
    QVERIFY(original != copy);
}

void WindowCommandsTest::copiesAreNumbered()
{
    viewer->openMap({"one.tif"});
    viewer->action("actionCloneMap")->trigger();
    viewer->action("actionCloneMap")->trigger(); // a copy of the copy
    QTRY_COMPARE(titles(), QStringList({"one.tif", "one.tif:2", "one.tif:3"}));
    QPointer<MapWindow> second = viewer->window->getMapWindows().at(1);
    second->close();
    QTRY_VERIFY(!second);
    viewer->action("actionCloneMap")->trigger();
    QTRY_COMPARE(titles(), QStringList({"one.tif", "one.tif:3", "one.tif:2"}));
}

void WindowCommandsTest::aCopyKeepsTheNameAsItIs()
{
    QVERIFY(QFile::copy(viewer->path("two.tif"), viewer->path("10:30 100%2 wet.tif")));
    viewer->openMap({"10:30 100%2 wet.tif"});
    viewer->action("actionCloneMap")->trigger();
    viewer->action("actionCloneMap")->trigger();
    QTRY_COMPARE(titles(), QStringList({"10:30 100%2 wet.tif", "10:30 100%2 wet.tif:2",
                                        "10:30 100%2 wet.tif:3"}));
}

void WindowCommandsTest::aSourceThatIsGoneIsAnEmptyPlaceInTheCopy()
{
    viewer->openMap({"one.tif", "two.tif"});
    QVERIFY(QFile::remove(viewer->path("two.tif")));
    viewer->action("actionCloneMap")->trigger();
    MapWindow* const copy = viewer->window->getMapWindows().last();
    QTRY_COMPARE(viewer->layersOf(copy), QStringList({"one.tif", "two.tif"}));
    QVERIFY(copy->getView()->getLayerAt(0)->isValid());
    QVERIFY(!copy->getView()->getLayerAt(1)->isValid());
    QTRY_VERIFY(viewer->window->findChild<QMessageBox*>());
}

void WindowCommandsTest::commandsNeedWindowsToWorkOn()
{
    const QStringList one = {"actionCloneMap", "actionTile", "actionCascade", "actionClose",
                             "actionCloseAll"};
    const QStringList several = {"actionNextWindow", "actionPreviousWindow"};
    const auto enabled = [this](const QStringList& names) {
        QStringList found;
        for (const QString& name : names) {
            if (viewer->action(name)->isEnabled()) {
                found << name;
            }
        }
        return found;
    };
    QCOMPARE(enabled(one + several), QStringList());
    MapWindow* const first = viewer->window->addMapWindow();
    QCOMPARE(enabled(one + several), one);
    viewer->window->addMapWindow();
    QCOMPARE(enabled(one + several), one + several);
    first->close();
    QTRY_COMPARE(enabled(one + several), one);
    QVERIFY(viewer->action("actionNewMap")->isEnabled());
}

void WindowCommandsTest::tabsStandInTheirOrderAndCloseMaps()
{
    viewer->openMap({"one.tif"});
    QPointer<MapWindow> second = viewer->openMap({"two.tif"});
    viewer->action("actionTabs")->trigger();
    QCOMPARE(viewer->window->getMdiArea()->viewMode(), QMdiArea::TabbedView);
    auto* const tabs = viewer->window->getMdiArea()->findChild<QTabBar*>("mapTabs");
    QVERIFY(tabs && tabs->isVisible());
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), QString("one.tif"));
    QCOMPARE(tabs->tabText(1), QString("two.tif"));
    QVERIFY(tabs->tabsClosable());
    QVERIFY(tabs->isMovable());
    QCOMPARE(tabs->currentIndex(), 1);
    QTest::mouseClick(tabs, Qt::LeftButton, Qt::NoModifier, tabs->tabRect(0).center());
    QCOMPARE(titles().indexOf(viewer->window->getActiveMapWindow()->windowTitle()), 0);
    emit tabs->tabCloseRequested(1);
    QTRY_VERIFY(!second);
    QCOMPARE(titles(), QStringList("one.tif"));

    viewer->action("actionTabs")->trigger();
    QCOMPARE(viewer->window->getMdiArea()->viewMode(), QMdiArea::SubWindowView);
    QVERIFY(viewer->window->getActiveMapWindow()->getView()->isVisible());
}

void WindowCommandsTest::tabsAreKeptForTheNextStart()
{
    QVERIFY(!viewer->action("actionTabs")->isChecked());
    viewer->action("actionTabs")->trigger();
    QCOMPARE(Application::instance()->getSettings()->value("Viewer/Windows/Tabs"), QVariant(true));
    viewer->action("actionTabs")->trigger();
    QCOMPARE(Application::instance()->getSettings()->value("Viewer/Windows/Tabs"), QVariant(false));
}

void WindowCommandsTest::tabsThatWereKeptAreThere()
{
    QVERIFY(viewer->action("actionTabs")->isChecked());
    QCOMPARE(viewer->window->getMdiArea()->viewMode(), QMdiArea::TabbedView);
}

void WindowCommandsTest::filesThatOpenTogetherFillTheirTabs()
{
    viewer->action("actionTabs")->trigger();
    viewer->window->openFiles({viewer->path("one.tif"), viewer->path("two.tif")});
    const QList<MapWindow*> maps = viewer->window->getMapWindows();
    QCOMPARE(maps.size(), 2);
    QCOMPARE(viewer->window->getActiveMapWindow(), maps.last());
    QVERIFY(maps.last()->isMaximized());
    viewer->action("actionPreviousWindow")->trigger();
    QCOMPARE(viewer->window->getActiveMapWindow(), maps.first());
    QVERIFY(maps.first()->isMaximized());
}

void WindowCommandsTest::aTabHasTheNameAsItIs()
{
    for (const char* name : {"R&D.tif", "fish & chips.tif"}) {
        QVERIFY(QFile::copy(viewer->path("two.tif"), viewer->path(name)));
    }
    viewer->openMap({"R&D.tif"});
    viewer->action("actionTabs")->trigger();
    auto* const tabs = viewer->window->getMdiArea()->findChild<QTabBar*>("mapTabs");
    QCOMPARE(tabs->tabText(0), QString("R&&D.tif")); // else the letter behind it is underlined
    MapWindow* const second = viewer->openMap({"fish & chips.tif"});
    QTRY_COMPARE(tabs->tabText(1), QString("fish && chips.tif"));
    second->open(viewer->path("one.tif"));
    QTRY_COMPARE(tabs->tabText(1), QString("fish && chips.tif *"));
    tabs->moveTab(1, 0);
    second->getView()->deleteAllLayers();
    QTRY_COMPARE(tabs->tabText(1), QString("R&&D.tif"));
    QCOMPARE(tabs->count(), 2);
}

void WindowCommandsTest::anArrangementEndsTheTabs()
{
    MapWindow* const first = viewer->window->addMapWindow();
    MapWindow* const second = viewer->window->addMapWindow();
    for (const char* name : {"actionTile", "actionCascade"}) {
        viewer->action("actionTabs")->trigger();
        viewer->action(name)->trigger();
        QVERIFY(!viewer->action("actionTabs")->isChecked());
        QCOMPARE(viewer->window->getMdiArea()->viewMode(), QMdiArea::SubWindowView);
        QVERIFY(first->isVisible() && second->isVisible());
        QVERIFY(!first->isMaximized() && !second->isMaximized());
        const bool apart = !first->geometry().intersects(second->geometry().adjusted(1, 1, -1, -1));
        QCOMPARE(apart, qstrcmp(name, "actionTile") == 0);
    }
}

void WindowCommandsTest::ctrlTabGoesRoundInBothDirections()
{
    MapWindow* const first = viewer->window->addMapWindow();
    MapWindow* const second = viewer->window->addMapWindow();
    MapWindow* const third = viewer->window->addMapWindow();
    const auto active = [this] { return viewer->window->getActiveMapWindow(); };
    QCOMPARE(active(), third);
    press(Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(active(), first);
    press(Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(active(), second);
    press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(active(), first);
    press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(active(), third);
}

void WindowCommandsTest::theMenuNumbersTheMapsAndTicksTheActiveOne()
{
    QCOMPARE(windowMenu(), QStringList());
    QVERIFY(QFile::copy(viewer->path("two.tif"), viewer->path("fish & chips.tif")));
    MapWindow* const first = viewer->openMap({"one.tif"});
    viewer->openMap({"fish & chips.tif"});
    QCOMPARE(windowMenu(), QStringList({"&1 one.tif", "[&2 fish && chips.tif]"}));
    auto* const menu = viewer->window->findChild<QMenu*>("windowMenu");
    menu->actions().at(menu->actions().size() - 2)->trigger();
    QCOMPARE(viewer->window->getActiveMapWindow(), first);
    QCOMPARE(windowMenu(), QStringList({"[&1 one.tif]", "&2 fish && chips.tif"}));
    for (int i = 0; i < 8; ++i) {
        viewer->window->addMapWindow();
    }
    QVERIFY(windowMenu().at(8).startsWith("&9 "));
    QVERIFY(windowMenu().at(9).startsWith("[10 "));
}

void WindowCommandsTest::closeAllClosesUnchangedMaps()
{
    viewer->openMap({"one.tif"});
    viewer->openMap({"two.tif"});
    press(Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier);
    QTRY_VERIFY(viewer->window->getMapWindows().isEmpty());
    QVERIFY(viewer->window->isVisible());
    QVERIFY(!question());
}

void WindowCommandsTest::closeAllAsksOfEachChangedMap()
{
    viewer->openMap({"one.tif"});
    viewer->openMap({"two.tif"})->getView()->setDescription("Mine");
    viewer->openMap({"one.tif", "two.tif"});
    viewer->action("actionCloseAll")->trigger();
    QCOMPARE(viewer->window->getMapWindows().size(), 3); // all or none
    for (int asked = 0; asked < 2; ++asked) {
        QTRY_VERIFY(question() && question()->isVisible());
        QMessageBox* const box = question();
        box->button(QMessageBox::Discard)->click();
        delete box;
    }
    QTRY_VERIFY(viewer->window->getMapWindows().isEmpty());
}

void WindowCommandsTest::closeAllEndsWithTheFirstMapThatIsKept()
{
    viewer->openMap({"one.tif"});
    MapWindow* const changed = viewer->openMap({"one.tif", "two.tif"});
    viewer->openMap({"two.tif"});
    viewer->action("actionCloseAll")->trigger();
    QTRY_VERIFY(question() && question()->isVisible());
    QCOMPARE(viewer->window->getActiveMapWindow(), changed);
    question()->button(QMessageBox::Cancel)->click();
    QCoreApplication::processEvents();
    QCOMPARE(viewer->window->getMapWindows().size(), 3);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Window Commands Test");
    WindowCommandsTest test;
    return runEachInItsProcess(test, argc, argv);
}
#include "WindowCommandsTest.moc"
