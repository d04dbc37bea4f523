#include <viewer/cells/IdentifyPanel.h>

#include <viewer/cells/CellTexts.h>
#include <viewer/cells/LatestCells.h>
#include <viewer/cells/ProbePoint.h>
#include <viewer/places/CoordinateForm.h>

#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Corvane::Viewer {
namespace {

enum Column
{
    NameColumn,
    ValueColumn
};

bool liesIn(const QRectF& bounds, const QPointF& place)
{
    return bounds.normalized().contains(place);
}

/// Topmost first: what can be seen of the map there.
QVector<Map::Layer*> rastersAt(Map::MapView& view, const QPointF& place)
{
    QVector<Map::Layer*> found;
    for (int i = view.getNumberOfLayers() - 1; i >= 0; --i) {
        const auto raster = qobject_cast<Map::RasterLayer*>(view.getLayerAt(i));
        if (raster && raster->isValid() && raster->isVisible() &&
            liesIn(raster->getBounds(), place)) {
            found << raster;
        }
    }
    return found;
}

void setBand(QTreeWidgetItem* item, const Map::CellBand& band, int number)
{
    const Map::CellValue value = band.values.value(0);
    item->setText(NameColumn, bandText(band.name, number));
    item->setText(ValueColumn, cellText(value));
    item->setToolTip(ValueColumn, cellToolTip(value, band.type));
    item->setFont(ValueColumn, cellFont(item->font(ValueColumn), value));
    item->setTextAlignment(ValueColumn, Qt::AlignRight | Qt::AlignVCenter);
}

} // namespace

IdentifyPanel::IdentifyPanel(ProbePoint* probePoint, QWidget* parent)
    : QWidget(parent),
      probe(probePoint)
{
    setObjectName("identifyPanel");
    createTree();
    createRows();
    connect(probe, &ProbePoint::changed, this, &IdentifyPanel::look);
    connect(probe, &ProbePoint::fixedChanged, fixed, &QToolButton::setChecked);
    connect(fixed, &QToolButton::clicked, probe, &ProbePoint::setFixed);
}

void IdentifyPanel::createTree()
{
    tree = new QTreeWidget(this);
    tree->setObjectName("identifyTree");
    tree->setAccessibleName(tr("Values of the layers"));
    tree->setColumnCount(2);
    tree->setHeaderLabels({tr("Layer and band"), tr("Value")});
    tree->header()->setStretchLastSection(true);
    tree->header()->resizeSection(NameColumn, 150);
    tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree->setUniformRowHeights(true);
    tree->setContextMenuPolicy(Qt::ActionsContextMenu);
    auto* const copyAll = new QAction(tr("&Copy"), this);
    copyAll->setObjectName("identifyCopy");
    copyAll->setShortcut(QKeySequence::Copy);
    copyAll->setShortcutContext(Qt::WidgetShortcut); // the map's own is for the rest of the window
    connect(copyAll, &QAction::triggered, this, &IdentifyPanel::copy);
    tree->addAction(copyAll);
    tree->installEventFilter(this);
    tree->addActions(probe->getMoves());
}

void IdentifyPanel::createRows()
{
    position = new QLabel(this);
    position->setObjectName("identifyPosition");
    position->setTextInteractionFlags(Qt::TextSelectableByMouse);
    position->setWordWrap(true);
    fixed = new QToolButton(this);
    fixed->setObjectName("identifyFixed");
    fixed->setText(tr("&Fixed"));
    fixed->setCheckable(true);
    fixed->setFocusPolicy(Qt::StrongFocus);
    fixed->setToolTip(tr("Stay at this place instead of following the pointer.\n"
                         "A click into the map does it, too."));
    auto* const copyButton = new QToolButton(this);
    copyButton->setObjectName("identifyCopyButton");
    copyButton->setIcon(QIcon(":/resources/icons/24x24/copy.png"));
    copyButton->setToolTip(tr("Copy all values"));
    copyButton->setAccessibleName(tr("Copy all values"));
    copyButton->setFocusPolicy(Qt::StrongFocus);
    connect(copyButton, &QToolButton::clicked, this, &IdentifyPanel::copy);
    hint = new QLabel(this);
    hint->setObjectName("identifyHint");
    hint->setWordWrap(true);
    auto* const row = new QHBoxLayout;
    row->addWidget(fixed);
    row->addStretch(1);
    row->addWidget(copyButton);
    auto* const rows = new QVBoxLayout(this);
    rows->addWidget(position);
    rows->addLayout(row);
    rows->addWidget(hint);
    rows->addWidget(tree, 1);
    setTabOrder(fixed, copyButton);
    setTabOrder(copyButton, tree);
}

void IdentifyPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    probe->setWanted(this, true);
    look();
}

void IdentifyPanel::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    probe->setWanted(this, false);
}

