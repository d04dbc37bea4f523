#include <corvane/gui/MainWindow.h>

#include <corvane/core/Application.h>
#include <corvane/core/Config.h>
#include <tests/gui/DialogAnswers.h>
#include <tests/support/MessageLines.h>

#include <QAction>
#include <QDir>
#include <QDockWidget>
#include <QDomDocument>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QPixmap>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolBar>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::MainWindow;

namespace {

/// The window of a program, with slots under the names that the files give as functions.
class ProgramWindow : public MainWindow
{
    Q_OBJECT
public:
    using MainWindow::MainWindow;

    QStringList calls;

public slots:
    void doThis() { calls << "doThis"; }
    void switchThis(bool on) { calls << (on ? "switchThis on" : "switchThis off"); }
};

QSettings& settings()
{
    return *Application::instance()->getSettings();
}

/// The titles and entries of a bar or menu, one a line, with their depth.
QStringList linesOf(const QWidget& widget, const QString& indent = QString())
{
    QStringList lines;
    for (const QAction* action : widget.actions()) {
        if (action->isSeparator()) {
            lines << indent + "---";
        } else if (action->menu()) {
            lines << indent + "[" + action->menu()->title() + "]";
            lines << linesOf(*action->menu(), indent + "  ");
        } else {
            lines << indent + action->text();
        }
    }
    return lines;
}

QStringList texts(const QList<QAction*>& actions)
{
    QStringList result;
    for (const QAction* action : actions) {
        result << action->text();
    }
    return result;
}

} // namespace

class MainWindowTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aNewWindowIsBareButForItsNameAndNestedDocks();
    void theProgramFindsItsWindow();

    void theActionsOfAFileBecomeActionsOfTheWindow();
    void anActiongroupIsPassedOverWhole();
    void anActionTakesWhatItsElementTells();
    void anActionHasNoObjectNameAndMayHaveNoText();
    void anIconComesFromTheIconsFolder();
    void anEmptyIconIsAnIconAllTheSame();
    void theTypeDecidesWhatElseIsRead_data();
    void theTypeDecidesWhatElseIsRead();
    void anEntryOfTypeScriptIsInert();
    void entriesReachNoSlot();
    void aPreferenceIsShownBeforeTheConnectionIsMade();
    void aPreferenceIsNeverWrittenBack();

    void menusStandAsTheFileHasThem();
    void aMenuFileAppendsToTheBar();
    void theMenuOfWindowsIsLeftToTheProgram();
    void sameNamesGiveIndependentActions();
    void menusHaveNoParentAndActionsHaveTheWindow();

    void toolBarsStandAsTheFileHasThem();
    void toolBarsTakeStyleAndIconSizeOfTheSettings();
    void aSecondCallAddsASecondSetOfToolBars();

    void anotherDocumentElementIsIgnored_data();
    void anotherDocumentElementIsIgnored();
    void namesAreComparedWithTheirCase();
    void aMissingFileIsTold_data();
    void aMissingFileIsTold();
    void aFileThatCannotBeOpenedIsRefusedInSilence();
    void aFileThatIsNoXmlIsTold_data();
    void aFileThatIsNoXmlIsTold();
    void aFileThatFailsLeavesWhatWasBuilt();

    void withoutSettingsTheWindowHasItsFirstSize();
    void aWindowThatHintsALargerSizeGetsIt();
    void theLayoutComesBack();
    void theFourPreferencesStandInTheirGroup();
    void layoutsOfAnotherVersionAreLeft();
    void withoutSettingsTheIconSizeIsThatOfTheStyle();
    void aScriptEditorIsNotOpened();

private:
    QString write(const QString& name, const QByteArray& content);
    bool load(const QByteArray& content);
    bool menus(const QByteArray& content);
    bool toolBars(const QByteArray& content);
    QList<QAction*> actions() const
    {
        return window->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly);
    }
    QAction* only() const { return actions().size() == 1 ? actions().first() : nullptr; }
    QList<QToolBar*> bars() const
    {
        return window->findChildren<QToolBar*>(QString(), Qt::FindDirectChildrenOnly);
    }

    QTemporaryDir folder;
    std::unique_ptr<ProgramWindow> window;
    std::unique_ptr<DialogAnswers> answers;
};

