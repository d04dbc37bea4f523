#include <viewer/window/KeyListDialog.h>

#include <viewer/frame/CommandKeys.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QVector>

namespace Corvane::Viewer {
namespace {

constexpr QSize firstSize(560, 560);

QString textOf(const QList<QKeySequence>& keys)
{
    QStringList texts;
    for (const QKeySequence& key : keys) {
        texts << key.toString(QKeySequence::NativeText);
    }
    return texts.join(", ");
}

} // namespace

KeyListDialog::KeyListDialog(const QWidget* commandOwner, QWidget* parent)
    : QDialog(parent),
      words(new QLineEdit(this)),
      list(new QTreeWidget(this))
{
    setObjectName("keyListDialog");
    setWindowTitle(tr("Keyboard Shortcuts"));
    words->setObjectName("keySearchLineEdit");
    words->setPlaceholderText(tr("Search for a command or a key"));
    words->setAccessibleName(words->placeholderText());
    list->setObjectName("keyTreeWidget");
    list->setAccessibleName(tr("Commands and their keys"));
    list->setHeaderLabels({tr("Command"), tr("Key")});
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    list->header()->setStretchLastSection(false);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    addCommands(*commandOwner);
    addMapKeys();
    list->expandAll();
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->setObjectName("buttonBox");
    auto* const column = new QVBoxLayout(this);
    column->addWidget(words);
    column->addWidget(list, 1);
    column->addWidget(buttons);
    connect(words, &QLineEdit::textChanged, this, &KeyListDialog::search);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resize(firstSize);
}

QTreeWidgetItem* KeyListDialog::addGroup(const QString& name)
{
    auto* const group = new QTreeWidgetItem(list, {name});
    group->setFirstColumnSpanned(true);
    QFont bold = group->font(0);
    bold.setBold(true);
    group->setFont(0, bold);
    return group;
}

void KeyListDialog::addCommands(const QWidget& owner)
{
    QTreeWidgetItem* const group = addGroup(tr("Commands"));
    const auto commands =
        owner.findChildren<QAction*>(QRegularExpression("^action"), Qt::FindDirectChildrenOnly);
    for (const QAction* command : commands) {
        if (!command->shortcuts().isEmpty()) {
            auto* const row = new QTreeWidgetItem(
                group, {CommandKeys::nameOf(command), textOf(command->shortcuts())});
            row->setIcon(0, command->icon());
            row->setToolTip(0, command->toolTip());
        }
    }
    group->sortChildren(0, Qt::AscendingOrder);
}

/// Those that a map view sees to itself while it has the focus.
void KeyListDialog::addMapKeys()
{
    QTreeWidgetItem* const group = addGroup(tr("In the map"));
    const auto key = [](int code) { return QKeySequence(code).toString(QKeySequence::NativeText); };
    const QString arrows =
        QStringList{key(Qt::Key_Left), key(Qt::Key_Right), key(Qt::Key_Up), key(Qt::Key_Down)}.join(
            ", ");
    const QVector<QStringList> rows = {
        {tr("Move by half a view"), arrows},
        {tr("Zoom in"), key(Qt::Key_Plus)},
        {tr("Zoom out"), key(Qt::Key_Minus)},
        {tr("Show everything"), key(Qt::Key_Home)},
        {tr("One cell a pixel"), key(Qt::Key_End)},
        {tr("Leave the full screen"), key(Qt::Key_Escape)},
        {tr("Roam"), tr("drag")},
        {tr("Zoom about the pointer"), tr("wheel, double click")},
        {tr("Zoom by dragging"), tr("right button or Shift, drag")},
        {tr("Zoom to a box"), tr("Ctrl, drag")},
    };
    for (const QStringList& row : rows) {
        new QTreeWidgetItem(group, row);
    }
}

void KeyListDialog::search(const QString& text)
{
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QTreeWidgetItem* const group = list->topLevelItem(i);
        bool any = false;
        for (int k = 0; k < group->childCount(); ++k) {
            QTreeWidgetItem* const row = group->child(k);
            const bool fits = row->text(0).contains(text, Qt::CaseInsensitive) ||
                              row->text(1).contains(text, Qt::CaseInsensitive);
            row->setHidden(!fits);
            any = any || fits;
        }
        group->setHidden(!any);
    }
}

} // namespace Corvane::Viewer
