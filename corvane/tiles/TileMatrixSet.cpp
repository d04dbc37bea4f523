#include <corvane/tiles/TileMatrixSet.h>

#include <corvane/tiles/HttpTileRequest2.h>

#include <QCoreApplication>
#include <QEvent>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRunnable>
#include <QThreadPool>
#include <QtDebug>

namespace Corvane::Map {

namespace {

constexpr int priority = 0; // one for all: first come, first served

} // namespace

// In this order: the manager goes last, so that a cache which it was given takes its leave of it.
QSharedPointer<QNetworkAccessManager> TileMatrixSet::networkManager;
QSharedPointer<QNetworkDiskCache> TileMatrixSet::diskCache;
bool TileMatrixSet::diskCacheAttached = false;

TileMatrixSet::TileMatrixSet()
{
    attachDiskCache();
    connect(networkManager.data(), &QNetworkAccessManager::finished, this,
            &TileMatrixSet::networkReplyFinished);
    qDebug().noquote().nospace() << "TileMatrix:: Number of threads processing requests: "
                                 << QThreadPool::globalInstance()->maxThreadCount();
}

// Nobody says what a set's levels belong to, so they stay.
// TileMatrixSetTest::itsEndLeavesTheLevelsAlive holds it.
TileMatrixSet::~TileMatrixSet()
{
    qDebug("fix me: where to delete the layers?");
}

// The guard starts false and is written here alone, so sets run without a disk cache.
// TileMatrixSetTest::noDiskCacheIsAttached holds it.
void TileMatrixSet::attachDiskCache()
{
    if (!diskCacheAttached) {
        return;
    }
    diskCache->setCacheDirectory(QStringLiteral("C:\\Users\\tbrandt\\Desktop\\TEMPXXX"));
    networkManager->setCache(diskCache.data());
    diskCacheAttached = true;
}

void TileMatrixSet::queueTileRequest(HttpTileRequest2* request)
{
    if (!networkManager) {
        return;
    }
    QNetworkRequest networkRequest(request->getUrl());
    networkRequest.setAttribute(QNetworkRequest::CacheSaveControlAttribute, true);
    networkRequest.setAttribute(QNetworkRequest::HttpPipeliningAllowedAttribute, true);
    QNetworkReply* const reply = networkManager->get(networkRequest);
    // On a copy, so the reply knows no originating object and the request outlives it.
    // TileMatrixSetTest::aQueuedRequestIsNotAttachedToItsReply holds it.
    reply->request().setOriginatingObject(request);
}

void TileMatrixSet::queueTileRequest(QRunnable* request)
{
    QThreadPool::globalInstance()->start(request, priority);
}

void TileMatrixSet::onTileRequestFinished(bool, TileRequest2*) {}

// Every set hears of every reply of the shared manager and disposes of it. The bytes are dropped.
void TileMatrixSet::networkReplyFinished(QNetworkReply* reply)
{
    QObject* const originator = reply->request().originatingObject();
    reply->readAll();
    auto* const request = qobject_cast<HttpTileRequest2*>(originator);
    reply->deleteLater();
    // What deleteLater does, for a null request too, of which Qt warns: there is no null test.
    // TileMatrixSetTest::aQueuedRequestIsNotAttachedToItsReply holds it.
    QCoreApplication::postEvent(request, new QDeferredDeleteEvent);
}

} // namespace Corvane::Map
