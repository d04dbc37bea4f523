#pragma once

#include <tests/tiles/SharedLog.h>

#include <QString>
#include <QtGlobal>

/// While it lives, the debug lines of the category "corvane.tiles" are kept here and not printed.
/// One at a time.
class TileLines
{
public:
    TileLines()
    {
        lines().clear();
        previous = qInstallMessageHandler(&TileLines::handle);
    }
    ~TileLines() { qInstallMessageHandler(previous); }
    TileLines(const TileLines&) = delete;
    TileLines& operator=(const TileLines&) = delete;

    QStringList all() const { return lines().all(); }
    /// For lines that come in the order of a hash.
    QStringList sorted() const { return lines().sorted(); }
    void clear() { lines().clear(); }

private:
    static SharedLog& lines()
    {
        static SharedLog log;
        return log;
    }

    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (type == QtDebugMsg && qstrcmp(context.category, "corvane.tiles") == 0) {
            lines().add(message);
        } else {
            fprintf(stderr, "%s\n", qPrintable(message));
        }
    }

    QtMessageHandler previous;
};
