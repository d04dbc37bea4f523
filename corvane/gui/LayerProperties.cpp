#include <corvane/gui/LayerProperties.h>

#include <corvane/core/ILayerPropertiesWidget.h>
#include <corvane/core/PluginManager.h>
#include <corvane/core/StringUtil.h>
#include <corvane/map/RasterLayer.h>
#include <corvane/map/VectorLayer.h>

#include <QRectF>
#include <QSize>

namespace Corvane::Gui {
namespace {

constexpr int vectorIndex = 1;
constexpr int rasterIndex = 2;
constexpr unsigned char gigaPixelDigits = 2;
constexpr int coordinateDigits = 6;
constexpr int rotationDigits = 4;

QString grouped(int value)
{
    return QStringLiteral("%L1").arg(value);
}

QString coordinate(double value)
{
    return QStringLiteral("%L1").arg(value, 0, 'f', coordinateDigits);
}

QString sixDigits(double value)
{
    return QStringLiteral("%1").arg(value, 0, 'g', -1);
}

} // namespace

LayerProperties::LayerProperties(QWidget* parent)
    : QDialog(parent, Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint)
{
    ui.setupUi(this);
    rasterPage = ui.tabWidget->widget(rasterIndex);
    vectorPage = ui.tabWidget->widget(vectorIndex);
    connect(ui.buttonBox, &QDialogButtonBox::accepted, this, &LayerProperties::accept);
    connect(ui.buttonBox, &QDialogButtonBox::rejected, this, &LayerProperties::reject);
    ui.cellUnitsLineEdit->hide();
    ui.label_10->hide();
}

LayerProperties::~LayerProperties() = default;

void LayerProperties::setLayer(Map::Layer* pLayer)
{
    if (!pLayer) {
        setEnabled(false);
        return;
    }
    layer = pLayer;
    setEnabled(true);
    ui.dataSourceLineEdit->setText(layer->getDataSource());
    ui.descriptionLineEdit->setText(layer->getDescription());
    ui.commentsTextEdit->setPlainText(layer->getComments());

    // The first removal moves the raster page to the place of the vector page, so the second finds
    // nothing: the raster page stays for every kind of layer.
    // LayerPropertiesTest::aVectorLayerShowsABlankRasterPage holds it.
    ui.tabWidget->removeTab(vectorIndex);
    ui.tabWidget->removeTab(rasterIndex);
    if (auto* const raster = qobject_cast<Map::RasterLayer*>(pLayer)) {
        ui.tabWidget->addTab(rasterPage, tr("Raster Info"));
        fillRasterPage(raster);
    }
    if (qobject_cast<Map::VectorLayer*>(pLayer)) {
        ui.tabWidget->addTab(vectorPage, tr("Vector Info"));
    }
    addPluginPages(pLayer);
}

void LayerProperties::fillRasterPage(Map::RasterLayer* raster)
{
    const QSize size = raster->getSize();
    const qint64 pixels = static_cast<qint64>(size.width()) * size.height();
    ui.widthLineEdit->setText(grouped(size.width()));
    ui.heightLineEdit->setText(grouped(size.height()));
    ui.gigaPixelsLineEdit->setText(
        Util::String::formatGigaPixel(static_cast<unsigned long long>(pixels), gigaPixelDigits));
    ui.bandsLineEdit->setText(QStringLiteral("%1").arg(raster->getNumberOfBands()));
    ui.hasAlphaLineEdit->setText(raster->getOpacity() ? QStringLiteral("true")
                                                      : QStringLiteral("false"));
    ui.cellXLineEdit->setText(sixDigits(raster->getCellSizeX()));
    ui.cellYLineEdit->setText(sixDigits(raster->getCellSizeY()));
    ui.cellTypeLineEdit->setText(raster->getCellType());
    ui.colorSpaceLineEdit->setText(raster->colorSpaceToString());
    const QRectF bounds = raster->getBounds();
    ui.topLineEdit->setText(coordinate(bounds.top()));
    ui.leftLineEdit->setText(coordinate(bounds.left()));
    ui.bottomLineEdit->setText(coordinate(bounds.bottom()));
    ui.rightLineEdit->setText(coordinate(bounds.right()));
    ui.formatLineEdit->setText(raster->getFormat());
    ui.coordSysLineEdit->setText(raster->getCoordSysName());
    ui.rotationLineEdit->setText(
        QStringLiteral("%1").arg(raster->getRotation(), 0, 'f', rotationDigits));

    // long values show from their start
    for (QLineEdit* edit :
         {ui.formatLineEdit, ui.widthLineEdit, ui.heightLineEdit, ui.bandsLineEdit,
          ui.hasAlphaLineEdit, ui.cellXLineEdit, ui.cellYLineEdit, ui.topLineEdit, ui.leftLineEdit,
          ui.bottomLineEdit, ui.rightLineEdit, ui.rotationLineEdit})
    {
        edit->setCursorPosition(0);
    }
}

/// A page without the interface is shown as it is.
void LayerProperties::addPluginPages(Map::Layer* pLayer)
{
    const QString className = QString::fromLatin1(pLayer->metaObject()->className());
    for (QWidget* page : PluginManager::getLayerPropertyWidgets(className)) {
        if (!page) {
            continue;
        }
        if (auto* const properties = qobject_cast<ILayerPropertiesWidget*>(page)) {
            properties->setLayer(pLayer);
        }
        ui.tabWidget->addTab(page, page->windowTitle());
    }
}

void LayerProperties::accept()
{
    if (layer) { // it may have gone while the dialog was open
        layer->setComments(ui.commentsTextEdit->toPlainText());
    }
    for (int i = 0; i < ui.tabWidget->count(); ++i) {
        if (auto* const page = qobject_cast<ILayerPropertiesWidget*>(ui.tabWidget->widget(i))) {
            page->apply();
        }
    }
    QDialog::accept();
}

void LayerProperties::reject()
{
    QDialog::reject();
}

} // namespace Corvane::Gui
