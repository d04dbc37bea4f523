#include <plugins/webtiles/WmtsCapabilities.h>

#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileOffer.h>

#include <corvane/core/Integer.h>

#include <QCoreApplication>
#include <QDomDocument>
#include <QHash>
#include <QUrl>
#include <QUrlQuery>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <vector>

namespace Corvane::Map {

namespace {

constexpr double pixelMetres = 0.00028; // that scale denominators count in
constexpr double scaleTolerance = 1e-3; // relative
constexpr double originTolerance = 1.0; // metres
constexpr int deepestLevel = 100;       // elements
constexpr int longestUrl = 8192;        // characters

// Servers choose their prefixes: elements are found by their local names.
std::vector<QDomElement> children(const QDomElement& parent, const char* name)
{
    std::vector<QDomElement> result;
    for (QDomElement child = parent.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
    {
        if (child.localName() == QLatin1String(name)) {
            result.push_back(child);
        }
    }
    return result;
}

QDomElement child(const QDomElement& parent, const char* name)
{
    const auto all = children(parent, name);
    return all.empty() ? QDomElement() : all.front();
}

QString textOf(const QDomElement& parent, const char* name)
{
    return child(parent, name).text().trimmed();
}

/// A matrix set in the usual grid.
struct Grid
{
    QString name;
    int tileSize = 0;
    int minZoom = 0;
    QStringList zoomNames; // the first is that of zoom 0; empty below minZoom
};

bool isWebMercator(const QString& crs)
{
    return crs.endsWith(QLatin1String(":3857")) || crs.endsWith(QLatin1String(":900913")) ||
           crs.endsWith(QLatin1String("/3857"));
}

bool startsAtCorner(const QDomElement& matrix)
{
    const QStringList corner = textOf(matrix, "TopLeftCorner").simplified().split(QLatin1Char(' '));
    return corner.size() == 2 &&
           std::abs(corner[0].toDouble() + WebMercator::edge) < originTolerance &&
           std::abs(corner[1].toDouble() - WebMercator::edge) < originTolerance;
}

// The zoom of a matrix whose cells are those of the usual grid, -1 for any other.
int zoomOf(const QDomElement& matrix, int tileSize)
{
    const double cell = textOf(matrix, "ScaleDenominator").toDouble() * pixelMetres;
    if (!(cell > 0.0) || tileSize <= 0 || !startsAtCorner(matrix)) {
        return -1;
    }
    const double exact = std::log2(2.0 * WebMercator::edge / (cell * tileSize));
    const double zoom = std::round(exact);
    const bool fits = zoom >= 0.0 && zoom <= WebMercator::finestZoom(tileSize) &&
                      std::abs(std::exp2(exact - zoom) - 1.0) < scaleTolerance;
    return fits ? Util::roundToInt(zoom) : -1;
}

// Nothing for a set in another grid. Zooms beyond a gap are left out.
std::optional<Grid> readGrid(const QDomElement& set)
{
    if (!isWebMercator(textOf(set, "SupportedCRS"))) {
        return std::nullopt;
    }
    Grid grid;
    grid.name = textOf(set, "Identifier");
    QStringList names;
    for (const QDomElement& matrix : children(set, "TileMatrix")) {
        const int size = textOf(matrix, "TileWidth").toInt();
        const int zoom = zoomOf(matrix, size);
        const bool square = textOf(matrix, "TileHeight").toInt() == size;
        if (zoom < 0 || !square || (grid.tileSize != 0 && grid.tileSize != size)) {
            continue;
        }
        grid.tileSize = size;
        while (names.size() <= zoom) {
            names.append(QString());
        }
        names[zoom] = textOf(matrix, "Identifier");
    }
    const auto first = std::find_if(names.begin(), names.end(),
                                    [](const QString& name) { return !name.isEmpty(); });
    if (first == names.end() || (grid.tileSize != 256 && grid.tileSize != 512)) {
        return std::nullopt;
    }
    grid.minZoom = static_cast<int>(first - names.begin());
    const auto gap =
        std::find_if(first, names.end(), [](const QString& name) { return name.isEmpty(); });
    grid.zoomNames = names.mid(0, static_cast<int>(gap - names.begin()));
    return grid;
}

// Nothing where they make no rectangle.
QRect limitsIn(const QDomElement& limits)
{
    static const char* const names[] = {"MinTileCol", "MinTileRow", "MaxTileCol", "MaxTileRow"};
    int values[std::size(names)] = {};
    bool ok = true;
    for (std::size_t i = 0; i < std::size(names) && ok; ++i) {
        values[i] = textOf(limits, names[i]).toInt(&ok);
        ok = ok && values[i] >= 0;
    }
    return ok ? QRect(QPoint(values[0], values[1]), QPoint(values[2], values[3])) : QRect();
}

// By zoom; a zoom without limits has all its tiles.
QHash<int, QRect> limitsOf(const QDomElement& link, const Grid& grid)
{
    QHash<int, QRect> result;
    for (const QDomElement& limits :
         children(child(link, "TileMatrixSetLimits"), "TileMatrixLimits")) {
        const QString name = textOf(limits, "TileMatrix");
        const QRect there = limitsIn(limits);
        const int zoom = name.isEmpty() ? -1 : grid.zoomNames.indexOf(name);
        if (zoom >= 0 && there.isValid()) {
            result.insert(zoom, there);
        }
    }
    return result;
}

QString styleOf(const QDomElement& layer)
{
    const auto styles = children(layer, "Style");
    for (const QDomElement& style : styles) {
        if (style.attribute(QStringLiteral("isDefault")) == QLatin1String("true")) {
            return textOf(style, "Identifier");
        }
    }
    return styles.empty() ? QString() : textOf(styles.front(), "Identifier");
}

// Of what a tile can be made of, in the order of liking.
int meritOf(const QString& format)
{
    static const char* const liked[] = {"image/png", "image/jpeg", "image/webp", "image/gif"};
    const auto* const end = std::end(liked);
    const auto* const entry = std::find_if(std::begin(liked), end, [&format](const char* name) {
        return format.startsWith(QLatin1String(name));
    });
    return entry == end ? 0 : static_cast<int>(end - entry);
}

// The template that is liked best.
QString tileTemplateOf(const QDomElement& layer)
{
    QString best;
    int merit = 0;
    for (const QDomElement& resource : children(layer, "ResourceURL")) {
        const int its = meritOf(resource.attribute(QStringLiteral("format")));
        if (resource.attribute(QStringLiteral("resourceType")) == QLatin1String("tile") &&
            its > merit) {
            best = resource.attribute(QStringLiteral("template"));
            merit = its;
        }
    }
    return best;
}

// What stands for the places of a template, by their names in lower case.
QHash<QString, QString> namesFor(const QDomElement& layer, const Grid& grid)
{
    QHash<QString, QString> names;
    for (const QDomElement& dimension : children(layer, "Dimension")) {
        const QString place = textOf(dimension, "Identifier").toLower();
        if (!names.contains(place)) {
            names.insert(place, textOf(dimension, "Default"));
        }
    }
    names.insert(QStringLiteral("tilematrixset"), grid.name);
    names.insert(QStringLiteral("style"), styleOf(layer));
    return names;
}

// What comes into the URL behind this beginning of it; a place that nothing stands for stays.
QString filled(const QString& place, const QHash<QString, QString>& names, const QString& urlBefore)
{
    static const QHash<QString, QString> tilePlaces = {
        {"tilematrix", "{z}"}, {"tilecol", "{x}"}, {"tilerow", "{y}"}};
    const QString key = place.toLower();
    if (tilePlaces.contains(key)) {
        return tilePlaces.value(key);
    }
    return names.contains(key) ? escapedName(names.value(key), urlBefore)
                               : QStringLiteral("{%1}").arg(place);
}

// Empty where there is none, or it gets too long.
QString resourceUrl(const QDomElement& layer, const Grid& grid)
{
    const QString text = tileTemplateOf(layer);
    if (text.size() > longestUrl) {
        return QString();
    }
    const QHash<QString, QString> names = namesFor(layer, grid);
    QString url;
    int end = 0;
    while (url.size() <= longestUrl) {
        const int open = text.indexOf(QLatin1Char('{'), end);
        const int close = text.indexOf(QLatin1Char('}'), open);
        if (open < 0 || close < 0) {
            break;
        }
        url += text.mid(end, open - end);
        url += filled(text.mid(open + 1, close - open - 1), names, url);
        end = close + 1;
    }
    url += text.mid(end);
    return url.size() <= longestUrl ? url : QString();
}

// Where GetTile takes its arguments from the URL.
QString getTileAddress(const QDomElement& root)
{
    for (const QDomElement& operation : children(child(root, "OperationsMetadata"), "Operation")) {
        if (operation.attribute(QStringLiteral("name")) != QLatin1String("GetTile")) {
            continue;
        }
        const QDomElement http = child(child(operation, "DCP"), "HTTP");
        for (const QDomElement& get : children(http, "Get")) {
            const QString encoding = get.text(); // of its constraint, where it has one
            if (encoding.isEmpty() || encoding.contains(QLatin1String("KVP"))) {
                return get.attributeNS(QStringLiteral("http://www.w3.org/1999/xlink"),
                                       QStringLiteral("href"));
            }
        }
    }
    return QString();
}

QString keyValueUrl(const QDomElement& root, const QDomElement& layer, const Grid& grid)
{
    const QString address = getTileAddress(root);
    QString format;
    for (const QDomElement& offered : children(layer, "Format")) {
        const QString name = offered.text().trimmed();
        format = meritOf(name) > meritOf(format) ? name : format;
    }
    if (address.isEmpty() || format.isEmpty()) {
        return QString();
    }
    QUrl url(address);
    QUrlQuery query(url);
    const auto add = [&query](const char* key, const QString& value) {
        query.removeAllQueryItems(QLatin1String(key));
        query.addQueryItem(QLatin1String(key), escapedName(value, QStringLiteral("?")));
    };
    add("SERVICE", QStringLiteral("WMTS"));
    add("REQUEST", QStringLiteral("GetTile"));
    add("VERSION", QStringLiteral("1.0.0"));
    add("LAYER", textOf(layer, "Identifier"));
    add("STYLE", styleOf(layer));
    add("FORMAT", format);
    add("TILEMATRIXSET", grid.name);
    url.setQuery(query);
    return url.toString(QUrl::FullyEncoded) +
           QStringLiteral("&TILEMATRIX={z}&TILECOL={x}&TILEROW={y}");
}

std::shared_ptr<WebTileOffer> offerOf(const QDomElement& root, const QDomElement& layer,
                                      const std::vector<Grid>& grids)
{
    for (const QDomElement& link : children(layer, "TileMatrixSetLink")) {
        const QString name = textOf(link, "TileMatrixSet");
        const auto grid = std::find_if(grids.begin(), grids.end(),
                                       [&name](const Grid& known) { return known.name == name; });
        if (grid == grids.end()) {
            continue;
        }
        const QString rest = resourceUrl(layer, *grid);
        const QString url = rest.isEmpty() ? keyValueUrl(root, layer, *grid) : rest;
        if (url.isEmpty()) {
            continue;
        }
        auto offer = std::make_shared<WebTileOffer>();
        offer->url = url;
        offer->zoomNames = grid->zoomNames;
        offer->limits = limitsOf(link, *grid);
        offer->minZoom = grid->minZoom;
        offer->maxZoom = grid->zoomNames.size() - 1;
        offer->tileSize = grid->tileSize;
        offer->title = textOf(layer, "Title");
        offer->attribution = textOf(child(root, "ServiceProvider"), "ProviderName");
        return offer;
    }
    return nullptr;
}

// A tree is freed by recursion, which takes the stack where it has no end.
bool isTooDeep(const QByteArray& document)
{
    QXmlStreamReader reader(document);
    int depth = 0;
    while (!reader.atEnd() && depth <= deepestLevel) {
        reader.readNext();
        depth += reader.isStartElement() ? 1 : 0;
        depth -= reader.isEndElement() ? 1 : 0;
    }
    return depth > deepestLevel;
}

} // namespace

std::shared_ptr<WebTileOffer> readCapabilities(const QByteArray& document, const QString& layerName,
                                               QString* error)
{
    if (isTooDeep(document)) {
        *error =
            QCoreApplication::translate("WmtsCapabilities", "the capabilities cannot be read: %1")
                .arg(QCoreApplication::translate("WmtsCapabilities", "they are nested too deeply"));
        return nullptr;
    }
    QDomDocument dom;
    QString parseError;
    QXmlStreamReader reader(document);
    if (!dom.setContent(&reader, true, &parseError)) {
        *error =
            QCoreApplication::translate("WmtsCapabilities", "the capabilities cannot be read: %1")
                .arg(parseError);
        return nullptr;
    }
    const QDomElement root = dom.documentElement();
    const QDomElement contents = child(root, "Contents");
    if (root.localName() != QLatin1String("Capabilities") || contents.isNull()) {
        *error = QCoreApplication::translate("WmtsCapabilities",
                                             "the document holds no WMTS capabilities");
        return nullptr;
    }
    std::vector<Grid> grids;
    for (const QDomElement& set : children(contents, "TileMatrixSet")) {
        if (const auto grid = readGrid(set)) {
            grids.push_back(*grid);
        }
    }
    bool named = layerName.isEmpty();
    for (const QDomElement& layer : children(contents, "Layer")) {
        if (!layerName.isEmpty() && textOf(layer, "Identifier") != layerName) {
            continue;
        }
        named = true;
        if (auto offer = offerOf(root, layer, grids)) {
            return offer;
        }
    }
    *error = named ? QCoreApplication::translate("WmtsCapabilities",
                                                 "no layer comes in Web Mercator tiles")
                   : QCoreApplication::translate("WmtsCapabilities", "there is no layer %1")
                         .arg(layerName);
    return nullptr;
}

} // namespace Corvane::Map
