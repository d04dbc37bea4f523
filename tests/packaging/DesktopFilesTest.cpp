#include <viewer/maps/MapDocumentWriter.h>

#include <corvane/map/MapCanvas.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QImage>
#include <QMimeDatabase>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

// What desktops read of the viewer: its entry, its metainfo, the types that it brings, its icons.
class DesktopFilesTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void aSavedMapIsKnownByItsRootElement();
    void typesAreKnownByNameAndContent_data();
    void typesAreKnownByNameAndContent();
    void theRootElementStandsInTheListOfNamespaces();
    void theTypeOfMapsIsXml();
    void theEntryStartsTheViewerWithAddresses();
    void theEntryNamesEveryTypeOfOurs();
    void theMetainfoLeadsToTheEntry();
    void iconsAreThereInEverySize_data();
    void iconsAreThereInEverySize();

private:
    QByteArray write(const QString& name, const QByteArray& content);

    QTemporaryDir folder;
};

namespace {

const char* const id = "org.corvane.Viewer";
const char* const mapType = "application/vnd.corvane.map+xml";

QString desktopFolder()
{
    return QString(SOURCE_FOLDER "/packaging/desktop/");
}

/// The value of a key of the entry, as it stands there: a list keeps its semicolons.
QString entryValue(const QString& key)
{
    QFile file(desktopFolder() + id + ".desktop");
    const QString text =
        file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    for (const QString& line : text.split('\n')) {
        if (line.startsWith(key + '=')) {
            return line.mid(key.size() + 1);
        }
    }
    return QString();
}

QDomDocument read(const QString& fileName)
{
    QDomDocument document;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file)) {
        qWarning("cannot read %s", qPrintable(fileName));
    }
    return document;
}

} // namespace

QByteArray DesktopFilesTest::write(const QString& name, const QByteArray& content)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        return "not written";
    }
    file.close();
    return QMimeDatabase().mimeTypeForFile(folder.filePath(name)).name().toUtf8();
}

/// Installs the types for this process beside those of every desktop, as a package would for everybody.
void DesktopFilesTest::initTestCase()
{
    QVERIFY(folder.isValid());
    const QString types = folder.filePath("data/mime");
    QVERIFY(QDir().mkpath(types + "/packages"));
    const QString common = "freedesktop.org.xml";
    const QString installed =
        QStandardPaths::locate(QStandardPaths::GenericDataLocation, "mime/packages/" + common);
    QVERIFY2(!installed.isEmpty(), "shared-mime-info is not installed");
    QVERIFY(QFile::copy(installed, types + "/packages/" + common));
    QVERIFY(QFile::copy(desktopFolder() + id + ".mime.xml", types + "/packages/" + id + ".xml"));
    QVERIFY(QDir().mkpath(folder.filePath("nothing")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath("nothing")));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(folder.filePath("data")));
    QProcess update;
    update.setProcessChannelMode(QProcess::MergedChannels);
    update.start("update-mime-database", {types});
    QVERIFY2(update.waitForFinished(-1), qPrintable(update.errorString()));
    const QByteArray complaints = update.readAll(); // others' files may have some as well
    QVERIFY2(!complaints.contains(id), complaints.constData());
    QCOMPARE(update.exitCode(), 0);
}

void DesktopFilesTest::aSavedMapIsKnownByItsRootElement()
{
    Corvane::Map::MapCanvas canvas(nullptr);
    const std::unique_ptr<QDomDocument> document(canvas.saveMapXML());
    const QByteArray text = Corvane::Viewer::mapDocumentText(*document);

    QCOMPARE(write("coast", text), QByteArray(mapType));
    QCOMPARE(write("coast.cmap", text), QByteArray(mapType));
    QCOMPARE(write("coast.map-of-mine", text), QByteArray(mapType));
}

void DesktopFilesTest::typesAreKnownByNameAndContent_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("type");
    const QByteArray xml = "<?xml version=\"1.0\"?>\n";
    QTest::newRow("a map without a document type")
        << "a" << xml + "<mapcanvas/>" << QByteArray(mapType);
    QTest::newRow("a map behind a comment")
        << "b" << xml + "<!-- " + QByteArray(2000, 'x') + " -->\n<mapcanvas version=\"1.0\"/>"
        << QByteArray(mapType);
    QTest::newRow("a map without the line of XML")
        << "c" << QByteArray("<!DOCTYPE CorvaneMapCanvas>\n<mapcanvas/>") << QByteArray(mapType);
    QTest::newRow("a map behind the mark of UTF-8")
        << "d"
        << "\xef\xbb\xbf" + xml + "<mapcanvas/>" << QByteArray(mapType);
    QTest::newRow("an empty file with the suffix of maps")
        << "e.cmap" << QByteArray() << QByteArray(mapType);
    QTest::newRow("other XML") << "f" << xml + "<atlas/>" << QByteArray("application/xml");
    QTest::newRow("a text about maps")
        << "g" << QByteArray("The root element is <mapcanvas>.\n") << QByteArray("text/plain");
    QByteArray shape(100, '\0');
    shape.replace(2, 2, QByteArray::fromHex("270a"));
    shape.replace(28, 2, QByteArray::fromHex("e803"));
    QTest::newRow("a shapefile") << "h" << shape << QByteArray("application/vnd.shp");
    QByteArray package = QByteArray("SQLite format 3").leftJustified(100, '\0');
    QTest::newRow("a database") << "i" << package << QByteArray("application/vnd.sqlite3");
    package.replace(68, 4, "GPKG");
    QTest::newRow("a GeoPackage") << "j" << package << QByteArray("application/geopackage+sqlite3");
}

