#include <viewer/cells/CellGridPanel.h>

#include <viewer/cells/CellTexts.h>
#include <viewer/cells/LatestCells.h>
#include <viewer/cells/ProbePoint.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QSettings>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QToolButton>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

const char* const edgeKey = "Viewer/CellGrid/Edge";
const char* const headingsKey = "Viewer/CellGrid/Headings";
constexpr int smallest = 3; // cells
constexpr int largest = 15;
constexpr int usual = 5;
constexpr int cellMargin = 8; // pixels, of both sides together

bool isIn(Map::RasterLayer* layer, const QPointF& place)
{
    return layer && layer->isValid() && layer->isVisible() && LatestCells::canAsk(layer) &&
           layer->getBounds().normalized().contains(place);
}

} // namespace

CellGridPanel::CellGridPanel(ProbePoint* probePoint, QWidget* parent)
    : QWidget(parent),
      probe(probePoint)
{
    setObjectName("cellGridPanel");
    createControls();
    createTable();
    layOut();
    makeCells();
    connect(probe, &ProbePoint::changed, this, &CellGridPanel::look);
}

CellGridPanel::~CellGridPanel()
{
    QSettings* const settings = Application::instance()->getSettings();
    settings->setValue(edgeKey, edge());
    settings->setValue(headingsKey, headings->isChecked());
}

void CellGridPanel::createControls()
{
    const QSettings* const settings = Application::instance()->getSettings();
    layerName = new QLabel(this);
    layerName->setObjectName("cellGridLayer");
    layerName->setTextFormat(Qt::PlainText);
    layerName->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    state = new QLabel(this);
    state->setObjectName("cellGridState");
    state->setTextFormat(Qt::PlainText);
    state->setWordWrap(true);
    band = new QComboBox(this);
    band->setObjectName("cellGridBand");
    band->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    band->setMinimumContentsLength(8);
    size = new QComboBox(this);
    size->setObjectName("cellGridSize");
    for (int cellsAcross = smallest; cellsAcross <= largest; cellsAcross += 2) {
        size->addItem(tr("%1 x %1").arg(cellsAcross), cellsAcross);
    }
    const int kept = size->findData(settings->value(edgeKey, usual).toInt());
    size->setCurrentIndex(kept >= 0 ? kept : size->findData(usual));
    headings = new QCheckBox(tr("Copy &headings"), this);
    headings->setObjectName("cellGridHeadings");
    headings->setChecked(settings->value(headingsKey, true).toBool());
    headings->setToolTip(tr("Copy the numbers of columns and rows, too"));
    const auto chosen = QOverload<int>::of(&QComboBox::activated);
    connect(band, chosen, this, &CellGridPanel::look);
    connect(size, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
        makeCells();
        look();
    });
}

void CellGridPanel::createTable()
{
    table = new QTableWidget(this);
    table->setObjectName("cellGridTable");
    table->setAccessibleName(tr("Values of the cells"));
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setTabKeyNavigation(false); // tab leaves the table
    const int rowHeight = fontMetrics().height() + cellMargin;
    table->verticalHeader()->setDefaultSectionSize(rowHeight);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->setMinimumHeight((usual + 2) * rowHeight); // with the headings and a scroll bar
    table->setContextMenuPolicy(Qt::ActionsContextMenu);
    auto* const copySelected = new QAction(tr("&Copy"), this);
    copySelected->setObjectName("cellGridCopy");
    copySelected->setShortcut(QKeySequence::Copy);
    copySelected->setShortcutContext(
        Qt::WidgetShortcut); // the map's own is for the rest of the window
    connect(copySelected, &QAction::triggered, this, [this] { copy(true); });
    auto* const copyAll = new QAction(tr("Copy &All"), this);
    copyAll->setObjectName("cellGridCopyAll");
    connect(copyAll, &QAction::triggered, this, [this] { copy(false); });
    table->installEventFilter(this);
    table->addActions({copySelected, copyAll});
    table->addActions(probe->getMoves());
}

