#include <viewer/access/MapAccessible.h>

#include <corvane/map/MapView.h>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QVariant>

namespace Corvane::Viewer {
namespace {

const char* const valueProperty = "accessibleValue";

class MapAccessible final : public QAccessibleWidget
{
public:
    explicit MapAccessible(QWidget* view) : QAccessibleWidget(view, QAccessible::Canvas) {}

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? widget()->property(valueProperty).toString()
                                          : QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    auto* const view = qobject_cast<Map::MapView*>(object);
    return view ? new MapAccessible(view) : nullptr;
}

} // namespace

void makeMapsAccessible()
{
    QAccessible::installFactory(&makeInterface); // a second time is passed over
}

void setAccessibleValue(QWidget* view, const QString& value)
{
    view->setProperty(valueProperty, value);
}

} // namespace Corvane::Viewer
