#include "InstancePeer_p.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStringList>
#include <QThread>
#include <QtDebug>
#include <QtEndian>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

const QByteArray acknowledgement = QByteArrayLiteral("ack");
constexpr auto streamVersion = QDataStream::Qt_5_0;
constexpr unsigned long retryInterval = 10;  // milliseconds
constexpr quint32 nullTextMark = 0xffffffff; // QDataStream's byte count of a null QString

QString userName()
{
#ifdef Q_OS_UNIX
    return QString::number(getuid());
#else
    return qEnvironmentVariable("USERDOMAIN") + QLatin1Char('/') + qEnvironmentVariable("USERNAME");
#endif
}

// Short, because the path of a Unix socket holds about a hundred characters.
QString socketNameOf(const QString& id, const QString& scope)
{
    const QByteArray identity = id.toUtf8() + '\0' + userName().toUtf8() + '\0' + scope.toUtf8();
    const QByteArray hash = QCryptographicHash::hash(identity, QCryptographicHash::Sha256);
    return QStringLiteral("single-") + QString::fromLatin1(hash.toHex().left(24));
}

// False while the message is not whole; a sender that keeps to no form is cut off.
bool takeMessage(QLocalSocket& socket, QString* message)
{
    uchar head[sizeof(quint32)];
    if (socket.peek(reinterpret_cast<char*>(head), sizeof head) < qint64(sizeof head)) {
        return false;
    }
    const quint32 count = qFromBigEndian<quint32>(head);
    const qint64 size = qint64(sizeof head) + (count == nullTextMark ? 0 : count);
    if (socket.bytesAvailable() < size) {
        return false;
    }
    QDataStream stream(&socket);
    stream.setVersion(streamVersion);
    stream >> *message;
    if (stream.status() != QDataStream::Ok) {
        socket.abort();
        return false;
    }
    return true;
}

bool connectTo(QLocalSocket& socket, const QString& name, const QDeadlineTimer& deadline)
{
    // the first instance may hold the lock and not listen yet
    for (;;) {
        socket.connectToServer(name);
        if (socket.waitForConnected(int(deadline.remainingTime()))) {
            return true;
        }
        if (deadline.hasExpired()) {
            return false;
        }
        QThread::msleep(retryInterval);
    }
}

bool isAcknowledged(QLocalSocket& socket, const QDeadlineTimer& deadline)
{
    while (socket.bytesAvailable() < acknowledgement.size()) {
        if (!socket.waitForReadyRead(int(deadline.remainingTime()))) {
            return false;
        }
    }
    return socket.read(acknowledgement.size()) == acknowledgement;
}

} // namespace

InstancePeer::InstancePeer(const QString& id, const QString& scope)
    : socketName(socketNameOf(id, scope)),
      lock(QDir(QDir::tempPath()).filePath(socketName + QStringLiteral(".lock")))
{
    lock.setStaleLockTime(0); // stale only when its process is gone, however long that runs
}

InstancePeer::~InstancePeer() = default;

bool InstancePeer::isLater()
{
    if (lock.isLocked()) {
        return false;
    }
    if (!lock.tryLock(0)) {
        if (lock.error() == QLockFile::LockFailedError) {
            return true;
        }
        qWarning("QtSingleApplication: no lock file in '%s', other instances stay unknown.",
                 QDir::tempPath().toLocal8Bit().constData());
        return false;
    }
    listen();
    return false;
}

bool InstancePeer::send(const QString& message, int timeout)
{
    if (!isLater()) {
        return false;
    }
    const QDeadlineTimer deadline(timeout);
    QLocalSocket socket;
    if (!connectTo(socket, socketName, deadline)) {
        return false;
    }
    QDataStream stream(&socket);
    stream.setVersion(streamVersion);
    stream << message;
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(int(deadline.remainingTime()))) {
            return false;
        }
    }
    return isAcknowledged(socket, deadline);
}

void InstancePeer::listen()
{
    server = std::make_unique<QLocalServer>();
    server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(server.get(), &QLocalServer::newConnection, this, &InstancePeer::acceptConnections);
    QLocalServer::removeServer(socketName); // what a dead first instance has left
    if (!server->listen(socketName)) {
        qWarning("QtSingleApplication: cannot listen on '%s': %s.",
                 socketName.toLocal8Bit().constData(),
                 server->errorString().toLocal8Bit().constData());
    }
}

void InstancePeer::acceptConnections()
{
    while (QLocalSocket* socket = server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { receive(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        receive(socket);
    }
}

void InstancePeer::receive(QLocalSocket* socket)
{
    QStringList messages;
    QString message;
    while (takeMessage(*socket, &message)) {
        messages.append(message);
        socket->write(acknowledgement);
    }
    socket->flush();
    // last, for a receiver may open a dialog: the socket can be gone when it returns
    for (const QString& received : qAsConst(messages)) {
        emit messageReceived(received);
    }
}
