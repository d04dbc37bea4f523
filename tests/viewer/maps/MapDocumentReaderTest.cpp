#include <viewer/maps/MapDocumentReader.h>

#include <QDomDocument>
#include <QDomElement>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

using namespace Corvane::Viewer;

namespace {

constexpr qint64 mebibyte = 1024 * 1024;

struct Parsed
{
    MapReading result;
    QDomDocument document;
    QString reason;
};

Parsed parse(const QByteArray& text)
{
    Parsed parsed;
    parsed.result = parseMapDocument(text, &parsed.document, &parsed.reason);
    return parsed;
}

QByteArray nested(int levels)
{
    QByteArray text = "<mapcanvas>";
    for (int i = 1; i < levels; ++i) {
        text += "<a>";
    }
    for (int i = 1; i < levels; ++i) {
        text += "</a>";
    }
    return text + "</mapcanvas>";
}

QByteArray withAttributes(int count)
{
    QByteArray text = "<mapcanvas";
    for (int i = 0; i < count; ++i) {
        text += " a" + QByteArray::number(i) + " = '='";
    }
    return text + "/>";
}

const QByteArray map =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE CorvaneMapCanvas>\n"
    "<mapcanvas name=\"mapcanvas\" version=\"1.0\">\n"
    " <bounds tlx=\"0.5\" tly=\"10.5\" brx=\"20.5\" bry=\"0.5\" draw=\"false\"/>\n"
    " <description>Caf\xC3\xA9 &amp; harbour</description>\n"
    " <layers><layer class=\"A\"><datasource value=\"/a &lt;b&gt;.tif\"/></layer></layers>\n"
    "</mapcanvas>\n";

} // namespace

/// Map documents of any origin, hostile ones among them.
class MapDocumentReaderTest : public QObject
{
    Q_OBJECT
private slots:
    void aNameTellsWhatMayBeAMap_data();
    void aNameTellsWhatMayBeAMap();
    void aMapIsReadAsATree();
    void spaceIsKeptInTextsOnly();
    void encodingsAreRead_data();
    void encodingsAreRead();
    void soundXmlOfAnotherKindIsTold_data();
    void soundXmlOfAnotherKindIsTold();
    void brokenTextIsRefused_data();
    void brokenTextIsRefused();
    void everyTruncationIsRefused();
    void damagedBytesDoNoHarm();
    void nestingHasALimit();
    void megabytesOfNestingAreRefusedEarly();
    void entitiesAreRefused_data();
    void entitiesAreRefused();
    void attributesHaveALimit_data();
    void attributesHaveALimit();
    void elementsHaveALimit();
    void aFileIsRead();
    void sourcesThatAreRelativeFilesGetTheirWholeNames_data();
    void sourcesThatAreRelativeFilesGetTheirWholeNames();
    void filesThatCannotBeReadAreRefused_data();
    void filesThatCannotBeReadAreRefused();
    void aFileHasALimit();

private:
    QTemporaryDir folder;
};

void MapDocumentReaderTest::aNameTellsWhatMayBeAMap_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("may");
    QTest::newRow("a map") << "/maps/coast.cmap" << true;
    QTest::newRow("a relative name") << "coast.cmap" << true;
    QTest::newRow("in capitals") << "/maps/COAST.CMAP" << true;
    QTest::newRow("with dots") << "/maps/coast.2.cmap" << true;
    QTest::newRow("any XML") << "/maps/coast.xml" << true;
    QTest::newRow("a file URL") << "file:///maps/coast.cmap" << true;
    QTest::newRow("an image") << "/maps/coast.tif" << false;
    QTest::newRow("the word alone") << "/maps/cmap" << false;
    QTest::newRow("an image in a folder of that name") << "/coast.cmap/a.tif" << false;
    QTest::newRow("an address") << "https://example.org/coast.cmap" << false;
    QTest::newRow("capabilities") << "http://example.org/wmts.xml" << false;
    QTest::newRow("nothing") << "" << false;
}

void MapDocumentReaderTest::aNameTellsWhatMayBeAMap()
{
    QFETCH(QString, source);
    QFETCH(bool, may);
    QCOMPARE(mayBeMapDocument(source), may);
}

