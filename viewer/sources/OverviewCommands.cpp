#include <viewer/sources/OverviewCommands.h>

#include <viewer/frame/Commands.h>
#include <viewer/frame/Tasks.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapNotice.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/ILayerOverviews.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QStringList>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

const char* const askKey = "Viewer/Overviews/Ask";
const char* const neverKey = "Viewer/Overviews/Never";
const char* const openedSignature = "sourceOpened(bool)";
constexpr int mostNeverFiles = 500;
constexpr int watchInterval = 250;     // milliseconds
constexpr int messageDuration = 10000; // milliseconds

QSettings& settings()
{
    return *Application::instance()->getSettings();
}

Map::ILayerOverviews* overviewsOf(Map::Layer* layer)
{
    return qobject_cast<Map::ILayerOverviews*>(layer);
}

bool wantsOverviews(Map::Layer* layer)
{
    Map::ILayerOverviews* const overviews = overviewsOf(layer);
    return overviews && overviews->wantsOverviews();
}

QVector<Map::Layer*> layersOf(MapWindow* window)
{
    return window && window->getView() ? window->getView()->getLayers() : QVector<Map::Layer*>();
}

void neverAskOf(const QString& file)
{
    QStringList files = settings().value(neverKey).toStringList();
    files.removeAll(file);
    files << file;
    settings().setValue(neverKey, QStringList(files.mid(files.size() - mostNeverFiles)));
}

} // namespace

OverviewCommands::OverviewCommands(Workspace* workspace, Tasks* allTasks)
    : QObject(workspace),
      window(workspace),
      tasks(allTasks),
      buildAction(addCommand(window, "actionBuildOverviews", [this] { buildAll(); }))
{
    lookTimer.setSingleShot(true);
    lookTimer.setInterval(0);
    connect(&lookTimer, &QTimer::timeout, this, &OverviewCommands::look);
    buildTimer.setInterval(watchInterval);
    connect(&buildTimer, &QTimer::timeout, this, &OverviewCommands::watchBuildings);
    connect(window, &Workspace::mapWindowAdded, this, &OverviewCommands::follow);
    connect(window, &Workspace::activeMapChanged, this, &OverviewCommands::lookSoon);
    window->installEventFilter(this);
    buildAction->setEnabled(false);
}

void OverviewCommands::follow(MapWindow* added)
{
    connect(added->getView(), &Map::MapView::layerAdded, this, &OverviewCommands::lookSoon);
    connect(added->getView(), &Map::MapView::layerDeleted, this, &OverviewCommands::lookSoon);
    added->installEventFilter(this);
}

void OverviewCommands::lookSoon()
{
    lookTimer.start();
}

/// The active map alone: the others have their turn when they are looked at.
void OverviewCommands::look()
{
    MapWindow* const active = window->getActiveMapWindow();
    const QVector<Map::Layer*> layers = layersOf(active);
    bool anyWants = false;
    for (Map::Layer* layer : layers) {
        if (overviewsOf(layer) && layer->metaObject()->indexOfSignal(openedSignature) >= 0) {
            connect(layer, SIGNAL(sourceOpened(bool)), this, SLOT(lookSoon()),
                    Qt::UniqueConnection);
        }
        anyWants = anyWants || wantsOverviews(layer);
    }
    buildAction->setEnabled(anyWants);
    const auto welcome = std::find_if(layers.begin(), layers.end(),
                                      [this](Map::Layer* layer) { return isWelcome(layer); });
    if (!notice && welcome != layers.end()) {
        offer(active, *welcome);
    }
}

bool OverviewCommands::isWelcome(Map::Layer* layer) const
{
    return !answered.contains(layer->getUid()) && wantsOverviews(layer) &&
           settings().value(askKey, true).toBool() &&
           !settings().value(neverKey).toStringList().contains(layer->getDataSource());
}

void OverviewCommands::offer(MapWindow* mapWindow, Map::Layer* layer)
{
    answered << layer->getUid();
    notice = new MapNotice(
        mapWindow, tr("\"%1\" is large and has no overviews, so showing much of it is slow.")
                       .arg(layer->getDescription()));
    addAnswers(notice, mapWindow, layer);
    connect(layer, &QObject::destroyed, notice.data(), &QObject::deleteLater);
    // queued: it counts as there until it is gone
    connect(notice.data(), &QObject::destroyed, this, &OverviewCommands::lookSoon,
            Qt::QueuedConnection);
}

