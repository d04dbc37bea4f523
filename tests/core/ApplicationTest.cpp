#include <corvane/core/Application.h>

#include <corvane/core/LogMessageHandler.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileOpenEvent>
#include <QLocale>
#include <QMainWindow>
#include <QSettings>
#include <QSignalSpy>
#include <QStyle>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <vector>

using namespace Corvane;

namespace {

// Takes "level message" lines, from any thread.
class RecordingSink final : public LogMessageHandler
{
public:
    explicit RecordingSink(LogLevel initialLevel = Information) : level(initialLevel) {}

    void logMessage(const QString& message, LogLevel messageLevel, const QDateTime& time) override
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards lines and times
        lines << QStringLiteral("%1 %2").arg(QString::number(messageLevel), message);
        times << time;
    }
    void setLogLevel(LogLevel newLevel) override { level = newLevel; }
    LogLevel getLogLevel() override { return level; }

    LogLevel level;
    QStringList lines;
    QList<QDateTime> times;

private:
    std::mutex mutex;
};

// One program at a time, with a command line that names the style "windows": Qt's own choice
// would be the native style, and a test of it could not fail.
class Program
{
public:
    explicit Program(const QString& name)
        : application(std::make_unique<Application>(count, arguments, name))
    {
    }
    Program(bool guiEnabled, const QString& name)
        : application(std::make_unique<Application>(count, arguments, guiEnabled, name))
    {
    }
    Application* operator->() const { return application.get(); }
    Application* get() const { return application.get(); }

private:
    char program[7] = "viewer";
    char option[7] = "-style";
    char style[8] = "windows";
    char* arguments[4] = {program, option, style, nullptr};
    int count = 3;
    std::unique_ptr<Application> application;
};

QString settingsFileOf(const QString& name)
{
    return QString::fromLocal8Bit(qgetenv("XDG_CONFIG_HOME")) + "/Corvane Geospatial/" + name +
           ".ini";
}

void store(const QString& name, const QString& key, const QVariant& value)
{
    QSettings(settingsFileOf(name), QSettings::IniFormat).setValue(key, value);
}

QVariant stored(const QString& name, const QString& key)
{
    return QSettings(settingsFileOf(name), QSettings::IniFormat).value(key);
}

QStringList warnings;

void collectWarnings(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtWarningMsg) {
        warnings << message;
    }
}

QString translationsFolder()
{
    return QCoreApplication::applicationDirPath() + "/translations";
}

} // namespace

class ApplicationTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void isASingleInstanceApplicationWithNothingOfItsOwnToCall();
    void namesOrganisationAndProgram();
    void colonsBecomeSpacesInTheProgramsName_data();
    void colonsBecomeSpacesInTheProgramsName();
    void settingsAreAnIniFileOfTheUser();
    void settingsAreWrittenWhenTheProgramEnds();
    void settingsAreKeptInTheFileThatIsChosen();
    void aMissingSettingsFileIsAnEmptyStore();
    void instanceIsTheApplicationOrNull();
    void instanceIsNullForAnApplicationOfAnotherClass();
    void versionsAreConstant();
    void theMainWindowIsTheFirstThatIsOne();

    void theNativeStyleIsFusion();
    void theStyleAtStart_data();
    void theStyleAtStart();
    void withoutGuiNoStyleIsRead();
    void theStyleIsKept();

    void withoutASinkLoggingDoesNothing();
    void linesBelowTheSinksLevelAreDropped_data();
    void linesBelowTheSinksLevelAreDropped();
    void linesReachTheSinkAsTheyAre();
    void theLevelIsTheSinks();
    void installingReplacesTheSink();
    void theEndOfTheProgramClearsTheSink();
    void anyThreadLogs();
    void levelsHaveNames_data();
    void levelsHaveNames();

    void qtMessagesGoToTheSinkWhenSettingsSayIt_data();
    void qtMessagesGoToTheSinkWhenSettingsSayIt();
    void qtMessagesCarryTheirPlace();
    void qtMessagesWithoutAPlaceHaveEmptyTexts();
    void qtMessageTypesMapToLevels_data();
    void qtMessageTypesMapToLevels();
    void qtMessagesOfAnUnknownTypeAreDropped();
    void qtMessagesPassTheSinksLevelBy();
    void qtMessagesWithoutASinkGoNowhere();
    void qtLoggingCanBeSwitched();

    void openingAFileIsAMessage_data();
    void openingAFileIsAMessage();
    void otherEventsGoToQt();

    void translationsAreInstalledInOrder();
    void aMissingTranslationWarnsAndIsLeftOut();
    void aTranslationFileMayHaveNoSuffix();
    void translationsEndWithTheirList();
    void theLanguageBecomesTheDefaultLocale();
    void levelNamesAreTranslated();
};

