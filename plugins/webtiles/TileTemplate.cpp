#include <plugins/webtiles/TileTemplate.h>

#include <QCoreApplication>
#include <QUrl>

#include <algorithm>
#include <array>

namespace Corvane::Map {

namespace {

bool isKnownPlace(const QString& name)
{
    static constexpr std::array<const char*, 6> known = {"z", "x", "y", "-y", "q", "s"};
    return std::any_of(known.begin(), known.end(),
                       [&name](const char* place) { return name == QLatin1String(place); });
}

} // namespace

bool TileTemplate::isTemplate(const QString& text)
{
    const bool web = text.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
                     text.startsWith(QLatin1String("https://"), Qt::CaseInsensitive);
    return web && text.contains(QLatin1Char('{'));
}

std::optional<TileTemplate> TileTemplate::parse(const QString& text, const QStringList& hosts,
                                                QString* error)
{
    TileTemplate result;
    result.hosts = hosts;
    int end = 0;
    while (end < text.size()) {
        const int open = text.indexOf(QLatin1Char('{'), end);
        if (open < 0) {
            break;
        }
        const int close = text.indexOf(QLatin1Char('}'), open);
        if (close < 0) {
            *error = QCoreApplication::translate("TileTemplate",
                                                 "the URL has a brace that is not closed");
            return std::nullopt;
        }
        const QString place = text.mid(open + 1, close - open - 1);
        if (!isKnownPlace(place)) {
            *error =
                QCoreApplication::translate("TileTemplate", "the URL has the unknown place {%1}")
                    .arg(place);
            return std::nullopt;
        }
        result.pieces.push_back({text.mid(end, open - end), false});
        result.pieces.push_back({place, true});
        end = close + 1;
    }
    result.pieces.push_back({text.mid(end), false});
    *error = isTemplate(text)
                 ? result.lack(hosts)
                 : QCoreApplication::translate("TileTemplate", "the URL does not begin with http");
    if (error->isEmpty() && !QUrl(result.urlOf(WebTile())).isValid()) {
        *error = QCoreApplication::translate("TileTemplate", "the URL is not well formed");
    }
    return error->isEmpty() ? std::optional<TileTemplate>(result) : std::nullopt;
}

QString TileTemplate::lack(const QStringList& hostNames) const
{
    const bool numbers = has("z") && has("x") && (has("y") || has("-y"));
    if (!numbers && !has("q")) {
        return QCoreApplication::translate("TileTemplate",
                                           "the URL has no places for zoom, column and row");
    }
    if (has("s") && hostNames.isEmpty()) {
        return QCoreApplication::translate("TileTemplate",
                                           "the URL has a place for hosts, and none is named");
    }
    return QString();
}

bool TileTemplate::has(const char* place) const
{
    return std::any_of(pieces.begin(), pieces.end(), [place](const Piece& piece) {
        return piece.isPlace && piece.text == QLatin1String(place);
    });
}

QString TileTemplate::urlOf(const WebTile& tile) const
{
    QString url;
    for (const Piece& piece : pieces) {
        url += piece.isPlace ? valueOf(piece.text, tile, url) : piece.text;
    }
    return url;
}

QString TileTemplate::valueOf(const QString& place, const WebTile& tile, const QString& url) const
{
    if (place == QLatin1String("z")) {
        return escapedName(zoomNames.value(tile.zoom, QString::number(tile.zoom)), url);
    }
    if (place == QLatin1String("x")) {
        return QString::number(tile.x);
    }
    if (place == QLatin1String("y")) {
        return QString::number(tile.y);
    }
    if (place == QLatin1String("-y")) {
        return QString::number((1U << static_cast<unsigned int>(tile.zoom)) - 1U - tile.y);
    }
    if (place == QLatin1String("q")) {
        return quadKey(tile);
    }
    const auto count = static_cast<unsigned int>(hosts.size());
    return hosts.value(static_cast<int>((tile.x + tile.y) % std::max(count, 1U)));
}

QString escapedName(const QString& name, const QString& urlBefore)
{
    // '+' is escaped in paths as well: there are servers that read it as a blank everywhere
    const char* const plain = urlBefore.contains(QLatin1Char('?')) ? "/:," : ":,";
    return QString::fromLatin1(QUrl::toPercentEncoding(name, plain));
}

QString quadKey(const WebTile& tile)
{
    QString key;
    for (int zoom = tile.zoom; zoom > 0; --zoom) {
        const unsigned int bit = 1U << static_cast<unsigned int>(zoom - 1);
        const int digit = ((tile.x & bit) != 0U ? 1 : 0) + ((tile.y & bit) != 0U ? 2 : 0);
        key += QLatin1Char(static_cast<char>('0' + digit));
    }
    return key;
}

} // namespace Corvane::Map
