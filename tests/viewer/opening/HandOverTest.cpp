#include <tests/viewer/support/TestImages.h>
#include <tests/viewer/support/ViewerRun.h>
#include <tests/viewer/support/WindowProcess.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// Starts of the program while its window is open already.
class HandOverTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void aSecondStartHandsItsFilesToTheFirst();
    void aSecondStartWithoutFilesEnds();
    void aNewInstanceOpensItsFilesItself();
    void otherSettingsAreAnotherInstance();
    void aFirstStartThatHangsIsNotWaitedForLong();
    void aFirstStartThatDiedIsSucceeded();
    void picturesAndInformationAreMadeByTheStartItself();
    void settingsAreKeptInTheFileThatIsNamed();
    void aSettingsFileThatCannotBeUsedIsSaidSo_data();
    void aSettingsFileThatCannotBeUsedIsSaidSo();

private:
    QString write(const QString& name) const
    {
        const QString file = folder->filePath(name);
        TestImages::Layout layout;
        layout.size = QSize(64, 64);
        TestImages::writeRgb(file, layout);
        return file;
    }
    bool waitForOpened(const QString& file) const
    {
        return WindowProcess::waitForOpened(folder->path(), file);
    }
    void startFirst();

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<WindowProcess> first;
};

void HandOverTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    first = std::make_unique<WindowProcess>(folder->path());
}

void HandOverTest::cleanup()
{
    first.reset();
    folder.reset();
}

void HandOverTest::startFirst()
{
    const QString file = write("first.tif");
    first->start({file});
    const bool opened = waitForOpened(file);
    QVERIFY2(opened, first->isRunning() ? "it runs" : "it has ended");
}

void HandOverTest::aSecondStartHandsItsFilesToTheFirst()
{
    startFirst();
    QVERIFY(QDir(folder->path()).mkdir("elsewhere"));
    const QString relative = write("elsewhere/second.tif");
    const QString absolute = write("third.tif");
    WindowProcess second(folder->path());
    second.setWorkingDirectory(folder->filePath("elsewhere"));
    second.start({"second.tif", absolute});
    QCOMPARE(second.waitForEnd(), 0);
    QVERIFY(first->isRunning());
    QVERIFY(waitForOpened(relative));
    QVERIFY(waitForOpened(absolute));
}

void HandOverTest::aSecondStartWithoutFilesEnds()
{
    startFirst();
    WindowProcess second(folder->path());
    second.start({});
    QCOMPARE(second.waitForEnd(), 0);
    QVERIFY(first->isRunning());
}

void HandOverTest::aNewInstanceOpensItsFilesItself()
{
    startFirst();
    const QString file = write("second.tif");
    first->stop(); // it opens nothing now
    WindowProcess second(folder->path());
    second.start({"--new-instance", file});
    QVERIFY(waitForOpened(file));
    QVERIFY(second.isRunning());
}

void HandOverTest::otherSettingsAreAnotherInstance()
{
    startFirst();
    const QString file = write("second.tif");
    WindowProcess second(folder->path());
    second.start({"--config", folder->filePath("other.ini"), file});
    QTRY_VERIFY_WITH_TIMEOUT(QSettings(folder->filePath("other.ini"), QSettings::IniFormat)
                                 .value("Viewer/recent")
                                 .toStringList()
                                 .contains(file),
                             WindowProcess::longestWait);
    QVERIFY(second.isRunning());
    QVERIFY(!WindowProcess::recent(folder->path()).contains(file));
}

void HandOverTest::aFirstStartThatHangsIsNotWaitedForLong()
{
    startFirst();
    first->stop();
    const QString file = write("second.tif");
    WindowProcess second(folder->path());
    second.start({file});
    QVERIFY(waitForOpened(file));
    QVERIFY(second.isRunning());
}

void HandOverTest::aFirstStartThatDiedIsSucceeded()
{
    startFirst();
    first->kill();
    const QString own = write("second.tif");
    WindowProcess second(folder->path());
    second.start({own});
    QVERIFY(waitForOpened(own));

    const QString handed = write("third.tif");
    WindowProcess third(folder->path());
    third.start({handed});
    QCOMPARE(third.waitForEnd(), 0);
    QVERIFY(waitForOpened(handed));
}

void HandOverTest::picturesAndInformationAreMadeByTheStartItself()
{
    startFirst();
    first->stop();
    const QString file = write("second.tif");
    const QString settings = WindowProcess::settingsFile(folder->path());
    const QMap<QString, QString> variables{{"TMPDIR", folder->path()}};
    const QString picture = folder->filePath("picture.png");
    QCOMPARE(runViewer({"--config", settings, "--snapshot", picture, file}, variables).exitCode, 0);
    QVERIFY(QFile::exists(picture));
    const Run info = runViewer({"--config", settings, "--info", file}, variables);
    QCOMPARE(info.exitCode, 0);
    QVERIFY(info.output.contains("second.tif"));
}

void HandOverTest::settingsAreKeptInTheFileThatIsNamed()
{
    const QString file = folder->filePath("new.ini");
    const QString map = write("a.tif");
    const Run run =
        runViewer({"--config", file, "--snapshot", folder->filePath("picture.png"), map});
    QVERIFY2(run.exitCode == 0, run.errors);
    QVERIFY(QSettings(file, QSettings::IniFormat).contains("Gui/style"));
}

void HandOverTest::aSettingsFileThatCannotBeUsedIsSaidSo_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("in a folder that is not there") << "nowhere/a.ini"
                                                   << "nowhere does not exist";
    QTest::newRow("a folder") << "."
                              << "it is not a file";
    QTest::newRow("in no place to write") << "/proc/a.ini"
                                          << "the folder /proc cannot be written";
    QTest::newRow("not settings") << "picture.tif"
                                  << "it is not a settings file";
}

void HandOverTest::aSettingsFileThatCannotBeUsedIsSaidSo()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QFile broken(folder->filePath("picture.tif"));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("II*\nno line of settings\n");
    broken.close();
    const QString file = QDir(folder->path()).filePath(name);
    const Run run = runViewer({"--config", file, "--list-plugins"});
    QCOMPARE(run.exitCode, 1);
    const QString line = "corvane-viewer: cannot keep settings in " + file + ": ";
    QVERIFY2(run.errors.startsWith(line.toUtf8()), run.errors);
    QVERIFY2(run.errors.contains(reason.toUtf8()), run.errors);
    QCOMPARE(run.output, QByteArray());
}

QTEST_GUILESS_MAIN(HandOverTest)
#include "HandOverTest.moc"
