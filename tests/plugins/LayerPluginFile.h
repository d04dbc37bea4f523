#pragma once

#include <corvane/core/ILayerPluginInfo.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QPluginLoader>
#include <QtTest>

namespace Corvane::Tests {

/// A plugin file as it was built. The test defines CORVANE_PLUGIN_DIR.
inline QString layerPluginFile(const QString& name)
{
    return QDir(QStringLiteral(CORVANE_PLUGIN_DIR)).filePath(name);
}

/// Puts the plugin where the manager looks: beside the program.
inline void offerPlugin(const QString& name)
{
    const QString plugins = QCoreApplication::applicationDirPath() + "/tvviewerplugins";
    QDir().mkpath(plugins);
    const QString link = plugins + "/" + name;
    QFile::remove(link);
    QVERIFY(QFile::link(layerPluginFile(name), link));
}

/// Fails the test unless the file offers layers of this class, information and an editor.
inline void verifyInterfaces(const QString& name, const char* className)
{
    QPluginLoader loader(layerPluginFile(name));
    QObject* const root = loader.instance();
    QVERIFY2(root, qPrintable(loader.errorString()));
    QVERIFY(root->qt_metacast("com.corvane.viewer.ILayerPlugin/1.0"));
    QVERIFY(root->qt_metacast("com.corvane.viewer.ILayerEditorPlugin/1.0"));
    auto* const info = static_cast<ILayerPluginInfo*>(
        root->qt_metacast("com.corvane.viewer.ILayerPluginInfo/1.0"));
    QVERIFY(info);
    QCOMPARE(info->getClassName(), QString(className));
    QVERIFY(info->isEnabled());
}

/// What the plugin calls its version.
inline QString versionOf(const QString& name)
{
    QPluginLoader loader(layerPluginFile(name));
    QObject* const root = loader.instance();
    auto* const info = root ? static_cast<ILayerPluginInfo*>(
                                  root->qt_metacast("com.corvane.viewer.ILayerPluginInfo/1.0"))
                            : nullptr;
    return info ? info->getVersion() : QString();
}

} // namespace Corvane::Tests