void CellGridPanel::layOut()
{
    auto* const bandLabel = new QLabel(tr("&Band:"), this);
    bandLabel->setBuddy(band);
    auto* const sizeLabel = new QLabel(tr("&Size:"), this);
    sizeLabel->setBuddy(size);
    auto* const copyButton = new QToolButton(this);
    copyButton->setObjectName("cellGridCopyButton");
    copyButton->setIcon(QIcon(":/resources/icons/24x24/copy.png"));
    copyButton->setToolTip(tr("Copy all cells, for a spreadsheet"));
    copyButton->setAccessibleName(tr("Copy all cells"));
    copyButton->setFocusPolicy(Qt::StrongFocus);
    connect(copyButton, &QToolButton::clicked, this, [this] { copy(false); });
    auto* const grid = new QGridLayout(this);
    grid->addWidget(layerName, 0, 0, 1, 5);
    grid->addWidget(bandLabel, 1, 0);
    grid->addWidget(band, 1, 1);
    grid->addWidget(sizeLabel, 1, 2);
    grid->addWidget(size, 1, 3);
    grid->setColumnStretch(4, 1);
    grid->addWidget(table, 2, 0, 1, 5);
    grid->addWidget(state, 3, 0, 1, 5);
    grid->addWidget(headings, 4, 0, 1, 3);
    grid->addWidget(copyButton, 4, 3, 1, 2, Qt::AlignRight);
    grid->setRowStretch(2, 1);
    setTabOrder(band, size);
    setTabOrder(size, table);
    setTabOrder(table, headings);
    setTabOrder(headings, copyButton);
}

int CellGridPanel::edge() const
{
    return size->currentData().toInt();
}

/// The middle one stands out.
void CellGridPanel::makeCells()
{
    table->clear();
    table->setRowCount(edge());
    table->setColumnCount(edge());
    for (int row = 0; row < edge(); ++row) {
        for (int column = 0; column < edge(); ++column) {
            auto* const item = new QTableWidgetItem;
            item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            table->setItem(row, column, item);
        }
    }
    QTableWidgetItem* const middle = table->item(edge() / 2, edge() / 2);
    QFont font = table->font();
    font.setBold(true);
    middle->setFont(font);
    QColor ground = palette().color(QPalette::Highlight);
    ground.setAlphaF(0.25);
    middle->setBackground(ground);
    table->scrollToItem(middle, QAbstractItemView::PositionAtCenter);
    showState(QString());
}

void CellGridPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    probe->setWanted(this, true);
    look();
}

void CellGridPanel::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    probe->setWanted(this, false);
}

