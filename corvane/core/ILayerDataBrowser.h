#pragma once

#include <corvane/core/Export.h>
#include <corvane/core/LayerParameters.h>

#include <QDialog>

namespace Corvane::Map {

class Layer;

/// The base of a dialog that picks data and hands a ready layer to the workspace. GUI thread only.
class CORVANE_EXPORT ILayerDataBrowser : public QDialog
{
    Q_OBJECT
public:
    /// The parent owns the dialog; it may be null.
    explicit ILayerDataBrowser(QWidget* parent = nullptr, Qt::WindowFlags flags = {});
    ~ILayerDataBrowser() override;

signals:
    /// The receiver owns the layer from here on.
    void addLayer(Map::Layer* pLayer, Map::LayerParameters parameters);
};

} // namespace Corvane::Map
