#include <corvane/core/Application.h>
#include <corvane/map/ILayerOverviews.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestRasters.h>

#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/raster/OverviewBuilder.h>
#include <plugins/raster/OverviewStore.h>
#include <plugins/raster/RasterFacts.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <thread>

#include <unistd.h>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

using State = OverviewProgress::State;
Q_DECLARE_METATYPE(OverviewProgress::State)

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time

RasterRecipe plain(const QSize& size = QSize(1500, 1200))
{
    RasterRecipe recipe;
    recipe.size = size;
    recipe.value = plainValue;
    return recipe;
}

OverviewOwner imageAt(const QString& file)
{
    OverviewOwner owner;
    owner.file = file;
    return owner;
}

QByteArray digestOf(const QString& file)
{
    QFile bytes(file);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return bytes.open(QIODevice::ReadOnly) && hash.addData(&bytes) ? hash.result() : QByteArray();
}

QStringList entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

std::unique_ptr<GdalRasterLayer> openLayer(const QString& file)
{
    auto layer = std::make_unique<GdalRasterLayer>();
    layer->setProgressive(false);
    layer->setDataSource(file);
    layer->setProgressive(true);
    return layer;
}

State stateOf(GdalRasterLayer& layer)
{
    return layer.getOverviewProgress().state;
}

/// Somebody whom permissions hold back, while it lives, whoever runs the test.
class PlainUser
{
public:
    PlainUser() : before(::geteuid())
    {
        constexpr uid_t nobody = 65534;
        if (before == 0 && ::seteuid(nobody) != 0) {
            qFatal("no plain user");
        }
    }
    ~PlainUser()
    {
        if (::seteuid(before) != 0) {
            qFatal("no way back");
        }
    }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

private:
    uid_t before;
};

bool build(GdalRasterLayer& layer)
{
    return layer.buildOverviews() &&
           QTest::qWaitFor([&layer] { return stateOf(layer) != State::Building; }, generous) &&
           stateOf(layer) == State::Done &&
           QTest::qWaitFor([&layer] { return !layer.getOverviews().isEmpty(); }, generous);
}

/// Of an image of 1500 x 1200 pixels.
void hideLeftHalf(GDALDatasetH dataset)
{
    GDALCreateDatasetMaskBand(dataset, GMF_PER_DATASET);
    GDALRasterBandH mask = GDALGetMaskBand(GDALGetRasterBand(dataset, 1));
    std::vector<unsigned char> row(1500, 0);
    std::fill(row.begin() + 750, row.end(), 255);
    for (int y = 0; y < 1200; ++y) {
        if (GDALRasterIO(mask, GF_Write, 0, y, 1500, 1, row.data(), 1500, 1, GDT_Byte, 0, 0) !=
            CE_None) {
            qFatal("no mask");
        }
    }
}

} // namespace

/// Overviews of large files that have none: built in the background, shown by the same layer.
class RasterOverviewsTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void whatWantsOverviews_data();
    void whatWantsOverviews();
    void nothingIsWantedUnlessTheFileIsLarge();

    void theyAreBuiltBesideTheFile();
    void theLayerShowsThem();
    void whereNothingCanBeWrittenTheyLieInTheCache();
    void theSettingPutsThemIntoTheCache();
    void thoseOfTheCacheAreFoundAgain();
    void aFileThatHasChangedDoesNotGetThem();
    void thoseThatDoNotFitAreLeftAlone();
    void coloursOfAPaletteAreNotMixed();
    void whatHasNoDataStaysOut();
    void transparencyStays();
    void whatAMaskHidesStaysOutOfAllLevels_data();
    void whatAMaskHidesStaysOutOfAllLevels();
    void deepValuesKeepTheirMeans();

    void cancellingLeavesNothing();
    void aLayerThatGoesLeavesNothing();
    void oneThatIsStoppedLeavesNothing();
    void anotherSourceEndsTheBuilding();
    void aFileThatCannotBeReadIsTold();
    void whatADeadProgramLeftGoes();

    void theOldestGoWhenTheCacheIsFull();
    void thoseOfChangedFilesGoFirst();

private:
    QString path(const QString& name) const { return folder->filePath(name); }
    void keep(const QString& name, int bytes, int daysAgo) const;

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<QTemporaryDir> cache;
};

void RasterOverviewsTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    cache = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CACHE_HOME", cache->path().toUtf8());
    QSettings& settings = *Application::instance()->getSettings();
    settings.remove("Plugins");
    settings.setValue("Plugins/Raster/LargeImagePixels", 1000000);
}

void RasterOverviewsTest::whatWantsOverviews_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("hasOverviews");
    QTest::addColumn<bool>("isTurned");
    QTest::addColumn<bool>("wants");
    QTest::newRow("a large file") << QSize(1500, 1200) << false << false << true;
    QTest::newRow("one that has some") << QSize(1500, 1200) << true << false << false;
    QTest::newRow("a small one") << QSize(900, 900) << false << false << false;
    QTest::newRow("one that is turned to be shown") << QSize(1500, 1200) << false << true << true;
    QTest::newRow("a long strip, which is a row of tiles")
        << QSize(5000, 300) << false << false << false;
}

void RasterOverviewsTest::whatWantsOverviews()
{
    QFETCH(QSize, size);
    QFETCH(bool, hasOverviews);
    QFETCH(bool, isTurned);
    RasterRecipe recipe = plain(size);
    if (hasOverviews) {
        recipe.overviews = {2, 4};
    }
    if (isTurned) {
        recipe.transform = {1000.0, 2.0, 0.5, 5000.0, 0.5, -2.0};
    }
    QVERIFY(makeRaster(path("a.tif"), recipe));
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(layer->isValid());
    QVERIFY(qobject_cast<ILayerOverviews*>(layer.get()));
    QTEST(layer->wantsOverviews(), "wants");
    QCOMPARE(stateOf(*layer), State::None);
    if (!layer->wantsOverviews()) {
        QVERIFY(!layer->buildOverviews());
        QCOMPARE(stateOf(*layer), State::None);
    }
}

void RasterOverviewsTest::nothingIsWantedUnlessTheFileIsLarge()
{
    QVERIFY(!GdalRasterLayer().wantsOverviews());
    Application::instance()->getSettings()->remove("Plugins");
    QVERIFY(makeRaster(path("a.tif"), plain()));
    QVERIFY(!openLayer(path("a.tif"))->wantsOverviews()); // a hundred million pixels are usual
}

void RasterOverviewsTest::theyAreBuiltBesideTheFile()
{
    const QString file = path("a.tif");
    QVERIFY(makeRaster(file, plain()));
    const QByteArray digest = digestOf(file);
    const QDateTime changed = QFileInfo(file).lastModified();
    const auto layer = openLayer(file);
    QSignalSpy opened(layer.get(), &GdalRasterLayer::sourceOpened);
    QVERIFY(layer->buildOverviews());
    QVERIFY(!layer->buildOverviews()); // one at a time
    QVERIFY(!layer->wantsOverviews());
    QCOMPARE(stateOf(*layer), State::Building);
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(*layer), State::Done, generous);
    QVERIFY(layer->isValid()); // it never closes
    const OverviewProgress progress = layer->getOverviewProgress();
    QCOMPARE(progress.percent, 100);
    QCOMPARE(progress.folder, folder->path());
    QCOMPARE(progress.reason, QString());
    QTRY_COMPARE_WITH_TIMEOUT(opened.size(), 1, generous);
    QCOMPARE(layer->getOverviews(), QString("750 x 600, 375 x 300, 188 x 150"));
    QVERIFY(!layer->wantsOverviews());
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif", "a.tif.ovr"}));
    QCOMPARE(digestOf(file), digest);
    QCOMPARE(QFileInfo(file).lastModified(), changed);
    QVERIFY(entriesOf(cache->path()).isEmpty());
}

void RasterOverviewsTest::theLayerShowsThem()
{
    const QString file = path("a.tif");
    RasterRecipe recipe = plain();
    recipe.value = [](int, int x, int y) { return (x / 2 + y / 2) % 2 == 0 ? 60.0 : 180.0; };
    QVERIFY(makeRaster(file, recipe));
    const auto layer = openLayer(file);
    const PixelView reduced{300, 300, 0, 0, 4.0};
    const QImage before = complete(*layer, reduced);
    layer->setProgressive(true);
    QVERIFY(build(*layer));
    QCOMPARE(complete(*layer, reduced).pixelColor(150, 150).red(), 120); // the mean of a square
    QCOMPARE(before.pixelColor(150, 150).red(), 120);
    const QImage full = complete(*layer, {64, 64, 0, 0});
    QCOMPARE(full.pixelColor(0, 0).red(), 60);
    QCOMPARE(full.pixelColor(2, 0).red(), 180);
}