void MainWindowTest::initTestCase()
{
    QVERIFY(folder.isValid());
}

void MainWindowTest::init()
{
    settings().clear();
    window = std::make_unique<ProgramWindow>(nullptr, Qt::WindowFlags());
    answers = std::make_unique<DialogAnswers>();
}

void MainWindowTest::cleanup()
{
    QCOMPARE(answers->isDone(), true);
    answers.reset();
    if (window) {
        QList<QPointer<QMenu>> menus; // they have no parent
        for (QWidget* widget : QApplication::allWidgets()) {
            menus << qobject_cast<QMenu*>(widget);
        }
        window.reset();
        for (const QPointer<QMenu>& menu : qAsConst(menus)) {
            delete menu;
        }
    }
}

QString MainWindowTest::write(const QString& name, const QByteArray& content)
{
    const QString path = folder.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        return QString();
    }
    return path;
}

bool MainWindowTest::load(const QByteArray& content)
{
    QString path = write("actions.xml", content);
    return window->loadActions(path);
}

bool MainWindowTest::menus(const QByteArray& content)
{
    QString path = write("menus.xml", content);
    return window->buildMenuBar(path, window->menuBar());
}

bool MainWindowTest::toolBars(const QByteArray& content)
{
    QString path = write("toolbars.xml", content);
    return window->buildToolBars(path);
}

void MainWindowTest::aNewWindowIsBareButForItsNameAndNestedDocks()
{
    const QMainWindow plain;
    const MainWindow own(nullptr, Qt::FramelessWindowHint);
    QCOMPARE(own.objectName(), QString("MainWindowTest"));
    QVERIFY(own.isDockNestingEnabled());
    QVERIFY(!plain.isDockNestingEnabled());
    QVERIFY(own.windowFlags().testFlag(Qt::FramelessWindowHint));
    QVERIFY(!own.centralWidget());
    QVERIFY(!own.menuWidget());
    QVERIFY(own.findChildren<QToolBar*>().isEmpty());
    QCOMPARE(own.metaObject()->className(), "Corvane::Gui::MainWindow");
    QCOMPARE(MainWindow::staticMetaObject.methodCount(),
             QMainWindow::staticMetaObject.methodCount());
    QCOMPARE(MainWindow::staticMetaObject.propertyCount(),
             QMainWindow::staticMetaObject.propertyCount());

    QWidget parent;
    const MainWindow child(&parent, Qt::WindowFlags());
    QCOMPARE(child.parentWidget(), &parent);
}

void MainWindowTest::theProgramFindsItsWindow()
{
    QCOMPARE(Application::instance()->getMainWindow(), static_cast<QMainWindow*>(window.get()));
}

void MainWindowTest::theActionsOfAFileBecomeActionsOfTheWindow()
{
    QVERIFY(load("<actions>text<action name='One'/><!-- a comment --><other name='No'/>"
                 "<action name='Two'/><menu><action name='Inner'/></menu></actions>"));
    QCOMPARE(texts(actions()), QStringList({"One", "Two"}));
    QCOMPARE(actions().first()->parent(), static_cast<QObject*>(window.get()));
    QVERIFY(window->actions().isEmpty()); // their shortcuts are not the window's by themselves
}

void MainWindowTest::anActiongroupIsPassedOverWhole()
{
    QVERIFY(load("<actions><actiongroup name='Group'><action name='Inner'/></actiongroup>"
                 "<action name='After'/></actions>"));
    QCOMPARE(texts(actions()), QStringList("After"));
    QVERIFY(window->findChildren<QActionGroup*>().isEmpty());
}

