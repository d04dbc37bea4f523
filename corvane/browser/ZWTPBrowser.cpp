#include <corvane/browser/ZWTPBrowser.h>

#include "ui_ZWTPBrowser.h"

#include <corvane/browser/ServerReply_p.h>
#include <corvane/browser/ServerTree_p.h>
#include <corvane/core/Application.h>

#include <QDir>
#include <QKeyEvent>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QPointer>
#include <QSettings>

#include <algorithm>
#include <array>

namespace Corvane::Gui {
namespace {

constexpr char demonstrationServer[] = "http://localhost:8460/"; // our own server, left to itself
constexpr int rememberedEntries = 10;                            // of each list
constexpr int previewWidth = 170;                                // pixels, at least

constexpr std::array<const char*, 8> streamedSuffixes = {".zwt", ".jp2", ".jpc", ".jpf",
                                                         ".jpx", ".j2c", ".j2k", ".ntf"};

bool isStreamingUrl(const QString& text)
{
    const auto endsText = [&text](const char* suffix) {
        return text.endsWith(QLatin1String(suffix));
    };
    return (text.startsWith(QLatin1String("zwtp://")) ||
            text.startsWith(QLatin1String("zwtps://"))) &&
           std::any_of(streamedSuffixes.begin(), streamedSuffixes.end(), endsText);
}

bool isHttpUrl(const QString& text)
{
    return QUrl(text).isValid() && (text.startsWith(QLatin1String("http://")) ||
                                    text.startsWith(QLatin1String("https://")));
}

/// Keeps Enter in a combo from pressing the dialog's default button as well.
class EnterKeeper : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress) {
            return false;
        }
        const int key = static_cast<const QKeyEvent*>(event)->key();
        if (key != Qt::Key_Return && key != Qt::Key_Enter) {
            return false;
        }
        watched->event(event);
        event->accept();
        return true;
    }
};

QStringList newest(const QStringList& list)
{
    return list.mid(0, rememberedEntries);
}

} // namespace

ZWTPBrowser::ZWTPBrowser(QWidget* parent, BrowserProtocol mode)
    : QDialog(parent, Qt::WindowFlags()),
      ui(new Ui::ZWTPBrowserClass),
      networkManager(new QNetworkAccessManager),
      diskCache(new QNetworkDiskCache(this)),
      settings(Application::instance()->getSettings()),
      protocol(mode)
{
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowCloseButtonHint); // and no help button
    diskCache->setCacheDirectory(QDir::tempPath() + QStringLiteral("/zwtpbrowserxmlcache/"));
    networkManager->setCache(diskCache);

    ui->setupUi(this);
    ui->treeWidget->setColumnCount(1);
    ui->treeWidget->setHeaderHidden(true);
    ui->treeWidget->setAnimated(true);
    ui->treeWidget->setRootIsDecorated(true);
    showModeTexts();
    makeConnections();
    readSettings();
    ui->imageLabel->setText(tr("No preview"));
    ui->imageLabel->setMinimumWidth(previewWidth);

    const QRect position = settings->value(QStringLiteral("ZWTPChooser/Position")).toRect();
    if (!position.isNull()) {
        setGeometry(position);
    }
    ui->optionsGroupBox->hide(); // it is deleted only when the caller's event loop is back in turn
    ui->optionsGroupBox->deleteLater();
}

ZWTPBrowser::~ZWTPBrowser()
{
    settings->setValue(QStringLiteral("ZWTPChooser/UseSSL"), ui->useSSLCheckBox->isChecked());
    settings->setValue(QStringLiteral("ZWTPChooser/Position"), geometry());
    settings->setValue(QStringLiteral("ZWTPChooser/Servers"), newest(serverHistory));
    settings->setValue(QStringLiteral("ZWTPChooser/ZwtpUrls"), newest(zwtpUrlHistory));
    settings->setValue(QStringLiteral("ZWTPChooser/RaxionUrls"), newest(raxionUrlHistory));
    // Written and never read: the preview is on in every new dialog.
    settings->setValue(QStringLiteral("ZWTPChooser/ShowPreview"), ui->previewGroupBox->isChecked());
    delete networkManager; // with its replies
    discardItems(*ui->treeWidget);
    delete ui;
}

QString ZWTPBrowser::getZwtpUrl(QWidget* parent, BrowserProtocol protocol)
{
    // The parent may go while it is open.
    const QPointer<ZWTPBrowser> dialog(new ZWTPBrowser(parent, protocol));
    dialog->ui->buttonBox->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Close);
    dialog->ui->addButton->setVisible(true);
    dialog->showModeTexts();
    const bool isAccepted = dialog->exec() == QDialog::Accepted && dialog;
    const QString url = isAccepted ? dialog->getUrl() : QString();
    delete dialog;
    return url;
}

QString ZWTPBrowser::getUserName()
{
    return ui->userEdit->text();
}

QString ZWTPBrowser::getPassWord()
{
    return ui->passwordEdit->text();
}

void ZWTPBrowser::accept()
{
    const QString text = ui->zwtpCombo->currentText().toLower();
    const QString title = tr("TAVRO ORIVEX Browser Error");
    if (protocol == ProtocolZWTP && !isStreamingUrl(text)) {
        warn(this, title, tr("Invalid ZWTP Url."));
    } else if (protocol != ProtocolZWTP && !isHttpUrl(text)) {
        warn(this, title, tr("Invalid Raxion Url."));
    } else {
        QDialog::accept();
    }
}

