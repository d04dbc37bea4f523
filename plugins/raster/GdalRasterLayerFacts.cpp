// What a GdalRasterLayer answers about its source and settings; how it gets there stands in
// GdalRasterLayer.cpp.
#include <plugins/raster/GdalRasterLayer.h>

#include <plugins/raster/BandPlan.h>
#include <plugins/raster/RasterSource.h>

#include <QIcon>
#include <QMetaEnum>
#include <QStringList>

#include <algorithm>
#include <limits>

namespace Corvane::Map {

namespace {

RasterLayer::CellType cellTypeOf(const BandFacts& band)
{
    using CellType = RasterLayer::CellType;
    switch (band.type) {
    case GDT_Byte:
        return band.isSignedByte ? CellType::Int8 : CellType::UInt8;
    case GDT_UInt16:
        return CellType::UInt16;
    case GDT_Int16:
        return CellType::Int16;
    case GDT_UInt32:
        return CellType::UInt32;
    case GDT_Int32:
        return CellType::Int32;
    case GDT_UInt64:
        return CellType::UInt64;
    case GDT_Int64:
        return CellType::Int64;
    case GDT_Float32:
        return CellType::Float;
    case GDT_Float64:
        return CellType::Double;
    default:
        return CellType::Unknown;
    }
}

QString sizeText(const QSize& size)
{
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

} // namespace

const RasterFacts* GdalRasterLayer::facts() const
{
    return source ? &source->facts() : nullptr;
}

QString GdalRasterLayer::getDataSource()
{
    return dataSource;
}

QIcon GdalRasterLayer::getIcon()
{
    return QIcon(QStringLiteral(":/resources/image.png"));
}

QString GdalRasterLayer::getFormat()
{
    return source ? facts()->format : QString();
}

QString GdalRasterLayer::getCoordSysName()
{
    return source ? facts()->coordSysName : QString();
}

QRectF GdalRasterLayer::getBounds()
{
    return source ? facts()->bounds : QRectF();
}

bool GdalRasterLayer::isValid()
{
    return source != nullptr;
}

QString GdalRasterLayer::getLastError()
{
    return source ? source->lastFailure() : lastError;
}

QString GdalRasterLayer::getProtocol()
{
    return protocolOf(dataSource);
}

double GdalRasterLayer::getCellSizeX()
{
    return source ? facts()->cellX : 0.0;
}

double GdalRasterLayer::getCellSizeY()
{
    return source ? facts()->cellY : 0.0;
}

int GdalRasterLayer::getNumberOfBands()
{
    return source ? static_cast<int>(facts()->bands.size()) : 0;
}

QVector<qint32> GdalRasterLayer::getBandList()
{
    return source ? validBands(*facts(), bandList) : bandList;
}

void GdalRasterLayer::setBandList(QVector<qint32> bands)
{
    const QVector<qint32> before = getBandList();
    bandList = bands;
    if (!source || getBandList() == before) {
        return;
    }
    restartTiles();
    refreshAll();
}

QString GdalRasterLayer::getBandsText()
{
    return bandsToText(getBandList());
}

void GdalRasterLayer::setBandsText(const QString& text)
{
    setBandList(bandsFromText(text));
}

QSize GdalRasterLayer::getSize()
{
    return source ? facts()->size : QSize(0, 0);
}

QString GdalRasterLayer::getCellType()
{
    const CellType type = source ? cellTypeOf(facts()->bands.front()) : CellType::Unknown;
    return QString::fromLatin1(QMetaEnum::fromType<CellType>().valueToKey(static_cast<int>(type)));
}

bool GdalRasterLayer::getOpacity()
{
    return source && (facts()->alphaBand > 0 || facts()->hasMask);
}

double GdalRasterLayer::getNoDataValue()
{
    const bool known = source && facts()->bands.front().hasNoData;
    return known ? facts()->bands.front().noData : std::numeric_limits<double>::quiet_NaN();
}

double GdalRasterLayer::getRotation()
{
    return source ? facts()->rotation : 0.0;
}

RasterLayer::ColorSpace GdalRasterLayer::getColorSpace()
{
    if (!source) {
        return ColorSpace::Unknown;
    }
    const BandPlan plan = planFor(*facts(), usualBands(*facts()));
    const auto count = static_cast<int>(facts()->bands.size());
    const bool ownAlpha = facts()->alphaBand > 0 && facts()->alphaBand <= count;
    const int plain = count - (ownAlpha ? 1 : 0);
    if (plan.look == BandPlan::Look::Palette) {
        return ColorSpace::Rgb;
    }
    if (plan.look == BandPlan::Look::Colour) {
        return plain == 3 ? ColorSpace::Rgb : ColorSpace::Multiband;
    }
    return plain <= 1 ? ColorSpace::Greyscale : ColorSpace::Multiband;
}

QString GdalRasterLayer::getDriver()
{
    return source ? facts()->driver : QString();
}

int GdalRasterLayer::getEpsg()
{
    return source ? facts()->epsg : 0;
}

QString GdalRasterLayer::getWkt()
{
    return source ? facts()->wkt : QString();
}

QString GdalRasterLayer::getOverviews()
{
    QStringList sizes;
    if (source) {
        for (const QSize& size : facts()->overviews) {
            sizes.append(sizeText(size));
        }
    }
    return sizes.join(QStringLiteral(", "));
}

QSize GdalRasterLayer::getBlockSize()
{
    return source ? facts()->blockSize : QSize(0, 0);
}

QString GdalRasterLayer::getNoData()
{
    const double value = getNoDataValue();
    return source && facts()->bands.front().hasNoData ? QString::number(value, 'g', 17) : QString();
}

QString GdalRasterLayer::getCompression()
{
    return source ? facts()->compression : QString();
}

QString GdalRasterLayer::getLayoutKind()
{
    return source ? facts()->layout : QString();
}

} // namespace Corvane::Map
