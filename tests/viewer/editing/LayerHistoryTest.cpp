#include <tests/viewer/support/OpenViewer.h>

#include <viewer/editing/LayerHistory.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/output/MapPicture.h>
#include <viewer/frame/Panels.h>
#include <viewer/batch/Startup.h>

#include <corvane/gui/MapTreeView.h>
#include <corvane/map/MapCanvas.h>
#include <tests/support/EachInItsProcess.h>

#include <QFile>
#include <QMdiArea>
#include <QMessageBox>
#include <QPushButton>
#include <QUndoStack>

using namespace Corvane;
using namespace Corvane::Viewer;

class LayerHistoryTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { viewer.reset(); }

    void aDeletedLayerComesBackWhereItWas();
    void aDeletedLayerComesBackWithItsSettings();
    void anUndoneDeletionLeavesASavedMapUnchanged();
    void aDeletionCanBeRedone();
    void theOnlyLayerComesBackInTheSameView();
    void allLayersComeBackInOneStep();
    void aLayerComesBackBetweenItsNeighboursThatWereMovedSince();
    void aSourceThatIsGoneComesBackAsAnInvalidLayer();
    void aClassThatIsGoneIsToldAndTheRestGoesOn();

    void movesOfTheTreeAreUndone_data();
    void movesOfTheTreeAreUndone();
    void moveThatMovedNothingIsNoStep();
    void aMoveOfALayerThatWasDeletedAndCameBackIsUndone();
    void layersAddedSinceDoNotMatter();
    void aLayerThatIsReloadedIsTheSameLayer();

    void aLayerThatWasSwitchedOffIsSwitchedOnAgain();
    void aLayerThatIsShownAgainHasTheViewOfNow();
    void renamingIsNoStep();

    void theHistoryHoldsTheLastTwentySteps();
    void eachMapHasAHistoryOfItsOwn();
    void closingAMapEndsItsHistory();

private:
    QStringList layers() const { return OpenViewer::layersOf(map); }
    QStringList tree() const;
    QTreeWidgetItem* item(const QString& name) const;
    QUndoStack* steps(MapWindow* of) const { return of->findChild<LayerHistory*>()->getSteps(); }
    QString undoText() const { return viewer->action("actionUndo")->text(); }
    void undo() { viewer->action("actionUndo")->trigger(); }
    void redo() { viewer->action("actionRedo")->trigger(); }
    void remove(const QString& name);
    /// Once everything is there: painting may ask for more.
    QImage picture() const
    {
        paintMapPicture(*view, 1.0);
        OpenViewer::complete(map);
        return paintMapPicture(*view, 1.0);
    }

    std::unique_ptr<OpenViewer> viewer;
    MapWindow* map = nullptr;
    Map::MapView* view = nullptr;
};

void LayerHistoryTest::init()
{
    viewer = std::make_unique<OpenViewer>();
    for (const char* name : {"a.tif", "b.tif"}) {
        QVERIFY(QFile::copy(viewer->path("one.tif"), viewer->path(name)));
    }
    TestImages::Layout upper; // of the same place
    upper.size = QSize(256, 192);
    upper.noise = true;
    TestImages::writeRgb(viewer->path("c.tif"), upper);
    map = viewer->openMap({"a.tif", "b.tif", "c.tif"});
    view = map->getView();
    QTRY_COMPARE(tree(), QStringList({"a.tif", "b.tif", "c.tif"}));
}

/// Its layers, the lowest first, those that are off in brackets.
QStringList LayerHistoryTest::tree() const
{
    QStringList names;
    const QTreeWidgetItem* const root = viewer->window->getPanels()->getTree()->topLevelItem(0);
    for (int i = root ? root->childCount() - 1 : -1; i >= 0; --i) {
        const QTreeWidgetItem* const one = root->child(i);
        const bool on = one->checkState(0) == Qt::Checked;
        names << (on ? one->text(0) : "(" + one->text(0) + ")");
    }
    return names;
}

