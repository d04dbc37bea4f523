#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

namespace Corvane::Tests {

/// How a run of corvane-plugin-check ended. The test defines CORVANE_PLUGIN_CHECK.
struct CheckRun
{
    int exitCode = -1; ///< -2 for a crash
    QByteArray output;
    QByteArray errors;

    static CheckRun with(const QStringList& arguments)
    {
        QProcess process;
        process.start(QStringLiteral(CORVANE_PLUGIN_CHECK), arguments);
        process.waitForFinished(-1);
        CheckRun run;
        run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
        run.output = process.readAllStandardOutput();
        run.errors = process.readAllStandardError();
        return run;
    }
    QJsonObject json() const { return QJsonDocument::fromJson(output).object(); }
    /// Empty where the step was not taken.
    QJsonObject step(const QString& name) const
    {
        for (const QJsonValue& value : json().value("steps").toArray()) {
            if (value.toObject().value("name") == name) {
                return value.toObject();
            }
        }
        return {};
    }
    /// "pass", or the result with its reasons.
    QString resultOf(const QString& name) const
    {
        QStringList words = {step(name).value("result").toString()};
        for (const QJsonValue& reason : step(name).value("reasons").toArray()) {
            words.append(reason.toString());
        }
        return words.join(": ");
    }
};

} // namespace Corvane::Tests
