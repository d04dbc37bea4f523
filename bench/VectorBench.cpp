// corvane-bench-vector FILE [REPS]
//
// A million polygons: the time to read them and the memory they take, the frames while the view
// roams, and complete pictures of a detail, of a part and of all, beside bare painter calls for the
// same visible shapes. Makes FILE, a GeoPackage, where it does not exist.

#include <bench/BenchResult.h>
#include <bench/BenchStage.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/map/VectorLayer.h>
#include <corvane/map/ViewManager.h>

#include <ogr_api.h>
#include <ogr_srs_api.h>
#include <gdal.h>

#include <QFile>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

using namespace Corvane;
using namespace Corvane::Bench;

namespace {

constexpr int side = 1000; // polygons along each side of the world
constexpr int corners = 10;
constexpr double cell = 10.0; // world units
constexpr double originX = 500000.0;
constexpr double originY = 5000000.0;
constexpr double roamStep = 12.0; // pixels
constexpr int roamFrames = 60;

/// The corners of a polygon, each polygon a little different.
QPolygonF polygonAt(int number)
{
    const double middleX = originX + (number % side + 0.5) * cell;
    const double middleY = originY + (number / side + 0.5) * cell;
    QPolygonF polygon;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2.0 * 3.14159265358979 * i / corners;
        const double radius = cell * (0.3 + 0.15 * ((number * 7 + i * 13) % 10) / 10.0);
        polygon.append(
            QPointF(middleX + radius * std::cos(angle), middleY + radius * std::sin(angle)));
    }
    return polygon;
}

void addFeature(OGRLayerH layer, int number)
{
    OGRGeometryH ring = OGR_G_CreateGeometry(wkbLinearRing);
    const QPolygonF polygon = polygonAt(number);
    for (const QPointF& corner : polygon) {
        OGR_G_AddPoint_2D(ring, corner.x(), corner.y());
    }
    OGR_G_CloseRings(ring);
    OGRGeometryH geometry = OGR_G_CreateGeometry(wkbPolygon);
    OGR_G_AddGeometryDirectly(geometry, ring);
    OGRFeatureH feature = OGR_F_Create(OGR_L_GetLayerDefn(layer));
    OGR_F_SetFieldInteger(feature, 0, number);
    OGR_F_SetGeometryDirectly(feature, geometry);
    if (OGR_L_CreateFeature(layer, feature) != OGRERR_NONE) {
        std::fprintf(stderr, "cannot write the polygons\n");
        std::exit(2);
    }
    OGR_F_Destroy(feature);
}

/// In an order that has nothing to do with where they lie.
void makeFile(const QString& file)
{
    const QString partial = file + ".partial.gpkg";
    QFile::remove(partial);
    GDALDatasetH dataset =
        GDALCreate(GDALGetDriverByName("GPKG"), qPrintable(partial), 0, 0, 0, GDT_Unknown, nullptr);
    OGRSpatialReferenceH system = OSRNewSpatialReference(nullptr);
    OSRImportFromEPSG(system, 32633);
    OGRLayerH layer = GDALDatasetCreateLayer(dataset, "polygons", system, wkbPolygon, nullptr);
    OSRDestroySpatialReference(system);
    OGRFieldDefnH field = OGR_Fld_Create("number", OFTInteger);
    OGR_L_CreateField(layer, field, TRUE);
    OGR_Fld_Destroy(field);
    std::vector<int> order(side * side);
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), std::mt19937(1)); // NOLINT: the same each time
    GDALDatasetStartTransaction(dataset, FALSE);
    for (const int number : order) {
        addFeature(layer, number);
    }
    GDALDatasetCommitTransaction(dataset);
    GDALClose(dataset);
    QFile::rename(partial, file);
}

/// Reads every geometry and keeps none.
double readBare(const QString& file)
{
    const Stopwatch watch;
    GDALDatasetH dataset = GDALOpenEx(qPrintable(file), GDAL_OF_VECTOR, nullptr, nullptr, nullptr);
    OGRLayerH layer = GDALDatasetGetLayer(dataset, 0);
    while (OGRFeatureH feature = OGR_L_GetNextFeature(layer)) {
        OGR_F_Destroy(feature);
    }
    GDALClose(dataset);
    return watch.milliseconds();
}

double residentMegabytes()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == "VmRSS:") {
            double kibibytes = 0.0;
            status >> kibibytes;
            return kibibytes / 1024.0;
        }
    }
    return 0.0;
}

QRectF windowOf(double middle, double unitsPerPixel)
{
    const double width = BenchStage::width * unitsPerPixel;
    const double height = BenchStage::height * unitsPerPixel;
    return QRectF(originX + middle * side * cell - width / 2,
                  originY + middle * side * cell + height / 2, width, -height);
}

