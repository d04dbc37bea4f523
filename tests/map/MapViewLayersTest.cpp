#include "MapViewTools.h"

#include <corvane/map/MapCanvas.h>

#include <QSignalSpy>
#include <QUuid>

using Corvane::Map::Layer;
using Corvane::Map::MapView;
namespace Map = Corvane::Map;

namespace {

/// Counts the frames that are asked for.
class CountingView : public MapView
{
public:
    int paints = 0;

    bool repaints()
    {
        QCoreApplication::processEvents();
        const bool painted = paints > 0;
        paints = 0;
        return painted;
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        MapView::paintEvent(event);
    }
};

/// A shown view that writes into a journal together with its layers, without their frames.
struct JournalView
{
    explicit JournalView(QStringList layers = {}, Motion motion = Motion::Direct)
        : view(makeView<CountingView>(motion))
    {
        for (const QString& name : qAsConst(layers)) {
            view->addLayer(new JournalLayer(name, &journal));
        }
        view->setBounds(0.0, 100.0, 100.0, 0.0);
        view->repaints();
        record(*view, &journal);
        journal.clear();
    }

    QString order()
    {
        QString names;
        for (Layer* layer : qAsConst(view->getLayers())) {
            names += static_cast<JournalLayer*>(layer)->name;
        }
        return names;
    }

    QStringList journal;
    std::unique_ptr<CountingView> view;
};

} // namespace

/// The layer operations of MapView, which add signals and repaints to those of its canvas.
class MapViewLayersTest : public QObject
{
    Q_OBJECT
private slots:
    void theFirstLayerIsShownWholeWithoutAnimation_data();
    void theFirstLayerIsShownWholeWithoutAnimation();
    void aFirstLayerThatIsNotShownLeavesTheView();
    void aSecondLayerIsToldTheViewAndLeavesItAlone();
    void aHiddenSecondLayerIsToldTheViewAsWell();
    void aLayerGoesWhereTheIndexSays();
    void aNullLayerIsNotAdded();
    void aClassOfAPluginIsAddedInTheSameWay();
    void aClassThatNoPluginServesIsNotAdded();

    void aDeletedLayerIsAnnouncedWhileItIsThere_data();
    void aDeletedLayerIsAnnouncedWhileItIsThere();
    void deletingAtAnIndexOutsideTheStackAnnouncesNoLayer();
    void deletingAnUnknownUidDoesNothing();
    void deletingANullLayerDoesNothing();
    void deletingAStrangerAnnouncesItAndFails();
    void deletingAllLayersAnnouncesThemFirst();
    void deletingTheSideLayersAnnouncesThoseAndTakesTheStack_data();
    void deletingTheSideLayersAnnouncesThoseAndTakesTheStack();

    void movingALayerTellsWhatLiesAtTheTarget_data();
    void movingALayerTellsWhatLiesAtTheTarget();

    void aSpySeesTheLayerOfASignal();
    void aCallWithALayerCanBeQueuedByName();

    void handsQuestionsToTheCanvas();
};

void MapViewLayersTest::theFirstLayerIsShownWholeWithoutAnimation_data()
{
    QTest::addColumn<bool>("animated");
    QTest::newRow("in a view with animation") << true;
    QTest::newRow("in a view without") << false;
}

void MapViewLayersTest::theFirstLayerIsShownWholeWithoutAnimation()
{
    QFETCH(bool, animated);
    JournalView j({}, animated ? Motion::Animated : Motion::Direct);
    auto* layer = new JournalLayer("a", &j.journal);
    layer->bounds = world(0.0, 20.0, 40.0, 0.0);

    QCOMPARE(j.view->addLayer(layer), 0);

    QCOMPARE(j.journal, QStringList({"a setView 101x101 0 30 40 -10", "extents 0 30 40 -10",
                                     "extents 0 20 40 0", "extents 0 20 40 0", "layerAdded a"}));
    QCOMPARE(text(j.view->getBounds()), QStringLiteral("0 30 40 -10"));
    QVERIFY(j.view->repaints());
}

void MapViewLayersTest::aFirstLayerThatIsNotShownLeavesTheView()
{
    JournalView j;
    auto* layer = new JournalLayer("a", &j.journal);
    layer->valid = false;

    QCOMPARE(j.view->addLayer(layer), 0);

    QCOMPARE(j.journal, QStringList({"extents 0 0 0 0", "extents 0 0 0 0", "layerAdded a"}));
    QCOMPARE(text(j.view->getBounds()), QStringLiteral("0 100 100 0"));
}

void MapViewLayersTest::aSecondLayerIsToldTheViewAndLeavesItAlone()
{
    JournalView j({"a"}, Motion::Animated);

    QCOMPARE(j.view->addLayer(new JournalLayer("b", &j.journal)), 1);

    QCOMPARE(j.journal, QStringList({"b setView 101x101 0 100 100 0", "layerAdded b"}));
    QVERIFY(j.view->repaints());
}

