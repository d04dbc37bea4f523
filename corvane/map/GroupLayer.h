#pragma once

#include <corvane/map/Layer.h>

#include <QVector>

namespace Corvane::Map {

/// A layer that holds other layers, for plugins to build on. It does not own them.
class CORVANE_EXPORT GroupLayer : public Layer
{
    Q_OBJECT
public:
    GroupLayer();
    ~GroupLayer() override;

    /// The vector itself.
    QVector<Layer*>& layers();

private:
    QVector<Layer*> members; // not owned
};

} // namespace Corvane::Map
