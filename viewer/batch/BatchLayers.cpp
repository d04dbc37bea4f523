#include <viewer/batch/BatchLayers.h>

#include <viewer/batch/ConsoleLog.h>
#include <viewer/maps/LayerOpener.h>
#include <viewer/maps/MapDocumentLoader.h>
#include <viewer/maps/MapDocumentReader.h>
#include <viewer/maps/Secrets.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QStringList>

#include <algorithm>
#include <utility>

namespace Corvane::Viewer {

/// A map document has a loader; all else, and XML that is no map after all, has an opener.
struct BatchLayers::Source
{
    QString name;
    std::unique_ptr<LayerOpener> opener;
    std::unique_ptr<MapDocumentLoader> loader;
    int layers = 0; // in the view

    void open()
    {
        opener = std::make_unique<LayerOpener>(name);
        opener->start();
    }
    bool isFinished() const { return opener ? opener->isFinished() : loader->isFinished(); }
    QString reason() const { return opener ? opener->getReason() : loader->getReason(); }
};

BatchLayers::BatchLayers(const QStringList& names, Map::MapView* newView) : view(newView)
{
    for (const QString& name : names) {
        sources.push_back(std::make_unique<Source>());
        Source* source = sources.back().get();
        source->name = name;
        if (!mayBeMapDocument(name)) {
            source->open();
            continue;
        }
        source->loader = std::make_unique<MapDocumentLoader>(name, view);
        MapDocumentLoader* loader = source->loader.get();
        QObject::connect(loader, &MapDocumentLoader::layerCame, loader,
                         [this, source] { placeTop(*source); });
        QObject::connect(loader, &MapDocumentLoader::loaded, loader,
                         [this] { somethingCame = true; });
        QObject::connect(loader, &MapDocumentLoader::foundOtherXml, loader,
                         [source] { source->open(); });
        QObject::connect(loader, &MapDocumentLoader::layerOpened, loader,
                         [this] { somethingCame = true; });
        loader->start();
    }
}

BatchLayers::~BatchLayers() = default;

int BatchLayers::layersBelow(const Source& source) const
{
    int count = 0;
    for (const auto& other : sources) {
        if (other.get() == &source) {
            break;
        }
        count += other->layers;
    }
    return count;
}

/// A document puts its layers on top, above those of sources that come after it.
void BatchLayers::placeTop(Source& source)
{
    view->moveLayer(view->getNumberOfLayers() - 1, layersBelow(source) + source.layers);
    ++source.layers;
    somethingCame = true;
}

/// What is open loads while the rest is still being opened.
bool BatchLayers::addOpened()
{
    bool added = std::exchange(somethingCame, false);
    for (const auto& source : sources) {
        auto layer = source->opener ? source->opener->takeLayer() : nullptr;
        if (layer) {
            view->addLayer(layer.release(), layersBelow(*source));
            source->layers = 1;
            added = true;
        }
    }
    return added;
}

bool BatchLayers::isFinished() const
{
    return std::all_of(sources.begin(), sources.end(),
                       [](const auto& source) { return source->isFinished(); });
}

QRectF BatchLayers::getExtent() const
{
    QRectF extent;
    for (const auto& source : sources) {
        if (source->loader && !source->loader->getExtent().isNull()) {
            extent = source->loader->getExtent();
        }
    }
    return extent;
}

bool BatchLayers::report() const
{
    bool allOpened = true;
    for (const auto& source : sources) {
        const QString name = withoutSecrets(source->name);
        if (!source->isFinished()) {
            printError(QString("not open in time: %1").arg(name));
        } else if (!source->reason().isEmpty()) {
            printError(QString("cannot open %1: %2").arg(name, withoutSecrets(source->reason())));
            allOpened = false;
        }
        const QStringList problems = source->loader ? source->loader->getProblems() : QStringList();
        for (const QString& problem : problems) {
            printError(QString("%1: %2").arg(name, problem));
            allOpened = false;
        }
    }
    return allOpened;
}

} // namespace Corvane::Viewer
