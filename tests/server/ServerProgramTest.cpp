#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <QFile>
#include <QHostAddress>
#include <QNetworkInterface>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>

using namespace Corvane::Tests;

namespace {

QByteArray basic(const QByteArray& credentials)
{
    return "Authorization: Basic " + credentials.toBase64();
}

} // namespace

/// The program as users start and stop it.
class ServerProgramTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void helpAndVersionArePrinted();
    void wrongUsageEndsWithOne_data();
    void wrongUsageEndsWithOne();
    void aFolderThatCannotBeReadEndsWithTwo();
    void anAddressThatIsTakenEndsWithThree();
    void theFirstLineSaysWhatIsPublishedAndWhere();
    void onlyTheLoopbackIsListenedOnUnlessTold();
    void openDoorsAreWarnedOf();
    void strangersNamesAreNotAnsweredOnTheLoopback_data();
    void strangersNamesAreNotAnsweredOnTheLoopback();
    void twoNamesAreOneTooMany();
    void namesAreNotLookedAtWhereOthersAreLetIn();
    void signalsEndIt_data();
    void signalsEndIt();
    void aConnectionThatIsOpenDoesNotKeepItAlive();
    void credentialsAreAskedForEverywhere_data();
    void credentialsAreAskedForEverywhere();
    void credentialsAreAskedForBeforeABodyIsRead();
    void otherMethodsAreNotAllowed();
    void onlyTheRightCredentialsAreLetIn_data();
    void onlyTheRightCredentialsAreLetIn();
    void whoGuessesIsKeptOutAndNobodyElse();
    void whatIsTriedAgainIsNoGuess();
    void thePasswordMayHoldColonsAndOtherScripts();
    void aPasswordIsNotCutShort();
    void requestsAreLoggedWhereAskedForWithoutCredentials();
    void requestsAreNotLoggedUnlessAskedFor();

private:
    QString passwordFile(const QByteArray& content) const;

    std::unique_ptr<QTemporaryDir> base;
    QString folder;
};

void ServerProgramTest::init()
{
    base = std::make_unique<QTemporaryDir>();
    folder = base->filePath("images");
    QVERIFY(QDir().mkpath(folder));
    RasterRecipe recipe;
    recipe.size = QSize(32, 32);
    recipe.options.clear();
    QVERIFY(makeRaster(folder + "/a.tif", recipe));
}

QString ServerProgramTest::passwordFile(const QByteArray& content) const
{
    QFile file(base->filePath("password"));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(content);
    }
    return file.fileName();
}

void ServerProgramTest::helpAndVersionArePrinted()
{
    const ServerRun help = ServerRun::with({"--help"});
    QCOMPARE(help.exitCode, 0);
    for (const char* const word :
         {"Usage: ", "DIR", "--port", "--bind", "--user", "--password-file", "--access-log",
          "--threads", "--connections", "Ends with 0"})
    {
        QVERIFY2(help.output.contains(word), word);
    }
    const ServerRun version = ServerRun::with({"--version"});
    QCOMPARE(version.exitCode, 0);
    QVERIFY(version.output.startsWith("Corvane image server "));
}

void ServerProgramTest::wrongUsageEndsWithOne_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const QString dir = QDir::tempPath();
    QTest::newRow("no folder") << QStringList() << "name one folder to publish.";
    QTest::newRow("two folders") << QStringList({dir, dir}) << "name one folder to publish.";
    QTest::newRow("no such option")
        << QStringList({dir, "--nonsense"}) << "Unknown option 'nonsense'.";
    QTest::newRow("a port that is no number")
        << QStringList({dir, "--port", "http"})
        << "--port takes a number from 0 to 65535, not \"http\".";
    QTest::newRow("a port beyond all") << QStringList({dir, "--port", "65536"})
                                       << "--port takes a number from 0 to 65535, not \"65536\".";
    QTest::newRow("no threads") << QStringList({dir, "--threads", "0"})
                                << "--threads takes a number from 1 to 64, not \"0\".";
    QTest::newRow("too many connections")
        << QStringList({dir, "--connections", "513"})
        << "--connections takes a number from 1 to 512, not \"513\".";
    QTest::newRow("a name without a password")
        << QStringList({dir, "--user", "ann"}) << "--user and --password-file go together.";
    QTest::newRow("a password without a name")
        << QStringList({dir, "--password-file", "x"}) << "--user and --password-file go together.";
    QTest::newRow("a name that ends early")
        << QStringList({dir, "--user", "a:b", "--password-file", "x"})
        << "--user takes a name without a colon, not \"a:b\".";
    QTest::newRow("no password file")
        << QStringList({dir, "--user", "ann", "--password-file", "/nowhere"})
        << "cannot read the password file /nowhere: No such file or directory.";
    QTest::newRow("an empty password")
        << QStringList({dir, "--user", "ann", "--password-file", "/dev/null"})
        << "the first line of /dev/null is empty: it has to be the password.";
}

