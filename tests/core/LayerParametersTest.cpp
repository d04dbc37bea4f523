#include <corvane/core/LayerParameters.h>

#include <corvane/core/ILayerDataBrowser.h>
#include <tests/map/TestLayers.h>

#include <QtTest>

using namespace Corvane::Map;

class LayerParametersTest : public QObject
{
    Q_OBJECT
private slots:
    void startsEmpty();
    void valuesAreFoundByName();
    void copiesAreIndependent();
    void equalValuesAreEqual();
    void travelsInAVariant();
    void aDataBrowserIsADialogWithOneSignal();
    void aDataBrowserHandsOverALayerWithItsParameters();
};

void LayerParametersTest::startsEmpty()
{
    const LayerParameters parameters;
    QVERIFY(parameters.isEmpty());
    QCOMPARE(parameters.names(), QStringList());
    QVERIFY(!parameters.contains("band"));
    QVERIFY(!parameters.value("band").isValid());
    QCOMPARE(parameters.value("band", 3).toInt(), 3);
}

void LayerParametersTest::valuesAreFoundByName()
{
    LayerParameters parameters;
    parameters.setValue("url", "https://server/a");
    parameters.setValue("band", 2);
    parameters.setValue("band", 4);
    QVERIFY(!parameters.isEmpty());
    QCOMPARE(parameters.names(), QStringList({"band", "url"}));
    QVERIFY(parameters.contains("url"));
    QCOMPARE(parameters.value("band", 1), QVariant(4));

    parameters.remove("band");
    parameters.remove("missing");
    QCOMPARE(parameters.names(), QStringList("url"));
}

void LayerParametersTest::copiesAreIndependent()
{
    LayerParameters one;
    one.setValue("band", 1);
    LayerParameters two(one);
    LayerParameters three;
    three = one;
    two.setValue("band", 2);
    three.remove("band");
    QCOMPARE(one.value("band"), QVariant(1));
    QCOMPARE(two.value("band"), QVariant(2));
    QVERIFY(three.isEmpty());
}

void LayerParametersTest::equalValuesAreEqual()
{
    LayerParameters one;
    LayerParameters two;
    QVERIFY(one == two);
    one.setValue("band", 1);
    QVERIFY(one != two);
    two.setValue("band", 1);
    QVERIFY(one == two);
}

void LayerParametersTest::travelsInAVariant()
{
    LayerParameters parameters;
    parameters.setValue("band", 1);
    const QVariant variant = QVariant::fromValue(parameters);
    QVERIFY(variant.value<LayerParameters>() == parameters);
}

void LayerParametersTest::aDataBrowserIsADialogWithOneSignal()
{
    const QMetaObject& meta = ILayerDataBrowser::staticMetaObject;
    QCOMPARE(meta.className(), "Corvane::Map::ILayerDataBrowser");
    QCOMPARE(meta.superClass(), &QDialog::staticMetaObject);
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod method = meta.method(meta.methodOffset());
    QCOMPARE(method.methodType(), QMetaMethod::Signal);
    QCOMPARE(method.name(), QByteArray("addLayer"));
    QCOMPARE(method.parameterNames(), QList<QByteArray>({"pLayer", "parameters"}));
}

void LayerParametersTest::aDataBrowserHandsOverALayerWithItsParameters()
{
    ILayerDataBrowser browser;
    PlainLayer<Layer> layer(nullptr);
    Layer* receivedLayer = nullptr;
    LayerParameters received;
    connect(&browser, &ILayerDataBrowser::addLayer, this,
            [&](Layer* given, const LayerParameters& parameters) {
                receivedLayer = given;
                received = parameters;
            });
    LayerParameters parameters;
    parameters.setValue("band", 1);
    emit browser.addLayer(&layer, parameters);
    QCOMPARE(receivedLayer, &layer);
    QVERIFY(received == parameters);
}

QTEST_MAIN(LayerParametersTest)
#include "LayerParametersTest.moc"
