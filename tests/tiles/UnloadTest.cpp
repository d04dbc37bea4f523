#include <QProcess>
#include <QtTest>

/// What the library does with requests in flight when it is unloaded, seen in a child process.
class UnloadTest : public QObject
{
    Q_OBJECT
private slots:
    void waitsForEachRunningTileAndRunsNoQueuedOne();
};

void UnloadTest::waitsForEachRunningTileAndRunsNoQueuedOne()
{
    constexpr int running = 8;
    constexpr int all = 28;
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QStringLiteral(UNLOAD_CHILD), QStringList());
    QVERIFY(child.waitForStarted());
    QByteArray output;
    const auto lines = [&child, &output](const char* line) {
        output += child.readAllStandardOutput();
        return static_cast<int>(output.split('\n').count(line));
    };

    QTRY_COMPARE_WITH_TIMEOUT(lines("cancelled"), all, 60000);
    QCOMPARE(lines("main returns"), 1);
    QVERIFY(output.indexOf("main returns") < output.indexOf("cancelled"));
    QCOMPARE(lines("running"), running);

    // one after the other the running tiles come to their end; the process stays until the last
    for (int returned = 0; returned < running; ++returned) {
        QCOMPARE(child.state(), QProcess::Running);
        QCOMPARE(lines("returned"), returned);
        child.write("x");
        QTRY_COMPARE_WITH_TIMEOUT(lines("returned"), returned + 1, 60000);
    }
    QVERIFY(child.state() == QProcess::NotRunning || child.waitForFinished(60000));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), 0);
    QCOMPARE(lines("returned"), running);
    QCOMPARE(lines("running"), running);
    QCOMPARE(lines("ready"), 0);
    QCOMPARE(lines("failed"), 0);
}

QTEST_GUILESS_MAIN(UnloadTest)
#include "UnloadTest.moc"
