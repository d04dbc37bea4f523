#include <QtSingleApplication>

#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextStream>
#include <QWidget>
#include <QtTest>

#include <cstdio>
#include <memory>

namespace {

const char* const secondInstance = "--second-instance";
QString programPath;

// One instance at a time in this process.
class Instance
{
public:
    explicit Instance(const QString& id)
        : application(std::make_unique<QtSingleApplication>(id, count, arguments))
    {
    }
    Instance() : application(std::make_unique<QtSingleApplication>(count, arguments)) {}
    QtSingleApplication* operator->() const { return application.get(); }
    QtSingleApplication* get() const { return application.get(); }

private:
    char program[7] = "viewer";
    char* arguments[2] = {program, nullptr};
    int count = 1;
    std::unique_ptr<QtSingleApplication> application;
};

// This program once more. It asks whether an instance with the id is running and does as told
// by single lines on its standard input; every line is answered by one line.
class Child
{
public:
    explicit Child(const QString& id) { process.start(programPath, {secondInstance, id}); }
    ~Child() { quit(); }

    void tell(const QString& line) { process.write(line.toUtf8() + '\n'); }

    // The next answer, while this process goes on receiving.
    QString answer()
    {
        QString line;
        [this, &line] {
            QTRY_VERIFY_WITH_TIMEOUT(process.canReadLine(), 30000);
            line = QString::fromUtf8(process.readLine()).trimmed();
        }();
        return line;
    }
    // The next answer, while this process does not look at its sockets.
    QString answerWhileBusy()
    {
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead(30000)) {
                return QStringLiteral("no answer");
            }
        }
        return QString::fromUtf8(process.readLine()).trimmed();
    }
    QString ask(const QString& line)
    {
        tell(line);
        return answer();
    }
    void kill()
    {
        process.kill();
        process.waitForFinished();
    }
    void quit()
    {
        process.closeWriteChannel();
        process.waitForFinished();
    }

private:
    QProcess process;
};

int runChild(const QString& id)
{
    const Instance instance(id);
    QTextStream in(stdin);
    in.setCodec("UTF-8");
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    QString line;
    while (in.readLineInto(&line)) {
        const QString word = line.section(' ', 0, 0);
        const QString rest = line.section(' ', 1);
        bool result = false;
        if (word == "scope") {
            result = !instance->setProperty("instanceScope", rest); // false: it is a new property
        } else if (word == "running") {
            result = instance->isRunning();
        } else if (word == "send") {
            result = instance->sendMessage(rest);
        } else if (word == "send-null") {
            result = instance->sendMessage(QString());
        } else if (word == "send-long") {
            result = instance->sendMessage(QString(rest.toInt(), QChar(0x6587)), 30000);
        } else if (word == "send-impatiently") {
            result = instance->sendMessage(rest, 100);
        }
        out << (result ? "true" : "false") << '\n';
        out.flush();
    }
    return 0;
}

QStringList messagesOf(const QSignalSpy& spy)
{
    QStringList messages;
    for (const QList<QVariant>& arguments : spy) {
        messages << arguments.at(0).toString();
    }
    return messages;
}

} // namespace

class QtSingleApplicationTest : public QObject
{
    Q_OBJECT
private slots:
    void theIdIsGivenOrTheProgramsPath();
    void theFirstInstanceIsNotRunningAlready();
    void theFirstInstanceSendsToNobody();
    void aLaterInstanceKnowsTheFirst();
    void messagesArriveAsTheyWereSent_data();
    void messagesArriveAsTheyWereSent();
    void aLongMessageArrivesWhole();
    void anEmptyMessageArrives();
    void messagesOfSeveralInstancesArrive();
    void differentIdsDoNotMeet();
    void instancesOfOtherScopesDoNotMeet();
    void initializingTakesTheFirstPlace();
    void thePlaceIsFreeAfterAnOrderlyEnd();
    void aDeadFirstInstanceIsReplaced();
    void aLaterInstanceTakesOverWhenTheFirstHasEnded();
    void aBusyFirstInstanceIsNotWaitedForLongerThanAllowed();
    void aSenderThatStopsHalfwayHoldsNobodyUp();
    void aSenderOfNonsenseIsCutOff();
    void aReceiverMayRunADialog();
    void messagesBringTheActivationWindowToTheFront();
    void messagesLeaveTheWindowsAloneWhereThatIsWanted();
    void theActivationWindowMayGo();

private:
    QString socketPath();
};

// The one socket in the temporary folder of this run.
QString QtSingleApplicationTest::socketPath()
{
    const QFileInfoList files =
        QDir(QDir::tempPath()).entryInfoList(QDir::System | QDir::Files | QDir::Hidden);
    for (const QFileInfo& file : files) {
        if (!file.isFile()) {
            return file.absoluteFilePath();
        }
    }
    return {};
}

