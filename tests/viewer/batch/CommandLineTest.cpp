#include <viewer/batch/CommandLine.h>

#include <QDir>
#include <QtTest>

using namespace Corvane::Viewer;

class CommandLineTest : public QObject
{
    Q_OBJECT
private slots:
    void modesFollowTheOptions_data();
    void modesFollowTheOptions();
    void wrongUsageIsNamed_data();
    void wrongUsageIsNamed();
    void snapshotValuesAreTakenOver();
    void absentValuesHaveTheirDefaults();
    void switchesAreOffUnlessGiven();
    void numbersAreReadExactly();
    void wordsAfterTwoDashesAreFiles();
    void aSecondParseStartsAfresh();
};

void CommandLineTest::modesFollowTheOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QStringList>("files");

    using Options = ViewerOptions;
    const QStringList none;
    QTest::newRow("nothing shows an empty window") << none << int(Options::ShowWindow) << none;
    QTest::newRow("files are shown in a window")
        << QStringList{"a.tif", "b.tif"} << int(Options::ShowWindow)
        << QStringList{"a.tif", "b.tif"};
    QTest::newRow("snapshot renders a page") << QStringList{"--snapshot", "o.PDF", "a.tif"}
                                             << int(Options::Snapshot) << QStringList{"a.tif"};
    QTest::newRow("snapshot renders") << QStringList{"--snapshot", "o.png", "a.tif"}
                                      << int(Options::Snapshot) << QStringList{"a.tif"};
    QTest::newRow("options may follow files") << QStringList{"a.tif", "--snapshot=o.JPEG"}
                                              << int(Options::Snapshot) << QStringList{"a.tif"};
    QTest::newRow("render renders") << QStringList{"--render", "o.pdf", "a.tif"}
                                    << int(Options::Snapshot) << QStringList{"a.tif"};
    QTest::newRow("info tells") << QStringList{"--info", "a.tif"} << int(Options::Info)
                                << QStringList{"a.tif"};
    QTest::newRow("list-plugins lists")
        << QStringList{"--list-plugins"} << int(Options::ListPlugins) << none;
    QTest::newRow("help comes before all else")
        << QStringList{"--help", "--snapshot", "o.gif"} << int(Options::Help) << none;
    QTest::newRow("version has a short form") << QStringList{"-v"} << int(Options::Version) << none;
}

void CommandLineTest::modesFollowTheOptions()
{
    QFETCH(QStringList, arguments);
    CommandLine commandLine;
    QVERIFY2(commandLine.parse(QStringList{"viewer"} + arguments),
             qPrintable(commandLine.getError()));
    QTEST(int(commandLine.getOptions().mode), "mode");
    QTEST(commandLine.getOptions().files, "files");
    QVERIFY(commandLine.getError().isEmpty());
}

void CommandLineTest::wrongUsageIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");

    const QStringList snapshot{"--snapshot", "o.png", "a.tif"};
    QTest::newRow("an unknown option") << QStringList{"--bogus"} << "bogus";
    QTest::newRow("render of nothing")
        << QStringList{"--render", "o.png"} << "--render needs a file";
    QTest::newRow("render and snapshot")
        << QStringList{"--render", "o.png", "--snapshot", "p.png", "a.tif"} << "exclude";
    QTest::newRow("render to an unknown kind")
        << QStringList{"--render", "o.gif", "a.tif"} << "o.gif";
    QTest::newRow("json without info") << QStringList{"--json", "a.tif"} << "--json goes with";
    QTest::newRow("settings in no file") << QStringList{"--config", ""} << "--config needs";
    QTest::newRow("an option without its value")
        << QStringList{"a.tif", "--snapshot"} << "snapshot";
    QTest::newRow("a snapshot of nothing") << QStringList{"--snapshot", "o.png"} << "needs a file";
    QTest::newRow("information about nothing") << QStringList{"--info"} << "needs a file";
    QTest::newRow("two modes at once")
        << QStringList{"--info", "--list-plugins", "a.tif"} << "exclude";
    QTest::newRow("a picture format that is not written")
        << QStringList{"--snapshot", "o.gif", "a.tif"} << "o.gif";
    QTest::newRow("a picture without a suffix")
        << QStringList{"--snapshot", "png", "a.tif"} << ".png, .jpg, .jpeg, .pdf";
    QTest::newRow("a size without a snapshot") << QStringList{"--size", "8x8", "a.tif"} << "--size";
    QTest::newRow("an extent without a snapshot")
        << QStringList{"--extent", "0,1,1,0", "a.tif"} << "--extent";
    for (const char* size : {"800", "800x", "x600", "800x600x3", "0x600", "1x600", "32768x600",
                             "-800x600", "800.5x600", "800 x 600", ""})
    {
        QTest::addRow("the size \"%s\"", size)
            << snapshot + QStringList{"--size", size} << "--size takes";
    }
    for (const char* extent :
         {"0,1,1", "0,1,1,0,5", "a,1,1,0", "0;1;1;0", "nan,1,1,0", "0,inf,1,0", "", "0,1,,0"})
    {
        QTest::addRow("the extent \"%s\"", extent)
            << snapshot + QStringList{"--extent", extent} << "--extent takes";
    }
    QTest::newRow("an extent that is a point")
        << snapshot + QStringList{"--extent", "1,2,1,2"} << "single point";
    for (const char* timeout : {"0", "-1", "soon", "nan", "inf", "1e9", ""}) {
        QTest::addRow("the timeout \"%s\"", timeout)
            << snapshot + QStringList{"--timeout", timeout} << "--timeout takes";
    }
}

