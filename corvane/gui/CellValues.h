#pragma once

#include <corvane/core/Export.h>

#include <QPointer>
#include <QWidget>

class QMdiSubWindow;
class QPoint;
class QPointF;

namespace Corvane::Map {
class Layer;
}

namespace Ui {
class CellValues;
}

namespace Corvane::Gui {

/// The panel for what lies under the pointer: coordinates and a profile of values. It follows the
/// active window; its fields stay empty until a source of values is settled. GUI thread only.
class CORVANE_EXPORT CellValues : public QWidget
{
    Q_OBJECT
public:
    /// The parent owns it; it may be null.
    explicit CellValues(QWidget* parent = nullptr);
    ~CellValues() override;

public slots:
    /// Enables the panel for a map window; ignored while the panel is hidden.
    void onSubWindowActivated(QMdiSubWindow* window);
    /// Remembers the layer, which is not owned and may be null.
    void onLayerActivated(Map::Layer* layer);
    void onPointerPositionChanged(QPoint& screen, QPointF& world); ///< does nothing

private:
    Ui::CellValues* ui; // owned
    QPointer<Map::Layer> currentLayer;
};

} // namespace Corvane::Gui
