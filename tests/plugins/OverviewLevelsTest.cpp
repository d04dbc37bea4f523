#include <corvane/core/Application.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/OpenGate.h>
#include <tests/plugins/TestRasters.h>

#include <plugins/common/TileShelf.h>
#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/raster/OverviewFile.h>
#include <plugins/raster/OverviewStore.h>
#include <plugins/raster/RasterSource.h>

#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#include <unistd.h>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

using State = OverviewProgress::State;
Q_DECLARE_METATYPE(OverviewProgress::State)

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time

// Of the builder's files, before it makes the next level of one: level 1 is whole, or level 2.
const QString afterFirst = "/overviews.tif";
const QString afterSecond = "/level2.tif";

// One pixel dark, the next one light: their mean is the same in every level.
constexpr int mean = 120;
double squares(int, int x, int y)
{
    return (x + y) % 2 == 0 ? 60.0 : 180.0;
}

RasterRecipe image()
{
    RasterRecipe recipe;
    recipe.size = QSize(1500, 1200);
    recipe.value = squares;
    return recipe;
}

QStringList entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

QStringList shownEntriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
}

std::unique_ptr<GdalRasterLayer> openLayer(const QString& source)
{
    auto layer = std::make_unique<GdalRasterLayer>();
    layer->setProgressive(false);
    layer->setDataSource(source);
    layer->setProgressive(true);
    return layer;
}

State stateOf(GdalRasterLayer& layer)
{
    return layer.getOverviewProgress().state;
}

/// All pixels of the file as if somebody had painted it grey, at a time that nobody notices: what is
/// read from the file itself from now on is of this value.
bool paintOver(const QString& file, double value)
{
    const QDateTime changed = QFileInfo(file).lastModified();
    const qint64 bytes = QFileInfo(file).size();
    {
        const Dataset dataset(GDALOpenEx(qPrintable(file), GDAL_OF_RASTER | GDAL_OF_UPDATE, nullptr,
                                         nullptr, nullptr));
        for (int band = 1; dataset && band <= GDALGetRasterCount(dataset.get()); ++band) {
            GDALFillRaster(GDALGetRasterBand(dataset.get(), band), value, 0.0);
        }
    }
    QFile touched(file);
    return touched.open(QIODevice::ReadWrite) && touched.size() == bytes &&
           touched.setFileTime(changed, QFileDevice::FileModificationTime);
}

/// Whether each pixel is there and of the value, but for what rounding makes of it.
bool isAll(const QImage& picture, int value)
{
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            if (qAlpha(pixel) != 255 || qAbs(qRed(pixel) - value) > 1) {
                return false;
            }
        }
    }
    return !picture.isNull();
}

} // namespace

/// Overviews in the layer while they are built, one level after the other.
class OverviewLevelsTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void eachLevelIsReadAsItComes();
    void whatIsShownStaysUntilItIsReadAnew();
    void theStretchStaysTheSame();
    void nothingLiesBesideTheFileBeforeAllIsThere();
    void whereNothingCanBeWrittenTheyComeAsWell();

    void cancellingBetweenLevelsLeavesThePicture();
    void theSourceMayGoMeanwhile();
    void theSourceMayChangeMeanwhile();
    void overviewsThatComeBesideTheFileChangeNothingInUse();
    void theLayerMayGoMeanwhile();
    void aHiddenLayerReadsNothing();

    void aTurnedImageHasThemInTheCache();
    void aPartOfAFileHasThemInTheCache();

private:
    QString path(const QString& name) const { return folder->filePath(name); }
    bool buildUpTo(GdalRasterLayer& layer, const QString& gate, const QString& overviews);
    bool finish(GdalRasterLayer& layer);

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<QTemporaryDir> cache;
};

void OverviewLevelsTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    cache = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CACHE_HOME", cache->path().toUtf8());
    QSettings& settings = *Application::instance()->getSettings();
    settings.remove("Plugins");
    settings.setValue("Plugins/Raster/LargeImagePixels", 1000000);
    QVERIFY(makeRaster(path("a.tif"), image()));
}

void OverviewLevelsTest::cleanup()
{
    OpenGate::instance().hold(QString());
}

