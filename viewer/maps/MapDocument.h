#pragma once

#include <viewer/maps/MapState.h>

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class LateLayers;
class MapDocumentLoader;

/// What is known of a map that was kept aside.
struct KeptMap
{
    QString name;         ///< what it was called
    QString fileName;     ///< its document; empty for none
    bool changed = false; ///< it was other than its document
    int missing = 0;      ///< layers of the document that could not be made
};

/// The document of a map window: the file that the map came from or was saved to, and whether the
/// map has changed since. A map without a file is taken as changed once there is more to it than one
/// layer as it was opened. GUI thread only.
class MapDocument : public QObject
{
    Q_OBJECT
public:
    explicit MapDocument(Map::MapView* view, QObject* parent = nullptr);

    /// Absolute; empty for a map that has none.
    QString getFileName() const;
    /// Looks at every layer; false once the view is gone.
    bool isChanged();
    /// How many layers of the file could not be made, and would be lost by saving.
    int getMissingCount() const;

    /// Reads a document into the view, which should be empty. Returns before it is there.
    MapDocumentLoader* load(const QString& fileName);
    /// The same from a file that is not the map's own, and of which nothing stays known.
    MapDocumentLoader* restore(const QString& keptFile, const KeptMap& map);
    /// Whether a document is being read.
    bool isLoading() const;
    /// Whether the layer that is being added is one of the document that is being read.
    bool isTakingIn() const;
    /// The file that is being read; empty for none.
    QString getLoadingName() const;
    /// Between the two a layer gives its place to one that shows the same: no change of the map.
    void beginReplacing();
    void endReplacing();
    bool isReplacing() const;
    /// Makes this map, whose view should be empty, a copy of another one: the same settings and
    /// sources in layers of its own, without a file. It counts as changed if the other does: one of
    /// both has to be saved. Returns before the layers are there.
    MapDocumentLoader* loadCopyOf(MapDocument& other);
    /// Writes the map as it is now, on another thread; saved tells how that ended. A file that is
    /// there stays until the new one is complete.
    void save(const QString& fileName);
    bool isSaving() const;
    /// A layer that was deleted with these settings, as an element's text, is back as another object.
    /// It is no change of the map if they were those of the file.
    void takeBack(const QUuid& gone, const QByteArray& settings, Map::Layer* layer);

signals:
    /// The file's name, or whether the map has changed, may be another.
    void changed();
    void saved(bool ok, const QString& fileName, const QString& reason);

private:
    void onLayerAdded(Map::Layer* layer);
    void onLateLayer(Map::Layer* layer);
    void onLoaded();
    void onWritten(const QString& writtenName, const MapState& state, const QString& reason);
    void lookLater();

    QPointer<Map::MapView> view;
    QPointer<MapDocumentLoader> loader;
    LateLayers* late;
    MapState kept;                     // as it is in the file
    std::unique_ptr<KeptMap> restored; // while it is read
    QString fileName;
    QString nextName; // asked for while a file is being written; empty for none
    int missingCount = 0;
    bool writing = false;
    bool looksLater = false;
    bool changedBefore = false; // the map was, before a layer was replaced
    bool replacing = false;
};

} // namespace Corvane::Viewer