void QtSingleApplicationTest::theIdIsGivenOrTheProgramsPath()
{
    {
        const Instance instance("viewer of maps");
        QCOMPARE(instance->id(), QStringLiteral("viewer of maps"));
    }
    const Instance instance;
    QCOMPARE(instance->id(), QCoreApplication::applicationFilePath());
}

void QtSingleApplicationTest::theFirstInstanceIsNotRunningAlready()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    QVERIFY(!instance->isRunning());
}

void QtSingleApplicationTest::theFirstInstanceSendsToNobody()
{
    const Instance instance("a");
    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    QVERIFY(!instance->sendMessage("to myself"));
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 0);
}

void QtSingleApplicationTest::aLaterInstanceKnowsTheFirst()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    Child child("a");
    QCOMPARE(child.ask("running"), "true");
    QCOMPARE(child.ask("running"), "true");
    QVERIFY(!instance->isRunning());
}

void QtSingleApplicationTest::messagesArriveAsTheyWereSent_data()
{
    QTest::addColumn<QString>("message");
    QTest::newRow("a path") << "/maps/a b.ecw";
    QTest::newRow("other scripts") << QStringLiteral("\u5730\u56FE \u00E4\u00F6 \U0001F5FA");
    QTest::newRow("signs of its own") << "%1 ack \\n \"quoted\"";
}

void QtSingleApplicationTest::messagesArriveAsTheyWereSent()
{
    QFETCH(QString, message);
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    Child child("a");
    QCOMPARE(child.ask("send " + message), "true");
    QTRY_COMPARE(messagesOf(spy), QStringList(message));
}

void QtSingleApplicationTest::aLongMessageArrivesWhole()
{
    constexpr int length = 3000000;
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    Child child("a");
    QCOMPARE(child.ask("send-long " + QString::number(length)), "true");
    QTRY_COMPARE(spy.count(), 1);
    QVERIFY(spy.at(0).at(0).toString() == QString(length, QChar(0x6587)));
}

void QtSingleApplicationTest::anEmptyMessageArrives()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    Child child("a");
    QCOMPARE(child.ask("send "), "true");
    QCOMPARE(child.ask("send-null"), "true");
    QTRY_COMPARE(messagesOf(spy), QStringList({QString(""), QString()}));
}

void QtSingleApplicationTest::messagesOfSeveralInstancesArrive()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    Child one("a");
    Child two("a");
    QCOMPARE(one.ask("send 1"), "true");
    QCOMPARE(two.ask("send 2"), "true");
    QCOMPARE(one.ask("send 3"), "true");
    QTRY_COMPARE(messagesOf(spy), QStringList({"1", "2", "3"}));
}

void QtSingleApplicationTest::differentIdsDoNotMeet()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    Child child("b");
    QCOMPARE(child.ask("running"), "false");
    QCOMPARE(child.ask("send lost"), "false");
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 0);
}

void QtSingleApplicationTest::instancesOfOtherScopesDoNotMeet()
{
    const Instance instance("a");
    instance->setProperty("instanceScope", "one");
    QVERIFY(!instance->isRunning());
    Child none("a");
    QCOMPARE(none.ask("running"), "false");
    Child other("a");
    other.ask("scope two");
    QCOMPARE(other.ask("running"), "false");
    Child same("a");
    same.ask("scope one");
    QCOMPARE(same.ask("running"), "true");
}

void QtSingleApplicationTest::initializingTakesTheFirstPlace()
{
    const Instance instance("a");
    instance->initialize();
    Child child("a");
    QCOMPARE(child.ask("running"), "true");
}