void MapViewLayersTest::aHiddenSecondLayerIsToldTheViewAsWell()
{
    JournalView j({"a"});
    auto* layer = new JournalLayer("b", &j.journal);
    layer->visible = false;
    j.view->addLayer(layer);
    QCOMPARE(j.journal, QStringList({"b setView 101x101 0 100 100 0", "layerAdded b"}));
}

void MapViewLayersTest::aLayerGoesWhereTheIndexSays()
{
    JournalView j({"a", "b"});
    QCOMPARE(j.view->addLayer(new JournalLayer("c", &j.journal), 1), 1);
    QCOMPARE(j.view->addLayer(new JournalLayer("d", &j.journal), 0), 0);
    QCOMPARE(j.view->addLayer(new JournalLayer("e", &j.journal), -1), 4);
    QCOMPARE(j.order(), QStringLiteral("dacbe"));
}

void MapViewLayersTest::aNullLayerIsNotAdded()
{
    JournalView j;
    QCOMPARE(j.view->addLayer(static_cast<Layer*>(nullptr)), -1);
    QCOMPARE(j.journal, QStringList());
    QVERIFY(!j.view->repaints());
}

void MapViewLayersTest::aClassOfAPluginIsAddedInTheSameWay()
{
    JournalView j;

    QCOMPARE(j.view->addLayer(QStringLiteral("TestPluginLayer"), QStringLiteral("a.test"),
                              QStringLiteral("Harbour")),
             0);
    QCOMPARE(j.journal, QStringList({"extents 0 100 100 0", "extents 0 100 100 0",
                                     "extents 0 100 100 0", "layerAdded Harbour"}));
    QVERIFY(j.view->repaints());
    j.journal.clear();

    QCOMPARE(j.view->addLayer(QStringLiteral("TestPluginLayer"), QStringLiteral("b.test"),
                              QStringLiteral("Coast"), QString(), 0),
             0);
    QCOMPARE(j.journal, QStringList({"layerAdded Coast"}));
    QCOMPARE(j.view->getLayerAt(0)->getDataSource(), QStringLiteral("b.test"));
    QCOMPARE(j.view->getLayerAt(1)->getDescription(), QStringLiteral("Harbour"));
    QVERIFY(j.view->repaints());
}

void MapViewLayersTest::aClassThatNoPluginServesIsNotAdded()
{
    JournalView j;
    QCOMPARE(j.view->addLayer(QStringLiteral("NoSuchLayer"), QStringLiteral("a.test")), -1);
    QCOMPARE(j.journal, QStringList());
    QVERIFY(!j.view->repaints());
}

void MapViewLayersTest::aDeletedLayerIsAnnouncedWhileItIsThere_data()
{
    QTest::addColumn<QString>("by");
    QTest::newRow("by its index") << "index";
    QTest::newRow("by its uid") << "uid";
    QTest::newRow("by its pointer") << "pointer";
}

void MapViewLayersTest::aDeletedLayerIsAnnouncedWhileItIsThere()
{
    QFETCH(QString, by);
    JournalView j({"a", "b"});
    Layer* layer = j.view->getLayerAt(1);
    QString uid = layer->getUid().toString();

    const bool deleted = by == "index" ? j.view->deleteLayerAt(1)
                         : by == "uid" ? j.view->deleteLayer(uid)
                                       : j.view->deleteLayer(layer);

    QVERIFY(deleted);
    QCOMPARE(j.journal, QStringList({"layerDeleted b", "b gone"}));
    QCOMPARE(j.view->getNumberOfLayers(), 1);
    QVERIFY(!j.view->repaints()); // whoever deletes asks for it
}

void MapViewLayersTest::deletingAtAnIndexOutsideTheStackAnnouncesNoLayer()
{
    JournalView j({"a"});
    QVERIFY(!j.view->deleteLayerAt(1));
    QVERIFY(!j.view->deleteLayerAt(-1));
    QCOMPARE(j.journal, QStringList({"layerDeleted null", "layerDeleted null"}));
    QCOMPARE(j.view->getNumberOfLayers(), 1);
}

void MapViewLayersTest::deletingAnUnknownUidDoesNothing()
{
    JournalView j({"a"});
    QString unknown = QUuid::createUuid().toString();
    QVERIFY(!j.view->deleteLayer(unknown));
    QCOMPARE(j.journal, QStringList());
}

void MapViewLayersTest::deletingANullLayerDoesNothing()
{
    JournalView j({"a"});
    QVERIFY(!j.view->deleteLayer(static_cast<Layer*>(nullptr)));
    QCOMPARE(j.journal, QStringList());
}

