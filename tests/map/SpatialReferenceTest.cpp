#include <corvane/map/SpatialReference.h>

#include <QtTest>

#include <limits>

using Corvane::Map::SpatialReference;

class SpatialReferenceTest : public QObject
{
    Q_OBJECT

private slots:
    void startsWithoutACode();
    void itsTextIsTheCodeInDecimal_data();
    void itsTextIsTheCodeInDecimal();
    void aSubclassMayRefuseACode();
};

void SpatialReferenceTest::startsWithoutACode()
{
    SpatialReference reference;
    QCOMPARE(reference.epsg, 0);
    QCOMPARE(reference.toString(), QStringLiteral("epsg:0"));
}

void SpatialReferenceTest::itsTextIsTheCodeInDecimal_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("degrees") << 4326 << "epsg:4326";
    QTest::newRow("a long code without separators") << 900913 << "epsg:900913";
    QTest::newRow("a negative code, which nobody refuses") << -1 << "epsg:-1";
    QTest::newRow("the largest code") << std::numeric_limits<int>::max() << "epsg:2147483647";
}

void SpatialReferenceTest::itsTextIsTheCodeInDecimal()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    SpatialReference reference;
    QVERIFY(reference.setEpsg(code));
    QCOMPARE(reference.epsg, code);
    QCOMPARE(reference.toString(), text);
    SpatialReference copy = reference;
    QCOMPARE(copy.toString(), text);
}

void SpatialReferenceTest::aSubclassMayRefuseACode()
{
    class Metres : public SpatialReference
    {
    public:
        bool setEpsg(int code) override { return code != 4326 && SpatialReference::setEpsg(code); }
        QString toString() override { return QStringLiteral("metres"); }
    };
    Metres metres;
    SpatialReference& reference = metres;
    QVERIFY(!reference.setEpsg(4326));
    QCOMPARE(reference.epsg, 0);
    QVERIFY(reference.setEpsg(3857));
    QCOMPARE(reference.toString(), QStringLiteral("metres"));
}

QTEST_GUILESS_MAIN(SpatialReferenceTest)
#include "SpatialReferenceTest.moc"