void ApplicationTest::init()
{
    warnings.clear();
    QFile::remove(settingsFileOf("Viewer"));
}

void ApplicationTest::cleanup()
{
    Application::installLogMessageHandler(nullptr);
    qInstallMessageHandler(nullptr);
    QLocale::setDefault(QLocale::c());
}

void ApplicationTest::isASingleInstanceApplicationWithNothingOfItsOwnToCall()
{
    static_assert(std::is_base_of_v<QtSingleApplication, Application>);
    static_assert(std::is_base_of_v<QApplication, Application>);
    const QMetaObject& meta = Application::staticMetaObject;
    QCOMPARE(meta.className(), "Corvane::Application");
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void ApplicationTest::namesOrganisationAndProgram()
{
    const Program program("Viewer");
    QCOMPARE(QCoreApplication::organizationName(), QStringLiteral("Corvane Geospatial"));
    QCOMPARE(QCoreApplication::organizationDomain(), QStringLiteral("corvane.com"));
    QCOMPARE(QCoreApplication::applicationName(), QStringLiteral("Viewer"));
}

void ApplicationTest::colonsBecomeSpacesInTheProgramsName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("applicationName");
    QTest::addColumn<QString>("fileName");
    QTest::newRow("a plain name") << "Viewer"
                                  << "Viewer"
                                  << "Viewer.ini";
    QTest::newRow("a colon and a space leave two spaces in the file's name") << "Viewer: Maps"
                                                                             << "Viewer Maps"
                                                                             << "Viewer  Maps.ini";
    QTest::newRow("every colon") << "a:b::c"
                                 << "a b c"
                                 << "a b  c.ini";
    QTest::newRow("a colon at the end") << "Viewer:"
                                        << "Viewer"
                                        << "Viewer .ini";
}

void ApplicationTest::colonsBecomeSpacesInTheProgramsName()
{
    QFETCH(QString, name);
    const Program program(name);
    QTEST(QCoreApplication::applicationName(), "applicationName");
    QTEST(QFileInfo(program->getSettings()->fileName()).fileName(), "fileName");
}

void ApplicationTest::settingsAreAnIniFileOfTheUser()
{
    const Program program("Viewer");
    QSettings* const settings = program->getSettings();
    QCOMPARE(settings->format(), QSettings::IniFormat);
    QCOMPARE(settings->scope(), QSettings::UserScope);
    QCOMPARE(settings->organizationName(), QStringLiteral("Corvane Geospatial"));
    QCOMPARE(settings->applicationName(), QStringLiteral("Viewer"));
    QCOMPARE(settings->fileName(), settingsFileOf("Viewer"));
}

void ApplicationTest::settingsAreWrittenWhenTheProgramEnds()
{
    {
        const Program program("Viewer");
        program->getSettings()->setValue("Test/key", 17);
    }
    QVERIFY(QFile::exists(settingsFileOf("Viewer")));
    QCOMPARE(stored("Viewer", "Test/key").toInt(), 17);
    const Program next("Viewer");
    QCOMPARE(next->getSettings()->value("Test/key").toInt(), 17);
}

void ApplicationTest::settingsAreKeptInTheFileThatIsChosen()
{
    const QString chosen = QDir::current().absoluteFilePath("chosen.ini");
    QFile::remove(chosen);
    Application::useSettingsFile(chosen);
    {
        const Program program("Viewer");
        QCOMPARE(program->getSettings()->fileName(), chosen);
        program->getSettings()->setValue("Test/key", 18);
    }
    Application::useSettingsFile(QString());
    QCOMPARE(QSettings(chosen, QSettings::IniFormat).value("Test/key").toInt(), 18);
    QVERIFY(!QFile::exists(settingsFileOf("Viewer")));
    const Program next("Viewer");
    QCOMPARE(next->getSettings()->fileName(), settingsFileOf("Viewer"));
}

void ApplicationTest::aMissingSettingsFileIsAnEmptyStore()
{
    const Program program("Viewer");
    // without the fall-backs to the organisation's and the system's files
    program->getSettings()->setFallbacksEnabled(false);
    QCOMPARE(program->getSettings()->allKeys(), QStringList());
}

