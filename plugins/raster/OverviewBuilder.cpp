#include <plugins/raster/OverviewBuilder.h>

#include <plugins/common/GdalAccess.h>
#include <plugins/common/PoolActivity.h>
#include <plugins/raster/OverviewStore.h>
#include <plugins/raster/RasterFacts.h>

#include <corvane/core/Application.h>
#include <corvane/core/Integer.h>

#include <cpl_conv.h>
#include <gdal_utils.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStorageInfo>
#include <QSysInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>
#include <vector>

#include <unistd.h>

namespace Corvane::Map {

namespace {

constexpr int coarsestSide = 256; // pixels of the last overview, the longer side at the most
constexpr int usualCacheMegabytes = 10240;
const QLatin1String workPrefix(".overviews-");

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

void setOptions(ThreadOptions& options, const OverviewOrder& order)
{
    options.set("GDAL_NUM_THREADS", "1");
    options.set("GDAL_TIFF_OVR_BLOCKSIZE", "256");
    options.set("BIGTIFF_OVERVIEW", "IF_SAFER");
    options.set("INTERLEAVE_OVERVIEW", "PIXEL");
    options.set("COMPRESS_OVERVIEW", order.jpeg ? "JPEG" : "LZW");
    if (order.jpeg) {
        options.set("PHOTOMETRIC_OVERVIEW", "YCBCR");
    } else if (order.integers) {
        options.set("PREDICTOR_OVERVIEW", "2");
    }
}

struct Progress
{
    OverviewMeter& meter;
    const std::atomic<bool>& abandoned;

    bool isStopped() const { return abandoned || PoolActivity::isEnding(); }
    // Called by GDAL after each piece.
    static int note(double done, const char*, void* self)
    {
        auto& progress = *static_cast<Progress*>(self);
        progress.meter.percent = std::clamp(Util::truncateToInt(done * 100.0), 0, 100);
        return progress.isStopped() ? FALSE : TRUE;
    }
};

// "…-HOST-PROCESS-XXXXXX": whose process is gone left it behind.
QString workPattern()
{
    return workPrefix + QSysInfo::machineHostName() + QLatin1Char('-') +
           QString::number(::getpid()) + QStringLiteral("-XXXXXX");
}

void removeLeftovers(const QDir& folder)
{
    const QString own = workPrefix + QSysInfo::machineHostName() + QLatin1Char('-');
    const QStringList names = folder.entryList({own + QLatin1Char('*')},
                                               QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        const auto process = name.mid(own.size()).section(QLatin1Char('-'), 0, 0).toInt();
        if (process > 0 && ::kill(process, 0) != 0 && errno == ESRCH) {
            QDir(folder.filePath(name)).removeRecursively();
        }
    }
}

// Compressed they take less, and nobody knows how much.
qint64 neededBytes(const OverviewOrder& order)
{
    return order.fullBytes / 3;
}

bool hasRoom(const QString& folder, const OverviewOrder& order)
{
    const QStorageInfo storage(folder);
    return !storage.isValid() || storage.bytesAvailable() > neededBytes(order);
}

/// A folder of our own in one that can be written to, on the same disk.
std::unique_ptr<QTemporaryDir> workIn(const QString& folder, const OverviewOrder& order)
{
    if (!hasRoom(folder, order)) {
        return nullptr;
    }
    removeLeftovers(QDir(folder));
    auto work = std::make_unique<QTemporaryDir>(folder + QLatin1Char('/') + workPattern());
    return work->isValid() ? std::move(work) : nullptr;
}

DatasetPointer viewOf(const OverviewOrder& order, const QString& name, QString* error)
{
    const DatasetPointer source = openDataset(order.file, GDAL_OF_RASTER, nullptr, false, error);
    if (!source) {
        return nullptr;
    }
    const char* arguments[] = {"-of", "VRT", nullptr};
    GDALTranslateOptions* const options =
        GDALTranslateOptionsNew(const_cast<char**>(arguments), nullptr);
    int usageError = 0;
    const DatasetPointer written(
        GDALTranslate(name.toUtf8().constData(), source.get(), options, &usageError));
    GDALTranslateOptionsFree(options);
    return written ? openDataset(name, GDAL_OF_RASTER, nullptr, false, error) : nullptr;
}

std::vector<int> factorsFor(const QSize& size)
{
    std::vector<int> factors;
    for (int factor = 2;
         factors.empty() || std::max(size.width(), size.height()) / (factor / 2) > coarsestSide;
         factor *= 2)
    {
        factors.push_back(factor);
    }
    return factors;
}

// The image is only read: GDAL writes the overviews of a view of it beside that.
bool writeOverviews(const OverviewOrder& order, const QString& view, Progress& progress,
                    QString* error)
{
    const GdalErrors errors;
    ThreadOptions options;
    setOptions(options, order);
    const DatasetPointer dataset = viewOf(order, view, error);
    if (!dataset) {
        *error = error->isEmpty() ? errors.text() : *error;
        return false;
    }
    std::vector<int> factors = factorsFor(order.size);
    const bool built = GDALBuildOverviews(dataset.get(), order.nearest ? "NEAREST" : "AVERAGE",
                                          static_cast<int>(factors.size()), factors.data(), 0,
                                          nullptr, &Progress::note, &progress) == CE_None;
    if (!built) {
        *error = errors.text();
    }
    return built;
}

// On the disk, before it gets its name.
bool flush(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadWrite) && ::fsync(file.handle()) == 0;
}

/// Where they can lie, and a folder to make them in; null where that is nowhere.
std::unique_ptr<QTemporaryDir> findPlace(const OverviewOrder& order, QString* target,
                                         QString* error)
{
    if (order.mayLieBeside) {
        *target = order.file + QStringLiteral(".ovr");
        if (auto work = workIn(QFileInfo(order.file).absolutePath(), order)) {
            return work;
        }
    }
    const QString folder = OverviewStore::folder();
    *target = OverviewStore::nameFor(order.file);
    if (target->isEmpty()) {
        *error = QCoreApplication::translate("OverviewBuilder", "the file does not exist");
        return nullptr;
    }
    QDir().mkpath(folder);
    OverviewStore::tidy(order.mostCacheBytes, QString());
    auto work = workIn(folder, order);
    if (!work) {
        constexpr qint64 megabyte = 1 << 20;
        *error =
            hasRoom(folder, order)
                ? QCoreApplication::translate("OverviewBuilder", "nothing can be written to %1")
                      .arg(folder)
                : QCoreApplication::translate(
                      "OverviewBuilder", "there is no room for overviews: %1 MB are needed in %2")
                      .arg(neededBytes(order) / megabyte + 1)
                      .arg(folder);
    }
    return work;
}

} // namespace

