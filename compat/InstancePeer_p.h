#pragma once

#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

class QLocalServer;
class QLocalSocket;

/// The meeting point of all instances with one id, one scope and one user. Whoever holds the lock file is the
/// first instance and listens on a local socket; the system tells by the lock whether that
/// instance still lives. A message travels as QDataStream writes a QString, a byte count and then
/// UTF-16, and is answered by a short acknowledgement once it is whole.
class InstancePeer : public QObject
{
    Q_OBJECT
public:
    InstancePeer(const QString& id, const QString& scope);
    ~InstancePeer() override;

    /// False where this is the first instance, or has just become it.
    bool isLater();
    /// Waits up to timeout milliseconds, -1 for ever, for the acknowledgement.
    bool send(const QString& message, int timeout);

signals:
    void messageReceived(const QString& message);

private:
    void listen();
    void acceptConnections();
    void receive(QLocalSocket* socket);

    QString socketName;
    QLockFile lock;
    std::unique_ptr<QLocalServer> server; // after lock: the socket goes before the lock is free
};
