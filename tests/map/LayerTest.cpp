#include "TestLayers.h"

#include <corvane/core/Application.h>
#include <corvane/core/LogMessageHandler.h>
#include <corvane/map/IRendererClient.h>

#include <QDateTime>
#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QPen>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>

using Corvane::Application;
using Corvane::LogLevel;
using Corvane::LogMessageHandler;
using Corvane::Map::IRendererClient;
using Corvane::Map::Layer;
using Corvane::Map::LayerType;
using Corvane::Map::SpatialReference;

namespace {

class RecordingRendererClient : public IRendererClient
{
public:
    void onRendererUpdate(double tlx, double tly, double brx, double bry) override
    {
        log << QStringLiteral("update(%1 %2 %3 %4)").arg(tlx).arg(tly).arg(brx).arg(bry);
    }
    void onRendererError(QString message) override { log << message; }
    QStringList log;
};

/// Takes the log of the library for as long as it lives.
class RecordingSink : public LogMessageHandler
{
public:
    RecordingSink() { Application::installLogMessageHandler(this); }
    ~RecordingSink() { Application::installLogMessageHandler(nullptr); }
    void logMessage(const QString& message, LogLevel level, const QDateTime& time) override
    {
        log << QStringLiteral("%1: %2").arg(level).arg(message);
        times << time;
    }
    void setLogLevel(LogLevel) override {}
    LogLevel getLogLevel() override { return Corvane::Debug; }
    QStringList log;
    QVector<QDateTime> times;
};

/// The children of node, one line each: the tag, the attributes by name, the text.
QStringList childrenOf(const QDomNode& node)
{
    QStringList lines;
    for (QDomElement child = node.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        QStringList attributes;
        const QDomNamedNodeMap map = child.attributes();
        for (int i = 0; i < map.count(); ++i) {
            const QDomAttr attribute = map.item(i).toAttr();
            attributes << QStringLiteral("%1=%2").arg(attribute.name(), attribute.value());
        }
        attributes.sort(); // the order is the hash's
        lines << QStringList({child.tagName(), attributes.join(QLatin1Char(' ')), child.text()})
                     .join(QLatin1Char('|'));
    }
    return lines;
}

QStringList written(Layer& layer)
{
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("layer"));
    document.appendChild(element);
    return layer.writeXML(element, document) ? childrenOf(element) : QStringList();
}

bool read(Layer& layer, const QString& children, const QString& folder = QStringLiteral("/"))
{
    QDomDocument document;
    if (!document.setContent(QStringLiteral("<layer>%1</layer>").arg(children))) {
        qWarning("the test's own XML is broken");
        return false;
    }
    QDomNode node = document.documentElement();
    QDir dir(folder);
    return layer.readXML(node, dir, nullptr);
}

const QString minimumText = QStringLiteral("2.2250738585072014e-308");
const QString maximumText = QStringLiteral("1.7976931348623157e+308");

} // namespace

/// Settings of all kinds, as a plugin adds them.
class SettingsLayer : public TestLayer
{
    Q_OBJECT
    Q_PROPERTY(QUrl Server MEMBER server)
    Q_PROPERTY(int Count MEMBER count)
    Q_PROPERTY(QPen Outline MEMBER outline)
    Q_PROPERTY(QVariant Nothing MEMBER nothing)
    Q_PROPERTY(int Computed READ getComputed)
    Q_PROPERTY(QString Unsaved MEMBER unsaved STORED false)
    Q_PROPERTY(QString dataSource MEMBER ownSource)
    Q_PROPERTY(double minScale MEMBER ownMinimum)
    Q_PROPERTY(double maxScale MEMBER ownMaximum)
public:
    int getComputed() const { return 42; }

    QUrl server;
    int count = 3;
    QPen outline;
    QVariant nothing;
    QString unsaved = QStringLiteral("as it was");
    QString ownSource = QStringLiteral("left out");
    double ownMinimum = std::numeric_limits<double>::min();
    double ownMaximum = std::numeric_limits<double>::max();
};

/// Says it has no meta object.
class BareLayer : public TestLayer
{
public:
    const QMetaObject* metaObject() const override { return nullptr; }
};

/// Shows what a plugin's layer sees of its base.
class OpenLayer : public TestLayer
{
public:
    using Layer::comments;
    using Layer::description;
    using Layer::maxScale;
    using Layer::minScale;
    using Layer::rendererClient;
    using Layer::reservedText1;
    using Layer::reservedText2;
    using Layer::spatialRef;
    using Layer::uid;
};

