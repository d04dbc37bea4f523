#include <QBitmap>
#include <QDirIterator>
#include <QIcon>
#include <QImage>
#include <QTest>

namespace {

struct Cursor
{
    const char* bitmap;
    const char* mask;
    QPoint hotSpot;
};

const Cursor cursors[] = {{"roamCur", "roamMask", {16, 16}},
                          {"roaming", "roamingMask", {16, 16}},
                          {"zoomCur", "zoomMask", {12, 11}},
                          {"zoomboxCur", "zoomboxMask", {2, 2}},
                          {"point", "pointMask", {0, 0}}};

const char* const treeIcons[] = {"home",
                                 "up",
                                 "image",
                                 "folder",
                                 "refresh",
                                 "web",
                                 "keys",
                                 "lock2",
                                 "properties",
                                 "server_add",
                                 "server_information",
                                 "server_unknown"};

const char* const toolbarIcons[] = {"arrow_down_blue",
                                    "arrow_left_blue",
                                    "arrow_right_blue",
                                    "arrow_up_blue",
                                    "camera2",
                                    "check",
                                    "compress",
                                    "copy",
                                    "disk_blue",
                                    "document_add",
                                    "document_delete",
                                    "document_new",
                                    "document_view",
                                    "fit_to_size",
                                    "folder_add",
                                    "go_to",
                                    "hand_point",
                                    "help",
                                    "help_web",
                                    "home",
                                    "link",
                                    "measure",
                                    "monitor",
                                    "navigate_down",
                                    "navigate_down2",
                                    "navigate_minus",
                                    "navigate_plus",
                                    "navigate_up",
                                    "navigate_up2",
                                    "pdf",
                                    "prefs",
                                    "printer",
                                    "printer3",
                                    "printer3_edit",
                                    "printer_information",
                                    "printer_view",
                                    "save_as",
                                    "select",
                                    "zoom",
                                    "zoom_1_to_1",
                                    "zoom_box"};

bool isBlack(const QImage& image, int x, int y)
{
    return qGray(image.pixel(x, y)) < 128;
}

} // namespace

class ResourcesTest : public QObject
{
    Q_OBJECT
private slots:
    void everyPictureIsThereInBothDensities_data();
    void everyPictureIsThereInBothDensities();
    void cursorsArePureBlackAndWhiteAndPointWithTheirHotSpot_data();
    void cursorsArePureBlackAndWhiteAndPointWithTheirHotSpot();
    void theTreeHoldsNothingElse();

private:
    QSet<QString> named() const;
};

QSet<QString> ResourcesTest::named() const
{
    QSet<QString> paths{":/resources/zoombox.png", ":/resources/zoombox@2x.png",
                        ":/resources/corvanegeospatial.png", ":/resources/corvanegeospatial@2x.png",
                        ":/resources/corvane.png"};
    for (const char* icon : treeIcons) {
        paths << QString(":/resources/%1.png").arg(icon)
              << QString(":/resources/%1@2x.png").arg(icon);
    }
    for (const char* icon : toolbarIcons) {
        paths << QString(":/resources/icons/24x24/%1.png").arg(icon)
              << QString(":/resources/icons/24x24/%1@2x.png").arg(icon);
    }
    for (const Cursor& cursor : cursors) {
        paths << QString(":/resources/Cursors/%1.png").arg(cursor.bitmap)
              << QString(":/resources/Cursors/%1.png").arg(cursor.mask);
    }
    return paths;
}

void ResourcesTest::everyPictureIsThereInBothDensities_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSize>("size");
    for (const char* icon : treeIcons) {
        QTest::newRow(icon) << QString(":/resources/%1").arg(icon) << QSize(24, 24);
    }
    for (const char* icon : toolbarIcons) {
        const QString path = QString(":/resources/icons/24x24/%1").arg(icon);
        QTest::newRow(qPrintable(path)) << path << QSize(24, 24);
    }
    QTest::newRow("crosshair") << ":/resources/zoombox" << QSize(33, 33);
    QTest::newRow("logo") << ":/resources/corvanegeospatial" << QSize(320, 120);
}

void ResourcesTest::everyPictureIsThereInBothDensities()
{
    QFETCH(QString, path);
    QFETCH(QSize, size);

    const QImage plain(path + ".png");
    QCOMPARE(plain.size(), size);
    QVERIFY(plain.hasAlphaChannel());
    int ink = 0;
    for (int y = 0; y < plain.height(); ++y) {
        for (int x = 0; x < plain.width(); ++x) {
            ink += qAlpha(plain.pixel(x, y)) > 128 ? 1 : 0;
        }
    }
    QVERIFY2(ink > size.width() * size.height() / 20, "the picture is as good as empty");

    const QImage dense(path + "@2x.png");
    QCOMPARE(dense.size(), size * 2);
    QCOMPARE(dense.devicePixelRatio(), 2.0);
    QVERIFY(!QIcon(path + ".png").pixmap(size).isNull());
}

void ResourcesTest::cursorsArePureBlackAndWhiteAndPointWithTheirHotSpot_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < 5; ++i) {
        QTest::newRow(cursors[i].bitmap) << i;
    }
}

void ResourcesTest::cursorsArePureBlackAndWhiteAndPointWithTheirHotSpot()
{
    QFETCH(int, index);
    const Cursor& cursor = cursors[index];
    const QString bitmapPath = QString(":/resources/Cursors/%1.png").arg(cursor.bitmap);
    const QString maskPath = QString(":/resources/Cursors/%1.png").arg(cursor.mask);

    const QImage bitmap = QBitmap(bitmapPath).toImage().convertToFormat(QImage::Format_ARGB32);
    const QImage mask = QBitmap(maskPath).toImage().convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(bitmap.size(), QSize(32, 32));
    QCOMPARE(mask.size(), QSize(32, 32));

    const QImage source(bitmapPath);
    int black = 0;
    int white = 0;
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            QVERIFY(source.pixel(x, y) == qRgb(0, 0, 0) ||
                    source.pixel(x, y) == qRgb(255, 255, 255));
            QVERIFY2(!isBlack(bitmap, x, y) || isBlack(mask, x, y), "ink outside the mask inverts");
            black += isBlack(bitmap, x, y) ? 1 : 0;
            white += !isBlack(bitmap, x, y) && isBlack(mask, x, y) ? 1 : 0;
        }
    }
    QVERIFY(black > 30);
    QVERIFY(white > 30);
    QVERIFY2(isBlack(mask, cursor.hotSpot.x(), cursor.hotSpot.y()),
             "the hot spot is off the drawing");
}

void ResourcesTest::theTreeHoldsNothingElse()
{
    QSet<QString> found;
    QDirIterator files(":/resources", QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        found << files.next();
    }
    QCOMPARE(found, named());
}

QTEST_MAIN(ResourcesTest)
#include "ResourcesTest.moc"
