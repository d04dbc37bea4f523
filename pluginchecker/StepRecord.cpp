#include <pluginchecker/StepRecord.h>

namespace Corvane::PluginChecker {

namespace {

constexpr int longestText = 600; // characters of one reason

QString onOneLine(const QString& text)
{
    return text.simplified().left(longestText);
}

} // namespace

StepFindings StepFindings::read(const QString& name)
{
    StepFindings findings;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        return findings;
    }
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        const QString key = line.section(QLatin1Char('\t'), 0, 0);
        const QString text = line.section(QLatin1Char('\t'), 1);
        if (key == QLatin1String("fail")) {
            findings.failures.append(text);
        } else if (key == QLatin1String("warn")) {
            findings.warnings.append(text);
        } else if (key == QLatin1String("skip")) {
            findings.skips.append(text);
        } else if (key == QLatin1String("doing")) {
            findings.doing = text;
        } else if (key == QLatin1String("class")) {
            findings.className = text;
        } else if (key == QLatin1String("version")) {
            findings.version = text;
        } else if (key == QLatin1String("done")) {
            findings.isDone = true;
        }
    }
    return findings;
}

StepRecord::StepRecord(const QString& name) : file(name)
{
    file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

void StepRecord::fail(const QString& reason)
{
    write("fail", reason);
}

void StepRecord::warn(const QString& reason)
{
    write("warn", reason);
}

void StepRecord::skip(const QString& reason)
{
    write("skip", reason);
}

void StepRecord::doing(const QString& action)
{
    file.write("doing\t" + onOneLine(action).toUtf8() + '\n');
}

void StepRecord::setClassName(const QString& name)
{
    write("class", name);
}

void StepRecord::setVersion(const QString& version)
{
    write("version", version);
}

void StepRecord::done()
{
    write("done", QString());
}

void StepRecord::write(const char* key, const QString& text)
{
    const QString line = QLatin1String(key) + QLatin1Char('\t') + onOneLine(text);
    if (!known.contains(line)) {
        known.append(line);
        file.write(line.toUtf8() + '\n');
    }
}

} // namespace Corvane::PluginChecker
