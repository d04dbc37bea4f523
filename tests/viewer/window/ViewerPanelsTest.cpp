#include <tests/viewer/support/TestImages.h>

#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/gui/HistogramDisplay.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/gui/PropertyBrowser.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <tests/gui/DialogAnswers.h>
#include <tests/gui/MapTreeTools.h>
#include <tests/gui/PanelLayers.h>
#include <tests/gui/PanelPictures.h>
#include <tests/support/EachInItsProcess.h>

#include <QDialog>
#include <QDockWidget>
#include <QFileDialog>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QToolBar>
#include <QtProperty>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

namespace {

/// All entries below a menu bar, menu or tool bar, but separators.
QList<QAction*> entriesOf(const QWidget* widget)
{
    QList<QAction*> entries;
    for (QAction* action : widget->actions()) {
        if (action->menu()) {
            entries << action << entriesOf(action->menu());
        } else if (!action->isSeparator()) {
            entries << action;
        }
    }
    return entries;
}

/// A rebuild of the tree that is due has been made after this.
void settle()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents();
    }
}

/// Whether anybody listens to the command.
bool hasEffect(const QAction* action)
{
    struct Listened : QAction
    {
        using QAction::receivers;
    };
    return (action->*&Listened::receivers)(SIGNAL(triggered(bool))) > 0 ||
           (action->*&Listened::receivers)(SIGNAL(toggled(bool))) > 0;
}

} // namespace

/// The menus, tool bars and panels around the maps of the program's window.
class ViewerPanelsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theMenusStandAsTheFilesTell();
    void everyEntryHasATextAndAnEffect();
    void everyCommandStandsInAMenu();
    void everyEntryOfTheToolBarHasAPictureAndATip();
    void noTwoCommandsShareAKey();
    void theViewsKeysFindTheirCommands();
    void thePanelsAreShownAndHiddenFromTheMenu();

    void theTreeListsTheActiveMap();
    void theTreeFollowsLayersThatComeAndGo();
    void theTreeShowsWhenALayerHasOpened();
    void theTreeKeepsTheSelectionOfAMove();
    void theTreeTakesUpWhatADialogChanged();
    void theTreeKeepsTheSelectionBesideADialog();
    void theTreeWaitsForAnEditor();
    void theTreeEmptiesWithTheLastMap();
    void theTreeListsTheMapThatWasOnTheWholeScreen();
    void aDropOntoTheTreeAddsALayer();
    void theActiveLayerIsTheMapsSelection();
    void theHistogramTakesTheLayerWhenItIsShown();
    void thePanelsFollowToAVectorLayerAndBack();

    void picturesOfTheWindow();

private:
    QString path(const QString& name) const { return folder.filePath(name); }
    MapWindow* openMap(const QString& name);
    QAction* action(const QString& name) const { return window->findChild<QAction*>(name); }
    QDockWidget* dock(const QString& name) const { return window->findChild<QDockWidget*>(name); }

    QTemporaryDir folder;
    std::unique_ptr<ViewerWindow> window;
    Map::MapTreeView* tree = nullptr;
};

void ViewerPanelsTest::initTestCase()
{
    QVERIFY(folder.isValid());
    Application::instance()->getSettings()->clear();
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    TestImages::Layout layout;
    TestImages::writeRgb(path("one.tif"), layout);
    TestImages::writeRgb(path("two.tif"), layout);
    QVERIFY(makeLandscape(path("landscape.gpkg"),
                          QRectF(layout.origin, layout.origin + QPointF(2048.0, -1536.0))));
}

