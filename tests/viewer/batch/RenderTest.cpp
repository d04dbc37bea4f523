#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/support/TestImages.h>
#include <tests/viewer/support/ViewerRun.h>

#include <tests/support/FileContent.h>
#include <tests/support/PdfPixels.h>
#include <viewer/batch/InfoText.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// The two ends of a terminal.
class Terminal
{
public:
    Terminal() : master(::posix_openpt(O_RDWR | O_NOCTTY))
    {
        if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) {
            qFatal("there is no terminal");
        }
        // so that the end of the program is not that of the terminal, and of its text
        slave = ::open(::ptsname(master), O_RDWR | O_NOCTTY);
        ::fcntl(master, F_SETFL, O_NONBLOCK);
    }
    ~Terminal()
    {
        ::close(slave);
        ::close(master);
    }
    QString getName() const { return QString::fromLocal8Bit(::ptsname(master)); }
    void read()
    {
        char bytes[4096];
        for (auto count = ::read(master, bytes, sizeof bytes); count > 0;
             count = ::read(master, bytes, sizeof bytes))
        {
            text.append(bytes, int(count));
        }
    }

    QByteArray text; // that was read

private:
    int master;
    int slave = -1;
};

} // namespace

/// Pictures with a list of what they lack, and information in both forms.
class RenderTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void aWholePictureHasNoGaps();
    void whatDoesNotComeInTimeIsAGap_data();
    void whatDoesNotComeInTimeIsAGap();
    void whatCannotBeReadIsAGap_data();
    void whatCannotBeReadIsAGap();
    void aLayerThatFailsIsAGap();
    void aLayerOfAMapThatFailsIsAGap();
    void aHiddenLayerIsNoGap();
    void aSnapshotListsNoGaps();
    void whereNothingOpensNothingIsWritten();

    void aMapIsToldWithItsLayers();
    void aMapWithLayersThatFailTellsOfThem();
    void aMapThatCannotBeReadIsTold();
    void aTerminalShowsText();
    void aTerminalShowsJsonWhenAskedTo();
    void textHasALineForEachValue();

private:
    QString path(const QString& name) const { return folder.filePath(name); }
    QString write(const QString& name, const QByteArray& text) const;
    QString map(const QString& name, const QString& layers) const
    {
        return write(name, "<mapcanvas><bounds tlx=\"500000\" tly=\"4650000\" brx=\"501024\" "
                           "bry=\"4648976\"/><description>Shore</description><layers>" +
                               layers.toUtf8() + "</layers></mapcanvas>");
    }
    static QString layer(const QString& source, const QString& more = QString())
    {
        return "<layer class=\"Corvane::Map::GdalRasterLayer\"><datasource value=\"" + source +
               "\"/>" + more + "</layer>";
    }

    QTemporaryDir folder;
    QString picture;
};

QString RenderTest::write(const QString& name, const QByteArray& text) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        qFatal("cannot write %s", qPrintable(name));
    }
    return path(name);
}

void RenderTest::initTestCase()
{
    QVERIFY(folder.isValid());
    picture = path("out.png");
    TestImages::Layout layout;
    TestImages::writeRgb(path("plain.tif"), layout);
    layout.size = QSize(1024, 1024);
    layout.noise = true;
    layout.options = QStringList{"TILED=YES"};
    TestImages::writeRgb(path("large.tif"), layout);
    layout.options << "COMPRESS=DEFLATE";
    TestImages::writeRgb(path("packed.tif"), layout);
    // the last tiles of the file are no compressed data any more
    QByteArray packed = contentOf(path("packed.tif"));
    packed.replace(packed.size() - 20000, 20000, QByteArray(20000, '\x55'));
    write("damaged.tif", packed);
}

void RenderTest::cleanup()
{
    QFile::remove(picture);
}

void RenderTest::aWholePictureHasNoGaps()
{
    const Run run = runViewer({"--render", picture, "--size", "256x256", "--extent",
                               "500000,4650000,500512,4649488", path("plain.tif")});
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(QImage(picture).convertToFormat(QImage::Format_RGB32),
             TestImages::read(path("plain.tif"), QRect(0, 0, 256, 256), QSize(256, 256)));
}

void RenderTest::whatDoesNotComeInTimeIsAGap_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("of a picture") << "out.png";
    QTest::newRow("of a page") << "late.pdf";
}