void QtSingleApplicationTest::thePlaceIsFreeAfterAnOrderlyEnd()
{
    {
        const Instance instance("a");
        QVERIFY(!instance->isRunning());
        QVERIFY(!socketPath().isEmpty());
    }
    QCOMPARE(QDir(QDir::tempPath())
                 .entryList(QDir::System | QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
    const Instance next("a");
    QVERIFY(!next->isRunning());
}

void QtSingleApplicationTest::aDeadFirstInstanceIsReplaced()
{
    const Instance instance("a");
    Child first("a");
    QCOMPARE(first.ask("running"), "false");
    QVERIFY(instance->isRunning());

    first.kill();
    QVERIFY(!socketPath().isEmpty()); // it had no time to clear up
    QVERIFY(!instance->isRunning());

    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    Child later("a");
    QCOMPARE(later.ask("send hello"), "true");
    QTRY_COMPARE(messagesOf(spy), QStringList("hello"));
}

void QtSingleApplicationTest::aLaterInstanceTakesOverWhenTheFirstHasEnded()
{
    const Instance instance("a");
    Child first("a");
    QCOMPARE(first.ask("running"), "false");
    QVERIFY(instance->isRunning());
    first.quit();
    QVERIFY(!instance->sendMessage("too late"));
    QVERIFY(!instance->isRunning());
}

void QtSingleApplicationTest::aBusyFirstInstanceIsNotWaitedForLongerThanAllowed()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    Child child("a");
    QCOMPARE(child.ask("running"), "true");
    child.tell("send-impatiently hello");
    QCOMPARE(child.answerWhileBusy(), "false");
}

void QtSingleApplicationTest::aSenderThatStopsHalfwayHoldsNobodyUp()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    QLocalSocket sender;
    sender.connectToServer(socketPath());
    QVERIFY(sender.waitForConnected());
    sender.write(QByteArray("\0\0\0\x0A", 4) + QByteArray("\0h\0a", 4));
    sender.flush();
    QCoreApplication::processEvents();

    Child child("a");
    QCOMPARE(child.ask("send whole"), "true");
    QTRY_COMPARE(messagesOf(spy), QStringList("whole"));

    sender.write(QByteArray("\0l\0f\0!", 6));
    QTRY_COMPARE(messagesOf(spy), QStringList({"whole", "half!"}));
    QTRY_COMPARE(sender.bytesAvailable(), qint64(3));
    QCOMPARE(sender.readAll(), QByteArray("ack"));
}

void QtSingleApplicationTest::aSenderOfNonsenseIsCutOff()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    QLocalSocket sender;
    sender.connectToServer(socketPath());
    QVERIFY(sender.waitForConnected());
    sender.write(QByteArray("\0\0\0\x03xyz", 7)); // no text has an odd number of bytes
    QTRY_COMPARE(sender.state(), QLocalSocket::UnconnectedState);
    QCOMPARE(spy.count(), 0);
}

void QtSingleApplicationTest::aReceiverMayRunADialog()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    Child outer("a");
    Child inner("a");
    QCOMPARE(outer.ask("running"), "true");
    QCOMPARE(inner.ask("running"), "true");
    QStringList log;
    connect(instance.get(), &QtSingleApplication::messageReceived, this,
            [&](const QString& message) {
                log << "begin " + message;
                if (message == "outer") {
                    outer.quit(); // its socket is gone when this receiver returns
                    inner.tell("send inner");
                    QTRY_VERIFY(log.contains("end inner")); // runs the event loop
                }
                log << "end " + message;
            });
    outer.tell("send outer");
    QTRY_COMPARE(log, QStringList({"begin outer", "begin inner", "end inner", "end outer"}));
    QCOMPARE(outer.answer(), "true");
    QCOMPARE(inner.answer(), "true");
}

void QtSingleApplicationTest::messagesBringTheActivationWindowToTheFront()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    QWidget window;
    QWidget other;
    instance->setActivationWindow(&window);
    QCOMPARE(instance->activationWindow(), &window);
    window.showMinimized();
    other.show();
    other.activateWindow();
    QTRY_VERIFY(other.isActiveWindow());

    Child child("a");
    QCOMPARE(child.ask("send hello"), "true");
    QTRY_VERIFY(window.isActiveWindow());
    QVERIFY(!window.isMinimized());
}

void QtSingleApplicationTest::messagesLeaveTheWindowsAloneWhereThatIsWanted()
{
    const Instance instance("a");
    QVERIFY(!instance->isRunning());
    QWidget window;
    QWidget other;
    instance->setActivationWindow(&window);
    instance->setActivationWindow(&window, false);
    window.show();
    other.show();
    other.activateWindow();
    QTRY_VERIFY(other.isActiveWindow());

    const QSignalSpy spy(instance.get(), &QtSingleApplication::messageReceived);
    Child child("a");
    QCOMPARE(child.ask("send hello"), "true");
    QTRY_COMPARE(spy.count(), 1);
    QCoreApplication::processEvents();
    QVERIFY(other.isActiveWindow());

    instance->activateWindow();
    QTRY_VERIFY(window.isActiveWindow());
}

void QtSingleApplicationTest::theActivationWindowMayGo()
{
    const Instance instance("a");
    QCOMPARE(instance->activationWindow(), nullptr);
    instance->activateWindow();
    {
        QWidget window;
        instance->setActivationWindow(&window);
    }
    QCOMPARE(instance->activationWindow(), nullptr);
    emit instance->messageReceived("nobody to activate");
}

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], secondInstance) == 0) {
        return runChild(QString::fromLocal8Bit(argv[2]));
    }
    // sockets and locks of this run stand apart from everybody else's
    const QTemporaryDir folder("/tmp/single-XXXXXX");
    qputenv("TMPDIR", folder.path().toLocal8Bit());
    programPath = QFileInfo(QString::fromLocal8Bit(argv[0])).absoluteFilePath();
    QtSingleApplicationTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "QtSingleApplicationTest.moc"