void RasterOverviewsTest::whereNothingCanBeWrittenTheyLieInTheCache()
{
    const QString file = path("a.tif");
    QVERIFY(makeRaster(file, plain()));
    const auto all = QFileDevice::Permissions(0x7777); // everybody may do everything
    const auto readable = QFileDevice::Permissions(0x5555);
    QVERIFY(QFile::setPermissions(cache->path(), all));
    QVERIFY(QFile::setPermissions(folder->path(), readable));
    OverviewOrder order;
    order.owner.file = file;
    order.size = QSize(1500, 1200);
    order.mostCacheBytes = 1 << 30;
    OverviewMeter meter;
    const std::atomic<bool> abandoned{false};
    QString error;
    {
        const PlainUser user;
        const auto built = buildOverviews(order, meter, abandoned, &error);
        QVERIFY2(built, qPrintable(error));
        QCOMPARE(built->file, OverviewStore::nameFor(imageAt(file)));
    }
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif"}));
    QCOMPARE(entriesOf(OverviewStore::folder()).size(), 2); // with a note of what they are of
    QCOMPARE(openLayer(file)->getOverviews(), QString("750 x 600, 375 x 300, 188 x 150"));
}

void RasterOverviewsTest::theSettingPutsThemIntoTheCache()
{
    Application::instance()->getSettings()->setValue("Plugins/Raster/OverviewsBeside", false);
    QVERIFY(makeRaster(path("a.tif"), plain()));
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(build(*layer));
    QCOMPARE(layer->getOverviewProgress().folder, OverviewStore::folder());
    QCOMPARE(layer->getOverviews(), QString("750 x 600, 375 x 300, 188 x 150"));
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif"}));
    QCOMPARE(OverviewStore::find(imageAt(path("a.tif"))),
             OverviewStore::nameFor(imageAt(path("a.tif"))));
}

void RasterOverviewsTest::thoseOfTheCacheAreFoundAgain()
{
    Application::instance()->getSettings()->setValue("Plugins/Raster/OverviewsBeside", false);
    RasterRecipe recipe = plain();
    recipe.value = [](int, int x, int y) { return (x / 2 + y / 2) % 2 == 0 ? 60.0 : 180.0; };
    QVERIFY(makeRaster(path("a.tif"), recipe));
    QVERIFY(build(*openLayer(path("a.tif"))));
    const auto again = openLayer(path("a.tif"));
    QCOMPARE(again->getOverviews(), QString("750 x 600, 375 x 300, 188 x 150"));
    QVERIFY(!again->wantsOverviews());
    QCOMPARE(complete(*again, {300, 300, 0, 0, 4.0}).pixelColor(100, 100).red(), 120);
    QCOMPARE(complete(*again, {64, 64, 0, 0}).pixelColor(2, 0).red(), 180);
    const auto histograms = again->getHistograms(false, true, QSize(400, 400), 0, 0, 0, 0);
    QCOMPARE(histograms.size(), 3);
}

void RasterOverviewsTest::aFileThatHasChangedDoesNotGetThem()
{
    Application::instance()->getSettings()->setValue("Plugins/Raster/OverviewsBeside", false);
    const QString file = path("a.tif");
    QVERIFY(makeRaster(file, plain()));
    QVERIFY(build(*openLayer(file)));
    QFile changed(file);
    QVERIFY(changed.open(QIODevice::ReadWrite));
    QVERIFY(changed.setFileTime(QDateTime::currentDateTime().addSecs(5),
                                QFileDevice::FileModificationTime));
    changed.close();
    const auto layer = openLayer(file);
    QCOMPARE(layer->getOverviews(), QString());
    QVERIFY(build(*layer)); // the old ones go
    QCOMPARE(entriesOf(OverviewStore::folder()).size(), 2);
}