void ApplicationTest::instanceIsTheApplicationOrNull()
{
    QCOMPARE(Application::instance(), nullptr);
    {
        const Program program("Viewer");
        QCOMPARE(Application::instance(), program.get());
    }
    QCOMPARE(Application::instance(), nullptr);
}

void ApplicationTest::instanceIsNullForAnApplicationOfAnotherClass()
{
    char name[] = "other";
    char* arguments[] = {name, nullptr};
    int count = 1;
    const QApplication other(count, arguments);
    QVERIFY(QCoreApplication::instance());
    QCOMPARE(Application::instance(), nullptr);
}

void ApplicationTest::versionsAreConstant()
{
    QCOMPARE(Application::applicationVersion(), QStringLiteral("16.7.0.1963"));
    QCOMPARE(Application::libraryVersion(), QStringLiteral("16.7.0.1963"));
}

void ApplicationTest::theMainWindowIsTheFirstThatIsOne()
{
    const Program program("Viewer");
    QCOMPARE(program->getMainWindow(), nullptr);
    const QWidget plain;
    QCOMPARE(program->getMainWindow(), nullptr);

    QMainWindow one;
    QCOMPARE(program->getMainWindow(), &one);
    const QMainWindow two;
    QMainWindow* first = nullptr;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (int i = 0; i < widgets.size() && !first; ++i) {
        first = qobject_cast<QMainWindow*>(widgets.at(i));
    }
    QVERIFY(first);
    QCOMPARE(program->getMainWindow(), first);
}

void ApplicationTest::theNativeStyleIsFusion()
{
    QCOMPARE(Application::getNativeSystemStyleName(), QStringLiteral("fusion"));
}

void ApplicationTest::theStyleAtStart_data()
{
    QTest::addColumn<QVariant>("storedStyle");
    QTest::addColumn<QString>("style");
    QTest::newRow("nothing stored: the native one") << QVariant() << "fusion";
    QTest::newRow("a stored name") << QVariant("Fusion") << "fusion";
    QTest::newRow("a stored empty text leaves Qt's choice") << QVariant("") << "windows";
    QTest::newRow("an unknown name leaves Qt's choice") << QVariant("brocade") << "windows";
}

void ApplicationTest::theStyleAtStart()
{
    QFETCH(QVariant, storedStyle);
    if (storedStyle.isValid()) {
        store("Viewer", "Gui/style", storedStyle);
    }
    const Program program("Viewer");
    QTEST(QApplication::style()->objectName(), "style");
}

void ApplicationTest::withoutGuiNoStyleIsRead()
{
    store("Viewer", "Gui/style", "fusion");
    {
        const Program program(false, "Viewer");
        QCOMPARE(QApplication::style()->objectName(), QStringLiteral("windows"));
    }
    // the object is a QGuiApplication nevertheless, and so it keeps its style
    QCOMPARE(stored("Viewer", "Gui/style"), QVariant("windows"));

    store("Viewer", "Gui/style", "fusion");
    const Program program(true, "Viewer");
    QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));
}

void ApplicationTest::theStyleIsKept()
{
    {
        const Program program("Viewer");
        QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));
        QVERIFY(!stored("Viewer", "Gui/style").isValid());
        QApplication::setStyle("windows");
    }
    QCOMPARE(stored("Viewer", "Gui/style"), QVariant("windows"));
    const Program next("Viewer");
    QCOMPARE(QApplication::style()->objectName(), QStringLiteral("windows"));
}

void ApplicationTest::withoutASinkLoggingDoesNothing()
{
    QCOMPARE(Application::getLogLevel(), Information);
    Application::setLogLevel(Critical);
    QCOMPARE(Application::getLogLevel(), Information);
    Application::logMessage("lost", Critical, QDateTime::currentDateTime());

    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    QCOMPARE(sink.lines, QStringList());
    QCOMPARE(sink.level, Information);
}

void ApplicationTest::linesBelowTheSinksLevelAreDropped_data()
{
    QTest::addColumn<int>("sinkLevel");
    QTest::addColumn<QStringList>("passed");
    QTest::newRow("debug takes all")
        << 0 << QStringList({"0 m", "1 m", "2 m", "3 m", "4 m", "5 m", "6 m"});
    QTest::newRow("information") << 1 << QStringList({"1 m", "2 m", "3 m", "4 m", "5 m", "6 m"});
    QTest::newRow("warning") << 2 << QStringList({"2 m", "3 m", "4 m", "5 m", "6 m"});
    QTest::newRow("error") << 3 << QStringList({"3 m", "4 m", "5 m", "6 m"});
    QTest::newRow("critical") << 4 << QStringList({"4 m", "5 m", "6 m"});
    QTest::newRow("none takes only what is no level") << 5 << QStringList({"5 m", "6 m"});
    QTest::newRow("levels are signed")
        << -1 << QStringList({"-1 m", "0 m", "1 m", "2 m", "3 m", "4 m", "5 m", "6 m"});
}