class LayerTest : public QObject
{
    Q_OBJECT

private slots:
    void layerTypesHaveNames_data();
    void layerTypesHaveNames();

    void startsWithAnIdentityAndNothingElse();
    void fieldsStandInOrder();
    void everyLayerHasAnIdentityOfItsOwn();
    void textsAreKept();
    void scaleLimitsAreKeptAsTheyAreGiven();
    void clearScaleRangeRestoresTheLimitsExactly();
    void spatialReferenceIsCopiedByItsCode();
    void refreshReachesTheClient();
    void refreshWithoutAClientIsQuiet();

    void propertiesStandInOrder();
    void invokablesStandInOrder();

    void writeXmlNamesEachStoredProperty();
    void writeXmlKeepsAnEmptyDescription();
    void writeXmlWritesTheSettingsOfASubclass();
    void writeXmlLeavesDefaultsOutByTheirExactNames();
    void writeXmlWithoutAMetaObjectWritesNothing();
    void writeXmlAppendsBehindWhatIsThere();

    void readXmlSetsTheSourceLastAndReturnsItsResult();
    void readXmlWithoutASourceSetsAnEmptyOne();
    void readXmlSetsWritableStoredProperties();
    void readXmlPassesOverOtherParameters_data();
    void readXmlPassesOverOtherParameters();
    void readXmlTakesComments();
    void readXmlResolvesSources_data();
    void readXmlResolvesSources();
    void readXmlResolvesAnEmptySourceToTheFolder();
    void readXmlFollowsLinks();
    void readXmlLogsUnknownElementsAndGoesOn();
    void readXmlPassesOverWhatIsNoElement();
    void aSavedLayerReadsBackWithANewIdentity();
};

void LayerTest::layerTypesHaveNames_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("name");
    QTest::newRow("0 is an overlay") << int(Corvane::Map::Overlay) << "Overlay";
    QTest::newRow("1 is a raster") << 1 << "Raster";
    QTest::newRow("2 is a vector") << 2 << "Vector";
    QTest::newRow("3 is unknown") << 3 << "Unknown";
    QTest::newRow("4 is a background") << 4 << "Background";
    QTest::newRow("5 is a group") << 5 << "Group";
    QTest::newRow("6 is custom") << 6 << "Custom";
    QTest::newRow("7 is unknown") << 7 << "Unknown";
    QTest::newRow("a negative value is unknown") << -1 << "Unknown";
}

void LayerTest::layerTypesHaveNames()
{
    QFETCH(int, value);
    QFETCH(QString, name);
    QCOMPARE(Layer::GetLayerTypeAsString(static_cast<LayerType>(value)), name);
    const QVector<int> values = {Corvane::Map::Overlay, Corvane::Map::Raster,
                                 Corvane::Map::Vector,  Corvane::Map::Background,
                                 Corvane::Map::Group,   Corvane::Map::Custom};
    QCOMPARE(values, QVector<int>({0, 1, 2, 4, 5, 6}));
}

void LayerTest::startsWithAnIdentityAndNothingElse()
{
    TestLayer layer;
    QVERIFY(!layer.getUid().isNull());
    QVERIFY(layer.getComments().isEmpty());
    QVERIFY(layer.getDescription().isEmpty());
    QCOMPARE(layer.getSpatialRef().epsg, 0);
    QVERIFY(!layer.parent());
    QVERIFY(layer.getMinScale() == 2.2250738585072014e-308);
    QVERIFY(layer.getMaxScale() == 1.7976931348623157e308);
}

void LayerTest::fieldsStandInOrder()
{
    const OpenLayer layer;
    const QVector<const void*> fields = {
        &layer.uid,           &layer.comments,      &layer.description,
        &layer.minScale,      &layer.maxScale,      &layer.rendererClient,
        &layer.reservedText1, &layer.reservedText2, &layer.spatialRef};
    QVERIFY(std::is_sorted(fields.begin(), fields.end(), std::less<const void*>()));
    QVERIFY(layer.reservedText1.isNull() && layer.reservedText2.isNull());
}

void LayerTest::everyLayerHasAnIdentityOfItsOwn()
{
    TestLayer first;
    TestLayer second;
    QVERIFY(first.getUid() != second.getUid());
    QCOMPARE(first.getUid(), first.getUid());
}

