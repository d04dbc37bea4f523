#pragma once

#include <QString>

#include <list>
#include <memory>
#include <mutex>

namespace Corvane::Map {
class RasterSource;
}

namespace Corvane::Server {

struct PublishedImage;

/// The sources of the images that were asked for last; the others are closed. Any thread.
class OpenImages
{
public:
    explicit OpenImages(int most);
    ~OpenImages();

    /// Open; null with the reason in error. May take long.
    std::shared_ptr<Map::RasterSource> get(const PublishedImage& image, QString* error);

private:
    struct Entry
    {
        QString path;
        QString stamp;
        std::shared_ptr<Map::RasterSource> source;
    };

    std::shared_ptr<Map::RasterSource> find(const PublishedImage& image);
    void keep(const PublishedImage& image, const std::shared_ptr<Map::RasterSource>& source);

    const int most;
    std::mutex mutex;         // guards entries
    std::list<Entry> entries; // used last at the front
};

} // namespace Corvane::Server
