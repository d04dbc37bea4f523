#include <corvane/gui/MapTreeView.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <tests/gui/DialogAnswers.h>
#include <tests/gui/MapTreeTools.h>
#include <tests/gui/PanelPictures.h>
#include <tests/map/MapViewTools.h>
#include <tests/map/TestLayers.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTextEdit>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using Map::MapTreeView;
using Map::MapView;

namespace {

QStringList texts(const QMenu* menu)
{
    QStringList result;
    for (const QAction* action : menu->actions()) {
        result << (action->isSeparator() ? "---" : action->text());
    }
    return result;
}

/// The actions that are enabled.
QStringList enabled(const QMenu* menu)
{
    QStringList result;
    for (const QAction* action : menu->actions()) {
        if (!action->isSeparator() && action->isEnabled()) {
            result << action->text();
        }
    }
    return result;
}

} // namespace

/// The tree without plugins, so that it may come and go.
class MapTreeViewTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void aNewTreeIsEmptyAndTakesDrops();
    void theSlotsAreFoundByName();
    void whatIsAnnouncedCanBeReadByASpy();
    void aHostMayAddActionsOfItsOwn();
    void theMenusHoldTheirActions();
    void theActionsHaveTheirPictures_data();
    void theActionsHaveTheirPictures();

    void theTopLayerStandsFirst();
    void theRootIsTheMap();
    void aLayersItemTellsOfTheLayer();
    void itemsAreTickedForWhatIsShown_data();
    void itemsAreTickedForWhatIsShown();
    void aToolTipHasSevenLines();
    void aToolTipHasEmptyLinesToo();
    void noLayerHasNoToolTip();

    void aMapIsAnnouncedByItsTopLayer();
    void aMapWithoutLayersIsAnnouncedWithoutALayer();
    void noMapIsAnnouncedByNothing();
    void nothingHappensToALayerWhenTheTreeIsFilled();
    void aClickOnALayerAnnouncesItTwice();
    void aClickOnTheRootAnnouncesTheMapTwice();
    void aSecondClickAnnouncesOnce();
    void arrowKeysAnnounceOnce();
    void aNullItemIsNotAnnounced();
    void aLayerThatIsGoneIsTakenForTheMap();
    void theLayerMenuFollowsTheSelection();

    void anUntickedLayerIsHidden();
    void anInvalidLayerComesBackUnticked();
    void theColumnOfAChangeDoesNotMatter();
    void aNewTextOfALayerIsItsDescription();
    void aNewTextOfTheRootIsTheMapsDescription();
    void anEditThatIsGivenUpChangesNothing();
    void anotherEditorNamesNothing();

    void layersMove_data();
    void layersMove();
    void aMoveAtTheEndDoesNothingAtAll();
    void aMoveOfTheRootDoesNothing();
    void aMovedLayerKeepsItsTick();
    void movesAreAnnounced();
    void movesWithoutAMapOrSelectionDoNothing();
    void aHostMayMakeTheTreeAnewWhileALayerMoves();

    void aDeletedLayerLeavesMapAndTree();
    void theNextLayerIsAnnouncedAfterADeletionByHand();
    void noLayerIsAnnouncedAfterADeletionWithoutACurrentItem();
    void theLastLayerCanBeDeleted();
    void theRootCannotBeDeleted();
    void deletingWithoutSelectionAnnouncesNoLayer();
    void aHostMayMakeTheTreeAnewWhileALayerGoes();
    void aHostMayTakeTheMapAwayWhileALayerGoes();

    void theMenuOfALayerIsShown();
    void theMenuOfTheMapIsShown();
    void theMenuIsThatOfTheSelectionNotOfThePointer();
    void nothingSelectedMeansNoMenu();
    void aMenuEntryWorks();

    void propertiesOfALayer();
    void propertiesOfTheMapStayWithTheTree();
    void propertiesNeedASelection();

    void theMapIsPaintedAnewAfterAChange();

    void zoomsToALayer();
    void zoomsToAll();
    void zoomsToALayerOneToOne();
    void zoomsToTheLowestRasterOneToOneForTheRoot();
    void theRootOfVectorsIsNotZoomedTo();
    void theRootIsNotZoomedToAsALayer();

    void theTreeFollowsTheActiveWindow();
    void aWindowWithoutAMapEmptiesTheTree();
    void noActiveWindowEmptiesTheTreeWhileTheProgramIsInFront();
    void theTreeIsKeptWhileAnotherProgramIsInFront();
    void aMapThatGoesDoesNoHarm();
    void aLayerThatGoesAtItsAnnouncementIsNotAnnouncedAgain();
    void aDropWithoutDataMakesTheTreeAnew();

    void picturesOfTheTree();

private:
    /// Adds a layer on top, listed at the next rebuild.
    template <typename Layer>
    Layer* add(const QString& name)
    {
        auto* const layer = new Layer;
        layer->setDescription(name);
        view->getMapCanvas()->addLayer(layer, -1);
        return layer;
    }
    void fill();
    QTreeWidgetItem* item(const QString& name) { return itemOf(*tree, name); }
    void select(const QString& name);
    QStringList takeJournal() { return std::exchange(journal, QStringList()); }
    void contextMenu(const QPoint& position)
    {
        QContextMenuEvent event(QContextMenuEvent::Mouse, position,
                                tree->viewport()->mapToGlobal(position));
        QApplication::sendEvent(tree->viewport(), &event);
    }
    void edit(const QString& name, const QString& text, Qt::Key end);

    QStringList painted; // the journal of a layer, which outlives the test
    std::unique_ptr<MapView> view;
    std::unique_ptr<MapTreeView> tree;
    std::unique_ptr<DialogAnswers> answers;
    QStringList journal;
};

