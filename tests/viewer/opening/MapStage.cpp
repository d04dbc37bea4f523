#include "MapStage.h"

#include <tests/viewer/support/TestImages.h>

#include <viewer/maps/MapWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QtTest>

#include <algorithm>

using namespace Corvane;
using namespace Corvane::Viewer;

QString MapStage::rasterElement(const QString& source)
{
    return QString("<layer class=\"Corvane::Map::GdalRasterLayer\"><datasource value=\"%1\"/>"
                   "</layer>")
        .arg(source);
}

void MapStage::initTestCase()
{
    QVERIFY(images.isValid());
    QLocale::setDefault(QLocale("en_US"));
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    TestImages::Layout layout;
    layout.size = QSize(300, 200);
    TestImages::writeRgb(images.filePath("metres.tif"), layout);
    layout.epsg = 4326;
    layout.origin = QPointF(10.25, 50.75);
    layout.cell = 0.0001;
    TestImages::writeRgb(images.filePath("degrees.tif"), layout);
}

void MapStage::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    Application::instance()->getSettings()->remove("Viewer");
    Application::instance()->getSettings()->setValue("Viewer/folder", folder->path());
    window = std::make_unique<ViewerWindow>();
    window->resize(900, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void MapStage::cleanup()
{
    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QList<MapWindow*> MapStage::mapWindows() const
{
    QList<MapWindow*> windows;
    for (QMdiSubWindow* subWindow : window->getMdiArea()->subWindowList()) {
        windows << qobject_cast<MapWindow*>(subWindow);
    }
    return windows;
}

/// The newest window, once everything in it is open.
MapWindow* MapStage::open(const QStringList& files, int layers)
{
    window->openFiles(files);
    MapWindow* map = mapWindows().last();
    const auto isOpen = [map, layers] {
        const auto& stack = map->getView()->getLayers();
        return !map->isOpening() && stack.size() == layers &&
               std::all_of(stack.begin(), stack.end(),
                           [](Map::Layer* layer) { return layer->isValid(); });
    };
    if (!QTest::qWaitFor(isOpen)) {
        qWarning("%s does not open", qPrintable(files.join(' ')));
    }
    QCoreApplication::processEvents();
    return map;
}

QAction* MapStage::action(const QString& name) const
{
    return window->findChild<QAction*>(name);
}

void MapStage::choose(const QString& file) const
{
    const auto chooser = dialog<QFileDialog>("saveMapDialog");
    QVERIFY(chooser);
    QVERIFY(QTest::qWaitForWindowExposed(chooser));
    const auto edit = chooser->findChild<QLineEdit*>("fileNameEdit");
    edit->selectAll();
    QTest::keyClicks(edit, file);
    QTest::mouseClick(
        chooser->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Save),
        Qt::LeftButton);
}

void MapStage::answer(QMessageBox::StandardButton button) const
{
    QTRY_VERIFY(dialog<QMessageBox>("saveQuestion"));
    const QPointer<QMessageBox> question = dialog<QMessageBox>("saveQuestion");
    QTest::mouseClick(question->button(button), Qt::LeftButton);
    QTRY_VERIFY(!question);
}

/// A map with a file, which has changed since.
MapWindow* MapStage::changedMap(const QString& name)
{
    const QString file =
        write(name, "<mapcanvas><bounds tlx=\"500000\" tly=\"4650000\" "
                    "brx=\"500600\" bry=\"4649600\"/><layers>" +
                        rasterElement(images.filePath("metres.tif")) + "</layers></mapcanvas>");
    MapWindow* map = open({file});
    map->getView()->setDescription("another map");
    return map;
}

QString MapStage::write(const QString& name, const QString& text) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) {
        qFatal("cannot write %s", qPrintable(name));
    }
    return path(name);
}

QStringList MapStage::recentEntries() const
{
    const auto menu = window->findChild<QMenu*>("recentMenu");
    emit menu->aboutToShow();
    QStringList entries;
    for (const QAction* entry : menu->actions()) {
        if (!entry->data().isNull()) {
            entries << entry->data().toString();
        }
    }
    return entries;
}
