#include "TestLayers.h"

#include <QDomDocument>
#include <QImage>
#include <QLinearGradient>
#include <QMetaProperty>
#include <QtTest>

namespace {

QStringList* messages = nullptr;

void takeMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    messages->append(message);
}

/// Takes Qt's messages for as long as it lives.
class MessageLog
{
public:
    MessageLog()
    {
        messages = &lines;
        previous = qInstallMessageHandler(takeMessage);
    }
    ~MessageLog() { qInstallMessageHandler(previous); }
    QStringList lines;

private:
    QtMessageHandler previous;
};

/// tag{name=value ...}[children], the attributes sorted by name.
QString textOf(const QDomElement& element)
{
    QStringList attributes;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i) {
        const QDomAttr attribute = map.item(i).toAttr();
        attributes << attribute.name() + QLatin1Char('=') + attribute.value();
    }
    attributes.sort();
    QString text =
        element.tagName() + QLatin1Char('{') + attributes.join(QLatin1Char(' ')) + QLatin1Char('}');
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        text += QLatin1Char('[') + textOf(child) + QLatin1Char(']');
    }
    return text;
}

QDomElement parsed(QDomDocument& document, const QString& xml)
{
    if (!document.setContent(xml)) {
        qWarning("the test's own XML is broken");
    }
    return document.documentElement();
}

QPen penOf(const QString& xml)
{
    QDomDocument document;
    QDomElement element = parsed(document, xml);
    return TestVectorLayer::penFromXML(element);
}

QBrush brushOf(const QString& xml)
{
    QDomDocument document;
    QDomElement element = parsed(document, xml);
    return TestVectorLayer::brushFromXML(element);
}

} // namespace

Q_DECLARE_METATYPE(QGradient*)

class VectorLayerTest : public QObject
{
    Q_OBJECT

private slots:
    void penAndBrushStartAtTheirDefaultsAndAreKept();
    void penAndBrushAreStoredProperties();
    void theirParametersCarryNoText();

    void brushStylesHaveNames_data();
    void brushStylesHaveNames();
    void penStylesHaveNames_data();
    void penStylesHaveNames();
    void capStylesHaveNames_data();
    void capStylesHaveNames();
    void joinStylesHaveNames_data();
    void joinStylesHaveNames();

    void aBrushIsWrittenByStyleAndColour();
    void aBrushIsReadByStyleAndColour();
    void aGradientBrushKeepsItsStyleAndAColourOnly_data();
    void aGradientBrushKeepsItsStyleAndAColourOnly();
    void aTextureBrushKeepsItsNameInTheDocumentOnly();
    void anElementThatIsNoBrushGivesADefaultBrush();
    void anUnknownColourIsInvalid();

    void aPenIsWrittenWithItsBrush();
    void aPenWidthIsWrittenAsAnInt();
    void stylesWithoutANameAreLeftOut();
    void aPenIsReadByWhatIsThere_data();
    void aPenIsReadByWhatIsThere();
    void aPenTakesTheFirstBrushInIt();
    void anElementThatIsNoPenGivesADefaultPen();
    void aPenReadsBackAsItWas();

    void gradientsAreWrittenByTheirType_data();
    void gradientsAreWrittenByTheirType();
    void gradientsAreNotReadYet();
};

void VectorLayerTest::penAndBrushStartAtTheirDefaultsAndAreKept()
{
    TestVectorLayer layer;
    QCOMPARE(layer.getPen(), QPen());
    QCOMPARE(layer.getBrush(), QBrush());
    QPen pen(Qt::red, 3.0);
    QBrush brush(Qt::blue, Qt::CrossPattern);
    layer.setPen(pen);
    layer.setBrush(brush);
    QCOMPARE(layer.getPen(), pen);
    QCOMPARE(layer.getBrush(), brush);
}

void VectorLayerTest::penAndBrushAreStoredProperties()
{
    const QMetaObject& meta = Corvane::Map::VectorLayer::staticMetaObject;
    QStringList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        QVERIFY(property.isReadable() && property.isWritable() && property.isStored());
        properties << QLatin1String(property.typeName()) + QLatin1Char(' ') +
                          QLatin1String(property.name());
    }
    QCOMPARE(properties, QStringList({"QPen pen", "QBrush brush"}));

    TestVectorLayer layer;
    const QPen pen(Qt::red, 3.0);
    QVERIFY(layer.setProperty("pen", pen));
    QCOMPARE(layer.property("pen").value<QPen>(), pen);
    QVERIFY(layer.setProperty("brush", QBrush(Qt::blue)));
    QCOMPARE(layer.property("brush").value<QBrush>(), QBrush(Qt::blue));
}

