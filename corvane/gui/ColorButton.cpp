#include <corvane/gui/ColorButton.h>

#include <QColorDialog>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QPointer>

namespace Corvane::Gui {

namespace {

constexpr QSize swatchSize(32, 14);
constexpr int gap = 4;                              // pixels before the text; the styles leave none
constexpr Qt::GlobalColor edgeColor = Qt::darkGray; // seen on light and on dark buttons
constexpr QSize pictureSize(swatchSize.width() + gap, swatchSize.height());

} // namespace

ColorButton::ColorButton(QWidget* parent) : QPushButton(parent)
{
    setIconSize(pictureSize);
    connect(this, &QPushButton::clicked, this, &ColorButton::choose);
}

void ColorButton::setColor(const QColor& newColor)
{
    color = newColor;
    QPixmap picture(pictureSize);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setPen(edgeColor);
    painter.setBrush(color);
    painter.drawRect(QRect(QPoint(), swatchSize).adjusted(0, 0, -1, -1));
    painter.end();
    setIcon(QIcon(picture));
    setText(color.name());
}

void ColorButton::choose()
{
    const QPointer<ColorButton> self(this); // the dialog around it may close meanwhile
    const QColor chosen = QColorDialog::getColor(color, this);
    if (self && chosen.isValid()) {
        setColor(chosen);
    }
}

} // namespace Corvane::Gui
