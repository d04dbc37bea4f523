#pragma once

#include <tests/tiles/SharedLog.h>

#include <QString>
#include <QStringList>
#include <QtGlobal>

/// While it lives, Qt's debug lines and warnings of every thread are kept here and not printed, as
/// "debug: ..." and "warning: ...". One at a time.
class MessageLines
{
public:
    MessageLines()
    {
        lines().clear();
        previous = qInstallMessageHandler(&MessageLines::handle);
    }
    ~MessageLines() { qInstallMessageHandler(previous); }
    MessageLines(const MessageLines&) = delete;
    MessageLines& operator=(const MessageLines&) = delete;

    QStringList all() const { return lines().all(); }
    void clear() { lines().clear(); }

private:
    static SharedLog& lines()
    {
        static SharedLog log;
        return log;
    }

    static void handle(QtMsgType type, const QMessageLogContext&, const QString& message)
    {
        if (type == QtDebugMsg) {
            lines().add(QStringLiteral("debug: ") + message);
        } else if (type == QtWarningMsg) {
            lines().add(QStringLiteral("warning: ") + message);
        } else {
            fprintf(stderr, "%s\n", qPrintable(message));
        }
    }

    QtMessageHandler previous;
};
