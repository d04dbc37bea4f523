#include <tests/viewer/support/ReferencedLayer.h>

#include <viewer/places/NumberText.h>
#include <viewer/places/ViewScale.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <QLocale>
#include <QtTest>

#include <cmath>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

constexpr double dotsPerMetre = 96.0 / 0.0254;

ViewScale scaleOf(MapUnits::Kind kind, double unitsPerPixel, double metresPerUnit, double cell)
{
    ViewScale scale;
    scale.kind = kind;
    scale.unitsPerPixel = unitsPerPixel;
    scale.metresPerUnit = metresPerUnit;
    scale.dotsPerMetre = dotsPerMetre;
    scale.cell = cell;
    return scale;
}

} // namespace

class ViewScaleTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale("en_US")); }
    void numbersAreReadAsPeopleWriteThem_data();
    void numbersAreReadAsPeopleWriteThem();
    void scaleSaysWhatIsTrue_data();
    void scaleSaysWhatIsTrue();
    void anEmptyMapHasNoScale();
    void whatIsShownCanBeTyped_data();
    void whatIsShownCanBeTyped();
    void scalesAreReadInEveryForm_data();
    void scalesAreReadInEveryForm();
    void whatIsNoScaleSaysWhy_data();
    void whatIsNoScaleSaysWhy();
    void usualScalesFitTheMap();
};

void ViewScaleTest::numbersAreReadAsPeopleWriteThem_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("groups");
    QTest::addColumn<double>("value"); // NaN for none

    QTest::newRow("plain") << "25000" << true << 25000.0;
    QTest::newRow("a point") << " 52.5163 " << false << 52.5163;
    QTest::newRow("a comma") << "52,5163" << false << 52.5163;
    QTest::newRow("a comma before three digits is a decimal") << "52,516" << false << 52.516;
    QTest::newRow("unless thousands are grouped") << "25,000" << true << 25000.0;
    QTest::newRow("by points as well") << "25.000" << true << 25000.0;
    QTest::newRow("several groups are never decimals") << "1,250,000" << false << 1250000.0;
    QTest::newRow("groups and decimals") << "1,250,000.5" << false << 1250000.5;
    QTest::newRow("the other way about") << "1.250.000,5" << false << 1250000.5;
    QTest::newRow("blanks") << "1 250 000" << false << 1250000.0;
    QTest::newRow("narrow blanks")
        << QString::fromUtf8("1\u202f250\u00a0000") << false << 1250000.0;
    QTest::newRow("apostrophes") << "1'250'000" << false << 1250000.0;
    QTest::newRow("a minus") << "-0.5" << false << -0.5;
    QTest::newRow("a typographer's minus") << QString::fromUtf8("−0,5") << false << -0.5;
    QTest::newRow("no zero before the point") << ".5" << false << 0.5;
    QTest::newRow("powers of ten") << "1e3" << false << 1000.0;
    QTest::newRow("nothing") << "" << false << qQNaN();
    QTest::newRow("a sign alone") << "-" << false << qQNaN();
    QTest::newRow("words") << "five" << false << qQNaN();
    QTest::newRow("two decimals") << "1.2.3" << false << qQNaN();
    QTest::newRow("beyond every number") << "1e999" << false << qQNaN();
    QTest::newRow("not a number") << "nan" << false << qQNaN();
}

void ViewScaleTest::numbersAreReadAsPeopleWriteThem()
{
    QFETCH(QString, text);
    QFETCH(bool, groups);
    QFETCH(double, value);
    double read = 77.0;
    const bool ok =
        readNumber(text, groups ? LoneSeparator::GroupsThousands : LoneSeparator::IsDecimal, &read);
    QCOMPARE(ok, !std::isnan(value));
    QCOMPARE(read, ok ? value : 77.0);
}

