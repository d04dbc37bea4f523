#include <viewer/batch/SnapshotRenderer.h>

#include <viewer/batch/BatchLayers.h>
#include <viewer/batch/ConsoleLog.h>
#include <viewer/batch/Gaps.h>
#include <viewer/frame/BriefEventLoop.h>
#include <viewer/output/MapPicture.h>
#include <viewer/output/MapPrinting.h>
#include <viewer/output/PdfFile.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>

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
    layers = std::make_unique<BatchLayers>(options.files, view.get());
    QImage picture;
    const bool complete = render(deadline, &picture);
    underWay = !complete;
    const bool allOpened = layers->report();
    const auto& stack = view->getLayers();
    if (!allOpened && layers->isFinished() &&
        std::none_of(stack.begin(), stack.end(),
                     [](Map::Layer* layer) { return layer->isValid(); }))
    {
        return SourceFailed;
    }
    if (!complete) {
        printError("the map was not complete in time");
    }
    if (picture.isNull()) {
        return failToWrite("no memory for a picture of this size");
    }
    const bool pdf = PdfFile::hasPdfSuffix(options.snapshotFile);
    const bool written =
        pdf ? writePdf(complete, &error) : writePicture(picture, options.snapshotFile, &error);
    if (!written) {
        return failToWrite(error);
    }
    for (const QString& gap : qAsConst(gaps)) {
        printError(QString("gap: %1").arg(gap));
    }
    if (!allOpened && !options.listsGaps) {
        return SourceFailed;
    }
    return complete && allOpened && gaps.isEmpty() ? Done : NotComplete;
}

/// A page of a point for each pixel of the view.
bool SnapshotRenderer::writePdf(bool complete, QString* error)
{
    constexpr int pointsPerInch = 72;
    PdfFile file(options.snapshotFile, QFileInfo(options.files.first()).fileName());
    QPrinter& printer = file.getPrinter();
    printer.setResolution(pointsPerInch);
    printer.setPageSize(
        QPageSize(QSizeF(options.size), QPageSize::Point, QString(), QPageSize::ExactMatch));
    printer.setPageMargins(QMarginsF(), QPageLayout::Point);
    MapPrinting printing(*view);
    if (!complete) {
        printing.hurry();
    }
    printing.print(printer, nullptr);
    if (options.listsGaps) {
        gaps = gapsOf(*view); // the page has a view of its own
    }
    return file.commit(error);
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

void SnapshotRenderer::showExtent()
{
    if (options.hasExtent) {
        view->setBounds(options.extent[0], options.extent[1], options.extent[2], options.extent[3]);
    } else if (!layers->getExtent().isNull()) {
        view->setBounds(layers->getExtent());
    } else {
        view->zoomToAllLayers(false);
    }
}

bool SnapshotRenderer::isComplete() const
{
    // once all is finished, a layer that is not valid has failed and is reported
    const auto& stack = view->getLayers();
    return layers->isFinished() && std::all_of(stack.begin(), stack.end(), [](Map::Layer* layer) {
               return !layer->isVisible() || !layer->isValid() ||
                      layer->getPercentComplete() >= 100;
           });
}

/// Paints when everything is there, or at the end of the time with what there is. Painting may ask
/// a layer for more, so the answer is that of the moment after it.
bool SnapshotRenderer::render(const QDeadlineTimer& deadline, QImage* picture)
{
    while (true) {
        if (layers->addOpened()) {
            showExtent();
        }
        if (isComplete() || deadline.hasExpired()) {
            *picture = paintMapPicture(*view, 1.0);
            if (options.listsGaps) {
                gaps = gapsOf(*view);
            }
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
