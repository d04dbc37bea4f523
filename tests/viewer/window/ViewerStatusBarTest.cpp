#include <tests/viewer/support/ReferencedLayer.h>

#include <viewer/maps/MapWindow.h>
#include <viewer/maps/PointerTracker.h>
#include <viewer/places/ScaleBox.h>
#include <viewer/window/ViewerStatusBar.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QMenu>
#include <QSettings>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include <cmath>
#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

/// Opens when the test says so.
class LateLayer : public ReferencedLayer
{
    Q_OBJECT
public:
    LateLayer() { valid = false; }

    void open(const QString& reference)
    {
        wkt = reference;
        valid = true;
        emit sourceOpened(true);
    }

signals:
    void sourceOpened(bool ok);
};

class ViewerStatusBarTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void theFormIsChosenByTheMenu();
    void theMenuOpensByKeyboard();
    void theChoiceIsKept();
    void aMapWithoutAReferenceSaysWhy();
    void aFormThatIsMissingComesBackWithTheNextMap();
    void aPlaceOutsideHasADash();
    void aLayerThatOpensLaterBringsItsReference();
    void enterShowsTheTypedScale();
    void theViewMovesAsItsOwnCommandsDo();
    void aMoveEndsWithTheUsersHand();
    void aViewThatGoesEndsTheMove();
    void aScaleIsChosenFromTheUsualOnes();
    void whatIsNoScaleIsRefused();
    void typedTextStaysWhileTheMapMoves();
    void escapeBringsTheScaleBack();
    void aScaleBeyondTheNumbersIsRefused();
    void withoutAMapThereIsNothingToType();

private:
    MapWindow* addMap(const QString& reference);
    QAction* form(const QString& key) const
    {
        return bar->findChild<QAction*>("coordinateForm_" + key);
    }
    QString coordinates() const { return bar->findChild<QLabel*>("coordinates")->text(); }
    void type(const QString& text) const;
    static void setAnimation(bool on)
    {
        Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", on);
    }

    std::unique_ptr<QMainWindow> window;
    QMdiArea* area = nullptr;
    ViewerStatusBar* bar = nullptr;
    ScaleBox* box = nullptr;
};

