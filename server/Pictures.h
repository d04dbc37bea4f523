#pragma once

#include <server/OpenImages.h>
#include <server/PictureStore.h>
#include <server/RenderTurns.h>

#include <QByteArray>
#include <QHash>
#include <QRect>
#include <QSize>
#include <QString>

#include <mutex>

namespace Corvane::Server {

struct PublishedImage;

enum class PictureFormat
{
    Png,
    Jpeg ///< of opaque images only
};

/// Makes the pictures that are sent, a few at once, and keeps those asked for last. Any thread.
class Pictures
{
public:
    /// So many are made at once.
    explicit Pictures(int atOnce);

    /// A tile of a level, counted from 0 for the full resolution; it must lie in the level. Empty
    /// with a reason for the client in error, and isBusy
    /// where it may come later. What names files goes to the log alone.
    QByteArray tile(const PublishedImage& image, int level, const QPoint& tile,
                    PictureFormat format, QString* error, bool* isBusy);
    /// The whole image, no larger than the box and never enlarged. The same.
    QByteArray overview(const PublishedImage& image, const QSize& box, PictureFormat format,
                        QString* error, bool* isBusy);

    /// What is under way ends soon, empty.
    void stop() { turns.stop(); }

private:
    QByteArray make(const PublishedImage& image, int level, const QRect& pixels, const QSize& size,
                    PictureFormat format, QString* error, bool* isBusy);

    void logFailure(const PublishedImage& image, const QString& reason);

    OpenImages images;
    PictureStore store;
    RenderTurns turns;
    std::mutex failureMutex;          // guards failures
    QHash<QString, QString> failures; // path and stamp of images that were logged
};

} // namespace Corvane::Server