void RasterOverviewsTest::thoseThatDoNotFitAreLeftAlone()
{
    QVERIFY(makeRaster(path("a.tif"), plain()));
    QVERIFY(makeRaster(path("other.tif"), plain(QSize(800, 600))));
    QVERIFY(QDir().mkpath(OverviewStore::folder()));
    QVERIFY(QFile::copy(path("other.tif"), OverviewStore::nameFor(imageAt(path("a.tif")))));
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(layer->isValid());
    QCOMPARE(layer->getOverviews(), QString());
    QFile torn(OverviewStore::nameFor(imageAt(path("a.tif"))));
    QVERIFY(torn.resize(100));
    QVERIFY(openLayer(path("a.tif"))->isValid());
}

void RasterOverviewsTest::coloursOfAPaletteAreNotMixed()
{
    RasterRecipe recipe = plain();
    recipe.bands = 1;
    recipe.value = [](int, int x, int y) { return (x + y) % 2 == 0 ? 1.0 : 3.0; };
    recipe.finish = [](GDALDatasetH dataset) {
        GDALColorTableH table = GDALCreateColorTable(GPI_RGB);
        for (short i = 0; i < 4; ++i) {
            const GDALColorEntry entry{static_cast<short>(i * 60), 10, 200, 255};
            GDALSetColorEntry(table, i, &entry);
        }
        GDALSetRasterColorTable(GDALGetRasterBand(dataset, 1), table);
        GDALDestroyColorTable(table);
    };
    QVERIFY(makeRaster(path("a.tif"), recipe));
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(build(*layer));
    const QColor pixel = complete(*layer, {300, 300, 0, 0, 4.0}).pixelColor(50, 50);
    QVERIFY2(pixel.red() == 60 || pixel.red() == 180, qPrintable(pixel.name()));
}

void RasterOverviewsTest::whatHasNoDataStaysOut()
{
    RasterRecipe recipe = plain();
    recipe.bands = 1;
    recipe.value = [](int, int x, int) { return x % 2 == 0 ? 100.0 : 7.0; };
    recipe.finish = [](GDALDatasetH dataset) {
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), 7.0);
    };
    QVERIFY(makeRaster(path("a.tif"), recipe));
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(build(*layer));
    QCOMPARE(complete(*layer, {300, 300, 0, 0, 4.0}).pixelColor(50, 50).red(), 100);
}

void RasterOverviewsTest::transparencyStays()
{
    RasterRecipe recipe = plain();
    recipe.value = [](int, int, int) { return 90.0; };
    recipe.finish = hideLeftHalf;
    QVERIFY(makeRaster(path("a.tif"), recipe));
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(layer->getOpacity());
    QVERIFY(build(*layer));
    const QImage picture = complete(*layer, {375, 300, 0, 0, 4.0});
    QCOMPARE(picture.pixelColor(100, 100).alpha(), 0);
    QCOMPARE(picture.pixelColor(300, 100), QColor(90, 90, 90));
}

void RasterOverviewsTest::whatAMaskHidesStaysOutOfAllLevels_data()
{
    QTest::addColumn<int>("bands");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<double>("tolerance");
    QTest::newRow("grey") << 1 << QStringList() << 0.0;
    QTest::newRow("colour in JPEG, which rings beside edges")
        << 3 << QStringList{"COMPRESS=JPEG", "PHOTOMETRIC=YCBCR"} << 15.0;
}

// The edge of the mask lies within a pixel of each level but the first.
void RasterOverviewsTest::whatAMaskHidesStaysOutOfAllLevels()
{
    QFETCH(int, bands);
    QFETCH(QStringList, options);
    QFETCH(double, tolerance);
    RasterRecipe recipe = plain();
    recipe.bands = bands;
    recipe.options << options;
    recipe.value = [](int, int x, int) { return x < 750 ? 0.0 : 90.0; };
    recipe.finish = hideLeftHalf;
    QVERIFY(makeRaster(path("a.tif"), recipe));
    QVERIFY(build(*openLayer(path("a.tif"))));
    const Dataset overviews = openRaster(path("a.tif.ovr"));
    QVERIFY(overviews);
    GDALRasterBandH half = GDALGetRasterBand(overviews.get(), 1);
    QCOMPARE(GDALGetOverviewCount(half), 2);
    for (int level = 0; level < 2; ++level) {
        unsigned char pixel = 0;
        QCOMPARE(GDALRasterIO(GDALGetOverview(half, level), GF_Read, 750 >> (level + 2), 100, 1, 1,
                              &pixel, 1, 1, GDT_Byte, 0, 0),
                 CE_None);
        QVERIFY2(std::abs(pixel - 90.0) <= tolerance, qPrintable(QString::number(pixel)));
    }
}

