#include <tests/plugins/LayerPluginFile.h>

#include <corvane/core/Application.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/MapView.h>
#include <corvane/map/VectorLayer.h>
#include <tests/plugins/TestRasters.h>
#include <tests/plugins/TestVectors.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QDir>
#include <QDomDocument>
#include <QFileDialog>
#include <QLineEdit>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListWidget>
#include <QLoggingCategory>
#include <QMainWindow>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;

namespace {

constexpr char className[] = "Corvane::Map::OgrVectorLayer";
constexpr char pluginName[] = "corvane-vector.so";

/// Once such a dialog is up, of that name where one is given: does something with it.
template <typename Dialog>
void whenShown(QObject* context, const std::function<void(Dialog*)>& act,
               const QString& name = QString())
{
    QTimer::singleShot(0, context, [context, act, name] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* const dialog = qobject_cast<Dialog*>(widget);
            if (dialog && dialog->isVisible() && (name.isEmpty() || dialog->objectName() == name)) {
                act(dialog);
                return;
            }
        }
        whenShown<Dialog>(context, act, name);
    });
}

} // namespace

/// The plugin as a program meets it: a file that is loaded at run time, beside that of the rasters.
class VectorPluginFileTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void theFileOffersTheThreeInterfaces();
    void theManagerMakesItsLayerByClassName();
    void theManagerFindsTheRightOneByFileExtension_data();
    void theManagerFindsTheRightOneByFileExtension();
    void eachReadFilterHoldsPatternsInItsFirstParentheses();
    void thePropertyPageIsFoundByClassName();
    void aMapViewShowsAFile();
    void aDocumentBringsItsLayerBack();
    void theActionAddsAFile();
    void theActionAsksWhichLayersOfAFile();
    void theActionNamesWhatDoesNotOpen();
    void theProgramTellsWhatIsKnownOfAFile();
    void theProgramMayEndWhileFeaturesAreRead();

private:
    QAction* action() const;

    QTemporaryDir folder;
    QString file;
};

void VectorPluginFileTest::initTestCase()
{
    QVERIFY(folder.isValid());
    file = folder.filePath("shapes.gpkg");
    QVERIFY(makeVectors(file, shapes({"POLYGON((0 0,100 0,100 100,0 100,0 0))"})));
    offerPlugin("corvane-raster.so");
    offerPlugin(pluginName);
}

void VectorPluginFileTest::theFileOffersTheThreeInterfaces()
{
    verifyInterfaces(pluginName, className);
    QVERIFY(versionOf(pluginName).contains("GDAL"));
}

void VectorPluginFileTest::theManagerMakesItsLayerByClassName()
{
    const std::unique_ptr<Map::Layer> layer(
        PluginManager::createLayer("corvane::map::OGRVECTORLAYER", false));
    QVERIFY(layer);
    QCOMPARE(layer->metaObject()->className(), className);
    QVERIFY(qobject_cast<Map::VectorLayer*>(layer.get()));
    QVERIFY(!layer->isValid());
    QVERIFY(layer->setDataSource(file));
    QTRY_VERIFY(layer->isValid());
    QCOMPARE(layer->getBounds(), QRectF(0.0, 100.0, 100.0, -100.0));
}

void VectorPluginFileTest::theManagerFindsTheRightOneByFileExtension_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("found");
    for (const char* vectors : {"shp", "gpkg", "GeoJSON", "json", "kml", "kmz", "gml", "gpx", "csv",
                                "fgb", "dxf", "sqlite"})
    {
        QTest::newRow(vectors) << QString(vectors) << QString(className);
    }
    for (const char* images : {"tif", "jp2", "png", "jpg", "vrt", "img", "pdf"}) {
        QTest::newRow(images) << QString(images) << QString("Corvane::Map::GdalRasterLayer");
    }
}

void VectorPluginFileTest::theManagerFindsTheRightOneByFileExtension()
{
    QFETCH(QString, extension);
    QTEST(PluginManager::findLayerClassname(extension), "found");
}

void VectorPluginFileTest::eachReadFilterHoldsPatternsInItsFirstParentheses()
{
    QString filter;
    for (ILayerPluginInfo* info : PluginManager::getLayerPluginInfoList()) {
        if (info->getClassName() == className) {
            filter = info->getReadFilter();
        }
    }
    const QStringList filters = filter.split(";;");
    QVERIFY(filters.size() > 20);
    const QRegularExpression form("^[^()]+ \\(\\*\\.[a-z0-9_.]+( \\*\\.[a-z0-9_.]+)*\\)$");
    for (const QString& entry : filters) {
        QVERIFY2(form.match(entry).hasMatch(), qPrintable(entry));
    }
    QVERIFY(filters.contains("GeoPackage (*.gpkg)"));
    QVERIFY(filters.contains("ESRI Shapefile (*.shp *.dbf *.shz *.shp.zip)"));
    QVERIFY(!filter.contains("*.xml"));
}

