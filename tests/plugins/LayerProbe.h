#pragma once

#include <plugins/common/TiledRasterLayer.h>

#include <corvane/core/Application.h>
#include <corvane/core/LogMessageHandler.h>
#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/tiles/LayerLevel.h>

#include <QImage>
#include <QStringList>

#include <mutex>

namespace Corvane::Tests {

/// The log's lines, from whatever thread.
class LogLines final : public LogMessageHandler
{
public:
    LogLines() { Application::installLogMessageHandler(this); }
    ~LogLines() { Application::installLogMessageHandler(nullptr); }
    void logMessage(const QString& message, LogLevel level, const QDateTime&) override
    {
        const std::lock_guard<std::mutex> guard(mutex);
        lines.append(message);
        if (level >= LogLevel::Warning) {
            warnings.append(message);
        }
    }
    void setLogLevel(LogLevel) override {}
    LogLevel getLogLevel() override { return LogLevel::Debug; }
    QStringList holding(const QString& part) const
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return lines.filter(part);
    }
    QStringList warningsHolding(const QString& part) const
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return warnings.filter(part);
    }

private:
    mutable std::mutex mutex; // guards lines and warnings
    QStringList lines;
    QStringList warnings;
};

/// A view of width by height pixels whose top left pixel is that of the image at (x, y), with
/// reduction image pixels to one of the view.
struct PixelView
{
    int width = 0;
    int height = 0;
    int x = 0;
    int y = 0;
    double reduction = 1.0;

    QRectF world(Map::RasterLayer& layer) const
    {
        const QRectF bounds = layer.getBounds();
        return QRectF(
            bounds.left() + x * layer.getCellSizeX(), bounds.top() + y * layer.getCellSizeY(),
            width * reduction * layer.getCellSizeX(), height * reduction * layer.getCellSizeY());
    }
    void set(Map::RasterLayer& layer) const
    {
        const QRectF area = world(layer);
        layer.setView(width, height, area.left(), area.top(), area.left() + area.width(),
                      area.top() + area.height());
    }
};

/// What the layer paints for the view, on a transparent picture.
inline QImage painted(Map::RasterLayer& layer, const PixelView& view)
{
    QImage picture(view.width, view.height, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QRectF world = view.world(layer);
    QRect device = picture.rect();
    GeoPainter painter(&picture, world, device);
    layer.paint(painter, &world, &device);
    painter.end();
    return picture;
}

/// The view with everything in memory.
inline QImage complete(Map::TiledRasterLayer& layer, const PixelView& view)
{
    layer.setProgressive(false);
    view.set(layer);
    return painted(layer, view);
}

} // namespace Corvane::Tests