void ViewScaleTest::scaleSaysWhatIsTrue_data()
{
    QTest::addColumn<QString>("reference");
    QTest::addColumn<double>("cell");
    QTest::addColumn<QRectF>("bounds"); // of 400 by 400 pixels
    QTest::addColumn<double>("metres"); // a pixel covers; 0 where nobody knows
    QTest::addColumn<QString>("pixel");
    QTest::addColumn<QString>("zoom");

    const auto square = [](double left, double top, double side) {
        return QRectF(left, top, side, -side);
    };
    const QString degrees = QString::fromUtf8("1 px = 0.01°");
    QTest::newRow("metres") << "EPSG:32633" << 1.0 << square(0.0, 400.0, 400.0) << 1.0
                            << "1 px = 1 m"
                            << "zoom 100 %";
    QTest::newRow("feet are turned to metres")
        << "EPSG:2263" << 0.5 << square(0.0, 400.0, 400.0) << 1200.0 / 3937.0 << "1 px = 0.305 m"
        << "zoom 50 %";
    QTest::newRow("degrees at the equator") << "EPSG:4326" << 0.0125 << square(-2.0, 2.0, 4.0)
                                            << 1113.194908 << degrees << "zoom 125 %";
    QTest::newRow("degrees at 60 degrees north, on the ellipsoid")
        << "EPSG:4326" << 0.0125 << square(8.0, 62.0, 4.0) << 557.999936 << degrees << "zoom 125 %";
    QTest::newRow("at a pole a parallel has no length")
        << "EPSG:4326" << 0.0125 << square(-2.0, 92.0, 4.0) << 0.0 << degrees << "zoom 125 %";
    QTest::newRow("no reference leaves the size of a cell")
        << "" << 1.0 << square(0.0, 32000.0, 32000.0) << 0.0 << "1 px = 80"
        << "zoom 1.3 %";
    QTest::newRow("without cells a pixel is left")
        << "" << 0.0 << square(0.0, 400.0, 400.0) << 0.0 << "1 px = 1"
        << "";
}

void ViewScaleTest::scaleSaysWhatIsTrue()
{
    QFETCH(QString, reference);
    QFETCH(double, cell);
    QFETCH(QRectF, bounds);
    QFETCH(double, metres);
    QFETCH(QString, pixel);
    QFETCH(QString, zoom);

    Map::MapView view;
    view.resize(400, 400);
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.show();
    const auto layer = new ReferencedLayer(reference);
    layer->cellSizeX = cell;
    view.addLayer(layer);
    view.setBounds(bounds);
    const ViewScale scale = ViewScale::ofView(view);
    QCOMPARE(pixelText(scale), pixel);
    QCOMPARE(zoomText(scale), zoom);
    const QString shown = scaleText(scale);
    if (metres > 0.0) {
        const double denominator = metres * view.logicalDpiX() / 0.0254;
        QVERIFY2(shown.startsWith("1:"), qPrintable(shown));
        QVERIFY2(std::abs(shown.mid(2).remove(' ').toDouble() - denominator) < 0.6,
                 qPrintable(shown));
    } else {
        QCOMPARE(shown, zoom.isEmpty() ? pixel : zoom.mid(int(qstrlen("zoom "))));
    }
}

void ViewScaleTest::anEmptyMapHasNoScale()
{
    Map::MapView view;
    view.resize(400, 400);
    QCOMPARE(scaleText(ViewScale::ofView(view)), QString());
    QCOMPARE(zoomText(ViewScale::ofView(view)), QString());
    QCOMPARE(pixelText(ViewScale::ofView(view)), QString());

    const auto layer = new ReferencedLayer("EPSG:32633");
    layer->valid = false;
    view.addLayer(layer);
    QCOMPARE(scaleText(ViewScale::ofView(view)), QString());
}

void ViewScaleTest::whatIsShownCanBeTyped_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("metresPerUnit");
    QTest::addColumn<double>("cell");
    QTest::newRow("metres") << int(MapUnits::Length) << 1.0 << 0.5;
    QTest::newRow("degrees") << int(MapUnits::Degrees) << 111319.5 << 0.5;
    QTest::newRow("cells") << int(MapUnits::Unknown) << 0.0 << 0.5;
    QTest::newRow("a pixel") << int(MapUnits::Unknown) << 0.0 << 0.0;
    QTest::newRow("a pixel of degrees") << int(MapUnits::Degrees) << 0.0 << 0.0;
}

void ViewScaleTest::whatIsShownCanBeTyped()
{
    QFETCH(int, kind);
    QFETCH(double, metresPerUnit);
    QFETCH(double, cell);
    const ViewScale scale = scaleOf(MapUnits::Kind(kind), 0.25, metresPerUnit, cell);
    for (const QString& text : {scaleText(scale), pixelText(scale)}) {
        QString error;
        const double read = readScale(text, scale, &error);
        QVERIFY2(std::abs(read - 0.25) < 0.25 * 0.005, qPrintable(text + ": " + error));
    }
    for (const QString& usual : usualScales(scale)) {
        QString error;
        QVERIFY2(readScale(usual, scale, &error) > 0.0, qPrintable(usual + ": " + error));
    }
}

