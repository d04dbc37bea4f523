#include <corvane/map/HistogramT.h>
#include <corvane/map/IRasterLayerHistogram.h>

#include <QVector>
#include <QtTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <type_traits>

using Corvane::Map::IRasterLayerHistogram;
using Histogram = Corvane::Map::HistogramT<unsigned long long>;

namespace {

Histogram filled(const QString& name)
{
    Histogram histogram;
    histogram.counts = new unsigned long long[3]{4, 0xffffffffffffffffULL, 6};
    histogram.numberOfBins = 3;
    histogram.maximum = 255;
    histogram.minimum = 1;
    histogram.peakCount = 7;
    histogram.totalCount = 15;
    histogram.mean = 0.5;
    histogram.median = 1.5;
    histogram.standardDeviation = 2.5;
    histogram.mode = 3.5;
    histogram.bandName = name;
    return histogram;
}

bool same(const Histogram& a, const Histogram& b)
{
    return a.numberOfBins == b.numberOfBins && a.maximum == b.maximum && a.minimum == b.minimum &&
           a.peakCount == b.peakCount && a.totalCount == b.totalCount && a.mean == b.mean &&
           a.median == b.median && a.standardDeviation == b.standardDeviation && a.mode == b.mode &&
           a.bandName == b.bandName &&
           std::equal(a.counts, a.counts + a.numberOfBins, b.counts, b.counts + b.numberOfBins);
}

} // namespace

class HistogramTTest : public QObject
{
    Q_OBJECT

private slots:
    void startsEmpty();
    void fieldsStandInOrderBehindTheDestructorsTable();
    void aCopyIsDeep();
    void assignmentFreesTheOldCountsAndCopiesDeeply();
    void assignmentToItselfKeepsTheCounts();
    void aCopyOfAnEmptyRecordIsEmpty();
    void aDetachedVectorCopiesItsRecordsDeeply();
    void itsDestructorIsVirtual();
    void theInterfaceHasTheIdThatPluginsAskBy();
};

void HistogramTTest::startsEmpty()
{
    const Histogram histogram;
    QVERIFY(!histogram.counts);
    QCOMPARE(histogram.numberOfBins, 0u);
    QCOMPARE(histogram.maximum, 0ULL);
    QCOMPARE(histogram.minimum, 0ULL);
    QCOMPARE(histogram.peakCount, 0ULL);
    QCOMPARE(histogram.totalCount, 0ULL);
    QCOMPARE(histogram.mean, 0.0);
    QCOMPARE(histogram.median, 0.0);
    QCOMPARE(histogram.standardDeviation, 0.0);
    QCOMPARE(histogram.mode, 0.0);
    QVERIFY(histogram.bandName.isEmpty());
}

void HistogramTTest::fieldsStandInOrderBehindTheDestructorsTable()
{
    const Histogram histogram;
    const QVector<const void*> fields = {
        &histogram.counts,  &histogram.numberOfBins, &histogram.maximum,
        &histogram.minimum, &histogram.peakCount,    &histogram.totalCount,
        &histogram.mean,    &histogram.median,       &histogram.standardDeviation,
        &histogram.mode,    &histogram.bandName};
    QVERIFY(std::is_sorted(fields.begin(), fields.end(), std::less<const void*>()));
    QVERIFY(static_cast<const void*>(&histogram) != fields.first());
}

void HistogramTTest::aCopyIsDeep()
{
    const Histogram original = filled(QStringLiteral("Red"));
    Histogram copy(original);
    QVERIFY(same(copy, original));
    QVERIFY(copy.counts != original.counts);
    copy.counts[0] = 99;
    QCOMPARE(original.counts[0], 4ULL);
}

void HistogramTTest::assignmentFreesTheOldCountsAndCopiesDeeply()
{
    const Histogram original = filled(QStringLiteral("Red"));
    Histogram other = filled(QStringLiteral("Green"));
    other.counts[2] = 1;
    other = original;
    QVERIFY(same(other, original));
    QVERIFY(other.counts != original.counts);
    other = Histogram();
    QVERIFY(!other.counts);
    QCOMPARE(other.numberOfBins, 0u);
}

void HistogramTTest::assignmentToItselfKeepsTheCounts()
{
    Histogram histogram = filled(QStringLiteral("Red"));
    const Histogram& itself = histogram;
    histogram = itself;
    QVERIFY(same(histogram, filled(QStringLiteral("Red"))));
}

void HistogramTTest::aCopyOfAnEmptyRecordIsEmpty()
{
    const Histogram empty;
    const Histogram copy(empty);
    QVERIFY(!copy.counts);
    QVERIFY(same(copy, empty));
}

void HistogramTTest::aDetachedVectorCopiesItsRecordsDeeply()
{
    const QVector<Histogram> bands = {filled(QStringLiteral("Red")),
                                      filled(QStringLiteral("Blue"))};
    QVector<Histogram> detached = bands;
    QCOMPARE(detached.constData(), bands.constData()); // shared as yet
    detached[1].counts[0] = 99;
    QCOMPARE(bands.at(1).counts[0], 4ULL);
    QVERIFY(detached.at(0).counts != bands.at(0).counts);
    QVERIFY(same(detached.at(0), bands.at(0)));
}

void HistogramTTest::itsDestructorIsVirtual()
{
    QVERIFY(std::has_virtual_destructor<Histogram>::value);
    class Named : public Histogram
    {
    public:
        explicit Named(bool& newGone) : gone(newGone) {}
        ~Named() override { gone = true; }
        bool& gone;
    };
    bool gone = false;
    std::unique_ptr<Histogram>(new Named(gone)).reset();
    QVERIFY(gone);
}

void HistogramTTest::theInterfaceHasTheIdThatPluginsAskBy()
{
    QCOMPARE(QByteArray(qobject_interface_iid<IRasterLayerHistogram*>()),
             QByteArray("com.corvane.viewer.IRasterLayerHistogram/1.0"));
}

QTEST_GUILESS_MAIN(HistogramTTest)
#include "HistogramTTest.moc"
