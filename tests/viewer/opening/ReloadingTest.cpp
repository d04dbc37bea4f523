#include <tests/viewer/opening/OpeningStage.h>

#include <viewer/maps/LateLayers.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/frame/NoticeBar.h>
#include <viewer/opening/Reloading.h>
#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>
#include <tests/support/FileContent.h>
#include <tests/support/HttpTestServer.h>

#include <QAction>
#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

/// What has changed and is opened anew.
class ReloadingTest : public OpeningStage
{
    Q_OBJECT
private slots:
    void aLayerIsReloadedInItsPlace();
    void everyLayerIsReloaded();
    void aLayerThatDoesNotOpenStays();
    void anUnchangedMapStaysUnchanged();
    void aServersFileIsAskedForAnew();
    void tilesThatAreKeptAreAskedForAgain();
    void aFileThatChangesIsOfferedForReload();
    void filesThatChangeAreOfferedTogether();
    void aReloadEndsWithItsMap();

private:
    void click(const QString& bar, const QString& button) const;
};

void ReloadingTest::click(const QString& bar, const QString& button) const
{
    QTRY_VERIFY(window->findChild<NoticeBar*>(bar));
    QTest::mouseClick(window->findChild<NoticeBar*>(bar)->findChild<QPushButton*>(button),
                      Qt::LeftButton);
}

void ReloadingTest::aLayerIsReloadedInItsPlace()
{
    action("actionOpenInMap")->trigger();
    window->open({writeImage("a.tif", 64), writeImage("b.tif", 64), writeImage("c.tif", 64)});
    QTRY_VERIFY(isOpen(map(), 3));
    Map::MapView* view = map()->getView();
    QPointer<Map::Layer> old = view->getLayerAt(1);
    QCOMPARE(old->getDataSource(), path("b.tif"));
    old->setProperty("Transparency", 0.25);
    old->setDescription("middle");
    view->setBounds(500010, 4649990, 500060, 4649940);
    const QRectF bounds = view->getBounds();
    writeImage("b.tif", 128);
    auto* const reloading = window->findChild<Reloading*>();
    QSignalSpy reloaded(reloading, &Reloading::reloaded);
    reloading->reload(map(), old);
    QTRY_COMPARE(reloaded.size(), 1);
    QVERIFY(!old);
    QCOMPARE(view->getNumberOfLayers(), 3);
    Map::Layer* fresh = view->getLayerAt(1);
    QCOMPARE(fresh->getDataSource(), path("b.tif"));
    QCOMPARE(fresh->property("Size").toSize(), QSize(128, 128));
    QCOMPARE(fresh->property("Transparency").toDouble(), 0.25);
    QCOMPARE(fresh->getDescription(), QString("middle"));
    QCOMPARE(view->getBounds(), bounds);
}

void ReloadingTest::everyLayerIsReloaded()
{
    action("actionOpenInMap")->trigger();
    window->open({writeImage("a.tif"), writeImage("b.tif")});
    QTRY_VERIFY(isOpen(map(), 2));
    const QVector<Map::Layer*> before = map()->getView()->getLayers();
    const QPointer<Map::Layer> first = before[0];
    const QPointer<Map::Layer> second = before[1];
    action("actionReloadAll")->trigger();
    QTRY_VERIFY(!first && !second);
    QTRY_VERIFY(isOpen(map(), 2));
    QCOMPARE(map()->getView()->getLayerAt(0)->getDataSource(), path("a.tif"));
    QCOMPARE(map()->getView()->getLayerAt(1)->getDataSource(), path("b.tif"));
}

void ReloadingTest::aLayerThatDoesNotOpenStays()
{
    window->open({writeImage("a.tif")});
    QTRY_VERIFY(isOpen(map(), 1));
    const QPointer<Map::Layer> old = map()->getView()->getLayerAt(0);
    QVERIFY(QFile::remove(path("a.tif")));
    action("actionReloadAll")->trigger();
    QTRY_VERIFY(window->findChild<QMessageBox*>("openFailures"));
    QCOMPARE(window->findChild<QMessageBox*>("openFailures")->informativeText(),
             path("a.tif") + ": the file does not exist");
    QVERIFY(old);
    QVERIFY(old->isValid());
    QCOMPARE(map()->getView()->getNumberOfLayers(), 1);
}

void ReloadingTest::anUnchangedMapStaysUnchanged()
{
    window->open({writeImage("a.tif")});
    QTRY_VERIFY(isOpen(map(), 1));
    QPointer<Map::Layer> old = map()->getView()->getLayerAt(0);
    QVERIFY(!map()->getDocument()->isChanged());
    action("actionReload")->trigger(); // no layer is active, or the only one
    QTRY_VERIFY(!old);
    QVERIFY(!map()->getDocument()->isChanged());

    map()->getView()->getLayerAt(0)->setVisible(false);
    QVERIFY(map()->getDocument()->isChanged());
    old = map()->getView()->getLayerAt(0);
    action("actionReloadAll")->trigger();
    QTRY_VERIFY(!old);
    QVERIFY(map()->getDocument()->isChanged());
    QVERIFY(!map()->getView()->getLayerAt(0)->isVisible());
}

