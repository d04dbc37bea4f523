#pragma once

#include <corvane/map/CellRequest.h>

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>
#include <optional>

namespace Corvane::Map {
class Layer;
}

namespace Corvane::Viewer {

/// Asks one layer for cells, again and again: one question is under way at a time, and of those that
/// come meanwhile only the last is asked. GUI thread only.
class LatestCells : public QObject
{
    Q_OBJECT
public:
    LatestCells(Map::Layer* layer, QObject* parent);
    /// What is under way ends by itself.
    ~LatestCells() override;

    /// Whether the layer can tell the values of its cells.
    static bool canAsk(Map::Layer* layer);
    void ask(const Map::CellRequest::Window& window);
    /// Forgets what was asked.
    void stop();

signals:
    /// Never Dropped.
    void answered(const Corvane::Map::CellReading& reading);
    /// It takes so long that the user should know.
    void waiting();

private:
    void start(const Map::CellRequest::Window& window);
    void onDone(const Map::CellReading& reading);

    QPointer<Map::Layer> layer;
    std::shared_ptr<Map::CellRequest> current; // while one is under way
    std::optional<Map::CellRequest::Window> next;
    QTimer patience;
};

} // namespace Corvane::Viewer
