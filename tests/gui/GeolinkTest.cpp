#include <corvane/gui/Geolink.h>

#include <corvane/core/PluginManager.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/SpatialReference.h>
#include <tests/gui/MapWindows.h>
#include <tests/gui/PanelLayers.h>
#include <tests/gui/PanelPictures.h>
#include <tests/map/MapViewTools.h>
#include <tests/plugins/TestRasters.h>

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include <memory>
#include <type_traits>
#include <vector>

using namespace Corvane;
using namespace Corvane::Tests;
using Corvane::Gui::Geolink;
using Corvane::Map::IClient;
using Corvane::Map::MapView;

Q_DECLARE_METATYPE(Corvane::Map::IClient::GeolinkMode)

namespace {

/// The world that the view shows.
QString extentOf(MapView* view)
{
    return text(view->getBounds());
}

/// Map windows beside each other with the panel below them, wired as a viewer wires them.
/// The world of each is one unit per pixel, y up, with its top left corner at (0, 200).
class Stage : public MapWindows
{
public:
    explicit Stage(int windows, bool shown = true)
    {
        const int columns = windows > 3 ? 3 : windows;
        for (int i = 0; i < windows; ++i) {
            views.push_back(add(QRect(i % columns * 201, i / columns * 201, 201, 201)));
        }
        addPanel(&panel);
        panel.setWorkSpace(&area);
        QObject::connect(&area, SIGNAL(subWindowActivated(QMdiSubWindow*)), &panel,
                         SLOT(onSubWindowActivated(QMdiSubWindow*)));
        isOpen = open();
        if (!shown) {
            panel.hide();
        }
        for (MapView* view : views) {
            view->setBounds(0.0, 200.0, 200.0, 0.0);
        }
        activate(views.front());
    }
    ~Stage() override { area.closeAllSubWindows(); }

    void setModes(std::initializer_list<IClient::GeolinkMode> modes)
    {
        auto view = views.begin();
        for (const IClient::GeolinkMode mode : modes) {
            (*view++)->setGeolinkMode(mode);
        }
        panel.onSubWindowActivated(area.activeSubWindow());
    }
    void setReference(int view, int epsg)
    {
        Map::SpatialReference reference;
        reference.setEpsg(epsg);
        views[view]->getMapCanvas()->setSrs(reference);
    }
    QRadioButton* radio(const char* name) { return panel.findChild<QRadioButton*>(name); }
    /// On the button's circle.
    void click(const char* name)
    {
        QTest::mouseClick(radio(name), Qt::LeftButton, {}, QPoint(8, radio(name)->height() / 2));
    }
    QString checked()
    {
        QStringList names;
        for (const QRadioButton* button : panel.findChildren<QRadioButton*>()) {
            if (button->isChecked()) {
                names << button->objectName();
            }
        }
        return names.join(' ');
    }
    QString modes() const
    {
        QStringList numbers;
        for (MapView* view : views) {
            numbers << QString::number(view->getGeolinkMode());
        }
        return numbers.join(' ');
    }
    QString extents() const
    {
        QStringList all;
        for (MapView* view : views) {
            all << extentOf(view);
        }
        return all.join(", ");
    }
    /// Writes what the windows announce, as "1: 0 200 200 0".
    void recordAll()
    {
        for (std::size_t i = 0; i < views.size(); ++i) {
            QObject::connect(views[i], &MapView::mapExtentsChanged, this,
                             [this, i](double tlx, double tly, double brx, double bry) {
                                 journal << QStringLiteral("%1: %2").arg(i).arg(
                                     text(tlx, tly, brx, bry));
                             });
        }
    }
    QStringList takeJournal()
    {
        QStringList taken;
        taken.swap(journal);
        return taken;
    }

    Geolink panel;
    std::vector<MapView*> views;
    bool isOpen = false;
    QStringList journal;
};

/// A drag by this many pixels, as a user does it.
void drag(MapView* view, const QPoint& by)
{
    press(*view, QPoint(100, 100));
    move(*view, QPoint(100, 100) + by);
    release(*view, QPoint(100, 100) + by);
}

/// What target is to show while source drives it across the screen.
QRectF acrossTheScreen(MapView* source, MapView* target)
{
    const QRectF shown = source->getBounds();
    const double unitsX = shown.width() / (source->width() - 1);
    const double unitsY = shown.height() / (source->height() - 1);
    const QPoint offset = target->mapToGlobal(QPoint()) - source->mapToGlobal(QPoint());
    return QRectF(shown.left() + offset.x() * unitsX, shown.top() + offset.y() * unitsY,
                  target->width() * unitsX, target->height() * unitsY);
}

bool isNear(const QRectF& a, const QRectF& b)
{
    return std::abs(a.left() - b.left()) < 1e-6 && std::abs(a.top() - b.top()) < 1e-6 &&
           std::abs(a.right() - b.right()) < 1e-6 && std::abs(a.bottom() - b.bottom()) < 1e-6;
}

} // namespace

class GeolinkTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void theFormIsThatOfTheDesign();
    void itLooksRight();
    void theAreaInterfaceIsReachedByNameAndId();
    void anotherPluginsPanelIsGivenTheAreaThroughTheInterface();

    void realRastersFollowADrag_data();
    void realRastersFollowADrag();
    void theOthersFollowOnceTheEventLoopRuns();
    void aWindowGroupTakesTheSourcesWorld();
    void aScreenGroupIsOneMapAcrossTheDesktop();
    void aDragOfManyStepsCostsOnePassEachAndNoFeedback();
    void onlyTheActiveWindowDrives();
    void aHiddenPanelLinksNothingAndTheModesStay();
    void windowsOfDifferentModesDoNotFollow();
    void windowsOfDifferentReferencesDoNotFollow();
    void movingATargetWaitsForTheNextChangeOfTheSource();
    void windowsWithoutAMapArePassedOver();

    void activatingAnUnlinkedWindowConnectsNothing();
    void activatingALinkedWindowShowsItsModeAndTouchesNothing();
    void activatingQuietlyLeavesTheRadios();
    void activatingANonMapDisablesThePanel();
    void theWindowLeftBehindDrivesNoMore();
    void aClosedWindowIsForgotten();

    void aClickOnARadioSetsTheModeOfTheActiveWindow();
    void joiningAGroupDragsTheOthersAlong();
    void changingTheRadioAlignsTheOldGroupThenTheNew();
    void settingAModeWithoutAreaOrWindowDoesNothing();
    void theModeSlotsAreFoundByName();
    void theModeOfANonMapWindowIsNotSet();

    void applyToAllWithoutARadioUnlinksAll();
    void applyToAllSetsTheModeAndAligns_data();
    void applyToAllSetsTheModeAndAligns();
    void applyToAllMakesTheActiveWindowDrive();
    void applyToAllKeepsOtherReferencesWhereTheyAre();
    void applyToAllFromANonMapWindowSetsTheModes();
    void applyToAllWithoutAreaOrWindowDoesNothing();
    void goingAwayLeavesTheModes();

private:
    QTemporaryDir folder;
    QString raster;
    QString geographic;
    QString landscape;
};

void GeolinkTest::initTestCase()
{
    QVERIFY(folder.isValid());
    raster = folder.filePath("utm.tif");
    QVERIFY(makeRaster(raster, RasterRecipe()));
    RasterRecipe degrees;
    degrees.epsg = 4326;
    degrees.transform = {10.0, 0.001, 0.0, 50.0, 0.0, -0.001};
    geographic = folder.filePath("degrees.tif");
    QVERIFY(makeRaster(geographic, degrees));
    landscape = folder.filePath("landscape.gpkg");
    QVERIFY(makeLandscape(landscape));
}

void GeolinkTest::theFormIsThatOfTheDesign()
{
    const Geolink panel;
    QCOMPARE(panel.objectName(), QString("Geolink"));
    QCOMPARE(panel.windowTitle(), QString("Geo Link"));
    QCOMPARE(panel.size(), QSize(298, 57));
    const struct
    {
        const char* name;
        const char* text;
        const char* toolTip;
    } buttons[] = {
        {"geolinkNone", "None", "The map window will not be geolinked with other windows."},
        {"geolinkWindow", "Window",
         "The map window will be linked to other windows using the same geographical coordinates"
         "  for each window."},
        {"geolinkScreen", "Screen",
         "The map window will be linked to other windows, using the coordinates of the entire "
         "screen."},
        {"applyToAll", "Apply All", "Apply the current selection to all map windows"},
    };
    for (const auto& expected : buttons) {
        const auto* const button = panel.findChild<QAbstractButton*>(expected.name);
        QVERIFY2(button, expected.name);
        QCOMPARE(button->text(), QString(expected.text));
        QCOMPARE(button->toolTip(), QString(expected.toolTip));
        QVERIFY(!button->isChecked());
    }
    QCOMPARE(panel.findChildren<QRadioButton*>().size(), 3);
    QCOMPARE(panel.findChildren<QPushButton*>().size(), 1);
    const QList<QGroupBox*> boxes = panel.findChildren<QGroupBox*>();
    QCOMPARE(boxes.size(), 1);
    QVERIFY(boxes.first()->title().isEmpty());
    const auto* const picture = panel.findChild<QLabel*>();
    QVERIFY(picture &&
            picture->pixmap(Qt::ReturnByValue).toImage() ==
                QImage(":/resources/icons/24x24/link.png")
                    .convertToFormat(picture->pixmap(Qt::ReturnByValue).toImage().format()));
}

