#pragma once

#include <QString>
#include <QStringList>

namespace Corvane::PluginChecker {

struct CheckOptions;

enum class Verdict
{
    Pass,
    Fail,
    Skip
};

/// How a step ended.
struct StepResult
{
    QString name;
    Verdict verdict = Verdict::Pass;
    QStringList reasons; ///< why it failed or was skipped
    QStringList warnings;
    QString className; ///< where the step has learnt them
    QString version;
    qint64 milliseconds = 0;
};

/// Runs the step in a process of its own, with a home folder that it may fill and no display. Blocks
/// until it has ended or its time is up.
StepResult runStep(const CheckOptions& options, const QString& step);

} // namespace Corvane::PluginChecker