void LayerTest::textsAreKept()
{
    TestLayer layer;
    layer.setComments(QStringLiteral("seen from the east"));
    layer.setDescription(QStringLiteral("Harbour"));
    QCOMPARE(layer.getComments(), QStringLiteral("seen from the east"));
    QCOMPARE(layer.getDescription(), QStringLiteral("Harbour"));
}

void LayerTest::scaleLimitsAreKeptAsTheyAreGiven()
{
    TestLayer layer;
    layer.setMinScale(500.0);
    layer.setMaxScale(-2.0); // below the minimum, which nobody checks
    QCOMPARE(layer.getMinScale(), 500.0);
    QCOMPARE(layer.getMaxScale(), -2.0);
}

void LayerTest::clearScaleRangeRestoresTheLimitsExactly()
{
    TestLayer layer;
    layer.setMinScale(500.0);
    layer.setMaxScale(1000.0);
    layer.clearScaleRange();
    QVERIFY(layer.getMinScale() == 2.2250738585072014e-308);
    QVERIFY(layer.getMaxScale() == 1.7976931348623157e308);
}

void LayerTest::spatialReferenceIsCopiedByItsCode()
{
    TestLayer layer;
    SpatialReference reference;
    reference.setEpsg(4326);
    QVERIFY(layer.setSpatialRef(reference));
    reference.setEpsg(3857);
    QCOMPARE(layer.getSpatialRef().epsg, 4326);
    QCOMPARE(&layer.getSpatialRef(), &layer.getSpatialRef());
}

void LayerTest::refreshReachesTheClient()
{
    RecordingRendererClient client;
    RecordingRendererClient other;
    TestLayer layer(&client);
    layer.refresh(1.0, 2.0, 3.0, 4.0);
    layer.setRendererClient(&other);
    layer.refresh(5.0, 6.0, 7.0, 8.0);
    QCOMPARE(client.log, QStringList({QStringLiteral("update(1 2 3 4)")}));
    QCOMPARE(other.log, QStringList({QStringLiteral("update(5 6 7 8)")}));
}

void LayerTest::refreshWithoutAClientIsQuiet()
{
    RecordingRendererClient client;
    TestLayer layer(&client);
    layer.setRendererClient(nullptr);
    layer.refresh(1.0, 2.0, 3.0, 4.0);
    QVERIFY(client.log.isEmpty());
}

void LayerTest::propertiesStandInOrder()
{
    const QMetaObject& meta = Layer::staticMetaObject;
    QStringList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        QVERIFY(property.isReadable());
        QVERIFY(property.isDesignable());
        QVERIFY(property.isScriptable());
        properties << QStringLiteral("%1 %2%3%4")
                          .arg(QLatin1String(property.typeName()), QLatin1String(property.name()),
                               QLatin1String(property.isWritable() ? " write" : ""),
                               QLatin1String(property.isStored() ? " stored" : ""));
    }
    QCOMPARE(
        properties,
        QStringList({"QString DataSource write stored", "QString Description write stored",
                     "QString Comments write stored", "bool Visible write stored", "bool Valid",
                     "QIcon Icon", "QUuid Uid", "double MinScale write stored",
                     "double MaxScale write stored", "QString format", "QString coordSysName"}));
    QCOMPARE(meta.propertyOffset(), 1); // behind the object's name
}

void LayerTest::invokablesStandInOrder()
{
    const QMetaObject& meta = Layer::staticMetaObject;
    QStringList invokables;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.methodType(), QMetaMethod::Method);
        QStringList parameters;
        for (int p = 0; p < method.parameterCount(); ++p) {
            parameters << QString::fromLatin1(method.parameterTypes().at(p) + ' ' +
                                              method.parameterNames().at(p));
        }
        invokables << QStringLiteral("%1 %2(%3)")
                          .arg(QLatin1String(method.typeName()), QString::fromLatin1(method.name()),
                               parameters.join(QStringLiteral(", ")));
    }
    QCOMPARE(invokables,
             QStringList({"QString getDataSource()",
                          "bool setDataSource(QString dataSource)",
                          "QIcon getIcon()",
                          "bool isVisible()",
                          "void setVisible(bool v)",
                          "QUuid getUid()",
                          "QString getComments()",
                          "void setComments(QString str)",
                          "QString getDescription()",
                          "void setDescription(QString t)",
                          "QString getFormat()",
                          "QString getCoordSysName()",
                          "void setView(int width, int height, double tlx, double tly, double brx, "
                          "double bry)",
                          "void beginUpdate(bool zoom)",
                          "void endUpdate()",
                          "QRectF getBounds()",
                          "bool isValid()",
                          "QString getLastError()",
                          "QString getProtocol()",
                          "signed char getPercentComplete()",
                          "bool readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage)",
                          "bool writeXML(QDomNode& theNode, QDomDocument& theDoc)"}));
}

