#include <viewer/maps/MapDocumentReader.h>
#include <viewer/maps/MapDocumentWriter.h>
#include <tests/support/FileContent.h>

#include <QDir>
#include <QDomDocument>
#include <QDomElement>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Corvane::Viewer;

namespace {

QDomDocument smallMap(const QString& text)
{
    QDomDocument document("CorvaneMapCanvas");
    QDomElement root = document.createElement("mapcanvas");
    root.setAttribute("version", "1.0");
    root.setAttribute("name", text);
    document.appendChild(root);
    QDomElement bounds = document.createElement("bounds");
    for (const char* name : {"tlx", "tly", "brx", "bry", "draw", "drawcolor", "drawchildren"}) {
        bounds.setAttribute(name, 0.1);
    }
    root.appendChild(bounds);
    QDomElement description = document.createElement("description");
    description.appendChild(document.createTextNode(text));
    root.appendChild(description);
    root.appendChild(document.createElement("layers"));
    return document;
}

/// While it lives, no file of this process grows beyond the limit, as on a disk that is full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before); }

private:
    rlimit before = {};
};

} // namespace

/// Maps as text, and how the text gets into a file without ever losing the one that is there.
class MapDocumentWriterTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void theTextIsReadable();
    void theTextIsTheSameForTheSameMap();
    void whatIsWrittenIsReadBack_data();
    void whatIsWrittenIsReadBack();
    void whatXmlCannotCarryIsLeftOut();
    void aNewFileIsWritten();
    void anOldFileIsReplacedAndKeepsItsRights();
    void aLinkStaysALink();
    void aFullDiskLosesNothing();
    void aProgramThatDiesWhileItWritesLosesNothing();
    void placesThatTakeNoFileAreTold_data();
    void placesThatTakeNoFileAreTold();

private:
    QString path(const QString& name) const { return folder->filePath(name); }
    QStringList files() const { return QDir(folder->path()).entryList(QDir::Files); }

    std::unique_ptr<QTemporaryDir> folder;
};

void MapDocumentWriterTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

void MapDocumentWriterTest::theTextIsReadable()
{
    QCOMPARE(mapDocumentText(smallMap("a <\"&'> b")),
             QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<!DOCTYPE CorvaneMapCanvas>\n"
                        "<mapcanvas name=\"a &lt;&quot;&amp;'&gt; b\" version=\"1.0\">\n"
                        " <bounds brx=\"0.10000000000000001\" bry=\"0.10000000000000001\""
                        " draw=\"0.10000000000000001\" drawchildren=\"0.10000000000000001\""
                        " drawcolor=\"0.10000000000000001\" tlx=\"0.10000000000000001\""
                        " tly=\"0.10000000000000001\"/>\n"
                        " <description>a &lt;&quot;&amp;'&gt; b</description>\n"
                        " <layers/>\n"
                        "</mapcanvas>\n"));
}

void MapDocumentWriterTest::theTextIsTheSameForTheSameMap()
{
    const QByteArray text = mapDocumentText(smallMap("a"));
    for (int seed = 0; seed < 20; ++seed) {
        qSetGlobalQHashSeed(seed); // what decides the order of attributes inside Qt
        QCOMPARE(mapDocumentText(smallMap("a")), text);
    }
    qSetGlobalQHashSeed(-1);
}

void MapDocumentWriterTest::whatIsWrittenIsReadBack_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "";
    QTest::newRow("marks of XML") << "<a href='b'>&amp; ]]> <!-- \"";
    QTest::newRow("several lines") << "one\ntwo\n\tthree";
    QTest::newRow("space at both ends") << "  a  ";
    QTest::newRow("other scripts") << QString::fromUtf8("Åland \u4e00\u0416 \U0001F5FA");
    QTest::newRow("long") << QString("a=\"b\" ").repeated(100000);
}

void MapDocumentWriterTest::whatIsWrittenIsReadBack()
{
    QFETCH(QString, text);
    QDomDocument document;
    QString reason;
    const QByteArray written = mapDocumentText(smallMap(text));
    QVERIFY2(parseMapDocument(written, &document, &reason) == MapReading::Read, qPrintable(reason));
    QCOMPARE(document.documentElement().attribute("name"), text);
    QCOMPARE(document.documentElement().firstChildElement("description").text(), text);
    QCOMPARE(mapDocumentText(document), written);
}

