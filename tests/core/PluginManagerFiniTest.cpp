#include <corvane/core/PluginManager.h>

#include <corvane/core/ILayerPluginInfo.h>
#include <tests/core/PluginFolder.h>

#include <QtTest>

using namespace Corvane;

namespace {

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

/// The end of the plugins.
class PluginManagerFiniTest : public QObject
{
    Q_OBJECT
private slots:
    void endingBeforeAnyQuestionLoadsAndDeletesEachOnce();
    void endingDeletesEveryRootObjectOnce();

private:
    LineLog log;
};

void PluginManagerFiniTest::endingBeforeAnyQuestionLoadsAndDeletesEachOnce()
{
    PluginFolder folder;
    QVERIFY(folder.add("EditorPlugin"));
    QVERIFY(folder.add("InfoOnlyPlugin"));
    QVERIFY(folder.addText("NotAPlugin" PLUGIN_SUFFIX));

    PluginManager::fini();

    QCOMPARE(sorted(takeNotes()),
             QStringList({"created Test::Map::EditorLayer", "created Test::Map::InfoOnlyLayer",
                          "deleted Test::Map::EditorLayer", "deleted Test::Map::InfoOnlyLayer"}));
    QCOMPARE(log.lines, QStringList()); // the load loop did not run
}

void PluginManagerFiniTest::endingDeletesEveryRootObjectOnce()
{
    PluginFolder folder;
    for (const char* name : {"EditorPlugin", "DisabledPlainPlugin", "LayerOnlyPlugin"}) {
        QVERIFY2(folder.add(name), name);
    }
    QCOMPARE(PluginManager::getLayerPluginInfoList().size(), 1);
    QCOMPARE(sorted(takeNotes()),
             QStringList({"created Test::Map::DisabledPlainLayer", "created Test::Map::EditorLayer",
                          "created Test::Map::LayerOnlyLayer"}));

    // a file that came later is loaded for its end alone
    QVERIFY(folder.add("PlainPlugin"));
    log.lines.clear();
    PluginManager::fini();
    QCOMPARE(sorted(takeNotes()),
             QStringList({"created Test::Map::PlainLayer", "deleted Test::Map::DisabledPlainLayer",
                          "deleted Test::Map::EditorLayer", "deleted Test::Map::LayerOnlyLayer",
                          "deleted Test::Map::PlainLayer"}));
    QCOMPARE(log.lines, QStringList());
}

QTEST_MAIN(PluginManagerFiniTest)
#include "PluginManagerFiniTest.moc"
