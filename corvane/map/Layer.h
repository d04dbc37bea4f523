#pragma once

#include <corvane/core/Export.h>
#include <corvane/map/LayerType.h>
#include <corvane/map/SpatialReference.h>

#include <QIcon>
#include <QObject>
#include <QString>
#include <QUuid>

class QDir;
class QDomDocument;
class QDomNode;
class QRect;
class QRectF;

namespace Corvane {

class GeoPainter;

namespace Map {

class IRendererClient;

/// What every layer of a map offers. Concrete layers are made by plugins and owned by a MapCanvas
/// once added. The order of the virtual operations and of the properties is part of the contract:
/// documents and the property browser work through the properties by name, so a subclass adds a
/// setting with a Q_PROPERTY. GUI thread only, save refresh.
class CORVANE_EXPORT Layer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString DataSource READ getDataSource WRITE setDataSource)
    Q_PROPERTY(QString Description READ getDescription WRITE setDescription)
    Q_PROPERTY(QString Comments READ getComments WRITE setComments)
    Q_PROPERTY(bool Visible READ isVisible WRITE setVisible)
    Q_PROPERTY(bool Valid READ isValid STORED false)
    Q_PROPERTY(QIcon Icon READ getIcon STORED false)
    Q_PROPERTY(QUuid Uid READ getUid STORED false)
    Q_PROPERTY(double MinScale READ getMinScale WRITE setMinScale)
    Q_PROPERTY(double MaxScale READ getMaxScale WRITE setMaxScale)
    Q_PROPERTY(QString format READ getFormat STORED false)
    Q_PROPERTY(QString coordSysName READ getCoordSysName STORED false)
public:
    /// client is asked for repaints; it may be null and is not owned.
    explicit Layer(IRendererClient* client);
    ~Layer() override;

    /// The source as it was set; empty without one.
    Q_INVOKABLE virtual QString getDataSource() = 0;
    /// Opens the source; false where that is known to fail.
    Q_INVOKABLE virtual bool setDataSource(QString dataSource) = 0;
    /// For the layer tree; may be null.
    Q_INVOKABLE virtual QIcon getIcon() = 0;
    /// Whether the user wants to see it.
    Q_INVOKABLE virtual bool isVisible() = 0;
    /// A layer that is not visible is not told of views and not painted.
    Q_INVOKABLE virtual void setVisible(bool v) = 0;
    /// The layer's identity while it lives; never saved.
    Q_INVOKABLE virtual QUuid getUid();
    /// Free text; empty without one.
    Q_INVOKABLE virtual QString getComments();
    /// A plain store.
    Q_INVOKABLE virtual void setComments(QString str);
    /// The display name.
    Q_INVOKABLE virtual QString getDescription();
    /// A plain store.
    Q_INVOKABLE virtual void setDescription(QString t);
    /// The name of the source's format, for people.
    Q_INVOKABLE virtual QString getFormat() = 0;
    /// The name of the layer's coordinate system, for people.
    Q_INVOKABLE virtual QString getCoordSysName() = 0;
    /// The view is width by height pixels and shows this world rectangle, in map units.
    Q_INVOKABLE virtual void setView(int width, int height, double tlx, double tly, double brx,
                                     double bry) = 0;
    /// An interactive change of view starts; calls need not be balanced.
    Q_INVOKABLE virtual void beginUpdate(bool zoom) = 0;
    /// The interactive change is over.
    Q_INVOKABLE virtual void endUpdate() = 0;
    /// The layer's world rectangle; the height is negative for a north-up layer.
    Q_INVOKABLE virtual QRectF getBounds() = 0;
    /// Whether the source is open; the canvas passes over a layer that is not valid.
    Q_INVOKABLE virtual bool isValid() = 0;
    /// Why the source is not open, for people; empty without a failure.
    Q_INVOKABLE virtual QString getLastError() = 0;
    /// A text for the property panels: how the source is reached.
    Q_INVOKABLE virtual QString getProtocol() = 0;
    /// How much of the present view is loaded, 0 to 100.
    Q_INVOKABLE virtual qint8 getPercentComplete() = 0;
    /// Reads the children of a layer element; relative file sources are resolved against baseDir.
    /// Ends in setDataSource and returns its result.
    Q_INVOKABLE virtual bool readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage);
    /// Appends the children of a layer element to theNode. Always true.
    Q_INVOKABLE virtual bool writeXML(QDomNode& theNode, QDomDocument& theDoc);
    /// Draws what is in memory; never waits.
    virtual void paint(GeoPainter& painter, QRectF* world, QRect* device) = 0;

    /// The name of the type, "Unknown" for any other number.
    static QString GetLayerTypeAsString(LayerType type);

    /// The layer shows only while the view's scale value lies between the two limits, exclusive.
    double getMinScale();
    /// A plain store, not held against the other limit.
    void setMinScale(double scale);
    /// The upper limit; the largest double where none is set.
    double getMaxScale();
    /// A plain store, not held against the other limit.
    void setMaxScale(double scale);
    /// The layer shows at every scale.
    void clearScaleRange();

    /// Whom refresh tells; not owned, may be null.
    void setRendererClient(IRendererClient* client);
    /// The layer's own reference; code 0 where it is not known.
    const SpatialReference& getSpatialRef();
    /// Copies the code; true.
    bool setSpatialRef(const SpatialReference& reference);
    /// Asks the view for a repaint of this world rectangle. Any thread.
    void refresh(double tlx, double tly, double brx, double bry);

protected:
    QUuid uid;                       ///< what getUid returns
    QString comments;                ///< what getComments returns
    QString description;             ///< what getDescription returns
    double minScale;                 ///< exclusive lower limit
    double maxScale;                 ///< exclusive upper limit
    IRendererClient* rendererClient; ///< not owned; may be null
    QString reservedText1;           ///< no use yet; it keeps its place
    QString reservedText2;           ///< no use yet; it keeps its place
    SpatialReference spatialRef;     ///< what getSpatialRef returns
};

} // namespace Map
} // namespace Corvane
