#include <corvane/map/GeoImage.h>

#include <QBuffer>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QStringList>
#include <QVector>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>

using Corvane::EnhancementParams;
using Corvane::GeoImage;

namespace {

constexpr int canvasSize = 20;
const QColor background(Qt::white);

/// Shows what a plugin's image sees of its base.
class OpenImage : public GeoImage
{
public:
    using GeoImage::enhancementBuffer;
    using GeoImage::enhancementParams;
    using GeoImage::GeoImage;
    using GeoImage::operator=;

    OpenImage(OpenImage& other) : GeoImage(other) {}
};

QRgb colourOf(int x, int y)
{
    return qRgb(10 + x * 20, 10 + y * 20, 5);
}

/// Each pixel has a colour of its own.
void paintPattern(QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, colourOf(x, y));
        }
    }
}

std::unique_ptr<GeoImage> pattern(int width, int height, double tlx, double tly, double brx,
                                  double bry)
{
    std::unique_ptr<GeoImage> image(
        new GeoImage(width, height, tlx, tly, brx, bry, QImage::Format_ARGB32, nullptr));
    paintPattern(*image);
    return image;
}

QImage canvas()
{
    QImage image(canvasSize, canvasSize, QImage::Format_ARGB32);
    image.fill(background);
    return image;
}

/// A canvas that shows the world from 0, 20 to 20, 0, one unit per pixel.
QImage paintedOnUnitCanvas(GeoImage& image)
{
    QImage result = canvas();
    QPainter painter(&result);
    image.paint(painter, 0, 0, canvasSize, canvasSize, 0.0, 20.0, 20.0, 0.0);
    return result;
}

/// What the canvas holds after the image of QPainter's own calls.
template <typename Paint>
QImage paintedBy(Paint paint)
{
    QImage result = canvas();
    QPainter painter(&result);
    paint(painter);
    return result;
}

/// To a millionth of a pixel.
QString text(double value)
{
    return QString::number(std::round(value * 1e6) / 1e6, 'g', 12);
}

QString text(const QRectF& rect)
{
    return QStringList(
               {text(rect.left()), text(rect.top()), text(rect.width()), text(rect.height())})
        .join(QLatin1Char(' '));
}

/// Writes down which part of an image is to be drawn where.
class RecordingEngine : public QPaintEngine
{
public:
    RecordingEngine() : QPaintEngine(AllFeatures) {}
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawImage(const QRectF& target, const QImage&, const QRectF& source,
                   Qt::ImageConversionFlags flags) override
    {
        log << QStringLiteral("%1 from %2").arg(text(target), text(source));
        conversion = flags;
    }
    QStringList log;
    Qt::ImageConversionFlags conversion = Qt::NoOpaqueDetection;
};

class RecordingDevice : public QPaintDevice
{
public:
    QPaintEngine* paintEngine() const override { return &engine; }
    mutable RecordingEngine engine;

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        return metric == PdmDevicePixelRatio || metric == PdmDevicePixelRatioScaled ? 1 : 100;
    }
};

struct View
{
    QPoint place; // of the device rectangle
    QSize size;
    QVector<double> world;
};

QStringList recorded(GeoImage& image, const View& view)
{
    RecordingDevice device;
    QPainter painter(&device);
    image.paint(painter, view.place.x(), view.place.y(), view.size.width(), view.size.height(),
                view.world[0], view.world[1], view.world[2], view.world[3]);
    painter.end();
    return device.engine.log;
}

QByteArray encodedPattern(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    paintPattern(image);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

bool isClear(const unsigned char* bytes, int count)
{
    return std::all_of(bytes, bytes + count, [](unsigned char byte) { return byte == 0; });
}

} // namespace

Q_DECLARE_METATYPE(View)
Q_DECLARE_METATYPE(QImage::Format)

class GeoImageTest : public QObject
{
    Q_OBJECT

private slots:
    void enhancementStartsAtItsDefaults();
    void fieldsStandInOrder();
    void boundsOfANorthUpImageHaveANegativeHeight();