void RasterOverviewsTest::deepValuesKeepTheirMeans()
{
    RasterRecipe recipe = plain();
    recipe.bands = 1;
    recipe.type = GDT_UInt16;
    recipe.value = [](int, int x, int y) { return (x + y) % 2 == 0 ? 20000.0 : 40000.0; };
    QVERIFY(makeRaster(path("a.tif"), recipe));
    QVERIFY(build(*openLayer(path("a.tif"))));
    const Dataset overviews = openRaster(path("a.tif.ovr"));
    QVERIFY(overviews);
    QCOMPARE(readBand(overviews.get(), 1, 100, 100, 1, 1).front(), 30000.0);
}

void RasterOverviewsTest::cancellingLeavesNothing()
{
    QVERIFY(makeRaster(path("a.tif"), plain(QSize(3000, 3000))));
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(layer->buildOverviews());
    layer->cancelOverviews();
    QCOMPARE(stateOf(*layer), State::None);
    QVERIFY(layer->wantsOverviews());
    QVERIFY(build(*layer)); // after the one that was cancelled has ended
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif", "a.tif.ovr"}));
}

void RasterOverviewsTest::aLayerThatGoesLeavesNothing()
{
    QVERIFY(makeRaster(path("a.tif"), plain(QSize(3000, 3000))));
    QVERIFY(makeRaster(path("b.tif"), plain()));
    auto layer = openLayer(path("a.tif"));
    QVERIFY(layer->buildOverviews());
    layer.reset();
    QVERIFY(build(*openLayer(path("b.tif")))); // it had to wait for its turn
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif", "b.tif", "b.tif.ovr"}));
}

void RasterOverviewsTest::oneThatIsStoppedLeavesNothing()
{
    RasterRecipe recipe = plain(QSize(8000, 8000));
    recipe.value = nullptr;
    recipe.options << "SPARSE_OK=TRUE";
    QVERIFY(makeRaster(path("a.tif"), recipe));
    OverviewOrder order;
    order.owner.file = path("a.tif");
    order.size = recipe.size;
    OverviewMeter meter;
    std::atomic<bool> abandoned{false};
    std::shared_ptr<BuiltOverviews> built;
    QString error;
    std::thread builder([&] { built = buildOverviews(order, meter, abandoned, &error); });
    while (meter.percent == 0) {
        std::this_thread::yield();
    }
    abandoned = true;
    builder.join();
    QVERIFY(!built);
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif"}));

    OverviewMeter untouched;
    QVERIFY(!buildOverviews(order, untouched, abandoned, &error)); // before it has begun
    QCOMPARE(untouched.percent.load(), 0);
}

void RasterOverviewsTest::anotherSourceEndsTheBuilding()
{
    QVERIFY(makeRaster(path("a.tif"), plain(QSize(3000, 3000))));
    QVERIFY(makeRaster(path("b.tif"), plain()));
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(layer->buildOverviews());
    layer->setDataSource(path("b.tif"));
    QTRY_VERIFY_WITH_TIMEOUT(layer->isValid(), generous);
    QCOMPARE(stateOf(*layer), State::None);
    QVERIFY(build(*layer));
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif", "b.tif", "b.tif.ovr"}));
    layer->setDataSource(path("a.tif"));
    QCOMPARE(stateOf(*layer), State::None); // what was told was about the other one
}

void RasterOverviewsTest::aFileThatCannotBeReadIsTold()
{
    const LogLines log;
    QVERIFY(makeRaster(path("a.tif"), plain()));
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(layer->wantsOverviews());
    QFile torn(path("a.tif"));
    QVERIFY(torn.resize(torn.size() / 2));
    QVERIFY(layer->buildOverviews());
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(*layer), State::Failed, generous);
    QVERIFY(!layer->getOverviewProgress().reason.isEmpty());
    QCOMPARE(log.holding("cannot build overviews of").size(), 1);
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif"}));
}

