#include <viewer/places/PlaceText.h>

#include <viewer/places/AngleText.h>
#include <viewer/places/NumberText.h>
#include <viewer/places/UtmGrid.h>

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>

#include <cmath>

namespace Corvane::Viewer {
namespace {

WrittenPlace mistake(const QString& error)
{
    WrittenPlace place;
    place.error = error;
    return place;
}

WrittenPlace placeOf(WrittenPlace::Kind kind, const QPointF& position)
{
    WrittenPlace place;
    place.kind = kind;
    place.position = position;
    return place;
}

/// Two numbers, between which a semicolon, a comma or a blank stands: the first of these that does.
bool readPair(const QString& written, QPointF* pair)
{
    static const QRegularExpression commaAndBlank(",\\s+");
    static const QRegularExpression blanks("\\s+");
    QStringList halves = written.split(';');
    if (halves.size() != 2) {
        halves = written.trimmed().split(commaAndBlank);
    }
    if (halves.size() != 2) {
        halves = written.simplified().split(blanks);
    }
    if (halves.size() != 2) {
        const QStringList parts = written.split(',');
        if (parts.size() == 2) {
            halves = parts;
        } else if (parts.size() == 4) { // decimal commas: 52,5163,13,3777
            halves = QStringList{parts[0] + '.' + parts[1], parts[2] + '.' + parts[3]};
        }
    }
    double first = 0.0;
    double second = 0.0;
    if (halves.size() != 2 || !readNumber(halves[0], LoneSeparator::IsDecimal, &first) ||
        !readNumber(halves[1], LoneSeparator::IsDecimal, &second))
    {
        return false;
    }
    *pair = QPointF(first, second);
    return true;
}

bool readUtm(const QString& written, WrittenPlace* place)
{
    static const QRegularExpression form(
        "^(?:UTM\\s*)?([0-9]{1,2})\\s*([C-HJ-NP-X])\\s+([0-9]+(?:[.,][0-9]+)?)\\s*(?:M\\s*)?E?[\\s,;]+"
        "([0-9]+(?:[.,][0-9]+)?)\\s*(?:M\\s*)?N?$",
        QRegularExpression::CaseInsensitiveOption);
    const auto match = form.match(written);
    if (!match.hasMatch()) {
        return false;
    }
    const bool isNorth = match.captured(2).toUpper() >= "N";
    const QPointF position(match.captured(3).replace(',', '.').toDouble(),
                           match.captured(4).replace(',', '.').toDouble());
    QPointF degrees;
    *place = utmToDegrees(match.captured(1).toInt(), isNorth, position, &degrees)
                 ? placeOf(WrittenPlace::Degrees, degrees)
                 : mistake(QCoreApplication::translate("PlaceText",
                                                       "There is no such place in the UTM grid."));
    return true;
}

/// Words before both numbers, in whichever order.
bool readNamed(const QString& written, WrittenPlace* place)
{
    static const QString number("([-+]?[0-9][0-9.,' ]*?)");
    static const QRegularExpression cell("^(?:cell\\s*)?(?:column|col\\.?|c)\\s*[:=]?\\s*" +
                                             number + "[\\s,;]+(?:row|r|line)\\s*[:=]?\\s*" +
                                             number + "$",
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression rowFirst("^(?:cell\\s*)?(?:row|r|line)\\s*[:=]?\\s*" + number +
                                                 "[\\s,;]+(?:column|col\\.?|c)\\s*[:=]?\\s*" +
                                                 number + "$",
                                             QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression pair("^(?:cell|grid|pixel)\\s*[:=]?\\s*(.*)$",
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression map(
        QString::fromUtf8("^(?:x|easting|east)\\s*[:=]?\\s*") + number +
            QString::fromUtf8("°?[\\s,;]+(?:y|northing|north)\\s*[:=]?\\s*") + number +
            QString::fromUtf8("°?$"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression mapAfter("^" + number + "\\s*m?\\s*E[\\s,;]+" + number +
                                                 "\\s*m?\\s*N$",
                                             QRegularExpression::CaseInsensitiveOption);
    QPointF position;
    if (const auto named = pair.match(written);
        named.hasMatch() && readPair(named.captured(1), &position))
    {
        *place = placeOf(WrittenPlace::Cell, position);
        return true;
    }
    const struct
    {
        const QRegularExpression& form;
        WrittenPlace::Kind kind;
        bool isTurned;
    } forms[] = {{cell, WrittenPlace::Cell, false},
                 {rowFirst, WrittenPlace::Cell, true},
                 {map, WrittenPlace::Map, false},
                 {mapAfter, WrittenPlace::Map, false}};
    for (const auto& entry : forms) {
        const auto match = entry.form.match(written);
        double first = 0.0;
        double second = 0.0;
        if (!match.hasMatch() || !readNumber(match.captured(1), LoneSeparator::IsDecimal, &first) ||
            !readNumber(match.captured(2), LoneSeparator::IsDecimal, &second))
        {
            continue;
        }
        const bool couldBeAngles = std::abs(first) <= 180.0 && std::abs(second) <= 90.0;
        if (&entry.form == &mapAfter && couldBeAngles) {
            continue;
        }
        *place =
            placeOf(entry.kind, entry.isTurned ? QPointF(second, first) : QPointF(first, second));
        return true;
    }
    return false;
}

} // namespace

WrittenPlace readPlace(const QString& raw, bool degreesAreKnown)
{
    const QString written = raw.simplified();
    if (written.isEmpty()) {
        return WrittenPlace();
    }
    WrittenPlace place;
    if (readUtm(written, &place) || readNamed(written, &place)) {
        return place;
    }
    QPointF pair;
    if (readPair(written, &pair)) {
        const bool couldBeDegrees = std::abs(pair.x()) <= 90.0 && std::abs(pair.y()) <= 180.0;
        return degreesAreKnown && couldBeDegrees
                   ? placeOf(WrittenPlace::Degrees, QPointF(pair.y(), pair.x()))
                   : placeOf(WrittenPlace::Map, pair);
    }
    QString error;
    switch (readAngles(written, &pair, &error)) {
    case AngleReading::Angles:
        return placeOf(WrittenPlace::Degrees, pair);
    case AngleReading::Wrong:
        return mistake(error);
    case AngleReading::NotAngles:
        break;
    }
    return mistake(QCoreApplication::translate(
        "PlaceText", "This is no coordinate: two numbers, latitude and longitude, or column and "
                     "row are wanted."));
}

} // namespace Corvane::Viewer
