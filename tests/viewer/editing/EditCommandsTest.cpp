#include <tests/viewer/support/OpenViewer.h>

#include <viewer/output/MapPicture.h>
#include <viewer/frame/Panels.h>
#include <viewer/batch/Startup.h>

#include <corvane/gui/MapTreeView.h>
#include <tests/support/EachInItsProcess.h>

#include <QClipboard>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QSpinBox>
#include <QStatusBar>
#include <QTableWidget>
#include <QWindow>

using namespace Corvane;
using namespace Corvane::Viewer;

class EditCommandsTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { viewer.reset(); }

    void theMapIsCopiedAsTheScreenShowsIt();
    void theMapIsCopiedInTheTruePixelsOfADenseScreen();
    void ctrlCCopiesTheMapOfAFileThatWasJustOpened();
    void copyingNeedsAMap();

    void aTextFieldCopiesItsText();
    void aTextFieldUndoesItsOwnTyping();
    void deleteAndArrowsInATextFieldAreTheFields();
    void aSpinBoxCopiesItsText();
    void aTableCopiesItsCell();
    void aLabelCopiesWhatIsChosen();
    void theLayerTreeCopiesANameAndUndoesDeletions();
    void deleteInTheTreeDeletesTheActiveLayer();
    void deleteElsewhereDeletesNothing();

private:
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(viewer->window->windowHandle(), Qt::Key(key), modifiers);
    }
    /// In a panel of the window, with the focus.
    void show(QWidget* field)
    {
        viewer->window->getPanels()
            ->addPanel("fieldDock", "Field", field, Qt::RightDockWidgetArea)
            ->show();
        field->setFocus();
        QTRY_COMPARE(QApplication::focusWidget()->window(), viewer->window.get());
        QTRY_VERIFY(field->hasFocus());
    }
    QString copiedText() const { return QGuiApplication::clipboard()->text(); }

    std::unique_ptr<OpenViewer> viewer;
    MapWindow* map = nullptr;
};

void EditCommandsTest::init()
{
    viewer = std::make_unique<OpenViewer>();
    QGuiApplication::clipboard()->setText("before");
    if (qstrcmp(QTest::currentTestFunction(), "copyingNeedsAMap") != 0) {
        map = viewer->openMap({"one.tif", "two.tif"});
    }
}

void EditCommandsTest::theMapIsCopiedAsTheScreenShowsIt()
{
    map->getView()->setFocus();
    press(Qt::Key_C, Qt::ControlModifier);
    const QImage copied = QGuiApplication::clipboard()->image();
    QCOMPARE(copied.size(), map->getView()->size());
    const QImage shown = map->getView()->grab().toImage();
    QCOMPARE(copied.convertToFormat(QImage::Format_RGB32),
             shown.convertToFormat(QImage::Format_RGB32));
    QCOMPARE(viewer->window->statusBar()->currentMessage(),
             QString("The map is on the clipboard: %1 x %2 pixels.")
                 .arg(copied.width())
                 .arg(copied.height()));
}

void EditCommandsTest::theMapIsCopiedInTheTruePixelsOfADenseScreen()
{
    if (qEnvironmentVariable("QT_SCALE_FACTOR") != "2") { // read when the program starts
        QProcess dense;
        QProcessEnvironment surroundings = QProcessEnvironment::systemEnvironment();
        surroundings.insert("QT_SCALE_FACTOR", "2");
        dense.setProcessEnvironment(surroundings);
        dense.setProcessChannelMode(QProcess::ForwardedChannels);
        dense.start(QCoreApplication::applicationFilePath(), {QTest::currentTestFunction()});
        QVERIFY(dense.waitForFinished(-1));
        QCOMPARE(dense.exitCode(), 0);
        return;
    }
    Map::MapView* const view = map->getView();
    QCOMPARE(view->devicePixelRatioF(), 2.0);
    view->zoomOneToOne(0); // of one.tif, a cell for each of the view's pixels
    OpenViewer::complete(map);
    viewer->action("actionCopyMap")->trigger();
    const QImage copied = QGuiApplication::clipboard()->image();
    QCOMPARE(copied.size(), view->size() * 2);
    QCOMPARE(copied.devicePixelRatio(), 1.0);
    QImage shown = paintMapPicture(*view, 2.0);
    shown.setDevicePixelRatio(1.0);
    QCOMPARE(copied.convertToFormat(QImage::Format_RGB32), shown);
}

void EditCommandsTest::ctrlCCopiesTheMapOfAFileThatWasJustOpened()
{
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->image().size(), map->getView()->size());
}

void EditCommandsTest::copyingNeedsAMap()
{
    QVERIFY(!viewer->action("actionCopyMap")->isEnabled());
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(copiedText(), QString("before"));
    viewer->window->addMapWindow();
    QVERIFY(viewer->action("actionCopyMap")->isEnabled());
}

