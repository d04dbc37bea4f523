#include <plugins/webtiles/TilePreset.h>
#include <plugins/webtiles/TileTemplate.h>
#include <plugins/webtiles/WebTileOffer.h>
#include <plugins/webtiles/WmtsCapabilities.h>

#include <cstddef>
#include <cstdint>

using namespace Corvane::Map;

namespace {

void readTemplate(const QString& text, const QStringList& hosts)
{
    QString error;
    if (auto tiles = TileTemplate::parse(text, hosts, &error)) {
        tiles->urlOf({22, 4194303, 4194303});
        tiles->setZoomNames({QStringLiteral("a"), QString()});
        tiles->urlOf({1, 1, 0});
    }
}

} // namespace

// Presets, capabilities of tile servers and URLs with places.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString text = QString::fromUtf8(bytes);
    QString error;
    if (const auto offer = readPreset(bytes, &error)) {
        readTemplate(offer->url, offer->hosts);
    }
    if (const auto offer = readCapabilities(bytes, QString(), &error)) {
        readTemplate(offer->url, offer->hosts);
    }
    readTemplate(text, {QStringLiteral("a"), QStringLiteral("b")});
    return 0;
}
