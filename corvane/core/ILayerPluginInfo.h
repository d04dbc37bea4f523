#pragma once

#include <corvane/core/Export.h>

#include <QtPlugin>

class QString;

namespace Corvane {

/// A plugin's description of itself. The order of the operations is part of the contract.
/// GUI thread only.
class CORVANE_EXPORT ILayerPluginInfo
{
public:
    /// Printed when the plugin is loaded.
    virtual QString getVersion() = 0;
    /// A short name for people.
    virtual QString getDisplayName() = 0;
    /// One or two sentences for people.
    virtual QString getDescription() = 0;
    /// The layer class that the plugin makes, as QMetaObject::className of that layer gives it:
    /// the property pages are found by it.
    virtual QString getClassName() = 0;
    /// Who made the plugin.
    virtual QString getVendor() = 0;
    /// Where to read more; may be empty.
    virtual QString getHelpUrl() = 0;
    /// File dialog filters, "description (patterns)", several joined by ";;".
    virtual QString getReadFilter() = 0;
    /// Switches what the plugin offers; layers that are there stay.
    virtual void setEnabled(bool enabled) = 0;
    /// A plugin that is not enabled while it is loaded is left out for good.
    virtual bool isEnabled() = 0;

protected:
    ~ILayerPluginInfo() = default;
};

} // namespace Corvane

Q_DECLARE_INTERFACE(Corvane::ILayerPluginInfo, "com.corvane.viewer.ILayerPluginInfo/1.0")
