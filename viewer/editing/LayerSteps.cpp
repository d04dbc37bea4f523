#include <viewer/editing/LayerSteps.h>

#include <corvane/map/Layer.h>

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace Corvane::Viewer {
namespace {

constexpr int deletionId = 1;

QString nameOf(const LayerStack& stack, int key)
{
    Map::Layer* const layer = stack.layerOf(key);
    return layer ? layer->getDescription() : QString();
}

} // namespace

LayerStep::LayerStep(LayerStack* stack) : layers(stack) {}

void LayerStep::redo()
{
    if (!std::exchange(isDone, false)) {
        doAgain();
    }
}

MoveLayerStep::MoveLayerStep(LayerStack* stack, int movedKey, const QVector<int>& orderBefore,
                             const QVector<int>& orderAfter)
    : LayerStep(stack),
      key(movedKey),
      before(orderBefore),
      after(orderAfter)
{
    setText(
        QCoreApplication::translate("LayerSteps", "Move Layer \"%1\"").arg(nameOf(*stack, key)));
}

void MoveLayerStep::undo()
{
    layers->place(key, before);
}

void MoveLayerStep::doAgain()
{
    layers->place(key, after);
}

ShowLayerStep::ShowLayerStep(LayerStack* stack, int shownKey, bool isVisible)
    : LayerStep(stack),
      key(shownKey),
      visible(isVisible)
{
    const QString text = visible ? QCoreApplication::translate("LayerSteps", "Show Layer \"%1\"")
                                 : QCoreApplication::translate("LayerSteps", "Hide Layer \"%1\"");
    setText(text.arg(nameOf(*stack, key)));
}

void ShowLayerStep::undo()
{
    layers->show(key, !visible);
}

void ShowLayerStep::doAgain()
{
    layers->show(key, visible);
}

DeleteLayersStep::DeleteLayersStep(LayerStack* stack, const KeptLayer& layer,
                                   const QVector<int>& orderBefore, int turnOfLoop,
                                   const Failure& onFailure)
    : LayerStep(stack),
      kept{layer},
      before(orderBefore),
      turn(turnOfLoop),
      failure(onFailure)
{
    name();
}

void DeleteLayersStep::name()
{
    setText(kept.size() == 1 ? QCoreApplication::translate("LayerSteps", "Delete Layer \"%1\"")
                                   .arg(kept.first().name)
                             : QCoreApplication::translate("LayerSteps", "Delete %n Layer(s)",
                                                           nullptr, kept.size()));
}

int DeleteLayersStep::id() const
{
    return deletionId;
}

bool DeleteLayersStep::mergeWith(const QUndoCommand* other)
{
    const auto& next = static_cast<const DeleteLayersStep&>(*other);
    if (next.turn != turn) {
        return false;
    }
    kept << next.kept;
    std::sort(kept.begin(), kept.end(), [this](const KeptLayer& one, const KeptLayer& another) {
        return before.indexOf(one.key) < before.indexOf(another.key);
    });
    name();
    return true;
}

/// The lowest first: each finds its neighbours below in place.
void DeleteLayersStep::undo()
{
    for (const KeptLayer& layer : qAsConst(kept)) {
        QString reason;
        if (!layers->bringBack(layer, before, &reason)) {
            failure(layer.name, reason);
        }
    }
}

void DeleteLayersStep::doAgain()
{
    for (KeptLayer& layer : kept) {
        layers->remove(layer.key, &layer); // as it is now
    }
}

} // namespace Corvane::Viewer