void LayerTest::writeXmlNamesEachStoredProperty()
{
    TestLayer layer;
    layer.setObjectName(QStringLiteral("never written"));
    layer.dataSource = QStringLiteral("/data/harbour.tif");
    layer.setDescription(QStringLiteral("Harbour <east>"));
    layer.setComments(QStringLiteral("seen & noted"));
    layer.setVisible(false);
    QCOMPARE(written(layer),
             QStringList({"datasource|value=/data/harbour.tif|", "comments||seen & noted",
                          "param|name=DataSource value=/data/harbour.tif|",
                          "param|name=Description value=Harbour <east>|",
                          "param|name=Visible value=false|",
                          "param|name=MinScale value=" + minimumText + "|",
                          "param|name=MaxScale value=" + maximumText + "|"}));
    QVERIFY(layer.log.isEmpty()); // nothing was set
}

void LayerTest::writeXmlKeepsAnEmptyDescription()
{
    TestLayer layer;
    QCOMPARE(written(layer),
             QStringList({"datasource|value=|", "comments||", "param|name=DataSource value=|",
                          "param|name=Description value=|", "param|name=Visible value=true|",
                          "param|name=MinScale value=" + minimumText + "|",
                          "param|name=MaxScale value=" + maximumText + "|"}));
}

void LayerTest::writeXmlWritesTheSettingsOfASubclass()
{
    SettingsLayer layer;
    layer.server = QUrl(QStringLiteral("http://host/a%20b?c=%C3%A9"));
    layer.setMinScale(0.1);
    layer.setMaxScale(100000.0);
    const QStringList lines = written(layer);
    QCOMPARE(lines.mid(5),
             QStringList({"param|name=MinScale value=0.1|", "param|name=MaxScale value=100000|",
                          // a URL is written as it is shown
                          QStringLiteral("param|name=Server value=http://host/a b?c=\u00e9|"),
                          "param|name=Count value=3|",
                          // no text form, and still there
                          "param|name=Outline value=|",
                          // no invalid value, but read-only ones that count as stored
                          "param|name=Computed value=42|"}));
}

void LayerTest::writeXmlLeavesDefaultsOutByTheirExactNames()
{
    SettingsLayer layer;
    layer.ownMinimum = 5.0;
    layer.ownMaximum = std::numeric_limits<double>::min(); // a default, of the other one
    QCOMPARE(written(layer).mid(11),
             QStringList({"param|name=minScale value=5|",
                          "param|name=maxScale value=" + minimumText + "|"}));
    layer.ownMinimum = std::numeric_limits<double>::min();
    layer.ownMaximum = std::numeric_limits<double>::max();
    QVERIFY(written(layer).mid(11).isEmpty());
}

void LayerTest::writeXmlWithoutAMetaObjectWritesNothing()
{
    BareLayer layer;
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("layer"));
    QVERIFY(layer.writeXML(element, document));
    QVERIFY(!element.hasChildNodes());
}

void LayerTest::writeXmlAppendsBehindWhatIsThere()
{
    TestLayer layer;
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("layer"));
    element.appendChild(document.createElement(QStringLiteral("first")));
    QVERIFY(layer.writeXML(element, document));
    QCOMPARE(childrenOf(element).mid(0, 2), QStringList({"first||", "datasource|value=|"}));
    QVERIFY(element.attributes().isEmpty()); // the class is the canvas's to name
}

void LayerTest::readXmlSetsTheSourceLastAndReturnsItsResult()
{
    const QString xml = QStringLiteral("<datasource value='/last.tif'/>"
                                       "<param name='DataSource' value='/first.tif'/>"
                                       "<param name='Description' value='Harbour'/>");
    TestLayer layer;
    QVERIFY(read(layer, xml));
    QCOMPARE(layer.log, QStringList({"setDataSource(/first.tif)", "setDataSource(/last.tif)"}));
    QCOMPARE(layer.getDescription(), QStringLiteral("Harbour"));

    TestLayer broken;
    broken.opens = false;
    QVERIFY(!read(broken, xml));
    QCOMPARE(broken.getDescription(), QStringLiteral("Harbour"));
}

