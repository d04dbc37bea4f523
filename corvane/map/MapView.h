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

class QDir;
class QDomDocument;
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
    /// What buttons and keys do to the view.
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

    /// An empty map with a canvas and a manager of its own. The parent owns it; it may be null.
    explicit MapView(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~MapView() override;

    /// Pixels, for a window that nobody has sized.
    QSize sizeHint() const override;
    /// Pixels.
    QSize minimumSizeHint() const override;

    void beginClientUpdate(bool zoom) override;
    /// Tells the layers that the interactive change is over.
    void endClientUpdate() override;
    /// Takes the manager's extents, tells the canvas and emits mapExtentsChanged.
    void onExtentChange(double tlx, double tly, double brx, double bry, bool flag) override;
    /// The mode that was set last.
    GeolinkMode getGeolinkMode() override;
    /// A plain store.
    void setGeolinkMode(GeolinkMode mode) override;

    /// Any thread.
    void onRendererUpdate(double tlx, double tly, double brx, double bry) override;
    /// Logs the message.
    void onRendererError(QString message) override;

    using QWidget::update;
    /// Asks for a repaint of the whole widget, from whatever thread.
    virtual void update(double tlx, double tly, double brx, double bry);

    /// Makes a layer of the class through the plugins and adds it as MapCanvas::addLayer does.
    Q_INVOKABLE int addLayer(QString className, QString dataSource, QString description = QString(),
                             QString paramList = QString(), int index = -1);
    /// Takes the layer over; the first layer of a map is shown whole. The layer's index or -1.
    Q_INVOKABLE int addLayer(Layer* layer, int index = -1);
    /// The deletes announce the layer, then delete it; they ask for no repaint.
    Q_INVOKABLE bool deleteLayerAt(int index);
    /// The layer with this uid text; false without one.
    Q_INVOKABLE bool deleteLayer(QString& uid);
    /// This layer; false where it is not in the map.
    Q_INVOKABLE bool deleteLayer(Layer* pLayer);
    /// The whole stack.
    Q_INVOKABLE bool deleteAllLayers();
    /// See MapCanvas::deleteAllOverlayLayers.
    Q_INVOKABLE bool deleteAllOverlayLayers();
    /// See MapCanvas::deleteAllBackgroundLayers.
    Q_INVOKABLE bool deleteAllBackgroundLayers();
    /// to counts in the stack as it stands after the layer has been taken out.
    Q_INVOKABLE void moveLayer(int from, int to);
    /// Shows the whole of the layer at index; false where there is none.
    Q_INVOKABLE bool zoomToLayer(int index);
    /// Shows the whole of the layer; false for null.
    Q_INVOKABLE bool zoomToLayer(Layer* pLayer);
    /// One device pixel becomes one cell of the raster layer at index; the centre stays.
    Q_INVOKABLE bool zoomOneToOne(int index);
    /// Shows all layers; always true. bAnimate lets the view move there, if the settings do.
    Q_INVOKABLE bool zoomToAllLayers(bool bAnimate = true);
    /// The layer at index, null outside the stack.
    Q_INVOKABLE Layer* getLayerAt(int index);
    /// The first layer with this uid text; null where there is none.
    Q_INVOKABLE Layer* findLayer(QString uid);
    /// The index of the first layer with this uid, -1 where there is none.
    Q_INVOKABLE int getLayerIndex(QString& uid);
    /// Of the stack.
    Q_INVOKABLE int getNumberOfLayers();
    /// As it was set; painting does not apply it.
    Q_INVOKABLE double getRotation();
    /// The map's name for people.
    Q_INVOKABLE QString getDescription();
    /// Kept by the canvas.
    Q_INVOKABLE void setDescription(QString desc);
    /// The stack itself.
    Q_INVOKABLE QVector<Layer*>& getLayers();
    /// Adds what the document holds, as MapCanvas::loadMapXML does, and shows its extents, truncated
    /// to whole map units and grown to the widget's shape.
    Q_INVOKABLE bool loadMapXML(QDomDocument& theDoc, QDir& baseDir,
                                QString* pErrorMessage = nullptr);
    /// The map as a document; the caller owns it.
    Q_INVOKABLE QDomDocument* saveMapXML();

    /// Owned here.
    ViewManager* getViewManager();
    /// Owned here.
    MapCanvas* getMapCanvas();
    /// A plain store: the old canvas is not deleted and the new one gets no client.
    void setMapCanvas(MapCanvas* canvas);
    /// What a press of the pointer does from now on, and its cursor.
    void setPointerMode(PointerMode mode);
    /// What the map is painted on.
    QColor getBackgroundColor();
    /// A plain store: who sets it asks for a repaint.
    void setBackgroundColor(QColor& color);
    /// The file that holds the map; empty without one.
    QString getDocumentName();
    /// A plain store.
    void setDocumentName(QString name);
    /// Not owned; null without one or once it is gone.
    Layer* getLayerSelection();
    /// Whether the bounds of the selected layer are hatched over.
    bool getShowLayerSelection();
    /// A plain store: who sets it asks for a repaint.
    void setShowLayerSelection(bool show);
    /// As it was set.
    bool getHighQualityRendering();
    /// Stored and offered; painting takes no notice.
    void setHighQualityRendering(bool highQuality);
    /// Whether a crosshair lies on the place of the press in the mode Zoom.
    bool getDrawCrosshair();
    /// A plain store: who sets it asks for a repaint.
    void setDrawCrosshair(bool draw);
    /// The extents; the height is negative in a north-up map.
    QRectF getBounds();

signals:
    void layerAdded(Layer* player);   ///< it is in the map
    void layerDeleted(Layer* player); ///< while the layer is still there
    void layerMoved(Layer* player);   ///< it has its new place
    /// A property of a layer has this value now; who sets it emits this.
    void layerPropertyChanged(Layer* player, QMetaProperty* propery, QVariant& value);
    /// what the widget's corners show, in map units
    void mapExtentsChanged(double tlx, double tly, double brx, double bry);
    /// A property of the map has this value now; who sets it emits this.
    void mapPropertyChanged(QMetaProperty* propery, QVariant& value);
    void pointerCoordChanged(QPointF worldPoint); ///< in map units, in the mode Point

public slots:
    /// Fits the rectangle to the widget's shape and shows it. mapExtentsChanged comes twice, with
    /// the fitted values and then with those given.
    void setBounds(QRectF rect);
    /// The same with the corners, in map units.
    void setBounds(double tlx, double tly, double brx, double bry);
    /// Stored and offered; painting does not apply it.
    void setRotation(double val);
    /// Not owned; null selects none.
    void setLayerSelection(Map::Layer* pLayer);
    /// The view has reached the end of its way.
    void onExtentAnimFinish();
    /// Moves or zooms the view by a step.
    void onMapAction(MapControl action);

protected:
    /// Leaves every event to QWidget: gestures of touch are not taken.
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
