#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/opening/MapStage.h>

#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>
#include <tests/support/FileContent.h>

#include <QAction>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QWindow>
#include <QtTest>

#include <csignal>

#include <sys/resource.h>

using namespace Corvane;
using namespace Corvane::Viewer;

/// Saving maps: where to, what is written, and what is lost by it.
class MapSavingTest : public MapStage
{
    Q_OBJECT
private slots:
    void aNewMapIsSavedUnderTheNameThatIsChosen();
    void aMapThatHasAFileIsSavedIntoIt();
    void savingAsTakesTheNewName();
    void theFileOfAnotherWindowIsNotTaken();
    void twoSavesGiveTheSameBytes();
    void aDiskThatIsFullLosesNothing();
    void theActionsNeedAMap();

    void layersInTheMiddleOfOpeningAreSavedWhole();
    void aMapThatIsBeingReadIsSavedWhole();
    void layersThatFailStayInTheMap();
    void savingAsksBeforeItDropsLayers();
};

void MapSavingTest::aNewMapIsSavedUnderTheNameThatIsChosen()
{
    MapWindow* map = open({images.filePath("metres.tif")});
    QCOMPARE(map->getDocument()->getFileName(), QString());

    action("actionSave")->trigger();
    QCOMPARE(dialog<QFileDialog>("saveMapDialog")->selectedFiles(),
             QStringList({path("metres.cmap")}));
    choose(path("coast")); // the suffix is added

    QTRY_COMPARE(map->windowTitle(), QString("coast.cmap"));
    QCOMPARE(map->getDocument()->getFileName(), path("coast.cmap"));
    QCOMPARE(map->getView()->getDocumentName(), path("coast.cmap"));
    QVERIFY(contentOf(path("coast.cmap"))
                .startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<!DOCTYPE CorvaneMapCanvas>\n"
                            "<mapcanvas name=\"mapcanvas\" "
                            "version=\"1.0\">\n <bounds "));
    QVERIFY(!map->getDocument()->isChanged());
}

void MapSavingTest::aMapThatHasAFileIsSavedIntoIt()
{
    MapWindow* map = changedMap();
    QTest::keyClick(window->windowHandle(), Qt::Key_S, Qt::ControlModifier);
    QVERIFY(!dialog<QFileDialog>("saveMapDialog"));
    QTRY_VERIFY(!map->getDocument()->isChanged());
    QVERIFY(contentOf(path("coast.cmap")).contains("<description>another map</description>"));
}