void ServerProgramTest::wrongUsageEndsWithOne()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const ServerRun run = ServerRun::with(arguments);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors, "corvane-imageserver: " + message + " See corvane-imageserver --help.\n");
    QVERIFY(run.output.isEmpty());
}

void ServerProgramTest::aFolderThatCannotBeReadEndsWithTwo()
{
    for (const QString& path : {base->filePath("none"), folder + "/a.tif"}) {
        const ServerRun run = ServerRun::with({path, "--port", "0"});
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.errors, "corvane-imageserver: cannot read the folder " + path + ".\n");
    }
}

void ServerProgramTest::anAddressThatIsTakenEndsWithThree()
{
    ServerProcess first(folder);
    const QString port = QString::number(first.port());
    ServerRun run = ServerRun::with({folder, "--port", port});
    QCOMPARE(run.exitCode, 3);
    QCOMPARE(run.errors, "corvane-imageserver: cannot listen on 127.0.0.1 port " + port +
                             ": it is in use, or no address of this machine.\n");
    run = ServerRun::with({folder, "--port", "0", "--bind", "192.0.2.1"});
    QCOMPARE(run.exitCode, 3);
}

void ServerProgramTest::theFirstLineSaysWhatIsPublishedAndWhere()
{
    ServerProcess server(folder);
    QCOMPARE(server.firstLine(), QString("Publishing 1 images of %1 at http://127.0.0.1:%2/")
                                     .arg(folder)
                                     .arg(server.port()));
}

void ServerProgramTest::onlyTheLoopbackIsListenedOnUnlessTold()
{
    ServerProcess server(folder);
    QVERIFY(server.isRunning());
    for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
        if (address.isLoopback() || address.protocol() != QAbstractSocket::IPv4Protocol) {
            continue;
        }
        QTcpSocket socket;
        socket.connectToHost(address, quint16(server.port()));
        QVERIFY(!socket.waitForConnected(5000));
    }
    QCOMPARE(server.log(), QString());
    // another address of the loopback is another address all the same
    QTcpSocket socket;
    socket.connectToHost("127.0.0.2", quint16(server.port()));
    QVERIFY(!socket.waitForConnected(5000));
}

void ServerProgramTest::openDoorsAreWarnedOf()
{
    ServerProcess open(folder, {"--bind", "0.0.0.0"});
    QCOMPARE(open.ask("/tiles/a.tif").status, 200);
    QVERIFY(
        open.log().contains("everybody who reaches 0.0.0.0 sees the images: there is no --user"));
    ServerProcess locked(folder, {"--bind", "0.0.0.0", "--user", "ann", "--password-file",
                                  passwordFile("secret\n")});
    QCOMPARE(locked.ask("/tiles/a.tif", {basic("ann:secret")}).status, 200);
    QVERIFY(!locked.log().contains("everybody"));
}

