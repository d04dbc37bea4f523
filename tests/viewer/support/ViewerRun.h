#pragma once

#include <QByteArray>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QtTest>

/// How a run of the program ended; -1 where it did not, -2 for a crash.
struct Run
{
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
};

/// Runs the program as a script on a machine without a display does. The event loop goes on, for
/// the servers of the test.
inline Run runViewer(const QStringList& arguments, const QMap<QString, QString>& variables = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        environment.remove(name);
    }
    for (auto it = variables.begin(); it != variables.end(); ++it) {
        environment.insert(it.key(), it.value());
    }
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(CORVANE_VIEWER, arguments);
    Run run;
    if (!QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, 60000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    run.output = process.readAllStandardOutput();
    run.errors = process.readAllStandardError();
    return run;
}
