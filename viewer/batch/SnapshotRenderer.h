#pragma once

#include <viewer/batch/CommandLine.h>

#include <QStringList>

#include <memory>

class QDeadlineTimer;
class QImage;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

class BatchLayers;

/// Renders files and map documents to a picture without showing them: the same view, manager and canvas as on the
/// screen. GUI thread only.
class SnapshotRenderer
{
public:
    explicit SnapshotRenderer(const ViewerOptions& options);
    ~SnapshotRenderer();

    /// Opens the files, waits until every layer is complete or time is up, and writes the picture.
    /// What went wrong is said on standard error, and each gap where they are to be listed.
    ExitCode run();
    /// Whether a source is still being opened or read; destroying the renderer would wait for it.
    bool isUnderWay() const;

private:
    void makeView();
    void showExtent();
    bool isComplete() const;
    bool writePdf(bool complete, QString* error);
    bool render(const QDeadlineTimer& deadline, QImage* picture);
    ExitCode failToWrite(const QString& reason) const;

    const ViewerOptions options;
    std::unique_ptr<Map::MapView> view;
    std::unique_ptr<BatchLayers> layers;
    QStringList gaps; // of what was written, where they are to be listed
    bool underWay = false;
};

} // namespace Corvane::Viewer