OverviewOrder OverviewOrder::of(const QString& file, const RasterFacts& facts)
{
    OverviewOrder order;
    order.file = file;
    order.size = facts.size;
    order.fullBytes = qint64{facts.size.width()} * facts.size.height() * facts.pixelBytes();
    order.nearest = !facts.palette.isEmpty();
    const auto isByte = [](const BandFacts& band) { return band.type == GDT_Byte; };
    const auto isShort = [](const BandFacts& band) {
        return band.type == GDT_Byte || band.type == GDT_UInt16 || band.type == GDT_Int16;
    };
    order.jpeg = facts.bands.size() == 3 && facts.compression.contains(QLatin1String("JPEG")) &&
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
    Progress progress{meter, abandoned};
    if (progress.isStopped()) {
        return nullptr; // cancelled while it waited for its turn
    }
    QString target;
    const std::unique_ptr<QTemporaryDir> work = findPlace(order, &target, error);
    if (!work) {
        return nullptr;
    }
    const QString view = work->filePath(QStringLiteral("view.vrt"));
    const QString made = view + QStringLiteral(".ovr");
    if (!writeOverviews(order, view, progress, error) || progress.isStopped()) {
        return nullptr;
    }
    const bool inStore = target.startsWith(OverviewStore::folder());
    if (inStore && !OverviewStore::note(target, order.file)) {
        *error = QCoreApplication::translate("OverviewBuilder", "nothing can be written to %1")
                     .arg(OverviewStore::folder());
        return nullptr;
    }
    // somebody else may have made some meanwhile, which are as good
    if (!flush(made) || (!QFile::rename(made, target) && !QFileInfo::exists(target))) {
        *error = QCoreApplication::translate("OverviewBuilder", "%1 cannot be written").arg(target);
        return nullptr;
    }
    if (inStore) {
        OverviewStore::tidy(order.mostCacheBytes, target);
    }
    return std::make_shared<BuiltOverviews>(BuiltOverviews{target});
}

} // namespace Corvane::Map
