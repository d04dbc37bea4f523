#pragma once

#include <corvane/core/Export.h>

#include <QColor>
#include <QPushButton>

namespace Corvane::Gui {

/// A button that shows a colour and lets the user choose another. GUI thread only.
class CORVANE_EXPORT ColorButton : public QPushButton
{
    Q_OBJECT
public:
    /// The parent owns it; it may be null.
    explicit ColorButton(QWidget* parent = nullptr);

    /// Invalid until one is set.
    QColor getColor() const { return color; }
    /// Shows the colour on the button.
    void setColor(const QColor& newColor);

private:
    void choose();

    QColor color;
};

} // namespace Corvane::Gui