void ReloadingTest::aServersFileIsAskedForAnew()
{
    HttpTestServer server;
    writeImage("a.tif", 64);
    server.on("/a.tif", HttpReply::data(contentOf(path("a.tif"))));
    window->open({server.url("/a.tif")});
    QTRY_VERIFY(isOpen(map(), 1));
    QCOMPARE(map()->getView()->getLayerAt(0)->property("Size").toSize(), QSize(64, 64));
    writeImage("a.tif", 128);
    server.on("/a.tif", HttpReply::data(contentOf(path("a.tif"))));
    action("actionReloadAll")->trigger();
    QTRY_COMPARE(map()->getView()->getLayerAt(0)->property("Size").toSize(), QSize(128, 128));
    QCOMPARE(map()->getView()->getNumberOfLayers(), 1);
}

void ReloadingTest::tilesThatAreKeptAreAskedForAgain()
{
    HttpTestServer server;
    QImage picture(256, 256, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QByteArray png;
    QBuffer buffer(&png);
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(picture.save(&buffer, "PNG"));
    server.onOther([png](const HttpRequest&) {
        HttpReply reply = HttpReply::data(png, "image/png");
        reply.header("Cache-Control", "max-age=3600");
        return reply;
    });
    window->open({server.url("/{z}/{x}/{y}.png")});
    const auto isComplete = [this] {
        return isOpen(map(), 1) && map()->getView()->getLayerAt(0)->getPercentComplete() == 100;
    };
    QTRY_VERIFY(isComplete());
    const int asked = server.requestCount();
    QVERIFY(asked > 0);
    window->open({server.url("/{z}/{x}/{y}.png")});
    QTRY_COMPARE(window->getMapWindows().size(), 2);
    QTRY_VERIFY(isOpen(map(1), 1));
    QTRY_COMPARE(int(map(1)->getView()->getLayerAt(0)->getPercentComplete()), 100);
    QCOMPARE(server.requestCount(), asked); // what is kept is fresh

    QSignalSpy reloaded(window->findChild<Reloading*>(), &Reloading::reloaded);
    action("actionReloadAll")->trigger();
    QTRY_COMPARE(reloaded.size(), 1);
    QTRY_VERIFY(server.requestCount() > asked);
}

void ReloadingTest::aFileThatChangesIsOfferedForReload()
{
    window->open({writeImage("a.tif", 64)});
    QTRY_VERIFY(isOpen(map(), 1));
    // the watch begins some time after the layer has come: the file changes until it is noticed
    const auto notice = [this] { return window->findChild<NoticeBar*>("changedNotice"); };
    const auto changed = [this, notice] {
        if (!notice()) {
            const QString fresh = writeImage("fresh.tif", 128);
            QFile::remove(path("a.tif"));
            QFile::rename(fresh, path("a.tif"));
        }
        return notice() != nullptr;
    };
    QVERIFY(QTest::qWaitFor(changed, 60000));
    QCOMPARE(notice()->getText(), QString("a.tif has changed."));
    QCOMPARE(map()->getView()->getLayerAt(0)->property("Size").toSize(), QSize(64, 64));
    click("changedNotice", "reloadChanged");
    QTRY_COMPARE(map()->getView()->getLayerAt(0)->property("Size").toSize(), QSize(128, 128));
}

void ReloadingTest::filesThatChangeAreOfferedTogether()
{
    action("actionOpenInMap")->trigger();
    window->open({writeImage("a.tif", 64), writeImage("b.tif", 64)});
    QTRY_VERIFY(isOpen(map(), 2));
    const auto noticeText = [this] {
        const auto* const notice = window->findChild<NoticeBar*>("changedNotice");
        return notice ? notice->getText() : QString();
    };
    const auto bothAreNoticed = [this, noticeText] {
        for (const char* name : {"a.tif", "b.tif"}) {
            const QString fresh = writeImage("fresh.tif", 128);
            QFile::remove(path(name));
            QFile::rename(fresh, path(name));
        }
        // again where a file changed before it was watched
        return QTest::qWaitFor([noticeText] { return noticeText() == "2 files have changed."; });
    };
    QVERIFY2(QTest::qWaitFor(bothAreNoticed, 60000), qPrintable(noticeText()));
    click("changedNotice", "reloadChanged");
    for (int layer : {0, 1}) {
        QTRY_COMPARE(map()->getView()->getLayerAt(layer)->property("Size").toSize(),
                     QSize(128, 128));
    }
}

/// The plugins end with the window, and no layer may outlive its plugin.
void ReloadingTest::aReloadEndsWithItsMap()
{
    HttpTestServer server;
    writeImage("a.tif", 64);
    const HttpReply image = HttpReply::data(contentOf(path("a.tif")));
    server.on("/a.tif", image);
    window->open({server.url("/a.tif")});
    QTRY_VERIFY(isOpen(map(), 1));
    const int asked = server.requestCount();
    server.on("/a.tif", HttpReply(image).held());
    action("actionReloadAll")->trigger();
    QTRY_VERIFY(server.requestCount() > asked);
    const auto* const fresh = window->findChild<Reloading*>()->findChild<LateLayers*>();
    QVERIFY(fresh->areOpening());
    const QPointer<MapWindow> closed = map();
    closed->close();
    QTRY_VERIFY(!closed);
    QVERIFY(!fresh->areOpening());
    server.release();
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Reloading Test");
    ReloadingTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "ReloadingTest.moc"
