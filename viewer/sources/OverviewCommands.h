#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTimer>
#include <QUuid>

class QAction;
class QMessageBox;

namespace Corvane::Map {
class ILayerOverviews;
class Layer;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class MapNotice;
class MapWindow;
class Task;
class Tasks;
class Workspace;

/// Offers to build overviews for large images that lack them, shows how far that is, and asks before
/// something is closed that would give it up. "Viewer/Overviews/Ask" false offers nothing, and
/// "Viewer/Overviews/Never" lists the files that are left alone. GUI thread only.
class OverviewCommands : public QObject
{
    Q_OBJECT
public:
    OverviewCommands(Workspace* window, Tasks* tasks);

protected:
    /// Of the program's window and its map windows: whether they may close.
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void lookSoon();

private:
    struct Building
    {
        QPointer<Map::Layer> layer;
        QPointer<MapWindow> window;
        QPointer<Task> task;
        QString name;
    };

    void follow(MapWindow* window);
    void look();
    void offer(MapWindow* window, Map::Layer* layer);
    void addAnswers(MapNotice* notice, MapWindow* window, Map::Layer* layer);
    bool isWelcome(Map::Layer* layer) const;
    void build(MapWindow* window, Map::Layer* layer);
    void buildAll();
    void watchBuildings();
    /// Whether it is over.
    bool watchBuilding(const Building& building);
    void tellFailure(MapWindow* window, const QString& text);
    bool isBuildingIn(const QObject* closing) const;
    void ask(QObject* closing);

    Workspace* window; // not owned
    Tasks* tasks;      // not owned
    QAction* buildAction;
    QTimer lookTimer;  // looks once, after whatever happens now
    QTimer buildTimer; // runs while something is built
    QList<Building> buildings;
    QSet<QUuid> answered; // layers that were offered once
    QPointer<MapNotice> notice;
    QPointer<QMessageBox> question;
    QPointer<QObject> mayClose; // the user has agreed
};

} // namespace Corvane::Viewer
