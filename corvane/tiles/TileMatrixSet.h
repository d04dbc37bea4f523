#pragma once

#include <corvane/core/Export.h>
#include <corvane/tiles/TileMatrixLevels.h>

#include <QObject>
#include <QSharedPointer>

class QNetworkAccessManager;
class QNetworkDiskCache;
class QNetworkReply;
class QRectF;
class QRunnable;
class QString;

namespace Corvane::Map {

class HttpTileRequest2;
class TileRequest2;

/// A tile engine beside the pyramid of LayerLevels, for layer plugins to build on: its requests go
/// through one network manager that all sets share. So far nothing is made of what comes back. The
/// order of the operations is part of the contract. Used on the manager's thread.
class CORVANE_EXPORT TileMatrixSet : public QObject, public TileMatrixLevels
{
    Q_OBJECT
public:
    /// Assign networkManager before: a set made without one never hears of a reply.
    TileMatrixSet();
    /// Leaves the levels alive.
    ~TileMatrixSet() override;

    /// In the terms of the OGC standard; the library calls none of the four.
    virtual QString getIdentifier() = 0;
    /// The name of the coordinate reference system.
    virtual QString getSupportedCRS() = 0;
    /// The name of the scale set; empty without one.
    virtual QString getWellKnownScaleSet() = 0;
    /// World rectangle; the height is negative for a north-up set.
    virtual QRectF getBoundingBox() = 0;

    /// Sends the request over the network. It stays the caller's: it is not attached to the reply.
    /// Nothing happens without a network manager.
    void queueTileRequest(HttpTileRequest2* request);
    /// Starts the request on the global thread pool, which deletes it if it says so.
    void queueTileRequest(QRunnable* request);

protected:
    /// Shared by all sets; null until a derived class assigns them. A manager takes over the cache
    /// that it is given.
    static QSharedPointer<QNetworkAccessManager> networkManager;
    /// Shared by all sets; null until a derived class assigns it.
    static QSharedPointer<QNetworkDiskCache> diskCache;

private slots:
    void onTileRequestFinished(bool success, TileRequest2* pRequest);
    void networkReplyFinished(QNetworkReply* reply);

private:
    void attachDiskCache();

    static bool diskCacheAttached;
};

} // namespace Corvane::Map