void GeolinkTest::itLooksRight()
{
    Stage stage(9);
    for (MapView* view : stage.views) {
        QCOMPARE(view->addLayer(rasterClass, raster), 0);
        QCOMPARE(view->addLayer(vectorClass, landscape), 1);
    }
    for (MapView* view : stage.views) {
        QTRY_COMPARE(int(view->getLayerAt(0)->getPercentComplete()), 100);
        QTRY_COMPARE(int(view->getLayerAt(1)->getPercentComplete()), 100);
    }
    stage.views[0]->setBounds(1000.0, 5000.0, 1400.0, 4600.0);
    stage.click("geolinkScreen");
    QTest::mouseClick(stage.panel.findChild<QPushButton*>("applyToAll"), Qt::LeftButton);
    for (MapView* view : stage.views) {
        QTRY_COMPARE(int(view->getLayerAt(0)->getPercentComplete()), 100);
        QTRY_COMPARE(int(view->getLayerAt(1)->getPercentComplete()), 100);
    }
    QCOMPARE(takePictures(stage, "GeolinkOfNineWindows"), QStringList());
    Geolink alone;
    QCOMPARE(takePictures(alone, "Geolink"), QStringList());
}

void GeolinkTest::theAreaInterfaceIsReachedByNameAndId()
{
    static_assert(!std::is_convertible_v<Geolink*, IMdiAreaPlugin*>, "a host asks for it");
    Stage stage(2);
    QVERIFY(stage.panel.qt_metacast("IMdiAreaPlugin"));
    QVERIFY(!stage.panel.qt_metacast("IMdiAreaPlugin/1.0"));
    auto* const interface = static_cast<IMdiAreaPlugin*>(
        stage.panel.qt_metacast("com.corvane.viewer.IMdiAreaPlugin/1.0"));
    QVERIFY(interface);
    QCOMPARE(qobject_cast<IMdiAreaPlugin*>(&stage.panel), interface);

    interface->setWorkSpace(nullptr);
    stage.panel.setGeolinkWindow();
    QCOMPARE(stage.modes(), QString("0 0"));
    interface->setWorkSpace(&stage.area);
    stage.panel.setGeolinkWindow();
    QCOMPARE(stage.modes(), QString("1 0"));
}

void GeolinkTest::anotherPluginsPanelIsGivenTheAreaThroughTheInterface()
{
    Stage stage(2);
    std::unique_ptr<QDockWidget> dock;
    for (QDockWidget* candidate : PluginManager::getDockWidgets()) {
        if (candidate->objectName() == "PanelPluginGeolinkDock") {
            dock.reset(candidate);
        } else {
            delete candidate;
        }
    }
    QVERIFY(dock);
    auto* const interface = static_cast<IMdiAreaPlugin*>(
        dock->widget()->qt_metacast("com.corvane.viewer.IMdiAreaPlugin/1.0"));
    QVERIFY(interface);
    stage.setModes({IClient::GeolinkNone, IClient::GeolinkWindow});
    stage.addDockWidget(Qt::RightDockWidgetArea, dock.get());
    dock->show();
    interface->setWorkSpace(&stage.area);
    QVERIFY(QMetaObject::invokeMethod(dock->widget(), "setGeolinkWindow"));
    QCOMPARE(stage.modes(), QString("1 1"));
    drag(stage.views[0], QPoint(-10, 0));
    QTRY_COMPARE(extentOf(stage.views[1]), extentOf(stage.views[0]));
    QCOMPARE(extentOf(stage.views[0]), text(world(10, 200, 210, 0)));
}

