#include <corvane/core/PluginManager.h>

#include <tests/core/PluginFolder.h>

#include <QtTest>

using namespace Corvane;

/// A plugin that is switched off before the first question for the filter.
class PluginManagerFilterTest : public QObject
{
    Q_OBJECT
private slots:
    void aPluginThatIsOffWhileTheFilterIsBuiltStaysOutOfIt();
};

void PluginManagerFilterTest::aPluginThatIsOffWhileTheFilterIsBuiltStaysOutOfIt()
{
    PluginFolder folder;
    QVERIFY(folder.add("EditorPlugin"));
    QVERIFY(folder.add("PlainPlugin"));
    PluginManager::setPluginEnabled("Test::Map::EditorLayer", false);
    const QString filter =
        QStringLiteral("All supported files (*.grd *.xml);;All Files (*.*);;Anything (*.*);;"
                       "Plain grids (*.grd);;Map View Context (*.xml)");
    QCOMPARE(PluginManager::getFileChooserReadFilter(), filter);
    PluginManager::setPluginEnabled("Test::Map::EditorLayer", true);
    QCOMPARE(PluginManager::findLayerClassname("tiff"), QStringLiteral("Test::Map::EditorLayer"));
    QCOMPARE(PluginManager::getFileChooserReadFilter(), filter);
}

QTEST_MAIN(PluginManagerFilterTest)
#include "PluginManagerFilterTest.moc"
