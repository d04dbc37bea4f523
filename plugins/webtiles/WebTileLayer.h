#pragma once

#include <plugins/common/ServedTileLayer.h>
#include <plugins/common/SourceOpening.h>
#include <plugins/webtiles/WebTileSource.h>

#include <QVector>

#include <atomic>
#include <memory>

namespace Corvane::Map {

class WebTileLoader;
struct WebTileOffer;

/// Tiles of a web server in the usual grid of Web Mercator. A tile that the server fails to give
/// is missing for now: coarser ones show through, and it is asked for again after a pause that
/// grows. May be deleted at any time; transfers under way then end within 50 milliseconds.
class WebTileLayer final : public ServedTileLayer
{
    Q_OBJECT
    Q_PROPERTY(int MinZoom READ getMinZoom WRITE setMinZoom)
    Q_PROPERTY(int MaxZoom READ getMaxZoom WRITE setMaxZoom)
    Q_PROPERTY(int TileSize READ getTileSize WRITE setTileSize)
    Q_PROPERTY(QString Attribution READ getAttribution WRITE setAttribution)
    Q_PROPERTY(QString Hosts READ getHosts WRITE setHosts)
    Q_PROPERTY(QString UserAgentSuffix READ getUserAgentSuffix WRITE setUserAgentSuffix)
    Q_PROPERTY(double Deadline READ getDeadline WRITE setDeadline)
    Q_PROPERTY(QString SourceState READ getSourceState STORED false)
public:
    explicit WebTileLayer(IRendererClient* client = nullptr);
    ~WebTileLayer() override;

    QString getDataSource() override;
    /// A URL with the places {z}, {x}, {y} and so on, a preset file, or the URL of WMTS
    /// capabilities with "#layer=NAME" behind it where there is more than one. False where it
    /// failed; true while it is still opening, see isValid. False without a word for a source of
    /// another kind: programs try one plugin after the other.
    bool setDataSource(QString dataSource) override;
    QIcon getIcon() override;
    QString getFormat() override;
    QString getCoordSysName() override;
    QRectF getBounds() override;
    bool isValid() override;
    /// Why the source did not open, or why a tile is missing; empty without a failure.
    QString getLastError() override;
    /// "http" or "https".
    QString getProtocol() override;
    qint8 getPercentComplete() override;
    void paint(GeoPainter& painter, QRectF* world, QRect* device) override;
    bool readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage) override;

    double getCellSizeX() override;
    double getCellSizeY() override;
    int getNumberOfBands() override;
    QVector<qint32> getBandList() override;
    /// Does nothing: the pictures are shown as they come.
    void setBandList(QVector<qint32> bands) override;
    QSize getSize() override;
    QString getCellType() override;
    bool getOpacity() override;
    double getNoDataValue() override;
    double getRotation() override;
    ColorSpace getColorSpace() override;

    QString getTileUrl(unsigned int level, unsigned int tx, unsigned int ty, unsigned int width,
                       unsigned int height, double tlx, double tly, double brx,
                       double bry) override;

    // What is set here goes before what the data source says; a negative number, a size of 0 and an
    // empty text leave it to the data source.
    int getMinZoom() const;
    /// Coarser zooms are not asked for: the layer is empty there.
    void setMinZoom(int zoom);
    int getMaxZoom() const;
    /// The zoom of the full resolution, 22 at most, and 21 for tiles of 512 pixels.
    void setMaxZoom(int zoom);
    int getTileSize() const;
    /// 256 or 512 pixels; a server may send twice as many for fine screens.
    void setTileSize(int pixels);
    QString getAttribution() const;
    /// Painted small into the lower right corner; tags are left out.
    void setAttribution(const QString& text);
    QString getHosts() const;
    /// What {s} stands for, separated by commas.
    void setHosts(const QString& hosts);
    QString getUserAgentSuffix() const;
    /// Servers want to know who asks: this stands behind "Corvane/1.0".
    void setUserAgentSuffix(const QString& suffix);
    double getDeadline() const;
    /// Seconds that the server has for one answer.
    void setDeadline(double seconds);
    /// "ready", "opening", or what is wrong and for how long the server is left alone.
    QString getSourceState();

    SourceReport getSourceReport() override;
    /// See retryNow.
    void retrySource() override;

    /// The URL with places that the tiles come from; empty without a source.
    QString getUrl() const;
    bool isOpening() const { return bool(opening); }
    /// How the server is doing; as if it had not been asked, without a source.
    SourceHealth::Report getHealth() const;
    /// Whether retryNow would ask for something.
    bool canRetry() const;
    /// Asks at once for what failed, whatever the pauses, or for a source that did not open.
    void retryNow();

private slots:
    bool takeOpened();

private:
    void closeSource();
    void startOpening(bool tells);
    void tryAgain();
    bool adopt(const std::shared_ptr<WebTileOffer>& offer);
    bool fail(const QString& reason);
    void applySettings();
    void paintAttribution(GeoPainter& painter, const QRect& device, const QRect& part) const;

    QString dataSource;
    QString lastError;
    QString attribution; // as painted
    WebTileSettings settings;
    SourceOpening<WebTileOffer> opening;
    std::shared_ptr<WebTileOffer> offer;              // null while there is none
    std::shared_ptr<WebTileSource> source;            // null too where the settings do not fit it
    std::shared_ptr<WebTileLoader> loader;            // the same
    std::shared_ptr<std::atomic<bool>> failurePasses; // of the last opening
};

} // namespace Corvane::Map
