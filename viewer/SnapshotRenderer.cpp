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
        printError(QString("cannot write %1: %2").arg(options.snapshotFile, error));
        return WrongUsage;
    }

    makeView();
    bool inTime = openFiles(deadline);
    const bool allOpened = reportUnopened();
    if (inTime && view->getNumberOfLayers() == 0) {
        return SourceFailed;
    }

    showExtent();
    QImage picture;
    inTime = complete(deadline, &picture) && inTime;
    underWay = !inTime;
    if (picture.isNull()) {
        printError(QString("no memory for a picture of %1x%2 pixels")
                       .arg(options.size.width())
                       .arg(options.size.height()));
        return WrongUsage;
    }
    if (!writePicture(picture, options.snapshotFile, &error)) {
        printError(QString("cannot write %1: %2").arg(options.snapshotFile, error));
        return WrongUsage;
    }
    if (!allOpened) {
        return SourceFailed;
    }
    return inTime ? Done : NotComplete;
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

/// False where time was up before every source was open or refused.
bool SnapshotRenderer::openFiles(const QDeadlineTimer& deadline)
{
    opener = std::make_unique<BatchOpener>(options.files);
    const bool inTime = opener->wait(deadline);
    underWay = !inTime;
    for (const auto& source : opener->getOpeners()) {
        if (auto layer = source->takeLayer()) {
            view->addLayer(layer.release());
        }
    }
    return inTime;
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
    return std::all_of(layers.begin(), layers.end(), [](Map::Layer* layer) {
        return !layer->isVisible() || (layer->isValid() && layer->getPercentComplete() >= 100);
    });
}

/// Paints when everything is there, or at the end of the time with what there is. Painting may ask
/// a layer for more, so the answer is that of the moment after it.
bool SnapshotRenderer::complete(const QDeadlineTimer& deadline, QImage* picture)
{
    while (true) {
        while (!isComplete() && !deadline.hasExpired()) {
            runEventLoopBriefly();
        }
        *picture = paintMapPicture(*view, 1.0);
        if (isComplete()) {
            return true;
        }
        if (deadline.hasExpired()) {
            printError("the map was not complete in time");
            return false;
        }
    }
}

} // namespace Corvane::Viewer
