#include <corvane/map/MapCursors_p.h>

#include <QBitmap>
#include <QCursor>
#include <QDir>
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
    CursorPictures(const QDir& folder, const QString& bitmapFile, const QString& maskFile)
        : bitmap(folder.filePath(bitmapFile)),
          mask(folder.filePath(maskFile))
    {
    }

    bool isNull() const { return bitmap.isNull() || mask.isNull(); }

    QCursor* cursor(const QPoint& hotSpot) const
    {
        return new QCursor(bitmap, mask, hotSpot.x(), hotSpot.y());
    }

    QBitmap bitmap;
    QBitmap mask;
};

} // namespace

MapCursors makeMapCursors(const QDir& folder)
{
    const CursorPictures roam(folder, QStringLiteral("roamCur.png"),
                              QStringLiteral("roamMask.png"));
    const CursorPictures roaming(folder, QStringLiteral("roaming.png"),
                                 QStringLiteral("roamingMask.png"));
    const CursorPictures zoom(folder, QStringLiteral("zoomCur.png"),
                              QStringLiteral("zoomMask.png"));
    const CursorPictures zoomBox(folder, QStringLiteral("zoomboxCur.png"),
                                 QStringLiteral("zoomboxMask.png"));
    const CursorPictures point(folder, QStringLiteral("point.png"),
                               QStringLiteral("pointMask.png"));

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

const MapCursors& mapCursors()
{
    static const MapCursors cursors = makeMapCursors(QDir(QStringLiteral(":/resources/Cursors")));
    return cursors;
}

} // namespace Corvane::Map
