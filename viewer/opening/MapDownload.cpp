#include <viewer/opening/MapDownload.h>

#include <viewer/maps/LayerOpener.h>
#include <viewer/maps/MapDocumentReader.h>
#include <viewer/maps/MapDocumentWriter.h>
#include <viewer/sources/Sources.h>

#include <QDir>
#include <QDomDocument>
#include <QFileInfo>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace Corvane::Viewer {
namespace {

constexpr qint64 largestMap = 32 * 1024 * 1024; // bytes, as of a file
constexpr int longestSilence = 30000;           // milliseconds

QString absoluteOn(const QUrl& server, const QString& source)
{
    const bool relative = !source.isEmpty() && !isAddress(source) &&
                          !QDir::isAbsolutePath(source) && !source.contains(':');
    return relative ? sourceOf(server.resolved(QUrl(source))) : source;
}

void takeToServer(const QDomElement& root, const QUrl& server)
{
    const QDomNodeList sources = root.elementsByTagName("datasource");
    for (int i = 0; i < sources.count(); ++i) {
        QDomElement source = sources.at(i).toElement();
        source.setAttribute("value", absoluteOn(server, source.attribute("value")));
    }
    const QDomNodeList settings = root.elementsByTagName("param");
    for (int i = 0; i < settings.count(); ++i) {
        QDomElement setting = settings.at(i).toElement();
        if (setting.attribute("name") == "DataSource") {
            setting.setAttribute("value", absoluteOn(server, setting.attribute("value")));
        }
    }
}

} // namespace

bool isMapAddress(const QString& source)
{
    const QUrl url(source);
    const QString scheme = url.scheme().toLower();
    return (scheme == "http" || scheme == "https") &&
           QFileInfo(url.path()).suffix().compare("cmap", Qt::CaseInsensitive) == 0;
}

MapDownload::MapDownload(const QString& address, QObject* parent) : QObject(parent), url(address) {}

QString MapDownload::getName() const
{
    return LayerOpener::nameOf(url.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery));
}

void MapDownload::start()
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setTransferTimeout(longestSilence);
    reply = network.get(request);
    connect(reply, &QNetworkReply::downloadProgress, this, [this](qint64 received, qint64) {
        if (received > largestMap) {
            reply->abort();
        }
    });
    connect(reply, &QNetworkReply::finished, this, &MapDownload::onFinished);
}

void MapDownload::onFinished()
{
    const QByteArray text = reply->readAll();
    if (text.size() > largestMap) {
        emit failed(tr("it is larger than %1 MiB").arg(largestMap / 1024 / 1024));
        return;
    }
    if (reply->error() != QNetworkReply::NoError) {
        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        emit failed(status.isValid() && status.toInt() >= 400
                        ? tr("the server answers with status %1").arg(status.toInt())
                        : reply->errorString());
        return;
    }
    QDomDocument document;
    QString reason;
    if (parseMapDocument(text, &document, &reason) != MapReading::Read) {
        emit failed(reason);
        return;
    }
    takeToServer(document.documentElement(), reply->url());
    const QString file = folder.filePath("map.cmap");
    if (!writeMapDocument(file, mapDocumentText(document), &reason)) {
        emit failed(reason);
        return;
    }
    emit fetched(file);
}

} // namespace Corvane::Viewer
