#include <tests/support/HttpTestServer.h>

#include <QProcess>
#include <QtTest>

#include <memory>

/// What becomes of fetches in flight when the process ends, seen in a child process.
class HttpUnloadTest : public QObject
{
    Q_OBJECT
private slots:
    void theEndOfTheProgramWaitsForFetchesInFlight_data();
    void theEndOfTheProgramWaitsForFetchesInFlight();
};

void HttpUnloadTest::theEndOfTheProgramWaitsForFetchesInFlight_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::newRow("over a plain connection") << QStringLiteral("http");
    QTest::newRow("while the parties of a secure connection greet each other")
        << QStringLiteral("https");
}

void HttpUnloadTest::theEndOfTheProgramWaitsForFetchesInFlight()
{
    constexpr int poolThreads = 8;
    constexpr int all = 12;
    QFETCH(const QString, scheme);
    auto server = std::make_unique<HttpTestServer>();
    server->onOther([](const HttpRequest&) { return HttpReply::data("x").held(); });
    QProcess child;
    child.start(QStringLiteral(HTTP_UNLOAD_CHILD), {server->url("/tile").replace("http", scheme)});
    QVERIFY(child.waitForStarted());
    QByteArray output;
    const auto lines = [&child, &output](const char* line) {
        output += child.readAllStandardOutput();
        return static_cast<int>(output.split('\n').count(line));
    };
    QTRY_COMPARE_WITH_TIMEOUT(server->connectionCount(), poolThreads, 60000);

    child.write("x");
    QTRY_COMPARE_WITH_TIMEOUT(lines("main returns"), 1, 60000);
    QCOMPARE(child.state(), QProcess::Running);
    QCOMPARE(lines("ready"), 0);
    server.reset(); // every fetch breaks, and those still queued are refused

    QVERIFY(child.state() == QProcess::NotRunning || child.waitForFinished(60000));
    const QByteArray errors = child.readAllStandardError();
    QVERIFY2(child.exitStatus() == QProcess::NormalExit, errors.constData());
    QVERIFY2(child.exitCode() == 0, errors.constData());
    QCOMPARE(lines("ready"), all);
    QCOMPARE(lines("failed"), 0);
    QVERIFY(output.endsWith("ready\nexit\n"));
    QCOMPARE(errors.count('\n'), all); // a reason each
}

QTEST_GUILESS_MAIN(HttpUnloadTest)
#include "HttpUnloadTest.moc"