void ServerProgramTest::strangersNamesAreNotAnsweredOnTheLoopback_data()
{
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<int>("status");
    QTest::newRow("none") << QByteArray() << 200;
    QTest::newRow("an address") << QByteArray("127.0.0.1") << 200;
    QTest::newRow("with a port") << QByteArray("127.0.0.1:8460") << 200;
    QTest::newRow("six") << QByteArray("[::1]:8460") << 200;
    QTest::newRow("localhost") << QByteArray("LocalHost:8460") << 200;
    QTest::newRow("below localhost") << QByteArray("images.localhost") << 200;
    QTest::newRow("the proxy's") << QByteArray("Images.Example.org") << 200;
    QTest::newRow("the proxy's, with a port") << QByteArray("images.example.org:443") << 200;
    QTest::newRow("a stranger's") << QByteArray("evil.example.org") << 421;
    QTest::newRow("below the proxy's") << QByteArray("evil.images.example.org") << 421;
    QTest::newRow("like localhost") << QByteArray("evillocalhost") << 421;
    QTest::newRow("like an address") << QByteArray("127.0.0.1.example.org") << 421;
    QTest::newRow("a number") << QByteArray("2130706433") << 421;
    QTest::newRow("an open bracket") << QByteArray("[evil.example.org") << 421;
    QTest::newRow("a bracket around a name") << QByteArray("[evil.example.org]") << 421;
    QTest::newRow("nothing but a port") << QByteArray(":8460") << 421;
}

void ServerProgramTest::strangersNamesAreNotAnsweredOnTheLoopback()
{
    QFETCH(QByteArray, host);
    QFETCH(int, status);
    ServerProcess server(folder, {"--host", "localbox", "--host", "images.example.ORG"});
    server.setHost(host);
    const ServerAnswer answer = server.ask("/tiles/a.tif");
    QCOMPARE(answer.status, status);
    QCOMPARE(answer.body.contains("tileSize"), status == 200);
    QCOMPARE(server.ask("/tavro-orivex/catalog/content/search.json", {}, "POST", "{}").status,
             status);
}

void ServerProgramTest::twoNamesAreOneTooMany()
{
    ServerProcess server(folder);
    QCOMPARE(server.ask("/tiles/a.tif", {"Host: evil.example.org"}).status, 421);
}

void ServerProgramTest::namesAreNotLookedAtWhereOthersAreLetIn()
{
    ServerProcess server(folder, {"--bind", "0.0.0.0"});
    server.setHost("images.example.org");
    QCOMPARE(server.ask("/tiles/a.tif").status, 200);
}

void ServerProgramTest::signalsEndIt_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void ServerProgramTest::signalsEndIt()
{
    QFETCH(int, number);
    ServerProcess server(folder);
    QVERIFY(server.isRunning());
    QCOMPARE(::kill(static_cast<pid_t>(server.processId()), number), 0);
    QCOMPARE(server.waitForEnd(), 0);
    QCOMPARE(server.ask("/tiles/a.tif").status, 0);
    QCOMPARE(server.log(), QString());
}

void ServerProgramTest::aConnectionThatIsOpenDoesNotKeepItAlive()
{
    ServerProcess server(folder);
    QTcpSocket idle;
    idle.connectToHost("127.0.0.1", quint16(server.port()));
    QVERIFY(idle.waitForConnected());
    idle.write("GET /tiles/a.tif HTTP/1.1\r\n"); // and no more
    QVERIFY(idle.waitForBytesWritten());
    QCOMPARE(server.stop(), 0);
}

void ServerProgramTest::credentialsAreAskedForEverywhere_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("method");
    for (const char* const target : {"/", "/tiles/a.tif", "/tiles/a.tif/0/0/0.png",
                                     "/tavro-krs/discovery.dll?request=getkrsinfo",
                                     "/tavro-krs/discovery.dll?request=getserviceinfo", "/nothing",
                                     "/tavro-krs/tavro/raxion?request=image&layers=/a.tif",
                                     "/tavro-krs/tavro/raxion?request=dsinfo&layers=/a.tif",
                                     "/zwtp/raxion.dll%3Fimage?layers=/a.tif"})
    {
        QTest::newRow(target) << QByteArray(target) << QByteArray("GET");
    }
    QTest::newRow("a head") << QByteArray("/tiles/a.tif") << QByteArray("HEAD");
    QTest::newRow("a search") << QByteArray("/tavro-orivex/catalog/content/search.json")
                              << QByteArray("POST");
}

