#pragma once

#include <QTimer>
#include <QWidget>

#include <functional>

class QGroupBox;
class QLabel;
class QSpinBox;
class QVBoxLayout;

namespace Corvane::Map {

/// The page of a plugin in the preferences: how much memory its layers may hold, and how much they
/// hold now. GUI thread only.
class BudgetPage : public QWidget
{
    Q_OBJECT
public:
    /// What the budget is for.
    enum class Scope
    {
        AllLayers,
        EachLayer
    };

    /// plugin is the name that the settings know it by, title that of the page; held tells the bytes
    /// that the plugin's layers hold together.
    BudgetPage(const QString& plugin, const QString& title, Scope scope,
               std::function<qint64()> held, QWidget* parent = nullptr);
    ~BudgetPage() override;

public slots:
    /// Keeps what the page shows, which holds at once for layers on tiles.
    virtual void apply();
    void showUse();

protected:
    /// Below the memory.
    QVBoxLayout* getColumn() const;
    /// A field for megabytes, first as the settings have it.
    QSpinBox* createField(const char* name, const QString& settingsKey, int usual);
    QString keyOf(const char* setting) const;
    QString getPlugin() const { return plugin; }
    static void keep(const QString& key, int megabytes);

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QGroupBox* createMemory(Scope scope);

    QString plugin;
    std::function<qint64()> heldBytes;
    QSpinBox* memory = nullptr;
    QLabel* use = nullptr;
    bool limitsTheSum;
    QTimer timer; // while the page is seen
};

} // namespace Corvane::Map