/// Builds until the builder is held there and the layer reads what there is.
bool OverviewLevelsTest::buildUpTo(GdalRasterLayer& layer, const QString& gate,
                                   const QString& overviews)
{
    OpenGate& open = OpenGate::instance();
    open.hold(gate);
    return (stateOf(layer) == State::Building || layer.buildOverviews()) &&
           QTest::qWaitFor([&] { return open.holds() && layer.getOverviews() == overviews; },
                           generous);
}

bool OverviewLevelsTest::finish(GdalRasterLayer& layer)
{
    OpenGate::instance().hold(QString());
    const bool isOver =
        QTest::qWaitFor([&] { return stateOf(layer) != State::Building; }, generous);
    if (stateOf(layer) != State::Done) {
        qWarning("%s", qPrintable(layer.getOverviewProgress().reason));
    }
    return isOver && stateOf(layer) == State::Done;
}

void OverviewLevelsTest::eachLevelIsReadAsItComes()
{
    const auto layer = openLayer(path("a.tif"));
    const QSignalSpy opened(layer.get(), &GdalRasterLayer::sourceOpened);
    QVERIFY(buildUpTo(*layer, afterFirst, "750 x 600"));
    QVERIFY(layer->getOverviewProgress().percent > 0);
    QVERIFY(layer->getOverviewProgress().percent < 100);
    QVERIFY(paintOver(path("a.tif"), 200.0));
    QVERIFY(isAll(complete(*layer, {200, 200, 0, 0, 2.0}), mean)); // level 1
    QVERIFY(isAll(complete(*layer, {100, 100, 0, 0, 4.0}), mean)); // level 2, of the first
    layer->setProgressive(true);

    QVERIFY(buildUpTo(*layer, afterSecond, "750 x 600, 375 x 300"));
    QVERIFY(isAll(complete(*layer, {100, 100, 100, 100, 4.0}), mean));
    layer->setProgressive(true);

    QVERIFY(finish(*layer));
    QCOMPARE(layer->getOverviews(), QString("750 x 600, 375 x 300, 188 x 150"));
    QVERIFY(isAll(complete(*layer, {100, 100, 200, 200, 8.0}), mean));
    QVERIFY(isAll(complete(*layer, {100, 100, 0, 0}), 200)); // the image itself is read as ever
    QCOMPARE(opened.size(), 1);
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif", "a.tif.ovr"}));
}

/// After the first level somebody paints the image grey: what was read of it before is outdated, what
/// is read from overviews is not.
void OverviewLevelsTest::whatIsShownStaysUntilItIsReadAnew()
{
    QVERIFY(paintOver(path("a.tif"), 90.0));
    const auto layer = openLayer(path("a.tif"));
    const PixelView view{300, 300, 0, 0, 4.0};
    QVERIFY(isAll(complete(*layer, view), 90));
    const QImage full = complete(*layer, {64, 64, 0, 0});
    QVERIFY(isAll(full, 90));
    QVERIFY(isAll(complete(*layer, view), 90));
    layer->setProgressive(true);
    {
        const Dataset dataset(GDALOpenEx(qPrintable(path("a.tif")), GDAL_OF_RASTER | GDAL_OF_UPDATE,
                                         nullptr, nullptr, nullptr));
        QVERIFY(GDALFillRaster(GDALGetRasterBand(dataset.get(), 1), 150.0, 0.0) == CE_None);
    }
    bool isWhole = true;
    bool isNew = false;
    OpenGate::instance().hold(afterFirst);
    QVERIFY(layer->buildOverviews());
    // at every call of the layer, and right after it: old or new pixels, and never none
    for (const QDeadlineTimer limit(generous); !isNew && !limit.hasExpired();) {
        QCoreApplication::sendPostedEvents(layer.get(), QEvent::MetaCall);
        const QImage picture = painted(*layer, view);
        for (int y = 0; y < picture.height(); y += 10) {
            for (int x = 0; x < picture.width(); x += 10) {
                const QColor pixel = picture.pixelColor(x, y);
                isWhole =
                    isWhole && pixel.alpha() == 255 && (pixel.red() == 90 || pixel.red() == 150);
            }
        }
        isNew = isAll(picture, 150);
    }
    QVERIFY(isNew);
    QVERIFY(isWhole);
    QTRY_VERIFY_WITH_TIMEOUT(!layer->tiles().hasOutdated(), generous);
    QCOMPARE(painted(*layer, {64, 64, 0, 0}).pixelColor(5, 5).red(), 90); // the full level stays
    QVERIFY(finish(*layer));
    QVERIFY(isAll(complete(*layer, view), 150));
    QVERIFY(!layer->tiles().hasOutdated());
}

