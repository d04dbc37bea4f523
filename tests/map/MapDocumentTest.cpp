#include "MapViewTools.h"

#include <corvane/core/LogMessageHandler.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/ViewManager.h>
#include <tests/support/MessageLines.h>

#include <QDir>
#include <QDomDocument>
#include <QDomElement>
#include <QFile>
#include <QSignalSpy>

#include <limits>

using Corvane::Application;
using Corvane::LogLevel;
using Corvane::Map::Layer;
using Corvane::Map::MapCanvas;
using Corvane::Map::MapView;

namespace {

/// What the library logs, "level: message".
class RecordingLog : public Corvane::LogMessageHandler
{
public:
    RecordingLog() { Application::installLogMessageHandler(this); }
    ~RecordingLog() { Application::installLogMessageHandler(nullptr); }
    void logMessage(const QString& message, LogLevel level, const QDateTime&) override
    {
        lines << QStringLiteral("%1: %2").arg(level).arg(message);
    }
    void setLogLevel(LogLevel) override {}
    LogLevel getLogLevel() override { return Corvane::Debug; }

    QStringList lines;
};

QDomDocument parsed(const QString& xml)
{
    QDomDocument document;
    QString error;
    if (!document.setContent(xml, &error)) {
        qFatal("not XML: %s in %s", qPrintable(error), qPrintable(xml));
    }
    return document;
}

/// The canvas and what its document gave.
struct Load
{
    bool ok = false;
    QString errors;
};

template <typename Target>
Load load(Target& target, const QString& xml, const QString& folder = QStringLiteral("/maps"))
{
    QDomDocument document = parsed(xml);
    QDir base(folder);
    Load result;
    result.ok = target.loadMapXML(document, base, &result.errors);
    return result;
}

QString root(const QString& content)
{
    return QStringLiteral("<mapcanvas>") + content + QStringLiteral("</mapcanvas>");
}

QString layerElement(const QString& source, const QString& className = "TestPluginLayer")
{
    return QStringLiteral("<layer class=\"%1\"><datasource value=\"%2\"/></layer>")
        .arg(className, source);
}

/// The elements with their attributes in alphabetical order, a line each, children further in.
QStringList outline(const QDomElement& element, int depth = 0)
{
    QStringList attributes;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.size(); ++i) {
        const QDomAttr attribute = map.item(i).toAttr();
        attributes << QStringLiteral(" %1=%2").arg(attribute.name(), attribute.value());
    }
    attributes.sort();
    QString line = QString(depth, ' ') + element.tagName() + attributes.join(QString());
    if (!element.firstChild().isNull() && element.firstChildElement().isNull()) {
        line += QStringLiteral(" [%1]").arg(element.text());
    }
    QStringList lines(line);
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        lines << outline(child, depth + 1);
    }
    return lines;
}

template <typename Source>
std::unique_ptr<QDomDocument> save(Source& source)
{
    return std::unique_ptr<QDomDocument>(source.saveMapXML());
}

template <typename Source>
QStringList savedOutline(Source& source)
{
    return outline(save(source)->documentElement());
}

/// Everything that a document sets in a canvas.
QStringList stateOf(MapCanvas& canvas)
{
    QStringList state{text(canvas.getBounds()),
                      canvas.getDescription(),
                      canvas.getComments(),
                      QString::number(canvas.getRotation()),
                      QString::number(canvas.getDrawMapBBox()),
                      canvas.getMapBBoxColor().name(QColor::HexArgb),
                      QString::number(canvas.getDrawLayerBBox()),
                      canvas.getLayerBBoxColor().name(QColor::HexArgb)};
    for (Layer* layer : qAsConst(canvas.getLayers())) {
        state << layer->getDataSource();
    }
    return state;
}

const QString bounds = QStringLiteral("<bounds tlx=\"0\" tly=\"100\" brx=\"100\" bry=\"0\" "
                                      "draw=\"true\" drawcolor=\"#102030\" drawchildren=\"true\" "
                                      "drawchildrencolor=\"#405060\"/>");

} // namespace