void VectorPluginFileTest::thePropertyPageIsFoundByClassName()
{
    const QList<QWidget*> pages = PluginManager::getLayerPropertyWidgets(className);
    QCOMPARE(pages.size(), 1);
    const std::unique_ptr<QWidget> page(pages.first());
    QVERIFY(page->qt_metacast("com.corvane.viewer.ILayerPropertiesWidget/1.0"));
    QCOMPARE(page->windowTitle(), QString("Vector"));
}

void VectorPluginFileTest::aMapViewShowsAFile()
{
    Map::MapView view;
    view.setAttribute(Qt::WA_DeleteOnClose, false);
    view.resize(300, 300);
    view.show();
    QCOMPARE(view.addLayer(className, file), 0);
    auto* const layer = qobject_cast<Map::VectorLayer*>(view.getLayerAt(0));
    QVERIFY(layer);
    QTRY_VERIFY(layer->isValid());
    QBrush brush(Qt::blue);
    layer->setBrush(brush);
    view.setBounds(-100.0, 200.0, 200.0, -100.0);
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    const QImage picture = view.grab().toImage();
    QCOMPARE(picture.pixelColor(150, 150), QColor(Qt::blue));
    QCOMPARE(picture.pixelColor(110, 190), QColor(Qt::blue));
    QCOMPARE(picture.pixelColor(90, 150), view.getBackgroundColor());
}

void VectorPluginFileTest::aDocumentBringsItsLayerBack()
{
    const std::unique_ptr<Map::Layer> made(PluginManager::createLayer(className, false));
    auto* const layer = qobject_cast<Map::VectorLayer*>(made.get());
    QVERIFY(layer && layer->setDataSource(file));
    QTRY_VERIFY(layer->isValid());
    QPen pen(QColor(1, 2, 3), 4, Qt::DotLine);
    layer->setPen(pen);
    QVERIFY(layer->setProperty("LabelField", "name"));
    QDomDocument document;
    QDomElement element = document.createElement("layer");
    document.appendChild(element);
    QVERIFY(layer->writeXML(element, document));
    element.firstChildElement("datasource").setAttribute("value", "shapes.gpkg");

    const std::unique_ptr<Map::Layer> other(PluginManager::createLayer(className, false));
    auto* const copy = qobject_cast<Map::VectorLayer*>(other.get());
    QDir base(folder.path());
    QString error;
    QVERIFY(copy->readXML(element, base, &error)); // beside the document
    QTRY_VERIFY(copy->isValid());
    QCOMPARE(copy->getDataSource(), QFileInfo(file).canonicalFilePath());
    QCOMPARE(copy->getPen().color(), QColor(1, 2, 3));
    QCOMPARE(copy->getPen().style(), Qt::DotLine);
    QCOMPARE(copy->getPen().width(), 4);
    QCOMPARE(copy->property("LabelField").toString(), QString("name"));
    QCOMPARE(copy->property("LayerName").toString(), QString("shapes"));
}

QAction* VectorPluginFileTest::action() const
{
    for (QAction* candidate : PluginManager::getLayerPluginAddLayerActions()) {
        if (candidate->objectName() == "actionAddVector") {
            return candidate;
        }
    }
    return nullptr;
}

namespace {

/// A main window around a map view, known to the application.
class Window
{
public:
    Window() : view(new Map::MapView)
    {
        window.setCentralWidget(view);
        view->setAttribute(Qt::WA_DeleteOnClose, false);
        window.resize(300, 300);
        window.show();
    }

    QMainWindow window;
    Map::MapView* view; // the window's
};

/// Answers the file dialog of the action.
void chooseFile(QObject* context, const QString& path)
{
    whenShown<QFileDialog>(context, [path](QFileDialog* dialog) {
        auto* const name = dialog->findChild<QLineEdit*>("fileNameEdit");
        name->setText(path);
        QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
    });
}

} // namespace

void VectorPluginFileTest::theActionAddsAFile()
{
    QVERIFY(action());
    QCOMPARE(action()->text(), QString("Add vector layer..."));
    QCOMPARE(action(), action());
    Window window;
    chooseFile(&window.window, file);
    action()->trigger();
    QTRY_COMPARE(window.view->getNumberOfLayers(), 1);
    QCOMPARE(window.view->getLayerAt(0)->getDataSource(), file);
    QCOMPARE(window.view->getLayerAt(0)->getDescription(), QString("shapes.gpkg"));
}

