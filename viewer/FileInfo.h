#pragma once

#include <viewer/CommandLine.h>

#include <QJsonObject>

#include <memory>

namespace Corvane::Map {
class Layer;
}

namespace Corvane::Viewer {

class BatchOpener;

/// Tells what is known of files, as a JSON array with an object for each. GUI thread only.
class FileInfo
{
public:
    explicit FileInfo(const ViewerOptions& options);
    ~FileInfo();

    /// Opens the files and fills *json with text in UTF-8.
    ExitCode run(QByteArray* json);
    /// Whether a source is still being opened; destroying the object would wait for it.
    bool isUnderWay() const;

    /// Everything that a layer tells of itself: its class, bounds, size and all properties.
    static QJsonObject describe(Map::Layer& layer);

private:
    const ViewerOptions options;
    std::unique_ptr<BatchOpener> opener;
    bool underWay = false;
};

/// The value as JSON: exact numbers, as texts where JSON cannot hold them; null for infinities, NaN
/// and what has no text form.
QJsonValue toJson(const QVariant& value);

} // namespace Corvane::Viewer
