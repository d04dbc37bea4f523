#include <viewer/comparing/FlickerBar.h>

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QToolButton>

namespace Corvane::Viewer {
namespace {

constexpr double slowest = 0.2; // changes for each second
constexpr double fastest = 10.0;
constexpr double rateStep = 0.5;
constexpr int margin = 8;        // pixels from the corner of the view
constexpr int longestName = 200; // pixels

} // namespace

FlickerBar::FlickerBar(QWidget* view, double firstRate)
    : QFrame(view),
      layerName(new QLabel(this)),
      rate(new QDoubleSpinBox(this))
{
    setObjectName("flickerBar");
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Raised);
    setAutoFillBackground(true);
    setCursor(Qt::ArrowCursor);
    layerName->setObjectName("flickerLayer");
    layerName->setTextFormat(Qt::PlainText);
    rate->setObjectName("flickerRate");
    rate->setAccessibleName(tr("Changes per second"));
    rate->setRange(slowest, fastest);
    rate->setSingleStep(rateStep);
    rate->setDecimals(1);
    rate->setSuffix(tr(" per second"));
    rate->setValue(firstRate);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(margin, margin / 2, margin, margin / 2);
    row->addWidget(layerName);
    row->addWidget(rate);
    pause = addButton("flickerPause", tr("&Pause"));
    pause->setCheckable(true);
    QToolButton* const flip = addButton("flickerFlip", tr("&Flip"));
    QToolButton* const close = addButton("flickerClose", tr("&End"));
    connect(rate, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &FlickerBar::rateChanged);
    connect(pause, &QToolButton::toggled, this, &FlickerBar::pauseChanged);
    connect(flip, &QToolButton::clicked, this, &FlickerBar::flipped);
    connect(close, &QToolButton::clicked, this, &FlickerBar::closed);
    move(margin, margin);
}

QToolButton* FlickerBar::addButton(const char* name, const QString& text)
{
    auto* const button = new QToolButton(this);
    button->setObjectName(name);
    button->setText(text);
    button->setFocusPolicy(Qt::StrongFocus);
    layout()->addWidget(button);
    return button;
}

void FlickerBar::setLayerName(const QString& name)
{
    layerName->setText(fontMetrics().elidedText(name, Qt::ElideMiddle, longestName));
    layerName->setToolTip(name);
    adjustSize();
}

/// A name that is struck out is that of a layer that is not seen.
void FlickerBar::setShown(bool shown)
{
    QFont font = layerName->font();
    font.setStrikeOut(!shown);
    layerName->setFont(font);
}

double FlickerBar::getRate() const
{
    return rate->value();
}

bool FlickerBar::isPaused() const
{
    return pause->isChecked();
}

void FlickerBar::setPaused(bool paused)
{
    pause->setChecked(paused);
}

void FlickerBar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        emit closed(); // which may be the end of this
    } else {
        QFrame::keyPressEvent(event);
    }
}

} // namespace Corvane::Viewer