void MapDocumentReaderTest::aMapIsReadAsATree()
{
    const Parsed parsed = parse(map);
    QCOMPARE(parsed.result, MapReading::Read);
    QCOMPARE(parsed.reason, QString());
    const QDomElement root = parsed.document.documentElement();
    QCOMPARE(root.tagName(), QString("mapcanvas"));
    QCOMPARE(root.attribute("version"), QString("1.0"));
    QCOMPARE(root.childNodes().size(), 3);
    QCOMPARE(root.firstChildElement("bounds").attribute("tly"), QString("10.5"));
    QCOMPARE(root.firstChildElement("description").text(), QString::fromUtf8("Café & harbour"));
    const QDomElement layer = root.firstChildElement("layers").firstChildElement("layer");
    QCOMPARE(layer.attribute("class"), QString("A"));
    QCOMPARE(layer.firstChildElement("datasource").attribute("value"), QString("/a <b>.tif"));
}

void MapDocumentReaderTest::spaceIsKeptInTextsOnly()
{
    const Parsed parsed = parse("<mapcanvas>\n <description> a <![CDATA[ <b> ]]> &amp;\n"
                                "c </description>\n <!-- a remark --> \n</mapcanvas>");
    const QDomElement root = parsed.document.documentElement();
    QCOMPARE(root.childNodes().size(), 1);
    QCOMPARE(root.firstChildElement("description").text(), QString(" a  <b>  &\nc "));
}

void MapDocumentReaderTest::encodingsAreRead_data()
{
    QTest::addColumn<QByteArray>("text");
    const QString plain =
        QString::fromUtf8("<mapcanvas><description>Café</description></mapcanvas>");
    QTest::newRow("UTF-8") << plain.toUtf8();
    QTest::newRow("UTF-8 with a mark") << "\xEF\xBB\xBF" + plain.toUtf8();
    QTest::newRow("UTF-16") << QTextCodec::codecForName("UTF-16")->fromUnicode(plain);
    QTest::newRow("Latin 1") << "<?xml version='1.0' encoding='ISO-8859-1'?>" + plain.toLatin1();
}

void MapDocumentReaderTest::encodingsAreRead()
{
    QFETCH(QByteArray, text);
    const Parsed parsed = parse(text);
    QCOMPARE(parsed.reason, QString());
    QCOMPARE(parsed.document.documentElement().text(), QString::fromUtf8("Café"));
}

void MapDocumentReaderTest::soundXmlOfAnotherKindIsTold_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("a virtual raster") << QByteArray("<VRTDataset rasterXSize=\"1\"/>");
    QTest::newRow("a map further in") << QByteArray("<file><mapcanvas/></file>");
    QTest::newRow("other capitals") << QByteArray("<MapCanvas/>");
}

void MapDocumentReaderTest::soundXmlOfAnotherKindIsTold()
{
    QFETCH(QByteArray, text);
    const Parsed parsed = parse(text);
    QCOMPARE(parsed.result, MapReading::OtherXml);
    QCOMPARE(parsed.reason, QString("it is not a map"));
}

void MapDocumentReaderTest::brokenTextIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no XML") << QByteArray("II*\0\x08\0\0\0", 8);
    QTest::newRow("zeros") << QByteArray(1000, '\0');
    QTest::newRow("tags that cross") << QByteArray("<mapcanvas><a><b></a></b></mapcanvas>");
    QTest::newRow("two roots") << QByteArray("<mapcanvas/><mapcanvas/>");
    QTest::newRow("text behind the root") << QByteArray("<mapcanvas/>more");
    QTest::newRow("an attribute twice") << QByteArray("<mapcanvas a=\"1\" a=\"2\"/>");
    QTest::newRow("an unknown entity") << QByteArray("<mapcanvas>&nothing;</mapcanvas>");
    QTest::newRow("wrong UTF-8") << QByteArray("<mapcanvas>\xFF\xFE\xC3</mapcanvas>");
    QTest::newRow("a character that XML forbids") << QByteArray("<mapcanvas>\x01</mapcanvas>");
}

void MapDocumentReaderTest::brokenTextIsRefused()
{
    QFETCH(QByteArray, text);
    const Parsed parsed = parse(text);
    QCOMPARE(parsed.result, MapReading::Refused);
    QVERIFY2(parsed.reason.startsWith("line "), qPrintable(parsed.reason));
    QVERIFY(parsed.document.documentElement().isNull());
}

