#pragma once

#include <QFrame>

class QDoubleSpinBox;
class QLabel;
class QToolButton;

namespace Corvane::Viewer {

/// The controls of flickering, in a corner of the view: how often, a pause, one change by hand, and
/// the end. GUI thread only.
class FlickerBar : public QFrame
{
    Q_OBJECT
public:
    /// The view becomes the parent. rate: changes for each second.
    FlickerBar(QWidget* view, double rate);

    void setLayerName(const QString& name);
    /// Whether the layer is seen now.
    void setShown(bool shown);
    double getRate() const;
    bool isPaused() const;
    void setPaused(bool paused);

signals:
    void rateChanged(double rate);
    void pauseChanged(bool paused);
    /// The user wants the other picture now.
    void flipped();
    void closed();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QToolButton* addButton(const char* name, const QString& text);

    QLabel* layerName;
    QDoubleSpinBox* rate;
    QToolButton* pause;
};

} // namespace Corvane::Viewer