void VectorLayerTest::theirParametersCarryNoText()
{
    TestVectorLayer layer;
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("layer"));
    QVERIFY(layer.writeXML(element, document));
    QVERIFY(textOf(element).endsWith(
        QLatin1String("[param{name=pen value=}][param{name=brush value=}]")));
}

void VectorLayerTest::brushStylesHaveNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("style");
    const QVector<QPair<const char*, int>> rows = {{"NoBrush", 0},
                                                   {"SolidPattern", 1},
                                                   {"Dense1Pattern", 2},
                                                   {"Dense2Pattern", 3},
                                                   {"Dense3Pattern", 4},
                                                   {"Dense4Pattern", 5},
                                                   {"Dense5Pattern", 6},
                                                   {"Dense6Pattern", 7},
                                                   {"Dense7Pattern", 8},
                                                   {"HorPattern", 9},
                                                   {"VerPattern", 10},
                                                   {"CrossPattern", 11},
                                                   {"BDiagPattern", 12},
                                                   {"FDiagPattern", 13},
                                                   {"DiagCrossPattern", 14},
                                                   {"LinearGradientPattern", 15},
                                                   {"RadialGradientPattern", 16},
                                                   {"ConicalGradientPattern", 17},
                                                   {"TexturePattern", 24},
                                                   {"Dense8Pattern", 0},
                                                   {"solidpattern", 0},
                                                   {" SolidPattern", 0},
                                                   {"", 0}};
    for (const auto& row : rows) {
        QTest::addRow("\"%s\" is %d", row.first, row.second)
            << QString::fromLatin1(row.first) << row.second;
    }
}

void VectorLayerTest::brushStylesHaveNames()
{
    QFETCH(QString, name);
    QFETCH(int, style);
    QCOMPARE(int(TestVectorLayer::brushStyleFromString(name)), style);
}

void VectorLayerTest::penStylesHaveNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("style");
    const QVector<QPair<const char*, int>> rows = {{"NoPen", 0},          {"SolidLine", 1},
                                                   {"DashLine", 2},       {"DotLine", 3},
                                                   {"DashDotLine", 4},    {"DashDotDotLine", 5},
                                                   {"CustomDashLine", 6}, {"solidline", 0},
                                                   {"Solid", 0},          {"", 0}};
    for (const auto& row : rows) {
        QTest::addRow("\"%s\" is %d", row.first, row.second)
            << QString::fromLatin1(row.first) << row.second;
    }
}

void VectorLayerTest::penStylesHaveNames()
{
    QFETCH(QString, name);
    QFETCH(int, style);
    QCOMPARE(int(TestVectorLayer::penStyleFromString(name)), style);
}

void VectorLayerTest::capStylesHaveNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("style");
    const QVector<QPair<const char*, int>> rows = {
        {"FlatCap", 0x00}, {"SquareCap", 0x10}, {"RoundCap", 0x20}, {"roundcap", 0}, {"", 0}};
    for (const auto& row : rows) {
        QTest::addRow("\"%s\" is %d", row.first, row.second)
            << QString::fromLatin1(row.first) << row.second;
    }
}

void VectorLayerTest::capStylesHaveNames()
{
    QFETCH(QString, name);
    QFETCH(int, style);
    QCOMPARE(int(TestVectorLayer::penCapStyleFromString(name)), style);
}

void VectorLayerTest::joinStylesHaveNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("style");
    const QVector<QPair<const char*, int>> rows = {{"MiterJoin", 0x00}, {"BevelJoin", 0x40},
                                                   {"RoundJoin", 0x80}, {"SvgMiterJoin", 0x100},
                                                   {"roundjoin", 0},    {"", 0}};
    for (const auto& row : rows) {
        QTest::addRow("\"%s\" is %d", row.first, row.second)
            << QString::fromLatin1(row.first) << row.second;
    }
}

void VectorLayerTest::joinStylesHaveNames()
{
    QFETCH(QString, name);
    QFETCH(int, style);
    QCOMPARE(int(TestVectorLayer::penJoinStyleFromString(name)), style);
}

