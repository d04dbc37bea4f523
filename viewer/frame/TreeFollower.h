#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

namespace Corvane::Map {
class Layer;
class MapTreeView;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class MapWindow;

/// Keeps the layer tree in step with a map that others change: files that open, plugins, dialogs.
/// The tree itself follows no signal. GUI thread only.
class TreeFollower : public QObject
{
    Q_OBJECT
public:
    /// Neither is owned.
    TreeFollower(Map::MapTreeView* followingTree, QObject* parent);

    /// The window whose map the tree shows; null for none.
    void setMapWindow(MapWindow* newWindow);

public slots:
    /// Compares tree and map soon, once for all that happens until then.
    void look();

private:
    void catchUp();
    void follow(Map::Layer* layer);
    bool isInStep(Map::MapView& shown) const;
    bool isBeingEdited() const;
    void rebuild();

    QPointer<Map::MapTreeView> tree;
    QPointer<Map::MapView> view; // whose signals are followed
    QTimer timer;
};

} // namespace Corvane::Viewer