/// The key for copying comes to the list itself, which would copy one text.
bool IdentifyPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
    {
        copy();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void IdentifyPanel::look()
{
    if (!isVisible()) {
        return;
    }
    Map::MapView* const view = probe->getView();
    const bool known = view && probe->hasPlace();
    const QVector<Map::Layer*> layers =
        known ? rastersAt(*view, probe->getPlace()) : QVector<Map::Layer*>();
    dropMissing(layers);
    for (int i = 0; i < layers.size(); ++i) {
        Entry& entry = entryOf(layers[i], i);
        entry.item->setText(NameColumn, layers[i]->getDescription());
        if (entry.cells) {
            entry.cells->ask({probe->getPlace(), 1, 0});
        } else {
            showState(layers[i]->getUid(), tr("gives no values"));
        }
    }
    hint->setVisible(layers.isEmpty());
    hint->setText(!view ? tr("There is no map.") : tr("There is no raster at this place."));
    showPlace();
}

void IdentifyPanel::showPlace()
{
    Map::MapView* const view = probe->getView();
    if (!view || !probe->hasPlace()) {
        position->clear();
        return;
    }
    position->setText(coordinateText(CoordinateForm::Map, *view, probe->getPlace()));
    position->setToolTip(position->text());
}

void IdentifyPanel::dropMissing(const QVector<Map::Layer*>& layers)
{
    QList<QUuid> wanted;
    for (Map::Layer* layer : layers) {
        wanted << layer->getUid();
    }
    for (const QUuid& uid : entries.keys()) {
        if (!wanted.contains(uid)) {
            const Entry entry = entries.take(uid);
            delete entry.cells;
            delete entry.item;
        }
    }
}

/// Items stay while they can: what is selected and open in the tree stays so.
IdentifyPanel::Entry& IdentifyPanel::entryOf(Map::Layer* layer, int place)
{
    const QUuid uid = layer->getUid();
    Entry& entry = entries[uid];
    if (!entry.item) {
        entry.item = new QTreeWidgetItem;
        tree->insertTopLevelItem(place, entry.item);
        entry.item->setExpanded(true);
        if (LatestCells::canAsk(layer)) {
            entry.cells = new LatestCells(layer, this);
            connect(entry.cells, &LatestCells::answered, this,
                    [this, uid](const Map::CellReading& reading) { show(uid, reading); });
            connect(entry.cells, &LatestCells::waiting, this,
                    [this, uid] { showState(uid, tr("waiting...")); });
        }
    }
    const int old = tree->indexOfTopLevelItem(entry.item);
    if (old != place) {
        const bool expanded = entry.item->isExpanded();
        tree->insertTopLevelItem(place, tree->takeTopLevelItem(old));
        entry.item->setExpanded(expanded);
    }
    return entry;
}

void IdentifyPanel::show(const QUuid& uid, const Map::CellReading& reading)
{
    QTreeWidgetItem* const item = entries.value(uid).item;
    if (!item) {
        return;
    }
    if (reading.state == Map::CellReading::State::Failed) {
        showState(uid, tr("no answer: %1").arg(reading.failure));
        return;
    }
    if (reading.state == Map::CellReading::State::Outside) {
        showState(uid, tr("no cell here"));
        return;
    }
    const QString place = tr("column %1, row %2").arg(reading.column).arg(reading.row);
    item->setText(ValueColumn,
                  reading.note.isEmpty() ? place : tr("%1; %2").arg(place, reading.note));
    item->setToolTip(ValueColumn, item->text(ValueColumn));
    item->setData(ValueColumn, Qt::UserRole, QPoint(reading.column, reading.row));
    const int count = static_cast<int>(reading.bands.size());
    while (item->childCount() > count) {
        delete item->child(item->childCount() - 1);
    }
    for (int i = 0; i < count; ++i) {
        QTreeWidgetItem* const child =
            i < item->childCount() ? item->child(i) : new QTreeWidgetItem(item);
        setBand(child, reading.bands[i], i + 1);
    }
}

/// Values of another place are not left standing.
void IdentifyPanel::showState(const QUuid& uid, const QString& text)
{
    QTreeWidgetItem* const item = entries.value(uid).item;
    if (!item) {
        return;
    }
    qDeleteAll(item->takeChildren());
    item->setText(ValueColumn, text);
    item->setToolTip(ValueColumn, text);
    item->setData(ValueColumn, Qt::UserRole, QVariant());
}

QString IdentifyPanel::toText() const
{
    QStringList lines{
        QStringList{tr("Layer"), tr("Column"), tr("Row"), tr("Band"), tr("Value")}.join('\t')};
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* const item = tree->topLevelItem(i);
        const QPoint cell = item->data(ValueColumn, Qt::UserRole).toPoint();
        for (int band = 0; band < item->childCount(); ++band) {
            lines << QStringList{item->text(NameColumn).simplified(), QString::number(cell.x()),
                                 QString::number(cell.y()), item->child(band)->text(NameColumn),
                                 item->child(band)->text(ValueColumn)}
                         .join('\t');
        }
    }
    return lines.join('\n') + '\n';
}

void IdentifyPanel::copy() const
{
    QApplication::clipboard()->setText(toText());
}

} // namespace Corvane::Viewer
