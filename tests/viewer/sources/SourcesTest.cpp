#include <viewer/opening/InstanceLink.h>
#include <viewer/sources/Sources.h>

#include <QDir>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

using namespace Corvane::Viewer;

class SourcesTest : public QObject
{
    Q_OBJECT
private slots:
    void urlsOfFilesArePaths();
    void textNamesSourcesOneOnALine_data();
    void textNamesSourcesOneOnALine();
    void urlsGoBeforeText();
    void relativeFilesAreMadeAbsolute_data();
    void relativeFilesAreMadeAbsolute();
    void messagesCarryWhatIsToBeOpened_data();
    void messagesCarryWhatIsToBeOpened();
    void theDesktopSendsASingleSource();
};

void SourcesTest::urlsOfFilesArePaths()
{
    QMimeData data;
    data.setUrls({QUrl("file:///data/a%20b.tif"), QUrl("https://images.example/a.tif")});
    QCOMPARE(sourcesOf(&data), QStringList({"/data/a b.tif", "https://images.example/a.tif"}));

    // a server is asked for what the address says, which has no blanks
    data.setUrls({QUrl("https://images.example/S%C3%BCd%20see.tif?x=a%26b")});
    QCOMPARE(sourcesOf(&data), QStringList("https://images.example/S%C3%BCd%20see.tif?x=a%26b"));
    data.setUrls({QUrl("https://t.example/{z}/{x}/{y}.png")});
    QCOMPARE(sourcesOf(&data), QStringList("https://t.example/{z}/{x}/{y}.png"));
}

void SourcesTest::textNamesSourcesOneOnALine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("sources");

    QTest::newRow("an address") << " http://images.example/a.tif\r\n"
                                << QStringList{"http://images.example/a.tif"};
    QTest::newRow("an address with tile places")
        << "https://t.example/{z}/{x}/{y}.png" << QStringList{"https://t.example/{z}/{x}/{y}.png"};
    QTest::newRow("paths and URLs of files")
        << "/data/a.tif\nfile:///data/b%20c.tif" << QStringList{"/data/a.tif", "/data/b c.tif"};
    QTest::newRow("any other text") << "see http://images.example" << QStringList();
    QTest::newRow("text behind an address")
        << "http://images.example/a.tif\nis good" << QStringList();
    QTest::newRow("nothing") << "" << QStringList();
    QTest::newRow("a relative path, of whatever folder") << "data/a.tif" << QStringList();
}

void SourcesTest::textNamesSourcesOneOnALine()
{
    QFETCH(QString, text);
    QMimeData data;
    data.setText(text);
    QTEST(sourcesOf(&data), "sources");
}

void SourcesTest::urlsGoBeforeText()
{
    QMimeData data;
    data.setText("/data/b.tif");
    data.setUrls({QUrl::fromLocalFile("/data/a.tif")});
    QCOMPARE(sourcesOf(&data), QStringList{"/data/a.tif"});
}

void SourcesTest::relativeFilesAreMadeAbsolute_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("absolute");

    const QString here = QDir::currentPath() + '/';
    QTest::newRow("a relative file") << "a.tif" << here + "a.tif";
    QTest::newRow("an absolute file") << "/data/a.tif"
                                      << "/data/a.tif";
    QTest::newRow("a URL of a file") << "file:///data/a.tif"
                                     << "/data/a.tif";
    QTest::newRow("an address") << "http://images.example/a.tif"
                                << "http://images.example/a.tif";
    QTest::newRow("an image of a server") << "zwtp://images.example/a"
                                          << "zwtp://images.example/a";
    QTest::newRow("a name that a plugin understands") << "NETCDF:a.nc:b"
                                                      << "NETCDF:a.nc:b";
    QTest::newRow("a file with a colon") << "12:30.tif" << here + "12:30.tif";
    QTest::newRow("nothing") << ""
                             << "";
}

void SourcesTest::relativeFilesAreMadeAbsolute()
{
    QFile file("12:30.tif");
    QVERIFY(file.open(QIODevice::WriteOnly));
    QFETCH(QString, source);
    QTEST(absoluteSource(source), "absolute");
    QVERIFY(file.remove());
}

void SourcesTest::messagesCarryWhatIsToBeOpened_data()
{
    QTest::addColumn<QStringList>("sources");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("one file") << QStringList{"/data/a.tif"};
    QTest::newRow("names of any characters")
        << QStringList{"/data/a \"b\"\n.tif", QString::fromUtf8("/\u6587/\u00e4.tif"), "{}"};
}

void SourcesTest::messagesCarryWhatIsToBeOpened()
{
    QFETCH(QStringList, sources);
    QCOMPARE(InstanceLink::sourcesIn(InstanceLink::messageOf(sources)), sources);
}

void SourcesTest::theDesktopSendsASingleSource()
{
    QCOMPARE(InstanceLink::sourcesIn("/data/a.tif"), QStringList{"/data/a.tif"});
    QCOMPARE(InstanceLink::sourcesIn("file:///data/a.tif"), QStringList{"file:///data/a.tif"});
    QCOMPARE(InstanceLink::sourcesIn("{\"other\":[]}"), QStringList{"{\"other\":[]}"});
    QCOMPARE(InstanceLink::sourcesIn(""), QStringList());
}

QTEST_GUILESS_MAIN(SourcesTest)
#include "SourcesTest.moc"
