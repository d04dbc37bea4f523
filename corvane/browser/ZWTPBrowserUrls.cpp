#include <corvane/browser/ZWTPBrowser.h>

#include "ui_ZWTPBrowser.h"

#include <corvane/browser/ServerItems_p.h>

#include <QRegularExpression>
#include <QTreeWidgetItem>

namespace Corvane::Gui {
namespace {

/// What stands before the credentials. QUrl spells the bars as %7C, more than once where a percent
/// sign stands in the password, and a password may hold bars of its own.
QString beforeAnyBar(const QString& text)
{
    static const QRegularExpression bar(QStringLiteral("\\||%(?:25)*7C"),
                                        QRegularExpression::CaseInsensitiveOption);
    return text.left(text.indexOf(bar));
}

} // namespace

QString ZWTPBrowser::getUrl()
{
    const QString user = ui->userEdit->text();
    const QString password = ui->passwordEdit->text();
    const QString service = ui->serviceNameCombo->currentText();

    QUrl url = QUrl::fromUserInput(ui->zwtpCombo->currentText());
    // A streaming scheme in every mode: the layers that open the result depend on it.
    url.setScheme(ui->useSSLCheckBox->isChecked() ? QStringLiteral("zwtps")
                                                  : QStringLiteral("zwtp"));
    if (!service.isEmpty() && !isDefaultService(service)) {
        // Without a slash, so a URL that has a host is no longer valid and its text empty.
        // ZWTPBrowserUrlsTest::aNamedServiceLeavesNothingOfTheResult holds it.
        url.setPath(service + url.path(QUrl::FullyDecoded));
    }
    QString result = url.toString();
    if (!user.isEmpty() && !password.isEmpty()) {
        result += QLatin1Char('|') + user + QLatin1Char('|') + password;
    }
    updateZwtpUrlHistory(QUrl(result));
    return result;
}

void ZWTPBrowser::onSelectItem(QTreeWidgetItem* item, int)
{
    const QString dataset = item->data(0, Qt::UserRole).toString();
    if (!isDataset(dataset)) {
        ui->imageLabel->setText(tr("No preview"));
        return;
    }
    const QString service = ui->serviceNameCombo->currentText();
    QUrl url = QUrl::fromUserInput(ui->serverNameCombo->currentText());
    url.setPath(dataset);
    setSchemeOfMode(url);
    // An empty service counts here, unlike in a double click: servers without services are shown
    // with two slashes.
    if (!isDefaultService(service)) {
        url.setPath(QLatin1Char('/') + service + url.path(QUrl::FullyDecoded));
    }
    ui->zwtpCombo->setEditText(url.toString());

    if (ui->previewGroupBox->isChecked()) {
        ui->imageLabel->setText(tr("Generating preview..."));
        requestPreview(dataset);
        requestDatasetInfo(dataset);
    }
}

void ZWTPBrowser::onSelectItemAndClose(QTreeWidgetItem* item, int)
{
    const QString dataset = item->data(0, Qt::UserRole).toString();
    if (!isDataset(dataset)) {
        return;
    }
    const QString service = ui->serviceNameCombo->currentText();
    QUrl url = QUrl::fromUserInput(ui->serverNameCombo->currentText());
    url.setPath(service.isEmpty() || isDefaultService(service)
                    ? dataset
                    : QLatin1Char('/') + service + dataset);
    setSchemeOfMode(url);
    if (ui->buttonBox->standardButtons().testFlag(QDialogButtonBox::Close)) {
        updateZwtpUrlHistory(url);
    }
    emit urlSelected(url.toString());
    accept();
}

void ZWTPBrowser::onAddZWTPUrl()
{
    const QString text = ui->zwtpCombo->currentText();
    updateZwtpUrlHistory(QUrl(text));
    emit urlSelected(text);
}

/// Removes two fields at the most, from the end.
QString ZWTPBrowser::stripUsernamePassword(QString url)
{
    constexpr int fields = 2;
    for (int i = 0; i < fields; ++i) {
        const int bar = url.lastIndexOf(QLatin1Char('|'));
        if (bar < 0) {
            break;
        }
        url.truncate(bar);
    }
    return url;
}

void ZWTPBrowser::updateZwtpUrlHistory(QUrl url)
{
    const QString entry = beforeAnyBar(stripUsernamePassword(url.toString(QUrl::RemoveUserInfo)));
    if (protocol == ProtocolZWTP) {
        zwtpUrlHistory.prepend(entry);
        zwtpUrlHistory.removeDuplicates();
    } else if (protocol == ProtocolRaxion) {
        raxionUrlHistory.prepend(entry);
        raxionUrlHistory.removeDuplicates();
    }
}

void ZWTPBrowser::setSchemeOfMode(QUrl& url) const
{
    const bool secure = ui->useSSLCheckBox->isChecked();
    if (protocol == ProtocolZWTP) {
        url.setScheme(secure ? QStringLiteral("zwtps") : QStringLiteral("zwtp"));
    } else if (protocol == ProtocolRaxion) {
        url.setScheme(secure ? QStringLiteral("https") : QStringLiteral("http"));
    }
}

} // namespace Corvane::Gui
