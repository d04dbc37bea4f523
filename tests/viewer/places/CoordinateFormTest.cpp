#include <tests/viewer/support/ReferencedLayer.h>

#include <viewer/places/CoordinateForm.h>
#include <viewer/places/DegreesText.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

class CoordinateFormTest : public QObject
{
    Q_OBJECT
private slots:
    void mapCoordinatesHaveTheDigitsOfAPixel_data();
    void mapCoordinatesHaveTheDigitsOfAPixel();
    void numbersBeyondTheWorldStayShort();
    void anglesCarry_data();
    void anglesCarry();
    void eachFormHasItsText_data();
    void eachFormHasItsText();
    void aMapWithoutAReferenceHasNoDegrees();
    void aMapWithoutARasterHasNoCells();
    void cellsAreThoseOfTheSelectedRasterElseTheTopOne();
    void cellsEndAtTheEdge();
    void keysAreKept();

private:
    static Map::MapView* show(const QString& reference, const QRectF& bounds, QObject* owner);
};

/// A view of 400 by 400 pixels.
Map::MapView* CoordinateFormTest::show(const QString& reference, const QRectF& bounds, QObject*)
{
    auto* const view = new Map::MapView;
    view->setAttribute(Qt::WA_DontShowOnScreen);
    view->resize(400, 400);
    view->show();
    view->addLayer(new ReferencedLayer(reference));
    view->setBounds(bounds);
    return view;
}

void CoordinateFormTest::mapCoordinatesHaveTheDigitsOfAPixel_data()
{
    QTest::addColumn<QString>("reference");
    QTest::addColumn<double>("unitsPerPixel");
    QTest::addColumn<QString>("expected");

    QTest::newRow("ten metres a pixel need none") << "EPSG:32633" << 10.0 << "X: 1235  Y: -987654";
    QTest::newRow("a metre a pixel needs none") << "EPSG:32633" << 1.0 << "X: 1235  Y: -987654";
    QTest::newRow("nearly a metre a pixel needs none")
        << "EPSG:32633" << 0.99 << "X: 1235  Y: -987654";
    QTest::newRow("a decimetre a pixel needs one")
        << "EPSG:32633" << 0.1 << "X: 1234.6  Y: -987654.3";
    QTest::newRow("a quarter of a metre needs one")
        << "EPSG:32633" << 0.25 << "X: 1234.6  Y: -987654.3";
    QTest::newRow("degrees say so")
        << "EPSG:4326" << 0.001 << QString::fromUtf8("X: 1234.568°  Y: -987654.321°");
    QTest::newRow("no reference is no matter") << "" << 0.1 << "X: 1234.6  Y: -987654.3";
}

void CoordinateFormTest::mapCoordinatesHaveTheDigitsOfAPixel()
{
    QFETCH(QString, reference);
    QFETCH(double, unitsPerPixel);
    const double span = unitsPerPixel * 400.0;
    const std::unique_ptr<Map::MapView> view(show(reference, QRectF(0.0, span, span, -span), this));
    QTEST(coordinateText(CoordinateForm::Map, *view, QPointF(1234.5678, -987654.321)), "expected");
    QCOMPARE(digitsFor(1e-30), 10);
    QCOMPARE(digitsFor(0.0), 0);
    QCOMPARE(digitsFor(qInf()), 0);
}

/// A file may say that its cells are anywhere; the window would grow with its status bar.
void CoordinateFormTest::numbersBeyondTheWorldStayShort()
{
    const std::unique_ptr<Map::MapView> view(show("", QRectF(0.0, 4e200, 4e200, -4e200), this));
    QCOMPARE(coordinateText(CoordinateForm::Map, *view, QPointF(1.25e200, -3e15)),
             QString("X: 1.25e+200  Y: -3e+15"));
    QCOMPARE(coordinateText(CoordinateForm::Map, *view, QPointF(-999999999999.0, 0.0)),
             QString("X: -999999999999  Y: 0"));
}