void ServerProgramTest::credentialsAreAskedForEverywhere()
{
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, method);
    ServerProcess server(
        folder, {"--user", "ann", "--password-file", passwordFile("secret\nsecond line\n")});
    const QByteArray body = method == "POST" ? "{}" : "";
    const ServerAnswer refused = server.ask(target, {"If-None-Match: *"}, method, body);
    QCOMPARE(refused.status, 401);
    QCOMPARE(refused.header("WWW-Authenticate"),
             QByteArray("Basic realm=\"Corvane image server\", charset=\"UTF-8\""));
    QVERIFY(!refused.body.contains("a.tif"));
    QVERIFY(server.ask(target, {basic("ann:secret")}, method, body).status != 401);
}

void ServerProgramTest::credentialsAreAskedForBeforeABodyIsRead()
{
    ServerProcess server(folder, {"--user", "ann", "--password-file", passwordFile("secret\n")});
    QTcpSocket client;
    client.connectToHost("127.0.0.1", quint16(server.port()));
    QVERIFY(client.waitForConnected());
    client.write("POST /tavro-orivex/catalog/content/search.json HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                 "Content-Length: 100\r\n\r\n"); // and nothing of it
    QVERIFY(client.waitForReadyRead(60000));
    QVERIFY(client.readAll().startsWith("HTTP/1.1 401 "));
    QTRY_COMPARE(client.state(),
                 QAbstractSocket::UnconnectedState); // no body is taken for a request
}

void ServerProgramTest::otherMethodsAreNotAllowed()
{
    ServerProcess server(folder, {"--user", "ann", "--password-file", passwordFile("secret\n")});
    for (const char* const method : {"PUT", "DELETE", "PATCH", "OPTIONS", "TRACE"}) {
        QCOMPARE(server.ask("/tiles/a.tif", {}, method, "x").status, 401);
        const ServerAnswer answer = server.ask("/tiles/a.tif", {basic("ann:secret")}, method, "x");
        QCOMPARE(answer.status, 405);
        QCOMPARE(answer.header("Allow"), QByteArray("GET, HEAD, POST"));
    }
}

void ServerProgramTest::onlyTheRightCredentialsAreLetIn_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<int>("status");
    QTest::newRow("right") << basic("ann:secret") << 200;
    QTest::newRow("the scheme in capitals")
        << QByteArray("Authorization: BASIC " + QByteArray("ann:secret").toBase64()) << 200;
    QTest::newRow("another password") << basic("ann:secreT") << 401;
    QTest::newRow("the beginning of it") << basic("ann:secre") << 401;
    QTest::newRow("more than it") << basic("ann:secret1") << 401;
    QTest::newRow("another name") << basic("bob:secret") << 401;
    QTest::newRow("no password") << basic("ann:") << 401;
    QTest::newRow("nothing") << basic("") << 401;
    QTest::newRow("a lone colon") << basic(":") << 401;
    QTest::newRow("the line end") << basic("ann:secret\n") << 401;
    QTest::newRow("another scheme")
        << QByteArray("Authorization: Bearer " + QByteArray("ann:secret").toBase64()) << 401;
    QTest::newRow("in clear") << QByteArray("Authorization: ann:secret") << 401;
    QTest::newRow("twice, the wrong one first")
        << basic("x:y") + "\r\n" + basic("ann:secret") << 401;
}

void ServerProgramTest::onlyTheRightCredentialsAreLetIn()
{
    QFETCH(QByteArray, header);
    QFETCH(int, status);
    ServerProcess server(folder, {"--user", "ann", "--password-file", passwordFile("secret\r\n")});
    QCOMPARE(server.ask("/tiles/a.tif", {header}).status, status);
}