void VectorLayerTest::aBrushIsWrittenByStyleAndColour()
{
    MessageLog log;
    QDomDocument document;
    QBrush brush(QColor(255, 128, 0, 40), Qt::Dense3Pattern);
    QCOMPARE(textOf(TestVectorLayer::brushToXML(document, brush)),
             QStringLiteral("brush{color=#ff8000 style=Dense3Pattern}"));
    QBrush none;
    QCOMPARE(textOf(TestVectorLayer::brushToXML(document, none)),
             QStringLiteral("brush{color=#000000 style=NoBrush}"));
    QCOMPARE(log.lines, QStringList({"BRUSH TO XML : #ff8000", "BRUSH TO XML : #000000"}));
}

void VectorLayerTest::aBrushIsReadByStyleAndColour()
{
    MessageLog log;
    const QBrush both = brushOf(QStringLiteral("<brush style='HorPattern' color='#ff8000'/>"));
    QCOMPARE(both, QBrush(QColor(255, 128, 0), Qt::HorPattern));
    const QBrush styleOnly = brushOf(QStringLiteral("<brush style='SolidPattern'/>"));
    QCOMPARE(styleOnly, QBrush(Qt::black, Qt::SolidPattern));
    const QBrush colourOnly = brushOf(QStringLiteral("<brush color='red'/>"));
    QCOMPARE(colourOnly.style(), Qt::NoBrush);
    QCOMPARE(colourOnly.color(), QColor(Qt::red));
    const QBrush unknown = brushOf(QStringLiteral("<brush style='Wavy' color='red'/>"));
    QCOMPARE(unknown.style(), Qt::NoBrush);
    QCOMPARE(brushOf(QStringLiteral("<brush/>")), QBrush());
    QCOMPARE(log.lines,
             QStringList({"BRUSH COLOR : #ff8000", "BRUSH COLOR : red", "BRUSH COLOR : red"}));
}

void VectorLayerTest::aGradientBrushKeepsItsStyleAndAColourOnly_data()
{
    QTest::addColumn<QBrush>("brush");
    QTest::addColumn<QString>("name");
    QLinearGradient linear(1.0, 2.0, 3.0, 4.0);
    linear.setColorAt(0.5, Qt::green);
    QTest::newRow("linear") << QBrush(linear) << "LinearGradientPattern";
    QTest::newRow("radial") << QBrush(QRadialGradient(1.0, 2.0, 3.0)) << "RadialGradientPattern";
    QTest::newRow("conical") << QBrush(QConicalGradient(1.0, 2.0, 3.0)) << "ConicalGradientPattern";
}

void VectorLayerTest::aGradientBrushKeepsItsStyleAndAColourOnly()
{
    QFETCH(QBrush, brush);
    QFETCH(QString, name);
    brush.setColor(Qt::red);
    MessageLog log;
    QDomDocument document;
    QDomElement element = TestVectorLayer::brushToXML(document, brush);
    QCOMPARE(textOf(element), QStringLiteral("brush{color=#ff0000 style=%1}").arg(name));

    const QBrush result = TestVectorLayer::brushFromXML(element);
    QCOMPARE(result.style(), brush.style());
    QCOMPARE(result.color(), QColor(Qt::red));
    QVERIFY(result.gradient() && *result.gradient() != *brush.gradient());
    QCOMPARE(log.lines, QStringList({"BRUSH TO XML : #ff0000", "BRUSH COLOR : #ff0000"}));
}

void VectorLayerTest::aTextureBrushKeepsItsNameInTheDocumentOnly()
{
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QBrush brush(picture);
    MessageLog log;
    QDomDocument document;
    QDomElement element = TestVectorLayer::brushToXML(document, brush);
    QCOMPARE(textOf(element), QStringLiteral("brush{color=#000000 style=TexturePattern}"));
    // without its picture there is no such brush
    QCOMPARE(TestVectorLayer::brushFromXML(element).style(), Qt::NoBrush);
}

void VectorLayerTest::anElementThatIsNoBrushGivesADefaultBrush()
{
    MessageLog log;
    QCOMPARE(brushOf(QStringLiteral("<pen style='SolidPattern' color='red'/>")), QBrush());
    QCOMPARE(brushOf(QStringLiteral("<Brush style='SolidPattern' color='red'/>")), QBrush());
    QDomElement null;
    QCOMPARE(TestVectorLayer::brushFromXML(null), QBrush());
    QVERIFY(log.lines.isEmpty());
}

