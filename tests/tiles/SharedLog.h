#pragma once

#include <QString>
#include <QStringList>

#include <mutex>

/// A list of lines that several threads write. Any thread.
class SharedLog
{
public:
    SharedLog() = default;
    SharedLog(const SharedLog&) = delete;
    SharedLog& operator=(const SharedLog&) = delete;
    /// Nobody writes any more; sees what the last writer did.
    ~SharedLog() { const std::lock_guard<std::mutex> guard(mutex); }

    void add(const QString& line)
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards lines
        lines.append(line);
    }

    QStringList all() const
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards lines
        return lines;
    }

    QStringList sorted() const
    {
        QStringList result = all();
        result.sort();
        return result;
    }

    int count(const QString& line) const { return static_cast<int>(all().count(line)); }

    void clear()
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards lines
        lines.clear();
    }

private:
    mutable std::mutex mutex;
    QStringList lines;
};