QTreeWidgetItem* LayerHistoryTest::item(const QString& name) const
{
    return viewer->window->getPanels()
        ->getTree()
        ->findItems(name, Qt::MatchExactly | Qt::MatchRecursive)
        .value(0);
}

/// In the tree, as the user does.
void LayerHistoryTest::remove(const QString& name)
{
    Map::MapTreeView* const panel = viewer->window->getPanels()->getTree();
    panel->setCurrentItem(item(name));
    panel->deleteLayer();
    QCoreApplication::processEvents();
}

void LayerHistoryTest::aDeletedLayerComesBackWhereItWas()
{
    QVERIFY(!viewer->action("actionUndo")->isEnabled());
    QCOMPARE(undoText(), QString("&Undo"));
    remove("b.tif");
    QCOMPARE(layers(), QStringList({"a.tif", "c.tif"}));
    QVERIFY(viewer->action("actionUndo")->isEnabled());
    QCOMPARE(undoText(), QString("&Undo Delete Layer \"b.tif\""));
    QCOMPARE(viewer->action("actionRedo")->text(), QString("&Redo"));

    const QRectF bounds = view->getBounds();
    undo();
    QCOMPARE(layers(), QStringList({"a.tif", "b.tif", "c.tif"}));
    QTRY_COMPARE(tree(), layers());
    OpenViewer::complete(map);
    QCOMPARE(view->getBounds(), bounds);
    QVERIFY(!viewer->action("actionUndo")->isEnabled());
    QCOMPARE(viewer->action("actionRedo")->text(), QString("&Redo Delete Layer \"b.tif\""));
}

void LayerHistoryTest::aDeletedLayerComesBackWithItsSettings()
{
    Map::Layer* const layer = view->getLayerAt(2);
    layer->setDescription("Rivers & lakes");
    layer->setComments("of <1990>");
    layer->setMaxScale(1.0e7);
    layer->setProperty("Transparency", 0.5);
    layer->setProperty("Bands", "3,2,1");
    OpenViewer::complete(map);
    const QImage before = picture();
    view->deleteLayer(layer);
    QCOMPARE(undoText(), QString("&Undo Delete Layer \"Rivers && lakes\""));
    QVERIFY(picture() != before);
    undo();
    Map::Layer* const back = view->getLayerAt(2);
    QCOMPARE(back->getDescription(), QString("Rivers & lakes"));
    QCOMPARE(back->getComments(), QString("of <1990>"));
    QCOMPARE(back->getMaxScale(), 1.0e7);
    QCOMPARE(back->property("Transparency"), QVariant(0.5));
    QCOMPARE(back->property("Bands"), QVariant("3,2,1"));
    QTRY_COMPARE_WITH_TIMEOUT(picture(), before, 30000); // the layer that is back opens first
}

void LayerHistoryTest::anUndoneDeletionLeavesASavedMapUnchanged()
{
    QSignalSpy saved(map->getDocument(), &MapDocument::saved);
    map->getDocument()->save(viewer->path("map.cmap"));
    QVERIFY(saved.wait());
    QVERIFY(!map->getDocument()->isChanged());
    remove("b.tif");
    QVERIFY(map->getDocument()->isChanged());
    undo();
    OpenViewer::complete(map);
    QVERIFY(!map->getDocument()->isChanged());

    view->getLayerAt(1)->setDescription("Changed"); // before it is deleted
    view->deleteLayerAt(1);
    undo();
    OpenViewer::complete(map);
    QCOMPARE(layers(), QStringList({"a.tif", "Changed", "c.tif"}));
    QVERIFY(map->getDocument()->isChanged());
}