    void decodedImageWithoutBoundsIsMeasuredInPixels();
    void decodedImageIgnoresOtherBounds_data();
    void decodedImageIgnoresOtherBounds();
    void decodedImageTakesTheFormatOfItsName();
    void undecodableDataLeavesANullImage();

    void aFilledImageComesOutCleared();
    void aWideFormatIsClearedForFourBytesAPixelOnly();
    void aNarrowFormatIsClearedWithinItsBytes_data();
    void aNarrowFormatIsClearedWithinItsBytes();
    void anImageWithoutASizeIsNull();
    void aWrappedBufferIsClearedAndShared();
    void aWrappedBufferIsClearedNoFurtherThanItsEnd();

    void aCopyHasItsOwnPixelsAndTheDefaultParameters();
    void aCopySharesTheEnhancementBuffer();
    void aCopyOfANullImageIsNull();
    void assignmentTakesPixelsBoundsBufferAndParameters();
    void theEnhancementBufferHoldsTheLowByteOfTheLineLength();

    void anImageOfTheViewIsDrawnWholeAtItsPlace();
    void anImageAtItsOwnResolutionIsDrawnUnscaledAtItsOffset_data();
    void anImageAtItsOwnResolutionIsDrawnUnscaledAtItsOffset();
    void anImageThatEndsAtZeroIsNotDrawn_data();
    void anImageThatEndsAtZeroIsNotDrawn();
    void aResampledImageIsCutToTheDevice_data();
    void aResampledImageIsCutToTheDevice();
    void anEnlargedImageShowsBlocks();
    void anEnlargedImageBeginsInTheMiddleOfAPixel();
    void aReducedImageSkipsPixels();
    void resamplingFollowsTheRenderHints();
    void resamplingLeavesTheColoursToThePainter();
    void anImageOutsideTheViewLeavesTheCanvas_data();
    void anImageOutsideTheViewLeavesTheCanvas();
    void collapsedRectanglesDrawNothing_data();
    void collapsedRectanglesDrawNothing();
    void nullImagesDrawNothing();

    void blitDrawsTheSourceWholeAtThePixel();
    void blitFillsFirst();
    void copyPutsTheSourceWhereItsWorldIs();
    void copyFillsFirstAndResamples();
};

void GeoImageTest::enhancementStartsAtItsDefaults()
{
    const EnhancementParams params;
    QCOMPARE(params.first, 0.0);
    QCOMPARE(params.second, 1.0);
    QCOMPARE(params.third, 1.0);
    QCOMPARE(params.fourth, 45.0);
    QCOMPARE(params.fifth, 45.0);
    QCOMPARE(params.sixth, false);
}

void GeoImageTest::fieldsStandInOrder()
{
    OpenImage image(1, 1, 0.0, 0.0, 0.0, 0.0, QImage::Format_ARGB32, nullptr);
    const QVector<const void*> fields = {&image.tlx,
                                         &image.tly,
                                         &image.brx,
                                         &image.bry,
                                         &image.enhancementBuffer,
                                         &image.enhancementParams.first,
                                         &image.enhancementParams.second,
                                         &image.enhancementParams.third,
                                         &image.enhancementParams.fourth,
                                         &image.enhancementParams.fifth,
                                         &image.enhancementParams.sixth};
    QVERIFY(std::is_sorted(fields.begin(), fields.end(), std::less<const void*>()));
}

void GeoImageTest::boundsOfANorthUpImageHaveANegativeHeight()
{
    GeoImage image(4, 4, 10.0, 50.0, 30.0, 20.0, QImage::Format_ARGB32, nullptr);
    QCOMPARE(image.getBounds(), QRectF(10.0, 50.0, 20.0, -30.0));
    QVERIFY(image.getBounds().height() < 0.0);
}

void GeoImageTest::decodedImageWithoutBoundsIsMeasuredInPixels()
{
    GeoImage image(encodedPattern(7, 5), 0.0, 0.0, 0.0, 0.0, "PNG");
    QCOMPARE(image.size(), QSize(7, 5));
    QCOMPARE(image.pixel(6, 4), colourOf(6, 4));
    QCOMPARE(image.getBounds(), QRectF(QPointF(0.0, 5.0), QPointF(7.0, 0.0)));
}

