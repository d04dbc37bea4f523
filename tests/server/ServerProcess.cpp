#include <tests/server/ServerProcess.h>

#include <QHostAddress>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTcpSocket>

namespace Corvane::Tests {

namespace {

constexpr int patience = 60000; // milliseconds

ServerAnswer parsed(const QByteArray& bytes)
{
    ServerAnswer answer;
    const int end = bytes.indexOf("\r\n\r\n");
    if (end < 0) {
        return answer;
    }
    const QList<QByteArray> lines = bytes.left(end).split('\n');
    answer.status = lines.first().split(' ').value(1).toInt();
    for (const QByteArray& line : lines.mid(1)) {
        const int colon = line.indexOf(':');
        answer.headers.emplace_back(line.left(colon), line.mid(colon + 1).trimmed());
    }
    answer.body = bytes.mid(end + 4);
    return answer;
}

} // namespace

QByteArray ServerAnswer::header(const char* name) const
{
    for (const auto& [key, value] : headers) {
        if (qstricmp(key.constData(), name) == 0) {
            return value;
        }
    }
    return QByteArray();
}

QJsonObject ServerAnswer::json() const
{
    return QJsonDocument::fromJson(body).object();
}

ServerProcess::ServerProcess(const QString& folder, const QStringList& options)
{
    process.start(QStringLiteral(CORVANE_IMAGESERVER),
                  QStringList{folder, QStringLiteral("--port"), QStringLiteral("0")} + options);
    while (!process.canReadLine() && process.waitForReadyRead(patience)) {
    }
    line = QString::fromUtf8(process.readLine()).trimmed();
    const QRegularExpression shape(QStringLiteral(":([0-9]+)/$"));
    thePort = shape.match(line).captured(1).toInt();
}

// The program would wait for connections that clients keep open.
ServerProcess::~ServerProcess()
{
    process.kill();
    process.waitForFinished(patience);
}

QString ServerProcess::url(const QString& path) const
{
    return QStringLiteral("http://127.0.0.1:%1%2").arg(thePort).arg(path);
}

ServerAnswer ServerProcess::ask(const QByteArray& target, const QList<QByteArray>& headers,
                                const QByteArray& method, const QByteArray& body) const
{
    QByteArray request = method + ' ' + target + " HTTP/1.1\r\n";
    if (!host.isEmpty()) {
        request += "Host: " + host + "\r\n";
    }
    for (const QByteArray& header : headers) {
        request += header + "\r\n";
    }
    if (!body.isEmpty()) {
        request += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    }
    request += "Connection: close\r\n\r\n" + body;
    QTcpSocket socket;
    if (!socket.bind(QHostAddress(source))) {
        return ServerAnswer();
    }
    socket.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(thePort));
    if (!socket.waitForConnected(patience)) {
        return ServerAnswer();
    }
    socket.write(request);
    QByteArray bytes;
    while (socket.waitForReadyRead(patience)) {
        bytes += socket.readAll();
    }
    return parsed(bytes + socket.readAll());
}

int ServerProcess::stop()
{
    process.terminate();
    return waitForEnd();
}

int ServerProcess::waitForEnd()
{
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(patience)) {
        process.kill();
        process.waitForFinished();
        return -1;
    }
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QString ServerProcess::log()
{
    process.waitForReadyRead(0);
    errors += process.readAllStandardError();
    return QString::fromUtf8(errors);
}

ServerRun ServerRun::with(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(CORVANE_IMAGESERVER), arguments);
    ServerRun run;
    if (!process.waitForFinished(patience)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.output = QString::fromUtf8(process.readAllStandardOutput());
    run.errors = QString::fromUtf8(process.readAllStandardError());
    return run;
}

} // namespace Corvane::Tests
