#include <plugins/raster/CellText.h>

#include <plugins/raster/RasterFacts.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace Corvane::Map {

namespace {

constexpr double wholeLimit = 1e15; // below it whole numbers are written without an exponent

template <typename Value>
Value at(const void* memory, int index = 0)
{
    Value value{};
    std::memcpy(&value, static_cast<const char*>(memory) + sizeof(Value) * std::size_t(index),
                sizeof(Value));
    return value;
}

template <typename Value>
QString digits(Value value)
{
    if constexpr (std::is_integral_v<Value>) {
        return QString::number(value);
    } else {
        const double wide = value;
        if (std::isfinite(wide) && wide == std::floor(wide) && std::abs(wide) < wholeLimit) {
            return QString::number(wide, 'f', 0);
        }
        QString text;
        for (int precision = std::numeric_limits<Value>::digits10;
             precision <= std::numeric_limits<Value>::max_digits10; ++precision)
        {
            text = QString::number(wide, 'g', precision);
            if (static_cast<Value>(text.toDouble()) == value) {
                break;
            }
        }
        return text;
    }
}

template <typename Value>
QString complexDigits(const void* memory)
{
    const QString imaginary = digits(at<Value>(memory, 1));
    const bool isSigned = imaginary.startsWith(QLatin1Char('-'));
    return digits(at<Value>(memory)) + (isSigned ? QString() : QStringLiteral("+")) + imaginary +
           QLatin1Char('i');
}

// The real part of complex ones, which is what no-data values are compared with.
double realPart(const BandFacts& band, const void* value)
{
    double real = 0.0;
    GDALCopyWords(value, band.type, 0, &real, GDT_Float64, 0, 1);
    if (band.isSignedByte && real > 127.0) {
        real -= 256.0;
    }
    return real;
}

} // namespace

QString cellText(const BandFacts& band, const void* value)
{
    switch (band.type) {
    case GDT_Byte:
        return band.isSignedByte ? digits(int{at<std::int8_t>(value)})
                                 : digits(int{at<std::uint8_t>(value)});
    case GDT_UInt16:
        return digits(at<std::uint16_t>(value));
    case GDT_Int16:
        return digits(at<std::int16_t>(value));
    case GDT_UInt32:
        return digits(at<std::uint32_t>(value));
    case GDT_Int32:
        return digits(at<std::int32_t>(value));
    case GDT_UInt64:
        return digits(qulonglong{at<std::uint64_t>(value)});
    case GDT_Int64:
        return digits(qlonglong{at<std::int64_t>(value)});
    case GDT_Float32:
        return digits(at<float>(value));
    case GDT_CInt16:
        return complexDigits<std::int16_t>(value);
    case GDT_CInt32:
        return complexDigits<std::int32_t>(value);
    case GDT_CFloat32:
        return complexDigits<float>(value);
    case GDT_CFloat64:
        return complexDigits<double>(value);
    default:
        return digits(at<double>(value));
    }
}

bool isNoDataCell(const BandFacts& band, GDALRasterBandH handle, const void* value)
{
    if (!band.hasNoData) {
        return false;
    }
    int has = 0;
    if (band.type == GDT_Int64) { // a double would mix it up with its neighbours
        return at<std::int64_t>(value) == GDALGetRasterNoDataValueAsInt64(handle, &has) && has != 0;
    }
    if (band.type == GDT_UInt64) {
        return at<std::uint64_t>(value) == GDALGetRasterNoDataValueAsUInt64(handle, &has) &&
               has != 0;
    }
    const double real = realPart(band, value);
    return std::isnan(band.noData) ? std::isnan(real) : band.isNoData(real);
}

QString cellTypeName(const BandFacts& band)
{
    if (band.type == GDT_Byte) {
        return band.isSignedByte ? QStringLiteral("Int8") : QStringLiteral("UInt8");
    }
    return QString::fromLatin1(GDALGetDataTypeName(band.type));
}

} // namespace Corvane::Map
