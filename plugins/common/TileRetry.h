#pragma once

#include <plugins/common/TiledView.h>

#include <QTimer>

#include <functional>

namespace Corvane::Map {

class SourceHealth;
class TileAttempts;

/// Has a view ask again for the tiles that were put off, once they are due and their source is not
/// left alone. On the layer's thread.
class TileRetry
{
public:
    /// view must outlive it. due is called several times a second between start and the time when
    /// nothing is put off any more.
    TileRetry(TiledView* view, const std::function<void()>& due);
    TileRetry(const TileRetry&) = delete;
    TileRetry& operator=(const TileRetry&) = delete;

    /// What is put off by whom; neither is owned. Nothing before, and after stop.
    void follow(TileAttempts* attempts, const SourceHealth* health);
    void stop();
    /// Something was put off.
    void start();
    /// Asks for what is due, where isVisible. False where nothing may be asked now.
    bool look(bool isVisible);
    /// What TiledView::whileWaiting wants to know.
    TiledView::Waiting lookWhileWaiting();

private:
    TiledView* view;
    TileAttempts* attempts = nullptr;
    const SourceHealth* health = nullptr;
    QTimer timer; // runs while something is put off
};

} // namespace Corvane::Map
