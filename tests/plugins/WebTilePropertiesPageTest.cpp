#include <plugins/webtiles/WebTilePropertiesPage.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/WebTileTools.h>

#include <plugins/common/TileCache.h>
#include <plugins/common/WebClock.h>
#include <plugins/webtiles/WebTileLayer.h>

#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QLoggingCategory>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr qint64 start = 1700000000000; // milliseconds since 1970, where the clock stands
constexpr int generous = 60000;         // milliseconds
constexpr int tileEdge = 256;
constexpr PixelView oneTile{tileEdge - 2, tileEdge - 2, tileEdge + 1, 1, 1.0}; // column 1, row 0

QString timeAfter(qint64 milliseconds)
{
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(start + milliseconds).time(),
                              "HH:mm:ss");
}

} // namespace

/// The page "Web Tiles" of the layer properties.
class WebTilePropertiesPageTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void showsWhereTheTilesComeFrom();
    void appliesWhatWasChanged();
    void whatWasNotChangedStaysTheSources();
    void theCoarsestZoomIsNeverFinerThanTheFinest();
    void showsHowTheServerIsDoing();
    void aSlowServerIsCalledSlow();
    void aServerThatIsLeftAloneIsWaitedFor();
    void retryAsksAtOnce();
    void retryOpensASourceThatDidNotOpen();
    void theCacheIsCountedAndCleared();
    void aCacheThatIsOffSaysSo();
    void isDisabledWithoutWebTiles();
    void survivesTheLayersEnd();

private:
    template <typename Widget>
    Widget* find(const char* name) const
    {
        return page->findChild<Widget*>(name);
    }
    QString state() const
    {
        page->showState();
        return find<QLabel>("stateLabel")->text();
    }
    void openWith(const QString& source);

    QTemporaryDir folder;
    std::unique_ptr<TileServer> server;
    std::unique_ptr<WebTileLayer> layer;
    std::unique_ptr<WebTilePropertiesPage> page;
};

void WebTilePropertiesPageTest::init()
{
    WebClock::standAt(start);
    TileCache::instance().setFolder(QString(), 0);
    server = std::make_unique<TileServer>();
    layer = std::make_unique<WebTileLayer>();
    page = std::make_unique<WebTilePropertiesPage>();
    openWith(server->tiles());
}

void WebTilePropertiesPageTest::cleanup()
{
    page.reset();
    layer.reset();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    WebClock::standAt(-1);
}

void WebTilePropertiesPageTest::openWith(const QString& source)
{
    layer->setMinZoom(2);
    layer->setMaxZoom(6);
    layer->setAttribution("town office");
    layer->setDataSource(source);
    page->setLayer(layer.get());
}

void WebTilePropertiesPageTest::showsWhereTheTilesComeFrom()
{
    QVERIFY(page->isEnabled());
    QCOMPARE(page->windowTitle(), QString("Web Tiles"));
    QCOMPARE(find<QLineEdit>("urlLineEdit")->text(), server->tiles());
    QVERIFY(find<QLineEdit>("urlLineEdit")->isReadOnly());
    QCOMPARE(find<QLineEdit>("attributionLineEdit")->text(), QString("town office"));
    QCOMPARE(find<QSpinBox>("minZoomSpinBox")->value(), 2);
    QCOMPARE(find<QSpinBox>("maxZoomSpinBox")->value(), 6);
    QCOMPARE(find<QSpinBox>("maxZoomSpinBox")->maximum(), 22);
    QCOMPARE(state(), QString("not asked yet"));
    QVERIFY(!find<QPushButton>("retryButton")->isEnabled());
}

void WebTilePropertiesPageTest::appliesWhatWasChanged()
{
    find<QLineEdit>("attributionLineEdit")->setText("by somebody else");
    find<QSpinBox>("minZoomSpinBox")->setValue(3);
    find<QSpinBox>("maxZoomSpinBox")->setValue(9);
    QCOMPARE(layer->getMaxZoom(), 6);
    auto* const offered = static_cast<ILayerPropertiesWidget*>(
        page->qt_metacast("com.corvane.viewer.ILayerPropertiesWidget/1.0"));
    QVERIFY(offered);
    offered->apply();
    QCOMPARE(layer->getAttribution(), QString("by somebody else"));
    QCOMPARE(layer->getMinZoom(), 3);
    QCOMPARE(layer->getMaxZoom(), 9);
}

