#include <corvane/core/Config.h>

#include <corvane/core/System.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>

using namespace Corvane;

namespace {

const char* const printLanguage = "--print-language";

} // namespace

class ConfigTest : public QObject
{
    Q_OBJECT
private slots:
    void directoriesFollowTheProgram_data();
    void directoriesFollowTheProgram();
    void theRootLiesTwoLevelsAboveWithoutDots();
    void theConfigDirectoryIsNamedAfterTheLanguage();
    void theLanguageIsTheSystemsInLowerCase_data();
    void theLanguageIsTheSystemsInLowerCase();
    void theSearchPathStartsEmpty();
    void aFolderThatDoesNotExistIsNotAdded();
    void foldersAreAddedCleanedAndInOrder();
    void aFolderCanStandTwiceAndLeavesOnceAtATime();
    void aFolderIsRemovedThroughItsCleanedForm();
    void removingDiffersInCaseFails();
    void removingTakesTheEntryOfTheSameCase();
    void eachObjectHasAPathOfItsOwn();
    void theMemoryIsThatOfTheMachine();
};

void ConfigTest::directoriesFollowTheProgram_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("path");

    // QDir leaves out the slash at the end of a path
    const QString program = QCoreApplication::applicationDirPath();
    QTest::newRow("default") << 0 << program;
    QTest::newRow("application") << 1 << program;
    QTest::newRow("library") << 2 << program + "/lib";
    QTest::newRow("scripts") << 4 << program + "/scripts";
    QTest::newRow("icons") << 5 << program + "/icons";
    QTest::newRow("plugins") << 7 << program + "/tvviewerplugins";
    QTest::newRow("home") << 8 << QDir::homePath();
    QTest::newRow("temp") << 9 << QDir::tempPath();
    QTest::newRow("above the last") << 10 << program;
    QTest::newRow("below the first") << -1 << program;
}

void ConfigTest::directoriesFollowTheProgram()
{
    QFETCH(int, type);
    QTEST(Config::GetDirectory(static_cast<ConfigDirType>(type)).path(), "path");
}

void ConfigTest::theRootLiesTwoLevelsAboveWithoutDots()
{
    QDir expected(QCoreApplication::applicationDirPath());
    QVERIFY(expected.cdUp() && expected.cdUp());
    QCOMPARE(Config::GetDirectory(ConfigDirRoot).path(), expected.canonicalPath());
    QVERIFY(!Config::GetDirectory(ConfigDirRoot).path().contains(".."));
}

void ConfigTest::theConfigDirectoryIsNamedAfterTheLanguage()
{
    QCOMPARE(Config::GetDirectory(ConfigDirConfig).path(),
             QCoreApplication::applicationDirPath() + "/config/" + Config::GetLanguage());
}

void ConfigTest::theLanguageIsTheSystemsInLowerCase_data()
{
    QTest::addColumn<QString>("environment");
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << "en_AU.UTF-8"
                             << "english";
    QTest::newRow("German") << "de_DE.UTF-8"
                            << "german";
    QTest::newRow("Norwegian") << "nb_NO.UTF-8"
                               << "norwegian bokmal";
}

void ConfigTest::theLanguageIsTheSystemsInLowerCase()
{
    QFETCH(QString, environment);
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert("LC_ALL", environment);
    variables.remove("LANGUAGE");
    QProcess child;
    child.setProcessEnvironment(variables);
    child.start(QCoreApplication::applicationFilePath(), {printLanguage});
    QVERIFY(child.waitForFinished());
    QTEST(QString::fromUtf8(child.readAllStandardOutput()).trimmed(), "language");
}

void ConfigTest::theSearchPathStartsEmpty()
{
    Config config;
    QCOMPARE(config.GetDatasetSearchPath(), QStringList());
    QCOMPARE(config.GetDatasetSearchPathAsString(), QString(""));
}

void ConfigTest::aFolderThatDoesNotExistIsNotAdded()
{
    const QTemporaryDir folder;
    Config config;
    QVERIFY(config.AddDatasetSearchPath(folder.path()));
    QVERIFY(!config.AddDatasetSearchPath(folder.filePath("missing")));
    QFile file(folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!config.AddDatasetSearchPath(file.fileName()));
    QCOMPARE(config.GetDatasetSearchPath(), QStringList(folder.path()));
}