void MapTreeViewTest::init()
{
    view = makeView(Motion::Direct);
    tree = std::make_unique<MapTreeView>(nullptr);
    tree->setObjectName("tree");
    tree->resize(260, 240);
    tree->show();
    QVERIFY(QTest::qWaitForWindowActive(tree.get()));
    answers = std::make_unique<DialogAnswers>();
    Tests::record(*tree, &journal);
    journal.clear();
}

void MapTreeViewTest::cleanup()
{
    QVERIFY(answers->isDone());
    answers.reset();
    view.reset(); // before the tree, whose end is that of the plugins
    tree.reset();
}

/// A map with "raster" below "vector" below "top".
void MapTreeViewTest::fill()
{
    add<TestRasterLayer>("raster");
    add<TestVectorLayer>("vector");
    add<TestLayer>("top");
    tree->setMapView(view.get());
    journal.clear();
}

void MapTreeViewTest::select(const QString& name)
{
    QVERIFY(item(name));
    clickOn(*tree, item(name));
    journal.clear();
}

void MapTreeViewTest::edit(const QString& name, const QString& text, Qt::Key end)
{
    select(name);
    QTest::mouseDClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier,
                       middleOf(*tree, item(name)));
    auto* const editor = tree->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, end);
}

void MapTreeViewTest::aNewTreeIsEmptyAndTakesDrops()
{
    QVERIFY(tree->header()->isHidden());
    QVERIFY(tree->acceptDrops());
    QVERIFY(!tree->dragEnabled());
    QVERIFY(tree->rootIsDecorated());
    QCOMPARE(tree->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(tree->selectionBehavior(), QAbstractItemView::SelectItems);
    QCOMPARE(tree->topLevelItemCount(), 0);
    QCOMPARE(tree->metaObject()->className(), "Corvane::Map::MapTreeView");
}

void MapTreeViewTest::theSlotsAreFoundByName()
{
    const QMetaObject& type = MapTreeView::staticMetaObject;
    QStringList methods;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        const bool isPublic = method.access() == QMetaMethod::Public;
        methods << QString::fromLatin1(method.methodSignature()) + (isPublic ? "" : " protected");
    }
    QCOMPARE(
        methods,
        QStringList({"layerActivated(Map::Layer*)", "mapActivated(Map::MapView*)",
                     "setMapView(Map::MapView*)", "onSubWindowActivated(QMdiSubWindow*)",
                     "onItemActivated(QTreeWidgetItem*,int)", "onItemChanged(QTreeWidgetItem*,int)",
                     "onItemSelectionChanged()", "onAddLayer(QString)", "doProperties()",
                     "moveLayerUp()", "moveLayerDown()", "moveLayerToTop()", "moveLayerToBottom()",
                     "deleteLayer()", "zoomToLayer()", "zoomToLayer1To1()", "zoomToAll()",
                     "commitData(QWidget*) protected"}));
}

void MapTreeViewTest::whatIsAnnouncedCanBeReadByASpy()
{
    fill();
    const QSignalSpy layers(tree.get(), &MapTreeView::layerActivated);
    const QSignalSpy maps(tree.get(), &MapTreeView::mapActivated);
    clickOn(*tree, item("vector"));
    clickOn(*tree, rootOf(*tree));
    QCOMPARE(layers.value(0).value(0).value<Map::Layer*>(), view->getLayerAt(1));
    QCOMPARE(maps.last().value(0).value<MapView*>(), view.get());
}

// As to any other widget: no name in the tree hides the function.
void MapTreeViewTest::aHostMayAddActionsOfItsOwn()
{
    QAction own("Own");
    tree->addAction(&own);
    QCOMPARE(tree->actions(), QList<QAction*>({&own}));
}

void MapTreeViewTest::theMenusHoldTheirActions()
{
    QCOMPARE(texts(tree->getLayerMenu()),
             QStringList({"Add layer", "Delete Layer", "Move Layer to Top", "Move Layer Up",
                          "Move Layer Down", "Move Layer to Bottom", "Zoom to Layer",
                          "Zoom to Layer 1:1", "---", "Properties"}));
    QCOMPARE(texts(tree->getMapContextMenu()),
             QStringList({"Add layer", "Zoom to All", "---", "Properties"}));
    QCOMPARE(tree->getLayerMenu()->actions().first(), tree->getMapContextMenu()->actions().first());
    const QMenu* const adding = tree->getLayerMenu()->actions().first()->menu();
    QVERIFY(adding);
    QCOMPARE(adding->parent(), static_cast<QObject*>(tree.get()));
    QCOMPARE(tree->getLayerMenu()->parent(), static_cast<QObject*>(tree.get()));
    QCOMPARE(tree->getMapContextMenu()->parent(), static_cast<QObject*>(tree.get()));
    QCOMPARE(actionOf(*tree, "Properties")->parent(), static_cast<QObject*>(tree.get()));
}

void MapTreeViewTest::theActionsHaveTheirPictures_data()
{
    QTest::addColumn<QString>("picture");
    QTest::newRow("Add layer") << "document_add.png";
    QTest::newRow("Delete Layer") << "document_delete.png";
    QTest::newRow("Move Layer to Top") << "navigate_up2.png";
    QTest::newRow("Move Layer Up") << "navigate_up.png";
    QTest::newRow("Move Layer Down") << "navigate_down.png";
    QTest::newRow("Move Layer to Bottom") << "navigate_down2.png";
    QTest::newRow("Zoom to Layer") << "fit_to_size.png";
    QTest::newRow("Zoom to Layer 1:1") << "zoom_1_to_1.png";
    QTest::newRow("Zoom to All") << "fit_to_size.png";
    QTest::newRow("Properties") << "prefs.png";
}

