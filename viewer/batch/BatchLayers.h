#pragma once

#include <QRectF>
#include <QString>

#include <memory>
#include <vector>

class QStringList;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

class LayerOpener;
class MapDocumentLoader;

/// Files and map documents that are opened side by side as the layers of one view, which end up in
/// the order of the sources. For the modes without a window; GUI thread only.
class BatchLayers
{
public:
    /// The view must outlive this.
    BatchLayers(const QStringList& sources, Map::MapView* view);
    ~BatchLayers();

    /// Puts into the view what has become open since the last call; false where nothing has, and
    /// the view still shows what it was told to.
    bool addOpened();
    /// Whether every source, and every layer of a document, is open or refused.
    bool isFinished() const;
    /// The part of the world that the last of the documents shows, null where none tells of one.
    QRectF getExtent() const;
    /// Names on standard error what is not open, with the reason; false where something was refused.
    bool report() const;

private:
    struct Source;

    int layersBelow(const Source& source) const;
    void placeTop(Source& source);

    std::vector<std::unique_ptr<Source>> sources;
    Map::MapView* view;         // not owned
    bool somethingCame = false; // that the view is to be told of
};

} // namespace Corvane::Viewer
