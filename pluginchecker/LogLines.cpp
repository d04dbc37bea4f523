#include <pluginchecker/LogLines.h>

#include <corvane/core/Application.h>

namespace Corvane::PluginChecker {

LogLines::LogLines()
{
    Application::installLogMessageHandler(this);
}

LogLines::~LogLines()
{
    Application::installLogMessageHandler(nullptr);
}

// Any thread.
void LogLines::logMessage(const QString&, LogLevel, const QDateTime&)
{
    ++lines;
}

void LogLines::setLogLevel(LogLevel) {}

// Any thread.
LogLevel LogLines::getLogLevel()
{
    return Debug;
}

} // namespace Corvane::PluginChecker
