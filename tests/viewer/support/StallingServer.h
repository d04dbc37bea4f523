#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>

class QTcpSocket;

/// A web server on the loopback that serves one file by ranges and falls silent for whatever lies
/// behind a certain byte: the connection stays open and no answer comes.
class StallingServer : public QTcpServer
{
public:
    /// Answers only requests that begin before this byte; 0 for none at all.
    StallingServer(const QByteArray& body, qint64 answeredBytes);

    QString addressOf(const QString& name) const;

private:
    void onConnection();
    void onRequest(QTcpSocket* socket);

    const QByteArray body;
    const qint64 answeredBytes;
};