/// The doors to the size of a canvas's view, which nothing reads. An explicit instantiation may name
/// private members.
template <int MapCanvas::*width, int MapCanvas::*height>
struct ViewSizeDoor
{
    friend QSize viewSizeOf(MapCanvas& canvas) { return QSize(canvas.*width, canvas.*height); }
};
QSize viewSizeOf(MapCanvas& canvas);
template struct ViewSizeDoor<&MapCanvas::viewWidth, &MapCanvas::viewHeight>;

/// Maps as documents: what is written, what is read, and what becomes of documents that others wrote.
class MapDocumentTest : public QObject
{
    Q_OBJECT
private slots:
    void aMapIsSavedInFullAndInOrder();
    void anEmptyMapIsSavedWithAllItsElements();
    void extentsAreSavedToTheLastBit();
    void coloursAreSavedWithoutTheirAlpha();
    void sideListsAndRotationAreNotSaved();
    void twoSavesGiveTheSameBytes();
    void aSavedMapIsReadBackAsItWas();
    void aLoadedLayerIsAnotherOne();

    void aRootOfAnotherNameIsRefused_data();
    void aRootOfAnotherNameIsRefused();
    void aRootWithoutChildrenChangesNothing();
    void nameVersionAndTypeAreNotLookedAt();
    void strangeChildrenGiveADebugLineEach();
    void emptyTextsChangeNothing();
    void missingAttributesHaveDefaults();
    void onlyTrueIsTrue_data();
    void onlyTrueIsTrue();
    void theRotationIsReadAndTheCodeIsNot();
    void aDocumentWithoutRotationTurnsTheMapBack();
    void layersAheadOfBoundsWork();
    void withoutBoundsTheViewIsGone();
    void theCanvasKeepsFractionsAndAViewOfAHundredPixels();
    void theLastOfSeveralBoundsHolds();

    void loadingAddsToTheStack();
    void aLayerWithoutAClassIsPassedOver();
    void aStrangeChildOfLayersIsLogged();
    void aClassThatNobodyServesIsReported();
    void aLayerThatRefusesItsElementIsLeftOut();
    void addedLayersAreLogged();
    void aRelativeSourceIsLookedForBesideTheDocument();
    void anErrorTextMayBeMissing();

    void theViewTakesTheExtentsAndTells();
    void theExtentsComeBackInWholeUnits();
    void aViewWithoutBoundsTellsOfNothing();
    void aRefusedDocumentTellsNobody();
    void scriptsCallItWithAndWithoutAnErrorText();

    void numbersThatAreNoneDoNoHarm_data();
    void numbersThatAreNoneDoNoHarm();
    void manyLayersAndManyElementsAreRead();
};

void MapDocumentTest::aMapIsSavedInFullAndInOrder()
{
    MapCanvas canvas(nullptr);
    auto* first = new TestLayer;
    first->dataSource = "/data/one <&> \"two\".tif";
    first->setDescription("Harbour");
    first->setComments("seen\nfrom the east");
    auto* second = new TestRasterLayer;
    second->dataSource = "http://example.org/a?b=c&d=e";
    second->setTransparency(0.25);
    second->visible = false;
    second->setMinScale(1000.0);
    second->setMaxScale(50000.5);
    canvas.addLayer(first);
    canvas.addLayer(second);
    canvas.setView(640, 480, 0.5, 10.5, 20.5, 0.5);
    canvas.setDescription("A map");
    canvas.setComments("of ours");
    canvas.setDrawLayerBBox(true);

    const auto document = save(canvas);

    QCOMPARE(document->doctype().name(), QString("CorvaneMapCanvas"));
    const QStringList expected{
        "mapcanvas name=mapcanvas version=1.0",
        " bounds brx=20.5 bry=0.5 draw=false drawchildren=true drawchildrencolor=#00ffff "
        "drawcolor=#ff0000 tlx=0.5 tly=10.5",
        " description [A map]",
        " comments [of ours]",
        " layers",
        "  layer class=TestLayer",
        "   datasource value=/data/one <&> \"two\".tif",
        "   comments [seen\nfrom the east]",
        "   param name=DataSource value=/data/one <&> \"two\".tif",
        "   param name=Description value=Harbour",
        "   param name=Visible value=true",
        "   param name=MinScale value=2.2250738585072014e-308",
        "   param name=MaxScale value=1.7976931348623157e+308",
        "  layer class=TestRasterLayer",
        "   datasource value=http://example.org/a?b=c&d=e",
        "   comments []",
        "   param name=DataSource value=http://example.org/a?b=c&d=e",
        "   param name=Description value=",
        "   param name=Visible value=false",
        "   param name=MinScale value=1000",
        "   param name=MaxScale value=50000.5",
        "   param name=Transparency value=0.25",
        "   param name=BandList value="};
    QCOMPARE(outline(document->documentElement()), expected);
}

