#include <viewer/batch/ConsoleLog.h>

#include <corvane/core/Application.h>

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <cstdio>

namespace Corvane::Viewer {
namespace {

void writeLine(const QString& line)
{
    const QByteArray bytes = line.toLocal8Bit() + '\n';
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
}

} // namespace

// Any thread.
void ConsoleLog::logMessage(const QString& message, LogLevel messageLevel, const QDateTime& time)
{
    writeLine(QString("%1 %2: %3")
                  .arg(time.toString("HH:mm:ss.zzz"), Application::getLogLevelStr(messageLevel),
                       message));
}

void ConsoleLog::setLogLevel(LogLevel newLevel)
{
    level = newLevel;
}

// Any thread.
LogLevel ConsoleLog::getLogLevel()
{
    return level;
}

void printError(const QString& message)
{
    writeLine("corvane-viewer: " + message);
}

} // namespace Corvane::Viewer
