#include <pluginchecker/CheckReport.h>

#include <pluginchecker/CheckStep.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace Corvane::PluginChecker {

namespace {

constexpr int nameWidth = 15; // characters

int countOf(const std::vector<StepResult>& results, Verdict verdict)
{
    return static_cast<int>(
        std::count_if(results.begin(), results.end(),
                      [verdict](const StepResult& result) { return result.verdict == verdict; }));
}

const char* wordFor(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Pass:
        return "pass";
    case Verdict::Fail:
        return "fail";
    case Verdict::Skip:
        break;
    }
    return "skip";
}

QJsonObject jsonOf(const StepResult& result)
{
    return {{"name", result.name},
            {"result", wordFor(result.verdict)},
            {"reasons", QJsonArray::fromStringList(result.reasons)},
            {"warnings", QJsonArray::fromStringList(result.warnings)},
            {"milliseconds", result.milliseconds}};
}

} // namespace

QString lineFor(const StepResult& result)
{
    const QString word = result.verdict == Verdict::Fail ? QStringLiteral("FAIL")
                                                         : QLatin1String(wordFor(result.verdict));
    QString line = word + QLatin1String("  ") + result.name;
    QStringList remarks = result.reasons;
    for (const QString& warning : result.warnings) {
        remarks.append(QLatin1String("warning: ") + warning);
    }
    if (!remarks.isEmpty()) {
        line = line.leftJustified(line.size() - result.name.size() + nameWidth);
        line += QLatin1Char(' ') + remarks.join(QLatin1String("; "));
    }
    return line;
}

QString summaryOf(const CheckOptions& options, const std::vector<StepResult>& results)
{
    const QString name = QFileInfo(options.plugin).fileName();
    const QString counts = QStringLiteral("%1 passed, %2 failed, %3 skipped")
                               .arg(countOf(results, Verdict::Pass))
                               .arg(countOf(results, Verdict::Fail))
                               .arg(countOf(results, Verdict::Skip));
    switch (exitCodeFor(results)) {
    case CannotLoad:
        return QStringLiteral("%1 cannot be loaded").arg(name);
    case ContractBroken:
        return QStringLiteral("%1 breaks the contract: %2").arg(name, counts);
    default:
        return QStringLiteral("%1 keeps the contract: %2").arg(name, counts);
    }
}

ExitCode exitCodeFor(const std::vector<StepResult>& results)
{
    const auto failed = std::find_if(results.begin(), results.end(), [](const StepResult& result) {
        return result.verdict == Verdict::Fail;
    });
    if (failed == results.end()) {
        return ContractKept;
    }
    return failed->name == QLatin1String(checkSteps().front().name) ? CannotLoad : ContractBroken;
}

QByteArray jsonFor(const CheckOptions& options, const std::vector<StepResult>& results)
{
    QJsonArray steps;
    QJsonObject report{{"plugin", options.plugin},
                       {"source", options.source},
                       {"className", QString()},
                       {"version", QString()},
                       {"exitCode", exitCodeFor(results)}};
    for (const StepResult& result : results) {
        steps.append(jsonOf(result));
        if (!result.className.isEmpty()) {
            report["className"] = result.className;
            report["version"] = result.version;
        }
    }
    report["steps"] = steps;
    report["counts"] = QJsonObject{{"pass", countOf(results, Verdict::Pass)},
                                   {"fail", countOf(results, Verdict::Fail)},
                                   {"skip", countOf(results, Verdict::Skip)}};
    return QJsonDocument(report).toJson(QJsonDocument::Indented);
}

} // namespace Corvane::PluginChecker
