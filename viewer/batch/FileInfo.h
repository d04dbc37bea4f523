#pragma once

#include <viewer/batch/CommandLine.h>

#include <QJsonArray>
#include <QJsonObject>

#include <memory>
#include <vector>

namespace Corvane::Map {
class Layer;
}

namespace Corvane::Viewer {

/// Tells what is known of files and maps, as a JSON array with an object for each. GUI thread only.
class FileInfo
{
public:
    explicit FileInfo(const ViewerOptions& options);
    ~FileInfo();

    /// Opens the files and fills *files, in their order.
    ExitCode run(QJsonArray* files);
    /// Whether a source is still being opened; destroying the object would wait for it.
    bool isUnderWay() const;

    /// Everything that a layer tells of itself: its class, bounds, size and all properties.
    static QJsonObject describe(Map::Layer& layer);

private:
    struct Source;

    bool isFinished() const;

    const ViewerOptions options;
    std::vector<std::unique_ptr<Source>> sources;
    bool underWay = false;
};

/// The value as JSON: exact numbers, as texts where JSON cannot hold them; null for infinities, NaN
/// and what has no text form.
QJsonValue toJson(const QVariant& value);

} // namespace Corvane::Viewer