void ViewerPanelsTest::init()
{
    window = std::make_unique<ViewerWindow>();
    window->resize(1000, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    tree = window->findChild<Map::MapTreeView*>();
    QVERIFY(tree);
}

void ViewerPanelsTest::cleanup()
{
    window.reset();
}

MapWindow* ViewerPanelsTest::openMap(const QString& name)
{
    window->openFiles({path(name)});
    MapWindow* const map = window->getActiveMapWindow();
    if (!QTest::qWaitFor([&] { return map->getView()->getNumberOfLayers() == 1; })) {
        qWarning("%s does not open", qPrintable(name));
    }
    if (!QTest::qWaitFor([&] { return listed(*tree) == QStringList('[' + name + ']'); })) {
        qWarning("%s is not listed", qPrintable(name));
    }
    return map;
}

void ViewerPanelsTest::theMenusStandAsTheFilesTell()
{
    QStringList titles;
    for (const QAction* entry : window->menuBar()->actions()) {
        titles << entry->text();
    }
    QCOMPARE(titles, QStringList({"&File", "&Edit", "&View", "&Tools", "&Window", "&Help"}));
    QStringList file;
    for (const QAction* entry : window->menuBar()->actions().first()->menu()->actions()) {
        file << (entry->isSeparator() ? "---" : entry->text().remove('&'));
    }
    QCOMPARE(file.mid(0, 2), QStringList({"New Map", "Open..."}));
    QVERIFY(file.contains("Open Recent"));
    QVERIFY(file.contains("Add raster..."));
    QCOMPARE(file.last(), QString("Quit"));
    const auto bars = window->findChildren<QToolBar*>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(bars.size(), 1);
    QCOMPARE(bars.first()->windowTitle(), QString("Tool Bar"));
    QVERIFY(bars.first()->actions().contains(action("actionOpen")));
}

void ViewerPanelsTest::everyEntryHasATextAndAnEffect()
{
    QList<QAction*> entries = entriesOf(window->menuBar());
    for (const QToolBar* bar : window->findChildren<QToolBar*>()) {
        entries << entriesOf(bar);
    }
    QVERIFY(entries.size() > 30);
    for (const QAction* entry : qAsConst(entries)) {
        QVERIFY2(!entry->text().isEmpty(), qPrintable(entry->objectName()));
        const bool isMenu = entry->menu() != nullptr;
        QVERIFY2(isMenu || !entry->isEnabled() || hasEffect(entry), qPrintable(entry->text()));
    }
}

void ViewerPanelsTest::everyCommandStandsInAMenu()
{
    const QList<QAction*> entries = entriesOf(window->menuBar());
    for (QAction* command :
         window->findChildren<QAction*>(QRegularExpression("^action"), Qt::FindDirectChildrenOnly))
    {
        QVERIFY2(entries.contains(command), qPrintable(command->objectName()));
        QVERIFY2(hasEffect(command), qPrintable(command->objectName()));
    }
    QVERIFY(action("actionSnapshot"));
    QVERIFY(action("actionFullScreenMap"));
}

void ViewerPanelsTest::everyEntryOfTheToolBarHasAPictureAndATip()
{
    for (const QAction* entry : entriesOf(window->findChild<QToolBar*>("Tool Bar"))) {
        QVERIFY2(!entry->icon().pixmap(24, 24).isNull(), qPrintable(entry->text()));
        QVERIFY2(!entry->toolTip().isEmpty(), qPrintable(entry->text()));
    }
}

void ViewerPanelsTest::noTwoCommandsShareAKey()
{
    QMap<QString, const QAction*> byKey;
    for (const QAction* entry : entriesOf(window->menuBar())) {
        for (const QKeySequence& key : entry->shortcuts()) {
            const QAction* const other = byKey.value(key.toString());
            QVERIFY2(!other || other == entry, qPrintable(key.toString()));
            byKey.insert(key.toString(), entry);
        }
    }
    for (const char* key : {"Ctrl+O", "Ctrl+S", "Ctrl++", "Ctrl+=", "Ctrl+-", "F9", "F11"}) {
        QVERIFY2(byKey.contains(key), key);
    }
}

void ViewerPanelsTest::theViewsKeysFindTheirCommands()
{
    MapWindow* const map = openMap("one.tif");
    QSignalSpy snapshot(action("actionSnapshot"), &QAction::triggered);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_F9, Qt::NoModifier);
    QApplication::sendEvent(map->getView(), &key); // past the shortcut, to the view itself
    QCOMPARE(snapshot.count(), 1);
    auto* const dialog = window->findChild<QFileDialog*>("pictureDialog");
    QVERIFY(dialog);
    dialog->reject();
}

