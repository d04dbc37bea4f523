#include <tests/plugins/TestVectors.h>

#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>

#include <memory>

namespace Corvane::Tests {

namespace {

struct CloseFile
{
    void operator()(GDALDatasetH dataset) const { GDALClose(dataset); }
};
using File = std::unique_ptr<void, CloseFile>;

File openFile(const QString& path, const VectorRecipe& recipe)
{
    if (recipe.append) {
        return File(GDALOpenEx(path.toUtf8().constData(), GDAL_OF_VECTOR | GDAL_OF_UPDATE, nullptr,
                               nullptr, nullptr));
    }
    return File(GDALCreate(GDALGetDriverByName(recipe.driver), path.toUtf8().constData(), 0, 0, 0,
                           GDT_Unknown, nullptr));
}

bool addFeature(OGRLayerH layer, const FeatureRecipe& recipe)
{
    OGRFeatureH feature = OGR_F_Create(OGR_L_GetLayerDefn(layer));
    for (int i = 0; i < recipe.values.size(); ++i) {
        OGR_F_SetFieldString(feature, i, recipe.values[i].toUtf8().constData());
    }
    bool ok = true;
    if (!recipe.wkt.isEmpty()) {
        QByteArray text = recipe.wkt.toUtf8();
        char* position = text.data();
        OGRGeometryH geometry = nullptr;
        ok = OGR_G_CreateFromWkt(&position, nullptr, &geometry) == OGRERR_NONE;
        OGR_F_SetGeometryDirectly(feature, geometry);
    }
    if (!recipe.line.empty()) {
        OGRGeometryH geometry = OGR_G_CreateGeometry(wkbLineString);
        const auto count = static_cast<int>(recipe.line.size());
        OGR_G_SetPointCount(geometry, count); // room that grows point by point takes long
        for (int i = 0; i < count; ++i) {
            const auto& [x, y] = recipe.line[static_cast<std::size_t>(i)];
            OGR_G_SetPoint_2D(geometry, i, x, y);
        }
        OGR_F_SetGeometryDirectly(feature, geometry);
    }
    ok = ok && OGR_L_CreateFeature(layer, feature) == OGRERR_NONE;
    OGR_F_Destroy(feature);
    return ok;
}

} // namespace

bool makeVectors(const QString& path, const VectorRecipe& recipe)
{
    GDALAllRegister();
    const File file = openFile(path, recipe);
    if (!file) {
        return false;
    }
    OGRSpatialReferenceH system = nullptr;
    if (recipe.epsg > 0) {
        system = OSRNewSpatialReference(nullptr);
        OSRImportFromEPSG(system, recipe.epsg);
        OSRSetAxisMappingStrategy(system, OAMS_TRADITIONAL_GIS_ORDER);
    }
    std::vector<QByteArray> texts;
    for (const QString& option : recipe.layerOptions) {
        texts.push_back(option.toUtf8());
    }
    std::vector<char*> options;
    for (QByteArray& text : texts) {
        options.push_back(text.data());
    }
    options.push_back(nullptr);
    OGRLayerH layer = GDALDatasetCreateLayer(file.get(), recipe.layer.toUtf8().constData(), system,
                                             recipe.type, options.data());
    if (system) {
        OSRDestroySpatialReference(system);
    }
    bool ok = layer != nullptr;
    for (const QString& name : recipe.fields) {
        OGRFieldDefnH field = OGR_Fld_Create(name.toUtf8().constData(), OFTString);
        ok = ok && OGR_L_CreateField(layer, field, TRUE) == OGRERR_NONE;
        OGR_Fld_Destroy(field);
    }
    for (const FeatureRecipe& feature : recipe.features) {
        ok = ok && addFeature(layer, feature);
    }
    return ok;
}

VectorRecipe shapes(const QStringList& wkts)
{
    VectorRecipe recipe;
    char name = 'a';
    for (const QString& wkt : wkts) {
        recipe.features.push_back({wkt, {QString(QLatin1Char(name++))}, {}});
    }
    return recipe;
}

} // namespace Corvane::Tests
