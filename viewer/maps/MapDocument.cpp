#include <viewer/maps/MapDocument.h>

#include <viewer/maps/DocumentThreads.h>
#include <viewer/maps/LateLayers.h>
#include <viewer/maps/MapDocumentLoader.h>
#include <viewer/maps/MapDocumentWriter.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QCoreApplication>
#include <QDomDocument>
#include <QFileInfo>
#include <QMetaProperty>
#include <QThreadPool>
#include <QTimer>

#include <memory>
#include <utility>

namespace Corvane::Viewer {

MapDocument::MapDocument(Map::MapView* newView, QObject* parent)
    : QObject(parent),
      view(newView),
      late(new LateLayers(this)),
      kept(MapState::of(*newView))
{
    connect(view, &Map::MapView::layerAdded, this, &MapDocument::onLayerAdded);
    connect(view, &Map::MapView::layerDeleted, this, &MapDocument::lookLater);
    connect(view, &Map::MapView::layerMoved, this, &MapDocument::lookLater);
    connect(view, &Map::MapView::layerPropertyChanged, this, &MapDocument::lookLater);
    connect(view, &Map::MapView::mapPropertyChanged, this, &MapDocument::lookLater);
    connect(late, &LateLayers::ended, this, &MapDocument::onLateLayer);
}

QString MapDocument::getFileName() const
{
    return fileName;
}

bool MapDocument::isChanged()
{
    if (!view || isLoading()) {
        return false;
    }
    const bool worthless = fileName.isEmpty() && view->getNumberOfLayers() == 0;
    return !worthless && MapState::of(*view) != kept;
}

int MapDocument::getMissingCount() const
{
    return missingCount;
}

/// The first layer of a map without a file is what was opened, and no change of it.
void MapDocument::onLayerAdded(Map::Layer* layer)
{
    late->follow(layer);
    if (fileName.isEmpty() && view->getNumberOfLayers() == 1) {
        kept = MapState::of(*view);
    }
    lookLater();
}

/// A layer knows its name and bands only when it is open; that is no change of the map.
void MapDocument::onLateLayer(Map::Layer* layer)
{
    if (view) {
        kept.takeLayer(layer->getUid(), MapState::of(*view));
    }
}

/// Once for all that happens in one turn of the event loop.
void MapDocument::lookLater()
{
    if (looksLater) {
        return;
    }
    looksLater = true;
    QTimer::singleShot(0, this, [this] {
        looksLater = false;
        emit changed();
    });
}

MapDocumentLoader* MapDocument::load(const QString& source)
{
    loader = new MapDocumentLoader(source, view, this);
    connect(loader, &MapDocumentLoader::loaded, this, &MapDocument::onLoaded);
    loader->start();
    return loader;
}

MapDocumentLoader* MapDocument::restore(const QString& keptFile, const KeptMap& map)
{
    restored = std::make_unique<KeptMap>(map);
    return load(keptFile);
}

bool MapDocument::isLoading() const
{
    return loader && !loader->isLoaded();
}

bool MapDocument::isTakingIn() const
{
    return loader && loader->isTakingIn();
}

QString MapDocument::getLoadingName() const
{
    return isLoading() ? loader->getFileName() : QString();
}

void MapDocument::beginReplacing()
{
    changedBefore = isChanged();
    replacing = true;
}

void MapDocument::endReplacing()
{
    replacing = false;
    if (view && !changedBefore && !isLoading()) {
        kept = MapState::of(*view);
    }
}

bool MapDocument::isReplacing() const
{
    return replacing;
}

MapDocumentLoader* MapDocument::loadCopyOf(MapDocument& other)
{
    const std::unique_ptr<QDomDocument> copied(other.view->saveMapXML());
    restored = std::make_unique<KeptMap>();
    restored->changed = other.isChanged();
    loader = new MapDocumentLoader(*copied, view, this);
    connect(loader, &MapDocumentLoader::loaded, this, &MapDocument::onLoaded);
    loader->start();
    return loader;
}

void MapDocument::onLoaded()
{
    fileName = restored ? restored->fileName : loader->getFileName();
    missingCount = loader->getMissingCount() + (restored ? restored->missing : 0);
    // a map that was changed is other than anything
    kept = restored && restored->changed ? MapState() : MapState::of(*view);
    if (restored) {
        view->setDocumentName(fileName);
    }
    restored.reset();
    emit changed();
}

void MapDocument::save(const QString& newName)
{
    if (writing) {
        nextName = newName;
        return;
    }
    if (!view) {
        return;
    }
    const std::unique_ptr<QDomDocument> document(view->saveMapXML());
    const QByteArray text = mapDocumentText(*document);
    const MapState state = MapState::of(*view, *document);
    const QString target = QFileInfo(newName).absoluteFilePath();
    const QPointer<MapDocument> self(this);
    writing = true;
    documentThreads().start([self, text, state, target] {
        QString reason;
        if (!writeMapDocument(target, text, &reason) && reason.isEmpty()) {
            reason = tr("unknown error");
        }
        QMetaObject::invokeMethod(
            qApp,
            [self, state, target, reason] {
                if (self) {
                    self->onWritten(target, state, reason);
                }
            },
            Qt::QueuedConnection);
    });
}

void MapDocument::takeBack(const QUuid& gone, const QByteArray& settings, Map::Layer* layer)
{
    kept.takeBack(gone, settings, layer->getUid());
    lookLater();
}

bool MapDocument::isSaving() const
{
    return writing;
}

void MapDocument::onWritten(const QString& writtenName, const MapState& state,
                            const QString& reason)
{
    writing = false;
    const bool ok = reason.isEmpty();
    if (ok) {
        fileName = writtenName;
        kept = state;
        missingCount = 0;
        if (view) {
            view->setDocumentName(fileName);
        }
    }
    emit changed();
    emit saved(ok, writtenName, reason);
    if (!nextName.isEmpty()) {
        save(std::exchange(nextName, QString()));
    }
}

} // namespace Corvane::Viewer