void MapDocumentTest::anEmptyMapIsSavedWithAllItsElements()
{
    MapCanvas canvas(nullptr);
    canvas.setDescription(QString());
    const QStringList expected{
        "mapcanvas name=mapcanvas version=1.0",
        " bounds brx=0 bry=0 draw=false drawchildren=false drawchildrencolor=#00ffff "
        "drawcolor=#ff0000 tlx=0 tly=0",
        " description []", " comments []", " layers"};
    QCOMPARE(savedOutline(canvas), expected);
    QCOMPARE(savedOutline(*std::make_unique<MapCanvas>(nullptr)).at(2),
             QString(" description [Map]"));
}

void MapDocumentTest::extentsAreSavedToTheLastBit()
{
    const QVector<double> values{0.1 + 0.2, 1.0 / 3.0 * 1e9, -7e-200, 4650000.000000001};
    MapCanvas canvas(nullptr);
    canvas.setView(10, 10, values[0], values[1], values[2], values[3]);
    const QDomElement element = save(canvas)->documentElement().firstChildElement("bounds");
    QVERIFY(element.attribute("tlx").toDouble() == values[0]);
    QVERIFY(element.attribute("tly").toDouble() == values[1]);
    QVERIFY(element.attribute("brx").toDouble() == values[2]);
    QVERIFY(element.attribute("bry").toDouble() == values[3]);
}

void MapDocumentTest::coloursAreSavedWithoutTheirAlpha()
{
    MapCanvas canvas(nullptr);
    canvas.setMapBBoxColor(QColor(1, 2, 3, 4));
    MapCanvas again(nullptr);
    QVERIFY(load(again, save(canvas)->toString()).ok);
    QCOMPARE(again.getMapBBoxColor(), QColor(1, 2, 3, 255));
}

void MapDocumentTest::sideListsAndRotationAreNotSaved()
{
    MapCanvas canvas(nullptr);
    const QStringList before = savedOutline(canvas);
    TestLayer over;
    TestLayer under;
    canvas.getOverlayLayers().append(&over);
    canvas.getBackgroundLayers().append(&under);
    canvas.getLayers().append(nullptr);
    canvas.setRotation(30.0);
    QCOMPARE(savedOutline(canvas), before);
    canvas.getOverlayLayers().clear();
    canvas.getBackgroundLayers().clear();
}

void MapDocumentTest::twoSavesGiveTheSameBytes()
{
    MapCanvas canvas(nullptr);
    canvas.addLayer(new TestRasterLayer);
    canvas.addLayer(new TestVectorLayer);
    canvas.setView(10, 10, 0.5, 10.5, 20.5, 0.5);
    const QByteArray first = save(canvas)->toByteArray();
    QVERIFY(!first.isEmpty());
    QCOMPARE(save(canvas)->toByteArray(), first);
}