void CoordinateFormTest::anglesCarry_data()
{
    QTest::addColumn<QPointF>("degrees");
    QTest::addColumn<int>("form");
    QTest::addColumn<double>("resolution");
    QTest::addColumn<QString>("expected");

    const int minutes = int(AngleForm::Minutes);
    const int seconds = int(AngleForm::Seconds);
    const auto utf8 = [](const char* source) { return QString::fromUtf8(source); };
    QTest::newRow("decimals") << QPointF(13.37771, 52.5163) << int(AngleForm::Degrees) << 1e-5
                              << utf8("52.51630° N  13.37771° E");
    QTest::newRow("south and west")
        << QPointF(-70.5, -33.25) << int(AngleForm::Degrees) << 0.01 << utf8("33.25° S  70.50° W");
    QTest::newRow("minutes") << QPointF(13.3777, 52.5163) << minutes << 1e-5
                             << utf8("52° 30.9780' N  13° 22.6620' E");
    QTest::newRow("few minutes have two digits")
        << QPointF(0.05, 0.1) << minutes << 1e-5 << utf8("0° 06.0000' N  0° 03.0000' E");
    QTest::newRow("seconds") << QPointF(13.3777, 52.5163) << seconds << 2.5e-5
                             << utf8("52° 30' 58.7\" N  13° 22' 39.7\" E");
    QTest::newRow("sixty seconds are a minute") << QPointF(1.0 - 1e-9, 2.0 - 1e-9) << seconds
                                                << 1e-4 << utf8("2° 00' 00.0\" N  1° 00' 00.0\" E");
    QTest::newRow("sixty minutes are a degree")
        << QPointF(1.0 - 1e-9, 2.0 - 1e-9) << minutes << 1e-4 << utf8("2° 00.000' N  1° 00.000' E");
    QTest::newRow("half a degree is thirty minutes, west and south of nothing")
        << QPointF(-0.5, -0.5) << seconds << 1.0 << utf8("0° 30' 00\" S  0° 30' 00\" W");
    QTest::newRow("a third is a third") << QPointF(1.0 / 3.0, 2.0 / 3.0) << seconds << 1e-7
                                        << utf8("0° 40' 00.0000\" N  0° 20' 00.0000\" E");
}

void CoordinateFormTest::anglesCarry()
{
    QFETCH(QPointF, degrees);
    QFETCH(int, form);
    QFETCH(double, resolution);
    QTEST(latitudeLongitudeText(degrees, AngleForm(form), resolution), "expected");
}

void CoordinateFormTest::eachFormHasItsText_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<QString>("expected");
    QTest::newRow("map") << "map"
                         << "X: 389918  Y: 5819702";
    QTest::newRow("cells") << "cells"
                           << "Column: 49  Row: 25";
    QTest::newRow("degrees") << "degrees" << QString::fromUtf8("52.51630° N  13.37770° E");
    QTest::newRow("minutes") << "minutes" << QString::fromUtf8("52° 30.9780' N  13° 22.6620' E");
    QTest::newRow("seconds") << "seconds"
                             << QString::fromUtf8("52° 30' 58.68\" N  13° 22' 39.72\" E");
    QTest::newRow("utm") << "utm"
                         << "33U 389918 E  5819702 N";
}

void CoordinateFormTest::eachFormHasItsText()
{
    QFETCH(QString, form);
    const QPointF place(389917.8326, 5819701.9189);
    const QRectF bounds(place.x() - 200.0, place.y() + 200.0, 400.0, -400.0);
    const std::unique_ptr<Map::MapView> view(show("EPSG:25833", bounds, this));
    auto* const raster = static_cast<ReferencedLayer*>(view->getLayerAt(0));
    raster->bounds = QRectF(QPointF(389917.0, 5819702.5), QPointF(389918.6, 5819700.2));
    raster->size = QSize(96, 100);
    const CoordinateForm wanted = coordinateFormOf(form);
    QCOMPARE(whyNoCoordinates(wanted, *view), QString());
    QTEST(coordinateText(wanted, *view, place), "expected");
}