void OverviewLevelsTest::theStretchStaysTheSame()
{
    RasterRecipe deep = image();
    deep.bands = 1;
    deep.type = GDT_UInt16;
    deep.value = [](int, int x, int y) { return squares(1, x, y) * 100 + (x * y) % 50; };
    QVERIFY(makeRaster(path("deep.tif"), deep));
    const auto layer = openLayer(path("deep.tif"));
    const QImage before = complete(*layer, {64, 64, 0, 0});
    layer->setProgressive(true);
    QVERIFY(buildUpTo(*layer, afterFirst, "750 x 600"));
    QCOMPARE(complete(*layer, {64, 64, 700, 700}).pixel(0, 0), before.pixel(0, 0));
    layer->setProgressive(true);
    QVERIFY(finish(*layer));
    QCOMPARE(complete(*layer, {64, 64, 1000, 1000}).pixel(0, 0), before.pixel(0, 0));
}

/// A power cut at any time leaves the file as it was, with a hidden folder that goes later, or with all
/// of its overviews.
void OverviewLevelsTest::nothingLiesBesideTheFileBeforeAllIsThere()
{
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(buildUpTo(*layer, afterFirst, "750 x 600"));
    QCOMPARE(shownEntriesOf(folder->path()), QStringList({"a.tif"}));
    QVERIFY(buildUpTo(*layer, afterSecond, "750 x 600, 375 x 300"));
    QCOMPARE(shownEntriesOf(folder->path()), QStringList({"a.tif"}));
    QCOMPARE(openLayer(path("a.tif"))->getOverviews(), QString()); // another one sees none of it
    QVERIFY(finish(*layer));
    QCOMPARE(openLayer(path("a.tif"))->getOverviews(), QString("750 x 600, 375 x 300, 188 x 150"));
}

void OverviewLevelsTest::whereNothingCanBeWrittenTheyComeAsWell()
{
    constexpr uid_t nobody = 65534;
    const uid_t before = ::geteuid();
    QVERIFY(QFile::setPermissions(cache->path(), QFileDevice::Permissions(0x7777)));
    QVERIFY(QFile::setPermissions(folder->path(), QFileDevice::Permissions(0x5555)));
    QVERIFY(before != 0 || ::seteuid(nobody) == 0); // of all threads
    const auto layer = openLayer(path("a.tif"));
    const bool isFirst = buildUpTo(*layer, afterFirst, "750 x 600");
    const QStringList beside = entriesOf(folder->path());
    const bool isDone = isFirst && finish(*layer);
    QVERIFY(::seteuid(before) == 0);
    QVERIFY(isFirst);
    QCOMPARE(beside, QStringList({"a.tif"}));
    QVERIFY(isDone);
    QCOMPARE(layer->getOverviewProgress().folder, OverviewStore::folder());
    QCOMPARE(layer->getOverviews(), QString("750 x 600, 375 x 300, 188 x 150"));
    QVERIFY(isAll(complete(*layer, {100, 100, 0, 0, 4.0}), mean));
}