void LayerHistoryTest::aDeletionCanBeRedone()
{
    view->deleteLayerAt(0);
    undo();
    view->getLayerAt(0)->setDescription("Renamed"); // the state of now is what comes back next
    redo();
    QCOMPARE(layers(), QStringList({"b.tif", "c.tif"}));
    QTRY_COMPARE(tree(), layers());
    undo();
    QCOMPARE(layers(), QStringList({"Renamed", "b.tif", "c.tif"}));
    redo();
    QCOMPARE(layers(), QStringList({"b.tif", "c.tif"}));
}

void LayerHistoryTest::theOnlyLayerComesBackInTheSameView()
{
    map = viewer->openMap({"one.tif"});
    view = map->getView();
    view->setBounds(500100.0, 4649900.0, 500200.0, 4649800.0);
    const QRectF bounds = view->getBounds();
    view->deleteLayerAt(0);
    QCOMPARE(layers(), QStringList());
    undo();
    QCOMPARE(layers(), QStringList("one.tif"));
    QCOMPARE(view->getBounds(), bounds);
}

void LayerHistoryTest::allLayersComeBackInOneStep()
{
    view->deleteAllLayers();
    QCOMPARE(layers(), QStringList());
    QCOMPARE(steps(map)->count(), 1);
    QCOMPARE(undoText(), QString("&Undo Delete 3 Layer(s)"));
    QCoreApplication::processEvents();
    undo();
    QCOMPARE(layers(), QStringList({"a.tif", "b.tif", "c.tif"}));
    redo();
    QCOMPARE(layers(), QStringList());
    undo();
    QTRY_COMPARE(tree(), QStringList({"a.tif", "b.tif", "c.tif"}));

    view->deleteLayerAt(0);
    QCoreApplication::processEvents();
    view->deleteLayerAt(0); // in another turn
    QCOMPARE(steps(map)->count(), 2);
}

void LayerHistoryTest::aLayerComesBackBetweenItsNeighboursThatWereMovedSince()
{
    view->deleteLayerAt(1);
    view->getMapCanvas()->moveLayer(0, 1); // as a plugin may, without a word
    QCOMPARE(layers(), QStringList({"c.tif", "a.tif"}));
    undo();
    QCOMPARE(layers(), QStringList({"c.tif", "a.tif", "b.tif"}));
}

void LayerHistoryTest::aSourceThatIsGoneComesBackAsAnInvalidLayer()
{
    view->deleteLayerAt(1);
    QVERIFY(QFile::remove(viewer->path("b.tif")));
    undo();
    QCOMPARE(layers(), QStringList({"a.tif", "b.tif", "c.tif"}));
    QVERIFY(!view->getLayerAt(1)->isValid());
    QCOMPARE(view->getLayerAt(1)->getDataSource(), viewer->path("b.tif"));
}

void LayerHistoryTest::aClassThatIsGoneIsToldAndTheRestGoesOn()
{
    LayerStack stack(map);
    const KeptLayer kept = stack.keep(view->getLayerAt(0));
    QDomDocument other = kept.document;
    other.documentElement().firstChildElement("layers").firstChildElement("layer").setAttribute(
        "class", "Corvane::Map::Nothing");
    QString reason;
    QVERIFY(!stack.bringBack(kept, stack.order(), &reason));
    QCOMPARE(reason, QString("The plugin manager could not find a layer class to handle the type "
                             "'Corvane::Map::Nothing'."));
    QCOMPARE(layers(), QStringList({"a.tif", "b.tif", "c.tif"}));
}

void LayerHistoryTest::movesOfTheTreeAreUndone_data()
{
    QTest::addColumn<QByteArray>("move");
    QTest::addColumn<QStringList>("after");
    QTest::newRow("up") << QByteArray("moveLayerUp") << QStringList({"a.tif", "c.tif", "b.tif"});
    QTest::newRow("down") << QByteArray("moveLayerDown")
                          << QStringList({"b.tif", "a.tif", "c.tif"});
    QTest::newRow("to the top") << QByteArray("moveLayerToTop")
                                << QStringList({"a.tif", "c.tif", "b.tif"});
    QTest::newRow("to the bottom")
        << QByteArray("moveLayerToBottom") << QStringList({"b.tif", "a.tif", "c.tif"});
}

