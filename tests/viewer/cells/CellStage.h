#pragma once

#include <viewer/window/ViewerWindow.h>

#include <tests/plugins/TestRasters.h>

#include <QObject>
#include <QPoint>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class QAction;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {
class MapWindow;
}

namespace Corvane::Tests {

/// What the tests of the panels of cells begin with: the program's window, and the images
/// "numbers.tif" and "plain.tif".
class CellStage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

protected:
    static constexpr int patience = 30000; // milliseconds, for what has to come at some time

    /// What "numbers.tif" is made of: each cell holds its own numbers, so that a cell beside it shows.
    static RasterRecipe numbers();
    static double numbered(int band, int x, int y);

    Viewer::MapWindow* openMap(const QString& name);
    QString path(const QString& name) const { return folder.filePath(name); }
    QAction* action(const QString& name) const;
    QPoint deviceOf(int column, int row) const;
    void pointAt(int column, int row) const;
    void click(const QPoint& place) const;
    QStringList identified() const;
    QStringList gridRow(int row) const;
    QStringList gridHeads(Qt::Orientation orientation) const;
    template <typename Widget>
    Widget* part(const char* name) const
    {
        return window->findChild<Widget*>(name);
    }

    QTemporaryDir folder;
    std::unique_ptr<Viewer::ViewerWindow> window;
    Map::MapView* view = nullptr;
};

} // namespace Corvane::Tests