void MapViewLayersTest::deletingAStrangerAnnouncesItAndFails()
{
    JournalView j({"a"});
    JournalLayer stranger("stranger", &j.journal);
    QVERIFY(!j.view->deleteLayer(&stranger));
    QCOMPARE(j.journal, QStringList({"layerDeleted stranger"}));
}

void MapViewLayersTest::deletingAllLayersAnnouncesThemFirst()
{
    JournalView j({"a", "b"});
    j.view->getLayers().append(nullptr);

    QVERIFY(j.view->deleteAllLayers());

    QCOMPARE(j.journal, QStringList({"layerDeleted a", "layerDeleted b", "b gone", "a gone"}));
    QVERIFY(j.view->repaints());

    QVERIFY(j.view->deleteAllLayers());
    QVERIFY(j.view->repaints());
}

void MapViewLayersTest::deletingTheSideLayersAnnouncesThoseAndTakesTheStack_data()
{
    QTest::addColumn<bool>("overlay");
    QTest::newRow("the overlay layers") << true;
    QTest::newRow("the background layers") << false;
}

void MapViewLayersTest::deletingTheSideLayersAnnouncesThoseAndTakesTheStack()
{
    QFETCH(bool, overlay);
    JournalView j({"a", "b", "c"});
    JournalLayer first("first", &j.journal);
    JournalLayer second("second", &j.journal);
    QVector<Layer*>& side = overlay ? j.view->getMapCanvas()->getOverlayLayers()
                                    : j.view->getMapCanvas()->getBackgroundLayers();
    const auto deleteAll = [&] {
        return overlay ? j.view->deleteAllOverlayLayers() : j.view->deleteAllBackgroundLayers();
    };
    QVERIFY(deleteAll());
    QCOMPARE(j.journal, QStringList());
    QVERIFY(j.view->repaints());
    j.journal.clear();

    side = {&first, &second};
    QVERIFY(deleteAll());

    QCOMPARE(j.journal,
             QStringList({"layerDeleted first", "layerDeleted second", "b gone", "c gone"}));
    QCOMPARE(j.order(), QStringLiteral("a"));
    side.clear();
}

void MapViewLayersTest::movingALayerTellsWhatLiesAtTheTarget_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("told");
    QTest::newRow("up") << 0 << 1 << "ba"
                        << "a";
    QTest::newRow("down") << 1 << 0 << "ba"
                          << "b";
    QTest::newRow("from outside nothing moves and the bottom layer is told") << 5 << 0 << "ab"
                                                                             << "a";
    QTest::newRow("to outside nothing moves and no layer is told") << 0 << 2 << "ab"
                                                                   << "null";
}

void MapViewLayersTest::movingALayerTellsWhatLiesAtTheTarget()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(QString, order);
    QFETCH(QString, told);
    JournalView j({"a", "b"});

    j.view->moveLayer(from, to);

    QCOMPARE(j.journal, QStringList({"layerMoved " + told}));
    QCOMPARE(j.order(), order);
    QVERIFY(j.view->repaints());
}

void MapViewLayersTest::aSpySeesTheLayerOfASignal()
{
    JournalView j;
    QSignalSpy added(j.view.get(), &MapView::layerAdded);
    auto* layer = new JournalLayer("a", &j.journal);

    j.view->addLayer(layer);

    QCOMPARE(added.count(), 1);
    QCOMPARE(added.at(0).at(0).value<Layer*>(), static_cast<Layer*>(layer));
}

void MapViewLayersTest::aCallWithALayerCanBeQueuedByName()
{
    JournalView j({"a"});
    Layer* layer = j.view->getLayerAt(0);

    QVERIFY(QMetaObject::invokeMethod(j.view.get(), "setLayerSelection", Qt::QueuedConnection,
                                      Q_ARG(Map::Layer*, layer)));
    QCoreApplication::processEvents();

    QCOMPARE(j.view->getLayerSelection(), layer);
}

void MapViewLayersTest::handsQuestionsToTheCanvas()
{
    JournalView j({"a", "b"});
    MapView& view = *j.view;
    QString uid = view.getLayerAt(1)->getUid().toString();
    QString unknown;

    QCOMPARE(&view.getLayers(), &view.getMapCanvas()->getLayers());
    QCOMPARE(view.getNumberOfLayers(), 2);
    QCOMPARE(view.getLayerAt(0), view.getLayers().first());
    QCOMPARE(view.getLayerAt(2), static_cast<Layer*>(nullptr));
    QCOMPARE(view.findLayer(uid), view.getLayers().last());
    QCOMPARE(view.findLayer(unknown), static_cast<Layer*>(nullptr));
    QCOMPARE(view.getLayerIndex(uid), 1);
    QCOMPARE(view.getLayerIndex(unknown), -1);
    QCOMPARE(view.getDescription(), QStringLiteral("Map"));
    QCOMPARE(view.getRotation(), 0.0);
}

MAP_TEST_MAIN(MapViewLayersTest)
#include "MapViewLayersTest.moc"
