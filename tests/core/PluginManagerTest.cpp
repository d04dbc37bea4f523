#include <corvane/core/PluginManager.h>

#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/map/Layer.h>
#include <tests/core/PluginFolder.h>

#include <QAction>
#include <QDockWidget>
#include <QMap>
#include <QToolBar>
#include <QtTest>

#include <memory>

using namespace Corvane;

namespace {

QStringList classNames()
{
    QStringList names;
    const QList<ILayerPluginInfo*> infos = PluginManager::getLayerPluginInfoList();
    for (ILayerPluginInfo* info : infos) {
        names << info->getClassName();
    }
    return names;
}

// The names of what a plugin brought, which is deleted.
template <typename Item>
QStringList namesOf(const QList<Item*>& items)
{
    QStringList names;
    for (const Item* item : items) {
        names << item->objectName();
    }
    qDeleteAll(items);
    return names;
}

QString descriptionOf(Map::Layer* layer)
{
    const std::unique_ptr<Map::Layer> owned(layer);
    return owned ? owned->getDescription() : QStringLiteral("none");
}

QStringList debugLines;

void collectDebugLines(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtDebugMsg) {
        debugLines << message;
    }
}

} // namespace

/// A folder with plugins of every kind.
class PluginManagerTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void loadingIsLoggedInTheOrderOfTheFolder();
    void loadingHappensOnce();
    void theListHoldsTheEnabledPluginsInLoadOrder();
    void whatWasNotEnabledAtLoadCannotBeReached();

    void layersAreMadeByClassNameInAnyCase_data();
    void layersAreMadeByClassNameInAnyCase();
    void dialogsAreAllowedOnRequest();
    void protocolWordsMakeNoLayer_data();
    void protocolWordsMakeNoLayer();
    void aDisabledPluginStillMakesLayers();

    void extensionsFindTheirClass_data();
    void extensionsFindTheirClass();
    void anEmptyExtensionFindsTheFirstPlugin();
    void aDisabledPluginReadsNoExtension();

    void theReadFilterListsEveryPattern();
    void theReadFilterIsBuiltOnce();

    void widgetsComeFromTheEnabledEditorsInOrder();
    void propertyPagesComeFromExactlyTheirClass();
    void pluginsAreSwitchedByTheirExactName();

    void spatialReferencePluginsAreNotThereYet();
    void operationsAreSlotsInOrder();
    void operationsCanBeCalledByName();
    void theManagerHasAParentOrNone();

private:
    QStringList inLoadOrder(const QMap<QString, QStringList>& byPlugin) const;

    std::unique_ptr<PluginFolder> folder;
    LineLog log;
    QDateTime before;
    QDateTime after;
};

void PluginManagerTest::initTestCase()
{
    folder = std::make_unique<PluginFolder>();
    for (const char* name :
         {"EditorPlugin", "SecondEditorPlugin", "PlainPlugin", "ProtocolPlugin",
          "DisabledEditorPlugin", "DisabledPlainPlugin", "InfoOnlyPlugin", "LayerOnlyPlugin"})
    {
        QVERIFY2(folder->add(name), name);
    }
    QVERIFY(folder->addText("NotAPlugin" PLUGIN_SUFFIX));
    QVERIFY(folder->addText("readme.txt"));
    QVERIFY(folder->addFolder("Folder" PLUGIN_SUFFIX));

    before = QDateTime::currentDateTime();
    QCOMPARE(PluginManager::findLayerClassname("no such letters"), QString());
    after = QDateTime::currentDateTime();
    takeNotes();
}

void PluginManagerTest::cleanup()
{
    PluginManager::setPluginEnabled("Test::Map::EditorLayer", true);
    PluginManager::setPluginEnabled("Test::Map::SecondLayer", true);
    takeNotes();
}

QStringList PluginManagerTest::inLoadOrder(const QMap<QString, QStringList>& byPlugin) const
{
    QStringList result;
    const QStringList names = folder->names();
    for (const QString& name : names) {
        result << byPlugin.value(name);
    }
    return result;
}