void MapTreeViewTest::theActionsHaveTheirPictures()
{
    QFETCH(QString, picture);
    const QImage wanted = QIcon(":/resources/icons/24x24/" + picture).pixmap(24, 24).toImage();
    QVERIFY(!wanted.isNull());
    QCOMPARE(actionOf(*tree, QTest::currentDataTag())->icon().pixmap(24, 24).toImage(), wanted);
}

void MapTreeViewTest::theTopLayerStandsFirst()
{
    fill();
    QCOMPARE(listed(*tree), QStringList({"[top]", "vector", "raster"}));
    QCOMPARE(stacked(*view), QStringList({"top", "vector", "raster"}));
    QCOMPARE(tree->columnCount(), 1);
}

void MapTreeViewTest::theRootIsTheMap()
{
    view->setDescription("Harbour");
    fill();
    QCOMPARE(tree->topLevelItemCount(), 1);
    QTreeWidgetItem* const root = rootOf(*tree);
    QCOMPARE(root->text(0), QString("Harbour"));
    QVERIFY(root->isExpanded());
    QCOMPARE(int(root->flags()), 39);
    QCOMPARE(root->data(0, Qt::UserRole).toString(), QString());
    QCOMPARE(root->icon(0).pixmap(16, 16).toImage(),
             QIcon(":/resources/web.png").pixmap(16, 16).toImage());
    QCOMPARE(root->toolTip(0), QString("<p style='white-space:pre'><i><b>Harbour</b></i><br/>"
                                       "<b>Number of layers:</b> 3"));
}

void MapTreeViewTest::aLayersItemTellsOfTheLayer()
{
    fill();
    QTreeWidgetItem* const vector = item("vector");
    QCOMPARE(int(vector->flags()), 55);
    QCOMPARE(vector->data(0, 256), QVariant(view->getLayerAt(1)->getUid()));
    QCOMPARE(view->findLayer(vector->data(0, Qt::UserRole).toString()), view->getLayerAt(1));
    QCOMPARE(vector->toolTip(0), tree->getLayerToolTip(view->getLayerAt(1)));
    QVERIFY(vector->icon(0).isNull());
}

void MapTreeViewTest::itemsAreTickedForWhatIsShown_data()
{
    QTest::addColumn<bool>("visible");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<bool>("ticked");
    QTest::newRow("visible and valid") << true << true << true;
    QTest::newRow("hidden") << false << true << false;
    QTest::newRow("invalid") << true << false << false;
    QTest::newRow("neither") << false << false << false;
}

void MapTreeViewTest::itemsAreTickedForWhatIsShown()
{
    QFETCH(bool, visible);
    QFETCH(bool, valid);
    QFETCH(bool, ticked);
    auto* const layer = add<TestLayer>("layer");
    layer->visible = visible;
    layer->valid = valid;
    tree->setMapView(view.get());
    QCOMPARE(item("layer")->checkState(0), ticked ? Qt::Checked : Qt::Unchecked);
    QCOMPARE(layer->visible, visible);
}

void MapTreeViewTest::aToolTipHasSevenLines()
{
    TestLayer layer;
    layer.setDescription("Roads");
    layer.dataSource = "/data/roads.gpkg";
    layer.coordSysName = "WGS 84";
    layer.format = "GeoPackage";
    layer.protocol = "file";
    layer.setComments("of 2019");
    QCOMPARE(tree->getLayerToolTip(&layer),
             QString("<p style='white-space:pre'><b><font size='+1' face='Helvetica' "
                     "color='black'>Roads</font></b>"
                     "<br/><b>Data Source:</b> /data/roads.gpkg"
                     "<br/><b>Coordinate System:</b> WGS 84"
                     "<br/><b>Layer Type:</b> GeoPackage"
                     "<br/><b>Protocol:</b> file"
                     "<br/><i>of 2019</i></p>"));
}

void MapTreeViewTest::aToolTipHasEmptyLinesToo()
{
    TestLayer layer;
    QCOMPARE(tree->getLayerToolTip(&layer),
             QString("<p style='white-space:pre'><b><font size='+1' face='Helvetica' "
                     "color='black'></font></b>"
                     "<br/><b>Data Source:</b> <br/><b>Coordinate System:</b> "
                     "<br/><b>Layer Type:</b> <br/><b>Protocol:</b> <br/><i></i></p>"));
}

void MapTreeViewTest::noLayerHasNoToolTip()
{
    QCOMPARE(tree->getLayerToolTip(nullptr), QString());
}

void MapTreeViewTest::aMapIsAnnouncedByItsTopLayer()
{
    add<TestLayer>("below");
    add<TestLayer>("above");
    tree->setMapView(view.get());
    QCOMPARE(journal, QStringList({"layer above", "map -", "layer above"}));
    journal.clear();
    tree->setMapView(view.get());
    QCOMPARE(journal, QStringList({"layer above", "map -", "layer above"}));
}

void MapTreeViewTest::aMapWithoutLayersIsAnnouncedWithoutALayer()
{
    // announced once the tree is built
    int itemsThen = -1;
    connect(tree.get(), &MapTreeView::layerActivated,
            [&] { itemsThen = tree->topLevelItemCount(); });
    tree->setMapView(view.get());
    QCOMPARE(journal, QStringList("layer -"));
    QCOMPARE(itemsThen, 1);
    QCOMPARE(rootOf(*tree)->childCount(), 0);
    QVERIFY(tree->selectedItems().isEmpty());
}

