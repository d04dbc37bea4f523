#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

class QAction;

namespace Corvane::Viewer {

class MapWindow;
class OpenFailures;
class Workspace;

/// Opens what the user names, wherever that is named: files, folders of images, addresses, maps.
/// Also keeps the choice whether sources get windows of their own or become layers of the active map,
/// and its commands. GUI thread only.
class FileOpening : public QObject
{
    Q_OBJECT
public:
    enum Place
    {
        NewWindows,
        ActiveMap
    };

    /// The window is the parent.
    explicit FileOpening(Workspace* window);

    /// Where sources go that are opened without a place of their own: the user's choice.
    static Place usualPlace();
    static Place otherPlace(Place place);

    /// Opens the sources in this place. Returns before they are open; folders are looked into on
    /// another thread.
    void open(const QStringList& sources, Place place);
    /// The same as layers of a map.
    void addTo(MapWindow* map, const QStringList& sources);

private:
    /// Where the sources of one request go.
    struct Target
    {
        Place place = NewWindows;
        QPointer<MapWindow> map;
        bool hasMap = false; ///< the map was named; sources come to nothing without it
    };

    void createCommands();
    void setUsualPlace(Place place);
    void chooseFolder();
    void chooseAddress();
    void take(const QStringList& sources, const Target& target);
    void lookInto(const QString& folder, const Target& target);
    void askWhetherAll(const QString& folder, const QStringList& sources, const Target& target);
    void openNow(const QStringList& sources, const Target& target);
    void fetchMap(const QString& address);

    Workspace* window; // the parent
    OpenFailures* failures;
    QAction* inWindows = nullptr;
    QAction* inMap = nullptr;
};

} // namespace Corvane::Viewer