void PluginManagerTest::loadingIsLoggedInTheOrderOfTheFolder()
{
    QPluginLoader text(folder->path("NotAPlugin" PLUGIN_SUFFIX));
    QVERIFY(!text.instance());
    QVERIFY(!text.errorString().isEmpty());

    const QString s = PLUGIN_SUFFIX;
    const auto loaded = [&s](const QString& name, const QString& version) {
        return "1 PluginManager:: loaded plugin '" + name + s + "' version: " + version;
    };
    const auto noEditor = [&s](const QString& name) {
        return "1 PluginManager:: plugin '" + name + s +
               "' does not implement the ILayerEditorPlugin interface.";
    };
    const QMap<QString, QStringList> byPlugin = {
        {"EditorPlugin", {loaded("EditorPlugin", "1.2")}},
        {"SecondEditorPlugin", {loaded("SecondEditorPlugin", "2.0 beta")}},
        {"PlainPlugin", {loaded("PlainPlugin", "3.1"), noEditor("PlainPlugin")}},
        {"ProtocolPlugin", {loaded("ProtocolPlugin", "4"), noEditor("ProtocolPlugin")}},
        {"DisabledPlainPlugin", {noEditor("DisabledPlainPlugin")}},
        {"NotAPlugin",
         {"1 PluginManager:: skipped plugin 'NotAPlugin" + s + "': " + text.errorString()}}};
    QStringList expected("1 Plugin directory: " + folder->absolutePath());
    expected << inLoadOrder(byPlugin);
    QCOMPARE(expected.size(), 9);
    QCOMPARE(log.lines.mid(0, expected.size()), expected);
    for (const QDateTime& time : log.times.mid(0, expected.size())) {
        QVERIFY(before <= time && time <= after);
    }
}

void PluginManagerTest::loadingHappensOnce()
{
    const int count = log.lines.size();
    classNames();
    qDeleteAll(PluginManager::getDockWidgets());
    PluginManager::getFileChooserReadFilter();
    QCOMPARE(log.lines.size(), count);
}

void PluginManagerTest::theListHoldsTheEnabledPluginsInLoadOrder()
{
    const QStringList expected =
        inLoadOrder({{"EditorPlugin", {"Test::Map::EditorLayer"}},
                     {"SecondEditorPlugin", {"Test::Map::SecondLayer"}},
                     {"PlainPlugin", {"Test::Map::PlainLayer"}},
                     {"ProtocolPlugin", {"Corvane::Map::ZWTJPEG2kLayer"}}});
    QCOMPARE(expected.size(), 4);
    QCOMPARE(classNames(), expected);
}

void PluginManagerTest::whatWasNotEnabledAtLoadCannotBeReached()
{
    const QStringList names = classNames();
    PluginManager::setPluginEnabled("Test::Map::DisabledLayer", true);
    QCOMPARE(takeNotes(), QStringList());
    QCOMPARE(classNames(), names);
    QCOMPARE(descriptionOf(PluginManager::createLayer("Test::Map::DisabledLayer")), "none");
    QCOMPARE(PluginManager::findLayerClassname("dis"), QString());
}

void PluginManagerTest::layersAreMadeByClassNameInAnyCase_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("description");
    const QString editor = "Test::Map::EditorLayer without dialogs";
    QTest::newRow("as it stands") << "Test::Map::EditorLayer" << editor;
    QTest::newRow("lower case") << "test::map::editorlayer" << editor;
    QTest::newRow("upper case") << "TEST::MAP::EDITORLAYER" << editor;
    QTest::newRow("a mix") << "tEST::mAP::eDITORlAYER" << editor;
    QTest::newRow("another plugin") << "test::Map::plainlayer"
                                    << "Test::Map::PlainLayer without dialogs";
    QTest::newRow("a class that no plugin makes") << "Test::Map::Other"
                                                  << "none";
    QTest::newRow("part of a name") << "EditorLayer"
                                    << "none";
    QTest::newRow("no name") << ""
                             << "none";
    QTest::newRow("a plugin without a layer interface") << "Test::Map::InfoOnlyLayer"
                                                        << "none";
    QTest::newRow("the class that the protocol words stand for")
        << "Corvane::Map::ZWTJPEG2kLayer"
        << "Corvane::Map::ZWTJPEG2kLayer without dialogs";
}

void PluginManagerTest::layersAreMadeByClassNameInAnyCase()
{
    QFETCH(QString, className);
    QTEST(descriptionOf(PluginManager::createLayer(className)), "description");
}

void PluginManagerTest::dialogsAreAllowedOnRequest()
{
    QCOMPARE(descriptionOf(PluginManager::createLayer("Test::Map::EditorLayer", true)),
             "Test::Map::EditorLayer with dialogs");
    QCOMPARE(descriptionOf(PluginManager::createLayer("Test::Map::EditorLayer", false)),
             "Test::Map::EditorLayer without dialogs");
}

