#include <plugins/raster/OverviewBuilding.h>

#include <plugins/raster/RasterSource.h>

#include <mutex>
#include <utility>

namespace Corvane::Map {

struct OverviewBuilding::News
{
    OverviewMeter meter;
    std::weak_ptr<Job> job;
    std::mutex mutex;                     // guards latest
    std::shared_ptr<RasterSource> latest; // null once the layer has it

    // On the background thread. Without a source that reads it the level waits for the next one.
    void takeLevel(const RasterSource& source, const OverviewFile& file)
    {
        QString error;
        std::shared_ptr<RasterSource> opened = RasterSource::openAgain(source, file, &error);
        const std::shared_ptr<Job> running = job.lock();
        if (!opened || !running) {
            return;
        }
        {
            const std::lock_guard<std::mutex> guard(mutex);
            latest.swap(opened);
        }
        running->tellMeanwhile();
    }
};

OverviewBuilding::OverviewBuilding(std::shared_ptr<RasterSource> plainSource,
                                   std::function<void()> tell)
    : plain(std::move(plainSource)),
      news(std::make_shared<News>())
{
    const auto work = [source = plain, share = news,
                       order = OverviewOrder::of(plain->overviewOwner(), plain->facts())](
                          QString* error, const std::atomic<bool>& abandoned) {
        const auto built = buildOverviews(order, share->meter, abandoned, error);
        if (!built) {
            return std::shared_ptr<End>();
        }
        QString unopened; // told when the layer opens it by itself
        auto end = std::make_shared<End>();
        end->file = built->file;
        end->source = RasterSource::openAgain(*source, {built->file, nullptr}, &unopened);
        return end;
    };
    news->meter.levelCame = [source = plain, share = news.get()](const OverviewFile& file) {
        share->takeLevel(*source, file);
    };
    job = std::make_shared<Job>(work, std::move(tell));
    news->job = job;
    job->startTelling();
    job->startInBackground();
}

OverviewBuilding::~OverviewBuilding()
{
    job->abandon();
}

int OverviewBuilding::percent() const
{
    return news->meter.percent;
}

std::shared_ptr<RasterSource> OverviewBuilding::takeSource()
{
    const std::lock_guard<std::mutex> guard(news->mutex);
    return std::exchange(news->latest, nullptr);
}

bool OverviewBuilding::isOver()
{
    return job->waitFor(0);
}

OverviewBuilding::End OverviewBuilding::end()
{
    QString failure;
    const std::shared_ptr<End> made = job->result(&failure);
    return made ? *made : End{QString(), nullptr, failure};
}

} // namespace Corvane::Map
