#include <corvane/gui/HistogramDisplay.h>

#include "ui_HistogramDisplay.h"

#include "HistogramPlot_p.h"

#include <corvane/core/Application.h>
#include <corvane/core/Integer.h>
#include <corvane/map/IRasterLayerHistogram.h>
#include <corvane/map/RasterLayer.h>

#include <QMouseEvent>
#include <QPainter>
#include <QSettings>
#include <QSignalBlocker>
#include <QSize>
#include <QStringList>

#include <algorithm>

namespace Corvane::Gui {

namespace {

constexpr char showAllBandsKey[] = "Gui/HistogramDisplay/ShowAllBands";
constexpr int entireImage = 0;
constexpr int currentViewport = 1;
constexpr int sampleEdge = 500; // pixels
constexpr int decimals = 4;

QSettings* applicationSettings()
{
    Application* const application = Application::instance();
    return application ? application->getSettings() : nullptr;
}

QString decimalText(double value)
{
    return QString::number(value, 'f', decimals);
}

bool hasCounts(const HistogramDisplay::Histogram& histogram)
{
    return histogram.counts && histogram.numberOfBins > 0;
}

unsigned long long highestPeak(const QVector<HistogramDisplay::Histogram>& histograms)
{
    unsigned long long peak = 0;
    for (const HistogramDisplay::Histogram& histogram : histograms) {
        peak = std::max(peak, histogram.peakCount);
    }
    return peak;
}

} // namespace

HistogramDisplay::HistogramDisplay(QWidget*) : QWidget(nullptr), ui(new Ui::HistogramDisplay)
{
    ui->setupUi(this);
    if (const QSettings* settings = applicationSettings()) {
        ui->allBandsCheckBox->setChecked(settings->value(showAllBandsKey, false).toBool());
    }
    ui->histogramFrame->installEventFilter(this);
}

HistogramDisplay::~HistogramDisplay()
{
    if (QSettings* settings = applicationSettings()) {
        settings->setValue(showAllBandsKey, ui->allBandsCheckBox->isChecked());
    }
    delete ui;
}

void HistogramDisplay::onLayerActivated(Map::Layer* layer)
{
    currentLayer = qobject_cast<Map::RasterLayer*>(layer);
    if (!histogramSource()) {
        clearFields();
        setEnabled(false);
        return;
    }
    setEnabled(true);
    fetch(ui->sourceComboBox->currentIndex() != entireImage, true);
    if (histograms.isEmpty()) {
        clearFields();
        update();
        return;
    }
    listBands();
    showStatistics(ui->bandComboBox->currentIndex());
    update();
}

void HistogramDisplay::on_bandComboBox_activated(int index)
{
    if (currentLayer && index < histograms.size()) {
        showStatistics(index);
        update();
    }
}

// Unlike an activation, a change of source counts the image exactly for the viewport, and neither
// this nor a refresh fills in the bands and their statistics again.
void HistogramDisplay::on_sourceComboBox_activated(int index)
{
    if (!histogramSource()) {
        return;
    }
    if (index == entireImage) {
        fetch(false, true);
    } else if (index == currentViewport) {
        fetch(true, false);
    }
    update();
}

void HistogramDisplay::on_refreshButton_clicked(bool)
{
    if (histogramSource()) {
        fetch(true, false);
        update();
    }
}

void HistogramDisplay::on_approxCheckBox_stateChanged(int)
{
    update();
}

void HistogramDisplay::on_allBandsCheckBox_stateChanged(int)
{
    update();
}

bool HistogramDisplay::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseMove) {
        showBinAt(static_cast<QMouseEvent*>(event)->x());
    }
    return QWidget::eventFilter(object, event);
}

void HistogramDisplay::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    // The frame has no background of its own: what is painted here shows through it.
    const QRect plot = plotRectangle();
    QPainter painter(this);
    painter.setClipRect(plot, Qt::ReplaceClip);
    painter.fillRect(plot, Qt::white);
    if (histograms.isEmpty()) {
        painter.setPen(Qt::black); // on white whatever the palette says
        painter.drawText(plot, Qt::AlignCenter, tr("Histograms not available."));
        return;
    }
    const int current = ui->bandComboBox->currentIndex();
    if (current == -1) {
        return;
    }
    // One scale for all bands, also when one is drawn alone: curves stay comparable.
    const unsigned long long scale = highestPeak(histograms);
    for (int band = 0; band < histograms.size(); ++band) {
        if (band == current || ui->allBandsCheckBox->isChecked()) {
            const Histogram& histogram = histograms.at(band);
            drawHistogram(painter, histogram, colourOfBand(histogram.bandName), plot, scale);
        }
    }
}

Map::IRasterLayerHistogram* HistogramDisplay::histogramSource() const
{
    return qobject_cast<Map::IRasterLayerHistogram*>(currentLayer.data());
}

void HistogramDisplay::fetch(bool viewport, bool approximate)
{
    histograms = histogramSource()->getHistograms(
        viewport, approximate, QSize(sampleEdge, sampleEdge), qQNaN(), qQNaN(), qQNaN(), qQNaN());
}

void HistogramDisplay::clearFields()
{
    ui->bandComboBox->clear();
    for (QLineEdit* field : {ui->mean, ui->stddev, ui->median, ui->mode, ui->max, ui->min,
                             ui->histogramValue, ui->histogramCount})
    {
        field->setText(QString());
    }
}

void HistogramDisplay::listBands()
{
    QStringList names;
    for (int band = 0; band < histograms.size(); ++band) {
        const QString name = histograms.at(band).bandName;
        names << (name.isEmpty() ? QStringLiteral("Band #%1").arg(band) : name);
    }
    const QSignalBlocker blocker(ui->bandComboBox);
    ui->bandComboBox->clear();
    ui->bandComboBox->insertItems(0, names);
}

void HistogramDisplay::showStatistics(int band)
{
    if (band < 0 || band >= histograms.size()) {
        return;
    }
    const Histogram& histogram = histograms.at(band);
    ui->mean->setText(decimalText(histogram.mean));
    ui->stddev->setText(decimalText(histogram.standardDeviation));
    ui->median->setText(decimalText(histogram.median));
    ui->mode->setText(decimalText(histogram.mode));
    ui->max->setText(QString::number(histogram.maximum, 10));
    ui->min->setText(QString::number(histogram.minimum, 10));
}

void HistogramDisplay::showBinAt(int x)
{
    const int band = ui->bandComboBox->currentIndex();
    if (band < 0 || band >= histograms.size() || !hasCounts(histograms.at(band))) {
        ui->histogramValue->clear();
        ui->histogramCount->clear();
        return;
    }
    const int width = ui->histogramFrame->width();
    if (x < 0 || x >= width) {
        return;
    }
    // "Value:" is the number of the bin, whatever value the bin stands for.
    const Histogram& histogram = histograms.at(band);
    const int bin = Util::truncateToInt(histogram.numberOfBins * (static_cast<double>(x) / width));
    ui->histogramValue->setText(QString::number(bin));
    ui->histogramCount->setText(QString::number(histogram.counts[bin]));
}

QRect HistogramDisplay::plotRectangle() const
{
    const QFrame* const frame = ui->histogramFrame;
    const QPoint topLeft = frame->mapTo(this, frame->rect().topLeft());
    const QPoint bottomRight = frame->mapTo(this, frame->rect().bottomRight());
    return QRect(topLeft, bottomRight - QPoint(1, 1));
}

} // namespace Corvane::Gui