void GeoImageTest::decodedImageIgnoresOtherBounds_data()
{
    QTest::addColumn<QVector<double>>("bounds");
    QTest::newRow("a left") << QVector<double>{1, 0, 0, 0};
    QTest::newRow("a top") << QVector<double>{0, 1, 0, 0};
    QTest::newRow("a right") << QVector<double>{0, 0, 1, 0};
    QTest::newRow("a bottom") << QVector<double>{0, 0, 0, 1};
    QTest::newRow("all four") << QVector<double>{10, 50, 30, 20};
}

void GeoImageTest::decodedImageIgnoresOtherBounds()
{
    QFETCH(QVector<double>, bounds);
    GeoImage image(encodedPattern(7, 5), bounds[0], bounds[1], bounds[2], bounds[3], "PNG");
    QCOMPARE(image.size(), QSize(7, 5));
    QCOMPARE(image.getBounds(), QRectF(0.0, 0.0, 0.0, 0.0));
}

void GeoImageTest::decodedImageTakesTheFormatOfItsName()
{
    const QByteArray xbm("#define x_width 8\n#define x_height 1\n"
                         "static char x_bits[] = {\n0x01 };\n");
    GeoImage named(xbm, 0.0, 0.0, 0.0, 0.0, "XBM");
    QCOMPARE(named.size(), QSize(8, 1));
    GeoImage found(encodedPattern(3, 2), 0.0, 0.0, 0.0, 0.0, nullptr);
    QCOMPARE(found.size(), QSize(3, 2));
}

void GeoImageTest::undecodableDataLeavesANullImage()
{
    GeoImage image(QByteArray("no picture"), 0.0, 0.0, 0.0, 0.0, "PNG");
    QVERIFY(image.isNull());
    QCOMPARE(image.getBounds(), QRectF(0.0, 0.0, 0.0, 0.0));
    GeoImage empty(QByteArray(), 0.0, 0.0, 0.0, 0.0, nullptr);
    QVERIFY(empty.isNull());
}

void GeoImageTest::aFilledImageComesOutCleared()
{
    QColor red(Qt::red);
    GeoImage filled(8, 6, 1.0, 2.0, 3.0, 4.0, QImage::Format_ARGB32, &red);
    QVERIFY(isClear(filled.constBits(), 8 * 6 * 4));
    QCOMPARE(filled.getBounds(), QRectF(QPointF(1.0, 2.0), QPointF(3.0, 4.0)));
    GeoImage plain(8, 6, 1.0, 2.0, 3.0, 4.0, QImage::Format_ARGB32_Premultiplied, nullptr);
    QVERIFY(isClear(plain.constBits(), 8 * 6 * 4));
}

void GeoImageTest::aWideFormatIsClearedForFourBytesAPixelOnly()
{
    QColor red(Qt::red);
    GeoImage image(4, 4, 0.0, 0.0, 0.0, 0.0, QImage::Format_RGBA64, &red);
    QVERIFY(isClear(image.constBits(), 4 * 4 * 4));
    QCOMPARE(image.pixel(3, 1), 0u);
    QCOMPARE(image.pixel(0, 2), red.rgba()); // the second half keeps the fill
    QCOMPARE(image.pixel(3, 3), red.rgba());
}

void GeoImageTest::aNarrowFormatIsClearedWithinItsBytes_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::addColumn<int>("width");
    QTest::newRow("three bytes a pixel") << QImage::Format_RGB888 << 7;
    QTest::newRow("three bytes a pixel with more padding than pixels")
        << QImage::Format_RGB888 << 1;
    QTest::newRow("two bytes a pixel") << QImage::Format_RGB16 << 9;
    QTest::newRow("one byte a pixel") << QImage::Format_Grayscale8 << 9;
    QTest::newRow("one bit a pixel") << QImage::Format_Mono << 33;
}

void GeoImageTest::aNarrowFormatIsClearedWithinItsBytes()
{
    QFETCH(QImage::Format, format);
    QFETCH(int, width);
    GeoImage image(width, 5, 0.0, 0.0, 0.0, 0.0, format, nullptr);
    const int wanted = width * 5 * 4;
    QVERIFY(isClear(image.constBits(), qMin<int>(wanted, image.bytesPerLine() * 5)));
}

