#include <corvane/browser/ZWTPBrowser.h>

#include "ui_ZWTPBrowser.h"

#include <corvane/browser/ServerItems_p.h>
#include <corvane/browser/ServerReply_p.h>
#include <corvane/browser/XmlReading_p.h>
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
#include <QStringList>
#include <QUrlQuery>

#include <functional>
#include <memory>

namespace Corvane::Gui {
namespace {

const char detailsTurns[] = "detailsTurns"; // who reads a description
constexpr int frame = 2;                    // pixels, both sides of the label together
constexpr qint64 largestPicture = 1 << 24;  // pixels: a preview is asked for at the label's size

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

/// Of the box, with a fixed count of decimals; 0 where it is no number, empty without a box.
QString corner(const FirstElements& description, const char* name)
{
    constexpr int decimals = 6;
    return description.has("BBOX")
               ? QString::number(description.attribute("BBOX", name).toDouble(), 'f', decimals)
               : QString();
}

quint64 countOf(const QString& text)
{
    return static_cast<quint64>(text.toInt());
}

QString grouped(const QString& text)
{
    return QLocale::system().toString(text.toInt());
}

void showDetails(const FirstElements& description, Ui::ZWTPBrowserClass& form)
{
    const QString width = description.attribute("DSINFO", "width");
    const QString height = description.attribute("DSINFO", "height");
    const QString count = description.attribute("Bands", "num");
    // One byte for each cell and band, whatever the cell type says.
    const quint64 bytes = countOf(width) * countOf(height) * countOf(count);

    showText(form.srsCode, QStringLiteral("EPSG:") + description.attribute("COORDSPACE", "epsg"));
    showText(form.dimensions, grouped(width) + QStringLiteral(" x ") + grouped(height));
    showText(form.topLeftX, corner(description, "tlX"));
    showText(form.topLeftY, corner(description, "tlY"));
    showText(form.bottomRightX, corner(description, "brX"));
    showText(form.bottomRightY, corner(description, "brY"));
    showText(form.cellSize,
             QStringLiteral("%1 , %2 (%3)")
                 .arg(corner(description, "cellsizeX"), corner(description, "cellsizeY"),
                      description.attribute("COORDSPACE", "units")));
    showText(form.cellType, description.attribute("LAYER", "celltype"));
    showText(form.bands, count);
    showText(form.colorSpace, description.attribute("DSINFO", "colorspace"));
    showText(form.opacity, description.attribute("Bands", "HasAllOpacity"));
    showText(form.diskSize, formatSize(bytes, "%2.2f"));
}

/// The oldest first.
void giveUpTurnsBefore(const QObject& browser, const QObject* last)
{
    const QList<QObject*> all =
        browser.findChildren<QObject*>(QLatin1String(detailsTurns), Qt::FindDirectChildrenOnly);
    for (QObject* const turns : all) {
        if (turns == last) {
            return;
        }
        delete turns;
    }
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

// A long description is read between other events; what came before a later one that is shown already
// is given up.
bool ZWTPBrowser::setDatasetInfo(QByteArray& xml)
{
    const auto reading = std::make_shared<FirstElements>(
        xml, QStringList{QStringLiteral("DSINFO"), QStringLiteral("COORDSPACE"),
                         QStringLiteral("BBOX"), QStringLiteral("LAYER"), QStringLiteral("Bands")});
    const auto guarded = [this](const std::function<bool()>& step) {
        try {
            return step();
        } catch (...) {
            ui->imageLabel->setToolTip(tr("Exception generated processing <DSINFO> tag."));
            return false;
        }
    };
    auto* const turns = new QObject(this);
    turns->setObjectName(QLatin1String(detailsTurns));
    takeTurns(
        turns, [reading, guarded] { return guarded([&reading] { return reading->readOn(); }); },
        [this, reading, guarded, turns] {
            if (reading->has("DSINFO")) {
                giveUpTurnsBefore(*this, turns);
                guarded([this, &reading] {
                    showDetails(*reading, *ui);
                    return true;
                });
            }
            turns->deleteLater();
        });
    return true;
}

} // namespace Corvane::Gui
