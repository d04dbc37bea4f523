#include <tests/viewer/support/ReferencedLayer.h>

#include <viewer/maps/CrosshairMark.h>
#include <viewer/measuring/MapMeasuring.h>
#include <viewer/measuring/MeasureOverlay.h>
#include <viewer/measuring/MeasurePanel.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

class MapMeasuringTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void clicksMeasureADistance();
    void thePointUnderThePointerIsMeasuredToo();
    void aDoubleClickEndsTheLineAndTheNextClickBeginsAnother();
    void enterEndsAndBackspaceGoesBack();
    void areasHaveAPerimeter();
    void aDragIsTheMaps();
    void aHandThatTremblesStillClicks();
    void rightDragsAndTheWheelAreTheMaps();
    void theShapeStaysWithTheMap();
    void theKeyboardMeasuresAlone();
    void atTheEdgeTheKeysMoveTheMap();
    void anotherKeyboardCursorHasTheKeys();
    void escapeTakesEverythingAway();
    void escapeInThePanelLeavesToo();
    void closeLeaves();
    void aViewThatGoesTakesTheMeasuringAlong();
    void theResultIsCopiedAsText();
    void theReferenceOfTheMapDecides();
    void choicesAreKept();
    void clicksOnThePanelPutNoPoint();
    void theLineIsSeenOnTheMap();

private:
    void click(const QPoint& place) const
    {
        QTest::mouseClick(view.get(), Qt::LeftButton, Qt::NoModifier, place);
    }
    void key(int which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(view.get(), Qt::Key(which), modifiers);
    }
    void move(const QPoint& place, Qt::MouseButtons buttons) const
    {
        QMouseEvent event(QEvent::MouseMove, place, view->mapToGlobal(place), Qt::NoButton, buttons,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(view.get(), &event);
    }
    QString text(const QString& label) const { return view->findChild<QLabel*>(label)->text(); }
    void choose(const QString& box, int index) const
    {
        view->findChild<QComboBox*>(box)->setCurrentIndex(index);
    }

    std::unique_ptr<Map::MapView> view;
    std::unique_ptr<QAction> otherCursor;
    QPointer<MapMeasuring> measuring;
};

/// 501 by 401 pixels of a metre each, without a reference, but for tests that give it one.
void MapMeasuringTest::init()
{
    Application::instance()->getSettings()->clear();
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    view = std::make_unique<Map::MapView>();
    view->resize(501, 401);
    view->addLayer(new ReferencedLayer);
    view->show();
    view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(view.get()));
    view->setBounds(0.0, 400.0, 500.0, 0.0);
    otherCursor = std::make_unique<QAction>();
    otherCursor->setCheckable(true);
    measuring = new MapMeasuring(view.get(), otherCursor.get());
}

void MapMeasuringTest::cleanup()
{
    view.reset();
}

void MapMeasuringTest::clicksMeasureADistance()
{
    QCOMPARE(MapMeasuring::of(view.get()), measuring.data());
    QCOMPARE(view->cursor().shape(), Qt::CrossCursor);
    QCOMPARE(text("measureResult"), QString("0 units"));
    QCOMPARE(text("measureDetails"), QString("Click along the line."));
    QCOMPARE(text("measureBasis"), QString("in map units: the map has no reference"));
    click(QPoint(300, 300));
    click(QPoint(330, 340));
    click(QPoint(330, 240));
    QCOMPARE(measuring->getPoints(),
             QVector<QPointF>({{300.0, 100.0}, {330.0, 60.0}, {330.0, 160.0}}));
    QCOMPARE(text("measureResult"), QString("150 units"));
    QCOMPARE(text("measureDetails"), QString("Last segment: 100 units"));
    QCOMPARE(view->getBounds(), QRectF(0.0, 400.0, 500.0, -400.0)); // nothing roamed
}

void MapMeasuringTest::thePointUnderThePointerIsMeasuredToo()
{
    move(QPoint(310, 310), Qt::NoButton);
    QCOMPARE(text("measureResult"), QString("0 units"));
    click(QPoint(300, 300));
    move(QPoint(330, 340), Qt::NoButton);
    QCOMPARE(text("measureResult"), QString("50 units"));
    QCOMPARE(measuring->getPoints().size(), 1);
    QCOMPARE(view->findChild<MeasureOverlay*>()->getPoints().size(), 2);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(view.get(), &leave);
    QCOMPARE(text("measureResult"), QString("0 units"));
    QCOMPARE(view->findChild<MeasureOverlay*>()->getPoints().size(), 1);
}