void MainWindowTest::anActionTakesWhatItsElementTells()
{
    QVERIFY(load("<actions><action name='&amp;Open' tooltip='Opens a file' shortcut='Ctrl+O'>"
                 "this text is not read</action></actions>"));
    QVERIFY(only());
    QCOMPARE(only()->text(), QString("&Open"));
    QCOMPARE(only()->toolTip(), QString("Opens a file"));
    QCOMPARE(only()->shortcut(), QKeySequence("Ctrl+O"));
    QVERIFY(only()->icon().isNull());
    QVERIFY(!only()->isCheckable());
}

void MainWindowTest::anActionHasNoObjectNameAndMayHaveNoText()
{
    QVERIFY(load("<actions><action name='Named'/><action/></actions>"));
    QCOMPARE(actions().size(), 2);
    QCOMPARE(actions().at(0)->objectName(), QString());
    QCOMPARE(actions().at(1)->text(), QString());
    QVERIFY(actions().at(1)->shortcut().isEmpty());
}

void MainWindowTest::anIconComesFromTheIconsFolder()
{
    const QDir icons = Config::GetDirectory(ConfigDirIcons);
    QVERIFY(icons.mkpath("."));
    QPixmap picture(16, 16);
    picture.fill(Qt::magenta);
    QVERIFY(picture.save(icons.filePath("magenta.png")));
    QVERIFY(load("<actions><action name='With' icon='magenta.png'/>"
                 "<action name='Gone' icon='nothing-here.png'/></actions>"));
    const QImage shown = actions().at(0)->icon().pixmap(16, 16).toImage();
    QCOMPARE(shown.pixelColor(8, 8), QColor(Qt::magenta));
    QVERIFY(actions().at(1)->icon().pixmap(16, 16).isNull());
}

void MainWindowTest::anEmptyIconIsAnIconAllTheSame()
{
    QVERIFY(load("<actions><action name='Empty' icon=''/><action name='None'/></actions>"));
    QVERIFY(actions().at(0)->icon().cacheKey() != 0);
    QCOMPARE(actions().at(1)->icon().cacheKey(), qint64(0));
}

void MainWindowTest::theTypeDecidesWhatElseIsRead_data()
{
    QTest::addColumn<QByteArray>("attributes");
    QTest::addColumn<bool>("checkable");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<QString>("signal"); // that is connected to the window
    const auto row = [](const char* name, const char* attributes, bool checkable, bool checked,
                        const char* signal) {
        QTest::newRow(name) << QByteArray(attributes) << checkable << checked << QString(signal);
    };
    row("without a type nothing is bound", "function='doThis' checkable='true'", false, false, "");
    row("an unknown type binds nothing", "type='other' function='doThis' checkable='true'", false,
        false, "");
    row("a callback is bound to triggered", "type='callback' function='doThis'", false, false,
        "triggered()");
    row("capitals make no difference to the type", "type='CALLBACK' function='doThis'", false,
        false, "triggered()");
    row("a callback without a function reads nothing more",
        "type='callback' checkable='true' pref='Test/on'", false, false, "");
    row("an empty function is a function", "type='callback' function='' checkable='true'", true,
        false, "toggled(bool)");
    row("a checkable one is bound to toggled",
        "type='callback' function='switchThis' checkable='true'", true, false, "toggled(bool)");
    row("capitals make no difference to true",
        "type='callback' function='switchThis' checkable='TRUE'", true, false, "toggled(bool)");
    row("false is bound to toggled all the same",
        "type='callback' function='switchThis' checkable='false'", false, false, "toggled(bool)");
    row("only true is true", "type='callback' function='switchThis' checkable='yes'", false, false,
        "toggled(bool)");
    row("a preference is shown",
        "type='callback' function='switchThis' checkable='true' pref='Test/on'", true, true,
        "toggled(bool)");
    row("a preference that is not there is off",
        "type='callback' function='switchThis' checkable='true' pref='Test/none'", true, false,
        "toggled(bool)");
    row("a preference shows on a checkable action alone",
        "type='callback' function='switchThis' checkable='false' pref='Test/on'", false, false,
        "toggled(bool)");
    row("a preference without checkable is not read",
        "type='callback' function='doThis' pref='Test/on'", false, false, "triggered()");
    row("a script binds nothing",
        "type='Script' function='doThis' file='a.js' checkable='true' pref='Test/on'", false, false,
        "");
}