void MapTreeViewTest::noMapIsAnnouncedByNothing()
{
    fill();
    tree->setMapView(nullptr);
    QCOMPARE(tree->topLevelItemCount(), 0);
    QCOMPARE(journal, QStringList());
}

void MapTreeViewTest::nothingHappensToALayerWhenTheTreeIsFilled()
{
    auto* const invalid = add<TestLayer>("invalid");
    invalid->valid = false;
    QList<QTreeWidgetItem*> changed;
    connect(tree.get(), &QTreeWidget::itemChanged,
            [&](QTreeWidgetItem* changedItem) { changed << changedItem; });
    tree->setMapView(view.get());
    changed.removeAll(rootOf(*tree));
    QVERIFY(changed.isEmpty());
    QVERIFY(invalid->visible);
}

void MapTreeViewTest::aClickOnALayerAnnouncesItTwice()
{
    fill();
    clickOn(*tree, item("raster"));
    QCOMPARE(journal, QStringList({"layer raster", "map -", "layer raster", "map -"}));
    QCOMPARE(listed(*tree), QStringList({"top", "vector", "[raster]"}));
}

void MapTreeViewTest::aClickOnTheRootAnnouncesTheMapTwice()
{
    fill();
    clickOn(*tree, rootOf(*tree));
    QCOMPARE(journal, QStringList({"map Map", "layer -", "map Map", "layer -"}));
}

void MapTreeViewTest::aSecondClickAnnouncesOnce()
{
    fill();
    select("raster");
    clickOn(*tree, item("raster"));
    QCOMPARE(journal, QStringList({"layer raster", "map -"}));
}

void MapTreeViewTest::arrowKeysAnnounceOnce()
{
    fill();
    select("top");
    QTest::keyClick(tree.get(), Qt::Key_Down);
    QTest::keyClick(tree.get(), Qt::Key_Up);
    QTest::keyClick(tree.get(), Qt::Key_Up);
    QCOMPARE(journal,
             QStringList({"layer vector", "map -", "layer top", "map -", "map Map", "layer -"}));
}

void MapTreeViewTest::aNullItemIsNotAnnounced()
{
    fill();
    tree->onItemActivated(nullptr, 0);
    tree->onItemChanged(nullptr, 0);
    tree->clearSelection();
    QCOMPARE(journal, QStringList());
}

void MapTreeViewTest::aLayerThatIsGoneIsTakenForTheMap()
{
    fill();
    view->getMapCanvas()->deleteLayerAt(0);
    clickOn(*tree, item("raster"));
    QCOMPARE(journal, QStringList({"map Map", "layer -", "map Map", "layer -"}));
    QVERIFY(!actionOf(*tree, "Delete Layer")->isEnabled());
}

void MapTreeViewTest::theLayerMenuFollowsTheSelection()
{
    fill();
    const QStringList all = texts(tree->getLayerMenu()).filter(QRegularExpression("[A-Z]"));
    QCOMPARE(enabled(tree->getLayerMenu()), all);
    clickOn(*tree, rootOf(*tree));
    QCOMPARE(enabled(tree->getLayerMenu()), QStringList({"Add layer", "Properties"}));
    QCOMPARE(enabled(tree->getMapContextMenu()),
             QStringList({"Add layer", "Zoom to All", "Properties"}));
    clickOn(*tree, item("raster"));
    QCOMPARE(enabled(tree->getLayerMenu()), all);
    QVERIFY(actionOf(*tree, "Zoom to All")->isEnabled());
}

void MapTreeViewTest::anUntickedLayerIsHidden()
{
    fill();
    auto* const layer = static_cast<TestVectorLayer*>(view->getLayerAt(1));
    const QRect rect = tree->visualItemRect(item("vector"));
    const QPoint box(rect.left() + 9, rect.center().y());
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier, box);
    QCOMPARE(item("vector")->checkState(0), Qt::Unchecked);
    QVERIFY(!layer->visible);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier, box);
    QCOMPARE(item("vector")->checkState(0), Qt::Checked);
    QVERIFY(layer->visible);

    select("vector");
    QTest::keyClick(tree.get(), Qt::Key_Space);
    QVERIFY(!layer->visible);
}

void MapTreeViewTest::anInvalidLayerComesBackUnticked()
{
    fill();
    auto* const layer = static_cast<TestLayer*>(view->getLayerAt(2));
    layer->valid = false;
    QCOMPARE(item("top")->checkState(0), Qt::Checked);
    tree->setMapView(view.get());
    QCOMPARE(item("top")->checkState(0), Qt::Unchecked);
    QVERIFY(layer->visible);
    item("top")->setCheckState(0, Qt::Checked);
    QVERIFY(layer->visible);
    tree->setMapView(view.get());
    QCOMPARE(item("top")->checkState(0), Qt::Unchecked);
}

void MapTreeViewTest::theColumnOfAChangeDoesNotMatter()
{
    fill();
    auto* const layer = static_cast<TestLayer*>(view->getLayerAt(2));
    layer->visible = false;
    tree->onItemChanged(item("top"), 7);
    QVERIFY(layer->visible);
}

void MapTreeViewTest::aNewTextOfALayerIsItsDescription()
{
    fill();
    edit("vector", "Rivers", Qt::Key_Return);
    QTRY_COMPARE(view->getLayerAt(1)->getDescription(), QString("Rivers"));
    QCOMPARE(listed(*tree), QStringList({"top", "[Rivers]", "raster"}));
    QVERIFY(static_cast<TestVectorLayer*>(view->getLayerAt(1))->visible);
    QCOMPARE(view->getDescription(), QString("Map"));
}