void MapMeasuringTest::aDoubleClickEndsTheLineAndTheNextClickBeginsAnother()
{
    click(QPoint(300, 300));
    click(QPoint(330, 340));
    QTest::mouseClick(view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(330, 240));
    QTest::mouseDClick(view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(330, 240));
    QVERIFY(measuring->hasEnded());
    QCOMPARE(measuring->getPoints().size(), 3);
    QCOMPARE(view->getBounds(), QRectF(0.0, 400.0, 500.0, -400.0)); // nothing zoomed
    move(QPoint(10, 10), Qt::NoButton);
    QCOMPARE(text("measureResult"), QString("150 units")); // the pointer is no part of it any more
    click(QPoint(10, 10));
    QVERIFY(!measuring->hasEnded());
    QCOMPARE(measuring->getPoints(), QVector<QPointF>({{10.0, 390.0}}));
}

void MapMeasuringTest::enterEndsAndBackspaceGoesBack()
{
    click(QPoint(300, 300));
    key(Qt::Key_Return);
    QVERIFY(!measuring->hasEnded()); // one point is no line
    click(QPoint(330, 340));
    click(QPoint(330, 240));
    key(Qt::Key_Return);
    QVERIFY(measuring->hasEnded());
    key(Qt::Key_Backspace);
    QVERIFY(!measuring->hasEnded());
    QCOMPARE(measuring->getPoints().size(), 2);
    key(Qt::Key_Backspace);
    key(Qt::Key_Backspace);
    key(Qt::Key_Backspace);
    QVERIFY(measuring->getPoints().isEmpty());
    QCOMPARE(text("measureResult"), QString("0 units"));
}

void MapMeasuringTest::areasHaveAPerimeter()
{
    choose("measureKind", 1);
    QCOMPARE(text("measureDetails"), QString("Click the corners of the area."));
    click(QPoint(300, 300));
    click(QPoint(330, 300));
    QCOMPARE(text("measureDetails"), QString("Click at least three corners."));
    click(QPoint(330, 340));
    QCOMPARE(text("measureResult"), QString("600 square units"));
    QCOMPARE(text("measureDetails"), QString("Perimeter: 120 units"));
    choose("measureKind", 0); // the same points as a line
    QCOMPARE(text("measureResult"), QString("70 units"));
}

void MapMeasuringTest::aDragIsTheMaps()
{
    click(QPoint(300, 300));
    QTest::mousePress(view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(200, 200));
    move(QPoint(230, 200), Qt::LeftButton);
    move(QPoint(250, 220), Qt::LeftButton);
    QTest::mouseRelease(view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(250, 220));
    QCOMPARE(view->getBounds(), QRectF(-50.0, 420.0, 500.0, -400.0)); // from its very beginning
    QCOMPARE(measuring->getPoints(), QVector<QPointF>({{300.0, 100.0}}));
    QTRY_COMPARE(view->cursor().shape(), Qt::CrossCursor);
    click(QPoint(350, 320));
    QCOMPARE(measuring->getPoints().size(), 1); // the first point lies there now: nothing is added
}

void MapMeasuringTest::aHandThatTremblesStillClicks()
{
    QTest::mousePress(view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(200, 200));
    move(QPoint(202, 201), Qt::LeftButton);
    QTest::mouseRelease(view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(202, 201));
    QCOMPARE(measuring->getPoints(), QVector<QPointF>({{200.0, 200.0}}));
    QCOMPARE(view->getBounds(), QRectF(0.0, 400.0, 500.0, -400.0));
}

void MapMeasuringTest::rightDragsAndTheWheelAreTheMaps()
{
    QTest::mousePress(view.get(), Qt::RightButton, Qt::NoModifier, QPoint(200, 200));
    move(QPoint(200, 240), Qt::RightButton);
    QTest::mouseRelease(view.get(), Qt::RightButton, Qt::NoModifier, QPoint(200, 240));
    const QRectF zoomed = view->getBounds();
    QVERIFY(zoomed.width() < 499.0);
    QWheelEvent wheel(QPointF(100, 100), view->mapToGlobal(QPoint(100, 100)), QPoint(),
                      QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.get(), &wheel);
    QVERIFY(view->getBounds() != zoomed);
    QVERIFY(measuring->getPoints().isEmpty());
}

void MapMeasuringTest::theShapeStaysWithTheMap()
{
    click(QPoint(300, 300));
    click(QPoint(330, 340));
    const auto* const overlay = view->findChild<MeasureOverlay*>();
    view->onMapAction(Map::MapView::MapZoomIn);
    QCOMPARE(measuring->getPoints().first(), QPointF(300.0, 100.0));
    QCOMPARE(overlay->toDevice(QPointF(300.0, 100.0)), QPointF(350.0, 400.0));
    view->resize(601, 501);
    QCOMPARE(overlay->geometry(), view->rect());
    QVERIFY(!overlay->testAttribute(Qt::WA_OpaquePaintEvent));
}

