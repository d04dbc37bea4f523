#pragma once

#include <QByteArray>
#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace Corvane::Tests {

/// An HTTP server on the loopback address, on a thread of its own, that serves one file with byte
/// ranges. It holds every answer back while it is closed.
class SlowServer
{
public:
    explicit SlowServer(QByteArray servedFile, bool opened)
        : file(std::move(servedFile)),
          open(opened),
          thread([this] { run(); })
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return port != 0; });
    }
    ~SlowServer()
    {
        setOpen(true);
        {
            const std::lock_guard<std::mutex> guard(mutex);
            loop->quit();
        }
        thread.join();
    }
    SlowServer(const SlowServer&) = delete;
    SlowServer& operator=(const SlowServer&) = delete;
    QString url(const char* name)
    {
        std::unique_lock<std::mutex> lock(mutex);
        return QStringLiteral("http://127.0.0.1:%1/%2").arg(port).arg(QLatin1String(name));
    }
    void setOpen(bool opened)
    {
        std::unique_lock<std::mutex> lock(mutex);
        open = opened;
        changed.notify_all();
    }
    /// Closes every connection without an answer from now on.
    void breakDown()
    {
        std::unique_lock<std::mutex> lock(mutex);
        broken = true;
        open = true;
        changed.notify_all();
    }
    /// Answers again after it broke down.
    void recover()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        broken = false;
    }
    int requests()
    {
        std::unique_lock<std::mutex> lock(mutex);
        return seen;
    }

private:
    void run()
    {
        QEventLoop events;
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, &server] {
            while (QTcpSocket* const socket = server.nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::readyRead, socket,
                                 [this, socket] { answer(socket); });
            }
        });
        {
            const std::lock_guard<std::mutex> guard(mutex);
            loop = &events;
            port = server.serverPort();
            changed.notify_all();
        }
        events.exec();
    }

    void answer(QTcpSocket* socket)
    {
        const QByteArray request = socket->peek(socket->bytesAvailable());
        if (!request.contains("\r\n\r\n")) {
            return;
        }
        socket->readAll();
        {
            std::unique_lock<std::mutex> lock(mutex);
            ++seen;
            while (!open) {
                changed.wait(lock);
            }
            if (broken) {
                socket->abort();
                return;
            }
        }
        qint64 first = 0;
        qint64 last = file.size() - 1;
        const int range = request.toLower().indexOf("range: bytes=");
        if (range >= 0) {
            const QByteArray text =
                request.mid(range + 13, request.indexOf("\r\n", range) - range - 13);
            first = text.split('-').value(0).toLongLong();
            last = std::min(last, text.split('-').value(1).toLongLong());
        }
        QByteArray head = range >= 0 ? "HTTP/1.1 206 Partial Content\r\n" : "HTTP/1.1 200 OK\r\n";
        if (first > last) {
            head = "HTTP/1.1 416 Range Not Satisfiable\r\n";
            last = first - 1;
        }
        head += "Accept-Ranges: bytes\r\nContent-Length: " + QByteArray::number(last - first + 1);
        if (range >= 0) {
            head += "\r\nContent-Range: bytes " + QByteArray::number(first) + '-' +
                    QByteArray::number(last) + '/' + QByteArray::number(file.size());
        }
        head += "\r\n\r\n";
        socket->write(head);
        if (!request.startsWith("HEAD")) {
            socket->write(file.mid(static_cast<int>(first), static_cast<int>(last - first + 1)));
        }
    }

    QByteArray file;
    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    bool open;
    bool broken = false;
    quint16 port = 0;
    int seen = 0;
    QEventLoop* loop = nullptr; // of the thread
    std::thread thread;         // last: it uses all of the above
};

} // namespace Corvane::Tests
