#include <viewer/batch/Startup.h>

#include <QLoggingCategory>
#include <QtTest>

#include <vector>

using namespace Corvane::Viewer;

namespace {

std::vector<const char*> pointersTo(const QList<QByteArray>& words)
{
    std::vector<const char*> pointers;
    for (const QByteArray& word : words) {
        pointers.push_back(word.constData());
    }
    return pointers;
}

void setOrUnset(const char* name, const QString& value)
{
    if (value.isNull()) {
        qunsetenv(name);
    } else {
        qputenv(name, value.toLocal8Bit());
    }
}

const QLoggingCategory& tilesCategory()
{
    static const QLoggingCategory category("corvane.tiles", QtDebugMsg);
    return category;
}

} // namespace

class StartupTest : public QObject
{
    Q_OBJECT
private slots:
    void aWindowIsNotAskedForByTheModesOfScripts_data();
    void aWindowIsNotAskedForByTheModesOfScripts();
    void aDisplayIsThereWhenTheEnvironmentNamesOne_data();
    void aDisplayIsThereWhenTheEnvironmentNamesOne();
    void theSettingsFileIsKnownBeforeTheOptionsAreRead_data();
    void theSettingsFileIsKnownBeforeTheOptionsAreRead();
    void tileLinesAreOffUnlessAskedFor();
    void loggingRulesOfTheUserAreLeftAlone();
    void cleanup();

private:
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
};

void StartupTest::cleanup()
{
    qputenv("QT_QPA_PLATFORM", platform);
    qunsetenv("QT_LOGGING_RULES");
    QLoggingCategory::setFilterRules(QString());
}

void StartupTest::aWindowIsNotAskedForByTheModesOfScripts_data()
{
    QTest::addColumn<QList<QByteArray>>("words");
    QTest::addColumn<bool>("noWindow");

    QTest::newRow("no arguments") << QList<QByteArray>{"viewer"} << false;
    QTest::newRow("a file") << QList<QByteArray>{"viewer", "a.tif"} << false;
    QTest::newRow("snapshot") << QList<QByteArray>{"viewer", "--snapshot", "o.png"} << true;
    QTest::newRow("snapshot with an equals sign")
        << QList<QByteArray>{"viewer", "a.tif", "--snapshot=o.png"} << true;
    QTest::newRow("render") << QList<QByteArray>{"viewer", "--render", "o.png"} << true;
    QTest::newRow("render with an equals sign")
        << QList<QByteArray>{"viewer", "--render=o.png"} << true;
    QTest::newRow("another option that begins like it")
        << QList<QByteArray>{"viewer", "--snapshotting"} << false;
    QTest::newRow("info") << QList<QByteArray>{"viewer", "--info"} << true;
    QTest::newRow("list-plugins") << QList<QByteArray>{"viewer", "--list-plugins"} << true;
    QTest::newRow("version") << QList<QByteArray>{"viewer", "-v"} << true;
    QTest::newRow("help") << QList<QByteArray>{"viewer", "--help"} << true;
    QTest::newRow("a file that is called like an option")
        << QList<QByteArray>{"viewer", "--", "--info"} << false;
    QTest::newRow("a program that is called like an option")
        << QList<QByteArray>{"--info", "a.tif"} << false;
}

void StartupTest::aWindowIsNotAskedForByTheModesOfScripts()
{
    QFETCH(QList<QByteArray>, words);
    const auto argv = pointersTo(words);
    QTEST(asksForNoWindow(int(argv.size()), argv.data()), "noWindow");
}

void StartupTest::aDisplayIsThereWhenTheEnvironmentNamesOne_data()
{
    QTest::addColumn<QString>("qtPlatform");
    QTest::addColumn<QString>("x11");
    QTest::addColumn<QString>("wayland");
    QTest::addColumn<QList<QByteArray>>("words");
    QTest::addColumn<bool>("display");

    const QString unset;
    const QList<QByteArray> plain{"viewer"};
    QTest::newRow("nothing is set") << unset << unset << unset << plain << false;
    QTest::newRow("an X server") << unset << ":0" << unset << plain << true;
    QTest::newRow("an empty X server") << unset << "" << unset << plain << false;
    QTest::newRow("Wayland") << unset << unset << "wayland-0" << plain << true;
    QTest::newRow("xcb without an X server") << "xcb" << unset << "wayland-0" << plain << false;
    QTest::newRow("xcb with an option") << "xcb:mesa"
                                        << ":0" << unset << plain << true;
    QTest::newRow("wayland-egl without Wayland") << "wayland-egl"
                                                 << ":0" << unset << plain << false;
    QTest::newRow("offscreen needs none") << "offscreen" << unset << unset << plain << true;
    QTest::newRow("a list begins with its favourite")
        << "xcb;offscreen" << unset << unset << plain << false;
    QTest::newRow("a platform named among the arguments is the user's word")
        << unset << unset << unset << QList<QByteArray>{"viewer", "-platform", "minimal"} << true;
}

void StartupTest::aDisplayIsThereWhenTheEnvironmentNamesOne()
{
    QFETCH(QString, qtPlatform);
    QFETCH(QString, x11);
    QFETCH(QString, wayland);
    QFETCH(QList<QByteArray>, words);
    setOrUnset("QT_QPA_PLATFORM", qtPlatform);
    setOrUnset("DISPLAY", x11);
    setOrUnset("WAYLAND_DISPLAY", wayland);

    const auto argv = pointersTo(words);
    QTEST(hasDisplay(int(argv.size()), argv.data()), "display");
}

void StartupTest::theSettingsFileIsKnownBeforeTheOptionsAreRead_data()
{
    QTest::addColumn<QList<QByteArray>>("words");
    QTest::addColumn<QString>("file");

    QTest::newRow("none") << QList<QByteArray>{"viewer", "a.tif"} << QString();
    QTest::newRow("the word behind") << QList<QByteArray>{"viewer", "--config", "x.ini"} << "x.ini";
    QTest::newRow("with an equals sign")
        << QList<QByteArray>{"viewer", "--config=x.ini"} << "x.ini";
    QTest::newRow("the last one counts")
        << QList<QByteArray>{"viewer", "--config=x.ini", "a.tif", "--config", "y.ini"} << "y.ini";
    QTest::newRow("nothing behind") << QList<QByteArray>{"viewer", "--config"} << QString();
    QTest::newRow("a file that is called so")
        << QList<QByteArray>{"viewer", "--", "--config", "x.ini"} << QString();
    QTest::newRow("another option that begins like it")
        << QList<QByteArray>{"viewer", "--configure=x.ini"} << QString();
}

void StartupTest::theSettingsFileIsKnownBeforeTheOptionsAreRead()
{
    QFETCH(QList<QByteArray>, words);
    const auto argv = pointersTo(words);
    QTEST(configFileOf(int(argv.size()), argv.data()), "file");
}

void StartupTest::tileLinesAreOffUnlessAskedFor()
{
    QVERIFY(tilesCategory().isDebugEnabled());
    setUpLogging(true);
    QVERIFY(tilesCategory().isDebugEnabled());
    setUpLogging(false);
    QVERIFY(!tilesCategory().isDebugEnabled());
    QVERIFY(tilesCategory().isWarningEnabled());
}

void StartupTest::loggingRulesOfTheUserAreLeftAlone()
{
    qputenv("QT_LOGGING_RULES", "qt.*=false");
    setUpLogging(false);
    QVERIFY(tilesCategory().isDebugEnabled());
}

QTEST_GUILESS_MAIN(StartupTest)
#include "StartupTest.moc"