void VectorLayerTest::anUnknownColourIsInvalid()
{
    MessageLog log;
    const QBrush brush = brushOf(QStringLiteral("<brush style='SolidPattern' color='nocolour'/>"));
    QCOMPARE(brush.style(), Qt::SolidPattern);
    QVERIFY(!brush.color().isValid());
    QCOMPARE(log.lines.last(), QStringLiteral("BRUSH COLOR : nocolour"));
}

void VectorLayerTest::aPenIsWrittenWithItsBrush()
{
    MessageLog log;
    QDomDocument document;
    QPen pen(QBrush(Qt::blue, Qt::Dense1Pattern), 4.0, Qt::DashDotLine, Qt::RoundCap,
             Qt::SvgMiterJoin);
    QCOMPARE(
        textOf(TestVectorLayer::penToXML(document, pen)),
        QStringLiteral("pen{capstyle=RoundCap joinstyle=SvgMiterJoin style=DashDotLine width=4}"
                       "[brush{color=#0000ff style=Dense1Pattern}]"));
    QPen plain;
    QCOMPARE(textOf(TestVectorLayer::penToXML(document, plain)),
             QStringLiteral("pen{capstyle=SquareCap joinstyle=BevelJoin style=SolidLine width=1}"
                            "[brush{color=#000000 style=SolidPattern}]"));
    QCOMPARE(log.lines, QStringList({"BRUSH TO XML : #0000ff", "BRUSH TO XML : #000000"}));
}

void VectorLayerTest::aPenWidthIsWrittenAsAnInt()
{
    MessageLog log;
    QDomDocument document;
    QPen pen;
    pen.setWidthF(2.75);
    QCOMPARE(TestVectorLayer::penToXML(document, pen).attribute(QStringLiteral("width")),
             QStringLiteral("3")); // as the pen itself rounds it
    pen.setWidth(30000);
    QCOMPARE(TestVectorLayer::penToXML(document, pen).attribute(QStringLiteral("width")),
             QStringLiteral("30000"));
}

void VectorLayerTest::stylesWithoutANameAreLeftOut()
{
    MessageLog log;
    QDomDocument document;
    QPen pen;
    pen.setStyle(static_cast<Qt::PenStyle>(7));
    pen.setCapStyle(static_cast<Qt::PenCapStyle>(0x30));
    pen.setJoinStyle(static_cast<Qt::PenJoinStyle>(0xc0));
    QCOMPARE(textOf(TestVectorLayer::penToXML(document, pen)),
             QStringLiteral("pen{width=1}[brush{color=#000000 style=SolidPattern}]"));
}

void VectorLayerTest::aPenIsReadByWhatIsThere_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QPen>("pen");
    QPen pen;
    QTest::newRow("nothing gives a default pen") << "<pen/>" << pen;
    pen.setStyle(Qt::DotLine);
    QTest::newRow("a style") << "<pen style='DotLine'/>" << pen;
    pen.setStyle(Qt::NoPen);
    QTest::newRow("an unknown style is no pen") << "<pen style='dotline'/>" << pen;
    pen = QPen();
    pen.setWidth(2);
    QTest::newRow("a width is truncated") << "<pen width='2.7'/>" << pen;
    QTest::newRow("a width with an exponent") << "<pen width='0.25e1'/>" << pen;
    pen.setWidth(0);
    QTest::newRow("a width that is no number is zero") << "<pen width='broad'/>" << pen;
    QTest::newRow("a width beyond what a pen takes leaves it") << "<pen width='1e12'/>" << QPen();
    QTest::newRow("a negative width leaves it") << "<pen width='-3'/>" << QPen();
    pen = QPen();
    pen.setCapStyle(Qt::RoundCap);
    QTest::newRow("a cap") << "<pen capstyle='RoundCap'/>" << pen;
    pen.setCapStyle(Qt::FlatCap);
    QTest::newRow("an unknown cap is flat") << "<pen capstyle='Pointed'/>" << pen;
    pen = QPen();
    pen.setJoinStyle(Qt::RoundJoin);
    QTest::newRow("a join") << "<pen joinstyle='RoundJoin'/>" << pen;
    pen.setJoinStyle(Qt::MiterJoin);
    QTest::newRow("an unknown join is mitred") << "<pen joinstyle='Glued'/>" << pen;
    pen = QPen();
    pen.setBrush(QBrush(Qt::red, Qt::CrossPattern));
    QTest::newRow("a brush") << "<pen><brush style='CrossPattern' color='#ff0000'/></pen>" << pen;
    QTest::newRow("a brush further down")
        << "<pen><more><brush style='CrossPattern' color='#ff0000'/></more></pen>" << pen;
    QTest::newRow("other children are passed over") << "<pen><more/>text</pen>" << QPen();
}

