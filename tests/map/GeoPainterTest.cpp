#include <corvane/map/GeoPainter.h>

#include <corvane/map/GeoImage.h>

#include <QImage>
#include <QPainterPath>
#include <QPolygonF>
#include <QtTest>

#include <cmath>
#include <limits>

using Corvane::GeoImage;
using Corvane::GeoPainter;

namespace {

constexpr int canvasSize = 40;
constexpr int smallestInt = std::numeric_limits<int>::min();
constexpr int largestInt = std::numeric_limits<int>::max();

QImage canvas()
{
    QImage image(canvasSize, canvasSize, QImage::Format_ARGB32);
    image.fill(Qt::white);
    return image;
}

/// One unit per pixel from 0, 0 down to 40, 40: the device spans right minus left, 40 pixels.
QRectF unitWorld()
{
    return QRectF(QPointF(0.0, 0.0), QPointF(40.0, 40.0));
}

QRect unitScreen()
{
    return QRect(QPoint(0, 0), QPoint(40, 40));
}

/// What is painted on a canvas that shows world; paint gets the painter.
template <typename Paint>
QImage painted(QRectF world, QRect screen, Paint paint)
{
    QImage image = canvas();
    GeoPainter painter(&image, world, screen);
    paint(painter);
    painter.end();
    return image;
}

QPoint toDevice(const GeoPainter& painter, double wx, double wy)
{
    int x = 0;
    int y = 0;
    painter.mapWorldToDevice(wx, wy, &x, &y);
    return QPoint(x, y);
}

QPointF toWorld(GeoPainter& painter, int x, int y)
{
    double wx = 0.0;
    double wy = 0.0;
    painter.mapDeviceToWorld(x, y, &wx, &wy);
    return QPointF(wx, wy);
}

QVector<QPointF> corners(const QPainterPath& path)
{
    QVector<QPointF> result;
    for (int i = 0; i < path.elementCount(); ++i) {
        result << path.elementAt(i);
    }
    return result;
}

} // namespace

class GeoPainterTest : public QObject
{
    Q_OBJECT

private slots:
    void mappingRunsFromCornerToCorner_data();
    void mappingRunsFromCornerToCorner();
    void worldToDeviceRoundsHalvesUpward_data();
    void worldToDeviceRoundsHalvesUpward();
    void collapsedRectanglesGiveTheSmallestIntAndNaN();

    void worldRectIsDrawnBetweenItsCorners_data();
    void worldRectIsDrawnBetweenItsCorners();
    void aRectBeyondTheIntsDoesNotOverflow();
    void worldPolylineIsDrawnInOrder();
    void worldClipIsTheRectangleAndReplacesTheOldClip();
    void worldClipBeginsAtTheOrigin();
    void worldClipUsesXForBothAxes();
    void worldClipByPolygonReplacesTheOldClip();
    void geoImagesAreNotDrawn();
};

void GeoPainterTest::mappingRunsFromCornerToCorner_data()
{
    QTest::addColumn<QPoint>("device");
    QTest::addColumn<QPointF>("world");
    QTest::newRow("the first corner is the world's top left") << QPoint(10, 5) << QPointF(100, 50);
    QTest::newRow("the last pixel is the world's bottom right")
        << QPoint(29, 24) << QPointF(138, 12);
    QTest::newRow("inside the scale holds") << QPoint(20, 15) << QPointF(120, 30);
    QTest::newRow("outside the scale goes on") << QPoint(0, 30) << QPointF(80, 0);
}

void GeoPainterTest::mappingRunsFromCornerToCorner()
{
    QFETCH(QPoint, device);
    QFETCH(QPointF, world);
    painted(QRectF(100.0, 50.0, 38.0, -38.0), QRect(10, 5, 20, 20), [&](GeoPainter& painter) {
        QCOMPARE(toDevice(painter, world.x(), world.y()), device);
        QCOMPARE(toWorld(painter, device.x(), device.y()), world);
    });
}

void GeoPainterTest::worldToDeviceRoundsHalvesUpward_data()
{
    QTest::addColumn<double>("world");
    QTest::addColumn<int>("device");
    QTest::newRow("a half goes up") << 2.5 << 3;
    QTest::newRow("a negative half goes up too") << -2.5 << -2;
    QTest::newRow("beyond the negative half goes down") << -2.75 << -3;
    QTest::newRow("below the half goes down") << 2.25 << 2;
    QTest::newRow("what fits no int becomes the smallest") << 1e12 << smallestInt;
}

