#pragma once

#include <pluginchecker/CheckOptions.h>
#include <pluginchecker/StepProcess.h>

#include <QByteArray>
#include <QString>

#include <vector>

namespace Corvane::PluginChecker {

/// One line for people.
QString lineFor(const StepResult& result);
/// The last line for people.
QString summaryOf(const CheckOptions& options, const std::vector<StepResult>& results);
ExitCode exitCodeFor(const std::vector<StepResult>& results);
QByteArray jsonFor(const CheckOptions& options, const std::vector<StepResult>& results);

} // namespace Corvane::PluginChecker
