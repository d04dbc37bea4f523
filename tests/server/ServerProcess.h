#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace Corvane::Tests {

/// An answer as it came.
struct ServerAnswer
{
    int status = 0; // 0 without one
    std::vector<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;

    /// Empty where there is none; the name in any case.
    QByteArray header(const char* name) const;
    QJsonObject json() const;
};

/// The server program, on a free port of the loopback.
class ServerProcess
{
public:
    /// Runs until it listens, or ends; isRunning says which.
    ServerProcess(const QString& folder, const QStringList& options = {});
    /// Kills it: stop does so in a friendly way.
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    bool isRunning() const { return thePort > 0; }
    int port() const { return thePort; }
    qint64 processId() const { return process.processId(); }
    QString url(const QString& path) const;
    /// What it said when it began to listen.
    QString firstLine() const { return line; }

    /// The target goes out as it is. On a connection of its own.
    ServerAnswer ask(const QByteArray& target, const QList<QByteArray>& headers = {},
                     const QByteArray& method = "GET", const QByteArray& body = QByteArray()) const;

    /// Questions come from this address of the loopback from now on.
    void setSource(const QString& address) { source = address; }

    /// Questions call it so from now on, in the header "Host"; without one where empty.
    void setHost(const QByteArray& name) { host = name; }

    /// Ends it with SIGTERM; the exit code, -1 where it did not end.
    int stop();
    /// The exit code once it has ended by itself; -1 where it does not.
    int waitForEnd();
    /// What it has written to standard error so far.
    QString log();

private:
    QProcess process;
    QString line;
    QString source = QStringLiteral("127.0.0.1");
    QByteArray host = "127.0.0.1";
    QByteArray errors;
    int thePort = 0;
};

/// Runs the program to its end: exit code, standard output and standard error.
struct ServerRun
{
    static ServerRun with(const QStringList& arguments);

    int exitCode = -1;
    QString output;
    QString errors;
};

} // namespace Corvane::Tests
