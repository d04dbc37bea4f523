#include <corvane/map/VectorLayer.h>

#include <corvane/core/Integer.h>

#include <QColor>
#include <QDebug>
#include <QDomDocument>
#include <QDomElement>
#include <QGradient>

#include <algorithm>
#include <iterator>

namespace Corvane::Map {

namespace {

template <typename Style>
struct StyleName
{
    Style style;
    const char* name;
};

constexpr StyleName<Qt::BrushStyle> brushStyles[] = {
    {Qt::NoBrush, "NoBrush"},
    {Qt::SolidPattern, "SolidPattern"},
    {Qt::Dense1Pattern, "Dense1Pattern"},
    {Qt::Dense2Pattern, "Dense2Pattern"},
    {Qt::Dense3Pattern, "Dense3Pattern"},
    {Qt::Dense4Pattern, "Dense4Pattern"},
    {Qt::Dense5Pattern, "Dense5Pattern"},
    {Qt::Dense6Pattern, "Dense6Pattern"},
    {Qt::Dense7Pattern, "Dense7Pattern"},
    {Qt::HorPattern, "HorPattern"},
    {Qt::VerPattern, "VerPattern"},
    {Qt::CrossPattern, "CrossPattern"},
    {Qt::BDiagPattern, "BDiagPattern"},
    {Qt::FDiagPattern, "FDiagPattern"},
    {Qt::DiagCrossPattern, "DiagCrossPattern"},
    {Qt::LinearGradientPattern, "LinearGradientPattern"},
    {Qt::RadialGradientPattern, "RadialGradientPattern"},
    {Qt::ConicalGradientPattern, "ConicalGradientPattern"},
    {Qt::TexturePattern, "TexturePattern"},
};

constexpr StyleName<Qt::PenStyle> penStyles[] = {
    {Qt::NoPen, "NoPen"},
    {Qt::SolidLine, "SolidLine"},
    {Qt::DashLine, "DashLine"},
    {Qt::DotLine, "DotLine"},
    {Qt::DashDotLine, "DashDotLine"},
    {Qt::DashDotDotLine, "DashDotDotLine"},
    {Qt::CustomDashLine, "CustomDashLine"},
};

constexpr StyleName<Qt::PenCapStyle> capStyles[] = {
    {Qt::FlatCap, "FlatCap"},
    {Qt::SquareCap, "SquareCap"},
    {Qt::RoundCap, "RoundCap"},
};

constexpr StyleName<Qt::PenJoinStyle> joinStyles[] = {
    {Qt::MiterJoin, "MiterJoin"},
    {Qt::BevelJoin, "BevelJoin"},
    {Qt::RoundJoin, "RoundJoin"},
    {Qt::SvgMiterJoin, "SvgMiterJoin"},
};

template <typename Style, std::size_t count>
Style styleOf(const StyleName<Style> (&table)[count], const QString& name)
{
    const auto found = std::find_if(std::begin(table), std::end(table), [&name](const auto& row) {
        return name == QLatin1String(row.name);
    });
    return found == std::end(table) ? static_cast<Style>(0) : found->style;
}

/// A style without a name leaves the attribute out.
template <typename Style, std::size_t count>
void setStyleAttribute(QDomElement& element, const char* attribute,
                       const StyleName<Style> (&table)[count], Style style)
{
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [style](const auto& row) { return row.style == style; });
    if (found != std::end(table)) {
        element.setAttribute(QLatin1String(attribute), QLatin1String(found->name));
    }
}

/// QBrush::setStyle takes no gradient style: such a brush is made from an empty gradient.
QBrush brushWithStyle(Qt::BrushStyle style)
{
    switch (style) {
    case Qt::LinearGradientPattern:
        return QBrush(QLinearGradient());
    case Qt::RadialGradientPattern:
        return QBrush(QRadialGradient());
    case Qt::ConicalGradientPattern:
        return QBrush(QConicalGradient());
    default:
        break;
    }
    QBrush brush;
    brush.setStyle(style);
    return brush;
}

QString gradientTypeName(QGradient::Type type)
{
    switch (type) {
    case QGradient::LinearGradient:
        return QStringLiteral("LinearGradient");
    case QGradient::RadialGradient:
        return QStringLiteral("RadialGradient");
    case QGradient::ConicalGradient:
        return QStringLiteral("ConicalGradient");
    case QGradient::NoGradient:
        break;
    }
    return QStringLiteral("NoGradient");
}

} // namespace

