#pragma once

#include <tests/map/TestLayers.h>

#include <QString>

/// A raster layer with a spatial reference as text, as the plugins' have one.
class ReferencedLayer : public TestRasterLayer
{
    Q_OBJECT
    Q_PROPERTY(QString Wkt READ getWkt)
public:
    explicit ReferencedLayer(const QString& reference = QString()) : wkt(reference) {}

    QString getWkt() { return wkt; }

    QString wkt;
};
