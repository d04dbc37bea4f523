#pragma once

#include <memory>

class QString;

namespace Corvane::Server {

class ImageFolder;
class Pictures;
struct PublishedImage;
struct Reply;
struct Request;

/// Tiles of images in their own grids. "/tiles/PATH" describes the grid, in JSON;
/// "/tiles/PATH/Z/X/Y.png", or ".jpg" for opaque images, is a tile. Level 0 is the coarsest and
/// fits into one tile; tiles count from the top left, and the last ones end where the image ends.
/// Any thread.
class TileInterface
{
public:
    /// Neither is owned; both outlive it.
    TileInterface(ImageFolder& images, Pictures& pictures);

    /// The path of the request begins with "/tiles/".
    Reply answer(const Request& request) const;

private:
    Reply grid(const PublishedImage& image) const;
    Reply tile(const Request& request, const QString& path) const;

    ImageFolder& images;
    Pictures& pictures;
};

} // namespace Corvane::Server
