#include <viewer/access/KeyboardCursor.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/preferences/PreferencesDialog.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QDir>
#include <QDockWidget>
#include <QImage>
#include <QListWidget>
#include <QMdiArea>
#include <QSettings>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

const QString sample = QStringLiteral(SOURCE_FOLDER "/data/sample/world.tif");
const QDir guidePictures(QStringLiteral(SOURCE_FOLDER "/docs/pictures"));

} // namespace

/// Makes the pictures of the user guide, with the program itself on the bundled sample, in the folder
/// "pictures" beside this test; scripts/guide-pictures.sh takes them into docs/. Those in docs/ must
/// be of the same sizes, which change with what is in a window.
class GuidePicturesTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void mainWindow();
    void tools();
    void goTo();
    void preferences();
    void shortcuts();

private:
    MapWindow* openMap();
    void settle() const;
    void trigger(const QString& command) const;
    void take(QWidget& widget, const QString& name) const;
    QDialog* dialog() const;

    std::unique_ptr<ViewerWindow> window;
};

void GuidePicturesTest::initTestCase()
{
    QDir(QCoreApplication::applicationDirPath()).mkdir("pictures");
    QApplication::setStyle("fusion");
}

void GuidePicturesTest::init()
{
    Application::instance()->getSettings()->clear();
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    window = std::make_unique<ViewerWindow>();
    window->resize(1100, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void GuidePicturesTest::cleanup()
{
    window.reset();
}

MapWindow* GuidePicturesTest::openMap()
{
    window->openFiles({sample});
    MapWindow* const map = window->getActiveMapWindow();
    Map::MapView* const view = map->getView();
    const auto isThere = [view] {
        return view->getNumberOfLayers() == 1 && view->getLayerAt(0)->getPercentComplete() == 100;
    };
    if (!QTest::qWaitFor(isThere)) {
        qWarning("the sample does not open");
    }
    return map;
}

/// Until all maps are complete and painted.
void GuidePicturesTest::settle() const
{
    const auto isComplete = [this] {
        for (MapWindow* map : window->getMapWindows()) {
            for (Map::Layer* layer : map->getView()->getLayers()) {
                if (layer->getPercentComplete() < 100) {
                    return false;
                }
            }
        }
        return true;
    };
    if (!QTest::qWaitFor(isComplete)) {
        qWarning("a map stays incomplete");
    }
    QCoreApplication::processEvents();
}

void GuidePicturesTest::trigger(const QString& command) const
{
    auto* const action = window->findChild<QAction*>(command);
    QVERIFY2(action && action->isEnabled(), qPrintable(command));
    action->trigger();
    QCoreApplication::processEvents();
}

void GuidePicturesTest::take(QWidget& widget, const QString& name) const
{
    const QString file = QCoreApplication::applicationDirPath() + "/pictures/" + name;
    const QImage picture = widget.grab().toImage();
    QVERIFY(picture.save(file));
    const QImage kept(guidePictures.filePath(name));
    QVERIFY2(kept.size() == picture.size(),
             qPrintable("docs/pictures/" + name + " is out of date: scripts/guide-pictures.sh"));
}

QDialog* GuidePicturesTest::dialog() const
{
    for (auto* one : window->findChildren<QDialog*>()) {
        if (one->isVisible() && QTest::qWaitForWindowExposed(one)) {
            QCoreApplication::processEvents();
            return one;
        }
    }
    return nullptr;
}

void GuidePicturesTest::mainWindow()
{
    openMap();
    MapWindow* const second = openMap();
    trigger("actionTile");
    settle();
    second->getView()->setBounds(-10.0, 60.0, 40.0, 30.0);
    auto* const tree = window->findChild<Map::MapTreeView*>();
    tree->setCurrentItem(tree->topLevelItem(0)->child(0));
    window->findChild<QDockWidget*>("propertiesDock")->show();
    settle();
    take(*window, "main-window.png");
}

void GuidePicturesTest::tools()
{
    MapWindow* const map = openMap();
    map->getView()->setBounds(-20.0, 70.0, 40.0, 30.0);
    settle();
    trigger("actionIdentify");
    trigger("actionMeasure");
    settle();
    Map::MapView* const view = map->getView();
    const QPoint middle = view->rect().center();
    const QVector<QPoint> corners = {middle + QPoint(-150, 60), middle + QPoint(-40, -90),
                                     middle + QPoint(120, -20)};
    for (const QPoint& corner : corners) {
        QTest::mouseMove(view, corner);
        QTest::mouseClick(view, Qt::LeftButton, Qt::NoModifier, corner);
    }
    settle();
    take(*window, "tools.png");
}

void GuidePicturesTest::goTo()
{
    openMap();
    trigger("actionGoTo");
    QDialog* const shown = dialog();
    QVERIFY(shown);
    QTest::keyClicks(shown->focusWidget(), "52.5163, 13.3777");
    QCoreApplication::processEvents();
    take(*shown, "go-to.png");
}

void GuidePicturesTest::preferences()
{
    trigger("actionPreferences");
    QDialog* const shown = dialog();
    QVERIFY(shown);
    shown->findChild<QListWidget*>("pagesListWidget")->setCurrentRow(2);
    QCoreApplication::processEvents();
    take(*shown, "preferences.png");
}

void GuidePicturesTest::shortcuts()
{
    trigger("actionShortcuts");
    QDialog* const shown = dialog();
    QVERIFY(shown);
    take(*shown, "shortcuts.png");
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    QLocale::setDefault(QLocale("en_US"));
    Application application(argc, argv, "Corvane Guide");
    GuidePicturesTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "GuidePicturesTest.moc"
