#pragma once

#include <plugins/common/TileRetry.h>
#include <plugins/common/TiledRasterLayer.h>

#include <corvane/map/ILayerSource.h>

#include <memory>

namespace Corvane::Map {

class ServedTileLink;

/// What the layers have in common whose tiles come from a server: a tile that the server fails to
/// give is missing for now, coarser ones show through, and it is asked for again after a pause that
/// grows. What lies on disk past its time stands in for it where the server allows that.
class ServedTileLayer : public TiledRasterLayer, public ILayerSource
{
    Q_OBJECT
    Q_INTERFACES(Corvane::Map::ILayerSource)
public:
    ~ServedTileLayer() override;

    void tileReady(ITileRequest* request) override;
    void tileFailed(ITileRequest* request) override;
    /// Null for a tile that is empty or left alone for now.
    ITileRequest* createTileRequest(const QString& key, const QString& url, unsigned int level,
                                    unsigned int tx, unsigned int ty, double tlx, double tly,
                                    double brx, double bry) override;

    /// The next layer asks the server again about tiles that are kept.
    Q_INVOKABLE void forgetSource();

public slots:
    /// Asks for what was put off and is due by now. A timer calls it while there is such a thing.
    void retryDue();

protected:
    /// plugin is a name that settings begin with, and that the disk cache has.
    ServedTileLayer(IRendererClient* client, const char* plugin);

    /// startTiles for a server.
    void startServed(std::shared_ptr<ServedTileLink> link, const char* idPrefix,
                     unsigned int tileSize, bool coarsestIsCheap);
    /// stopTiles for a server.
    void stopServed();
    /// How the source is doing that tiles were started for.
    SourceReport servedReport(const QString& dataSource) const;
    /// Asks at once for what was put off.
    void retryServed();

protected slots:
    /// The server has something else by now than what is shown: see ServedTileLink::noteChange.
    virtual void followChange();

private slots:
    void startRetrying();

private:
    void renewStale();

    std::shared_ptr<ServedTileLink> served; // null while there is no source
    unsigned int servedTileSize = 0;        // pixels
    TileRetry retries;
};

} // namespace Corvane::Map
