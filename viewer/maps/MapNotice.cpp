#include <viewer/maps/MapNotice.h>

#include <viewer/maps/MapWindow.h>

#include <corvane/map/MapView.h>

#include <QBoxLayout>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>

namespace Corvane::Viewer {
namespace {

constexpr int leastTextLetters = 40; // that a text has to itself beside buttons

} // namespace

MapNotice::MapNotice(MapWindow* mapWindow, const QString& text)
    : QFrame(mapWindow),
      window(mapWindow),
      label(new QLabel(text, this)),
      layout(new QBoxLayout(QBoxLayout::LeftToRight, this)),
      buttons(new QBoxLayout(QBoxLayout::LeftToRight))
{
    setObjectName("mapNotice");
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setAccessibleName(text);
    label->setObjectName("noticeText");
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::ToolTipText);
    layout->setContentsMargins(10, 4, 10, 4);
    layout->addWidget(label, 1);
    layout->addLayout(buttons);
    window->getView()->installEventFilter(this);
    place();
    show();
}

QPushButton* MapNotice::addButton(const QString& name, const QString& text)
{
    auto* const button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    buttons->addWidget(button);
    place();
    return button;
}

QMenu* MapNotice::addMenu(const QString& name, const QString& text)
{
    QPushButton* const button = addButton(name, text);
    auto* const menu = new QMenu(button);
    button->setMenu(menu);
    return menu;
}

// Buttons are shown, and count, only after they were added.
bool MapNotice::event(QEvent* event)
{
    const bool done = QFrame::event(event);
    if (event->type() == QEvent::LayoutRequest) {
        place();
    }
    return done;
}

void MapNotice::addCloseButton(const QString& text)
{
    connect(addButton("noticeClose", text), &QPushButton::clicked, this, &MapNotice::dismiss);
}

bool MapNotice::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::Resize || type == QEvent::Move || type == QEvent::ParentChange) {
        place();
    }
    return QFrame::eventFilter(watched, event);
}

// A map on the whole screen has left its window, and the notice waits there.
void MapNotice::place()
{
    Map::MapView* const view = window ? window->getView() : nullptr;
    if (!view || view->parentWidget() != window) {
        return;
    }
    const QRect map = view->geometry();
    arrange(map.width());
    const int height = hasHeightForWidth() ? heightForWidth(map.width()) : sizeHint().height();
    setGeometry(map.left(), map.top(), map.width(), qMin(height, map.height()));
    raise();
}

// Directions are set once they are known: each change of one asks for a new layout.
void MapNotice::arrange(int width)
{
    const QMargins margins = layout->contentsMargins();
    const int room = width - margins.left() - margins.right() - 2 * frameWidth();
    const int text = leastTextLetters * label->fontMetrics().averageCharWidth();
    const int row = buttonsWidth();
    layout->setDirection(text + layout->spacing() + row <= room ? QBoxLayout::LeftToRight
                                                                : QBoxLayout::TopToBottom);
    buttons->setDirection(row <= room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

int MapNotice::buttonsWidth() const
{
    int width = 0;
    for (int i = 0; i < buttons->count(); ++i) {
        const int before = i > 0 ? layout->spacing() : 0;
        width += before + buttons->itemAt(i)->widget()->sizeHint().width();
    }
    return width;
}

void MapNotice::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        dismiss();
    } else {
        QFrame::keyPressEvent(event);
    }
}

void MapNotice::dismiss()
{
    hide();
    emit dismissed();
    deleteLater();
}

} // namespace Corvane::Viewer
