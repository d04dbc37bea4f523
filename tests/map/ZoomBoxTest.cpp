#include <corvane/map/ZoomBox.h>

#include <QImage>
#include <QPainter>
#include <QTest>

using Corvane::Map::ZoomBox;

namespace {

QImage ground()
{
    QImage image(60, 60, QImage::Format_RGB32);
    image.fill(Qt::blue);
    return image;
}

QImage painted(ZoomBox& box)
{
    QImage image = ground();
    QPainter painter(&image);
    box.paint(painter, nullptr);
    return image;
}

/// A veil, and over it a frame that is filled with the same veil.
QImage expectedBox(const QRect& rect)
{
    const QBrush veil(QColor(255, 255, 255, 50));
    QImage image = ground();
    QPainter painter(&image);
    painter.fillRect(rect, veil);
    painter.setPen(QPen(QBrush(QColor(225, 0, 0)), 2));
    painter.setBrush(veil);
    painter.drawRect(rect);
    return image;
}

} // namespace

class ZoomBoxTest : public QObject
{
    Q_OBJECT
private slots:
    void drawsNothingWithoutARectangle_data();
    void drawsNothingWithoutARectangle();
    void drawsTheSameBoxFromAnyCorner_data();
    void drawsTheSameBoxFromAnyCorner();
    void paintsTheInsideTwice();
    void aCopyDrawsTheSame();
};

void ZoomBoxTest::drawsNothingWithoutARectangle_data()
{
    QTest::addColumn<QVector<int>>("corners");
    QTest::newRow("as it is made") << QVector<int>();
    QTest::newRow("without a first x") << QVector<int>({-1, 10, 40, 40});
    QTest::newRow("without a first y") << QVector<int>({10, -1, 40, 40});
    QTest::newRow("without a second x") << QVector<int>({10, 10, -1, 40});
    QTest::newRow("without a second y") << QVector<int>({10, 10, 40, -1});
}

void ZoomBoxTest::drawsNothingWithoutARectangle()
{
    QFETCH(QVector<int>, corners);
    ZoomBox box;
    if (!corners.isEmpty()) {
        box.setRect(corners.at(0), corners.at(1), corners.at(2), corners.at(3));
    }
    QCOMPARE(painted(box), ground());
}

void ZoomBoxTest::drawsTheSameBoxFromAnyCorner_data()
{
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("to");
    QTest::newRow("dragged down and right") << QPoint(10, 20) << QPoint(40, 45);
    QTest::newRow("dragged down and left") << QPoint(40, 20) << QPoint(10, 45);
    QTest::newRow("dragged up and right") << QPoint(10, 45) << QPoint(40, 20);
    QTest::newRow("dragged up and left") << QPoint(40, 45) << QPoint(10, 20);
}

void ZoomBoxTest::drawsTheSameBoxFromAnyCorner()
{
    QFETCH(QPoint, from);
    QFETCH(QPoint, to);
    ZoomBox box;
    box.setRect(from.x(), from.y(), to.x(), to.y());
    QCOMPARE(painted(box), expectedBox(QRect(10, 20, 30, 25)));
}

void ZoomBoxTest::paintsTheInsideTwice()
{
    ZoomBox box;
    box.setRect(10, 10, 50, 50);

    const QColor inside = painted(box).pixelColor(30, 30);

    QImage once = ground();
    QPainter painter(&once);
    painter.fillRect(once.rect(), QColor(255, 255, 255, 50));
    QVERIFY(inside.red() > once.pixelColor(30, 30).red());
    painter.fillRect(once.rect(), QColor(255, 255, 255, 50));
    QCOMPARE(inside, once.pixelColor(30, 30));
    QCOMPARE(painted(box).pixelColor(10, 30), QColor(225, 0, 0));
}

void ZoomBoxTest::aCopyDrawsTheSame()
{
    ZoomBox box;
    box.setRect(10, 20, 40, 45);
    ZoomBox copy(box);
    ZoomBox assigned;
    assigned = box;
    box.setRect(-1, -1, -1, -1);

    QCOMPARE(painted(copy), expectedBox(QRect(10, 20, 30, 25)));
    QCOMPARE(painted(assigned), expectedBox(QRect(10, 20, 30, 25)));
}

QTEST_MAIN(ZoomBoxTest)
#include "ZoomBoxTest.moc"