void MapDocumentTest::aSavedMapIsReadBackAsItWas()
{
    MapCanvas canvas(nullptr);
    load(canvas, root(bounds +
                      "<description> A &lt;map&gt; </description><comments>\u00e4\u4e00"
                      "</comments><layers>" +
                      layerElement("/a.test") + layerElement("/b.test") + "</layers>"));
    canvas.getLayerAt(0)->setVisible(false);
    canvas.getLayerAt(0)->setMaxScale(12.5);
    canvas.getLayerAt(1)->setDescription("second");
    canvas.getLayerAt(1)->setComments("two\nlines");

    MapCanvas again(nullptr);
    QVERIFY(load(again, save(canvas)->toString()).ok);

    QCOMPARE(stateOf(again), stateOf(canvas));
    QCOMPARE(savedOutline(again), savedOutline(canvas));
}

void MapDocumentTest::aLoadedLayerIsAnotherOne()
{
    MapCanvas canvas(nullptr);
    load(canvas, root("<layers>" + layerElement("/a.test") + "</layers>"));
    MapCanvas again(nullptr);
    load(again, save(canvas)->toString());
    QCOMPARE(again.getNumberOfLayers(), 1);
    QVERIFY(again.getLayerAt(0)->getUid() != canvas.getLayerAt(0)->getUid());
}

void MapDocumentTest::aRootOfAnotherNameIsRefused_data()
{
    QTest::addColumn<QString>("xml");
    QTest::newRow("another name")
        << QString("<canvas>%1<layers>%2</layers></canvas>").arg(bounds, layerElement("/a.test"));
    QTest::newRow("other capitals") << QString("<MapCanvas>%1</MapCanvas>").arg(bounds);
    QTest::newRow("further in") << QString("<file><mapcanvas>%1</mapcanvas></file>").arg(bounds);
}

void MapDocumentTest::aRootOfAnotherNameIsRefused()
{
    QFETCH(QString, xml);
    MapCanvas canvas(nullptr);
    canvas.setView(10, 10, 1.0, 2.0, 3.0, 4.0);
    const QStringList before = stateOf(canvas);
    RecordingLog log;
    MessageLines messages;

    const Load result = load(canvas, xml);

    QVERIFY(!result.ok);
    QCOMPARE(result.errors, QString());
    QCOMPARE(stateOf(canvas), before);
    QCOMPARE(log.lines, QStringList());
    QCOMPARE(messages.all(), QStringList());

    QDomDocument empty;
    QDir base("/maps");
    QVERIFY(!canvas.loadMapXML(empty, base, nullptr));
}

void MapDocumentTest::aRootWithoutChildrenChangesNothing()
{
    MapCanvas canvas(nullptr);
    canvas.setView(10, 10, 1.0, 2.0, 3.0, 4.0);
    canvas.setRotation(5.0);
    const QStringList before = stateOf(canvas);
    QVERIFY(load(canvas, "<mapcanvas/>").ok);
    QCOMPARE(stateOf(canvas), before);
}

void MapDocumentTest::nameVersionAndTypeAreNotLookedAt()
{
    MapCanvas canvas(nullptr);
    QVERIFY(load(canvas,
                 "<!DOCTYPE Other><mapcanvas name=\"x\" version=\"99\">" + bounds + "</mapcanvas>")
                .ok);
    QCOMPARE(text(canvas.getBounds()), QString("0 100 100 0"));
}

void MapDocumentTest::strangeChildrenGiveADebugLineEach()
{
    MapCanvas canvas(nullptr);
    RecordingLog log;
    MessageLines messages;

    const Load result =
        load(canvas, root("<guide/>" + bounds + "<!-- a remark --><guide>text</guide><Layers/>"));

    QVERIFY(result.ok);
    QCOMPARE(result.errors, QString());
    QCOMPARE(messages.all(),
             QStringList({"debug: Unknown child element (guide) in root node for MapView",
                          "debug: Unknown child element () in root node for MapView",
                          "debug: Unknown child element (guide) in root node for MapView",
                          "debug: Unknown child element (Layers) in root node for MapView"}));
    QCOMPARE(log.lines, QStringList());
    QCOMPARE(text(canvas.getBounds()), QString("0 100 100 0"));
}

