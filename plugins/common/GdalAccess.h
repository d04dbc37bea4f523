#pragma once

#include <gdal.h>
#include <ogr_srs_api.h>

#include <QString>

#include <memory>

class QDir;
class QDomNode;

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
/// Whether what GDAL says of a remote source may pass by itself: no answer, or none for now.
bool mayPass(const QString& error);
/// Has GDAL forget what it found out about a remote source, a failure among it.
void forgetRemote(const QString& name);
/// The name that GDAL opens: URLs go through its virtual file systems.
QString gdalName(const QString& dataSource);

/// The source that a document's layer element names, where the base class would lose it, which looks
/// for relative files: what only GDAL understands, and a relative one that is missing, which keeps the
/// name that it would have. Empty for others.
QString nameForGdal(const QDomNode& element, const QDir& baseDir);

/// What a coordinate system is called and its EPSG code, 0 where it has none.
struct SystemName
{
    QString name;
    QString wkt;
    int epsg = 0;
};
/// system may be null: all empty then. Any thread.
SystemName nameOf(OGRSpatialReferenceH system);

/// An open dataset, read-only; null with the reason in error. flags: GDAL_OF_RASTER or
/// GDAL_OF_VECTOR. options may be null. Any thread; may take long.
DatasetPointer openDataset(const QString& name, unsigned int flags, const char* const* options,
                           bool remote, QString* error);

} // namespace Corvane::Map