void ViewerPanelsTest::thePanelsAreShownAndHiddenFromTheMenu()
{
    QVERIFY(dock("layersDock")->isVisible());
    for (const QDockWidget* panel : window->findChildren<QDockWidget*>()) {
        QVERIFY(!panel->objectName().isEmpty());
        QVERIFY(panel->widget());
        QAction* const toggle = panel->toggleViewAction();
        QVERIFY(entriesOf(window->menuBar()).contains(toggle));
        const bool before = panel->isVisible();
        QCOMPARE(before, panel->objectName() == "layersDock");
        toggle->trigger();
        QCOMPARE(panel->isVisible(), !before);
    }
}

void ViewerPanelsTest::theTreeListsTheActiveMap()
{
    MapWindow* const one = openMap("one.tif");
    MapWindow* const two = openMap("two.tif");
    QTRY_COMPARE(listed(*tree), QStringList("[two.tif]"));
    window->getMdiArea()->setActiveSubWindow(one);
    QCOMPARE(listed(*tree), QStringList("[one.tif]"));
    window->getMdiArea()->setActiveSubWindow(two);
    QCOMPARE(listed(*tree), QStringList("[two.tif]"));
    two->close();
    QTRY_COMPARE(listed(*tree), QStringList("[one.tif]"));
}

void ViewerPanelsTest::theTreeFollowsLayersThatComeAndGo()
{
    MapWindow* const map = openMap("one.tif");
    window->addFiles({path("two.tif")}, map);
    QTRY_COMPARE(listed(*tree), QStringList({"[two.tif]", "one.tif"}));
    map->getView()->moveLayer(0, 1);
    QTRY_COMPARE(listed(*tree), QStringList({"one.tif", "[two.tif]"}));
    map->getView()->deleteLayerAt(1);
    QTRY_COMPARE(listed(*tree), QStringList("[two.tif]"));
    map->getView()->deleteAllLayers();
    QTRY_COMPARE(listed(*tree), QStringList());
    QCOMPARE(tree->topLevelItemCount(), 1);
}

void ViewerPanelsTest::theTreeShowsWhenALayerHasOpened()
{
    MapWindow* const map = openMap("one.tif");
    map->getView()->addLayer("Corvane::Map::GdalRasterLayer", path("two.tif"), "late");
    QTRY_COMPARE(listed(*tree), QStringList({"[late]", "one.tif"}));
    QTRY_COMPARE(rootOf(*tree)->child(0)->checkState(0), Qt::Checked);
    QVERIFY(map->getView()->getLayerAt(1)->isValid());
}

void ViewerPanelsTest::theTreeKeepsTheSelectionOfAMove()
{
    MapWindow* const map = openMap("one.tif");
    window->addFiles({path("two.tif")}, map);
    QTRY_COMPARE(listed(*tree), QStringList({"[two.tif]", "one.tif"}));
    clickOn(*tree, itemOf(*tree, "one.tif"));
    tree->moveLayerUp();
    settle();
    QCOMPARE(listed(*tree), QStringList({"[one.tif]", "two.tif"}));
    tree->deleteLayer();
    settle();
    QCOMPARE(listed(*tree), QStringList("[two.tif]"));
}

