#include <tests/viewer/support/DialogLooks.h>
#include <tests/viewer/support/TestImages.h>

#include <viewer/maps/MapWindow.h>
#include <viewer/preferences/PreferencesDialog.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/gui/PanelPictures.h>
#include <tests/support/EachInItsProcess.h>
#include <tests/support/PseudoLocale.h>

#include <QAction>
#include <QColorDialog>
#include <QDialog>
#include <QDockWidget>
#include <QFileDialog>
#include <QFile>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

/// The whole program in words a third longer than English ones: nothing may be cut off.
class PseudoLocaleTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void textsAreLengthenedButForTheirPlaces();
    void panelsHaveRoomForTheirTexts();
    void dialogsOfCommandsHaveRoomForTheirTexts();
    void propertiesHaveRoomForTheirTexts();

private:
    void openMap();

    QTemporaryDir folder;
    PseudoLocale locale;
    std::unique_ptr<ViewerWindow> window;
};

void PseudoLocaleTest::initTestCase()
{
    QVERIFY(folder.isValid());
    qputenv("TMPDIR", QFile::encodeName(folder.path())); // of the browser's cache
    TestImages::writeRgb(folder.filePath("image.tif"), {});
}

void PseudoLocaleTest::init()
{
    Application::instance()->getSettings()->clear();
    QVERIFY(QCoreApplication::installTranslator(&locale));
    window = std::make_unique<ViewerWindow>();
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void PseudoLocaleTest::cleanup()
{
    window.reset();
    QCoreApplication::removeTranslator(&locale);
}

void PseudoLocaleTest::openMap()
{
    window->openFiles({folder.filePath("image.tif")});
    Map::MapView* const view = window->getActiveMapWindow()->getView();
    QTRY_VERIFY(view->getNumberOfLayers() == 1 && view->getLayerAt(0)->getPercentComplete() == 100);
}

void PseudoLocaleTest::textsAreLengthenedButForTheirPlaces()
{
    QCOMPARE(PseudoLocale::lengthened("Open"), QString::fromUtf8("[Õpéñ~]"));
    QCOMPARE(PseudoLocale::lengthened("%1 of %n <b>&amp;</b>"),
             QString::fromUtf8("[%1 õf %n <b>&amp;</b>~~~~~~~]"));
}

void PseudoLocaleTest::panelsHaveRoomForTheirTexts()
{
    openMap();
    QStringList complaints;
    const auto docks = window->findChildren<QDockWidget*>();
    QVERIFY(docks.size() >= 5);
    for (QDockWidget* dock : docks) {
        dock->setFloating(true);
        dock->show();
        dock->resize(dock->sizeHint());
        QVERIFY(QTest::qWaitForWindowExposed(dock));
        QCoreApplication::processEvents();
        for (const QString& complaint : textComplaints(*dock->widget())) {
            complaints << dock->objectName() + ": " + complaint;
        }
        dock->hide();
    }
    QCOMPARE(complaints.join('\n'), QString());
}

void PseudoLocaleTest::dialogsOfCommandsHaveRoomForTheirTexts()
{
    openMap();
    DialogLooks looks(&textComplaints);
    triggerDialogs(*window);
    QTRY_VERIFY(!QApplication::activeModalWidget());
    QVERIFY2(looks.seen.size() >= 6, qPrintable(looks.seen.join(", ")));
    QCOMPARE(looks.complaints.join('\n'), QString());
}

void PseudoLocaleTest::propertiesHaveRoomForTheirTexts()
{
    openMap();
    DialogLooks looks(&textComplaints);
    auto* const tree = window->findChild<Map::MapTreeView*>();
    tree->setCurrentItem(tree->topLevelItem(0)->child(0));
    tree->doProperties();
    tree->setCurrentItem(tree->topLevelItem(0));
    tree->doProperties();
    QTRY_COMPARE(looks.seen.size(), 2);
    QCOMPARE(looks.complaints.join('\n'), QString());
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Pseudo Locale Test");
    PseudoLocaleTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "PseudoLocaleTest.moc"