void GeoImageTest::anImageWithoutASizeIsNull()
{
    GeoImage image(0, 10, 1.0, 2.0, 3.0, 4.0, QImage::Format_ARGB32, nullptr);
    QVERIFY(image.isNull());
    QCOMPARE(image.getBounds(), QRectF(QPointF(1.0, 2.0), QPointF(3.0, 4.0)));
    GeoImage negative(-3, 10, 1.0, 2.0, 3.0, 4.0, QImage::Format_ARGB32, nullptr);
    QVERIFY(negative.isNull());
}

void GeoImageTest::aWrappedBufferIsClearedAndShared()
{
    QVector<quint32> buffer(4 * 3, 0xff112233u);
    const auto* bytes = reinterpret_cast<const unsigned char*>(buffer.constData());
    {
        GeoImage image(bytes, 4, 3, 1.0, 2.0, 3.0, 4.0, QImage::Format_ARGB32);
        QVERIFY(isClear(bytes, 4 * 3 * 4));
        QCOMPARE(image.constBits(), bytes);
        QCOMPARE(image.getBounds(), QRectF(QPointF(1.0, 2.0), QPointF(3.0, 4.0)));
        image.setPixel(2, 1, 0xff445566u);
        QCOMPARE(buffer.at(1 * 4 + 2), 0xff445566u);
    }
    QCOMPARE(buffer.at(1 * 4 + 2), 0xff445566u); // the buffer outlives the image
}

void GeoImageTest::aWrappedBufferIsClearedNoFurtherThanItsEnd()
{
    QVector<unsigned char> buffer(8 * 3 + 100, 0xab);
    GeoImage image(buffer.constData(), 8, 3, 0.0, 0.0, 0.0, 0.0, QImage::Format_Grayscale8);
    QVERIFY(isClear(buffer.constData(), 8 * 3));
    QCOMPARE(std::count(buffer.constBegin() + 8 * 3, buffer.constEnd(), 0xab), 100);
}

void GeoImageTest::aCopyHasItsOwnPixelsAndTheDefaultParameters()
{
    OpenImage image(5, 4, 1.0, 2.0, 3.0, 4.0, QImage::Format_RGB32, nullptr);
    paintPattern(image);
    EnhancementParams params;
    params.first = 9.0;
    params.sixth = true;
    image.setEnhancementParams(params);

    OpenImage copy(image);
    QCOMPARE(copy.format(), QImage::Format_RGB32);
    QVERIFY(copy == image);
    QCOMPARE(copy.getBounds(), image.getBounds());
    QCOMPARE(copy.enhancementParams.first, 0.0);
    QCOMPARE(copy.enhancementParams.sixth, false);
    QVERIFY(!copy.enhancementBuffer);
    QVERIFY(copy.constBits() != image.constBits());
    copy.setPixel(0, 0, 0xffffffffu);
    QCOMPARE(image.pixel(0, 0), colourOf(0, 0));
}

void GeoImageTest::aCopySharesTheEnhancementBuffer()
{
    OpenImage image(5, 4, 0.0, 0.0, 0.0, 0.0, QImage::Format_RGB32, nullptr);
    image.updateEnhancementBuffer();
    OpenImage copy(image);
    QCOMPARE(copy.enhancementBuffer, image.enhancementBuffer);
    copy.enhancementBuffer = nullptr; // one owner is left
}

void GeoImageTest::aCopyOfANullImageIsNull()
{
    GeoImage image(QByteArray(), 0.0, 0.0, 0.0, 0.0, nullptr);
    GeoImage copy(image);
    QVERIFY(copy.isNull());
}

void GeoImageTest::assignmentTakesPixelsBoundsBufferAndParameters()
{
    OpenImage image(5, 4, 1.0, 2.0, 3.0, 4.0, QImage::Format_RGB32, nullptr);
    paintPattern(image);
    EnhancementParams params;
    params.fourth = 9.0;
    image.setEnhancementParams(params);
    image.updateEnhancementBuffer();

    OpenImage other(1, 1, 0.0, 0.0, 0.0, 0.0, QImage::Format_ARGB32, nullptr);
    const GeoImage& source = image;
    GeoImage& result = (other = source);
    QCOMPARE(&result, &other);
    QVERIFY(other == image);
    QCOMPARE(other.constBits(), image.constBits());
    QCOMPARE(other.getBounds(), image.getBounds());
    QCOMPARE(other.enhancementParams.fourth, 9.0);
    QCOMPARE(other.enhancementBuffer, image.enhancementBuffer);
    other.enhancementBuffer = nullptr; // one owner is left
}

