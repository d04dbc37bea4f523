#include <tests/support/TlsFront.h>

#include <tests/support/HttpTestServer.h>

#include <QFile>
#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>

namespace {

QByteArray contentOf(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("TlsFront: cannot read %s", qPrintable(name));
    }
    return file.readAll();
}

void passOn(QTcpSocket* from, QTcpSocket* to)
{
    QObject::connect(from, &QTcpSocket::readyRead, to, [=] { to->write(from->readAll()); });
    QObject::connect(from, &QTcpSocket::disconnected, to, &QTcpSocket::disconnectFromHost);
}

} // namespace

class TlsListener : public QTcpServer
{
public:
    TlsListener(int portBehind, const TestCertificate& certificate)
        : behind(static_cast<quint16>(portBehind)),
          chain(QSslCertificate::fromData(contentOf(certificate.certificate))),
          key(contentOf(certificate.key), QSsl::Ec)
    {
        setProxy(QNetworkProxy::NoProxy);
    }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto* const outside = new QSslSocket(this);
        outside->setSocketDescriptor(descriptor);
        outside->setLocalCertificateChain(chain);
        outside->setPrivateKey(key);
        auto* const inside = new QTcpSocket(outside);
        inside->setProxy(QNetworkProxy::NoProxy);
        inside->connectToHost(QHostAddress::LocalHost, behind);
        passOn(outside, inside);
        passOn(inside, outside);
        outside->startServerEncryption();
    }

private:
    quint16 behind;
    QList<QSslCertificate> chain;
    QSslKey key;
};

TlsFront::TlsFront(const HttpTestServer& server, const TestCertificate& certificate)
    : listener(std::make_unique<TlsListener>(server.port(), certificate))
{
    if (!listener->listen(QHostAddress::LocalHost)) {
        qFatal("TlsFront: cannot listen on the loopback");
    }
    port = listener->serverPort();
    listener->moveToThread(&thread);
    thread.start();
}

TlsFront::~TlsFront()
{
    // ends on its own thread, with the sockets
    QMetaObject::invokeMethod(
        listener.get(), [this] { listener.reset(); }, Qt::BlockingQueuedConnection);
    thread.quit();
    thread.wait();
}

QString TlsFront::url(const QString& target) const
{
    return QStringLiteral("https://127.0.0.1:%1%2").arg(port).arg(target);
}