void LayerHistoryTest::movesOfTheTreeAreUndone()
{
    QFETCH(const QByteArray, move);
    QFETCH(const QStringList, after);
    Map::MapTreeView* const panel = viewer->window->getPanels()->getTree();
    panel->setCurrentItem(item("b.tif"));
    QVERIFY(QMetaObject::invokeMethod(panel, move));
    QCOMPARE(layers(), after);
    QCOMPARE(undoText(), QString("&Undo Move Layer \"b.tif\""));
    QSignalSpy moved(view, &Map::MapView::layerMoved);
    undo();
    QCOMPARE(moved.count(), 1);
    QCOMPARE(layers(), QStringList({"a.tif", "b.tif", "c.tif"}));
    QTRY_COMPARE(tree(), layers());
    QCOMPARE(panel->currentItem(), item("b.tif")); // still the one that the user works on
    redo();
    QCOMPARE(layers(), after);
    QTRY_COMPARE(tree(), layers());
    QCOMPARE(steps(map)->count(), 1);
}

void LayerHistoryTest::moveThatMovedNothingIsNoStep()
{
    view->moveLayer(5, 0);
    view->moveLayer(1, 1);
    QCOMPARE(steps(map)->count(), 0);
}

void LayerHistoryTest::aMoveOfALayerThatWasDeletedAndCameBackIsUndone()
{
    view->moveLayer(0, 2);
    view->deleteLayerAt(2);
    QCOMPARE(layers(), QStringList({"b.tif", "c.tif"}));
    undo();
    QCOMPARE(layers(), QStringList({"b.tif", "c.tif", "a.tif"}));
    undo(); // the move, of what is another object now
    QCOMPARE(layers(), QStringList({"a.tif", "b.tif", "c.tif"}));
    redo();
    redo();
    QCOMPARE(layers(), QStringList({"b.tif", "c.tif"}));
}

void LayerHistoryTest::layersAddedSinceDoNotMatter()
{
    view->moveLayer(2, 0);
    view->deleteLayerAt(2);
    QCOMPARE(layers(), QStringList({"c.tif", "a.tif"}));
    map->open(viewer->path("two.tif"));
    QTRY_COMPARE(layers(), QStringList({"c.tif", "a.tif", "two.tif"}));
    undo();
    QCOMPARE(layers(), QStringList({"c.tif", "a.tif", "b.tif", "two.tif"}));
    undo();
    QCOMPARE(layers(), QStringList({"a.tif", "b.tif", "c.tif", "two.tif"}));
}

void LayerHistoryTest::aLayerThatIsReloadedIsTheSameLayer()
{
    view->moveLayer(0, 2);
    QCOMPARE(layers(), QStringList({"b.tif", "c.tif", "a.tif"}));
    const QPointer<Map::Layer> before = view->getLayerAt(2);
    viewer->action("actionReloadAll")->trigger();
    QTRY_VERIFY(!before);
    QTRY_COMPARE(layers(), QStringList({"b.tif", "c.tif", "a.tif"}));
    QCOMPARE(steps(map)->count(), 1);
    undo();
    QCOMPARE(layers(), QStringList({"a.tif", "b.tif", "c.tif"}));
}

