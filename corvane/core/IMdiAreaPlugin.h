#pragma once

#include <corvane/core/Export.h>

#include <QtPlugin>

class QMdiArea;

namespace Corvane {

/// Something that works on all map windows of an MDI area. GUI thread only.
class CORVANE_EXPORT IMdiAreaPlugin
{
public:
    /// The area to work on; not owned.
    virtual void setWorkSpace(QMdiArea* area) = 0;

protected:
    ~IMdiAreaPlugin() = default;
};

} // namespace Corvane

Q_DECLARE_INTERFACE(Corvane::IMdiAreaPlugin, "com.corvane.viewer.IMdiAreaPlugin/1.0")
