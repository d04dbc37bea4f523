#pragma once

#include <QDomNode>
#include <QList>

#include <functional>
#include <vector>

class QTreeWidget;
class QTreeWidgetItem;

namespace Corvane::Gui {

/// Makes the items of a server's folder, piece by piece, so that a large tree does not hold up the
/// program. GUI thread.
class TreeWalk
{
public:
    /// Makes a dataset's item, which is taken over; null where it is not to be listed.
    using NewDataset = std::function<QTreeWidgetItem*(QDomNode* dataset)>;

    /// The children of node become items below parent. The node is taken apart on the way: to free
    /// it as a whole would take as long. parent is not owned and is in no tree yet.
    TreeWalk(QTreeWidgetItem* parent, const QDomNode& node, NewDataset newDataset);
    /// Frees what is not below the parent yet.
    ~TreeWalk();
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;

    /// Takes a piece. False once there is no more.
    bool walkOn();

private:
    struct Folder
    {
        QTreeWidgetItem* item; // not in its parent yet; the first one is the parent of all
        QList<QTreeWidgetItem*> items;
        std::vector<QDomNode> open; // the folder, and the wrappers inside that are open
    };

    void closeFolder();
    void take(QDomNode child);

    NewDataset newDataset;
    std::vector<Folder> folders; // each in the one before
};

/// Empties the tree and frees what it held piece by piece, between the events to come.
void discardItems(QTreeWidget& tree);

} // namespace Corvane::Gui
