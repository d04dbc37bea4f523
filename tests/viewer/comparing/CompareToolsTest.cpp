#include <viewer/comparing/FlickerBar.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/output/MapPicture.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>
#include <viewer/comparing/SwipeDivider.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <tests/gui/MapTreeTools.h>
#include <tests/plugins/TestRasters.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QDir>
#include <QDomDocument>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QMdiArea>
#include <QPointer>
#include <QSettings>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

namespace {

constexpr int patience = 30000; // milliseconds, for what has to come at some time

} // namespace

/// Swiping and flickering in the program's window, on real images: one red, one blue, one green.
class CompareToolsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void swipingShowsTheTopLayerOnOneSide();
    void theMouseDragsTheDivider();
    void keysMoveTheDivider_data();
    void keysMoveTheDivider();
    void theDividerTurns();
    void theDividerKeepsItsShareOfTheView();
    void endingSwipingLeavesTheMapAsItWas();
    void swipingTakesTheSelectedLayer();
    void swipingFollowsLayersThatGo();
    void withoutALayerThereIsNothingToSwipe();
    void picturesShowTheWholeLayer();

    void flickeringHidesAndShowsTheLayer();
    void theRateIsKept();
    void flippingByHandStopsTheClockwork();
    void theBarEndsFlickering();
    void oneToolEndsTheOther();

    void anotherMapEndsBoth();
    void aMapMayCloseMeanwhile_data();
    void aMapMayCloseMeanwhile();
    void theWindowMayCloseMeanwhile_data();
    void theWindowMayCloseMeanwhile();
    void aMapOnTheWholeScreenIsSwipedToo();
    void picturesOfTheTools();

private:
    MapWindow* openMap(const QStringList& names);
    QAction* action(const char* name) const { return window->findChild<QAction*>(name); }
    QColor at(int x, int y) const { return view->grab().toImage().pixelColor(x, y); }
    QColor leftSide() const { return at(20, view->height() - 20); }
    QColor rightSide() const { return at(view->width() - 20, view->height() - 20); }
    SwipeDivider* divider() const { return shown<SwipeDivider>("swipeDivider"); }
    FlickerBar* bar() const { return shown<FlickerBar>("flickerBar"); }
    /// Null where it is on its way out.
    template <typename Widget>
    Widget* shown(const char* name) const
    {
        const auto found = view->findChildren<Widget*>(name);
        for (Widget* widget : found) {
            if (!widget->isHidden()) {
                return widget;
            }
        }
        return nullptr;
    }

    QTemporaryDir folder;
    std::unique_ptr<ViewerWindow> window;
    QPointer<Map::MapView> view;
};

void CompareToolsTest::initTestCase()
{
    QVERIFY(folder.isValid());
    Application::instance()->getSettings()->clear();
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    const char* const names[] = {"red.tif", "green.tif", "blue.tif"};
    for (int i = 0; i < 3; ++i) {
        RasterRecipe recipe;
        recipe.value = [i](int band, int, int) { return band == i + 1 ? 255 : 0; };
        QVERIFY(makeRaster(folder.filePath(names[i]), recipe));
    }
}

