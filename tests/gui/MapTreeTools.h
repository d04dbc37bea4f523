#pragma once

#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QtTest>

namespace Corvane::Tests {

/// Writes the tree's announcements into the journal, as "layer NAME" and "map NAME".
inline void record(Map::MapTreeView& tree, QStringList* journal)
{
    QObject::connect(&tree, &Map::MapTreeView::layerActivated, &tree, [=](Map::Layer* layer) {
        *journal << "layer " + (layer ? layer->getDescription() : QString("-"));
    });
    QObject::connect(&tree, &Map::MapTreeView::mapActivated, &tree, [=](Map::MapView* view) {
        *journal << "map " + (view ? view->getDescription() : QString("-"));
    });
}

inline QTreeWidgetItem* rootOf(Map::MapTreeView& tree)
{
    return tree.topLevelItem(0);
}

inline QTreeWidgetItem* itemOf(Map::MapTreeView& tree, const QString& text)
{
    return tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

/// The layers as the tree lists them, from the top; the selected one in brackets.
inline QStringList listed(Map::MapTreeView& tree)
{
    QStringList texts;
    QTreeWidgetItem* const root = rootOf(tree);
    for (int i = 0; root && i < root->childCount(); ++i) {
        const QTreeWidgetItem* item = root->child(i);
        texts << (item->isSelected() ? "[" + item->text(0) + "]" : item->text(0));
    }
    return texts;
}

/// The layers as they lie in the map, from the top.
inline QStringList stacked(Map::MapView& view)
{
    QStringList texts;
    for (Map::Layer* layer : view.getMapCanvas()->getLayers()) {
        texts.prepend(layer->getDescription());
    }
    return texts;
}

inline QPoint middleOf(Map::MapTreeView& tree, const QTreeWidgetItem* item)
{
    return tree.visualItemRect(item).center();
}

inline void clickOn(Map::MapTreeView& tree, const QTreeWidgetItem* item)
{
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(tree, item));
}

inline QAction* actionOf(Map::MapTreeView& tree, const QString& text)
{
    for (QAction* action : tree.findChildren<QAction*>()) {
        if (action->text() == text) {
            return action;
        }
    }
    return nullptr;
}

/// The four steps of a drag of files onto the tree. What came back accepted: "enter", "move",
/// "drop"; a drop comes even where the move was not accepted, as some window systems send it.
inline QStringList dragOnto(Map::MapTreeView& tree, const QMimeData& data)
{
    QStringList accepted;
    QWidget* const target = tree.viewport();
    const QPoint position(10, 10);
    QDragEnterEvent enter(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    accepted << (enter.isAccepted() ? QStringList("enter") : QStringList());
    QDragMoveEvent move(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    move.ignore();
    QApplication::sendEvent(target, &move);
    accepted << (move.isAccepted() ? QStringList("move") : QStringList());
    QDropEvent drop(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
    accepted << (drop.isAccepted() ? QStringList("drop") : QStringList());
    return accepted;
}

} // namespace Corvane::Tests
