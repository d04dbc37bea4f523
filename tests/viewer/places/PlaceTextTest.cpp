#include <viewer/places/PlaceText.h>

#include <corvane/core/Application.h>

#include <QtTest>

#include <cmath>

using namespace Corvane;
using namespace Corvane::Viewer;

class PlaceTextTest : public QObject
{
    Q_OBJECT
private slots:
    void placesAreReadAsPeopleWriteThem_data();
    void placesAreReadAsPeopleWriteThem();
    void mistakesAreNamed_data();
    void mistakesAreNamed();
    void smallNumbersAreTheMapsOwnWithoutAReference();
};

void PlaceTextTest::placesAreReadAsPeopleWriteThem_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QPointF>("position");

    const int degrees = int(WrittenPlace::Degrees);
    const int map = int(WrittenPlace::Map);
    const int cell = int(WrittenPlace::Cell);
    const QPointF gate(13.3777, 52.5163);
    const QPointF gateInSeconds(13.0 + 22.0 / 60.0 + 39.7 / 3600.0,
                                52.0 + 30.0 / 60.0 + 58.7 / 3600.0);
    const QPointF gateInMinutes(13.0 + 22.66 / 60.0, 52.0 + 30.98 / 60.0);
    const auto utf8 = [](const char* source) { return QString::fromUtf8(source); };

    QTest::newRow("decimals, latitude first") << "52.5163, 13.3777" << degrees << gate;
    QTest::newRow("without a blank") << "52.5163,13.3777" << degrees << gate;
    QTest::newRow("with a blank alone") << "  52.5163  13.3777 " << degrees << gate;
    QTest::newRow("a tabulator") << "52.5163\t13.3777" << degrees << gate;
    QTest::newRow("decimal commas") << "52,5163, 13,3777" << degrees << gate;
    QTest::newRow("decimal commas and a blank") << "52,5163 13,3777" << degrees << gate;
    QTest::newRow("decimal commas and a semicolon") << "52,5163; 13,3777" << degrees << gate;
    QTest::newRow("commas everywhere") << "52,5163,13,3777" << degrees << gate;
    QTest::newRow("whole degrees") << "52,13" << degrees << QPointF(13.0, 52.0);
    QTest::newRow("south and west by sign") << "-33.4, -70.5" << degrees << QPointF(-70.5, -33.4);
    QTest::newRow("a typographer's minus")
        << utf8("−33.4, −70.5") << degrees << QPointF(-70.5, -33.4);
    QTest::newRow("seconds") << utf8("52°30'58.7\"N 13°22'39.7\"E") << degrees << gateInSeconds;
    QTest::newRow("seconds with fine marks")
        << utf8("52° 30′ 58,7″ N, 13° 22′ 39,7″ E") << degrees << gateInSeconds;
    QTest::newRow("seconds with curly marks")
        << utf8("52º30’58.7”N 13º22’39.7”E") << degrees << gateInSeconds;
    QTest::newRow("seconds as two minutes' marks")
        << utf8("52°30'58.7''N 13°22'39.7''E") << degrees << gateInSeconds;
    QTest::newRow("longitude first")
        << utf8("13°22'39.7\"E 52°30'58.7\"N") << degrees << gateInSeconds;
    QTest::newRow("seconds between colons")
        << "52:30:58.7 N 13:22:39.7 E" << degrees << gateInSeconds;
    QTest::newRow("seconds between blanks")
        << "52 30 58.7 N 13 22 39.7 E" << degrees << gateInSeconds;
    QTest::newRow("seconds without letters")
        << utf8("52°30'58.7\" 13°22'39.7\"") << degrees << gateInSeconds;
    QTest::newRow("minutes") << "N52 30.98 E13 22.66" << degrees << gateInMinutes;
    QTest::newRow("minutes with marks")
        << utf8("N 52° 30.98' E 013° 22.66'") << degrees << gateInMinutes;
    QTest::newRow("decimals with letters") << "52.5163N 13.3777E" << degrees << gate;
    QTest::newRow("decimals with signs") << utf8("52.5163° N, 13.3777° E") << degrees << gate;
    QTest::newRow("decimals with signs and no letters")
        << utf8("52.5163°, 13.3777°") << degrees << gate;
    QTest::newRow("small letters") << "52.5163n 13.3777e" << degrees << gate;
    QTest::newRow("names") << "lat: 52.5163 lon: 13.3777" << degrees << gate;
    QTest::newRow("long names the other way about")
        << "Longitude=13.3777, Latitude=52.5163" << degrees << gate;
    QTest::newRow("degrees as a word") << "52.5163 deg N 13.3777 deg E" << degrees << gate;
    QTest::newRow("south and west by letter")
        << utf8("33°24'S 70°30'W") << degrees << QPointF(-70.5, -33.4);
    QTest::newRow("south and west without minutes")
        << "S33.4 W70.5" << degrees << QPointF(-70.5, -33.4);
    QTest::newRow("as the status bar writes them")
        << utf8("52° 30.9800' N  13° 22.6600' E") << degrees << gateInMinutes;

    QTest::newRow("metres") << "389000 5820000" << map << QPointF(389000.0, 5820000.0);
    QTest::newRow("metres and a comma")
        << "389000.5, 5820000.25" << map << QPointF(389000.5, 5820000.25);
    QTest::newRow("metres with decimal commas")
        << "389000,5 5820000,25" << map << QPointF(389000.5, 5820000.25);
    QTest::newRow("metres in groups")
        << "389,000.5; 5,820,000" << map << QPointF(389000.5, 5820000.0);
    QTest::newRow("metres with letters")
        << "389000 E 5820000 N" << map << QPointF(389000.0, 5820000.0);
    QTest::newRow("metres with units")
        << "389000 m E, 5820000 m N" << map << QPointF(389000.0, 5820000.0);
    QTest::newRow("of the map by name") << "X: 12.5  Y: 7" << map << QPointF(12.5, 7.0);
    QTest::newRow("of the map in degrees, as the status bar writes them")
        << utf8("X: 13.3777°  Y: 52.5163°") << map << gate;
    QTest::newRow("one number beyond degrees") << "95, 13" << map << QPointF(95.0, 13.0);

    QTest::newRow("a cell") << "col 100 row 200" << cell << QPointF(100.0, 200.0);
    QTest::newRow("a cell, row first") << "Row 200, Col 100" << cell << QPointF(100.0, 200.0);
    QTest::newRow("a cell as the status bar writes it")
        << "Column: 100  Row: 200" << cell << QPointF(100.0, 200.0);
    QTest::newRow("a cell in short") << "c100 r200" << cell << QPointF(100.0, 200.0);
    QTest::newRow("a cell of the grid") << "grid 100, 200" << cell << QPointF(100.0, 200.0);
    QTest::newRow("a pixel") << "pixel: 100 200" << cell << QPointF(100.0, 200.0);
}

