#pragma once

#include <corvane/tiles/HttpTileRequest2.h>
#include <corvane/tiles/TileMatrixLevel.h>
#include <corvane/tiles/TileMatrixSet.h>

#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <cmath>
#include <memory>
#include <vector>

/// One zoom of SquareSet: 2 to the power of the zoom tiles across, and as many down.
class SquareLevel final : public Corvane::Map::TileMatrixLevel
{
public:
    static constexpr double worldSize = 1024.0; // from -512 to 512 on both axes

    explicit SquareLevel(unsigned int newZoom) : zoom(newZoom) {}

    QString getIdentifier() override { return QString::number(zoom); }
    double getScaleDenominator() override { return getPixelSpan() / 0.00028; }
    QPointF getTopLeftCorner() override { return QPointF(-worldSize / 2.0, worldSize / 2.0); }
    unsigned int getTileWidth() override { return 256; }
    unsigned int getTileHeight() override { return 256; }
    unsigned int getMatrixWidth() override { return 1U << zoom; }
    unsigned int getMatrixHeight() override { return 1U << zoom; }
    unsigned int getMinTileCol() override { return 0; }
    unsigned int getMaxTileCol() override { return getMatrixWidth() - 1; }
    unsigned int getMinTileRow() override { return 0; }
    unsigned int getMaxTileRow() override { return getMatrixHeight() - 1; }
    double getPixelSpan() override { return getTileSpanX() / getTileWidth(); }
    double getTileSpanX() override { return worldSize / getMatrixWidth(); }
    double getTileSpanY() override { return worldSize / getMatrixHeight(); }
    unsigned int getTileCol(double x) override
    {
        return static_cast<unsigned int>((x - getTopLeftCorner().x()) / getTileSpanX());
    }
    unsigned int getTileRow(double y) override
    {
        return static_cast<unsigned int>((getTopLeftCorner().y() - y) / getTileSpanY());
    }

private:
    unsigned int zoom;
};

/// What a layer plugin makes of a tile matrix set: a square world in three zooms, from a server.
class SquareSet : public Corvane::Map::TileMatrixSet
{
public:
    explicit SquareSet(QString serverBase = QString()) : base(std::move(serverBase))
    {
        for (unsigned int zoom = 0; zoom < 3; ++zoom) {
            owned.push_back(std::make_unique<SquareLevel>(zoom));
            append(owned.back().get());
        }
    }

    QString getIdentifier() override { return QStringLiteral("square"); }
    QString getSupportedCRS() override { return QStringLiteral("epsg:0"); }
    QString getWellKnownScaleSet() override { return QString(); }
    QRectF getBoundingBox() override
    {
        const double size = SquareLevel::worldSize;
        return QRectF(first()->getTopLeftCorner(), QSizeF(size, -size));
    }

    /// A request for the tile of a level that holds a world point.
    Corvane::Map::HttpTileRequest2* newRequest(int levelNumber, double x, double y)
    {
        Corvane::Map::TileMatrixLevel* const level = at(levelNumber);
        const unsigned int column = level->getTileCol(x);
        const unsigned int row = level->getTileRow(y);
        const QPointF corner = level->getTopLeftCorner();
        const double left = corner.x() + column * level->getTileSpanX();
        const double top = corner.y() - row * level->getTileSpanY();
        const QString tile =
            QStringLiteral("/%1/%2/%3").arg(level->getIdentifier()).arg(column).arg(row);
        auto* const request = new Corvane::Map::HttpTileRequest2(QUrl(base + tile));
        request->setKey(tile);
        request->setTileMatrix(this);
        request->setTileParams(column, row, left, top, left + level->getTileSpanX(),
                               top - level->getTileSpanY());
        return request;
    }

    /// Makes what all sets share.
    static void openNetwork()
    {
        networkManager.reset(new QNetworkAccessManager);
        diskCache.reset(new QNetworkDiskCache);
    }
    /// The cache first: a manager that was given it has become its parent.
    static void closeNetwork()
    {
        diskCache.reset();
        networkManager.reset();
    }
    static QNetworkAccessManager* manager() { return networkManager.data(); }
    static QNetworkDiskCache* cache() { return diskCache.data(); }

private:
    QString base;
    std::vector<std::unique_ptr<SquareLevel>> owned;
};
