#include <server/Connections.h>

#include <server/BoundedWorkers.h>
#include <server/ClientStream.h>

namespace Corvane::Server {

namespace {

constexpr int mostWaiting = 64;             // connections
constexpr int requestsPerConnection = 1000; // then another client has a turn

void refuse(ClientStream& stream, const char* status)
{
    stream.write_format("HTTP/1.1 %s\r\nContent-Length: 0\r\nConnection: close\r\n\r\n", status);
}

} // namespace

Connections::Connections(int count)
{
    new_task_queue = [this, count] {
        return new BoundedWorkers(count, mostWaiting, waiting); // owned by the library
    };
}

// On a thread of the workers.
bool Connections::process_and_close_socket(socket_t socket)
{
    ClientStream stream(socket, stopEvent, [this] { return waiting > 0; });
    bool goesOn = true;
    for (int request = 1; goesOn; ++request) {
        const ClientStream::Head head = stream.takeHead();
        if (head != ClientStream::Head::Whole) {
            if (head != ClientStream::Head::None) {
                refuse(stream, head == ClientStream::Head::TooLong
                                   ? "431 Request Header Fields Too Large"
                                   : "414 URI Too Long");
            }
            return false;
        }
        // what follows a body that was refused cannot be told from it
        const bool isLast = request == requestsPerConnection || stream.announcesBody();
        bool isClosed = false;
        goesOn = process_request(stream, isLast, isClosed, nullptr) && !isClosed && !isLast &&
                 stream.isHeadRead();
    }
    return true;
}

} // namespace Corvane::Server
