#pragma once

#include <corvane/core/Export.h>

#include <QPointer>
#include <QtTreePropertyBrowser>

class QMdiSubWindow;
class QtBoolPropertyManager;
class QtEnumPropertyManager;
class QtGroupPropertyManager;
class QtIntPropertyManager;
class QtRectPropertyManager;
class QtSizePolicyPropertyManager;
class QtSizePropertyManager;
class QtStringPropertyManager;
class QtVariantPropertyManager;

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Gui {

/// Lists every Qt property of the active layer, read-only: a layer of a plugin shows its own
/// properties with no code here. The rows are those of the moment of activation; the host delivers
/// null or another layer before a shown one goes. GUI thread only.
class CORVANE_EXPORT PropertyBrowser : public QtTreePropertyBrowser
{
    Q_OBJECT
public:
    /// Shows nothing yet. The parent owns it; it may be null.
    explicit PropertyBrowser(QWidget* parent = nullptr);
    ~PropertyBrowser() override;

public slots:
    /// Shows the layer's properties, or nothing for null. The layer that is shown already is not
    /// read again.
    void onLayerActivated(Map::Layer* pLayer);
    void onSubWindowActivated(QMdiSubWindow* window); ///< for the host to connect; does nothing
    void mapActivated(Map::MapView* pMapView);        ///< for the host to connect; does nothing

protected:
    /// Writes the text of a changed row to the layer's property of that name. Rows are disabled, so
    /// this is quiet until one is enabled.
    void itemChanged(QtBrowserItem* item) override;

private:
    void setFactories();
    void setObjectProps(Map::Layer* layer);

    QtVariantPropertyManager* variantManager;
    // For typed rows; those of a layer all come from the variant manager.
    QtBoolPropertyManager* boolManager;
    QtIntPropertyManager* intManager;
    QtStringPropertyManager* stringManager;
    QtSizePropertyManager* sizeManager;
    QtRectPropertyManager* rectManager;
    QtSizePolicyPropertyManager* sizePolicyManager;
    QtEnumPropertyManager* enumManager;
    QtGroupPropertyManager* groupManager;
    QPointer<Map::Layer> currentLayer;
};

} // namespace Corvane::Gui
