// Saving a map as a document and reading it back; the rest of MapCanvas stands in MapCanvas.cpp.
#include <corvane/map/MapCanvas.h>

#include <corvane/core/Application.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/Layer.h>

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QDomDocument>
#include <QDomElement>

namespace Corvane::Map {

namespace {

constexpr char rootTag[] = "mapcanvas";
constexpr char formatVersion[] = "1.0";
constexpr int notAdded = -1;

// What a canvas has after reading; its view's shape comes with the next setView.
constexpr int loadedViewSide = 100; // pixels

QString flagText(bool flag)
{
    return flag ? QStringLiteral("true") : QStringLiteral("false");
}

bool flagOf(const QDomElement& element, const QString& attribute)
{
    return element.attribute(attribute, QStringLiteral("false")) == QLatin1String("true");
}

void logLine(const QString& message, LogLevel level)
{
    Application::logMessage(message, level, QDateTime::currentDateTime());
}

void report(const QString& message, QString* errors)
{
    logLine(message, Information);
    if (errors) {
        errors->append(message);
    }
}

void appendText(QDomDocument& document, QDomElement& parent, const QString& tag,
                const QString& text)
{
    QDomElement element = document.createElement(tag);
    element.appendChild(document.createTextNode(text));
    parent.appendChild(element);
}

} // namespace

QDomDocument* MapCanvas::saveMapXML()
{
    auto* document = new QDomDocument(QStringLiteral("CorvaneMapCanvas"));
    QDomElement root = document->createElement(QString::fromLatin1(rootTag));
    root.setAttribute(QStringLiteral("name"), QString::fromLatin1(rootTag));
    root.setAttribute(QStringLiteral("version"), QString::fromLatin1(formatVersion));
    document->appendChild(root);

    QDomElement boundsElement = document->createElement(QStringLiteral("bounds"));
    boundsElement.setAttribute(QStringLiteral("tlx"), tlx);
    boundsElement.setAttribute(QStringLiteral("tly"), tly);
    boundsElement.setAttribute(QStringLiteral("brx"), brx);
    boundsElement.setAttribute(QStringLiteral("bry"), bry);
    boundsElement.setAttribute(QStringLiteral("draw"), flagText(drawMapBBox));
    boundsElement.setAttribute(QStringLiteral("drawcolor"), mapBBoxColor.name());
    boundsElement.setAttribute(QStringLiteral("drawchildren"), flagText(drawLayerBBox));
    boundsElement.setAttribute(QStringLiteral("drawchildrencolor"), layerBBoxColor.name());
    root.appendChild(boundsElement);

    appendText(*document, root, QStringLiteral("description"), description);
    appendText(*document, root, QStringLiteral("comments"), comments);

    QDomElement stack = document->createElement(QStringLiteral("layers"));
    for (Layer* layer : qAsConst(layers)) {
        if (!layer) {
            continue;
        }
        QDomElement element = document->createElement(QStringLiteral("layer"));
        element.setAttribute(QStringLiteral("class"),
                             QString::fromLatin1(layer->metaObject()->className()));
        layer->writeXML(element, *document);
        stack.appendChild(element);
    }
    root.appendChild(stack);
    return document;
}

bool MapCanvas::loadMapXML(QDomDocument& theDoc, QDir& baseDir, QString* pErrorMessage)
{
    if (theDoc.firstChildElement(QString::fromLatin1(rootTag)).isNull()) {
        return false;
    }
    DocumentView read;
    for (QDomNode child = theDoc.documentElement().firstChild(); !child.isNull();
         child = child.nextSibling())
    {
        readMapElement(child.toElement(), baseDir, pErrorMessage, &read);
        // After every child, whatever it was: a map without extents ends up with none.
        // MapDocumentTest::withoutBoundsTheViewIsGone holds it.
        viewWidth = loadedViewSide;
        viewHeight = loadedViewSide;
        tlx = read.tlx;
        tly = read.tly;
        brx = read.brx;
        bry = read.bry;
        rotation = read.rotation;
    }
    return true;
}

void MapCanvas::readMapElement(const QDomElement& element, QDir& baseDir, QString* errors,
                               DocumentView* read)
{
    const QString tag = element.tagName();
    if (tag == QLatin1String("bounds")) {
        readBounds(element, read);
    } else if (tag == QLatin1String("coordsys")) {
        // srscode is not taken: the map's reference is that of its first layer
        read->rotation =
            element.attribute(QStringLiteral("rotation"), QStringLiteral("0.0")).toDouble();
    } else if (tag == QLatin1String("description")) {
        if (!element.text().isEmpty()) {
            description = element.text();
        }
    } else if (tag == QLatin1String("comments")) {
        if (!element.text().isEmpty()) {
            comments = element.text();
        }
    } else if (tag == QLatin1String("layers")) {
        for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
            readLayer(child.toElement(), baseDir, errors);
        }
    } else {
        qDebug().noquote().nospace()
            << "Unknown child element (" << tag << ") in root node for MapView";
    }
}

void MapCanvas::readBounds(const QDomElement& element, DocumentView* read)
{
    read->tlx = element.attribute(QStringLiteral("tlx")).toDouble();
    read->tly = element.attribute(QStringLiteral("tly")).toDouble();
    read->brx = element.attribute(QStringLiteral("brx")).toDouble();
    read->bry = element.attribute(QStringLiteral("bry")).toDouble();
    drawMapBBox = flagOf(element, QStringLiteral("draw"));
    mapBBoxColor = QColor(element.attribute(QStringLiteral("drawcolor")));
    drawLayerBBox = flagOf(element, QStringLiteral("drawchildren"));
    layerBBoxColor = QColor(element.attribute(QStringLiteral("drawchildrencolor")));
}

void MapCanvas::readLayer(QDomElement element, QDir& baseDir, QString* errors)
{
    if (element.tagName() != QLatin1String("layer")) {
        logLine(QStringLiteral("Unknown child element (%1) in <layers> node for MapView.")
                    .arg(element.tagName()),
                Information);
        return;
    }
    if (!element.hasAttribute(QStringLiteral("class"))) {
        return;
    }
    const QString className = element.attribute(QStringLiteral("class"));
    Layer* layer = PluginManager::createLayer(className, false);
    if (!layer) {
        report(QStringLiteral("The plugin manager could not find a layer class to handle the type "
                              "'%1'.")
                   .arg(className),
               errors);
        return;
    }
    // A layer that refuses its element stays with its plugin: neither added nor deleted here.
    // MapDocumentTest::aLayerThatRefusesItsElementIsLeftOut holds it.
    if (!layer->readXML(element, baseDir, errors)) {
        return;
    }
    if (addLayer(layer, -1) == notAdded) {
        report(QStringLiteral("Failed to add layer from XML context : "), errors);
        return;
    }
    logLine(
        QStringLiteral("Added layer from map view XML context : %1").arg(layer->getDataSource()),
        Debug);
}

} // namespace Corvane::Map