void GeolinkTest::realRastersFollowADrag_data()
{
    QTest::addColumn<int>("windows");
    QTest::addColumn<IClient::GeolinkMode>("mode");
    for (const int windows : {2, 3, 9}) {
        QTest::addRow("%d windows of one world", windows) << windows << IClient::GeolinkWindow;
        QTest::addRow("%d windows across the screen", windows) << windows << IClient::GeolinkScreen;
    }
}

void GeolinkTest::realRastersFollowADrag()
{
    QFETCH(int, windows);
    QFETCH(IClient::GeolinkMode, mode);
    Stage stage(windows);
    QVERIFY(stage.isOpen);
    for (MapView* view : stage.views) {
        QCOMPARE(view->addLayer(rasterClass, raster), 0);
        QTRY_VERIFY(view->getLayerAt(0)->isValid());
        QCOMPARE(view->getMapCanvas()->getSrs().epsg, 32633);
        view->setGeolinkMode(mode);
    }
    // a window in the middle, so that there are neighbours on all sides
    MapView* const source = stage.views[stage.views.size() / 2];
    stage.activate(source);
    for (const QPoint& by : {QPoint(-7, 3), QPoint(40, -60), QPoint(0, 1)}) {
        drag(source, by);
        QCoreApplication::processEvents();
        for (MapView* view : stage.views) {
            if (view == source) {
                continue;
            }
            const QRectF wanted = mode == IClient::GeolinkWindow ? source->getBounds()
                                                                 : acrossTheScreen(source, view);
            QVERIFY2(isNear(view->getBounds(), fitted(*view, wanted)),
                     qPrintable(extentOf(view) + " instead of " + text(fitted(*view, wanted))));
            QTRY_COMPARE(int(view->getLayerAt(0)->getPercentComplete()), 100);
        }
    }
    wheel(*source, QPointF(20, 30), 120);
    QCoreApplication::processEvents();
    const QRectF before = source->getBounds();
    QVERIFY(before.width() < 1200.0);
    for (MapView* view : stage.views) {
        QVERIFY(std::abs(view->getBounds().width() / before.width() - 1.0) < 0.02);
    }
}

void GeolinkTest::theOthersFollowOnceTheEventLoopRuns()
{
    Stage stage(2);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkWindow});
    stage.views[0]->setBounds(10.0, 210.0, 210.0, 10.0);
    QCOMPARE(extentOf(stage.views[1]), text(world(0, 200, 200, 0)));
    QCoreApplication::processEvents();
    QCOMPARE(extentOf(stage.views[1]), text(world(10, 210, 210, 10)));
}

void GeolinkTest::aWindowGroupTakesTheSourcesWorld()
{
    Stage stage(3);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkWindow, IClient::GeolinkNone});
    stage.windowOf(stage.views[1])->resize(201, 101);
    stage.recordAll();
    stage.views[0]->setBounds(0.0, 100.0, 200.0, 0.0);
    // the source's two announcements, first the world that it shows
    QCOMPARE(stage.takeJournal(), QStringList({"0: 0 150 200 -50", "0: 0 100 200 0"}));
    QCoreApplication::processEvents();
    // each is passed on as it came and fitted to the target's own shape
    QCOMPARE(stage.takeJournal(), QStringList({"1: -100 150 300 -50", "1: 0 150 200 -50",
                                               "1: 0 100 200 0", "1: 0 100 200 0"}));
    QCOMPARE(extentOf(stage.views[2]), text(world(0, 200, 200, 0)));
}

void GeolinkTest::aScreenGroupIsOneMapAcrossTheDesktop()
{
    Stage stage(3);
    stage.setModes({IClient::GeolinkScreen, IClient::GeolinkScreen, IClient::GeolinkScreen});
    stage.windowOf(stage.views[1])->setGeometry(201, 0, 101, 201);
    stage.windowOf(stage.views[2])->setGeometry(100, 301, 201, 201);
    stage.recordAll();
    stage.views[0]->setBounds(0.0, 200.0, 200.0, 0.0);
    stage.takeJournal();
    QCoreApplication::processEvents();
    // the full width and height of a target count, the scale is that of the span of one pixel less
    QCOMPARE(stage.takeJournal(),
             QStringList({"1: 201 200.5 302 -1.5", "1: 201 200 302 -1", "2: 100 -101 301 -302",
                          "2: 100 -101 301 -302", "1: 201 200.5 302 -1.5", "1: 201 200 302 -1",
                          "2: 100 -101 301 -302", "2: 100 -101 301 -302"}));
}