void MainWindowTest::theTypeDecidesWhatElseIsRead()
{
    QFETCH(QByteArray, attributes);
    QFETCH(bool, checkable);
    QFETCH(bool, checked);
    QFETCH(QString, signal);
    settings().setValue("Test/on", true);

    QVERIFY(load("<actions><action name='Entry' tooltip='Tip' shortcut='F5' " + attributes +
                 "/></actions>"));
    QVERIFY(only());
    QCOMPARE(only()->text(), QString("Entry"));
    QCOMPARE(only()->toolTip(), QString("Tip"));
    QCOMPARE(only()->shortcut(), QKeySequence("F5"));
    QCOMPARE(only()->isCheckable(), checkable);
    QCOMPARE(only()->isChecked(), checked);

    // what there is to disconnect was connected
    QStringList connected;
    for (const char* name : {"triggered()", "triggered(bool)", "toggled(bool)"}) {
        const int index = QAction::staticMetaObject.indexOfSignal(name);
        if (QMetaObject::disconnect(only(), index, window.get(), -1)) {
            connected << name;
        }
    }
    QCOMPARE(connected.join(' '), signal);
}

void MainWindowTest::anEntryOfTypeScriptIsInert()
{
    QVERIFY(load("<actions><action name='Run' type='script' function='doThis' file='run.js'/>"
                 "</actions>"));
    only()->trigger();
    QVERIFY(window->calls.isEmpty());
    QVERIFY(answers->shown.isEmpty());
}

void MainWindowTest::entriesReachNoSlot()
{
    QVERIFY(menus("<menubar><menu name='Do'>"
                  "<action name='This' type='callback' function='doThis' shortcut='F6'/>"
                  "<action name='Switch' type='callback' function='switchThis' checkable='true'/>"
                  "</menu></menubar>"));
    QVERIFY(toolBars("<gui><toolbar name='Bar'>"
                     "<action name='This' type='callback' function='doThis'/></toolbar></gui>"));
    const MessageLines warnings;
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    QMenu* const menu = window->menuBar()->actions().first()->menu();
    for (const int entry : {0, 1}) {
        answers->expectMenu([entry](QMenu& shown) {
            QAction* const action = shown.actions().at(entry);
            QTest::mouseClick(&shown, Qt::LeftButton, Qt::NoModifier,
                              shown.actionGeometry(action).center());
        });
        QSignalSpy chosen(menu->actions().at(entry), &QAction::triggered);
        QTest::mouseClick(window->menuBar(), Qt::LeftButton, Qt::NoModifier,
                          window->menuBar()->actionGeometry(menu->menuAction()).center());
        QTRY_COMPARE(chosen.count(), 1);
    }
    QVERIFY(menu->actions().at(1)->isChecked());
    auto* const bar = bars().first();
    QTest::mouseClick(bar->widgetForAction(bar->actions().first()), Qt::LeftButton);
    QTest::keyClick(window.get(), Qt::Key_F6);
    QVERIFY(window->calls.isEmpty());
    QCOMPARE(warnings.all().filter("slot"), QStringList());
    QCOMPARE(warnings.all().filter("connect"), QStringList());
}

void MainWindowTest::aPreferenceIsShownBeforeTheConnectionIsMade()
{
    settings().setValue("Test/on", true);
    QVERIFY(load("<actions><action name='Entry' type='callback' function='switchThis' "
                 "checkable='true' pref='Test/on'/></actions>"));
    QVERIFY(only()->isChecked());
    QVERIFY(window->calls.isEmpty());
}