void ApplicationTest::linesBelowTheSinksLevelAreDropped()
{
    QFETCH(int, sinkLevel);
    RecordingSink sink(static_cast<LogLevel>(sinkLevel));
    Application::installLogMessageHandler(&sink);
    for (int level = -1; level <= 6; ++level) {
        Application::logMessage("m", static_cast<LogLevel>(level), QDateTime());
    }
    QTEST(sink.lines, "passed");
}

void ApplicationTest::linesReachTheSinkAsTheyAre()
{
    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    const QDateTime time(QDate(2016, 7, 1), QTime(12, 0, 1, 5));
    Application::logMessage("100 % of %1\n", Warning, time);
    QCOMPARE(sink.lines, QStringList("2 100 % of %1\n"));
    QCOMPARE(sink.times, QList<QDateTime>({time}));
}

void ApplicationTest::theLevelIsTheSinks()
{
    RecordingSink sink(Error);
    Application::installLogMessageHandler(&sink);
    QCOMPARE(Application::getLogLevel(), Error);
    Application::setLogLevel(Debug);
    QCOMPARE(sink.level, Debug);
    QCOMPARE(Application::getLogLevel(), Debug);
}

void ApplicationTest::installingReplacesTheSink()
{
    RecordingSink one;
    RecordingSink two;
    Application::installLogMessageHandler(&one);
    Application::logMessage("first", Error, QDateTime());
    Application::installLogMessageHandler(&two);
    Application::logMessage("second", Error, QDateTime());
    Application::installLogMessageHandler(nullptr);
    Application::logMessage("third", Error, QDateTime());
    QCOMPARE(one.lines, QStringList("3 first"));
    QCOMPARE(two.lines, QStringList("3 second"));
}

void ApplicationTest::theEndOfTheProgramClearsTheSink()
{
    RecordingSink sink(Debug);
    {
        const Program program("Viewer");
        Application::installLogMessageHandler(&sink);
        Application::setQtLogging(true);
        Application::logMessage("alive", Error, QDateTime());
    }
    Application::logMessage("gone", Error, QDateTime());
    qWarning("gone as well");
    QCOMPARE(sink.lines, QStringList("3 alive"));
    QCOMPARE(Application::getLogLevel(), Information);
}

