#include "TestLayers.h"

#include <corvane/map/IRasterLayerHistogram.h>

#include <QDir>
#include <QDomDocument>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QtTest>

using Corvane::Map::HistogramT;
using Corvane::Map::IRasterLayerHistogram;
using Corvane::Map::RasterLayer;

namespace {

QStringList keysOf(const QMetaEnum& meta)
{
    QStringList keys;
    for (int i = 0; i < meta.keyCount(); ++i) {
        keys << QStringLiteral("%1 %2").arg(meta.value(i)).arg(QLatin1String(meta.key(i)));
    }
    return keys;
}

} // namespace

/// A layer that can count, as plugins declare it.
class CountingLayer : public TestRasterLayer, public IRasterLayerHistogram
{
    Q_OBJECT
    Q_INTERFACES(Corvane::Map::IRasterLayerHistogram)
public:
    QVector<HistogramT<unsigned long long>> getHistograms(bool, bool, QSize, double, double, double,
                                                          double) override
    {
        return QVector<HistogramT<unsigned long long>>(2);
    }
};

class RasterLayerTest : public QObject
{
    Q_OBJECT

private slots:
    void cellTypesAreRegistered();
    void colourSpacesAreRegistered();
    void colourSpacesHaveNames_data();
    void colourSpacesHaveNames();
    void propertiesStandInOrder();
    void onlyTheSettingsAreWritten();
    void theBandListIsNotReadBack();
    void theHistogramInterfaceIsFoundByItsId();
};

void RasterLayerTest::cellTypesAreRegistered()
{
    QCOMPARE(keysOf(QMetaEnum::fromType<RasterLayer::CellType>()),
             QStringList({"0 Unknown", "1 Int8", "2 UInt8", "3 Int16", "4 UInt16", "5 Int32",
                          "6 UInt32", "7 Int64", "8 UInt64", "9 Float", "10 Double"}));
}

void RasterLayerTest::colourSpacesAreRegistered()
{
    QCOMPARE(keysOf(QMetaEnum::fromType<RasterLayer::ColorSpace>()),
             QStringList({"0 Rgb", "1 Greyscale", "2 Multiband", "3 Unknown"}));
}

void RasterLayerTest::colourSpacesHaveNames_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("name");
    QTest::newRow("0 is RGB") << 0 << "RGB";
    QTest::newRow("1 is greyscale") << 1 << "Greyscale";
    QTest::newRow("2 is multiband") << 2 << "Multiband";
    QTest::newRow("3 is unknown") << 3 << "Unknown";
    QTest::newRow("7 is unknown") << 7 << "Unknown";
    QTest::newRow("a negative value is unknown") << -1 << "Unknown";
}

void RasterLayerTest::colourSpacesHaveNames()
{
    QFETCH(int, value);
    QFETCH(QString, name);
    TestRasterLayer layer;
    layer.colorSpace = static_cast<RasterLayer::ColorSpace>(value);
    QCOMPARE(layer.colorSpaceToString(), name);
}

void RasterLayerTest::propertiesStandInOrder()
{
    const QMetaObject& meta = RasterLayer::staticMetaObject;
    QStringList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        QVERIFY(property.isReadable());
        properties << QStringLiteral("%1 %2%3%4")
                          .arg(QLatin1String(property.typeName()), QLatin1String(property.name()),
                               QLatin1String(property.isWritable() ? " write" : ""),
                               QLatin1String(property.isStored() ? " stored" : ""));
    }
    QCOMPARE(properties, QStringList({"double Transparency write stored", "double CellSizeX",
                                      "double CellSizeY", "int NumberOfBands",
                                      "QVector<qint32> BandList write stored", "QSize Size",
                                      "QString CellType", "bool Opacity"}));
    QCOMPARE(meta.propertyOffset(), Corvane::Map::Layer::staticMetaObject.propertyCount());
}

void RasterLayerTest::onlyTheSettingsAreWritten()
{
    TestRasterLayer layer;
    layer.transparency = 0.25;
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("layer"));
    QVERIFY(layer.writeXML(element, document));
    QStringList params;
    for (QDomElement param = element.firstChildElement(QStringLiteral("param")); !param.isNull();
         param = param.nextSiblingElement(QStringLiteral("param")))
    {
        QVERIFY(param.hasAttribute(QStringLiteral("value")));
        params << param.attribute(QStringLiteral("name")) + QLatin1Char('=') +
                      param.attribute(QStringLiteral("value"));
    }
    QCOMPARE(params.mid(5), QStringList({"Transparency=0.25", "BandList="}));
}

void RasterLayerTest::theBandListIsNotReadBack()
{
    TestRasterLayer saved;
    saved.transparency = 0.25;
    saved.bandList = {3, 2, 1};
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("layer"));
    QVERIFY(saved.writeXML(element, document));

    TestRasterLayer layer;
    QDir dir(QStringLiteral("/"));
    QVERIFY(layer.readXML(element, dir, nullptr));
    QCOMPARE(layer.transparency, 0.25);
    QCOMPARE(layer.bandList, QVector<qint32>({1, 2, 3}));
}

void RasterLayerTest::theHistogramInterfaceIsFoundByItsId()
{
    CountingLayer counting;
    TestRasterLayer plain;
    const char* id = "com.corvane.viewer.IRasterLayerHistogram/1.0";
    QVERIFY(!plain.qt_metacast(id));
    auto* found = static_cast<IRasterLayerHistogram*>(counting.qt_metacast(id));
    QVERIFY(found == static_cast<IRasterLayerHistogram*>(&counting));
    QCOMPARE(found->getHistograms(false, true, QSize(500, 500), qQNaN(), qQNaN(), qQNaN(), qQNaN())
                 .size(),
             2);
}

QTEST_GUILESS_MAIN(RasterLayerTest)
#include "RasterLayerTest.moc"