void GeoPainterTest::worldToDeviceRoundsHalvesUpward()
{
    QFETCH(double, world);
    QFETCH(int, device);
    painted(unitWorld(), unitScreen(), [&](GeoPainter& painter) {
        QCOMPARE(toDevice(painter, world, world), QPoint(device, device));
    });
}

void GeoPainterTest::collapsedRectanglesGiveTheSmallestIntAndNaN()
{
    painted(QRectF(5.0, 5.0, 0.0, 0.0), unitScreen(), [](GeoPainter& painter) {
        QCOMPARE(toDevice(painter, 5.0, 6.0), QPoint(smallestInt, smallestInt));
        QCOMPARE(toWorld(painter, 7, 8), QPointF(5.0, 5.0));
    });
    painted(unitWorld(), QRect(QPoint(5, 5), QPoint(5, 5)), [](GeoPainter& painter) {
        QCOMPARE(toDevice(painter, 30.0, 6.0), QPoint(5, 5));
        QVERIFY(std::isnan(toWorld(painter, 5, 5).x()));
        QVERIFY(std::isinf(toWorld(painter, 6, 6).y()));
    });
    painted(unitWorld(), QRect(QPoint(smallestInt, 0), QPoint(largestInt, 40)),
            [](GeoPainter& painter) {
                QCOMPARE(toWorld(painter, largestInt, 40), QPointF(40.0, 40.0));
                QCOMPARE(toDevice(painter, 40.0, 40.0), QPoint(largestInt, 40));
            });
}

void GeoPainterTest::worldRectIsDrawnBetweenItsCorners_data()
{
    QTest::addColumn<QPointF>("a");
    QTest::addColumn<QPointF>("b");
    QTest::addColumn<QRect>("rect");
    QTest::newRow("from the top left") << QPointF(5, 7) << QPointF(20, 30) << QRect(5, 7, 15, 23);
    QTest::newRow("from the bottom right it has negative sides")
        << QPointF(20, 30) << QPointF(5, 7) << QRect(20, 30, -15, -23);
    QTest::newRow("both corners are rounded")
        << QPointF(4.5, 6.75) << QPointF(19.75, 29.5) << QRect(5, 7, 15, 23);
    QTest::newRow("beyond the canvas it is cut")
        << QPointF(-100, 10) << QPointF(100, 20) << QRect(-100, 10, 200, 10);
}

void GeoPainterTest::worldRectIsDrawnBetweenItsCorners()
{
    QFETCH(QPointF, a);
    QFETCH(QPointF, b);
    QFETCH(QRect, rect);
    const auto prepare = [](QPainter& painter) {
        painter.setPen(Qt::red);
        painter.setBrush(Qt::blue);
    };
    const QImage inWorld = painted(unitWorld(), unitScreen(), [&](GeoPainter& painter) {
        prepare(painter);
        painter.drawWorldRect(a, b);
    });
    const QImage inDevice = painted(unitWorld(), unitScreen(), [&](GeoPainter& painter) {
        prepare(painter);
        painter.drawRect(rect.x(), rect.y(), rect.width(), rect.height());
    });
    QCOMPARE(inWorld, inDevice);
    QVERIFY(inWorld != canvas());
}

void GeoPainterTest::aRectBeyondTheIntsDoesNotOverflow()
{
    painted(unitWorld(), unitScreen(), [](GeoPainter& painter) {
        QPointF near(3.0, 3.0);
        QPointF far(1e12, 1e12);
        painter.drawWorldRect(near, far);
        painter.drawWorldRect(far, near);
        painter.setWorldClip(near, far);
        // the far corner is the smallest int, left of and above the near one
        const QPainterPath clip = painter.clipPath();
        QCOMPARE(clip.elementCount(), 5);
        QCOMPARE(clip.boundingRect().bottomRight(), QPointF(3.0, 3.0));
    });
}

