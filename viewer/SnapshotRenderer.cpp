#include <viewer/SnapshotRenderer.h>

#include <viewer/BatchOpener.h>
#include <viewer/ConsoleLog.h>
#include <viewer/LayerOpener.h>
#include <viewer/MapPicture.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QDeadlineTimer>

#include <algorithm>

namespace Corvane::Viewer {

SnapshotRenderer::SnapshotRenderer(const ViewerOptions& newOptions) : options(newOptions) {}

SnapshotRenderer::~SnapshotRenderer() = default;

ExitCode SnapshotRenderer::run()
{
    const QDeadlineTimer deadline(options.timeout);
    QString error;
    if (!canWrite(options.snapshotFile, &error)) {
        return failToWrite(error);
    }

    makeView();
    opener = std::make_unique<BatchOpener>(options.files);
    QImage picture;
    const bool complete = render(deadline, &picture);
    underWay = !complete;
    const bool allOpened = reportUnopened();
    if (opener->isFinished() && view->getNumberOfLayers() == 0) {
        return SourceFailed;
    }
    if (!complete) {
        printError("the map was not complete in time");
    }
    if (picture.isNull()) {
        return failToWrite("no memory for a picture of this size");
    }
    if (!writePicture(picture, options.snapshotFile, &error)) {
        return failToWrite(error);
    }
    if (!allOpened) {
        return SourceFailed;
    }
    return complete ? Done : NotComplete;
}

bool SnapshotRenderer::isUnderWay() const
{
    return underWay;
}

void SnapshotRenderer::makeView()
{
    view = std::make_unique<Map::MapView>();
    view->setAttribute(Qt::WA_DeleteOnClose, false);
    view->setAttribute(Qt::WA_DontShowOnScreen);
    view->setUpdatesEnabled(false); // it is painted once, when it is complete
    view->resize(options.size);
    view->show();
}

/// Adds what has become open since the last call, in the order of the files; what is open loads
/// while the rest is still being opened.
void SnapshotRenderer::addOpenedLayers()
{
    int index = 0;
    bool added = false;
    for (const auto& source : opener->getOpeners()) {
        if (auto layer = source->takeLayer()) {
            view->addLayer(layer.release(), index);
            added = true;
        }
        if (source->isFinished() && source->getReason().isEmpty()) {
            ++index;
        }
    }
    if (added) {
        showExtent();
    }
}

/// Names what is not open, with the reason; false where a source was refused.
bool SnapshotRenderer::reportUnopened() const
{
    bool allOpened = true;
    for (const auto& source : opener->getOpeners()) {
        if (!source->isFinished()) {
            printError(QString("not open in time: %1").arg(source->getSource()));
        } else if (!source->getReason().isEmpty()) {
            printError(QString("cannot open %1: %2").arg(source->getSource(), source->getReason()));
            allOpened = false;
        }
    }
    return allOpened;
}

void SnapshotRenderer::showExtent()
{
    if (options.hasExtent) {
        view->setBounds(options.extent[0], options.extent[1], options.extent[2], options.extent[3]);
    } else {
        view->zoomToAllLayers(false);
    }
}

bool SnapshotRenderer::isComplete() const
{
    const auto& layers = view->getLayers();
    return opener->isFinished() && std::all_of(layers.begin(), layers.end(), [](Map::Layer* layer) {
               return !layer->isVisible() ||
                      (layer->isValid() && layer->getPercentComplete() >= 100);
           });
}

/// Paints when everything is there, or at the end of the time with what there is. Painting may ask
/// a layer for more, so the answer is that of the moment after it.
bool SnapshotRenderer::render(const QDeadlineTimer& deadline, QImage* picture)
{
    while (true) {
        addOpenedLayers();
        if (isComplete() || deadline.hasExpired()) {
            *picture = paintMapPicture(*view, 1.0);
            if (isComplete()) {
                return true;
            }
            if (deadline.hasExpired()) {
                return false;
            }
        }
        runEventLoopBriefly();
    }
}

ExitCode SnapshotRenderer::failToWrite(const QString& reason) const
{
    printError(QString("cannot write %1: %2").arg(options.snapshotFile, reason));
    return WrongUsage;
}

} // namespace Corvane::Viewer