void RenderTest::whatDoesNotComeInTimeIsAGap()
{
    QFETCH(QString, file);
    StallingServer server(contentOf(path("large.tif")), 16384);
    const Run run = runViewer({"--render", path(file), "--size", "256x256", "--timeout", "2",
                               server.addressOf("large.tif")});
    QVERIFY2(run.exitCode == 3, run.errors);
    QVERIFY2(run.errors.contains("corvane-viewer: gap: large.tif: not all has come, 0 %: "
                                 "500000,4650000,502048,4647952\n"),
             run.errors);
    QVERIFY(QFile::exists(path(file)));
}

void RenderTest::whatCannotBeReadIsAGap_data()
{
    whatDoesNotComeInTimeIsAGap_data();
}

void RenderTest::whatCannotBeReadIsAGap()
{
    QFETCH(QString, file);
    const Run run = runViewer({"--render", path(file), "--size", "1024x1024", path("damaged.tif")});
    QVERIFY2(run.exitCode == 3, run.errors);
    QVERIFY2(run.errors.contains("corvane-viewer: gap: damaged.tif: cannot be read: "), run.errors);
    QVERIFY2(run.errors.contains(",502048,4647952\n"), run.errors);  // the lower right corner
    QVERIFY2(!run.errors.contains(": 500000,4650000,"), run.errors); // and not the upper left
    QVERIFY(QFile::exists(path(file)));
}

void RenderTest::aLayerThatFailsIsAGap()
{
    const Run run =
        runViewer({"--render", picture, "--size", "64x64", path("plain.tif"), path("missing.tif")});
    QVERIFY2(run.exitCode == 3, run.errors);
    QVERIFY2(run.errors.contains("cannot open " + path("missing.tif").toUtf8() + ": "), run.errors);
    QCOMPARE(QImage(picture).size(), QSize(64, 64));
}

void RenderTest::aLayerOfAMapThatFailsIsAGap()
{
    const QString file = map("a.cmap", layer(path("plain.tif")) + layer("/missing/a.tif"));
    const Run run = runViewer({"--render", picture, "--size", "64x64", file});
    QVERIFY2(run.exitCode == 3, run.errors);
    QVERIFY2(run.errors.contains("cannot open /missing/a.tif: the file does not exist"),
             run.errors);
    QVERIFY2(run.errors.contains("gap: a.tif: not open: the file does not exist"), run.errors);
    QVERIFY(QFile::exists(picture));
}

void RenderTest::aHiddenLayerIsNoGap()
{
    const QString hidden = "<param name=\"Visible\" value=\"false\"/>";
    const QString file =
        map("b.cmap", layer(path("plain.tif")) + layer(path("damaged.tif"), hidden));
    const Run run = runViewer({"--render", picture, "--size", "64x64", file});
    QVERIFY2(run.exitCode == 0, run.errors);
    QCOMPARE(run.errors, QByteArray()); // nobody has read it
}

void RenderTest::aSnapshotListsNoGaps()
{
    const Run run = runViewer({"--snapshot", picture, "--size", "1024x1024", path("damaged.tif")});
    QVERIFY2(run.exitCode == 0, run.errors);
    QVERIFY2(!run.errors.contains("gap: "), run.errors);
}

void RenderTest::whereNothingOpensNothingIsWritten()
{
    const Run run = runViewer({"--render", picture, path("missing.tif")});
    QVERIFY2(run.exitCode == 2, run.errors);
    QVERIFY(!QFile::exists(picture));
}

void RenderTest::aMapIsToldWithItsLayers()
{
    const QString file = map("c.cmap", layer(path("plain.tif")) + layer(path("large.tif")));
    const Run run = runViewer({"--info", "--json", file, path("plain.tif")});
    QVERIFY2(run.exitCode == 0, run.errors);
    const QJsonArray files = QJsonDocument::fromJson(run.output).array();
    QCOMPARE(files.size(), 2);
    const QJsonObject told = files[0].toObject();
    QCOMPARE(told.keys(), QStringList({"bounds", "comments", "description", "file", "layers"}));
    QCOMPARE(told["file"].toString(), file);
    QCOMPARE(told["description"].toString(), QString("Shore"));
    QCOMPARE(told["bounds"].toObject(),
             (QJsonObject{
                 {"tlx", 500000.0}, {"tly", 4650000.0}, {"brx", 501024.0}, {"bry", 4648976.0}}));
    const QJsonArray layers = told["layers"].toArray();
    QCOMPARE(layers.size(), 2);
    QCOMPARE(layers[0].toObject()["size"].toObject(),
             (QJsonObject{{"width", 1024}, {"height", 768}}));
    QCOMPARE(layers[1].toObject()["properties"].toObject()["DataSource"].toString(),
             path("large.tif"));
    QCOMPARE(files[1].toObject()["file"].toString(), path("plain.tif"));
}

