#include <corvane/browser/ZWTPBrowser.h>

#include "ui_ZWTPBrowser.h"

#include <corvane/browser/JsonReader.h>
#include <corvane/browser/ServerItems_p.h>
#include <corvane/browser/ServerReply_p.h>

#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace Corvane::Gui {
namespace {

/// One page of images, of the two decoders that stream.
constexpr char search[] = R"({"maxresults":500,"start":0,"profile":"tvc-brief",)"
                          R"("orderby":["class asc","registrationDate desc"],"maxresultcount":501,)"
                          R"("template":{"wmsEnabled":{"_op":"eq","value":true,"type":"boolean"},)"
                          R"("decoderName":["ZWT","JP2"],)"
                          R"("class":"com.tavro.rsp.lexon.model.imagery.ImageReference",)"
                          R"("nameQualifier":"lexon://coverages"}})";

/// Owned by the caller.
QTreeWidgetItem* newImage(const QVariantMap& entry)
{
    const QString path = QLatin1Char('/') + entry[QStringLiteral("name")].toString() +
                         QLatin1Char('.') +
                         entry[QStringLiteral("decoderName")].toString().toLower();
    return newItem(path, path, QIcon(QStringLiteral(":/resources/image.png")));
}

} // namespace

void ZWTPBrowser::serverConnectOrivex()
{
    const QUrl url = serverUrl(QStringLiteral("/tavro-orivex/catalog/content/search.json"));
    if (!namesServer(url)) {
        warn(nullptr, tr("TAVRO ORIVEX Browser Error"), tr("Not a valid server name."));
        return;
    }
    QNetworkRequest request(url);
    const QString user = ui->userEdit->text();
    const QString password = ui->passwordEdit->text();
    // Null, not empty: with both fields blank a lone colon goes out.
    if (!user.isNull() && !password.isNull()) {
        const QString credentials = QStringLiteral("%1:%2").arg(user, password);
        request.setRawHeader("Authorization", "Basic " + credentials.toUtf8().toBase64());
    }
    QNetworkReply* const reply = networkManager->post(request, QByteArray(search));
    connect(reply, &QNetworkReply::finished, this, &ZWTPBrowser::finishedOrivexConnect);
    waitFor(reply);
}

void ZWTPBrowser::finishedOrivexConnect()
{
    QNetworkReply* const reply = answeredReply();
    if (!reply) {
        return;
    }
    const QString type = reply->header(QNetworkRequest::ContentTypeHeader).toString().toLower();
    if (!type.startsWith(QLatin1String("application/json"))) {
        endWaitWarning(reply, tr("TAVRO ORIVEX Browser Error"),
                       tr("The response was not a JSON document."));
        return;
    }
    bool success = false;
    const QVariantMap map = JsonReader::parse(QString::fromUtf8(reply->readAll()), success).toMap();
    if (success && !map.isEmpty()) {
        ui->treeWidget->clear();
        QTreeWidgetItem* const root =
            newItem(reply->request().url().host(QUrl::FullyDecoded), QLatin1String(rootRole),
                    QIcon(QStringLiteral(":/resources/home.png")));
        ui->treeWidget->insertTopLevelItem(0, root);
        const QVariantList results = map[QStringLiteral("results")].toList();
        for (const QVariant& entry : results) {
            root->addChild(newImage(entry.toMap()));
        }
    }
    endWait(reply);
}

} // namespace Corvane::Gui
