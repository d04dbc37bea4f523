#include <plugins/imageserver/ImageServerAddress.h>

#include <plugins/common/ServerSource.h>

#include <QStringList>

namespace Corvane::Map {

namespace {

// Of a path like "//service/folder//image.tif": a service that was left empty leaves a slash.
QString plainPath(const QString& path)
{
    return QLatin1Char('/') +
           path.split(QLatin1Char('/'), Qt::SkipEmptyParts).join(QLatin1Char('/'));
}

} // namespace

QByteArray ServerCredentials::authorization() const
{
    return isEmpty() ? QByteArray()
                     : "Basic " + (user.toUtf8() + ':' + password.toUtf8()).toBase64();
}

bool ImageServerAddress::isOne(const QString& text)
{
    const QString scheme = text.section(QLatin1Char(':'), 0, 0).toLower();
    return text.contains(QLatin1String("://")) &&
           (scheme == QLatin1String("zwtp") || scheme == QLatin1String("zwtps") ||
            scheme == QLatin1String("http") || scheme == QLatin1String("https"));
}

std::optional<ImageServerAddress> ImageServerAddress::parse(const QString& text)
{
    const ServerSource parts = ServerSource::split(text);
    QUrl url(parts.url);
    if (!isOne(text) || ServerSource::isForTiles(text) || !url.isValid() || url.host().isEmpty()) {
        return std::nullopt;
    }
    ImageServerAddress address;
    address.isSure = ServerSource::isForImageServer(text);
    address.credentials = {parts.user, parts.password};
    if (address.credentials.isEmpty() && !url.userName().isEmpty()) {
        address.credentials = {url.userName(QUrl::FullyDecoded), url.password(QUrl::FullyDecoded)};
    }
    url.setUserInfo(QString());
    address.plain = url.toString();
    address.path = plainPath(url.path(QUrl::FullyDecoded));
    if (address.path == QLatin1String("/")) {
        return std::nullopt;
    }
    address.server.setScheme(url.scheme().endsWith(QLatin1Char('s')) ? QStringLiteral("https")
                                                                     : QStringLiteral("http"));
    address.server.setHost(url.host());
    address.server.setPort(url.port());
    return address;
}

QUrl ImageServerAddress::gridUrl() const
{
    QUrl url = server;
    url.setPath(QStringLiteral("/tiles") + path);
    return url;
}

} // namespace Corvane::Map