void GeolinkTest::aDragOfManyStepsCostsOnePassEachAndNoFeedback()
{
    Stage stage(3);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkWindow, IClient::GeolinkWindow});
    stage.recordAll();
    press(*stage.views[0], QPoint(100, 100));
    for (int step = 1; step <= 1000; ++step) {
        move(*stage.views[0], QPoint(100 + step % 2, 100));
    }
    QCOMPARE(stage.takeJournal().size(), 1000);
    QCoreApplication::processEvents();
    const QStringList passes = stage.takeJournal();
    QCOMPARE(passes.filter(QRegularExpression("^0:")).size(), 0);
    // setBounds announces itself twice
    QCOMPARE(passes.filter(QRegularExpression("^1:")).size(), 2000);
    QCOMPARE(passes.filter(QRegularExpression("^2:")).size(), 2000);
    QCoreApplication::processEvents();
    QCOMPARE(stage.takeJournal(), QStringList());
    release(*stage.views[0], QPoint(100, 100));
    QCOMPARE(stage.extents(), QStringList({extentOf(stage.views[0]), extentOf(stage.views[0]),
                                           extentOf(stage.views[0])})
                                  .join(", "));
}

void GeolinkTest::onlyTheActiveWindowDrives()
{
    Stage stage(2);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkWindow});
    stage.views[1]->setBounds(50.0, 250.0, 250.0, 50.0);
    QCoreApplication::processEvents();
    QCOMPARE(stage.extents(), QString("0 200 200 0, 50 250 250 50"));
}

void GeolinkTest::aHiddenPanelLinksNothingAndTheModesStay()
{
    Stage stage(2, false);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkWindow});
    drag(stage.views[0], QPoint(-10, 0));
    QCoreApplication::processEvents();
    QCOMPARE(stage.extents(), QString("10 200 210 0, 0 200 200 0"));
    QCOMPARE(stage.modes(), QString("1 1"));

    stage.panel.show();
    drag(stage.views[0], QPoint(-10, 0));
    QCoreApplication::processEvents();
    QCOMPARE(stage.extents(), QString("20 200 220 0, 20 200 220 0"));
}

void GeolinkTest::windowsOfDifferentModesDoNotFollow()
{
    Stage stage(2);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkScreen});
    drag(stage.views[0], QPoint(-10, 0));
    QCoreApplication::processEvents();
    QCOMPARE(stage.extents(), QString("10 200 210 0, 0 200 200 0"));
    stage.activate(stage.views[1]);
    drag(stage.views[1], QPoint(-20, 0));
    QCoreApplication::processEvents();
    QCOMPARE(stage.extents(), QString("10 200 210 0, 20 200 220 0"));
}

void GeolinkTest::windowsOfDifferentReferencesDoNotFollow()
{
    Stage stage(3);
    QCOMPARE(stage.views[0]->addLayer(rasterClass, raster), 0);
    QCOMPARE(stage.views[1]->addLayer(rasterClass, geographic), 0);
    QTRY_COMPARE(stage.views[0]->getMapCanvas()->getSrs().epsg, 32633);
    QTRY_COMPARE(stage.views[1]->getMapCanvas()->getSrs().epsg, 4326);
    stage.setReference(2, 32633);
    const QString before = extentOf(stage.views[1]);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkWindow, IClient::GeolinkWindow});
    drag(stage.views[0], QPoint(-10, 0));
    QCoreApplication::processEvents();
    QCOMPARE(extentOf(stage.views[1]), before);
    QCOMPARE(extentOf(stage.views[2]), extentOf(stage.views[0]));
}

void GeolinkTest::movingATargetWaitsForTheNextChangeOfTheSource()
{
    Stage stage(2);
    stage.setModes({IClient::GeolinkScreen, IClient::GeolinkScreen});
    drag(stage.views[0], QPoint(0, 1));
    QCoreApplication::processEvents();
    const QString shown = extentOf(stage.views[1]);
    stage.windowOf(stage.views[1])->move(301, 0);
    QCoreApplication::processEvents();
    QCOMPARE(extentOf(stage.views[1]), shown);
    drag(stage.views[0], QPoint(0, -1));
    QCoreApplication::processEvents();
    QCOMPARE(extentOf(stage.views[1]), text(world(301, 200, 502, -1)));
}

