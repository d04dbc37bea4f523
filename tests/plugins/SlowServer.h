#pragma once

#include <QByteArray>
#include <QMutex>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QWaitCondition>

namespace Corvane::Tests {

/// An HTTP server on the loopback address, on a thread of its own, that serves one file with byte
/// ranges. It holds every answer back while it is closed.
class SlowServer : public QThread
{
public:
    explicit SlowServer(QByteArray servedFile, bool opened)
        : file(std::move(servedFile)),
          open(opened)
    {
        start();
        const QMutexLocker lock(&mutex);
        while (port == 0) {
            changed.wait(&mutex);
        }
    }
    ~SlowServer() override
    {
        setOpen(true);
        quit();
        wait();
    }
    QString url(const char* name)
    {
        const QMutexLocker lock(&mutex);
        return QStringLiteral("http://127.0.0.1:%1/%2").arg(port).arg(QLatin1String(name));
    }
    void setOpen(bool opened)
    {
        const QMutexLocker lock(&mutex);
        open = opened;
        changed.wakeAll();
    }
    /// Closes every connection without an answer from now on.
    void breakDown()
    {
        const QMutexLocker lock(&mutex);
        broken = true;
        open = true;
        changed.wakeAll();
    }
    int requests()
    {
        const QMutexLocker lock(&mutex);
        return seen;
    }

protected:
    void run() override
    {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        {
            const QMutexLocker lock(&mutex);
            port = server.serverPort();
            changed.wakeAll();
        }
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, &server] {
            while (QTcpSocket* const socket = server.nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::readyRead, socket,
                                 [this, socket] { answer(socket); });
            }
        });
        exec();
    }

private:
    void answer(QTcpSocket* socket)
    {
        const QByteArray request = socket->peek(socket->bytesAvailable());
        if (!request.contains("\r\n\r\n")) {
            return;
        }
        socket->readAll();
        {
            const QMutexLocker lock(&mutex);
            ++seen;
            while (!open) {
                changed.wait(&mutex);
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
    QMutex mutex; // guards what follows
    QWaitCondition changed;
    bool open;
    bool broken = false;
    quint16 port = 0;
    int seen = 0;
};

} // namespace Corvane::Tests
