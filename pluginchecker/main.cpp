#include <pluginchecker/CheckOptions.h>
#include <pluginchecker/CheckReport.h>
#include <pluginchecker/CheckStep.h>
#include <pluginchecker/PluginFile.h>
#include <pluginchecker/StepProcess.h>
#include <pluginchecker/StepRecord.h>

#include <corvane/core/Application.h>

#include <QCoreApplication>
#include <QLoggingCategory>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace Corvane;
using namespace Corvane::PluginChecker;

namespace {

void print(const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    std::fflush(stdout); // the steps take their time
}

void printError(const QString& text)
{
    std::fprintf(stderr, "corvane-plugin-check: %s\n", text.toLocal8Bit().constData());
}

StepResult skipped(const char* name, const QString& reason)
{
    StepResult result;
    result.name = QLatin1String(name);
    result.verdict = Verdict::Skip;
    result.reasons.append(reason);
    return result;
}

bool isWanted(const CheckOptions& options, const CheckStep& step)
{
    const bool isFirst = &step == &checkSteps().front(); // the others rest on it
    return isFirst || options.steps.isEmpty() || options.steps.contains(QLatin1String(step.name));
}

int check(const CheckOptions& options)
{
    std::vector<StepResult> results;
    for (const CheckStep& step : checkSteps()) {
        if (!isWanted(options, step)) {
            continue;
        }
        if (exitCodeFor(results) == CannotLoad) {
            results.push_back(skipped(step.name, "the plugin cannot be loaded"));
        } else if (step.needsSource && options.source.isEmpty()) {
            results.push_back(skipped(step.name, "there is no --source"));
        } else {
            results.push_back(runStep(options, QLatin1String(step.name)));
        }
        if (!options.json) {
            print(lineFor(results.back()) + QLatin1Char('\n'));
        }
    }
    print(options.json ? QString::fromUtf8(jsonFor(options, results))
                       : summaryOf(options, results) + QLatin1Char('\n'));
    return exitCodeFor(results);
}

/// In the process of a step: what it finds goes into its record.
int takeStep(const CheckOptions& options)
{
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none); // crashes are expected here
    StepRecord record(options.record);
    PluginFile plugin(options.plugin);
    StepContext context{plugin, options.source, options.folder, record};
    record.doing(QStringLiteral("loading the plugin"));
    const CheckStep* const step = findStep(options.step);
    QString error;
    if (step != &checkSteps().front() && !plugin.load(&error)) {
        record.fail(error);
    } else {
        step->run(context);
    }
    record.done();
    return 0;
}

// The process of a step needs an application object with a display, the one that starts it none.
bool isForStep(int argc, char** argv)
{
    return std::any_of(argv + 1, argv + argc,
                       [](const char* word) { return std::strcmp(word, "--run-step") == 0; });
}

int runStepProcess(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.*.debug=false");
    Application application(argc, argv, "Corvane Plugin Check");
    CheckOptions options;
    QString error;
    if (!CheckOptions::parse(QCoreApplication::arguments(), &options, &error)) {
        printError(error);
        return WrongUsage;
    }
    return takeStep(options);
}

} // namespace

int main(int argc, char** argv)
{
    if (isForStep(argc, argv)) {
        return runStepProcess(argc, argv);
    }
    const QCoreApplication application(argc, argv);
    CheckOptions options;
    QString error;
    if (!CheckOptions::parse(QCoreApplication::arguments(), &options, &error)) {
        printError(error + QStringLiteral(" See corvane-plugin-check --help."));
        return WrongUsage;
    }
    switch (options.mode) {
    case CheckOptions::Help:
        print(CheckOptions::helpText());
        return ContractKept;
    case CheckOptions::Version:
        print(QStringLiteral("Corvane plugin check %1\n").arg(Application::libraryVersion()));
        return ContractKept;
    case CheckOptions::ListSteps:
        for (const CheckStep& step : checkSteps()) {
            print(QStringLiteral("%1 %2\n").arg(QLatin1String(step.name), -15).arg(step.meaning));
        }
        return ContractKept;
    default:
        return check(options);
    }
}
