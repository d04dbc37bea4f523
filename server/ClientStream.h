#pragma once

#include <httplib.h>

#include <chrono>
#include <functional>
#include <string>

namespace Corvane::Server {

class StopEvent;

/// How long a client is waited for.
struct Patience
{
    std::chrono::milliseconds between{2000};  ///< requests, and for the first one
    std::chrono::milliseconds crowded{1000};  ///< for the first one, where others have no thread
    std::chrono::milliseconds request{10000}; ///< all of it
    std::chrono::milliseconds answer{20000};  ///< and again where 4 KB a second were taken
    std::chrono::milliseconds farewell{1000}; ///< once it is to end
};

/// A client's connection, which is given so many bytes and so much time and no more: for a request as
/// a whole, not for each byte of it, so that nobody holds a thread by dribbling. All that waits ends
/// when the server stops. One thread.
class ClientStream final : public httplib::Stream
{
public:
    enum class Head
    {
        None,          ///< the client has gone, says nothing, takes too long, or the server stops
        TargetTooLong, ///< its first line does not end
        TooLong,
        Whole
    };

    /// Takes the socket over. othersWait says whether there is somebody without a thread.
    ClientStream(int socket, const StopEvent& stop, std::function<bool()> othersWait,
                 const Patience& patience = Patience());
    /// Gives the client a moment to take what was sent, then closes.
    ~ClientStream() override;

    /// Waits for the next request and takes in its head; what is read from then on is that request.
    Head takeHead();
    /// Whether something may follow the head that belongs to the request.
    bool announcesBody() const { return hasBody; }
    /// Whether the head was read to its end: the rest would be taken for the next request.
    bool isHeadRead() const { return headLeft == 0; }

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* target, std::size_t size) override;
    ssize_t write(const char* data, std::size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return client; }

private:
    using Clock = std::chrono::steady_clock;

    bool waitForRequest();
    bool waitToRead(Clock::time_point end);
    bool waitToWrite(Clock::time_point end);
    bool receive(std::size_t most);
    void understandHead(std::size_t size);

    const int client;
    const StopEvent& stop;
    const std::function<bool()> othersWait;
    const Patience patience;
    std::string received;     // of which what stands before position was read
    std::size_t position = 0; // in received
    bool isFirst = true;      // request of the connection
    bool hasBody = false;
    std::size_t headLeft = 0; // bytes
    std::size_t bodyLeft = 0; // bytes that may still be received
    bool answers = false;
    std::size_t written = 0; // bytes since the time for the answer was given anew
    bool isStopping = false;
    Clock::time_point requestEnd;
    Clock::time_point writeEnd;
    Clock::time_point stopEnd;
};

} // namespace Corvane::Server
