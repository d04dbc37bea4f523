#pragma once

#include <QString>

namespace Corvane::Map {

/// Puts the pages of one TIFF file behind those of another, as they are, compressed. Both are of this
/// machine's byte order and both classic or both BigTIFF. The pages are on the disk before anything
/// leads to them: whoever has the file open, or opens it meanwhile, finds it whole at any time, before
/// with the old pages and then with all, and a power cut leaves either. False with the reason in error.
/// Any thread; takes as long as the copying.
bool appendPages(const QString& target, const QString& source, QString* error);

} // namespace Corvane::Map
