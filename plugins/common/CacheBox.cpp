#include <plugins/common/CacheBox.h>

#include <plugins/common/TileCache.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>

namespace Corvane::Map {

CacheBox::CacheBox(const QString& title, QWidget* parent)
    : QGroupBox(title, parent),
      label(new QLabel(this)),
      clearButton(new QPushButton(tr("Clear"), this))
{
    label->setObjectName(QStringLiteral("cacheLabel"));
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    clearButton->setObjectName(QStringLiteral("clearCacheButton"));
    clearButton->setAutoDefault(false);
    auto* const row = new QHBoxLayout(this);
    row->addWidget(label, 1);
    row->addWidget(clearButton);
    connect(clearButton, &QPushButton::clicked, this,
            [this] { start(tr("being cleared..."), [](TileCache& cache) { cache.clear(); }); });
}

CacheBox::~CacheBox()
{
    dropTask();
}

void CacheBox::look()
{
    start(tr("being counted..."), [](TileCache&) {});
}

void CacheBox::takeSettings(const QString& plugin)
{
    const CachePlace place = TileCache::placeFor(plugin); // the settings are for this thread
    start(tr("being counted..."), [place](TileCache& cache) {
        if (place.folder.isEmpty()) {
            cache.clear();
        }
        cache.setFolder(place.folder, place.limit);
    });
}

void CacheBox::start(const QString& meanwhile, const std::function<void(TileCache&)>& first)
{
    dropTask();
    clearButton->setEnabled(false);
    label->setText(meanwhile);
    task = std::make_shared<PoolJob<CacheFill>>(
        [first](QString*, const std::atomic<bool>&) {
            TileCache& cache = TileCache::instance();
            first(cache);
            return std::make_shared<CacheFill>(cache.fill());
        },
        [this] { QMetaObject::invokeMethod(this, "showFill", Qt::QueuedConnection); });
    task->start();
    if (!task->startTelling()) {
        showFill();
    }
}

// A task that was dropped may have told before: then there is none, or another.
void CacheBox::showFill()
{
    if (!task || !task->waitFor(0)) {
        return;
    }
    QString error;
    const std::shared_ptr<CacheFill> fill = task->result(&error);
    task.reset();
    const QLocale locale;
    label->setText(fill->limit > 0 ? tr("%1 of %2")
                                         .arg(locale.formattedDataSize(fill->bytes),
                                              locale.formattedDataSize(fill->limit))
                                   : tr("switched off"));
    clearButton->setEnabled(fill->bytes > 0);
}

void CacheBox::dropTask()
{
    if (task) {
        task->abandon();
        task.reset();
    }
}

} // namespace Corvane::Map
