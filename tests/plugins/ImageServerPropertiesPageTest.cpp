#include <plugins/imageserver/ImageServerPropertiesPage.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <plugins/common/TileCache.h>
#include <plugins/imageserver/ImageGrid.h>
#include <plugins/imageserver/ImageServerLayer.h>
#include <plugins/imageserver/ImageServerPlugin.h>
#include <plugins/imageserver/ServerLogins.h>

#include <corvane/core/Application.h>
#include <corvane/core/LogMessageHandler.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QLoggingCategory>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int generous = 60000; // milliseconds
constexpr PixelView wholeImage{300, 200, 0, 0, 1.0};

class Lines : public LogMessageHandler
{
public:
    void logMessage(const QString& message, LogLevel, const QDateTime&) override
    {
        text += message + '\n';
    }
    void setLogLevel(LogLevel) override {}
    LogLevel getLogLevel() override { return LogLevel::Debug; }

    QString text; // of the GUI thread, where layers log
};

} // namespace

/// The page "Image Server" of the layer properties, with the real server program.
class ImageServerPropertiesPageTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void thePluginOffersThePage();
    void showsWhereTheImageLiesAndWhatTheServerSaysOfIt();
    void aDocumentsLayerIsGivenItsPassword();
    void aWrongPasswordIsToldOf();
    void thePasswordStandsNowhere();
    void applyingWithoutAChangeAsksNobody();
    void anEmptyPasswordLeavesTheOneThatIsKnown();
    void anotherUserGoesInWithTheirPassword();
    void tryAgainOpensWhatDidNotOpen();
    void whatComesFromTheServerIsShownAsItIs();
    void everyFieldHasAName();
    void isDisabledWithoutALayerOfAServer();
    void survivesTheLayersEnd();

private:
    template <typename Widget>
    Widget* find(const char* name) const
    {
        return page->findChild<Widget*>(name);
    }
    QString text(const char* label) const { return find<QLabel>(label)->text(); }
    void type(const char* name, const QString& words) const;
    void startServer(bool isProtected);
    void loadFromDocument(const QString& user);

    std::unique_ptr<QTemporaryDir> base;
    std::unique_ptr<ServerProcess> server;
    std::unique_ptr<ImageServerLayer> layer;
    std::unique_ptr<ImageServerPropertiesPage> page;
};

void ImageServerPropertiesPageTest::initTestCase()
{
    TileCache::instance().setFolder(QString(), 0);
}

void ImageServerPropertiesPageTest::init()
{
    base = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkpath(base->filePath("images")));
    RasterRecipe recipe;
    recipe.size = QSize(1500, 1100);
    QVERIFY(makeRaster(base->filePath("images/a.tif"), recipe));
    QFile password(base->filePath("password"));
    QVERIFY(password.open(QIODevice::WriteOnly));
    password.write("sesame|open\n");
    ServerLogins::forgetAll();
    layer = std::make_unique<ImageServerLayer>();
    layer->setProgressive(false); // it opens before anything goes on
    page = std::make_unique<ImageServerPropertiesPage>();
}

void ImageServerPropertiesPageTest::cleanup()
{
    page.reset();
    layer.reset();
    server.reset();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
}

void ImageServerPropertiesPageTest::type(const char* name, const QString& words) const
{
    auto* const field = find<QLineEdit>(name);
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, words);
}

void ImageServerPropertiesPageTest::startServer(bool isProtected)
{
    server = std::make_unique<ServerProcess>(
        base->filePath("images"), isProtected
                                      ? QStringList{"--user", "ann", "--password-file",
                                                    base->filePath("password"), "--access-log"}
                                      : QStringList{"--access-log"});
    QVERIFY(server->isRunning());
}

// As a map does that was saved: it holds the user's name alone.
void ImageServerPropertiesPageTest::loadFromDocument(const QString& user)
{
    layer->setUser(user);
    QVERIFY(!layer->setDataSource(server->url("/a.tif")));
    QVERIFY(!layer->isValid());
    page->setLayer(layer.get());
}

void ImageServerPropertiesPageTest::thePluginOffersThePage()
{
    ImageServerPlugin plugin;
    const QList<QWidget*> pages = plugin.getLayerPropertyWidgets();
    QCOMPARE(pages.size(), 1);
    const std::unique_ptr<QWidget> offered(pages.first());
    QCOMPARE(offered->windowTitle(), QString("Image Server"));
    QVERIFY(offered->qt_metacast("com.corvane.viewer.ILayerPropertiesWidget/1.0"));
}

