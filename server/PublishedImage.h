#pragma once

#include <plugins/raster/RasterFacts.h>

#include <QString>
#include <QStringList>

#include <memory>

namespace Corvane::Server {

class FolderGate;

/// An image that is published. Does not change: a file that changes becomes another one.
struct PublishedImage
{
    QString path;        ///< below the folder, with its leading slash
    QString file;        ///< absolute
    QStringList files;   ///< all that it is read from, absolute
    QString stamp;       ///< another one whenever one of the files changes
    qint64 modified = 0; ///< of the file, milliseconds since 1970
    Map::RasterFacts facts;
    QString units;         ///< of the coordinate system, in capitals
    int levels = 1;        ///< of the pyramid; the last is the coarsest
    bool isOpaque = false; ///< no pixel can be transparent

    /// The last part of the path.
    QString name() const;
    /// The pixels of a level, counted from 0 for the full resolution.
    QSize sizeOf(int level) const { return facts.levels[static_cast<std::size_t>(level)].size; }
    /// "UINT8" for plain bytes and so on.
    QString cellType() const;
    /// "RGB", "Greyscale" or "Multiband".
    QString colorSpace() const;
    /// Whether a band or a mask tells what is transparent.
    bool hasOpacity() const { return facts.alphaBand > 0 || facts.hasMask; }
    /// Whether clients that stream may ask for it: they go by the name.
    bool canStream() const;
};

/// Changes whenever one of the files, or a file that goes along with the first, does.
QString stampOf(const FolderGate& gate, const QStringList& files);

/// Whether one of the formats goes by the suffix.
bool looksLikeImage(const QString& file);

/// Null where the file is no image, or one that cannot be published; then reason says why, and is
/// empty where nobody would take it for an image. May take long. Any thread.
std::shared_ptr<const PublishedImage> readImage(const FolderGate& gate, const QString& file,
                                                QString* reason);

} // namespace Corvane::Server
