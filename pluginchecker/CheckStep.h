#pragma once

#include <QString>

#include <vector>

namespace Corvane::PluginChecker {

class PluginFile;
class StepRecord;

/// What a step works with.
struct StepContext
{
    PluginFile& plugin; ///< loaded, save in the step that loads it
    QString source;     ///< empty where none was given
    QString folder;     ///< for the step's own files; empty at the start
    StepRecord& record;
};

/// One thing that is asked of a plugin. It runs on the GUI thread of a process of its own and may
/// wait for ever: the process that started it sets the time limit.
struct CheckStep
{
    const char* name;
    const char* meaning;
    bool needsSource;
    void (*run)(StepContext& context);
};

/// In the order in which they are taken; the first loads the plugin.
const std::vector<CheckStep>& checkSteps();
/// Null where there is none of this name.
const CheckStep* findStep(const QString& name);

// PluginSteps.cpp
void checkLoading(StepContext& context);
void checkInformation(StepContext& context);
void checkEditor(StepContext& context);
void checkUnloading(StepContext& context);
// LayerSteps.cpp
void checkCreation(StepContext& context);
void checkProperties(StepContext& context);
// DocumentStep.cpp
void checkDocument(StepContext& context);
// ViewSteps.cpp
void checkViews(StepContext& context);
void checkPainting(StepContext& context);
void checkCompleteness(StepContext& context);
void checkCancelling(StepContext& context);
// ThreadSteps.cpp
void checkThreads(StepContext& context);
void checkResponsiveness(StepContext& context);
// DeletionSteps.cpp
void checkDeletion(StepContext& context);
void checkSlowSource(StepContext& context);
void checkLeftovers(StepContext& context);
// DamageStep.cpp
void checkDamage(StepContext& context);

} // namespace Corvane::PluginChecker
