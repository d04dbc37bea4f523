#include <viewer/frame/NoticeBar.h>

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

namespace Corvane::Viewer {
namespace {

constexpr int narrowestText = 120; // pixels; a longer text is cut off rather than the offers

} // namespace

NoticeBar::NoticeBar(QMainWindow* window, const QString& name, const QString& text)
    : QToolBar(window),
      label(new QLabel(text))
{
    delete window->findChild<NoticeBar*>(name, Qt::FindDirectChildrenOnly);
    setObjectName(name);
    setWindowTitle(tr("Notice"));
    setMovable(false);
    toggleViewAction()->setVisible(false); // it comes and goes by itself
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);

    const auto icon = new QLabel;
    const int edge = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(edge, edge));
    icon->setMargin(4);
    addWidget(icon);
    label->setObjectName("noticeText");
    label->setTextFormat(Qt::PlainText);
    label->setToolTip(text);
    label->setMinimumWidth(narrowestText);
    label->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addWidget(label);
    addCloseButton();
    window->addToolBarBreak(Qt::TopToolBarArea);
    window->addToolBar(Qt::TopToolBarArea, this);
}

void NoticeBar::addCloseButton()
{
    const auto close = new QToolButton;
    close->setObjectName("noticeClose");
    close->setAutoRaise(true);
    close->setFocusPolicy(Qt::TabFocus);
    close->setIcon(style()->standardIcon(QStyle::SP_DockWidgetCloseButton));
    close->setToolTip(tr("Not now"));
    close->setAccessibleName(tr("Not now"));
    connect(close, &QToolButton::clicked, this, [this] {
        emit dismissed();
        leave();
    });
    beforeClose = addWidget(close);
}

void NoticeBar::offer(const QString& name, const QString& text, const std::function<void()>& effect)
{
    const auto button = new QPushButton(text);
    button->setObjectName(name);
    connect(button, &QPushButton::clicked, this, [this, effect] {
        leave();
        effect();
    });
    insertWidget(beforeClose, button);
}

QString NoticeBar::getText() const
{
    return label->text();
}

void NoticeBar::leave()
{
    setObjectName(QString()); // another one may come at once
    hide();
    deleteLater();
}

} // namespace Corvane::Viewer
