#pragma once

#include <corvane/core/Export.h>

#include <QString>
#include <QtPlugin>

namespace Corvane::Map {

/// How far the building of overviews is.
struct OverviewProgress
{
    /// Where the building stands.
    enum class State
    {
        None,     ///< nothing was begun, or it was cancelled
        Building, ///< they are not all there yet
        Done,     ///< they are there, and the layer reads them
        Failed
    };

    State state = State::None; ///< where it stands
    int percent = 0;           ///< 0 to 100, while they are built
    QString folder;            ///< where they are, or come to lie; empty before
    QString reason;            ///< of a failure, for people; empty without one
};

/// A layer that can have reduced copies made of an image that comes without any: without them a view
/// of all of a large image takes reading all of it. The image itself is never written to. The layer
/// stays the same object throughout, and shows each overview as soon as it is whole. A layer that goes
/// gives up what it builds, and leaves nothing half done. GUI thread only.
class CORVANE_EXPORT ILayerOverviews
{
public:
    /// Whether the image is large, lacks overviews, and they can be built.
    virtual bool wantsOverviews() = 0;
    /// Begins in the background; false where wantsOverviews is, or where it has begun.
    virtual bool buildOverviews() = 0;
    /// Gives them up. Nothing of them stays but what is shown. Returns before that is done.
    virtual void cancelOverviews() = 0;
    /// Cheap: may be asked several times a second.
    virtual OverviewProgress getOverviewProgress() = 0;

protected:
    ~ILayerOverviews() = default;
};

} // namespace Corvane::Map

Q_DECLARE_INTERFACE(Corvane::Map::ILayerOverviews, "com.corvane.viewer.ILayerOverviews/1.0")