void GeoImageTest::theEnhancementBufferHoldsTheLowByteOfTheLineLength()
{
    OpenImage image(100, 2, 0.0, 0.0, 0.0, 0.0, QImage::Format_ARGB32, nullptr);
    QVERIFY(!image.enhancementBuffer);
    image.updateEnhancementBuffer();
    QVERIFY(image.enhancementBuffer);
    QCOMPARE(int(*image.enhancementBuffer), 400 & 0xff);

    unsigned char* first = image.enhancementBuffer;
    *first = 7;
    image.updateEnhancementBuffer();
    QCOMPARE(image.enhancementBuffer, first);
    QCOMPARE(int(*first), 7);
}

void GeoImageTest::anImageOfTheViewIsDrawnWholeAtItsPlace()
{
    const auto image = pattern(8, 6, 100.0, 60.0, 180.0, 0.0);
    const QImage painted = paintedBy(
        [&](QPainter& painter) { image->paint(painter, 3, 4, 8, 6, 100.0, 60.0, 180.0, 0.0); });
    QCOMPARE(painted, paintedBy([&](QPainter& painter) { painter.drawImage(3, 4, *image); }));
    QCOMPARE(painted.pixel(3, 4), colourOf(0, 0));
    QCOMPARE(painted.pixel(10, 9), colourOf(7, 5));
    QCOMPARE(recorded(*image, {QPoint(3, 4), QSize(8, 6), {100, 60, 180, 0}}),
             QStringList({QStringLiteral("3 4 8 6 from 0 0 8 6")}));
}

void GeoImageTest::anImageAtItsOwnResolutionIsDrawnUnscaledAtItsOffset_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("left");
    QTest::addColumn<double>("right");
    QTest::addColumn<int>("at");
    QTest::newRow("at a whole pixel") << 10 << 4.0 << 14.0 << 4;
    QTest::newRow("below the half it goes back") << 10 << 4.25 << 14.25 << 4;
    QTest::newRow("a half goes up") << 10 << 2.5 << 12.5 << 3;
    QTest::newRow("a negative position") << 10 << -3.0 << 7.0 << -3;
    QTest::newRow("a negative half goes away from zero") << 11 << -2.5 << 7.5 << -3;
    QTest::newRow("a small negative half goes away from zero") << 10 << -0.5 << 9.0 << -1;
}

void GeoImageTest::anImageAtItsOwnResolutionIsDrawnUnscaledAtItsOffset()
{
    QFETCH(int, width);
    QFETCH(double, left);
    QFETCH(double, right);
    QFETCH(int, at);
    // the same on both axes: the world's top is 20
    const auto image = pattern(width, width, left, 20.0 - left, right, 20.0 - right);
    QCOMPARE(paintedOnUnitCanvas(*image),
             paintedBy([&](QPainter& painter) { painter.drawImage(at, at, *image); }));
    QCOMPARE(recorded(*image, {QPoint(0, 0), QSize(20, 20), {0, 20, 20, 0}}),
             QStringList({QStringLiteral("%1 %1 %2 %2 from 0 0 %2 %2").arg(at).arg(width)}));
}

void GeoImageTest::anImageThatEndsAtZeroIsNotDrawn_data()
{
    QTest::addColumn<double>("right");
    QTest::addColumn<bool>("drawn");
    QTest::newRow("ending right of zero it is drawn") << 1.0 << true;
    QTest::newRow("ending left of zero it is drawn") << -1.0 << true;
    QTest::newRow("ending at zero it is not") << 0.0 << false;
    QTest::newRow("ending just right of zero it is not") << 0.25 << false;
    QTest::newRow("ending just left of zero it is not") << -0.25 << false;
    QTest::newRow("half a pixel right rounds away and is drawn") << 0.5 << true;
    QTest::newRow("half a pixel left rounds away and is drawn") << -0.5 << true;
}

