#pragma once

#include <corvane/core/Export.h>

#include <QList>
#include <QtPlugin>

class QAction;
class QDockWidget;
class QToolBar;
class QWidget;

namespace Corvane {

/// What a plugin adds to the workspace. The order of the operations is part of the contract.
/// GUI thread only; the caller places the widgets.
class CORVANE_EXPORT ILayerEditorPlugin
{
public:
    /// Panels for the main window, which owns them from then on.
    virtual QList<QDockWidget*> getDockWidgets() = 0;
    /// The pages of the layer properties dialog; each may implement ILayerPropertiesWidget.
    virtual QList<QWidget*> getLayerPropertyWidgets() = 0;
    /// Tool bars for the main window, which owns them from then on.
    virtual QList<QToolBar*> getToolBars() = 0;
    /// Actions that let the user add layers of the plugin; the plugin keeps them.
    virtual QList<QAction*> getAddLayerActions() = 0;
    /// Pages for the preferences: the window title names a page, its slot "apply", if it has one, takes
    /// what it shows.
    virtual QList<QWidget*> getPrefsPages() = 0;

protected:
    ~ILayerEditorPlugin() = default;
};

} // namespace Corvane

Q_DECLARE_INTERFACE(Corvane::ILayerEditorPlugin, "com.corvane.viewer.ILayerEditorPlugin/1.0")
