#include <corvane/core/Envelope.h>

#include <QPoint>
#include <QtTest>

using Corvane::Util::Map::Envelope;

Q_DECLARE_METATYPE(Envelope)

class EnvelopeTest : public QObject
{
    Q_OBJECT
private slots:
    void startsAsNothing();
    void isMadeOfTwoCorners();
    void isAPlainValue();
    void sizesCanBeNegative();
    void limitsAreRightInEitherOrientation_data();
    void limitsAreRightInEitherOrientation();
    void validity_data();
    void validity();
    void edgesBelongToTheInside_data();
    void edgesBelongToTheInside();
    void twoValidEnvelopesNeverIntersect_data();
    void twoValidEnvelopesNeverIntersect();
    void intersectionIsForYGrowingDownward_data();
    void intersectionIsForYGrowingDownward();
    void uniteReadsOnlyTheOthersTopLeftCorner_data();
    void uniteReadsOnlyTheOthersTopLeftCorner();
    void theXmlElementHasSixDigits();
};

namespace {

QList<double> cornersOf(const Envelope& envelope)
{
    return {envelope.topLeft().x(), envelope.topLeft().y(), envelope.bottomRight().x(),
            envelope.bottomRight().y()};
}

} // namespace

void EnvelopeTest::startsAsNothing()
{
    const Envelope envelope;
    QCOMPARE(cornersOf(envelope), QList<double>({0, 0, 0, 0}));
    QVERIFY(!envelope.isValid());
    QCOMPARE(envelope.width(), 0.0);
    QCOMPARE(envelope.height(), 0.0);
}

void EnvelopeTest::isMadeOfTwoCorners()
{
    QPointF topLeft(1, 20);
    QPointF bottomRight(11, 5);
    const Envelope envelope(topLeft, bottomRight);
    QCOMPARE(envelope.topLeft(), QPointF(1, 20));
    QCOMPARE(envelope.bottomRight(), QPointF(11, 5));
    QCOMPARE(cornersOf(envelope), cornersOf(Envelope(1, 20, 11, 5)));
    QCOMPARE(envelope.width(), 10.0);
    QCOMPARE(envelope.height(), 15.0);
}

void EnvelopeTest::isAPlainValue()
{
    Envelope copy;
    {
        const Envelope original(1, 2, 3, -4);
        copy = original;
    }
    QCOMPARE(cornersOf(copy), QList<double>({1, 2, 3, -4}));
}

void EnvelopeTest::sizesCanBeNegative()
{
    const Envelope envelope(10, 1, 4, 9);
    QCOMPARE(envelope.width(), -6.0);
    QCOMPARE(envelope.height(), -8.0);
}

void EnvelopeTest::limitsAreRightInEitherOrientation_data()
{
    QTest::addColumn<Envelope>("envelope");
    QTest::newRow("y grows north") << Envelope(-3, 9, 4, 2);
    QTest::newRow("y grows downward") << Envelope(-3, 2, 4, 9);
    QTest::newRow("mirrored") << Envelope(4, 9, -3, 2);
    QTest::newRow("upside down and mirrored") << Envelope(4, 2, -3, 9);
}

void EnvelopeTest::limitsAreRightInEitherOrientation()
{
    QFETCH(Envelope, envelope);
    QCOMPARE(envelope.minX(), -3.0);
    QCOMPARE(envelope.maxX(), 4.0);
    QCOMPARE(envelope.minY(), 2.0);
    QCOMPARE(envelope.maxY(), 9.0);
}

void EnvelopeTest::validity_data()
{
    QTest::addColumn<Envelope>("envelope");
    QTest::addColumn<bool>("valid");
    QTest::newRow("y grows north") << Envelope(1, 9, 4, 2) << true;
    QTest::newRow("a point") << Envelope(1, 2, 1, 2) << true;
    QTest::newRow("a line") << Envelope(1, 2, 5, 2) << true;
    QTest::newRow("top left is the origin") << Envelope(0, 0, 4, -2) << false;
    QTest::newRow("top left is the negative origin") << Envelope(-0.0, -0.0, 4, -2) << false;
    QTest::newRow("bottom right is the origin") << Envelope(-4, 2, 0, 0) << false;
    QTest::newRow("top left lies on an axis") << Envelope(0, 1, 4, -2) << true;
    QTest::newRow("bottom right lies on an axis") << Envelope(-4, 2, 1, 0) << true;
    QTest::newRow("mirrored") << Envelope(4, 9, 1, 2) << false;
    QTest::newRow("upside down") << Envelope(1, 2, 4, 9) << false;
}

void EnvelopeTest::validity()
{
    QFETCH(Envelope, envelope);
    QTEST(envelope.isValid(), "valid");
}

