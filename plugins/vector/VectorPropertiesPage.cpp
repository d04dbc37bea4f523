#include <plugins/vector/VectorPropertiesPage.h>

#include <plugins/vector/OgrVectorLayer.h>

#include <corvane/gui/ColorButton.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QLocale>
#include <QSpinBox>
#include <QVBoxLayout>

namespace Corvane::Map {

namespace {

constexpr int widestLine = 50;       // pixels
constexpr double largestPoint = 100; // pixels
constexpr double smallestLabel = 4;  // points of type
constexpr double largestLabel = 72;
constexpr int nameLength = 20; // letters that a list of names has room for at least

template <typename Widget>
Widget* named(Widget* widget, const char* name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

// Names of sources may be of any length: the dialog does not grow with them, the tip shows them whole.
QComboBox* comboOfNames(QWidget* parent, const char* name)
{
    auto* const combo = named(new QComboBox(parent), name);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(nameLength);
    QObject::connect(combo, &QComboBox::currentTextChanged, combo, &QWidget::setToolTip);
    return combo;
}

// What the list lacks is added to it, so that it stays unless another is chosen.
void choose(QComboBox* combo, const QVariant& data)
{
    if (combo->findData(data) < 0) {
        combo->addItem(VectorPropertiesPage::tr("As it is"), data);
    }
    combo->setCurrentIndex(combo->findData(data));
}

QWidget* inOneRow(const QList<QWidget*>& widgets)
{
    auto* const row = new QWidget;
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets) {
        layout->addWidget(widget);
    }
    return row;
}

} // namespace

VectorPropertiesPage::VectorPropertiesPage(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("vectorPropertiesPage"));
    setWindowTitle(tr("Vector"));
    auto* const column = new QVBoxLayout(this);
    column->addWidget(createStyle());
    column->addWidget(createLabels());
    column->addWidget(createFacts());
    column->addStretch();
    setEnabled(false);
}

QGroupBox* VectorPropertiesPage::createStyle()
{
    auto* const box = new QGroupBox(tr("Display"), this);
    auto* const form = new QFormLayout(box);
    layerName = comboOfNames(box, "layerNameComboBox");
    form->addRow(tr("Layer:"), layerName);

    lineStyle = named(new QComboBox(box), "lineStyleComboBox");
    lineStyle->addItem(tr("No line"), int(Qt::NoPen));
    lineStyle->addItem(tr("Solid"), int(Qt::SolidLine));
    lineStyle->addItem(tr("Dashes"), int(Qt::DashLine));
    lineStyle->addItem(tr("Dots"), int(Qt::DotLine));
    lineStyle->addItem(tr("Dash and dot"), int(Qt::DashDotLine));
    lineStyle->addItem(tr("Dash and two dots"), int(Qt::DashDotDotLine));
    lineColor = named(new Gui::ColorButton(box), "lineColorButton");
    lineWidth = named(new QSpinBox(box), "lineWidthSpinBox");
    lineWidth->setRange(1, widestLine);
    lineWidth->setSuffix(tr(" px"));
    form->addRow(tr("Line:"), inOneRow({lineStyle, lineColor, lineWidth}));

    fillPattern = named(new QComboBox(box), "fillStyleComboBox");
    fillPattern->addItem(tr("No fill"), int(Qt::NoBrush));
    fillPattern->addItem(tr("Solid"), int(Qt::SolidPattern));
    fillPattern->addItem(tr("Half"), int(Qt::Dense4Pattern));
    fillPattern->addItem(tr("Sparse"), int(Qt::Dense6Pattern));
    fillPattern->addItem(tr("Horizontal lines"), int(Qt::HorPattern));
    fillPattern->addItem(tr("Vertical lines"), int(Qt::VerPattern));
    fillPattern->addItem(tr("Crossing lines"), int(Qt::CrossPattern));
    fillPattern->addItem(tr("Rising lines"), int(Qt::BDiagPattern));
    fillPattern->addItem(tr("Falling lines"), int(Qt::FDiagPattern));
    fillPattern->addItem(tr("Diagonal cross"), int(Qt::DiagCrossPattern));
    fillColor = named(new Gui::ColorButton(box), "fillColorButton");
    form->addRow(tr("Fill:"), inOneRow({fillPattern, fillColor}));

    pointSymbol = named(new QComboBox(box), "pointSymbolComboBox");
    pointSymbol->addItem(tr("Circle"), QStringLiteral("Circle"));
    pointSymbol->addItem(tr("Square"), QStringLiteral("Square"));
    pointSymbol->addItem(tr("Triangle"), QStringLiteral("Triangle"));
    pointSymbol->addItem(tr("Cross"), QStringLiteral("Cross"));
    pointSize = named(new QDoubleSpinBox(box), "pointSizeSpinBox");
    pointSize->setRange(1.0, largestPoint);
    pointSize->setDecimals(1);
    pointSize->setSuffix(tr(" px"));
    form->addRow(tr("Points:"), inOneRow({pointSymbol, pointSize}));

    transparency = named(new QDoubleSpinBox(box), "transparencySpinBox");
    transparency->setRange(0.0, 100.0);
    transparency->setSuffix(tr(" %"));
    form->addRow(tr("Transparency:"), transparency);
    antialiasing = named(new QCheckBox(tr("Smooth edges"), box), "antialiasingCheckBox");
    form->addRow(antialiasing);
    return box;
}

