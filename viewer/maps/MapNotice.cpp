#include <viewer/maps/MapNotice.h>

#include <viewer/maps/MapWindow.h>

#include <corvane/map/MapView.h>

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>

namespace Corvane::Viewer {

MapNotice::MapNotice(MapWindow* mapWindow, const QString& text)
    : QFrame(mapWindow),
      window(mapWindow),
      label(new QLabel(text, this)),
      row(new QHBoxLayout(this))
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
    row->setContentsMargins(10, 4, 10, 4);
    row->addWidget(label, 1);
    window->getView()->installEventFilter(this);
    place();
    show();
}

QPushButton* MapNotice::addButton(const QString& name, const QString& text)
{
    auto* const button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    row->addWidget(button);
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
    const int height = hasHeightForWidth() ? heightForWidth(map.width()) : sizeHint().height();
    setGeometry(map.left(), map.top(), map.width(), qMin(height, map.height()));
    raise();
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
