#include <pluginchecker/CheckOptions.h>

#include <pluginchecker/CheckStep.h>

#include <QCommandLineParser>
#include <QFileInfo>

namespace Corvane::PluginChecker {

namespace {

constexpr int longestTimeLimit = 24 * 60 * 60; // seconds

struct OptionSet
{
    QCommandLineOption source{
        "source", QString("What layers of the plugin show: a file, or a text such as a URL."),
        "DATA"};
    QCommandLineOption json{"json", QString("Print one JSON object instead of lines.")};
    QCommandLineOption steps{"step", QString("Take this step only; may be given several times."),
                             "NAME"};
    QCommandLineOption timeLimit{"time-limit",
                                 QString("Each step may take N seconds, 60 unless told."), "N"};
    QCommandLineOption listSteps{"list-steps", QString("Print the steps, then end.")};
    QCommandLineOption version{{"v", "version"}, QString("Print the version, then end.")};
    QCommandLineOption help{{"h", "help"}, QString("Print this help, then end.")};
    // How the program starts itself.
    QCommandLineOption runStep{"run-step", QString(), "NAME"};
    QCommandLineOption record{"record", QString(), "FILE"};
    QCommandLineOption folder{"folder", QString(), "DIR"};

    OptionSet()
    {
        for (QCommandLineOption* option : {&runStep, &record, &folder}) {
            option->setFlags(QCommandLineOption::HiddenFromHelp);
        }
    }
};

void declare(QCommandLineParser& parser, const OptionSet& set)
{
    parser.setApplicationDescription(QString(
        "Loads a layer plugin, puts it through what viewers do to plugins, and says what\n"
        "breaks the contract between the two. Each step runs in a process of its own, so a\n"
        "crash or a step that does not end is told like any other failure. Without --source\n"
        "the steps that need data are skipped.\n\n"
        "Prints a line for each step: pass, FAIL or skip, its name, and the reason. Warnings\n"
        "stand behind a step that passed.\n\n"
        "With --json it prints an object with \"plugin\", \"source\", \"className\", \"version\",\n"
        "\"exitCode\", \"counts\" (of \"pass\", \"fail\" and \"skip\") and \"steps\": an array of\n"
        "objects with \"name\", \"result\" (\"pass\", \"fail\" or \"skip\"), \"reasons\" and\n"
        "\"warnings\" (arrays of texts) and \"milliseconds\".\n\n"
        "Ends with 0 when the plugin keeps the contract, 1 for wrong usage, 2 when it breaks\n"
        "the contract, 3 when it cannot be loaded."));
    parser.addPositionalArgument("file", QString("The plugin."), "FILE.so");
    parser.addOptions({set.source, set.json, set.steps, set.timeLimit, set.listSteps, set.version,
                       set.help, set.runStep, set.record, set.folder});
}

bool readTimeLimit(const QCommandLineParser& parser, const OptionSet& set, int* seconds,
                   QString* error)
{
    if (!parser.isSet(set.timeLimit)) {
        return true;
    }
    bool ok = false;
    *seconds = parser.value(set.timeLimit).toInt(&ok);
    if (!ok || *seconds < 1 || *seconds > longestTimeLimit) {
        *error = QString("--time-limit takes a number from 1 to %1, not \"%2\".")
                     .arg(longestTimeLimit)
                     .arg(parser.value(set.timeLimit));
        return false;
    }
    return true;
}

bool areSteps(const QStringList& names, QString* error)
{
    for (const QString& name : names) {
        if (!findStep(name)) {
            *error = QString("there is no step \"%1\"; --list-steps prints them.").arg(name);
            return false;
        }
    }
    return true;
}

QString withoutWorkingFolder(const QString& source)
{
    const QFileInfo file(source);
    return !source.isEmpty() && file.exists() ? file.absoluteFilePath() : source;
}

} // namespace

bool CheckOptions::parse(const QStringList& arguments, CheckOptions* options, QString* error)
{
    const OptionSet set;
    QCommandLineParser parser;
    declare(parser, set);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    for (const auto& [option, mode] : {std::pair(&set.help, Help), std::pair(&set.version, Version),
                                       std::pair(&set.listSteps, ListSteps)})
    {
        if (parser.isSet(*option)) {
            options->mode = mode;
            return true;
        }
    }
    if (parser.positionalArguments().size() != 1) {
        *error = QString("name one plugin file.");
        return false;
    }
    options->plugin = QFileInfo(parser.positionalArguments().first()).absoluteFilePath();
    options->source = withoutWorkingFolder(parser.value(set.source));
    options->steps = parser.values(set.steps);
    options->json = parser.isSet(set.json);
    if (parser.isSet(set.runStep)) {
        options->mode = RunStep;
        options->step = parser.value(set.runStep);
        options->record = parser.value(set.record);
        options->folder = parser.value(set.folder);
        return areSteps({options->step}, error);
    }
    return areSteps(options->steps, error) &&
           readTimeLimit(parser, set, &options->timeLimit, error);
}

QString CheckOptions::helpText()
{
    QCommandLineParser parser;
    declare(parser, OptionSet());
    return parser.helpText();
}

} // namespace Corvane::PluginChecker
