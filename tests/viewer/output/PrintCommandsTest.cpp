#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/support/TestImages.h>

#include <tests/support/FileContent.h>
#include <tests/support/PdfPixels.h>
#include <tests/support/PrinterQueue.h>

#include <viewer/output/MapPicture.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/output/PrintCommands.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMdiArea>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QProgressDialog>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

constexpr std::chrono::milliseconds hardlyAnything(1);

/// The part of a page that is not white, without the frame.
QRect inkOf(const QImage& page)
{
    QRect ink;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x) {
            const QColor colour = page.pixelColor(x, y);
            if (colour.saturation() > 40) { // neither paper nor frame
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

} // namespace

/// From the menu to the paper, with the real dialogs.
class PrintCommandsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theActionsNeedAMap();
    void theActionsStandInTheFileMenu();
    void printingPutsTheWholeMapOnThePaper_data();
    void printingPutsTheWholeMapOnThePaper();
    void thePaperLiesAsTheMapDoes();
    void aPrintLeavesTheScreenAsItWas();
    void aDialogThatIsLeftPrintsNothing();
    void aMapInFullScreenIsPrinted();

    void anExportWritesAPdfFile();
    void anExportReplacesAFileOnlyWhenItIsWhole();
    void anExportThatCannotBeWrittenSaysSo();

    void thePreviewShowsTheMap();
    void thePreviewPrints();

    void aDeadServerDoesNotHoldAPrint();
    void aPrintCanBeCancelledWhileItLoads();

private:
    QString path(const QString& name) const { return folder.filePath(name); }
    QAction* action(const QString& name) const { return window->findChild<QAction*>(name); }
    MapWindow* openMap(const QString& source);
    MapWindow* openDeadMap();
    template <typename Dialog>
    Dialog* dialogNamed(const QString& name) const;
    void accept(QDialog* dialog) const;
    void exportTo(const QString& fileName);
    void whileItLoads(const std::function<void(QProgressDialog*)>& act);

    QTemporaryDir folder;
    std::unique_ptr<ViewerWindow> window;
    std::unique_ptr<StallingServer> server;
};

void PrintCommandsTest::initTestCase()
{
    QLocale::setDefault(QLocale("de_DE"));
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    TestImages::Layout layout;
    TestImages::writeRgb(path("metres.tif"), layout);
    layout.epsg = 4326;
    layout.origin = QPointF(10.0, 50.0);
    layout.cell = 0.001;
    TestImages::writeRgb(path("degrees.tif"), layout);
    TestImages::Layout large;
    large.size = QSize(1024, 1024);
    large.noise = true;
    large.options = QStringList{"TILED=YES"};
    TestImages::writeRgb(path("remote.tif"), large);
}

