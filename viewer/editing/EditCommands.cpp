#include <viewer/editing/EditCommands.h>

#include <viewer/editing/LayerHistory.h>
#include <viewer/frame/Commands.h>
#include <viewer/frame/Panels.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/output/MapPicture.h>

#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QStatusBar>
#include <QUndoGroup>
#include <QUndoStack>

namespace Corvane::Viewer {
namespace {

constexpr int messageTime = 4000; // milliseconds

/// A layer may be called "Rivers & lakes".
QString escaped(QString text)
{
    return text.replace('&', "&&");
}

/// Whether the widget copies something else than the map.
bool copiesItself(QObject* widget)
{
    const auto* const label = qobject_cast<QLabel*>(widget);
    return qobject_cast<QAbstractItemView*>(widget) || (label && label->hasSelectedText());
}

} // namespace

EditCommands::EditCommands(Workspace* workspace)
    : QObject(workspace),
      window(workspace),
      group(new QUndoGroup(this))
{
    createCommands();
    followTree();
    connect(window, &Workspace::mapWindowAdded, this, &EditCommands::follow);
    connect(window, &Workspace::activeMapChanged, this, &EditCommands::setMapWindow);
    qApp->installEventFilter(this); // a list may be in any panel or dialog
    setMapWindow(nullptr);
}

void EditCommands::createCommands()
{
    undo = addCommand(window, "actionUndo", [this] { group->undo(); });
    redo = addCommand(window, "actionRedo", [this] { group->redo(); });
    redo->setShortcuts({QKeySequence("Ctrl+Shift+Z"), QKeySequence("Ctrl+Y")});
    copy = addCommand(window, "actionCopyMap", [this] { copyMap(); });
    undo->setEnabled(false);
    redo->setEnabled(false);
    connect(group, &QUndoGroup::canUndoChanged, undo, &QAction::setEnabled);
    connect(group, &QUndoGroup::canRedoChanged, redo, &QAction::setEnabled);
    connect(group, &QUndoGroup::undoTextChanged, undo, [this](const QString& text) {
        undo->setText(text.isEmpty() ? tr("&Undo") : tr("&Undo %1").arg(escaped(text)));
    });
    connect(group, &QUndoGroup::redoTextChanged, redo, [this](const QString& text) {
        redo->setText(text.isEmpty() ? tr("&Redo") : tr("&Redo %1").arg(escaped(text)));
    });

    Map::MapTreeView* const tree = window->getPanels()->getTree();
    deleteLayer = addCommand(window, "actionDeleteLayer", [tree] { tree->deleteLayer(); });
    deleteLayer->setShortcutContext(Qt::WidgetShortcut); // the key is for the tree alone
    tree->addAction(deleteLayer);
}

/// The tree tells of the layer that the user works on, and is where layers are switched on and off.
void EditCommands::followTree()
{
    Map::MapTreeView* const tree = window->getPanels()->getTree();
    const auto note = [this] {
        if (LayerHistory* const steps = history()) {
            steps->noteVisibility();
        }
    };
    connect(tree, &QTreeWidget::itemPressed, this, note);
    connect(tree, &Map::MapTreeView::layerActivated, this, [this, note](Map::Layer* layer) {
        deleteLayer->setEnabled(layer != nullptr);
        note();
    });
    connect(tree, &QTreeWidget::itemChanged, this, [this](const QTreeWidgetItem* item) {
        if (LayerHistory* const steps = history()) {
            steps->recordVisibility(item->data(0, Qt::UserRole).toUuid());
        }
    });
}

void EditCommands::follow(MapWindow* added)
{
    auto* const steps = new LayerHistory(added);
    group->addStack(steps->getSteps());
    connect(steps, &LayerHistory::failed, added, &MapWindow::openFailed);
}

void EditCommands::setMapWindow(MapWindow* newMap)
{
    map = newMap;
    const LayerHistory* const steps = history();
    group->setActiveStack(steps ? steps->getSteps() : nullptr);
    copy->setEnabled(map && map->getView());
    if (!map) {
        deleteLayer->setEnabled(false);
    }
}

LayerHistory* EditCommands::history() const
{
    return map ? map->findChild<LayerHistory*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

/// In the pixels of the screen, not the larger ones that a dense screen's widgets are measured in.
void EditCommands::copyMap()
{
    Map::MapView* const view = map ? map->getView() : nullptr;
    if (!view) {
        return;
    }
    QImage picture = paintMapPicture(*view, view->devicePixelRatioF());
    if (picture.isNull()) {
        window->statusBar()->showMessage(tr("No memory for a picture of the map."), messageTime);
        return;
    }
    picture.setDevicePixelRatio(1.0); // the receiver shows pixel for pixel
    QGuiApplication::clipboard()->setImage(picture);
    window->statusBar()->showMessage(tr("The map is on the clipboard: %1 x %2 pixels.")
                                         .arg(picture.width())
                                         .arg(picture.height()),
                                     messageTime);
}

bool EditCommands::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && copiesItself(watched) &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
    {
        event->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Corvane::Viewer