void ImageServerPropertiesPageTest::showsWhereTheImageLiesAndWhatTheServerSaysOfIt()
{
    startServer(true);
    QVERIFY(layer->setDataSource(server->url("/a.tif") + "|ann|sesame|open"));
    page->setLayer(layer.get());
    QVERIFY(page->isEnabled());
    QCOMPARE(find<QLineEdit>("addressLineEdit")->text(), server->url("/a.tif"));
    QVERIFY(find<QLineEdit>("addressLineEdit")->isReadOnly());
    QCOMPARE(text("sizeLabel"), QString("1500 x 1100 pixels"));
    QCOMPARE(text("gridLabel"), QString("256 x 256 pixels, 4 level(s)"));
    QCOMPARE(text("cellSizeLabel"),
             QString("%1 x %2").arg(layer->getCellSizeX()).arg(-layer->getCellSizeY()));
    QVERIFY(!layer->getCoordSysName().isEmpty());
    QCOMPARE(text("coordinateSystemLabel"),
             QString("%1 (EPSG:%2)").arg(layer->getCoordSysName()).arg(layer->getGrid()->epsg));
    QCOMPARE(text("valuesLabel"), QString("3 band(s) of UINT8, RGB"));
    QCOMPARE(text("stateLabel"), QString("ready"));
    QVERIFY(!find<QPushButton>("retryButton")->isEnabled());
    QCOMPARE(find<QLineEdit>("userLineEdit")->text(), QString("ann"));
    QCOMPARE(find<QLineEdit>("passwordLineEdit")->text(), QString());
}

void ImageServerPropertiesPageTest::aDocumentsLayerIsGivenItsPassword()
{
    startServer(true);
    loadFromDocument("ann");
    QCOMPARE(text("stateLabel"),
             QString("not open: the server does not accept the user and password"));
    QCOMPARE(text("sizeLabel"), QString("not known yet"));
    QCOMPARE(find<QLineEdit>("userLineEdit")->text(), QString("ann"));
    QSignalSpy opened(layer.get(), &TiledRasterLayer::sourceOpened);
    type("passwordLineEdit", "sesame|open");
    QVERIFY(!layer->isValid()); // until it is applied
    page->apply();
    QTRY_COMPARE_WITH_TIMEOUT(opened.count(), 1, generous);
    QCOMPARE(opened.first().first().toBool(), true);
    QCOMPARE(text("stateLabel"), QString("ready"));
    QCOMPARE(text("sizeLabel"), QString("1500 x 1100 pixels"));
    QCOMPARE(complete(*layer, wholeImage).pixelColor(150, 100).alpha(), 255);
}

void ImageServerPropertiesPageTest::aWrongPasswordIsToldOf()
{
    startServer(true);
    loadFromDocument(QString());
    QCOMPARE(text("stateLabel"), QString("not open: the server asks for a user and a password"));
    QSignalSpy opened(layer.get(), &TiledRasterLayer::sourceOpened);
    type("userLineEdit", "ann");
    type("passwordLineEdit", "guess");
    page->apply();
    QTRY_COMPARE_WITH_TIMEOUT(opened.count(), 1, generous);
    QCOMPARE(text("stateLabel"),
             QString("not open: the server does not accept the user and password"));
    type("passwordLineEdit", "sesame|open");
    page->apply();
    QTRY_VERIFY_WITH_TIMEOUT(layer->isValid(), generous);
}

void ImageServerPropertiesPageTest::thePasswordStandsNowhere()
{
    startServer(true);
    Lines lines;
    Application::installLogMessageHandler(&lines);
    loadFromDocument("ann");
    type("passwordLineEdit", "guess|work");
    page->apply();
    QTRY_VERIFY_WITH_TIMEOUT(lines.text.count("cannot open") == 2, generous);
    type("passwordLineEdit", "sesame|open");
    page->apply();
    QTRY_VERIFY_WITH_TIMEOUT(layer->isValid(), generous);
    Application::installLogMessageHandler(nullptr);
    QDomDocument document;
    QDomNode node = document.appendChild(document.createElement("layer"));
    QVERIFY(layer->writeXML(node, document));
    Application::instance()->getSettings()->sync();
    QFile settings(Application::instance()->getSettings()->fileName());
    const QString stored = settings.open(QIODevice::ReadOnly) ? settings.readAll() : QByteArray();
    QVERIFY(document.toString().contains("ann"));
    for (const QString& all : {document.toString(), lines.text, stored, layer->getDataSource(),
                               layer->getLastError(), find<QLineEdit>("addressLineEdit")->text(),
                               find<QLineEdit>("passwordLineEdit")->text(), server->log()})
    {
        QVERIFY2(!all.contains("sesame") && !all.contains("guess"), qPrintable(all));
    }
    QCOMPARE(find<QLineEdit>("passwordLineEdit")->echoMode(), QLineEdit::Password);
}

