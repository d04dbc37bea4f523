#pragma once

#include <server/BasicAuth.h>
#include <server/HostNames.h>

#include <QString>

#include <memory>

namespace Corvane::Server {

class Routes;

/// Speaks HTTP: connections, credentials and what clients have already; the answers come from the
/// routes.
class HttpServer
{
public:
    struct Terms
    {
        BasicAuth auth;
        HostNames hosts;      ///< others hear 421
        int connections = 64; ///< served at once
        bool logsAccess = false;
    };

    /// Not owned; outlives it.
    HttpServer(const Routes& routes, const Terms& terms);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Port 0 takes a free one. The port; -1 where the address is taken or not ours.
    int bind(const QString& address, int port);
    /// Serves until stop is called. False where it ends before: the system takes no connections.
    bool run();
    /// Any thread; also before run, which then returns at once.
    void stop();

private:
    struct Library;

    std::unique_ptr<Library> library;
};

} // namespace Corvane::Server
