#include <plugins/webtiles/WebTileSource.h>

#include <plugins/common/HttpFetch.h>
#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileOffer.h>

#include <corvane/core/Integer.h>

#include <QCoreApplication>
#include <QStringList>
#include <QTextDocumentFragment>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int usualMaxZoom = 19;
constexpr int usualTileSize = 256;
const char* const usualHosts = "a,b,c";
constexpr int mostMarkup = 4000;         // letters of an attribution that are looked at
constexpr int longestAttribution = 1000; // letters that are left of it

QStringList listOf(const QString& hosts)
{
    QStringList names;
    for (const QString& name : hosts.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        names.append(name.trimmed());
    }
    names.removeAll(QString());
    return names;
}

QString hostsOf(const WebTileOffer& offer, const WebTileSettings& settings)
{
    if (!listOf(settings.hosts).isEmpty()) {
        return settings.hosts;
    }
    return offer.hosts.isEmpty() ? QString::fromLatin1(usualHosts)
                                 : offer.hosts.join(QLatin1Char(','));
}

} // namespace

int WebTileSettings::deadlineMilliseconds() const
{
    return Util::roundToInt(deadline * 1000.0);
}

WebTileSource::WebTileSource(TileTemplate tileUrls, const QString& name)
    : urls(std::move(tileUrls)),
      health(name)
{
}

std::shared_ptr<WebTileSource> WebTileSource::make(const WebTileOffer& offer,
                                                   const WebTileSettings& settings,
                                                   const QString& name, QString* error)
{
    const QString hosts = hostsOf(offer, settings);
    auto urls = TileTemplate::parse(offer.url, listOf(hosts), error);
    if (!urls) {
        return nullptr;
    }
    urls->setZoomNames(offer.zoomNames);
    auto source = std::make_shared<WebTileSource>(std::move(*urls), name);
    const int size = settings.tileSize.value_or(offer.tileSize.value_or(usualTileSize));
    source->tileSize = size > usualTileSize ? 2 * usualTileSize : usualTileSize;
    const int finest = WebMercator::finestZoom(source->tileSize);
    source->maxZoom =
        std::clamp(settings.maxZoom.value_or(offer.maxZoom.value_or(usualMaxZoom)), 0, finest);
    source->minZoom =
        std::clamp(settings.minZoom.value_or(offer.minZoom.value_or(0)), 0, source->maxZoom);
    source->limits = offer.limits;
    source->hosts = hosts;
    source->userAgent = userAgentWith(settings.userAgentSuffix);
    source->deadline = settings.deadlineMilliseconds();
    return source;
}

TileOrder WebTileSource::orderFor(const WebTile& tile) const
{
    return {QUrl(urls.urlOf(tile)), userAgent, QByteArray(), deadline};
}

bool WebTileSource::lacks(const WebTile& tile) const
{
    if (tile.zoom < minZoom) {
        return true;
    }
    const auto there = limits.constFind(tile.zoom);
    return there != limits.constEnd() &&
           !there->contains(static_cast<int>(tile.x), static_cast<int>(tile.y));
}

QString plainAttribution(const QString& text)
{
    const QString start = text.left(mostMarkup);
    const bool marked = start.contains(QLatin1Char('<')) || start.contains(QLatin1Char('&'));
    const QString plain = marked ? QTextDocumentFragment::fromHtml(start).toPlainText() : start;
    return plain.simplified().left(longestAttribution);
}

} // namespace Corvane::Map
