#pragma once

#include <viewer/editing/LayerStack.h>

#include <QUndoCommand>
#include <QVector>

#include <functional>

namespace Corvane::Viewer {

/// Something that was done to the layers of a map and can be taken back. It has been done already
/// when it comes to the stack of steps, whose first redo does nothing. GUI thread only.
class LayerStep : public QUndoCommand
{
public:
    explicit LayerStep(LayerStack* stack);

    void redo() final;

protected:
    virtual void doAgain() = 0;

    LayerStack* const layers; // not owned

private:
    bool isDone = true;
};

/// A layer was given another place.
class MoveLayerStep final : public LayerStep
{
public:
    MoveLayerStep(LayerStack* stack, int movedKey, const QVector<int>& orderBefore,
                  const QVector<int>& orderAfter);

    void undo() override;

protected:
    void doAgain() override;

private:
    const int key;
    const QVector<int> before;
    const QVector<int> after;
};

/// A layer was switched on or off.
class ShowLayerStep final : public LayerStep
{
public:
    ShowLayerStep(LayerStack* stack, int shownKey, bool isVisible);

    void undo() override;

protected:
    void doAgain() override;

private:
    const int key;
    const bool visible;
};

/// Layers were deleted. Those of the same turn of the event loop are one step.
class DeleteLayersStep final : public LayerStep
{
public:
    using Failure = std::function<void(const QString& layer, const QString& reason)>;

    /// failure is told what does not come back.
    DeleteLayersStep(LayerStack* stack, const KeptLayer& layer, const QVector<int>& orderBefore,
                     int turnOfLoop, const Failure& onFailure);

    void undo() override;
    int id() const override;
    bool mergeWith(const QUndoCommand* other) override;

protected:
    void doAgain() override;

private:
    void name();

    QVector<KeptLayer> kept; // the lowest first
    const QVector<int> before;
    const int turn;
    const Failure failure;
};

} // namespace Corvane::Viewer