void MapMeasuringTest::theKeyboardMeasuresAlone()
{
    key(Qt::Key_Space); // shows where a point would come
    QVERIFY(measuring->getPoints().isEmpty());
    QVERIFY(view->findChild<CrosshairMark*>()->isVisible());
    key(Qt::Key_Space);
    QCOMPARE(measuring->getPoints(), QVector<QPointF>({{250.0, 200.0}}));
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Up);
    key(Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(view->findChild<MeasureOverlay*>()->getPoints().last(), QPointF(299.0, 210.0));
    key(Qt::Key_Down);
    key(Qt::Key_Right, Qt::ControlModifier);
    key(Qt::Key_Space);
    QCOMPARE(text("measureResult"), QString("50 units"));
    key(Qt::Key_Enter);
    QVERIFY(measuring->hasEnded());
    QCOMPARE(view->getBounds(), QRectF(0.0, 400.0, 500.0, -400.0));
    key(Qt::Key_Plus);
    QVERIFY(view->getBounds().width() < 300.0); // other keys are the map's
}

void MapMeasuringTest::atTheEdgeTheKeysMoveTheMap()
{
    key(Qt::Key_Left);
    for (int i = 0; i < 5; ++i) {
        key(Qt::Key_Left, Qt::ShiftModifier);
    }
    QCOMPARE(view->getBounds().x(), 0.0);
    key(Qt::Key_Left, Qt::ShiftModifier);
    QVERIFY(view->getBounds().x() < 0.0);
}

void MapMeasuringTest::anotherKeyboardCursorHasTheKeys()
{
    click(QPoint(300, 300));
    key(Qt::Key_Left);
    QVERIFY(view->findChild<CrosshairMark*>());
    otherCursor->setChecked(true);
    QVERIFY(!view->findChild<CrosshairMark*>());
    key(Qt::Key_Left);
    QVERIFY(!view->findChild<CrosshairMark*>());
    QVERIFY(view->getBounds().x() < 0.0); // as if there were no measuring
    key(Qt::Key_Escape);
    QVERIFY(MapMeasuring::of(view.get()));
    key(Qt::Key_Backspace);
    QVERIFY(measuring->getPoints().isEmpty());
}

void MapMeasuringTest::escapeTakesEverythingAway()
{
    view->setPointerMode(Map::IClient::Zoom);
    key(Qt::Key_Space);
    QSignalSpy left(measuring.data(), &MapMeasuring::left);
    key(Qt::Key_Escape);
    QCOMPARE(left.count(), 1);
    QVERIFY(!MapMeasuring::of(view.get()));
    QCOMPARE(view->getViewManager()->getPointerMode(), Map::IClient::Zoom);
    QTRY_VERIFY(!measuring);
    QVERIFY(!view->findChild<CrosshairMark*>());
    QTRY_VERIFY(!view->findChild<MeasureOverlay*>() && !view->findChild<MeasurePanel*>());
    view->setPointerMode(Map::IClient::Roam);
    QCOMPARE(view->cursor().shape(), Qt::OpenHandCursor);
    click(QPoint(300, 300)); // the map's again
    key(Qt::Key_Left);
    QVERIFY(view->getBounds().x() < 0.0);
}

void MapMeasuringTest::escapeInThePanelLeavesToo()
{
    auto* const units = view->findChild<QComboBox*>("measureUnits");
    units->setFocus();
    QVERIFY(units->hasFocus());
    QTest::keyClick(units, Qt::Key_Escape);
    QVERIFY(!MapMeasuring::of(view.get()));
    QVERIFY(view->hasFocus());
}

void MapMeasuringTest::closeLeaves()
{
    QTest::mouseClick(view->findChild<QPushButton*>("measureClose"), Qt::LeftButton);
    QTRY_VERIFY(!measuring);
}

void MapMeasuringTest::aViewThatGoesTakesTheMeasuringAlong()
{
    click(QPoint(300, 300));
    key(Qt::Key_Space);
    view.reset();
    QVERIFY(!measuring);
    QCoreApplication::processEvents();
}

