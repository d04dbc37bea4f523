#pragma once

#include <gdal.h>

#include <QString>

#include <memory>

namespace Corvane::Map {

/// Registers the drivers and sets the options of the process, once. Any thread.
void setUpGdal();

/// Closes a dataset.
struct DatasetCloser
{
    void operator()(GDALDatasetH dataset) const { GDALClose(dataset); }
};
using DatasetPointer = std::unique_ptr<void, DatasetCloser>;

/// Collects what GDAL says on this thread while the object lives, instead of printing it.
class GdalErrors
{
public:
    GdalErrors();
    ~GdalErrors();
    GdalErrors(const GdalErrors&) = delete;
    GdalErrors& operator=(const GdalErrors&) = delete;

    /// The first error, else the last warning, else empty.
    QString text() const;

private:
    static void collect(CPLErr kind, CPLErrorNum number, const char* message);

    QString error;
    QString warning;
};

/// Whether the text names a file of this machine, as opposed to a URL or an archive member.
bool isPlainFile(const QString& dataSource);
/// Whether reads go over the network.
bool isRemote(const QString& dataSource);
/// "file", "http" or "s3".
QString protocolOf(const QString& dataSource);
/// The name that GDAL opens: URLs go through its virtual file systems.
QString gdalName(const QString& dataSource);

/// An open dataset, read-only; null with the reason in error. Any thread; may take long.
DatasetPointer openDataset(const QString& name, bool remote, QString* error);

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
