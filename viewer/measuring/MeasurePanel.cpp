#include <viewer/measuring/MeasurePanel.h>

#include <corvane/core/Application.h>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QVBoxLayout>

namespace Corvane::Viewer {
namespace {

constexpr double resultScale = 1.3; // of the font
constexpr int widestDetails = 30;   // characters

} // namespace

MeasurePanel::MeasurePanel(QWidget* view) : QFrame(view)
{
    setObjectName("measurePanel");
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Raised);
    setAutoFillBackground(true);
    setAttribute(Qt::WA_NoMousePropagation); // what is done here is not done to the map
    setCursor(Qt::ArrowCursor);
    kind = addChoice("measureKind", tr("What to measure"), {tr("Distance"), tr("Area")},
                     "Viewer/MeasureKind", {"distance", "area"});
    units = addChoice("measureUnits", tr("Units"), {tr("Metric"), tr("Imperial"), tr("Nautical")},
                      "Viewer/MeasureUnits", {"metric", "imperial", "nautical"});
    surface =
        addChoice("measureSurface", tr("On the ellipsoid, or in the plane of the map"),
                  {tr("Ellipsoid"), tr("Plane")}, "Viewer/MeasureSurface", {"ellipsoid", "plane"});
    result = addResult("measureResult");
    QFont large = result->font();
    large.setPointSizeF(large.pointSizeF() * resultScale);
    large.setBold(true);
    result->setFont(large);
    details = addResult("measureDetails");
    basis = addResult("measureBasis");
    auto* const choices = new QHBoxLayout;
    for (QComboBox* choice : {kind, units, surface}) {
        choices->addWidget(choice);
    }
    auto* const rows = new QVBoxLayout(this);
    rows->addLayout(choices);
    for (QLabel* label : {result, details, basis}) {
        rows->addWidget(label);
    }
    rows->addLayout(addButtons());
}

/// The chosen one is kept under its key.
QComboBox* MeasurePanel::addChoice(const QString& name, const QString& meaning,
                                   const QStringList& texts, const char* settingsKey,
                                   const QStringList& keys)
{
    auto* const choice = new QComboBox(this);
    choice->setObjectName(name);
    choice->setAccessibleName(meaning);
    choice->setToolTip(meaning);
    for (int i = 0; i < texts.size(); ++i) {
        choice->addItem(texts[i], keys[i]);
    }
    const QString kept = Application::instance()->getSettings()->value(settingsKey).toString();
    choice->setCurrentIndex(qMax(choice->findData(kept), 0));
    connect(choice, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this, choice, settingsKey] {
                Application::instance()->getSettings()->setValue(settingsKey,
                                                                 choice->currentData());
                emit chosen();
            });
    return choice;
}

QLabel* MeasurePanel::addResult(const QString& name)
{
    auto* const label = new QLabel(this);
    label->setObjectName(name);
    label->setMinimumWidth(label->fontMetrics().averageCharWidth() * widestDetails);
    return label;
}

QHBoxLayout* MeasurePanel::addButtons()
{
    copyButton = new QPushButton(tr("&Copy"), this);
    copyButton->setObjectName("measureCopy");
    copyButton->setToolTip(tr("Copy the result and the points as text (Ctrl+C)"));
    auto* const close = new QPushButton(tr("C&lose"), this);
    close->setObjectName("measureClose");
    close->setToolTip(tr("End measuring (Escape)"));
    connect(copyButton, &QPushButton::clicked, this, &MeasurePanel::copyRequested);
    connect(close, &QPushButton::clicked, this, &MeasurePanel::closeRequested);
    auto* const row = new QHBoxLayout;
    row->addWidget(copyButton);
    row->addWidget(close);
    row->addStretch();
    return row;
}

MeasureKind MeasurePanel::getKind() const
{
    return MeasureKind(kind->currentIndex());
}

MeasureUnits MeasurePanel::getUnits() const
{
    return MeasureUnits(units->currentIndex());
}

MeasureSurface MeasurePanel::getSurface() const
{
    return MeasureSurface(surface->currentIndex());
}

void MeasurePanel::showMeasurement(const Measurement& measurement, int points, bool hasPlane)
{
    const QString length = lengthText(measurement.length, measurement.unit, getUnits());
    if (getKind() == MeasureKind::Area) {
        result->setText(areaText(measurement.area, measurement.unit, getUnits()));
        details->setText(points > 2   ? tr("Perimeter: %1").arg(length)
                         : points > 0 ? tr("Click at least three corners.")
                                      : tr("Click the corners of the area."));
    } else {
        result->setText(length);
        details->setText(
            points > 1 ? tr("Last segment: %1")
                             .arg(lengthText(measurement.lastLength, measurement.unit, getUnits()))
                       : tr("Click along the line."));
    }
    basis->setText(measurement.basis);
    surface->setEnabled(hasPlane);
    copyButton->setEnabled(points > 1);
    adjustSize();
}

} // namespace Corvane::Viewer