void ApplicationTest::anyThreadLogs()
{
    constexpr int threadCount = 4;
    constexpr int linesPerThread = 50;
    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([] {
            for (int line = 0; line < linesPerThread; ++line) {
                Application::logMessage("tile", Warning, QDateTime());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    QCOMPARE(sink.lines.count("2 tile"), threadCount * linesPerThread);
}

void ApplicationTest::levelsHaveNames_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("name");
    QTest::newRow("0") << 0 << "Debug";
    QTest::newRow("1") << 1 << "Information";
    QTest::newRow("2") << 2 << "Warning";
    QTest::newRow("3") << 3 << "Error";
    QTest::newRow("4") << 4 << "Critical";
    QTest::newRow("5") << 5 << "None";
    QTest::newRow("anything above") << 6 << "None";
    QTest::newRow("far above") << 4711 << "None";
}

void ApplicationTest::levelsHaveNames()
{
    QFETCH(int, level);
    QTEST(Application::getLogLevelStr(static_cast<LogLevel>(level)), "name");
}

void ApplicationTest::qtMessagesGoToTheSinkWhenSettingsSayIt_data()
{
    QTest::addColumn<QVariant>("setting");
    QTest::addColumn<bool>("logged");
    QTest::newRow("not set") << QVariant() << false;
    QTest::newRow("set") << QVariant(true) << true;
    QTest::newRow("set to false") << QVariant(false) << false;
}

void ApplicationTest::qtMessagesGoToTheSinkWhenSettingsSayIt()
{
    QFETCH(QVariant, setting);
    QFETCH(bool, logged);
    if (setting.isValid()) {
        store("Viewer", "Gui/MainWindow/LogQtMessages", setting);
    }
    qInstallMessageHandler(collectWarnings); // replaced by either choice
    const Program program("Viewer");
    warnings.clear(); // what Qt says about the platform
    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    QMessageLogger("map.cpp", 12, "paint()").warning("slow");
    QCOMPARE(sink.lines, logged ? QStringList("2 slow (map.cpp:12, paint())") : QStringList());
    QCOMPARE(warnings, QStringList());
}

void ApplicationTest::qtMessagesCarryTheirPlace()
{
    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    Application::setQtLogging(true);
    const QDateTime before = QDateTime::currentDateTime();
    QMessageLogger("map.cpp", 12, "void paint(int)").warning("%s", "100 %1 of %2 %3 %4");
    const QDateTime after = QDateTime::currentDateTime();
    QCOMPARE(sink.lines, QStringList("2 100 %1 of %2 %3 %4 (map.cpp:12, void paint(int))"));
    QVERIFY(before <= sink.times.at(0) && sink.times.at(0) <= after);
}

void ApplicationTest::qtMessagesWithoutAPlaceHaveEmptyTexts()
{
    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    Application::setQtLogging(true);
    QMessageLogger(nullptr, 0, nullptr).warning("slow");
    QCOMPARE(sink.lines, QStringList("2 slow (:0, )"));
}

void ApplicationTest::qtMessageTypesMapToLevels_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("line");
    QTest::newRow("debug") << int(QtDebugMsg) << "0 text (f:1, g)";
    QTest::newRow("warning") << int(QtWarningMsg) << "2 text (f:1, g)";
    QTest::newRow("critical is an error") << int(QtCriticalMsg) << "3 text (f:1, g)";
    QTest::newRow("fatal is critical") << int(QtFatalMsg) << "4 text (f:1, g)";
    QTest::newRow("info") << int(QtInfoMsg) << "1 text (f:1, g)";
}

void ApplicationTest::qtMessageTypesMapToLevels()
{
    QFETCH(int, type);
    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    Application::setQtLogging(true);
    // called directly: Qt ends the program after a fatal message
    const QtMessageHandler handler = qInstallMessageHandler(nullptr);
    handler(static_cast<QtMsgType>(type), QMessageLogContext("f", 1, "g", "default"), "text");
    QFETCH(QString, line);
    QCOMPARE(sink.lines, QStringList(line));
}

void ApplicationTest::qtMessagesOfAnUnknownTypeAreDropped()
{
    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    Application::setQtLogging(true);
    const QtMessageHandler handler = qInstallMessageHandler(nullptr);
    handler(static_cast<QtMsgType>(5), QMessageLogContext("f", 1, "g", "default"), "text");
    QCOMPARE(sink.lines, QStringList());
}

void ApplicationTest::qtMessagesPassTheSinksLevelBy()
{
    RecordingSink sink(None);
    Application::installLogMessageHandler(&sink);
    Application::setQtLogging(true);
    QMessageLogger("f", 1, "g").debug("text");
    QCOMPARE(sink.lines, QStringList("0 text (f:1, g)"));
}

void ApplicationTest::qtMessagesWithoutASinkGoNowhere()
{
    Application::setQtLogging(true);
    QMessageLogger("f", 1, "g").warning("lost");
    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    QMessageLogger("f", 1, "g").warning("kept");
    QCOMPARE(sink.lines, QStringList("2 kept (f:1, g)"));
}

void ApplicationTest::qtLoggingCanBeSwitched()
{
    const QtMessageHandler standard = qInstallMessageHandler(nullptr);
    RecordingSink sink;
    Application::installLogMessageHandler(&sink);
    Application::setQtLogging(true);
    QMessageLogger("f", 1, "g").warning("on");
    Application::setQtLogging(false);
    QVERIFY(qInstallMessageHandler(collectWarnings) == standard);
    QMessageLogger("f", 1, "g").warning("off");
    QCOMPARE(sink.lines, QStringList("2 on (f:1, g)"));
    QCOMPARE(warnings, QStringList("off"));
}

void ApplicationTest::openingAFileIsAMessage_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("a file") << QUrl::fromLocalFile("/maps/a b.ecw") << QStringList("/maps/a b.ecw");
    QTest::newRow("a URL") << QUrl("https://server.test/image.ecw?x=1")
                           << QStringList("https://server.test/image.ecw?x=1");
    QTest::newRow("neither") << QUrl() << QStringList();
}

