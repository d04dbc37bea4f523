#pragma once

#include <tests/support/HttpReply.h>

#include <QByteArray>
#include <QString>

#include <condition_variable>
#include <functional>
#include <limits>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

/// A request as it came in.
struct HttpRequest
{
    std::string method;
    std::string target; // as sent, with its query
    std::string head;   // the request line and the headers, as sent
    std::string body;
    int connection = 0; // counted from 0

    /// Null where there is none; the name in any case.
    QByteArray header(const char* name) const;
};

/// An HTTP/1.1 server on the loopback with threads of its own, so a test may be blocked in a fetch
/// meanwhile. It keeps connections open, and keeps what it was asked. Any thread.
class HttpTestServer
{
public:
    using Handler = std::function<HttpReply(const HttpRequest& request)>; // on a server thread
    static constexpr int all = std::numeric_limits<int>::max();

    /// Listens on a free port, or on one that was free a moment ago.
    explicit HttpTestServer(int port = 0);
    /// Closes all connections, held replies among them.
    ~HttpTestServer();
    HttpTestServer(const HttpTestServer&) = delete;
    HttpTestServer& operator=(const HttpTestServer&) = delete;

    int port() const { return thePort; }
    QString url(const QString& target) const;

    /// Target without its query; the last call for a target holds.
    void on(const char* path, HttpReply reply);
    void on(const char* path, Handler handler);
    /// For every other target; a page of status 404 unless told.
    void onOther(Handler handler);

    std::vector<HttpRequest> requests() const;
    int requestCount() const;
    int requestCount(const char* target) const;
    int connectionCount() const;

    /// Whether so many requests have come, or come within a minute.
    bool waitForRequests(int count);
    /// Whether so many replies are held, or will be within a minute.
    bool waitForHeld(int count);
    /// Lets so many replies go, held by now or later.
    void release(int count = all);

private:
    void acceptConnections();
    void serve(int socket, int connection);
    HttpReply answer(const HttpRequest& request);
    bool send(int socket, const HttpRequest& request, const HttpReply& reply);
    bool sendBody(int socket, const HttpReply& reply);
    void hold();
    void forget(int socket);

    int listener = -1;
    int thePort = 0;
    std::thread acceptor;

    mutable std::mutex mutex; // guards all below
    std::condition_variable changed;
    std::map<std::string, Handler> handlers;
    Handler otherHandler;
    std::vector<HttpRequest> received;
    std::vector<std::thread> connections;
    std::set<int> sockets;
    int heldReplies = 0;
    int permits = 0;
    bool stopping = false;
};
