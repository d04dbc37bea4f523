#include <plugins/vector/LayerChoiceDialog.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace Corvane::Map {

LayerChoiceDialog::LayerChoiceDialog(const QString& source, const QStringList& layers,
                                     QWidget* parent)
    : QDialog(parent),
      list(new QListWidget(this))
{
    setObjectName(QStringLiteral("layerChoiceDialog"));
    setWindowTitle(tr("Add vector layer"));
    auto* const column = new QVBoxLayout(this);
    auto* const question =
        new QLabel(tr("%1 has several layers. Which are to be added?").arg(source));
    question->setTextFormat(Qt::PlainText);
    question->setWordWrap(true);
    column->addWidget(question);
    list->setObjectName(QStringLiteral("layerList"));
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->addItems(layers);
    column->addWidget(list);
    auto* const buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("buttonBox"));
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(list, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(list, &QListWidget::itemSelectionChanged, this, [this, buttons] {
        buttons->button(QDialogButtonBox::Ok)->setEnabled(!list->selectedItems().isEmpty());
    });
    list->setCurrentRow(0);
}

QStringList LayerChoiceDialog::getChosen() const
{
    QStringList chosen;
    for (int row = 0; row < list->count(); ++row) {
        if (list->item(row)->isSelected()) {
            chosen.append(list->item(row)->text());
        }
    }
    return chosen;
}

} // namespace Corvane::Map
