#include "StallingServer.h"

#include <QRegularExpression>
#include <QTcpSocket>

StallingServer::StallingServer(const QByteArray& newBody, qint64 newAnsweredBytes)
    : body(newBody),
      answeredBytes(newAnsweredBytes)
{
    connect(this, &QTcpServer::newConnection, this, &StallingServer::onConnection);
    if (!listen(QHostAddress::LocalHost)) {
        qFatal("StallingServer: cannot listen");
    }
}

QString StallingServer::addressOf(const QString& name) const
{
    return QString("http://127.0.0.1:%1/%2").arg(serverPort()).arg(name);
}

void StallingServer::onConnection()
{
    while (QTcpSocket* socket = nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            if (socket->peek(socket->bytesAvailable()).endsWith("\r\n\r\n")) {
                onRequest(socket);
            }
        });
    }
}

void StallingServer::onRequest(QTcpSocket* socket)
{
    const QString request = QString::fromLatin1(socket->readAll());
    const auto range = QRegularExpression("Range: bytes=([0-9]+)-([0-9]*)",
                                          QRegularExpression::CaseInsensitiveOption)
                           .match(request);
    const bool partial = range.hasMatch();
    const qint64 first = range.captured(1).toLongLong();
    const qint64 last = range.captured(2).isEmpty()
                            ? body.size() - 1
                            : qMin<qint64>(range.captured(2).toLongLong(), body.size() - 1);
    const bool headOnly = request.startsWith("HEAD");
    // a request for everything would reach behind the byte as well
    if (first >= answeredBytes || (!headOnly && !partial)) {
        return;
    }

    const qint64 count = last - first + 1;
    QByteArray answer = partial ? "HTTP/1.1 206 Partial Content\r\n" : "HTTP/1.1 200 OK\r\n";
    answer += "Accept-Ranges: bytes\r\nContent-Type: image/tiff\r\n";
    answer += "Content-Length: " + QByteArray::number(count) + "\r\n";
    if (partial) {
        answer += "Content-Range: bytes " + QByteArray::number(first) + '-' +
                  QByteArray::number(last) + '/' + QByteArray::number(body.size()) + "\r\n";
    }
    answer += "\r\n";
    if (!headOnly) {
        answer += body.mid(int(first), int(count));
    }
    socket->write(answer);
}
