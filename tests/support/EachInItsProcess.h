#pragma once

#include <QCoreApplication>
#include <QMetaMethod>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QtTest>

/// The rows of a test function, as "function:row"; the function itself where it has none.
inline QStringList rowsOf(const QMetaObject& test, const QString& function)
{
    if (test.indexOfSlot(qPrintable(function + "_data()")) < 0) {
        return {function};
    }
    const QTemporaryDir leavings; // a test that lists its rows ends without taking its folders away
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", leavings.path());
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {function, "-datatags"});
    process.waitForFinished(-1);
    QStringList rows;
    const QString prefix = QString("%1 %2 ").arg(test.className(), function);
    for (const QString& line : QString::fromUtf8(process.readAllStandardOutput()).split('\n')) {
        if (line.startsWith(prefix)) {
            rows << function + ':' + line.mid(prefix.size());
        }
    }
    return rows;
}

/// Runs each function of a test, and each row, in a process of its own: what it makes may end
/// something for the whole process, as the layer tree ends the plugins. With the name of a function
/// on the command line it runs here.
inline int runEachInItsProcess(QObject& test, int argc, char** argv)
{
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (!arguments.isEmpty() && !arguments.first().startsWith('-')) {
        return QTest::qExec(&test, argc, argv);
    }
    const QMetaObject& meta = *test.metaObject();
    int failures = 0;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const QByteArray name = method.name();
        const bool isTest =
            method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Private &&
            method.parameterCount() == 0 && !name.endsWith("_data") && name != "initTestCase" &&
            name != "cleanupTestCase" && name != "init" && name != "cleanup";
        if (!isTest) {
            continue;
        }
        const QStringList rows = rowsOf(meta, QString::fromLatin1(name));
        failures += rows.isEmpty() ? 1 : 0;
        for (const QString& row : rows) {
            QProcess process;
            process.setProcessChannelMode(QProcess::ForwardedChannels);
            process.start(QCoreApplication::applicationFilePath(), QStringList(row) + arguments);
            const bool ended = process.waitForFinished(-1);
            const bool passed =
                ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
            failures += passed ? 0 : 1;
        }
    }
    return failures;
}
