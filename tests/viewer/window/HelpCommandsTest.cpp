#include <tests/viewer/support/OpenViewer.h>

#include <viewer/window/HelpCommands.h>
#include <viewer/batch/Startup.h>

#include <tests/support/EachInItsProcess.h>

#include <QDesktopServices>
#include <QDialog>
#include <QDir>
#include <QDockWidget>
#include <QLineEdit>
#include <QMap>
#include <QMessageBox>
#include <QTreeWidget>
#include <QUrl>
#include <QWindow>

using namespace Corvane;
using namespace Corvane::Viewer;

class HelpCommandsTest : public QObject
{
    Q_OBJECT
public slots:
    void takeUrl(const QUrl& url) { opened << url; }

private slots:
    void init();
    void cleanup() { viewer.reset(); }

    void f1OpensTheGuideThatIsInstalled();
    void f1SaysWhereTheGuideWouldBe();
    void aboutNamesTheGuide();
    void theKeysOfAllCommandsAreListed();
    void theListIsSearched();
    void usersFindTheKeysTheyKnow();
    void noTwoCommandsShareAKey();
    void theLogIsAmongThePanels();

private:
    QTreeWidget* keyList()
    {
        viewer->action("actionShortcuts")->trigger();
        return viewer->window->findChild<QDialog*>("keyListDialog")
            ->findChild<QTreeWidget*>("keyTreeWidget");
    }
    QString guide() const
    {
        return QCoreApplication::applicationDirPath() + "/docs/user-guide.html";
    }

    std::unique_ptr<OpenViewer> viewer;
    QList<QUrl> opened;
};

void HelpCommandsTest::init()
{
    QFile::remove(guide());
    viewer = std::make_unique<OpenViewer>();
}

void HelpCommandsTest::f1OpensTheGuideThatIsInstalled()
{
    QVERIFY(QDir().mkpath(QFileInfo(guide()).path()));
    QFile file(guide());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QDesktopServices::setUrlHandler("file", this, "takeUrl");
    QTest::keyClick(viewer->window->windowHandle(), Qt::Key_F1);
    QCOMPARE(opened, QList<QUrl>{QUrl::fromLocalFile(HelpCommands::guideFile())});
    QVERIFY(!viewer->window->findChild<QMessageBox*>("guideBox"));
    QDesktopServices::unsetUrlHandler("file");
    QVERIFY(QFile::remove(guide()));
}

void HelpCommandsTest::f1SaysWhereTheGuideWouldBe()
{
    QCOMPARE(HelpCommands::guideFile(), QString());
    QTest::keyClick(viewer->window->windowHandle(), Qt::Key_F1);
    const auto* const box = viewer->window->findChild<QMessageBox*>("guideBox");
    QVERIFY(box);
    const QString place =
        QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../../share/doc/corvane-viewer");
    QCOMPARE(box->text(), "The user guide is not installed. Its place is " + place + ".");
}

void HelpCommandsTest::aboutNamesTheGuide()
{
    viewer->action("actionAbout")->trigger();
    const auto* const box = viewer->window->findChild<QMessageBox*>();
    QVERIFY(box && box->text().contains("16.7.0.1963"));
}

void HelpCommandsTest::theKeysOfAllCommandsAreListed()
{
    QMap<QString, QString> listed;
    const QTreeWidget* const list = keyList();
    QCOMPARE(list->topLevelItemCount(), 2);
    const QTreeWidgetItem* const commands = list->topLevelItem(0);
    for (int i = 0; i < commands->childCount(); ++i) {
        listed.insert(commands->child(i)->text(0), commands->child(i)->text(1));
    }
    QCOMPARE(listed.value("Open"), QString("Ctrl+O"));
    QCOMPARE(listed.value("Zoom to All"), QString("Ctrl+Shift+F, Ctrl+0"));
    QCOMPARE(listed.value("Redo"), QString("Ctrl+Shift+Z, Ctrl+Y"));
    QVERIFY(!listed.contains("About")); // has none
    QVERIFY(list->topLevelItem(1)->childCount() >= 10);
}

