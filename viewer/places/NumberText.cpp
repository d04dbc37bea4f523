#include <viewer/places/NumberText.h>

#include <QRegularExpression>
#include <QString>

#include <cmath>

namespace Corvane::Viewer {
namespace {

bool isBlank(QChar c)
{
    return c.isSpace() || c == QLatin1Char('\'') || c == QChar(0x2019);
}

bool groupsThousands(const QString& digits)
{
    static const QRegularExpression grouped("^[-+]?[1-9][0-9]{0,2}([.,][0-9]{3})+$");
    return grouped.match(digits).hasMatch();
}

} // namespace

bool readNumber(const QString& text, LoneSeparator loneSeparator, double* value)
{
    QString digits;
    for (const QChar c : text.trimmed()) {
        if (c == QChar(0x2212)) { // the typographer's minus
            digits += QLatin1Char('-');
        } else if (!isBlank(c)) {
            digits += c;
        }
    }
    const int points = digits.count(QLatin1Char('.'));
    const int commas = digits.count(QLatin1Char(','));
    if (points > 0 && commas > 0) { // the last one is the decimal
        const bool commaIsLast =
            digits.lastIndexOf(QLatin1Char(',')) > digits.lastIndexOf(QLatin1Char('.'));
        digits.remove(commaIsLast ? QLatin1Char('.') : QLatin1Char(','));
    } else if (groupsThousands(digits) &&
               (points + commas > 1 || loneSeparator == LoneSeparator::GroupsThousands))
    {
        digits.remove(QLatin1Char('.')).remove(QLatin1Char(','));
    }
    digits.replace(QLatin1Char(','), QLatin1Char('.'));

    static const QRegularExpression number("^[-+]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][-+]?[0-9]+)?$");
    if (!number.match(digits).hasMatch()) {
        return false;
    }
    const double read = digits.toDouble();
    if (!std::isfinite(read)) {
        return false;
    }
    *value = read;
    return true;
}

} // namespace Corvane::Viewer
