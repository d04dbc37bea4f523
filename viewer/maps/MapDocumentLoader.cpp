#include <viewer/maps/MapDocumentLoader.h>

#include <viewer/maps/DocumentThreads.h>
#include <viewer/maps/LateLayers.h>
#include <viewer/maps/MapDocumentReader.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Corvane::Viewer {
namespace {

constexpr int longestTurn = 20; // milliseconds of the event loop that layers are made in

QString localName(const QString& source)
{
    const QUrl url(source);
    return QFileInfo(url.isLocalFile() ? url.toLocalFile() : source).absoluteFilePath();
}

QString failureOf(Map::Layer* layer)
{
    return MapDocumentLoader::tr("cannot open %1: %2")
        .arg(layer->getDataSource(), layer->getLastError());
}

/// The rectangle of the last bounds element, null where it is none that can be shown.
QRectF extentOf(const QDomDocument& document)
{
    const QDomElement bounds = document.documentElement().lastChildElement("bounds");
    const double tlx = bounds.attribute("tlx").toDouble();
    const double tly = bounds.attribute("tly").toDouble();
    const double brx = bounds.attribute("brx").toDouble();
    const double bry = bounds.attribute("bry").toDouble();
    const bool finite = std::isfinite(brx - tlx) && std::isfinite(bry - tly);
    return finite ? QRectF(tlx, tly, brx - tlx, bry - tly) : QRectF();
}

/// Takes the layer elements out of the document.
QList<QDomElement> takeLayersOf(QDomDocument& document)
{
    QList<QDomElement> taken;
    const QDomElement root = document.documentElement();
    for (QDomElement stack = root.firstChildElement("layers"); !stack.isNull();
         stack = stack.nextSiblingElement("layers"))
    {
        QDomElement layer = stack.firstChildElement("layer");
        while (!layer.isNull()) {
            const QDomElement next = layer.nextSiblingElement("layer");
            taken << stack.removeChild(layer).toElement();
            layer = next;
        }
    }
    return taken;
}

} // namespace

MapDocumentLoader::MapDocumentLoader(const QString& source, Map::MapView* newView, QObject* parent)
    : QObject(parent),
      fileName(localName(source)),
      view(newView),
      late(new LateLayers(this))
{
    connect(late, &LateLayers::ended, this, &MapDocumentLoader::onLateLayer);
    connect(late, &LateLayers::waits, this,
            [this](Map::Layer* layer) { noteWaiting(failureOf(layer)); });
}

MapDocumentLoader::MapDocumentLoader(const QDomDocument& map, Map::MapView* newView,
                                     QObject* parent)
    : QObject(parent),
      view(newView),
      late(new LateLayers(this)),
      document(map)
{
    connect(late, &LateLayers::ended, this, &MapDocumentLoader::onLateLayer);
}

void MapDocumentLoader::start()
{
    if (!document.isNull()) {
        QTimer::singleShot(0, this, [this] { onRead(MapReading::Read, document, QString()); });
        return;
    }
    // what comes of it belongs to this thread alone once it is handed over
    const QPointer<MapDocumentLoader> self(this);
    documentThreads().start([self, name = fileName] {
        QDomDocument read;
        QString why;
        const MapReading result = readMapDocument(name, &read, &why);
        QMetaObject::invokeMethod(
            qApp,
            [self, result, read, why] {
                if (self) {
                    self->onRead(result, read, why);
                }
            },
            Qt::QueuedConnection);
    });
}

void MapDocumentLoader::onRead(MapReading result, const QDomDocument& read, const QString& why)
{
    if (!view) {
        return;
    }
    reason = why;
    ended = result != MapReading::Read;
    switch (result) {
    case MapReading::Read:
        document = read;
        loadMap();
        break;
    case MapReading::OtherXml:
        emit foundOtherXml();
        break;
    case MapReading::Refused:
        emit refused(reason);
        break;
    }
}

void MapDocumentLoader::loadMap()
{
    elements = takeLayersOf(document);
    extent = extentOf(document);
    QDir folder = QFileInfo(fileName).absoluteDir();
    view->loadMapXML(document, folder, nullptr);
    view->setDocumentName(fileName);
    show();
    // what is left takes one layer after the other
    QDomElement root = document.documentElement();
    while (root.hasChildNodes()) {
        root.removeChild(root.firstChild());
    }
    root.appendChild(document.createElement("layers"));
    loadSomeLayers();
}

