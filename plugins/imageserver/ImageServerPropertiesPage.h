#pragma once

#include <corvane/core/ILayerPropertiesWidget.h>

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace Corvane::Map {

class ImageServerLayer;

/// The page "Image Server" of the layer properties: where the image lies, what the server says of it, how
/// the server is doing, and who asks it. User and password reach the layer with apply; the password is
/// shown to nobody and goes no further than the layer. The button acts at once. GUI thread only.
class ImageServerPropertiesPage : public QWidget, public ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Corvane::ILayerPropertiesWidget)
public:
    explicit ImageServerPropertiesPage(QWidget* parent = nullptr);

    void setLayer(Map::Layer* layer) override;
    void apply() override;

public slots:
    /// Shows what is known of image and server now; a timer calls it each second.
    void showState();

private:
    QGroupBox* createImage();
    QGroupBox* createServer();
    QGroupBox* createLogin();
    QLabel* addFact(QFormLayout* form, const QString& title, const char* name);
    void showFacts();
    void retry();

    QPointer<ImageServerLayer> layer; // not owned
    QLineEdit* address = nullptr;
    QLabel* size = nullptr;
    QLabel* grid = nullptr;
    QLabel* cells = nullptr;
    QLabel* system = nullptr;
    QLabel* values = nullptr;
    QLabel* state = nullptr;
    QPushButton* retryButton = nullptr;
    QLineEdit* user = nullptr;
    QLineEdit* password = nullptr;
    QTimer timer;
};

} // namespace Corvane::Map