void GeolinkTest::windowsWithoutAMapArePassedOver()
{
    Stage stage(2);
    stage.addOther();
    stage.activate(stage.views[0]);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkWindow});
    drag(stage.views[0], QPoint(-10, 0));
    QCoreApplication::processEvents();
    QCOMPARE(extentOf(stage.views[1]), text(world(10, 200, 210, 0)));
    stage.panel.setGeolinkScreen();
    QCOMPARE(stage.modes(), QString("2 1"));
    stage.radio("geolinkScreen")->setChecked(true);
    stage.panel.applyToAll();
    QCOMPARE(stage.modes(), QString("2 2"));
    QCOMPARE(extentOf(stage.views[1]), text(world(211, 200, 412, -1)));
}

void GeolinkTest::activatingAnUnlinkedWindowConnectsNothing()
{
    Stage stage(2);
    stage.setModes({IClient::GeolinkNone, IClient::GeolinkWindow});
    stage.activate(stage.views[1]);
    QCOMPARE(stage.checked(), QString("geolinkWindow"));
    stage.activate(stage.views[0]);
    QCOMPARE(stage.checked(), QString("geolinkNone"));
    QVERIFY(stage.panel.isEnabled());
    // linked behind the panel's back, the window still drives nothing
    stage.views[0]->setGeolinkMode(IClient::GeolinkWindow);
    drag(stage.views[0], QPoint(-10, 0));
    QCoreApplication::processEvents();
    QCOMPARE(extentOf(stage.views[1]), text(world(0, 200, 200, 0)));
}

void GeolinkTest::activatingALinkedWindowShowsItsModeAndTouchesNothing()
{
    Stage stage(3);
    stage.setModes({IClient::GeolinkNone, IClient::GeolinkWindow, IClient::GeolinkScreen});
    stage.recordAll();
    QSignalSpy none(stage.radio("geolinkNone"), SIGNAL(toggled(bool)));
    QSignalSpy window(stage.radio("geolinkWindow"), SIGNAL(toggled(bool)));
    QSignalSpy screen(stage.radio("geolinkScreen"), SIGNAL(toggled(bool)));
    stage.radio("geolinkScreen")->blockSignals(true);
    stage.activate(stage.views[1]);
    QCOMPARE(stage.checked(), QString("geolinkWindow"));
    stage.activate(stage.views[2]);
    QCOMPARE(stage.checked(), QString("geolinkScreen"));
    QVERIFY(stage.radio("geolinkScreen")->signalsBlocked()); // as it was
    QVERIFY(!stage.radio("geolinkNone")->signalsBlocked());
    QVERIFY(!stage.radio("geolinkWindow")->signalsBlocked());
    stage.activate(stage.views[0]);
    QCOMPARE(stage.checked(), QString("geolinkNone"));
    QCOMPARE(none.size() + window.size() + screen.size(), 0);
    QCOMPARE(stage.modes(), QString("0 1 2"));
    QCOMPARE(stage.takeJournal(), QStringList());
}

void GeolinkTest::activatingQuietlyLeavesTheRadios()
{
    Stage stage(2);
    stage.setModes({IClient::GeolinkNone, IClient::GeolinkWindow});
    QCOMPARE(stage.checked(), QString("geolinkNone"));
    stage.panel.onSubWindowActivated(stage.windowOf(stage.views[1]), false);
    QCOMPARE(stage.checked(), QString("geolinkNone"));
}

void GeolinkTest::activatingANonMapDisablesThePanel()
{
    Stage stage(1);
    QVERIFY(stage.panel.isEnabled());
    QMdiSubWindow* const other = stage.addOther();
    stage.area.setActiveSubWindow(other);
    QVERIFY(!stage.panel.isEnabled());
    stage.activate(stage.views[0]);
    QVERIFY(stage.panel.isEnabled());
    stage.panel.onSubWindowActivated(nullptr);
    QVERIFY(!stage.panel.isEnabled());
}