void LayerTest::readXmlWithoutASourceSetsAnEmptyOne()
{
    TestLayer layer;
    layer.dataSource = QStringLiteral("/old.tif");
    QVERIFY(read(layer, QString()));
    QCOMPARE(layer.log, QStringList({"setDataSource()"}));
    QCOMPARE(layer.dataSource, QString());
}

void LayerTest::readXmlSetsWritableStoredProperties()
{
    SettingsLayer layer;
    QVERIFY(read(layer, QStringLiteral("<param name='Visible' value='false'/>"
                                       "<param name='MinScale' value='0.25'/>"
                                       "<param name='MaxScale' value='1.7976931348623157e+308'/>"
                                       "<param name='Comments' value='by property'/>"
                                       "<param name='objectName' value='named'/>"
                                       "<param name='Count' value='17'/>"
                                       "<param name='Server' value='http://host/a b'/>")));
    QCOMPARE(layer.visible, false);
    QCOMPARE(layer.getMinScale(), 0.25);
    QVERIFY(layer.getMaxScale() == std::numeric_limits<double>::max());
    QCOMPARE(layer.getComments(), QStringLiteral("by property"));
    QCOMPARE(layer.objectName(), QStringLiteral("named"));
    QCOMPARE(layer.count, 17);
    QCOMPARE(layer.server, QUrl(QStringLiteral("http://host/a%20b")));
}

void LayerTest::readXmlPassesOverOtherParameters_data()
{
    QTest::addColumn<QString>("xml");
    QTest::newRow("a read-only property") << "<param name='Valid' value='false'/>";
    QTest::newRow("a read-only property that counts as stored")
        << "<param name='Computed' value='1'/>";
    QTest::newRow("a property that is not stored") << "<param name='Unsaved' value='changed'/>";
    QTest::newRow("the identity")
        << "<param name='Uid' value='{00000000-0000-0000-0000-000000000001}'/>";
    QTest::newRow("a name that is no property") << "<param name='NoSuch' value='1'/>";
    QTest::newRow("a name in another case") << "<param name='visible' value='false'/>";
    QTest::newRow("no name") << "<param value='1'/>";
    QTest::newRow("nothing at all") << "<param/>";
}

void LayerTest::readXmlPassesOverOtherParameters()
{
    QFETCH(QString, xml);
    RecordingSink sink;
    SettingsLayer layer;
    const QUuid uid = layer.getUid();
    const QStringList before = written(layer);
    QVERIFY(read(layer, xml));
    QCOMPARE(written(layer), before);
    QCOMPARE(layer.unsaved, QStringLiteral("as it was"));
    QCOMPARE(layer.getUid(), uid);
    QVERIFY(layer.valid);
    QVERIFY(layer.dynamicPropertyNames().isEmpty());
    QVERIFY(sink.log.isEmpty());
}

void LayerTest::readXmlTakesComments()
{
    TestLayer layer;
    QVERIFY(read(layer, QStringLiteral("<param name='Comments' value='first'/>"
                                       "<comments>seen &amp; <b>noted</b></comments>")));
    QCOMPARE(layer.getComments(), QStringLiteral("seen & noted"));
    QVERIFY(read(layer, QStringLiteral("<comments/>")));
    QVERIFY(layer.getComments().isEmpty());
}

void LayerTest::readXmlResolvesSources_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("source"); // %1 is the folder of the document
    QTest::newRow("http stays") << "http://host/image"
                                << "http://host/image";
    QTest::newRow("https stays") << "https://host/image"
                                 << "https://host/image";
    QTest::newRow("zwtp stays") << "zwtp://host/image"
                                << "zwtp://host/image";
    QTest::newRow("zwtps stays") << "zwtps://host/image"
                                 << "zwtps://host/image";
    QTest::newRow("a URL in capitals stays, case and all") << "HTTP://Host/Image"
                                                           << "HTTP://Host/Image";
    QTest::newRow("another scheme is a file that is not there") << "ftp://host/image"
                                                                << "";
    QTest::newRow("half a scheme is a file that is not there") << "http:/host"
                                                               << "";
    QTest::newRow("an absolute path stays, there or not") << "/no/such/../file.tif"
                                                          << "/no/such/../file.tif";
    QTest::newRow("a relative file is found beside the document") << "here.tif"
                                                                  << "%1/here.tif";
    QTest::newRow("a roundabout path is straightened") << "./below/../here.tif"
                                                       << "%1/here.tif";
    QTest::newRow("a file in a folder below") << "below/deep.tif"
                                              << "%1/below/deep.tif";
    QTest::newRow("a missing file resolves to nothing") << "missing.tif"
                                                        << "";
}