/// The shapes of a view, chosen beforehand, and one painter call for each.
class BareDrawing
{
public:
    BareDrawing(const QRectF& world, Map::VectorLayer& layer)
        : pen(layer.getPen()),
          brush(layer.getBrush())
    {
        const QRectF area = world.normalized();
        for (int number = 0; number < side * side; ++number) {
            const QPolygonF polygon = polygonAt(number);
            if (polygon.boundingRect().intersects(area)) {
                shapes.push_back(polygon);
            }
        }
        scaleX = BenchStage::width / world.width();
        scaleY = BenchStage::height / world.height();
        origin = world.topLeft();
    }
    double draw()
    {
        const Stopwatch watch;
        frame.fill(Qt::white);
        QPainter painter(&frame);
        painter.setRenderHint(QPainter::Antialiasing, true);
        painter.setPen(pen);
        painter.setBrush(brush);
        for (const QPolygonF& shape : shapes) {
            QPolygonF moved = shape;
            for (QPointF& corner : moved) {
                corner =
                    QPointF((corner.x() - origin.x()) * scaleX, (corner.y() - origin.y()) * scaleY);
            }
            painter.drawPolygon(moved);
        }
        return watch.milliseconds();
    }

private:
    QPen pen;
    QBrush brush;
    std::vector<QPolygonF> shapes;
    double scaleX = 1.0;
    double scaleY = 1.0;
    QPointF origin;
    QImage frame{BenchStage::width, BenchStage::height, QImage::Format_RGB32};
};

Map::VectorLayer* openLayer(BenchStage& stage, const QString& file)
{
    Map::Layer* made = PluginManager::createLayer("Corvane::Map::OgrVectorLayer", false);
    auto* const layer = qobject_cast<Map::VectorLayer*>(made);
    if (!layer || !layer->setDataSource(file)) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(file));
        std::exit(2);
    }
    while (!layer->isValid()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QBrush brush(QColor(200, 220, 160));
    layer->setBrush(brush);
    stage.view().addLayer(layer, -1);
    return layer;
}

double completeView(BenchStage& stage, Map::Layer& layer, const QRectF& world)
{
    return stage.show(layer, world);
}

/// The longest that the thread of the window was held up by a step, among them its frame.
std::vector<double> roam(BenchStage& stage)
{
    std::vector<double> frames;
    Map::ViewManager* const manager = stage.view().getViewManager();
    manager->pointerDown(BenchStage::width / 2, BenchStage::height / 2);
    for (int i = 1; i <= roamFrames; ++i) {
        const Stopwatch watch;
        manager->pointerMove(BenchStage::width / 2 - static_cast<int>(i * roamStep),
                             BenchStage::height / 2);
        stage.view().repaint();
        QCoreApplication::processEvents();
        frames.push_back(watch.milliseconds());
    }
    manager->pointerUp(BenchStage::width / 2 - static_cast<int>(roamFrames * roamStep),
                       BenchStage::height / 2);
    return frames;
}

} // namespace

int main(int argc, char** argv)
{
    BenchStage stage(argc, argv);
    const QStringList arguments = Application::arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: corvane-bench-vector FILE [REPS]\n");
        return 1;
    }
    GDALAllRegister();
    const QString file = arguments[1];
    const int repetitions = arguments.size() > 2 ? arguments[2].toInt() : 5;
    if (!QFile::exists(file)) {
        makeFile(file);
    }

    BenchResult read{"vector.read_1m", "ms", {}, {}, {"max_ratio", 4.0}};
    BenchResult memory{"vector.memory_1m", "MB", {}, {}, {}};
    read.limitSamples.push_back(readBare(file)); // and brings the file into the page cache
    const double before = residentMegabytes();
    const Stopwatch watch;
    Map::VectorLayer* const layer = openLayer(stage, file);
    stage.complete(*layer);
    read.samples.push_back(watch.milliseconds());
    memory.samples.push_back(residentMegabytes() - before);
    read.print();
    memory.print();

    struct Case
    {
        const char* name;
        double unitsPerPixel;
    };
    for (const Case& view : {Case{"detail", 0.25}, Case{"part", 1.5}, Case{"whole", 9.5}}) {
        BenchResult complete{QString("vector.complete_%1").arg(view.name), "ms", {}, {}, {}};
        BenchResult frame{QString("vector.frame_%1").arg(view.name), "ms", {}, {}, {"max", 33.0}};
        BareDrawing bare(windowOf(0.5, view.unitsPerPixel), *layer);
        for (int i = 0; i < repetitions; ++i) {
            completeView(stage, *layer, windowOf(0.1, 0.2));
            complete.samples.push_back(
                completeView(stage, *layer, windowOf(0.5 + i * 1e-4, view.unitsPerPixel)));
            complete.limitSamples.push_back(bare.draw());
            const std::vector<double> frames = roam(stage);
            frame.samples.push_back(*std::max_element(frames.begin(), frames.end()));
            frame.limitSamples.push_back(complete.limitSamples.back());
        }
        complete.print();
        frame.print();
    }
    return 0;
}
