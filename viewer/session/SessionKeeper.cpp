#include <viewer/session/SessionKeeper.h>

#include <viewer/frame/NoticeBar.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/LayerOpener.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/session/SessionFolder.h>

#include <corvane/map/MapView.h>

#include <QCoreApplication>
#include <QDomDocument>
#include <QEvent>
#include <QMdiArea>
#include <QThreadPool>
#include <QUuid>

#include <algorithm>
#include <utility>

namespace Corvane::Viewer {
namespace {

constexpr int usualDelay = 1000; // milliseconds
// Plugins change layers without a word.
constexpr int lookingInterval = 20000; // milliseconds

/// Runs the work on the session thread, and then what is to follow here, unless the keeper is gone.
template <typename Work, typename Then>
void doAside(SessionKeeper* keeper, Work work, Then then)
{
    const QPointer<SessionKeeper> self(keeper);
    sessionThread().start([self, work, then] {
        const auto result = work();
        QMetaObject::invokeMethod(
            qApp,
            [self, then, result] {
                if (self) {
                    then(result);
                }
            },
            Qt::QueuedConnection);
    });
}

} // namespace

SessionKeeper::SessionKeeper(Workspace* newWindow, const QString& newRoot)
    : QObject(newWindow),
      window(newWindow),
      root(newRoot),
      folder(std::make_shared<SessionFolder>(newRoot + '/' +
                                             QUuid::createUuid().toString(QUuid::WithoutBraces)))
{
    delay.setSingleShot(true);
    delay.setInterval(usualDelay);
    looking.setInterval(lookingInterval);
    connect(&delay, &QTimer::timeout, this, &SessionKeeper::write);
    connect(&looking, &QTimer::timeout, this, &SessionKeeper::lookAtAll);
}

SessionKeeper::~SessionKeeper() = default;

void SessionKeeper::setDelay(int milliseconds)
{
    delay.setInterval(milliseconds);
}

void SessionKeeper::start()
{
    connect(window, &Workspace::mapWindowAdded, this, &SessionKeeper::follow);
    connect(window, &Workspace::activeMapChanged, this, [this] { delay.start(); });
    window->installEventFilter(this);
    for (MapWindow* map : window->getMapWindows()) {
        follow(map);
    }
    looking.start();

    using Left = std::pair<std::vector<std::shared_ptr<SessionFolder>>, QList<Session>>;
    doAside(
        this,
        [place = root] {
            Left left;
            left.first = SessionFolder::takeLeft(place);
            for (const auto& session : left.first) {
                left.second << session->read();
            }
            return left;
        },
        [this](const Left& left) { offer(left.first, left.second); });
}

void SessionKeeper::end()
{
    ended = true;
    delay.stop();
    looking.stop();
    removeLater({folder});
}

void SessionKeeper::removeLater(const std::vector<std::shared_ptr<SessionFolder>>& folders) const
{
    sessionThread().start([folders] {
        for (const auto& done : folders) {
            done->remove();
        }
    });
}

void SessionKeeper::follow(MapWindow* map)
{
    followers[map].number = ++count;
    map->installEventFilter(this);
    const auto onChange = [this, map] { changed(map); };
    connect(map->getDocument(), &MapDocument::changed, this, onChange);
    connect(map->getView(), &Map::MapView::mapExtentsChanged, this, onChange);
    connect(map, &MapWindow::layerOpened, this, onChange);
    connect(map, &QObject::destroyed, this, [this, map] {
        followers.remove(map);
        restoring.remove(map);
        changed(nullptr);
    });
    changed(map);
}

bool SessionKeeper::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowStateChange:
        changed(watched == window ? nullptr : static_cast<MapWindow*>(watched));
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

/// Something of the map, or without one of the program's window. The first change counts for the
/// delay: a map that is moved all the time is written as well.
void SessionKeeper::changed(MapWindow* map)
{
    const auto follower = followers.find(map);
    if (follower != followers.end()) {
        follower->dirty = true;
    }
    if (!delay.isActive() && !ended) {
        delay.start();
    }
}

void SessionKeeper::lookAtAll()
{
    for (Follower& follower : followers) {
        follower.dirty = true;
    }
    write();
}

SessionMap SessionKeeper::stateOf(MapWindow* map) const
{
    SessionMap state;
    MapDocument* const document = map->getDocument();
    state.name = map->getName();
    state.document = document->isLoading() ? document->getLoadingName() : document->getFileName();
    state.changed = document->isChanged();
    state.missing = document->getMissingCount();
    for (const LayerOpener* opener : map->findChildren<LayerOpener*>()) {
        if (!opener->isFinished()) {
            state.opening << opener->getSource();
        }
    }
    return state;
}

void SessionKeeper::write()
{
    if (ended) {
        return;
    }
    if (writing) {
        again = true;
        return;
    }
    Session session;
    std::vector<SessionFolder::MapText> texts;
    bool complete = true;
    for (MapWindow* map : window->getMapWindows()) {
        const auto follower = followers.find(map);
        if (follower == followers.end() || !map->getView()) {
            continue;
        }
        if (restoring.contains(map) && map->isOpening()) {
            complete = false;
            continue;
        }
        restoring.remove(map);
        SessionFolder::MapText text;
        text.window = follower->number;
        if (follower->dirty) {
            follower->state = stateOf(map);
            if (!map->getDocument()->isLoading()) {
                text.map.reset(map->getView()->saveMapXML());
            }
            follower->dirty = false;
        }
        SessionMap state = follower->state;
        state.maximized = map->isMaximized();
        state.minimized = map->isMinimized();
        state.geometry =
            state.maximized || state.minimized ? map->normalGeometry() : map->geometry();
        state.active = map == window->getActiveMapWindow();
        session.maps << state;
        texts.push_back(text);
    }
    session.windowGeometry = window->saveGeometry();
    writing = true;
    doAside(
        this,
        [place = folder, session, texts] {
            const bool nothing = session.maps.isEmpty() && !place->isTaken();
            return nothing || place->write(session, texts);
        },
        [this, complete](bool ok) { onWritten(ok, complete); });
}

void SessionKeeper::onWritten(bool ok, bool complete)
{
    writing = false;
    if (ok && complete && !restored.empty()) {
        removeLater(std::exchange(restored, {}));
    }
    if (std::exchange(again, false) && !delay.isActive()) {
        delay.start();
    }
    emit written(ok);
}

void SessionKeeper::offer(const std::vector<std::shared_ptr<SessionFolder>>& left,
                          const QList<Session>& sessions)
{
    int maps = 0;
    for (const Session& session : sessions) {
        maps += session.maps.size();
    }
    if (maps == 0) {
        return;
    }
    const auto bar = new NoticeBar(
        window, "sessionNotice",
        tr("The program did not end in order. %n map(s) can be restored.", nullptr, maps));
    bar->offer("restoreSession", tr("&Restore"), [this, left, sessions] {
        restored.insert(restored.end(), left.begin(), left.end());
        for (const Session& session : sessions) {
            restore(session);
        }
    });
    bar->offer("discardSession", tr("&Discard"), [this, left] { removeLater(left); });
}

void SessionKeeper::restore(const Session& session)
{
    if (window->getMapWindows().isEmpty()) {
        window->restoreGeometry(session.windowGeometry);
    }
    for (const SessionMap& state : session.maps) {
        restoreMap(state);
    }
    changed(nullptr);
}

void SessionKeeper::restoreMap(const SessionMap& state)
{
    if (state.mapFile.isEmpty() && !state.document.isEmpty()) {
        window->openFiles({state.document}); // it was being read
        return;
    }
    MapWindow* const map = window->addMapWindow();
    if (state.maximized) {
        map->showMaximized();
    } else {
        map->showNormal();
        map->setGeometry(state.geometry);
    }
    if (state.minimized) {
        map->showMinimized();
    }
    if (!state.mapFile.isEmpty()) {
        restoring.insert(map);
        map->restoreDocument(state.mapFile,
                             {state.name, state.document, state.changed, state.missing});
    }
    for (const QString& source : state.opening) {
        map->open(source);
    }
    if (state.active) {
        QTimer::singleShot(0, map, [this, map] { window->getMdiArea()->setActiveSubWindow(map); });
    }
}

} // namespace Corvane::Viewer
