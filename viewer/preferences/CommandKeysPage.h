#pragma once

#include <QHash>
#include <QKeySequence>
#include <QWidget>

class QAction;
class QKeySequenceEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace Corvane::Viewer {

class CommandKeys;

/// The page "Shortcuts" of the preferences: a list of the commands to search in, and a field for the
/// key of the chosen one. A key that another command has is taken from that one, which the page says
/// before. GUI thread only.
class CommandKeysPage : public QWidget
{
    Q_OBJECT
public:
    /// keys outlives the page.
    explicit CommandKeysPage(CommandKeys* keys, QWidget* parent = nullptr);

public slots:
    void apply();

private:
    void createList();
    QWidget* createEditor();
    void fill();
    void filter(const QString& words);
    void showChosen();
    void takeKey();
    void setKeys(QAction* command, const QList<QKeySequence>& newKeys);
    void showKeys(QAction* command);
    QAction* chosen() const;
    QAction* ownerOf(const QKeySequence& key) const;

    CommandKeys* keys; // not owned
    QHash<QAction*, QList<QKeySequence>> wanted;
    QHash<QAction*, QTreeWidgetItem*> rows;
    QLineEdit* search = nullptr;
    QTreeWidget* list = nullptr;
    QKeySequenceEdit* field = nullptr;
    QPushButton* assign = nullptr;
    QPushButton* clear = nullptr;
    QPushButton* reset = nullptr;
    QLabel* notice = nullptr;
};

} // namespace Corvane::Viewer
