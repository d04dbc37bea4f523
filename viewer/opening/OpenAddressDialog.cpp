#include <viewer/opening/OpenAddressDialog.h>

#include <viewer/maps/Secrets.h>
#include <viewer/sources/Sources.h>

#include <corvane/core/Application.h>

#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QUrl>
#include <QVBoxLayout>

namespace Corvane::Viewer {
namespace {

const char* const addressesKey = "Viewer/addresses";
constexpr int mostAddresses = 10;
constexpr int firstWidth = 560; // pixels

QStringList keptAddresses()
{
    return Application::instance()->getSettings()->value(addressesKey).toStringList();
}

/// What the clipboard holds, if it is one address.
QString addressInClipboard()
{
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    const QStringList sources = data ? sourcesOf(data) : QStringList();
    return sources.size() == 1 && isAddress(sources.first()) ? sources.first() : QString();
}

} // namespace

OpenAddressDialog::OpenAddressDialog(QWidget* parent)
    : QDialog(parent),
      edit(new QComboBox),
      hint(new QLabel),
      buttons(new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel))
{
    setObjectName("openAddressDialog");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Open Address"));
    const auto label = new QLabel(tr("&Address of an image, of tiles or of a map:"));
    label->setBuddy(edit);
    edit->setObjectName("address");
    edit->setEditable(true);
    edit->setInsertPolicy(QComboBox::NoInsert);
    edit->addItems(keptAddresses());
    edit->setEditText(addressInClipboard());
    edit->lineEdit()->selectAll();
    edit->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    hint->setObjectName("addressHint");
    hint->setWordWrap(true);
    hint->setTextFormat(Qt::PlainText);
    const QStringList examples{"https://example.com/image.tif", "ftp://example.com/image.tif",
                               "https://example.com/tiles/{z}/{x}/{y}.png",
                               "https://example.com/map.cmap"};
    hint->setText(tr("For example:") + '\n' + examples.join('\n'));
    const auto layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(edit);
    layout->addWidget(hint);
    layout->addStretch();
    layout->addWidget(buttons);
    connect(edit, &QComboBox::editTextChanged, this, &OpenAddressDialog::look);
    connect(buttons, &QDialogButtonBox::accepted, this, &OpenAddressDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &OpenAddressDialog::reject);
    resize(firstWidth, sizeHint().height());
    look();
}

QString OpenAddressDialog::address() const
{
    return sourceOf(edit->currentText());
}

void OpenAddressDialog::look()
{
    buttons->button(QDialogButtonBox::Open)->setEnabled(isAddress(address()));
}

void OpenAddressDialog::accept()
{
    if (!isAddress(address())) {
        return;
    }
    keep(address());
    emit chosen(address());
    QDialog::accept();
}

/// One that gives access is not kept, and would not open without.
void OpenAddressDialog::keep(const QString& chosenAddress) const
{
    if (withoutSecrets(chosenAddress) != chosenAddress) {
        return;
    }
    QStringList addresses = keptAddresses();
    addresses.removeAll(chosenAddress);
    addresses.prepend(chosenAddress);
    Application::instance()->getSettings()->setValue(addressesKey,
                                                     QStringList(addresses.mid(0, mostAddresses)));
}

} // namespace Corvane::Viewer
