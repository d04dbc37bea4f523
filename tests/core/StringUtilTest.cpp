#include <corvane/core/StringUtil.h>

#include <QLocale>
#include <QtTest>

#include <limits>

using namespace Corvane::Util::String;

class StringUtilTest : public QObject
{
    Q_OBJECT
private slots:
    void cleanup();
    void eastingAndNorthingHaveEightDecimals();
    void rawCoordinatesHaveSixAndEightDecimals();
    void separatorsAreTakenAsTheyStand();
    void decimalDegreesHaveEightDecimals();
    void degreesMinutesAndSeconds_data();
    void degreesMinutesAndSeconds();
    void degreesThatNoIntHoldsBecomeTheSmallestInt();
    void fileSizesTakeTheLargestUnitThatTheyFill_data();
    void fileSizesTakeTheLargestUnitThatTheyFill();
    void gigaPixelsAreWrittenAsTheDefaultLocaleWrites_data();
    void gigaPixelsAreWrittenAsTheDefaultLocaleWrites();
};

void StringUtilTest::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void StringUtilTest::eastingAndNorthingHaveEightDecimals()
{
    QCOMPARE(formatEastingNorthing(1.5, 2.5, ", "), QStringLiteral("1.50000000E, 2.50000000N"));
    QCOMPARE(formatEastingNorthing(-431234.123456789, 0, " / "),
             QStringLiteral("-431234.12345679E / 0.00000000N"));
}

void StringUtilTest::rawCoordinatesHaveSixAndEightDecimals()
{
    QCOMPARE(formatRaw(1.5, 2.5, " "), QStringLiteral("1.500000 2.50000000"));
    QCOMPARE(formatRaw(-1234567.123456789, -1234567.123456789, ";"),
             QStringLiteral("-1234567.123457;-1234567.12345679"));
}

void StringUtilTest::separatorsAreTakenAsTheyStand()
{
    QCOMPARE(formatEastingNorthing(1, 2, "%1%3"), QStringLiteral("1.00000000E%1%32.00000000N"));
    QCOMPARE(formatRaw(1, 2, "%1%3"), QStringLiteral("1.000000%1%32.00000000"));
    QCOMPARE(formatLatitudeLongitude(1, 2, "%1", false), QStringLiteral("1.00000000%12.00000000"));
    QCOMPARE(formatLatitudeLongitude(1, 2, "%1", true),
             QStringLiteral("1\u00B00'0\"N%12\u00B00'0\"E"));
}

void StringUtilTest::decimalDegreesHaveEightDecimals()
{
    QCOMPARE(formatLatitudeLongitude(-0.5, 179.123456789, ", ", false),
             QStringLiteral("-0.50000000, 179.12345679"));
}

void StringUtilTest::degreesMinutesAndSeconds_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("text");

    QTest::newRow("half a degree south and west")
        << -0.5 << -0.5 << QStringLiteral("0\u00B030'0\"S 0\u00B030'0\"W");
    QTest::newRow("zero is north and east")
        << 0.0 << 0.0 << QStringLiteral("0\u00B00'0\"N 0\u00B00'0\"E");
    QTest::newRow("negative zero is not below zero")
        << -0.0 << -0.0 << QStringLiteral("0\u00B00'0\"N 0\u00B00'0\"E");
    QTest::newRow("nothing is padded")
        << 5.0 + 4.0 / 60 + 3.2 / 3600 << 100.0 << QStringLiteral("5\u00B04'3\"N 100\u00B00'0\"E");
    QTest::newRow("seconds round up to 60 and carry nothing")
        << 1.0 + 59.0 / 60 + 59.9999 / 3600 << -(2.0 + 59.9999 / 3600)
        << QStringLiteral("1\u00B059'60\"N 2\u00B00'60\"W");
    QTest::newRow("half a second rounds up") << 10.0 + 0.5000001 / 3600 << 10.0 + 0.4999999 / 3600
                                             << QStringLiteral("10\u00B00'1\"N 10\u00B00'0\"E");
}