void MainWindowTest::aPreferenceIsNeverWrittenBack()
{
    settings().setValue("Test/on", true);
    QVERIFY(load("<actions><action name='Entry' type='callback' function='switchThis' "
                 "checkable='true' pref='Test/on'/></actions>"));
    only()->toggle();
    QVERIFY(!only()->isChecked());
    QCOMPARE(settings().value("Test/on").toBool(), true);
}

void MainWindowTest::menusStandAsTheFileHasThem()
{
    QVERIFY(menus("<menubar><menu name='File'><action name='Open'/><separator/>"
                  "<menu name='Recent'><action name='First'/><separator/>"
                  "<menu name='Older'><action name='Last'/></menu></menu>"
                  "<toolbar name='no'/>text<action name='Quit'/></menu>"
                  "<action name='Loose'/><separator/><menu name='Help'/><menu/></menubar>"));
    QCOMPARE(linesOf(*window->menuBar()),
             QStringList({"[File]", "  Open", "  ---", "  [Recent]", "    First", "    ---",
                          "    [Older]", "      Last", "  Quit", "[Help]", "[]"}));
}

void MainWindowTest::aMenuFileAppendsToTheBar()
{
    QMenuBar bar;
    bar.addAction("First");
    QString path = write("menus.xml", "<menubar><menu name='File'/></menubar>");
    QVERIFY(window->buildMenuBar(path, &bar));
    QVERIFY(window->buildMenuBar(path, &bar));
    QCOMPARE(linesOf(bar), QStringList({"First", "[File]", "[File]"}));
    QVERIFY(!window->menuWidget());
}

void MainWindowTest::theMenuOfWindowsIsLeftToTheProgram()
{
    QVERIFY(menus("<menubar><menu name='Window'><action name='Tile'/><menu name='Sub'/></menu>"
                  "<menu name='window'><action name='Tile'/></menu>"
                  "<menu name='View'><menu name='Window'><action name='Inner'/></menu></menu>"
                  "</menubar>"));
    QCOMPARE(linesOf(*window->menuBar()),
             QStringList({"[window]", "  Tile", "[View]", "  [Window]", "    Inner"}));
    QCOMPARE(texts(actions()), QStringList({"Tile", "Inner"}));
}

void MainWindowTest::sameNamesGiveIndependentActions()
{
    QVERIFY(load("<actions><action name='Open' tooltip='of the actions'/></actions>"));
    QVERIFY(menus("<menubar><menu name='File'><action name='Open'/></menu></menubar>"));
    QVERIFY(toolBars("<gui><toolbar name='Bar'><action name='Open'/></toolbar></gui>"));
    QCOMPARE(texts(actions()), QStringList({"Open", "Open", "Open"}));
    QAction* const inMenu = window->menuBar()->actions().first()->menu()->actions().first();
    QAction* const inBar = bars().first()->actions().first();
    QVERIFY(inMenu != inBar);
    QCOMPARE(actions().at(0)->toolTip(), QString("of the actions"));
    QCOMPARE(inMenu->toolTip(), QString("Open"));
    inMenu->setEnabled(false);
    QVERIFY(inBar->isEnabled());
}

void MainWindowTest::menusHaveNoParentAndActionsHaveTheWindow()
{
    QVERIFY(menus("<menubar><menu name='File'><menu name='Sub'/><action name='Open'/></menu>"
                  "</menubar>"));
    QMenu* const menu = window->menuBar()->actions().first()->menu();
    QVERIFY(!menu->parent());
    QVERIFY(!menu->actions().first()->menu()->parent());
    QCOMPARE(menu->actions().last()->parent(), static_cast<QObject*>(window.get()));
}