void CompareToolsTest::init()
{
    window = std::make_unique<ViewerWindow>();
    window->resize(900, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void CompareToolsTest::cleanup()
{
    window.reset();
}

/// From the bottom up; all of the view is inside of the images.
MapWindow* CompareToolsTest::openMap(const QStringList& names)
{
    window->openFiles({folder.filePath(names.first())});
    MapWindow* const map = window->getActiveMapWindow();
    view = map->getView();
    for (int i = 0; i < names.size(); ++i) {
        if (i > 0) {
            window->addFiles({folder.filePath(names[i])}, map);
        }
        if (!QTest::qWaitFor([this, i] { return view->getNumberOfLayers() == i + 1; }, patience)) {
            qWarning("%s does not open", qPrintable(names[i]));
        }
    }
    view->setBounds(1300.0, 4700.0, 1700.0, 4400.0);
    auto* const tree = window->findChild<Map::MapTreeView*>();
    const bool complete = QTest::qWaitFor(
        [&] {
            for (Map::Layer* layer : view->getLayers()) {
                if (layer->getPercentComplete() < 100) {
                    return false;
                }
            }
            return listed(*tree).size() == names.size();
        },
        patience);
    if (!complete) {
        qWarning("the map is not complete");
    }
    return map;
}

void CompareToolsTest::swipingShowsTheTopLayerOnOneSide()
{
    openMap({"blue.tif", "red.tif"});
    QCOMPARE(rightSide(), QColor(Qt::red));
    action("actionSwipe")->trigger();
    QVERIFY(action("actionSwipe")->isChecked());
    QVERIFY(divider());
    QVERIFY(divider()->hasFocus());
    QCOMPARE(divider()->getPosition(), qRound(view->width() / 2.0));
    QCOMPARE(leftSide(), QColor(Qt::red));
    QCOMPARE(rightSide(), QColor(Qt::blue));
    const int x = divider()->getPosition();
    divider()->hide();
    QCOMPARE(at(x - 1, 20), QColor(Qt::red)); // right up to the line
    QCOMPARE(at(x, 20), QColor(Qt::blue));
}

void CompareToolsTest::theMouseDragsTheDivider()
{
    openMap({"blue.tif", "red.tif"});
    action("actionSwipe")->trigger();
    const QRectF before = view->getBounds();
    SwipeDivider* const line = divider();
    const int start = line->getPosition();
    QTest::mousePress(line, Qt::LeftButton, Qt::NoModifier, line->rect().center() + QPoint(2, 0));
    const QPoint target = line->rect().center() + QPoint(102, 30);
    QMouseEvent move(QEvent::MouseMove, target, line->mapToGlobal(target), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(line, &move);
    QTest::mouseRelease(line, Qt::LeftButton, Qt::NoModifier, line->rect().center());
    QCOMPARE(line->getPosition(), start + 100); // it stays where it was gripped
    QCOMPARE(view->getBounds(), before);        // the map does not move with it
    QCOMPARE(at(start + 80, 20), QColor(Qt::red));
    QMouseEvent far(QEvent::MouseMove, QPoint(5000, 0), line->mapToGlobal(QPoint(5000, 0)),
                    Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(line, &far);
    QCOMPARE(line->getPosition(), view->width());
    QCOMPARE(rightSide(), QColor(Qt::red));
}

void CompareToolsTest::keysMoveTheDivider_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifier");
    QTest::addColumn<int>("distance");
    QTest::newRow("left") << int(Qt::Key_Left) << int(Qt::NoModifier) << -10;
    QTest::newRow("right") << int(Qt::Key_Right) << int(Qt::NoModifier) << 10;
    QTest::newRow("up") << int(Qt::Key_Up) << int(Qt::NoModifier) << -10;
    QTest::newRow("down") << int(Qt::Key_Down) << int(Qt::NoModifier) << 10;
    QTest::newRow("a pixel") << int(Qt::Key_Right) << int(Qt::ControlModifier) << 1;
    QTest::newRow("far") << int(Qt::Key_Left) << int(Qt::ShiftModifier) << -50;
    QTest::newRow("to the front") << int(Qt::Key_Home) << int(Qt::NoModifier) << -100000;
    QTest::newRow("to the end") << int(Qt::Key_End) << int(Qt::NoModifier) << 100000;
}

void CompareToolsTest::keysMoveTheDivider()
{
    QFETCH(int, key);
    QFETCH(int, modifier);
    QFETCH(int, distance);
    openMap({"blue.tif", "red.tif"});
    action("actionSwipe")->trigger();
    const QRectF before = view->getBounds();
    const int start = divider()->getPosition();
    QTest::keyClick(divider(), Qt::Key(key), Qt::KeyboardModifier(modifier));
    QCOMPARE(divider()->getPosition(), qBound(0, start + distance, view->width()));
    QCOMPARE(view->getMapCanvas()->getScreenClip(),
             QRect(0, 0, divider()->getPosition(), view->height()));
    QCOMPARE(view->getBounds(), before);
}

void CompareToolsTest::theDividerTurns()
{
    openMap({"blue.tif", "red.tif"});
    action("actionSwipe")->trigger();
    QTest::keyClick(divider(), Qt::Key_Space);
    QCOMPARE(divider()->getOrientation(), Qt::Horizontal);
    QCOMPARE(divider()->getPosition(), qRound(view->height() / 2.0));
    QCOMPARE(at(20, 20), QColor(Qt::red));
    QCOMPARE(at(view->width() - 20, 20), QColor(Qt::red));
    QCOMPARE(leftSide(), QColor(Qt::blue));
    action("actionSwipe")->trigger();
    action("actionSwipe")->trigger();
    QCOMPARE(divider()->getOrientation(), Qt::Horizontal); // as it was left
    QTest::mouseDClick(divider(), Qt::LeftButton);
    QCOMPARE(divider()->getOrientation(), Qt::Vertical);
    QCOMPARE(rightSide(), QColor(Qt::blue));
}

void CompareToolsTest::theDividerKeepsItsShareOfTheView()
{
    MapWindow* const map = openMap({"blue.tif", "red.tif"});
    action("actionSwipe")->trigger();
    map->showNormal();
    map->resize(600, 400);
    divider()->setPosition(view->width() / 4);
    map->resize(440, 300);
    QTRY_COMPARE(divider()->getPosition(), qRound(view->width() / 4.0));
    QCOMPARE(divider()->height(), view->height());
    QCOMPARE(view->getMapCanvas()->getScreenClip(),
             QRect(0, 0, divider()->getPosition(), view->height()));
}

void CompareToolsTest::endingSwipingLeavesTheMapAsItWas()
{
    MapWindow* const map = openMap({"blue.tif", "red.tif"});
    const std::unique_ptr<QDomDocument> before(view->saveMapXML());
    const bool wasChanged = map->getDocument()->isChanged();
    action("actionSwipe")->trigger();
    const std::unique_ptr<QDomDocument> meanwhile(view->saveMapXML());
    QCOMPARE(meanwhile->toString(), before->toString());
    QVERIFY(view->getLayerAt(1)->isVisible());
    QTest::keyClick(divider(), Qt::Key_Escape);
    QVERIFY(!divider());
    QVERIFY(!action("actionSwipe")->isChecked());
    QVERIFY(view->hasFocus());
    QVERIFY(!view->getMapCanvas()->getClippedLayer());
    QCOMPARE(rightSide(), QColor(Qt::red));
    QCOMPARE(map->getDocument()->isChanged(), wasChanged);
    map->resize(300, 200); // what is left of the divider hears of it
    QCoreApplication::processEvents();
    QVERIFY(!view->getMapCanvas()->getClippedLayer());
}

void CompareToolsTest::swipingTakesTheSelectedLayer()
{
    openMap({"blue.tif", "green.tif", "red.tif"});
    auto* const tree = window->findChild<Map::MapTreeView*>();
    view->getLayerAt(2)->setVisible(false);
    clickOn(*tree, itemOf(*tree, "green.tif"));
    action("actionSwipe")->trigger();
    QCOMPARE(leftSide(), QColor(0, 255, 0));
    QCOMPARE(rightSide(), QColor(Qt::blue));
    clickOn(*tree, itemOf(*tree, "blue.tif")); // beneath the others: they hide the difference
    QTRY_COMPARE(view->getMapCanvas()->getClippedLayer(), view->getLayerAt(0));
    QCOMPARE(rightSide(), QColor(0, 255, 0));
    clickOn(*tree, itemOf(*tree, "red.tif")); // which is hidden: the topmost that is not
    QTRY_COMPARE(view->getMapCanvas()->getClippedLayer(), view->getLayerAt(1));
}

void CompareToolsTest::swipingFollowsLayersThatGo()
{
    openMap({"blue.tif", "green.tif", "red.tif"});
    action("actionSwipe")->trigger();
    QCOMPARE(view->getMapCanvas()->getClippedLayer(), view->getLayerAt(2));
    view->deleteLayerAt(2);
    QTRY_COMPARE(view->getMapCanvas()->getClippedLayer(), view->getLayerAt(1));
    QCOMPARE(leftSide(), QColor(0, 255, 0));
    QCOMPARE(rightSide(), QColor(Qt::blue));
    view->deleteAllLayers();
    QTRY_VERIFY(!divider());
    QVERIFY(!action("actionSwipe")->isChecked());
}

void CompareToolsTest::withoutALayerThereIsNothingToSwipe()
{
    QVERIFY(!action("actionSwipe")->isEnabled());
    QVERIFY(!action("actionFlicker")->isEnabled());
    QVERIFY(!action("actionFlick")->isEnabled());
    view = window->addMapWindow()->getView();
    for (const char* name : {"actionSwipe", "actionFlicker", "actionFlick"}) {
        QVERIFY(action(name)->isEnabled());
        action(name)->trigger();
        QVERIFY(!action(name)->isChecked());
        QVERIFY(!divider() && !bar());
    }
}

void CompareToolsTest::picturesShowTheWholeLayer()
{
    openMap({"blue.tif", "red.tif"});
    action("actionSwipe")->trigger();
    QCOMPARE(rightSide(), QColor(Qt::blue));
    const QImage picture = paintMapPicture(*view, 1.0);
    QCOMPARE(picture.pixelColor(view->width() - 20, 20), QColor(Qt::red));
}

void CompareToolsTest::flickeringHidesAndShowsTheLayer()
{
    openMap({"blue.tif", "red.tif"});
    Application::instance()->getSettings()->setValue("Viewer/Flicker/Rate", 10.0);
    action("actionFlicker")->trigger();
    QVERIFY(action("actionFlicker")->isChecked());
    QCOMPARE(bar()->findChild<QLabel*>("flickerLayer")->text(), QString("red.tif"));
    QCOMPARE(bar()->findChild<QLabel*>("flickerLayer")->textFormat(), Qt::PlainText);
    for (int i = 0; i < 2; ++i) {
        QTRY_COMPARE(rightSide(), QColor(Qt::blue));
        QTRY_COMPARE(rightSide(), QColor(Qt::red));
    }
    QTRY_COMPARE(rightSide(), QColor(Qt::blue));
    QVERIFY(view->getLayerAt(1)->isVisible());
    action("actionFlicker")->trigger();
    QCOMPARE(rightSide(), QColor(Qt::red));
    QVERIFY(!bar());
}

void CompareToolsTest::theRateIsKept()
{
    openMap({"blue.tif", "red.tif"});
    Application::instance()->getSettings()->remove("Viewer/Flicker/Rate");
    action("actionFlicker")->trigger();
    auto* rate = bar()->findChild<QDoubleSpinBox*>("flickerRate");
    QCOMPARE(rate->value(), 1.0);
    rate->setFocus();
    QTest::keyClick(rate, Qt::Key_Up);
    QCOMPARE(rate->value(), 1.5);
    action("actionFlicker")->trigger();
    QCOMPARE(Application::instance()->getSettings()->value("Viewer/Flicker/Rate").toDouble(), 1.5);
    action("actionFlicker")->trigger();
    rate = bar()->findChild<QDoubleSpinBox*>("flickerRate");
    QCOMPARE(rate->value(), 1.5);
    rate->setValue(100.0);
    QCOMPARE(rate->value(), 10.0);
    rate->setValue(0.0);
    QCOMPARE(rate->value(), 0.2);
}

void CompareToolsTest::flippingByHandStopsTheClockwork()
{
    openMap({"blue.tif", "red.tif"});
    QCOMPARE(action("actionFlick")->shortcut(), QKeySequence("Ctrl+B"));
    action("actionFlick")->trigger();
    QVERIFY(action("actionFlicker")->isChecked());
    QVERIFY(bar()->isPaused());
    QCOMPARE(rightSide(), QColor(Qt::blue));
    QVERIFY(bar()->findChild<QLabel*>("flickerLayer")->font().strikeOut());
    QTest::keyClick(view, Qt::Key_B, Qt::ControlModifier);
    QCOMPARE(rightSide(), QColor(Qt::red));
    QVERIFY(!bar()->findChild<QLabel*>("flickerLayer")->font().strikeOut());
    QTest::mouseClick(bar()->findChild<QToolButton*>("flickerFlip"), Qt::LeftButton);
    QCOMPARE(rightSide(), QColor(Qt::blue));
    QTest::mouseClick(bar()->findChild<QToolButton*>("flickerPause"), Qt::LeftButton);
    QTRY_COMPARE(rightSide(), QColor(Qt::red)); // the clockwork goes on
}

void CompareToolsTest::theBarEndsFlickering()
{
    openMap({"blue.tif", "red.tif"});
    action("actionFlick")->trigger();
    QTest::mouseClick(bar()->findChild<QToolButton*>("flickerClose"), Qt::LeftButton);
    QVERIFY(!bar());
    QCOMPARE(rightSide(), QColor(Qt::red));
    action("actionFlick")->trigger();
    bar()->findChild<QToolButton*>("flickerFlip")->setFocus();
    QTest::keyClick(bar()->findChild<QToolButton*>("flickerFlip"), Qt::Key_Escape);
    QVERIFY(!bar());
    QVERIFY(!action("actionFlicker")->isChecked());
    QVERIFY(view->hasFocus());
}

void CompareToolsTest::oneToolEndsTheOther()
{
    openMap({"blue.tif", "red.tif"});
    action("actionSwipe")->trigger();
    action("actionFlick")->trigger();
    QVERIFY(!divider() && bar());
    QVERIFY(!action("actionSwipe")->isChecked());
    action("actionSwipe")->trigger();
    QVERIFY(divider() && !bar());
    QVERIFY(!action("actionFlicker")->isChecked());
    QCOMPARE(leftSide(), QColor(Qt::red));
}

void CompareToolsTest::anotherMapEndsBoth()
{
    MapWindow* const first = openMap({"blue.tif", "red.tif"});
    const QPointer<Map::MapView> firstView = view;
    action("actionSwipe")->trigger();
    openMap({"green.tif"});
    QVERIFY(!action("actionSwipe")->isChecked());
    QVERIFY(!firstView->getMapCanvas()->getClippedLayer());
    window->getMdiArea()->setActiveSubWindow(first);
    view = firstView;
    QVERIFY(!divider());
    QCOMPARE(rightSide(), QColor(Qt::red));
}

void CompareToolsTest::aMapMayCloseMeanwhile_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("swiping") << "actionSwipe";
    QTest::newRow("flickering") << "actionFlicker";
    QTest::newRow("flipped") << "actionFlick";
}

void CompareToolsTest::aMapMayCloseMeanwhile()
{
    QFETCH(QString, command);
    MapWindow* const map = openMap({"blue.tif", "red.tif"});
    action(qPrintable(command))->trigger();
    map->setCloseGuard(nullptr); // it would ask whether to save
    map->close();
    QTRY_VERIFY(!view);
    QTRY_VERIFY(!action("actionSwipe")->isChecked() && !action("actionFlicker")->isChecked());
    QVERIFY(!action("actionSwipe")->isEnabled());
    openMap({"blue.tif", "red.tif"});
    action("actionSwipe")->trigger();
    QCOMPARE(rightSide(), QColor(Qt::blue));
}

void CompareToolsTest::theWindowMayCloseMeanwhile_data()
{
    aMapMayCloseMeanwhile_data();
}

void CompareToolsTest::theWindowMayCloseMeanwhile()
{
    QFETCH(QString, command);
    openMap({"blue.tif", "red.tif"});
    action(qPrintable(command))->trigger();
    window.reset();
    QVERIFY(!view);
}

void CompareToolsTest::aMapOnTheWholeScreenIsSwipedToo()
{
    openMap({"blue.tif", "red.tif"});
    action("actionFullScreenMap")->trigger();
    QVERIFY(QTest::qWaitForWindowActive(view));
    QTRY_COMPARE_WITH_TIMEOUT(int(view->getLayerAt(0)->getPercentComplete()), 100, patience);
    QTest::keyClick(view, Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(divider());
    QCOMPARE(divider()->height(), view->height());
    action("actionFullScreenMap")->trigger();
    QTRY_VERIFY(!view->isFullScreen());
    QVERIFY(divider());
    QTRY_COMPARE(divider()->height(), view->height());
}

void CompareToolsTest::picturesOfTheTools()
{
    openMap({"blue.tif", "red.tif"});
    QVERIFY(QDir().mkpath("pictures"));
    action("actionSwipe")->trigger();
    QVERIFY(window->grab().save("pictures/swipe.png"));
    QTest::keyClick(divider(), Qt::Key_Space);
    view->setFocus();
    QVERIFY(window->grab().save("pictures/swipe-level.png"));
    action("actionFlick")->trigger();
    QVERIFY(window->grab().save("pictures/flicker.png"));
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Compare Tools Test");
    CompareToolsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "CompareToolsTest.moc"
