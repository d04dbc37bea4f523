#pragma once

#include <QStringList>

#include <memory>
#include <vector>

class QDeadlineTimer;

namespace Corvane::Viewer {

class LayerOpener;

/// Opens several sources side by side for the modes without a window. GUI thread only.
class BatchOpener
{
public:
    explicit BatchOpener(const QStringList& sources);
    ~BatchOpener();

    /// Runs the event loop until every source is open or refused, or time is up.
    /// True where nothing is left under way.
    bool wait(const QDeadlineTimer& deadline);
    /// Whether every source is open or refused.
    bool isFinished() const;

    /// One for each source, in their order.
    const std::vector<std::unique_ptr<LayerOpener>>& getOpeners() const;

private:
    std::vector<std::unique_ptr<LayerOpener>> openers;
};

/// Runs the event loop for a moment, or until something happens; for polling what sends no signal.
void runEventLoopBriefly();

} // namespace Corvane::Viewer
