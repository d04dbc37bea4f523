#include "WindowStage.h"

#include <tests/viewer/support/TestImages.h>

#include <viewer/maps/MapWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QWindow>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

void WindowStage::initTestCase()
{
    QVERIFY(folder.isValid());
    QLocale::setDefault(QLocale("en_US"));
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    TestImages::Layout layout;
    TestImages::writeRgb(path("metres.tif"), layout);
    layout.epsg = 4326;
    layout.origin = QPointF(10.0, 50.0);
    layout.cell = 0.001;
    layout.noise = true;
    TestImages::writeRgb(path("degrees.tif"), layout);
}

void WindowStage::init()
{
    const bool isFirstRun = !qEnvironmentVariableIsSet("SECOND_RUN");
    if (isFirstRun) {
        Application::instance()->getSettings()->remove("Viewer");
        Application::instance()->getSettings()->remove("Gui/MainWindow");
    }
    window = std::make_unique<ViewerWindow>();
    if (isFirstRun) {
        window->resize(900, 700);
    }
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void WindowStage::cleanup()
{
    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QList<MapWindow*> WindowStage::mapWindows() const
{
    QList<MapWindow*> windows;
    for (QMdiSubWindow* subWindow : window->getMdiArea()->subWindowList()) {
        windows << qobject_cast<MapWindow*>(subWindow);
    }
    return windows;
}

/// The window of a map that is open, complete and painted.
MapWindow* WindowStage::openMap(const QString& name)
{
    window->openFiles({path(name)});
    MapWindow* map = mapWindows().last();
    const auto isComplete = [map] {
        return map->getView()->getNumberOfLayers() == 1 &&
               map->getView()->getLayerAt(0)->getPercentComplete() == 100;
    };
    if (!QTest::qWaitFor(isComplete)) {
        qWarning("%s does not open", qPrintable(name));
    }
    QCoreApplication::processEvents();
    return map;
}

QAction* WindowStage::action(const QString& name) const
{
    return window->findChild<QAction*>(name);
}

QString WindowStage::statusText(const QString& label) const
{
    return window->statusBar()->findChild<QLabel*>(label)->text();
}

QString WindowStage::shownScale() const
{
    return window->statusBar()->findChild<QComboBox*>("scale")->currentText();
}

void WindowStage::press(QWidget* view, const QPoint& position) const
{
    QTest::mousePress(view->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      view->mapTo(view->window(), position));
}

void WindowStage::move(QWidget* view, const QPoint& position) const
{
    QTest::mouseMove(view->window()->windowHandle(), view->mapTo(view->window(), position));
}

void WindowStage::release(QWidget* view, const QPoint& position) const
{
    QTest::mouseRelease(view->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                        view->mapTo(view->window(), position));
}

void WindowStage::chooseIn(const QString& dialogName, const QStringList& files)
{
    const auto dialog = window->findChild<QFileDialog*>(dialogName);
    QVERIFY(dialog);
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    QStringList quoted;
    for (const QString& file : files) {
        quoted << '"' + file + '"';
    }
    const auto edit = dialog->findChild<QLineEdit*>("fileNameEdit");
    edit->selectAll();
    QTest::keyClicks(edit, files.size() == 1 ? files.first() : quoted.join(' '));
    const auto buttons = dialog->findChild<QDialogButtonBox*>("buttonBox");
    const auto accepting = dialog->acceptMode() == QFileDialog::AcceptSave ? QDialogButtonBox::Save
                                                                           : QDialogButtonBox::Open;
    QTest::mouseClick(buttons->button(accepting), Qt::LeftButton);
}