void MainWindowTest::toolBarsStandAsTheFileHasThem()
{
    QVERIFY(toolBars("<gui><toolbar name='Map'><action name='Roam'/><separator/>"
                     "<menu name='no'/><action name='Zoom'/></toolbar><menu name='no'/>"
                     "<toolbar name='Second bar'/></gui>"));
    QCOMPARE(bars().size(), 2);
    QToolBar* const map = bars().first();
    QCOMPARE(map->windowTitle(), QString("Map"));
    QCOMPARE(map->objectName(), QString("Map"));
    QCOMPARE(map->allowedAreas(), Qt::ToolBarAreas(Qt::AllToolBarAreas));
    QCOMPARE(map->toolButtonStyle(), Qt::ToolButtonIconOnly);
    QCOMPARE(map->iconSize(), QSize(22, 22));
    QCOMPARE(linesOf(*map), QStringList({"Roam", "---", "Zoom"}));
    QCOMPARE(window->toolBarArea(map), Qt::TopToolBarArea);
    QCOMPARE(bars().last()->objectName(), QString("Second bar"));
    QCOMPARE(map->parent(), static_cast<QObject*>(window.get()));
}

void MainWindowTest::toolBarsTakeStyleAndIconSizeOfTheSettings()
{
    settings().setValue("Gui/MainWindow/iconsize", QSize(40, 30));
    settings().setValue("Gui/MainWindow/toolbuttonstyle", 3);
    QVERIFY(toolBars("<gui><toolbar name='Map'/></gui>"));
    QCOMPARE(bars().first()->iconSize(), QSize(40, 30));
    QCOMPARE(bars().first()->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
}

void MainWindowTest::aSecondCallAddsASecondSetOfToolBars()
{
    const QByteArray file = "<gui><toolbar name='A'/><toolbar name='B'/></gui>";
    QVERIFY(toolBars(file));
    QVERIFY(toolBars(file));
    QStringList names;
    for (const QToolBar* bar : bars()) {
        names << bar->objectName();
    }
    QCOMPARE(names, QStringList({"A", "B", "A", "B"}));
}

void MainWindowTest::anotherDocumentElementIsIgnored_data()
{
    QTest::addColumn<QByteArray>("root");
    for (const char* root : {"actions", "menubar", "gui", "Actions", "other"}) {
        QTest::newRow(root) << QByteArray(root);
    }
}

void MainWindowTest::anotherDocumentElementIsIgnored()
{
    QFETCH(QByteArray, root);
    const QByteArray content = "<" + root +
                               "><action name='A'/><menu name='M'/>"
                               "<toolbar name='T'/></" +
                               root + ">";
    QVERIFY(load(content));
    QCOMPARE(actions().size(), root == "actions" ? 1 : 0);
    QVERIFY(menus(content));
    QCOMPARE(window->menuBar()->actions().size(), root == "menubar" ? 1 : 0);
    QVERIFY(toolBars(content));
    QCOMPARE(bars().size(), root == "gui" ? 1 : 0);
    QVERIFY(answers->shown.isEmpty());
}

void MainWindowTest::namesAreComparedWithTheirCase()
{
    QVERIFY(load("<actions><Action name='No'/><action Name='Text' Type='callback'/></actions>"));
    QCOMPARE(texts(actions()), QStringList(QString()));
    QVERIFY(menus("<menubar><Menu name='No'/></menubar>"));
    QVERIFY(window->menuBar()->actions().isEmpty());
    QVERIFY(toolBars("<gui><Toolbar name='No'/></gui>"));
    QVERIFY(bars().isEmpty());
}

void MainWindowTest::aMissingFileIsTold_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<bool>("result");
    QTest::newRow("actions fail") << 0 << false;
    QTest::newRow("menus fail") << 1 << false;
    QTest::newRow("tool bars succeed") << 2 << true;
}

void MainWindowTest::aMissingFileIsTold()
{
    QFETCH(int, which);
    QFETCH(bool, result);
    const QString folderBefore = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    QString path = "no such.xml";
    answers->expectMessage();
    bool ok = false;
    switch (which) {
    case 0:
        ok = window->loadActions(path);
        break;
    case 1:
        ok = window->buildMenuBar(path, window->menuBar());
        break;
    default:
        ok = window->buildToolBars(path);
    }
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QVERIFY(QDir::setCurrent(folderBefore));
    QCOMPARE(ok, result);
    QVERIFY(absolute.startsWith('/'));
    QCOMPARE(answers->shown, QStringList("critical Error: Unable to load the configuration file '" +
                                         absolute + "'.\n [OK] on MainWindowTest"));
}

