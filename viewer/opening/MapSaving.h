#pragma once

#include <QObject>
#include <QPointer>
#include <QSet>

#include <functional>

class QAction;
class QMessageBox;

namespace Corvane::Viewer {

class MapWindow;
class Workspace;

/// Saves maps: the actions, the dialogs, and the questions before something is lost. All dialogs
/// are windows of the map's own and wait for nobody. GUI thread only.
class MapSaving : public QObject
{
    Q_OBJECT
public:
    /// workspace owns this and the actions.
    explicit MapSaving(Workspace* workspace);

    /// The window that the actions work on; null for none.
    void setMapWindow(MapWindow* newWindow);

    /// Whether the window may be closed now. If not, the user is asked what is to become of the
    /// changes, and then is called unless the answer keeps the window.
    bool mayClose(MapWindow* map, const std::function<void()>& then);
    /// Forgets whose changes the user gave up: the windows stay.
    void keepChanges();

signals:
    /// The map is in this file now.
    void saved(const QString& fileName);

private:
    using Next = std::function<void()>;

    /// Whether the map is being read, and saving comes later: half a document would replace the whole.
    bool waitsForReading(MapWindow* map, const Next& saving);
    void save(MapWindow* map, const Next& then);
    void saveAs(MapWindow* map, const Next& then);
    bool isOpenElsewhere(const MapWindow* map, const QString& fileName) const;
    void write(MapWindow* map, const QString& fileName, const Next& then);
    void askAboutChanges(MapWindow* map, const Next& then);
    void askAboutMissingLayers(MapWindow* map, const Next& then);
    void showFailure(MapWindow* map, const QString& text);
    QMessageBox* makeBox(MapWindow* map, const QString& name, const QString& text) const;

    Workspace* workspace; // not owned
    QAction* saveAction;
    QAction* saveAsAction;
    QPointer<MapWindow> window;
    QSet<MapWindow*> givenUp; // whose changes need not be saved
};

} // namespace Corvane::Viewer
