#pragma once

#include <corvane/core/Export.h>

class QString;

namespace Corvane::Map {

/// What a layer or renderer calls on the view. The order of the operations is part of the
/// contract.
class CORVANE_EXPORT IRendererClient
{
public:
    /// There is new content for this world rectangle, please repaint. Any thread.
    virtual void onRendererUpdate(double tlx, double tly, double brx, double bry) = 0;
    /// A layer failed; message is for people.
    virtual void onRendererError(QString message) = 0;

protected:
    ~IRendererClient() = default;
};

} // namespace Corvane::Map