void ViewerStatusBarTest::init()
{
    Application::instance()->getSettings()->clear();
    setAnimation(false);
    window = std::make_unique<QMainWindow>();
    area = new QMdiArea;
    window->setCentralWidget(area);
    bar = new ViewerStatusBar;
    window->setStatusBar(bar);
    box = bar->getScaleBox();
    window->resize(900, 700);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void ViewerStatusBarTest::cleanup()
{
    window.reset();
}

/// One unit a pixel, around a place of zone 33.
MapWindow* ViewerStatusBarTest::addMap(const QString& reference)
{
    auto* const map = new MapWindow;
    area->addSubWindow(map);
    map->resize(500, 400);
    map->show();
    auto* const layer = new ReferencedLayer(reference);
    layer->bounds = QRectF(QPointF(389000.0, 5820000.0), QPointF(390000.0, 5819000.0));
    layer->size = QSize(1000, 1000);
    Map::MapView* const view = map->getView();
    view->addLayer(layer);
    view->setBounds(389917.0, 5819702.0, 389917.0 + view->width() - 1,
                    5819702.0 - view->height() + 1);
    bar->setMapWindow(map);
    return map;
}

void ViewerStatusBarTest::type(const QString& text) const
{
    box->setFocus();
    box->lineEdit()->selectAll();
    QTest::keyClicks(box, text);
    QTest::keyClick(box, Qt::Key_Return);
}

void ViewerStatusBarTest::theFormIsChosenByTheMenu()
{
    MapWindow* const map = addMap("EPSG:25833");
    QCOMPARE(coordinates(), QString());
    emit map->getTracker()->moved(QPointF(389917.8326, 5819701.9189));
    QCOMPARE(coordinates(), QString("X: 389918  Y: 5819702"));
    QVERIFY(form("map")->isChecked());

    form("degrees")->trigger();
    QCOMPARE(coordinates(), QString::fromUtf8("52.51630° N  13.37770° E")); // without a move
    QVERIFY(form("degrees")->isChecked() && !form("map")->isChecked());
    QCOMPARE(bar->findChild<QToolButton*>("coordinateForm")->text(), QString("WGS 84"));
    form("seconds")->trigger();
    QCOMPARE(coordinates(), QString::fromUtf8("52° 30' 58.68\" N  13° 22' 39.72\" E"));
    form("cells")->trigger();
    QCOMPARE(coordinates(), QString("Column: 917  Row: 298"));
    form("utm")->trigger();
    QCOMPARE(coordinates(), QString("33U 389918 E  5819702 N"));

    emit map->getTracker()->left();
    QCOMPARE(coordinates(), QString());
    form("map")->trigger();
    QCOMPARE(coordinates(), QString());
}

void ViewerStatusBarTest::theMenuOpensByKeyboard()
{
    addMap("EPSG:25833");
    auto* const button = bar->findChild<QToolButton*>("coordinateForm");
    button->setFocus(Qt::TabFocusReason);
    QVERIFY(button->hasFocus());
    QVERIFY(button->focusPolicy() & Qt::TabFocus);
    bool opened = false;
    connect(button->menu(), &QMenu::aboutToShow, this, [&] {
        QTimer::singleShot(0, button->menu(), [&] {
            opened = true;
            QTest::keyClick(button->menu(), Qt::Key_D);
        });
    });
    QTest::keyClick(button, Qt::Key_Space);
    QTRY_VERIFY(opened);
    button->menu()->close();
}

void ViewerStatusBarTest::theChoiceIsKept()
{
    addMap("EPSG:25833");
    form("minutes")->trigger();
    QCOMPARE(Application::instance()->getSettings()->value("Viewer/CoordinateForm").toString(),
             QString("minutes"));
    ViewerStatusBar next;
    QVERIFY(next.findChild<QAction*>("coordinateForm_minutes")->isChecked());
}

void ViewerStatusBarTest::aMapWithoutAReferenceSaysWhy()
{
    MapWindow* const map = addMap("");
    QVERIFY(!form("degrees")->isEnabled() && !form("utm")->isEnabled());
    QVERIFY(form("map")->isEnabled() && form("cells")->isEnabled());
    QVERIFY2(form("degrees")->text().endsWith(" (the map has no reference)"),
             qPrintable(form("degrees")->text()));
    map->getView()->deleteLayerAt(0);
    QTRY_VERIFY(!form("cells")->isEnabled());
    QVERIFY(form("cells")->text().endsWith(" (the map has no raster layer)"));
    map->getView()->addLayer(new ReferencedLayer("EPSG:4326"));
    QVERIFY(form("cells")->isEnabled() && form("degrees")->isEnabled());
    QCOMPARE(form("degrees")->text(), coordinateFormTitle(CoordinateForm::Degrees));
}

void ViewerStatusBarTest::aFormThatIsMissingComesBackWithTheNextMap()
{
    addMap("EPSG:25833");
    form("degrees")->trigger();
    MapWindow* const plain = addMap("");
    emit plain->getTracker()->moved(QPointF(10.0, 20.0));
    QCOMPARE(coordinates(), QString("X: 10  Y: 20"));
    auto* const button = bar->findChild<QToolButton*>("coordinateForm");
    QCOMPARE(button->text(), QString("Map"));
    QCOMPARE(button->toolTip(),
             QString("Form of the coordinates: east and north, as the map has no reference"));
    MapWindow* const known = addMap("EPSG:25833");
    QCOMPARE(coordinates(), QString());
    emit known->getTracker()->moved(QPointF(389917.8326, 5819701.9189));
    QVERIFY(coordinates().contains(QChar(0xb0)));
}

void ViewerStatusBarTest::aPlaceOutsideHasADash()
{
    MapWindow* const map = addMap("EPSG:25833");
    form("cells")->trigger();
    emit map->getTracker()->moved(QPointF(0.0, 0.0));
    QCOMPARE(coordinates(), QString::fromUtf8("–"));
    form("degrees")->trigger();
    emit map->getTracker()->moved(QPointF(1e12, 0.0));
    QCOMPARE(coordinates(), QString::fromUtf8("–"));
}

void ViewerStatusBarTest::aLayerThatOpensLaterBringsItsReference()
{
    auto* const map = new MapWindow;
    area->addSubWindow(map);
    map->resize(500, 400);
    map->show();
    Map::MapView* const view = map->getView();
    for (const bool isFollowed : {false, true}) { // it may have come before the window or after
        view->deleteAllLayers();
        auto* const layer = new LateLayer;
        if (!isFollowed) {
            view->addLayer(layer);
        }
        bar->setMapWindow(map);
        if (isFollowed) {
            view->addLayer(layer);
        }
        QCOMPARE(box->currentText(), QString());
        QVERIFY(!form("degrees")->isEnabled());
        layer->open("EPSG:25833");
        QVERIFY(form("degrees")->isEnabled());
        QVERIFY(box->currentText().startsWith("1:"));
        bar->setMapWindow(nullptr);
    }
}

void ViewerStatusBarTest::enterShowsTheTypedScale()
{
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    const QPointF centre = view->getBounds().center();
    type("25000");
    QCOMPARE(box->currentText(), QString("1:25 000"));
    const double unitsPerPixel = view->getBounds().width() / view->width();
    QVERIFY(std::abs(unitsPerPixel - 25000.0 * 0.0254 / view->logicalDpiX()) < 1e-9);
    QVERIFY(QLineF(view->getBounds().center(), centre).length() < 1e-6);
    QVERIFY(view->hasFocus());
    type("2 m");
    QVERIFY(std::abs(view->getBounds().width() / view->width() - 2.0) < 1e-9);
    QVERIFY(view->getBounds().height() < 0.0);
}

void ViewerStatusBarTest::theViewMovesAsItsOwnCommandsDo()
{
    setAnimation(true);
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    auto* const layer = static_cast<ReferencedLayer*>(view->getLayerAt(0));
    QSignalSpy moved(view, &Map::MapView::mapExtentsChanged);
    layer->log.clear();
    type("1:50 000");
    QTRY_COMPARE(box->currentText(), QString("1:50 000"));
    QTRY_VERIFY(layer->log.contains("endUpdate"));
    QCOMPARE(layer->log.filter("Update"), QStringList({"beginUpdate(zoom)", "endUpdate"}));
    QVERIFY(moved.count() > 2); // in steps
}

void ViewerStatusBarTest::aMoveEndsWithTheUsersHand()
{
    setAnimation(true);
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    auto* const layer = static_cast<ReferencedLayer*>(view->getLayerAt(0));
    type("1:5 000 000");
    layer->log.clear();
    QTest::mousePress(view, Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
    QCOMPARE(layer->log.filter("Update").first(), QString("endUpdate"));
    const QRectF stopped = view->getBounds();
    QTest::mouseRelease(view, Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
    QCoreApplication::processEvents();
    QCOMPARE(view->getBounds(), stopped);
}

void ViewerStatusBarTest::aViewThatGoesEndsTheMove()
{
    setAnimation(true);
    MapWindow* const map = addMap("EPSG:25833");
    type("1:5 000 000");
    delete map;
    bar->setMapWindow(nullptr);
    QCOMPARE(box->currentText(), QString());
}

void ViewerStatusBarTest::aScaleIsChosenFromTheUsualOnes()
{
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    const QString before = box->currentText();
    box->showPopup();
    QVERIFY(box->findText("1:100 000") >= 0);
    QCOMPARE(box->currentText(), before);
    box->hidePopup();
    emit box->activated(box->findText("1:100 000"));
    QCOMPARE(box->currentText(), QString("1:100 000"));
    QVERIFY(std::abs(view->getBounds().width() / view->width() -
                     100000.0 * 0.0254 / view->logicalDpiX()) < 1e-9);
}

void ViewerStatusBarTest::whatIsNoScaleIsRefused()
{
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    const QString before = box->currentText();
    const QRectF bounds = view->getBounds();
    type("huge");
    QCOMPARE(box->currentText(), before);
    QCOMPARE(bar->currentMessage(),
             QString("\"huge\" is no scale. A scale is written like 1:25 000, 2 m per pixel or "
                     "50 %."));
    QCOMPARE(view->getBounds(), bounds);
    QCOMPARE(box->lineEdit()->selectedText(), before); // the next try takes its place
}

void ViewerStatusBarTest::typedTextStaysWhileTheMapMoves()
{
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    box->setFocus();
    box->lineEdit()->selectAll();
    QTest::keyClicks(box, "1:5");
    view->onMapAction(Map::MapView::MapZoomOut);
    QCOMPARE(box->currentText(), QString("1:5"));
    view->setFocus();
    QVERIFY(box->currentText() != QString("1:5"));
}

void ViewerStatusBarTest::escapeBringsTheScaleBack()
{
    addMap("EPSG:25833");
    const QString before = box->currentText();
    box->setFocus();
    QTest::keyClicks(box, "99");
    QVERIFY(box->currentText() != before);
    QTest::keyClick(box, Qt::Key_Escape);
    QCOMPARE(box->currentText(), before);
}

void ViewerStatusBarTest::aScaleBeyondTheNumbersIsRefused()
{
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    const QRectF bounds = view->getBounds();
    type("0.000001");
    QCOMPARE(bar->currentMessage(), QString("The map cannot be shown as large as 0.000001."));
    QCOMPARE(view->getBounds(), bounds);
}

void ViewerStatusBarTest::withoutAMapThereIsNothingToType()
{
    QVERIFY(!box->isEnabled());
    auto* const map = new MapWindow;
    area->addSubWindow(map);
    map->show();
    bar->setMapWindow(map);
    QVERIFY(box->isEnabled());
    QCOMPARE(box->currentText(), QString());
    type("1:5000");
    QCOMPARE(bar->currentMessage(), QString("The map is empty."));
    bar->setMapWindow(nullptr);
    QVERIFY(!box->isEnabled());
}

int main(int argc, char** argv)
{
    QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    Application application(argc, argv, "Corvane Viewer Test");
    QLocale::setDefault(QLocale("en_US"));
    ViewerStatusBarTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "ViewerStatusBarTest.moc"
