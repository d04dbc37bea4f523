#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

namespace Corvane::PluginChecker {

/// What a step has found, as read from its record.
struct StepFindings
{
    QStringList failures;
    QStringList warnings;
    QStringList skips;
    QString doing; ///< what it did last
    QString className;
    QString version;
    bool isDone = false;

    static StepFindings read(const QString& file);
};

/// What a step writes about itself while it runs: a line at a time and at once, so that it is there
/// when the step crashes. GUI thread only.
class StepRecord
{
public:
    explicit StepRecord(const QString& file);

    /// The contract is broken. The same text counts once.
    void fail(const QString& reason);
    void warn(const QString& reason);
    void skip(const QString& reason);
    /// What comes next, in words that go behind "while": "opening the source".
    void doing(const QString& action);
    void setClassName(const QString& name);
    void setVersion(const QString& version);
    /// The step has come to its end.
    void done();

private:
    void write(const char* key, const QString& text);

    QFile file;
    QStringList known;
};

} // namespace Corvane::PluginChecker
