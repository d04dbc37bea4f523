#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <functional>

namespace Corvane::Map {

/// Asks for a repaint now and then while tiles arrive, and at once when the last has come: painting
/// for each of them would take the processor from those who make the tiles. On the layer's thread.
class RefreshPacer
{
public:
    /// refresh asks for a repaint.
    explicit RefreshPacer(std::function<void()> refresh);
    RefreshPacer(const RefreshPacer&) = delete;
    RefreshPacer& operator=(const RefreshPacer&) = delete;

    /// There are new tiles; complete, if they were the last that the view lacked.
    void tilesArrived(bool complete);

private:
    void refreshNow();

    std::function<void()> refresh;
    QElapsedTimer sinceLast;
    QTimer timer;
};

} // namespace Corvane::Map