void PluginManagerTest::protocolWordsMakeNoLayer_data()
{
    QTest::addColumn<QString>("word");
    QTest::newRow("zwt") << "zwt";
    QTest::newRow("zwtp") << "zwtp";
    QTest::newRow("zwtps") << "zwtps";
    QTest::newRow("ZWTP") << "ZWTP";
}

void PluginManagerTest::protocolWordsMakeNoLayer()
{
    QFETCH(QString, word);
    QCOMPARE(descriptionOf(PluginManager::createLayer(word)), "none");
}

void PluginManagerTest::aDisabledPluginStillMakesLayers()
{
    PluginManager::setPluginEnabled("Test::Map::EditorLayer", false);
    QCOMPARE(descriptionOf(PluginManager::createLayer("Test::Map::EditorLayer")),
             "Test::Map::EditorLayer without dialogs");
}

void PluginManagerTest::extensionsFindTheirClass_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("className");
    QTest::newRow("the extension itself") << "tiff"
                                          << "Test::Map::EditorLayer";
    QTest::newRow("the beginning of another extension") << "tif"
                                                        << "Test::Map::EditorLayer";
    QTest::newRow("upper case is lowered") << "TIFF"
                                           << "Test::Map::EditorLayer";
    QTest::newRow("the filter's case counts") << "FUL" << QString();
    QTest::newRow("letters of a description") << "rawin"
                                              << "Test::Map::SecondLayer";
    QTest::newRow("the second filter of a plugin") << "dwg"
                                                   << "Test::Map::SecondLayer";
    QTest::newRow("a plugin without an editor") << "grd"
                                                << "Test::Map::PlainLayer";
    QTest::newRow("no plugin reads it") << "ecw" << QString();
    QTest::newRow("only a plugin that was not enabled reads it") << "dip" << QString();
}

void PluginManagerTest::extensionsFindTheirClass()
{
    QFETCH(QString, extension);
    QFETCH(QString, className);
    QCOMPARE(PluginManager::findLayerClassname(extension), className);
    QCOMPARE(PluginManager::findLayerClassname(extension).isNull(), className.isNull());
}

void PluginManagerTest::anEmptyExtensionFindsTheFirstPlugin()
{
    QCOMPARE(PluginManager::findLayerClassname(""), classNames().at(0));
}

void PluginManagerTest::aDisabledPluginReadsNoExtension()
{
    PluginManager::setPluginEnabled("Test::Map::EditorLayer", false);
    QVERIFY(PluginManager::findLayerClassname("tiff").isNull());
}

void PluginManagerTest::theReadFilterListsEveryPattern()
{
    QCOMPARE(
        PluginManager::getFileChooserReadFilter(),
        QStringLiteral("All supported files (*.dxf *.dwg *.tiff *.FUL *.grd *.csv *.xml);;"
                       "All Files (*.*);;Alpha drawings (*.dxf *.dwg);;Anything (*.*);;"
                       "Editor rasters (*.tiff *.FUL);;Plain grids (*.grd);;second tables (*.csv);;"
                       "Map View Context (*.xml)"));
}

void PluginManagerTest::theReadFilterIsBuiltOnce()
{
    const QString filter = PluginManager::getFileChooserReadFilter();
    PluginManager::setPluginEnabled("Test::Map::EditorLayer", false);
    QCOMPARE(PluginManager::getFileChooserReadFilter(), filter);
    QVERIFY(filter.contains("*.tiff"));
}

void PluginManagerTest::widgetsComeFromTheEnabledEditorsInOrder()
{
    const auto expected = [this](const QStringList& kinds) {
        QStringList editor;
        QStringList second;
        for (const QString& kind : kinds) {
            editor << "editor " + kind;
            second << "second " + kind;
        }
        return inLoadOrder({{"EditorPlugin", editor}, {"SecondEditorPlugin", second}});
    };
    QCOMPARE(namesOf(PluginManager::getDockWidgets()), expected({"dock"}));
    QCOMPARE(namesOf(PluginManager::getLayerPluginToolBars()), expected({"tool bar"}));
    QCOMPARE(namesOf(PluginManager::getLayerPluginAddLayerActions()),
             expected({"first action", "second action"}));
    QCOMPARE(namesOf(PluginManager::getLayerPluginPrefsPages()), expected({"preferences"}));

    PluginManager::setPluginEnabled("Test::Map::EditorLayer", false);
    QCOMPARE(namesOf(PluginManager::getDockWidgets()), QStringList("second dock"));
    QCOMPARE(namesOf(PluginManager::getLayerPluginToolBars()), QStringList("second tool bar"));
    QCOMPARE(namesOf(PluginManager::getLayerPluginAddLayerActions()),
             QStringList({"second first action", "second second action"}));
    QCOMPARE(namesOf(PluginManager::getLayerPluginPrefsPages()), QStringList("second preferences"));
}

