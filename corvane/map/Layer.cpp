#include <corvane/map/Layer.h>

#include <corvane/core/Application.h>
#include <corvane/map/IRendererClient.h>
#include <corvane/map/LayerPointer_p.h>

#include <QDateTime>
#include <QDir>
#include <QDomDocument>
#include <QDomElement>
#include <QFileInfo>
#include <QMetaObject>
#include <QMetaProperty>
#include <QMetaType>
#include <QUrl>
#include <QVariant>

#include <limits>

namespace Corvane::Map {

namespace {

constexpr double smallestScale = std::numeric_limits<double>::min();
constexpr double largestScale = std::numeric_limits<double>::max();

bool isUrl(const QString& dataSource)
{
    const QString lower = dataSource.toLower();
    return lower.startsWith(QLatin1String("http://")) ||
           lower.startsWith(QLatin1String("https://")) ||
           lower.startsWith(QLatin1String("zwtp://")) ||
           lower.startsWith(QLatin1String("zwtps://"));
}

/// A relative file is looked for in baseDir; empty where it is not there.
QString resolved(const QString& dataSource, const QDir& baseDir)
{
    if (isUrl(dataSource) || QFileInfo(dataSource).isAbsolute()) {
        return dataSource;
    }
    return QFileInfo(baseDir, dataSource).canonicalFilePath();
}

// Saved documents hold DataSource, MinScale and MaxScale as parameters, since the names compared
// here are not theirs. LayerTest::writeXmlNamesEachStoredProperty holds it.
bool isLeftOut(const QLatin1String& name, const QVariant& value)
{
    if (name == QLatin1String("objectName") || name == QLatin1String("dataSource") ||
        name == QLatin1String("Comments"))
    {
        return true;
    }
    return (name == QLatin1String("minScale") && value.toDouble() == smallestScale) ||
           (name == QLatin1String("maxScale") && value.toDouble() == largestScale);
}

void setStoredProperty(QObject& object, const QString& name, const QString& text)
{
    const QMetaObject* meta = object.metaObject();
    const QMetaProperty property = meta->property(meta->indexOfProperty(name.toUtf8().constData()));
    if (!property.isWritable() || !property.isStored(&object)) {
        return;
    }
    property.write(&object, property.type() == QVariant::Url ? QVariant(QUrl(text)) : text);
}

} // namespace

void registerLayerPointer()
{
    qRegisterMetaType<Layer*>("Layer*");
    qRegisterMetaType<Layer*>("Map::Layer*");
}

Layer::Layer(IRendererClient* client)
    : uid(QUuid::createUuid()),
      minScale(smallestScale),
      maxScale(largestScale),
      rendererClient(client)
{
}

Layer::~Layer()
{
    rendererClient = nullptr;
}

QUuid Layer::getUid()
{
    return uid;
}

QString Layer::getComments()
{
    return comments;
}

void Layer::setComments(QString str)
{
    comments = str;
}

QString Layer::getDescription()
{
    return description;
}

void Layer::setDescription(QString t)
{
    description = t;
}

bool Layer::readXML(QDomNode& theNode, QDir& baseDir, QString*)
{
    QString dataSource;
    for (QDomElement child = theNode.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        const QString tag = child.tagName();
        if (tag == QLatin1String("param")) {
            setStoredProperty(*this, child.attribute(QStringLiteral("name")),
                              child.attribute(QStringLiteral("value")));
        } else if (tag == QLatin1String("comments")) {
            setComments(child.text());
        } else if (tag == QLatin1String("datasource")) {
            dataSource = resolved(child.attribute(QStringLiteral("value")), baseDir);
        } else {
            Application::logMessage(
                QStringLiteral("MapCanvas found unknown XML element <%1> in document.").arg(tag),
                Information, QDateTime::currentDateTime());
        }
    }
    // last, and in any case: the source is opened with all other settings in place
    return setDataSource(dataSource);
}

bool Layer::writeXML(QDomNode& theNode, QDomDocument& theDoc)
{
    const QMetaObject* meta = metaObject();
    if (!meta) {
        return true;
    }
    QDomElement source = theDoc.createElement(QStringLiteral("datasource"));
    source.setAttribute(QStringLiteral("value"), getDataSource());
    theNode.appendChild(source);

    QDomElement remarks = theDoc.createElement(QStringLiteral("comments"));
    remarks.appendChild(theDoc.createTextNode(getComments()));
    theNode.appendChild(remarks);

    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (!property.isStored(this)) {
            continue;
        }
        const QVariant value = property.read(this);
        if (!value.isValid() || isLeftOut(QLatin1String(property.name()), value)) {
            continue;
        }
        QDomElement param = theDoc.createElement(QStringLiteral("param"));
        param.setAttribute(QStringLiteral("value"), property.type() == QVariant::Url
                                                        ? value.toUrl().toString()
                                                        : value.toString());
        param.setAttribute(QStringLiteral("name"), QString::fromUtf8(property.name()));
        theNode.appendChild(param);
    }
    return true;
}

QString Layer::GetLayerTypeAsString(LayerType type)
{
    switch (type) {
    case Overlay:
        return QStringLiteral("Overlay");
    case Raster:
        return QStringLiteral("Raster");
    case Vector:
        return QStringLiteral("Vector");
    case Background:
        return QStringLiteral("Background");
    case Group:
        return QStringLiteral("Group");
    case Custom:
        return QStringLiteral("Custom");
    }
    return QStringLiteral("Unknown");
}

double Layer::getMinScale()
{
    return minScale;
}

void Layer::setMinScale(double scale)
{
    minScale = scale;
}

double Layer::getMaxScale()
{
    return maxScale;
}

void Layer::setMaxScale(double scale)
{
    maxScale = scale;
}

void Layer::clearScaleRange()
{
    minScale = smallestScale;
    maxScale = largestScale;
}

void Layer::setRendererClient(IRendererClient* client)
{
    rendererClient = client;
}

const SpatialReference& Layer::getSpatialRef()
{
    return spatialRef;
}

bool Layer::setSpatialRef(const SpatialReference& reference)
{
    spatialRef.epsg = reference.epsg;
    return true;
}

// any thread
void Layer::refresh(double tlx, double tly, double brx, double bry)
{
    if (rendererClient) {
        rendererClient->onRendererUpdate(tlx, tly, brx, bry);
    }
}

} // namespace Corvane::Map
