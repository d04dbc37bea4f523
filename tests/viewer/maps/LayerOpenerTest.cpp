#include <viewer/maps/LayerOpener.h>
#include <viewer/batch/PluginListing.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>

#include <QDir>
#include <QFile>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

class LayerOpenerTest : public QObject
{
    Q_OBJECT
private slots:
    void sourcesFindTheirPlugin_data();
    void sourcesFindTheirPlugin();
    void sourcesThatNobodyOpensGiveTheReason_data();
    void sourcesThatNobodyOpensGiveTheReason();
    void aStreamedImageIsTheImageServersAlone();
    void credentialsAreShownNowhere_data();
    void credentialsAreShownNowhere();
    void nothingIsAnnouncedFromWithinStart();
    void theLayerIsHandedOverOnce();
    void aFileIsGivenToTheLayerWithItsWholePath();
    void aLayerIsCalledLikeItsSource_data();
    void aLayerIsCalledLikeItsSource();
    void deletingTheOpenerGivesUp();
    void pluginsAreListedWithTheirFiles();
};

void LayerOpenerTest::sourcesFindTheirPlugin_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("className");

    QTest::newRow("the plugin that claims the suffix") << "eager-now.egr"
                                                       << "EagerLayer";
    QTest::newRow("the same in capitals") << "late-now.LTE"
                                          << "LateLayer";
    QTest::newRow("a layer that opens later") << "late-later.lte"
                                              << "LateLayer";
    QTest::newRow("another plugin where the one with the suffix refuses") << "late-now.egr"
                                                                          << "LateLayer";
    QTest::newRow("another plugin where the one with the suffix fails later")
        << "late-fails-eager-now.lte"
        << "EagerLayer";
    QTest::newRow("another plugin where the one with the suffix stays invalid")
        << "eager-silent-late-later.egr"
        << "LateLayer";
    QTest::newRow("every plugin for a suffix that nobody claims") << "eager-now.xyz"
                                                                  << "EagerLayer";
    QTest::newRow("every plugin for a file without a suffix") << "late-later"
                                                              << "LateLayer";
    QTest::newRow("a folder") << "/folder/eager-now/"
                              << "EagerLayer";
    QTest::newRow("the suffix of an address without its query")
        << "https://host/late-now.lte?key=a.egr"
        << "LateLayer";
    QTest::newRow("an object store") << "s3://bucket/eager-now.egr"
                                     << "EagerLayer";
    QTest::newRow("a virtual file") << "/vsizip/a.zip/eager-now.egr"
                                    << "EagerLayer";
}

void LayerOpenerTest::sourcesFindTheirPlugin()
{
    QFETCH(QString, source);
    LayerOpener opener(source);
    QSignalSpy finished(&opener, &LayerOpener::finished);
    opener.start();
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(finished.first().first().toBool(), true);
    QCOMPARE(opener.getReason(), QString());

    const auto layer = opener.takeLayer();
    QVERIFY(layer->isValid());
    QTEST(QString(layer->metaObject()->className()), "className");
    QCOMPARE(layer->getDataSource(), source);
}

void LayerOpenerTest::sourcesThatNobodyOpensGiveTheReason_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("reason");

    QTest::newRow("that of the plugin with the suffix") << "x.egr"
                                                        << "eager refuses";
    QTest::newRow("that of the other plugin with its suffix") << "x.lte"
                                                              << "late refuses";
    QTest::newRow("that of a failure that came later") << "late-fails.lte"
                                                       << "late failed later";
    QTest::newRow("that of another plugin where the first gave none") << "eager-silent.egr"
                                                                      << "late refuses";
}

void LayerOpenerTest::sourcesThatNobodyOpensGiveTheReason()
{
    QFETCH(QString, source);
    LayerOpener opener(source);
    QSignalSpy finished(&opener, &LayerOpener::finished);
    opener.start();
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(finished.first().first().toBool(), false);
    QTEST(opener.getReason(), "reason");
    QVERIFY(!opener.takeLayer());
}

// Any other plugin would tell of the password in its messages; here that of image servers is missing.
void LayerOpenerTest::aStreamedImageIsTheImageServersAlone()
{
    for (const char* source :
         {"zwtp://host/eager-now.egr|anna|s3cret", "ZWTPS://host/late-now.lte"}) {
        LayerOpener opener(source);
        opener.start();
        QTRY_VERIFY(opener.isFinished());
        QVERIFY(!opener.takeLayer());
        QCOMPARE(opener.getReason(), QString("no plugin reads it"));
        QVERIFY(!opener.getSource().contains("s3cret"));
    }
}