void WebTilePropertiesPageTest::whatWasNotChangedStaysTheSources()
{
    QFile file(folder.filePath("streets.webtiles"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<webtiles url=\"http://example.org/{z}/{x}/{y}.png\" minzoom=\"1\" maxzoom=\"14\""
               " attribution=\"&lt;b&gt;town&lt;/b&gt; office\"/>");
    file.close();
    WebTileLayer preset;
    preset.setProgressive(false);
    QVERIFY(preset.setDataSource(file.fileName()));
    page->setLayer(&preset);
    QCOMPARE(find<QLineEdit>("urlLineEdit")->text(), QString("http://example.org/{z}/{x}/{y}.png"));
    QCOMPARE(find<QLineEdit>("attributionLineEdit")->text(), QString("town office"));
    find<QSpinBox>("minZoomSpinBox")->setValue(4);
    page->apply();
    QVERIFY(preset.setDataSource("http://example.org/{z}/{x}/{y}.png"));
    QCOMPARE(preset.getMinZoom(), 4);
    QCOMPARE(preset.getMaxZoom(), 19); // as without the preset
    QCOMPARE(preset.getAttribution(), QString());
}

void WebTilePropertiesPageTest::theCoarsestZoomIsNeverFinerThanTheFinest()
{
    find<QSpinBox>("minZoomSpinBox")->setValue(12);
    QCOMPARE(find<QSpinBox>("maxZoomSpinBox")->value(), 12);
    find<QSpinBox>("maxZoomSpinBox")->setValue(5);
    QCOMPARE(find<QSpinBox>("maxZoomSpinBox")->value(), 12);
}

void WebTilePropertiesPageTest::showsHowTheServerIsDoing()
{
    complete(*layer, oneTile);
    QCOMPARE(state(), QString("reachable"));

    server->onTile([](const TileNumbers&) { return HttpReply::withStatus(500); });
    layer->setProgressive(true);
    PixelView{tileEdge - 2, tileEdge - 2, 5 * tileEdge + 1, 1, 1.0}.set(*layer);
    QTRY_COMPARE_WITH_TIMEOUT(state(), QString("failed: the server answers with status 500"),
                              generous);
    QTRY_VERIFY_WITH_TIMEOUT((page->showState(), find<QPushButton>("retryButton")->isEnabled()),
                             generous);
}

void WebTilePropertiesPageTest::aSlowServerIsCalledSlow()
{
    server->onTile([](const TileNumbers& tile) {
        WebClock::standAt(start + 2500); // as much later it answers
        return tileReply(tile);
    });
    complete(*layer, oneTile);
    QCOMPARE(state(), QString("slow: 2.5 seconds for an answer"));
    for (int column = 2; column < 6; ++column) { // the rest comes at once
        complete(*layer, {tileEdge - 2, tileEdge - 2, column * tileEdge + 1, 1, 1.0});
    }
    QCOMPARE(state(), QString("reachable"));
}

void WebTilePropertiesPageTest::aServerThatIsLeftAloneIsWaitedFor()
{
    server->onTile(
        [](const TileNumbers&) { return HttpReply::withStatus(503).header("Retry-After", "90"); });
    oneTile.set(*layer);
    QTRY_COMPARE_WITH_TIMEOUT(
        state(), "waiting until " + timeAfter(90000) + ": the server answers with status 503",
        generous);
}

void WebTilePropertiesPageTest::retryAsksAtOnce()
{
    server->onTile(
        [](const TileNumbers&) { return HttpReply::withStatus(503).header("Retry-After", "90"); });
    oneTile.set(*layer);
    QTRY_VERIFY_WITH_TIMEOUT((page->showState(), find<QPushButton>("retryButton")->isEnabled()),
                             generous);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    server->onTile([](const TileNumbers& tile) { return tileReply(tile); });
    find<QPushButton>("retryButton")->click();
    QTRY_COMPARE_WITH_TIMEOUT(int(layer->getPercentComplete()), 100, generous);
    QCOMPARE(state(), QString("reachable"));
    QVERIFY(!find<QPushButton>("retryButton")->isEnabled());
}

void WebTilePropertiesPageTest::retryOpensASourceThatDidNotOpen()
{
    const QString path = folder.filePath("late.webtiles");
    layer->setProgressive(false);
    openWith(path);
    QVERIFY(!layer->isValid());
    QVERIFY2(state().startsWith("not open: "), qPrintable(state()));
    QCOMPARE(find<QLineEdit>("urlLineEdit")->text(), path);
    QVERIFY(!find<QSpinBox>("maxZoomSpinBox")->isEnabled());

    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<webtiles url=\"http://example.org/{z}/{x}/{y}.png\"/>");
    file.close();
    find<QPushButton>("retryButton")->click();
    QTRY_VERIFY_WITH_TIMEOUT(layer->isValid(), 30000);
    QCOMPARE(state(), QString("not asked yet"));
    QCOMPARE(find<QLineEdit>("urlLineEdit")->text(), QString("http://example.org/{z}/{x}/{y}.png"));
    QVERIFY(find<QSpinBox>("maxZoomSpinBox")->isEnabled());
}

void WebTilePropertiesPageTest::theCacheIsCountedAndCleared()
{
    TileCache::instance().setFolder(folder.filePath("cache"), 1 << 24);
    server->onTile([](const TileNumbers& tile) {
        return tileReply(tile).header("Cache-Control", "max-age=600");
    });
    complete(*layer, oneTile);
    const auto* const label = find<QLabel>("cacheLabel");
    page->setLayer(layer.get());
    const qint64 bytes = TileCache::instance().fill().bytes;
    QVERIFY(bytes > 0);
    QTRY_COMPARE_WITH_TIMEOUT(label->text(), QLocale().formattedDataSize(bytes) + " of 16.00 MiB",
                              generous);

    find<QPushButton>("clearCacheButton")->click();
    QTRY_COMPARE_WITH_TIMEOUT(label->text(), QString("0 bytes of 16.00 MiB"), generous);
    QVERIFY(!find<QPushButton>("clearCacheButton")->isEnabled());
    QCOMPARE(TileCache::instance().fill().bytes, qint64(0));
}

void WebTilePropertiesPageTest::aCacheThatIsOffSaysSo()
{
    QTRY_COMPARE_WITH_TIMEOUT(find<QLabel>("cacheLabel")->text(), QString("switched off"),
                              generous);
    QVERIFY(!find<QPushButton>("clearCacheButton")->isEnabled());
}

void WebTilePropertiesPageTest::isDisabledWithoutWebTiles()
{
    WebTilePropertiesPage other;
    other.setLayer(nullptr);
    QVERIFY(!other.isEnabled());
    other.apply();
}

void WebTilePropertiesPageTest::survivesTheLayersEnd()
{
    layer.reset();
    page->showState();
    page->apply();
    find<QPushButton>("retryButton")->click();
    QVERIFY(page->isEnabled());
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    QLocale::setDefault(QLocale::c());
    Application application(argc, argv, "WebTilePropertiesPageTest");
    WebTilePropertiesPageTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WebTilePropertiesPageTest.moc"
