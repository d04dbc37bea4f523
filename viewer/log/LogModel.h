#pragma once

#include <viewer/log/LogBook.h>

#include <QAbstractTableModel>
#include <QPointer>

#include <deque>

namespace Corvane::Viewer {

/// The lines of a log book as rows: time, level, text. Only the last ones that the book holds. GUI
/// thread only.
class LogModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column
    {
        Time,
        Level,
        Text,
        ColumnCount
    };
    /// The level as a number; the whole text of a line, in the other roles of which line ends are
    /// spaces.
    enum Role
    {
        LevelRole = Qt::UserRole,
        WholeTextRole
    };

    /// The book is not owned; null for none.
    explicit LogModel(LogBook* logBook, QObject* parent = nullptr);

    /// A paused model takes no lines; afterwards come those that the book still has.
    void setPaused(bool isPaused);
    /// Forgets the lines that are here.
    void clear();
    /// A row as text: time, level and text, a tab between them.
    QString lineAt(int row) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void takeLines();

    QPointer<LogBook> book;
    std::deque<LogLine> lines;
    qint64 nextNumber = 0;
    bool paused = false;
};

} // namespace Corvane::Viewer
