#pragma once

#include <QString>
#include <QThread>

#include <atomic>
#include <memory>

namespace Corvane::PluginChecker {

/// Stands between a layer and the server that its URL names, on a thread of its own, and damages
/// what comes from there.
class BrokenLink
{
public:
    enum Damage
    {
        Silent,  ///< takes requests and says nothing
        HangUp,  ///< closes the connection
        Nothing, ///< sends an empty answer
        Missing, ///< has not found it
        Noise,   ///< sends bytes that are no HTTP
        Cut,     ///< ends in the middle of the server's answer
        Flipped  ///< changes bytes of the server's answer here and there
    };

    /// Whether the source is a URL with a host.
    static bool fits(const QString& source);

    BrokenLink(const QString& source, Damage damage);
    ~BrokenLink();
    BrokenLink(const BrokenLink&) = delete;
    BrokenLink& operator=(const BrokenLink&) = delete;

    /// The source, by way of here.
    QString source() const;
    /// Ends every connection, and takes none any more.
    void close();

private:
    void serve();

    QString scheme; // and what else stands before the host
    QString host;
    int port = 0;
    QString rest;
    Damage damage;
    std::atomic<int> ownPort = 0;
    std::unique_ptr<QThread> thread;
};

} // namespace Corvane::PluginChecker
