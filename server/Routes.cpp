#include <server/Routes.h>

#include <server/Exchange.h>

namespace Corvane::Server {

namespace {

const QLatin1String discoveryPath("/tavro-krs/discovery.dll");
const QLatin1String searchPath("/tavro-orivex/catalog/content/search.json");
const QLatin1String imagePath("/tavro-krs/tavro/raxion");
// Clients of old servers send the question mark packed, as part of the path, and items behind it.
const QLatin1String oldImagePath("/zwtp/raxion.dll?image");
const QLatin1String oldImageFile("/zwtp/raxion.dll");
const QLatin1String tilesPath("/tiles/");

} // namespace

Routes::Routes(ImageFolder& images, Pictures& pictures, const ServerDescription& description)
    : discovery(images, description),
      search(images),
      image(images, pictures),
      tiles(images, pictures)
{
}

Reply Routes::get(const Request& request) const
{
    const QString& path = request.path;
    if (path == discoveryPath) {
        return discovery.answer(request);
    }
    if (path == imagePath) {
        return image.answer(request.item("request"), request);
    }
    if (path == oldImagePath ||
        (path == oldImageFile && request.query.hasQueryItem(QStringLiteral("image"))))
    {
        return image.answer(QStringLiteral("image"), request);
    }
    if (path.startsWith(tilesPath)) {
        return tiles.answer(request);
    }
    return Reply::failure(404, QStringLiteral("there is nothing at \"%1\"").arg(path));
}

Reply Routes::post(const Request& request) const
{
    return request.path == searchPath
               ? search.answer(request)
               : Reply::failure(404,
                                QStringLiteral("there is nothing at \"%1\"").arg(request.path));
}

} // namespace Corvane::Server
