#include <viewer/cells/CellTexts.h>

#include <QCoreApplication>

namespace Corvane::Viewer {
QString cellText(const Map::CellValue& value)
{
    switch (value.kind) {
    case Map::CellValue::Kind::Outside:
        return QString();
    case Map::CellValue::Kind::NoData:
        return QCoreApplication::translate("CellTexts", "no data");
    case Map::CellValue::Kind::Value:
        break;
    }
    return value.text;
}

QString cellToolTip(const Map::CellValue& value, const QString& type)
{
    if (value.kind == Map::CellValue::Kind::Outside) {
        return QString();
    }
    if (value.kind == Map::CellValue::Kind::NoData && !value.text.isEmpty()) {
        return QCoreApplication::translate("CellTexts", "no data: %1 (%2)").arg(value.text, type);
    }
    return type;
}

QFont cellFont(QFont font, const Map::CellValue& value)
{
    font.setItalic(value.kind != Map::CellValue::Kind::Value);
    return font;
}

QString bandText(const QString& name, int number)
{
    return name.isEmpty() ? QCoreApplication::translate("CellTexts", "Band %1").arg(number) : name;
}

} // namespace Corvane::Viewer
