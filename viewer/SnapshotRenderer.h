#pragma once

#include <viewer/CommandLine.h>

#include <memory>

class QDeadlineTimer;
class QImage;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

class BatchOpener;

/// Renders files to a picture without showing them: the same view, manager and canvas as on the
/// screen. GUI thread only.
class SnapshotRenderer
{
public:
    explicit SnapshotRenderer(const ViewerOptions& options);
    ~SnapshotRenderer();

    /// Opens the files, waits until every layer is complete or time is up, and writes the picture.
    /// What went wrong is said on standard error.
    ExitCode run();
    /// Whether a source is still being opened or read; destroying the renderer would wait for it.
    bool isUnderWay() const;

private:
    void makeView();
    void addOpenedLayers();
    void showExtent();
    bool isComplete() const;
    bool render(const QDeadlineTimer& deadline, QImage* picture);
    bool reportUnopened() const;
    ExitCode failToWrite(const QString& reason) const;

    const ViewerOptions options;
    std::unique_ptr<BatchOpener> opener;
    std::unique_ptr<Map::MapView> view;
    bool underWay = false;
};

} // namespace Corvane::Viewer