void MapDocumentLoader::loadSomeLayers()
{
    const QDeadlineTimer turnOver(longestTurn);
    while (view && !elements.isEmpty() && !turnOver.hasExpired()) {
        loadLayer(elements.takeFirst());
    }
    if (!view) {
        return;
    }
    if (elements.isEmpty()) {
        ended = true;
        if (extent.isNull()) {
            show();
        }
        emit loaded();
    } else {
        QTimer::singleShot(0, this, &MapDocumentLoader::loadSomeLayers);
    }
}

/// Through a canvas of its own: the view stays where the user has it meanwhile.
void MapDocumentLoader::loadLayer(const QDomElement& element)
{
    QDomElement stack = document.documentElement().firstChildElement();
    stack.appendChild(element);
    Map::MapCanvas canvas(nullptr);
    QDir folder = QFileInfo(fileName).absoluteDir();
    QString messages;
    canvas.loadMapXML(document, folder, &messages);
    stack.removeChild(element);

    const QStringList lines = messages.split('\n', Qt::SkipEmptyParts);
    const QVector<Map::Layer*> made = std::exchange(canvas.getLayers(), {});
    const bool waits = std::any_of(made.begin(), made.end(), &LateLayers::isWaiting);
    for (const QString& line : lines) {
        waits ? noteWaiting(line) : addProblem(line);
    }
    for (Map::Layer* layer : made) {
        takeIn(layer);
        if (!layer->isValid() && !late->follow(layer) && lines.isEmpty()) {
            addProblem(failureOf(layer));
        }
    }
    if (made.isEmpty() && element.hasAttribute("class")) {
        ++missingCount;
        if (lines.isEmpty()) { // refused without a word
            addProblem(tr("cannot open a layer of the class %1").arg(element.attribute("class")));
        }
    }
}

void MapDocumentLoader::takeIn(Map::Layer* layer)
{
    takingIn = true;
    view->addLayer(layer);
    takingIn = false;
    if (view->getNumberOfLayers() == 1) { // which shows itself whole
        show();
    }
    emit layerCame(layer);
}

/// The view as it was saved, with its fractions; everything where the document tells of no part of
/// the world.
void MapDocumentLoader::show() const
{
    view->getViewManager()->setDeviceExtents(0, 0, view->width() - 1, view->height() - 1);
    if (extent.isNull()) {
        view->zoomToAllLayers(false);
    } else {
        view->setBounds(extent);
    }
    view->QWidget::update();
}

void MapDocumentLoader::onLateLayer(Map::Layer* layer, bool ok)
{
    if (!view) {
        return;
    }
    if (!ok) {
        addProblem(failureOf(layer));
        return;
    }
    const QVector<Map::Layer*>& layers = view->getLayers();
    const bool isAlone = std::count_if(layers.begin(), layers.end(),
                                       [](Map::Layer* other) { return other->isValid(); }) == 1;
    if (extent.isNull() && (isAlone || !hasWaited)) { // later the user has chosen what to see
        view->zoomToAllLayers(false);
    }
    emit layerOpened(layer);
}

/// A layer whose server does not answer is shown as such, and is nothing to bother the user with.
void MapDocumentLoader::noteWaiting(const QString& text)
{
    hasWaited = true;
    problems << text;
}

void MapDocumentLoader::addProblem(const QString& text)
{
    problems << text;
    emit problem(text);
}

QString MapDocumentLoader::getFileName() const
{
    return fileName;
}

bool MapDocumentLoader::isFinished() const
{
    return ended && !late->areOpening();
}

bool MapDocumentLoader::isLoaded() const
{
    return ended;
}

bool MapDocumentLoader::isTakingIn() const
{
    return takingIn;
}

QString MapDocumentLoader::getReason() const
{
    return reason;
}

QStringList MapDocumentLoader::getProblems() const
{
    return problems;
}

int MapDocumentLoader::getMissingCount() const
{
    return missingCount;
}

QRectF MapDocumentLoader::getExtent() const
{
    return extent;
}

} // namespace Corvane::Viewer