void MapMeasuringTest::theResultIsCopiedAsText()
{
    QApplication::clipboard()->setText("before");
    QVERIFY(!view->findChild<QPushButton*>("measureCopy")->isEnabled());
    key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), QString("before"));
    const auto isTaken = [this] {
        QKeyEvent event(QEvent::ShortcutOverride, Qt::Key_C, Qt::ControlModifier);
        event.ignore();
        QCoreApplication::sendEvent(view.get(), &event);
        return event.isAccepted();
    };
    QVERIFY(!isTaken()); // a command may copy the map
    click(QPoint(300, 300));
    click(QPoint(330, 340));
    move(QPoint(10, 10), Qt::NoButton); // is not copied
    QVERIFY(isTaken());
    const QString expected("Distance: 50 units\nin map units: the map has no reference\n"
                           "300\t100\n330\t60\n");
    key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), expected);
    QApplication::clipboard()->clear();
    view->findChild<QPushButton*>("measureCopy")->click();
    QCOMPARE(QApplication::clipboard()->text(), expected);
}

void MapMeasuringTest::theReferenceOfTheMapDecides()
{
    click(QPoint(300, 300));
    click(QPoint(300, 200));
    QVERIFY(!view->findChild<QComboBox*>("measureSurface")->isEnabled());
    static_cast<ReferencedLayer*>(view->getLayerAt(0))->wkt = "EPSG:25833";
    view->addLayer(new ReferencedLayer("EPSG:4326"));
    QCOMPARE(text("measureBasis"), QString("on the ellipsoid GRS 1980"));
    QVERIFY(text("measureResult").endsWith(" m"));
    QVERIFY(view->findChild<QComboBox*>("measureSurface")->isEnabled());
    choose("measureSurface", 1);
    QCOMPARE(text("measureBasis"), QString("in the plane of EPSG:25833"));
    QCOMPARE(text("measureResult"), QString("100.00 m"));
    choose("measureUnits", 1);
    QCOMPARE(text("measureResult"), QString("328.1 ft"));
    view->deleteLayerAt(0); // degrees now: these are no places
    QTRY_COMPARE(text("measureBasis"), QString("in degrees: not all points are places on Earth"));
    view->deleteLayerAt(0);
    QTRY_COMPARE(text("measureBasis"), QString("in map units: the map has no reference"));
}

void MapMeasuringTest::choicesAreKept()
{
    choose("measureKind", 1);
    choose("measureUnits", 2);
    choose("measureSurface", 1);
    const QSettings* const settings = Application::instance()->getSettings();
    QCOMPARE(settings->value("Viewer/MeasureKind").toString(), QString("area"));
    QCOMPARE(settings->value("Viewer/MeasureUnits").toString(), QString("nautical"));
    QCOMPARE(settings->value("Viewer/MeasureSurface").toString(), QString("plane"));
    measuring->leave();
    QTRY_VERIFY(!view->findChild<MeasurePanel*>());
    new MapMeasuring(view.get(), nullptr);
    const auto* const panel = view->findChild<MeasurePanel*>();
    QVERIFY(panel->getKind() == MeasureKind::Area);
    QVERIFY(panel->getUnits() == MeasureUnits::Nautical);
    QVERIFY(panel->getSurface() == MeasureSurface::Plane);
    key(Qt::Key_Space); // without another cursor
    QVERIFY(view->findChild<CrosshairMark*>());
}

void MapMeasuringTest::clicksOnThePanelPutNoPoint()
{
    auto* const panel = view->findChild<MeasurePanel*>();
    QVERIFY(view->rect().contains(panel->geometry()));
    QTest::mouseClick(panel->findChild<QLabel*>("measureResult"), Qt::LeftButton);
    QTest::mouseClick(panel, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
    QVERIFY(measuring->getPoints().isEmpty());
}

void MapMeasuringTest::theLineIsSeenOnTheMap()
{
    const auto isLine = [this](const QPoint& place) {
        const QColor color = view->grab(QRect(place, QSize(1, 1))).toImage().pixelColor(0, 0);
        return color.red() > 180 && color.green() < 60;
    };
    QVERIFY(!isLine(QPoint(350, 350)));
    click(QPoint(300, 350));
    click(QPoint(400, 350));
    QVERIFY(isLine(QPoint(350, 350)));
    choose("measureKind", 1);
    click(QPoint(400, 250));
    const QColor fill = view->grab(QRect(380, 330, 1, 1)).toImage().pixelColor(0, 0);
    QVERIFY(fill.red() > fill.green() + 20 && fill.green() > 150);
    view->setBounds(400.0, 450.0, 900.0, 50.0);
    QVERIFY(!isLine(QPoint(350, 350)));
    view->setBounds(350.0 - 1e-7, 50.0 + 1e-7, 350.0 + 1e-7, 50.0 - 1e-7); // deep into the edge
    QVERIFY(isLine(QPoint(450, 200)));
}

int main(int argc, char** argv)
{
    QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    Application application(argc, argv, "Corvane Viewer Test");
    QLocale::setDefault(QLocale("en_US"));
    MapMeasuringTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "MapMeasuringTest.moc"
