#include <plugins/common/BudgetPage.h>

#include <plugins/common/TileBudget.h>

#include <corvane/core/Application.h>

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLocale>
#include <QSettings>
#include <QSpinBox>
#include <QVBoxLayout>

#include <utility>

namespace Corvane::Map {

namespace {

constexpr int useInterval = 1000;          // milliseconds
constexpr int mostMegabytes = 1024 * 1024; // a terabyte
constexpr int fieldStep = 64;
constexpr int usualMemory = 0; // the machine decides

} // namespace

BudgetPage::BudgetPage(const QString& pluginName, const QString& title, Scope scope,
                       std::function<qint64()> held, QWidget* parent)
    : QWidget(parent),
      plugin(pluginName),
      heldBytes(std::move(held)),
      limitsTheSum(scope == Scope::AllLayers)
{
    setObjectName(pluginName.toLower() + QStringLiteral("BudgetPage"));
    setWindowTitle(title);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(createMemory(scope));
    column->addStretch();
    timer.setInterval(useInterval);
    connect(&timer, &QTimer::timeout, this, &BudgetPage::showUse);
    showUse();
}

BudgetPage::~BudgetPage() = default;

QGroupBox* BudgetPage::createMemory(Scope scope)
{
    auto* const box = new QGroupBox(tr("Memory"), this);
    auto* const form = new QFormLayout(box);
    memory = createField("memoryBudgetSpinBox", keyOf("MemoryBudgetMB"), usualMemory);
    memory->setSpecialValueText(tr("A quarter of the machine's memory"));
    form->addRow(scope == Scope::AllLayers ? tr("All layers together at &most:")
                                           : tr("Each layer at &most:"),
                 memory);
    use = new QLabel(box);
    use->setObjectName(QStringLiteral("memoryUseLabel"));
    form->addRow(tr("In use now:"), use);
    return box;
}

QVBoxLayout* BudgetPage::getColumn() const
{
    return static_cast<QVBoxLayout*>(layout());
}

QSpinBox* BudgetPage::createField(const char* name, const QString& settingsKey, int usual)
{
    auto* const field = new QSpinBox(this);
    field->setObjectName(QLatin1String(name));
    field->setRange(0, mostMegabytes);
    field->setSingleStep(fieldStep);
    field->setSuffix(tr(" MB"));
    field->setValue(Application::instance()->getSettings()->value(settingsKey, usual).toInt());
    return field;
}

QString BudgetPage::keyOf(const char* setting) const
{
    return QStringLiteral("Plugins/%1/%2").arg(plugin, QLatin1String(setting));
}

void BudgetPage::keep(const QString& key, int megabytes)
{
    Application::instance()->getSettings()->setValue(key, megabytes);
}

void BudgetPage::apply()
{
    keep(keyOf("MemoryBudgetMB"), memory->value());
    TileBudget& budget = TileBudget::instance();
    budget.setLimit(TileBudget::limitFor(plugin));
    budget.enforce();
    showUse();
}

void BudgetPage::showUse()
{
    const QLocale locale;
    const QString held = locale.formattedDataSize(heldBytes());
    const QString limit = locale.formattedDataSize(TileBudget::limitFor(plugin));
    use->setText(limitsTheSum ? tr("%1 of %2").arg(held, limit) : held);
}

void BudgetPage::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    showUse();
    timer.start();
}

void BudgetPage::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    timer.stop();
}

} // namespace Corvane::Map