void VectorLayerTest::aPenIsReadByWhatIsThere()
{
    QFETCH(QString, xml);
    QFETCH(QPen, pen);
    MessageLog log;
    QCOMPARE(penOf(xml), pen);
}

void VectorLayerTest::aPenTakesTheFirstBrushInIt()
{
    MessageLog log;
    const QPen pen = penOf(QStringLiteral("<pen><brush style='SolidPattern' color='red'/>"
                                          "<brush style='SolidPattern' color='blue'/></pen>"));
    QCOMPARE(pen.color(), QColor(Qt::red));
    QCOMPARE(log.lines, QStringList({"BRUSH COLOR : red"}));
}

void VectorLayerTest::anElementThatIsNoPenGivesADefaultPen()
{
    MessageLog log;
    QCOMPARE(penOf(QStringLiteral("<brush style='DotLine' width='5'/>")), QPen());
    QCOMPARE(penOf(QStringLiteral("<Pen style='DotLine' width='5'/>")), QPen());
    QVERIFY(log.lines.isEmpty());
}

void VectorLayerTest::aPenReadsBackAsItWas()
{
    MessageLog log;
    QDomDocument document;
    QPen pen(QBrush(QColor(1, 2, 3), Qt::BDiagPattern), 7.0, Qt::DashDotDotLine, Qt::FlatCap,
             Qt::RoundJoin);
    QDomElement element = TestVectorLayer::penToXML(document, pen);
    QCOMPARE(TestVectorLayer::penFromXML(element), pen);

    QPen gradient(QBrush(QLinearGradient(1.0, 2.0, 3.0, 4.0)), 2.0);
    element = TestVectorLayer::penToXML(document, gradient);
    QCOMPARE(TestVectorLayer::penFromXML(element).brush().style(), Qt::LinearGradientPattern);
}

void VectorLayerTest::gradientsAreWrittenByTheirType_data()
{
    QTest::addColumn<QGradient*>("gradient");
    QTest::addColumn<QString>("type");
    static QLinearGradient linear(1.0, 2.0, 3.0, 4.0);
    static QRadialGradient radial(1.0, 2.0, 3.0);
    static QConicalGradient conical(1.0, 2.0, 3.0);
    static QGradient none;
    QTest::newRow("linear") << static_cast<QGradient*>(&linear) << "LinearGradient";
    QTest::newRow("radial") << static_cast<QGradient*>(&radial) << "RadialGradient";
    QTest::newRow("conical") << static_cast<QGradient*>(&conical) << "ConicalGradient";
    QTest::newRow("none") << &none << "NoGradient";
}

void VectorLayerTest::gradientsAreWrittenByTheirType()
{
    QFETCH(QGradient*, gradient);
    QFETCH(QString, type);
    MessageLog log;
    QDomDocument document;
    QCOMPARE(textOf(TestVectorLayer::gradientToXML(document, gradient)),
             QStringLiteral("gradient{type=%1}").arg(type));
    QCOMPARE(log.lines, QStringList({"Add rest of gradient stuff here..."}));
}

void VectorLayerTest::gradientsAreNotReadYet()
{
    MessageLog log;
    QDomDocument document;
    QDomElement element = parsed(document, QStringLiteral("<gradient type='LinearGradient'/>"));
    const QGradient gradient = TestVectorLayer::gradientFromXML(element);
    QCOMPARE(gradient.type(), QGradient::NoGradient);
    QCOMPARE(gradient.stops(), QGradient().stops());
    QCOMPARE(log.lines, QStringList({"NOT YET"}));
}

QTEST_GUILESS_MAIN(VectorLayerTest)
#include "VectorLayerTest.moc"