void GeoImageTest::anImageThatEndsAtZeroIsNotDrawn()
{
    QFETCH(double, right);
    QFETCH(bool, drawn);
    const View view = {
        QPoint(-10, -10), QSize(30, 30), {-10, 30, 20, 0}}; // one unit per pixel, y from 20

    const auto byRight = pattern(4, 4, right - 8.0, 16.0, right, 8.0);
    QCOMPARE(!recorded(*byRight, view).isEmpty(), drawn);
    const auto byBottom = pattern(4, 4, 4.0, 20.0 - right + 8.0, 12.0, 20.0 - right);
    QCOMPARE(!recorded(*byBottom, view).isEmpty(), drawn);

    // it would show: the painter's origin lies inside the canvas
    const QImage painted = paintedBy([&](QPainter& painter) {
        painter.translate(10.0, 10.0);
        byRight->paint(painter, -10, -10, 30, 30, -10.0, 30.0, 20.0, 0.0);
    });
    QCOMPARE(painted != canvas(), drawn);
}

void GeoImageTest::aResampledImageIsCutToTheDevice_data()
{
    QTest::addColumn<QVector<double>>("bounds"); // of an image of 4 by 4 pixels
    QTest::addColumn<View>("view");
    QTest::addColumn<QString>("line");
    const View unit = {QPoint(0, 0), QSize(20, 20), {0, 20, 20, 0}};
    QTest::newRow("inside, it is drawn whole")
        << QVector<double>{4, 16, 12, 8} << unit << "4 4 8 8 from 0 0 4 4";
    QTest::newRow("each axis has its own scale")
        << QVector<double>{4, 16, 20, 14} << unit << "4 4 16 2 from 0 0 4 4";
    QTest::newRow("cut at the left and the top")
        << QVector<double>{-3, 23, 5, 15} << unit << "0 0 5 5 from 1.5 1.5 2.5 2.5";
    QTest::newRow("cut at the right and the bottom")
        << QVector<double>{15, 5, 23, -3} << unit << "15 15 5 5 from 0 0 2.5 2.5";
    QTest::newRow("cut on all sides")
        << QVector<double>{-10, 30, 30, -10} << unit << "0 0 20 20 from 1 1 2 2";
    QTest::newRow("cut to a device that does not begin at the origin")
        << QVector<double>{-2, 12, 14, -4} << View{QPoint(30, 40), QSize(10, 10), {0, 10, 10, 0}}
        << "30 40 10 10 from 0.5 0.5 2.5 2.5";
    QTest::newRow("a reduced image")
        << QVector<double>{4, 16, 6, 14} << unit << "4 4 2 2 from 0 0 4 4";
    QTest::newRow("the place is rounded before the cut")
        << QVector<double>{-2.5, 22.5, 5.5, 14.5} << unit
        << "0 0 6 6 from 1.333333 1.333333 2.666667 2.666667";
    QTest::newRow("a right size on one axis alone is resampled")
        << QVector<double>{4, 16, 8, 8} << unit << "4 4 4 8 from 0 0 4 4";
    QTest::newRow("a mirrored image has a negative width, for which the painter takes its own")
        << QVector<double>{12, 16, 4, 8} << unit << "12 4 4 8 from 0 0 4 4";
}

void GeoImageTest::aResampledImageIsCutToTheDevice()
{
    QFETCH(QVector<double>, bounds);
    QFETCH(View, view);
    QFETCH(QString, line);
    const auto image = pattern(4, 4, bounds[0], bounds[1], bounds[2], bounds[3]);
    QCOMPARE(recorded(*image, view), QStringList({line}));
}

void GeoImageTest::anEnlargedImageShowsBlocks()
{
    const auto image = pattern(4, 4, 2.0, 18.0, 14.0, 6.0); // three pixels each
    const QImage painted = paintedOnUnitCanvas(*image);
    for (int y = 0; y < canvasSize; ++y) {
        for (int x = 0; x < canvasSize; ++x) {
            const bool inside = x >= 2 && x < 14 && y >= 2 && y < 14;
            QCOMPARE(painted.pixel(x, y),
                     inside ? colourOf((x - 2) / 3, (y - 2) / 3) : background.rgba());
        }
    }
}

