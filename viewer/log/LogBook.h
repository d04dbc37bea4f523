#pragma once

#include <corvane/core/LogMessageHandler.h>

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QVector>

#include <atomic>
#include <deque>
#include <mutex>

namespace Corvane::Viewer {

struct LogLine
{
    QDateTime time;
    LogLevel level = Information;
    QString text; ///< without passwords
};

/// Where the log goes: the last lines are kept for the window, and those that are serious enough for
/// the next sink go on to it. Whoever logs waits for nobody but another one who logs.
class LogBook final : public QObject, public LogMessageHandler
{
    Q_OBJECT
public:
    static constexpr int mostLines = 10000;

    /// next is not owned and may be null. The first book is the program's own.
    explicit LogBook(LogMessageHandler* nextSink);
    ~LogBook() override;

    /// The program's own; null where there is none. GUI thread only.
    static LogBook* instance();

    void logMessage(const QString& message, LogLevel messageLevel, const QDateTime& time) override;
    /// What is kept, from this level on. Any thread.
    void setLogLevel(LogLevel newLevel) override;
    /// That of the more curious of book and next sink. Any thread.
    LogLevel getLogLevel() override;

    /// The lines from a number on, which counts from the first of the program. Those that were given
    /// up are missing: *first is the number of the first in the result. Any thread.
    QVector<LogLine> linesFrom(qint64 number, qint64* first) const;

    /// The text without what may be a password. Any thread.
    static QString withoutSecrets(const QString& text);

signals:
    /// There are new lines; once for many. On the GUI thread.
    void linesCame();

private:
    void ring();

    LogMessageHandler* const next; // not owned
    std::atomic<LogLevel> level = Information;
    std::atomic<bool> rung = false; // linesCame is on its way
    mutable std::mutex mutex;       // guards lines and given
    std::deque<LogLine> lines;
    qint64 given = 0; // up, before the first of lines
};

} // namespace Corvane::Viewer
