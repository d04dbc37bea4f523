#pragma once

#include <corvane/map/Layer.h>

#include <QRectF>

/// Meridians and parallels; the data source is their spacing in degrees. A setting is a property:
/// map documents keep it and the property browser shows it.
class GraticuleLayer : public Corvane::Map::Layer
{
    Q_OBJECT
    Q_PROPERTY(QString LineColor READ getLineColor WRITE setLineColor)
public:
    explicit GraticuleLayer(Corvane::Map::IRendererClient* client = nullptr);

    QString getDataSource() override { return QString::number(spacing); }
    bool setDataSource(QString text) override;
    QIcon getIcon() override { return QIcon(); }
    bool isVisible() override { return visible; }
    void setVisible(bool v) override;
    QString getFormat() override { return QStringLiteral("Graticule"); }
    QString getCoordSysName() override { return QStringLiteral("WGS 84"); }
    void setView(int, int, double, double, double, double) override {} // all is in memory
    void beginUpdate(bool) override {}
    void endUpdate() override {}
    QRectF getBounds() override { return QRectF(-180.0, 90.0, 360.0, -180.0); }
    bool isValid() override { return spacing > 0.0; }
    QString getLastError() override { return error; }
    QString getProtocol() override { return QStringLiteral("none"); }
    qint8 getPercentComplete() override { return 100; }
    void paint(Corvane::GeoPainter& painter, QRectF* world, QRect* device) override;

    QString getLineColor() const { return lineColor; }
    void setLineColor(const QString& name);

private:
    void refreshAll();

    double spacing = 10.0; // degrees
    bool visible = true;
    QString lineColor = QStringLiteral("#404080");
    QString error;
};
