#pragma once

#include <plugins/common/OpeningPatience.h>
#include <plugins/common/OpeningRetry.h>
#include <plugins/common/PoolJob.h>

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace Corvane::Map {

/// How a layer comes to its source: it is opened on the pool or, for a server, beside it; the layer
/// waits a moment, is told of the end that it did not wait for, and may give up at any time. On the
/// layer's thread.
template <typename Source>
class SourceOpening
{
public:
    using Work = typename PoolJob<Source>::Work;

    /// The source, or null with the reason in error.
    struct Ended
    {
        std::shared_ptr<Source> source;
        QString error;
        bool inBackground = false; // the layer's user did not wait for it
    };

    /// The layer's slot takeOpened is called at an end that the layer did not wait for; tryAgain when a
    /// server is to be asked again.
    SourceOpening(QObject* openingLayer, std::function<void()> tryAgain)
        : retry(std::move(tryAgain)),
          layer(openingLayer)
    {
    }
    ~SourceOpening() { giveUp(); }
    SourceOpening(const SourceOpening&) = delete;
    SourceOpening& operator=(const SourceOpening&) = delete;

    /// Whether a source is being opened, or was and has not been taken.
    explicit operator bool() const { return job != nullptr; }

    /// isRemote: a server is waited for. tells: the layer is told of the end in any case, and must not
    /// call goesOn.
    void start(Work work, bool isRemote, bool tells)
    {
        job = std::make_shared<PoolJob<Source>>(std::move(work), [told = layer] {
            QMetaObject::invokeMethod(told, "takeOpened", Qt::QueuedConnection);
        });
        if (tells) {
            job->startTelling();
        }
        if (isRemote) {
            job->startRemote();
        } else {
            job->start();
        }
    }
    /// Waits: as long as the window can where it is hurried, else up to the limit in milliseconds, or
    /// without end where that is negative. Whether it goes on behind the scenes.
    bool goesOn(bool hurried, int limit)
    {
        const OpeningPatience patience;
        job->waitFor(hurried ? patience.left() : limit);
        return job->startTelling();
    }
    /// What came of it, once; nothing while it is under way, and where it was given up.
    std::optional<Ended> take()
    {
        if (!job || !job->waitFor(0)) {
            return std::nullopt;
        }
        Ended ended;
        ended.inBackground = job->tellsLayer();
        ended.source = job->result(&ended.error);
        job.reset();
        return ended;
    }
    /// The layer is not touched once this returns, and nothing is tried again.
    void giveUp()
    {
        if (job) {
            job->abandon();
            job.reset();
        }
        retry.stop();
    }

    OpeningRetry retry; // of a remote source

private:
    QObject* layer; // which owns this
    std::shared_ptr<PoolJob<Source>> job;
};

} // namespace Corvane::Map
