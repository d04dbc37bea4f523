#include <corvane/browser/ZWTPBrowser.h>

#include "ui_ZWTPBrowser.h"

#include <corvane/browser/KRSServerInfo.h>
#include <corvane/browser/ServerReply_p.h>

#include <QNetworkReply>
#include <QPointer>
#include <QSignalBlocker>
#include <QStringListModel>
#include <QUrlQuery>

namespace Corvane::Gui {
namespace {

/// The texts of all elements of a name, in their order.
QStringList textsOf(const QDomDocument& document, const char* name)
{
    QStringList texts;
    const QDomNodeList nodes = document.elementsByTagName(QLatin1String(name));
    for (int i = 0; i < nodes.size(); ++i) {
        texts << nodes.at(i).toElement().text();
    }
    return texts;
}

/// Shows what the reply's document tells; what it does not tell stays empty.
void fill(KRSServerInfo& dialog, const QDomDocument& document, const QUrl& url)
{
    const QDomElement server = firstElement(document, "serverinfo");
    if (!server.isNull()) {
        dialog.setHostname(
            QStringLiteral("%1:%2").arg(url.host(), QString::number(url.port(standardPort))));
        dialog.setTitle(server.attribute(QStringLiteral("title")));
        dialog.setBuild(server.attribute(QStringLiteral("build")));
        dialog.setOnlineResource(server.attribute(QStringLiteral("onlineresource")));
        dialog.setAbstract(server.attribute(QStringLiteral("abstract")));
        dialog.setContactInfo(server.attribute(QStringLiteral("contactinformation")));
    }
    const QStringList keyWords = textsOf(document, "keyword");
    if (!keyWords.isEmpty()) {
        dialog.setKeyWords(keyWords);
    }
    const QStringList aliases = textsOf(document, "serveralias");
    if (!aliases.isEmpty()) {
        dialog.setServerAliases(aliases);
    }
    const QStringList formats = textsOf(document, "format");
    if (!formats.isEmpty()) {
        dialog.setFormats(formats);
    }
}

} // namespace

void ZWTPBrowser::serverInfo()
{
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("request"), QStringLiteral("getkrsinfo"));
    query.addQueryItem(QStringLiteral("folder"), QStringLiteral("/"));
    query.addQueryItem(QStringLiteral("format"), QStringLiteral("xml"));
    query.addQueryItem(QStringLiteral("recursive"), QStringLiteral("false"));
    askDiscovery(query, QStringLiteral("ServerInfo"), tr("Not a valid server name."),
                 &ZWTPBrowser::finishedInfo);
}

void ZWTPBrowser::finishedInfo()
{
    QNetworkReply* const reply = answeredReply();
    if (!reply) {
        return;
    }
    readInTurns(reply, [this, reply](const QDomDocument& answer) { showInfo(reply, answer); });
}

void ZWTPBrowser::showInfo(QNetworkReply* reply, const QDomDocument& description)
{
    if (firstElement(description, "krsinfo").isNull()) {
        endWait(reply);
        warn(this, tr("ORIVEX Browser Error"),
             tr("The web server responded with an unrecognized reply.\n\nTo browse ZWTP images, "
                "the server must be running TAVRO ORIVEX Core 2013 or higher. Please contact your "
                "server administrator."));
        return;
    }
    const QPointer<ZWTPBrowser> self(this);
    const QPointer<KRSServerInfo> dialog(new KRSServerInfo(this));
    fill(*dialog, description, reply->url());
    updateServerHistory(reply->url());
    WaitCursor::end(reply);
    dialog->exec();
    if (!self) {
        return; // gone while it was shown, and the dialog and the reply with it
    }
    delete dialog;
    endWait(reply);
}

void ZWTPBrowser::servicesInfo()
{
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("request"), QStringLiteral("getserviceinfo"));
    askDiscovery(query, QStringLiteral("ServiceInfo"), tr("Not a valid server name."),
                 &ZWTPBrowser::finishedServicesInfo);
}

void ZWTPBrowser::finishedServicesInfo()
{
    QNetworkReply* const reply = answeredReply();
    if (!reply) {
        return;
    }
    readInTurns(reply, [this, reply](const QDomDocument& answer) { showServices(reply, answer); });
}

void ZWTPBrowser::showServices(QNetworkReply* reply, const QDomDocument& list)
{
    if (firstElement(list, "serviceinfo").isNull()) {
        endWait(reply);
        warn(this, tr("ORIVEX Browser Error"),
             tr("Could not query service names for this host. This feature requires TAVRO ORIVEX "
                "Core 2013 or higher."));
        return;
    }
    const QDomElement services = firstElement(list, "services");
    if (!services.isNull()) {
        const QString standard = QStringLiteral("default");
        clearServices();
        QStringList names;
        const QDomNodeList nodes = services.elementsByTagName(QStringLiteral("service"));
        for (int i = 0; i < nodes.size(); ++i) {
            const QString name = nodes.at(i).toElement().attribute(QStringLiteral("name"));
            names.append(name.isEmpty() ? standard : name);
        }
        // quicker than an item for each: some servers have very many
        ui->serviceNameCombo->setModel(new QStringListModel(names, ui->serviceNameCombo));
        const QSignalBlocker blocker(ui->serviceNameCombo);
        const int index =
            ui->serviceNameCombo->findData(standard, Qt::DisplayRole, Qt::MatchFixedString);
        if (index >= 0) {
            ui->serviceNameCombo->setCurrentIndex(index);
        }
    }
    endWait(reply);
}

} // namespace Corvane::Gui