/// The key for copying comes to the table itself, which would copy one cell.
bool CellGridPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
    {
        copy(true);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

/// Null where there is none.
Map::RasterLayer* CellGridPanel::layerToShow() const
{
    Map::MapView* const view = probe->getView();
    if (!view || !probe->hasPlace()) {
        return nullptr;
    }
    // a selection may outlive its layer
    Map::Layer* const selected = view->getLayerSelection();
    const auto chosen =
        view->getLayers().contains(selected) ? qobject_cast<Map::RasterLayer*>(selected) : nullptr;
    if (isIn(chosen, probe->getPlace())) {
        return chosen;
    }
    for (int i = view->getNumberOfLayers() - 1; i >= 0; --i) {
        const auto raster = qobject_cast<Map::RasterLayer*>(view->getLayerAt(i));
        if (isIn(raster, probe->getPlace())) {
            return raster;
        }
    }
    return nullptr;
}

void CellGridPanel::look()
{
    if (!isVisible()) {
        return;
    }
    Map::RasterLayer* const raster = layerToShow();
    setLayer(raster);
    if (!raster) {
        showState(probe->getView() ? tr("There is no raster at this place.")
                                   : tr("There is no map."));
        return;
    }
    layerName->setText(raster->getDescription());
    layerName->setToolTip(raster->getDescription());
    if (band->count() != std::max(raster->getNumberOfBands(), 1)) {
        fillBands();
    }
    cells->ask({probe->getPlace(), edge(), band->currentIndex() + 1});
}

void CellGridPanel::setLayer(Map::RasterLayer* newLayer)
{
    if (layer == newLayer && (cells || !newLayer)) {
        return;
    }
    cells.reset();
    layer = newLayer;
    layerName->clear();
    table->horizontalHeader()->setMinimumSectionSize(-1); // the style's own
    fillBands();
    if (newLayer) {
        cells = std::make_unique<LatestCells>(newLayer, nullptr);
        connect(cells.get(), &LatestCells::answered, this, &CellGridPanel::show);
        connect(cells.get(), &LatestCells::waiting, this, [this] { showState(tr("waiting...")); });
    }
}

/// Their names come with the answers.
void CellGridPanel::fillBands()
{
    const auto raster = qobject_cast<Map::RasterLayer*>(layer.data());
    const int before = band->currentIndex();
    const int count = raster ? std::max(raster->getNumberOfBands(), 1) : 0;
    band->clear();
    for (int number = 1; number <= count; ++number) {
        band->addItem(bandText(QString(), number));
    }
    band->setCurrentIndex(std::min(std::max(before, 0), count - 1));
}

void CellGridPanel::show(const Map::CellReading& reading)
{
    if (reading.state == Map::CellReading::State::Failed) {
        showState(tr("no answer: %1").arg(reading.failure));
        return;
    }
    const Map::CellBand values = reading.bands.value(0);
    if (reading.state == Map::CellReading::State::Outside ||
        values.values.size() != edge() * edge()) {
        showState(reading.state == Map::CellReading::State::Outside ? tr("no cell here")
                                                                    : QString());
        return;
    }
    const int number = band->currentIndex();
    if (!values.name.isEmpty() && number >= 0) {
        band->setItemText(number, tr("%1: %2").arg(number + 1).arg(values.name));
    }
    QStringList columns;
    QStringList rows;
    for (int i = 0; i < edge(); ++i) {
        columns << QString::number(reading.column - edge() / 2 + i);
        rows << QString::number(reading.row - edge() / 2 + i);
    }
    table->setHorizontalHeaderLabels(columns);
    table->setVerticalHeaderLabels(rows);
    for (int i = 0; i < edge() * edge(); ++i) {
        const Map::CellValue& value = values.values[i];
        QTableWidgetItem* const item = table->item(i / edge(), i % edge());
        item->setText(cellText(value));
        item->setToolTip(cellToolTip(value, values.type));
        item->setFont(cellFont(item->font(), value));
    }
    fitColumns();
    state->setText(reading.note);
    state->setVisible(!reading.note.isEmpty());
}

/// They fill the panel while its width is enough for their texts, and do not shrink again, so that
/// the table lies still while the pointer moves.
void CellGridPanel::fitColumns()
{
    const QFontMetrics metrics(table->item(edge() / 2, edge() / 2)->font());
    int needed = table->horizontalHeader()->minimumSectionSize();
    for (int i = 0; i < edge() * edge(); ++i) {
        const QString text = table->item(i / edge(), i % edge())->text();
        needed = std::max(needed, metrics.horizontalAdvance(text) + cellMargin);
    }
    if (needed > table->horizontalHeader()->minimumSectionSize()) {
        table->horizontalHeader()->setMinimumSectionSize(needed);
    }
}

/// Values of another place are not left standing.
void CellGridPanel::showState(const QString& text)
{
    for (int i = 0; i < edge() * edge(); ++i) {
        QTableWidgetItem* const item = table->item(i / edge(), i % edge());
        item->setText(QString());
        item->setToolTip(QString());
    }
    const QStringList none = QVector<QString>(edge(), QString(" ")).toList();
    table->setHorizontalHeaderLabels(none);
    table->setVerticalHeaderLabels(none);
    state->setText(text);
    state->setVisible(!text.isEmpty());
}

QString CellGridPanel::toText(bool selectionOnly) const
{
    QRect part(0, 0, edge(), edge());
    QRect selected;
    for (const QModelIndex& index : table->selectionModel()->selectedIndexes()) {
        selected |= QRect(index.column(), index.row(), 1, 1);
    }
    if (selectionOnly && !selected.isEmpty()) {
        part = selected;
    }
    QStringList lines;
    if (headings->isChecked()) {
        QStringList heads{QString()};
        for (int column = part.left(); column <= part.right(); ++column) {
            heads << table->horizontalHeaderItem(column)->text().trimmed();
        }
        lines << heads.join('\t');
    }
    for (int row = part.top(); row <= part.bottom(); ++row) {
        QStringList texts;
        if (headings->isChecked()) {
            texts << table->verticalHeaderItem(row)->text().trimmed();
        }
        for (int column = part.left(); column <= part.right(); ++column) {
            texts << table->item(row, column)->text();
        }
        lines << texts.join('\t');
    }
    return lines.join('\n') + '\n';
}

void CellGridPanel::copy(bool selectionOnly) const
{
    QApplication::clipboard()->setText(toText(selectionOnly));
}

} // namespace Corvane::Viewer
