#include <tests/viewer/support/ReferencedLayer.h>

#include <viewer/measuring/MapMeasuring.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/measuring/MeasurePanel.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QMdiArea>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

class MeasureCommandTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void theKeyBeginsAndEndsMeasuring();
    void eachMapMeasuresForItself();
    void withoutAMapThereIsNothingToMeasure();
    void escapeReleasesTheSwitch();
    void aFullScreenMapIsMeasuredToo();
    void theKeyboardCursorClicksPoints();
    void aMapThatIsMeasuredCanBeClosed();

private:
    MapWindow* addMap()
    {
        MapWindow* const map = window->addMapWindow();
        map->getView()->addLayer(new ReferencedLayer("EPSG:25833"));
        return map;
    }
    QAction* action(const QString& name) const { return window->findChild<QAction*>(name); }

    std::unique_ptr<ViewerWindow> window;
};

void MeasureCommandTest::init()
{
    Application::instance()->getSettings()->clear();
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    window = std::make_unique<ViewerWindow>();
    window->resize(900, 700);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void MeasureCommandTest::cleanup()
{
    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void MeasureCommandTest::theKeyBeginsAndEndsMeasuring()
{
    Map::MapView* const view = addMap()->getView();
    view->setFocus();
    QTest::keyClick(view, Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(MapMeasuring::of(view));
    QVERIFY(action("actionMeasure")->isChecked());
    QVERIFY(view->hasFocus());
    QVERIFY(view->findChild<MeasurePanel*>()->isVisible());
    QTest::keyClick(view, Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(!MapMeasuring::of(view));
    QVERIFY(!action("actionMeasure")->isChecked());
}

void MeasureCommandTest::eachMapMeasuresForItself()
{
    MapWindow* const first = addMap();
    action("actionMeasure")->trigger();
    MapWindow* const second = addMap();
    QVERIFY(!action("actionMeasure")->isChecked());
    QVERIFY(MapMeasuring::of(first->getView()) && !MapMeasuring::of(second->getView()));
    action("actionMeasure")->trigger();
    QVERIFY(MapMeasuring::of(second->getView()));
    QTest::keyClick(second->getView(), Qt::Key_Escape);
    QVERIFY(!action("actionMeasure")->isChecked());
    window->getMdiArea()->setActiveSubWindow(first);
    QVERIFY(action("actionMeasure")->isChecked());
}

void MeasureCommandTest::withoutAMapThereIsNothingToMeasure()
{
    QVERIFY(!action("actionMeasure")->isEnabled());
    addMap();
    QVERIFY(action("actionMeasure")->isEnabled());
    action("actionMeasure")->trigger();
    action("actionClose")->trigger();
    QTRY_VERIFY(!action("actionMeasure")->isEnabled());
    QVERIFY(!action("actionMeasure")->isChecked());
}

void MeasureCommandTest::escapeReleasesTheSwitch()
{
    Map::MapView* const view = addMap()->getView();
    action("actionMeasure")->trigger();
    QTest::keyClick(view, Qt::Key_Escape);
    QVERIFY(!action("actionMeasure")->isChecked());
    action("actionMeasure")->trigger();
    QVERIFY(MapMeasuring::of(view));
}

void MeasureCommandTest::aFullScreenMapIsMeasuredToo()
{
    MapWindow* const map = addMap();
    action("actionMeasure")->trigger();
    action("actionFullScreenMap")->trigger();
    Map::MapView* const view = map->getView();
    QVERIFY(view->isFullScreen());
    QTest::mouseClick(view, Qt::LeftButton, Qt::NoModifier, view->rect().center());
    QCOMPARE(MapMeasuring::of(view)->getPoints().size(), 1);
    QTest::keyClick(view, Qt::Key_Escape); // ends measuring, not the full screen
    QVERIFY(!MapMeasuring::of(view) && view->isFullScreen());
    QTest::keyClick(view, Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(MapMeasuring::of(view));
}

void MeasureCommandTest::theKeyboardCursorClicksPoints()
{
    Map::MapView* const view = addMap()->getView();
    action("actionMeasure")->trigger();
    action("actionKeyboardCursor")->trigger();
    QTest::keyClick(view, Qt::Key_Return);
    QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(view, Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(MapMeasuring::of(view)->getPoints().size(), 2);
    QVERIFY(MapMeasuring::of(view)->hasEnded());
    QTest::keyClick(view, Qt::Key_Escape); // of the cursor
    QVERIFY(MapMeasuring::of(view));
    QTest::keyClick(view, Qt::Key_Escape);
    QVERIFY(!MapMeasuring::of(view));
}

void MeasureCommandTest::aMapThatIsMeasuredCanBeClosed()
{
    MapWindow* const map = addMap();
    action("actionMeasure")->trigger();
    QTest::mouseClick(map->getView(), Qt::LeftButton, Qt::NoModifier, QPoint(400, 400));
    map->close();
    QTRY_VERIFY(window->getMapWindows().isEmpty());
    Map::MapView* const view = addMap()->getView();
    action("actionMeasure")->trigger();
    QVERIFY(action("actionMeasure")->isChecked());
    // a view that goes under the pointer is told that this leaves it
    const QPoint inside = view->rect().bottomRight() - QPoint(50, 50);
    QTest::mouseMove(window->windowHandle(), view->mapTo(window.get(), inside));
    QCoreApplication::processEvents();
    window.reset();
}

int main(int argc, char** argv)
{
    QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    Application application(argc, argv, "Corvane Viewer Test");
    MeasureCommandTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "MeasureCommandTest.moc"
