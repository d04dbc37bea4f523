#include <plugins/vector/VectorSource.h>

#include <ogr_api.h>

#include <QCoreApplication>

#include <array>
#include <cmath>

namespace Corvane::Map {

namespace {

// A table of texts tells by its column names where the coordinates stand.
constexpr std::array<const char*, 5> tableOptions = {
    "X_POSSIBLE_NAMES=x,lon,long,lng,longitude,easting", "Y_POSSIBLE_NAMES=y,lat,latitude,northing",
    "GEOM_POSSIBLE_NAMES=wkt,geom,geometry,the_geom", "KEEP_GEOM_COLUMNS=YES", nullptr};

bool isTable(const QString& name)
{
    GDALDriverH driver =
        GDALIdentifyDriverEx(name.toUtf8().constData(), GDAL_OF_VECTOR, nullptr, nullptr);
    return driver && qstrcmp(GDALGetDriverShortName(driver), "CSV") == 0;
}

WorldBox extentOf(OGRLayerH layer)
{
    OGREnvelope extent;
    WorldBox box;
    if (OGR_L_GetExtent(layer, &extent, TRUE) == OGRERR_NONE && std::isfinite(extent.MinX) &&
        std::isfinite(extent.MinY) && std::isfinite(extent.MaxX) && std::isfinite(extent.MaxY) &&
        extent.MinX <= extent.MaxX && extent.MinY <= extent.MaxY)
    {
        box.add(extent.MinX, extent.MinY);
        box.add(extent.MaxX, extent.MaxY);
    }
    return box;
}

} // namespace

std::shared_ptr<VectorSource> VectorSource::open(const QString& dataSource,
                                                 const QString& layerName, QString* error)
{
    setUpGdal();
    const QString name = gdalName(dataSource);
    const bool remote = isRemote(dataSource);
    const bool table = !remote && isTable(name);
    std::shared_ptr<VectorSource> source(new VectorSource);
    source->dataset =
        openDataset(name, GDAL_OF_VECTOR, table ? tableOptions.data() : nullptr, remote, error);
    if (!source->dataset) {
        if (remote) {
            forgetRemote(name); // else the next attempt would hear the same without asking
        }
        if (error->isEmpty()) {
            *error = QCoreApplication::translate("VectorSource", "this is no vector source");
        }
        return nullptr;
    }
    if (!source->choose(layerName, error)) {
        return nullptr;
    }
    source->learn();
    return source;
}

bool VectorSource::choose(const QString& layerName, QString* error)
{
    OGRLayerH first = nullptr;
    for (int i = 0; i < GDALDatasetGetLayerCount(dataset.get()); ++i) {
        OGRLayerH layer = GDALDatasetGetLayer(dataset.get(), i);
        if (OGR_L_GetGeomType(layer) == wkbNone) {
            continue;
        }
        const QString name = QString::fromUtf8(OGR_L_GetName(layer));
        known.layerNames.append(name);
        first = first ? first : layer;
        if (!chosen && name == layerName) {
            chosen = layer;
        }
    }
    if (!first) {
        *error = QCoreApplication::translate("VectorSource", "it has no layer with geometry");
        return false;
    }
    // A file that was renamed may have renamed its only layer with it.
    if (!chosen && (layerName.isEmpty() || known.layerNames.size() == 1)) {
        chosen = first;
    }
    if (!chosen) {
        *error =
            QCoreApplication::translate("VectorSource", "it has no layer \"%1\"").arg(layerName);
    }
    return chosen != nullptr;
}

void VectorSource::learn()
{
    const GdalErrors errors; // what a scan has to say comes again when the features are read
    GDALDriverH driver = GDALGetDatasetDriver(dataset.get());
    known.driver = QString::fromUtf8(GDALGetDriverShortName(driver));
    known.format = QString::fromUtf8(GDALGetDriverLongName(driver));
    known.layerName = QString::fromUtf8(OGR_L_GetName(chosen));
    OGRFeatureDefnH definition = OGR_L_GetLayerDefn(chosen);
    for (int i = 0; i < OGR_FD_GetFieldCount(definition); ++i) {
        known.fields.append(
            QString::fromUtf8(OGR_Fld_GetNameRef(OGR_FD_GetFieldDefn(definition, i))));
    }
    known.geometryType = QString::fromUtf8(OGRGeometryTypeToName(OGR_L_GetGeomType(chosen)));
    known.extent = extentOf(chosen);
    known.featureCount = OGR_L_GetFeatureCount(chosen, TRUE);
    const SystemName system = nameOf(OGR_L_GetSpatialRef(chosen));
    known.coordSysName = system.name;
    known.wkt = system.wkt;
    known.epsg = system.epsg;
}

} // namespace Corvane::Map