void ViewerPanelsTest::theTreeTakesUpWhatADialogChanged()
{
    MapWindow* const map = openMap("one.tif");
    QDialog dialog(window.get());
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    map->getView()->getLayerAt(0)->setDescription("renamed");
    map->getView()->getLayerAt(0)->setVisible(false);
    dialog.close();
    window->activateWindow();
    QTRY_COMPARE(listed(*tree), QStringList("[renamed]"));
    QCOMPARE(rootOf(*tree)->child(0)->checkState(0), Qt::Unchecked);
}

void ViewerPanelsTest::theTreeKeepsTheSelectionBesideADialog()
{
    MapWindow* const map = openMap("one.tif");
    window->addFiles({path("two.tif")}, map);
    QTRY_COMPARE(listed(*tree), QStringList({"[two.tif]", "one.tif"}));
    clickOn(*tree, itemOf(*tree, "one.tif"));
    DialogAnswers answers;
    QString shown;
    QStringList beside;
    answers.expect([&](QDialog& dialog) {
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        settle();
        shown = dialog.findChild<QLineEdit*>("descriptionLineEdit")->text();
        beside = listed(*tree);
        dialog.reject();
    });
    tree->doProperties();
    QCOMPARE(shown, QString("one.tif"));
    QCOMPARE(beside, QStringList({"two.tif", "[one.tif]"}));
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    settle();
    QCOMPARE(listed(*tree), QStringList({"two.tif", "[one.tif]"}));
}

void ViewerPanelsTest::theTreeWaitsForAnEditor()
{
    MapWindow* const map = openMap("one.tif");
    QTreeWidgetItem* const item = itemOf(*tree, "one.tif");
    clickOn(*tree, item);
    tree->editItem(item);
    auto* const editor = tree->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    map->getView()->addLayer("Corvane::Map::GdalRasterLayer", path("two.tif"), "second");
    QTest::keyClicks(editor, "renamed");
    QTRY_VERIFY(map->getView()->getLayerAt(1)->isValid());
    QCoreApplication::processEvents();
    QCOMPARE(tree->viewport()->findChild<QLineEdit*>(), editor);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(listed(*tree), QStringList({"[second]", "renamed"}));
    QCOMPARE(map->getView()->getLayerAt(0)->getDescription(), QString("renamed"));
}

void ViewerPanelsTest::theTreeEmptiesWithTheLastMap()
{
    openMap("one.tif");
    QStringList announced;
    connect(tree, &Map::MapTreeView::layerActivated, this,
            [&](Map::Layer* layer) { announced << (layer ? "layer" : "none"); });
    action("actionClose")->trigger();
    QTRY_COMPARE(tree->topLevelItemCount(), 0);
    QTRY_COMPARE(announced, QStringList("none")); // so that no panel keeps to a layer that is gone
}

void ViewerPanelsTest::theTreeListsTheMapThatWasOnTheWholeScreen()
{
    MapWindow* const map = openMap("one.tif");
    action("actionFullScreenMap")->trigger();
    QVERIFY(QTest::qWaitForWindowExposed(map->getView()));
    QCoreApplication::processEvents();
    action("actionFullScreenMap")->trigger();
    window->activateWindow();
    QTRY_COMPARE(listed(*tree), QStringList("[one.tif]"));
}

void ViewerPanelsTest::aDropOntoTheTreeAddsALayer()
{
    MapWindow* const map = openMap("one.tif");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path("two.tif"))});
    QCOMPARE(dragOnto(*tree, data), QStringList({"enter", "move", "drop"}));
    QCOMPARE(map->getView()->getNumberOfLayers(), 2);
    QCOMPARE(window->getMdiArea()->subWindowList().size(), 1);
    QTRY_COMPARE(rootOf(*tree)->child(0)->checkState(0), Qt::Checked); // once it is open
}

