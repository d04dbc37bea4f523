#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace Corvane::Server {

enum ExitCode
{
    Done = 0,
    WrongUsage = 1,
    NoFolder = 2,
    NoAddress = 3
};

/// What the command line asks for.
struct ServerOptions
{
    enum Mode
    {
        Serve,
        Help,
        Version
    };
    Mode mode = Serve;
    QString folder;
    int port = 8460; ///< 0 for a free one
    QString address = QStringLiteral("127.0.0.1");
    QStringList hosts; ///< names by which a proxy on this machine calls it
    QString title = QStringLiteral("Corvane image server");
    QString contact;
    QByteArray user;
    QByteArray password;
    int connections = 64;
    int renderers = 1; ///< pictures made at once
    bool logsAccess = false;

    /// False with the reason in error. Reads the password file.
    static bool parse(const QStringList& arguments, ServerOptions* options, QString* error);
    static QString helpText();
};

} // namespace Corvane::Server