void GeolinkTest::theWindowLeftBehindDrivesNoMore()
{
    Stage stage(2);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkWindow});
    QVERIFY(stage.addOther());
    QCoreApplication::processEvents();
    QVERIFY(!stage.panel.isEnabled());
    stage.views[0]->setBounds(10.0, 210.0, 210.0, 10.0);
    QCoreApplication::processEvents();
    QCOMPARE(extentOf(stage.views[1]), text(world(0, 200, 200, 0)));
}

void GeolinkTest::aClosedWindowIsForgotten()
{
    Stage stage(2);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkWindow});
    // a change that is still on its way when its window goes
    stage.views[0]->setBounds(10.0, 210.0, 210.0, 10.0);
    delete stage.windowOf(stage.views[0]);
    QCoreApplication::processEvents();
    QCOMPARE(extentOf(stage.views[1]), text(world(0, 200, 200, 0)));
    stage.panel.onSubWindowActivated(stage.windowOf(stage.views[1]));
    QCOMPARE(stage.checked(), QString("geolinkWindow"));
}

void GeolinkTest::aClickOnARadioSetsTheModeOfTheActiveWindow()
{
    Stage stage(2);
    stage.click("geolinkScreen");
    QCOMPARE(stage.modes(), QString("2 0"));
    QCOMPARE(stage.checked(), QString("geolinkScreen"));
    stage.click("geolinkWindow");
    QCOMPARE(stage.modes(), QString("1 0"));
    stage.click("geolinkNone");
    QCOMPARE(stage.modes(), QString("0 0"));
    stage.activate(stage.views[1]);
    stage.click("geolinkWindow");
    QCOMPARE(stage.modes(), QString("0 1"));
}

void GeolinkTest::joiningAGroupDragsTheOthersAlong()
{
    Stage stage(3);
    stage.setModes({IClient::GeolinkNone, IClient::GeolinkWindow, IClient::GeolinkScreen});
    stage.views[0]->setBounds(10.0, 210.0, 210.0, 10.0);
    stage.click("geolinkWindow");
    QCOMPARE(stage.extents(), QString("10 210 210 10, 10 210 210 10, 0 200 200 0"));
}

void GeolinkTest::changingTheRadioAlignsTheOldGroupThenTheNew()
{
    Stage stage(3);
    stage.setModes({IClient::GeolinkScreen, IClient::GeolinkWindow, IClient::GeolinkScreen});
    stage.recordAll();
    stage.click("geolinkWindow");
    // the radio that goes off calls its slot first
    QCOMPARE(stage.takeJournal(), QStringList({"2: 402 200 603 -1", "2: 402 200 603 -1",
                                               "1: 0 200 200 0", "1: 0 200 200 0"}));
    QCOMPARE(stage.modes(), QString("1 1 2"));
}

void GeolinkTest::settingAModeWithoutAreaOrWindowDoesNothing()
{
    Geolink alone;
    alone.setGeolinkWindow();
    QVERIFY(alone.isEnabled());
    QMdiArea empty;
    alone.setWorkSpace(&empty);
    alone.setGeolinkWindow();
    QVERIFY(alone.isEnabled());
}

void GeolinkTest::theModeSlotsAreFoundByName()
{
    const QMetaObject& meta = Geolink::staticMetaObject;
    for (const char* slot : {"setWorkSpace(QMdiArea*)", "setGeolinkMode(Map::IClient::GeolinkMode)",
                             "setGeolinkNone()", "setGeolinkWindow()", "setGeolinkScreen()",
                             "onMapExtentsChanged(double,double,double,double)",
                             "onSubWindowActivated(QMdiSubWindow*,bool)",
                             "onSubWindowActivated(QMdiSubWindow*)", "applyToAll()"})
    {
        QVERIFY2(meta.indexOfSlot(slot) >= 0, slot);
    }
}

void GeolinkTest::theModeOfANonMapWindowIsNotSet()
{
    Stage stage(1);
    stage.area.setActiveSubWindow(stage.addOther());
    stage.panel.setGeolinkWindow();
    QCOMPARE(stage.modes(), QString("0"));
    QVERIFY(!stage.panel.isEnabled());
}

void GeolinkTest::applyToAllWithoutARadioUnlinksAll()
{
    Stage stage(3);
    Geolink fresh;
    fresh.setWorkSpace(&stage.area);
    stage.setModes({IClient::GeolinkWindow, IClient::GeolinkScreen, IClient::GeolinkWindow});
    stage.views[0]->setBounds(10.0, 210.0, 210.0, 10.0);
    QTest::mouseClick(fresh.findChild<QPushButton*>("applyToAll"), Qt::LeftButton);
    QCOMPARE(stage.modes(), QString("0 0 0"));
    QCOMPARE(extentOf(stage.views[1]), text(world(0, 200, 200, 0)));
}

