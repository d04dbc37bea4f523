#include <tests/support/HttpTestServer.h>

#include <QList>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>

namespace {

constexpr std::chrono::seconds patience(60);
constexpr int backlog = 64;
constexpr char endOfLine[] = "\r\n";
constexpr char endOfHead[] = "\r\n\r\n";

bool sendAll(int socket, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t sent = ::send(socket, data, size, MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        data += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool sendAll(int socket, const std::string& text)
{
    return sendAll(socket, text.data(), text.size());
}

/// Whether more came.
bool receiveMore(int socket, std::string& received)
{
    char data[4096];
    const ssize_t size = ::recv(socket, data, sizeof data, 0);
    if (size <= 0) {
        return false;
    }
    received.append(data, static_cast<std::size_t>(size));
    return true;
}

/// Takes one whole request off what was received; false when the client has gone.
bool receiveRequest(int socket, std::string& received, HttpRequest& request)
{
    std::size_t end = 0;
    while ((end = received.find(endOfHead)) == std::string::npos) {
        if (!receiveMore(socket, received)) {
            return false;
        }
    }
    request.head = received.substr(0, end + 2);
    received.erase(0, end + 4);
    const auto length =
        static_cast<std::size_t>(std::max(0, request.header("Content-Length").toInt()));
    while (received.size() < length) {
        if (!receiveMore(socket, received)) {
            return false;
        }
    }
    request.body = received.substr(0, length);
    received.erase(0, length);

    const std::string line = request.head.substr(0, request.head.find(endOfLine));
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    if (first == last) {
        return false;
    }
    request.method = line.substr(0, first);
    request.target = line.substr(first + 1, last - first - 1);
    return true;
}

bool hasBody(int status)
{
    return status >= 200 && status != 204 && status != 304;
}

std::string headOf(const HttpReply& reply)
{
    std::string head = "HTTP/1.1 " + std::to_string(reply.status) + " Status" + endOfLine;
    for (const auto& header : reply.headers) {
        head += header.first + ": " + header.second + endOfLine;
    }
    if (reply.form == HttpReply::Form::Chunked) {
        head += std::string("Transfer-Encoding: chunked") + endOfLine;
    } else if (reply.form == HttpReply::Form::Endless) {
        head += std::string("Connection: close") + endOfLine;
    } else if (hasBody(reply.status)) {
        head += "Content-Length: " + std::to_string(reply.body.size()) + endOfLine;
    }
    return head + endOfLine;
}

bool sendPart(int socket, const HttpReply& reply, std::size_t from, std::size_t to)
{
    if (reply.form != HttpReply::Form::Chunked) {
        return sendAll(socket, reply.body.data() + from, to - from);
    }
    while (from < to) {
        const std::size_t size = std::min(reply.chunkSize, to - from);
        char length[20];
        std::snprintf(length, sizeof length, "%zx\r\n", size);
        if (!sendAll(socket, length + reply.body.substr(from, size) + endOfLine)) {
            return false;
        }
        from += size;
    }
    return true;
}

void resetOnClose(int socket)
{
    const linger atOnce{1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

} // namespace

QByteArray HttpRequest::header(const char* name) const
{
    const QByteArray wanted = QByteArray(name).toLower() + ':';
    for (const QByteArray& line : QByteArray::fromStdString(head).split('\n')) {
        if (line.toLower().startsWith(wanted)) {
            return line.mid(wanted.size()).trimmed();
        }
    }
    return QByteArray();
}

HttpTestServer::HttpTestServer(int port)
    : otherHandler([](const HttpRequest&) { return HttpReply::withStatus(404, "no such page"); })
{
    listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const int reuse = 1; // the port may have been another server's
    ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
    socklen_t size = sizeof address;
    auto* const anyAddress = reinterpret_cast<sockaddr*>(&address);
    if (::bind(listener, anyAddress, size) != 0 || ::listen(listener, backlog) != 0 ||
        ::getsockname(listener, anyAddress, &size) != 0)
    {
        qFatal("HttpTestServer: cannot listen on the loopback");
    }
    thePort = ntohs(address.sin_port);
    acceptor = std::thread([this] { acceptConnections(); });
}

HttpTestServer::~HttpTestServer()
{
    ::shutdown(listener, SHUT_RDWR);
    acceptor.join();
    ::close(listener);
    {
        const std::lock_guard<std::mutex> guard(mutex);
        stopping = true;
        for (const int socket : sockets) {
            ::shutdown(socket, SHUT_RDWR);
        }
        changed.notify_all();
    }
    for (std::thread& connection : connections) {
        connection.join();
    }
}

QString HttpTestServer::url(const QString& target) const
{
    return QStringLiteral("http://127.0.0.1:%1%2").arg(thePort).arg(target);
}

void HttpTestServer::on(const char* path, HttpReply reply)
{
    on(path, [reply = std::move(reply)](const HttpRequest&) { return reply; });
}

void HttpTestServer::on(const char* path, Handler handler)
{
    const std::lock_guard<std::mutex> guard(mutex);
    handlers[path] = std::move(handler);
}

void HttpTestServer::onOther(Handler handler)
{
    const std::lock_guard<std::mutex> guard(mutex);
    otherHandler = std::move(handler);
}

std::vector<HttpRequest> HttpTestServer::requests() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return received;
}

int HttpTestServer::requestCount() const
{
    return static_cast<int>(requests().size());
}

int HttpTestServer::requestCount(const char* target) const
{
    const std::vector<HttpRequest> known = requests();
    return static_cast<int>(
        std::count_if(known.begin(), known.end(),
                      [target](const HttpRequest& request) { return request.target == target; }));
}

int HttpTestServer::connectionCount() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return static_cast<int>(connections.size());
}

bool HttpTestServer::waitForRequests(int count)
{
    std::unique_lock<std::mutex> guard(mutex);
    return changed.wait_for(guard, patience,
                            [&] { return static_cast<int>(received.size()) >= count; });
}

bool HttpTestServer::waitForHeld(int count)
{
    std::unique_lock<std::mutex> guard(mutex);
    return changed.wait_for(guard, patience, [&] { return heldReplies >= count; });
}

void HttpTestServer::release(int count)
{
    const std::lock_guard<std::mutex> guard(mutex);
    permits = count > all - permits ? all : permits + count;
    changed.notify_all();
}

// On the accepting thread.
void HttpTestServer::acceptConnections()
{
    for (;;) {
        const int socket = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) {
            return;
        }
        const int withoutDelay = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &withoutDelay, sizeof withoutDelay);
        const std::lock_guard<std::mutex> guard(mutex);
        sockets.insert(socket);
        const int number = static_cast<int>(connections.size());
        connections.emplace_back([this, socket, number] { serve(socket, number); });
    }
}

