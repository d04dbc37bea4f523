#pragma once

#include <corvane/core/Export.h>
#include <corvane/map/IClient.h>
#include <corvane/map/IRendererClient.h>

#include <QColor>
#include <QMutex>
#include <QPointer>
#include <QPropertyAnimation>
#include <QRectF>
#include <QString>
#include <QVector>
#include <QWidget>

class QMenu;
class QMetaProperty;
class QPainter;
class QPanGesture;
class QPinchGesture;
class QPointF;
class QSwipeGesture;
class QVariant;

namespace Corvane::Map {

class Layer;
class MapCanvas;
class ViewManager;

/// The widget that shows one map: owns a MapCanvas and a ViewManager, turns paint, mouse, wheel
/// and key events into their operations, animates changes of extent and announces what happened.
/// GUI thread only, save onRendererUpdate and update with a rectangle.
class CORVANE_EXPORT MapView : public QWidget, public IClient, public IRendererClient
{
    Q_OBJECT
    Q_PROPERTY(bool ShowLayerSelection READ getShowLayerSelection WRITE setShowLayerSelection)
    Q_PROPERTY(bool HighQualityRendering READ getHighQualityRendering WRITE setHighQualityRendering)
    Q_PROPERTY(bool DrawCrosshair READ getDrawCrosshair WRITE setDrawCrosshair)
    Q_PROPERTY(QRectF Bounds READ getBounds WRITE setBounds)
public:
    enum MapControl : int
    {
        MapPanUp = 0,
        MapPanDown = 1,
        MapPanLeft = 2,
        MapPanRight = 3,
        MapZoomIn = 4,
        MapZoomOut = 5,
        MapZoomToAll = 6
    };
    Q_ENUM(MapControl)

    explicit MapView(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~MapView() override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    void beginClientUpdate(bool zoom) override;
    void endClientUpdate() override;
    /// Takes the manager's extents, tells the canvas and emits mapExtentsChanged.
    void onExtentChange(double tlx, double tly, double brx, double bry, bool flag) override;
    GeolinkMode getGeolinkMode() override;
    void setGeolinkMode(GeolinkMode mode) override;

    /// Any thread.
    void onRendererUpdate(double tlx, double tly, double brx, double bry) override;
    /// Logs the message.
    void onRendererError(QString message) override;

    using QWidget::update;
    /// Asks for a repaint of the whole widget, from whatever thread.
    virtual void update(double tlx, double tly, double brx, double bry);

    Q_INVOKABLE int addLayer(QString className, QString dataSource, QString description = QString(),
                             QString paramList = QString(), int index = -1);
    /// Takes the layer over; the first layer of a map is shown whole. The layer's index or -1.
    Q_INVOKABLE int addLayer(Layer* layer, int index = -1);
    /// The deletes announce the layer, then delete it; they ask for no repaint.
    Q_INVOKABLE bool deleteLayerAt(int index);
    Q_INVOKABLE bool deleteLayer(QString& uid);
    Q_INVOKABLE bool deleteLayer(Layer* pLayer);
    Q_INVOKABLE bool deleteAllLayers();
    Q_INVOKABLE bool deleteAllOverlayLayers();
    Q_INVOKABLE bool deleteAllBackgroundLayers();
    Q_INVOKABLE void moveLayer(int from, int to);
    Q_INVOKABLE bool zoomToLayer(int index);
    Q_INVOKABLE bool zoomToLayer(Layer* pLayer);
    /// One device pixel becomes one cell of the raster layer at index; the centre stays.
    Q_INVOKABLE bool zoomOneToOne(int index);
    Q_INVOKABLE bool zoomToAllLayers(bool bAnimate = true);
    Q_INVOKABLE Layer* getLayerAt(int index);
    Q_INVOKABLE Layer* findLayer(QString uid);
    Q_INVOKABLE int getLayerIndex(QString& uid);
    Q_INVOKABLE int getNumberOfLayers();
    Q_INVOKABLE double getRotation();
    Q_INVOKABLE QString getDescription();
    Q_INVOKABLE void setDescription(QString desc);
    /// The stack itself.
    Q_INVOKABLE QVector<Layer*>& getLayers();

    ViewManager* getViewManager();
    MapCanvas* getMapCanvas();
    /// A plain store: the old canvas is not deleted and the new one gets no client.
    void setMapCanvas(MapCanvas* canvas);
    void setPointerMode(PointerMode mode);
    QColor getBackgroundColor();
    void setBackgroundColor(QColor& color);
    QString getDocumentName();
    void setDocumentName(QString name);
    Layer* getLayerSelection();
    bool getShowLayerSelection();
    void setShowLayerSelection(bool show);
    bool getHighQualityRendering();
    void setHighQualityRendering(bool highQuality);
    bool getDrawCrosshair();
    void setDrawCrosshair(bool draw);
    /// The extents; the height is negative in a north-up map.
    QRectF getBounds();

signals:
    void layerAdded(Layer* player);
    void layerDeleted(Layer* player); ///< while the layer is still there
    void layerMoved(Layer* player);
    void layerPropertyChanged(Layer* player, QMetaProperty* propery, QVariant& value);
    void mapExtentsChanged(double tlx, double tly, double brx, double bry);
    void mapPropertyChanged(QMetaProperty* propery, QVariant& value);
    void pointerCoordChanged(QPointF worldPoint); ///< in map units, in the mode Point

public slots:
    /// Fits the rectangle to the widget's shape and shows it. mapExtentsChanged comes twice, with
    /// the fitted values and then with those given.
    void setBounds(QRectF rect);
    void setBounds(double tlx, double tly, double brx, double bry);
    void setRotation(double val);
    void setLayerSelection(Map::Layer* pLayer);
    void onExtentAnimFinish();
    void onMapAction(MapControl action);

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void showEvent(QShowEvent* event) override;

    /// Null until a derived class builds a menu; owned.
    QMenu* contextMenu = nullptr;

private:
    /// Never called here: a derived class that wants a menu makes its own.
    virtual void buildContextMenu();
    void readSettings();
    void animateBounds(const QRectF& from, const QRectF& to);
    QPointF worldPosition(int x, int y) const;
    void chooseDrag(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);
    void zoomByWheel(int x, int y, int delta);
    void rollAsGesture(int x, int y, int delta);
    QRectF targetOf(MapControl action) const;
    void showLayerBounds(const QRectF& layerBounds);
    void triggerMainWindowAction(const QString& actionName, QKeyEvent* event);
    int showAddedLayer(int index);
    void announceDeletionOf(const QVector<Layer*>& list);
    void drawSelection(QPainter& painter);
    void drawPointerAids(QPainter& painter);
    void panTriggered(QPanGesture* gesture);
    void pinchTriggered(QPinchGesture* gesture);
    void swipeTriggered(QSwipeGesture* gesture);

    ViewManager* viewManager = nullptr; // owned
    int pointerX = -1;
    int pointerY = -1;
    int boxX = -1;
    int boxY = -1;
    QRectF bounds;
    QColor backgroundColor;
    bool useAnimation = true;
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    QPointer<Layer> selectedLayer; // not owned; null once the layer is gone
    bool showLayerSelection = false;
    bool highQualityRendering = false;
    bool drawCrosshair = false;
    QString reservedText;
    QString documentName;
    MapCanvas* mapCanvas = nullptr; // owned
    PointerMode savedPointerMode = Roam;
    QPropertyAnimation extentAnimation;
    GeolinkMode geolinkMode = GeolinkNone;
    QMutex reservedMutex;
};

} // namespace Corvane::Map