void StringUtilTest::degreesMinutesAndSeconds()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QTEST(formatLatitudeLongitude(latitude, longitude, " ", true), "text");
}

void StringUtilTest::degreesThatNoIntHoldsBecomeTheSmallestInt()
{
    QCOMPARE(formatLatitudeLongitude(1e12, std::numeric_limits<double>::quiet_NaN(), " ", true),
             QStringLiteral("-2147483648\u00B00'0\"N "
                            "-2147483648\u00B0-2147483648'-2147483648\"E"));
}

void StringUtilTest::fileSizesTakeTheLargestUnitThatTheyFill_data()
{
    QTest::addColumn<quint64>("size");
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QString>("text");

    const quint64 one = 1;
    const QByteArray two = "%.2f";
    QTest::newRow("nothing") << quint64(0) << two << QStringLiteral("0 bytes");
    QTest::newRow("a single byte is plural") << one << two << QStringLiteral("1 bytes");
    QTest::newRow("the last size in bytes") << quint64(1023) << two << QStringLiteral("1023 bytes");
    QTest::newRow("the first size in KB") << (one << 10) << two << QStringLiteral("1.00 KB");
    QTest::newRow("the last size in KB") << (one << 20) - 1 << two << QStringLiteral("1024.00 KB");
    QTest::newRow("the first size in MB") << (one << 20) << two << QStringLiteral("1.00 MB");
    QTest::newRow("the first size in GB") << (one << 30) << two << QStringLiteral("1.00 GB");
    QTest::newRow("the first size in TB") << (one << 40) << two << QStringLiteral("1.00 TB");
    QTest::newRow("the first size in PB") << (one << 50) << two << QStringLiteral("1.00 PB");
    QTest::newRow("the largest size is not negative")
        << std::numeric_limits<quint64>::max() << two << QStringLiteral("16384.00 PB");
    QTest::newRow("the format sets the decimals")
        << quint64(1536) << QByteArray("%.0f") << QStringLiteral("2 KB");
    QTest::newRow("the format may hold more")
        << quint64(1536) << QByteArray("about %5.1f") << QStringLiteral("about   1.5 KB");
}

void StringUtilTest::fileSizesTakeTheLargestUnitThatTheyFill()
{
    QFETCH(quint64, size);
    QFETCH(QByteArray, format);
    QTEST(formatFileSize(size, format.constData()), "text");
}

void StringUtilTest::gigaPixelsAreWrittenAsTheDefaultLocaleWrites_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<quint64>("pixels");
    QTest::addColumn<uint>("precision");
    QTest::addColumn<QString>("text");

    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const QLocale german(QLocale::German, QLocale::Germany);
    QTest::newRow("a decimal point") << english << quint64(1500000000) << 2u << "1.50";
    QTest::newRow("a decimal comma") << german << quint64(1500000000) << 2u << "1,50";
    QTest::newRow("grouped in English") << english << quint64(12345678900000) << 1u << "12,345.7";
    QTest::newRow("grouped in German") << german << quint64(12345678900000) << 1u << "12.345,7";
    QTest::newRow("no decimals") << english << quint64(2000000000) << 0u << "2";
    QTest::newRow("no pixels") << english << quint64(0) << 2u << "0.00";
    QTest::newRow("the largest count is not negative")
        << english << std::numeric_limits<quint64>::max() << 3u << "18,446,744,073.710";
}

void StringUtilTest::gigaPixelsAreWrittenAsTheDefaultLocaleWrites()
{
    QFETCH(QLocale, locale);
    QFETCH(quint64, pixels);
    QFETCH(uint, precision);
    QLocale::setDefault(locale);
    QTEST(formatGigaPixel(pixels, static_cast<unsigned char>(precision)), "text");
}

QTEST_APPLESS_MAIN(StringUtilTest)
#include "StringUtilTest.moc"