void MapSavingTest::savingAsTakesTheNewName()
{
    MapWindow* map = changedMap();
    const QByteArray old = contentOf(path("coast.cmap"));
    QTest::keyClick(window->windowHandle(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    choose(path("other.cmap"));
    QTRY_COMPARE(map->getDocument()->getFileName(), path("other.cmap"));
    QCOMPARE(map->windowTitle(), QString("other.cmap"));
    QCOMPARE(contentOf(path("coast.cmap")), old);
    QVERIFY(contentOf(path("other.cmap")).contains("another map"));
}

void MapSavingTest::theFileOfAnotherWindowIsNotTaken()
{
    MapWindow* const coast = changedMap();
    const QByteArray old = contentOf(path("coast.cmap"));
    MapWindow* const other = open({images.filePath("metres.tif")});
    action("actionSaveAs")->trigger();
    QTimer answers; // the dialog asks in a loop of its own whether to replace the file
    connect(&answers, &QTimer::timeout, this, [this] {
        const auto* const chooser = dialog<QFileDialog>("saveMapDialog");
        if (auto* const box = chooser ? chooser->findChild<QMessageBox*>() : nullptr) {
            box->button(QMessageBox::Yes)->click();
        }
    });
    answers.start();
    choose(path("coast.cmap"));
    auto* const box = dialog<QMessageBox>("saveMapFailure");
    QVERIFY(box);
    QCOMPARE(box->text(), path("coast.cmap") + " is open in another window. Close it there, or "
                                               "choose another name.");
    QCOMPARE(other->getDocument()->getFileName(), QString());
    QCOMPARE(coast->getDocument()->getFileName(), path("coast.cmap"));
    QCOMPARE(contentOf(path("coast.cmap")), old);
}

void MapSavingTest::twoSavesGiveTheSameBytes()
{
    MapWindow* map = changedMap();
    QSignalSpy saved(map->getDocument(), &MapDocument::saved);
    action("actionSave")->trigger();
    QTRY_COMPARE(saved.size(), 1);
    const QByteArray first = contentOf(path("coast.cmap"));
    for (int seed = 1; seed < 5; ++seed) {
        qSetGlobalQHashSeed(seed);
        action("actionSave")->trigger();
        action("actionSave")->trigger(); // while the first is under way
        QTRY_COMPARE(saved.size(), 1 + 2 * seed);
        QCOMPARE(contentOf(path("coast.cmap")), first);
    }
    qSetGlobalQHashSeed(-1);
}

void MapSavingTest::aDiskThatIsFullLosesNothing()
{
    MapWindow* map = changedMap();
    const QByteArray old = contentOf(path("coast.cmap"));
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit full = before;
    full.rlim_cur = 100;
    setrlimit(RLIMIT_FSIZE, &full);
    action("actionSave")->trigger();
    const bool told =
        QTest::qWaitFor([this] { return dialog<QMessageBox>("saveMapFailure") != nullptr; });
    setrlimit(RLIMIT_FSIZE, &before);

    QVERIFY(told);
    QCOMPARE(dialog<QMessageBox>("saveMapFailure")->text(),
             "cannot write " + path("coast.cmap") + ": File too large");
    QCOMPARE(contentOf(path("coast.cmap")), old);
    QCOMPARE(QDir(folder->path()).entryList(QDir::Files), QStringList({"coast.cmap"}));
    QVERIFY(map->getDocument()->isChanged());
}

void MapSavingTest::theActionsNeedAMap()
{
    QVERIFY(!action("actionSave")->isEnabled());
    QVERIFY(!action("actionSaveAs")->isEnabled());
    open({images.filePath("metres.tif")});
    QVERIFY(action("actionSave")->isEnabled());
    QVERIFY(action("actionSaveAs")->isEnabled());
}

void MapSavingTest::layersInTheMiddleOfOpeningAreSavedWhole()
{
    StallingServer server(QByteArray(1000, ' '), 0);
    const QString source = server.addressOf("silent.tif");
    const QString file =
        write("slow.cmap",
              "<mapcanvas><layers><layer class=\"Corvane::Map::GdalRasterLayer\"><datasource "
              "value=\"" +
                  source +
                  "\"/><param name=\"Bands\" value=\"3,2,1\"/><param name=\"Transparency\" "
                  "value=\"0.5\"/><param name=\"Description\" value=\"far\"/></layer></layers>"
                  "</mapcanvas>");
    window->openFiles({file});
    MapWindow* map = mapWindows().first();
    QTRY_COMPARE(map->getView()->getNumberOfLayers(), 1);
    QVERIFY(!map->getView()->getLayerAt(0)->isValid());
    QSignalSpy saved(map->getDocument(), &MapDocument::saved);

    action("actionSave")->trigger();

    QTRY_COMPARE(saved.size(), 1);
    const QByteArray text = contentOf(file);
    QVERIFY(text.contains("<datasource value=\"" + source.toUtf8() + "\"/>"));
    QVERIFY(text.contains("<param name=\"Bands\" value=\"3,2,1\"/>"));
    QVERIFY(text.contains("<param name=\"Transparency\" value=\"0.5\"/>"));
    QVERIFY(text.contains("<param name=\"Description\" value=\"far\"/>"));
}

void MapSavingTest::aMapThatIsBeingReadIsSavedWhole()
{
    constexpr int count = 3000;
    const QString file =
        write("a.cmap", "<mapcanvas><layers>" + rasterElement("/missing.tif").repeated(count) +
                            "</layers></mapcanvas>");
    window->openFiles({file});
    MapWindow* const map = mapWindows().first();
    QTRY_VERIFY(map->getView()->getNumberOfLayers() > 0);
    QVERIFY(map->getView()->getNumberOfLayers() < count);
    action("actionSave")->trigger();
    QVERIFY(!dialog<QFileDialog>("saveMapDialog")); // it has a name, which is not known yet
    QTRY_VERIFY_WITH_TIMEOUT(contentOf(file).contains("<?xml"), 30000);
    QCOMPARE(contentOf(file).count("<layer "), count);
}

void MapSavingTest::layersThatFailStayInTheMap()
{
    const QString file = write("a.cmap", "<mapcanvas><layers>" + rasterElement("/missing.tif") +
                                             rasterElement("beside.tif") + "</layers></mapcanvas>");
    window->openFiles({file});
    QTRY_VERIFY(dialog<QMessageBox>("openFailures"));
    MapWindow* map = mapWindows().first();
    QCOMPARE(map->getView()->getNumberOfLayers(), 2);
    QVERIFY(!map->getDocument()->isChanged());
    QSignalSpy saved(map->getDocument(), &MapDocument::saved);
    action("actionSave")->trigger();
    QTRY_COMPARE(saved.size(), 1);
    QVERIFY(contentOf(file).contains("<datasource value=\"/missing.tif\"/>"));
    QVERIFY(
        contentOf(file).contains("<datasource value=\"" + path("beside.tif").toUtf8() + "\"/>"));

    // it is there again once the file is
    map->close();
    QVERIFY(QFile::copy(images.filePath("metres.tif"), path("beside.tif")));
    QTRY_VERIFY(mapWindows().isEmpty());
    window->openFiles({file});
    QTRY_COMPARE(mapWindows().first()->getView()->getNumberOfLayers(), 2);
    QTRY_VERIFY(mapWindows().first()->getView()->getLayerAt(1)->isValid());
}

void MapSavingTest::savingAsksBeforeItDropsLayers()
{
    const QString file =
        write("a.cmap", "<mapcanvas><layers><layer class=\"Nobody\"/>" +
                            rasterElement(images.filePath("metres.tif")) + "</layers></mapcanvas>");
    MapWindow* map = open({file});
    QVERIFY(!map->getDocument()->isChanged()); // closing it loses nothing
    QTRY_VERIFY(dialog<QMessageBox>("openFailures"));
    dialog<QMessageBox>("openFailures")->close();
    const QByteArray old = contentOf(file);

    action("actionSave")->trigger();
    auto* question = dialog<QMessageBox>("missingLayersQuestion");
    QVERIFY(question);
    QVERIFY(question->text().contains("a.cmap"));
    QTest::mouseClick(question->button(QMessageBox::Cancel), Qt::LeftButton);
    QTRY_VERIFY(!dialog<QMessageBox>("missingLayersQuestion"));
    QCOMPARE(contentOf(file), old);

    QSignalSpy saved(map->getDocument(), &MapDocument::saved);
    action("actionSave")->trigger();
    QTest::mouseClick(dialog<QMessageBox>("missingLayersQuestion")->button(QMessageBox::Save),
                      Qt::LeftButton);
    QTRY_COMPARE(saved.size(), 1);
    QVERIFY(!contentOf(file).contains("Nobody"));
    QTRY_VERIFY(!dialog<QMessageBox>("missingLayersQuestion"));
    action("actionSave")->trigger(); // the file has no more than the map now
    QVERIFY(!dialog<QMessageBox>("missingLayersQuestion"));
    QTRY_COMPARE(saved.size(), 2);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Map Saving Test");
    MapSavingTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "MapSavingTest.moc"