void PrintCommandsTest::init()
{
    PrinterQueue::takeJobs();
    window = std::make_unique<ViewerWindow>();
    window->resize(900, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void PrintCommandsTest::cleanup()
{
    window.reset();
    server.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

MapWindow* PrintCommandsTest::openMap(const QString& source)
{
    window->openFiles({source});
    MapWindow* map = window->getActiveMapWindow();
    const auto isComplete = [map] {
        return map->getView()->getNumberOfLayers() == 1 &&
               map->getView()->getLayerAt(0)->getPercentComplete() == 100;
    };
    if (!QTest::qWaitFor(isComplete)) {
        qWarning("%s does not open", qPrintable(source));
    }
    return map;
}

/// A map whose source is open and answers nothing more.
MapWindow* PrintCommandsTest::openDeadMap()
{
    server = std::make_unique<StallingServer>(contentOf(path("remote.tif")), 16384);
    window->openFiles({server->addressOf("remote.tif")});
    MapWindow* map = window->getActiveMapWindow();
    if (!QTest::qWaitFor([map] { return map->getView()->getNumberOfLayers() == 1; })) {
        qWarning("the remote file does not open");
    }
    return map;
}

template <typename Dialog>
Dialog* PrintCommandsTest::dialogNamed(const QString& name) const
{
    for (QWidget* widget : QApplication::allWidgets()) {
        if (widget->objectName() == name && widget->isVisible()) {
            return qobject_cast<Dialog*>(widget);
        }
    }
    return nullptr;
}

void PrintCommandsTest::accept(QDialog* dialog) const
{
    QVERIFY(dialog);
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    for (QDialogButtonBox* box : dialog->findChildren<QDialogButtonBox*>()) {
        for (QAbstractButton* button : box->buttons()) {
            if (box->buttonRole(button) == QDialogButtonBox::AcceptRole) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
    }
    QFAIL("there is nothing to accept");
}

void PrintCommandsTest::exportTo(const QString& fileName)
{
    action("actionExportPdf")->trigger();
    const auto dialog = dialogNamed<QFileDialog>("exportPdfDialog");
    QVERIFY(dialog);
    const auto edit = dialog->findChild<QLineEdit*>("fileNameEdit");
    edit->setText(fileName);
    QTimer hand; // for the question whether to replace a file, which the dialog waits for
    connect(&hand, &QTimer::timeout, dialog, [dialog] {
        if (const auto question = dialog->findChild<QMessageBox*>()) {
            question->button(QMessageBox::Yes)->click();
        }
    });
    hand.start(0);
    accept(dialog);
}

/// Acts once when the progress dialog is there: a test that waits gets no turn before it has gone.
void PrintCommandsTest::whileItLoads(const std::function<void(QProgressDialog*)>& act)
{
    const auto watch = new QTimer(window.get());
    connect(watch, &QTimer::timeout, watch, [this, watch, act] {
        if (const auto progress = dialogNamed<QProgressDialog>("printProgress")) {
            watch->stop();
            watch->deleteLater();
            act(progress);
        }
    });
    watch->start(0);
}

void PrintCommandsTest::theActionsNeedAMap()
{
    for (const char* name : {"actionPrint", "actionPrintPreview", "actionExportPdf"}) {
        QVERIFY(!action(name)->isEnabled());
    }
    openMap(path("metres.tif"));
    for (const char* name : {"actionPrint", "actionPrintPreview", "actionExportPdf"}) {
        QVERIFY(action(name)->isEnabled());
        QVERIFY(!action(name)->icon().isNull());
    }
}

void PrintCommandsTest::theActionsStandInTheFileMenu()
{
    QCOMPARE(action("actionPrint")->shortcut(), QKeySequence("Ctrl+P"));
    openMap(path("metres.tif"));
    QTest::keyClick(window->windowHandle(), Qt::Key_P, Qt::ControlModifier);
    const auto dialog = dialogNamed<QPrintDialog>("printDialog");
    QVERIFY(dialog);
    dialog->reject();
}

void PrintCommandsTest::printingPutsTheWholeMapOnThePaper_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("in metres") << "metres.tif";
    QTest::newRow("in degrees") << "degrees.tif";
}

void PrintCommandsTest::printingPutsTheWholeMapOnThePaper()
{
    QFETCH(QString, file);
    openMap(path(file));

    action("actionPrint")->trigger();
    accept(dialogNamed<QPrintDialog>("printDialog"));

    QTRY_COMPARE(PrinterQueue::jobCount(), 1);
    const QList<QByteArray> jobs = PrinterQueue::takeJobs();
    QTRY_VERIFY(!dialogNamed<QProgressDialog>("printProgress"));
    const QImage page = pdfPixels(jobs.first(), 72);
    QCOMPARE(page.size(), QSize(842, 595)); // A4 on its side
    const QRect ink = inkOf(page);
    QVERIFY(ink.isValid());
    // the image's shape is 4:3, and it fills the height of what the margins leave
    QVERIFY(std::abs(ink.width() * 3 - ink.height() * 4) < 20);
    QVERIFY(std::abs(ink.center().x() - 421) < 4);
    QVERIFY(std::abs(ink.center().y() - 297) < 4);
    QVERIFY(ink.height() > 450);
    const QImage original = TestImages::read(path(file), QRectF(0, 0, 1024, 768), ink.size());
    QVERIFY(TestImages::meanError(page.copy(ink).convertToFormat(original.format()), original) <
            8.0);
}

void PrintCommandsTest::thePaperLiesAsTheMapDoes()
{
    MapWindow* map = openMap(path("metres.tif"));
    map->showNormal();
    map->resize(300, 600);
    QCoreApplication::processEvents();

    action("actionPrint")->trigger();
    accept(dialogNamed<QPrintDialog>("printDialog"));

    QTRY_COMPARE(PrinterQueue::jobCount(), 1);
    const QList<QByteArray> jobs = PrinterQueue::takeJobs();
    QCOMPARE(pdfPixels(jobs.first(), 72).size(), QSize(595, 842));
}

void PrintCommandsTest::aPrintLeavesTheScreenAsItWas()
{
    MapWindow* map = openMap(path("metres.tif"));
    Map::MapView* view = map->getView();
    Map::Layer* layer = view->getLayerAt(0);
    action("actionZoomIn")->trigger();
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    const QString title = map->windowTitle();
    const QRectF bounds = view->getBounds();
    const QImage before = paintMapPicture(*view, 1.0);

    action("actionPrint")->trigger();
    accept(dialogNamed<QPrintDialog>("printDialog"));
    QTRY_COMPARE(PrinterQueue::jobCount(), 1);
    QTRY_VERIFY(!dialogNamed<QProgressDialog>("printProgress"));

    QCOMPARE(layer->property("Progressive"), QVariant(true));
    QCOMPARE(layer->property("AdaptiveRoam"), QVariant(true));
    QCOMPARE(layer->property("PixmapSmoothing"), QVariant(true));
    QCOMPARE(layer->property("WaitLimit"), QVariant(0.0));
    QCOMPARE(view->getBounds(), bounds);
    QVERIFY(view->updatesEnabled());
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    QTRY_COMPARE(paintMapPicture(*view, 1.0), before);
    QCOMPARE(map->windowTitle(), title); // and the map has not changed
}

void PrintCommandsTest::aDialogThatIsLeftPrintsNothing()
{
    openMap(path("metres.tif"));
    action("actionPrint")->trigger();
    const auto dialog = dialogNamed<QPrintDialog>("printDialog");
    QVERIFY(dialog);
    dialog->reject();
    QTRY_VERIFY(!dialogNamed<QPrintDialog>("printDialog"));
    QCoreApplication::processEvents();
    QCOMPARE(PrinterQueue::jobCount(), 0);
}

void PrintCommandsTest::aMapInFullScreenIsPrinted()
{
    MapWindow* map = openMap(path("metres.tif"));
    map->setMapFullScreen(true);
    action("actionPrint")->trigger();
    const auto dialog = dialogNamed<QPrintDialog>("printDialog");
    QVERIFY(dialog);
    QCOMPARE(dialog->parentWidget(), map->getDialogParent());
    accept(dialog);
    QTRY_COMPARE(PrinterQueue::jobCount(), 1);
    map->setMapFullScreen(false);
}

void PrintCommandsTest::anExportWritesAPdfFile()
{
    openMap(path("metres.tif"));
    exportTo(path("map.pdf"));

    QTRY_VERIFY(QFile::exists(path("map.pdf")));
    const QImage page = pdfFilePixels(path("map.pdf"), 72);
    QCOMPARE(page.size(), QSize(842, 595));
    const QRect ink = inkOf(page);
    QVERIFY(std::abs(ink.width() * 3 - ink.height() * 4) < 20);
    QVERIFY(ink.top() >= 28 && ink.left() >= 28); // ten millimetres
    QVERIFY(!dialogNamed<QMessageBox>("printFailure"));
    QVERIFY(!dialogNamed<QMessageBox>("printIncomplete"));
}

void PrintCommandsTest::anExportReplacesAFileOnlyWhenItIsWhole()
{
    QFile old(path("old.pdf"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    openMap(path("metres.tif"));
    exportTo(path("old.pdf"));
    QTRY_VERIFY(contentOf(path("old.pdf")).startsWith("%PDF"));

    const QByteArray before = contentOf(path("old.pdf"));
    openDeadMap();
    QByteArray meanwhile;
    whileItLoads([&](QProgressDialog* progress) {
        meanwhile = contentOf(path("old.pdf"));
        progress->cancel();
    });
    exportTo(path("old.pdf"));
    QTRY_COMPARE(meanwhile, before);
    QTRY_VERIFY(!dialogNamed<QProgressDialog>("printProgress"));
    QCOMPARE(contentOf(path("old.pdf")), before);
}

void PrintCommandsTest::anExportThatCannotBeWrittenSaysSo()
{
    openMap(path("metres.tif"));
    action("actionExportPdf")->trigger();
    const auto dialog = dialogNamed<QFileDialog>("exportPdfDialog");
    emit dialog->fileSelected(path("missing folder/map.pdf"));
    QTRY_VERIFY(dialogNamed<QMessageBox>("printFailure"));
    QVERIFY(dialogNamed<QMessageBox>("printFailure")
                ->text()
                .startsWith("cannot write " + path("missing folder/map.pdf") + ": "));
    dialog->reject();
    dialogNamed<QMessageBox>("printFailure")->accept();
}

void PrintCommandsTest::thePreviewShowsTheMap()
{
    MapWindow* map = openMap(path("metres.tif"));
    const QRectF bounds = map->getView()->getBounds();
    action("actionPrintPreview")->trigger();
    const auto dialog = dialogNamed<QPrintPreviewDialog>("printPreviewDialog");
    QVERIFY(dialog);
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    const auto preview = dialog->findChild<QPrintPreviewWidget*>();
    QVERIFY(preview);
    QCOMPARE(preview->pageCount(), 1);
    QCOMPARE(preview->orientation(), QPrinter::Landscape);
    QRect ink;
    QTRY_VERIFY((ink = inkOf(preview->grab().toImage())).width() > 200);
    QVERIFY(std::abs(ink.width() * 3 - ink.height() * 4) < 40);

    dialog->close();
    QTRY_VERIFY(!dialogNamed<QPrintPreviewDialog>("printPreviewDialog"));
    QTRY_VERIFY(map->getView()->updatesEnabled());
    QCOMPARE(map->getView()->getLayerAt(0)->property("Progressive"), QVariant(true));
    QCOMPARE(map->getView()->getBounds(), bounds);
    QCOMPARE(PrinterQueue::jobCount(), 0);
}

void PrintCommandsTest::thePreviewPrints()
{
    openMap(path("metres.tif"));
    action("actionPrintPreview")->trigger();
    const auto dialog = dialogNamed<QPrintPreviewDialog>("printPreviewDialog");
    QVERIFY(dialog);
    QVERIFY(QTest::qWaitForWindowExposed(dialog));

    dialog->findChild<QPrintPreviewWidget*>()->print();

    const QList<QByteArray> jobs = PrinterQueue::takeJobs();
    QCOMPARE(jobs.size(), 1);
    QVERIFY(inkOf(pdfPixels(jobs.first(), 72)).height() > 450);
    dialog->close();
}

/// The window's event loop runs all the time, but for the moment in which the page is painted.
void PrintCommandsTest::aDeadServerDoesNotHoldAPrint()
{
    openDeadMap();
    window->findChild<PrintCommands*>()->setPatience(hardlyAnything);
    exportTo(path("incomplete.pdf"));

    QTRY_VERIFY(dialogNamed<QMessageBox>("printIncomplete"));
    QCOMPARE(dialogNamed<QMessageBox>("printIncomplete")->text(),
             QString("Not everything came in time of:\nremote.tif"));
    QVERIFY(QFile::exists(path("incomplete.pdf")));
    dialogNamed<QMessageBox>("printIncomplete")->accept();
}

void PrintCommandsTest::aPrintCanBeCancelledWhileItLoads()
{
    MapWindow* map = openDeadMap();
    bool cancelled = false;
    whileItLoads([&](QProgressDialog* progress) {
        cancelled = progress->isModal();
        QTest::mouseClick(progress->findChild<QPushButton*>(), Qt::LeftButton);
    });

    action("actionPrint")->trigger();
    accept(dialogNamed<QPrintDialog>("printDialog"));

    QTRY_VERIFY(cancelled);
    QTRY_VERIFY(!dialogNamed<QProgressDialog>("printProgress"));
    QTRY_VERIFY(map->getView()->updatesEnabled());
    QCOMPARE(PrinterQueue::jobCount(), 0);
    QCOMPARE(map->getView()->getLayerAt(0)->property("Progressive"), QVariant(true));
    QCOMPARE(map->getView()->getLayerAt(0)->property("WaitLimit"), QVariant(60.0));
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Viewer Test");
    int result = 0;
    {
        PrintCommandsTest test; // ends before the process does, and takes its folder away
        result = runEachInItsProcess(test, argc, argv); // the window ends the plugins
    }
    endNow(result); // a read that hangs in the server would hold up the orderly way
}

#include "PrintCommandsTest.moc"
