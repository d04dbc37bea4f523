#include <bench/NginxServer.h>

#include <corvane/core/Network.h>

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <cstdio>
#include <memory>

namespace Corvane::Bench {

namespace {

constexpr int tileEdge = 256;
constexpr int jpegQuality = 75;
constexpr int mostAttempts = 100;
constexpr unsigned long attemptPause = 20; // milliseconds

const char* const configuration = R"(
load_module /usr/lib/nginx/modules/ngx_http_echo_module.so;
daemon off;
worker_processes 1;
pid nginx.pid;
error_log error.log;
events { worker_connections 512; }
http {
    access_log off;
    sendfile on;
    tcp_nodelay on;
    keepalive_requests 1000000;
    types { image/jpeg jpg; }
    client_body_temp_path body;
    proxy_temp_path proxy;
    fastcgi_temp_path fastcgi;
    uwsgi_temp_path uwsgi;
    scgi_temp_path scgi;
    server {
        listen 127.0.0.1:%1;
        root "%2";
        location /fast/ { try_files /tile.jpg =404; }
        location /slow/ { echo_sleep 0.05; echo_exec /fast/; }
        location /status { stub_status; }
    }
}
)";

// Something that a JPEG decoder has to work for, as for a picture.
QImage makePicture()
{
    QImage picture(tileEdge, tileEdge, QImage::Format_RGB32);
    unsigned int noise = 1;
    for (int y = 0; y < tileEdge; ++y) {
        for (int x = 0; x < tileEdge; ++x) {
            noise = noise * 1664525U + 1013904223U;
            const int grain = static_cast<int>(noise >> 27U);
            picture.setPixel(x, y, qRgb((x + grain) & 255, (y + grain) & 255, (x * y / 256) & 255));
        }
    }
    return picture;
}

int freePort()
{
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
}

} // namespace

NginxServer::NginxServer()
{
    port = freePort();
    if (!writeFiles()) {
        return;
    }
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start("/usr/sbin/nginx", {"-p", folder.path(), "-c", folder.filePath("nginx.conf")});
    running = process.waitForStarted() && waitUntilItAnswers();
    if (!running) {
        std::fprintf(stderr, "nginx does not answer; scripts/setup.sh bench installs it\n");
    }
}

NginxServer::~NginxServer()
{
    process.terminate();
    process.waitForFinished();
}

bool NginxServer::writeFiles()
{
    QFile file(folder.filePath("nginx.conf"));
    const QString text = QString::fromLatin1(configuration).arg(port).arg(folder.path());
    // nginx's workers may run as another user
    QFile::setPermissions(folder.path(), QFile::Permissions(0x7755));
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0 &&
           makePicture().save(folder.filePath("tile.jpg"), "JPG", jpegQuality);
}

bool NginxServer::waitUntilItAnswers() const
{
    for (int i = 0; i < mostAttempts; ++i) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port));
        if (socket.waitForConnected()) {
            return true;
        }
        QThread::msleep(attemptPause);
    }
    return false;
}

QString NginxServer::url() const
{
    return QString("http://127.0.0.1:%1").arg(port);
}

int NginxServer::acceptedConnections() const
{
    const std::unique_ptr<QBuffer> buffer(Network::getBuffer(url() + "/status", false));
    static const QRegularExpression numbers("requests\\s+(\\d+)");
    return numbers.match(QString::fromLatin1(buffer->data())).captured(1).toInt();
}

} // namespace Corvane::Bench