void PluginManagerTest::propertyPagesComeFromExactlyTheirClass()
{
    QCOMPARE(namesOf(PluginManager::getLayerPropertyWidgets("Test::Map::EditorLayer")),
             QStringList("editor page"));
    QCOMPARE(namesOf(PluginManager::getLayerPropertyWidgets("test::map::editorlayer")),
             QStringList());
    QCOMPARE(namesOf(PluginManager::getLayerPropertyWidgets("Test::Map::PlainLayer")),
             QStringList());
    PluginManager::setPluginEnabled("Test::Map::EditorLayer", false);
    QCOMPARE(namesOf(PluginManager::getLayerPropertyWidgets("Test::Map::EditorLayer")),
             QStringList());
}

void PluginManagerTest::pluginsAreSwitchedByTheirExactName()
{
    PluginManager::setPluginEnabled("test::map::editorlayer", false);
    PluginManager::setPluginEnabled("Test::Map::PlainLayer", false); // has no editor interface
    QCOMPARE(takeNotes(), QStringList());
    QCOMPARE(PluginManager::findLayerClassname("grd"), QStringLiteral("Test::Map::PlainLayer"));

    PluginManager::setPluginEnabled("Test::Map::EditorLayer", false);
    PluginManager::setPluginEnabled("Test::Map::EditorLayer", true);
    QCOMPARE(takeNotes(), QStringList({"Test::Map::EditorLayer enabled: 0",
                                       "Test::Map::EditorLayer enabled: 1"}));
}

void PluginManagerTest::spatialReferencePluginsAreNotThereYet()
{
    debugLines.clear();
    const QtMessageHandler handler = qInstallMessageHandler(collectDebugLines);
    const bool empty = PluginManager::getSrsPluginInfoList().isEmpty() &&
                       PluginManager::getSrsPluginList().isEmpty();
    qInstallMessageHandler(handler);
    QVERIFY(empty);
    QCOMPARE(debugLines, QStringList({"PluginManager::getSrsPluginInfoLis() NOT YET",
                                      "PluginManager::getSrsPluginList() NOT YET"}));
}

void PluginManagerTest::operationsAreSlotsInOrder()
{
    const QMetaObject& meta = PluginManager::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(i).access(), QMetaMethod::Public);
        signatures << QString::fromLatin1(meta.method(i).methodSignature());
    }
    QCOMPARE(signatures, QStringList({"createLayer(QString,bool)", "createLayer(QString)",
                                      "getFileChooserReadFilter()", "findLayerClassname(QString)",
                                      "setPluginEnabled(QString,bool)", "getDockWidgets()",
                                      "getLayerPropertyWidgets(QString)",
                                      "getLayerPluginAddLayerActions()", "getLayerPluginToolBars()",
                                      "getLayerPluginPrefsPages()", "getLayerPluginInfoList()",
                                      "getSrsPluginInfoList()", "getSrsPluginList()", "fini()"}));
    QCOMPARE(meta.className(), "Corvane::PluginManager");
}

void PluginManagerTest::operationsCanBeCalledByName()
{
    PluginManager manager;
    QString className;
    QVERIFY(QMetaObject::invokeMethod(&manager, "findLayerClassname",
                                      Q_RETURN_ARG(QString, className), Q_ARG(QString, "tiff")));
    QCOMPARE(className, QStringLiteral("Test::Map::EditorLayer"));
}

void PluginManagerTest::theManagerHasAParentOrNone()
{
    QObject parent;
    QCOMPARE(PluginManager(&parent).parent(), &parent);
    QCOMPARE(PluginManager().parent(), nullptr);
}

QTEST_MAIN(PluginManagerTest)
#include "PluginManagerTest.moc"
