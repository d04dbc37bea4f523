#include <pluginchecker/BrokenLink.h>

#include <QEventLoop>
#include <QHostAddress>
#include <QRegularExpression>
#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>

namespace Corvane::PluginChecker {

namespace {

constexpr int cutAfter = 600;      // bytes: the head of an answer and some of its body
constexpr int flipEach = 61;       // bytes
constexpr int headLength = 300;    // bytes that stay as they are
constexpr int noiseLength = 20000; // bytes
constexpr int plainPort = 80;
constexpr int securePort = 443;

QRegularExpressionMatch partsOf(const QString& source)
{
    static const QRegularExpression form(
        QStringLiteral("^([A-Za-z][A-Za-z0-9+]*://)(?:[^/@]*@)?([^/|:]+)(?::([0-9]+))?([/|].*)$"));
    return form.match(source);
}

QByteArray noise()
{
    QByteArray bytes(noiseLength, '\0');
    quint32 state = 1;
    for (char& byte : bytes) {
        state = state * 1664525u + 1013904223u; // a plain generator, the same each time
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

/// One connection of a layer, and the one to the server where there is need of it.
class Exchange final : public QObject
{
public:
    Exchange(QTcpSocket* layerSocket, BrokenLink::Damage kind, const QString& host, int port)
        : QObject(layerSocket),
          layer(layerSocket),
          damage(kind)
    {
        connect(layer, &QTcpSocket::readyRead, this, [this] { takeRequest(); });
        connect(layer, &QTcpSocket::disconnected, layer, &QObject::deleteLater);
        if (damage == BrokenLink::Cut || damage == BrokenLink::Flipped) {
            server = new QTcpSocket(this);
            connect(server, &QTcpSocket::readyRead, this, [this] { passAnswer(); });
            connect(server, &QTcpSocket::disconnected, this,
                    [this] { layer->disconnectFromHost(); });
            server->connectToHost(host, static_cast<quint16>(port));
        }
    }

private:
    void takeRequest()
    {
        const QByteArray request = layer->readAll();
        switch (damage) {
        case BrokenLink::Silent:
            break;
        case BrokenLink::HangUp:
            layer->abort();
            break;
        case BrokenLink::Nothing:
            layer->write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
            break;
        case BrokenLink::Missing:
            layer->write("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
            break;
        case BrokenLink::Noise:
            layer->write(noise());
            layer->disconnectFromHost();
            break;
        case BrokenLink::Cut:
        case BrokenLink::Flipped:
            server->write(request); // waits there for the connection
            break;
        }
    }

    void passAnswer()
    {
        QByteArray bytes = server->readAll();
        const int before = passed;
        passed += bytes.size();
        if (damage == BrokenLink::Cut && passed > cutAfter) {
            layer->write(bytes.left(std::max(0, cutAfter - before)));
            layer->disconnectFromHost();
            return;
        }
        for (int i = 0; damage == BrokenLink::Flipped && i < bytes.size(); ++i) {
            if (before + i > headLength && (before + i) % flipEach == 0) {
                bytes[i] = static_cast<char>(bytes[i] ^ (1 << i % 8));
            }
        }
        layer->write(bytes);
    }

    QTcpSocket* layer;            // the parent
    QTcpSocket* server = nullptr; // ours
    BrokenLink::Damage damage;
    int passed = 0; // bytes of answers
};

} // namespace

bool BrokenLink::fits(const QString& source)
{
    return partsOf(source).hasMatch();
}

BrokenLink::BrokenLink(const QString& source, Damage kind) : damage(kind)
{
    const QRegularExpressionMatch parts = partsOf(source);
    scheme = parts.captured(1);
    host = parts.captured(2);
    const bool isSecure = scheme.toLower().endsWith(QLatin1String("s://"));
    port = parts.captured(3).isEmpty() ? (isSecure ? securePort : plainPort)
                                       : parts.captured(3).toInt();
    rest = parts.captured(4);

    QSemaphore listening;
    thread.reset(QThread::create([this, &listening] {
        QTcpServer server;
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, &server] {
            while (QTcpSocket* const socket = server.nextPendingConnection()) {
                new Exchange(socket, damage, host, port);
            }
        });
        server.listen(QHostAddress::LocalHost);
        ownPort = server.serverPort();
        listening.release();
        QEventLoop().exec();
    }));
    thread->start();
    listening.acquire();
}

BrokenLink::~BrokenLink()
{
    close();
}

QString BrokenLink::source() const
{
    return QStringLiteral("%1127.0.0.1:%2%3").arg(scheme).arg(ownPort.load()).arg(rest);
}

void BrokenLink::close()
{
    thread->quit();
    thread->wait();
}

} // namespace Corvane::PluginChecker
