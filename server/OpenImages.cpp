#include <server/OpenImages.h>

#include <server/PublishedImage.h>

#include <plugins/raster/RasterSource.h>

#include <algorithm>
#include <utility>

namespace Corvane::Server {

OpenImages::OpenImages(int mostAtOnce) : most(mostAtOnce) {}

OpenImages::~OpenImages() = default;

std::shared_ptr<Map::RasterSource> OpenImages::get(const PublishedImage& image, QString* error)
{
    std::shared_ptr<Map::RasterSource> source = find(image);
    if (!source) {
        source = Map::RasterSource::open(image.file, error);
        if (source) {
            keep(image, source);
        }
    }
    return source;
}

std::shared_ptr<Map::RasterSource> OpenImages::find(const PublishedImage& image)
{
    const std::lock_guard<std::mutex> guard(mutex);
    const auto found = std::find_if(entries.begin(), entries.end(), [&image](const Entry& entry) {
        return entry.path == image.path && entry.stamp == image.stamp;
    });
    if (found == entries.end()) {
        return nullptr;
    }
    entries.splice(entries.begin(), entries, found);
    return found->source;
}

// What goes is closed behind the lock.
void OpenImages::keep(const PublishedImage& image, const std::shared_ptr<Map::RasterSource>& source)
{
    std::list<Entry> gone;
    const std::lock_guard<std::mutex> guard(mutex);
    for (auto entry = entries.begin(); entry != entries.end();) {
        const auto next = std::next(entry);
        if (entry->path == image.path) {
            gone.splice(gone.end(), entries, entry);
        }
        entry = next;
    }
    entries.push_front({image.path, image.stamp, source});
    while (static_cast<int>(entries.size()) > most) {
        gone.splice(gone.end(), entries, std::prev(entries.end()));
    }
}

} // namespace Corvane::Server