void OverviewCommands::addAnswers(MapNotice* bar, MapWindow* mapWindow, Map::Layer* layer)
{
    connect(bar->addButton("buildOverviews", tr("&Build Overviews")), &QPushButton::clicked, this,
            [this, bar, mapWindow = QPointer<MapWindow>(mapWindow),
             layer = QPointer<Map::Layer>(layer)] {
                bar->deleteLater();
                if (mapWindow && layer) {
                    build(mapWindow, layer);
                }
            });
    bar->addCloseButton(tr("&Not Now"));
    QMenu* const never = bar->addMenu("neverOverviews", tr("Ne&ver"));
    QAction* const thisFile =
        never->addAction(tr("Never for &This File"), bar, [bar, file = layer->getDataSource()] {
            neverAskOf(file);
            bar->deleteLater();
        });
    thisFile->setObjectName("neverForThisFile");
    QAction* const ever = never->addAction(tr("Never &Ask"), bar, [bar] {
        settings().setValue(askKey, false);
        bar->deleteLater();
    });
    ever->setObjectName("neverAsk");
}

void OverviewCommands::buildAll()
{
    MapWindow* const active = window->getActiveMapWindow();
    for (Map::Layer* layer : layersOf(active)) {
        if (wantsOverviews(layer)) {
            build(active, layer);
        }
    }
    if (notice) {
        notice->deleteLater();
    }
}

void OverviewCommands::build(MapWindow* mapWindow, Map::Layer* layer)
{
    Map::ILayerOverviews* const overviews = overviewsOf(layer);
    if (!overviews->buildOverviews()) {
        return;
    }
    answered << layer->getUid();
    Task* const task = tasks->begin(tr("Overviews of %1").arg(layer->getDescription()));
    connect(task, &Task::cancelled, this, [this, layer = QPointer<Map::Layer>(layer)] {
        if (layer) {
            overviewsOf(layer)->cancelOverviews();
        }
        watchBuildings();
    });
    buildings.append({layer, mapWindow, task, layer->getDescription()});
    buildTimer.start();
    lookSoon();
}

void OverviewCommands::watchBuildings()
{
    const auto isOver = [this](const Building& building) { return watchBuilding(building); };
    buildings.erase(std::remove_if(buildings.begin(), buildings.end(), isOver), buildings.end());
    if (buildings.isEmpty()) {
        buildTimer.stop();
    }
    if (question && buildings.isEmpty()) {
        question->accept(); // there is nothing left to lose
    }
}

bool OverviewCommands::watchBuilding(const Building& building)
{
    using State = Map::OverviewProgress::State;
    const Map::OverviewProgress progress = building.layer
                                               ? overviewsOf(building.layer)->getOverviewProgress()
                                               : Map::OverviewProgress();
    if (progress.state == State::Building) {
        building.task->setPercent(progress.percent);
        return false;
    }
    building.task->end();
    if (progress.state == State::Done) {
        window->statusBar()->showMessage(
            tr("The overviews of %1 are in %2.").arg(building.name, progress.folder),
            messageDuration);
    } else if (progress.state == State::Failed && building.window) {
        tellFailure(
            building.window,
            tr("The overviews of \"%1\" cannot be built: %2.").arg(building.name, progress.reason));
    }
    lookSoon();
    return true;
}

void OverviewCommands::tellFailure(MapWindow* mapWindow, const QString& text)
{
    auto* const bar = new MapNotice(mapWindow, text);
    bar->addCloseButton(tr("&Close"));
}

bool OverviewCommands::isBuildingIn(const QObject* closing) const
{
    return std::any_of(buildings.begin(), buildings.end(), [this, closing](const Building& one) {
        return one.layer && (closing == window || closing == one.window);
    });
}

bool OverviewCommands::eventFilter(QObject* watched, QEvent* event)
{
    const bool agreed = mayClose && (mayClose == watched || mayClose == window);
    if (event->type() == QEvent::Close && !agreed && isBuildingIn(watched)) {
        event->ignore();
        ask(watched);
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void OverviewCommands::ask(QObject* closing)
{
    if (question) {
        question->raise();
        return;
    }
    question = new QMessageBox(QMessageBox::Question, tr("Overviews"),
                               tr("Overviews are still being built. Closing gives them up."),
                               QMessageBox::NoButton, window);
    question->setObjectName("overviewQuestion");
    question->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton* const giveUp =
        question->addButton(tr("&Give Up and Close"), QMessageBox::AcceptRole);
    giveUp->setObjectName("giveUp");
    QPushButton* const keep = question->addButton(tr("&Keep Building"), QMessageBox::RejectRole);
    keep->setObjectName("keepBuilding");
    question->setDefaultButton(keep);
    question->setEscapeButton(keep);
    connect(question.data(), &QMessageBox::buttonClicked, this,
            [this, giveUp, closing = QPointer<QObject>(closing)](QAbstractButton* button) {
                if (button == giveUp && closing) {
                    mayClose = closing;
                    QMetaObject::invokeMethod(closing, "close", Qt::QueuedConnection);
                }
            });
    question->open();
}

} // namespace Corvane::Viewer
