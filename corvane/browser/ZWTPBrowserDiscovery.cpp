#include <corvane/browser/ZWTPBrowser.h>

#include "ui_ZWTPBrowser.h"

#include <corvane/browser/ServerItems_p.h>
#include <corvane/browser/ServerReply_p.h>
#include <corvane/browser/ServerTree_p.h>
#include <corvane/browser/XmlReading_p.h>

#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrlQuery>

#include <algorithm>
#include <memory>

namespace Corvane::Gui {
namespace {

QTreeWidgetItem* newRoot(const QString& text)
{
    return newItem(text, QLatin1String(rootRole), QIcon(QStringLiteral(":/resources/home.png")));
}

} // namespace

void ZWTPBrowser::serverConnect()
{
    serverConnectKRS();
}

void ZWTPBrowser::serverConnectKRS()
{
    fromServiceCombo = false;
    if (const auto* const combo = qobject_cast<QComboBox*>(sender())) {
        fromServiceCombo = combo->objectName() == QLatin1String("serviceNameCombo");
    }
    // A click on Connect starts from the default service.
    if (const auto* const button = qobject_cast<QPushButton*>(sender())) {
        if (button->objectName() == QLatin1String("connectButton")) {
            clearServices();
        }
    }
    const QString service = ui->serviceNameCombo->currentText().trimmed();

    QUrlQuery query;
    query.addQueryItem(QStringLiteral("request"), QStringLiteral("getkrsinfo"));
    query.addQueryItem(QStringLiteral("folder"), QStringLiteral("/"));
    query.addQueryItem(QStringLiteral("format"), QStringLiteral("xml"));
    query.addQueryItem(QStringLiteral("recursive"), QStringLiteral("true"));
    query.addQueryItem(QStringLiteral("version"), QStringLiteral("1.0"));
    // The case counts here: "Default" goes out as the name of a service.
    if (!service.isEmpty() && service != QLatin1String("default")) {
        query.addQueryItem(QStringLiteral("service"), service);
    }
    askDiscovery(query, QStringLiteral("Discovery"), tr("Not a valid server or service name."),
                 &ZWTPBrowser::finishedKRSConnect);
}

void ZWTPBrowser::askDiscovery(const QUrlQuery& query, const QString& name,
                               const QString& complaint, void (ZWTPBrowser::*handler)())
{
    QUrl url = serverUrl(QStringLiteral("/tavro-krs/discovery.dll"));
    url.setQuery(query);
    logDebug(name + QStringLiteral(" URL: ") + forLog(url));
    if (!namesServer(url)) {
        warn(nullptr, tr("TAVRO ORIVEX Browser Error"), complaint);
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferCache);
    QNetworkReply* const reply = networkManager->get(request);
    connect(reply, &QNetworkReply::finished, this, handler);
    // Once more with each request, so the credentials are asked for as often.
    connect(networkManager, &QNetworkAccessManager::authenticationRequired, this,
            &ZWTPBrowser::krsAuthRequired);
    waitFor(reply);
}

void ZWTPBrowser::finishedKRSConnect()
{
    QNetworkReply* const reply = answeredReply();
    if (!reply) {
        return;
    }
    // Still under the wait cursor; the reply goes with the dialog and takes the reading along.
    readInTurns(reply, [this, reply](const QDomDocument& answer) { makeTree(reply, answer); });
}

// All items are made before one is shown, so the tree is never seen half full.
void ZWTPBrowser::makeTree(QNetworkReply* reply, const QDomDocument& answer)
{
    QString service = ui->serviceNameCombo->currentText().trimmed();
    if (service.isEmpty()) {
        service = QStringLiteral("default");
    }
    const auto root = std::make_shared<std::unique_ptr<QTreeWidgetItem>>(newRoot(
        QStringLiteral("%1 [%2]").arg(reply->request().url().host(QUrl::FullyDecoded), service)));
    document = answer;
    QDomElement folder = document.firstChildElement(QStringLiteral("krsinfo"))
                             .firstChildElement(QStringLiteral("folder"));
    processNode(root->get(), &folder);
    takeTurns(
        reply, [items = walk] { return items->walkOn(); },
        [this, reply, root, answer] {
            document = answer;
            showTree(reply, root->release());
        });
}

void ZWTPBrowser::showTree(QNetworkReply* reply, QTreeWidgetItem* root)
{
    discardItems(*ui->treeWidget);
    ui->treeWidget->clear();
    ui->treeWidget->insertTopLevelItem(0, root);

    const QDomElement info = document.firstChildElement(QStringLiteral("krsinfo"));
    if (info.isNull()) {
        const QDomElement error = document.firstChildElement(QStringLiteral("error"));
        if (error.isNull()) {
            endWaitWarning(reply, tr("ORIVEX Browser Error"),
                           tr("Invalid response from the server.\n\nEnsure the server name is "
                              "correct and is running TAVRO ORIVEX or contact the server "
                              "administrator."));
        } else {
            endWaitWarning(reply, tr("TAVRO ORIVEX Browser Error"),
                           tr("Server returned error: ") + error.text());
        }
        return;
    }
    readBuild(
        info.firstChildElement(QStringLiteral("serverinfo")).attribute(QStringLiteral("build")));
    ui->treeWidget->expandItem(root);
    ui->treeWidget->setCurrentItem(root->child(0));
    document.clear();

    WaitCursor::end(reply);
    updateServerHistory(reply->url());
    if (serverBuild[0] < newServer) {
        clearServices();
    } else if (!fromServiceCombo) {
        servicesInfo(); // waits from here on, but the dialog is of use again at once
    }
    endWait(reply);
}

void ZWTPBrowser::readBuild(const QString& build)
{
    std::fill(std::begin(serverBuild), std::end(serverBuild), 0);
    const QStringList parts = build.split(QLatin1Char('.'));
    if (parts.size() == int(std::size(serverBuild))) {
        std::transform(parts.begin(), parts.end(), std::begin(serverBuild),
                       [](const QString& part) { return part.toInt(); });
    }
}

// Begins only: the walk goes on in turns.
void ZWTPBrowser::processNode(QTreeWidgetItem* parent, QDomNode* node)
{
    const QIcon imageIcon(QStringLiteral(":/resources/image.png"));
    walk = std::make_shared<TreeWalk>(parent, *node, [this, imageIcon](QDomNode* dataset) {
        return isOffered(*dataset) ? newDataset(dataset, imageIcon) : nullptr;
    });
}

QTreeWidgetItem* ZWTPBrowser::newDataset(QDomNode* node, const QIcon& icon)
{
    QString path = node->toElement().attribute(QStringLiteral("name"));
    // In this mode alone: a streamed dataset keeps its slash.
    if (protocol == ProtocolRaxion && path.endsWith(QLatin1Char('/'))) {
        path.chop(1);
    }
    QTreeWidgetItem* const item = newItem(QFileInfo(path).fileName(), path, icon);
    item->setToolTip(0, getDatasetToolTip(node));
    return item;
}

bool ZWTPBrowser::isOffered(const QDomNode& dataset) const
{
    const QDomElement services = dataset.firstChildElement(QStringLiteral("services"));
    const QString yes = QStringLiteral("true");
    if (services.isNull()) {
        return false;
    }
    if (protocol == ProtocolZWTP) {
        return services.attribute(QStringLiteral("zwtp")) == yes;
    }
    return protocol != ProtocolRaxion || services.attribute(QStringLiteral("raxion")) == yes;
}

QString ZWTPBrowser::getDatasetToolTip(QDomNode* node)
{
    return node->toElement().attribute(QStringLiteral("name"));
}

} // namespace Corvane::Gui