void EnvelopeTest::edgesBelongToTheInside_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<bool>("inside");
    QTest::newRow("middle") << QPoint(15, 35) << true;
    QTest::newRow("left edge") << QPoint(10, 35) << true;
    QTest::newRow("right edge") << QPoint(20, 35) << true;
    QTest::newRow("top edge") << QPoint(15, 40) << true;
    QTest::newRow("bottom edge") << QPoint(15, 30) << true;
    QTest::newRow("top left corner") << QPoint(10, 40) << true;
    QTest::newRow("bottom right corner") << QPoint(20, 30) << true;
    QTest::newRow("left of it") << QPoint(9, 35) << false;
    QTest::newRow("right of it") << QPoint(21, 35) << false;
    QTest::newRow("above it") << QPoint(15, 41) << false;
    QTest::newRow("below it") << QPoint(15, 29) << false;
}

void EnvelopeTest::edgesBelongToTheInside()
{
    QFETCH(QPoint, point);
    QTEST(Envelope(10, 40, 20, 30).contains(point), "inside");
}

void EnvelopeTest::twoValidEnvelopesNeverIntersect_data()
{
    QTest::addColumn<Envelope>("one");
    QTest::addColumn<Envelope>("other");
    QTest::newRow("the same") << Envelope(1, 9, 5, 2) << Envelope(1, 9, 5, 2);
    QTest::newRow("overlapping") << Envelope(1, 9, 5, 2) << Envelope(3, 6, 8, -1);
    QTest::newRow("one in the other") << Envelope(1, 9, 9, 1) << Envelope(3, 6, 4, 5);
    QTest::newRow("apart") << Envelope(1, 9, 5, 2) << Envelope(11, 9, 15, 2);
}

void EnvelopeTest::twoValidEnvelopesNeverIntersect()
{
    QFETCH(Envelope, one);
    QFETCH(Envelope, other);
    QVERIFY(one.isValid() && other.isValid());
    QVERIFY(!one.intersects(other));
    QVERIFY(!other.intersects(one));
}

void EnvelopeTest::intersectionIsForYGrowingDownward_data()
{
    QTest::addColumn<Envelope>("other");
    QTest::addColumn<bool>("meets");
    QTest::newRow("overlapping") << Envelope(15, 35, 25, 45) << true;
    QTest::newRow("inside") << Envelope(12, 32, 13, 33) << true;
    QTest::newRow("the same") << Envelope(10, 30, 20, 40) << true;
    QTest::newRow("sharing the right edge") << Envelope(20, 30, 30, 40) << false;
    QTest::newRow("sharing the left edge") << Envelope(0, 30, 10, 40) << false;
    QTest::newRow("sharing the lower edge") << Envelope(10, 40, 20, 50) << false;
    QTest::newRow("sharing the upper edge") << Envelope(10, 20, 20, 30) << false;
    QTest::newRow("to the right") << Envelope(21, 30, 31, 40) << false;
    QTest::newRow("above") << Envelope(10, 10, 20, 29) << false;
}

void EnvelopeTest::intersectionIsForYGrowingDownward()
{
    QFETCH(Envelope, other);
    Envelope one(10, 30, 20, 40);
    QTEST(one.intersects(other), "meets");
    QTEST(other.intersects(one), "meets");
}

void EnvelopeTest::uniteReadsOnlyTheOthersTopLeftCorner_data()
{
    QTest::addColumn<Envelope>("other");
    QTest::addColumn<QList<double>>("result");
    QTest::newRow("to the left and above: its top becomes the right edge, not the top")
        << Envelope(-5, 90, 100, -100) << QList<double>({-5, 40, 90, 30});
    QTest::newRow("far to the right: its left becomes the top")
        << Envelope(60, 15, 100, -100) << QList<double>({10, 60, 20, 15});
    QTest::newRow("below: its top becomes the bottom")
        << Envelope(15, 3, 100, -100) << QList<double>({10, 40, 20, 3});
    QTest::newRow("inside: nothing changes but the right edge")
        << Envelope(15, 35, 16, 34) << QList<double>({10, 40, 35, 30});
}

void EnvelopeTest::uniteReadsOnlyTheOthersTopLeftCorner()
{
    QFETCH(Envelope, other);
    QFETCH(QList<double>, result);
    const Envelope one(10, 40, 20, 30);
    QCOMPARE(cornersOf(one.unite(other)), result);

    Envelope sameTopLeft(other.topLeft().x(), other.topLeft().y(), 7777, -7777);
    QCOMPARE(cornersOf(one.unite(sameTopLeft)), result);
}

void EnvelopeTest::theXmlElementHasSixDigits()
{
    QCOMPARE(
        Envelope(1234567.89, -0.5, 12.3456789, 0).toXMLElement(),
        QStringLiteral("<envelope tlx=\"1.23457e+06\" tly=\"-0.5\" brx=\"12.3457\" bry=\"0\"/>"));
}

QTEST_APPLESS_MAIN(EnvelopeTest)
#include "EnvelopeTest.moc"
