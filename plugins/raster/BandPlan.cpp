#include <plugins/raster/BandPlan.h>

#include <plugins/raster/RasterFacts.h>

#include <QStringList>

#include <algorithm>

namespace Corvane::Map {

namespace {

int bandMeaning(const RasterFacts& facts, GDALColorInterp meaning)
{
    for (std::size_t i = 0; i < facts.bands.size(); ++i) {
        if (facts.bands[i].meaning == meaning) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

} // namespace

QVector<qint32> usualBands(const RasterFacts& facts)
{
    const int red = bandMeaning(facts, GCI_RedBand);
    const int green = bandMeaning(facts, GCI_GreenBand);
    const int blue = bandMeaning(facts, GCI_BlueBand);
    if (red > 0 && green > 0 && blue > 0) {
        return {red, green, blue};
    }
    QVector<qint32> plain;
    for (int band = 1; band <= static_cast<int>(facts.bands.size()); ++band) {
        if (band != facts.alphaBand) {
            plain.append(band);
        }
    }
    if (plain.isEmpty()) {
        return {1};
    }
    const bool colour = plain.size() >= 3 && facts.palette.isEmpty();
    return plain.mid(0, colour ? 3 : 1);
}

QVector<qint32> validBands(const RasterFacts& facts, const QVector<qint32>& wanted)
{
    QVector<qint32> bands;
    for (const qint32 band : wanted) {
        if (band >= 1 && band <= static_cast<int>(facts.bands.size())) {
            bands.append(band);
        }
    }
    if (bands.isEmpty()) {
        return usualBands(facts);
    }
    return bands.mid(0, bands.size() >= 3 ? 3 : 1);
}

BandPlan planFor(const RasterFacts& facts, const QVector<qint32>& bands)
{
    BandPlan plan;
    plan.bands.assign(bands.begin(), bands.end());
    if (bands.size() == 3) {
        plan.look = BandPlan::Look::Colour;
    } else if (bands.first() == 1 && !facts.palette.isEmpty()) {
        plan.look = BandPlan::Look::Palette;
    }
    // what warping made transparent says all that the band's no-data value would say
    const bool madeByWarping = facts.alphaBand > static_cast<int>(facts.bands.size());
    const bool shown = bands.contains(facts.alphaBand);
    plan.usesAlpha = facts.alphaBand > 0 && !shown;
    plan.usesMask = facts.hasMask && !plan.usesAlpha;
    plan.usesNoData =
        !madeByWarping && std::all_of(bands.begin(), bands.end(), [&facts](qint32 band) {
            return facts.bands[static_cast<std::size_t>(band - 1)].hasNoData;
        });
    return plan;
}

QString bandsToText(const QVector<qint32>& bands)
{
    QStringList numbers;
    for (const qint32 band : bands) {
        numbers.append(QString::number(band));
    }
    return numbers.join(QLatin1Char(','));
}

QVector<qint32> bandsFromText(const QString& text)
{
    QVector<qint32> bands;
    for (const QString& number : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        const int band = number.trimmed().toInt(&ok);
        if (ok) {
            bands.append(band);
        }
    }
    return bands;
}

} // namespace Corvane::Map
