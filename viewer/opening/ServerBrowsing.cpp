#include <viewer/opening/ServerBrowsing.h>

#include <corvane/browser/ZWTPBrowser.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QPushButton>

namespace Corvane::Viewer {
namespace {

struct Scheme
{
    const char* given;
    const char* opened;
};
constexpr Scheme schemes[] = {{"http://", "zwtp://"},
                              {"https://", "zwtps://"},
                              {"zwtp://", "zwtp://"},
                              {"zwtps://", "zwtps://"}};

} // namespace

ServerBrowsing::ServerBrowsing(QWidget* newWindow) : QObject(newWindow), window(newWindow) {}

void ServerBrowsing::browse()
{
    if (!browser) {
        // The HTTP mode lists every image, the streaming mode only those of a few formats.
        browser = new Gui::ZWTPBrowser(window, Gui::ProtocolRaxion);
        browser->setAttribute(Qt::WA_DeleteOnClose);
        auto* const box = browser->findChild<QDialogButtonBox*>("buttonBox");
        box->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Close);
        connect(box, &QDialogButtonBox::clicked, this, [this, box](QAbstractButton* button) {
            okPressed = box->standardButton(button) == QDialogButtonBox::Ok;
        });
        connect(browser, &Gui::ZWTPBrowser::urlSelected, this, &ServerBrowsing::onUrlSelected);
        connect(browser, &QDialog::accepted, this, &ServerBrowsing::onAccepted);
        lastUrl.clear();
        okPressed = false;
    }
    browser->show();
    browser->raise();
    browser->activateWindow();
}

QString ServerBrowsing::sourceOf(const QString& url, const QString& user, const QString& password)
{
    for (const Scheme& scheme : schemes) {
        const QLatin1String given(scheme.given);
        if (url.startsWith(given, Qt::CaseInsensitive)) {
            const QString source = scheme.opened + url.mid(given.size());
            const bool complete = user.isEmpty() || password.isEmpty() || url.contains('|');
            return complete ? source : QString("%1|%2|%3").arg(source, user, password);
        }
    }
    return url;
}

void ServerBrowsing::onUrlSelected(const QString& url)
{
    lastUrl = url;
    emit chosen(sourceOf(url, browser->getUserName(), browser->getPassWord()));
}

/// Ok adds as the Add button does, unless that was done already.
void ServerBrowsing::onAccepted()
{
    const QString url = browser->findChild<QComboBox*>("zwtpCombo")->currentText();
    if (okPressed && url != lastUrl) {
        browser->findChild<QPushButton*>("addButton")->click();
    }
}

} // namespace Corvane::Viewer