void MapTreeViewTest::aNewTextOfTheRootIsTheMapsDescription()
{
    fill();
    edit("Map", "Harbour", Qt::Key_Return);
    QTRY_COMPARE(view->getDescription(), QString("Harbour"));
    QCOMPARE(rootOf(*tree)->text(0), QString("Harbour"));
    QCOMPARE(stacked(*view), QStringList({"top", "vector", "raster"}));
}

void MapTreeViewTest::anEditThatIsGivenUpChangesNothing()
{
    fill();
    edit("vector", "Rivers", Qt::Key_Escape);
    QTRY_VERIFY(!tree->viewport()->findChild<QLineEdit*>());
    QCOMPARE(view->getLayerAt(1)->getDescription(), QString("vector"));
    QCOMPARE(item("vector")->text(0), QString("vector"));
}

void MapTreeViewTest::anotherEditorNamesNothing()
{
    fill();
    struct Committing : MapTreeView
    {
        using MapTreeView::commitData;
    };
    select("vector");
    QTextEdit editor("Rivers");
    (tree.get()->*&Committing::commitData)(&editor);
    QCOMPARE(view->getLayerAt(1)->getDescription(), QString("vector"));
    QLineEdit line("Rivers");
    (tree.get()->*&Committing::commitData)(&line);
    QCOMPARE(view->getLayerAt(1)->getDescription(), QString("Rivers"));
    tree->clearSelection();
    line.setText("Lakes");
    (tree.get()->*&Committing::commitData)(&line);
    QCOMPARE(view->getLayerAt(1)->getDescription(), QString("Rivers"));
}

void MapTreeViewTest::layersMove_data()
{
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<QString>("moved"); // from and to in the stack
    QTest::newRow("up") << "raster"
                        << "Move Layer Up" << QStringList({"top", "raster", "vector"})
                        << "raster now 1";
    QTest::newRow("down") << "top"
                          << "Move Layer Down" << QStringList({"vector", "top", "raster"})
                          << "top now 1";
    QTest::newRow("to the top") << "raster"
                                << "Move Layer to Top" << QStringList({"raster", "top", "vector"})
                                << "raster now 2";
    QTest::newRow("to the bottom")
        << "top"
        << "Move Layer to Bottom" << QStringList({"vector", "raster", "top"}) << "top now 0";
    QTest::newRow("to the top from the top")
        << "top"
        << "Move Layer to Top" << QStringList({"top", "vector", "raster"}) << "top now 2";
    QTest::newRow("to the bottom from the bottom")
        << "raster"
        << "Move Layer to Bottom" << QStringList({"top", "vector", "raster"}) << "raster now 0";
}

void MapTreeViewTest::layersMove()
{
    QFETCH(QString, selected);
    QFETCH(QString, action);
    QFETCH(QStringList, order);
    QFETCH(QString, moved);
    fill();
    select(selected);
    QStringList moves;
    connect(view.get(), &MapView::layerMoved, this, [&](Map::Layer* layer) {
        QString uid = layer->getUid().toString();
        moves << QString("%1 now %2").arg(layer->getDescription()).arg(view->getLayerIndex(uid));
    });
    actionOf(*tree, action)->trigger();
    QCOMPARE(stacked(*view), order);
    QCOMPARE(listed(*tree), QStringList(order).replaceInStrings(selected, "[" + selected + "]"));
    QCOMPARE(moves, QStringList(moved));
}

void MapTreeViewTest::aMoveAtTheEndDoesNothingAtAll()
{
    fill();
    QSignalSpy moves(view.get(), &MapView::layerMoved);
    select("top");
    tree->moveLayerUp();
    QCOMPARE(listed(*tree), QStringList({"[top]", "vector", "raster"}));
    select("raster");
    tree->moveLayerDown();
    QCOMPARE(listed(*tree), QStringList({"top", "vector", "[raster]"}));
    QCOMPARE(journal, QStringList());
    QCOMPARE(moves.count(), 0);
}

void MapTreeViewTest::aMoveOfTheRootDoesNothing()
{
    fill();
    select("Map");
    QSignalSpy moves(view.get(), &MapView::layerMoved);
    tree->moveLayerDown();
    tree->moveLayerToTop();
    tree->moveLayerToBottom();
    QCOMPARE(moves.count(), 0);
    QCOMPARE(journal, QStringList());
    tree->moveLayerUp(); // is not kept from the root, and the map refuses
    QCOMPARE(moves.count(), 1);
    QCOMPARE(listed(*tree), QStringList({"top", "vector", "raster"}));
    QCOMPARE(stacked(*view), QStringList({"top", "vector", "raster"}));
    QVERIFY(rootOf(*tree)->isSelected());
    QCOMPARE(tree->topLevelItemCount(), 1);
}

void MapTreeViewTest::aMovedLayerKeepsItsTick()
{
    fill();
    item("top")->setCheckState(0, Qt::Unchecked);
    select("top");
    tree->moveLayerToBottom();
    QCOMPARE(item("top")->checkState(0), Qt::Unchecked);
    QVERIFY(!static_cast<TestLayer*>(view->getLayerAt(0))->visible);
    QVERIFY(rootOf(*tree)->isExpanded());
}

void MapTreeViewTest::movesAreAnnounced()
{
    fill(); // selects the top layer without making it the current item
    tree->moveLayerDown();
    QCOMPARE(takeJournal(), QStringList({"layer top", "map -"}));
    // from the current item, Qt's selection goes to its neighbour while it is out of the tree
    select("top");
    tree->moveLayerDown();
    QCOMPARE(takeJournal(), QStringList({"layer raster", "map -", "layer top", "map -"}));
    QTest::keyClick(tree.get(), Qt::Key_Up); // the keyboard goes on from the layer that moved
    QCOMPARE(takeJournal(), QStringList({"layer raster", "map -"}));
}

