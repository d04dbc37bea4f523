#include <corvane/map/GroupLayer.h>

namespace Corvane::Map {

GroupLayer::GroupLayer() : Layer(nullptr) {}

GroupLayer::~GroupLayer() = default;

QVector<Layer*>& GroupLayer::layers()
{
    return members;
}

} // namespace Corvane::Map