void ImageServerPropertiesPageTest::applyingWithoutAChangeAsksNobody()
{
    startServer(true);
    QVERIFY(layer->setDataSource(server->url("/a.tif") + "|ann|sesame|open"));
    page->setLayer(layer.get());
    QTRY_COMPARE_WITH_TIMEOUT(server->log().count('\n'), 1, generous); // for the grid
    page->apply();
    QCOMPARE(layer->getSourceState(), QString("ready"));
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QCOMPARE(server->ask("/last").status, 401);
    QTRY_VERIFY_WITH_TIMEOUT(server->log().contains(" /last "), generous);
    QTRY_COMPARE_WITH_TIMEOUT(server->log().count('\n'), 2, generous);
}

void ImageServerPropertiesPageTest::anEmptyPasswordLeavesTheOneThatIsKnown()
{
    startServer(true);
    QVERIFY(layer->setDataSource(server->url("/a.tif") + "|ann|sesame|open"));
    page->setLayer(layer.get());
    type("userLineEdit", "bob");
    page->apply();
    QTRY_COMPARE_WITH_TIMEOUT(layer->getSourceState(),
                              QString("not open: the server does not accept the user and password"),
                              generous);
    type("userLineEdit", "ann"); // whose password the program knows
    page->apply();
    QTRY_COMPARE_WITH_TIMEOUT(layer->getSourceState(), QString("ready"), generous);
}

void ImageServerPropertiesPageTest::anotherUserGoesInWithTheirPassword()
{
    startServer(true);
    loadFromDocument("bob");
    type("userLineEdit", "ann");
    type("passwordLineEdit", "sesame|open");
    QTRY_COMPARE_WITH_TIMEOUT(server->log().count('\n'), 1, generous); // as bob
    page->apply();
    QTRY_VERIFY_WITH_TIMEOUT(layer->isValid(), generous);
    QCOMPARE(layer->getUser(), QString("ann"));
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QCOMPARE(server->ask("/last").status, 401);
    QTRY_VERIFY_WITH_TIMEOUT(server->log().contains(" /last "), generous);
    QTRY_COMPARE_WITH_TIMEOUT(server->log().count('\n'), 3, generous); // asked once
}

void ImageServerPropertiesPageTest::tryAgainOpensWhatDidNotOpen()
{
    startServer(false);
    QVERIFY(QFile::rename(base->filePath("images/a.tif"), base->filePath("later.tif")));
    QTRY_COMPARE_WITH_TIMEOUT(server->ask("/tiles/a.tif").status, 404, generous);
    loadFromDocument(QString());
    QCOMPARE(text("stateLabel"), QString("not open: the server has no such image"));
    QVERIFY(find<QPushButton>("retryButton")->isEnabled());
    QVERIFY(QFile::rename(base->filePath("later.tif"), base->filePath("images/a.tif")));
    QTRY_COMPARE_WITH_TIMEOUT(server->ask("/tiles/a.tif").status, 200, generous);
    QSignalSpy opened(layer.get(), &TiledRasterLayer::sourceOpened);
    find<QPushButton>("retryButton")->click();
    QCOMPARE(text("stateLabel"), QString("opening"));
    QVERIFY(!find<QPushButton>("retryButton")->isEnabled());
    QTRY_COMPARE_WITH_TIMEOUT(opened.count(), 1, generous);
    QCOMPARE(text("stateLabel"), QString("ready"));
    QVERIFY(!find<QPushButton>("retryButton")->isEnabled());
}

void ImageServerPropertiesPageTest::whatComesFromTheServerIsShownAsItIs()
{
    for (const QLabel* const label : page->findChildren<QLabel*>()) {
        if (label->objectName().endsWith("Label")) {
            QCOMPARE(label->textFormat(), Qt::PlainText);
        }
    }
}

void ImageServerPropertiesPageTest::everyFieldHasAName()
{
    for (const char* const name : {"addressLineEdit", "userLineEdit", "passwordLineEdit"}) {
        auto* const field = find<QLineEdit>(name);
        const auto labels = page->findChildren<QLabel*>();
        QVERIFY2(std::any_of(labels.begin(), labels.end(),
                             [field](const QLabel* label) { return label->buddy() == field; }),
                 name);
    }
    QVERIFY(!find<QPushButton>("retryButton")->autoDefault());
}

void ImageServerPropertiesPageTest::isDisabledWithoutALayerOfAServer()
{
    page->setLayer(nullptr);
    QVERIFY(!page->isEnabled());
    page->apply();
    page->showState();
}

void ImageServerPropertiesPageTest::survivesTheLayersEnd()
{
    startServer(false);
    QVERIFY(layer->setDataSource(server->url("/a.tif")));
    page->setLayer(layer.get());
    layer.reset();
    page->showState();
    page->apply();
    find<QPushButton>("retryButton")->click();
    page->setLayer(nullptr);
    QVERIFY(!page->isEnabled());
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    QLocale::setDefault(QLocale::c());
    Application application(argc, argv, "ImageServerPropertiesPageTest");
    ImageServerPropertiesPageTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ImageServerPropertiesPageTest.moc"
