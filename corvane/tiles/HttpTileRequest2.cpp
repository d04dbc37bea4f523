#include <corvane/tiles/HttpTileRequest2.h>

#include <utility>

namespace Corvane::Map {

// A parent would delete the request while its reply is on the way.
// TileRequest2Test::aParentIsIgnored holds it.
HttpTileRequest2::HttpTileRequest2(QUrl requestUrl, QObject*) : url(std::move(requestUrl)) {}

HttpTileRequest2::~HttpTileRequest2() = default;

QUrl& HttpTileRequest2::getUrl()
{
    return url;
}

void HttpTileRequest2::setUrl(QUrl newUrl)
{
    url = std::move(newUrl);
}

} // namespace Corvane::Map
