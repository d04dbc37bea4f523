#include <viewer/batch/Gaps.h>

#include <viewer/maps/LayerOpener.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QRectF>

namespace Corvane::Viewer {
namespace {

constexpr int completePercent = 100;

/// "tlx,tly,brx,bry", as --extent takes it.
QString textOf(const QRectF& world)
{
    QStringList numbers;
    for (const double number : {world.left(), world.top(), world.right(), world.bottom()}) {
        numbers << QString::number(number, 'g', 12);
    }
    return numbers.join(',');
}

/// A part of the world that layers of some kinds can tell; null where they cannot, or there is none.
QRectF areaFrom(Map::Layer& layer, const char* method)
{
    QRectF area;
    const QByteArray signature = QByteArray(method) + "()";
    if (layer.metaObject()->indexOfMethod(signature) >= 0) {
        QMetaObject::invokeMethod(&layer, method, Qt::DirectConnection, Q_RETURN_ARG(QRectF, area));
    }
    return area;
}

/// What two world rectangles share; heights are negative.
QRectF shared(const QRectF& a, const QRectF& b)
{
    return a.normalized().intersected(b.normalized());
}

QRectF northUp(const QRectF& area)
{
    return QRectF(area.bottomLeft(), area.topRight());
}

} // namespace

QStringList gapsOf(Map::MapView& view)
{
    QStringList gaps;
    for (Map::Layer* layer : view.getLayers()) {
        if (!layer || !layer->isVisible()) {
            continue;
        }
        const QString name = layer->getDescription().isEmpty()
                                 ? LayerOpener::nameOf(layer->getDataSource())
                                 : layer->getDescription();
        if (!layer->isValid()) {
            const QString reason = layer->getLastError();
            gaps << (reason.isEmpty() ? QString("%1: not open in time").arg(name)
                                      : QString("%1: not open: %2").arg(name, reason));
            continue;
        }
        if (layer->getPercentComplete() < completePercent) {
            const QRectF missing = areaFrom(*layer, "getMissingArea");
            const QRectF inView = northUp(shared(layer->getBounds(), view.getBounds()));
            gaps << QString("%1: not all has come, %2 %: %3")
                        .arg(name)
                        .arg(layer->getPercentComplete())
                        .arg(textOf(missing.isNull() ? inView : missing));
        }
        const QRectF unreadable = areaFrom(*layer, "getUnreadableArea");
        if (!unreadable.isNull()) {
            gaps << QString("%1: cannot be read: %2").arg(name, textOf(unreadable));
        }
    }
    return gaps;
}

} // namespace Corvane::Viewer
