#include <viewer/places/AngleText.h>

#include <QCoreApplication>
#include <QPointF>
#include <QRegularExpression>
#include <QStringList>

#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr double mostLatitude = 90.0;
constexpr double mostLongitude = 180.0;

/// Capital letters, one sign for degrees, minutes and seconds each, and letters instead of words.
QString plainText(const QString& written)
{
    static const QRegularExpression latitude("LATITUDE\\s*[:=]?|LAT\\.?\\s*[:=]?");
    static const QRegularExpression longitude("LONGITUDE\\s*[:=]?|(LONG|LON|LNG)\\.?\\s*[:=]?");
    QString plain = written.toUpper();
    plain.replace(latitude, "N ").replace(longitude, "E ");
    const struct
    {
        const char* from;
        const char* to;
    } marks[] = {{"º", "°"},  {"˚", "°"},  {"DEG", "°"}, {"′", "'"},   {"’", "'"}, {"‘", "'"},
                 {"″", "\""}, {"”", "\""}, {"“", "\""},  {"''", "\""}, {"−", "-"}};
    for (const auto& mark : marks) {
        plain.replace(QString::fromUtf8(mark.from), QString::fromUtf8(mark.to));
    }
    return plain.simplified();
}

/// Two halves; an empty list where nothing tells where the first one ends.
QStringList halvesOf(const QString& plain)
{
    static const QRegularExpression letter("[NSEW]");
    static const QRegularExpression secondDegrees(
        QString::fromUtf8("^[^°]*°[^°]*?([-+]?\\s*[0-9]+([.,][0-9]+)?\\s*°.*)$"));
    const int first = plain.indexOf(letter);
    if (first >= 0) {
        const int second = plain.indexOf(letter, first + 1);
        const int split = first == 0 ? second : first + 1;
        return split > 0 ? QStringList{plain.left(split), plain.mid(split)} : QStringList();
    }
    const auto match = secondDegrees.match(plain);
    if (!match.hasMatch()) {
        return {};
    }
    const int split = match.capturedStart(1);
    return {plain.left(split), plain.mid(split)};
}

struct Angle
{
    double degrees = 0.0;
    QChar letter; // null for none
};

bool readAngle(const QString& half, Angle* angle)
{
    static const QRegularExpression form(QString::fromUtf8(
        "^[\\s,;]*([NSEW]?)\\s*([-+]?)\\s*([0-9]+(?:[.,][0-9]+)?)\\s*(?:[°:]|\\s|$)?\\s*"
        "(?:([0-9]+(?:[.,][0-9]+)?)\\s*(?:[':M]|\\s|$)?\\s*"
        "(?:([0-9]+(?:[.,][0-9]+)?)\\s*[\"S]?)?)?\\s*([NEW]|S)?[\\s,;]*$"));
    const auto match = form.match(half);
    if (!match.hasMatch()) {
        return false;
    }
    const auto number = [&match](int group) {
        return match.captured(group).replace(',', '.').toDouble();
    };
    const bool hasMinutes = !match.captured(4).isEmpty();
    const bool hasSeconds = !match.captured(5).isEmpty();
    const bool degreesAreWhole = std::floor(number(3)) == number(3);
    const bool minutesAreWhole = std::floor(number(4)) == number(4);
    const QString before = match.captured(1);
    const QString after = match.captured(6);
    if ((hasMinutes && !degreesAreWhole) || (hasSeconds && !minutesAreWhole) || number(4) >= 60.0 ||
        number(5) >= 60.0 || (!before.isEmpty() && !after.isEmpty()))
    {
        return false;
    }
    const QString letter = before + after;
    angle->letter = letter.isEmpty() ? QChar() : letter.at(0);
    angle->degrees = number(3) + number(4) / 60.0 + number(5) / 3600.0;
    const bool isTurned = angle->letter == QLatin1Char('S') || angle->letter == QLatin1Char('W');
    if ((match.captured(2) == "-") != isTurned) {
        angle->degrees = -angle->degrees;
    }
    return true;
}

bool isLatitude(QChar letter)
{
    return letter == QLatin1Char('N') || letter == QLatin1Char('S');
}

} // namespace

AngleReading readAngles(const QString& written, QPointF* degrees, QString* error)
{
    static const QRegularExpression sign(QString::fromUtf8("[NSEW°]"));
    static const QRegularExpression foreign(QString::fromUtf8("[^NSEWM0-9.,;:+\\-°'\"\\s]"));
    const QString plain = plainText(written);
    if (!plain.contains(sign) || plain.contains(foreign)) {
        return AngleReading::NotAngles;
    }
    const QStringList halves = halvesOf(plain);
    Angle first;
    Angle second;
    if (halves.size() != 2 || !readAngle(halves[0], &first) || !readAngle(halves[1], &second) ||
        first.letter.isNull() != second.letter.isNull())
    {
        *error = QCoreApplication::translate(
            "AngleText", "Write a latitude and a longitude, like 52°30'58.7\"N 13°22'39.7\"E.");
        return AngleReading::Wrong;
    }
    if (!first.letter.isNull() && isLatitude(first.letter) == isLatitude(second.letter)) {
        *error = isLatitude(first.letter)
                     ? QCoreApplication::translate("AngleText",
                                                   "There are two latitudes and no longitude.")
                     : QCoreApplication::translate("AngleText",
                                                   "There are two longitudes and no latitude.");
        return AngleReading::Wrong;
    }
    const bool latitudeFirst = first.letter.isNull() || isLatitude(first.letter);
    const double latitude = latitudeFirst ? first.degrees : second.degrees;
    const double longitude = latitudeFirst ? second.degrees : first.degrees;
    if (std::abs(latitude) > mostLatitude) {
        *error =
            QCoreApplication::translate("AngleText", "There is no latitude beyond 90 degrees.");
        return AngleReading::Wrong;
    }
    if (std::abs(longitude) > mostLongitude) {
        *error =
            QCoreApplication::translate("AngleText", "There is no longitude beyond 180 degrees.");
        return AngleReading::Wrong;
    }
    *degrees = QPointF(longitude, latitude);
    return AngleReading::Angles;
}

} // namespace Corvane::Viewer
