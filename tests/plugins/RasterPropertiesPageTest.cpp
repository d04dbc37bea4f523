#include <plugins/raster/RasterPropertiesPage.h>

#include <plugins/raster/GdalRasterLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestRasters.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

/// The page "Raster" of the layer properties.
class RasterPropertiesPageTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void showsTheLayersSettingsAndFacts();
    void changesNothingBeforeApply();
    void appliesBandsTransparencyAndChoices();
    void oneBandIsAppliedAsGrey();
    void isDisabledWithoutARaster();
    void survivesTheLayersEnd();

private:
    template <typename Widget>
    Widget* find(const char* name)
    {
        return page->findChild<Widget*>(name);
    }

    QTemporaryDir folder;
    std::unique_ptr<GdalRasterLayer> layer;
    std::unique_ptr<RasterPropertiesPage> page;
};

void RasterPropertiesPageTest::init()
{
    const QString path = folder.filePath("image.tif");
    RasterRecipe what;
    what.bands = 4;
    what.options << "ALPHA=NO";
    what.overviews = {2};
    QVERIFY(QFile::exists(path) || makeRaster(path, what));
    layer = std::make_unique<GdalRasterLayer>();
    QVERIFY(layer->setDataSource(path));
    QTRY_VERIFY(layer->isValid());
    layer->setTransparency(0.25);
    page = std::make_unique<RasterPropertiesPage>();
    page->setLayer(layer.get());
}

void RasterPropertiesPageTest::showsTheLayersSettingsAndFacts()
{
    QVERIFY(page->isEnabled());
    QCOMPARE(page->windowTitle(), QString("Raster"));
    QCOMPARE(find<QComboBox>("bandModeComboBox")->currentIndex(), 1);
    QCOMPARE(find<QComboBox>("redBandComboBox")->currentIndex(), 0);
    QCOMPARE(find<QComboBox>("blueBandComboBox")->currentIndex(), 2);
    QCOMPARE(find<QComboBox>("redBandComboBox")->count(), 4);
    QVERIFY(!find<QComboBox>("greyBandComboBox")->isEnabled());
    QCOMPARE(find<QDoubleSpinBox>("transparencySpinBox")->value(), 25.0);
    QVERIFY(find<QCheckBox>("smoothingCheckBox")->isChecked());
    QVERIFY(find<QCheckBox>("adaptiveRoamCheckBox")->isChecked());
    QCOMPARE(find<QLineEdit>("driverLineEdit")->text(), QString("GTiff"));
    QCOMPARE(find<QLineEdit>("epsgLineEdit")->text(), QString("32633"));
    QCOMPARE(find<QLineEdit>("blockSizeLineEdit")->text(), QString("256 x 256"));
    QCOMPARE(find<QLineEdit>("overviewsLineEdit")->text(), QString("300 x 250"));
    QVERIFY(find<QLineEdit>("driverLineEdit")->isReadOnly());
}

void RasterPropertiesPageTest::changesNothingBeforeApply()
{
    find<QDoubleSpinBox>("transparencySpinBox")->setValue(50.0);
    find<QComboBox>("redBandComboBox")->setCurrentIndex(3);
    QCOMPARE(layer->getTransparency(), 0.25);
    QCOMPARE(layer->getBandList(), (QVector<qint32>{1, 2, 3}));
}

void RasterPropertiesPageTest::appliesBandsTransparencyAndChoices()
{
    find<QDoubleSpinBox>("transparencySpinBox")->setValue(50.0);
    find<QComboBox>("redBandComboBox")->setCurrentIndex(3);
    find<QCheckBox>("smoothingCheckBox")->setChecked(false);
    find<QCheckBox>("adaptiveRoamCheckBox")->setChecked(false);
    auto* const offered = static_cast<ILayerPropertiesWidget*>(
        page->qt_metacast("com.corvane.viewer.ILayerPropertiesWidget/1.0"));
    QVERIFY(offered);
    offered->apply();
    QCOMPARE(layer->getTransparency(), 0.5);
    QCOMPARE(layer->getBandList(), (QVector<qint32>{4, 2, 3}));
    QVERIFY(!layer->isPixmapSmoothing());
    QVERIFY(!layer->isAdaptiveRoam());
}

void RasterPropertiesPageTest::oneBandIsAppliedAsGrey()
{
    find<QComboBox>("bandModeComboBox")->setCurrentIndex(0);
    QVERIFY(find<QComboBox>("greyBandComboBox")->isEnabled());
    QVERIFY(!find<QComboBox>("redBandComboBox")->isEnabled());
    find<QComboBox>("greyBandComboBox")->setCurrentIndex(1);
    page->apply();
    QCOMPARE(layer->getBandList(), (QVector<qint32>{2}));
}

void RasterPropertiesPageTest::isDisabledWithoutARaster()
{
    RasterPropertiesPage other;
    other.setLayer(nullptr);
    QVERIFY(!other.isEnabled());
    GdalRasterLayer unopened;
    other.setLayer(&unopened);
    QVERIFY(!other.isEnabled());
    other.apply();
    QCOMPARE(unopened.getTransparency(), 0.0);
}

void RasterPropertiesPageTest::survivesTheLayersEnd()
{
    layer.reset();
    page->apply();
    QVERIFY(page->isEnabled());
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "RasterPropertiesPageTest");
    RasterPropertiesPageTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "RasterPropertiesPageTest.moc"
