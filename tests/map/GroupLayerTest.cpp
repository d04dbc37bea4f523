#include "TestLayers.h"

#include <corvane/map/IRendererClient.h>

#include <QPointer>
#include <QtTest>

#include <memory>

using Corvane::Map::Layer;

class GroupLayerTest : public QObject
{
    Q_OBJECT

private slots:
    void startsEmptyAndAsksNobodyForRepaints();
    void handsOutTheVectorItself();
    void doesNotOwnItsLayers();
};

void GroupLayerTest::startsEmptyAndAsksNobodyForRepaints()
{
    TestGroupLayer group;
    QVERIFY(group.layers().isEmpty());
    group.refresh(1.0, 2.0, 3.0, 4.0); // there is no client to call
    QVERIFY(qobject_cast<Layer*>(&group));
    QVERIFY(!group.parent());
    QCOMPARE(Corvane::Map::GroupLayer::staticMetaObject.propertyOffset(),
             Corvane::Map::GroupLayer::staticMetaObject.propertyCount()); // none of its own
}

void GroupLayerTest::handsOutTheVectorItself()
{
    TestGroupLayer group;
    TestLayer first;
    TestLayer second;
    QVector<Layer*>& layers = group.layers();
    layers << &first << &second;
    QCOMPARE(group.layers(), QVector<Layer*>({&first, &second}));
    QCOMPARE(&group.layers(), &layers);
    layers.removeFirst();
    QCOMPARE(group.layers(), QVector<Layer*>({&second}));
}

void GroupLayerTest::doesNotOwnItsLayers()
{
    TestLayer layer;
    QPointer<TestLayer> watch(&layer);
    auto group = std::make_unique<TestGroupLayer>();
    group->layers() << &layer;
    group.reset();
    QVERIFY(watch);
    QVERIFY(layer.isValid());
}

QTEST_GUILESS_MAIN(GroupLayerTest)
#include "GroupLayerTest.moc"
