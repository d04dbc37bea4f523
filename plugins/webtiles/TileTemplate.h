#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Corvane::Map {

/// A tile of the usual web grid: column from the west, row from the north, 2^zoom of each.
struct WebTile
{
    int zoom = 0;
    unsigned int x = 0;
    unsigned int y = 0;
};

/// The URL of a tile with places for its numbers: {z}, {x}, {y}; {-y} for rows counted from the
/// south, {q} for a quadkey, {s} for one of several hosts. Any thread.
class TileTemplate
{
public:
    /// Whether the text is an http or https URL with braces in it.
    static bool isTemplate(const QString& text);
    /// Nothing, with the reason in error, where the text cannot name tiles. hosts are what {s}
    /// stands for.
    static std::optional<TileTemplate> parse(const QString& text, const QStringList& hosts,
                                             QString* error);

    /// A tile always gets the same host: the caches between here and there know it by its URL.
    QString urlOf(const WebTile& tile) const;
    /// Replaces the numbers that {z} stands for; the first name is that of zoom 0. Names are as the
    /// server has them, not escaped.
    void setZoomNames(const QStringList& names) { zoomNames = names; }

private:
    struct Piece
    {
        QString text; // as it stands, or the name of a place
        bool isPlace = false;
    };

    QString valueOf(const QString& place, const WebTile& tile, const QString& url) const;
    bool has(const char* place) const;
    QString lack(const QStringList& hosts) const;

    std::vector<Piece> pieces;
    QStringList hosts;
    QStringList zoomNames;
};

/// A name as it stands in a URL behind this beginning of it: escaped for a part of the path, or for
/// a value of the query.
QString escapedName(const QString& name, const QString& urlBefore);

/// The quadkey of a tile: one digit per zoom level, the coarsest first; empty at zoom 0.
QString quadKey(const WebTile& tile);

} // namespace Corvane::Map
