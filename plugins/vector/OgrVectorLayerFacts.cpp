// What an OgrVectorLayer answers about its source and settings; how it gets there stands in
// OgrVectorLayer.cpp.
#include <plugins/vector/OgrVectorLayer.h>

#include <plugins/common/GdalAccess.h>
#include <plugins/vector/VectorChunk.h>
#include <plugins/vector/VectorFacts.h>
#include <plugins/vector/VectorReading.h>

#include <corvane/core/Integer.h>

#include <QGuiApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

#include <algorithm>
#include <array>
#include <cmath>

namespace Corvane::Map {

namespace {

constexpr double pixelsPerPoint = 96.0 / 72.0; // of type
constexpr double leastPointSize = 1.0;
constexpr double mostPointSize = 100.0;
constexpr double leastLabelSize = 4.0;
constexpr double mostLabelSize = 72.0;
constexpr int iconSize = 16;
constexpr int iconMargin = 3;
constexpr int readButNotDrawn = 99;        // percent
constexpr double spaceAroundPoint = 500.0; // units, mostly metres
constexpr double spaceAroundPointInDegrees = 0.005;
constexpr double mostDegrees = 360.0;

struct SymbolName
{
    PointSymbol symbol;
    const char* name;
};

constexpr std::array<SymbolName, 4> symbolNames = {{{PointSymbol::Circle, "Circle"},
                                                    {PointSymbol::Square, "Square"},
                                                    {PointSymbol::Triangle, "Triangle"},
                                                    {PointSymbol::Cross, "Cross"}}};

// written so that a NaN becomes the least
double within(double value, double least, double most)
{
    return value > least ? std::min(value, most) : least;
}

} // namespace

QString OgrVectorLayer::getDataSource()
{
    return dataSource;
}

QIcon OgrVectorLayer::getIcon()
{
    const int last = iconSize - 1 - iconMargin;
    const std::array<QPoint, 4> corners = {QPoint(iconMargin, last),
                                           QPoint(iconSize / 2, iconMargin),
                                           QPoint(last, iconSize / 2), QPoint(last, last)};
    QIcon icon;
    for (const int ratio : {1, 2}) { // for screens of 96 and of 192 dpi
        QPixmap swatch(iconSize * ratio, iconSize * ratio);
        swatch.setDevicePixelRatio(ratio);
        swatch.fill(Qt::transparent);
        QPainter painter(&swatch);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(getPen());
        painter.setBrush(getBrush());
        painter.drawPolygon(corners.data(), static_cast<int>(corners.size()));
        painter.end();
        icon.addPixmap(swatch);
    }
    return icon;
}

bool OgrVectorLayer::isVisible()
{
    return visible;
}

void OgrVectorLayer::setVisible(bool v)
{
    viewMayBeStale = viewMayBeStale || (v && !visible);
    visible = v;
    refreshAll();
}

QString OgrVectorLayer::getFormat()
{
    return facts ? facts->format : QString();
}

QString OgrVectorLayer::getCoordSysName()
{
    return facts ? facts->coordSysName : QString();
}

QRectF OgrVectorLayer::getBounds()
{
    if (!facts) {
        return QRectF();
    }
    followMap();
    WorldBox box = extent;
    if (!box.isEmpty() && box.left == box.right && box.bottom == box.top) {
        const bool degrees = std::abs(box.left) <= mostDegrees && std::abs(box.top) <= mostDegrees;
        const double space = degrees ? spaceAroundPointInDegrees : spaceAroundPoint;
        box.add(box.left - space, box.bottom - space);
        box.add(box.right + space, box.top + space);
    }
    return box.toBounds();
}

bool OgrVectorLayer::isValid()
{
    return facts != nullptr;
}

QString OgrVectorLayer::getLastError()
{
    return lastError;
}

QString OgrVectorLayer::getProtocol()
{
    return protocolOf(dataSource);
}

qint8 OgrVectorLayer::getPercentComplete()
{
    if (opening) {
        return 0;
    }
    takeRead();
    takeDrawn();
    if (reading) {
        const qint64 all = std::max<qint64>(1, facts->featureCount);
        const qint64 percent = reading->getFeaturesRead() * readButNotDrawn / all;
        return static_cast<qint8>(std::min<qint64>(percent, readButNotDrawn));
    }
    return view.isComplete() ? 100 : readButNotDrawn;
}

QString OgrVectorLayer::getLayerName()
{
    return facts ? facts->layerName : layerName;
}

void OgrVectorLayer::setLayerName(const QString& name)
{
    if (name == getLayerName()) {
        layerName = name;
        return;
    }
    layerName = name;
    if (facts || opening || !lastError.isEmpty()) {
        const QString source = dataSource;
        closeSource();
        setDataSource(source);
    }
}

double OgrVectorLayer::getTransparency()
{
    return transparency;
}

void OgrVectorLayer::setTransparency(double newTransparency)
{
    transparency = within(newTransparency, 0.0, 1.0);
    refreshAll();
}

QString OgrVectorLayer::getPointSymbol()
{
    const auto* const found =
        std::find_if(symbolNames.begin(), symbolNames.end(),
                     [this](const SymbolName& row) { return row.symbol == look.symbol; });
    return QString::fromLatin1(found->name);
}

void OgrVectorLayer::setPointSymbol(const QString& name)
{
    for (const SymbolName& row : symbolNames) {
        if (name == QLatin1String(row.name)) {
            look.symbol = row.symbol;
        }
    }
    restyle();
}

double OgrVectorLayer::getPointSize()
{
    return look.pointSize;
}

void OgrVectorLayer::setPointSize(double size)
{
    look.pointSize = within(size, leastPointSize, mostPointSize);
    restyle();
}

QString OgrVectorLayer::getLabelField()
{
    return labelField;
}

void OgrVectorLayer::setLabelField(const QString& field)
{
    if (field == labelField) {
        return;
    }
    labelField = field;
    if (haveRead) {
        readAgain(reading && !replaces); // half of the old is no use
    }
}

double OgrVectorLayer::getLabelSize()
{
    return labelSize;
}

void OgrVectorLayer::setLabelSize(double size)
{
    labelSize = within(size, leastLabelSize, mostLabelSize);
    restyle();
}

QColor OgrVectorLayer::getLabelColor()
{
    return look.labelColor;
}

void OgrVectorLayer::setLabelColor(const QColor& color)
{
    if (color.isValid()) {
        look.labelColor = color;
        restyle();
    }
}

bool OgrVectorLayer::isAntialiasing() const
{
    return look.antialiasing;
}

void OgrVectorLayer::setAntialiasing(bool antialiasing)
{
    look.antialiasing = antialiasing;
    restyle();
}

bool OgrVectorLayer::isProgressive() const
{
    return view.progressive;
}

void OgrVectorLayer::setProgressive(bool progressive)
{
    view.progressive = progressive;
}

// The base class takes pens and brushes without a word.
void OgrVectorLayer::restyle()
{
    view.setStyle(currentStyle());
}

VectorStyle OgrVectorLayer::currentStyle()
{
    VectorStyle style = look;
    style.pen = getPen();
    // a pen fills in its dashes when first asked: here, before threads share it
    style.pen.dashPattern();
    style.brush = getBrush();
    style.labelFont = QGuiApplication::font();
    style.labelFont.setPixelSize(std::max(1, Util::roundToInt(labelSize * pixelsPerPoint)));
    return style;
}

qint64 OgrVectorLayer::getBytes() const
{
    qint64 bytes = 0;
    for (const auto& chunk : view.getChunks()) {
        bytes += chunk->getBytes();
    }
    return bytes;
}

QString OgrVectorLayer::getDriver()
{
    return facts ? facts->driver : QString();
}

QStringList OgrVectorLayer::getLayerNames()
{
    return facts ? facts->layerNames : QStringList();
}

QString OgrVectorLayer::getGeometryType()
{
    return facts ? facts->geometryType : QString();
}

qint64 OgrVectorLayer::getFeatureCount()
{
    return facts ? facts->featureCount : 0;
}

QStringList OgrVectorLayer::getFields()
{
    return facts ? facts->fields : QStringList();
}

int OgrVectorLayer::getEpsg()
{
    return facts ? facts->epsg : 0;
}

QString OgrVectorLayer::getWkt()
{
    return facts ? facts->wkt : QString();
}

} // namespace Corvane::Map
