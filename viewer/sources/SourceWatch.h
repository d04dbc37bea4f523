#pragma once

#include <corvane/map/ILayerSource.h>

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QVector>

namespace Corvane::Map {
class Layer;
}

namespace Corvane::Viewer {

class MapWindow;
class Workspace;

/// A remote layer of a map, and how its source is doing.
struct WatchedSource
{
    QPointer<Map::Layer> layer;
    QPointer<MapWindow> window;
    QString layerName;
    QString mapName;
    Map::SourceReport report;
};

/// Asks the remote layers of all maps once a second how their sources are doing, as long as there is
/// one. GUI thread only.
class SourceWatch : public QObject
{
    Q_OBJECT
public:
    explicit SourceWatch(Workspace* window);

    /// As of the last look, in the order of the map windows, the topmost layer first.
    const QVector<WatchedSource>& getSources() const { return sources; }
    /// Asks the layer's source at once for what failed. A layer that has gone is passed over.
    void tryAgain(Map::Layer* layer);
    /// Asks all sources that are in trouble.
    void tryAll();

    /// How the source of a layer is doing; local for a layer that tells nothing.
    static Map::SourceReport reportOf(Map::Layer* layer);

public slots:
    /// Looks at once, and goes on looking.
    void look();

signals:
    /// A look is over, whether anything is different or not.
    void looked();

private:
    void follow(MapWindow* window);

    Workspace* window; // not owned
    QVector<WatchedSource> sources;
    QTimer timer;
};

} // namespace Corvane::Viewer
