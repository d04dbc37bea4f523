#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/opening/MapStage.h>

#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>
#include <tests/support/FileContent.h>

#include <QAction>
#include <QFileDialog>
#include <QMessageBox>
#include <QMetaProperty>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

/// What makes a map worth saving, and the questions before it is lost.
class SaveQuestionsTest : public MapStage
{
    Q_OBJECT
private slots:
    void whatIsAChange_data();
    void whatIsAChange();
    void anUnchangedMapClosesWithoutAWord();
    void aLayerThatOpensLaterIsNoChange();
    void cancelKeepsTheMap();
    void discardClosesTheMap();
    void savingClosesTheMapAfterwards();
    void aSaveThatFailsKeepsTheMap();
    void quittingAsksOfOneMapAfterTheOther();
    void quittingStopsAtTheFirstCancel();
    void aMapOnTheWholeScreenAsksToo();
    void thereIsOneQuestionAtATime();
};

void SaveQuestionsTest::whatIsAChange_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<bool>("changes");
    QTest::newRow("looking elsewhere is none") << "zoom" << false;
    QTest::newRow("a window of another size is none") << "resize" << false;
    QTest::newRow("a layer more") << "add" << true;
    QTest::newRow("a layer less") << "delete" << true;
    QTest::newRow("another order") << "move" << true;
    QTest::newRow("a hidden layer") << "hide" << true;
    QTest::newRow("a layer's setting") << "transparency" << true;
    QTest::newRow("another title") << "title" << true;
    QTest::newRow("other boxes") << "boxes" << true;
    QTest::newRow("back to what it was is none") << "back" << false;
}

void SaveQuestionsTest::whatIsAChange()
{
    QFETCH(QString, what);
    QFETCH(bool, changes);
    const QString raster = rasterElement(images.filePath("metres.tif"));
    MapWindow* map = open(
        {write("a.cmap", "<mapcanvas><layers>" + raster + raster + "</layers></mapcanvas>")}, 2);
    Map::MapView* view = map->getView();
    QVERIFY(!map->getDocument()->isChanged());
    Map::Layer* layer = view->getLayerAt(0);

    if (what == "zoom") {
        action("actionZoomIn")->trigger();
    } else if (what == "resize") {
        map->showNormal();
        map->resize(300, 300);
    } else if (what == "add") {
        view->addLayer("Corvane::Map::GdalRasterLayer", images.filePath("degrees.tif"));
    } else if (what == "delete") {
        view->deleteLayerAt(0);
    } else if (what == "move") {
        view->moveLayer(0, 1);
    } else if (what == "hide") {
        layer->setVisible(false);
    } else if (what == "transparency") {
        layer->setProperty("Transparency", 0.5);
    } else if (what == "title") {
        view->setDescription("other");
    } else if (what == "boxes") {
        view->getMapCanvas()->setDrawMapBBox(true);
    } else if (what == "back") {
        view->moveLayer(0, 1);
        view->moveLayer(0, 1);
        layer->setVisible(false);
        layer->setVisible(true);
    }
    QCOMPARE(map->getDocument()->isChanged(), changes);

    QMetaProperty property;
    QVariant value;
    emit view->layerPropertyChanged(layer, &property, value); // as the panels do
    QTRY_COMPARE(map->windowTitle(), QString(changes ? "a.cmap *" : "a.cmap"));
}

void SaveQuestionsTest::anUnchangedMapClosesWithoutAWord()
{
    QPointer<MapWindow> map = open({images.filePath("metres.tif")});
    action("actionZoomIn")->trigger();
    map->close();
    QTRY_VERIFY(!map);
    map = changedMap();
    map->getView()->setDescription("Map");
    map->close();
    QTRY_VERIFY(!map);
    QVERIFY(!dialog<QMessageBox>("saveQuestion"));
}

void SaveQuestionsTest::aLayerThatOpensLaterIsNoChange()
{
    QString layers;
    for (int i = 0; i < 30; ++i) { // not all of them open at once
        layers += rasterElement(images.filePath("metres.tif"));
    }
    MapWindow* map =
        open({write("a.cmap", "<mapcanvas><layers>" + layers + "</layers></mapcanvas>")}, 30);
    QVERIFY(!map->getDocument()->isChanged());

    StallingServer server(QByteArray(1000, ' '), 1000); // all of it, and no image
    window->openFiles({write(
        "b.cmap", "<mapcanvas><layers>" + rasterElement(server.addressOf("none.tif")) +
                      rasterElement(images.filePath("metres.tif")) + "</layers></mapcanvas>")});
    QTRY_VERIFY(dialog<QMessageBox>("openFailures"));
    map = mapWindows().last();
    QCOMPARE(map->getView()->getNumberOfLayers(), 2);
    QTRY_VERIFY(map->getView()->getLayerAt(1)->isValid());
    QVERIFY(!map->getDocument()->isChanged());
}

