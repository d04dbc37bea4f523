#pragma once

#include <corvane/core/Export.h>
#include <corvane/core/LogLevel.h>

class QDateTime;
class QString;

namespace Corvane {

/// Where log lines go: implemented by the host program. Must be safe to call from any thread.
class CORVANE_EXPORT LogMessageHandler
{
public:
    /// Takes a line whose level is at least that of the handler. Any thread.
    virtual void logMessage(const QString& message, LogLevel level, const QDateTime& time) = 0;
    /// Lines below this level are not wanted from now on.
    virtual void setLogLevel(LogLevel level) = 0;
    /// Asked before each line. Any thread.
    virtual LogLevel getLogLevel() = 0;

protected:
    ~LogMessageHandler() = default; // handlers are never deleted through this interface
};

} // namespace Corvane
