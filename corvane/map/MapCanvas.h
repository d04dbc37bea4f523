#pragma once

#include <corvane/core/Export.h>
#include <corvane/map/IRenderer.h>
#include <corvane/map/SpatialReference.h>

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QRectF>
#include <QString>
#include <QVector>

class QDir;
class QDomDocument;
class QDomElement;
class QPrinter;
class QProgressDialog;

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
    /// An empty map without a client. The parent owns it; it may be null.
    explicit MapCanvas(QObject* parent);
    /// Deletes the layers. A side list that the program has filled must be cleared before.
    ~MapCanvas() override;

    /// Prints the view in whole world units, its top left corner in that of the page. To a device it
    /// goes in strips, between which the dialog, of a range of 0 to 100, is asked for a cancel; to a
    /// PDF file in one go, without the dialog, which may be null. Waits for the layers; they keep the
    /// settings of the print and the canvas its last view. A cancel leaves a part of the page.
    /// The first virtual behind QObject's: programs that were built before rely on its place.
    virtual void print(QPrinter& printer, QProgressDialog* progress);
    /// The same with a world rectangle of any unit, which fills the page as it is.
    void printExtents(QPrinter& printer, QProgressDialog* progress, const QRectF& world);

    /// Passed on to the layers that are visible and valid.
    void beginUpdate(bool zoom) override;
    /// Passed on to the layers that are visible and valid.
    void endUpdate() override;
    void setView(int width, int height, double tlx, double tly, double brx, double bry) override;
    /// Background layers, the stack, bottom first, within its scale ranges, boxes, overlay layers.
    void paint(GeoPainter& painter, QRectF* world, QRect* device) override;
    void setClient(IRendererClient* client) override;
    /// Not owned; null without one.
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
    /// The layer with this uid text.
    Q_INVOKABLE bool deleteLayer(QString& uid);
    /// This layer, if it is one of the stack.
    Q_INVOKABLE bool deleteLayer(Layer* pLayer);
    /// The whole stack.
    Q_INVOKABLE bool deleteAllLayers();
    /// A filled side list keeps its layers: one layer of the stack after the other goes instead,
    /// that at the side list's last index, and false comes when there is none left.
    Q_INVOKABLE bool deleteAllOverlayLayers();
    /// The same with the layers behind the stack.
    Q_INVOKABLE bool deleteAllBackgroundLayers();
    /// to counts in the stack as it stands after the layer has been taken out.
    Q_INVOKABLE void moveLayer(int from, int to);
    /// The layer at index, null outside the stack.
    Q_INVOKABLE Layer* getLayerAt(int index);
    /// The first layer with this uid text, compared exactly; null where there is none.
    Q_INVOKABLE Layer* findLayer(QString uid);
    /// The index of the first layer with this uid, -1 where there is none.
    Q_INVOKABLE int getLayerIndex(QString& uid);
    /// Of the stack.
    Q_INVOKABLE int getNumberOfLayers();
    /// Free text; empty without one.
    Q_INVOKABLE QString getComments();
    /// A plain store.
    Q_INVOKABLE void setComments(QString value);
    /// As it was set.
    Q_INVOKABLE double getRotation();
    /// Stored and offered; painting does not apply it.
    Q_INVOKABLE void setRotation(double dRotation);
    /// The map's name for people.
    Q_INVOKABLE QString getDescription();
    /// A plain store.
    Q_INVOKABLE void setDescription(QString desc);
    /// Hands the reference to every layer; one that refuses it is hidden. Always true.
    Q_INVOKABLE bool setSrs(const SpatialReference& ref);
    /// The bottom layer's reference, the canvas's own while there is no layer.
    Q_INVOKABLE const SpatialReference& getSrs();
    /// Stored and offered; painting takes no notice.
    Q_INVOKABLE void setQuickDraw(bool bValue);
    /// As it was set.
    Q_INVOKABLE bool getQuickDraw();
    /// Whether a frame is drawn around all layers.
    Q_INVOKABLE void setDrawMapBBox(bool value);
    /// As it was set.
    Q_INVOKABLE bool getDrawMapBBox();
    /// Whether a frame is drawn around each layer that shows.
    Q_INVOKABLE void setDrawLayerBBox(bool value);
    /// As it was set.
    Q_INVOKABLE bool getDrawLayerBBox();
    /// Of the frame around all layers.
    Q_INVOKABLE void setMapBBoxColor(QColor color);
    /// As it was set.
    Q_INVOKABLE QColor getMapBBoxColor();
    /// Of the frames around each layer.
    Q_INVOKABLE void setLayerBBoxColor(QColor color);
    /// As it was set.
    Q_INVOKABLE QColor getLayerBBoxColor();

    /// The map as a document: extents, boxes, texts and the stack, bottom first. The side lists and
    /// the rotation are not saved. The caller owns it.
    QDomDocument* saveMapXML();
    /// Adds what the document holds; the layers that are there stay. False, with nothing changed,
    /// where there is no mapcanvas element; layers that cannot be made do not fail the load. What
    /// went wrong is appended to pErrorMessage, which may be null. baseDir is the folder of the
    /// document: relative data sources are resolved against it.
    bool loadMapXML(QDomDocument& theDoc, QDir& baseDir, QString* pErrorMessage);

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

    /// On the screen this layer of the stack is painted inside of a rectangle of the view alone, and
    /// nowhere where it is empty. One layer at a time; null for none. What is printed, saved or taken
    /// as a picture knows nothing of it. The caller asks for a repaint.
    void setScreenClip(Layer* layer, const QRect& device);
    /// Null where none is clipped, or where it is gone.
    Layer* getClippedLayer() const;
    /// As it was last given, in pixels of the view; null where it was given for none.
    QRect getScreenClip() const;

private:
    /// What the view becomes while a document is read.
    struct DocumentView
    {
        double tlx = 0.0;
        double tly = 0.0;
        double brx = 0.0;
        double bry = 0.0;
        double rotation = 0.0;
    };

    void readMapElement(const QDomElement& element, QDir& baseDir, QString* errors,
                        DocumentView* read);
    void readBounds(const QDomElement& element, DocumentView* read);
    void readLayer(QDomElement element, QDir& baseDir, QString* errors);
    bool isInStack(int index) const;
    bool deleteBySideList(const QVector<Layer*>& side);
    void paintLayer(Layer* layer, GeoPainter& painter, QRectF* world, QRect* device);
    void drawLayerBoxes(GeoPainter& painter, double scale);
    void prepareLayersForPrint();
    void printStrip(GeoPainter& painter, QRectF world, QRect page, int y);
    void printStrips(GeoPainter& painter, const QRectF& world, const QRect& page,
                     QProgressDialog* progress);

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
    QPointer<Layer> clippedLayer;
    QRect screenClip;
};

} // namespace Corvane::Map