void GeoPainterTest::worldPolylineIsDrawnInOrder()
{
    QVector<QPointF> points = {QPointF(2, 2), QPointF(30.25, 5), QPointF(10, 35), QPointF(2.5, 8)};
    const QImage inWorld = painted(unitWorld(), unitScreen(), [&](GeoPainter& painter) {
        painter.drawWorldPolylineF(points);
    });
    const QImage inDevice = painted(unitWorld(), unitScreen(), [&](GeoPainter& painter) {
        painter.drawPolyline(QPolygon({QPoint(2, 2), QPoint(30, 5), QPoint(10, 35), QPoint(3, 8)}));
    });
    QCOMPARE(inWorld, inDevice);
    QVERIFY(inWorld != canvas());

    QVector<QPointF> none;
    QCOMPARE(painted(unitWorld(), unitScreen(),
                     [&](GeoPainter& painter) { painter.drawWorldPolylineF(none); }),
             canvas());
}

void GeoPainterTest::worldClipIsTheRectangleAndReplacesTheOldClip()
{
    const QImage image = painted(unitWorld(), unitScreen(), [](GeoPainter& painter) {
        painter.setClipRect(0, 0, 1, 1);
        QPointF a(5.25, 10.0);
        QPointF b(24.5, 30.0);
        painter.setWorldClip(a, b);
        painter.fillRect(0, 0, canvasSize, canvasSize, Qt::red);
    });
    QImage expected = canvas();
    for (int y = 10; y < 30; ++y) {
        for (int x = 5; x < 25; ++x) {
            expected.setPixelColor(x, y, Qt::red);
        }
    }
    QCOMPARE(image, expected);
}

void GeoPainterTest::worldClipBeginsAtTheOrigin()
{
    painted(unitWorld(), unitScreen(), [](GeoPainter& painter) {
        QPolygonF triangle(QVector<QPointF>{QPointF(10, 0), QPointF(20, 0), QPointF(30, 0)});
        painter.setWorldClip(triangle);
        QCOMPARE(corners(painter.clipPath()),
                 QVector<QPointF>({QPointF(0, 0), QPointF(0, 0), QPointF(0, 0), QPointF(10, 10),
                                   QPointF(20, 20), QPointF(30, 30)}));
    });
}

void GeoPainterTest::worldClipUsesXForBothAxes()
{
    // two units per pixel across, four down, y upward: y comes from x by the vertical rule
    painted(QRectF(QPointF(0.0, 160.0), QPointF(80.0, 0.0)), unitScreen(), [](GeoPainter& painter) {
        QPolygonF polygon(QVector<QPointF>{QPointF(20, 999), QPointF(60, -999), QPointF(43, 0)});
        painter.setWorldClip(polygon);
        QCOMPARE(corners(painter.clipPath()).mid(3),
                 QVector<QPointF>({QPointF(10, 35), QPointF(30, 25), QPointF(22, 29)}));
    });
}

void GeoPainterTest::worldClipByPolygonReplacesTheOldClip()
{
    // y from x makes these vertices a triangle with the origin: (0, 0), (10, 30), (30, 10)
    const QRectF world(QPointF(0.0, 40.0), QPointF(40.0, 0.0));
    const QImage image = painted(world, unitScreen(), [](GeoPainter& painter) {
        painter.setClipRect(39, 39, 1, 1);
        QPolygonF line(QVector<QPointF>{QPointF(10, 1), QPointF(30, 2)});
        painter.setWorldClip(line);
        painter.fillRect(0, 0, canvasSize, canvasSize, Qt::red);
    });
    QCOMPARE(image.pixelColor(12, 12), QColor(Qt::red));
    QCOMPARE(image.pixelColor(18, 18), QColor(Qt::red));
    QCOMPARE(image.pixelColor(24, 24), QColor(Qt::white));
    QCOMPARE(image.pixelColor(3, 15), QColor(Qt::white));
    QCOMPARE(image.pixelColor(39, 39), QColor(Qt::white));
}

void GeoPainterTest::geoImagesAreNotDrawn()
{
    GeoImage image(10, 10, 0.0, 0.0, 10.0, 10.0, QImage::Format_ARGB32, nullptr);
    image.fill(Qt::red);
    QCOMPARE(painted(unitWorld(), unitScreen(),
                     [&](GeoPainter& painter) { painter.drawGeoImage(&image); }),
             canvas());
}

QTEST_GUILESS_MAIN(GeoPainterTest)
#include "GeoPainterTest.moc"
