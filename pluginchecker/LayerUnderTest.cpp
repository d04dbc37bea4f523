#include <pluginchecker/LayerUnderTest.h>

#include <pluginchecker/CheckStep.h>
#include <pluginchecker/PluginFile.h>
#include <pluginchecker/StepRecord.h>

#include <corvane/map/GeoPainter.h>
#include <corvane/map/Layer.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>
#include <QThreadPool>

namespace Corvane::PluginChecker {

namespace {

constexpr int everything = 100;    // percent
constexpr unsigned long pause = 2; // milliseconds between two looks

} // namespace

// Any thread.
void WatchingClient::onRendererUpdate(double, double, double, double)
{
    late += closed ? 1 : 0;
}

// Any thread.
void WatchingClient::onRendererError(QString)
{
    late += closed ? 1 : 0;
}

void View::set(Map::Layer& layer) const
{
    layer.setView(size.width(), size.height(), world.left(), world.top(),
                  world.left() + world.width(), world.top() + world.height());
}

QImage View::painted(Map::Layer& layer) const
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QRectF area = world;
    QRect device = picture.rect();
    GeoPainter painter(&picture, area, device);
    layer.paint(painter, &area, &device);
    painter.end();
    return picture;
}

void handleEvents()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void waitUntil(const std::function<bool()>& condition)
{
    handleEvents();
    while (!condition()) {
        QThread::msleep(pause);
        handleEvents();
    }
}

void drainPool()
{
    waitUntil([] { return QThreadPool::globalInstance()->waitForDone(int(pause)); });
    handleEvents();
}

LayerUnderTest::LayerUnderTest(StepContext& stepContext)
    : context(stepContext),
      watching(std::make_shared<WatchingClient>()),
      layer(context.plugin.createLayer())
{
    if (layer) {
        layer->setRendererClient(watching.get());
    } else {
        context.record.fail(QStringLiteral("createLayer made no layer"));
    }
}

LayerUnderTest::~LayerUnderTest()
{
    destroy();
}

void LayerUnderTest::destroy()
{
    layer.reset();
    watching->close();
}

bool LayerUnderTest::setProgressive(bool progressive)
{
    const bool has = layer->metaObject()->indexOfProperty("Progressive") >= 0;
    return has && layer->setProperty("Progressive", progressive);
}

bool LayerUnderTest::open()
{
    context.record.doing(QStringLiteral("opening %1").arg(context.source));
    if (!layer->setDataSource(context.source)) {
        context.record.fail(
            QStringLiteral("the source does not open: %1").arg(layer->getLastError()));
        return false;
    }
    waitUntil([this] { return layer->isValid() || !layer->getLastError().isEmpty(); });
    if (!layer->isValid()) {
        context.record.fail(
            QStringLiteral("the source does not open: %1").arg(layer->getLastError()));
        return false;
    }
    return true;
}

void LayerUnderTest::waitForAll()
{
    context.record.doing(QStringLiteral("waiting for getPercentComplete to reach 100"));
    waitUntil([this] { return layer->getPercentComplete() >= everything; });
    handleEvents();
}

View LayerUnderTest::wholeView(const QSize& size) const
{
    return {size, layer->getBounds()};
}

View LayerUnderTest::innerView(const QSize& size) const
{
    constexpr double part = 0.25;
    const QRectF all = layer->getBounds();
    return {size, QRectF(all.left() + all.width() * (1.0 - part) / 2.0,
                         all.top() + all.height() * (1.0 - part) / 2.0, all.width() * part,
                         all.height() * part)};
}

} // namespace Corvane::PluginChecker