void RenderTest::aMapWithLayersThatFailTellsOfThem()
{
    const QString file = map("d.cmap", layer("/missing/a.tif") + "<layer class=\"Nobody\"/>" +
                                           layer(path("plain.tif")));
    const Run run = runViewer({"--info", file});
    QCOMPARE(run.exitCode, 2);
    const QJsonObject told = QJsonDocument::fromJson(run.output).array()[0].toObject();
    QCOMPARE(told["layers"].toArray().size(), 2);
    QCOMPARE(told["layers"].toArray()[0].toObject()["error"].toString(),
             QString("the file does not exist"));
    QVERIFY(!told["layers"].toArray()[1].toObject().contains("error"));
    QCOMPARE(told["problems"].toArray().size(), 2);
    QVERIFY(told["problems"].toArray()[1].toString().contains("Nobody"));
}

void RenderTest::aMapThatCannotBeReadIsTold()
{
    const Run run = runViewer({"--info", write("cut.cmap", "<mapcanvas>"), path("none.cmap")});
    QCOMPARE(run.exitCode, 2);
    const QJsonArray files = QJsonDocument::fromJson(run.output).array();
    QCOMPARE(files[0].toObject().keys(), QStringList({"error", "file"}));
    QVERIFY(files[0].toObject()["error"].toString().startsWith("line 1: "));
    QCOMPARE(files[1].toObject()["error"].toString(), QString("No such file or directory"));
}

void RenderTest::aTerminalShowsText()
{
    Terminal terminal;
    QProcess process;
    process.setStandardOutputFile(terminal.getName());
    process.start(CORVANE_VIEWER, {"--info", path("plain.tif")});
    QTRY_VERIFY_WITH_TIMEOUT(process.state() == QProcess::NotRunning, 60000);
    QCOMPARE(process.exitCode(), 0);
    terminal.read();
    QVERIFY2(terminal.text.startsWith(path("plain.tif").toUtf8() + "\r\n  bounds: tlx 500000, "),
             terminal.text);
    QVERIFY2(terminal.text.contains("\r\n  size: width 1024, height 768\r\n"), terminal.text);
}

void RenderTest::aTerminalShowsJsonWhenAskedTo()
{
    Terminal terminal;
    QProcess process;
    process.setStandardOutputFile(terminal.getName());
    process.start(CORVANE_VIEWER, {"--info", "--json", path("plain.tif")});
    QTRY_VERIFY_WITH_TIMEOUT(process.state() == QProcess::NotRunning, 60000);
    terminal.read();
    QCOMPARE(QJsonDocument::fromJson(terminal.text).array().size(), 1);
}

void RenderTest::textHasALineForEachValue()
{
    const QJsonObject layer{{"class", "A"}, {"bounds", QJsonValue()}};
    const QJsonArray files{
        QJsonObject{{"file", "/a.cmap"},
                    {"valid", true},
                    {"text", "two\nlines"},
                    {"bands", QJsonArray{1, 2, 3.5}},
                    {"bounds", QJsonObject{{"tlx", 0}, {"tly", 1e7}, {"brx", 2}, {"bry", -1}}},
                    {"layers", QJsonArray{layer, layer}},
                    {"none", QJsonArray()}},
        QJsonObject{{"file", "/b.tif"}, {"error", "damaged"}}};
    QCOMPARE(Corvane::Viewer::infoText(files),
             QString("/a.cmap\n"
                     "  bands: 1, 2, 3.5\n"
                     "  bounds: tlx 0, tly 10000000, brx 2, bry -1\n"
                     "  layers:\n"
                     "    -:\n"
                     "      bounds: -\n"
                     "      class: A\n"
                     "    -:\n"
                     "      bounds: -\n"
                     "      class: A\n"
                     "  none:\n"
                     "  text: two lines\n"
                     "  valid: yes\n"
                     "/b.tif\n"
                     "  error: damaged\n"));
    QCOMPARE(Corvane::Viewer::infoText(QJsonArray()), QString());
}

QTEST_GUILESS_MAIN(RenderTest)
#include "RenderTest.moc"