void SaveQuestionsTest::cancelKeepsTheMap()
{
    QPointer<MapWindow> map = changedMap();
    map->close();
    QTRY_VERIFY(dialog<QMessageBox>("saveQuestion"));
    QCOMPARE(dialog<QMessageBox>("saveQuestion")->text(),
             QString("Save the changes to coast.cmap?"));
    answer(QMessageBox::Cancel);
    QVERIFY(map);
    QVERIFY(map->isVisible());
    QVERIFY(map->getDocument()->isChanged());
}

void SaveQuestionsTest::discardClosesTheMap()
{
    QPointer<MapWindow> map = changedMap();
    const QByteArray old = contentOf(path("coast.cmap"));
    map->close();
    answer(QMessageBox::Discard);
    QTRY_VERIFY(!map);
    QCOMPARE(contentOf(path("coast.cmap")), old);
}

void SaveQuestionsTest::savingClosesTheMapAfterwards()
{
    QPointer<MapWindow> map = changedMap();
    map->close();
    answer(QMessageBox::Save);
    QTRY_VERIFY(!map);
    QVERIFY(contentOf(path("coast.cmap")).contains("another map"));

    // a map without a file asks for its name first
    map = open({images.filePath("metres.tif")});
    map->getView()->getLayerAt(0)->setVisible(false);
    map->close();
    answer(QMessageBox::Save);
    choose(path("new.cmap"));
    QTRY_VERIFY(!map);
    QVERIFY(contentOf(path("new.cmap")).contains("<param name=\"Visible\" value=\"false\"/>"));

    // and stays when none is given
    map = open({images.filePath("metres.tif")});
    map->getView()->getLayerAt(0)->setVisible(false);
    map->close();
    answer(QMessageBox::Save);
    dialog<QFileDialog>("saveMapDialog")->reject();
    QTRY_VERIFY(!dialog<QFileDialog>("saveMapDialog"));
    QVERIFY(map);
    QVERIFY(map->isVisible());
}

void SaveQuestionsTest::aSaveThatFailsKeepsTheMap()
{
    QPointer<MapWindow> map = changedMap();
    folder->remove(); // as a disk that is taken out
    map->close();
    answer(QMessageBox::Save);
    QTRY_VERIFY(dialog<QMessageBox>("saveMapFailure"));
    QVERIFY(map);
    QVERIFY(map->isVisible());
    QVERIFY(map->getDocument()->isChanged());
}

void SaveQuestionsTest::quittingAsksOfOneMapAfterTheOther()
{
    QPointer<MapWindow> first = changedMap("one.cmap");
    QPointer<MapWindow> second = changedMap("two.cmap");
    open({images.filePath("metres.tif")});
    action("actionQuit")->trigger();
    QVERIFY(window->isVisible());
    QCOMPARE(window->getActiveMapWindow(), first.data());
    answer(QMessageBox::Save);
    QTRY_VERIFY(dialog<QMessageBox>("saveQuestion"));
    QCOMPARE(dialog<QMessageBox>("saveQuestion")->text(), QString("Save the changes to two.cmap?"));
    QCOMPARE(window->getActiveMapWindow(), second.data());
    answer(QMessageBox::Discard);
    QTRY_VERIFY(!window->isVisible());
    QTRY_VERIFY(mapWindows().isEmpty());
    QVERIFY(contentOf(path("one.cmap")).contains("another map"));
    QVERIFY(!contentOf(path("two.cmap")).contains("another map"));
}

void SaveQuestionsTest::quittingStopsAtTheFirstCancel()
{
    QPointer<MapWindow> first = changedMap("one.cmap");
    QPointer<MapWindow> second = changedMap("two.cmap");
    window->close();
    answer(QMessageBox::Discard);
    answer(QMessageBox::Cancel);
    QVERIFY(window->isVisible());
    QVERIFY(first && second);
    // what was given up before is asked again
    window->close();
    QTRY_VERIFY(dialog<QMessageBox>("saveQuestion"));
    QCOMPARE(dialog<QMessageBox>("saveQuestion")->text(), QString("Save the changes to one.cmap?"));
}

void SaveQuestionsTest::aMapOnTheWholeScreenAsksToo()
{
    QPointer<MapWindow> map = changedMap();
    QPointer<Map::MapView> view = map->getView();
    action("actionFullScreenMap")->trigger();
    QVERIFY(view->isFullScreen());
    view->close();
    auto* question = view->findChild<QMessageBox*>("saveQuestion"); // over the screen
    QVERIFY(question);
    QVERIFY(map && view && view->isVisible());
    QTest::mouseClick(question->button(QMessageBox::Discard), Qt::LeftButton);
    QTRY_VERIFY(!map);
    QVERIFY(!view);
}

void SaveQuestionsTest::thereIsOneQuestionAtATime()
{
    MapWindow* map = changedMap();
    map->close();
    map->close();
    window->close();
    QCOMPARE(window->findChildren<QMessageBox*>("saveQuestion").size(), 1);
    answer(QMessageBox::Cancel);
    QVERIFY(window->isVisible());
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Save Questions Test");
    SaveQuestionsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "SaveQuestionsTest.moc"
