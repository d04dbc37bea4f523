#pragma once

#include <QWidget>

namespace Corvane::Viewer {

/// A crosshair over a view, seen on light and on dark ground. The mouse does not meet it.
class CrosshairMark : public QWidget
{
    Q_OBJECT
public:
    explicit CrosshairMark(QWidget* view);

    /// In pixels of the view.
    void setCenter(const QPoint& center);
    /// Drawn heavier.
    void setHeld(bool held);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool isHeld = false;
};

} // namespace Corvane::Viewer