// A folder exists and cannot be opened as a file, whoever runs the test.
void MainWindowTest::aFileThatCannotBeOpenedIsRefusedInSilence()
{
    QString path = folder.path();
    QVERIFY(!window->loadActions(path));
    QVERIFY(!window->buildMenuBar(path, window->menuBar()));
    QVERIFY(!window->buildToolBars(path));
    QVERIFY(answers->shown.isEmpty());
}

void MainWindowTest::aFileThatIsNoXmlIsTold_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<QString>("kind");
    QTest::newRow("actions speak of a tool bar file") << 0 << "toolbar";
    QTest::newRow("menus") << 1 << "menu";
    QTest::newRow("tool bars") << 2 << "toolbar";
}

void MainWindowTest::aFileThatIsNoXmlIsTold()
{
    QFETCH(int, which);
    QFETCH(QString, kind);
    const QByteArray content = "<gui><toolbar>";
    QString reason;
    QVERIFY(!QDomDocument().setContent(content, &reason));
    QVERIFY(!reason.isEmpty());
    QString path = write("broken %1.xml", content); // what looks like a place marker is none

    answers->expectMessage();
    switch (which) {
    case 0:
        QVERIFY(!window->loadActions(path));
        break;
    case 1:
        QVERIFY(!window->buildMenuBar(path, window->menuBar()));
        break;
    default:
        QVERIFY(!window->buildToolBars(path));
    }
    QCOMPARE(answers->shown, QStringList("critical Error: Error parsing " + kind + " file " + path +
                                         ".\n\n" + reason + " [OK] on MainWindowTest"));
}

void MainWindowTest::aFileThatFailsLeavesWhatWasBuilt()
{
    QVERIFY(load("<actions><action name='Kept'/></actions>"));
    QVERIFY(menus("<menubar><menu name='Kept'/></menubar>"));
    QVERIFY(toolBars("<gui><toolbar name='Kept'/></gui>"));
    for (int i = 0; i < 3; ++i) {
        answers->expectMessage();
    }
    QVERIFY(!load("<actions><action name='Half'/>"));
    QVERIFY(!menus("<menubar><menu name='Half'/>"));
    QVERIFY(!toolBars("<gui><toolbar name='Half'/>"));
    QCOMPARE(texts(actions()), QStringList("Kept"));
    QCOMPARE(linesOf(*window->menuBar()), QStringList("[Kept]"));
    QCOMPARE(bars().size(), 1);
}

void MainWindowTest::withoutSettingsTheWindowHasItsFirstSize()
{
    window->resize(50, 50);
    window->restoreGuiPrefs();
    QCOMPARE(window->size(), QSize(600, 400));
}

void MainWindowTest::aWindowThatHintsALargerSizeGetsIt()
{
    auto* const wide = new QWidget;
    wide->setMinimumSize(700, 10);
    window->setCentralWidget(wide);
    QVERIFY(window->sizeHint().width() >= 700);
    window->restoreGuiPrefs();
    QCOMPARE(window->size(), QSize(window->sizeHint().width(), 400));

    settings().setValue("Gui/MainWindow/geometry", QByteArray()); // is as good as none
    window->resize(10, 10);
    window->restoreGuiPrefs();
    QCOMPARE(window->height(), 400);
}