// On the connection's thread, as all below.
void HttpTestServer::serve(int socket, int connection)
{
    std::string buffered;
    for (;;) {
        HttpRequest request;
        request.connection = connection;
        if (!receiveRequest(socket, buffered, request)) {
            break;
        }
        const HttpReply reply = answer(request);
        if (!send(socket, request, reply)) {
            break;
        }
    }
    forget(socket);
}

HttpReply HttpTestServer::answer(const HttpRequest& request)
{
    Handler handler;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        received.push_back(request);
        changed.notify_all();
        const auto known = handlers.find(request.target.substr(0, request.target.find('?')));
        handler = known == handlers.end() ? otherHandler : known->second;
    }
    return handler(request);
}

// Whether the connection goes on.
bool HttpTestServer::send(int socket, const HttpRequest& request, const HttpReply& reply)
{
    if (reply.holdBeforeHead) {
        hold();
    }
    if (reply.form == HttpReply::Form::Reset) {
        resetOnClose(socket);
        return false;
    }
    if (reply.form == HttpReply::Form::Raw) {
        sendAll(socket, reply.body);
        return false;
    }
    const bool headOnly = request.method == "HEAD" || !hasBody(reply.status);
    const bool sent = sendAll(socket, headOf(reply)) && (headOnly || sendBody(socket, reply));
    return sent && request.header("Connection").toLower() != "close";
}

bool HttpTestServer::sendBody(int socket, const HttpReply& reply)
{
    if (reply.form == HttpReply::Form::Endless) {
        while (sendAll(socket, reply.body)) {
        }
        return false;
    }
    const std::size_t size = reply.body.size();
    const std::size_t end =
        reply.cutAt == HttpReply::never ? size : std::min(size, std::size_t(reply.cutAt));
    std::size_t sent = 0;
    if (reply.holdAt != HttpReply::never) {
        sent = std::min(end, std::size_t(reply.holdAt));
        if (!sendPart(socket, reply, 0, sent)) {
            return false;
        }
        hold();
    }
    if (!sendPart(socket, reply, sent, end) || reply.cutAt != HttpReply::never) {
        return false;
    }
    return reply.form != HttpReply::Form::Chunked || sendAll(socket, "0\r\n\r\n");
}

void HttpTestServer::hold()
{
    std::unique_lock<std::mutex> guard(mutex);
    ++heldReplies;
    changed.notify_all();
    changed.wait(guard, [this] { return permits > 0 || stopping; });
    --heldReplies;
    if (permits != all && permits > 0) {
        --permits;
    }
}

void HttpTestServer::forget(int socket)
{
    const std::lock_guard<std::mutex> guard(mutex);
    sockets.erase(socket);
    ::close(socket);
}
