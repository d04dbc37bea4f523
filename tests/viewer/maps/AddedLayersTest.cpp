#include <tests/viewer/support/OpenViewer.h>

#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/map/ILayerSource.h>
#include <corvane/map/Layer.h>
#include <tests/gui/MapTreeTools.h>
#include <tests/plugins/SourceServer.h>
#include <tests/support/EachInItsProcess.h>

#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time
const char* const notRecognized = "%1: not recognized as a supported file format.";
const char* const webTiles = "Corvane::Map::WebTileLayer";

/// A file that keeps whoever opens it waiting, and turns out to be empty.
class Pipe
{
public:
    explicit Pipe(const QString& path) : name(path.toUtf8())
    {
        if (::mkfifo(name.constData(), 0600) != 0) {
            qFatal("no pipe");
        }
    }
    ~Pipe() { end(); }
    /// Whoever is waiting goes on.
    void end() const
    {
        const int writer = ::open(name.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        if (writer >= 0) {
            ::close(writer);
        }
    }

private:
    QByteArray name;
};

} // namespace

/// What the window tells of layers that are in the map already when their sources fail.
class AddedLayersTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void aRasterThatFailsLaterIsTold();
    void aServerThatRefusesLaterIsTold();
    void aServerThatDoesNotAnswerIsToldOnceItRefuses();
    void aFileThatIsNoneIsToldWhenItIsDroppedIntoTheTree();
    void aLayerThatIsDeletedMeanwhileIsNotTold();

private:
    QString failures() const;
    void closeFailures() const;

    std::unique_ptr<OpenViewer> viewer;
};

void AddedLayersTest::init()
{
    viewer = std::make_unique<OpenViewer>();
}

void AddedLayersTest::cleanup()
{
    viewer.reset();
}

/// What the box says that lists sources which could not be opened; null without one.
QString AddedLayersTest::failures() const
{
    const auto* const box = viewer->window->findChild<QMessageBox*>("openFailures");
    return box ? box->informativeText() : QString();
}

void AddedLayersTest::closeFailures() const
{
    viewer->window->findChild<QMessageBox*>("openFailures")->close();
}

void AddedLayersTest::aRasterThatFailsLaterIsTold()
{
    const Pipe pipe(viewer->path("late.tif"));
    MapWindow* const map = viewer->openMap({"one.tif"});
    QTimer::singleShot(0, viewer->window.get(), [this] {
        auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        auto* const name = dialog->findChild<QLineEdit*>("fileNameEdit");
        name->setText(viewer->path("late.tif"));
        QTest::keyClick(name, Qt::Key_Return);
    });
    viewer->action("actionAddRaster")->trigger();
    QCOMPARE(OpenViewer::layersOf(map), QStringList({"one.tif", "late.tif"}));
    QVERIFY(failures().isNull());

    const auto isTold = [&] {
        pipe.end(); // again and again: a reader may open it more than once
        return !failures().isNull();
    };
    QVERIFY(QTest::qWaitFor(isTold, generous));
    QCOMPARE(failures(), QString(notRecognized).arg(viewer->path("late.tif")));
    QCOMPARE(OpenViewer::layersOf(map), QStringList({"one.tif", "late.tif"}));
    closeFailures();
}

void AddedLayersTest::aServerThatRefusesLaterIsTold()
{
    HttpTestServer server;
    server.on("/wmts.xml", HttpReply::withStatus(404).held());
    MapWindow* const map = viewer->openMap({"one.tif"});
    map->getView()->addLayer(webTiles, server.url("/wmts.xml"));
    QVERIFY(server.waitForHeld(1));
    QVERIFY(failures().isNull());
    server.release();
    QTRY_VERIFY_WITH_TIMEOUT(!failures().isNull(), generous);
    QCOMPARE(failures(), server.url("/wmts.xml") + ": the server answers with status 404");
    closeFailures();
}

// Until then it is asked again, and the line for sources tells of it.
void AddedLayersTest::aServerThatDoesNotAnswerIsToldOnceItRefuses()
{
    const int port = closedPort();
    MapWindow* const map = viewer->openMap({"one.tif"});
    const QSignalSpy failed(map, &MapWindow::openFailed);
    map->getView()->addLayer(webTiles, sourceAt(port, "/wmts.xml"));
    Map::Layer* const layer = map->getView()->getLayerAt(1);
    auto* const source = qobject_cast<Map::ILayerSource*>(layer);
    QTRY_COMPARE_WITH_TIMEOUT(source->getSourceReport().state, Map::SourceReport::State::Waiting,
                              generous);
    QCOMPARE(failed.size(), 0);
    const SourceServer server(port); // which has no such document
    QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, generous);
    QCOMPARE(failed.first().at(1).toString(), QString("the server answers with status 404"));
    QTRY_VERIFY_WITH_TIMEOUT(!failures().isNull(), generous);
    closeFailures();
}

void AddedLayersTest::aFileThatIsNoneIsToldWhenItIsDroppedIntoTheTree()
{
    QFile text(viewer->path("text.tif"));
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("nothing");
    text.close();
    viewer->openMap({"one.tif"});
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(text.fileName())});
    auto* const tree = viewer->window->findChild<Map::MapTreeView*>();
    dragOnto(*tree, data);
    QTRY_VERIFY_WITH_TIMEOUT(!failures().isNull(), generous);
    QCOMPARE(failures(), QString(notRecognized).arg(text.fileName()));
    closeFailures();
}

void AddedLayersTest::aLayerThatIsDeletedMeanwhileIsNotTold()
{
    HttpTestServer server;
    server.on("/gone.xml", HttpReply::withStatus(404).held());
    server.on("/wmts.xml", HttpReply::withStatus(404).held());
    MapWindow* const map = viewer->openMap({"one.tif"});
    const QSignalSpy failed(map, &MapWindow::openFailed);
    map->getView()->addLayer(webTiles, server.url("/gone.xml?wmts"));
    map->getView()->addLayer(webTiles, server.url("/wmts.xml"));
    QVERIFY(server.waitForHeld(2));
    map->getView()->deleteLayer(map->getView()->getLayerAt(1));
    server.release();
    QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, generous);
    QCOMPARE(failed.first().first().toString(), server.url("/wmts.xml"));
    QTRY_VERIFY_WITH_TIMEOUT(!failures().isNull(), generous);
    closeFailures();
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Viewer Test");
    AddedLayersTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "AddedLayersTest.moc"