void MainWindowTest::theLayoutComesBack()
{
    const auto build = [this] {
        QVERIFY(toolBars("<gui><toolbar name='A'/><toolbar name='B'/></gui>"));
        auto* const dock = new QDockWidget("Dock", window.get());
        dock->setObjectName("dock");
        window->addDockWidget(Qt::LeftDockWidgetArea, dock);
    };
    build();
    window->setGeometry(30, 40, 720, 510);
    window->addToolBar(Qt::BottomToolBarArea, bars().last());
    window->addDockWidget(Qt::RightDockWidgetArea, window->findChild<QDockWidget*>("dock"));
    window->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    window->setIconSize(QSize(31, 32));
    window->saveGuiPrefs();

    window = std::make_unique<ProgramWindow>(nullptr, Qt::WindowFlags());
    build();
    window->restoreGuiPrefs();
    QCOMPARE(window->geometry(), QRect(30, 40, 720, 510));
    QCOMPARE(window->toolBarArea(bars().first()), Qt::TopToolBarArea);
    QCOMPARE(window->toolBarArea(bars().last()), Qt::BottomToolBarArea);
    QCOMPARE(window->dockWidgetArea(window->findChild<QDockWidget*>("dock")),
             Qt::RightDockWidgetArea);
    QCOMPARE(window->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    QCOMPARE(window->iconSize(), QSize(31, 32));
}

void MainWindowTest::theFourPreferencesStandInTheirGroup()
{
    window->setToolButtonStyle(Qt::ToolButtonTextOnly);
    window->setIconSize(QSize(17, 18));
    window->saveGuiPrefs();
    QCOMPARE(settings().allKeys(),
             QStringList({"Gui/MainWindow/geometry", "Gui/MainWindow/iconsize",
                          "Gui/MainWindow/toolbarsanddocks", "Gui/MainWindow/toolbuttonstyle"}));
    QCOMPARE(settings().group(), QString());
    QCOMPARE(settings().value("Gui/MainWindow/geometry").toByteArray(), window->saveGeometry());
    QCOMPARE(settings().value("Gui/MainWindow/toolbarsanddocks").toByteArray(),
             window->saveState(1));
    QCOMPARE(settings().value("Gui/MainWindow/toolbuttonstyle").toInt(), 1);
    QCOMPARE(settings().value("Gui/MainWindow/iconsize").toSize(), QSize(17, 18));
    window->restoreGuiPrefs();
    QCOMPARE(settings().group(), QString());
}

void MainWindowTest::layoutsOfAnotherVersionAreLeft()
{
    QVERIFY(toolBars("<gui><toolbar name='A'/></gui>"));
    window->addToolBar(Qt::LeftToolBarArea, bars().first());
    const QByteArray ofAnotherVersion = window->saveState(2);
    const QByteArray ofThisVersion = window->saveState(1);
    window->addToolBar(Qt::TopToolBarArea, bars().first());

    settings().setValue("Gui/MainWindow/toolbarsanddocks", ofAnotherVersion);
    window->restoreGuiPrefs();
    QCOMPARE(window->toolBarArea(bars().first()), Qt::TopToolBarArea);
    settings().setValue("Gui/MainWindow/toolbarsanddocks", ofThisVersion);
    window->restoreGuiPrefs();
    QCOMPARE(window->toolBarArea(bars().first()), Qt::LeftToolBarArea);
}

void MainWindowTest::withoutSettingsTheIconSizeIsThatOfTheStyle()
{
    const QSize ofTheStyle = window->iconSize();
    window->setIconSize(QSize(50, 60));
    window->setToolButtonStyle(Qt::ToolButtonTextOnly);
    window->restoreGuiPrefs();
    QCOMPARE(window->iconSize(), ofTheStyle);
    QCOMPARE(window->toolButtonStyle(), Qt::ToolButtonIconOnly);
}

void MainWindowTest::aScriptEditorIsNotOpened()
{
    QString name = "script.js";
    window->openScriptEditor(name);
    QCOMPARE(name, QString("script.js"));
    QVERIFY(answers->shown.isEmpty());
}

int main(int argc, char** argv)
{
    QTemporaryDir store;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, store.path());
    Application application(argc, argv, "MainWindowTest");
    MainWindowTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "MainWindowTest.moc"
