#pragma once

#include <plugins/common/SourceOpening.h>
#include <plugins/vector/VectorStyle.h>
#include <plugins/vector/VectorView.h>

#include <corvane/map/ILayerSource.h>
#include <corvane/map/VectorLayer.h>

#include <QColor>
#include <QStringList>

#include <memory>

namespace Corvane::Map {

class VectorReading;
class VectorSource;
struct VectorFacts;

/// A layer of whatever vector source OGR opens. Its features are read on the pool when it is first
/// looked at, brought to the map's reference where both are known, kept in memory with an index, and
/// drawn on the pool. What does not fit into "Plugins/Vector/MemoryBudgetMB" for a layer, else a
/// quarter of the machine's memory, is not read, and getLastError says so. A source that does not open
/// at once is opened behind the scenes; the layer is then not valid until sourceOpened tells how it
/// ended. May be deleted at any time.
class OgrVectorLayer : public VectorLayer, public ILayerSource
{
    Q_OBJECT
    Q_INTERFACES(Corvane::Map::ILayerSource)
    Q_PROPERTY(QString LayerName READ getLayerName WRITE setLayerName)
    Q_PROPERTY(double Transparency READ getTransparency WRITE setTransparency)
    Q_PROPERTY(QString PointSymbol READ getPointSymbol WRITE setPointSymbol)
    Q_PROPERTY(double PointSize READ getPointSize WRITE setPointSize)
    Q_PROPERTY(QString LabelField READ getLabelField WRITE setLabelField)
    Q_PROPERTY(double LabelSize READ getLabelSize WRITE setLabelSize)
    Q_PROPERTY(QColor LabelColor READ getLabelColor WRITE setLabelColor)
    Q_PROPERTY(bool Antialiasing READ isAntialiasing WRITE setAntialiasing)
    Q_PROPERTY(bool Progressive READ isProgressive WRITE setProgressive)
    Q_PROPERTY(double WaitLimit READ getWaitLimit WRITE setWaitLimit STORED false)
    Q_PROPERTY(QString Driver READ getDriver STORED false)
    Q_PROPERTY(QStringList LayerNames READ getLayerNames STORED false)
    Q_PROPERTY(QString GeometryType READ getGeometryType STORED false)
    Q_PROPERTY(qint64 FeatureCount READ getFeatureCount STORED false)
    Q_PROPERTY(QStringList Fields READ getFields STORED false)
    Q_PROPERTY(int Epsg READ getEpsg STORED false)
    Q_PROPERTY(QString Wkt READ getWkt STORED false)
public:
    explicit OgrVectorLayer(IRendererClient* client = nullptr);
    ~OgrVectorLayer() override;

    QString getDataSource() override;
    /// A path, an http, https or s3 URL, or any name that OGR understands. False where it failed;
    /// true while it is still opening, see isValid. The source that was open before is dropped.
    bool setDataSource(QString dataSource) override;
    /// A swatch of the pen and the brush.
    QIcon getIcon() override;
    bool isVisible() override;
    void setVisible(bool v) override;
    QString getFormat() override;
    QString getCoordSysName() override;
    void setView(int width, int height, double tlx, double tly, double brx, double bry) override;
    void beginUpdate(bool zoom) override;
    void endUpdate() override;
    /// In the map's reference; a lone point has some space around it.
    QRectF getBounds() override;
    bool isValid() override;
    /// Why the source did not open, or why reading it broke off; empty without a failure.
    QString getLastError() override;
    /// "file", "http" or "s3".
    QString getProtocol() override;
    qint8 getPercentComplete() override;
    /// Always true: a layer that does not open stays in its map, not valid, so that saving the map
    /// does not lose it. Why it does not is a line of pErrorMessage, which may be null.
    bool readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage) override;
    bool writeXML(QDomNode& theNode, QDomDocument& theDoc) override;
    void paint(GeoPainter& painter, QRectF* world, QRect* device) override;

    /// The layer of the source that is shown; one that is set before the source chooses, later on
    /// it opens the source again.
    QString getLayerName();
    void setLayerName(const QString& name);
    double getTransparency();
    /// Brought into the range 0 to 1.
    void setTransparency(double transparency);
    /// "Circle", "Square", "Triangle" or "Cross"; other names change nothing.
    QString getPointSymbol();
    void setPointSymbol(const QString& name);
    /// Pixels across, 1 to 100.
    double getPointSize();
    void setPointSize(double size);
    /// The field whose values are drawn beside the shapes; empty for none.
    QString getLabelField();
    void setLabelField(const QString& field);
    /// Points of type, 4 to 72.
    double getLabelSize();
    void setLabelSize(double size);
    QColor getLabelColor();
    void setLabelColor(const QColor& color);
    bool isAntialiasing() const;
    void setAntialiasing(bool antialiasing);
    bool isProgressive() const;
    /// false: setView, and setDataSource, return only when everything has come.
    void setProgressive(bool progressive);
    double getWaitLimit() const;
    /// How long setView of a layer that is not progressive may wait for the next features, in seconds;
    /// 0 for as long as it takes, a negative number for what is usual. A print goes on without what has
    /// not come by then.
    void setWaitLimit(double seconds);
    /// Draws anew if the pen or the brush was changed.
    void restyle();

    QString getDriver();
    QStringList getLayerNames();
    QString getGeometryType();
    qint64 getFeatureCount();
    QStringList getFields();
    int getEpsg();
    QString getWkt();

    SourceReport getSourceReport() override;
    void retrySource() override;

    /// Of the features read so far, those whose geometry cannot be shown in this map.
    qint64 getLeftOut() const { return leftOut; }
    /// The memory of what has been read, in bytes.
    qint64 getBytes() const;

signals:
    /// A source that was opening in the background is open, or has failed.
    void sourceOpened(bool ok);

private slots:
    bool takeOpened();
    void takeRead();
    void takeDrawn();

private:
    void openSource(bool tells);
    void tryAgain();
    void closeSource();
    void adopt(std::shared_ptr<VectorSource> opened);
    bool fail(const QString& reason);
    void followMap();
    void moveExtent();
    void readAgain(bool fresh);
    void startReading();
    void stopReading();
    void endReading();
    void waitForFeatures();
    VectorStyle currentStyle();
    void refreshAll();

    QString dataSource;
    QString nameInDocument; // while a document is read whose name the base class would lose
    QString lastError;
    QString layerName; // as chosen; empty for the first
    QString labelField;
    VectorStyle look; // all but pen and brush, which the base class keeps
    double labelSize = 9.0;
    double transparency = 0.0;
    int waitLimit; // milliseconds; 0 for none
    bool visible = true;
    bool viewMayBeStale = false; // it was hidden, and is told nothing of the views meanwhile

    SourceOpening<VectorSource> opening;
    std::shared_ptr<const VectorFacts> facts; // null while none is open
    std::shared_ptr<VectorSource> unread;     // opened, and not yet handed to a reading
    std::shared_ptr<VectorReading> reading;   // while features are read
    bool haveRead = false;                    // or are being read
    bool replaces = false;                    // what is read takes the place of the old at the end
    ChunkList incoming;
    int targetEpsg = 0; // that the features are brought to; 0 leaves them as they are
    WorldBox extent;    // as shown
    WorldBox reach;     // where the map ends; empty where it does not
    qint64 leftOut = 0;
    VectorView view;
};

} // namespace Corvane::Map
