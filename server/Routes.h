#pragma once

#include <server/DiscoveryInterface.h>
#include <server/ImageInterface.h>
#include <server/SearchInterface.h>
#include <server/TileInterface.h>

namespace Corvane::Server {

class ImageFolder;
class Pictures;
struct Reply;
struct Request;

/// Which interface answers what. Any thread.
class Routes
{
public:
    /// None is owned; all outlive it.
    Routes(ImageFolder& images, Pictures& pictures, const ServerDescription& description);

    Reply get(const Request& request) const;
    Reply post(const Request& request) const;

private:
    DiscoveryInterface discovery;
    SearchInterface search;
    ImageInterface image;
    TileInterface tiles;
};

} // namespace Corvane::Server
