#include <server/ImageInterface.h>

#include <server/Exchange.h>
#include <server/ImageFolder.h>
#include <server/Pictures.h>
#include <server/ServiceName.h>

#include <QXmlStreamWriter>

#include <algorithm>
#include <optional>

namespace Corvane::Server {

namespace {

constexpr int usualSide = 256; // pixels of a picture without a size
constexpr int mostSide = 1024;
const char* const pictureRest = "max-age=60";

// Nothing where it is no size.
std::optional<int> sideOf(const QString& text)
{
    bool ok = false;
    const int side = text.isNull() ? usualSide : text.toInt(&ok);
    if (!text.isNull() && (!ok || side < 1)) {
        return std::nullopt;
    }
    return std::min(side, mostSide);
}

QString number(double value)
{
    return QString::number(value, 'g', 17);
}

} // namespace

ImageInterface::ImageInterface(ImageFolder& folder, Pictures& pictureMaker)
    : images(folder),
      pictures(pictureMaker)
{
}

Reply ImageInterface::answer(const QString& what, const Request& request) const
{
    const bool wantsPicture = what == QLatin1String("image");
    if (!wantsPicture && what != QLatin1String("dsinfo")) {
        return Reply::failure(400, QStringLiteral("unknown request \"%1\"").arg(what));
    }
    const QString path = ServiceName::folderOf(request.item("service")) + request.item("layers");
    const std::shared_ptr<const PublishedImage> image = images.find(path);
    if (!image) {
        return Reply::failure(404, QStringLiteral("there is no image \"%1\"").arg(path));
    }
    return wantsPicture ? picture(*image, request) : details(*image);
}

Reply ImageInterface::picture(const PublishedImage& image, const Request& request) const
{
    const std::optional<int> width = sideOf(request.item("sizex"));
    const std::optional<int> height = sideOf(request.item("sizey"));
    if (!width || !height) {
        return Reply::failure(400, QStringLiteral("sizex and sizey are numbers of pixels above 0"));
    }
    QString error;
    bool isBusy = false;
    const QByteArray png =
        pictures.overview(image, QSize(*width, *height), PictureFormat::Png, &error, &isBusy);
    if (png.isEmpty()) {
        return Reply::failure(isBusy ? 503 : 500, error);
    }
    const bool mayKeep = request.item("cache") != QLatin1String("false");
    return Reply::data(png, "image/png")
        .header("Cache-Control", mayKeep ? pictureRest : "no-store")
        .header("ETag", '"' + image.stamp.toLatin1() + '"');
}

Reply ImageInterface::details(const PublishedImage& image) const
{
    const Map::RasterFacts& facts = image.facts;
    QByteArray xml;
    QXmlStreamWriter writer(&xml);
    const auto attribute = [&writer](const char* name, const QString& value) {
        writer.writeAttribute(QString::fromLatin1(name), value);
    };
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("DSINFO"));
    attribute("name", image.path);
    attribute("width", QString::number(facts.size.width()));
    attribute("height", QString::number(facts.size.height()));
    attribute("layers", QStringLiteral("1"));
    attribute("colorspace", image.colorSpace());
    writer.writeEmptyElement(QStringLiteral("COORDSPACE"));
    attribute("epsg", QString::number(facts.epsg));
    attribute("units", image.units);
    attribute("name", facts.coordSysName);
    writer.writeEmptyElement(QStringLiteral("BBOX"));
    attribute("cellsizeX", number(facts.cellX));
    attribute("cellsizeY", number(std::abs(facts.cellY)));
    attribute("tlX", number(facts.bounds.left()));
    attribute("tlY", number(facts.bounds.top()));
    attribute("brX", number(facts.bounds.right()));
    attribute("brY", number(facts.bounds.bottom()));
    writer.writeStartElement(QStringLiteral("LAYER"));
    attribute("name", image.name());
    attribute("celltype", image.cellType());
    writer.writeEmptyElement(QStringLiteral("Bands"));
    attribute("num", QString::number(facts.bands.size()));
    attribute("HasAllOpacity",
              image.hasOpacity() ? QStringLiteral("true") : QStringLiteral("false"));
    writer.writeEndElement();
    writer.writeEndElement();
    writer.writeEndDocument();
    return Reply::data(xml, "text/xml; charset=utf-8")
        .header("Cache-Control", pictureRest)
        .header("ETag", '"' + image.stamp.toLatin1() + '"');
}

} // namespace Corvane::Server