void PlaceTextTest::placesAreReadAsPeopleWriteThem()
{
    QFETCH(QString, text);
    QFETCH(QPointF, position);
    const WrittenPlace place = readPlace(text, true);
    QCOMPARE(place.error, QString());
    QTEST(int(place.kind), "kind");
    const QString read = QStringLiteral("%1 %2").arg(place.position.x()).arg(place.position.y());
    QVERIFY2(std::abs(place.position.x() - position.x()) < 1e-9, qPrintable(read));
    QVERIFY2(std::abs(place.position.y() - position.y()) < 1e-9, qPrintable(read));
}

void PlaceTextTest::mistakesAreNamed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");

    const QString none = "This is no coordinate: two numbers, latitude and longitude, or column "
                         "and row are wanted.";
    const QString angles = "Write a latitude and a longitude, like 52°30'58.7\"N 13°22'39.7\"E.";
    const auto utf8 = [](const char* source) { return QString::fromUtf8(source); };
    QTest::newRow("nothing is no mistake") << "  "
                                           << "";
    QTest::newRow("a word") << "Berlin" << none;
    QTest::newRow("one number") << "52.5" << none;
    QTest::newRow("three numbers") << "1 2 3" << none;
    QTest::newRow("a latitude alone") << utf8("52°30'N") << angles;
    QTest::newRow("two latitudes") << "52N 13N"
                                   << "There are two latitudes and no longitude.";
    QTest::newRow("two longitudes") << "52E 13W"
                                    << "There are two longitudes and no latitude.";
    QTest::newRow("a latitude beyond the pole") << "91N 13E"
                                                << "There is no latitude beyond 90 degrees.";
    QTest::newRow("a longitude round the world") << "9N 181E"
                                                 << "There is no longitude beyond 180 degrees.";
    QTest::newRow("sixty minutes") << utf8("52°60'N 13°0'E") << angles;
    QTest::newRow("sixty seconds") << utf8("52°0'60\"N 13°0'0\"E") << angles;
    QTest::newRow("minutes of a broken degree") << utf8("52.5°30'N 13°0'E") << angles;
    QTest::newRow("one letter") << utf8("52°N 13°") << angles;
    QTest::newRow("UTM zone 61") << "61U 389918 5819702"
                                 << "There is no such place in the UTM grid.";
}

void PlaceTextTest::mistakesAreNamed()
{
    QFETCH(QString, text);
    const WrittenPlace place = readPlace(text, true);
    QCOMPARE(int(place.kind), int(WrittenPlace::None));
    QTEST(place.error, "error");
}

void PlaceTextTest::smallNumbersAreTheMapsOwnWithoutAReference()
{
    const WrittenPlace place = readPlace("52.5, 13.4", false);
    QCOMPARE(int(place.kind), int(WrittenPlace::Map));
    QCOMPARE(place.position, QPointF(52.5, 13.4));
    QCOMPARE(int(readPlace("52.5N 13.4E", false).kind), int(WrittenPlace::Degrees));

    for (const char* utm :
         {"33U 389918 5819702", "33u 389918 E  5819702 N", "UTM 33U 389918 m E, 5819702 m N"})
    {
        const WrittenPlace inZone = readPlace(utm, true);
        QCOMPARE(int(inZone.kind), int(WrittenPlace::Degrees));
        QVERIFY(std::abs(inZone.position.x() - 13.3777) < 1e-5);
        QVERIFY(std::abs(inZone.position.y() - 52.5163) < 1e-5);
    }
    QVERIFY(readPlace("19H 360506 6303362", true).position.y() < 0.0);
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Corvane Viewer Test");
    PlaceTextTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "PlaceTextTest.moc"