void ConfigTest::foldersAreAddedCleanedAndInOrder()
{
    const QTemporaryDir one;
    const QTemporaryDir two;
    Config config;
    QVERIFY(config.AddDatasetSearchPath(two.path() + "/./"));
    QVERIFY(config.AddDatasetSearchPath(one.path() + "//"));
    QCOMPARE(config.GetDatasetSearchPath(), QStringList({two.path(), one.path()}));
    QCOMPARE(config.GetDatasetSearchPathAsString(), two.path() + ";" + one.path());
}

void ConfigTest::aFolderCanStandTwiceAndLeavesOnceAtATime()
{
    const QTemporaryDir one;
    const QTemporaryDir two;
    Config config;
    config.AddDatasetSearchPath(one.path());
    config.AddDatasetSearchPath(two.path());
    config.AddDatasetSearchPath(one.path());

    QVERIFY(config.RemoveDatasetSearchPath(one.path()));
    QCOMPARE(config.GetDatasetSearchPath(), QStringList({two.path(), one.path()}));
    QVERIFY(config.RemoveDatasetSearchPath(one.path()));
    QCOMPARE(config.GetDatasetSearchPath(), QStringList(two.path()));
    QVERIFY(!config.RemoveDatasetSearchPath(one.path()));
}

void ConfigTest::aFolderIsRemovedThroughItsCleanedForm()
{
    const QTemporaryDir folder;
    Config config;
    QVERIFY(config.AddDatasetSearchPath(folder.path() + "/"));
    QVERIFY(config.RemoveDatasetSearchPath(folder.path()));
    QCOMPARE(config.GetDatasetSearchPath(), QStringList());

    QVERIFY(config.AddDatasetSearchPath(folder.path()));
    QVERIFY(config.RemoveDatasetSearchPath(folder.path() + "/../" + QDir(folder.path()).dirName()));
    QCOMPARE(config.GetDatasetSearchPath(), QStringList());
}

void ConfigTest::removingDiffersInCaseFails()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("data"));
    Config config;
    QVERIFY(config.AddDatasetSearchPath(folder.filePath("data")));
    QVERIFY(!config.RemoveDatasetSearchPath(folder.filePath("DATA")));
    QCOMPARE(config.GetDatasetSearchPath(), QStringList(folder.filePath("data")));
}

void ConfigTest::removingTakesTheEntryOfTheSameCase()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath("data"));
    QVERIFY(QDir(folder.path()).mkpath("DATA"));
    Config config;
    QVERIFY(config.AddDatasetSearchPath(folder.filePath("data")));
    QVERIFY(config.AddDatasetSearchPath(folder.filePath("DATA")));
    QVERIFY(config.RemoveDatasetSearchPath(folder.filePath("DATA")));
    QCOMPARE(config.GetDatasetSearchPath(), QStringList(folder.filePath("data")));
}

void ConfigTest::eachObjectHasAPathOfItsOwn()
{
    const QTemporaryDir folder;
    Config one;
    Config two;
    QVERIFY(one.AddDatasetSearchPath(folder.path()));
    QCOMPARE(two.GetDatasetSearchPath(), QStringList());

    Config copy(one);
    QVERIFY(one.RemoveDatasetSearchPath(folder.path()));
    QCOMPARE(copy.GetDatasetSearchPath(), QStringList(folder.path()));
}

void ConfigTest::theMemoryIsThatOfTheMachine()
{
#ifdef Q_OS_LINUX
    QFile file("/proc/meminfo");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray line = file.readLine(); // "MemTotal:   24683904 kB"
    QVERIFY(line.startsWith("MemTotal:"));
    const qint64 kibibytes = line.simplified().split(' ').at(1).toLongLong();
    QCOMPARE(qint64(System::getTotalRAM()), kibibytes >> 10);
#else
    QVERIFY(System::getTotalRAM() > 0);
#endif
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (application.arguments().contains(printLanguage)) {
        QTextStream(stdout) << Config::GetLanguage() << '\n';
        return 0;
    }
    ConfigTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "ConfigTest.moc"
