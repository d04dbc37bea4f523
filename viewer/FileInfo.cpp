#include <viewer/FileInfo.h>

#include <viewer/BatchOpener.h>
#include <viewer/LayerOpener.h>

#include <corvane/map/Layer.h>

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaProperty>
#include <QRectF>
#include <QSequentialIterable>
#include <QSize>
#include <QUuid>
#include <QVector>

#include <cmath>

namespace Corvane::Viewer {
namespace {

QJsonValue numberToJson(double number)
{
    return std::isfinite(number) ? QJsonValue(number) : QJsonValue(QJsonValue::Null);
}

QJsonObject sizeToJson(const QSizeF& size)
{
    return {{"width", numberToJson(size.width())}, {"height", numberToJson(size.height())}};
}

QJsonObject boundsToJson(const QRectF& bounds)
{
    return {{"tlx", numberToJson(bounds.left())},
            {"tly", numberToJson(bounds.top())},
            {"brx", numberToJson(bounds.right())},
            {"bry", numberToJson(bounds.bottom())}};
}

/// Beyond these a JSON number is no longer exact in its readers, nor in Qt.
constexpr qint64 largestExactInteger = qint64(1) << 53;

QJsonValue integerToJson(qint64 number)
{
    const bool exact = number >= -largestExactInteger && number <= largestExactInteger;
    return exact ? QJsonValue(number) : QJsonValue(QString::number(number));
}

QJsonValue unsignedToJson(quint64 number)
{
    const bool exact = number <= quint64(largestExactInteger);
    return exact ? QJsonValue(qint64(number)) : QJsonValue(QString::number(number));
}

QJsonArray listToJson(const QVariant& value)
{
    QJsonArray array;
    const auto list = value.value<QSequentialIterable>();
    for (const QVariant& entry : list) {
        array.append(toJson(entry));
    }
    return array;
}

} // namespace

QJsonValue toJson(const QVariant& value)
{
    switch (int(value.type())) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Float:
    case QMetaType::Double:
        return numberToJson(value.toDouble());
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return unsignedToJson(value.toULongLong());
    case QMetaType::SChar:
    case QMetaType::Char:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return integerToJson(value.toLongLong());
    case QMetaType::QSize:
    case QMetaType::QSizeF:
        return sizeToJson(value.toSizeF());
    case QMetaType::QRect:
    case QMetaType::QRectF:
        return boundsToJson(value.toRectF());
    case QMetaType::QUuid:
        return value.toUuid().toString();
    case QMetaType::QString:
        return value.toString();
    default:
        break;
    }
    if (value.canConvert<QVariantList>()) {
        return listToJson(value);
    }
    return value.canConvert<QString>() ? QJsonValue(value.toString()) : QJsonValue();
}

FileInfo::FileInfo(const ViewerOptions& newOptions) : options(newOptions) {}

FileInfo::~FileInfo() = default;

ExitCode FileInfo::run(QByteArray* json)
{
    opener = std::make_unique<BatchOpener>(options.files);
    underWay = !opener->wait(QDeadlineTimer(options.timeout));

    QJsonArray files;
    bool allOpened = true;
    for (const auto& source : opener->getOpeners()) {
        QJsonObject file;
        if (const auto layer = source->takeLayer()) {
            file = describe(*layer);
        } else {
            allOpened = false;
            file["error"] = source->isFinished() ? source->getReason() : "not open in time";
        }
        file["file"] = source->getSource();
        files.append(file);
    }
    *json = QJsonDocument(files).toJson(QJsonDocument::Indented);
    return allOpened ? Done : SourceFailed;
}

bool FileInfo::isUnderWay() const
{
    return underWay;
}

QJsonObject FileInfo::describe(Map::Layer& layer)
{
    QJsonObject properties;
    const QMetaObject* meta = layer.metaObject();
    for (int i = Map::Layer::staticMetaObject.propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (property.type() == QVariant::Icon || !property.isDesignable(&layer)) {
            continue;
        }
        const QVariant value = property.read(&layer);
        if (property.isEnumType()) {
            properties[property.name()] = property.enumerator().valueToKey(value.toInt());
        } else {
            properties[property.name()] = toJson(value);
        }
    }

    QJsonObject object{
        {"class", meta->className()},
        {"protocol", layer.getProtocol()},
        {"spatialReference", Map::SpatialReference(layer.getSpatialRef()).toString()},
        {"bounds", boundsToJson(layer.getBounds())},
        {"properties", properties}};
    const QVariant size = layer.property("Size");
    if (size.isValid()) {
        object["size"] = sizeToJson(size.toSizeF());
    }
    return object;
}

} // namespace Corvane::Viewer