void VectorPluginFileTest::theActionAsksWhichLayersOfAFile()
{
    const QString several = folder.filePath("several.gpkg");
    for (const char* name : {"roads", "rivers", "towns"}) {
        VectorRecipe recipe = shapes({"POINT(10 20)", "POINT(30 60)"});
        recipe.layer = name;
        recipe.append = QFile::exists(several);
        QVERIFY(makeVectors(several, recipe));
    }
    Window window;
    chooseFile(&window.window, several);
    whenShown<QDialog>(
        &window.window,
        [](QDialog* dialog) {
            auto* const list = dialog->findChild<QListWidget*>("layerList");
            list->item(0)->setSelected(false);
            list->item(1)->setSelected(true);
            list->item(2)->setSelected(true);
            dialog->accept();
        },
        "layerChoiceDialog");
    action()->trigger();
    QTRY_COMPARE(window.view->getNumberOfLayers(), 2);
    QCOMPARE(window.view->getLayerAt(0)->property("LayerName").toString(), QString("rivers"));
    QCOMPARE(window.view->getLayerAt(1)->property("LayerName").toString(), QString("towns"));
    QCOMPARE(window.view->getLayerAt(1)->getDescription(), QString("towns"));
    QTRY_VERIFY(window.view->getLayerAt(0)->isValid());
    QTRY_VERIFY(window.view->getLayerAt(1)->isValid());
}

void VectorPluginFileTest::theActionNamesWhatDoesNotOpen()
{
    const QString bad = folder.filePath("bad.geojson");
    QFile target(bad);
    QVERIFY(target.open(QIODevice::WriteOnly));
    target.write("no JSON at all");
    target.close();
    Window window;
    QString message;
    chooseFile(&window.window, bad);
    whenShown<QMessageBox>(&window.window, [&message](QMessageBox* box) {
        message = box->text();
        box->accept();
    });
    action()->trigger();
    QTRY_VERIFY(!message.isEmpty());
    QVERIFY2(message.startsWith("Cannot open " + bad + ".\n"), qPrintable(message));
    QCOMPARE(window.view->getNumberOfLayers(), 0);
}

namespace {

QByteArray ran(const QStringList& arguments, int* code)
{
    QProcess program;
    program.setProcessChannelMode(QProcess::SeparateChannels);
    program.start(QStringLiteral(CORVANE_VIEWER), arguments);
    program.waitForFinished(60000);
    *code = program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
    return program.readAllStandardOutput();
}

} // namespace

void VectorPluginFileTest::theProgramTellsWhatIsKnownOfAFile()
{
    int code = -1;
    const QByteArray json = ran({"--info", file}, &code);
    QCOMPARE(code, 0);
    const QJsonObject told = QJsonDocument::fromJson(json).array().first().toObject();
    QCOMPARE(told["class"].toString(), QString(className));
    QCOMPARE(told["spatialReference"].toString(), QString("epsg:32633"));
    QCOMPARE(told["bounds"].toObject()["brx"].toDouble(), 100.0);
    const QJsonObject properties = told["properties"].toObject();
    QCOMPARE(properties["GeometryType"].toString(), QString("Unknown (any)"));
    QCOMPARE(properties["FeatureCount"].toInt(), 1);
    QCOMPARE(properties["LayerNames"].toArray(), QJsonArray({"shapes"}));
    QCOMPARE(properties["Fields"].toArray(), QJsonArray({"name"}));
    QCOMPARE(properties["pen"].toObject()["style"].toString(), QString("SolidLine"));
}

void VectorPluginFileTest::theProgramMayEndWhileFeaturesAreRead()
{
    VectorRecipe recipe;
    for (int i = 0; i < 30000; ++i) {
        recipe.features.push_back(
            {QStringLiteral("POINT(%1 %2)").arg(i % 173).arg(i / 173), {}, {}});
    }
    const QString many = folder.filePath("many.gpkg");
    QVERIFY(makeVectors(many, recipe));
    for (const char* seconds : {"0.05", "0.2", "60"}) {
        int code = -1;
        ran({"--snapshot", folder.filePath("picture.png"), "--size", "300x300", "--timeout",
             seconds, many},
            &code);
        QVERIFY2(code == 0 || code == 2 || code == 3, seconds); // it did not crash
    }
    QVERIFY(!QImage(folder.filePath("picture.png")).isNull());
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false\ndefault.debug=false");
    Application application(argc, argv, "VectorPluginFileTest");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    VectorPluginFileTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "VectorPluginFileTest.moc"
