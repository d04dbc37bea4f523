#pragma once

#include <QString>

namespace Corvane::Map {

/// The file dialog filters of the vector files that OGR reads here: "description (*.a *.b)", joined
/// by ";;" and sorted. Extensions that images have too are left to them, save those that are chiefly
/// of vector files; *.xml is left to map documents.
QString vectorReadFilter();

} // namespace Corvane::Map
