#pragma once

#include <corvane/map/GeoPainter.h>
#include <corvane/map/GroupLayer.h>
#include <corvane/map/RasterLayer.h>
#include <corvane/map/VectorLayer.h>

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QStringList>

/// Implements what Layer leaves open in the plainest way: fields that a test sets, and a log of
/// the calls that come from the canvas. Base is Layer or one of its abstract subclasses.
template <typename Base>
class PlainLayer : public Base
{
public:
    using Base::Base;

    QString getDataSource() override { return dataSource; }
    bool setDataSource(QString source) override
    {
        log << QStringLiteral("setDataSource(%1)").arg(source);
        dataSource = source;
        return opens;
    }
    QIcon getIcon() override { return QIcon(); }
    bool isVisible() override { return visible; }
    void setVisible(bool v) override { visible = v; }
    QString getFormat() override { return format; }
    QString getCoordSysName() override { return coordSysName; }
    void setView(int width, int height, double tlx, double tly, double brx, double bry) override
    {
        log << QStringLiteral("setView(%1x%2, %3 %4 %5 %6)")
                   .arg(width)
                   .arg(height)
                   .arg(tlx)
                   .arg(tly)
                   .arg(brx)
                   .arg(bry);
    }
    void beginUpdate(bool zoom) override
    {
        log << (zoom ? QStringLiteral("beginUpdate(zoom)") : QStringLiteral("beginUpdate(roam)"));
    }
    void endUpdate() override { log << QStringLiteral("endUpdate"); }
    QRectF getBounds() override { return bounds; }
    bool isValid() override { return valid; }
    QString getLastError() override { return lastError; }
    QString getProtocol() override { return protocol; }
    qint8 getPercentComplete() override { return percentComplete; }
    void paint(Corvane::GeoPainter&, QRectF* world, QRect* device) override
    {
        log << QStringLiteral("paint(%1 %2 %3 %4, %5 %6 %7 %8)")
                   .arg(world->topLeft().x())
                   .arg(world->topLeft().y())
                   .arg(world->bottomRight().x())
                   .arg(world->bottomRight().y())
                   .arg(device->left())
                   .arg(device->top())
                   .arg(device->right())
                   .arg(device->bottom());
    }

    QString dataSource;
    bool opens = true; ///< what setDataSource returns
    bool visible = true;
    bool valid = true;
    QString format;
    QString coordSysName;
    QRectF bounds = QRectF(QPointF(0.0, 100.0), QPointF(100.0, 0.0)); ///< north-up
    QString lastError;
    QString protocol;
    qint8 percentComplete = 100;
    QStringList log;
};

class TestLayer : public PlainLayer<Corvane::Map::Layer>
{
    Q_OBJECT
public:
    explicit TestLayer(Corvane::Map::IRendererClient* client = nullptr) : PlainLayer(client) {}
};

class TestGroupLayer : public PlainLayer<Corvane::Map::GroupLayer>
{
    Q_OBJECT
public:
    TestGroupLayer() = default;
};

class TestVectorLayer : public PlainLayer<Corvane::Map::VectorLayer>
{
    Q_OBJECT
public:
    explicit TestVectorLayer(Corvane::Map::IRendererClient* client = nullptr) : PlainLayer(client)
    {
    }

    using VectorLayer::brushFromXML;
    using VectorLayer::brushStyleFromString;
    using VectorLayer::brushToXML;
    using VectorLayer::gradientFromXML;
    using VectorLayer::gradientToXML;
    using VectorLayer::penCapStyleFromString;
    using VectorLayer::penFromXML;
    using VectorLayer::penJoinStyleFromString;
    using VectorLayer::penStyleFromString;
    using VectorLayer::penToXML;
};

class TestRasterLayer : public PlainLayer<Corvane::Map::RasterLayer>
{
    Q_OBJECT
public:
    explicit TestRasterLayer(Corvane::Map::IRendererClient* client = nullptr) : PlainLayer(client)
    {
    }

    double getCellSizeX() override { return cellSizeX; }
    double getCellSizeY() override { return cellSizeY; }
    double getTransparency() override { return transparency; }
    void setTransparency(double newTransparency) override { transparency = newTransparency; }
    int getNumberOfBands() override { return bandList.size(); }
    QVector<qint32> getBandList() override { return bandList; }
    void setBandList(QVector<qint32> bands) override { bandList = bands; }
    QSize getSize() override { return size; }
    QString getCellType() override { return cellType; }
    bool getOpacity() override { return opacity; }
    double getNoDataValue() override { return noDataValue; }
    double getRotation() override { return rotation; }
    ColorSpace getColorSpace() override { return colorSpace; }

    double cellSizeX = 1.0;
    double cellSizeY = -1.0;
    double transparency = 0.0;
    QVector<qint32> bandList = {1, 2, 3};
    QSize size = QSize(100, 100);
    QString cellType = QStringLiteral("UInt8");
    bool opacity = false;
    double noDataValue = qQNaN();
    double rotation = 0.0;
    ColorSpace colorSpace = ColorSpace::Rgb;
};
