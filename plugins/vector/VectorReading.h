#pragma once

#include <plugins/common/LayerLifeline.h>

#include <QString>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace Corvane::Map {

class VectorChunk;
class VectorChunkBuilder;
class VectorSource;

/// What is read, and how.
struct ReadingOrder
{
    QString dataSource;
    QString layerName;
    QString labelField; // empty for no labels
    QString sourceWkt;
    int targetEpsg = 0;   // 0 leaves the coordinates as they are
    qint64 mostBytes = 0; // of memory, after which no more is read; 0 for no limit
};

/// The reading of a layer's features on the pool, chunk by chunk, each chunk a task of its own so
/// that others have their turn. Held by shared pointer; one that is abandoned ends by itself.
class VectorReading : public std::enable_shared_from_this<VectorReading>
{
public:
    /// Posts to a slot of the layer, by its name, that there is news. On a pool thread, while the
    /// layer is there.
    using Tell = std::function<void()>;

    /// source may be null: it is opened again then.
    VectorReading(std::shared_ptr<VectorSource> source, ReadingOrder order, Tell tell);
    ~VectorReading();

    void start();
    /// The layer is not touched once this returns.
    void abandon();

    /// What has come since the last call. On the layer's thread, as are the following.
    std::vector<std::shared_ptr<const VectorChunk>> takeChunks();
    /// Whether nothing more will come than what can be taken now.
    bool isDone();
    /// Waits until there is something to take, or the end. False after so many milliseconds
    /// without; a negative time waits without end.
    bool waitForNews(int milliseconds);
    qint64 getFeaturesRead() const { return featuresRead; }
    /// Of the features that have geometry, those that cannot be shown.
    qint64 getLeftOut() const { return leftOut; }
    /// Why the reading broke off; empty where it did not.
    QString getFailure();

private:
    void readSome();
    bool prepare(QString* error);
    bool readChunk(QString* error);
    void deliver(std::shared_ptr<const VectorChunk> chunk);
    void finish(const QString& error);
    bool isUnwanted() const;
    bool isFull() const;

    const ReadingOrder order;
    const Tell tell; // called inside the lifeline only
    LayerLifeline lifeline;
    std::atomic<bool> abandoned{false};
    std::atomic<qint64> featuresRead{0};
    std::atomic<qint64> leftOut{0};

    // of the task under way
    std::shared_ptr<VectorSource> source;
    std::unique_ptr<VectorChunkBuilder> builder;
    int labelIndex = -1;
    std::size_t chunkFeatures = 0;
    qint64 held = 0; // bytes, of the chunks delivered
    qint64 unreachable = 0;
    qint64 unusable = 0;

    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::vector<std::shared_ptr<const VectorChunk>> waiting;
    bool told = false;
    bool done = false;
    QString failure;
};

} // namespace Corvane::Map
