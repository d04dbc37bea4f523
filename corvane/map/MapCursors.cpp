#include <corvane/map/MapCursors_p.h>

#include <QBitmap>
#include <QCursor>
#include <QPoint>
#include <QString>

namespace Corvane::Map {

namespace {

// hot spots, in pixels of the pictures
constexpr QPoint roamHotSpot(16, 16);
constexpr QPoint zoomHotSpot(12, 11);
constexpr QPoint zoomBoxHotSpot(2, 2);
constexpr QPoint pointHotSpot(0, 0);

struct CursorPictures
{
    CursorPictures(const char* bitmapName, const char* maskName)
        : bitmap(path(bitmapName)),
          mask(path(maskName))
    {
    }

    static QString path(const char* name)
    {
        return QStringLiteral(":/resources/Cursors/%1.png").arg(QLatin1String(name));
    }

    bool isNull() const { return bitmap.isNull() || mask.isNull(); }

    QCursor* cursor(const QPoint& hotSpot) const
    {
        return new QCursor(bitmap, mask, hotSpot.x(), hotSpot.y());
    }

    QBitmap bitmap;
    QBitmap mask;
};

MapCursors makeCursors()
{
    const CursorPictures roam("roamCur", "roamMask");
    const CursorPictures roaming("roaming", "roamingMask");
    const CursorPictures zoom("zoomCur", "zoomMask");
    const CursorPictures zoomBox("zoomboxCur", "zoomboxMask");
    const CursorPictures point("point", "pointMask");

    MapCursors cursors;
    // the pictures of roaming are not asked: both cursors stand or fall with those of roam
    const bool drawRoam = !roam.isNull();
    cursors.roam = drawRoam ? roam.cursor(roamHotSpot) : new QCursor(Qt::OpenHandCursor);
    cursors.roaming = drawRoam ? roaming.cursor(roamHotSpot) : new QCursor(Qt::ClosedHandCursor);
    const bool drawZoom = !zoom.isNull() && !zoomBox.isNull();
    cursors.zoom = drawZoom ? zoom.cursor(zoomHotSpot) : new QCursor(Qt::CrossCursor);
    cursors.zoomBox = drawZoom ? zoomBox.cursor(zoomBoxHotSpot) : new QCursor(Qt::CrossCursor);
    cursors.point = point.isNull() ? new QCursor(Qt::ArrowCursor) : point.cursor(pointHotSpot);
    return cursors;
}

} // namespace

const MapCursors& mapCursors()
{
    static const MapCursors cursors = makeCursors();
    return cursors;
}

} // namespace Corvane::Map