void MapDocumentTest::emptyTextsChangeNothing()
{
    MapCanvas canvas(nullptr);
    canvas.setComments("there before");
    QVERIFY(load(canvas, root("<description/><comments></comments>")).ok);
    QCOMPARE(canvas.getDescription(), QString("Map"));
    QCOMPARE(canvas.getComments(), QString("there before"));

    load(canvas, root("<description>one</description><comments>two</comments>"));
    QCOMPARE(canvas.getDescription(), QString("one"));
    QCOMPARE(canvas.getComments(), QString("two"));
}

void MapDocumentTest::missingAttributesHaveDefaults()
{
    MapCanvas canvas(nullptr);
    canvas.setDrawMapBBox(true);
    canvas.setDrawLayerBBox(true);
    canvas.setView(10, 10, 1.0, 2.0, 3.0, 4.0);

    QVERIFY(load(canvas, root("<bounds brx=\"7\"/>")).ok);

    QCOMPARE(text(canvas.getBounds()), QString("0 0 7 0"));
    QVERIFY(!canvas.getDrawMapBBox());
    QVERIFY(!canvas.getDrawLayerBBox());
    QVERIFY(!canvas.getMapBBoxColor().isValid());
    QVERIFY(!canvas.getLayerBBoxColor().isValid());
}

void MapDocumentTest::onlyTrueIsTrue_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("draws");
    QTest::newRow("true") << "true" << true;
    QTest::newRow("false") << "false" << false;
    QTest::newRow("in capitals") << "True" << false;
    QTest::newRow("as a number") << "1" << false;
    QTest::newRow("with a space") << "true " << false;
    QTest::newRow("nothing") << "" << false;
}

void MapDocumentTest::onlyTrueIsTrue()
{
    QFETCH(QString, value);
    QFETCH(bool, draws);
    for (const bool before : {false, true}) {
        MapCanvas canvas(nullptr);
        canvas.setDrawMapBBox(before);
        canvas.setDrawLayerBBox(before);
        load(canvas, root(QString("<bounds draw=\"%1\" drawchildren=\"%1\"/>").arg(value)));
        QCOMPARE(canvas.getDrawMapBBox(), draws);
        QCOMPARE(canvas.getDrawLayerBBox(), draws);
    }
}

void MapDocumentTest::theRotationIsReadAndTheCodeIsNot()
{
    MapCanvas canvas(nullptr);
    QVERIFY(load(canvas, root("<coordsys srscode=\"32633\" rotation=\"12.5\"/>")).ok);
    QCOMPARE(canvas.getRotation(), 12.5);
    QCOMPARE(canvas.getSrs().epsg, 0);
    QVERIFY(load(canvas, root("<coordsys srscode=\"none\" rotation=\"none\"/>")).ok);
    QCOMPARE(canvas.getRotation(), 0.0);
}

void MapDocumentTest::aDocumentWithoutRotationTurnsTheMapBack()
{
    MapCanvas canvas(nullptr);
    canvas.setRotation(12.5);
    QVERIFY(load(canvas, root("<comments/>")).ok);
    QCOMPARE(canvas.getRotation(), 0.0);
}

void MapDocumentTest::layersAheadOfBoundsWork()
{
    auto view = makeView(Motion::Direct);
    QVERIFY(load(*view, root("<layers>" + layerElement("/a.test") + "</layers>" +
                             "<bounds tlx=\"0\" tly=\"50\" brx=\"50\" bry=\"0\"/>"))
                .ok);
    QCOMPARE(text(view->getBounds()), QString("0 50 50 0"));
    QCOMPARE(view->getNumberOfLayers(), 1);
}

void MapDocumentTest::withoutBoundsTheViewIsGone()
{
    MapCanvas canvas(nullptr);
    canvas.setView(10, 10, 1.0, 2.0, 3.0, 4.0);
    QVERIFY(load(canvas, root("<!-- nothing else -->")).ok);
    QVERIFY(canvas.getBounds().isNull());
    QCOMPARE(text(canvas.getBounds()), QString("0 0 0 0"));
}

