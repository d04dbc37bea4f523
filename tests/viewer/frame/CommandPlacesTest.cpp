#include <viewer/frame/CommandPlaces.h>
#include <viewer/frame/Folders.h>

#include <corvane/core/Application.h>
#include <corvane/core/LogMessageHandler.h>
#include <corvane/gui/MainWindow.h>

#include <QAction>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QToolBar>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;
using Gui::MainWindow;

namespace {

class Lines final : public LogMessageHandler
{
public:
    Lines() { Application::installLogMessageHandler(this); }
    ~Lines() { Application::installLogMessageHandler(nullptr); }
    void logMessage(const QString& message, LogLevel level, const QDateTime&) override
    {
        lines << Application::getLogLevelStr(level) + ' ' + message;
    }
    void setLogLevel(LogLevel) override {}
    LogLevel getLogLevel() override { return Debug; }

    QStringList lines;
};

QStringList textsOf(const QWidget* widget)
{
    QStringList texts;
    for (const QAction* action : widget->actions()) {
        texts << (action->isSeparator() ? "---" : action->text());
    }
    return texts;
}

} // namespace

class CommandPlacesTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void aCommandTakesTheLookOfItsEntry();
    void whatAnEntryDoesNotTellStays();
    void aCommandStandsInThePlaceOfItsEntry();
    void aCommandIsTheSameInEveryPlace();
    void aPlaceMayHoldSeveralOrNone();
    void subMenusHoldCommandsToo();
    void anEntryWithoutACommandIsLeftOut();
    void aSecondMenuFileFillsItsOwnPlacesOnly();
    void thePlaceOfTheWindowsIsTold();
    void aFileOfTheLanguageGoesFirst();

private:
    QString write(const QString& name, const QByteArray& content)
    {
        QFile file(folder.filePath(name));
        const bool ok = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
        return ok ? file.fileName() : QString();
    }
    QAction* add(const QString& name, const QString& text)
    {
        auto* const action = new QAction(text, window.get());
        action->setObjectName(name);
        return action;
    }
    QList<QMenu*> build(const QByteArray& content)
    {
        QList<QMenu*> built;
        CommandPlaces places(window.get());
        places.offer("none", {});
        places.offer("both", {open, quit});
        places.buildMenus(write("menus.xml", content), &built);
        for (QMenu* menu : built) {
            if (menu) {
                made << menu;
            }
        }
        return built;
    }

    QTemporaryDir folder;
    std::unique_ptr<MainWindow> window;
    QList<QMenu*> made;
    QAction* open = nullptr;
    QAction* quit = nullptr;
};

void CommandPlacesTest::init()
{
    QVERIFY(folder.isValid());
    window = std::make_unique<MainWindow>(nullptr, Qt::WindowFlags());
    open = add("actionOpen", "Open");
    quit = add("actionQuit", "Quit");
}

void CommandPlacesTest::cleanup()
{
    window.reset();
    qDeleteAll(made);
    made.clear();
}

void CommandPlacesTest::aCommandTakesTheLookOfItsEntry()
{
    CommandPlaces places(window.get());
    QVERIFY(places.readActions(
        write("actions.xml", "<actions><other/><action name='&amp;Load' function='actionOpen' "
                             "tooltip='Loads' shortcut='Ctrl+L' icon='x.png'/></actions>")));
    QCOMPARE(open->text(), QString("&Load"));
    QCOMPARE(open->toolTip(), QString("Loads"));
    QCOMPARE(open->shortcut(), QKeySequence("Ctrl+L"));
    QVERIFY(open->icon().cacheKey() != 0);
    QCOMPARE(quit->text(), QString("Quit"));
}

void CommandPlacesTest::whatAnEntryDoesNotTellStays()
{
    open->setShortcut(QKeySequence("Ctrl+O"));
    open->setToolTip("Tip");
    CommandPlaces places(window.get());
    QVERIFY(places.readActions(
        write("actions.xml", "<actions><action function='actionOpen'/></actions>")));
    QCOMPARE(open->text(), QString("Open"));
    QCOMPARE(open->toolTip(), QString("Tip"));
    QCOMPARE(open->shortcut(), QKeySequence("Ctrl+O"));
}