VectorLayer::VectorLayer(IRendererClient* client) : Layer(client) {}

VectorLayer::~VectorLayer() = default;

QPen VectorLayer::getPen()
{
    return pen;
}

void VectorLayer::setPen(QPen& newPen)
{
    pen = newPen;
}

QBrush VectorLayer::getBrush()
{
    return brush;
}

void VectorLayer::setBrush(QBrush& newBrush)
{
    brush = newBrush;
}

QDomElement VectorLayer::penToXML(QDomDocument& doc, QPen& source)
{
    QDomElement element = doc.createElement(QStringLiteral("pen"));
    setStyleAttribute(element, "style", penStyles, source.style());
    element.setAttribute(QStringLiteral("width"), source.width());
    QBrush colour = source.brush();
    element.appendChild(brushToXML(doc, colour));
    setStyleAttribute(element, "capstyle", capStyles, source.capStyle());
    setStyleAttribute(element, "joinstyle", joinStyles, source.joinStyle());
    return element;
}

QPen VectorLayer::penFromXML(QDomElement& element)
{
    QPen result;
    if (element.tagName() != QLatin1String("pen")) {
        return result;
    }
    if (element.hasAttribute(QStringLiteral("style"))) {
        QString name = element.attribute(QStringLiteral("style"));
        result.setStyle(penStyleFromString(name));
    }
    if (element.hasAttribute(QStringLiteral("width"))) {
        const double width = element.attribute(QStringLiteral("width")).toDouble();
        result.setWidth(Util::truncateToInt(width));
    }
    if (element.hasAttribute(QStringLiteral("capstyle"))) {
        QString name = element.attribute(QStringLiteral("capstyle"));
        result.setCapStyle(penCapStyleFromString(name));
    }
    if (element.hasAttribute(QStringLiteral("joinstyle"))) {
        QString name = element.attribute(QStringLiteral("joinstyle"));
        result.setJoinStyle(penJoinStyleFromString(name));
    }
    QDomElement colour = element.elementsByTagName(QStringLiteral("brush")).item(0).toElement();
    if (!colour.isNull()) {
        result.setBrush(brushFromXML(colour));
    }
    return result;
}

QDomElement VectorLayer::brushToXML(QDomDocument& doc, QBrush& source)
{
    QDomElement element = doc.createElement(QStringLiteral("brush"));
    setStyleAttribute(element, "style", brushStyles, source.style());
    const QString colour = source.color().name();
    element.setAttribute(QStringLiteral("color"), colour);
    qDebug().noquote().nospace() << "BRUSH TO XML : " << colour;
    return element;
}

QBrush VectorLayer::brushFromXML(QDomElement& element)
{
    QBrush result;
    if (element.tagName() != QLatin1String("brush")) {
        return result;
    }
    if (element.hasAttribute(QStringLiteral("style"))) {
        QString name = element.attribute(QStringLiteral("style"));
        result = brushWithStyle(brushStyleFromString(name));
    }
    if (element.hasAttribute(QStringLiteral("color"))) {
        const QString colour = element.attribute(QStringLiteral("color"));
        result.setColor(QColor(colour));
        qDebug().noquote().nospace() << "BRUSH COLOR : " << colour;
    }
    return result;
}

// No document carries a gradient's details: stops, spread and coordinates stay behind.
QDomElement VectorLayer::gradientToXML(QDomDocument& doc, QGradient* gradient)
{
    QDomElement element = doc.createElement(QStringLiteral("gradient"));
    element.setAttribute(QStringLiteral("type"), gradientTypeName(gradient->type()));
    qDebug().noquote().nospace() << "Add rest of gradient stuff here...";
    return element;
}

QGradient VectorLayer::gradientFromXML(QDomElement&)
{
    qDebug().noquote().nospace() << "NOT YET";
    return QGradient();
}

Qt::BrushStyle VectorLayer::brushStyleFromString(QString& name)
{
    return styleOf(brushStyles, name);
}

Qt::PenStyle VectorLayer::penStyleFromString(QString& name)
{
    return styleOf(penStyles, name);
}

Qt::PenCapStyle VectorLayer::penCapStyleFromString(QString& name)
{
    return styleOf(capStyles, name);
}

Qt::PenJoinStyle VectorLayer::penJoinStyleFromString(QString& name)
{
    return styleOf(joinStyles, name);
}

} // namespace Corvane::Map
