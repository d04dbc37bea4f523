#include <viewer/frame/TaskBar.h>

#include <viewer/frame/Tasks.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QStringList>
#include <QStyle>
#include <QToolButton>

namespace Corvane::Viewer {
namespace {

constexpr int longestTitle = 260; // pixels
constexpr int barWidth = 110;
constexpr int barHeight = 14;

} // namespace

TaskBar::TaskBar(Tasks* shownTasks, QWidget* parent)
    : QWidget(parent),
      tasks(shownTasks),
      title(new QLabel(this)),
      progress(new QProgressBar(this)),
      cancelButton(new QToolButton(this))
{
    setObjectName("taskBar");
    title->setObjectName("taskTitle");
    title->setTextFormat(Qt::PlainText);
    progress->setObjectName("taskProgress");
    progress->setFixedSize(barWidth, barHeight);
    cancelButton->setObjectName("taskCancel");
    cancelButton->setAutoRaise(true);
    cancelButton->setFocusPolicy(Qt::TabFocus);
    cancelButton->setIcon(style()->standardIcon(QStyle::SP_DialogCancelButton));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(6, 0, 6, 0);
    row->addWidget(title);
    row->addWidget(progress);
    row->addWidget(cancelButton);
    connect(cancelButton, &QToolButton::clicked, this, &TaskBar::cancelFirst);
    connect(tasks, &Tasks::changed, this, &TaskBar::renew);
    renew();
}

void TaskBar::renew()
{
    const QList<Task*>& all = tasks->getTasks();
    setVisible(!all.isEmpty());
    if (all.isEmpty()) {
        return;
    }
    const Task& first = *all.first();
    const QString more = all.size() > 1
                             ? tr("%1 (and %n more)", nullptr, all.size() - 1).arg(first.getTitle())
                             : first.getTitle();
    title->setText(title->fontMetrics().elidedText(more, Qt::ElideMiddle, longestTitle));
    progress->setValue(first.getPercent());
    progress->setAccessibleName(first.getTitle());
    const QString give = tr("Give up: %1").arg(first.getTitle());
    cancelButton->setToolTip(give);
    cancelButton->setAccessibleName(give);
    QStringList lines;
    for (const Task* task : all) {
        lines << tr("%1: %2 %").arg(task->getTitle(), QString::number(task->getPercent()));
    }
    title->setToolTip(lines.join('\n'));
}

void TaskBar::cancelFirst()
{
    if (!tasks->getTasks().isEmpty()) {
        tasks->getTasks().first()->cancel();
    }
}

} // namespace Corvane::Viewer
