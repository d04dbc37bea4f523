#include <corvane/core/Integer.h>

#include <QtTest>

#include <cmath>
#include <limits>

using namespace Corvane::Util;

namespace {

constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

class IntegerTest : public QObject
{
    Q_OBJECT
private slots:
    void everyValueGoesToOneInt_data();
    void everyValueGoesToOneInt();
    void roundingIsQtsOwnWhereTheValueFits_data();
    void roundingIsQtsOwnWhereTheValueFits();
};

void IntegerTest::everyValueGoesToOneInt_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("truncated");
    QTest::addColumn<int>("rounded");
    QTest::addColumn<int>("roundedAway");

    QTest::newRow("zero") << 0.0 << 0 << 0 << 0;
    QTest::newRow("negative zero") << -0.0 << 0 << 0 << 0;
    QTest::newRow("below a half") << 0.4 << 0 << 0 << 0;
    QTest::newRow("a half goes up") << 0.5 << 0 << 1 << 1;
    QTest::newRow("minus a half goes up to zero or away from it") << -0.5 << 0 << 0 << -1;
    QTest::newRow("two and a half") << 2.5 << 2 << 3 << 3;
    QTest::newRow("minus two and a half") << -2.5 << -2 << -2 << -3;
    QTest::newRow("just beyond minus two and a half") << -2.5000001 << -2 << -3 << -3;
    QTest::newRow("minus one and a half") << -1.5 << -1 << -1 << -2;
    QTest::newRow("a whole number") << 7.0 << 7 << 7 << 7;
    QTest::newRow("a negative whole number") << -7.0 << -7 << -7 << -7;

    QTest::newRow("the largest int") << 2147483647.0 << largest << largest << largest;
    QTest::newRow("a little above the largest int")
        << 2147483647.4 << largest << largest << largest;
    QTest::newRow("rounds up to what does not fit")
        << 2147483647.5 << largest << smallest << smallest;
    QTest::newRow("one above the largest int") << 2147483648.0 << smallest << smallest << smallest;
    QTest::newRow("the smallest int") << -2147483648.0 << smallest << smallest << smallest;
    QTest::newRow("one above the smallest int")
        << -2147483647.0 << smallest + 1 << smallest + 1 << smallest + 1;
    QTest::newRow("half below the smallest int")
        << -2147483648.5 << smallest << smallest << smallest;
    QTest::newRow("one below the smallest int")
        << -2147483649.0 << smallest << smallest << smallest;
    QTest::newRow("far above") << 1e300 << smallest << smallest << smallest;
    QTest::newRow("far below") << -1e300 << smallest << smallest << smallest;
    QTest::newRow("infinity") << infinity << smallest << smallest << smallest;
    QTest::newRow("negative infinity") << -infinity << smallest << smallest << smallest;
    QTest::newRow("no number") << std::nan("") << smallest << smallest << smallest;
    QTest::newRow("the smallest positive double")
        << std::numeric_limits<double>::denorm_min() << 0 << 0 << 0;
}

void IntegerTest::everyValueGoesToOneInt()
{
    QFETCH(double, value);
    QTEST(truncateToInt(value), "truncated");
    QTEST(roundToInt(value), "rounded");
    QTEST(roundAwayFromZero(value), "roundedAway");
}

void IntegerTest::roundingIsQtsOwnWhereTheValueFits_data()
{
    QTest::addColumn<double>("value");
    const double values[] = {0.49999999999999994,
                             -0.49999999999999994,
                             0.5,
                             -0.5,
                             1.4999999999999998,
                             -1.4999999999999998,
                             -1.5000001,
                             123456.5,
                             -123456.5,
                             -123456.49,
                             2147483646.5,
                             -2147483646.5,
                             -2147483647.0,
                             1e-300,
                             -1e-300,
                             -0.0};
    for (const double value : values) {
        QTest::addRow("%.17g", value) << value;
    }
}

void IntegerTest::roundingIsQtsOwnWhereTheValueFits()
{
    QFETCH(double, value);
    QCOMPARE(roundToInt(value), qRound(value));
}

QTEST_APPLESS_MAIN(IntegerTest)
#include "IntegerTest.moc"
