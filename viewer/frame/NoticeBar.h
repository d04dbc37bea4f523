#pragma once

#include <QToolBar>

#include <functional>

class QLabel;
class QMainWindow;

namespace Corvane::Viewer {

/// A line across the top of the window that tells something and offers what to do about it, while
/// everything goes on. Goes with the first answer, or when it is closed. GUI thread only.
class NoticeBar : public QToolBar
{
    Q_OBJECT
public:
    /// Stands in the window from here on; a bar of the same name makes room for this one.
    NoticeBar(QMainWindow* window, const QString& name, const QString& text);

    /// An offer, with its text for a button; name is the button's object name.
    void offer(const QString& name, const QString& text, const std::function<void()>& effect);
    QString getText() const;

signals:
    /// Closed without an answer.
    void dismissed();

private:
    void addCloseButton();
    void leave();

    QLabel* label;
    QAction* beforeClose = nullptr; // offers stand before it
};

} // namespace Corvane::Viewer
