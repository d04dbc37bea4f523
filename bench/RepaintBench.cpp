// corvane-bench-repaint [REPS]
//
// A full repaint of a 1920 x 1080 view from tiles in memory, through the map view, the canvas and
// a tiled layer, beside a bare widget that makes the same drawImage calls.

#include <bench/BenchResult.h>
#include <bench/BenchStage.h>
#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/LayerLevel.h>

#include <QPaintEvent>

#include <cstdio>

using namespace Corvane;
using namespace Corvane::Bench;

namespace {

constexpr int tileEdge = 256;
constexpr int tilesAcross = (BenchStage::width + tileEdge - 1) / tileEdge;
constexpr int tilesDown = (BenchStage::height + tileEdge - 1) / tileEdge;
constexpr int repaintsPerSample = 50;

QImage makeTile(int tx, int ty)
{
    QImage tile(tileEdge, tileEdge, QImage::Format_RGB32);
    for (int y = 0; y < tileEdge; ++y) {
        for (int x = 0; x < tileEdge; ++x) {
            tile.setPixel(x, y, qRgb(x, y, (tx * 31 + ty * 17) & 255));
        }
    }
    return tile;
}

/// A layer of one level whose tiles are all in memory; a world unit is a pixel.
class MemoryLayer : public Map::Layer, public Map::ITiledLayer
{
public:
    MemoryLayer() : Layer(nullptr)
    {
        levels.init(this, tileEdge, getBounds(), 1U);
        for (int tx = 0; tx < tilesAcross; ++tx) {
            for (int ty = 0; ty < tilesDown; ++ty) {
                addTile(tx, ty);
            }
        }
    }

    QString getDataSource() override { return {}; }
    bool setDataSource(QString) override { return true; }
    QIcon getIcon() override { return {}; }
    bool isVisible() override { return true; }
    void setVisible(bool) override {}
    QString getFormat() override { return {}; }
    QString getCoordSysName() override { return {}; }
    void setView(int viewWidth, int viewHeight, double left, double top, double right,
                 double bottom) override
    {
        levels.setView(viewWidth, viewHeight, left, top, right, bottom);
    }
    void beginUpdate(bool) override {}
    void endUpdate() override {}
    QRectF getBounds() override { return QRectF(0.0, 0.0, getWidth(), -getHeight()); }
    bool isValid() override { return true; }
    QString getLastError() override { return {}; }
    QString getProtocol() override { return {}; }
    qint8 getPercentComplete() override { return 100; }
    void paint(GeoPainter& painter, QRectF* world, QRect* device) override
    {
        levels.paint(painter, world, device);
    }

    QString getTileUrl(unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, double,
                       double, double, double) override
    {
        return {};
    }
    int getWidth() override { return tilesAcross * tileEdge; }
    int getHeight() override { return tilesDown * tileEdge; }
    double getWorldPerPixelX() override { return 1.0; }
    double getWorldPerPixelY() override { return -1.0; }
    void tileReady(Map::ITileRequest*) override {}
    void tileFailed(Map::ITileRequest*) override {}
    Map::ITileRequest* createTileRequest(const QString&, const QString&, unsigned int, unsigned int,
                                         unsigned int, double, double, double, double) override
    {
        qFatal("every tile is in memory");
        return nullptr;
    }
    QString getTileLayerId() override { return "bench"; }

private:
    void addTile(int tx, int ty)
    {
        Map::LayerLevel* level = levels.at(0);
        double left = 0.0;
        double top = 0.0;
        double right = 0.0;
        double bottom = 0.0;
        level->getTileCoords(static_cast<unsigned int>(tx), static_cast<unsigned int>(ty), &left,
                             &top, &right, &bottom);
        auto* image = new GeoImage(tileEdge, tileEdge, left, top, right, bottom,
                                   QImage::Format_RGB32, nullptr);
        static_cast<QImage&>(*image) = makeTile(tx, ty);
        QString key =
            level->getTileKey(static_cast<unsigned int>(tx), static_cast<unsigned int>(ty));
        level->addTile(key, image);
    }
};

/// The same frame without the library.
class BareWidget : public QWidget
{
public:
    BareWidget()
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAutoFillBackground(false);
        for (int tx = 0; tx < tilesAcross; ++tx) {
            for (int ty = 0; ty < tilesDown; ++ty) {
                tiles.push_back({QPoint(tx * tileEdge, ty * tileEdge), makeTile(tx, ty)});
            }
        }
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(0, 0, width(), height(), Qt::white);
        for (const auto& [position, tile] : tiles) {
            painter.drawImage(position, tile);
        }
    }

private:
    std::vector<std::pair<QPoint, QImage>> tiles;
};

double millisecondsPerRepaint(QWidget& widget)
{
    const Stopwatch watch;
    for (int i = 0; i < repaintsPerSample; ++i) {
        widget.repaint();
    }
    return watch.milliseconds() / repaintsPerSample;
}

} // namespace

int main(int argc, char** argv)
{
    BenchStage stage(argc, argv);
    const int repetitions = argc > 1 ? atoi(argv[1]) : 20;

    stage.view().getMapCanvas()->addLayer(new MemoryLayer, -1);
    // The manager's span is a pixel short of the widget's on both axes, so x and y never have quite
    // the same scale: this width spreads the difference so that every tile keeps its own pixels.
    const double worldWidth = BenchStage::width + 0.2;
    stage.view().setBounds(0.0, 0.0, worldWidth,
                           -worldWidth * (BenchStage::height - 1.0) / (BenchStage::width - 1.0));
    BareWidget bare;
    bare.resize(BenchStage::width, BenchStage::height);
    bare.show();
    QCoreApplication::processEvents();

    BenchResult result{"repaint.cached_1920x1080", "ms", {}, {}, {"max_ratio", 1.15}};
    millisecondsPerRepaint(stage.view());
    millisecondsPerRepaint(bare);
    for (int i = 0; i < repetitions; ++i) {
        result.samples.push_back(millisecondsPerRepaint(stage.view()));
        result.limitSamples.push_back(millisecondsPerRepaint(bare));
    }
    result.print();
    return 0;
}