void GeoImageTest::anEnlargedImageBeginsInTheMiddleOfAPixel()
{
    const auto image = pattern(4, 4, -3.0, 23.0, 5.0, 15.0); // two pixels each, cut at 1.5
    const QImage painted = paintedOnUnitCanvas(*image);
    for (int y = 0; y < canvasSize; ++y) {
        for (int x = 0; x < canvasSize; ++x) {
            const bool inside = x < 5 && y < 5;
            QCOMPARE(painted.pixel(x, y),
                     inside ? colourOf((x + 3) / 2, (y + 3) / 2) : background.rgba());
        }
    }
}

void GeoImageTest::aReducedImageSkipsPixels()
{
    const auto image = pattern(9, 9, 3.0, 17.0, 6.0, 14.0); // a third of its size
    const QImage painted = paintedOnUnitCanvas(*image);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 3; ++x) {
            QCOMPARE(painted.pixel(3 + x, 3 + y), colourOf(3 * x + 1, 3 * y + 1));
        }
    }
    QCOMPARE(painted.pixel(6, 6), background.rgba());
}

void GeoImageTest::resamplingFollowsTheRenderHints()
{
    const auto image = pattern(4, 4, 2.0, 18.0, 14.0, 6.0);
    const QImage rough = paintedOnUnitCanvas(*image);
    const QImage smooth = paintedBy([&](QPainter& painter) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        image->paint(painter, 0, 0, canvasSize, canvasSize, 0.0, 20.0, 20.0, 0.0);
    });
    QVERIFY(rough != smooth);
}

void GeoImageTest::resamplingLeavesTheColoursToThePainter()
{
    const auto image = pattern(4, 4, 2.0, 18.0, 14.0, 6.0);
    RecordingDevice device;
    QPainter painter(&device);
    image->paint(painter, 0, 0, canvasSize, canvasSize, 0.0, 20.0, 20.0, 0.0);
    painter.end();
    QCOMPARE(device.engine.conversion, Qt::ImageConversionFlags(Qt::AutoColor));
}

void GeoImageTest::anImageOutsideTheViewLeavesTheCanvas_data()
{
    QTest::addColumn<QVector<double>>("bounds");
    QTest::newRow("left of it") << QVector<double>{-20, 16, -4, 8};
    QTest::newRow("above it") << QVector<double>{4, 44, 12, 28};
    QTest::newRow("right of it") << QVector<double>{24, 16, 32, 8};
    QTest::newRow("below it") << QVector<double>{4, -8, 12, -16};
    QTest::newRow("far out") << QVector<double>{1e15, 16, 2e15, 8};
}

void GeoImageTest::anImageOutsideTheViewLeavesTheCanvas()
{
    QFETCH(QVector<double>, bounds);
    const auto image = pattern(4, 4, bounds[0], bounds[1], bounds[2], bounds[3]);
    QCOMPARE(paintedOnUnitCanvas(*image), canvas());
}

void GeoImageTest::collapsedRectanglesDrawNothing_data()
{
    QTest::addColumn<QVector<double>>("bounds");
    QTest::addColumn<View>("view");
    const QVector<double> sound = {4, 16, 12, 8};
    QTest::newRow("a world without width")
        << sound << View{QPoint(0, 0), QSize(20, 20), {5, 20, 5, 0}};
    QTest::newRow("a world without height")
        << sound << View{QPoint(0, 0), QSize(20, 20), {0, 9, 20, 9}};
    QTest::newRow("a world that is the image's left edge")
        << sound << View{QPoint(0, 0), QSize(20, 20), {4, 16, 4, 16}};
    QTest::newRow("a device without size")
        << sound << View{QPoint(5, 5), QSize(0, 0), {0, 20, 20, 0}};
    QTest::newRow("an image without size")
        << QVector<double>{4, 16, 4, 16} << View{QPoint(0, 0), QSize(20, 20), {0, 20, 20, 0}};
    QTest::newRow("a world of NaN")
        << sound << View{QPoint(0, 0), QSize(20, 20), {qQNaN(), 20, qQNaN(), 0}};
    QTest::newRow("a device at the ends of the ints")
        << sound
        << View{QPoint(std::numeric_limits<int>::max(), std::numeric_limits<int>::max()),
                QSize(20, 20),
                {0, 20, 20, 0}};
}

