#pragma once

#include <corvane/core/LogMessageHandler.h>

#include <atomic>

namespace Corvane::PluginChecker {

/// Counts the log's lines, from whatever thread, from its construction to its end.
class LogLines final : public LogMessageHandler
{
public:
    LogLines();
    ~LogLines();
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    void logMessage(const QString& message, LogLevel level, const QDateTime& time) override;
    void setLogLevel(LogLevel level) override;
    LogLevel getLogLevel() override;

    int count() const { return lines; }

private:
    std::atomic<int> lines = 0;
};

} // namespace Corvane::PluginChecker