void MapDocumentTest::theCanvasKeepsFractionsAndAViewOfAHundredPixels()
{
    MapCanvas canvas(nullptr);
    load(canvas, root("<bounds tlx=\"0.25\" tly=\"10.5\" brx=\"20.75\" bry=\"-0.5\"/>"));
    QCOMPARE(text(canvas.getBounds()), QString("0 10 20 0"));
    QCOMPARE(savedOutline(canvas).at(1).section(" tlx", 1), QString("=0.25 tly=10.5"));
    QVERIFY(savedOutline(canvas).at(1).contains("brx=20.75 bry=-0.5"));
    QCOMPARE(viewSizeOf(canvas), QSize(100, 100));
}

void MapDocumentTest::theLastOfSeveralBoundsHolds()
{
    MapCanvas canvas(nullptr);
    load(canvas, root("<bounds tlx=\"1\" brx=\"2\"/><description>a</description>"
                      "<bounds tlx=\"3\"/><description>b</description>"));
    QCOMPARE(text(canvas.getBounds()), QString("3 0 0 0"));
    QCOMPARE(canvas.getDescription(), QString("b"));
}

void MapDocumentTest::loadingAddsToTheStack()
{
    const QString xml =
        root(bounds + "<layers>" + layerElement("/a.test") + layerElement("/b.test") + "</layers>");
    auto view = makeView(Motion::Direct);
    load(*view, xml);
    load(*view, xml);
    QStringList sources;
    for (Layer* layer : qAsConst(view->getLayers())) {
        sources << layer->getDataSource();
    }
    QCOMPARE(sources, QStringList({"/a.test", "/b.test", "/a.test", "/b.test"}));
}

void MapDocumentTest::aLayerWithoutAClassIsPassedOver()
{
    MapCanvas canvas(nullptr);
    RecordingLog log;
    const Load result = load(canvas, root("<layers><layer><datasource value=\"/a.test\"/></layer>"
                                          "</layers>"));
    QVERIFY(result.ok);
    QCOMPARE(result.errors, QString());
    QCOMPARE(log.lines, QStringList());
    QCOMPARE(canvas.getNumberOfLayers(), 0);
}

void MapDocumentTest::aStrangeChildOfLayersIsLogged()
{
    MapCanvas canvas(nullptr);
    RecordingLog log;
    const Load result =
        load(canvas, root("<layers><Layer class=\"TestPluginLayer\"/><!-- a remark -->" +
                          layerElement("/a.test") + "<group/></layers>"));
    QVERIFY(result.ok);
    QCOMPARE(result.errors, QString());
    QCOMPARE(log.lines,
             QStringList({"1: Unknown child element (Layer) in <layers> node for MapView.",
                          "1: Unknown child element () in <layers> node for MapView.",
                          "0: Added layer from map view XML context : /a.test",
                          "1: Unknown child element (group) in <layers> node for MapView."}));
    QCOMPARE(canvas.getNumberOfLayers(), 1);
}

void MapDocumentTest::aClassThatNobodyServesIsReported()
{
    MapCanvas canvas(nullptr);
    RecordingLog log;
    const QString first =
        "The plugin manager could not find a layer class to handle the type 'NoSuchLayer'.";
    const QString second = "The plugin manager could not find a layer class to handle the type ''.";

    const Load result =
        load(canvas, root("<layers>" + layerElement("/a.test", "NoSuchLayer") +
                          layerElement("/b.test") + layerElement("/c.test", "") + "</layers>"));

    QVERIFY(result.ok);
    QCOMPARE(result.errors, first + second);
    QCOMPARE(log.lines,
             QStringList({"1: " + first, "0: Added layer from map view XML context : /b.test",
                          "1: " + second}));
    QCOMPARE(canvas.getNumberOfLayers(), 1);
}

