#include <server/ClientStream.h>

#include <server/StopEvent.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <netdb.h>
#include <poll.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace Corvane::Server {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t mostHeadBytes = 16 << 10;
constexpr std::size_t mostBodyBytes = 64 << 10;
constexpr std::chrono::milliseconds lookInterval(100); // at whether others wait
constexpr std::size_t slowestRate = 4096;              // bytes in each second of a long answer
constexpr std::size_t mostFarewellBytes = 1 << 20;
constexpr std::size_t chunkBytes = 4096;

// The line end before it belongs to the last line.
const std::string headEnd("\n\r\n");

bool beginsWith(const std::string& text, std::size_t at, const char* name)
{
    const std::size_t length = std::char_traits<char>::length(name);
    return text.size() - at >= length && ::strncasecmp(text.data() + at, name, length) == 0;
}

// Milliseconds as poll takes them.
int restUntil(Clock::time_point end)
{
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(rest.count(), 0));
}

using NameOf = int (*)(int, sockaddr*, socklen_t*);

void tellAddress(NameOf nameOf, int socket, std::string& ip, int& port)
{
    sockaddr_storage address = {};
    socklen_t length = sizeof(address);
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> service{};
    if (nameOf(socket, plain, &length) == 0 &&
        ::getnameinfo(plain, length, host.data(), host.size(), service.data(), service.size(),
                      NI_NUMERICHOST | NI_NUMERICSERV) == 0)
    {
        ip = host.data();
        port = std::atoi(service.data());
    }
}

} // namespace

ClientStream::ClientStream(int socket, const StopEvent& stopEvent, std::function<bool()> anyWait,
                           const Patience& howLong)
    : client(socket),
      stop(stopEvent),
      othersWait(std::move(anyWait)),
      patience(howLong)
{
}

// Closing while bytes of the client are left unread would take back what was sent.
ClientStream::~ClientStream()
{
    ::shutdown(client, SHUT_WR);
    const auto end = Clock::now() + patience.farewell;
    for (std::size_t all = 0; all < mostFarewellBytes && !othersWait(); all += chunkBytes) {
        received.clear();
        if (!waitToRead(end) || !receive(chunkBytes)) {
            break;
        }
    }
    ::close(client);
}

ClientStream::Head ClientStream::takeHead()
{
    answers = false;
    headLeft = 0;
    received.erase(0, position);
    position = 0;
    if (received.empty() && !waitForRequest()) {
        return Head::None;
    }
    isFirst = false;
    requestEnd = Clock::now() + patience.request;
    std::size_t end = received.find(headEnd);
    while (end == std::string::npos && received.size() < mostHeadBytes) {
        if (!waitToRead(requestEnd) || !receive(chunkBytes)) {
            return Head::None;
        }
        end = received.find(headEnd);
    }
    if (end == std::string::npos) {
        return received.find('\n') == std::string::npos ? Head::TargetTooLong : Head::TooLong;
    }
    understandHead(end + headEnd.size());
    bodyLeft = mostBodyBytes;
    return Head::Whole;
}

// Whoever has been served already, and whoever says nothing, makes room for those who wait.
bool ClientStream::waitForRequest()
{
    const auto begin = Clock::now();
    const auto yieldBegin = isFirst ? begin + patience.crowded : begin;
    for (auto now = begin; now < begin + patience.between && !isStopping; now = Clock::now()) {
        if (now >= yieldBegin && othersWait()) {
            return false;
        }
        if (waitToRead(now + lookInterval)) {
            return receive(chunkBytes);
        }
    }
    return false;
}

