#pragma once

#include <QDir>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace Corvane::Bench {

/// nginx on a free port of 127.0.0.1, in a folder of its own, that answers every tile with the same
/// 256-pixel JPEG: at once below fast/, after 50 milliseconds below slow/. Stops with the object.
class NginxServer
{
public:
    NginxServer();
    ~NginxServer();

    /// Whether it answers; a message on standard error says why not.
    bool isRunning() const { return running; }
    /// Without a slash at the end.
    QString url() const;
    /// Connections accepted so far, the asking one among them.
    int acceptedConnections() const;

private:
    bool writeFiles();
    bool waitUntilItAnswers() const;

    QTemporaryDir folder{QDir::tempPath() + "/corvane-bench-XXXXXX"};
    QProcess process;
    int port = 0;
    bool running = false;
};

} // namespace Corvane::Bench
