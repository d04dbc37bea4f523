#pragma once

#include <plugins/common/BudgetPage.h>

namespace Corvane::Map {

class CacheBox;

/// The page in the preferences of a plugin whose tiles come from servers: the memory of its layers,
/// and the size of its disk cache, with what is in it. GUI thread only.
class ServedBudgetPage : public BudgetPage
{
    Q_OBJECT
public:
    ServedBudgetPage(const QString& plugin, const QString& title, QWidget* parent = nullptr);

public slots:
    /// The disk cache shrinks at once, on a pool thread.
    void apply() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QSpinBox* disk;
    CacheBox* cache;
};

} // namespace Corvane::Map