void ViewerPanelsTest::theActiveLayerIsTheMapsSelection()
{
    MapWindow* const map = openMap("one.tif");
    window->addFiles({path("two.tif")}, map);
    QTRY_COMPARE(listed(*tree), QStringList({"[two.tif]", "one.tif"}));
    QCOMPARE(map->getView()->getLayerSelection(), map->getView()->getLayerAt(1));
    clickOn(*tree, itemOf(*tree, "one.tif"));
    QCOMPARE(map->getView()->getLayerSelection(), map->getView()->getLayerAt(0));
    MapWindow* const other = openMap("two.tif");
    QTRY_COMPARE(other->getView()->getLayerSelection(), other->getView()->getLayerAt(0));
    QCOMPARE(map->getView()->getLayerSelection(), map->getView()->getLayerAt(0));
    clickOn(*tree, rootOf(*tree));
    QVERIFY(!other->getView()->getLayerSelection());
}

void ViewerPanelsTest::theHistogramTakesTheLayerWhenItIsShown()
{
    openMap("one.tif");
    auto* const histogram = window->findChild<Gui::HistogramDisplay*>();
    const auto mean = [histogram] { return histogram->findChild<QLineEdit*>("mean")->text(); };
    QCoreApplication::processEvents();
    QCOMPARE(mean(), QString()); // nothing is counted for a panel that nobody sees
    dock("histogramDock")->show();
    QTRY_VERIFY(!mean().isEmpty());
    QVERIFY(histogram->isEnabled());
    action("actionClose")->trigger();
    QTRY_VERIFY(!histogram->isEnabled());
}

void ViewerPanelsTest::thePanelsFollowToAVectorLayerAndBack()
{
    MapWindow* const map = openMap("one.tif");
    window->addFiles({path("landscape.gpkg")}, map);
    QTRY_COMPARE(listed(*tree), QStringList({"[landscape.gpkg]", "one.tif"}));
    dock("histogramDock")->show();
    dock("propertiesDock")->show();
    auto* const histogram = window->findChild<Gui::HistogramDisplay*>();
    auto* const mean = histogram->findChild<QLineEdit*>("mean");
    const auto names = [this] {
        QStringList shown;
        for (const QtProperty* row : window->findChild<Gui::PropertyBrowser*>()->properties()) {
            shown << row->propertyName();
        }
        return shown;
    };
    QTRY_VERIFY(names().contains("PointSymbol"));
    QTRY_VERIFY(!histogram->isEnabled());
    clickOn(*tree, itemOf(*tree, "one.tif"));
    QTRY_VERIFY(!mean->text().isEmpty());
    QVERIFY(histogram->isEnabled());
    QVERIFY(names().contains("BlockSize"));
    clickOn(*tree, itemOf(*tree, "landscape.gpkg"));
    QTRY_VERIFY(!histogram->isEnabled());
    QCOMPARE(mean->text(), QString());
    QVERIFY(names().contains("PointSymbol"));
    QVERIFY(!names().contains("BlockSize"));
}

void ViewerPanelsTest::picturesOfTheWindow()
{
    MapWindow* const map = openMap("one.tif");
    window->addFiles({path("landscape.gpkg")}, map);
    QTRY_COMPARE(listed(*tree), QStringList({"[landscape.gpkg]", "one.tif"}));
    map->getView()->getLayerAt(1)->setProperty("LabelField", "name");
    window->resize(1300, 900);
    for (QDockWidget* panel : window->findChildren<QDockWidget*>()) {
        panel->show();
    }
    settle(); // the map has its place between the panels
    map->getView()->zoomToAllLayers(false);
    for (const char* name : {"landscape.gpkg", "one.tif"}) {
        clickOn(*tree, itemOf(*tree, name));
        for (const int layer : {0, 1}) {
            QTRY_COMPARE(int(map->getView()->getLayerAt(layer)->getPercentComplete()), 100);
        }
        const QString kind = qstrcmp(name, "one.tif") == 0 ? "Raster" : "Vectors";
        QCOMPARE(takePictures(*window, "ViewerWindow" + kind).join("; "), QString());
    }
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Panels Test");
    ViewerPanelsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "ViewerPanelsTest.moc"
