#include <server/HttpServer.h>

#include <server/Connections.h>
#include <server/Exchange.h>
#include <server/Routes.h>
#include <server/WrongGuesses.h>

#include <corvane/core/Application.h>

#include <httplib.h>

#include <QDateTime>
#include <QStringList>

#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

namespace Corvane::Server {

namespace {

constexpr int mostBodyBytes = 64 << 10;
constexpr std::chrono::milliseconds stopInterval(10);

QByteArray bytesOf(const std::string& text)
{
    return QByteArray::fromStdString(text);
}

// Whether the client has this already.
bool isKnown(const QByteArray& ifNoneMatch, const QByteArray& etag)
{
    const QList<QByteArray> tags = ifNoneMatch.split(',');
    return !etag.isEmpty() && std::any_of(tags.begin(), tags.end(), [&etag](QByteArray tag) {
        tag = tag.trimmed();
        return tag == "*" || (tag.startsWith("W/") ? tag.mid(2) : tag) == etag;
    });
}

// Without a body: clients throw it away when they ask again, and some with it what unpacks it.
Reply unauthorized()
{
    Reply reply;
    reply.status = 401;
    reply.header("WWW-Authenticate", R"(Basic realm="Corvane image server", charset="UTF-8")")
        .header("Cache-Control", "no-store");
    return reply;
}

// The same: whether what was tried is right is not told.
Reply keptOut(std::chrono::seconds wait)
{
    Reply reply;
    reply.status = 429;
    reply.header("Retry-After", QByteArray::number(static_cast<qlonglong>(wait.count())))
        .header("Cache-Control", "no-store");
    return reply;
}

// For whoever runs a proxy that passes the name on which it was asked.
Reply misdirected()
{
    Reply reply;
    reply.status = 421;
    reply.type = "text/plain; charset=utf-8";
    reply.body = "This server does not know itself by that name: see its option --host.\n";
    reply.header("Cache-Control", "no-store");
    return reply;
}

bool isForUs(const httplib::Request& request, const HostNames& hosts)
{
    return request.get_header_value_count("Host") <= 1 &&
           hosts.admits(bytesOf(request.get_header_value("Host")));
}

// What the client gets instead of an answer; nothing where it is let in.
std::optional<Reply> refusalOf(const httplib::Request& request, const BasicAuth& auth,
                               WrongGuesses& guesses)
{
    if (!auth.isNeeded()) {
        return std::nullopt;
    }
    const QByteArray digest =
        BasicAuth::digestOf(bytesOf(request.get_header_value("Authorization")));
    if (digest.isEmpty()) {
        return unauthorized();
    }
    std::chrono::seconds wait{0};
    switch (guesses.judge(bytesOf(request.remote_addr), digest, auth.admits(digest), &wait)) {
    case WrongGuesses::Verdict::Right:
        return std::nullopt;
    case WrongGuesses::Verdict::TooMany:
        return keptOut(wait);
    default:
        return unauthorized();
    }
}

// What may be read of the client before it is answered: a body of a known length that is no longer
// than it looks. 0 where there is nothing to say against it.
int statusAgainstBody(const httplib::Request& request)
{
    if (request.has_header("Transfer-Encoding") || !request.has_header("Content-Length")) {
        return 411;
    }
    bool isNumber = false;
    const qulonglong length =
        bytesOf(request.get_header_value("Content-Length")).toULongLong(&isNumber);
    if (!isNumber || request.get_header_value_count("Content-Length") != 1) {
        return 400;
    }
    if (request.has_header("Content-Encoding")) {
        return 415; // a few bytes may unpack to very many
    }
    return length > mostBodyBytes ? 413 : 0;
}

void send(const Reply& reply, const QByteArray& ifNoneMatch, httplib::Response& response)
{
    for (const auto& [name, value] : reply.headers) {
        response.set_header(name.constData(), value.toStdString());
    }
    response.set_header("X-Content-Type-Options", "nosniff");
    if (reply.status == 200 && isKnown(ifNoneMatch, reply.header("ETag"))) {
        response.status = 304;
        return;
    }
    response.status = reply.status;
    if (!reply.body.isEmpty()) {
        response.set_content(reply.body.toStdString(), reply.type.toStdString());
    }
}

// The target as it was sent: decoded, it might hold line ends.
void logAccess(const httplib::Request& request, const httplib::Response& response)
{
    const QStringList parts{
        QString::fromStdString(request.remote_addr), QString::fromStdString(request.method),
        QString::fromUtf8(bytesOf(request.target)), QString::number(response.status),
        QString::number(response.body.size())};
    Application::logMessage(parts.join(QLatin1Char(' ')), LogLevel::Information,
                            QDateTime::currentDateTime());
}

} // namespace

struct HttpServer::Library
{
    explicit Library(int connections) : server(connections) {}

    WrongGuesses guesses; // outlives the connections
    Connections server;
    std::atomic<bool> isStopping{false};
    std::atomic<bool> hasEnded{false};
};

HttpServer::HttpServer(const Routes& routes, const Terms& terms)
    : library(std::make_unique<Library>(terms.connections))
{
    httplib::Server& server = library->server;
    server.set_socket_options([](int socket) { // the library would share the port with others
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    });
    server.set_tcp_nodelay(true);
    server.set_payload_max_length(mostBodyBytes);
    // before the library's own routing, which matches patterns against whatever clients send, and
    // before it reads a body
    server.set_pre_routing_handler(
        [&routes, &guesses = library->guesses, auth = terms.auth,
         hosts = terms.hosts](const httplib::Request& request, httplib::Response& response) {
            using Result = httplib::Server::HandlerResponse;
            const bool reads = request.method == "GET" || request.method == "HEAD";
            if (request.method == "HEAD") {
                response.set_header("Accept-Ranges", "none"); // else the library offers them
            }
            if (!isForUs(request, hosts)) {
                send(misdirected(), QByteArray(), response);
            } else if (const std::optional<Reply> refusal = refusalOf(request, auth, guesses)) {
                send(*refusal, QByteArray(), response);
            } else if (reads) {
                send(routes.get(Request::of(bytesOf(request.target))),
                     bytesOf(request.get_header_value("If-None-Match")), response);
            } else if (request.method != "POST") {
                response.status = 405;
                response.set_header("Allow", "GET, HEAD, POST");
            } else if (const int status = statusAgainstBody(request)) {
                response.status = status;
            } else {
                return Result::Unhandled;
            }
            return Result::Handled;
        });
    server.Post("/.*", [&routes](const httplib::Request& request, httplib::Response& response) {
        Request asked = Request::of(bytesOf(request.target));
        asked.body = bytesOf(request.body);
        send(routes.post(asked), QByteArray(), response);
    });
    if (terms.logsAccess) {
        server.set_logger(&logAccess);
    }
}

HttpServer::~HttpServer() = default;

int HttpServer::bind(const QString& address, int port)
{
    const std::string host = address.toStdString();
    if (port == 0) {
        return library->server.bind_to_any_port(host);
    }
    return library->server.bind_to_port(host, port) ? port : -1;
}

bool HttpServer::run()
{
    library->server.listen_after_bind();
    library->hasEnded = true;
    return library->isStopping;
}

// The library hears a stop only while it listens, and once.
void HttpServer::stop()
{
    library->isStopping = true;
    library->server.endWaiting();
    while (!library->hasEnded && !library->server.is_running()) {
        std::this_thread::sleep_for(stopInterval);
    }
    library->server.stop();
}

} // namespace Corvane::Server
