#pragma once

#include <corvane/core/Export.h>
#include <corvane/map/IRenderer.h>
#include <corvane/map/SpatialReference.h>

#include <QColor>
#include <QObject>
#include <QRectF>
#include <QString>
#include <QVector>

namespace Corvane::Map {

class Layer;

/// The renderer of a map view: owns the layer stack, passes view changes to its layers and paints
/// them in order. Index 0 of the stack is painted first and lies at the bottom. GUI thread only.
class CORVANE_EXPORT MapCanvas : public QObject, public IRenderer
{
    Q_OBJECT
    Q_PROPERTY(QRectF bounds READ getBounds)
    Q_PROPERTY(double rotation READ getRotation WRITE setRotation)
    Q_PROPERTY(QString description READ getDescription WRITE setDescription)
    Q_PROPERTY(int layerCount READ getNumberOfLayers)
public:
    explicit MapCanvas(QObject* parent);
    /// Deletes the layers. A side list that the program has filled must be cleared before.
    ~MapCanvas() override;

    void beginUpdate(bool zoom) override;
    void endUpdate() override;
    void setView(int width, int height, double tlx, double tly, double brx, double bry) override;
    void paint(GeoPainter& painter, QRectF* world, QRect* device) override;
    void setClient(IRendererClient* client) override;
    IRendererClient* getClient() override;

    /// Makes a layer of the class through the plugins and adds it; paramList is ignored.
    /// The layer's index, -1 where no plugin serves the class.
    Q_INVOKABLE int addLayer(QString className, QString dataSource, QString description = QString(),
                             QString paramList = QString(), int index = -1);
    /// Takes the layer over and puts it before index; -1, or an index outside the stack, puts it on
    /// top. The layer's index, -1 for a null layer.
    Q_INVOKABLE int addLayer(Layer* layer, int index = -1);
    /// The deletes delete the layer at once; false where there was none.
    Q_INVOKABLE bool deleteLayerAt(int index);
    Q_INVOKABLE bool deleteLayer(QString& uid);
    Q_INVOKABLE bool deleteLayer(Layer* pLayer);
    Q_INVOKABLE bool deleteAllLayers();
    /// A filled side list keeps its layers: one layer of the stack after the other goes instead,
    /// that at the side list's last index, and false comes when there is none left.
    Q_INVOKABLE bool deleteAllOverlayLayers();
    Q_INVOKABLE bool deleteAllBackgroundLayers();
    /// to counts in the stack as it stands after the layer has been taken out.
    Q_INVOKABLE void moveLayer(int from, int to);
    /// The layer at index, null outside the stack.
    Q_INVOKABLE Layer* getLayerAt(int index);
    /// The first layer with this uid text, compared exactly; null where there is none.
    Q_INVOKABLE Layer* findLayer(QString uid);
    /// The index of the first layer with this uid, -1 where there is none.
    Q_INVOKABLE int getLayerIndex(QString& uid);
    Q_INVOKABLE int getNumberOfLayers();
    Q_INVOKABLE QString getComments();
    Q_INVOKABLE void setComments(QString value);
    Q_INVOKABLE double getRotation();
    /// Stored and offered; painting does not apply it.
    Q_INVOKABLE void setRotation(double dRotation);
    Q_INVOKABLE QString getDescription();
    Q_INVOKABLE void setDescription(QString desc);
    /// Hands the reference to every layer; one that refuses it is hidden. Always true.
    Q_INVOKABLE bool setSrs(const SpatialReference& ref);
    /// The bottom layer's reference, the canvas's own while there is no layer.
    Q_INVOKABLE const SpatialReference& getSrs();
    Q_INVOKABLE void setQuickDraw(bool bValue);
    Q_INVOKABLE bool getQuickDraw();
    Q_INVOKABLE void setDrawMapBBox(bool value);
    Q_INVOKABLE bool getDrawMapBBox();
    Q_INVOKABLE void setDrawLayerBBox(bool value);
    Q_INVOKABLE bool getDrawLayerBBox();
    Q_INVOKABLE void setMapBBoxColor(QColor color);
    Q_INVOKABLE QColor getMapBBoxColor();
    Q_INVOKABLE void setLayerBBoxColor(QColor color);
    Q_INVOKABLE QColor getLayerBBoxColor();

    /// The view's world rectangle with its corners truncated to whole numbers.
    QRectF getBounds();
    /// The union of the bounds of all valid and visible layers; null without one.
    QRectF getMaxBounds();
    /// The stack itself.
    QVector<Layer*>& getLayers();
    /// Painted over everything; neither told of the view nor tested for scale. The program fills
    /// and clears it.
    QVector<Layer*>& getOverlayLayers();
    /// Painted under everything, else like the overlay layers.
    QVector<Layer*>& getBackgroundLayers();

private:
    bool isInStack(int index) const;
    bool deleteBySideList(const QVector<Layer*>& side);
    void drawLayerBoxes(GeoPainter& painter, double scale);

    QVector<Layer*> layers; // owned
    QVector<Layer*> overlayLayers;
    QVector<Layer*> backgroundLayers;
    IRendererClient* client = nullptr; // not owned
    int viewWidth = 0;
    int viewHeight = 0;
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    double rotation = 0.0;
    QString description;
    QString comments;
    QColor baseColor;
    QColor mapBBoxColor;
    QColor layerBBoxColor;
    bool quickDraw = false;
    bool drawMapBBox = false;
    bool drawLayerBBox = false;
    SpatialReference srs;
};

} // namespace Corvane::Map