// Parts of pictures are not served: a short list of parts could ask for thousands of pictures at once.
void ClientStream::understandHead(std::size_t size)
{
    std::string head;
    hasBody = !beginsWith(received, 0, "GET ") && !beginsWith(received, 0, "HEAD ");
    for (std::size_t line = 0; line < size;) {
        const std::size_t next = received.find('\n', line) + 1;
        hasBody = hasBody || beginsWith(received, line, "Content-Length:") ||
                  beginsWith(received, line, "Transfer-Encoding:");
        if (!beginsWith(received, line, "Range:")) {
            head.append(received, line, next - line);
        }
        line = next;
    }
    received.replace(0, size, head);
    headLeft = head.size();
}

// False when the time is over, or the server stops.
bool ClientStream::waitToRead(Clock::time_point end)
{
    std::array<pollfd, 2> handles{{{client, POLLIN, 0}, {stop.handle(), POLLIN, 0}}};
    int ready = 0;
    do {
        ready = ::poll(handles.data(), handles.size(), restUntil(end));
    } while (ready < 0 && errno == EINTR);
    isStopping = isStopping || (ready > 0 && handles[1].revents != 0);
    return ready > 0 && !isStopping;
}

// An answer that is under way when the server stops has a moment to arrive.
bool ClientStream::waitToWrite(Clock::time_point end)
{
    for (;;) {
        std::array<pollfd, 2> handles{{{client, POLLOUT, 0}, {stop.handle(), POLLIN, 0}}};
        const bool hears = stopEnd == Clock::time_point();
        const int ready =
            ::poll(handles.data(), hears ? 2 : 1, restUntil(hears ? end : std::min(end, stopEnd)));
        if (ready > 0 && handles[1].revents != 0) {
            stopEnd = Clock::now() + patience.farewell;
        }
        if (ready == 0 || handles[0].revents != 0) {
            return ready > 0;
        }
    }
}

bool ClientStream::receive(std::size_t most)
{
    std::array<char, chunkBytes> chunk{};
    const ssize_t got = ::recv(client, chunk.data(), std::min(most, chunk.size()), MSG_DONTWAIT);
    if (got > 0) {
        received.append(chunk.data(), static_cast<std::size_t>(got));
    }
    return got > 0;
}

bool ClientStream::is_readable() const
{
    pollfd handle{client, POLLIN, 0};
    return position < received.size() || ::poll(&handle, 1, 0) > 0;
}

bool ClientStream::is_writable() const
{
    pollfd handle{client, POLLOUT, 0};
    return ::poll(&handle, 1, 0) > 0 && (handle.revents & POLLOUT) != 0;
}

ssize_t ClientStream::read(char* target, std::size_t size)
{
    if (position == received.size()) {
        received.clear();
        position = 0;
        if (bodyLeft == 0 || !waitToRead(requestEnd) || !receive(bodyLeft)) {
            return -1;
        }
        bodyLeft -= received.size();
    }
    const std::size_t given = received.copy(target, size, position);
    position += given;
    headLeft -= std::min(headLeft, given);
    return static_cast<ssize_t>(given);
}

// What the system has taken says little: it must go on taking.
ssize_t ClientStream::write(const char* data, std::size_t size)
{
    const auto now = Clock::now();
    const auto least = static_cast<std::size_t>(patience.answer.count()) * slowestRate / 1000;
    if (!answers || (now >= writeEnd && written >= least)) {
        answers = true;
        written = 0;
        writeEnd = now + patience.answer;
    }
    ssize_t sent = -1;
    do {
        if (Clock::now() >= writeEnd || !waitToWrite(writeEnd)) {
            return -1;
        }
        sent = ::send(client, data, size, MSG_DONTWAIT | MSG_NOSIGNAL);
    } while (sent < 0 && (errno == EAGAIN || errno == EINTR));
    written += static_cast<std::size_t>(std::max<ssize_t>(sent, 0));
    return sent;
}

void ClientStream::get_remote_ip_and_port(std::string& ip, int& port) const
{
    tellAddress(&::getpeername, client, ip, port);
}

void ClientStream::get_local_ip_and_port(std::string& ip, int& port) const
{
    tellAddress(&::getsockname, client, ip, port);
}

} // namespace Corvane::Server
