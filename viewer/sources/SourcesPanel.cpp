#include <viewer/sources/SourcesPanel.h>

#include <viewer/sources/SourceTexts.h>
#include <viewer/sources/SourceWatch.h>

#include <corvane/map/Layer.h>

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

enum Column
{
    LayerColumn,
    ServerColumn,
    StateColumn,
    MapColumn
};

constexpr int uidRole = Qt::UserRole;

} // namespace

SourcesPanel::SourcesPanel(SourceWatch* sourceWatch, QWidget* parent)
    : QWidget(parent),
      watch(sourceWatch)
{
    setObjectName("sourcesPanel");
    createList();
    nothing = new QLabel(tr("No layer of the open maps comes over the network."), this);
    nothing->setObjectName("noSources");
    nothing->setWordWrap(true);
    nothing->setAlignment(Qt::AlignCenter);
    nothing->setEnabled(false);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    column->addWidget(list, 1);
    column->addWidget(nothing, 1);
    column->addWidget(createButtons());
    connect(watch, &SourceWatch::looked, this, [this] {
        if (isVisible()) {
            renew();
        }
    });
    renew();
}

void SourcesPanel::createList()
{
    list = new QTreeWidget(this);
    list->setObjectName("sources");
    list->setAccessibleName(tr("Remote layers"));
    list->setHeaderLabels({tr("Layer"), tr("Server"), tr("State"), tr("Map")});
    list->setRootIsDecorated(false);
    list->setAllColumnsShowFocus(true);
    list->setUniformRowHeights(true);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(StateColumn, QHeaderView::Stretch);
    list->header()->setMinimumSectionSize(60);
    connect(list, &QTreeWidget::itemSelectionChanged, this, &SourcesPanel::enableButtons);
    connect(list, &QTreeWidget::itemActivated, this, &SourcesPanel::tryAgain);
}

QWidget* SourcesPanel::createButtons()
{
    auto* const buttons = new QWidget(this);
    auto* const row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    tryAgainButton = new QPushButton(tr("&Try Again"), buttons);
    tryAgainButton->setObjectName("tryAgain");
    tryAgainButton->setToolTip(tr("Ask the server of the selected layer at once"));
    tryAllButton = new QPushButton(tr("Try A&ll"), buttons);
    tryAllButton->setObjectName("tryAll");
    tryAllButton->setToolTip(tr("Ask all servers at once that do not answer"));
    row->addStretch();
    row->addWidget(tryAgainButton);
    row->addWidget(tryAllButton);
    connect(tryAgainButton, &QPushButton::clicked, this, &SourcesPanel::tryAgain);
    connect(tryAllButton, &QPushButton::clicked, watch, &SourceWatch::tryAll);
    return buttons;
}

void SourcesPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    watch->look();
    for (const int column : {LayerColumn, ServerColumn}) {
        list->resizeColumnToContents(column);
    }
}

// Rows stay in their places as long as the layers do, and with them the selection.
void SourcesPanel::renew()
{
    const QVector<WatchedSource>& sources = watch->getSources();
    QTreeWidgetItem* const current = list->currentItem();
    const QVariant selected = current ? current->data(LayerColumn, uidRole) : QVariant();
    while (list->topLevelItemCount() > sources.size()) {
        delete list->topLevelItem(list->topLevelItemCount() - 1);
    }
    while (list->topLevelItemCount() < sources.size()) {
        new QTreeWidgetItem(list);
    }
    QTreeWidgetItem* toSelect = nullptr;
    for (int i = 0; i < sources.size(); ++i) {
        QTreeWidgetItem* const row = list->topLevelItem(i);
        fill(*row, sources.at(i));
        if (row->data(LayerColumn, uidRole) == selected) {
            toSelect = row;
        }
    }
    if (toSelect != list->currentItem()) {
        list->setCurrentItem(toSelect);
    }
    list->setVisible(!sources.isEmpty());
    nothing->setVisible(sources.isEmpty());
    enableButtons();
}

void SourcesPanel::fill(QTreeWidgetItem& row, const WatchedSource& source) const
{
    const QString state = sourceStateText(source.report);
    row.setData(LayerColumn, uidRole, source.layer->getUid());
    row.setText(LayerColumn, source.layerName);
    row.setText(ServerColumn, source.report.host);
    row.setText(StateColumn, state);
    row.setToolTip(StateColumn, state);
    row.setText(MapColumn, source.mapName);
    const int known = row.data(StateColumn, uidRole).toInt() - 1; // no state yet is -1
    if (known != static_cast<int>(source.report.state)) {
        row.setIcon(StateColumn, sourceStateIcon(source.report));
        row.setData(StateColumn, uidRole, static_cast<int>(source.report.state) + 1);
    }
}

Map::Layer* SourcesPanel::selectedLayer() const
{
    QTreeWidgetItem* const row = list->selectedItems().value(0);
    const int index = row ? list->indexOfTopLevelItem(row) : -1;
    return index >= 0 && index < watch->getSources().size() ? watch->getSources().at(index).layer
                                                            : nullptr;
}

void SourcesPanel::enableButtons()
{
    const QVector<WatchedSource>& sources = watch->getSources();
    tryAgainButton->setEnabled(selectedLayer() &&
                               SourceWatch::reportOf(selectedLayer()).isTrouble());
    tryAllButton->setEnabled(
        std::any_of(sources.begin(), sources.end(),
                    [](const WatchedSource& source) { return source.report.isTrouble(); }));
}

void SourcesPanel::tryAgain()
{
    if (Map::Layer* const layer = selectedLayer()) {
        watch->tryAgain(layer);
    }
}

} // namespace Corvane::Viewer
