#include <plugins/raster/RasterPropertiesPage.h>

#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/raster/RasterFacts.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QVBoxLayout>

namespace Corvane::Map {

namespace {

enum Mode
{
    GreyMode = 0,
    ColourMode = 1
};

} // namespace

RasterPropertiesPage::RasterPropertiesPage(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("rasterPropertiesPage"));
    setWindowTitle(tr("Raster"));
    auto* const column = new QVBoxLayout(this);
    column->addWidget(createLook());
    column->addWidget(createFacts());
    column->addStretch();
    setEnabled(false);
}

QGroupBox* RasterPropertiesPage::createLook()
{
    auto* const box = new QGroupBox(tr("Display"), this);
    auto* const form = new QFormLayout(box);
    mode = new QComboBox(box);
    mode->setObjectName(QStringLiteral("bandModeComboBox"));
    mode->addItems({tr("One band"), tr("Three bands")});
    form->addRow(tr("Show:"), mode);
    grey = addBandChoice(form, tr("Band:"), "greyBandComboBox");
    red = addBandChoice(form, tr("Red:"), "redBandComboBox");
    green = addBandChoice(form, tr("Green:"), "greenBandComboBox");
    blue = addBandChoice(form, tr("Blue:"), "blueBandComboBox");
    transparency = new QDoubleSpinBox(box);
    transparency->setObjectName(QStringLiteral("transparencySpinBox"));
    transparency->setRange(0.0, 100.0);
    transparency->setSuffix(tr(" %"));
    form->addRow(tr("Transparency:"), transparency);
    smoothing = new QCheckBox(tr("Smooth pixels when made smaller"), box);
    smoothing->setObjectName(QStringLiteral("smoothingCheckBox"));
    form->addRow(smoothing);
    adaptiveRoam = new QCheckBox(tr("Coarser tiles while the view moves"), box);
    adaptiveRoam->setObjectName(QStringLiteral("adaptiveRoamCheckBox"));
    form->addRow(adaptiveRoam);
    connect(mode, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &RasterPropertiesPage::showBandsOfMode);
    return box;
}

QComboBox* RasterPropertiesPage::addBandChoice(QFormLayout* form, const QString& label,
                                               const char* name)
{
    auto* const choice = new QComboBox(this);
    choice->setObjectName(QLatin1String(name));
    form->addRow(label, choice);
    return choice;
}

QGroupBox* RasterPropertiesPage::createFacts()
{
    auto* const box = new QGroupBox(tr("Source"), this);
    factsForm = new QFormLayout(box);
    addFact(tr("Driver:"), "driverLineEdit");
    addFact(tr("EPSG code:"), "epsgLineEdit");
    addFact(tr("Compression:"), "compressionLineEdit");
    addFact(tr("Layout:"), "layoutLineEdit");
    addFact(tr("Block size:"), "blockSizeLineEdit");
    addFact(tr("Overviews:"), "overviewsLineEdit");
    addFact(tr("No-data value:"), "noDataLineEdit");
    return box;
}

void RasterPropertiesPage::addFact(const QString& label, const char* name)
{
    auto* const line = new QLineEdit(this);
    line->setObjectName(QLatin1String(name));
    line->setReadOnly(true);
    factsForm->addRow(label, line);
}

void RasterPropertiesPage::setFact(const char* name, const QString& text)
{
    auto* const line = findChild<QLineEdit*>(QLatin1String(name));
    line->setText(text);
    line->setCursorPosition(0);
}

void RasterPropertiesPage::setLayer(Map::Layer* newLayer)
{
    layer = qobject_cast<GdalRasterLayer*>(newLayer);
    setEnabled(layer && layer->isValid());
    if (!isEnabled()) {
        return;
    }
    fillBands();
    transparency->setValue(layer->getTransparency() * 100.0);
    smoothing->setChecked(layer->isPixmapSmoothing());
    adaptiveRoam->setChecked(layer->isAdaptiveRoam());
    fillFacts();
}

void RasterPropertiesPage::fillBands()
{
    QStringList names;
    for (std::size_t i = 0; i < layer->facts()->bands.size(); ++i) {
        const QString name = layer->facts()->bands[i].name();
        const QString number = QString::number(i + 1);
        names.append(name.isEmpty() ? number : tr("%1 (%2)").arg(number, name));
    }
    for (QComboBox* choice : {grey, red, green, blue}) {
        choice->clear();
        choice->addItems(names);
    }
    const QVector<qint32> bands = layer->getBandList();
    mode->setCurrentIndex(bands.size() == 3 ? ColourMode : GreyMode);
    grey->setCurrentIndex(bands.value(0, 1) - 1);
    red->setCurrentIndex(bands.value(0, 1) - 1);
    green->setCurrentIndex(bands.value(1, 1) - 1);
    blue->setCurrentIndex(bands.value(2, 1) - 1);
    showBandsOfMode();
}

void RasterPropertiesPage::showBandsOfMode()
{
    const bool colour = mode->currentIndex() == ColourMode;
    grey->setEnabled(!colour);
    for (QComboBox* choice : {red, green, blue}) {
        choice->setEnabled(colour);
    }
}

void RasterPropertiesPage::fillFacts()
{
    const QSize block = layer->getBlockSize();
    setFact("driverLineEdit", layer->getDriver());
    setFact("epsgLineEdit", layer->getEpsg() > 0 ? QString::number(layer->getEpsg()) : QString());
    setFact("compressionLineEdit", layer->getCompression());
    setFact("layoutLineEdit", layer->getLayoutKind());
    setFact("blockSizeLineEdit", QStringLiteral("%1 x %2").arg(block.width()).arg(block.height()));
    setFact("overviewsLineEdit", layer->getOverviews());
    setFact("noDataLineEdit", layer->getNoData());
}

void RasterPropertiesPage::apply()
{
    if (!layer || !isEnabled()) {
        return;
    }
    if (mode->currentIndex() == ColourMode) {
        layer->setBandList(
            {red->currentIndex() + 1, green->currentIndex() + 1, blue->currentIndex() + 1});
    } else {
        layer->setBandList({grey->currentIndex() + 1});
    }
    layer->setTransparency(transparency->value() / 100.0);
    layer->setPixmapSmoothing(smoothing->isChecked());
    layer->setAdaptiveRoam(adaptiveRoam->isChecked());
}

} // namespace Corvane::Map
