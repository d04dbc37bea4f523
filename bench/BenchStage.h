#pragma once

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <QRectF>
#include <QString>

#include <memory>

namespace Corvane {
namespace Map {
class Layer;
class RasterLayer;
} // namespace Map

namespace Bench {

/// A 1920 x 1080 map view off screen, and the application around it. One at a time in a process.
class BenchStage
{
public:
    static constexpr int width = 1920;
    static constexpr int height = 1080;

    BenchStage(int& argc, char** argv);
    ~BenchStage();

    Map::MapView& view();
    /// Makes a fresh view without layers.
    void reset();
    /// A new raster layer on the file, opened and not yet in the view; owned by the caller.
    /// Ends the program with a message where the file cannot be opened.
    std::unique_ptr<Map::RasterLayer> open(const QString& file);
    /// Opens the file and puts it into a fresh view, which is not told to show anything yet.
    Map::RasterLayer* stage(const QString& file);
    /// Shows the rectangle and returns once every tile of it is loaded and the frame is painted.
    /// The time that took, in milliseconds.
    double show(Map::Layer& layer, const QRectF& world);
    /// From now until the view as it stands is loaded and painted.
    void complete(Map::Layer& layer);

    /// The world rectangle whose top-left is the pixel (left, top) of the layer and which shows
    /// pixelsPerPixel source pixels per view pixel.
    static QRectF window(Map::RasterLayer& layer, double left, double top, double pixelsPerPixel);

private:
    std::unique_ptr<Application> application;
    std::unique_ptr<Map::MapView> mapView;
};

} // namespace Bench
} // namespace Corvane