void RasterOverviewsTest::whatADeadProgramLeftGoes()
{
    QProcess dead;
    dead.start("true", QStringList());
    QVERIFY(dead.waitForStarted());
    const qint64 process = dead.processId();
    QVERIFY(dead.waitForFinished());
    const QString host = QSysInfo::machineHostName();
    const QString gone = QString(".overviews-%1-%2-abcdef").arg(host).arg(process);
    const QString running =
        QString(".overviews-%1-%2-abcdef").arg(host).arg(QCoreApplication::applicationPid());
    const QString elsewhere = QString(".overviews-elsewhere-%1-abcdef").arg(process);
    for (const QString& name : {gone, running, elsewhere}) {
        QVERIFY(QDir(folder->path()).mkdir(name));
    }
    QFile half(path(gone + "/view.vrt.ovr"));
    QVERIFY(half.open(QIODevice::WriteOnly) && half.write("half") == 4);
    half.close();
    QVERIFY(makeRaster(path("a.tif"), plain()));
    QVERIFY(build(*openLayer(path("a.tif"))));
    const QStringList left = entriesOf(folder->path());
    QVERIFY(!left.contains(gone));
    QVERIFY(left.contains(running));
    QVERIFY(left.contains(elsewhere));
}

/// Overviews in the cache, of a file that is not there at the moment.
void RasterOverviewsTest::keep(const QString& name, int bytes, int daysAgo) const
{
    QDir().mkpath(OverviewStore::folder());
    QFile overviews(OverviewStore::folder() + '/' + name + ".ovr");
    QFile note(OverviewStore::folder() + '/' + name + ".txt");
    const bool ok = overviews.open(QIODevice::WriteOnly) && overviews.resize(bytes) &&
                    note.open(QIODevice::WriteOnly) &&
                    note.write("/nowhere/" + name.toUtf8() + "\n1\n1\n") > 0;
    note.flush();
    if (!ok || !note.setFileTime(QDateTime::currentDateTime().addDays(-daysAgo),
                                 QFileDevice::FileModificationTime))
    {
        qFatal("nothing can be kept");
    }
}

void RasterOverviewsTest::theOldestGoWhenTheCacheIsFull()
{
    keep("old", 1000, 3);
    keep("older", 1000, 5);
    keep("oldest", 1000, 9);
    keep("new", 1000, 1);
    OverviewStore::tidy(4000, QString());
    QCOMPARE(entriesOf(OverviewStore::folder()).size(), 8);
    OverviewStore::tidy(2000, OverviewStore::folder() + "/oldest.ovr");
    QCOMPARE(entriesOf(OverviewStore::folder()),
             QStringList({"new.ovr", "new.txt", "oldest.ovr", "oldest.txt"}));
    OverviewStore::tidy(0, QString());
    QVERIFY(entriesOf(OverviewStore::folder()).isEmpty());
}

void RasterOverviewsTest::thoseOfChangedFilesGoFirst()
{
    QVERIFY(makeRaster(path("a.tif"), plain()));
    QVERIFY(QDir().mkpath(OverviewStore::folder()));
    const QString name = OverviewStore::nameFor(imageAt(path("a.tif")));
    QFile overviews(name);
    QVERIFY(overviews.open(QIODevice::WriteOnly) && overviews.resize(10));
    QVERIFY(OverviewStore::note(name, imageAt(path("a.tif"))));
    keep("absent", 10, 100);
    QFile nameless(OverviewStore::folder() + "/nameless.ovr");
    QVERIFY(nameless.open(QIODevice::WriteOnly) && nameless.resize(10));
    OverviewStore::tidy(1000, QString());
    QCOMPARE(entriesOf(OverviewStore::folder()).filter(".ovr").size(), 2);
    QVERIFY(!QFileInfo::exists(nameless.fileName())); // nobody knows what it belongs to

    QFile changed(path("a.tif"));
    QVERIFY(changed.open(QIODevice::Append) && changed.write("more") == 4);
    changed.close();
    OverviewStore::tidy(1000, QString());
    QVERIFY(!QFileInfo::exists(name));
    QVERIFY(QFileInfo::exists(OverviewStore::folder() + "/absent.ovr"));
    QVERIFY(OverviewStore::nameFor(imageAt(path("none.tif"))).isEmpty());
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Raster Overviews Test");
    RasterOverviewsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "RasterOverviewsTest.moc"