void ServerProgramTest::whoGuessesIsKeptOutAndNobodyElse()
{
    ServerProcess server(folder, {"--user", "ann", "--password-file", passwordFile("secret")});
    const QByteArray right = basic("ann:secret");
    server.setSource("127.0.0.2");
    for (int i = 0; i < 10; ++i) {
        const QByteArray guess = basic("ann:guess" + QByteArray::number(i));
        QCOMPARE(server.ask("/tiles/a.tif", {guess}).status, 401);
    }
    for (const QByteArray& next : {basic("ann:another"), basic("ann:guess3"), right}) {
        const ServerAnswer answer = server.ask("/tiles/a.tif", {next});
        QCOMPARE(answer.status, 429);
        QVERIFY(answer.header("Retry-After").toInt() > 0);
        QVERIFY(answer.header("Retry-After").toInt() <= 300);
        QCOMPARE(answer.header("Cache-Control"), QByteArray("no-store"));
        QVERIFY(answer.body.isEmpty());
    }
    QCOMPARE(server.ask("/tiles/a.tif").status, 401);
    server.setSource("127.0.0.3");
    QCOMPARE(server.ask("/tiles/a.tif", {right}).status, 200);
    QCOMPARE(server.ask("/tiles/a.tif", {basic("ann:wrong")}).status, 401);
    const QString log = server.log();
    QCOMPARE(log.count("127.0.0.2 has tried 10 wrong passwords and is kept out for a while"), 1);
    QCOMPARE(log.count('\n'), 1);
}

// A program with an old password asks with it for each tile.
void ServerProgramTest::whatIsTriedAgainIsNoGuess()
{
    ServerProcess server(folder, {"--user", "ann", "--password-file", passwordFile("secret")});
    for (int i = 0; i < 30; ++i) {
        QCOMPARE(server.ask("/tiles/a.tif", {basic("ann:old")}).status, 401);
        QCOMPARE(
            server.ask("/tiles/a.tif", {"Authorization: Bearer " + QByteArray::number(i)}).status,
            401);
    }
    QCOMPARE(server.ask("/tiles/a.tif", {basic("ann:secret")}).status, 200);
}

void ServerProgramTest::thePasswordMayHoldColonsAndOtherScripts()
{
    const QByteArray password("a:b |\xc3\xbc \xe2\x82\xac");
    ServerProcess server(folder, {"--user", "ann", "--password-file", passwordFile(password)});
    QCOMPARE(server.ask("/tiles/a.tif", {basic("ann:" + password)}).status, 200);
}

void ServerProgramTest::aPasswordIsNotCutShort()
{
    const QString file = passwordFile(QByteArray(5000, 'x'));
    const ServerRun run = ServerRun::with({folder, "--user", "ann", "--password-file", file});
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.errors.contains("the first line of " + file + " is too long for a password."));
}

void ServerProgramTest::requestsAreLoggedWhereAskedForWithoutCredentials()
{
    ServerProcess server(
        folder, {"--access-log", "--user", "ann", "--password-file", passwordFile("secret\n")});
    const QByteArray credentials = basic("ann:secret");
    server.ask("/tiles/a.tif", {credentials});
    server.ask("/tiles/%0aforged%20line", {credentials});
    server.ask("/tiles/%1%2.tif");
    server.ask("/tiles/\rforged\x1b[2J", {credentials});
    QTRY_COMPARE(server.log().count('\n'), 4);
    const QStringList lines = server.log().split('\n');
    QVERIFY2(
        lines[0].contains(QRegularExpression(" 127\\.0\\.0\\.1 GET /tiles/a\\.tif 200 [0-9]+$")),
        qPrintable(lines[0]));
    QVERIFY(lines[1].contains(" GET /tiles/%0aforged%20line 404 "));
    QVERIFY(lines[2].contains(" GET /tiles/%1%2.tif 401 "));
    QVERIFY2(lines[3].contains(" GET /tiles/\\u000dforged\\u001b[2J 404 "), qPrintable(lines[3]));
    QVERIFY(!server.log().contains("secret"));
    QVERIFY(!server.log().contains(QByteArray("ann:secret").toBase64()));
}

void ServerProgramTest::requestsAreNotLoggedUnlessAskedFor()
{
    ServerProcess server(folder);
    server.ask("/tiles/a.tif");
    QCOMPARE(server.stop(), 0);
    QCOMPARE(server.log(), QString());
}

QTEST_GUILESS_MAIN(ServerProgramTest)
#include "ServerProgramTest.moc"
