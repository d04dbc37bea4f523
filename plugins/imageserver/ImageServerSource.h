#pragma once

#include <plugins/common/SourceHealth.h>
#include <plugins/common/TileFetch.h>
#include <plugins/imageserver/ImageGrid.h>

#include <QByteArray>
#include <QUrl>

#include <memory>
#include <utility>

namespace Corvane::Map {

/// An image on a server and on what terms its tiles are asked for. Nothing changes but its health.
/// Shared by the layer and its requests. Any thread.
struct ImageServerSource
{
    /// name stands in log lines.
    ImageServerSource(std::shared_ptr<const ImageGrid> imageGrid, const QString& name)
        : grid(std::move(imageGrid)),
          health(name)
    {
    }

    std::shared_ptr<const ImageGrid> grid;
    QUrl server;
    QByteArray userAgent;
    QByteArray authorization; ///< empty for none
    int deadline = 20000;     ///< milliseconds
    SourceHealth health;
};

} // namespace Corvane::Map
