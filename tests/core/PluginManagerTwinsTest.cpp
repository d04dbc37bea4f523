#include <corvane/core/PluginManager.h>

#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/map/Layer.h>
#include <tests/core/PluginFolder.h>

#include <QDockWidget>
#include <QtTest>

#include <memory>

using namespace Corvane;

namespace {

/// As the plugins of the tests write it into their layers.
QString addressOf(const void* root)
{
    return QString::number(reinterpret_cast<quintptr>(root));
}

} // namespace

/// Two plugins that make layers of one class.
class PluginManagerTwinsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void bothAreListed();
    void bothGiveTheirPages();
    void theFirstOneMakesTheLayers();
    void theyAreSwitchedTogether();

private:
    PluginFolder folder;
};

void PluginManagerTwinsTest::initTestCase()
{
    QVERIFY(folder.addAs("EditorPlugin", "OnePlugin"));
    QVERIFY(folder.addAs("EditorPlugin", "OtherPlugin"));
}

void PluginManagerTwinsTest::bothAreListed()
{
    const QList<ILayerPluginInfo*> infos = PluginManager::getLayerPluginInfoList();
    QCOMPARE(infos.size(), 2);
    QVERIFY(infos.at(0) != infos.at(1));
    for (ILayerPluginInfo* info : infos) {
        QCOMPARE(info->getClassName(), QStringLiteral("Test::Map::EditorLayer"));
    }
}

void PluginManagerTwinsTest::bothGiveTheirPages()
{
    const QList<QWidget*> pages = PluginManager::getLayerPropertyWidgets("Test::Map::EditorLayer");
    QCOMPARE(pages.size(), 2);
    qDeleteAll(pages);
}

void PluginManagerTwinsTest::theFirstOneMakesTheLayers()
{
    ILayerPluginInfo* const first = PluginManager::getLayerPluginInfoList().at(0);
    const std::unique_ptr<Map::Layer> layer(PluginManager::createLayer("Test::Map::EditorLayer"));
    QVERIFY(layer);
    QCOMPARE(layer->getComments(), addressOf(dynamic_cast<void*>(first)));
}

void PluginManagerTwinsTest::theyAreSwitchedTogether()
{
    takeNotes();
    PluginManager::setPluginEnabled("Test::Map::EditorLayer", false);
    const QString off = QStringLiteral("Test::Map::EditorLayer enabled: 0");
    QCOMPARE(takeNotes(), QStringList({off, off}));
    QVERIFY(PluginManager::getDockWidgets().isEmpty());
}

QTEST_MAIN(PluginManagerTwinsTest)
#include "PluginManagerTwinsTest.moc"
