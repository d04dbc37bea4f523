#include <viewer/log/LogModel.h>

#include <corvane/core/Application.h>

#include <QApplication>
#include <QIcon>
#include <QStyle>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

QIcon iconOf(LogLevel level)
{
    const QStyle* const style = QApplication::style();
    switch (level) {
    case Warning:
        return style->standardIcon(QStyle::SP_MessageBoxWarning);
    case Error:
    case Critical:
        return style->standardIcon(QStyle::SP_MessageBoxCritical);
    default:
        return style->standardIcon(QStyle::SP_MessageBoxInformation);
    }
}

} // namespace

LogModel::LogModel(LogBook* logBook, QObject* parent) : QAbstractTableModel(parent), book(logBook)
{
    if (book) {
        connect(book, &LogBook::linesCame, this, &LogModel::takeLines);
        takeLines();
    }
}

void LogModel::setPaused(bool isPaused)
{
    paused = isPaused;
    takeLines();
}

void LogModel::takeLines()
{
    if (paused || !book) {
        return;
    }
    qint64 first = 0;
    const QVector<LogLine> came = book->linesFrom(nextNumber, &first);
    nextNumber = first + came.size();
    if (came.isEmpty()) {
        return;
    }
    const int surplus = int(lines.size()) + came.size() - LogBook::mostLines;
    if (surplus > 0) {
        const int leaving = std::min(surplus, int(lines.size()));
        if (leaving > 0) {
            beginRemoveRows(QModelIndex(), 0, leaving - 1);
            lines.erase(lines.begin(), lines.begin() + leaving);
            endRemoveRows();
        }
    }
    beginInsertRows(QModelIndex(), int(lines.size()), int(lines.size()) + came.size() - 1);
    lines.insert(lines.end(), came.begin(), came.end());
    endInsertRows();
}

void LogModel::clear()
{
    beginResetModel();
    lines.clear();
    if (book) {
        qint64 first = 0;
        const int waiting = book->linesFrom(nextNumber, &first).size();
        nextNumber = first + waiting;
    }
    endResetModel();
}

QString LogModel::lineAt(int row) const
{
    QStringList parts;
    for (const int column : {int(Time), int(Level)}) {
        parts << data(index(row, column), Qt::DisplayRole).toString();
    }
    parts << data(index(row, Text), WholeTextRole).toString();
    return parts.join('\t');
}

int LogModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(lines.size());
}

int LogModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant LogModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= int(lines.size())) {
        return QVariant();
    }
    const LogLine& line = lines.at(std::size_t(index.row()));
    switch (role) {
    case LevelRole:
        return int(line.level);
    case WholeTextRole:
    case Qt::ToolTipRole:
        return line.text;
    case Qt::DecorationRole:
        return index.column() == Level ? iconOf(line.level) : QVariant();
    case Qt::DisplayRole:
        break;
    default:
        return QVariant();
    }
    switch (index.column()) {
    case Time:
        return line.time.toString("HH:mm:ss.zzz");
    case Level:
        return Application::getLogLevelStr(line.level);
    default:
        return line.text.simplified();
    }
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return QVariant();
    }
    switch (section) {
    case Time:
        return tr("Time");
    case Level:
        return tr("Level");
    default:
        return tr("Message");
    }
}

} // namespace Corvane::Viewer
