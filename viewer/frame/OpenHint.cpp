#include <viewer/frame/OpenHint.h>

#include <QAction>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace Corvane::Viewer {
namespace {

constexpr int hintMargin = 16; // pixels

} // namespace

OpenHint::OpenHint(QMdiArea* mapArea, QAction* command)
    : QLabel(mapArea->viewport()),
      area(mapArea),
      openCommand(command)
{
    setObjectName("openHint");
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setFrameShape(QFrame::StyledPanel);
    setMargin(hintMargin);
    setAutoFillBackground(true); // the area's own colour is close to that of text
    setAttribute(Qt::WA_TransparentForMouseEvents);
    area->viewport()->installEventFilter(this);
    connect(openCommand, &QAction::changed, this, &OpenHint::look);
    look();
}

// Queued: the area itself hears of its windows after its filters.
bool OpenHint::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::Resize || type == QEvent::ChildAdded || type == QEvent::ChildRemoved) {
        QMetaObject::invokeMethod(this, &OpenHint::look, Qt::QueuedConnection);
    }
    return QLabel::eventFilter(watched, event);
}

void OpenHint::look()
{
    const QString key = openCommand->shortcut().toString(QKeySequence::NativeText);
    setText(key.isEmpty()
                ? tr("Drop images, folders or maps here,\nor choose Open in the menu File.")
                : tr("Drop images, folders or maps here,\nor press %1 to open some.").arg(key));
    adjustSize();
    move(area->viewport()->rect().center() - rect().center());
    setVisible(area->subWindowList().isEmpty());
}

} // namespace Corvane::Viewer
