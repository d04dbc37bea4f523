#include <viewer/access/MapAnnouncer.h>

#include <viewer/access/KeyboardCursor.h>
#include <viewer/access/MapAccessible.h>
#include <viewer/cells/CellTexts.h>
#include <viewer/cells/LatestCells.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/places/CoordinateForm.h>
#include <viewer/places/MapReference.h>
#include <viewer/places/ViewScale.h>

#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>
#include <corvane/map/ViewManager.h>

#include <QStringList>

namespace Corvane::Viewer {
namespace {

constexpr int pauseMilliseconds = 250;

} // namespace

MapAnnouncer::MapAnnouncer(KeyboardCursor* keyboardCursor, QObject* parent)
    : QObject(parent),
      cursor(keyboardCursor)
{
    makeMapsAccessible();
    pause.setSingleShot(true);
    pause.setInterval(pauseMilliseconds);
    connect(&pause, &QTimer::timeout, this, &MapAnnouncer::tell);
    connect(cursor, &KeyboardCursor::moved, this, &MapAnnouncer::tellSoon);
}

MapAnnouncer::~MapAnnouncer() = default;

void MapAnnouncer::setMapWindow(MapWindow* newWindow)
{
    if (window) {
        disconnect(window, nullptr, this, nullptr);
    }
    if (view) {
        disconnect(view, nullptr, this, nullptr);
    }
    cells.reset();
    askedLayer = nullptr;
    window = newWindow;
    view = window ? window->getView() : nullptr;
    if (!view) {
        pause.stop();
        return;
    }
    connect(window, &QWidget::windowTitleChanged, this, &MapAnnouncer::tellSoon);
    connect(view, &Map::MapView::mapExtentsChanged, this, &MapAnnouncer::tellSoon);
    connect(view, &Map::MapView::layerAdded, this, &MapAnnouncer::tellSoon);
    connect(view, &Map::MapView::layerDeleted, this, &MapAnnouncer::tellSoon);
    tellSoon();
}

void MapAnnouncer::tellSoon()
{
    pause.start();
}

void MapAnnouncer::tell()
{
    if (!window || !view) {
        return;
    }
    const QPointF world = place();
    const QString reference = MapReference::ofView(*view)->getTitle();
    QStringList sentences;
    sentences << positionText(world);
    const QString scale = scaleText(ViewScale::ofView(*view));
    if (!scale.isEmpty()) {
        sentences << tr("Scale %1.").arg(scale);
    }
    sentences << (reference.isEmpty() ? tr("No spatial reference.")
                                      : tr("Spatial reference %1.").arg(reference));
    situation = sentences.join(' ');
    const QString name = tr("Map %1").arg(window->getName());
    if (name != view->accessibleName()) { // a reader would say it again
        view->setAccessibleName(name);
    }
    askForValue(world);
}

/// Where the keyboard cursor is, else the middle.
QPointF MapAnnouncer::place() const
{
    if (!cursor->isOn()) {
        return view->getBounds().center();
    }
    const QPoint pixel = cursor->getPosition();
    double x = 0.0;
    double y = 0.0;
    view->getViewManager()->convertDeviceToWorld(pixel.x(), pixel.y(), &x, &y);
    return QPointF(x, y);
}

QString MapAnnouncer::positionText(const QPointF& world) const
{
    QStringList coordinates;
    for (const CoordinateForm form : {CoordinateForm::Map, CoordinateForm::Degrees}) {
        const QString text = coordinateText(form, *view, world);
        if (!text.isEmpty()) {
            coordinates << coordinateFormLabel(form) + ' ' + text;
        }
    }
    const QString where = coordinates.join(", ");
    return cursor->isOn() ? tr("The keyboard cursor is at %1.").arg(where)
                          : tr("The middle is at %1.").arg(where);
}

void MapAnnouncer::askForValue(const QPointF& world)
{
    Map::RasterLayer* const raster = cursor->isOn() ? rasterOf(*view) : nullptr;
    if (!raster || !LatestCells::canAsk(raster)) {
        cells.reset();
        askedLayer = nullptr;
        describe(QString());
        return;
    }
    if (raster != askedLayer) {
        askedLayer = raster;
        cells = std::make_unique<LatestCells>(raster, nullptr);
        connect(cells.get(), &LatestCells::answered, this, &MapAnnouncer::onValue);
        connect(cells.get(), &LatestCells::waiting, this, [this] { describe(QString()); });
    }
    Map::CellRequest::Window wanted;
    wanted.world = world;
    cells->ask(wanted);
}

void MapAnnouncer::onValue(const Map::CellReading& reading)
{
    if (reading.state != Map::CellReading::State::Read) {
        describe(reading.state == Map::CellReading::State::Outside ? tr("outside of the image")
                                                                   : reading.failure);
        return;
    }
    QStringList values;
    for (int band = 0; band < reading.bands.size(); ++band) {
        const Map::CellBand& one = reading.bands.at(band);
        if (!one.values.isEmpty()) {
            values << bandText(one.name, band + 1) + ' ' + cellText(one.values.first());
        }
    }
    describe(
        tr("Column %1, row %2: %3").arg(reading.column).arg(reading.row).arg(values.join(", ")));
}

/// The value comes first and with the rest in one change, for a reader says all of it.
void MapAnnouncer::describe(const QString& value)
{
    if (!view) {
        return;
    }
    setAccessibleValue(view, value);
    const QString text = value.isEmpty() ? situation : value + ". " + situation;
    if (text != view->accessibleDescription()) {
        view->setAccessibleDescription(text);
    }
}

} // namespace Corvane::Viewer
