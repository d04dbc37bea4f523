#include <viewer/batch/FileInfo.h>

#include <tests/map/TestLayers.h>

#include <QBrush>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPen>
#include <QRegion>
#include <QSizeF>
#include <QtTest>

#include <limits>

using namespace Corvane::Viewer;

class FileInfoTest : public QObject
{
    Q_OBJECT
private slots:
    void valuesKeepTheirExactForm_data();
    void valuesKeepTheirExactForm();
    void aLayerTellsItsBoundsSizeAndProperties();
    void iconsAndObjectNamesAreNoInformation();
};

void FileInfoTest::valuesKeepTheirExactForm_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("json");

    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("a bool") << QVariant(true) << QByteArray("true");
    QTest::newRow("an int") << QVariant(-7) << QByteArray("-7");
    QTest::newRow("the largest int that JSON numbers hold")
        << QVariant(qint64(9007199254740992)) << QByteArray("9007199254740992");
    QTest::newRow("an int beyond them")
        << QVariant(qint64(-9007199254740993)) << QByteArray("\"-9007199254740993\"");
    QTest::newRow("an unsigned int that JSON numbers hold")
        << QVariant(quint64(118000000000)) << QByteArray("118000000000");
    QTest::newRow("an unsigned int beyond them")
        << QVariant(std::numeric_limits<quint64>::max()) << QByteArray("\"18446744073709551615\"");
    QTest::newRow("a double with all its digits")
        << QVariant(0.1 + 0.2) << QByteArray("0.30000000000000004");
    QTest::newRow("the smallest normal double")
        << QVariant(2.2250738585072014e-308) << QByteArray("2.2250738585072014e-308");
    QTest::newRow("not a number") << QVariant(qQNaN()) << QByteArray("null");
    QTest::newRow("infinity") << QVariant(infinity) << QByteArray("null");
    QTest::newRow("minus infinity") << QVariant(-infinity) << QByteArray("null");
    QTest::newRow("a text") << QVariant(QString("\"x\"")) << QByteArray("\"\\\"x\\\"\"");
    QTest::newRow("a size") << QVariant(QSize(40000, 30000))
                            << QByteArray("{\"height\":30000,\"width\":40000}");
    QTest::newRow("a rectangle with its height downwards")
        << QVariant(QRectF(1.5, 9.0, 2.0, -8.0))
        << QByteArray("{\"brx\":3.5,\"bry\":1,\"tlx\":1.5,\"tly\":9}");
    QTest::newRow("a list of texts")
        << QVariant(QStringList{"a", "b"}) << QByteArray("[\"a\",\"b\"]");
    QTest::newRow("bands") << QVariant::fromValue(QVector<qint32>{3, 2, 1})
                           << QByteArray("[3,2,1]");
    QTest::newRow("nothing") << QVariant() << QByteArray("null");
    QTest::newRow("a type without a text form")
        << QVariant::fromValue(QRegion()) << QByteArray("null");
    QTest::newRow("a pen") << QVariant(QPen(QColor(1, 2, 3), 2.5, Qt::DashLine))
                           << QByteArray(
                                  "{\"color\":\"#010203\",\"style\":\"DashLine\",\"width\":2.5}");
    QTest::newRow("a brush") << QVariant(QBrush(QColor(1, 2, 3), Qt::CrossPattern))
                             << QByteArray("{\"color\":\"#010203\",\"style\":\"CrossPattern\"}");
}

void FileInfoTest::valuesKeepTheirExactForm()
{
    QFETCH(QVariant, value);
    const QByteArray text = QJsonDocument(QJsonArray{toJson(value)}).toJson(QJsonDocument::Compact);
    const QByteArray inner = text.mid(1, text.size() - 2);
    QTEST(inner, "json");
}

void FileInfoTest::aLayerTellsItsBoundsSizeAndProperties()
{
    TestRasterLayer layer;
    layer.bounds = QRectF(QPointF(500000.25, 4649776.5), QPointF(500100.75, 4649676.25));
    layer.size = QSize(201, 200);
    layer.format = "GeoTIFF";
    layer.protocol = "file";
    layer.setDescription("harbour");
    Corvane::Map::SpatialReference reference;
    reference.setEpsg(32633);
    layer.setSpatialRef(reference);

    const QJsonObject object = FileInfo::describe(layer);
    QCOMPARE(object["class"].toString(), QString("TestRasterLayer"));
    QCOMPARE(object["protocol"].toString(), QString("file"));
    QCOMPARE(object["spatialReference"].toString(), QString("epsg:32633"));
    QCOMPARE(object["size"].toObject(), (QJsonObject{{"width", 201}, {"height", 200}}));
    QCOMPARE(object["bounds"].toObject(),
             (QJsonObject{
                 {"tlx", 500000.25}, {"tly", 4649776.5}, {"brx", 500100.75}, {"bry", 4649676.25}}));
    const QJsonObject properties = object["properties"].toObject();
    QCOMPARE(properties["Description"].toString(), QString("harbour"));
    QCOMPARE(properties["format"].toString(), QString("GeoTIFF"));
    QCOMPARE(properties["Valid"], QJsonValue(true));
    QCOMPARE(properties["CellSizeY"], QJsonValue(-1.0));
    QCOMPARE(properties["BandList"].toArray(), (QJsonArray{1, 2, 3}));
    QCOMPARE(properties["MaxScale"].toDouble(), std::numeric_limits<double>::max());
}

void FileInfoTest::iconsAndObjectNamesAreNoInformation()
{
    TestVectorLayer layer;
    layer.setObjectName("x");
    const QJsonObject object = FileInfo::describe(layer);
    const QJsonObject properties = object["properties"].toObject();
    QVERIFY(!properties.contains("Icon"));
    QVERIFY(!properties.contains("objectName"));
    QCOMPARE(properties["pen"].toObject()["style"].toString(), QString("SolidLine"));
    QVERIFY(!object.contains("size")); // only raster layers have one
}

QTEST_MAIN(FileInfoTest)
#include "FileInfoTest.moc"
