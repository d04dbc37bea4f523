#pragma once

#include <server/PublishedImage.h>

#include <QHash>
#include <QString>
#include <QVector>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>

namespace Corvane::Server {

class FolderGate;

/// The images of a folder at one time, by path. Does not change.
struct ImageList
{
    QVector<std::shared_ptr<const PublishedImage>> images; ///< folder by folder, in order of name
    QHash<QString, int> places;                            ///< path to place in images

    /// Null where there is none. A suffix is found in other capitals, too.
    std::shared_ptr<const PublishedImage> find(const QString& path) const;
    /// The folders right below the root that hold images, in order.
    QStringList topFolders() const;
};

/// The published folder. Looks through it again when it is asked, though not at every question.
/// Any thread.
class ImageFolder
{
public:
    explicit ImageFolder(std::shared_ptr<const FolderGate> gate);

    /// The images as of now, or of a moment ago: one thread looks, the others take what is known.
    std::shared_ptr<const ImageList> list();
    /// The image as it is on disk now, or a moment ago; null where there is none.
    std::shared_ptr<const PublishedImage> find(const QString& path);
    /// The next list is that of the present moment.
    void forgetAge() { mayRest = false; }
    /// A look that is under way ends, and none begins.
    void stop() { isStopping = true; }

private:
    struct Refusal
    {
        QString stamp;
        QString reason;
    };

    std::shared_ptr<const ImageList> look();
    void walk(const QString& folder, int depth, const ImageList& before, ImageList& found);
    void take(const QString& file, const ImageList& before, ImageList& found);
    void leaveOut(const QString& file, const Refusal& refusal);
    QString pathOf(const QString& file) const;

    std::shared_ptr<const FolderGate> gate;
    std::atomic<bool> mayRest{true};
    std::atomic<bool> isStopping{false};

    std::mutex lookMutex;             // held by the one thread that looks; guards what follows
    QHash<QString, Refusal> refused;  // by file, of the last look
    QHash<QString, Refusal> refusing; // of the look that is under way
    bool isFull = false;
    std::chrono::steady_clock::time_point nextLook;

    std::mutex mutex; // guards current
    std::shared_ptr<const ImageList> current;
};

} // namespace Corvane::Server
