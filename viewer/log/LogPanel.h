#pragma once

#include <QWidget>

class QComboBox;
class QLineEdit;
class QSortFilterProxyModel;
class QToolButton;
class QTreeView;

namespace Corvane::Viewer {

class LogBook;
class LogModel;

/// The log in a panel: the lines of a level on, searched, copied and saved. GUI thread only.
class LogPanel : public QWidget
{
    Q_OBJECT
public:
    /// The book is not owned; null for none.
    explicit LogPanel(LogBook* logBook, QWidget* parent = nullptr);

    /// The chosen lines as text, all that are shown where none is chosen.
    QString chosenText() const;

protected:
    /// Copies lines where the list would copy one cell.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* createControls();
    void createList();
    QToolButton* addButton(QWidget* row, const QString& name, const QString& text,
                           const QString& tip);
    void showLevel();
    void chooseLevel();
    void search(const QString& words);
    void followEnd();
    void copy() const;
    void save();
    static void showFailure(LogPanel* panel, const QString& fileName, const QString& reason);

    LogBook* book; // not owned
    LogModel* model;
    QSortFilterProxyModel* shown;
    QTreeView* list = nullptr;
    QComboBox* levels = nullptr;
    QLineEdit* words = nullptr;
    QToolButton* follow = nullptr;
};

} // namespace Corvane::Viewer
