#pragma once

#include <QDomNode>

class QString;

namespace Corvane::Map {

class Layer;

/// A copy of a document's layer element without the property DataSource: the data source comes last
/// and once, since opening takes time.
QDomNode withoutSourceProperty(const QDomNode& element);

/// Adds a line to errors that names the source of the element and why the layer did not open it.
void tellWhyNotOpen(const QDomNode& element, Layer& layer, QString* errors);

} // namespace Corvane::Map
