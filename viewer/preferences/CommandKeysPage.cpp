#include <viewer/preferences/CommandKeysPage.h>

#include <viewer/frame/CommandKeys.h>

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Corvane::Viewer {
namespace {

constexpr int nameColumn = 0;
constexpr int keyColumn = 1;

QString textOf(const QList<QKeySequence>& keys)
{
    QStringList texts;
    for (const QKeySequence& key : keys) {
        texts << key.toString(QKeySequence::NativeText);
    }
    return texts.join(", ");
}

} // namespace

CommandKeysPage::CommandKeysPage(CommandKeys* commandKeys, QWidget* parent)
    : QWidget(parent),
      keys(commandKeys)
{
    setObjectName("shortcutsPage");
    setWindowTitle(tr("Shortcuts"));
    search = new QLineEdit(this);
    search->setObjectName("shortcutSearchLineEdit");
    search->setPlaceholderText(tr("Search for a command or a key"));
    search->setAccessibleName(search->placeholderText());
    createList();
    auto* const column = new QVBoxLayout(this);
    column->addWidget(search);
    column->addWidget(list, 1);
    column->addWidget(createEditor());
    connect(search, &QLineEdit::textChanged, this, &CommandKeysPage::filter);
    fill();
    showChosen();
}

void CommandKeysPage::createList()
{
    list = new QTreeWidget(this);
    list->setObjectName("shortcutsTreeWidget");
    list->setAccessibleName(tr("Commands and their keys"));
    list->setHeaderLabels({tr("Command"), tr("Key")});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->header()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    list->header()->setSectionResizeMode(keyColumn, QHeaderView::ResizeToContents);
    list->header()->setStretchLastSection(false);
    connect(list, &QTreeWidget::currentItemChanged, this, &CommandKeysPage::showChosen);
}

QWidget* CommandKeysPage::createEditor()
{
    auto* const editor = new QWidget(this);
    auto* const column = new QVBoxLayout(editor);
    column->setContentsMargins(0, 0, 0, 0);
    auto* const row = new QHBoxLayout;
    auto* const label = new QLabel(tr("New &key:"), editor);
    field = new QKeySequenceEdit(editor);
    field->setObjectName("shortcutEdit");
    field->setAccessibleName(tr("New key of the chosen command"));
    label->setBuddy(field);
    assign = new QPushButton(tr("&Assign"), editor);
    assign->setObjectName("assignShortcutButton");
    clear = new QPushButton(tr("&None"), editor);
    clear->setObjectName("clearShortcutButton");
    reset = new QPushButton(tr("&Usual Key"), editor);
    reset->setObjectName("resetShortcutButton");
    row->addWidget(label);
    row->addWidget(field, 1);
    for (QPushButton* button : {assign, clear, reset}) {
        button->setAutoDefault(false);
        row->addWidget(button);
    }
    notice = new QLabel(editor);
    notice->setObjectName("shortcutNoticeLabel");
    notice->setWordWrap(true);
    column->addLayout(row);
    column->addWidget(notice);
    connect(field, &QKeySequenceEdit::keySequenceChanged, this, &CommandKeysPage::showChosen);
    connect(assign, &QPushButton::clicked, this, &CommandKeysPage::takeKey);
    connect(clear, &QPushButton::clicked, this, [this] { setKeys(chosen(), {}); });
    connect(reset, &QPushButton::clicked, this,
            [this] { setKeys(chosen(), keys->usualKeysOf(chosen())); });
    return editor;
}

void CommandKeysPage::fill()
{
    for (QAction* command : keys->getCommands()) {
        auto* const row = new QTreeWidgetItem(list, {CommandKeys::nameOf(command)});
        row->setIcon(nameColumn, command->icon());
        row->setToolTip(nameColumn, command->toolTip());
        rows.insert(command, row);
        wanted.insert(command, command->shortcuts());
        showKeys(command);
    }
    list->setCurrentItem(list->topLevelItem(0));
}

void CommandKeysPage::filter(const QString& words)
{
    for (QTreeWidgetItem* row : qAsConst(rows)) {
        row->setHidden(!row->text(nameColumn).contains(words, Qt::CaseInsensitive) &&
                       !row->text(keyColumn).contains(words, Qt::CaseInsensitive));
    }
}

QAction* CommandKeysPage::chosen() const
{
    return rows.key(list->currentItem(), nullptr);
}

/// The command, other than the chosen one, that has this key; or null.
QAction* CommandKeysPage::ownerOf(const QKeySequence& key) const
{
    for (auto entry = wanted.begin(); entry != wanted.end(); ++entry) {
        if (entry.key() != chosen() && entry->contains(key)) {
            return entry.key();
        }
    }
    return nullptr;
}

void CommandKeysPage::showChosen()
{
    QAction* const command = chosen();
    const QKeySequence key = field->keySequence();
    assign->setEnabled(command && !key.isEmpty());
    clear->setEnabled(command && !wanted.value(command).isEmpty());
    reset->setEnabled(command && wanted.value(command) != keys->usualKeysOf(command));
    const QAction* const owner = key.isEmpty() ? nullptr : ownerOf(key);
    notice->setText(
        owner ? tr("%1 is the key of \"%2\", which would lose it.")
                    .arg(key.toString(QKeySequence::NativeText), CommandKeys::nameOf(owner))
              : QString());
}

void CommandKeysPage::takeKey()
{
    const QKeySequence key = field->keySequence();
    if (QAction* const owner = ownerOf(key)) {
        QList<QKeySequence> rest = wanted.value(owner);
        rest.removeAll(key);
        setKeys(owner, rest);
    }
    setKeys(chosen(), {key});
    field->clear();
}

void CommandKeysPage::setKeys(QAction* command, const QList<QKeySequence>& newKeys)
{
    wanted[command] = newKeys;
    showKeys(command);
    showChosen();
}

void CommandKeysPage::showKeys(QAction* command)
{
    rows.value(command)->setText(keyColumn, textOf(wanted.value(command)));
}

void CommandKeysPage::apply()
{
    for (auto entry = wanted.begin(); entry != wanted.end(); ++entry) {
        if (entry.key()->shortcuts() != *entry) {
            keys->setKeys(entry.key(), *entry);
        }
    }
}

} // namespace Corvane::Viewer
