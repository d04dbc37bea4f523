#include "OpeningStage.h"

#include <tests/viewer/support/TestImages.h>

#include <viewer/opening/FolderContents.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QSettings>
#include <QThreadPool>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

void OpeningStage::initTestCase()
{
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
}

void OpeningStage::init()
{
    Application::instance()->getSettings()->remove("Viewer");
    Application::instance()->getSettings()->remove("Gui/MainWindow");
    QGuiApplication::clipboard()->clear();
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    window = std::make_unique<ViewerWindow>();
    window->resize(900, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void OpeningStage::cleanup()
{
    window.reset();
    folderThreads().waitForDone();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    folder.reset();
}

QString OpeningStage::writeImage(const QString& name, int side) const
{
    TestImages::Layout layout;
    layout.size = QSize(side, side);
    TestImages::writeRgb(path(name), layout);
    return path(name);
}

QAction* OpeningStage::action(const QString& name) const
{
    return window->findChild<QAction*>(name);
}

MapWindow* OpeningStage::map(int index) const
{
    return window->getMapWindows().value(index);
}

bool OpeningStage::isOpen(MapWindow* of, int layers) const
{
    if (!of || of->isOpening() || of->getView()->getNumberOfLayers() != layers) {
        return false;
    }
    for (Map::Layer* layer : of->getView()->getLayers()) {
        if (!layer->isValid()) {
            return false;
        }
    }
    return true;
}