void MapTreeViewTest::movesWithoutAMapOrSelectionDoNothing()
{
    const auto moveAll = [this] {
        tree->moveLayerUp();
        tree->moveLayerDown();
        tree->moveLayerToTop();
        tree->moveLayerToBottom();
    };
    moveAll();
    fill();
    tree->clearSelection();
    moveAll();
    QCOMPARE(stacked(*view), QStringList({"top", "vector", "raster"}));
    QCOMPARE(journal, QStringList());
}

void MapTreeViewTest::aHostMayMakeTheTreeAnewWhileALayerMoves()
{
    fill();
    connect(view.get(), &MapView::layerMoved, tree.get(), [this] { tree->setMapView(view.get()); });
    select("top");
    tree->moveLayerToBottom();
    QCOMPARE(stacked(*view), QStringList({"vector", "raster", "top"}));
    QCOMPARE(listed(*tree), QStringList({"vector", "raster", "[top]"}));
    QCOMPARE(journal.mid(journal.size() - 2), QStringList({"layer top", "map -"}));
    tree->moveLayerUp();
    QCOMPARE(listed(*tree), QStringList({"vector", "[top]", "raster"}));
}

void MapTreeViewTest::aDeletedLayerLeavesMapAndTree()
{
    fill();
    select("vector");
    QStringList deleted;
    connect(view.get(), &MapView::layerDeleted, this,
            [&](Map::Layer* layer) { deleted << layer->getDescription(); });
    actionOf(*tree, "Delete Layer")->trigger();
    QCOMPARE(deleted, QStringList("vector"));
    QCOMPARE(stacked(*view), QStringList({"top", "raster"}));
    QCOMPARE(listed(*tree).join(' ').remove('[').remove(']'), QString("top raster"));
}

// Qt selects the neighbour of a current item that goes.
void MapTreeViewTest::theNextLayerIsAnnouncedAfterADeletionByHand()
{
    fill();
    select("vector");
    tree->deleteLayer();
    QCOMPARE(listed(*tree), QStringList({"top", "[raster]"}));
    QCOMPARE(journal, QStringList({"layer raster", "map -", "layer raster"}));
}

void MapTreeViewTest::noLayerIsAnnouncedAfterADeletionWithoutACurrentItem()
{
    fill();
    tree->deleteLayer();
    QCOMPARE(listed(*tree), QStringList({"vector", "raster"}));
    QCOMPARE(journal, QStringList("layer -"));
}

void MapTreeViewTest::theLastLayerCanBeDeleted()
{
    add<TestLayer>("only");
    tree->setMapView(view.get());
    select("only");
    tree->deleteLayer();
    QCOMPARE(view->getNumberOfLayers(), 0);
    QCOMPARE(rootOf(*tree)->childCount(), 0);
    QCOMPARE(journal.last(), QString("layer -"));
}

void MapTreeViewTest::theRootCannotBeDeleted()
{
    fill();
    select("Map");
    tree->deleteLayer();
    QCOMPARE(journal, QStringList("layer -"));
    QCOMPARE(view->getNumberOfLayers(), 3);
    QCOMPARE(tree->topLevelItemCount(), 1);
}

void MapTreeViewTest::deletingWithoutSelectionAnnouncesNoLayer()
{
    tree->deleteLayer();
    QCOMPARE(takeJournal(), QStringList("layer -"));
    fill();
    tree->clearSelection();
    tree->deleteLayer();
    QCOMPARE(takeJournal(), QStringList("layer -"));
    QCOMPARE(view->getNumberOfLayers(), 3);
}

// The layer is still in the map then, so it is in the new tree, too.
void MapTreeViewTest::aHostMayMakeTheTreeAnewWhileALayerGoes()
{
    fill();
    connect(view.get(), &MapView::layerDeleted, tree.get(),
            [this] { tree->setMapView(view.get()); });
    select("vector");
    tree->deleteLayer();
    QCOMPARE(stacked(*view), QStringList({"top", "raster"}));
    QCOMPARE(listed(*tree), QStringList({"[top]", "raster"}));
    QCOMPARE(journal.last(), QString("layer top"));
    select("raster");
    tree->deleteLayer();
    select("top");
    tree->deleteLayer();
    QCOMPARE(listed(*tree), QStringList());
    QCOMPARE(journal.last(), QString("layer -"));
}

void MapTreeViewTest::aHostMayTakeTheMapAwayWhileALayerGoes()
{
    fill();
    connect(view.get(), &MapView::layerDeleted, tree.get(), [this] { tree->setMapView(nullptr); });
    select("vector");
    tree->deleteLayer();
    QCOMPARE(stacked(*view), QStringList({"top", "raster"}));
    QCOMPARE(tree->topLevelItemCount(), 0);
    QCOMPARE(journal, QStringList("layer -"));
}

void MapTreeViewTest::theMenuOfALayerIsShown()
{
    fill();
    select("vector");
    QPoint place;
    QStringList shown;
    answers->expectMenu([&](QMenu& menu) {
        place = menu.pos();
        shown = texts(&menu);
    });
    contextMenu(QPoint(30, 20));
    QCOMPARE(shown, texts(tree->getLayerMenu()));
    QCOMPARE(place, tree->mapToGlobal(QPoint(30, 20)));
}

void MapTreeViewTest::theMenuOfTheMapIsShown()
{
    fill();
    select("Map");
    QStringList shown;
    answers->expectMenu([&](QMenu& menu) { shown = texts(&menu); });
    contextMenu(QPoint(30, 20));
    QCOMPARE(shown, texts(tree->getMapContextMenu()));
}

