#pragma once

#include "TestImages.h"

#include <viewer/maps/MapWindow.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// A viewer's window on the screen, with a folder of two images, "one.tif" and "two.tif", and no
/// settings but the given ones. Its end ends the plugins for the whole process.
class OpenViewer
{
public:
    explicit OpenViewer(const QVariantMap& given = QVariantMap())
    {
        QLocale::setDefault(QLocale("en_US"));
        QSettings* const settings = Corvane::Application::instance()->getSettings();
        settings->clear();
        settings->setValue("Gui/MapView/UseAnimation", false);
        for (auto one = given.begin(); one != given.end(); ++one) {
            settings->setValue(one.key(), one.value());
        }
        TestImages::Layout layout;
        layout.size = QSize(256, 192);
        TestImages::writeRgb(path("one.tif"), layout);
        layout.origin = QPointF(500000.0, 4649616.0); // south of the first
        layout.noise = true;
        TestImages::writeRgb(path("two.tif"), layout);
        window = std::make_unique<Corvane::Viewer::ViewerWindow>();
        window->resize(1000, 700);
        window->show();
        if (!QTest::qWaitForWindowActive(window.get())) {
            qFatal("the window does not come");
        }
    }
    ~OpenViewer()
    {
        window.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    QAction* action(const QString& name) const { return window->findChild<QAction*>(name); }

    /// A window with these images as layers, the last on top, complete.
    Corvane::Viewer::MapWindow* openMap(const QStringList& names)
    {
        Corvane::Viewer::MapWindow* const map = window->addMapWindow();
        for (const QString& name : names) {
            const int before = map->getView()->getNumberOfLayers();
            map->open(path(name));
            if (!QTest::qWaitFor([=] { return map->getView()->getNumberOfLayers() > before; },
                                 patienceMilliseconds))
            {
                qFatal("%s does not open", qPrintable(name));
            }
        }
        complete(map);
        return map;
    }

    /// A layer that has just opened asks for nothing until it is painted.
    static void complete(Corvane::Viewer::MapWindow* map)
    {
        const auto isComplete = [map] {
            for (Corvane::Map::Layer* layer : map->getView()->getLayers()) {
                if (!layer->isValid() || layer->getPercentComplete() < 100) {
                    return false;
                }
            }
            return !map->isOpening();
        };
        const auto isPaintedComplete = [map, &isComplete] {
            if (isComplete()) {
                map->getView()->repaint();
            }
            return isComplete();
        };
        const bool came = QTest::qWaitFor(isPaintedComplete, patienceMilliseconds);
        if (!came) {
            qFatal("the map is not complete");
        }
        QCoreApplication::processEvents();
    }

    /// What the layers are called, the lowest first.
    static QStringList layersOf(Corvane::Viewer::MapWindow* map)
    {
        QStringList names;
        for (Corvane::Map::Layer* layer : map->getView()->getLayers()) {
            names << layer->getDescription();
        }
        return names;
    }

    std::unique_ptr<Corvane::Viewer::ViewerWindow> window;

private:
    static constexpr int patienceMilliseconds = 30000;

    QTemporaryDir folder;
};
