#include <plugins/common/ServedBudgetPage.h>

#include <plugins/common/CacheBox.h>
#include <plugins/common/TileBudget.h>
#include <plugins/common/TileCache.h>

#include <QFormLayout>
#include <QGroupBox>
#include <QSpinBox>
#include <QVBoxLayout>

namespace Corvane::Map {

ServedBudgetPage::ServedBudgetPage(const QString& pluginName, const QString& title, QWidget* parent)
    : BudgetPage(
          pluginName, title, Scope::AllLayers, [] { return TileBudget::instance().heldBytes(); },
          parent),
      disk(createField("diskCacheSpinBox", keyOf("DiskCacheMB"), TileCache::usualMegabytes)),
      cache(new CacheBox(tr("In the disk cache now"), this))
{
    TileCache::instance().setUp(pluginName);
    disk->setSpecialValueText(tr("No disk cache"));
    auto* const box = new QGroupBox(tr("Disk"), this);
    auto* const form = new QFormLayout(box);
    form->addRow(tr("Disk &cache at most:"), disk);
    QVBoxLayout* const column = getColumn();
    column->insertWidget(column->count() - 1, box);
    column->insertWidget(column->count() - 1, cache);
}

void ServedBudgetPage::apply()
{
    BudgetPage::apply();
    keep(keyOf("DiskCacheMB"), disk->value());
    cache->takeSettings(getPlugin());
}

void ServedBudgetPage::showEvent(QShowEvent* event)
{
    BudgetPage::showEvent(event);
    cache->look();
}

} // namespace Corvane::Map
