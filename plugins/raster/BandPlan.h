#pragma once

#include <QString>
#include <QVector>

#include <vector>

namespace Corvane::Map {

struct RasterFacts;

/// Which bands are shown, and how: one band in grey or by its palette, three as red, green, blue.
struct BandPlan
{
    enum class Look
    {
        Grey,
        Palette,
        Colour
    };

    Look look = Look::Grey;
    std::vector<int> bands; ///< one or three, from 1
    bool usesAlpha = false; ///< the alpha band makes pixels transparent
    bool usesMask = false;  ///< the mask does
    bool usesNoData = false;
};

/// The bands that a source shows if nobody chose.
QVector<qint32> usualBands(const RasterFacts& facts);
/// wanted with one or three bands of the source, usualBands where it names none.
QVector<qint32> validBands(const RasterFacts& facts, const QVector<qint32>& wanted);
/// bands must be valid.
BandPlan planFor(const RasterFacts& facts, const QVector<qint32>& bands);

/// "1,2,3"; the empty list is the empty text.
QString bandsToText(const QVector<qint32>& bands);
/// What is no number is left out.
QVector<qint32> bandsFromText(const QString& text);

} // namespace Corvane::Map
