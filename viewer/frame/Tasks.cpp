#include <viewer/frame/Tasks.h>

#include <utility>

namespace Corvane::Viewer {

Task::Task(const QString& taskTitle, QObject* parent) : QObject(parent), title(taskTitle) {}

void Task::setPercent(int newPercent)
{
    if (std::exchange(percent, newPercent) != newPercent) {
        emit changed();
    }
}

void Task::cancel()
{
    if (!isOver) {
        emit cancelled();
    }
}

void Task::end()
{
    if (!std::exchange(isOver, true)) {
        emit ended();
        deleteLater();
    }
}

Task* Tasks::begin(const QString& title)
{
    auto* const task = new Task(title, this);
    tasks << task;
    connect(task, &Task::changed, this, &Tasks::changed);
    connect(task, &Task::ended, this, [this, task] {
        tasks.removeAll(task);
        emit changed();
    });
    emit changed();
    return task;
}

} // namespace Corvane::Viewer
