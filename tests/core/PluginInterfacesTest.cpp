#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/core/ILayerPropertiesWidget.h>
#include <corvane/core/IMdiAreaPlugin.h>
#include <corvane/core/LogMessageHandler.h>
#include <tests/support/VirtualSlot.h>

#include <QtTest>

using namespace Corvane;

class PluginInterfacesTest : public QObject
{
    Q_OBJECT
private slots:
    void idsAreThoseThatPluginsAnswer();
    void operationsStandInTheOrderThatPluginsAreBuiltAgainst();
};

void PluginInterfacesTest::idsAreThoseThatPluginsAnswer()
{
    QCOMPARE(qobject_interface_iid<ILayerPlugin*>(), "com.corvane.viewer.ILayerPlugin/1.0");
    QCOMPARE(qobject_interface_iid<ILayerPluginInfo*>(), "com.corvane.viewer.ILayerPluginInfo/1.0");
    QCOMPARE(qobject_interface_iid<ILayerEditorPlugin*>(),
             "com.corvane.viewer.ILayerEditorPlugin/1.0");
    QCOMPARE(qobject_interface_iid<ILayerPropertiesWidget*>(),
             "com.corvane.viewer.ILayerPropertiesWidget/1.0");
    QCOMPARE(qobject_interface_iid<IMdiAreaPlugin*>(), "com.corvane.viewer.IMdiAreaPlugin/1.0");
}

void PluginInterfacesTest::operationsStandInTheOrderThatPluginsAreBuiltAgainst()
{
#ifdef Q_OS_WIN
    // the compiler hides the slot behind a thunk there; the headers are the same
    QCOMPARE(sizeof(ILayerPlugin), sizeof(void*));
#else
    QCOMPARE(slotOf(&ILayerPluginInfo::getVersion), 0);
    QCOMPARE(slotOf(&ILayerPluginInfo::getClassName), 3);
    QCOMPARE(slotOf(&ILayerPluginInfo::getReadFilter), 6);
    QCOMPARE(slotOf(&ILayerPluginInfo::setEnabled), 7);
    QCOMPARE(slotOf(&ILayerPluginInfo::isEnabled), 8);

    QCOMPARE(slotOf(&ILayerPlugin::createLayer), 0);

    QCOMPARE(slotOf(&ILayerEditorPlugin::getDockWidgets), 0);
    QCOMPARE(slotOf(&ILayerEditorPlugin::getLayerPropertyWidgets), 1);
    QCOMPARE(slotOf(&ILayerEditorPlugin::getToolBars), 2);
    QCOMPARE(slotOf(&ILayerEditorPlugin::getAddLayerActions), 3);
    QCOMPARE(slotOf(&ILayerEditorPlugin::getPrefsPages), 4);

    QCOMPARE(slotOf(&ILayerPropertiesWidget::setLayer), 0);
    QCOMPARE(slotOf(&ILayerPropertiesWidget::apply), 1);

    QCOMPARE(slotOf(&IMdiAreaPlugin::setWorkSpace), 0);

    QCOMPARE(slotOf(&LogMessageHandler::logMessage), 0);
    QCOMPARE(slotOf(&LogMessageHandler::setLogLevel), 1);
    QCOMPARE(slotOf(&LogMessageHandler::getLogLevel), 2);
#endif
}

QTEST_APPLESS_MAIN(PluginInterfacesTest)
#include "PluginInterfacesTest.moc"
