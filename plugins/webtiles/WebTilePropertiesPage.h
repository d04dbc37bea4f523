#pragma once

#include <corvane/core/ILayerPropertiesWidget.h>

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace Corvane::Map {

class CacheBox;
class WebTileLayer;

/// The page "Web Tiles" of the layer properties: where the tiles come from, how the server is doing,
/// and the disk cache of all web tiles. Attribution and zooms reach the layer with apply, the
/// buttons act at once. GUI thread only.
class WebTilePropertiesPage : public QWidget, public ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Corvane::ILayerPropertiesWidget)
public:
    explicit WebTilePropertiesPage(QWidget* parent = nullptr);

    void setLayer(Map::Layer* layer) override;
    void apply() override;

public slots:
    /// Shows how the server is doing now; a timer calls it each second.
    void showState();

private:
    QGroupBox* createSource();
    QGroupBox* createState();
    QSpinBox* createZoom(const char* name);
    void fillSource();
    void retry();

    QPointer<WebTileLayer> layer; // not owned
    QLineEdit* url = nullptr;
    QLineEdit* attribution = nullptr;
    QSpinBox* minZoom = nullptr;
    QSpinBox* maxZoom = nullptr;
    QLabel* state = nullptr;
    QPushButton* retryButton = nullptr;
    CacheBox* cache;
    QTimer timer;
};

} // namespace Corvane::Map
