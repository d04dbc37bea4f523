#pragma once

#include <plugins/common/ServedTileLayer.h>
#include <plugins/common/SourceOpening.h>
#include <plugins/imageserver/ImageServerAddress.h>

#include <corvane/map/IRasterLayerCells.h>

#include <memory>
#include <optional>

namespace Corvane::Map {

class ImageServerLoader;
struct GridAnswer;
struct ImageGrid;
struct ImageServerSource;

/// An image of an image server, in the image's own grid, which the server tells. When the image
/// changes on the server the layer follows. May be deleted at any time; transfers under way then end
/// within 50 milliseconds.
///
/// The data source may end in credentials. They are split off and are in none of the texts that the
/// layer gives: a document holds the user's name as a property of its own, and the password is kept
/// in memory only, for all images of the server as long as the program runs. After that a document's
/// layer stays closed until somebody sets the password.
class ImageServerLayer final : public ServedTileLayer, public IRasterLayerCells
{
    Q_OBJECT
    Q_INTERFACES(Corvane::Map::IRasterLayerCells)
    Q_PROPERTY(QString User READ getUser WRITE setUser)
    Q_PROPERTY(QString Password READ getPassword WRITE setPassword STORED false)
    Q_PROPERTY(double Deadline READ getDeadline WRITE setDeadline)
    Q_PROPERTY(QString SourceState READ getSourceState STORED false)
public:
    explicit ImageServerLayer(IRendererClient* client = nullptr);
    ~ImageServerLayer() override;

    /// Without credentials.
    QString getDataSource() override;
    /// A URL as the server browser gives it: see ImageServerAddress. False where it failed; true
    /// while it is still opening, see isValid. False without a word for a source of another kind:
    /// programs try one plugin after the other.
    bool setDataSource(QString dataSource) override;
    QIcon getIcon() override;
    QString getFormat() override;
    QString getCoordSysName() override;
    QRectF getBounds() override;
    bool isValid() override;
    /// Why the source did not open, or why a tile is missing; empty without a failure.
    QString getLastError() override;
    /// The scheme of the data source.
    QString getProtocol() override;
    qint8 getPercentComplete() override;

    double getCellSizeX() override;
    double getCellSizeY() override;
    int getNumberOfBands() override;
    QVector<qint32> getBandList() override;
    /// Does nothing: the server has chosen.
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

    /// The server gives pictures, so values are those of its pictures.
    void readCells(std::shared_ptr<CellRequest> request) override;

    QString getUser() const;
    /// Another user's image is asked for anew.
    void setUser(const QString& user);
    /// Always empty: the password is told to nobody.
    QString getPassword() const;
    /// Asks for the image anew.
    void setPassword(const QString& password);
    /// Both at once. An empty password is the one that the program knows of the user, or none.
    void setLogin(const QString& user, const QString& password);
    double getDeadline() const;
    /// Seconds that the server has for one answer.
    void setDeadline(double seconds);
    /// "ready", "opening", or what is wrong and for how long the server is left alone.
    QString getSourceState();
    /// What the server says of the image; null while the source is not open.
    std::shared_ptr<const ImageGrid> getGrid() const;
    /// Whether something failed that may be asked for again.
    bool canRetry() const;
    /// Asks for it at once, however long the server was to be left alone.
    void retryNow();

    SourceReport getSourceReport() override;
    /// See retryNow.
    void retrySource() override;

protected:
    void followChange() override;

private slots:
    bool takeOpened();

private:
    void startOpening(bool tells);
    void closeSource();
    void adopt(const GridAnswer& answer);
    void fail(const QString& reason, bool isSure);
    void askAnew();

    QString dataSource; // without credentials
    QString lastError;
    std::optional<ImageServerAddress> address;
    ServerCredentials credentials;
    double deadline = 20.0;                    // seconds
    SourceOpening<GridAnswer> opening;         // asks the server for the grid
    std::shared_ptr<ImageServerSource> source; // null while there is none
    std::shared_ptr<ImageServerLoader> loader; // the same
};

} // namespace Corvane::Map
