#pragma once

namespace Corvane::Map {

enum LayerType : int
{
    Overlay = 0,
    Raster = 1,
    Vector = 2,
    Background = 4,
    Group = 5,
    Custom = 6
};

} // namespace Corvane::Map
