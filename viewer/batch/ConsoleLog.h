#pragma once

#include <corvane/core/LogMessageHandler.h>

#include <atomic>

namespace Corvane::Viewer {

/// Writes log lines to standard error, one call a line. Any thread.
class ConsoleLog final : public LogMessageHandler
{
public:
    void logMessage(const QString& message, LogLevel level, const QDateTime& time) override;
    void setLogLevel(LogLevel newLevel) override;
    LogLevel getLogLevel() override;

private:
    std::atomic<LogLevel> level = Warning;
};

/// A line for the user on standard error, with the program's name before it.
void printError(const QString& message);

} // namespace Corvane::Viewer