void MapDocumentReaderTest::everyTruncationIsRefused()
{
    const int end = map.lastIndexOf('>');
    for (int length = 0; length < end; ++length) {
        QCOMPARE(parse(map.left(length)).result, MapReading::Refused);
    }
    QCOMPARE(parse(map.left(end + 1)).result, MapReading::Read);
}

void MapDocumentReaderTest::damagedBytesDoNoHarm()
{
    quint32 random = 1;
    const auto next = [&random] { return random = random * 1664525u + 1013904223u, random >> 16; };
    int refused = 0;
    for (int round = 0; round < 3000; ++round) {
        QByteArray text = map;
        for (int i = 0; i < 3; ++i) {
            text[int(next() % quint32(text.size()))] = char(next() & 0xFF);
        }
        const Parsed parsed = parse(text);
        refused += parsed.result == MapReading::Refused;
        QCOMPARE(parsed.reason.isEmpty(), parsed.result == MapReading::Read);
    }
    QVERIFY(refused > 0 && refused < 3000);
}

void MapDocumentReaderTest::nestingHasALimit()
{
    QCOMPARE(parse(nested(100)).result, MapReading::Read);
    const Parsed deeper = parse(nested(101));
    QCOMPARE(deeper.result, MapReading::Refused);
    QCOMPARE(deeper.reason, QString("its elements are nested too deeply"));
    // as deep, one after the other
    QByteArray text = "<mapcanvas>";
    for (int i = 0; i < 200; ++i) {
        text += "<a><b/></a>";
    }
    QCOMPARE(parse(text + "</mapcanvas>").result, MapReading::Read);
}

void MapDocumentReaderTest::megabytesOfNestingAreRefusedEarly()
{
    QCOMPARE(parse(QByteArray("<a>").repeated(5000000)).reason,
             QString("its elements are nested too deeply"));
    QCOMPARE(parse(nested(2000000)).result, MapReading::Refused);
}

void MapDocumentReaderTest::entitiesAreRefused_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::newRow("one") << QByteArray("<!ENTITY a 'b'>");
    QTest::newRow("one of the file system")
        << QByteArray("<!ENTITY a SYSTEM 'file:///etc/passwd'>");
    QTest::newRow("one of a server") << QByteArray("<!ENTITY a SYSTEM 'http://127.0.0.1:9/'>");
    QByteArray growing = "<!ENTITY z 'aaaaaaaaaa'>";
    for (char name = 'y'; name >= 'a'; --name) {
        const QByteArray inner = QByteArray("&") + char(name + 1) + ';';
        growing += QByteArray("<!ENTITY ") + name + " '" + inner.repeated(10) + "'>";
    }
    QTest::newRow("ones that grow") << growing;
}

void MapDocumentReaderTest::entitiesAreRefused()
{
    QFETCH(QByteArray, type);
    const Parsed parsed =
        parse("<!DOCTYPE mapcanvas [" + type + "]><mapcanvas><b>&a;</b></mapcanvas>");
    QCOMPARE(parsed.result, MapReading::Refused);
    QCOMPARE(parsed.reason, QString("it declares entities"));
    QVERIFY(parsed.document.documentElement().isNull());
}

void MapDocumentReaderTest::attributesHaveALimit_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("taken");
    QTest::newRow("a thousand") << withAttributes(1000) << true;
    QTest::newRow("one more") << withAttributes(1001) << false;
    QTest::newRow("a million") << withAttributes(1000000) << false;
    QTest::newRow("a hundred thousand in two bytes each")
        << QTextCodec::codecForName("UTF-16")->fromUnicode(
               QString::fromLatin1(withAttributes(100000)))
        << false;
    QTest::newRow("a value with many signs in it")
        << "<mapcanvas a=\"" + QByteArray("a=&quot;b&quot; ").repeated(100000) + "\"/>" << true;
}

void MapDocumentReaderTest::attributesHaveALimit()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, taken);
    const Parsed parsed = parse(text);
    QCOMPARE(parsed.result, taken ? MapReading::Read : MapReading::Refused);
    QCOMPARE(parsed.reason, taken ? QString() : "it has an element with too many attributes");
}

