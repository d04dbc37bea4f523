#include <plugins/webtiles/TilePreset.h>

#include <plugins/webtiles/WebTileOffer.h>

#include <QCoreApplication>
#include <QXmlStreamReader>

namespace Corvane::Map {

namespace {

// False where the attribute is there and is no number.
bool readNumber(const QXmlStreamAttributes& attributes, const char* name,
                std::optional<int>* number)
{
    const QStringRef text = attributes.value(QLatin1String(name));
    if (text.isEmpty()) {
        return true;
    }
    bool ok = false;
    *number = text.toInt(&ok);
    return ok;
}

} // namespace

std::shared_ptr<WebTileOffer> readPreset(const QByteArray& document, QString* error)
{
    QXmlStreamReader reader(document);
    if (!reader.readNextStartElement() || reader.name() != QLatin1String("webtiles")) {
        *error = reader.hasError()
                     ? reader.errorString()
                     : QCoreApplication::translate("TilePreset", "the file is no web tile preset");
        return nullptr;
    }
    const QXmlStreamAttributes attributes = reader.attributes();
    auto offer = std::make_shared<WebTileOffer>();
    offer->url = attributes.value(QLatin1String("url")).toString();
    offer->title = attributes.value(QLatin1String("title")).toString();
    offer->attribution = attributes.value(QLatin1String("attribution")).toString();
    offer->hosts = attributes.value(QLatin1String("hosts"))
                       .toString()
                       .split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (!readNumber(attributes, "minzoom", &offer->minZoom) ||
        !readNumber(attributes, "maxzoom", &offer->maxZoom) ||
        !readNumber(attributes, "tilesize", &offer->tileSize))
    {
        *error =
            QCoreApplication::translate("TilePreset", "the preset has something that is no number");
        return nullptr;
    }
    reader.skipCurrentElement();
    if (reader.hasError()) {
        *error = reader.errorString();
        return nullptr;
    }
    return offer;
}

} // namespace Corvane::Map
