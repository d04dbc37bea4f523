#include <corvane/gui/PropertyBrowser.h>

#include <corvane/map/Layer.h>

#include <QDebug>
#include <QMetaProperty>
#include <QTreeWidget>
#include <QVariant>
#include <QtCheckBoxFactory>
#include <QtEnumEditorFactory>
#include <QtGroupPropertyManager>
#include <QtLineEditFactory>
#include <QtSpinBoxFactory>
#include <QtVariantEditorFactory>
#include <QtVariantPropertyManager>

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace Corvane::Gui {

namespace {

bool isShownElsewhere(const char* propertyName)
{
    constexpr const char* names[] = {"objectName", "Valid", "Visible"};
    return std::any_of(std::begin(names), std::end(names),
                       [=](const char* name) { return qstrcmp(name, propertyName) == 0; });
}

} // namespace

PropertyBrowser::PropertyBrowser(QWidget* parent)
    : QtTreePropertyBrowser(parent),
      variantManager(new QtVariantPropertyManager(this)),
      boolManager(new QtBoolPropertyManager(this)),
      intManager(new QtIntPropertyManager(this)),
      stringManager(new QtStringPropertyManager(this)),
      sizeManager(new QtSizePropertyManager(this)),
      rectManager(new QtRectPropertyManager(this)),
      sizePolicyManager(new QtSizePolicyPropertyManager(this)),
      enumManager(new QtEnumPropertyManager(this)),
      groupManager(new QtGroupPropertyManager(this))
{
    setFactories();
    setPropertiesWithoutValueMarked(true);
    setAlternatingRowColors(true);
    setRootIsDecorated(true);
    findChild<QTreeWidget*>()->setAccessibleName(tr("Properties"));
}

PropertyBrowser::~PropertyBrowser()
{
    // The base keeps the factories of all browsers by address and does not forget those of one
    // that goes: the next browser at the same place would meet them.
    for (QtAbstractPropertyManager* manager : std::initializer_list<QtAbstractPropertyManager*>{
             variantManager, boolManager, intManager, stringManager,
             sizeManager->subIntPropertyManager(), rectManager->subIntPropertyManager(),
             sizePolicyManager->subIntPropertyManager(),
             sizePolicyManager->subEnumPropertyManager(), enumManager})
    {
        unsetFactoryForManager(manager);
    }
}

void PropertyBrowser::setFactories()
{
    auto* const variantFactory = new QtVariantEditorFactory(this);
    auto* const checkBoxFactory = new QtCheckBoxFactory(this);
    auto* const spinBoxFactory = new QtSpinBoxFactory(this);
    auto* const lineEditFactory = new QtLineEditFactory(this);
    auto* const enumFactory = new QtEnumEditorFactory(this);

    setFactoryForManager(variantManager, variantFactory);
    setFactoryForManager(boolManager, checkBoxFactory);
    setFactoryForManager(intManager, spinBoxFactory);
    setFactoryForManager(stringManager, lineEditFactory);
    setFactoryForManager(sizeManager->subIntPropertyManager(), spinBoxFactory);
    setFactoryForManager(rectManager->subIntPropertyManager(), spinBoxFactory);
    setFactoryForManager(sizePolicyManager->subIntPropertyManager(), spinBoxFactory);
    setFactoryForManager(sizePolicyManager->subEnumPropertyManager(), enumFactory);
    setFactoryForManager(enumManager, enumFactory);
}

void PropertyBrowser::onLayerActivated(Map::Layer* pLayer)
{
    if (!pLayer) {
        currentLayer = nullptr;
        setEnabled(false);
        clear();
        return;
    }
    if (pLayer == currentLayer) {
        return;
    }
    clear();
    currentLayer = pLayer;
    setEnabled(true);
    setObjectProps(pLayer);
}

void PropertyBrowser::onSubWindowActivated(QMdiSubWindow*) {}

void PropertyBrowser::mapActivated(Map::MapView*) {}

void PropertyBrowser::itemChanged(QtBrowserItem* item)
{
    if (!currentLayer) {
        return;
    }
    qDebug("property changed");
    // The displayed text goes back, whatever the property's type: QVariant converts it.
    const QString name = item->property()->propertyName();
    const QString value = item->property()->valueText();
    currentLayer->setProperty(name.toLatin1().constData(), QVariant(value));
}

void PropertyBrowser::setObjectProps(Map::Layer* layer)
{
    const QMetaObject* const meta = layer->metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty metaProperty = meta->property(i);
        const QVariant value = metaProperty.read(layer);
        if (isShownElsewhere(metaProperty.name()) || value.type() == QVariant::Invalid) {
            continue;
        }
        const QString name = QString::fromLatin1(metaProperty.name());
        // userType tells types of plugins apart, where type is the same number for all of them
        QtVariantProperty* const property = variantManager->addProperty(value.userType(), name);
        if (!property) {
            qDebug().noquote().nospace() << "PropertyBrowser: INVALID PROPERTY! [" << name
                                         << "] VALUE[" << value.toString() << "]";
            continue;
        }
        if (metaProperty.isReadable()) {
            property->setEnabled(false); // what makes the panel read-only: no editor opens
            variantManager->setValue(property, value);
            if (QtBrowserItem* const item = addProperty(property)) {
                setExpanded(item, false);
            }
        }
    }
}

} // namespace Corvane::Gui