QGroupBox* VectorPropertiesPage::createLabels()
{
    auto* const box = new QGroupBox(tr("Labels"), this);
    auto* const form = new QFormLayout(box);
    labelField = comboOfNames(box, "labelFieldComboBox");
    form->addRow(tr("Field:"), labelField);
    labelSize = named(new QDoubleSpinBox(box), "labelSizeSpinBox");
    labelSize->setRange(smallestLabel, largestLabel);
    labelSize->setDecimals(1);
    labelSize->setSuffix(tr(" pt"));
    labelColor = named(new Gui::ColorButton(box), "labelColorButton");
    form->addRow(tr("Text:"), inOneRow({labelSize, labelColor}));
    return box;
}

QGroupBox* VectorPropertiesPage::createFacts()
{
    auto* const box = new QGroupBox(tr("Source"), this);
    auto* const form = new QFormLayout(box);
    addFact(form, tr("Driver:"), "driverLineEdit");
    addFact(form, tr("Geometry:"), "geometryLineEdit");
    addFact(form, tr("Features:"), "featuresLineEdit");
    addFact(form, tr("Attributes:"), "attributesLineEdit");
    addFact(form, tr("EPSG code:"), "epsgLineEdit");
    addFact(form, tr("Not shown:"), "leftOutLineEdit");
    return box;
}

void VectorPropertiesPage::addFact(QFormLayout* form, const QString& label, const char* name)
{
    auto* const line = named(new QLineEdit(this), name);
    line->setReadOnly(true);
    form->addRow(label, line);
}

void VectorPropertiesPage::setFact(const char* name, const QString& text)
{
    auto* const line = findChild<QLineEdit*>(QLatin1String(name));
    line->setText(text);
    line->setCursorPosition(0);
}

void VectorPropertiesPage::setLayer(Map::Layer* newLayer)
{
    layer = qobject_cast<OgrVectorLayer*>(newLayer);
    setEnabled(layer && layer->isValid());
    if (!isEnabled()) {
        return;
    }
    fillStyle();
    fillLabels();
    fillFacts();
}

void VectorPropertiesPage::fillStyle()
{
    layerName->clear();
    layerName->addItems(layer->getLayerNames());
    layerName->setCurrentText(layer->getLayerName());
    const QPen pen = layer->getPen();
    choose(lineStyle, int(pen.style()));
    lineColor->setColor(pen.color());
    lineWidth->setValue(pen.width());
    const QBrush brush = layer->getBrush();
    choose(fillPattern, int(brush.style()));
    fillColor->setColor(brush.color());
    choose(pointSymbol, layer->getPointSymbol());
    pointSize->setValue(layer->getPointSize());
    transparency->setValue(layer->getTransparency() * 100.0);
    antialiasing->setChecked(layer->isAntialiasing());
}

void VectorPropertiesPage::fillLabels()
{
    labelField->clear();
    labelField->addItem(tr("(none)"), QString());
    for (const QString& field : layer->getFields()) {
        labelField->addItem(field, field);
    }
    choose(labelField, layer->getLabelField());
    labelSize->setValue(layer->getLabelSize());
    labelColor->setColor(layer->getLabelColor());
}

void VectorPropertiesPage::fillFacts()
{
    const QLocale locale;
    const QStringList fields = layer->getFields();
    setFact("driverLineEdit", layer->getDriver());
    setFact("geometryLineEdit", layer->getGeometryType());
    setFact("featuresLineEdit", locale.toString(layer->getFeatureCount()));
    setFact("attributesLineEdit", locale.toString(fields.size()));
    findChild<QLineEdit*>(QStringLiteral("attributesLineEdit"))
        ->setToolTip(fields.join(QStringLiteral(", ")));
    setFact("epsgLineEdit", layer->getEpsg() > 0 ? QString::number(layer->getEpsg()) : QString());
    setFact("leftOutLineEdit", locale.toString(layer->getLeftOut()));
}

void VectorPropertiesPage::apply()
{
    if (!layer || !isEnabled()) {
        return;
    }
    applyStyle();
    layer->setLabelField(labelField->currentData().toString());
    layer->setLabelSize(labelSize->value());
    layer->setLabelColor(labelColor->getColor());
    layer->setLayerName(layerName->currentText());
}

void VectorPropertiesPage::applyStyle()
{
    QPen pen = layer->getPen();
    pen.setStyle(static_cast<Qt::PenStyle>(lineStyle->currentData().toInt()));
    pen.setColor(lineColor->getColor());
    if (pen.width() != lineWidth->value()) {
        pen.setWidth(lineWidth->value());
    }
    layer->setPen(pen);
    QBrush brush = layer->getBrush();
    brush.setStyle(static_cast<Qt::BrushStyle>(fillPattern->currentData().toInt()));
    brush.setColor(fillColor->getColor());
    layer->setBrush(brush);
    layer->setPointSymbol(pointSymbol->currentData().toString());
    layer->setPointSize(pointSize->value());
    layer->setTransparency(transparency->value() / 100.0);
    layer->setAntialiasing(antialiasing->isChecked());
    layer->restyle();
}

} // namespace Corvane::Map