void EditCommandsTest::aTextFieldCopiesItsText()
{
    auto* const line = new QLineEdit("some text");
    show(line);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(copiedText(), QString("some text"));

    auto* const page = new QPlainTextEdit("a page");
    show(page);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(copiedText(), QString("a page"));
    map->getView()->setFocus();
    press(Qt::Key_C, Qt::ControlModifier);
    QVERIFY(!QGuiApplication::clipboard()->image().isNull());
}

void EditCommandsTest::aTextFieldUndoesItsOwnTyping()
{
    map->getView()->deleteLayerAt(0);
    auto* const line = new QLineEdit;
    show(line);
    press(Qt::Key_X);
    QCOMPARE(line->text(), QString("x"));
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(line->text(), QString());
    press(Qt::Key_Z, Qt::ControlModifier); // nothing left: no reason to touch the map
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(line->text(), QString("x"));
    QCOMPARE(map->getView()->getNumberOfLayers(), 1);
    map->getView()->setFocus();
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(map->getView()->getNumberOfLayers(), 2);
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(map->getView()->getNumberOfLayers(), 1);
    press(Qt::Key_Z, Qt::ControlModifier);
    press(Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(map->getView()->getNumberOfLayers(), 1);
}

void EditCommandsTest::deleteAndArrowsInATextFieldAreTheFields()
{
    auto* const line = new QLineEdit("abc");
    show(line);
    const QRectF bounds = map->getView()->getBounds();
    press(Qt::Key_Home);
    press(Qt::Key_Right);
    press(Qt::Key_Delete);
    QCOMPARE(line->text(), QString("ac"));
    QCOMPARE(map->getView()->getNumberOfLayers(), 2);
    QCOMPARE(map->getView()->getBounds(), bounds);
}

void EditCommandsTest::aSpinBoxCopiesItsText()
{
    auto* const box = new QSpinBox;
    box->setValue(42);
    show(box);
    box->selectAll();
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(copiedText(), QString("42"));
}

void EditCommandsTest::aTableCopiesItsCell()
{
    auto* const table = new QTableWidget(2, 2);
    table->setItem(1, 1, new QTableWidgetItem("a cell"));
    show(table);
    table->setCurrentCell(1, 1);
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(copiedText(), QString("a cell"));
    press(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(table->selectedRanges().value(0).rowCount(), 2);
}

void EditCommandsTest::aLabelCopiesWhatIsChosen()
{
    auto* const label = new QLabel("a label");
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    show(label);
    label->setSelection(2, 5);
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(copiedText(), QString("label"));
}

void EditCommandsTest::theLayerTreeCopiesANameAndUndoesDeletions()
{
    Map::MapTreeView* const tree = viewer->window->getPanels()->getTree();
    QTRY_VERIFY(tree->topLevelItem(0) && tree->topLevelItem(0)->childCount() == 2);
    tree->setFocus();
    tree->setCurrentItem(tree->topLevelItem(0)->child(1));
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(copiedText(), QString("one.tif"));
    press(Qt::Key_Delete);
    QCOMPARE(OpenViewer::layersOf(map), QStringList("two.tif"));
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(OpenViewer::layersOf(map), QStringList({"one.tif", "two.tif"}));
}

void EditCommandsTest::deleteInTheTreeDeletesTheActiveLayer()
{
    Map::MapTreeView* const tree = viewer->window->getPanels()->getTree();
    QTRY_VERIFY(tree->topLevelItem(0) && tree->topLevelItem(0)->childCount() == 2);
    tree->setCurrentItem(tree->topLevelItem(0)); // the map itself
    QVERIFY(!viewer->action("actionDeleteLayer")->isEnabled());
    tree->setCurrentItem(tree->topLevelItem(0)->child(0));
    QVERIFY(viewer->action("actionDeleteLayer")->isEnabled());

    tree->editItem(tree->topLevelItem(0)->child(0)); // the key is the field's meanwhile
    press(Qt::Key_Home);
    press(Qt::Key_Delete);
    QCOMPARE(map->getView()->getNumberOfLayers(), 2);
    press(Qt::Key_Return);
    QTRY_COMPARE(OpenViewer::layersOf(map), QStringList({"one.tif", "wo.tif"}));

    tree->setFocus();
    press(Qt::Key_Delete);
    QTRY_COMPARE(OpenViewer::layersOf(map), QStringList("one.tif"));
    viewer->action("actionDeleteLayer")->trigger();
    QTRY_COMPARE(OpenViewer::layersOf(map), QStringList());
    QTRY_VERIFY(!viewer->action("actionDeleteLayer")->isEnabled());
}

void EditCommandsTest::deleteElsewhereDeletesNothing()
{
    map->getView()->setFocus();
    press(Qt::Key_Delete);
    QCOMPARE(map->getView()->getNumberOfLayers(), 2);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Edit Commands Test");
    EditCommandsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "EditCommandsTest.moc"