void ZWTPBrowser::krsAuthRequired(QNetworkReply*, QAuthenticator* asked)
{
    const QString user = ui->userEdit->text();
    const QString password = ui->passwordEdit->text();
    if (user.isEmpty() || password.isEmpty()) {
        warn(this, tr("Authentication Error"),
             tr("This server requires authentication. Please enter your credentials."));
        return;
    }
    asked->setUser(user);
    asked->setPassword(password);
}

void ZWTPBrowser::updateServerHistory(QUrl url)
{
    const int port = url.port(standardPort);
    const QString host = url.host(QUrl::FullyDecoded);
    serverHistory.prepend(port == standardPort ? host
                                               : host + QLatin1Char(':') + QString::number(port));
    serverHistory.removeDuplicates();

    const QString text = ui->serverNameCombo->currentText();
    ui->serverNameCombo->clear();
    ui->serverNameCombo->insertItem(0, QLatin1String(demonstrationServer));
    ui->serverNameCombo->addItems(serverHistory);
    ui->serverNameCombo->setEditText(text);
}

void ZWTPBrowser::showModeTexts()
{
    const bool streaming = protocol == ProtocolZWTP;
    ui->addButton->setText(streaming ? tr("  Add ZWTP Layer  ") : tr("  Add Raxion Layer  "));
    ui->urlGroupBox->setTitle(streaming ? tr("  Zwtp Url  ") : tr("  Raxion Url  "));
}

void ZWTPBrowser::makeConnections()
{
    connect(ui->buttonBox, SIGNAL(accepted()), this, SLOT(accept()));
    // Close takes the same checked way as Ok. Escape and the window's own button reject.
    connect(ui->buttonBox, SIGNAL(rejected()), this, SLOT(accept()));
    connect(ui->connectButton, SIGNAL(clicked()), this, SLOT(serverConnect()));
    connect(ui->infoButton, SIGNAL(clicked()), this, SLOT(serverInfo()));
    connect(ui->treeWidget, SIGNAL(itemClicked(QTreeWidgetItem*, int)), this,
            SLOT(onSelectItem(QTreeWidgetItem*, int)));
    connect(ui->treeWidget, SIGNAL(itemDoubleClicked(QTreeWidgetItem*, int)), this,
            SLOT(onSelectItemAndClose(QTreeWidgetItem*, int)));
    connect(ui->addButton, SIGNAL(clicked()), this, SLOT(onAddZWTPUrl()));
    // Queued: the combo closes its list before the dialog disables itself.
    connect(ui->serviceNameCombo, SIGNAL(activated(int)), this, SLOT(serverConnectKRS()),
            Qt::QueuedConnection);
    // A typed name is one that is picked; Connect would start from the default service.
    ui->serviceNameCombo->installEventFilter(new EnterKeeper(ui->serviceNameCombo));
}

void ZWTPBrowser::readSettings()
{
    const bool useSsl = settings->value(QStringLiteral("ZWTPChooser/UseSSL"), false).toBool();
    serverHistory = settings->value(QStringLiteral("ZWTPChooser/Servers")).toStringList();
    zwtpUrlHistory = settings->value(QStringLiteral("ZWTPChooser/ZwtpUrls")).toStringList();
    raxionUrlHistory = settings->value(QStringLiteral("ZWTPChooser/RaxionUrls")).toStringList();

    ui->useSSLCheckBox->setChecked(useSsl);
    ui->serverNameCombo->clear();
    ui->serverNameCombo->addItems(serverHistory);
    ui->serviceNameCombo->clear();
    ui->zwtpCombo->clear();
    if (protocol == ProtocolZWTP) {
        ui->zwtpCombo->addItems(zwtpUrlHistory);
    } else if (protocol == ProtocolRaxion) {
        ui->zwtpCombo->addItems(raxionUrlHistory);
    }
}

// Clearing an empty list alone would leave a typed name in place.
void ZWTPBrowser::clearServices()
{
    ui->serviceNameCombo->clear();
    ui->serviceNameCombo->clearEditText();
}

QUrl ZWTPBrowser::serverUrl(const QString& path) const
{
    QUrl url = QUrl::fromUserInput(ui->serverNameCombo->currentText());
    url.setScheme(ui->useSSLCheckBox->isChecked() ? QStringLiteral("https")
                                                  : QStringLiteral("http"));
    url.setPath(path);
    return url;
}

void ZWTPBrowser::waitFor(QNetworkReply* reply)
{
    setEnabled(false);
    new WaitCursor(reply);
}

void ZWTPBrowser::endWait(QNetworkReply* reply)
{
    WaitCursor::end(reply);
    setEnabled(true);
    reply->deleteLater();
}

QNetworkReply* ZWTPBrowser::answeredReply()
{
    auto* const reply = qobject_cast<QNetworkReply*>(sender());
    if (!reply) {
        return nullptr;
    }
    logCacheState(*reply);
    if (reply->error() != QNetworkReply::NoError) {
        endWaitWarning(reply, tr("TAVRO ORIVEX Browser Error"), reply->errorString());
        return nullptr;
    }
    return reply;
}

void ZWTPBrowser::endWaitWarning(QNetworkReply* reply, const QString& title, const QString& text)
{
    const QPointer<QNetworkReply> guard(reply); // goes with the dialog
    WaitCursor::end(reply);
    warn(this, title, text);
    if (guard) {
        endWait(reply);
    }
}

} // namespace Corvane::Gui
