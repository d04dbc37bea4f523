#include <tests/pluginchecker/CheckRun.h>

#include <corvane/core/Application.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace Corvane::Tests;

namespace {

QString pluginWith(const char* fault)
{
    return QDir(QStringLiteral(CORVANE_FAULTY_PLUGINS)).filePath(QLatin1String(fault) + ".so");
}

} // namespace

/// The program and plugins that break the contract, each in one way.
class FaultyPluginsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void helpAndVersionArePrinted();
    void theStepsAreListed();
    void wrongUsageEndsWithOne_data();
    void wrongUsageEndsWithOne();
    void aFileThatIsNoLayerPluginEndsWithThree_data();
    void aFileThatIsNoLayerPluginEndsWithThree();
    void aSoundPluginPassesEveryStep();
    void withoutASourceTheStepsThatNeedOneAreSkipped();
    void eachFaultIsToldInItsStep_data();
    void eachFaultIsToldInItsStep();
    void aCrashBehindTheStepIsTold();
    void aStepThatDoesNotEndIsToldWithItsLimit();
    void aSourceThatDoesNotOpenIsToldWithTheReason();
    void theLineOfAFaultNamesTheStepAndTheReason();
    void theObjectHoldsTheSameKeysEachTime();

private:
    QString source() const { return folder.filePath("a.plain"); }

    QTemporaryDir folder;
};

void FaultyPluginsTest::initTestCase()
{
    QFile file(source());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("picture of nothing much, in as many bytes as a cut can be made in");
    QFile text(folder.filePath("text.so"));
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("no library");
}

void FaultyPluginsTest::helpAndVersionArePrinted()
{
    const CheckRun help = CheckRun::with({"--help"});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.output.contains("corvane-plugin-check [options] FILE.so"));
    for (const char* word : {"--source", "--json", "--step", "--time-limit", "\"counts\""}) {
        QVERIFY2(help.output.contains(word), word);
    }
    QVERIFY(!help.output.contains("run-step"));
    const CheckRun version = CheckRun::with({"--version"});
    QCOMPARE(version.exitCode, 0);
    QCOMPARE(QString(version.output),
             QString("Corvane plugin check %1\n").arg(Corvane::Application::libraryVersion()));
}

void FaultyPluginsTest::theStepsAreListed()
{
    const CheckRun run = CheckRun::with({"--list-steps"});
    QCOMPARE(run.exitCode, 0);
    QStringList names;
    for (const QByteArray& line : run.output.split('\n')) {
        names.append(QString(line).section(' ', 0, 0));
    }
    QCOMPARE(names, QStringList({"load", "information", "editor", "creation", "properties",
                                 "document", "views", "painting", "completeness", "cancelling",
                                 "threads", "responsiveness", "deletion", "slow-source",
                                 "damaged-data", "leftovers", "unloading", ""}));
}

void FaultyPluginsTest::wrongUsageEndsWithOne_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("no file") << QStringList() << "name one plugin file.";
    QTest::newRow("two files") << QStringList({"a.so", "b.so"}) << "name one plugin file.";
    QTest::newRow("an unknown option")
        << QStringList({"--fast", "a.so"}) << "Unknown option 'fast'.";
    QTest::newRow("an unknown step") << QStringList({"--step", "prayer", "a.so"})
                                     << "there is no step \"prayer\"; --list-steps prints them.";
    QTest::newRow("no time") << QStringList({"--time-limit", "0", "a.so"})
                             << "--time-limit takes a number from 1 to 86400, not \"0\".";
}

void FaultyPluginsTest::wrongUsageEndsWithOne()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const CheckRun run = CheckRun::with(arguments);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(QString(run.errors),
             "corvane-plugin-check: " + message + " See corvane-plugin-check --help.\n");
    QCOMPARE(run.output, QByteArray());
}

void FaultyPluginsTest::aFileThatIsNoLayerPluginEndsWithThree_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no file") << folder.filePath("missing.so") << "there is no such file";
    QTest::newRow("no library") << folder.filePath("text.so") << "the file holds no plugin: ";
    QTest::newRow("a library that is no plugin")
        << QString(CORVANE_LIBRARY) << "the file holds no plugin: ";
    QTest::newRow("another interface")
        << pluginWith("Older")
        << "the root object does not answer for com.corvane.viewer.ILayerPlugin/1.0";
}

void FaultyPluginsTest::aFileThatIsNoLayerPluginEndsWithThree()
{
    QFETCH(QString, file);
    QFETCH(QString, reason);
    const CheckRun run = CheckRun::with({"--json", file});
    QCOMPARE(run.exitCode, 3);
    QVERIFY2(run.resultOf("load").startsWith("fail: " + reason), qPrintable(run.resultOf("load")));
    QCOMPARE(run.resultOf("creation"), QString("skip: the plugin cannot be loaded"));
    const CheckRun lines = CheckRun::with({file});
    QVERIFY(lines.output.endsWith(" cannot be loaded\n"));
}

void FaultyPluginsTest::aSoundPluginPassesEveryStep()
{
    const CheckRun run = CheckRun::with({"--source", source(), pluginWith("None")});
    QCOMPARE(run.exitCode, 0);
    QStringList lines = QString(run.output).split('\n', Qt::SkipEmptyParts);
    const QString summary = lines.takeLast();
    QCOMPARE(lines.size(), 17);
    for (const QString& line : qAsConst(lines)) {
        // the plugin has no panels, and a loaded machine may be slow
        QVERIFY2(line.startsWith("pass  ") ||
                     line == "skip  editor          the plugin has no ILayerEditorPlugin",
                 qPrintable(line));
    }
    QCOMPARE(summary, QString("None.so keeps the contract: 16 passed, 0 failed, 1 skipped"));
}

