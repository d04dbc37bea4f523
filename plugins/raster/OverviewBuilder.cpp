#include <plugins/raster/OverviewBuilder.h>

#include <plugins/common/GdalAccess.h>
#include <plugins/common/PoolActivity.h>
#include <plugins/raster/GdalHandlePool.h>
#include <plugins/raster/MaskedCopy.h>
#include <plugins/raster/OverviewPlace.h>
#include <plugins/raster/RasterFacts.h>
#include <plugins/raster/TiffPages.h>

#include <corvane/core/Application.h>
#include <corvane/core/Integer.h>

#include <cpl_conv.h>
#include <gdal_utils.h>

#include <QCoreApplication>
#include <QFile>
#include <QSettings>

#include <algorithm>
#include <vector>

namespace Corvane::Map {

namespace {

constexpr int coarsestSide = 256; // pixels of the last overview, the longer side at the most
constexpr int usualCacheMegabytes = 10240;
constexpr qint64 mostClassicBytes = qint64{1}
                                    << 31; // of pixels that surely fit into a classic TIFF

/// Options of GDAL for this thread alone, while it lives.
class ThreadOptions
{
public:
    ThreadOptions() = default;
    ~ThreadOptions()
    {
        for (const char* const name : names) {
            CPLSetThreadLocalConfigOption(name, nullptr);
        }
    }
    ThreadOptions(const ThreadOptions&) = delete;
    ThreadOptions& operator=(const ThreadOptions&) = delete;

    void set(const char* name, const char* value)
    {
        CPLSetThreadLocalConfigOption(name, value);
        names.push_back(name);
    }

private:
    std::vector<const char*> names;
};

// Pages of several files come into one, so all are of one kind.
void setOptions(ThreadOptions& options, const OverviewOrder& order)
{
    options.set("GDAL_NUM_THREADS", "1");
    options.set("GDAL_TIFF_OVR_BLOCKSIZE", "256");
    options.set("BIGTIFF_OVERVIEW", order.fullBytes > mostClassicBytes ? "YES" : "NO");
    options.set("INTERLEAVE_OVERVIEW", "PIXEL");
    options.set("COMPRESS_OVERVIEW", order.jpeg ? "JPEG" : "LZW");
    if (order.jpeg) {
        options.set("PHOTOMETRIC_OVERVIEW", "YCBCR");
    } else if (order.integers) {
        options.set("PREDICTOR_OVERVIEW", "2");
    }
}

int levelsOf(const QSize& size)
{
    int levels = 1;
    while (std::max(size.width(), size.height()) >> levels > coarsestSide) {
        ++levels;
    }
    return levels;
}

/// Each level takes a quarter of the time of the one before.
class Progress
{
public:
    Progress(OverviewMeter* meterToSet, const std::atomic<bool>* abandonedFlag, int levels)
        : meter(meterToSet),
          abandoned(abandonedFlag)
    {
        double next = 1.0;
        for (int i = 0; i < levels; ++i) {
            all += next;
            next /= 4.0;
        }
    }
    bool isStopped() const { return *abandoned || PoolActivity::isEnding(); }
    void levelDone()
    {
        done += weight;
        weight /= 4.0;
    }
    // Called by GDAL after each piece.
    static int note(double part, const char*, void* progress)
    {
        auto* const self = static_cast<Progress*>(progress);
        const double share = (self->done + part * self->weight) / self->all;
        self->meter->percent = std::clamp(Util::truncateToInt(share * 100.0), 0, 100);
        return self->isStopped() ? FALSE : TRUE;
    }

private:
    OverviewMeter* meter;               // not owned
    const std::atomic<bool>* abandoned; // not owned
    double all = 0.0;
    double done = 0.0;
    double weight = 1.0; // of the level that is made
};

// The image is only read: GDAL writes the overviews of a view of it beside that. Empty with the reason
// in error.
QString writeView(const OverviewOrder& order, const OverviewPlace& place, QString* error)
{
    const GdalErrors errors;
    const OverviewOwner& owner = order.owner;
    const QString name = owner.part.isEmpty() ? owner.file : owner.part;
    DatasetPointer source = openRasterDataset(name, false, error);
    if (source && owner.isWarped) {
        const QString northUp = place.workFile(QStringLiteral("north-up.vrt"));
        const bool isMade = warpToNorthUp(source.get(), northUp) != nullptr;
        source = isMade ? openRasterDataset(northUp, false, error) : DatasetPointer();
    }
    if (!source) {
        *error = error->isEmpty() ? errors.text() : *error;
        return QString();
    }
    const QString view = place.workFile(QStringLiteral("view.vrt"));
    // without an option a view of a view is a copy of that, and one that is turned gets no file
    const char* arguments[] = {"-of", "VRT", "-norat", nullptr};
    GDALTranslateOptions* const options =
        GDALTranslateOptionsNew(const_cast<char**>(arguments), nullptr);
    int usageError = 0;
    const DatasetPointer written(
        GDALTranslate(view.toUtf8().constData(), source.get(), options, &usageError));
    GDALTranslateOptionsFree(options);
    *error = written ? QString() : errors.text();
    return written ? view : QString();
}

// Makes a file of half the size, NAME.ovr, of a file that is only read.
bool halve(const QString& name, const OverviewOrder& order, Progress& progress, QString* error)
{
    const GdalErrors errors;
    const DatasetPointer dataset = openRasterDataset(name, false, error);
    if (!dataset) {
        return false;
    }
    int half = 2;
    const bool made = GDALBuildOverviews(dataset.get(), order.nearest ? "NEAREST" : "AVERAGE", 1,
                                         &half, 0, nullptr, &Progress::note, &progress) == CE_None;
    if (!made) {
        *error = errors.text();
    }
    return made;
}

/// Puts one level after the other into one file.
class Levels
{
public:
    Levels(const OverviewPlace& place, const QString& view)
        : file(place.workFile(QStringLiteral("overviews.tif"))),
          image(view),
          last(view),
          isMasked(hasMask(view)),
          folder(place)
    {
    }