void MapDocumentTest::aLayerThatRefusesItsElementIsLeftOut()
{
    MapCanvas canvas(nullptr);
    RecordingLog log;

    const Load result = load(canvas, root("<layers>" + layerElement("/a.test") +
                                          layerElement("/refused.test") + "</layers>"));

    const QPointer<QObject> refused = qApp->property("madeLayer").value<QObject*>();
    QVERIFY(result.ok);
    QCOMPARE(result.errors, QString());
    QCOMPARE(log.lines, QStringList({"0: Added layer from map view XML context : /a.test"}));
    QCOMPARE(canvas.getNumberOfLayers(), 1);
    QVERIFY(refused);
    QCOMPARE(static_cast<Layer*>(refused.data())->getDataSource(), QString("/refused.test"));
    delete refused; // here the test is its owner
}

void MapDocumentTest::addedLayersAreLogged()
{
    MapCanvas canvas(nullptr);
    RecordingLog log;
    load(canvas, root("<layers>" + layerElement("HTTP://a/%1") + "</layers>"));
    QCOMPARE(log.lines, QStringList({"0: Added layer from map view XML context : HTTP://a/%1"}));
}

void MapDocumentTest::aRelativeSourceIsLookedForBesideTheDocument()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("images"));
    QFile file(folder.filePath("images/there.test"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    MapCanvas canvas(nullptr);

    load(canvas,
         root("<layers>" + layerElement("images/../images/there.test") +
              layerElement("images/missing.test") + layerElement("/not/there.test") + "</layers>"),
         folder.path());

    QCOMPARE(canvas.getLayerAt(0)->getDataSource(),
             QFileInfo(folder.filePath("images/there.test")).canonicalFilePath());
    QCOMPARE(canvas.getLayerAt(1)->getDataSource(), QString());
    QCOMPARE(canvas.getLayerAt(2)->getDataSource(), QString("/not/there.test"));
}

void MapDocumentTest::anErrorTextMayBeMissing()
{
    MapCanvas canvas(nullptr);
    RecordingLog log;
    QDomDocument document =
        parsed(root("<layers>" + layerElement("/a.test", "NoSuchLayer") + "</layers>"));
    QDir base("/maps");
    QVERIFY(canvas.loadMapXML(document, base, nullptr));
    QCOMPARE(log.lines.size(), 1);
}

void MapDocumentTest::theViewTakesTheExtentsAndTells()
{
    QStringList journal;
    auto view = makeView(Motion::Animated);
    auto* layer = new JournalLayer("a", &journal);
    view->addLayer(layer);
    journal.clear();
    record(*view, &journal);

    QVERIFY(load(*view, root("<bounds tlx=\"0\" tly=\"40.5\" brx=\"20.5\" bry=\"0\"/><layers>" +
                             layerElement("/a.test") + "</layers>"))
                .ok);

    // the device is the whole widget, and the view has the widget's shape before others are told
    QCOMPARE(journal, QStringList({"a setView 101x101 -10 40 30 0", "extents -10 40 30 0",
                                   "extents 0 40 20 0"}));
    QCOMPARE(text(view->getBounds()), QString("-10 40 30 0"));
    const auto* loaded = dynamic_cast<PlainLayer<Layer>*>(view->getLayerAt(1));
    QVERIFY(loaded);
    QCOMPARE(loaded->log.last(), QString("setView(101x101, -10 40 30 0)"));
    double wx = 0.0;
    double wy = 0.0;
    view->getViewManager()->convertDeviceToWorld(101, 101, &wx, &wy);
    QCOMPARE(wx, 30.0);
    QCOMPARE(wy, 0.0);
}

void MapDocumentTest::theExtentsComeBackInWholeUnits()
{
    auto view = makeView(Motion::Direct);
    MapCanvas canvas(nullptr);
    canvas.setView(10, 10, 0.5, 10.5, 20.5, 0.5);
    const QSignalSpy told(view.get(), &MapView::mapExtentsChanged);

    QVERIFY(load(*view, save(canvas)->toString()).ok);

    QCOMPARE(told.last(), QVariantList({0.0, 10.0, 20.0, 0.0}));
    QCOMPARE(text(view->getBounds()), QString("0 15 20 -5"));
}

void MapDocumentTest::aViewWithoutBoundsTellsOfNothing()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    view->addLayer(new JournalLayer("a", &journal));
    journal.clear();
    record(*view, &journal);

    QVERIFY(load(*view, root("<description>a</description>")).ok);

    QCOMPARE(journal, QStringList({"extents 0 0 0 0"}));
    QCOMPARE(text(view->getMapCanvas()->getBounds()), QString("0 0 0 0"));
    double tlx = 1.0;
    double tly = 1.0;
    double brx = 1.0;
    double bry = 1.0;
    view->getViewManager()->getWorldExtents(&tlx, &tly, &brx, &bry);
    QCOMPARE(text(tlx, tly, brx, bry), QString("0 0 0 0"));
}

