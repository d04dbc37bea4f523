#include <tests/viewer/support/OpenViewer.h>

#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <tests/support/EachInItsProcess.h>

#include <QDir>
#include <QFile>
#include <QtTest>

#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time

/// A folder whose disk does not answer: Qt's questions about what is in it are held, save on the GUI
/// thread, where they are counted. Any thread.
class DeadDisk
{
public:
    static DeadDisk& instance()
    {
        static auto* const disk = new DeadDisk; // asked to the end of the process
        return *disk;
    }
    void ask(const char* path)
    {
        if (!path || !std::strstr(path, "/dead-disk/")) {
            return;
        }
        std::unique_lock<std::mutex> guard(mutex);
        if (answers) {
            return;
        }
        if (std::this_thread::get_id() == gui) {
            ++askedByGui;
            return;
        }
        ++held;
        changed.wait_for(guard, std::chrono::minutes(2), [this] { return answers; });
        --held;
    }
    void answer()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        answers = true;
        changed.notify_all();
    }
    int heldNow()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return held;
    }
    int askedOnGuiThread()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return askedByGui;
    }
    void die()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        gui = std::this_thread::get_id();
        answers = false;
        askedByGui = 0;
    }

private:
    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::thread::id gui;
    bool answers = true;
    int held = 0;
    int askedByGui = 0;
};

} // namespace

// In place of the C library's, for whoever calls them in this process.

namespace {

template <typename Function>
Function libraryOwn(const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" Q_DECL_EXPORT char* realpath(const char* path, char* resolved) noexcept
{
    static const auto own = libraryOwn<char* (*)(const char*, char*)>("realpath");
    DeadDisk::instance().ask(path);
    return own(path, resolved);
}

extern "C" Q_DECL_EXPORT int access(const char* path, int mode) noexcept
{
    static const auto own = libraryOwn<int (*)(const char*, int)>("access");
    DeadDisk::instance().ask(path);
    return own(path, mode);
}

extern "C" Q_DECL_EXPORT int statx(int folder, const char* path, int flags, unsigned int mask,
                                   struct statx* answer) noexcept
{
    static const auto own =
        libraryOwn<int (*)(int, const char*, int, unsigned int, struct statx*)>("statx");
    DeadDisk::instance().ask(path);
    return own(folder, path, flags, mask, answer);
}

/// What the window does while a disk that a map names does not answer.
class DeadDiskTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void relativeNamesOfADocumentAreLookedUpBesideTheGuiThread();
    void layersAskNoDiskOnTheGuiThread_data();
    void layersAskNoDiskOnTheGuiThread();

private:
    std::unique_ptr<OpenViewer> viewer;
};

void DeadDiskTest::init()
{
    viewer = std::make_unique<OpenViewer>();
    QVERIFY(QDir(viewer->path(".")).mkdir("dead-disk"));
    QVERIFY(QFile::copy(viewer->path("two.tif"), viewer->path("dead-disk/two.tif")));
    QFile shapes(viewer->path("dead-disk/shapes.geojson"));
    QVERIFY(shapes.open(QIODevice::WriteOnly));
    shapes.write(R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{},
        "geometry":{"type":"Point","coordinates":[12.5,47.5]}}]})");
}

void DeadDiskTest::cleanup()
{
    DeadDisk::instance().answer();
    viewer.reset();
}

void DeadDiskTest::relativeNamesOfADocumentAreLookedUpBesideTheGuiThread()
{
    QFile file(viewer->path("map.cmap"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "<!DOCTYPE CorvaneMapCanvas><mapcanvas><layers>"
        "<layer class=\"Corvane::Map::GdalRasterLayer\"><datasource value=\"one.tif\"/></layer>"
        "<layer class=\"Corvane::Map::GdalRasterLayer\">"
        "<datasource value=\"dead-disk/two.tif\"/></layer>"
        "<layer class=\"Corvane::Map::OgrVectorLayer\">"
        "<datasource value=\"dead-disk/shapes.geojson\"/></layer>"
        "<layer class=\"Corvane::Map::WebTileLayer\">"
        "<datasource value=\"dead-disk/none.webtiles\"/></layer>"
        "</layers></mapcanvas>");
    file.close();
    DeadDisk::instance().die();
    viewer->window->openFiles({file.fileName()});
    MapWindow* const map = viewer->window->getMapWindows().first();
    QTRY_VERIFY_WITH_TIMEOUT(DeadDisk::instance().heldNow() > 0, generous);
    QVERIFY(map->isOpening());
    QCOMPARE(DeadDisk::instance().askedOnGuiThread(), 0);

    DeadDisk::instance().answer();
    QTRY_COMPARE_WITH_TIMEOUT(map->getView()->getNumberOfLayers(), 4, generous);
    for (int i = 0; i < 3; ++i) {
        QTRY_VERIFY_WITH_TIMEOUT(map->getView()->getLayerAt(i)->isValid(), generous);
    }
    QCOMPARE(map->getView()->getLayerAt(1)->getDataSource(), viewer->path("dead-disk/two.tif"));
}

void DeadDiskTest::layersAskNoDiskOnTheGuiThread_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("name");
    QTest::newRow("a raster") << "Corvane::Map::GdalRasterLayer"
                              << "two.tif";
    QTest::newRow("vectors") << "Corvane::Map::OgrVectorLayer"
                             << "shapes.geojson";
}

void DeadDiskTest::layersAskNoDiskOnTheGuiThread()
{
    QFETCH(QString, className);
    QFETCH(QString, name);
    MapWindow* const map = viewer->openMap({"one.tif"});
    DeadDisk::instance().die();
    map->getView()->addLayer(className, viewer->path("dead-disk/" + name));
    Map::Layer* const layer = map->getView()->getLayerAt(1);
    QTRY_VERIFY_WITH_TIMEOUT(DeadDisk::instance().heldNow() > 0, generous);
    QVERIFY(!layer->isValid());
    QCOMPARE(DeadDisk::instance().askedOnGuiThread(), 0);
    DeadDisk::instance().answer();
    QTRY_VERIFY_WITH_TIMEOUT(layer->isValid(), generous);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Viewer Test");
    DeadDiskTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "DeadDiskTest.moc"
