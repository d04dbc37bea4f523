#pragma once

#include <tests/plugins/WebTileTools.h>
#include <tests/support/HttpTestServer.h>

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>
#include <string>

namespace Corvane::Tests {

/// A part of a file, as a client of byte ranges asks for it.
inline HttpReply rangeOf(const QByteArray& file, const HttpRequest& request)
{
    const QByteArray range = request.header("Range");
    if (!range.startsWith("bytes=")) {
        return HttpReply::data(file).header("Accept-Ranges", "bytes");
    }
    const QList<QByteArray> ends = range.mid(6).split('-');
    const int first = ends.value(0).toInt();
    const int last = std::min(ends.value(1).isEmpty() ? file.size() - 1 : ends.value(1).toInt(),
                              file.size() - 1);
    if (first > last) {
        return HttpReply::withStatus(416);
    }
    HttpReply reply = HttpReply::withStatus(206, file.mid(first, last - first + 1));
    reply.header("Accept-Ranges", "bytes");
    reply.header("Content-Range", QByteArray("bytes ") + QByteArray::number(first) + '-' +
                                      QByteArray::number(last) + '/' +
                                      QByteArray::number(file.size()));
    return reply;
}

/// What an image server tells of an image of 512 by 512 pixels, in two levels of tiles of 256.
inline HttpReply gridReply()
{
    const QJsonArray levels{QJsonObject{{"z", 0}, {"size", QJsonArray{256, 256}}},
                            QJsonObject{{"z", 1}, {"size", QJsonArray{512, 512}}}};
    const QJsonObject grid{{"version", "v1"},
                           {"tiles", "/tiles/image.tif/{z}/{x}/{y}.{format}"},
                           {"size", QJsonArray{512, 512}},
                           {"tileSize", 256},
                           {"origin", QJsonArray{0, 512}},
                           {"cellSize", QJsonArray{1.0, -1.0}},
                           {"bands", 3},
                           {"levels", levels}};
    return HttpReply::data(QJsonDocument(grid).toJson(), "application/json");
}

/// What a WMTS server at this port tells: one layer with one tile for all of the world.
inline QByteArray capabilities(int port)
{
    return "<Capabilities xmlns=\"http://www.opengis.net/wmts/1.0\" "
           "xmlns:ows=\"http://www.opengis.net/ows/1.1\"><Contents><Layer>"
           "<ows:Identifier>chart</ows:Identifier>"
           "<Style isDefault=\"true\"><ows:Identifier>default</ows:Identifier></Style>"
           "<Format>image/png</Format><TileMatrixSetLink><TileMatrixSet>web</TileMatrixSet>"
           "</TileMatrixSetLink><ResourceURL format=\"image/png\" resourceType=\"tile\" "
           "template=\"http://127.0.0.1:" +
           QByteArray::number(port) +
           "/{TileMatrix}/{TileCol}/{TileRow}.png\"/></Layer><TileMatrixSet>"
           "<ows:Identifier>web</ows:Identifier>"
           "<ows:SupportedCRS>urn:ogc:def:crs:EPSG::3857</ows:SupportedCRS>"
           "<TileMatrix><ows:Identifier>0</ows:Identifier>"
           "<ScaleDenominator>559082264.0287178</ScaleDenominator>"
           "<TopLeftCorner>-20037508.342789 20037508.342789</TopLeftCorner>"
           "<TileWidth>256</TileWidth><TileHeight>256</TileHeight></TileMatrix>"
           "</TileMatrixSet></Contents></Capabilities>";
}

/// One server for each kind of remote layer: files by ranges, tiles, WMTS capabilities, an image.
class SourceServer : public HttpTestServer
{
public:
    explicit SourceServer(int port = 0) : HttpTestServer(port)
    {
        on("/tiles/image.tif", [](const HttpRequest&) { return gridReply(); });
        onOther([](const HttpRequest& request) {
            const bool isTile = request.target.find(".png") != std::string::npos;
            return isTile ? HttpReply::data(pngOf(qRgb(20, 160, 60)), "image/png")
                          : HttpReply::withStatus(404, "nothing");
        });
    }
    void serve(const char* path, const QByteArray& file)
    {
        on(path, [file](const HttpRequest& request) { return rangeOf(file, request); });
    }
};

/// A port of the loopback where nobody listens: connections are refused.
inline int closedPort()
{
    return HttpTestServer().port();
}

inline QString sourceAt(int port, const QString& target)
{
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port).arg(target);
}

} // namespace Corvane::Tests