void MapDocumentTest::aRefusedDocumentTellsNobody()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    record(*view, &journal);
    QVERIFY(!load(*view, "<other/>").ok);
    QCOMPARE(journal, QStringList());
    QCOMPARE(text(view->getBounds()), QString("0 100 100 0"));
}

void MapDocumentTest::scriptsCallItWithAndWithoutAnErrorText()
{
    auto view = makeView(Motion::Direct);
    const QMetaObject* meta = view->metaObject();
    QVERIFY(meta->indexOfMethod("loadMapXML(QDomDocument&,QDir&,QString*)") >= 0);
    QVERIFY(meta->indexOfMethod("saveMapXML()") >= 0);

    QDomDocument document = parsed(root("<description>a</description>"));
    QDir base("/maps");
    bool ok = false;
    QVERIFY(QMetaObject::invokeMethod(view.get(), "loadMapXML", Q_RETURN_ARG(bool, ok),
                                      Q_ARG(QDomDocument&, document), Q_ARG(QDir&, base)));
    QVERIFY(ok);
    QCOMPARE(view->getDescription(), QString("a"));
    QDomDocument* saved = nullptr;
    QVERIFY(
        QMetaObject::invokeMethod(view.get(), "saveMapXML", Q_RETURN_ARG(QDomDocument*, saved)));
    const std::unique_ptr<QDomDocument> owned(saved);
    QCOMPARE(outline(owned->documentElement()), savedOutline(*view->getMapCanvas()));
}

void MapDocumentTest::numbersThatAreNoneDoNoHarm_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("no number") << "east";
    QTest::newRow("not a number") << "nan";
    QTest::newRow("infinite") << "inf";
    QTest::newRow("minus infinite") << "-inf";
    QTest::newRow("larger than all") << "1e999";
    QTest::newRow("the largest") << "1.7976931348623157e308";
    QTest::newRow("empty") << "";
}

void MapDocumentTest::numbersThatAreNoneDoNoHarm()
{
    QFETCH(QString, value);
    auto view = makeView(Motion::Direct);
    QVERIFY(
        load(*view, root(QString("<bounds tlx=\"%1\" tly=\"1\" brx=\"5\" bry=\"%1\" draw=\"%1\" "
                                 "drawchildren=\"%1\" drawcolor=\"%1\" "
                                 "drawchildrencolor=\"%1\"/><coordsys rotation=\"%1\" "
                                 "srscode=\"%1\"/><layers>%2</layers>")
                             .arg(value, layerElement("/a.test"))))
            .ok);
    QCOMPARE(view->getNumberOfLayers(), 1);
    QVERIFY(!view->grab().isNull());
    view->onMapAction(MapView::MapZoomIn);
    view->zoomToAllLayers(false);
    QCOMPARE(text(view->getBounds()), QString("0 100 100 0"));
}

void MapDocumentTest::manyLayersAndManyElementsAreRead()
{
    constexpr int count = 2000;
    QString layers;
    for (int i = 0; i < count; ++i) {
        layers += layerElement(QString("/%1.test").arg(i));
    }
    MapCanvas canvas(nullptr);
    QVERIFY(load(canvas, root("<layers>" + layers + "</layers>")).ok);
    QCOMPARE(canvas.getNumberOfLayers(), count);
    QCOMPARE(canvas.getLayerAt(count - 1)->getDataSource(), QString("/1999.test"));
}

MAP_TEST_MAIN(MapDocumentTest)
#include "MapDocumentTest.moc"
