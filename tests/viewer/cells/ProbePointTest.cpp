#include <tests/viewer/cells/CellStage.h>

#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QMdiArea>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

/// The place whose cells the panels show: where the pointer is, or where it is fixed.
class ProbePointTest : public CellStage
{
    Q_OBJECT
private slots:
    void aClickFixesThePlace();
    void aDragFixesNothing();
    void theButtonFixesAndReleases();
    void keysMoveThePlaceByCells();
    void anotherMapBeginsAnew();
};

void ProbePointTest::aClickFixesThePlace()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    pointAt(60, 45);
    click(deviceOf(60, 45));
    QVERIFY(part<QToolButton>("identifyFixed")->isChecked());
    pointAt(70, 45);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 60, row 45"),
                              patience);
    auto* marker = view->findChild<QWidget*>("probeMarker");
    QVERIFY(marker && marker->isVisible());
    QCOMPARE(marker->geometry().center(), deviceOf(60, 45));

    view->setBounds(1060.0, 4950.0, 1200.0, 4870.0);
    QCOMPARE(marker->geometry().center(), deviceOf(60, 45)); // it keeps to the world

    click(deviceOf(65, 46)); // another place
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 65, row 46"),
                              patience);
    click(deviceOf(65, 46)); // the same again: follow the pointer
    QVERIFY(!part<QToolButton>("identifyFixed")->isChecked());
    QVERIFY(!view->findChild<QWidget*>("probeMarker"));
    pointAt(70, 46);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 70, row 46"),
                              patience);
}

void ProbePointTest::aDragFixesNothing()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    QTest::mousePress(view, Qt::LeftButton, Qt::NoModifier, QPoint(100, 100));
    QMouseEvent move(QEvent::MouseMove, QPoint(120, 110), view->mapToGlobal(QPoint(120, 110)),
                     Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view, &move);
    QTest::mouseRelease(view, Qt::LeftButton, Qt::NoModifier, QPoint(120, 110));
    QVERIFY(!part<QToolButton>("identifyFixed")->isChecked());
    QTest::mouseClick(view, Qt::RightButton, Qt::NoModifier, QPoint(100, 100));
    QTest::mouseClick(view, Qt::LeftButton, Qt::ShiftModifier, QPoint(100, 100));
    QVERIFY(!part<QToolButton>("identifyFixed")->isChecked());
}

void ProbePointTest::theButtonFixesAndReleases()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    pointAt(60, 45);
    auto* const fixed = part<QToolButton>("identifyFixed");
    QTest::mouseClick(fixed, Qt::LeftButton);
    QVERIFY(fixed->isChecked());
    pointAt(70, 45);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 60, row 45"),
                              patience);
    QTest::keyClick(fixed, Qt::Key_Space);
    QVERIFY(!fixed->isChecked());
    action("actionIdentify")->trigger(); // and a panel that goes takes its marker along
    QVERIFY(!view->findChild<QWidget*>("probeMarker"));
    click(deviceOf(60, 45));
    QVERIFY(!fixed->isChecked());
}

void ProbePointTest::keysMoveThePlaceByCells()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    pointAt(60, 45);
    view->setFocus();
    const QRectF before = view->getBounds();
    const struct
    {
        Qt::Key key;
        const char* place;
    } moves[] = {{Qt::Key_Right, "column 61, row 45"},
                 {Qt::Key_Down, "column 61, row 46"},
                 {Qt::Key_Left, "column 60, row 46"},
                 {Qt::Key_Up, "column 60, row 45"}};
    for (const auto& move : moves) {
        QTest::keyClick(view, move.key, Qt::AltModifier);
        QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: ") + move.place,
                                  patience);
    }
    QVERIFY(part<QToolButton>("identifyFixed")->isChecked());
    auto* const tree = part<QTreeWidget>("identifyTree");
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Right, Qt::AltModifier);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 61, row 45"),
                              patience);
    QCOMPARE(view->getBounds(), before);
}

void ProbePointTest::anotherMapBeginsAnew()
{
    MapWindow* const one = openMap("numbers.tif");
    action("actionIdentify")->trigger();
    click(view->rect().center());
    QVERIFY(view->findChild<QWidget*>("probeMarker"));
    Map::MapView* const first = view;
    openMap("plain.tif");
    QVERIFY(!first->findChild<QWidget*>("probeMarker"));
    QVERIFY(!part<QToolButton>("identifyFixed")->isChecked());
    QTRY_VERIFY_WITH_TIMEOUT(identified().value(0).startsWith("plain.tif: "), patience);
    window->getMdiArea()->setActiveSubWindow(one);
    QTRY_VERIFY_WITH_TIMEOUT(identified().value(0).startsWith("numbers.tif: "), patience);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Probe Point Test");
    ProbePointTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "ProbePointTest.moc"
