#include <pluginchecker/CheckStep.h>

#include <pluginchecker/LayerUnderTest.h>
#include <pluginchecker/StepRecord.h>

#include <corvane/map/GeoPainter.h>
#include <corvane/map/Layer.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <vector>

namespace Corvane::PluginChecker {

namespace {

const QSize usualSize(400, 300);
constexpr int manyViews = 500;
constexpr int largestDistance = 24; // of two colours that pass for one, of 255
constexpr int alikePart = 500;      // one pixel in so many may be another one
constexpr double huge = 1e300;
constexpr double endless = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

std::vector<QSize> sizesToTry()
{
    return {{400, 300}, {1, 1}, {0, 0}, {0, 300}, {-1, -1}, {-400, 300}, {3, 4000}, {6000, 2}};
}

// Around the layer's bounds, and far from them.
std::vector<QRectF> extentsToTry(const QRectF& bounds)
{
    const QRectF all = bounds.isNull() ? QRectF(-180.0, 90.0, 360.0, -180.0) : bounds;
    const double width = all.width();
    const double height = all.height();
    return {all,
            QRectF(all.left() - width, all.top() - height, 3.0 * width, 3.0 * height),
            QRectF(all.left() + 10.0 * width, all.top(), width, height),
            QRectF(all.left(), all.top(), width * 1e-6, height * 1e-6),
            QRectF(all.left(), all.top(), 0.0, 0.0),
            QRectF(all.left(), all.top(), width, 0.0),
            QRectF(all.left() + width, all.top() + height, -width, -height),
            QRectF(all.left(), all.top() + height, width, -height),
            QRectF(-huge, huge, 2.0 * huge, -2.0 * huge),
            QRectF(huge, huge, 1.0, -1.0),
            QRectF(-endless, endless, endless, -endless),
            QRectF(noNumber, noNumber, noNumber, noNumber),
            QRectF(all.left(), noNumber, width, height)};
}

QString textOf(const View& view)
{
    return QStringLiteral("showing %1 x %2 pixels of %3, %4, %5, %6")
        .arg(view.size.width())
        .arg(view.size.height())
        .arg(view.world.left())
        .arg(view.world.top())
        .arg(view.world.left() + view.world.width())
        .arg(view.world.top() + view.world.height());
}

// On a picture of the usual size, whatever the view's is.
void paintOddly(Map::Layer& layer, const View& view)
{
    QImage picture(usualSize, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QRectF world = view.world;
    QRect device(QPoint(0, 0), view.size);
    GeoPainter painter(&picture, world, device);
    layer.paint(painter, &world, &device);
}

void tryViews(LayerUnderTest& layer, StepRecord& record)
{
    const std::vector<QRectF> extents = extentsToTry(layer->getBounds());
    for (const QSize& size : sizesToTry()) {
        for (const QRectF& world : extents) {
            const View view{size, world};
            record.doing(textOf(view));
            view.set(*layer);
            layer->beginUpdate(true);
            paintOddly(*layer, view);
            handleEvents();
            const int percent = layer->getPercentComplete();
            if (percent < 0 || percent > 100) {
                record.fail(QStringLiteral("getPercentComplete is %1").arg(percent));
            }
        }
    }
    layer->endUpdate();
}

struct PainterState
{
    double opacity;
    bool isClipped;
    QPainter::CompositionMode mode;
    QTransform transform;

    explicit PainterState(const QPainter& painter)
        : opacity(painter.opacity()),
          isClipped(painter.hasClipping()),
          mode(painter.compositionMode()),
          transform(painter.worldTransform())
    {
    }
};

// The layers above are painted with the same painter.
void checkPainterState(LayerUnderTest& layer, const View& view, StepRecord& record)
{
    QImage picture(view.size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QRectF world = view.world;
    QRect device = picture.rect();
    GeoPainter painter(&picture, world, device);
    const PainterState before(painter);
    layer->paint(painter, &world, &device);
    const PainterState after(painter);
    const auto compare = [&record](bool same, const char* what) {
        if (!same) {
            record.fail(QStringLiteral("paint leaves the painter with another %1")
                            .arg(QLatin1String(what)));
        }
    };
    compare(after.opacity == before.opacity, "opacity");
    compare(after.isClipped == before.isClipped, "clipping");
    compare(after.mode == before.mode, "composition mode");
    compare(after.transform == before.transform, "transform");
    if (world != view.world || device != picture.rect()) {
        record.fail(QStringLiteral("paint changes the rectangles that it is given"));
    }
}

// A layer may draw around its view at one time and not at another, which moves its edges by a
// fraction of a pixel; what is missing, or belongs elsewhere, is more than that.
bool areAlike(const QImage& one, const QImage& other)
{
    if (one.size() != other.size()) {
        return false;
    }
    int different = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            const int distance =
                std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                          std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
            different += distance > largestDistance ? 1 : 0;
        }
    }
    return different <= one.width() * one.height() / alikePart;
}

bool isEmpty(const QImage& picture)
{
    QImage blank(picture.size(), picture.format());
    blank.fill(Qt::transparent);
    return picture == blank;
}

// What a layer shows that has seen no other view.
QImage pictureOf(const View& view, StepContext& context)
{
    LayerUnderTest layer(context);
    if (!layer.exists() || !layer.open()) {
        return {};
    }
    view.set(*layer);
    layer.waitForAll();
    return view.painted(*layer);
}

} // namespace

void checkViews(StepContext& context)
{
    LayerUnderTest closed(context);
    if (!closed.exists()) {
        return;
    }
    tryViews(closed, context.record);
    if (context.source.isEmpty()) {
        return;
    }
    LayerUnderTest layer(context);
    if (layer.exists() && layer.open()) {
        tryViews(layer, context.record);
        const View view = layer.wholeView(usualSize);
        context.record.doing(QStringLiteral("showing a usual view after odd ones"));
        view.set(*layer);
        layer.waitForAll();
        if (!areAlike(view.painted(*layer), pictureOf(view, context))) {
            context.record.fail(
                QStringLiteral("after odd views a layer paints another picture than before"));
        }
    }
}

void checkPainting(StepContext& context)
{
    LayerUnderTest layer(context);
    if (!layer.exists() || !layer.open()) {
        return;
    }
    for (const View& view : {layer.wholeView(usualSize), layer.innerView(usualSize)}) {
        view.set(*layer);
        layer.waitForAll();
        context.record.doing(textOf(view));
        const QImage first = view.painted(*layer);
        if (!areAlike(first, view.painted(*layer))) {
            context.record.fail(QStringLiteral("painting twice gives two pictures"));
        }
        checkPainterState(layer, view, context.record);
    }
    if (isEmpty(layer.wholeView(usualSize).painted(*layer))) {
        context.record.warn(QStringLiteral("the whole of the layer is an empty picture"));
    }
}

void checkCompleteness(StepContext& context)
{
    LayerUnderTest layer(context);
    if (!layer.exists()) {
        return;
    }
    if (!layer.setProgressive(false)) {
        context.record.skip(QStringLiteral("layers have no property Progressive"));
        return;
    }
    context.record.doing(QStringLiteral("opening the source without Progressive"));
    if (!layer->setDataSource(context.source) || !layer->isValid()) {
        context.record.fail(
            QStringLiteral("without Progressive the source is not open behind setDataSource: %1")
                .arg(layer->getLastError()));
        return;
    }
    for (const View& view : {layer.wholeView(usualSize), layer.innerView(usualSize)}) {
        context.record.doing(textOf(view));
        view.set(*layer);
        if (layer->getPercentComplete() != 100) {
            context.record.fail(QStringLiteral("without Progressive %1 percent are there behind "
                                               "setView")
                                    .arg(layer->getPercentComplete()));
        }
        const QImage picture = view.painted(*layer);
        if (!areAlike(picture, pictureOf(view, context))) {
            context.record.fail(QStringLiteral("without Progressive the picture behind setView is "
                                               "not what comes with it in the end"));
        }
    }
}

void checkCancelling(StepContext& context)
{
    LayerUnderTest layer(context);
    if (!layer.exists() || !layer.open()) {
        return;
    }
    const View last = layer.innerView(usualSize);
    const QRectF all = layer->getBounds();
    for (int i = 0; i < manyViews; ++i) {
        context.record.doing(QStringLiteral("setting view %1 of %2").arg(i + 1).arg(manyViews));
        const double part = 1.0 / (1 + i % 37);
        const double offset = (i % 11) / 11.0 * (1.0 - part);
        const View view{usualSize,
                        QRectF(all.left() + all.width() * offset, all.top() + all.height() * offset,
                               all.width() * part, all.height() * part)};
        layer->beginUpdate(i % 2 == 0);
        view.set(*layer);
        if (i % 16 == 0) {
            view.painted(*layer);
            handleEvents();
        }
    }
    layer->endUpdate();
    last.set(*layer);
    layer.waitForAll();
    if (!areAlike(last.painted(*layer), pictureOf(last, context))) {
        context.record.fail(
            QStringLiteral("after many views the last one is not what is shown in the end"));
    }
}

} // namespace Corvane::PluginChecker
