#pragma once

#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>
#include <tests/map/TestLayers.h>

#include <QAction>
#include <QCoreApplication>
#include <QDockWidget>
#include <QString>
#include <QStringList>
#include <QToolBar>
#include <QVariant>

/// What the plugins of the tests share. They tell the test program what happens to them through
/// the property "pluginNotes" of the application object.
inline void note(const QString& text)
{
    if (qApp) { // the library unloads after the application object, too
        qApp->setProperty("pluginNotes", qApp->property("pluginNotes").toStringList() << text);
    }
}

/// Which of two equal root objects it was.
inline QString addressOf(const void* root)
{
    return QString::number(reinterpret_cast<quintptr>(root));
}

/// Notes the life of the root object that holds it.
class LifeNote
{
public:
    explicit LifeNote(const QString& rootName) : name(rootName) { note("created " + name); }
    ~LifeNote() { note("deleted " + name); }
    LifeNote(const LifeNote&) = delete;
    LifeNote& operator=(const LifeNote&) = delete;

private:
    QString name;
};

class TestInfo : public Corvane::ILayerPluginInfo
{
public:
    TestInfo(const QString& newClassName, const QString& newVersion, const QString& newFilter,
             bool initiallyEnabled)
        : life(newClassName),
          className(newClassName),
          version(newVersion),
          filter(newFilter),
          enabled(initiallyEnabled)
    {
    }

    QString getVersion() override { return version; }
    QString getDisplayName() override { return className; }
    QString getDescription() override { return {}; }
    QString getClassName() override { return className; }
    QString getVendor() override { return {}; }
    QString getHelpUrl() override { return {}; }
    QString getReadFilter() override { return filter; }
    void setEnabled(bool newEnabled) override
    {
        note(QStringLiteral("%1 enabled: %2").arg(className).arg(newEnabled));
        enabled = newEnabled;
    }
    bool isEnabled() override { return enabled; }

private:
    LifeNote life;
    QString className;
    QString version;
    QString filter;
    bool enabled;
};

class TestLayerMaker : public Corvane::ILayerPlugin
{
public:
    explicit TestLayerMaker(const QString& newLayerName) : layerName(newLayerName) {}

    Corvane::Map::Layer* createLayer(bool useGui) override
    {
        auto* layer = new PlainLayer<Corvane::Map::Layer>(nullptr);
        layer->setDescription(layerName + (useGui ? " with dialogs" : " without dialogs"));
        layer->setComments(addressOf(dynamic_cast<void*>(this)));
        return layer;
    }

private:
    QString layerName;
};

/// Gives one item of each kind, named after the editor.
class TestEditor : public Corvane::ILayerEditorPlugin
{
public:
    explicit TestEditor(const QString& newName) : name(newName) {}

    QList<QDockWidget*> getDockWidgets() override { return {named<QDockWidget>(" dock")}; }
    QList<QWidget*> getLayerPropertyWidgets() override { return {named<QWidget>(" page")}; }
    QList<QToolBar*> getToolBars() override { return {named<QToolBar>(" tool bar")}; }
    QList<QAction*> getAddLayerActions() override
    {
        return {named<QAction>(" first action"), named<QAction>(" second action")};
    }
    QList<QWidget*> getPrefsPages() override { return {named<QWidget>(" preferences")}; }

private:
    template <typename Item>
    Item* named(const char* what)
    {
        auto* item = new Item;
        item->setObjectName(name + QLatin1String(what));
        return item;
    }

    QString name;
};