    /// The next level; false with the reason in error.
    bool add(const OverviewOrder& order, Progress& progress, QString* error)
    {
        const QString source = nextSource();
        if ((source != last && !writeMaskedCopy(last, image, source, error)) ||
            !halve(source, order, progress, error) || progress.isStopped())
        {
            return false;
        }
        const QString made = source + QStringLiteral(".ovr");
        const QString level = folder.workFile(QStringLiteral("level%1.tif").arg(++count));
        const bool isFirst = count == 1;
        const QString name = isFirst ? file : level;
        if (!QFile::rename(made, name)) {
            *error =
                QCoreApplication::translate("OverviewBuilder", "%1 cannot be written").arg(name);
            return false;
        }
        if (!isFirst && !appendPages(file, level, error)) {
            return false;
        }
        if (count > 2) {
            QFile::remove(last);
        }
        last = name;
        return true;
    }

    const QString file;

private:
    // The first level is made of the image itself, which has its mask.
    QString nextSource() const
    {
        const bool lacksMask = isMasked && count > 0;
        return lacksMask ? folder.workFile(QStringLiteral("masked%1.vrt").arg(count)) : last;
    }

    const QString image;
    QString last; // of which the next one is made
    const bool isMasked;
    const OverviewPlace& folder;
    int count = 0;
};

} // namespace

OverviewOrder OverviewOrder::of(const OverviewOwner& owner, const RasterFacts& facts)
{
    OverviewOrder order;
    order.owner = owner;
    order.size = facts.size;
    order.fullBytes = qint64{facts.size.width()} * facts.size.height() * facts.pixelBytes();
    order.nearest = !facts.palette.isEmpty();
    const auto isByte = [](const BandFacts& band) { return band.type == GDT_Byte; };
    const auto isShort = [](const BandFacts& band) {
        return band.type == GDT_Byte || band.type == GDT_UInt16 || band.type == GDT_Int16;
    };
    order.jpeg = !owner.isWarped && facts.bands.size() == 3 &&
                 facts.compression.contains(QLatin1String("JPEG")) &&
                 std::all_of(facts.bands.begin(), facts.bands.end(), isByte);
    order.integers = std::all_of(facts.bands.begin(), facts.bands.end(), isShort);
    if (Application* const application = Application::instance()) {
        const QSettings& settings = *application->getSettings();
        order.mayLieBeside = settings.value("Plugins/Raster/OverviewsBeside", true).toBool();
        order.mostCacheBytes =
            settings.value("Plugins/Raster/OverviewCacheMB", usualCacheMegabytes).toLongLong()
            << 20;
    }
    return order;
}

// On the background thread.
std::shared_ptr<BuiltOverviews> buildOverviews(const OverviewOrder& order, OverviewMeter& meter,
                                               const std::atomic<bool>& abandoned, QString* error)
{
    setUpGdal();
    const int levelCount = levelsOf(order.size);
    Progress progress(&meter, &abandoned, levelCount);
    if (progress.isStopped()) {
        return nullptr; // cancelled while it waited for its turn
    }
    const QString identity = OverviewStore::nameFor(order.owner);
    const std::unique_ptr<OverviewPlace> place = OverviewPlace::find(order, error);
    const QString view = place ? writeView(order, *place, error) : QString();
    if (view.isEmpty()) {
        return nullptr;
    }
    ThreadOptions options;
    setOptions(options, order);
    Levels levels(*place, view);
    OverviewFile held;
    for (int level = 1; level <= levelCount; ++level) {
        if (!levels.add(order, progress, error)) {
            return nullptr;
        }
        if (OverviewStore::nameFor(order.owner) != identity) {
            *error =
                QCoreApplication::translate("OverviewBuilder", "the file has changed meanwhile");
            return nullptr;
        }
        progress.levelDone();
        held = held.isEmpty() ? OverviewFile::hold(levels.file) : held;
        if (meter.levelCame && !held.isEmpty()) {
            meter.levelCame(held);
        }
    }
    if (progress.isStopped() || !place->put(levels.file, order, error)) {
        return nullptr;
    }
    return std::make_shared<BuiltOverviews>(BuiltOverviews{place->target});
}

} // namespace Corvane::Map
