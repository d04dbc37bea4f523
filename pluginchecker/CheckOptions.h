#pragma once

#include <QString>
#include <QStringList>

namespace Corvane::PluginChecker {

/// The program's exit codes.
enum ExitCode : int
{
    ContractKept = 0,
    WrongUsage = 1,
    ContractBroken = 2,
    CannotLoad = 3
};

/// What the command line asks for.
struct CheckOptions
{
    enum Mode
    {
        Check,
        RunStep, ///< in a process of its own, for a check
        ListSteps,
        Help,
        Version
    };
    Mode mode = Check;
    QString plugin;     ///< absolute path
    QString source;     ///< a file by its absolute path, or a text as it was given; may be empty
    QStringList steps;  ///< those to take; all of them where it is empty
    int timeLimit = 60; ///< seconds for each step
    bool json = false;
    QString step;   ///< of RunStep
    QString record; ///< the file that this step writes
    QString folder; ///< for the files of this step

    /// False with the reason in error.
    static bool parse(const QStringList& arguments, CheckOptions* options, QString* error);
    static QString helpText();
};

} // namespace Corvane::PluginChecker
