#include <corvane/browser/ZWTPBrowser.h>

#include "ui_ZWTPBrowser.h"

#include <corvane/browser/ServerItems_p.h>
#include <corvane/browser/ServerReply_p.h>
#include <corvane/core/Application.h>
#include <corvane/core/StringUtil.h>

#include <QBuffer>
#include <QDateTime>
#include <QDebug>
#include <QImageReader>
#include <QLocale>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPixmap>
#include <QUrlQuery>

namespace Corvane::Gui {
namespace {

constexpr int frame = 2;                   // pixels, both sides of the label together
constexpr qint64 largestPicture = 1 << 24; // pixels: a preview is asked for at the label's size

QString formatSize(quint64 bytes, const char* format)
{
    return Util::String::formatFileSize(bytes, format);
}

/// Null where the data is no picture, or one that would hold up the program.
QPixmap pictureOf(QByteArray data)
{
    QBuffer buffer(&data);
    const QSize size = QImageReader(&buffer).size();
    QPixmap picture;
    if (qint64(size.width()) * size.height() <= largestPicture) {
        picture.loadFromData(data);
    }
    return picture;
}

/// With a fixed count of decimals; 0 where it is no number.
QString decimal(const QDomElement& element, const char* name)
{
    constexpr int decimals = 6;
    return QString::number(element.attribute(QLatin1String(name)).toDouble(), 'f', decimals);
}

quint64 countOf(const QString& text)
{
    return static_cast<quint64>(text.toInt());
}

QString grouped(const QString& text)
{
    return QLocale::system().toString(text.toInt());
}

} // namespace

void ZWTPBrowser::requestPreview(const QString& dataset)
{
    QUrlQuery query;
    QUrl url;
    if (serverBuild[0] >= newServer) {
        const QString service = ui->serviceNameCombo->currentText();
        url = serverUrl(QStringLiteral("/tavro-krs/tavro/raxion"));
        if (!isDefaultService(service)) {
            query.addQueryItem(QStringLiteral("service"), service);
        }
        query.addQueryItem(QStringLiteral("request"), QStringLiteral("image"));
    } else {
        // The question mark is one of the path and goes out encoded: old servers take it so.
        url = serverUrl(QStringLiteral("/zwtp/raxion.dll?image"));
    }
    query.addQueryItem(QStringLiteral("cache"), QStringLiteral("true"));
    query.addQueryItem(QStringLiteral("layers"), dataset);
    query.addQueryItem(QStringLiteral("sizex"), QString::number(ui->imageLabel->width() - frame));
    query.addQueryItem(QStringLiteral("sizey"), QString::number(ui->imageLabel->height() - frame));
    url.setQuery(query);
    qDebug().noquote() << query.toString();
    logDebug(QStringLiteral("Preview Image URL: ") + forLog(url));
    if (!namesServer(url)) {
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferCache);
    QNetworkReply* const reply = networkManager->get(request);
    connect(reply, &QNetworkReply::finished, this, &ZWTPBrowser::finishedPreviewConnect);
}

// On the new path for every server.
void ZWTPBrowser::requestDatasetInfo(const QString& dataset)
{
    const QString service = ui->serviceNameCombo->currentText();
    QUrlQuery query;
    if (!service.isNull() && !isDefaultService(service)) {
        query.addQueryItem(QStringLiteral("service"), service);
    }
    query.addQueryItem(QStringLiteral("request"), QStringLiteral("dsinfo"));
    query.addQueryItem(QStringLiteral("layers"), dataset);
    query.addQueryItem(QStringLiteral("verbose"), QStringLiteral("true"));
    QUrl url = serverUrl(QStringLiteral("/tavro-krs/tavro/raxion"));
    url.setQuery(query);
    logDebug(QStringLiteral("DsInfo URL: ") + forLog(url));
    if (!namesServer(url)) {
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferCache);
    QNetworkReply* const reply = networkManager->get(request);
    connect(reply, &QNetworkReply::finished, this, &ZWTPBrowser::finishedDsinfoConnect);
    connect(networkManager, &QNetworkAccessManager::authenticationRequired, this,
            &ZWTPBrowser::krsAuthRequired);
}

void ZWTPBrowser::finishedPreviewConnect()
{
    auto* const reply = qobject_cast<QNetworkReply*>(sender());
    if (!reply) {
        return;
    }
    logCacheState(*reply);
    qDebug().noquote() << "Image request Url:" << forLog(reply->request().url());
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        ui->imageLabel->setText(reply->errorString());
        return;
    }
    const QByteArray bytes = reply->readAll();
    const QPixmap picture = pictureOf(bytes);
    if (picture.isNull()) {
        // A server complains in words where a picture is expected.
        ui->imageLabel->setText(tr("Could not decode image data."));
        Application::logMessage(QString::fromUtf8(bytes), Error, QDateTime::currentDateTime());
        return;
    }
    ui->imageLabel->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    ui->imageLabel->setPixmap(picture);
}

void ZWTPBrowser::finishedDsinfoConnect()
{
    auto* const reply = qobject_cast<QNetworkReply*>(sender());
    if (!reply) {
        return;
    }
    logCacheState(*reply);
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        ui->imageLabel->setText(tr("Error: ") + reply->errorString());
        return;
    }
    QByteArray description = reply->readAll();
    setDatasetInfo(description);
}

bool ZWTPBrowser::setDatasetInfo(QByteArray& xml)
{
    try {
        const QDomDocument description = documentOf(xml);
        const QDomElement dataset = firstElement(description, "DSINFO");
        if (dataset.isNull()) {
            return true;
        }
        const QDomElement space = firstElement(description, "COORDSPACE");
        const QDomElement box = firstElement(description, "BBOX");
        const QDomElement bands = firstElement(description, "Bands");
        const auto corner = [&box](const char* name) {
            return box.isNull() ? QString() : decimal(box, name);
        };
        const QString width = dataset.attribute(QStringLiteral("width"));
        const QString height = dataset.attribute(QStringLiteral("height"));
        const QString count = bands.attribute(QStringLiteral("num"));
        // One byte for each cell and band, whatever the cell type says.
        const quint64 bytes = countOf(width) * countOf(height) * countOf(count);

        showText(ui->srsCode, QStringLiteral("EPSG:") + space.attribute(QStringLiteral("epsg")));
        showText(ui->dimensions, grouped(width) + QStringLiteral(" x ") + grouped(height));
        showText(ui->topLeftX, corner("tlX"));
        showText(ui->topLeftY, corner("tlY"));
        showText(ui->bottomRightX, corner("brX"));
        showText(ui->bottomRightY, corner("brY"));
        showText(ui->cellSize, QStringLiteral("%1 , %2 (%3)")
                                   .arg(corner("cellsizeX"), corner("cellsizeY"),
                                        space.attribute(QStringLiteral("units"))));
        showText(ui->cellType,
                 firstElement(description, "LAYER").attribute(QStringLiteral("celltype")));
        showText(ui->bands, count);
        showText(ui->colorSpace, dataset.attribute(QStringLiteral("colorspace")));
        showText(ui->opacity, bands.attribute(QStringLiteral("HasAllOpacity")));
        showText(ui->diskSize, formatSize(bytes, "%2.2f"));
    } catch (...) {
        ui->imageLabel->setToolTip(tr("Exception generated processing <DSINFO> tag."));
    }
    return true;
}

} // namespace Corvane::Gui