void LayerOpenerTest::credentialsAreShownNowhere_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("name");
    QTest::newRow("streaming") << "zwtp://host/a/b.jp2|anna|p/w"
                               << "zwtp://host/a/b.jp2"
                               << "b.jp2";
    QTest::newRow("http") << "HTTPS://host/a/b.jp2|anna|secret"
                          << "HTTPS://host/a/b.jp2"
                          << "b.jp2";
    QTest::newRow("without") << "zwtp://host/b.jp2"
                             << "zwtp://host/b.jp2"
                             << "b.jp2";
    QTest::newRow("a bar in a file's name") << "/data/a|b.tif"
                                            << "/data/a|b.tif"
                                            << "a|b.tif";
}

void LayerOpenerTest::credentialsAreShownNowhere()
{
    QFETCH(QString, source);
    QTEST(LayerOpener(source).getSource(), "shown");
    QTEST(LayerOpener::nameOf(source), "name");
}

void LayerOpenerTest::nothingIsAnnouncedFromWithinStart()
{
    LayerOpener opener("eager-now.egr");
    QSignalSpy finished(&opener, &LayerOpener::finished);
    opener.start();
    QCOMPARE(finished.count(), 0);
    QVERIFY(!opener.isFinished());
    QVERIFY(!opener.takeLayer());
    QTRY_COMPARE(finished.count(), 1);
    QVERIFY(opener.isFinished());
}

void LayerOpenerTest::theLayerIsHandedOverOnce()
{
    LayerOpener opener("eager-now.egr");
    opener.start();
    QTRY_VERIFY(opener.isFinished());
    QVERIFY(opener.takeLayer());
    QVERIFY(!opener.takeLayer());
}

void LayerOpenerTest::aFileIsGivenToTheLayerWithItsWholePath()
{
    QTemporaryDir folder;
    QFile file(folder.filePath("eager-now.egr"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString relative = QDir::current().relativeFilePath(file.fileName());
    QVERIFY(QDir::isRelativePath(relative));

    LayerOpener opener(relative);
    opener.start();
    QTRY_VERIFY(opener.isFinished());
    QCOMPARE(opener.takeLayer()->getDataSource(), file.fileName());
    QCOMPARE(opener.getSource(), relative);
}

void LayerOpenerTest::aLayerIsCalledLikeItsSource_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("name");

    QTest::newRow("a file") << "/data/eager-now.egr"
                            << "eager-now.egr";
    QTest::newRow("a folder") << "/data/eager-now/"
                              << "eager-now";
    QTest::newRow("an address") << "https://host/a/eager-now.egr?k=v"
                                << "eager-now.egr";
    QTest::newRow("a local address") << "file:///data/eager-now.egr"
                                     << "eager-now.egr";
    QTest::newRow("an address with nothing behind the host") << "http://eager-now"
                                                             << "http://eager-now";
}

void LayerOpenerTest::aLayerIsCalledLikeItsSource()
{
    QFETCH(QString, source);
    LayerOpener opener(source);
    opener.start();
    QTRY_VERIFY(opener.isFinished());
    QTEST(opener.takeLayer()->getDescription(), "name");
}

void LayerOpenerTest::deletingTheOpenerGivesUp()
{
    auto opener = std::make_unique<LayerOpener>("late-later.lte");
    QSignalSpy finished(opener.get(), &LayerOpener::finished);
    opener->start();
    QCoreApplication::sendPostedEvents(opener.get(), QEvent::MetaCall);
    QVERIFY(!opener->isFinished()); // the layer has its source, and waits
    opener.reset();
    QCoreApplication::processEvents();
    QCOMPARE(finished.count(), 0);
}

void LayerOpenerTest::pluginsAreListedWithTheirFiles()
{
    const QString folder = QCoreApplication::applicationDirPath() + "/tvviewerplugins/";
    QStringList lines = listPlugins();
    lines.sort(); // the order is the file system's
    QCOMPARE(lines,
             QStringList({"EagerLayer\t1.5\tEager images (*.egr)\t" + folder + "eager.so",
                          "LateLayer\t2.5\tLate images (*.lte *.ltx)\t" + folder + "late.so"}));
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Corvane Viewer Test");
    LayerOpenerTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "LayerOpenerTest.moc"
