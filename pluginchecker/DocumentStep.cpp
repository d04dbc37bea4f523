#include <pluginchecker/CheckStep.h>

#include <pluginchecker/LayerProperties.h>
#include <pluginchecker/LayerUnderTest.h>
#include <pluginchecker/StepRecord.h>

#include <corvane/map/Layer.h>

#include <QDir>
#include <QDomDocument>
#include <QFileInfo>
#include <QStringList>

namespace Corvane::PluginChecker {

namespace {

/// A layer's element in a document of its own.
struct LayerElement
{
    QDomDocument document;
    QDomElement element;

    LayerElement() : element(document.createElement(QStringLiteral("layer")))
    {
        document.appendChild(element);
    }
    bool hasSource() const { return !sourceElement().isNull(); }
    /// Leaves nothing of the source where name is empty.
    void replaceSource(const QString& name)
    {
        QDomElement child = element.firstChildElement(QStringLiteral("param"));
        while (!child.isNull()) {
            const QDomElement next = child.nextSiblingElement(QStringLiteral("param"));
            if (child.attribute(QStringLiteral("name")) == QLatin1String("DataSource")) {
                element.removeChild(child);
            }
            child = next;
        }
        if (name.isEmpty()) {
            element.removeChild(sourceElement());
        } else {
            sourceElement().setAttribute(QStringLiteral("value"), name);
        }
    }

private:
    QDomElement sourceElement() const
    {
        return element.firstChildElement(QStringLiteral("datasource"));
    }
};

// The order of attributes means nothing, and Qt does not keep it.
QString comparable(const QDomNode& node)
{
    QString text = node.nodeName() + node.nodeValue();
    QStringList attributes;
    for (int i = 0; i < node.attributes().count(); ++i) {
        const QDomNode attribute = node.attributes().item(i);
        attributes.append(attribute.nodeName() + QLatin1Char('=') + attribute.nodeValue());
    }
    attributes.sort();
    text += QLatin1Char('[') + attributes.join(QLatin1Char('|')) + QLatin1Char(']');
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        text += QLatin1Char('{') + comparable(child) + QLatin1Char('}');
    }
    return text;
}

QStringList childrenOf(const QDomNode& node)
{
    QStringList children;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        children.append(comparable(child));
    }
    return children;
}

// The first of the others that is not among the children.
QString lacking(const QStringList& children, const QStringList& others)
{
    for (const QString& other : others) {
        if (!children.contains(other)) {
            return other;
        }
    }
    return children == others ? QString() : QStringLiteral("another order");
}

bool write(Map::Layer& layer, LayerElement* element, StepRecord& record)
{
    record.doing(QStringLiteral("writing a layer into a document"));
    if (!layer.writeXML(element->element, element->document)) {
        record.fail(QStringLiteral("writeXML returns false"));
        return false;
    }
    // as it goes through a file
    const QByteArray text = element->document.toByteArray();
    LayerElement read;
    if (!read.document.setContent(text)) {
        record.fail(QStringLiteral("what writeXML makes is no XML"));
        return false;
    }
    read.element = read.document.documentElement();
    *element = read;
    return true;
}

bool read(Map::Layer& layer, LayerElement& element, QDir folder, StepRecord& record)
{
    record.doing(QStringLiteral("reading a layer from a document"));
    QString error;
    return layer.readXML(element.element, folder, &error);
}

void compare(Map::Layer& layer, Map::Layer& other, const LayerElement& written, StepRecord& record)
{
    const QMap<QString, QString> before = comparableProperties(layer);
    const QMap<QString, QString> after = comparableProperties(other);
    for (auto it = before.begin(); it != before.end(); ++it) {
        if (after.value(it.key()) != it.value()) {
            record.fail(QStringLiteral("a document loses the property %1: \"%2\" becomes \"%3\"")
                            .arg(it.key(), it.value(), after.value(it.key())));
        }
    }
    LayerElement again;
    if (!write(other, &again, record)) {
        return;
    }
    if (!written.hasSource()) {
        again.replaceSource(QString());
    }
    const QStringList known = childrenOf(written.element);
    const QStringList repeated = childrenOf(again.element);
    if (known != repeated) {
        record.fail(QStringLiteral("a layer that was read writes %1 in place of %2")
                        .arg(lacking(known, repeated), lacking(repeated, known)));
    }
}

void checkSettings(StepContext& context)
{
    LayerUnderTest layer(context);
    LayerUnderTest other(context);
    if (!layer.exists() || !other.exists()) {
        return;
    }
    context.record.doing(QStringLiteral("changing properties"));
    changeProperties(*layer);
    LayerElement element;
    if (write(*layer, &element, context.record)) {
        element.replaceSource(QString()); // an empty one would become the folder
        read(*other, element, QDir(context.folder), context.record);
        compare(*layer, *other, element, context.record);
    }
}

bool opens(LayerUnderTest& layer, LayerElement& element, const QDir& folder, StepContext& context)
{
    if (!read(*layer, element, folder, context.record)) {
        context.record.fail(QStringLiteral("readXML returns false for what writeXML made: %1")
                                .arg(layer->getLastError()));
        return false;
    }
    context.record.doing(QStringLiteral("waiting for the source of a layer that was read"));
    waitUntil([&layer] { return layer->isValid() || !layer->getLastError().isEmpty(); });
    if (!layer->isValid()) {
        context.record.fail(
            QStringLiteral("a layer does not open when it is read: %1").arg(layer->getLastError()));
    }
    return layer->isValid();
}

void checkRelativeSource(LayerElement& element, StepContext& context)
{
    const QFileInfo file(context.source);
    LayerUnderTest layer(context);
    if (!file.exists() || !layer.exists()) {
        return;
    }
    element.replaceSource(file.fileName());
    if (opens(layer, element, file.absoluteDir(), context) &&
        QFileInfo(layer->getDataSource()).canonicalFilePath() != file.canonicalFilePath())
    {
        context.record.fail(QStringLiteral("a relative source does not lead to its file"));
    }
}

void checkWithSource(StepContext& context)
{
    LayerUnderTest layer(context);
    LayerUnderTest other(context);
    LayerElement element;
    if (!layer.exists() || !other.exists() || !layer.open() ||
        !write(*layer, &element, context.record) ||
        !opens(other, element, QDir(context.folder), context))
    {
        return;
    }
    if (layer->getDataSource() != other->getDataSource() ||
        layer->getBounds() != other->getBounds()) {
        context.record.fail(QStringLiteral("a document loses the source or its bounds"));
    }
    compare(*layer, *other, element, context.record);
    checkRelativeSource(element, context);
}

} // namespace

void checkDocument(StepContext& context)
{
    checkSettings(context);
    if (!context.source.isEmpty()) {
        checkWithSource(context);
    }
}

} // namespace Corvane::PluginChecker
