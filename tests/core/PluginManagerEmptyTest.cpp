#include <corvane/core/PluginManager.h>

#include <corvane/core/ILayerPluginInfo.h>
#include <tests/core/PluginFolder.h>

#include <QtTest>

using namespace Corvane;

/// A folder without plugins.
class PluginManagerEmptyTest : public QObject
{
    Q_OBJECT
private slots:
    void anEmptyFolderAnswersEveryQuestionWithNothing();
    void theFilterHoldsOnlyWhatTheProgramReadsItself();
    void theFolderIsWalkedOnceEvenIfItHoldsNothing();

private:
    LineLog log;
};

void PluginManagerEmptyTest::anEmptyFolderAnswersEveryQuestionWithNothing()
{
    PluginFolder folder;
    QVERIFY(PluginManager::getLayerPluginInfoList().isEmpty());
    QCOMPARE(log.lines, QStringList("1 Plugin directory: " + folder.absolutePath()));

    QCOMPARE(PluginManager::createLayer("Test::Map::EditorLayer"), nullptr);
    QVERIFY(PluginManager::findLayerClassname("tiff").isNull());
    QVERIFY(PluginManager::findLayerClassname("").isNull());
    QVERIFY(PluginManager::getDockWidgets().isEmpty());
    QVERIFY(PluginManager::getLayerPluginToolBars().isEmpty());
    QVERIFY(PluginManager::getLayerPluginAddLayerActions().isEmpty());
    QVERIFY(PluginManager::getLayerPluginPrefsPages().isEmpty());
    QVERIFY(PluginManager::getLayerPropertyWidgets("Test::Map::EditorLayer").isEmpty());
}

void PluginManagerEmptyTest::theFilterHoldsOnlyWhatTheProgramReadsItself()
{
    const QString filter =
        QStringLiteral("All supported files ( *.xml);;All Files (*.*);;Map View Context (*.xml)");
    QCOMPARE(PluginManager::getFileChooserReadFilter(), filter);
    QCOMPARE(PluginManager::getFileChooserReadFilter(), filter);
}

void PluginManagerEmptyTest::theFolderIsWalkedOnceEvenIfItHoldsNothing()
{
    QVERIFY(PluginManager::getLayerPluginInfoList().isEmpty());
    PluginFolder folder;
    QVERIFY(folder.add("EditorPlugin"));
    log.lines.clear();
    QVERIFY(PluginManager::getLayerPluginInfoList().isEmpty());
    QCOMPARE(PluginManager::createLayer("Test::Map::EditorLayer"), nullptr);
    QCOMPARE(log.lines, QStringList());
}

QTEST_MAIN(PluginManagerEmptyTest)
#include "PluginManagerEmptyTest.moc"