void ViewScaleTest::scalesAreReadInEveryForm_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("expected"); // units of 0.5 m for a pixel
    const double at25000 = 25000.0 / dotsPerMetre / 0.5;
    QTest::newRow("a number") << "25000" << at25000;
    QTest::newRow("a ratio") << "1:25000" << at25000;
    QTest::newRow("as it is shown") << "1:25 000" << at25000;
    QTest::newRow("with blanks around the colon") << " 1 : 25 000 " << at25000;
    QTest::newRow("a slash") << "1/25000" << at25000;
    QTest::newRow("with commas") << "1:25,000" << at25000;
    QTest::newRow("with points") << "1:25.000" << at25000;
    QTest::newRow("larger than the world") << "0.5" << 0.5 / dotsPerMetre / 0.5;
    QTest::newRow("metres") << "2 m" << 4.0;
    QTest::newRow("metres for a pixel") << "2 m per pixel" << 4.0;
    QTest::newRow("metres for a pixel in short") << "2m/px" << 4.0;
    QTest::newRow("a decimal comma") << "0,5 m" << 1.0;
    QTest::newRow("kilometres") << "1 km/pixel" << 2000.0;
    QTest::newRow("centimetres") << "50 CM" << 1.0;
    QTest::newRow("feet") << "10 ft" << 10.0 * 0.3048 / 0.5;
    QTest::newRow("units of the map") << "1 px = 3" << 3.0;
    QTest::newRow("cells") << "50 %" << 16.0;
    QTest::newRow("cells as they are shown") << "zoom 200%" << 4.0;
}

void ViewScaleTest::scalesAreReadInEveryForm()
{
    QFETCH(QString, text);
    QFETCH(double, expected);
    QString error;
    const double read = readScale(text, scaleOf(MapUnits::Length, 1.0, 0.5, 8.0), &error);
    QCOMPARE(error, QString());
    QVERIFY2(std::abs(read - expected) < expected * 1e-12, qPrintable(QString::number(read)));
}

void ViewScaleTest::whatIsNoScaleSaysWhy_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("referenced");
    QTest::addColumn<double>("cell");
    QTest::addColumn<QString>("reason");

    const QString none =
        "\"%1\" is no scale. A scale is written like 1:25 000, 2 m per pixel or 50 %.";
    for (const char* text : {"big", "1:0", "-5", "1:", "0 m", "0 %", "5 parsec", "1:2:3", "1e", ""})
    {
        QTest::newRow(qstrlen(text) ? text : "nothing")
            << text << true << 1.0 << QString(none).replace("%1", text);
    }
    QTest::newRow("a ratio of nothing known")
        << "1:25000" << false << 1.0
        << "The map has no reference that tells what 1:25 000 is here. A scale in percent of its "
           "cells, or of a pixel like 1 px = 2, can be shown.";
    QTest::newRow("metres of nothing known")
        << "2 m" << false << 1.0 << "The map has no reference that tells how long m is here.";
    QTest::newRow("cells of nothing")
        << "50 %" << true << 0.0 << "The map has no raster whose cells a percentage could be of.";
}

void ViewScaleTest::whatIsNoScaleSaysWhy()
{
    QFETCH(QString, text);
    QFETCH(bool, referenced);
    QFETCH(double, cell);
    QString error;
    const ViewScale scale = scaleOf(referenced ? MapUnits::Length : MapUnits::Unknown, 1.0,
                                    referenced ? 1.0 : 0.0, cell);
    QCOMPARE(readScale(text, scale, &error), 0.0);
    QTEST(error, "reason");
}

void ViewScaleTest::usualScalesFitTheMap()
{
    const QStringList ratios = usualScales(scaleOf(MapUnits::Length, 1.0, 1.0, 1.0));
    QCOMPARE(ratios.first(), QString("1:500"));
    QCOMPARE(ratios.last(), QString("1:50 000 000"));
    QVERIFY(ratios.contains("1:25 000"));
    const QStringList percents = usualScales(scaleOf(MapUnits::Unknown, 1.0, 0.0, 1.0));
    QCOMPARE(percents.join(' '), QString("10 % 25 % 50 % 100 % 200 % 400 % 800 %"));
    QVERIFY(usualScales(scaleOf(MapUnits::Unknown, 1.0, 0.0, 0.0)).isEmpty());
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Corvane Viewer Test");
    ViewScaleTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "ViewScaleTest.moc"
