#pragma once

#include <QDomDocument>
#include <QDomElement>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QString>
#include <QStringList>

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class LateLayers;
enum class MapReading;

/// Reads a map document into a view: the file on another thread, then its layers, a few in each turn
/// of the event loop. Some may open only later. Deleting the loader gives up what has not come yet.
/// GUI thread only.
class MapDocumentLoader : public QObject
{
    Q_OBJECT
public:
    /// The view must outlive the loader, or go with it.
    MapDocumentLoader(const QString& fileName, Map::MapView* view, QObject* parent = nullptr);
    /// Takes a document that is in memory, and has no file.
    MapDocumentLoader(const QDomDocument& map, Map::MapView* view, QObject* parent = nullptr);

    /// What comes of it comes later, from the event loop.
    void start();

    /// Absolute; empty for a document that was in memory.
    QString getFileName() const;
    /// Whether the document was refused, or all its layers are in the view.
    bool isLoaded() const;
    /// The same, and none of the layers is opening.
    bool isFinished() const;
    /// Whether a layer of the document is being put into the view right now.
    bool isTakingIn() const;
    /// Why the document could not be read; empty otherwise.
    QString getReason() const;
    /// What went wrong with single layers, a line each; also of those that wait for their servers.
    QStringList getProblems() const;
    /// How many layers of the document could not be made.
    int getMissingCount() const;
    /// The part of the world that the document shows, null where it tells of none.
    QRectF getExtent() const;

signals:
    /// A layer of the document is in the view, on top. The view shows the document's part of the
    /// world by then.
    void layerCame(Corvane::Map::Layer* layer);
    /// All layers are in the view.
    void loaded();
    /// The file is XML of another kind.
    void foundOtherXml();
    /// The file cannot be read as a map.
    void refused(const QString& reason);
    /// One of the layers could not be opened.
    void problem(const QString& text);
    /// A layer that was late is open.
    void layerOpened(Corvane::Map::Layer* layer);

private:
    void onRead(MapReading result, const QDomDocument& read, const QString& why);
    void loadMap();
    void loadSomeLayers();
    void loadLayer(const QDomElement& element);
    void takeIn(Map::Layer* layer);
    void show() const;
    void onLateLayer(Map::Layer* layer, bool ok);
    void noteWaiting(const QString& text);
    void addProblem(const QString& text);

    const QString fileName;
    QPointer<Map::MapView> view;
    LateLayers* late;
    QDomDocument document;       // without the layers that are still to come
    QList<QDomElement> elements; // of these
    QString reason;
    QStringList problems;
    QRectF extent;
    int missingCount = 0;
    bool hasWaited = false; // a layer did not get an answer
    bool takingIn = false;  // a layer
    bool ended = false;     // all of it is in the view, or was refused
};

} // namespace Corvane::Viewer
