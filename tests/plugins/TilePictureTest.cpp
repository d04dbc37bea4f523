#include <plugins/common/TilePicture.h>

#include <gdal_priv.h>

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <vector>

using namespace Corvane::Map;

namespace {

QImage pattern(QImage::Format format)
{
    QImage picture(200, 120, format);
    if (format == QImage::Format_Grayscale8) {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                picture.scanLine(y)[x] = uchar(x);
            }
        }
        return picture;
    }
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            picture.setPixelColor(x, y, QColor(x, 2 * y, 255 - x));
        }
    }
    return picture;
}

QByteArray fileOf(const QImage& picture, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, format, 90);
    return bytes;
}

/// The largest difference of a channel.
int difference(const QImage& one, const QImage& other)
{
    int most = one.size() == other.size() ? 0 : 255;
    for (int y = 0; y < one.height() && most < 255; ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QColor a = one.pixelColor(x, y);
            const QColor b = other.pixelColor(x, y);
            most = std::max({most, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                             std::abs(a.blue() - b.blue())});
        }
    }
    return most;
}

} // namespace

/// What servers send, made into tiles.
class TilePictureTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void jpegIsWhatThePictureReaderMakesOfIt_data();
    void jpegIsWhatThePictureReaderMakesOfIt();
    void jpegOfInksIsRead();
    void pngKeepsItsTransparency();
    void halfAFileIsDamaged_data();
    void halfAFileIsDamaged();
    void aRemarkAfterTheEndDoesNoHarm();
    void bytesThatAreWrongMakeNoCrash();
    void aHugePictureIsRefused_data();
    void aHugePictureIsRefused();
    void whatIsNoPictureIsRefused();
};

void TilePictureTest::initTestCase()
{
    GDALAllRegister();
}

void TilePictureTest::jpegIsWhatThePictureReaderMakesOfIt_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::newRow("colour") << pattern(QImage::Format_RGB32);
    QTest::newRow("grey") << pattern(QImage::Format_Grayscale8);
    QTest::newRow("an odd size") << pattern(QImage::Format_RGB32).copy(0, 0, 37, 1);
}

void TilePictureTest::jpegIsWhatThePictureReaderMakesOfIt()
{
    QFETCH(QImage, picture);
    const QByteArray file = fileOf(picture, "jpeg");
    QString error;
    const QImage tile = decodeTile(file, "image/jpeg", &error);
    QCOMPARE(error, QString());
    QCOMPARE(tile.format(), QImage::Format_RGB32);
    QCOMPARE(tile.size(), picture.size());
    QVERIFY(difference(tile, QImage::fromData(file)) <= 2);
    QCOMPARE(qAlpha(tile.pixel(0, 0)), 255);
}

void TilePictureTest::jpegOfInksIsRead()
{
    const QTemporaryDir folder;
    const QByteArray path = folder.filePath("inks.jpg").toUtf8();
    GDALDataset* const memory =
        GetGDALDriverManager()->GetDriverByName("MEM")->Create("", 64, 48, 4, GDT_Byte, nullptr);
    for (int band = 1; band <= 4; ++band) {
        QVERIFY(memory->GetRasterBand(band)->Fill(band * 20) == CE_None);
        memory->GetRasterBand(band)->SetColorInterpretation(
            GDALColorInterp(GCI_CyanBand + band - 1));
    }
    GDALClose(GetGDALDriverManager()->GetDriverByName("JPEG")->CreateCopy(
        path.constData(), memory, FALSE, nullptr, nullptr, nullptr));
    GDALClose(memory);
    QFile file(folder.filePath("inks.jpg"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QString error;
    const QImage tile = decodeTile(bytes, "image/jpeg", &error);
    QCOMPARE(error, QString());
    QCOMPARE(tile, QImage::fromData(bytes).convertToFormat(QImage::Format_RGB32));
}

void TilePictureTest::pngKeepsItsTransparency()
{
    QImage picture = pattern(QImage::Format_ARGB32);
    picture.setPixelColor(3, 4, QColor(200, 100, 50, 128));
    QString error;
    const QImage tile = decodeTile(fileOf(picture, "png"), "image/png", &error);
    QCOMPARE(tile.format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(tile, picture.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

void TilePictureTest::halfAFileIsDamaged_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("jpeg") << QByteArray("jpeg");
    QTest::newRow("png") << QByteArray("png");
}

void TilePictureTest::halfAFileIsDamaged()
{
    QFETCH(QByteArray, format);
    const QByteArray file = fileOf(pattern(QImage::Format_RGB32), format.constData());
    for (const int part : {2, 3, 10}) {
        QString error;
        QVERIFY(
            decodeTile(file.left(file.size() - file.size() / part), QByteArray(), &error).isNull());
        QCOMPARE(error, QString("the picture is damaged"));
    }
}

void TilePictureTest::aRemarkAfterTheEndDoesNoHarm()
{
    const QByteArray file = fileOf(pattern(QImage::Format_RGB32), "jpeg") + "<!-- 3 ms -->";
    QString error;
    QVERIFY(!decodeTile(file, "image/jpeg", &error).isNull());
}

void TilePictureTest::bytesThatAreWrongMakeNoCrash()
{
    const QByteArray file = fileOf(pattern(QImage::Format_RGB32), "jpeg");
    for (int at = 2; at < file.size(); at += 7) {
        QByteArray damaged = file;
        damaged[at] = char(damaged.at(at) ^ 0x5a);
        QString error;
        const QImage tile = decodeTile(damaged, "image/jpeg", &error);
        QVERIFY(tile.isNull() == !error.isEmpty());
    }
}

void TilePictureTest::aHugePictureIsRefused_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("jpeg") << QByteArray("jpeg");
    QTest::newRow("png") << QByteArray("png");
}

void TilePictureTest::aHugePictureIsRefused()
{
    QFETCH(QByteArray, format);
    QImage picture(2049, 4, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    QString error;
    QVERIFY(decodeTile(fileOf(picture, format.constData()), QByteArray(), &error).isNull());
    QCOMPARE(error, QString("the picture is too large, 2049 x 4 pixels"));
}

void TilePictureTest::whatIsNoPictureIsRefused()
{
    QString error;
    QVERIFY(decodeTile("<html>", "text/html; charset=utf-8", &error).isNull());
    QCOMPARE(error, QString("the server sent text/html; charset=utf-8 instead of a picture"));
    QVERIFY(decodeTile("<html>", "image/png", &error).isNull());
    QCOMPARE(error, QString("what the server sent is no picture"));
    QVERIFY(decodeTile("\xff\xd8\xff", "image/jpeg", &error).isNull());
    QVERIFY(decodeTile(QByteArray(), "image/jpeg", &error).isNull());
}

QTEST_GUILESS_MAIN(TilePictureTest)
#include "TilePictureTest.moc"