void OverviewLevelsTest::cancellingBetweenLevelsLeavesThePicture()
{
    const auto layer = openLayer(path("a.tif"));
    const PixelView view{300, 300, 0, 0, 4.0};
    QVERIFY(isAll(complete(*layer, view), mean));
    layer->setProgressive(true);
    QVERIFY(buildUpTo(*layer, afterFirst, "750 x 600"));
    QTRY_VERIFY_WITH_TIMEOUT(!layer->tiles().hasOutdated(), generous);
    layer->cancelOverviews();
    QCOMPARE(stateOf(*layer), State::None);
    QCOMPARE(layer->getOverviews(), QString());
    QVERIFY(layer->wantsOverviews());
    QVERIFY(isAll(painted(*layer, view), mean)); // without waiting for anything
    QCOMPARE(int(layer->getPercentComplete()), 100);
    OpenGate::instance().hold(QString());
    QTRY_COMPARE_WITH_TIMEOUT(entriesOf(folder->path()), QStringList({"a.tif"}), generous);
    QVERIFY(isAll(complete(*layer, {100, 100, 500, 500, 4.0}), mean)); // from the image again
    QCOMPARE(layer->getLastError(), QString());
    layer->setProgressive(true);
    QVERIFY(layer->buildOverviews());
    QVERIFY(finish(*layer));
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif", "a.tif.ovr"}));
}

void OverviewLevelsTest::theSourceMayGoMeanwhile()
{
    const auto layer = openLayer(path("a.tif"));
    const PixelView view{300, 300, 0, 0, 4.0};
    QVERIFY(isAll(complete(*layer, view), mean));
    layer->setProgressive(true);
    QVERIFY(buildUpTo(*layer, afterFirst, "750 x 600"));
    QVERIFY(QFile::remove(path("a.tif")));
    OpenGate::instance().hold(QString());
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(*layer), State::Failed, generous);
    QCOMPARE(layer->getOverviewProgress().reason, QString("the file has changed meanwhile"));
    QVERIFY(isAll(painted(*layer, view), mean));
    QTRY_COMPARE_WITH_TIMEOUT(entriesOf(folder->path()), QStringList(), generous);
}

void OverviewLevelsTest::theSourceMayChangeMeanwhile()
{
    const auto layer = openLayer(path("a.tif"));
    QVERIFY(buildUpTo(*layer, afterSecond, "750 x 600, 375 x 300"));
    QFile changed(path("a.tif"));
    QVERIFY(changed.open(QIODevice::Append) && changed.write("more") == 4);
    changed.close();
    OpenGate::instance().hold(QString());
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(*layer), State::Failed, generous);
    QTRY_COMPARE_WITH_TIMEOUT(entriesOf(folder->path()), QStringList({"a.tif"}), generous);
    QVERIFY(layer->wantsOverviews());
}

/// As at the end of a building, before the layer has them.
void OverviewLevelsTest::overviewsThatComeBesideTheFileChangeNothingInUse()
{
    QVERIFY(QFile::copy(path("a.tif"), path("b.tif")));
    {
        const Dataset dataset(GDALOpen(qPrintable(path("b.tif")), GA_ReadOnly));
        int half = 2;
        QVERIFY(GDALBuildOverviews(dataset.get(), "AVERAGE", 1, &half, 0, nullptr, nullptr,
                                   nullptr) == CE_None);
    }
    QString error;
    const auto plain = RasterSource::open(path("a.tif"), &error);
    QVERIFY2(plain, qPrintable(error));
    const auto source =
        RasterSource::openAgain(*plain, OverviewFile::hold(path("b.tif.ovr")), &error);
    QVERIFY2(source, qPrintable(error));
    QVERIFY(QFile::copy(path("b.tif.ovr"), path("a.tif.ovr")));
    const auto first = source->acquire(&error); // was open before
    const auto second = source->acquire(&error);
    QVERIFY2(first && second, qPrintable(error));
    QCOMPARE(first->overviewCount(), 1);
    QCOMPARE(second->overviewCount(), 1);
}

void OverviewLevelsTest::theLayerMayGoMeanwhile()
{
    auto layer = openLayer(path("a.tif"));
    QVERIFY(buildUpTo(*layer, afterFirst, "750 x 600"));
    PixelView{300, 300, 0, 0, 4.0}.set(*layer); // with reads under way
    layer.reset();
    OpenGate::instance().hold(QString());
    QTRY_COMPARE_WITH_TIMEOUT(entriesOf(folder->path()), QStringList({"a.tif"}), generous);
}