void DesktopFilesTest::typesAreKnownByNameAndContent()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, type);

    QCOMPARE(write(name, content), type);
}

void DesktopFilesTest::theRootElementStandsInTheListOfNamespaces()
{
    QFile file(folder.filePath("data/mime/XMLnamespaces"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    QVERIFY(lines.contains(QByteArray(" mapcanvas ") + mapType)); // in no namespace
}

void DesktopFilesTest::theTypeOfMapsIsXml()
{
    const QMimeType type = QMimeDatabase().mimeTypeForName(mapType);
    QVERIFY(type.inherits("application/xml"));
    QCOMPARE(type.comment(), QString("Corvane map"));
    QCOMPARE(type.preferredSuffix(), QString("cmap"));
    QCOMPARE(type.iconName(), QString("application-vnd.corvane.map+xml"));
}

void DesktopFilesTest::theEntryStartsTheViewerWithAddresses()
{
    QCOMPARE(entryValue("Exec"), QString("corvane-viewer %U"));
    QCOMPARE(entryValue("Actions"), QString("new-window;"));
    QCOMPARE(entryValue("TryExec"), QString("corvane-viewer"));
    QCOMPARE(entryValue("Icon"), QString(id));
}

void DesktopFilesTest::theEntryNamesEveryTypeOfOurs()
{
    const QStringList types = entryValue("MimeType").split(';', Qt::SkipEmptyParts);
    QCOMPARE(types.first(), QString(mapType));
    QVERIFY(types.contains("image/tiff"));
    QVERIFY(types.contains("inode/directory"));
    QCOMPARE(QSet<QString>(types.begin(), types.end()).size(), types.size());

    const QDomDocument ours = read(desktopFolder() + id + ".mime.xml");
    const QDomNodeList brought = ours.elementsByTagName("mime-type");
    QCOMPARE(brought.size(), 3);
    for (int i = 0; i < brought.size(); ++i) {
        QVERIFY(types.contains(brought.at(i).toElement().attribute("type")));
    }
}

void DesktopFilesTest::theMetainfoLeadsToTheEntry()
{
    const QDomDocument metainfo = read(QString(BUILT_FOLDER "/") + id + ".metainfo.xml");
    const QDomElement root = metainfo.documentElement();
    QCOMPARE(root.firstChildElement("id").text(), QString(id));
    QCOMPARE(root.firstChildElement("launchable").text(), QString(id) + ".desktop");
    QCOMPARE(root.firstChildElement("name").text(), entryValue("Name"));
    QCOMPARE(root.firstChildElement("releases").firstChildElement("release").attribute("version"),
             QString(PROJECT_VERSION));

    const QStringList types = entryValue("MimeType").split(';', Qt::SkipEmptyParts);
    const QDomNodeList provided = metainfo.elementsByTagName("mediatype");
    QVERIFY(!provided.isEmpty());
    for (int i = 0; i < provided.size(); ++i) {
        QVERIFY(types.contains(provided.at(i).toElement().text()));
    }
}

void DesktopFilesTest::iconsAreThereInEverySize_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("the viewer's") << "apps/org.corvane.Viewer";
    QTest::newRow("a map's") << "mimetypes/application-vnd.corvane.map+xml";
}

void DesktopFilesTest::iconsAreThereInEverySize()
{
    QFETCH(QString, name);

    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        const QImage icon(QString(BUILT_FOLDER "/icons/%1x%1/%2.png").arg(size).arg(name));
        QCOMPARE(icon.size(), QSize(size, size));
        QVERIFY(icon.hasAlphaChannel());
        QCOMPARE(qAlpha(icon.pixel(0, 0)), 0);
        QVERIFY(qAlpha(icon.pixel(size / 2, size / 2)) > 200);
    }
}

QTEST_GUILESS_MAIN(DesktopFilesTest)
#include "DesktopFilesTest.moc"
