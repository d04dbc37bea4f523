#pragma once

#include <QFile>
#include <QLockFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QtTest>

#include <csignal>

/// The program with its window, off screen, as a process of its own that keeps its settings in one
/// file and everything else in one folder. Killed at the end of its life.
class WindowProcess
{
public:
    explicit WindowProcess(const QString& newFolder) : folder(newFolder)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.insert("TMPDIR", folder);
        environment.insert("XDG_DATA_HOME", folder + "/data");
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.setWorkingDirectory(folder);
    }
    ~WindowProcess() { kill(); }

    void start(const QStringList& arguments)
    {
        process.start(CORVANE_VIEWER, QStringList{"--config", settingsFile(folder)} + arguments);
    }
    void setWorkingDirectory(const QString& path) { process.setWorkingDirectory(path); }
    bool isRunning() const { return process.state() == QProcess::Running; }
    /// The exit code of a program that ends by itself; -1 where it does not.
    int waitForEnd()
    {
        const bool ended = QTest::qWaitFor(
            [this] { return process.state() == QProcess::NotRunning; }, longestWait);
        return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    void sendSignal(int number) const { ::kill(pid_t(process.processId()), number); }
    /// Makes it hang, but not while it writes the settings: those of others wait for that.
    void stop() const
    {
        QLockFile writing(settingsFile(folder) + ".lock"); // as the settings themselves take it
        writing.lock();
        sendSignal(SIGSTOP);
        QVERIFY(QTest::qWaitFor([this] { return isStopped(); }, longestWait));
        writing.unlock();
    }
    void kill()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished(longestWait);
        }
    }

    static QString settingsFile(const QString& folder) { return folder + "/settings.ini"; }
    /// What the programs of the folder have opened, the latest first.
    static QStringList recent(const QString& folder)
    {
        return QSettings(settingsFile(folder), QSettings::IniFormat)
            .value("Viewer/recent")
            .toStringList();
    }
    /// Waits until a program of the folder has opened the source.
    static bool waitForOpened(const QString& folder, const QString& source)
    {
        return QTest::qWaitFor([&] { return recent(folder).contains(source); }, longestWait);
    }

    static constexpr int longestWait = 120000; // milliseconds, on a machine that is busy

private:
    bool isStopped() const
    {
        QFile state(QString("/proc/%1/stat").arg(process.processId()));
        return state.open(QIODevice::ReadOnly) && state.readAll().contains(") T ");
    }

    const QString folder;
    QProcess process;
};
