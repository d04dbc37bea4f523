#include <server/ServerLog.h>

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <cstdio>

namespace Corvane::Server {

namespace {

// What a client or a file has sent cannot begin a line of its own or move the cursor.
QString printable(const QString& text)
{
    QString result;
    for (const QChar letter : text) {
        if (letter.isPrint() || letter.isSurrogate()) {
            result += letter;
        } else {
            result += QStringLiteral("\\u%1").arg(letter.unicode(), 4, 16, QLatin1Char('0'));
        }
    }
    return result;
}

void writeLine(const QString& line)
{
    const QByteArray bytes = printable(line).toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
}

} // namespace

// Any thread.
void ServerLog::logMessage(const QString& message, LogLevel messageLevel, const QDateTime& time)
{
    const bool isWarning = messageLevel >= LogLevel::Warning;
    writeLine(time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss ")) +
              (isWarning ? QStringLiteral("warning: ") : QString()) + message);
}

void printError(const QString& message)
{
    writeLine(QStringLiteral("corvane-imageserver: ") + message);
}

} // namespace Corvane::Server