void FaultyPluginsTest::withoutASourceTheStepsThatNeedOneAreSkipped()
{
    const CheckRun run = CheckRun::with({"--json", pluginWith("None")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.resultOf("creation"), QString("pass"));
    QCOMPARE(run.resultOf("deletion"), QString("skip: there is no --source"));
    QCOMPARE(run.json().value("counts").toObject().value("skip").toInt(), 10);
}

void FaultyPluginsTest::eachFaultIsToldInItsStep_data()
{
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("result");
    QTest::newRow("WrongClassName") << "creation"
                                    << "the layer's class is FaultyLayer, and getClassName says "
                                       "PlainLayer";
    QTest::newRow("OddFilter") << "information"
                               << "the read filter \"\\*.plain\" is not of the form \"description "
                                  "\\(patterns\\)\"";
    QTest::newRow("CrashInDeletion")
        << "deletion"
        << "SIGABRT while deleting layer [0-9]+ of 100 with work in flight.*";
    QTest::newRow("EndOfProcess") << "painting"
                                  << "ended the process while showing 400 x 300 pixels of 0, 100, "
                                     "100, 0.*";
    QTest::newRow("EventLoopInSetView") << "threads"
                                        << "setView runs an event loop";
    QTest::newRow("LostProperty") << "document"
                                  << "a document loses the property Shade: \"plain <a> & \"b\" "
                                     "\u00e9\" becomes \"plain\".*";
    QTest::newRow("LateCall") << "deletion"
                              << "layers called their client [0-9]+ times after they were deleted";
    QTest::newRow("LeftThread") << "leftovers"
                                << "[0-9]+ more threads after 12 more layers";
    QTest::newRow("LeftTimer") << "leftovers"
                               << "a timer of QTimer still runs";
    QTest::newRow("LeftOpacity") << "painting"
                                 << "paint leaves the painter with another opacity";
    QTest::newRow("OtherPictureEachTime") << "painting"
                                          << "painting twice gives two pictures";
    QTest::newRow("NotComplete") << "completeness"
                                 << "without Progressive 0 percent are there behind setView";
    QTest::newRow("OpensAnything") << "damaged-data"
                                   << "a file of zero bytes makes a valid layer";
    QTest::newRow("SilentRefusal")
        << "damaged-data"
        << "a missing file is refused without a line in the log \\(setDataSource returned "
           "false\\).*";
}

void FaultyPluginsTest::eachFaultIsToldInItsStep()
{
    QFETCH(QString, step);
    QFETCH(QString, result);
    const CheckRun run = CheckRun::with(
        {"--json", "--source", source(), "--step", step, pluginWith(QTest::currentDataTag())});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.resultOf("load"), QString("pass"));
    const QRegularExpression form("^fail: " + result + "$");
    QVERIFY2(form.match(run.resultOf(step)).hasMatch(), qPrintable(run.resultOf(step)));
}

void FaultyPluginsTest::aCrashBehindTheStepIsTold()
{
    const CheckRun run = CheckRun::with({"--json", pluginWith("CrashAtExit")});
    QCOMPARE(run.exitCode, 3);
    QVERIFY(run.resultOf("load").startsWith("fail: SIGABRT after the step, at the end of the "
                                            "process"));
}

void FaultyPluginsTest::aStepThatDoesNotEndIsToldWithItsLimit()
{
    const CheckRun hang = CheckRun::with(
        {"--json", "--step", "views", "--time-limit", "2", pluginWith("HangInSetView")});
    QCOMPARE(hang.exitCode, 2);
    QCOMPARE(hang.resultOf("views"), QString("fail: did not end within 2 s while showing 400 x 300 "
                                             "pixels of 0, 100, 100, 0"));
    const CheckRun wait = CheckRun::with({"--json", "--source", source(), "--step", "threads",
                                          "--time-limit", "5", pluginWith("WaitForPool")});
    QCOMPARE(wait.resultOf("threads"), QString("fail: did not end within 5 s while showing views "
                                               "while the pool is busy elsewhere"));
}

void FaultyPluginsTest::aSourceThatDoesNotOpenIsToldWithTheReason()
{
    const CheckRun run = CheckRun::with({"--json", "--source", folder.filePath("no.plain"),
                                         "--step", "painting", pluginWith("None")});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.resultOf("painting"), QString("fail: the source does not open: no picture"));
}

void FaultyPluginsTest::theLineOfAFaultNamesTheStepAndTheReason()
{
    const CheckRun run = CheckRun::with({"--step", "information", pluginWith("OddFilter")});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output,
             QByteArray("pass  load\n"
                        "FAIL  information     the read filter \"*.plain\" is not of the form "
                        "\"description (patterns)\"\n"
                        "OddFilter.so breaks the contract: 1 passed, 1 failed, 0 skipped\n"));
}

void FaultyPluginsTest::theObjectHoldsTheSameKeysEachTime()
{
    const CheckRun run = CheckRun::with({"--json", "--step", "information", pluginWith("None")});
    QCOMPARE(run.json().keys(), QStringList({"className", "counts", "exitCode", "plugin", "source",
                                             "steps", "version"}));
    QCOMPARE(run.json().value("className").toString(), QString("FaultyLayer"));
    QCOMPARE(run.json().value("version").toString(), QString("1.0"));
    QCOMPARE(run.json().value("exitCode").toInt(), 0);
    QCOMPARE(run.json().value("counts").toObject(),
             QJsonObject({{"pass", 2}, {"fail", 0}, {"skip", 0}}));
    QCOMPARE(run.step("information").keys(),
             QStringList({"milliseconds", "name", "reasons", "result", "warnings"}));
}

QTEST_GUILESS_MAIN(FaultyPluginsTest)

#include "FaultyPluginsTest.moc"