void LayerHistoryTest::aLayerThatWasSwitchedOffIsSwitchedOnAgain()
{
    Map::MapTreeView* const panel = viewer->window->getPanels()->getTree();
    panel->setFocus();
    panel->setCurrentItem(item("b.tif"));
    QTest::keyClick(panel, Qt::Key_Space);
    QCOMPARE(tree(), QStringList({"a.tif", "(b.tif)", "c.tif"}));
    QCOMPARE(undoText(), QString("&Undo Hide Layer \"b.tif\""));
    QTest::keyClick(panel, Qt::Key_Space);
    QCOMPARE(undoText(), QString("&Undo Show Layer \"b.tif\""));
    QVERIFY(view->getLayerAt(1)->isVisible());
    undo();
    QVERIFY(!view->getLayerAt(1)->isVisible());
    QTRY_COMPARE(tree(), QStringList({"a.tif", "(b.tif)", "c.tif"}));
    undo();
    QVERIFY(view->getLayerAt(1)->isVisible());
    QTRY_COMPARE(tree(), QStringList({"a.tif", "b.tif", "c.tif"}));
    QCOMPARE(steps(map)->count(), 2);
    QVERIFY(viewer->action("actionRedo")->isEnabled());
    QCOMPARE(steps(map)->redoText(), QString("Hide Layer \"b.tif\""));
    redo();
    QVERIFY(!view->getLayerAt(1)->isVisible());
    QTRY_COMPARE(tree(), QStringList({"a.tif", "(b.tif)", "c.tif"}));
}

void LayerHistoryTest::aLayerThatIsShownAgainHasTheViewOfNow()
{
    for (const char* name : {"a.tif", "b.tif", "c.tif"}) {
        item(name)->setCheckState(0, Qt::Unchecked);
    }
    view->setBounds(500010.0, 4649990.0, 500050.0, 4649950.0);
    undo();
    QVERIFY(view->getLayerAt(2)->isVisible());
    OpenViewer::complete(map);
    const QImage shown = paintMapPicture(*view, 1.0);
    view->setBounds(view->getBounds()); // tells every visible layer
    OpenViewer::complete(map);
    QCOMPARE(shown, paintMapPicture(*view, 1.0));
}

void LayerHistoryTest::renamingIsNoStep()
{
    item("b.tif")->setText(0, "New name");
    QCOMPARE(steps(map)->count(), 0);
}

void LayerHistoryTest::theHistoryHoldsTheLastTwentySteps()
{
    for (int i = 0; i < 25; ++i) {
        view->moveLayer(0, 2);
    }
    QCOMPARE(steps(map)->count(), 20);
    for (int i = 0; i < 25; ++i) {
        undo();
    }
    QVERIFY(!viewer->action("actionUndo")->isEnabled());
    QCOMPARE(layers(), QStringList({"c.tif", "a.tif", "b.tif"})); // after the first five
}

void LayerHistoryTest::eachMapHasAHistoryOfItsOwn()
{
    view->deleteLayerAt(0);
    MapWindow* const other = viewer->openMap({"one.tif", "two.tif"});
    QVERIFY(!viewer->action("actionUndo")->isEnabled());
    QCOMPARE(undoText(), QString("&Undo"));
    other->getView()->moveLayer(0, 1);
    QCOMPARE(undoText(), QString("&Undo Move Layer \"one.tif\""));
    viewer->window->getMdiArea()->setActiveSubWindow(map);
    QCOMPARE(undoText(), QString("&Undo Delete Layer \"a.tif\""));
    undo();
    QCOMPARE(layers(), QStringList({"a.tif", "b.tif", "c.tif"}));
    QCOMPARE(OpenViewer::layersOf(other), QStringList({"two.tif", "one.tif"}));
}

void LayerHistoryTest::closingAMapEndsItsHistory()
{
    view->deleteLayerAt(0);
    QPointer<MapWindow> gone = map;
    map->close();
    viewer->window->findChild<QMessageBox*>("saveQuestion")->button(QMessageBox::Discard)->click();
    QTRY_VERIFY(!gone);
    QVERIFY(!viewer->action("actionUndo")->isEnabled());
    QCOMPARE(undoText(), QString("&Undo"));
    QCOMPARE(viewer->window->findChildren<QUndoStack*>().size(), 0);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Layer History Test");
    LayerHistoryTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "LayerHistoryTest.moc"
