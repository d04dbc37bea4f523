#include <viewer/batch/FileInfo.h>

#include <viewer/frame/BriefEventLoop.h>
#include <viewer/maps/LayerOpener.h>
#include <viewer/maps/MapDocumentLoader.h>
#include <viewer/maps/MapDocumentReader.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QBrush>
#include <QColor>
#include <QDeadlineTimer>
#include <QJsonArray>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QPen>
#include <QRectF>
#include <QSequentialIterable>
#include <QSize>
#include <QUuid>
#include <QVector>

#include <algorithm>
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

QJsonObject penToJson(const QPen& pen)
{
    const auto styles = QMetaEnum::fromType<Qt::PenStyle>();
    return {{"color", pen.color().name()},
            {"style", styles.valueToKey(int(pen.style()))},
            {"width", numberToJson(pen.widthF())}};
}

QJsonObject brushToJson(const QBrush& brush)
{
    const auto styles = QMetaEnum::fromType<Qt::BrushStyle>();
    return {{"color", brush.color().name()}, {"style", styles.valueToKey(int(brush.style()))}};
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
    case QMetaType::QPen:
        return penToJson(value.value<QPen>());
    case QMetaType::QBrush:
        return brushToJson(value.value<QBrush>());
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

/// A map document has a view and a loader; all else, and XML that is no map after all, an opener.
struct FileInfo::Source
{
    QString name;
    std::unique_ptr<Map::MapView> view;
    std::unique_ptr<MapDocumentLoader> loader;
    std::unique_ptr<LayerOpener> opener;

    void open()
    {
        opener = std::make_unique<LayerOpener>(name);
        opener->start();
    }
    void load()
    {
        view = std::make_unique<Map::MapView>();
        view->setAttribute(Qt::WA_DeleteOnClose, false);
        loader = std::make_unique<MapDocumentLoader>(name, view.get());
        QObject::connect(loader.get(), &MapDocumentLoader::foundOtherXml, loader.get(),
                         [this] { open(); });
        loader->start();
    }
    bool isFinished() const { return opener ? opener->isFinished() : loader->isFinished(); }
    QJsonObject tell(bool* ok) const;
    QJsonObject tellOfMap(bool* ok) const;
};

QJsonObject FileInfo::Source::tell(bool* ok) const
{
    QJsonObject file;
    *ok = false;
    if (!opener && loader->isLoaded() && loader->getReason().isEmpty()) {
        file = tellOfMap(ok);
    } else if (!isFinished()) {
        file["error"] = "not open in time";
    } else if (!opener) {
        file["error"] = loader->getReason();
    } else if (const auto layer = opener->takeLayer()) {
        file = describe(*layer);
        *ok = true;
    } else {
        file["error"] = opener->getReason();
    }
    file["file"] = opener ? opener->getSource() : name;
    return file;
}

QJsonObject FileInfo::Source::tellOfMap(bool* ok) const
{
    *ok = loader->isFinished() && loader->getProblems().isEmpty();
    QJsonArray layers;
    for (Map::Layer* layer : view->getLayers()) {
        QJsonObject object = describe(*layer);
        if (!layer->isValid()) {
            const QString reason = layer->getLastError();
            object["error"] = reason.isEmpty() ? "not open in time" : reason;
        }
        layers.append(object);
    }
    Map::MapCanvas* const canvas = view->getMapCanvas();
    QJsonObject map{{"description", canvas->getDescription()},
                    {"comments", canvas->getComments()},
                    {"layers", layers}};
    const QRectF extent = loader->getExtent();
    map["bounds"] = extent.isNull() ? QJsonValue() : QJsonValue(boundsToJson(extent));
    if (!loader->getProblems().isEmpty()) {
        map["problems"] = QJsonArray::fromStringList(loader->getProblems());
    }
    return map;
}

FileInfo::FileInfo(const ViewerOptions& newOptions) : options(newOptions) {}

FileInfo::~FileInfo() = default;

ExitCode FileInfo::run(QJsonArray* files)
{
    for (const QString& name : options.files) {
        sources.push_back(std::make_unique<Source>());
        sources.back()->name = name;
        if (mayBeMapDocument(name)) {
            sources.back()->load();
        } else {
            sources.back()->open();
        }
    }
    const QDeadlineTimer deadline(options.timeout);
    while (!isFinished() && !deadline.hasExpired()) {
        runEventLoopBriefly();
    }
    underWay = !isFinished();

    bool allOpened = true;
    for (const auto& source : sources) {
        bool ok = false;
        files->append(source->tell(&ok));
        allOpened = allOpened && ok;
    }
    return allOpened ? Done : SourceFailed;
}

bool FileInfo::isFinished() const
{
    return std::all_of(sources.begin(), sources.end(),
                       [](const auto& source) { return source->isFinished(); });
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
