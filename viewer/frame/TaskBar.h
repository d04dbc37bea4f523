#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QToolButton;

namespace Corvane::Viewer {

class Tasks;

/// Shows in the status bar what goes on in the background: the work that began first, how far it is,
/// and a button that gives it up; how many more there are stands behind it. Hidden without any. GUI
/// thread only.
class TaskBar : public QWidget
{
    Q_OBJECT
public:
    /// tasks must outlive the bar.
    explicit TaskBar(Tasks* shownTasks, QWidget* parent = nullptr);

private:
    void renew();
    void cancelFirst();

    Tasks* tasks; // not owned
    QLabel* title;
    QProgressBar* progress;
    QToolButton* cancelButton;
};

} // namespace Corvane::Viewer
