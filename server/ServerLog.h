#pragma once

#include <corvane/core/LogMessageHandler.h>

#include <atomic>

class QString;

namespace Corvane::Server {

/// Writes log lines to standard error, with the time, one call a line. Any thread.
class ServerLog final : public LogMessageHandler
{
public:
    void logMessage(const QString& message, LogLevel level, const QDateTime& time) override;
    void setLogLevel(LogLevel newLevel) override { level = newLevel; }
    LogLevel getLogLevel() override { return level; }

private:
    std::atomic<LogLevel> level{LogLevel::Information};
};

/// A line for whoever started the program.
void printError(const QString& message);

} // namespace Corvane::Server
