#pragma once

#include <QMap>
#include <QMetaProperty>
#include <QString>

namespace Corvane {

namespace Map {
class Layer;
}

namespace PluginChecker {

/// Whether it is one of the settings that travel as text in documents. The data source is not.
bool isComparable(const QMetaProperty& property);
/// The texts of all comparable properties, by name.
QMap<QString, QString> comparableProperties(const Map::Layer& layer);
/// Gives each of them another value, as far as the layer takes it.
void changeProperties(Map::Layer& layer);

} // namespace PluginChecker
} // namespace Corvane
