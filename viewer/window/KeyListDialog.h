#pragma once

#include <QDialog>

class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace Corvane::Viewer {

/// All keys of the program: those of the commands as they are now, and those of the map itself.
/// Searched by command or key; may stay open beside the work. GUI thread only.
class KeyListDialog : public QDialog
{
    Q_OBJECT
public:
    /// commandOwner holds the commands.
    KeyListDialog(const QWidget* commandOwner, QWidget* parent);

private:
    void addCommands(const QWidget& owner);
    void addMapKeys();
    QTreeWidgetItem* addGroup(const QString& name);
    void search(const QString& text);

    QLineEdit* words;
    QTreeWidget* list;
};

} // namespace Corvane::Viewer
