#pragma once

#include <QPointer>
#include <QRectF>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <chrono>

class QPrinter;
class QProgressDialog;
class QSize;

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

/// Prints what a map view shows, whole, in the middle of the page. While it lives the view's layers
/// belong to the page and the view is not repainted; at its end they get their settings and the
/// screen's view back. GUI thread only.
class MapPrinting
{
public:
    explicit MapPrinting(Map::MapView& view);
    ~MapPrinting();
    MapPrinting(const MapPrinting&) = delete;
    MapPrinting& operator=(const MapPrinting&) = delete;

    enum class Loading
    {
        Complete,
        Incomplete, ///< nothing more came for longer than the patience
        Cancelled
    };
    /// Lets the layers get what the page needs, with the event loop running, and shows in the dialog
    /// how far they are. After an incomplete loading print waits for nothing more.
    Loading load(const QPrinter& printer, QProgressDialog& progress);
    /// Paints the page; see MapCanvas::print for the dialog, which may be null. Waits for what was
    /// not loaded before.
    void print(QPrinter& printer, QProgressDialog* progress);
    /// From now on print waits for nothing.
    void hurry();

    /// Titles of the layers that lack something of the page.
    QStringList missingLayers() const;
    /// How long loading goes on while nothing comes.
    void setPatience(std::chrono::milliseconds time);

    /// Whether a page for what the view shows should lie on its side.
    static bool isLandscape(Map::MapView& view);
    /// The world rectangle grown about its middle to the shape of a page.
    static QRectF grownTo(const QSize& page, const QRectF& world);

private:
    struct Settings
    {
        QPointer<Map::Layer> layer;
        QVector<QVariant> values; ///< invalid for a property that the layer has not
    };

    void setLayers(const char* property, const QVariant& value);
    int loadedPercent(bool* complete) const;

    QPointer<Map::MapView> view;
    QVector<Settings> settings;
    std::chrono::milliseconds patience;
    bool updatesWereEnabled;
};

} // namespace Corvane::Viewer