void MapDocumentWriterTest::whatXmlCannotCarryIsLeftOut()
{
    QString text = QString::fromUtf8("a\u0001b\u000bc\uFFFEd\uFFFFe");
    text += QChar(0xD83D); // the first half of a pair alone
    text += 'f';
    text += QChar(0xDDFA); // and the second
    text += QChar(0);
    QDomDocument document;
    QString reason;
    QCOMPARE(parseMapDocument(mapDocumentText(smallMap(text)), &document, &reason),
             MapReading::Read);
    QCOMPARE(document.documentElement().text(), QString("abcdef"));
    QCOMPARE(document.documentElement().attribute("name"), QString("abcdef"));
}

void MapDocumentWriterTest::aNewFileIsWritten()
{
    QString reason;
    QVERIFY(writeMapDocument(path("new.cmap"), "text", &reason));
    QCOMPARE(reason, QString());
    QCOMPARE(contentOf(path("new.cmap")), QByteArray("text"));
    QCOMPARE(files(), QStringList({"new.cmap"}));
}

void MapDocumentWriterTest::anOldFileIsReplacedAndKeepsItsRights()
{
    QString reason;
    QVERIFY(writeMapDocument(path("a.cmap"), QByteArray(1000, 'a'), &reason));
    QVERIFY(QFile::setPermissions(path("a.cmap"), QFile::ReadOwner | QFile::WriteOwner));
    QVERIFY(writeMapDocument(path("a.cmap"), "short", &reason));
    QCOMPARE(contentOf(path("a.cmap")), QByteArray("short"));
    QVERIFY(!QFileInfo(path("a.cmap")).permission(QFile::ReadOther));
    QCOMPARE(files(), QStringList({"a.cmap"}));
}

void MapDocumentWriterTest::aLinkStaysALink()
{
    QString reason;
    QVERIFY(writeMapDocument(path("real.cmap"), "old", &reason));
    QVERIFY(QFile::link(path("real.cmap"), path("link.cmap")));
    QVERIFY(writeMapDocument(path("link.cmap"), "new", &reason));
    QVERIFY(QFileInfo(path("link.cmap")).isSymLink());
    QCOMPARE(contentOf(path("real.cmap")), QByteArray("new"));
}

void MapDocumentWriterTest::aFullDiskLosesNothing()
{
    QString reason;
    QVERIFY(writeMapDocument(path("a.cmap"), "old", &reason));
    for (const int size : {5000, 100000, 3000000}) {
        reason.clear();
        const FullDisk disk(4096);
        std::signal(SIGXFSZ, SIG_IGN);
        QVERIFY(!writeMapDocument(path("a.cmap"), QByteArray(size, 'n'), &reason));
        QCOMPARE(reason, QString("File too large"));
    }
    QCOMPARE(contentOf(path("a.cmap")), QByteArray("old"));
    QCOMPARE(files(), QStringList({"a.cmap"})); // nothing is left lying about
}

void MapDocumentWriterTest::aProgramThatDiesWhileItWritesLosesNothing()
{
    QString reason;
    QVERIFY(writeMapDocument(path("a.cmap"), "old", &reason));
    const pid_t child = fork();
    if (child == 0) {
        const FullDisk disk(4096);
        rlimit none = {};
        setrlimit(RLIMIT_CORE, &none);
        std::signal(SIGXFSZ, SIG_DFL); // the system ends the process in the middle of its write
        writeMapDocument(path("a.cmap"), QByteArray(100000, 'n'), &reason);
        _exit(0);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(contentOf(path("a.cmap")), QByteArray("old"));
    QVERIFY(writeMapDocument(path("a.cmap"), "next", &reason));
    QCOMPARE(contentOf(path("a.cmap")), QByteArray("next"));
}

void MapDocumentWriterTest::placesThatTakeNoFileAreTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a folder that is missing") << "missing/a.cmap";
    QTest::newRow("a folder") << "folder";
    QTest::newRow("a file as a folder") << "file/a.cmap";
    QTest::newRow("too long a name") << QString(300, 'a') + ".cmap";
}

void MapDocumentWriterTest::placesThatTakeNoFileAreTold()
{
    QFETCH(QString, name);
    QVERIFY(QDir(folder->path()).mkdir("folder"));
    QString reason;
    QVERIFY(writeMapDocument(path("file"), "text", &reason));
    QVERIFY(!writeMapDocument(path(name), "text", &reason));
    QVERIFY(!reason.isEmpty());
    QCOMPARE(files(), QStringList({"file"}));
}

QTEST_GUILESS_MAIN(MapDocumentWriterTest)
#include "MapDocumentWriterTest.moc"
