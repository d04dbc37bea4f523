#include <server/FolderGate.h>
#include <server/GdalConfinement.h>
#include <server/HttpServer.h>
#include <server/ImageFolder.h>
#include <server/Pictures.h>
#include <server/Routes.h>
#include <server/ServerLog.h>
#include <server/ServerOptions.h>
#include <server/StopSignals.h>

#include <corvane/core/Application.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QHostAddress>
#include <QTextCodec>

#include <cstdio>

using namespace Corvane;
using namespace Corvane::Server;

namespace {

void print(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stdout);
    std::fflush(stdout); // whoever started the program may be waiting for it
}

QString addressText(const ServerOptions& options, int port)
{
    const bool isSix = QHostAddress(options.address).protocol() == QAbstractSocket::IPv6Protocol;
    return (isSix ? QStringLiteral("http://[%1]:%2/") : QStringLiteral("http://%1:%2/"))
        .arg(options.address)
        .arg(port);
}

bool isForThisMachineAlone(const ServerOptions& options)
{
    return QHostAddress(options.address).isLoopback() ||
           options.address == QLatin1String("localhost");
}

void warnOfOpenDoors(const ServerOptions& options)
{
    if (!isForThisMachineAlone(options) && options.user.isEmpty()) {
        Application::logMessage(QStringLiteral("everybody who reaches %1 sees the images: there is "
                                               "no --user")
                                    .arg(options.address),
                                LogLevel::Warning, QDateTime::currentDateTime());
    }
}

int serve(const ServerOptions& options)
{
    StopSignals signalWaiter;
    const auto gate = std::make_shared<const FolderGate>(options.folder);
    if (!gate->isOpen()) {
        printError(QStringLiteral("cannot read the folder %1.").arg(options.folder));
        return NoFolder;
    }
    confineGdal(gate);
    ServerDescription description{options.title, options.contact, QString()};
    ImageFolder images(gate);
    Pictures pictures(options.renderers);
    const Routes routes(images, pictures, description);
    HttpServer::Terms terms;
    terms.auth = options.user.isEmpty() ? BasicAuth() : BasicAuth(options.user, options.password);
    if (isForThisMachineAlone(options)) { // others may call it by any name of their network
        terms.hosts = HostNames::localAnd(options.hosts);
    }
    terms.connections = options.connections;
    terms.logsAccess = options.logsAccess;
    HttpServer server(routes, terms);
    const int port = server.bind(options.address, options.port);
    if (port < 0) {
        printError(QStringLiteral("cannot listen on %1 port %2: it is in use, or no address of "
                                  "this machine.")
                       .arg(options.address)
                       .arg(options.port));
        return NoAddress;
    }
    description.address = addressText(options, port);
    warnOfOpenDoors(options);
    signalWaiter.onSignal([&] {
        images.stop();
        pictures.stop();
        server.stop();
    });
    const int count = images.list()->images.size();
    print(QStringLiteral("Publishing %1 images of %2 at %3\n")
              .arg(count)
              .arg(options.folder, description.address));
    const bool wasStopped = server.run();
    signalWaiter.finish();
    if (!wasStopped) {
        printError(QStringLiteral("cannot listen any longer."));
    }
    return wasStopped ? Done : NoAddress;
}

} // namespace

int main(int argc, char** argv)
{
    // names of files are UTF-8, whatever the surroundings say
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    ServerLog log; // before all that logs
    const QCoreApplication application(argc, argv);
    Application::installLogMessageHandler(&log);

    ServerOptions options;
    QString error;
    if (!ServerOptions::parse(QCoreApplication::arguments(), &options, &error)) {
        printError(error + QStringLiteral(" See corvane-imageserver --help."));
        return WrongUsage;
    }
    if (options.mode == ServerOptions::Help) {
        print(ServerOptions::helpText());
        return Done;
    }
    if (options.mode == ServerOptions::Version) {
        print(QStringLiteral("Corvane image server %1\n").arg(Application::libraryVersion()));
        return Done;
    }
    return serve(options);
}