void MapDocumentReaderTest::elementsHaveALimit()
{
    const QByteArray text = "<mapcanvas>" + QByteArray("<a/>").repeated(1000000) + "</mapcanvas>";
    QCOMPARE(parse(text).reason, QString("it has too many elements"));
}

void MapDocumentReaderTest::aFileIsRead()
{
    QFile file(folder.filePath("a.cmap"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(map);
    file.close();
    QDomDocument document;
    QString reason;
    QCOMPARE(readMapDocument(file.fileName(), &document, &reason), MapReading::Read);
    QCOMPARE(document.documentElement().tagName(), QString("mapcanvas"));
}

void MapDocumentReaderTest::sourcesThatAreRelativeFilesGetTheirWholeNames_data()
{
    QTest::addColumn<QString>("named");
    QTest::addColumn<QString>("source");
    const QString here = QFileInfo(folder.path()).canonicalFilePath();
    QTest::newRow("a file beside the document") << "here.tif" << here + "/here.tif";
    QTest::newRow("a link") << "link.tif" << here + "/here.tif";
    QTest::newRow("by way of a folder")
        << "../" + QFileInfo(here).fileName() + "/./here.tif" << here + "/here.tif";
    QTest::newRow("one that is missing") << "no/../gone.tif" << here + "/gone.tif";
    QTest::newRow("an absolute one") << "/x/../gone.tif"
                                     << "/x/../gone.tif";
    QTest::newRow("an address") << "zwtp://e.org/a.tif"
                                << "zwtp://e.org/a.tif";
    QTest::newRow("a part of a file") << "NETCDF:a.nc:b"
                                      << "NETCDF:a.nc:b";
    QTest::newRow("a description") << "<VRTDataset/>"
                                   << "<VRTDataset/>";
    QTest::newRow("none") << ""
                          << "";
}

void MapDocumentReaderTest::sourcesThatAreRelativeFilesGetTheirWholeNames()
{
    QFETCH(QString, named);
    QFETCH(QString, source);
    QFile here(folder.filePath("here.tif"));
    QVERIFY(here.open(QIODevice::WriteOnly));
    QFile::link("here.tif", folder.filePath("link.tif"));
    QFile file(folder.filePath("relative.cmap"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(("<mapcanvas><layers><layer class=\"A\"><datasource value=\"gone.tif\"/>"
                "<datasource value=\"" +
                named.toHtmlEscaped() + "\"/></layer></layers></mapcanvas>")
                   .toUtf8());
    file.close();
    QDomDocument document;
    QString reason;
    QCOMPARE(readMapDocument(file.fileName(), &document, &reason), MapReading::Read);
    const QDomNodeList sources = document.elementsByTagName("datasource");
    QCOMPARE(sources.at(1).toElement().attribute("value"), source);
}

void MapDocumentReaderTest::filesThatCannotBeReadAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << folder.filePath("missing.cmap");
    QTest::newRow("a folder") << folder.path();
    QTest::newRow("in a folder that is missing") << folder.filePath("no/map.cmap");
    QTest::newRow("without a name") << QString();
}

void MapDocumentReaderTest::filesThatCannotBeReadAreRefused()
{
    QFETCH(QString, name);
    QDomDocument document;
    QString reason;
    QCOMPARE(readMapDocument(name, &document, &reason), MapReading::Refused);
    QVERIFY(!reason.isEmpty());
}

void MapDocumentReaderTest::aFileHasALimit()
{
    QFile file(folder.filePath("large.cmap"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(32 * mebibyte + 1));
    file.close();
    QDomDocument document;
    QString reason;
    QCOMPARE(readMapDocument(file.fileName(), &document, &reason), MapReading::Refused);
    QCOMPARE(reason, QString("it is larger than 32 MiB"));
    // a file that never ends
    reason.clear();
    QCOMPARE(readMapDocument("/dev/zero", &document, &reason), MapReading::Refused);
    QCOMPARE(reason, QString("it is larger than 32 MiB"));
}

QTEST_GUILESS_MAIN(MapDocumentReaderTest)
#include "MapDocumentReaderTest.moc"
