#pragma once

#include <plugins/common/PoolJob.h>

#include <QGroupBox>

#include <functional>
#include <memory>

class QLabel;
class QPushButton;

namespace Corvane::Map {

class TileCache;
struct CacheFill;

/// Shows how full the plugin's disk cache is, with a button that clears it. What takes a while is
/// done on a pool thread. GUI thread only.
class CacheBox : public QGroupBox
{
    Q_OBJECT
public:
    explicit CacheBox(const QString& title, QWidget* parent = nullptr);
    /// What it has begun with the cache ends by itself.
    ~CacheBox() override;

    /// Counts anew.
    void look();
    /// Gives the cache the size that the settings name for the plugin now, and counts anew. A cache
    /// that is switched off is emptied.
    void takeSettings(const QString& plugin);

private slots:
    void showFill();

private:
    void start(const QString& meanwhile, const std::function<void(TileCache&)>& first);
    void dropTask();

    QLabel* label;
    QPushButton* clearButton;
    std::shared_ptr<PoolJob<CacheFill>> task; // while it is under way
};

} // namespace Corvane::Map
