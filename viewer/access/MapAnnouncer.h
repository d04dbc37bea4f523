#pragma once

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <memory>

namespace Corvane::Map {
class Layer;
class MapView;
struct CellReading;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class KeyboardCursor;
class LatestCells;
class MapWindow;

/// Says in words what the active map shows, for screen readers: the view's accessible name is that of
/// the map, its value that of the cells under the keyboard cursor, its description tells this value,
/// position, scale and reference. GUI thread only.
class MapAnnouncer : public QObject
{
    Q_OBJECT
public:
    /// cursor lives as long as this.
    MapAnnouncer(KeyboardCursor* cursor, QObject* parent);
    ~MapAnnouncer() override;

    /// The map to tell of; null for none.
    void setMapWindow(MapWindow* newWindow);

private:
    void tellSoon();
    void tell();
    QPointF place() const;
    QString positionText(const QPointF& world) const;
    void askForValue(const QPointF& world);
    void onValue(const Map::CellReading& reading);
    void describe(const QString& value);

    KeyboardCursor* cursor; // not owned
    QPointer<MapWindow> window;
    QPointer<Map::MapView> view;
    QPointer<Map::Layer> askedLayer;
    std::unique_ptr<LatestCells> cells; // of that layer
    QString situation;                  // position, scale and reference
    QTimer pause;                       // nobody listens to every step of a drag
};

} // namespace Corvane::Viewer
