#include <pluginchecker/CheckStep.h>

#include <pluginchecker/LayerProperties.h>
#include <pluginchecker/LayerUnderTest.h>
#include <pluginchecker/PluginFile.h>
#include <pluginchecker/StepRecord.h>

#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/map/Layer.h>

#include <QMetaProperty>
#include <QSet>
#include <QThread>
#include <QUuid>

#include <limits>

namespace Corvane::PluginChecker {

namespace {

constexpr int layersMade = 50;
constexpr int longText = 100000; // characters

// All that a program may ask of a layer without a source.
void askEverything(Map::Layer& layer)
{
    layer.getDataSource();
    layer.getIcon();
    layer.getFormat();
    layer.getCoordSysName();
    layer.getBounds();
    layer.getLastError();
    layer.getProtocol();
    layer.getPercentComplete();
    layer.beginUpdate(true);
    layer.endUpdate();
    layer.endUpdate(); // not balanced
    layer.setVisible(!layer.isVisible());
    layer.refresh(0.0, 1.0, 1.0, 0.0);
}

void checkIdentity(Map::Layer& layer, StepContext& context)
{
    const QString promised = context.plugin.info()->getClassName();
    const QString real = QString::fromLatin1(layer.metaObject()->className());
    if (real != promised) {
        context.record.fail(QStringLiteral("the layer's class is %1, and getClassName says %2")
                                .arg(real, promised));
    }
    if (layer.parent()) {
        context.record.fail(QStringLiteral("a layer has a parent object: its owner deletes it"));
    }
    if (layer.thread() != QThread::currentThread()) {
        context.record.fail(QStringLiteral("a layer lives on another thread than its owner"));
    }
}

QVariantList nonsenseFor(QVariant::Type type)
{
    switch (type) {
    case QVariant::Double:
        return {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(), 0.0};
    case QVariant::Int:
        return {std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 0, -1};
    case QVariant::String:
        return {QString(), QString(longText, QLatin1Char('x')),
                QStringLiteral("<\"'&%1{z}/../\\ \u00e9\u6f22\n")};
    default:
        return {};
    }
}

void bearNonsense(Map::Layer& layer, StepRecord& record)
{
    const QMetaObject* const meta = layer.metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (!property.isWritable() || qstrcmp(property.name(), "DataSource") == 0) {
            continue;
        }
        for (const QVariant& value : nonsenseFor(property.type())) {
            record.doing(QStringLiteral("writing nonsense into the property %1")
                             .arg(QLatin1String(property.name())));
            property.write(&layer, value);
            property.read(&layer);
        }
    }
}

// The text that a property gives is one that it takes: that is how documents are read.
void keepValues(Map::Layer& layer, StepRecord& record)
{
    const QMetaObject* const meta = layer.metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        const QString name = QString::fromLatin1(property.name());
        record.doing(QStringLiteral("reading and writing the property %1").arg(name));
        if (!property.isReadable()) {
            record.fail(QStringLiteral("the property %1 cannot be read").arg(name));
        } else if (isComparable(property)) {
            const QString before = property.read(&layer).toString();
            property.write(&layer, before);
            if (property.read(&layer).toString() != before) {
                record.fail(QStringLiteral("the property %1 does not keep its own value \"%2\"")
                                .arg(name, before));
            }
        }
    }
}

} // namespace

void checkCreation(StepContext& context)
{
    QSet<QUuid> uids;
    for (int i = 0; i < layersMade; ++i) {
        context.record.doing(QStringLiteral("making layer %1 of %2").arg(i + 1).arg(layersMade));
        LayerUnderTest layer(context);
        if (!layer.exists()) {
            return;
        }
        checkIdentity(*layer, context);
        uids.insert(layer->getUid());
        askEverything(*layer);
        layer->setRendererClient(nullptr);
        askEverything(*layer);
        context.record.doing(QStringLiteral("setting an empty source"));
        layer->setDataSource(QString());
        context.record.doing(QStringLiteral("deleting layer %1 of %2").arg(i + 1).arg(layersMade));
    }
    if (uids.size() != layersMade) {
        context.record.fail(QStringLiteral("layers share their getUid"));
    }
}

void checkProperties(StepContext& context)
{
    LayerUnderTest plain(context);
    LayerUnderTest layer(context);
    if (!plain.exists() || !layer.exists()) {
        return;
    }
    keepValues(*plain, context.record);
    bearNonsense(*layer, context.record);
    if (!context.source.isEmpty()) {
        LayerUnderTest open(context);
        if (open.exists() && open.open()) {
            keepValues(*open, context.record);
            bearNonsense(*open, context.record);
            handleEvents();
        }
    }
}

} // namespace Corvane::PluginChecker
