#pragma once

#include <plugins/common/SourceHealth.h>

#include <corvane/map/ILayerSource.h>

#include <QString>

namespace Corvane::Map {

class OpeningRetry;

/// "server.org:8080" of a URL, also behind GDAL's names for it; the bucket of an object store. Any
/// thread.
QString hostOf(const QString& dataSource);

/// What to tell of a remote source that is not open.
SourceReport reportClosed(const QString& dataSource, bool isOpening, const OpeningRetry& retry,
                          const QString& reason);
/// What to tell of one that is open. showsStale: what lay on disk stands for what it fails to give.
SourceReport reportOpen(const QString& dataSource, const SourceHealth::Report& health,
                        bool showsStale);

/// Whether it makes sense to ask again by itself after an answer with this status; 0 without one.
bool isPassing(int status);

} // namespace Corvane::Map