void MapTreeViewTest::theMenuIsThatOfTheSelectionNotOfThePointer()
{
    fill();
    select("Map");
    QStringList shown;
    answers->expectMenu([&](QMenu& menu) { shown = texts(&menu); });
    contextMenu(middleOf(*tree, item("raster")));
    QCOMPARE(shown, texts(tree->getMapContextMenu()));
}

void MapTreeViewTest::nothingSelectedMeansNoMenu()
{
    contextMenu(QPoint(30, 20));
    fill();
    tree->clearSelection();
    contextMenu(QPoint(30, 20));
    view.reset();
    QCoreApplication::processEvents();
    QCOMPARE(answers->shown, QStringList());
}

void MapTreeViewTest::aMenuEntryWorks()
{
    fill();
    select("raster");
    answers->expectMenu([](QMenu& menu) {
        for (QAction* action : menu.actions()) {
            if (action->text() == "Move Layer to Top") {
                QTest::mouseClick(&menu, Qt::LeftButton, Qt::NoModifier,
                                  menu.actionGeometry(action).center());
            }
        }
    });
    contextMenu(middleOf(*tree, item("raster")));
    QCOMPARE(stacked(*view), QStringList({"raster", "top", "vector"}));
}

void MapTreeViewTest::propertiesOfALayer()
{
    fill();
    select("vector");
    answers->expect([this](QDialog& dialog) {
        QCOMPARE(dialog.parentWidget(), tree.get());
        QCOMPARE(dialog.findChild<QLineEdit*>("descriptionLineEdit")->text(), QString("vector"));
        QTest::keyClicks(dialog.findChild<QTextEdit*>("commentsTextEdit"), "seen");
        QTest::mouseClick(
            dialog.findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok),
            Qt::LeftButton);
    });
    actionOf(*tree, "Properties")->trigger();
    QCOMPARE(answers->shown, QStringList("dialog Layer Properties"));
    QCOMPARE(view->getLayerAt(1)->getComments(), QString("seen"));
    QCOMPARE(tree->findChildren<QDialog*>().size(), 0);
}

void MapTreeViewTest::propertiesOfTheMapStayWithTheTree()
{
    fill();
    select("Map");
    for (int i = 0; i < 2; ++i) {
        answers->expect([this](QDialog& dialog) {
            QCOMPARE(dialog.parentWidget(), tree.get());
            QTest::keyClicks(dialog.findChild<QPlainTextEdit*>("textEditComments"), "x");
            QTest::mouseClick(
                dialog.findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok),
                Qt::LeftButton);
        });
        tree->doProperties();
    }
    QCOMPARE(answers->shown, QStringList({"dialog MapProperties", "dialog MapProperties"}));
    QCOMPARE(view->getMapCanvas()->getComments().size(), 2);
    QCOMPARE(tree->findChildren<QDialog*>().size(), 2);
}

void MapTreeViewTest::propertiesNeedASelection()
{
    tree->doProperties();
    fill();
    tree->clearSelection();
    tree->doProperties();
    view->getMapCanvas()->deleteLayerAt(2); // behind the tree's back
    item("top")->setSelected(true);
    tree->doProperties();
    QCOMPARE(answers->shown, QStringList());
}

void MapTreeViewTest::theMapIsPaintedAnewAfterAChange()
{
    view->addLayer(new JournalLayer("lower", &painted)); // asks for no repaint by itself
    add<TestLayer>("upper");
    tree->setMapView(view.get());
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    const auto forget = [this] {
        QCoreApplication::processEvents();
        painted.clear();
    };
    forget();
    item("upper")->setCheckState(0, Qt::Unchecked);
    QTRY_VERIFY(painted.contains("lower paint"));
    forget();
    select("upper");
    forget();
    tree->deleteLayer();
    QTRY_VERIFY(painted.contains("lower paint"));
    select("Map");
    answers->expect([&](QDialog& dialog) {
        forget();
        dialog.accept();
    });
    tree->doProperties();
    QTRY_VERIFY(painted.contains("lower paint"));
}

void MapTreeViewTest::zoomsToALayer()
{
    fill();
    static_cast<TestVectorLayer*>(view->getLayerAt(1))->bounds = world(10.0, 30.0, 30.0, 10.0);
    select("vector");
    actionOf(*tree, "Zoom to Layer")->trigger();
    QCOMPARE(text(view->getBounds()), QString("10 30 30 10"));
}

void MapTreeViewTest::zoomsToAll()
{
    fill();
    static_cast<TestVectorLayer*>(view->getLayerAt(1))->bounds = world(-100.0, 200.0, 100.0, 0.0);
    select("Map");
    actionOf(*tree, "Zoom to All")->trigger();
    QCOMPARE(text(view->getBounds()), QString("-100 200 100 0"));
}

void MapTreeViewTest::zoomsToALayerOneToOne()
{
    fill();
    static_cast<TestRasterLayer*>(view->getLayerAt(0))->cellSizeX = 0.5;
    static_cast<TestRasterLayer*>(view->getLayerAt(0))->cellSizeY = -0.5;
    select("raster");
    actionOf(*tree, "Zoom to Layer 1:1")->trigger();
    QCOMPARE(text(view->getBounds()), QString("24.75 75.25 75.25 24.75"));
    // a layer that is no raster has no cells
    select("vector");
    const QRectF before = view->getBounds();
    tree->zoomToLayer1To1();
    QCOMPARE(view->getBounds(), before);
}

