#pragma once

#include <plugins/common/GdalAccess.h>

namespace Corvane::Map {

/// An open raster, read-only; null with the reason in error. Any thread; may take long.
DatasetPointer openRasterDataset(const QString& name, bool remote, QString* error);

/// The size of GDAL's block cache follows the sources that are open: small for sources in blocks
/// that make tiles, several reads' worth for the others. One of these stands for one open source. Any thread.
class BlockCacheShare
{
public:
    /// The bytes that one read wants to find again; 0 where tiles are made of whole blocks.
    explicit BlockCacheShare(qint64 bytes);
    ~BlockCacheShare();
    BlockCacheShare(const BlockCacheShare&) = delete;
    BlockCacheShare& operator=(const BlockCacheShare&) = delete;

private:
    qint64 wanted;
};

} // namespace Corvane::Map
