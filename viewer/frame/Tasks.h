#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace Corvane::Viewer {

/// A long work that goes on while the user does other things. GUI thread only.
class Task : public QObject
{
    Q_OBJECT
public:
    Task(const QString& taskTitle, QObject* parent);

    const QString& getTitle() const { return title; }
    /// 0 to 100.
    int getPercent() const { return percent; }
    void setPercent(int newPercent);
    /// Asks whoever does the work to give it up.
    void cancel();
    /// It is over, one way or the other: the task deletes itself later.
    void end();

signals:
    void changed();
    void cancelled();
    void ended();

private:
    const QString title;
    int percent = 0;
    bool isOver = false;
};

/// All of them, in the order of their beginning. GUI thread only.
class Tasks : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// Stays there until it ends; owned.
    Task* begin(const QString& title);
    const QList<Task*>& getTasks() const { return tasks; }

signals:
    /// One has begun, moved on or ended.
    void changed();

private:
    QList<Task*> tasks;
};

} // namespace Corvane::Viewer
