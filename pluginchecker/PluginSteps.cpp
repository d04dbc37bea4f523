#include <pluginchecker/CheckStep.h>

#include <pluginchecker/LayerUnderTest.h>
#include <pluginchecker/PluginFile.h>
#include <pluginchecker/StepRecord.h>

#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/core/ILayerPropertiesWidget.h>
#include <corvane/map/Layer.h>

#include <QAction>
#include <QDockWidget>
#include <QFileInfo>
#include <QRegularExpression>
#include <QToolBar>

#include <algorithm>
#include <vector>

namespace Corvane::PluginChecker {

namespace {

constexpr char nobodysInterface[] = "com.corvane.viewer.NoSuchInterface/1.0";
constexpr int layersInFlight = 4;
const QSize viewSize(400, 300);

// File dialogs take the patterns from the first parentheses of each filter.
void checkReadFilter(const QString& filter, StepRecord& record)
{
    static const QRegularExpression form(QStringLiteral("^[^()]*\\([^()]+\\)\\s*$"));
    const QStringList filters = filter.split(QStringLiteral(";;"), Qt::SkipEmptyParts);
    for (const QString& one : filters) {
        if (!form.match(one).hasMatch()) {
            record.fail(QStringLiteral("the read filter \"%1\" is not of the form \"description "
                                       "(patterns)\"")
                            .arg(one));
        }
    }
}

void checkSwitching(ILayerPluginInfo& info, StepRecord& record)
{
    record.doing(QStringLiteral("calling setEnabled"));
    const bool before = info.isEnabled();
    if (!before) {
        record.warn(QStringLiteral("isEnabled is false after loading: programs leave it out"));
    }
    for (const bool enabled : {false, true}) {
        info.setEnabled(enabled);
        if (info.isEnabled() != enabled) {
            record.fail(QStringLiteral("isEnabled does not follow setEnabled"));
        }
    }
    info.setEnabled(before);
}

template <typename Item>
void checkItems(const char* operation, const QList<Item*>& items, StepRecord& record)
{
    if (std::find(items.begin(), items.end(), nullptr) != items.end()) {
        record.fail(QStringLiteral("%1 gives a null pointer").arg(QLatin1String(operation)));
    }
}

// These are the caller's.
template <typename Item>
void takeItems(const char* operation, const QList<Item*>& items, StepRecord& record)
{
    checkItems(operation, items, record);
    qDeleteAll(items);
}

// The dialog shows the page of a layer, which may not be open, and applies it unchanged.
void usePage(QWidget& page, StepContext& context)
{
    if (page.windowTitle().isEmpty()) {
        context.record.fail(QStringLiteral("a property page has no window title for its tab"));
    }
    auto* const face = static_cast<ILayerPropertiesWidget*>(
        page.qt_metacast(qobject_interface_iid<ILayerPropertiesWidget*>()));
    if (!face) {
        context.record.warn(
            QStringLiteral("a property page is no ILayerPropertiesWidget: it is never filled"));
        return;
    }
    const LayerUnderTest layer(context);
    if (layer.exists()) {
        context.record.doing(QStringLiteral("filling and applying a property page"));
        face->setLayer(&*layer);
        page.show();
        handleEvents();
        face->apply();
        page.hide();
    }
}

void checkPages(ILayerEditorPlugin& editor, StepContext& context)
{
    context.record.doing(QStringLiteral("calling getLayerPropertyWidgets"));
    const QList<QWidget*> pages = editor.getLayerPropertyWidgets();
    const QList<QWidget*> others = editor.getLayerPropertyWidgets();
    checkItems("getLayerPropertyWidgets", pages, context.record);
    if (std::any_of(pages.begin(), pages.end(),
                    [&others](QWidget* page) { return page && others.contains(page); }))
    {
        context.record.fail(QStringLiteral("getLayerPropertyWidgets gives the same page twice, and "
                                           "each dialog deletes its own"));
        return;
    }
    for (QWidget* page : pages) {
        if (page) {
            usePage(*page, context);
        }
    }
    context.record.doing(QStringLiteral("deleting property pages"));
    qDeleteAll(pages);
    qDeleteAll(others);
}

} // namespace

void checkLoading(StepContext& context)
{
    QString error;
    if (!context.plugin.load(&error)) {
        context.record.fail(error);
        return;
    }
    if (context.plugin.root()->qt_metacast(nobodysInterface)) {
        context.record.fail(QStringLiteral("the root object answers for %1, which nobody has")
                                .arg(QLatin1String(nobodysInterface)));
    }
    ILayerPluginInfo* const info = context.plugin.info();
    context.record.doing(QStringLiteral("asking for class name and version"));
    context.record.setClassName(info->getClassName());
    context.record.setVersion(info->getVersion());
}

void checkInformation(StepContext& context)
{
    ILayerPluginInfo& info = *context.plugin.info();
    StepRecord& record = context.record;
    record.doing(QStringLiteral("asking for names and filters"));
    if (info.getVersion().isEmpty()) {
        record.fail(QStringLiteral("getVersion is empty"));
    }
    if (info.getClassName().isEmpty()) {
        record.fail(QStringLiteral("getClassName is empty"));
    }
    if (info.getDisplayName().isEmpty() || info.getDescription().isEmpty()) {
        record.warn(QStringLiteral("getDisplayName or getDescription is empty"));
    }
    if (info.getVendor().isEmpty()) {
        record.warn(QStringLiteral("getVendor is empty"));
    }
    info.getHelpUrl();
    checkReadFilter(info.getReadFilter(), record);
    if (info.getClassName() != info.getClassName() || info.getReadFilter() != info.getReadFilter())
    {
        record.fail(QStringLiteral("getClassName or getReadFilter gives another answer each time"));
    }
    checkSwitching(info, record);
}

void checkEditor(StepContext& context)
{
    ILayerEditorPlugin* const editor = context.plugin.editor();
    if (!editor) {
        context.record.skip(QStringLiteral("the plugin has no ILayerEditorPlugin"));
        return;
    }
    context.record.doing(QStringLiteral("asking for panels, tool bars, actions and preferences"));
    takeItems("getDockWidgets", editor->getDockWidgets(), context.record);
    takeItems("getToolBars", editor->getToolBars(), context.record);
    takeItems("getPrefsPages", editor->getPrefsPages(), context.record);
    checkItems("getAddLayerActions", editor->getAddLayerActions(), context.record);
    for (const QAction* action : editor->getAddLayerActions()) {
        if (action && action->text().isEmpty()) {
            context.record.fail(QStringLiteral("an action of getAddLayerActions has no text"));
        }
    }
    checkPages(*editor, context);
}

void checkUnloading(StepContext& context)
{
    {
        std::vector<std::unique_ptr<LayerUnderTest>> layers;
        for (int i = 0; i < layersInFlight && !context.source.isEmpty(); ++i) {
            layers.push_back(std::make_unique<LayerUnderTest>(context));
            LayerUnderTest& layer = *layers.back();
            if (!layer.exists() || !layer.open()) {
                return;
            }
            layer.wholeView(viewSize).set(*layer);
        }
        context.record.doing(QStringLiteral("deleting layers"));
    }
    context.record.doing(QStringLiteral("unloading the plugin"));
    context.plugin.unload();
    handleEvents();
    drainPool();
}

} // namespace Corvane::PluginChecker
