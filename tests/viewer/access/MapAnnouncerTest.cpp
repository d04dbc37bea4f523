#include <tests/viewer/support/DialogLooks.h>
#include <tests/viewer/support/TestImages.h>

#include <viewer/access/KeyboardCursor.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>
#include <tests/support/EachInItsProcess.h>

#include <QAccessible>
#include <QAction>
#include <QDockWidget>
#include <QFile>
#include <QPointer>
#include <QRegularExpression>
#include <QSettings>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

namespace {

QString told(Map::MapView* view, QAccessible::Text kind)
{
    QAccessibleInterface* const canvas = QAccessible::queryAccessibleInterface(view);
    return canvas ? canvas->text(kind) : QString("nothing");
}

/// The descriptions that a view has had since, one after the other: looked at before each event, since
/// no reader can listen off screen.
class Descriptions : public QObject
{
public:
    explicit Descriptions(Map::MapView* mapView) : view(mapView)
    {
        seen << view->accessibleDescription();
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent*) override
    {
        look();
        return false;
    }
    QStringList all()
    {
        look();
        return seen;
    }

private:
    void look()
    {
        if (view && view->accessibleDescription() != seen.last()) {
            seen << view->accessibleDescription();
        }
    }

    QStringList seen;
    QPointer<Map::MapView> view;
};

/// What the Tab key reaches and a screen reader finds no name for.
QStringList nameless(const QWidget& widget)
{
    QStringList found;
    for (QWidget* one : widget.findChildren<QWidget*>()) {
        const bool isReached = one->isVisibleTo(&widget) && one->isEnabled() &&
                               (one->focusPolicy() & Qt::TabFocus) && !one->focusProxy();
        if (!isReached || one->objectName().startsWith("qt_")) {
            continue; // parts of Qt's own widgets
        }
        const QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(one);
        if (!face || face->text(QAccessible::Name).trimmed().isEmpty()) {
            found << QString("%1 %2").arg(one->metaObject()->className(), one->objectName());
        }
    }
    return found;
}

} // namespace

/// What a screen reader hears of a map.
class MapAnnouncerTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aMapIsACanvasWithItsName();
    void tellsPositionScaleAndReference();
    void tellsOfThePlaceUnderTheKeyboardCursor();
    void tellsTheValueUnderTheKeyboardCursor();
    void aReaderHearsTheValueOnce();
    void whateverTakesTheKeyboardHasAName();
    void whateverTakesTheKeyboardInADialogHasAName();

private:
    Map::MapView* openMap();

    QTemporaryDir folder;
    std::unique_ptr<ViewerWindow> window;
};

void MapAnnouncerTest::initTestCase()
{
    QVERIFY(folder.isValid());
    qputenv("TMPDIR", QFile::encodeName(folder.path())); // of the browser's cache
    TestImages::writeRgb(folder.filePath("image.tif"), {});
}