void HelpCommandsTest::theListIsSearched()
{
    QTreeWidget* const list = keyList();
    auto* const field = list->window()->findChild<QLineEdit*>("keySearchLineEdit");
    const auto found = [list] {
        QStringList names;
        for (QTreeWidgetItemIterator one(list, QTreeWidgetItemIterator::NotHidden); *one; ++one) {
            if ((*one)->parent() && !(*one)->parent()->isHidden()) {
                names << (*one)->text(0);
            }
        }
        return names;
    };
    field->setText("snap");
    QCOMPARE(found(), QStringList());
    field->setText("f9");
    QCOMPARE(found(), QStringList("Save Picture"));
    field->setText("half a");
    QCOMPARE(found(), QStringList("Move by half a view"));
    field->clear();
    QVERIFY(found().size() > 25);
}

void HelpCommandsTest::usersFindTheKeysTheyKnow()
{
    const QVector<QPair<QString, QString>> expected = {{"Ctrl+O", "actionOpen"},
                                                       {"Ctrl+S", "actionSave"},
                                                       {"Ctrl+Shift+S", "actionSaveAs"},
                                                       {"Ctrl+P", "actionPrint"},
                                                       {"Ctrl+Q", "actionQuit"},
                                                       {"Ctrl+W", "actionClose"},
                                                       {"Ctrl+N", "actionNewMap"},
                                                       {"Ctrl+M", "actionCloneMap"},
                                                       {"F1", "actionHelp"},
                                                       {"F5", "actionReload"},
                                                       {"F9", "actionSnapshot"},
                                                       {"F11", "actionFullScreen"},
                                                       {"F12", "actionFullScreenMap"},
                                                       {"Ctrl+Shift+F", "actionZoomToAll"},
                                                       {"Ctrl+0", "actionZoomToAll"},
                                                       {"Ctrl+Shift+I", "actionIdentify"},
                                                       {"Ctrl+Shift+M", "actionMeasure"},
                                                       {"Ctrl+C", "actionCopyMap"},
                                                       {"Ctrl+Z", "actionUndo"},
                                                       {"Ctrl+Shift+Z", "actionRedo"},
                                                       {"Ctrl+Tab", "actionNextWindow"},
                                                       {"Ctrl+Shift+Tab", "actionPreviousWindow"}};
    for (const auto& [key, name] : expected) {
        const QAction* const command = viewer->action(name);
        QVERIFY2(command, qPrintable(name));
        QVERIFY2(command->shortcuts().contains(QKeySequence(key)), qPrintable(key));
    }
}

void HelpCommandsTest::noTwoCommandsShareAKey()
{
    viewer->openMap({"one.tif", "two.tif"});
    QMap<QString, QString> owners;
    for (const QAction* action : viewer->window->findChildren<QAction*>()) {
        // of one list alone, or only a form that the files were read into
        if (action->shortcutContext() != Qt::WindowShortcut ||
            action->associatedWidgets().isEmpty()) {
            continue;
        }
        for (const QKeySequence& key : action->shortcuts()) {
            const QString text = key.toString();
            QVERIFY2(!owners.contains(text),
                     qPrintable(text + ": " + owners.value(text) + ", " + action->objectName()));
            owners.insert(text, action->objectName());
        }
    }
    QVERIFY(owners.size() > 25);
}

void HelpCommandsTest::theLogIsAmongThePanels()
{
    const auto* const dock = viewer->window->findChild<QDockWidget*>("logDock");
    QVERIFY(dock);
    dock->toggleViewAction()->trigger();
    QVERIFY(dock->isVisible());
    QCOMPARE(viewer->window->dockWidgetArea(const_cast<QDockWidget*>(dock)),
             Qt::BottomDockWidgetArea);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Help Commands Test");
    HelpCommandsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "HelpCommandsTest.moc"
