#include <plugins/webtiles/WebTilePropertiesPage.h>

#include <plugins/common/CacheBox.h>
#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileLayer.h>

#include <QDateTime>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace Corvane::Map {

namespace {

constexpr int stateInterval = 1000; // milliseconds
constexpr double second = 1000.0;

QString stateOf(const SourceHealth::Report& report)
{
    using State = SourceHealth::State;
    const QLocale locale;
    switch (report.state) {
    case State::Unasked:
        break;
    case State::Reachable:
        return WebTilePropertiesPage::tr("reachable");
    case State::Slow:
        return WebTilePropertiesPage::tr("slow: %1 seconds for an answer")
            .arg(locale.toString(static_cast<double>(report.answerTime) / second, 'f', 1));
    case State::Failing:
        return WebTilePropertiesPage::tr("failed: %1").arg(report.reason);
    case State::Waiting: {
        const QTime until = QDateTime::fromMSecsSinceEpoch(report.waitingUntil).time();
        return WebTilePropertiesPage::tr("waiting until %1: %2")
            .arg(locale.toString(until, QStringLiteral("HH:mm:ss")), report.reason);
    }
    }
    return WebTilePropertiesPage::tr("not asked yet");
}

QLabel* createText(const char* name, QWidget* parent)
{
    auto* const label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

WebTilePropertiesPage::WebTilePropertiesPage(QWidget* parent)
    : QWidget(parent),
      cache(new CacheBox(tr("Disk cache of all web tiles"), this))
{
    setObjectName(QStringLiteral("webTilePropertiesPage"));
    setWindowTitle(tr("Web Tiles"));
    auto* const column = new QVBoxLayout(this);
    column->addWidget(createSource());
    column->addWidget(createState());
    column->addWidget(cache);
    column->addStretch();
    timer.setInterval(stateInterval);
    connect(&timer, &QTimer::timeout, this, &WebTilePropertiesPage::showState);
    setEnabled(false);
}

QGroupBox* WebTilePropertiesPage::createSource()
{
    auto* const box = new QGroupBox(tr("Source"), this);
    auto* const form = new QFormLayout(box);
    url = new QLineEdit(box);
    url->setObjectName(QStringLiteral("urlLineEdit"));
    url->setReadOnly(true);
    form->addRow(tr("URL:"), url);
    attribution = new QLineEdit(box);
    attribution->setObjectName(QStringLiteral("attributionLineEdit"));
    form->addRow(tr("Attribution:"), attribution);
    minZoom = createZoom("minZoomSpinBox");
    maxZoom = createZoom("maxZoomSpinBox");
    connect(minZoom, QOverload<int>::of(&QSpinBox::valueChanged), maxZoom, &QSpinBox::setMinimum);
    form->addRow(tr("Coarsest zoom:"), minZoom);
    form->addRow(tr("Finest zoom:"), maxZoom);
    return box;
}

QSpinBox* WebTilePropertiesPage::createZoom(const char* name)
{
    auto* const zoom = new QSpinBox(this);
    zoom->setObjectName(QLatin1String(name));
    return zoom;
}

QGroupBox* WebTilePropertiesPage::createState()
{
    auto* const box = new QGroupBox(tr("Server"), this);
    auto* const row = new QHBoxLayout(box);
    state = createText("stateLabel", box);
    retryButton = new QPushButton(tr("Retry now"), box);
    retryButton->setObjectName(QStringLiteral("retryButton"));
    retryButton->setAutoDefault(false);
    row->addWidget(state, 1);
    row->addWidget(retryButton);
    connect(retryButton, &QPushButton::clicked, this, &WebTilePropertiesPage::retry);
    return box;
}

void WebTilePropertiesPage::setLayer(Map::Layer* newLayer)
{
    layer = qobject_cast<WebTileLayer*>(newLayer);
    setEnabled(layer);
    if (!layer) {
        timer.stop();
        return;
    }
    fillSource();
    showState();
    timer.start();
    cache->look();
}

void WebTilePropertiesPage::fillSource()
{
    const bool open = layer->isValid();
    const int finest = WebMercator::finestZoom(layer->getTileSize());
    url->setText(open ? layer->getUrl() : layer->getDataSource());
    url->setToolTip(url->text());
    attribution->setText(layer->getAttribution());
    maxZoom->setRange(0, finest);
    minZoom->setRange(0, finest);
    maxZoom->setValue(layer->getMaxZoom());
    minZoom->setValue(layer->getMinZoom());
    for (QLineEdit* const line : {url, attribution}) {
        line->setCursorPosition(0);
    }
    for (QWidget* const field : {static_cast<QWidget*>(attribution), static_cast<QWidget*>(minZoom),
                                 static_cast<QWidget*>(maxZoom)})
    {
        field->setEnabled(open);
    }
}

void WebTilePropertiesPage::showState()
{
    if (!layer) {
        return;
    }
    if (layer->isValid() && !attribution->isEnabled()) {
        fillSource(); // it was still opening
    }
    state->setText(layer->isValid() ? stateOf(layer->getHealth()) : layer->getSourceState());
    retryButton->setEnabled(layer->canRetry());
}

void WebTilePropertiesPage::retry()
{
    if (layer) {
        layer->retryNow();
        showState();
    }
}

// Only what was changed is set: the rest stays what the data source says.
void WebTilePropertiesPage::apply()
{
    if (!layer || !layer->isValid()) {
        return;
    }
    if (attribution->text() != layer->getAttribution()) {
        layer->setAttribution(attribution->text());
    }
    if (minZoom->value() != layer->getMinZoom()) {
        layer->setMinZoom(minZoom->value());
    }
    if (maxZoom->value() != layer->getMaxZoom()) {
        layer->setMaxZoom(maxZoom->value());
    }
}

} // namespace Corvane::Map
