#pragma once

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>

#include <QDockWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSettings>
#include <QtTest>

namespace Corvane::Tests {

/// A window with map windows in its middle and panels at its side, as a viewer has it.
class MapWindows : public QMainWindow
{
public:
    MapWindows()
    {
        Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
        setCentralWidget(&area);
        resize(1000, 800);
    }

    /// A map window without a frame at this place of the area: the view has its very size.
    Map::MapView* add(const QRect& place)
    {
        auto* const view = new Map::MapView;
        show(area.addSubWindow(view, Qt::FramelessWindowHint), place);
        return view;
    }
    /// A window that holds no map.
    QMdiSubWindow* addOther()
    {
        QMdiSubWindow* const window = area.addSubWindow(new QWidget, Qt::FramelessWindowHint);
        show(window, QRect(0, 0, 50, 50));
        return window;
    }
    void addPanel(QWidget* panel)
    {
        auto* const dock = new QDockWidget(panel->windowTitle(), this);
        dock->setObjectName(panel->objectName() + "Dock");
        dock->setWidget(panel);
        addDockWidget(Qt::BottomDockWidgetArea, dock);
    }
    bool open()
    {
        QMainWindow::show();
        activateWindow();
        return QTest::qWaitForWindowActive(this);
    }
    /// Makes the view's window the active one.
    void activate(Map::MapView* view)
    {
        area.setActiveSubWindow(windowOf(view));
        QCoreApplication::processEvents();
    }
    QMdiSubWindow* windowOf(Map::MapView* view) const
    {
        return qobject_cast<QMdiSubWindow*>(view->parentWidget());
    }

    QMdiArea area;

private:
    static void show(QMdiSubWindow* window, const QRect& place)
    {
        window->setMinimumSize(1, 1);
        window->setGeometry(place);
        window->show();
    }
};

/// The world rectangle that a view of this size shows when it is given the rectangle.
inline QRectF fitted(const Map::MapView& view, const QRectF& rect)
{
    struct Quiet final : Map::IClient
    {
        void beginClientUpdate(bool) override {}
        void endClientUpdate() override {}
        void onExtentChange(double, double, double, double, bool) override {}
        GeolinkMode getGeolinkMode() override { return GeolinkNone; }
        void setGeolinkMode(GeolinkMode) override {}
    } quiet;
    Map::ViewManager manager(&quiet);
    manager.setDeviceExtents(0, 0, view.width() - 1, view.height() - 1);
    manager.setWorldExtents(rect.left(), rect.top(), rect.right(), rect.bottom(), false);
    QPointF topLeft;
    QPointF bottomRight;
    manager.getWorldExtents(&topLeft.rx(), &topLeft.ry(), &bottomRight.rx(), &bottomRight.ry());
    return QRectF(topLeft, bottomRight);
}

} // namespace Corvane::Tests
