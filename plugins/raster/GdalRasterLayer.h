#pragma once

#include <plugins/common/SourceOpening.h>
#include <plugins/common/TileRetry.h>
#include <plugins/common/TiledRasterLayer.h>

#include <corvane/map/ILayerOverviews.h>
#include <corvane/map/ILayerSource.h>
#include <corvane/map/IRasterLayerCells.h>
#include <corvane/map/IRasterLayerHistogram.h>

#include <QVector>

#include <memory>

namespace Corvane::Map {

class OverviewBuilding;
class RasterSource;
class RasterTileLoader;
struct RasterFacts;

/// A raster of whatever kind GDAL opens, of whatever size: reads it in tiles on the pool and shows
/// it north-up. A source that does not open at once is opened behind the scenes; the layer is then
/// not valid until sourceOpened tells how it ended. May be deleted at any time.
class GdalRasterLayer : public TiledRasterLayer,
                        public IRasterLayerHistogram,
                        public IRasterLayerCells,
                        public ILayerOverviews,
                        public ILayerSource
{
    Q_OBJECT
    Q_INTERFACES(Corvane::Map::IRasterLayerHistogram Corvane::Map::IRasterLayerCells
                     Corvane::Map::ILayerOverviews Corvane::Map::ILayerSource)
    Q_PROPERTY(QString Bands READ getBandsText WRITE setBandsText)
    Q_PROPERTY(QString Driver READ getDriver STORED false)
    Q_PROPERTY(int Epsg READ getEpsg STORED false)
    Q_PROPERTY(QString Wkt READ getWkt STORED false)
    Q_PROPERTY(QString Overviews READ getOverviews STORED false)
    Q_PROPERTY(QSize BlockSize READ getBlockSize STORED false)
    Q_PROPERTY(QString NoData READ getNoData STORED false)
    Q_PROPERTY(QString Compression READ getCompression STORED false)
    Q_PROPERTY(QString LayoutKind READ getLayoutKind STORED false)
public:
    explicit GdalRasterLayer(IRendererClient* client = nullptr);
    ~GdalRasterLayer() override;

    QString getDataSource() override;
    /// A path, an http, https or s3 URL, or any name that GDAL understands. False where it failed;
    /// true while it is still opening, see isValid. The source that was open before is dropped.
    bool setDataSource(QString dataSource) override;
    QIcon getIcon() override;
    QString getFormat() override;
    QString getCoordSysName() override;
    QRectF getBounds() override;
    bool isValid() override;
    /// Why the source did not open, or why a tile could not be read; empty without a failure.
    QString getLastError() override;
    /// "file", "http" or "s3".
    QString getProtocol() override;
    qint8 getPercentComplete() override;
    /// Drops what is kept of a server's answers for the source, so that the next layer asks anew.
    Q_INVOKABLE void forgetSource();
    bool readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage) override;

    double getCellSizeX() override;
    double getCellSizeY() override;
    int getNumberOfBands() override;
    QVector<qint32> getBandList() override;
    /// One band in grey or three as red, green, blue; bands that the source lacks are left out.
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
    void tileFailed(ITileRequest* request) override;
    ITileRequest* createTileRequest(const QString& key, const QString& url, unsigned int level,
                                    unsigned int tx, unsigned int ty, double tlx, double tly,
                                    double brx, double bry) override;

    QVector<HistogramT<unsigned long long>> getHistograms(bool viewport, bool approximate,
                                                          QSize sampleSize, double tlx, double tly,
                                                          double brx, double bry) override;

    /// Columns and rows are those of the source, also where it is warped to be shown.
    void readCells(std::shared_ptr<CellRequest> request) override;

    /// From "Plugins/Raster/LargeImagePixels" on, a hundred million unless set. Asks no disk.
    bool wantsOverviews() override;
    /// Beside the file, unless nothing can be written there, "Plugins/Raster/OverviewsBeside" is
    /// false, or they are of a part of the file or of a view that is turned; else in the user's cache
    /// folder, which "Plugins/Raster/OverviewCacheMB" limits.
    bool buildOverviews() override;
    void cancelOverviews() override;
    OverviewProgress getOverviewProgress() override;

    SourceReport getSourceReport() override;
    void retrySource() override;

    /// The band list as text, "1,2,3": documents carry it in this form.
    QString getBandsText();
    void setBandsText(const QString& text);
    QString getDriver();
    int getEpsg();
    QString getWkt();
    /// "2048 x 1024, 1024 x 512"
    QString getOverviews();
    QSize getBlockSize();
    QString getNoData();
    QString getCompression();
    /// "tiles" or "strips".
    QString getLayoutKind();

    /// What is known of the open source, null without one.
    const RasterFacts* facts() const;

private slots:
    bool takeOpened();
    void startRetrying();
    void takeOverviews();

private:
    void startOpening(bool tells);
    void tryAgain();
    void closeSource();
    void adopt(std::shared_ptr<RasterSource> opened);
    bool fail(const QString& reason);
    void restartTiles();
    void carryOnWith(std::shared_ptr<RasterSource> next, bool readsAnew);
    void endOverviews();
    QRectF areaToCount(bool viewport, double tlx, double tly, double brx, double bry);

    QString dataSource;
    QString nameInDocument; // while a document is read, the source if not as it stands there
    QString lastError;
    QVector<qint32> bandList; // as chosen; empty for the source's own
    SourceOpening<RasterSource> opening;
    std::shared_ptr<RasterSource> source; // null while there is none
    std::shared_ptr<RasterTileLoader> loader;
    TileRetry tileRetry;                        // of a remote source
    std::unique_ptr<OverviewBuilding> building; // while overviews are built
    QString overviewFile;                       // that were built for this source
    QString overviewFailure;
};

} // namespace Corvane::Map
