#include <pluginchecker/StepProcess.h>

#include <pluginchecker/CheckOptions.h>
#include <pluginchecker/StepRecord.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <cstring>

namespace Corvane::PluginChecker {

namespace {

constexpr int farewell = 5000; // milliseconds for a process that was killed
constexpr int millisecondsPerSecond = 1000;
constexpr int mostErrorLines = 3;

QProcessEnvironment environmentIn(const QDir& home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("HOME", home.path());
    for (const auto& [name, folder] :
         {std::pair("XDG_CONFIG_HOME", "config"), std::pair("XDG_CACHE_HOME", "cache"),
          std::pair("XDG_DATA_HOME", "data"), std::pair("XDG_RUNTIME_DIR", "runtime"),
          std::pair("TMPDIR", "tmp")})
    {
        const QString path = home.filePath(folder);
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        environment.insert(name, path);
    }
    return environment;
}

QString signalName(int number)
{
    const char* const name = sigabbrev_np(number);
    return name ? QLatin1String("SIG") + QLatin1String(name)
                : QStringLiteral("signal %1").arg(number);
}

// What a crash says of itself: a sanitizer's headline, or the last words.
QString lastWords(const QByteArray& errors)
{
    QStringList lines;
    for (const QByteArray& line : errors.split('\n')) {
        const QString text = QString::fromLocal8Bit(line).simplified();
        if (text.contains(QLatin1String("Sanitizer")) ||
            text.contains(QLatin1String("runtime error"))) {
            return text;
        }
        if (!text.isEmpty()) {
            lines.append(text);
        }
    }
    return lines.mid(std::max(0, lines.size() - mostErrorLines)).join(QLatin1String(" / "));
}

void judge(const StepFindings& findings, const QString& end, StepResult* result)
{
    result->warnings = findings.warnings;
    result->className = findings.className;
    result->version = findings.version;
    result->reasons = findings.failures;
    if (!end.isEmpty()) {
        result->reasons.append(end);
    }
    if (!result->reasons.isEmpty()) {
        result->verdict = Verdict::Fail;
    } else if (!findings.skips.isEmpty()) {
        result->verdict = Verdict::Skip;
        result->reasons = findings.skips;
    }
}

// Empty where the process ended as it should.
QString endOf(QProcess& process, const StepFindings& findings)
{
    QString end;
    if (process.exitStatus() == QProcess::CrashExit) {
        end = signalName(process.exitCode());
    } else if (process.exitCode() != 0) {
        end = QStringLiteral("ended with exit code %1").arg(process.exitCode());
    } else if (!findings.isDone) {
        end = QStringLiteral("ended the process");
    } else {
        return end;
    }
    end += findings.isDone ? QStringLiteral(" after the step, at the end of the process")
                           : QStringLiteral(" while ") + findings.doing;
    const QString words = lastWords(process.readAllStandardError());
    return words.isEmpty() ? end : end + QLatin1String(": ") + words;
}

} // namespace

StepResult runStep(const CheckOptions& options, const QString& step)
{
    StepResult result;
    result.name = step;
    const QTemporaryDir home;
    const QDir folder(home.path());
    if (!home.isValid() || !folder.mkpath("files")) {
        result.verdict = Verdict::Fail;
        result.reasons.append(QStringLiteral("cannot make a temporary folder"));
        return result;
    }
    const QString record = folder.filePath("record");
    QProcess process;
    process.setProcessEnvironment(environmentIn(folder));
    process.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    process.start(QCoreApplication::applicationFilePath(),
                  {"--run-step", step, "--record", record, "--folder", folder.filePath("files"),
                   "--source", options.source, "--", options.plugin},
                  QIODevice::ReadOnly);
    const bool ended = process.waitForFinished(options.timeLimit * millisecondsPerSecond) ||
                       process.error() == QProcess::FailedToStart;
    if (!ended) {
        process.kill();
        process.waitForFinished(farewell);
    }
    result.milliseconds = timer.elapsed();
    const StepFindings findings = StepFindings::read(record);
    const QString end = !ended ? QStringLiteral("did not end within %1 s while %2")
                                     .arg(options.timeLimit)
                                     .arg(findings.doing)
                               : endOf(process, findings);
    judge(findings, end, &result);
    return result;
}

} // namespace Corvane::PluginChecker
