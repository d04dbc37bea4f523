#include <corvane/map/RasterLayer.h>

namespace Corvane::Map {

RasterLayer::RasterLayer(IRendererClient* client) : Layer(client) {}

RasterLayer::~RasterLayer() = default;

QString RasterLayer::colorSpaceToString()
{
    switch (getColorSpace()) {
    case ColorSpace::Rgb:
        return QStringLiteral("RGB");
    case ColorSpace::Greyscale:
        return QStringLiteral("Greyscale");
    case ColorSpace::Multiband:
        return QStringLiteral("Multiband");
    case ColorSpace::Unknown:
        break;
    }
    return QStringLiteral("Unknown");
}

} // namespace Corvane::Map