void MapTreeViewTest::zoomsToTheLowestRasterOneToOneForTheRoot()
{
    add<TestVectorLayer>("lowest");
    auto* const lower = add<TestRasterLayer>("lower");
    lower->cellSizeX = 0.5;
    lower->cellSizeY = -0.5;
    add<TestRasterLayer>("upper");
    tree->setMapView(view.get());
    select("Map");
    tree->zoomToLayer1To1();
    QCOMPARE(text(view->getBounds()), QString("24.75 75.25 75.25 24.75"));
}

void MapTreeViewTest::theRootOfVectorsIsNotZoomedTo()
{
    add<TestVectorLayer>("vector");
    tree->setMapView(view.get());
    select("Map");
    QSignalSpy changes(view.get(), &MapView::mapExtentsChanged);
    tree->zoomToLayer1To1();
    QCOMPARE(changes.count(), 0);
}

void MapTreeViewTest::theRootIsNotZoomedToAsALayer()
{
    tree->zoomToLayer();
    tree->zoomToLayer1To1();
    fill();
    select("Map");
    QSignalSpy changes(view.get(), &MapView::mapExtentsChanged);
    tree->zoomToLayer();
    tree->clearSelection();
    tree->zoomToLayer();
    tree->zoomToLayer1To1();
    QCOMPARE(changes.count(), 0);
}

void MapTreeViewTest::theTreeFollowsTheActiveWindow()
{
    QMdiArea area;
    connect(&area, &QMdiArea::subWindowActivated, tree.get(), &MapTreeView::onSubWindowActivated);
    auto* const first = new MapView;
    first->setDescription("first");
    auto* const second = new MapView;
    second->setDescription("second");
    QMdiSubWindow* const firstWindow = area.addSubWindow(first);
    area.addSubWindow(second);
    tree->setEnabled(false);
    area.show();
    QVERIFY(QTest::qWaitForWindowActive(&area));
    QTRY_VERIFY(rootOf(*tree));
    QVERIFY(tree->isEnabled());
    area.setActiveSubWindow(firstWindow);
    QCOMPARE(rootOf(*tree)->text(0), QString("first"));
    area.activateNextSubWindow();
    QCOMPARE(rootOf(*tree)->text(0), QString("second"));
}

void MapTreeViewTest::aWindowWithoutAMapEmptiesTheTree()
{
    fill();
    QMdiSubWindow window;
    window.setWidget(new QLabel("no map"));
    tree->onSubWindowActivated(&window);
    QCOMPARE(tree->topLevelItemCount(), 0);
    QCOMPARE(journal, QStringList());
}

void MapTreeViewTest::noActiveWindowEmptiesTheTreeWhileTheProgramIsInFront()
{
    fill();
    QVERIFY(QApplication::activeWindow());
    tree->onSubWindowActivated(nullptr);
    QCOMPARE(tree->topLevelItemCount(), 0);
    QVERIFY(tree->isEnabled());
}

void MapTreeViewTest::theTreeIsKeptWhileAnotherProgramIsInFront()
{
    fill();
    QApplication::setActiveWindow(nullptr);
    QVERIFY(!QApplication::activeWindow());
    tree->onSubWindowActivated(nullptr);
    QCOMPARE(listed(*tree), QStringList({"[top]", "vector", "raster"}));
    QCOMPARE(journal, QStringList());
}

void MapTreeViewTest::aMapThatGoesDoesNoHarm()
{
    fill();
    view.reset();
    clickOn(*tree, item("raster"));
    QCOMPARE(takeJournal(), QStringList({"map -", "layer -", "map -", "layer -"}));
    item("raster")->setCheckState(0, Qt::Unchecked);
    tree->moveLayerUp();
    tree->deleteLayer();
    tree->doProperties();
    tree->zoomToLayer();
    tree->zoomToLayer1To1();
    QCOMPARE(tree->topLevelItemCount(), 1);
    tree->setMapView(nullptr);
    QCOMPARE(tree->topLevelItemCount(), 0);
}

void MapTreeViewTest::aLayerThatGoesAtItsAnnouncementIsNotAnnouncedAgain()
{
    add<TestLayer>("bottom");
    Map::Layer* const top = add<TestLayer>("top");
    const auto host = connect(tree.get(), &MapTreeView::layerActivated, view.get(),
                              [this, top](Map::Layer* layer) {
                                  if (layer == top) {
                                      view->deleteLayer(layer);
                                  }
                              });
    tree->setMapView(view.get());
    disconnect(host);
    QCOMPARE(takeJournal(), QStringList({"layer top", "map -", "layer -"}));
    QCOMPARE(stacked(*view), QStringList({"bottom"}));
}

void MapTreeViewTest::aDropWithoutDataMakesTheTreeAnew()
{
    fill();
    add<TestLayer>("new");
    const QPoint position(10, 10);
    QDragEnterEvent enter(position, Qt::CopyAction, nullptr, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(tree->viewport(), &enter);
    QDropEvent drop(position, Qt::CopyAction, nullptr, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(tree->viewport(), &drop);
    QVERIFY(drop.isAccepted());
    QCOMPARE(listed(*tree), QStringList({"[new]", "top", "vector", "raster"}));
}

void MapTreeViewTest::picturesOfTheTree()
{
    view->setDescription("Harbour of the old town");
    fill();
    static_cast<TestLayer*>(view->getLayerAt(2))->visible = false;
    tree->setMapView(view.get());
    QCOMPARE(takePictures(*tree, "MapTreeView").join("; "), QString());
    QMenu* const menu = const_cast<QMenu*>(tree->getLayerMenu());
    QCOMPARE(takePictures(*menu, "MapTreeView-menu").join("; "), QString());
    menu->close();
    answers->shown.clear();
}

MAP_TEST_MAIN(MapTreeViewTest)

#include "MapTreeViewTest.moc"
