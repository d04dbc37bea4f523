#include "GraticuleLayer.h"

#include <corvane/map/GeoPainter.h>

#include <QVector>

GraticuleLayer::GraticuleLayer(Corvane::Map::IRendererClient* client) : Layer(client)
{
    setDescription(tr("Graticule"));
    Corvane::Map::SpatialReference wgs84;
    wgs84.epsg = 4326;
    setSpatialRef(wgs84);
}

bool GraticuleLayer::setDataSource(QString text)
{
    bool ok = false;
    const double wanted = text.toDouble(&ok);
    if (!ok || wanted < 0.1 || wanted > 90.0) {
        error = tr("the spacing is a number of degrees from 0.1 to 90, not '%1'").arg(text);
        return false;
    }
    spacing = wanted;
    refreshAll();
    return true;
}

void GraticuleLayer::setVisible(bool v)
{
    visible = v;
    refreshAll();
}

void GraticuleLayer::setLineColor(const QString& name)
{
    lineColor = name;
    refreshAll();
}

// Draws what is in memory and never waits; positions are those of the world.
void GraticuleLayer::paint(Corvane::GeoPainter& painter, QRectF*, QRect*)
{
    painter.setPen(QPen(QColor(lineColor), 0));
    for (int i = 0; i * spacing <= 360.0; ++i) {
        const double longitude = i * spacing - 180.0;
        QVector<QPointF> meridian = {{longitude, 90.0}, {longitude, -90.0}};
        painter.drawWorldPolylineF(meridian);
    }
    for (int i = 0; i * spacing <= 180.0; ++i) {
        const double latitude = i * spacing - 90.0;
        QVector<QPointF> parallel = {{-180.0, latitude}, {180.0, latitude}};
        painter.drawWorldPolylineF(parallel);
    }
}

void GraticuleLayer::refreshAll()
{
    const QRectF all = getBounds();
    refresh(all.left(), all.top(), all.right(), all.bottom());
}