void GeolinkTest::applyToAllSetsTheModeAndAligns_data()
{
    QTest::addColumn<QString>("radio");
    QTest::addColumn<QString>("modes");
    QTest::addColumn<QString>("extents");
    QTest::newRow("none leaves the worlds") << "geolinkNone"
                                            << "0 0 0"
                                            << "10 210 210 10, 0 200 200 0, 0 200 200 0";
    QTest::newRow("window gives all one world") << "geolinkWindow"
                                                << "1 1 1"
                                                << "10 210 210 10, 10 210 210 10, 10 210 210 10";
    QTest::newRow("screen spreads one map") << "geolinkScreen"
                                            << "2 2 2"
                                            << "10 210 210 10, 211 210 412 9, 412 210 613 9";
}

void GeolinkTest::applyToAllSetsTheModeAndAligns()
{
    QFETCH(QString, radio);
    QFETCH(QString, modes);
    QFETCH(QString, extents);
    Stage stage(3);
    stage.views[0]->setBounds(10.0, 210.0, 210.0, 10.0);
    stage.click(qPrintable(radio));
    stage.recordAll();
    QTest::mouseClick(stage.panel.findChild<QPushButton*>("applyToAll"), Qt::LeftButton);
    QCOMPARE(stage.modes(), modes);
    QCOMPARE(stage.extents(), extents);
    // once for each of the others, with the two announcements of setBounds
    QCOMPARE(stage.takeJournal().size(), radio == "geolinkNone" ? 0 : 4);
    // the active window drives from now on unless it is on its own
    drag(stage.views[0], QPoint(-10, 0));
    QCoreApplication::processEvents();
    QCOMPARE(extentOf(stage.views[1]) == extents.split(", ").at(1), radio == "geolinkNone");
}

void GeolinkTest::applyToAllMakesTheActiveWindowDrive()
{
    Stage stage(2);
    {
        const QSignalBlocker quiet(stage.radio("geolinkWindow"));
        stage.radio("geolinkWindow")->setChecked(true);
    }
    QCOMPARE(stage.modes(), QString("0 0"));
    stage.panel.applyToAll();
    drag(stage.views[0], QPoint(-10, 0));
    QCoreApplication::processEvents();
    QCOMPARE(stage.extents(), QString("10 200 210 0, 10 200 210 0"));
}

void GeolinkTest::applyToAllKeepsOtherReferencesWhereTheyAre()
{
    Stage stage(3);
    stage.setReference(1, 4326);
    stage.views[0]->setBounds(10.0, 210.0, 210.0, 10.0);
    stage.click("geolinkWindow");
    stage.panel.applyToAll();
    QCOMPARE(stage.modes(), QString("1 1 1"));
    QCOMPARE(stage.extents(), QString("10 210 210 10, 0 200 200 0, 10 210 210 10"));
}

void GeolinkTest::applyToAllFromANonMapWindowSetsTheModes()
{
    Stage stage(2);
    stage.radio("geolinkWindow")->setChecked(true);
    stage.area.setActiveSubWindow(stage.addOther());
    stage.panel.applyToAll();
    QCOMPARE(stage.modes(), QString("1 1"));
    QVERIFY(!stage.panel.isEnabled());
    QCOMPARE(stage.extents(), QString("0 200 200 0, 0 200 200 0"));
}

void GeolinkTest::applyToAllWithoutAreaOrWindowDoesNothing()
{
    Geolink alone;
    alone.applyToAll();
    QMdiArea empty;
    alone.setWorkSpace(&empty);
    alone.applyToAll();
    QVERIFY(alone.isEnabled());
}

void GeolinkTest::goingAwayLeavesTheModes()
{
    Stage stage(2);
    auto panel = std::make_unique<Geolink>();
    panel->setWorkSpace(&stage.area);
    panel->setGeolinkScreen();
    panel.reset();
    QCOMPARE(stage.modes(), QString("2 0"));
    drag(stage.views[0], QPoint(-10, 0));
    QCoreApplication::processEvents();
}

MAP_TEST_MAIN(GeolinkTest)

#include "GeolinkTest.moc"