void MapAnnouncerTest::init()
{
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    window = std::make_unique<ViewerWindow>();
    window->resize(900, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void MapAnnouncerTest::cleanup()
{
    window.reset();
}

Map::MapView* MapAnnouncerTest::openMap()
{
    window->openFiles({folder.filePath("image.tif")});
    Map::MapView* const view = window->getActiveMapWindow()->getView();
    const auto isThere = [view] {
        return view->getNumberOfLayers() == 1 && view->getLayerAt(0)->getPercentComplete() == 100;
    };
    if (!QTest::qWaitFor(isThere)) {
        qWarning("the image does not open");
    }
    return view;
}

void MapAnnouncerTest::aMapIsACanvasWithItsName()
{
    Map::MapView* const view = openMap();
    QCOMPARE(QAccessible::queryAccessibleInterface(view)->role(), QAccessible::Canvas);
    QTRY_COMPARE(told(view, QAccessible::Name), QString("Map image.tif"));
}

void MapAnnouncerTest::tellsPositionScaleAndReference()
{
    Map::MapView* const view = openMap();
    view->setBounds(QRectF(500000.0, 4649000.0, 1000.0, 1000.0));
    QTRY_VERIFY(told(view, QAccessible::Description).startsWith("The middle is at "));
    QTRY_VERIFY(told(view, QAccessible::Description).contains("500500"));
    const QString description = told(view, QAccessible::Description);
    QVERIFY2(description.contains("4649500"), qPrintable(description));
    QVERIFY2(description.contains("Scale 1:"), qPrintable(description));
    QVERIFY2(description.endsWith("Spatial reference EPSG:32633."), qPrintable(description));
    QVERIFY2(description.contains(QString::fromUtf8("° N")), qPrintable(description));
}

void MapAnnouncerTest::tellsOfThePlaceUnderTheKeyboardCursor()
{
    Map::MapView* const view = openMap();
    window->findChild<QAction*>("actionKeyboardCursor")->trigger();
    QTRY_VERIFY(told(view, QAccessible::Description).contains("The keyboard cursor is at "));
    const QString before = told(view, QAccessible::Description);
    QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    QTRY_VERIFY(told(view, QAccessible::Description) != before);
}

void MapAnnouncerTest::tellsTheValueUnderTheKeyboardCursor()
{
    Map::MapView* const view = openMap();
    QCOMPARE(told(view, QAccessible::Value), QString());
    window->findChild<QAction*>("actionKeyboardCursor")->trigger();
    QTRY_VERIFY(told(view, QAccessible::Value).startsWith("Column 5"));
    const QImage picture(folder.filePath("image.tif"));
    const QRegularExpression form(
        "^Column (\\d+), row (\\d+): Red (\\d+), Green (\\d+), Blue (\\d+)$");
    const QRegularExpressionMatch match = form.match(told(view, QAccessible::Value));
    QVERIFY2(match.hasMatch(), qPrintable(told(view, QAccessible::Value)));
    const QImage cell = TestImages::read(
        folder.filePath("image.tif"),
        QRectF(match.captured(1).toInt(), match.captured(2).toInt(), 1, 1), QSize(1, 1));
    QCOMPARE(match.captured(3).toInt(), qRed(cell.pixel(0, 0)));
    QCOMPARE(match.captured(4).toInt(), qGreen(cell.pixel(0, 0)));
    QCOMPARE(match.captured(5).toInt(), qBlue(cell.pixel(0, 0)));
    view->setBounds(QRectF(0.0, 0.0, 100.0, 100.0));
    QTRY_COMPARE(told(view, QAccessible::Value), QString("outside of the image"));
    QTest::keyClick(view, Qt::Key_Escape);
    view->setBounds(QRectF(500000.0, 4649000.0, 1000.0, 1000.0));
    QTRY_COMPARE(told(view, QAccessible::Value), QString());
}

void MapAnnouncerTest::aReaderHearsTheValueOnce()
{
    Map::MapView* const view = openMap();
    window->findChild<QAction*>("actionKeyboardCursor")->trigger();
    QTRY_VERIFY(!told(view, QAccessible::Value).isEmpty());
    const QString before = told(view, QAccessible::Description);
    QVERIFY2(before.startsWith(told(view, QAccessible::Value) + ". The keyboard cursor is at "),
             qPrintable(before));
    Descriptions descriptions(view);
    QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    QTRY_VERIFY(told(view, QAccessible::Description) != before);
    const QString after = told(view, QAccessible::Description);
    QVERIFY2(after.startsWith("Column "), qPrintable(after)); // and not first without it
    QCOMPARE(descriptions.all(), QStringList({before, after}));
}

void MapAnnouncerTest::whateverTakesTheKeyboardHasAName()
{
    openMap();
    QStringList found;
    for (QDockWidget* dock : window->findChildren<QDockWidget*>()) {
        dock->show();
        QCoreApplication::processEvents();
        for (const QString& one : nameless(*dock->widget())) {
            found << dock->objectName() + ": " + one;
        }
    }
    found << nameless(*window->statusBar());
    QVERIFY2(found.isEmpty(), qPrintable(found.join('\n')));
}

void MapAnnouncerTest::whateverTakesTheKeyboardInADialogHasAName()
{
    openMap();
    DialogLooks looks(&nameless);
    triggerDialogs(*window);
    QTRY_VERIFY(!QApplication::activeModalWidget());
    auto* const tree = window->findChild<Map::MapTreeView*>();
    tree->setCurrentItem(tree->topLevelItem(0)->child(0));
    tree->doProperties();
    QVERIFY2(looks.seen.size() >= 7, qPrintable(looks.seen.join(", ")));
    QVERIFY2(looks.complaints.isEmpty(), qPrintable(looks.complaints.join('\n')));
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    QLocale::setDefault(QLocale("en_US"));
    Application application(argc, argv, "Corvane Announcer Test");
    MapAnnouncerTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "MapAnnouncerTest.moc"