void CommandLineTest::wrongUsageIsNamed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    CommandLine commandLine;
    QVERIFY(!commandLine.parse(QStringList{"viewer"} + arguments));
    QVERIFY2(commandLine.getError().contains(named), qPrintable(commandLine.getError()));
}

void CommandLineTest::snapshotValuesAreTakenOver()
{
    CommandLine commandLine;
    QVERIFY(commandLine.parse({"viewer", "--snapshot", "out/o.jpg", "--size", "800x600", "--extent",
                               "-71.5, 42.25,-71,42", "--timeout", "2.5", "--verbose", "a.tif"}));
    const ViewerOptions& options = commandLine.getOptions();
    QCOMPARE(options.snapshotFile, QString("out/o.jpg"));
    QCOMPARE(options.size, QSize(800, 600));
    QVERIFY(options.hasExtent);
    QVERIFY((options.extent == std::array<double, 4>{-71.5, 42.25, -71.0, 42.0}));
    QCOMPARE(options.timeout.count(), 2500);
    QVERIFY(options.verbose);
}

void CommandLineTest::absentValuesHaveTheirDefaults()
{
    CommandLine commandLine;
    QVERIFY(commandLine.parse({"viewer", "--snapshot", "o.png", "a.tif"}));
    const ViewerOptions& options = commandLine.getOptions();
    QCOMPARE(options.size, QSize(1280, 720));
    QCOMPARE(options.timeout.count(), 60000);
    QVERIFY(!options.hasExtent);
    QVERIFY(!options.verbose);
}

void CommandLineTest::switchesAreOffUnlessGiven()
{
    CommandLine commandLine;
    QVERIFY(commandLine.parse({"viewer", "--snapshot", "o.png", "a.tif"}));
    QVERIFY(!commandLine.getOptions().listsGaps);
    QVERIFY(!commandLine.getOptions().newInstance);
    QVERIFY(!commandLine.getOptions().json);
    QVERIFY(commandLine.getOptions().configFile.isEmpty());

    QVERIFY(commandLine.parse({"viewer", "--render=o.png", "a.tif"}));
    QVERIFY(commandLine.getOptions().listsGaps);
    QCOMPARE(commandLine.getOptions().snapshotFile, QString("o.png"));

    QVERIFY(commandLine.parse({"viewer", "--info", "--json", "a.tif"}));
    QVERIFY(commandLine.getOptions().json);

    QVERIFY(commandLine.parse({"viewer", "--new-instance", "--config", "x.ini"}));
    QVERIFY(commandLine.getOptions().newInstance);
    QCOMPARE(commandLine.getOptions().configFile, QDir::current().absoluteFilePath("x.ini"));
}

void CommandLineTest::numbersAreReadExactly()
{
    CommandLine commandLine;
    QVERIFY(commandLine.parse({"viewer", "--snapshot", "o.png", "--extent",
                               "500000.1,4649776.22471,1e6,-2.5e-7", "--size", "32767X2",
                               "--timeout", "0.0004", "a.tif"}));
    const ViewerOptions& options = commandLine.getOptions();
    QVERIFY((options.extent == std::array<double, 4>{500000.1, 4649776.22471, 1e6, -2.5e-7}));
    QCOMPARE(options.size, QSize(32767, 2));
    QCOMPARE(options.timeout.count(), 1); // rounded up, never to no time at all
}

void CommandLineTest::wordsAfterTwoDashesAreFiles()
{
    CommandLine commandLine;
    QVERIFY(commandLine.parse({"viewer", "--", "--info", "-a.tif"}));
    QCOMPARE(commandLine.getOptions().mode, ViewerOptions::ShowWindow);
    QCOMPARE(commandLine.getOptions().files, QStringList({"--info", "-a.tif"}));
}

void CommandLineTest::aSecondParseStartsAfresh()
{
    CommandLine commandLine;
    QVERIFY(commandLine.parse({"viewer", "--snapshot", "o.png", "--size", "8x8", "a.tif"}));
    QVERIFY(!commandLine.parse({"viewer", "--bogus"}));
    QVERIFY(commandLine.parse({"viewer"}));
    QCOMPARE(commandLine.getOptions().mode, ViewerOptions::ShowWindow);
    QCOMPARE(commandLine.getOptions().size, QSize(1280, 720));
    QVERIFY(commandLine.getError().isEmpty());
}

QTEST_GUILESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
