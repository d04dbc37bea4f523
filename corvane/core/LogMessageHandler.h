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
    virtual void logMessage(const QString& message, LogLevel level, const QDateTime& time) = 0;
    virtual void setLogLevel(LogLevel level) = 0;
    virtual LogLevel getLogLevel() = 0;

protected:
    ~LogMessageHandler() = default; // handlers are never deleted through this interface
};

} // namespace Corvane