void LayerTest::readXmlResolvesSources()
{
    QFETCH(QString, value);
    QFETCH(QString, source);
    QTemporaryDir folder;
    const QString path = QDir(folder.path()).canonicalPath();
    QVERIFY(QDir(path).mkdir(QStringLiteral("below")));
    for (const char* name : {"here.tif", "below/deep.tif"}) {
        QFile file(QDir(path).filePath(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    TestLayer layer;
    QVERIFY(read(layer, QStringLiteral("<datasource value='%1'/>").arg(value), path));
    if (source.contains(QLatin1String("%1"))) {
        source = source.arg(path);
    }
    QCOMPARE(layer.log, QStringList({QStringLiteral("setDataSource(%1)").arg(source)}));
}

void LayerTest::readXmlResolvesAnEmptySourceToTheFolder()
{
    QTemporaryDir folder;
    TestLayer layer;
    QVERIFY(read(layer, QStringLiteral("<datasource/>"), folder.path()));
    QCOMPARE(layer.dataSource, QDir(folder.path()).canonicalPath());
}

void LayerTest::readXmlFollowsLinks()
{
    QTemporaryDir folder;
    const QString path = QDir(folder.path()).canonicalPath();
    QFile file(path + QStringLiteral("/real.tif"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(QFile::link(path + QStringLiteral("/real.tif"), path + QStringLiteral("/link.tif")));

    TestLayer layer;
    QVERIFY(read(layer, QStringLiteral("<datasource value='link.tif'/>"), path));
    QCOMPARE(layer.dataSource, path + QStringLiteral("/real.tif"));
}

void LayerTest::readXmlLogsUnknownElementsAndGoesOn()
{
    RecordingSink sink;
    TestLayer layer;
    QVERIFY(read(layer, QStringLiteral("<mystery a='b'/><Param name='Visible' value='false'/>"
                                       "<param name='Description' value='Harbour'/>"
                                       "<datasource value='/a.tif'/>")));
    QCOMPARE(sink.log,
             QStringList({"1: MapCanvas found unknown XML element <mystery> in document.",
                          "1: MapCanvas found unknown XML element <Param> in document."}));
    QVERIFY(sink.times.first().isValid());
    QCOMPARE(layer.getDescription(), QStringLiteral("Harbour"));
    QCOMPARE(layer.dataSource, QStringLiteral("/a.tif"));
    QVERIFY(layer.visible);
}

void LayerTest::readXmlPassesOverWhatIsNoElement()
{
    RecordingSink sink;
    TestLayer layer;
    QVERIFY(read(layer, QStringLiteral("text <!-- a remark --><datasource value='/a.tif'/>more")));
    QVERIFY(sink.log.isEmpty());
    QCOMPARE(layer.dataSource, QStringLiteral("/a.tif"));
}

void LayerTest::aSavedLayerReadsBackWithANewIdentity()
{
    SettingsLayer saved;
    saved.dataSource = QStringLiteral("http://host/Image");
    saved.setDescription(QStringLiteral("Harbour \"east\" & <west>"));
    saved.setComments(QStringLiteral(" two\nlines "));
    saved.setVisible(false);
    saved.setMinScale(0.1);
    saved.setMaxScale(1.0 / 3.0);
    saved.server = QUrl(QStringLiteral("http://host/a%20b"));
    saved.count = -4;
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("layer"));
    document.appendChild(element);
    QVERIFY(saved.writeXML(element, document));

    QDomDocument loaded;
    QVERIFY(loaded.setContent(document.toString(-1)));
    QDomNode node = loaded.documentElement();
    QDir dir;
    SettingsLayer layer;
    QVERIFY(layer.readXML(node, dir, nullptr));
    QCOMPARE(written(layer), written(saved));
    QVERIFY(layer.getMaxScale() == 1.0 / 3.0);
    QVERIFY(layer.getUid() != saved.getUid());
}

QTEST_GUILESS_MAIN(LayerTest)
#include "LayerTest.moc"
