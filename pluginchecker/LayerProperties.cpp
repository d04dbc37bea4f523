#include <pluginchecker/LayerProperties.h>

#include <corvane/map/Layer.h>

#include <QColor>

namespace Corvane::PluginChecker {

namespace {

QVariant changed(const QVariant& value)
{
    switch (value.type()) {
    case QVariant::Bool:
        return !value.toBool();
    case QVariant::Int:
    case QVariant::LongLong:
        return value.toLongLong() + 1;
    case QVariant::Double:
        return value.toDouble() * 0.5 + 0.25; // stays what it should be in most ranges
    case QVariant::String:
        return QString(value.toString() + QStringLiteral(" <a> & \"b\" \u00e9"));
    case QVariant::Color:
        return QColor(12, 34, 56);
    default:
        return value;
    }
}

} // namespace

bool isComparable(const QMetaProperty& property)
{
    return property.isReadable() && property.isWritable() && property.isStored() &&
           qstrcmp(property.name(), "DataSource") != 0 &&
           QVariant(property.userType(), nullptr).canConvert<QString>();
}

QMap<QString, QString> comparableProperties(const Map::Layer& layer)
{
    QMap<QString, QString> values;
    const QMetaObject* const meta = layer.metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        // a document does not hold the name of the object
        if (isComparable(property) && qstrcmp(property.name(), "objectName") != 0) {
            values.insert(QString::fromLatin1(property.name()), property.read(&layer).toString());
        }
    }
    return values;
}

void changeProperties(Map::Layer& layer)
{
    const QMetaObject* const meta = layer.metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (isComparable(property)) {
            property.write(&layer, changed(property.read(&layer)));
        }
    }
}

} // namespace Corvane::PluginChecker
