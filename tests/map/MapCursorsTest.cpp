#include "MapViewTools.h"

#include <corvane/map/MapCursors_p.h>

#include <QBitmap>
#include <QCursor>
#include <QDir>
#include <QFile>

#include <memory>

using Corvane::Map::makeMapCursors;
using Corvane::Map::MapCursors;
using Corvane::Map::mapCursors;

namespace {

QDir pictures()
{
    return QDir(QStringLiteral(":/resources/Cursors"));
}

/// Owns a set that a test has made.
struct Cursors
{
    explicit Cursors(const MapCursors& set)
        : roam(set.roam),
          roaming(set.roaming),
          zoom(set.zoom),
          zoomBox(set.zoomBox),
          point(set.point)
    {
    }

    QList<Qt::CursorShape> shapes() const
    {
        return {roam->shape(), roaming->shape(), zoom->shape(), zoomBox->shape(), point->shape()};
    }

    std::unique_ptr<QCursor> roam, roaming, zoom, zoomBox, point;
};

} // namespace

class MapCursorsTest : public QObject
{
    Q_OBJECT
private slots:
    void drawsTheCursorsOfTheResourceTree_data();
    void drawsTheCursorsOfTheResourceTree();
    void isMadeOnce();
    void aMissingPictureGivesTheBuiltInShape_data();
    void aMissingPictureGivesTheBuiltInShape();
    void roamingStandsAndFallsWithRoam();
};

void MapCursorsTest::drawsTheCursorsOfTheResourceTree_data()
{
    QTest::addColumn<QCursor>("cursor");
    QTest::addColumn<QString>("bitmap");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QPoint>("hotSpot");
    const MapCursors& set = mapCursors();
    QTest::newRow("roam") << *set.roam << "roamCur.png"
                          << "roamMask.png" << QPoint(16, 16);
    QTest::newRow("roaming") << *set.roaming << "roaming.png"
                             << "roamingMask.png" << QPoint(16, 16);
    QTest::newRow("zoom") << *set.zoom << "zoomCur.png"
                          << "zoomMask.png" << QPoint(12, 11);
    QTest::newRow("zoom box") << *set.zoomBox << "zoomboxCur.png"
                              << "zoomboxMask.png" << QPoint(2, 2);
    QTest::newRow("point") << *set.point << "point.png"
                           << "pointMask.png" << QPoint(0, 0);
}

void MapCursorsTest::drawsTheCursorsOfTheResourceTree()
{
    QFETCH(QCursor, cursor);
    QFETCH(QString, bitmap);
    QFETCH(QString, mask);
    QFETCH(QPoint, hotSpot);
    QCOMPARE(cursor.shape(), Qt::BitmapCursor);
    QCOMPARE(cursor.bitmap(Qt::ReturnByValue).toImage(),
             QBitmap(pictures().filePath(bitmap)).toImage());
    QCOMPARE(cursor.mask(Qt::ReturnByValue).toImage(),
             QBitmap(pictures().filePath(mask)).toImage());
    QCOMPARE(cursor.hotSpot(), hotSpot);
}

void MapCursorsTest::isMadeOnce()
{
    QCOMPARE(mapCursors().roam, mapCursors().roam);
}

void MapCursorsTest::aMissingPictureGivesTheBuiltInShape_data()
{
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QList<Qt::CursorShape>>("shapes");
    const auto drawn = Qt::BitmapCursor;
    const QList<Qt::CursorShape> noRoam = {Qt::OpenHandCursor, Qt::ClosedHandCursor, drawn, drawn,
                                           drawn};
    const QList<Qt::CursorShape> noZoom = {drawn, drawn, Qt::CrossCursor, Qt::CrossCursor, drawn};
    const QList<Qt::CursorShape> noPoint = {drawn, drawn, drawn, drawn, Qt::ArrowCursor};
    QTest::newRow("roam falls with its bitmap") << "roamCur.png" << noRoam;
    QTest::newRow("roam falls with its mask") << "roamMask.png" << noRoam;
    QTest::newRow("both zooms fall with the bitmap of zoom") << "zoomCur.png" << noZoom;
    QTest::newRow("both zooms fall with the mask of zoom") << "zoomMask.png" << noZoom;
    QTest::newRow("both zooms fall with the bitmap of the box") << "zoomboxCur.png" << noZoom;
    QTest::newRow("both zooms fall with the mask of the box") << "zoomboxMask.png" << noZoom;
    QTest::newRow("point falls with its bitmap") << "point.png" << noPoint;
    QTest::newRow("point falls with its mask") << "pointMask.png" << noPoint;
}

void MapCursorsTest::aMissingPictureGivesTheBuiltInShape()
{
    QFETCH(QString, missing);
    QFETCH(QList<Qt::CursorShape>, shapes);
    QTemporaryDir folder;
    for (const QString& name : pictures().entryList()) {
        if (name != missing) {
            QVERIFY(QFile::copy(pictures().filePath(name), folder.filePath(name)));
        }
    }

    const Cursors cursors(makeMapCursors(QDir(folder.path())));

    QCOMPARE(cursors.shapes(), shapes);
}

void MapCursorsTest::roamingStandsAndFallsWithRoam()
{
    QTemporaryDir folder;
    for (const char* name : {"roamCur.png", "roamMask.png"}) {
        QVERIFY(QFile::copy(pictures().filePath(name), folder.filePath(name)));
    }
    // what Qt makes of a cursor without pictures
    QTest::ignoreMessage(QtWarningMsg, "QCursor: Cannot create bitmap cursor; invalid bitmap(s)");

    const Cursors cursors(makeMapCursors(QDir(folder.path())));

    QCOMPARE(cursors.shapes(),
             QList<Qt::CursorShape>({Qt::BitmapCursor, Qt::ArrowCursor, Qt::CrossCursor,
                                     Qt::CrossCursor, Qt::ArrowCursor}));
}

MAP_TEST_MAIN(MapCursorsTest)
#include "MapCursorsTest.moc"
