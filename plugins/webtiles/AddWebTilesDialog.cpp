#include <plugins/webtiles/AddWebTilesDialog.h>

#include "ui_AddWebTilesDialog.h"

#include <plugins/common/PoolActivity.h>
#include <plugins/common/TileCache.h>
#include <plugins/common/TileFetch.h>
#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileLayer.h>
#include <plugins/webtiles/WebTileOffer.h>

#include <QPixmap>
#include <QPushButton>

#include <algorithm>

namespace Corvane::Map {

namespace {

// On a pool thread: from the source to the picture of one of its tiles.
std::shared_ptr<TileAnswer> tryOut(const QString& url, const WebTileSettings& settings,
                                   const WebTile& tile, const std::atomic<bool>& abandoned,
                                   QString* error)
{
    const auto offer = askForOffer(url, settings, abandoned, error);
    const auto source = offer ? WebTileSource::make(*offer, settings, url, error) : nullptr;
    if (!source) {
        return nullptr;
    }
    if (tile.zoom < source->minZoom || tile.zoom > source->maxZoom) {
        *error = AddWebTilesDialog::tr("The source has the zooms %1 to %2.")
                     .arg(source->minZoom)
                     .arg(source->maxZoom);
        return nullptr;
    }
    return std::make_shared<TileAnswer>(fetchTile(
        source->orderFor(tile), [&abandoned] { return abandoned || PoolActivity::isEnding(); }));
}

int columnsAt(int zoom)
{
    return 1 << std::clamp(zoom, 0, WebMercator::finestZoom(0));
}

} // namespace

AddWebTilesDialog::AddWebTilesDialog(QWidget* parent)
    : QDialog(parent),
      ui(new Ui::AddWebTilesDialog)
{
    TileCache::instance().setUp(QStringLiteral("WebTiles"));
    ui->setupUi(this);
    ui->buttonBox->button(QDialogButtonBox::Ok)->setText(tr("Add"));
    ui->buttonBox->button(QDialogButtonBox::Ok)->setAutoDefault(false);
    ui->buttonBox->button(QDialogButtonBox::Cancel)->setAutoDefault(false);
    ui->testButton->setDefault(true);
    connectWidgets();
    forgetTest();
}

AddWebTilesDialog::~AddWebTilesDialog()
{
    dropTest();
    delete ui;
}

// Whatever is changed has not been tested.
void AddWebTilesDialog::connectWidgets()
{
    const auto lines = {ui->urlLineEdit, ui->hostsLineEdit, ui->userAgentLineEdit};
    for (QLineEdit* const line : lines) {
        connect(line, &QLineEdit::textChanged, this, &AddWebTilesDialog::forgetTest);
    }
    const auto numbers = {ui->minZoomSpinBox, ui->maxZoomSpinBox, ui->testZoomSpinBox,
                          ui->testColumnSpinBox, ui->testRowSpinBox};
    for (QSpinBox* const number : numbers) {
        connect(number, QOverload<int>::of(&QSpinBox::valueChanged), this,
                &AddWebTilesDialog::forgetTest);
    }
    connect(ui->tileSizeComboBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &AddWebTilesDialog::forgetTest);
    connect(ui->testZoomSpinBox, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int zoom) {
                ui->testColumnSpinBox->setMaximum(columnsAt(zoom) - 1);
                ui->testRowSpinBox->setMaximum(columnsAt(zoom) - 1);
            });
    connect(ui->testButton, &QPushButton::clicked, this, &AddWebTilesDialog::startTest);
}

QString AddWebTilesDialog::enteredUrl() const
{
    return ui->urlLineEdit->text().trimmed();
}

WebTileSettings AddWebTilesDialog::enteredSettings() const
{
    const auto zoomIn = [](const QSpinBox* box) {
        return box->value() < 0 ? std::nullopt : std::optional<int>(box->value());
    };
    WebTileSettings settings;
    settings.minZoom = zoomIn(ui->minZoomSpinBox);
    settings.maxZoom = zoomIn(ui->maxZoomSpinBox);
    const int size = ui->tileSizeComboBox->currentText().toInt(); // 0 for the source's own
    settings.tileSize = size > 0 ? std::optional<int>(size) : std::nullopt;
    settings.hosts = ui->hostsLineEdit->text().trimmed();
    settings.userAgentSuffix = ui->userAgentLineEdit->text().simplified();
    settings.attribution = ui->attributionLineEdit->text().trimmed();
    return settings;
}

WebTile AddWebTilesDialog::testTile() const
{
    return {ui->testZoomSpinBox->value(), static_cast<unsigned int>(ui->testColumnSpinBox->value()),
            static_cast<unsigned int>(ui->testRowSpinBox->value())};
}

void AddWebTilesDialog::startTest()
{
    forgetTest();
    const QString url = enteredUrl();
    const WebTileSettings settings = enteredSettings();
    const WebTile tile = testTile();
    test = std::make_shared<PoolJob<TileAnswer>>(
        [=](QString* error, const std::atomic<bool>& abandoned) {
            return tryOut(url, settings, tile, abandoned, error);
        },
        [this] { QMetaObject::invokeMethod(this, "takeAnswer", Qt::QueuedConnection); });
    ui->statusLabel->setText(tr("Asking for a tile..."));
    test->startRemote(); // tiles that a server keeps waiting may have all threads of the pool
    if (!test->startTelling()) {
        takeAnswer();
    }
}

// A test that was dropped may have told before: then there is none, or another.
void AddWebTilesDialog::takeAnswer()
{
    if (!test || !test->waitFor(0)) {
        return;
    }
    QString error;
    const std::shared_ptr<TileAnswer> answer = test->result(&error);
    dropTest();
    if (answer && answer->kind == TileAnswer::Kind::Picture) {
        ui->previewLabel->setPixmap(
            QPixmap::fromImage(answer->picture)
                .scaled(ui->previewLabel->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
        ui->statusLabel->setText(tr("This is the tile that the server sent."));
        setTested(true);
        return;
    }
    const bool empty = answer && answer->kind == TileAnswer::Kind::Empty;
    const QString reason = answer ? answer->failure : error;
    ui->statusLabel->setText(
        empty ? tr("The server has no such tile. Test another one, or look at the URL.")
              : tr("No tile came: %1").arg(reason));
    setTested(false);
}

void AddWebTilesDialog::dropTest()
{
    if (test) {
        test->abandon();
        test.reset();
    }
}

void AddWebTilesDialog::forgetTest()
{
    dropTest();
    ui->previewLabel->clear();
    ui->statusLabel->setText(tr("Test the source before you add it."));
    ui->testButton->setEnabled(!enteredUrl().isEmpty());
    ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(false);
}

void AddWebTilesDialog::setTested(bool ok)
{
    ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(ok);
    emit tested(ok);
}

std::unique_ptr<WebTileLayer> AddWebTilesDialog::makeLayer() const
{
    const WebTileSettings settings = enteredSettings();
    auto layer = std::make_unique<WebTileLayer>();
    layer->setMinZoom(settings.minZoom.value_or(-1));
    layer->setMaxZoom(settings.maxZoom.value_or(-1));
    layer->setTileSize(settings.tileSize.value_or(0));
    layer->setHosts(settings.hosts);
    layer->setUserAgentSuffix(settings.userAgentSuffix);
    layer->setAttribution(settings.attribution);
    return layer->setDataSource(enteredUrl()) ? std::move(layer) : nullptr;
}

} // namespace Corvane::Map