void CoordinateFormTest::aMapWithoutAReferenceHasNoDegrees()
{
    const std::unique_ptr<Map::MapView> view(show("", QRectF(0.0, 100.0, 100.0, -100.0), this));
    for (const CoordinateForm form : {CoordinateForm::Degrees, CoordinateForm::Minutes,
                                      CoordinateForm::Seconds, CoordinateForm::Utm})
    {
        QCOMPARE(whyNoCoordinates(form, *view), QString("the map has no reference"));
        QCOMPARE(coordinateText(form, *view, QPointF(5.0, 5.0)), QString());
    }
    QCOMPARE(whyNoCoordinates(CoordinateForm::Map, *view), QString());
    QCOMPARE(whyNoCoordinates(CoordinateForm::Cells, *view), QString());
}

void CoordinateFormTest::aMapWithoutARasterHasNoCells()
{
    Map::MapView view;
    QCOMPARE(whyNoCoordinates(CoordinateForm::Cells, view), QString("the map has no raster layer"));
    view.addLayer(new TestVectorLayer);
    QCOMPARE(whyNoCoordinates(CoordinateForm::Cells, view), QString("the map has no raster layer"));
    QCOMPARE(coordinateText(CoordinateForm::Cells, view, QPointF(1.0, 1.0)), QString());
}

void CoordinateFormTest::cellsAreThoseOfTheSelectedRasterElseTheTopOne()
{
    Map::MapView view;
    auto* const bottom = new ReferencedLayer;
    auto* const top = new ReferencedLayer;
    auto* const hidden = new ReferencedLayer;
    auto* const vectors = new TestVectorLayer;
    hidden->visible = false;
    for (Map::Layer* layer : QList<Map::Layer*>{bottom, top, hidden, vectors}) {
        view.addLayer(layer);
    }
    QCOMPARE(rasterOf(view), top);
    view.setLayerSelection(bottom);
    QCOMPARE(rasterOf(view), bottom);
    view.setLayerSelection(hidden);
    QCOMPARE(rasterOf(view), hidden);
    view.setLayerSelection(vectors);
    QCOMPARE(rasterOf(view), top);
    top->valid = false;
    QCOMPARE(rasterOf(view), bottom);
    ReferencedLayer elsewhere;
    view.setLayerSelection(&elsewhere);
    QCOMPARE(rasterOf(view), bottom);
}

void CoordinateFormTest::cellsEndAtTheEdge()
{
    ReferencedLayer raster;
    raster.bounds = QRectF(QPointF(10.0, 30.0), QPointF(20.0, 20.0));
    raster.size = QSize(5, 10);
    QPoint cell(-7, -7);
    QVERIFY(cellAt(raster, QPointF(10.0, 30.0), &cell));
    QCOMPARE(cell, QPoint(0, 0));
    QVERIFY(cellAt(raster, QPointF(19.99, 20.01), &cell));
    QCOMPARE(cell, QPoint(4, 9));
    for (const QPointF& outside : {QPointF(20.0, 25.0), QPointF(15.0, 20.0), QPointF(9.99, 25.0),
                                   QPointF(15.0, 30.01), QPointF(qQNaN(), 25.0)})
    {
        QVERIFY(!cellAt(raster, outside, &cell));
    }
    raster.bounds = QRectF();
    QVERIFY(!cellAt(raster, QPointF(0.0, 0.0), &cell));
    QCOMPARE(cell, QPoint(4, 9));
}

void CoordinateFormTest::keysAreKept()
{
    QStringList keys;
    for (const CoordinateForm form : coordinateForms()) {
        keys << coordinateFormKey(form);
        QVERIFY(coordinateFormOf(keys.last()) == form);
        QVERIFY(!coordinateFormTitle(form).isEmpty() && !coordinateFormLabel(form).isEmpty());
    }
    QCOMPARE(keys, QStringList({"map", "cells", "degrees", "minutes", "seconds", "utm"}));
    QVERIFY(coordinateFormOf("of another program") == CoordinateForm::Map);
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Corvane Viewer Test");
    CoordinateFormTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "CoordinateFormTest.moc"