void CommandPlacesTest::aCommandStandsInThePlaceOfItsEntry()
{
    build("<menubar><menu name='File'><separator/><action name='Load' function='actionOpen'/>"
          "<separator/><action function='actionQuit'/></menu></menubar>");
    QCOMPARE(made.size(), 1);
    QCOMPARE(textsOf(made.first()), QStringList({"---", "Load", "---", "Quit"}));
    QCOMPARE(made.first()->actions().at(1), open);
    QSignalSpy triggered(open, &QAction::triggered);
    made.first()->actions().at(1)->trigger();
    QCOMPARE(triggered.count(), 1);
}

void CommandPlacesTest::aCommandIsTheSameInEveryPlace()
{
    build("<menubar><menu name='File'><action function='actionOpen'/></menu></menubar>");
    CommandPlaces places(window.get());
    QVERIFY(places.buildToolBars(
        write("bars.xml", "<gui><toolbar name='A'><action function='actionOpen'/><separator/>"
                          "</toolbar><toolbar name='B'><action function='actionQuit'/>"
                          "</toolbar></gui>")));
    QCOMPARE(window->findChild<QToolBar*>("A")->actions().first(), open);
    QCOMPARE(window->findChild<QToolBar*>("B")->actions(), QList<QAction*>{quit});
    QCOMPARE(made.first()->actions(), QList<QAction*>{open});
}

void CommandPlacesTest::aPlaceMayHoldSeveralOrNone()
{
    build("<menubar><menu name='File'><action function='none'/><action function='both'/>"
          "</menu></menubar>");
    QCOMPARE(textsOf(made.first()), QStringList({"Open", "Quit"}));
}

void CommandPlacesTest::subMenusHoldCommandsToo()
{
    build("<menubar><menu name='File'><toolbar/><menu name='More'><action function='actionOpen'/>"
          "</menu><action function='actionQuit'/></menu></menubar>");
    QMenu* const more = made.first()->actions().first()->menu();
    QCOMPARE(more->parent(), made.first()); // goes with it
    QCOMPARE(more->title(), QString("More"));
    QCOMPARE(more->actions(), QList<QAction*>{open});
    QCOMPARE(made.first()->actions().last(), quit);
}

void CommandPlacesTest::anEntryWithoutACommandIsLeftOut()
{
    const Lines log;
    build("<menubar><menu name='File'><action name='Fly' function='actionFly'/>"
          "<action name='Run' type='script' file='run.js'/><action function='actionQuit'/>"
          "</menu></menubar>");
    QCOMPARE(textsOf(made.first()), QStringList("Quit"));
    QCOMPARE(log.lines, QStringList({"Warning left out of 'File': there is no command 'actionFly'",
                                     "Warning left out of 'File': there is no command ''"}));
}

void CommandPlacesTest::aSecondMenuFileFillsItsOwnPlacesOnly()
{
    build("<menubar><menu name='File'><action function='actionOpen'/></menu></menubar>");
    build("<menubar><menu name='More'><action function='actionQuit'/></menu></menubar>");
    QCOMPARE(made.size(), 2);
    QCOMPARE(made.at(0)->actions(), QList<QAction*>{open});
    QCOMPARE(made.at(1)->actions(), QList<QAction*>{quit});
}

void CommandPlacesTest::thePlaceOfTheWindowsIsTold()
{
    const QList<QMenu*> built =
        build("<menubar><menu name='File'/><menu name='Window'><action name='no'/></menu>"
              "<menu name='Help'><action function='actionOpen'/></menu></menubar>");
    QCOMPARE(built.size(), 3);
    QCOMPARE(built.at(0)->title(), QString("File"));
    QVERIFY(!built.at(1));
    QCOMPARE(built.at(2)->title(), QString("Help"));
    QCOMPARE(built.at(2)->actions(), QList<QAction*>{open});
}

// The language of the tests is that of the locale C.
void CommandPlacesTest::aFileOfTheLanguageGoesFirst()
{
    const QDir config(QCoreApplication::applicationDirPath() + "/config");
    QVERIFY(QDir(config).removeRecursively());
    QCOMPARE(configFile("a.xml"), config.filePath("english/a.xml"));
    QVERIFY(config.mkpath("c"));
    QFile file(config.filePath("c/a.xml"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(QFileInfo(configFile("a.xml")), QFileInfo(config.filePath("c/a.xml")));
    QCOMPARE(configFile("b.xml"), config.filePath("english/b.xml"));
}

int main(int argc, char** argv)
{
    QTemporaryDir store;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, store.path());
    Application application(argc, argv, "CommandPlacesTest");
    CommandPlacesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "CommandPlacesTest.moc"
