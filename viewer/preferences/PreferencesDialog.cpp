#include <viewer/preferences/PreferencesDialog.h>

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>

namespace Corvane::Viewer {
namespace {

constexpr QSize firstSize(680, 480);
constexpr int listMargin = 24; // pixels beside the longest name

} // namespace

PreferencesDialog::PreferencesDialog(const QList<QWidget*>& newPages, QWidget* parent)
    : QDialog(parent),
      list(new QListWidget(this)),
      stack(new QStackedWidget(this))
{
    setObjectName("preferencesDialog");
    setWindowTitle(tr("Preferences"));
    list->setObjectName("pagesListWidget");
    list->setAccessibleName(tr("Pages"));
    auto* const buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply, this);
    buttons->setObjectName("buttonBox");
    auto* const grid = new QGridLayout(this);
    grid->addWidget(list, 0, 0);
    grid->addWidget(stack, 0, 1);
    grid->addWidget(buttons, 1, 0, 1, 2);
    grid->setColumnStretch(1, 1);
    connect(list, &QListWidget::currentRowChanged, stack, &QStackedWidget::setCurrentIndex);
    connect(buttons, &QDialogButtonBox::accepted, this, &PreferencesDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PreferencesDialog::reject);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
            &PreferencesDialog::apply);
    for (QWidget* page : newPages) {
        addPage(page);
    }
    list->setFixedWidth(list->sizeHintForColumn(0) + listMargin);
    list->setCurrentRow(0);
    resize(firstSize);
}

void PreferencesDialog::addPage(QWidget* page)
{
    auto* const room = new QScrollArea(stack);
    room->setFrameShape(QFrame::NoFrame);
    room->setWidgetResizable(true);
    room->setFocusPolicy(Qt::NoFocus); // the page's own fields scroll into view
    room->setWidget(page);
    stack->addWidget(room);
    list->addItem(page->windowTitle());
    pages << page;
}

/// A page of a plugin may have nothing to apply.
void PreferencesDialog::apply()
{
    for (QWidget* page : qAsConst(pages)) {
        if (page->metaObject()->indexOfSlot("apply()") >= 0) {
            QMetaObject::invokeMethod(page, "apply");
        }
    }
}

void PreferencesDialog::accept()
{
    apply();
    QDialog::accept();
}

} // namespace Corvane::Viewer
