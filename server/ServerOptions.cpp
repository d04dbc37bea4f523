#include <server/ServerOptions.h>

#include <QCommandLineParser>
#include <QFile>

#include <algorithm>
#include <thread>

namespace Corvane::Server {

namespace {

constexpr int mostPort = 65535;
constexpr int mostConnections = 512;
constexpr int mostRenderers = 64;
constexpr int usualMostRenderers = 8;
constexpr qint64 mostPasswordBytes = 4096;

struct OptionSet
{
    QCommandLineOption port{"port",
                            QString("Listen on port N, 8460 unless told; 0 for a free one."), "N"};
    QCommandLineOption address{"bind",
                               QString("Listen on ADDRESS. Only this machine reaches the server "
                                       "unless told, 0.0.0.0 stands for all of its networks."),
                               "ADDRESS"};
    QCommandLineOption host{"host",
                            QString("Answer to this NAME too, which a proxy on this machine passes "
                                    "on; may be given more than once. Unless --bind opens it to "
                                    "others, the server answers to addresses and localhost alone."),
                            "NAME"};
    QCommandLineOption user{
        "user", QString("Ask for this NAME and the password of --password-file."), "NAME"};
    QCommandLineOption passwordFile{
        "password-file", QString("Read the password from the first line of FILE."), "FILE"};
    QCommandLineOption title{"title", QString("What the server calls itself."), "TEXT"};
    QCommandLineOption contact{"contact", QString("Whom users may ask."), "TEXT"};
    QCommandLineOption connections{
        "connections", QString("Serve so many connections at once, 64 unless told."), "N"};
    QCommandLineOption threads{"threads",
                               QString("Make so many pictures at once; one for each processor, 8 "
                                       "at most, unless told."),
                               "N"};
    QCommandLineOption accessLog{"access-log", QString("Log every request, without credentials.")};
    QCommandLineOption version{{"v", "version"}, QString("Print the version, then end.")};
    QCommandLineOption help{{"h", "help"}, QString("Print this help, then end.")};
};

void declare(QCommandLineParser& parser, const OptionSet& set)
{
    parser.setApplicationDescription(QString(
        "Publishes the images of a folder to viewers on this and other machines.\n\n"
        "Viewers find the images by the address that the server prints, in the server browser or\n"
        "as http://HOST:PORT/IMAGE. Nothing outside of DIR is read, wherever links and images\n"
        "lead, and nothing is written. Images that come, change and go are noticed. Formats that\n"
        "need more than GDAL's own file functions are left out, netCDF and HDF among them, and so are\n"
        "images that take more than 256 MB of memory to decode a block. The log says which and why.\n\n"
        "Basic authentication hides the password from nobody who can listen to the network: over\n"
        "networks that others share, put a server that speaks HTTPS before this one.\n\n"
        "Ends with 0 when stopped by SIGINT or SIGTERM, 1 for wrong usage, 2 when DIR cannot be\n"
        "read, 3 when the address cannot be listened on, or no longer."));
    parser.addPositionalArgument("dir", QString("The folder to publish."), "DIR");
    parser.addOptions({set.port, set.address, set.host, set.user, set.passwordFile, set.title,
                       set.contact, set.connections, set.threads, set.accessLog, set.version,
                       set.help});
}

bool readNumber(const QCommandLineParser& parser, const QCommandLineOption& option, int least,
                int most, int* number, QString* error)
{
    if (!parser.isSet(option)) {
        return true;
    }
    bool ok = false;
    *number = parser.value(option).toInt(&ok);
    if (!ok || *number < least || *number > most) {
        *error = QString("--%1 takes a number from %2 to %3, not \"%4\".")
                     .arg(option.names().first())
                     .arg(least)
                     .arg(most)
                     .arg(parser.value(option));
        return false;
    }
    return true;
}

bool readPassword(const QString& fileName, QByteArray* password, QString* error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QString("cannot read the password file %1: %2.").arg(fileName, file.errorString());
        return false;
    }
    *password = file.readLine(mostPasswordBytes);
    if (!password->endsWith('\n') && !file.atEnd()) {
        *error = QString("the first line of %1 is too long for a password.").arg(fileName);
        return false;
    }
    while (password->endsWith('\n') || password->endsWith('\r')) {
        password->chop(1);
    }
    if (password->isEmpty()) {
        *error = QString("the first line of %1 is empty: it has to be the password.").arg(fileName);
        return false;
    }
    return true;
}

bool readCredentials(const QCommandLineParser& parser, const OptionSet& set, ServerOptions* options,
                     QString* error)
{
    if (parser.isSet(set.user) != parser.isSet(set.passwordFile)) {
        *error = QString("--user and --password-file go together.");
        return false;
    }
    if (!parser.isSet(set.user)) {
        return true;
    }
    options->user = parser.value(set.user).toUtf8();
    if (options->user.isEmpty() || options->user.contains(':')) {
        *error =
            QString("--user takes a name without a colon, not \"%1\".").arg(parser.value(set.user));
        return false;
    }
    return readPassword(parser.value(set.passwordFile), &options->password, error);
}

} // namespace

bool ServerOptions::parse(const QStringList& arguments, ServerOptions* options, QString* error)
{
    const OptionSet set;
    QCommandLineParser parser;
    declare(parser, set);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    if (parser.isSet(set.help) || parser.isSet(set.version)) {
        options->mode = parser.isSet(set.help) ? Help : Version;
        return true;
    }
    if (parser.positionalArguments().size() != 1) {
        *error = QString("name one folder to publish.");
        return false;
    }
    options->folder = parser.positionalArguments().first();
    options->address = parser.isSet(set.address) ? parser.value(set.address) : options->address;
    options->hosts = parser.values(set.host);
    options->title = parser.isSet(set.title) ? parser.value(set.title) : options->title;
    options->contact = parser.value(set.contact);
    options->logsAccess = parser.isSet(set.accessLog);
    options->renderers =
        std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, usualMostRenderers);
    return readNumber(parser, set.port, 0, mostPort, &options->port, error) &&
           readNumber(parser, set.connections, 1, mostConnections, &options->connections, error) &&
           readNumber(parser, set.threads, 1, mostRenderers, &options->renderers, error) &&
           readCredentials(parser, set, options, error);
}

QString ServerOptions::helpText()
{
    QCommandLineParser parser;
    declare(parser, OptionSet());
    return parser.helpText();
}

} // namespace Corvane::Server