void OverviewLevelsTest::aHiddenLayerReadsNothing()
{
    const auto layer = openLayer(path("a.tif"));
    const PixelView view{300, 300, 0, 0, 4.0};
    layer->setVisible(false);
    view.set(*layer);
    QCOMPARE(int(layer->getPercentComplete()), 100);
    QCOMPARE(layer->tiles().bytes(), qint64{0});
    layer->setVisible(true);
    QVERIFY(isAll(complete(*layer, view), mean));
    layer->setProgressive(true);
    layer->setVisible(false);
    QVERIFY(buildUpTo(*layer, afterFirst, "750 x 600"));
    QCOMPARE(int(layer->getPercentComplete()), 100); // nothing is asked for
    layer->setVisible(true);
    painted(*layer, view); // which asks
    QTRY_VERIFY_WITH_TIMEOUT(isAll(painted(*layer, view), mean), generous);
    QVERIFY(finish(*layer));
}

void OverviewLevelsTest::aTurnedImageHasThemInTheCache()
{
    RasterRecipe turned = image();
    turned.transform = {1000.0, 2.0, 0.5, 5000.0, 0.5, -2.0};
    QVERIFY(makeRaster(path("turned.tif"), turned));
    const auto layer = openLayer(path("turned.tif"));
    const QSize size = layer->getSize();
    const PixelView middle{64, 64, size.width() / 2 - 128, size.height() / 2 - 128, 4.0};
    const QImage corner = complete(*layer, {64, 64, 0, 0, 4.0});
    QCOMPARE(corner.pixelColor(0, 0).alpha(), 0);
    layer->setProgressive(true);
    QVERIFY(layer->wantsOverviews());
    QVERIFY(layer->buildOverviews());
    QVERIFY(finish(*layer));
    QCOMPARE(layer->getOverviewProgress().folder, OverviewStore::folder());
    QVERIFY(!entriesOf(folder->path()).contains("turned.tif.ovr"));
    QVERIFY(paintOver(path("turned.tif"), 200.0));
    const auto again = openLayer(path("turned.tif"));
    QCOMPARE(again->getSize(), size);
    QVERIFY(again->getOverviews().startsWith(
        QString("%1 x %2, ").arg((size.width() + 1) / 2).arg((size.height() + 1) / 2)));
    QVERIFY(!again->wantsOverviews());
    const int read = complete(*again, middle).pixelColor(32, 32).red();
    QVERIFY2(qAbs(read - mean) < 20, qPrintable(QString::number(read)));
    QCOMPARE(complete(*again, {64, 64, 0, 0, 4.0}).pixelColor(0, 0).alpha(), 0);
    QCOMPARE(complete(*again, {8, 8, size.width() / 2, size.height() / 2}).pixelColor(4, 4).red(),
             200);
}

void OverviewLevelsTest::aPartOfAFileHasThemInTheCache()
{
    const QString part = "GTIFF_DIR:1:" + path("a.tif");
    const auto layer = openLayer(part);
    QVERIFY2(layer->isValid(), qPrintable(layer->getLastError()));
    QVERIFY(layer->wantsOverviews());
    QVERIFY(layer->buildOverviews());
    QVERIFY(finish(*layer));
    QCOMPARE(layer->getOverviewProgress().folder, OverviewStore::folder());
    QCOMPARE(entriesOf(folder->path()), QStringList({"a.tif"}));
    QCOMPARE(openLayer(part)->getOverviews(), QString("750 x 600, 375 x 300, 188 x 150"));
    QCOMPARE(openLayer(path("a.tif"))->getOverviews(), QString()); // which is not that part
    QFile changed(path("a.tif"));
    QVERIFY(changed.open(QIODevice::ReadWrite));
    QVERIFY(changed.setFileTime(QDateTime::currentDateTime().addSecs(5),
                                QFileDevice::FileModificationTime));
    changed.close();
    QCOMPARE(openLayer(part)->getOverviews(), QString());
}

int main(int argc, char** argv)
{
    OpenGate::instance(); // before GDAL's own drivers
    Application application(argc, argv, "Overview Levels Test");
    OverviewLevelsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "OverviewLevelsTest.moc"
