#include <pluginchecker/CheckStep.h>

#include <algorithm>

namespace Corvane::PluginChecker {

const std::vector<CheckStep>& checkSteps()
{
    static const std::vector<CheckStep> steps = {
        {"load", "the file is a plugin with the interfaces that make layers", false, checkLoading},
        {"information", "names, version and filters", false, checkInformation},
        {"editor", "panels, pages and actions", false, checkEditor},
        {"creation", "layers come and go, with a client and without", false, checkCreation},
        {"properties", "properties keep what is written, and bear nonsense", false,
         checkProperties},
        {"document", "what a layer writes into a map it reads back", false, checkDocument},
        {"views", "all sizes and extents, sensible or not", false, checkViews},
        {"painting", "the same picture twice, and the painter as it was", true, checkPainting},
        {"completeness", "without Progressive everything is there at once", true,
         checkCompleteness},
        {"cancelling", "the last of many views is the one that counts", true, checkCancelling},
        {"threads", "no event loop and no waiting for the pool inside of calls", true,
         checkThreads},
        {"responsiveness", "no call blocks the window", true, checkResponsiveness},
        {"deletion", "layers may be deleted with work in flight", true, checkDeletion},
        {"slow-source", "layers may be deleted while their source does not answer", true,
         checkSlowSource},
        {"damaged-data", "damaged sources are refused or shown, and never crash", true,
         checkDamage},
        {"leftovers", "nothing stays behind a deleted layer", true, checkLeftovers},
        {"unloading", "the plugin can go right behind its layers", false, checkUnloading},
    };
    return steps;
}

const CheckStep* findStep(const QString& name)
{
    const auto& steps = checkSteps();
    const auto found = std::find_if(steps.begin(), steps.end(), [&name](const CheckStep& step) {
        return name == QLatin1String(step.name);
    });
    return found == steps.end() ? nullptr : &*found;
}

} // namespace Corvane::PluginChecker