void ApplicationTest::openingAFileIsAMessage()
{
    QFETCH(QUrl, url);
    QFETCH(QStringList, messages);
    const Program program("Viewer");
    const QSignalSpy spy(program.get(), &Application::messageReceived);
    QFileOpenEvent event(url);
    QVERIFY(QCoreApplication::sendEvent(program.get(), &event));
    QStringList received;
    for (const QList<QVariant>& arguments : spy) {
        received << arguments.at(0).toString();
    }
    QCOMPARE(received, messages);
}

void ApplicationTest::otherEventsGoToQt()
{
    const Program program("Viewer");
    const QSignalSpy spy(program.get(), &Application::messageReceived);
    // Qt passes this one on to the windows
    class Window : public QWidget
    {
    public:
        int languageChanges = 0;
        void changeEvent(QEvent* event) override
        {
            languageChanges += event->type() == QEvent::LanguageChange ? 1 : 0;
        }
    } window;
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(program.get(), &change);
    QCoreApplication::processEvents();
    QCOMPARE(window.languageChanges, 1);
    QCOMPARE(spy.count(), 0);
}

void ApplicationTest::translationsAreInstalledInOrder()
{
    const Program program("Viewer");
    const auto translators = program->initializeTranslations({"base", "override"}, "de");
    QCOMPARE(translators.size(), 2);
    QCOMPARE(translators.at(0)->translate("Corvane::Application", "Warning"),
             QStringLiteral("Warnung"));
    QCOMPARE(translators.at(1)->translate("Corvane::Application", "Warning"),
             QStringLiteral("Achtung"));
    // the one installed last is asked first
    QCOMPARE(QCoreApplication::translate("Corvane::Application", "Warning"),
             QStringLiteral("Achtung"));
    QCOMPARE(QCoreApplication::translate("Corvane::Application", "Error"),
             QStringLiteral("Fehler"));
}

void ApplicationTest::aMissingTranslationWarnsAndIsLeftOut()
{
    const Program program("Viewer");
    qInstallMessageHandler(collectWarnings);
    const auto translators =
        program->initializeTranslations({"missing", "base", "lost \u00E4"}, "de");
    QCOMPARE(translators.size(), 1);
    QCOMPARE(translators.at(0)->translate("Corvane::Application", "Warning"),
             QStringLiteral("Warnung"));
    QCOMPARE(warnings,
             QStringList({QString("Can't load module translator file 'missing_de' in directory "
                                  "'%1'.")
                              .arg(translationsFolder()),
                          QString("Can't load module translator file 'lost \u00E4_de' in directory "
                                  "'%1'.")
                              .arg(translationsFolder())}));
}

void ApplicationTest::aTranslationFileMayHaveNoSuffix()
{
    const Program program("Viewer");
    const QString bare = translationsFolder() + "/bare_de";
    QFile::remove(bare);
    QVERIFY(QFile::copy(translationsFolder() + "/base_de.qm", bare));
    const auto translators = program->initializeTranslations({"bare"}, "de");
    QCOMPARE(translators.size(), 1);
    QVERIFY(QFile::remove(bare));
}

void ApplicationTest::translationsEndWithTheirList()
{
    const Program program("Viewer");
    auto translators = program->initializeTranslations({"base"}, "de");
    QCOMPARE(Application::getLogLevelStr(Warning), QStringLiteral("Warnung"));
    translators.clear();
    QCOMPARE(Application::getLogLevelStr(Warning), QStringLiteral("Warning"));
}

void ApplicationTest::theLanguageBecomesTheDefaultLocale()
{
    const Program program("Viewer");
    const auto translators = program->initializeTranslations({}, "de_AT");
    QVERIFY(translators.isEmpty());
    QCOMPARE(QLocale().name(), QStringLiteral("de_AT"));
}

void ApplicationTest::levelNamesAreTranslated()
{
    const Program program("Viewer");
    const auto translators = program->initializeTranslations({"base"}, "de");
    QCOMPARE(translators.size(), 1);
    QStringList names;
    for (int level = 0; level <= 6; ++level) {
        names << Application::getLogLevelStr(static_cast<LogLevel>(level));
    }
    QCOMPARE(names, QStringList({"Fehlersuche", "Hinweis", "Warnung", "Fehler", "Kritisch", "Keine",
                                 "Keine"}));
}

// Every test builds its own application object; the settings of all lie in a folder of this run.
int main(int argc, char** argv)
{
    const QTemporaryDir configuration;
    qputenv("XDG_CONFIG_HOME", configuration.path().toLocal8Bit());
    ApplicationTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "ApplicationTest.moc"