void GeoImageTest::collapsedRectanglesDrawNothing()
{
    QFETCH(QVector<double>, bounds);
    QFETCH(View, view);
    const auto image = pattern(4, 4, bounds[0], bounds[1], bounds[2], bounds[3]);
    const QImage painted = paintedBy([&](QPainter& painter) {
        image->paint(painter, view.place.x(), view.place.y(), view.size.width(), view.size.height(),
                     view.world[0], view.world[1], view.world[2], view.world[3]);
    });
    QCOMPARE(painted, canvas());
}

void GeoImageTest::nullImagesDrawNothing()
{
    GeoImage image(QByteArray(), 0.0, 0.0, 0.0, 0.0, nullptr);
    image.tlx = 4.0;
    image.tly = 16.0;
    image.brx = 12.0;
    image.bry = 8.0;
    QCOMPARE(paintedOnUnitCanvas(image), canvas());
    const QImage collapsed = paintedBy([&](QPainter& painter) {
        image.paint(painter, 0, 0, canvasSize, canvasSize, 5.0, 5.0, 5.0, 5.0);
    });
    QCOMPARE(collapsed, canvas());
}

void GeoImageTest::blitDrawsTheSourceWholeAtThePixel()
{
    const auto source = pattern(4, 4, 1e6, 1e6, 2e6, 2e6); // its world plays no part
    GeoImage image(canvasSize, canvasSize, 0.0, 20.0, 20.0, 0.0, QImage::Format_ARGB32, nullptr);
    image.fill(background);

    image.blit(*source, -1, 3, nullptr);
    QCOMPARE(image.QImage::copy(),
             paintedBy([&](QPainter& painter) { painter.drawImage(-1, 3, *source); }));
}

void GeoImageTest::blitFillsFirst()
{
    const auto source = pattern(4, 4, 0.0, 0.0, 0.0, 0.0);
    GeoImage image(canvasSize, canvasSize, 0.0, 20.0, 20.0, 0.0, QImage::Format_ARGB32, nullptr);
    const QColor fill(Qt::darkGreen);

    image.blit(*source, 10, 3, &fill);
    QCOMPARE(image.QImage::copy(), paintedBy([&](QPainter& painter) {
                 painter.fillRect(0, 0, canvasSize, canvasSize, fill);
                 painter.drawImage(10, 3, *source);
             }));
    QCOMPARE(image.pixel(10, 3), colourOf(0, 0));
}

void GeoImageTest::copyPutsTheSourceWhereItsWorldIs()
{
    const auto source = pattern(4, 4, 105.0, 217.0, 109.0, 213.0);
    GeoImage image(canvasSize, canvasSize, 100.0, 220.0, 120.0, 200.0, QImage::Format_ARGB32,
                   nullptr);
    image.fill(background);

    image.copy(source.get(), nullptr);
    QCOMPARE(image.QImage::copy(),
             paintedBy([&](QPainter& painter) { painter.drawImage(5, 3, *source); }));
}

void GeoImageTest::copyFillsFirstAndResamples()
{
    const auto source = pattern(4, 4, 105.0, 217.0, 113.0, 209.0);
    GeoImage image(canvasSize, canvasSize, 100.0, 220.0, 120.0, 200.0, QImage::Format_ARGB32,
                   nullptr);
    QColor fill(Qt::darkGreen);

    image.copy(source.get(), &fill);
    QCOMPARE(image.pixel(4, 3), fill.rgba());
    QCOMPARE(image.pixel(5, 3), colourOf(0, 0));
    QCOMPARE(image.pixel(12, 10), colourOf(3, 3));
    QCOMPARE(image.pixel(13, 11), fill.rgba());
}

QTEST_GUILESS_MAIN(GeoImageTest)
#include "GeoImageTest.moc"
