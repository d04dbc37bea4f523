#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

namespace Corvane::Map {

struct WebTileOffer;

/// Reads a preset: an XML document with the one element
///   <webtiles url="https://{s}.example.org/{z}/{x}/{y}.png" hosts="a,b" minzoom="0" maxzoom="19"
///             tilesize="256" title="..." attribution="..."/>
/// of which only url must be there. Null with the reason in error. Any thread.
std::shared_ptr<WebTileOffer> readPreset(const QByteArray& document, QString* error);

} // namespace Corvane::Map
