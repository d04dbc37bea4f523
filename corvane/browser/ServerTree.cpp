#include <corvane/browser/ServerTree_p.h>

#include <corvane/browser/ServerItems_p.h>
#include <corvane/browser/XmlReading_p.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QDomElement>
#include <QIcon>
#include <QTreeWidget>

#include <memory>
#include <utility>

namespace Corvane::Gui {
namespace {

constexpr int nodesInPiece = 2000; // some milliseconds
constexpr int itemsInPiece = 5000; // the same, of those that are freed

/// Small pieces of memory that were freed are joined when a larger one is asked for: after each of our
/// pieces that takes no time, after all of them a tenth of a second in one go.
void joinFreedMemory()
{
    constexpr int largerThanSmall = 4096; // bytes
    static_cast<void>(QByteArray(largerThanSmall, Qt::Uninitialized));
}

/// Frees a piece of what stands below the item. False once there is no more. Without recursion: folders
/// may stand in each other thousands deep.
bool freeSome(QTreeWidgetItem* top)
{
    QTreeWidgetItem* item = top;
    for (int i = 0; i < itemsInPiece; ++i) {
        while (item->childCount() > 0) {
            item = item->child(item->childCount() - 1);
        }
        if (item == top) {
            return false;
        }
        QTreeWidgetItem* const parent = item->parent();
        delete parent->takeChild(parent->childCount() -
                                 1); // the item; from the end, it is not looked for
        item = parent;
    }
    joinFreedMemory();
    return true;
}

} // namespace

TreeWalk::TreeWalk(QTreeWidgetItem* parent, const QDomNode& node, NewDataset makeDataset)
    : newDataset(std::move(makeDataset))
{
    folders.push_back({parent, {}, {node}});
}

TreeWalk::~TreeWalk()
{
    for (std::size_t i = 0; i < folders.size(); ++i) {
        qDeleteAll(folders[i].items);
        if (i > 0) {
            delete folders[i].item;
        }
    }
}

bool TreeWalk::walkOn()
{
    for (int i = 0; i < nodesInPiece && !folders.empty(); ++i) {
        Folder& folder = folders.back();
        if (folder.open.empty()) {
            closeFolder();
            continue;
        }
        const QDomNode child = folder.open.back().firstChild();
        if (child.isNull()) {
            folder.open.pop_back();
        } else {
            folder.open.back().removeChild(child);
            take(child);
        }
    }
    joinFreedMemory();
    return !folders.empty();
}

// A folder's items are added together, which is much faster than one by one. One without any is not
// listed.
void TreeWalk::closeFolder()
{
    QTreeWidgetItem* const item = folders.back().item;
    item->addChildren(folders.back().items);
    folders.pop_back();
    if (folders.empty()) {
        return;
    }
    if (item->childCount() == 0) {
        delete item;
    } else {
        folders.back().items << item;
    }
}

void TreeWalk::take(QDomNode child)
{
    // Spelled with a capital letter, under which there is no picture: folders go without.
    static const QString folderPicture = QStringLiteral(":/Resources/folder.png");
    Folder& folder = folders.back();
    const QString name = child.nodeName();
    if (name == QLatin1String("folders") || name == QLatin1String("datasets")) {
        folder.open.push_back(child);
    } else if (name == QLatin1String("folder")) {
        const QString title = child.toElement().attribute(QStringLiteral("title"));
        folders.push_back(
            {newItem(title, QLatin1String(folderRole), QIcon(folderPicture)), {}, {child}});
    } else if (name == QLatin1String("dataset")) {
        if (QTreeWidgetItem* const item = newDataset(&child)) {
            folder.items << item;
        }
    }
}

void discardItems(QTreeWidget& tree)
{
    while (QTreeWidgetItem* const taken = tree.takeTopLevelItem(0)) {
        const std::shared_ptr<QTreeWidgetItem> item(taken);
        takeTurns(
            QCoreApplication::instance(), [item] { return freeSome(item.get()); }, [] {});
    }
}

} // namespace Corvane::Gui
