#pragma once

#include <QMap>
#include <QMdiSubWindow>
#include <QPointer>

#include <functional>
#include <memory>

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class LateLayers;
class LayerOpener;
class MapDocument;
class MapDocumentLoader;
class PointerTracker;
struct KeptMap;

/// One map of the workspace: a sub window around a map view, which can fill the screen instead.
/// Deletes itself when it is closed, and with it what is still being opened. GUI thread only.
class MapWindow : public QMdiSubWindow
{
    Q_OBJECT
public:
    explicit MapWindow(QWidget* parent = nullptr);
    ~MapWindow() override;

    /// The view, also while it fills the screen; null once its full-screen window was closed.
    Map::MapView* getView() const;
    /// Tells where the pointer is; lives as long as the view.
    PointerTracker* getTracker() const;

    /// Where the map comes from and was saved to; never null.
    MapDocument* getDocument() const;
    /// What the map is called: its file, or the first source; never empty.
    QString getName() const;
    /// Over what a dialog about the map stands.
    QWidget* getDialogParent() const;

    /// Opens a source as the top layer; several lie in the order of the calls, whichever opens first.
    /// The first one gives the window its title.
    void open(const QString& source);
    /// Opens a map document; XML that is none opens as a layer. The window should be new.
    void openDocument(const QString& source);
    /// Opens a map that was kept aside, from a file that is not its own. The window should be new.
    void restoreDocument(const QString& keptFile, const KeptMap& map);
    /// Shows what the other window shows, in layers of its own. The window should be new; the other
    /// one must have a view.
    void openCopyOf(const MapWindow& other, const QString& copyName);
    /// Whether a source is still being opened.
    bool isOpening() const;
    /// From now on the window does not close by itself where nothing came of its sources, as it does
    /// before its first layer.
    void stayOpen();

    /// Puts the view on the whole screen, or back in here.
    void setMapFullScreen(bool full);
    bool isMapFullScreen() const;

    /// The guard is asked before the window closes, and stops it with false.
    void setCloseGuard(const std::function<bool()>& guard);

signals:
    /// A source is in the map, under its full name.
    void opened(const QString& source);
    void layerOpened(MapWindow* window);
    /// The view fills the screen now, or is back.
    void mapFullScreenChanged(bool full);
    /// Nothing came of a source: of one to be opened, of a layer of a document, or of a layer that was
    /// added in another way, which stays in the map. A window that never had a layer closes by itself
    /// after this.
    void openFailed(const QString& source, const QString& reason);
    /// The same, but not where only a layer of a document is missing.
    void refused(const QString& source);

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void onOpened(LayerOpener* opener, int number, bool ok);
    int placeFor(int number) const;
    void follow(const MapDocumentLoader* loader, const QString& source);
    void onDocumentLoaded();
    void onDocumentRefused(const QString& source, const QString& reason);
    void onDocumentSaved(bool ok, const QString& fileName);
    void closeIfInVain(const QString& source);
    void updateTitle();
    void onLayerAdded(Map::Layer* layer);
    void tellFailureOf(Map::Layer* layer);
    void onViewDestroyed();

    QPointer<Map::MapView> view;
    QPointer<PointerTracker> tracker;
    MapDocument* document;
    LateLayers* late;                             // among those that others have added
    std::function<bool()> closeGuard;             // empty for none
    QString name;                                 // empty for none
    int openCount = 0;                            // sources that are being opened
    int openedCount = 0;                          // sources that were to be opened
    QMap<int, QPointer<Map::Layer>> openedLayers; // by the number of their source
    bool mapFullScreen = false;
    bool closesEmpty = true;
};

} // namespace Corvane::Viewer
