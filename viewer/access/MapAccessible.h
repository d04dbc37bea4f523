#pragma once

#include <QString>

class QWidget;

namespace Corvane::Viewer {

/// From now on map views are canvases for screen readers, with a value. Once or more often; GUI thread.
void makeMapsAccessible();
/// What a map view tells as its value; a screen reader hears of it.
void setAccessibleValue(QWidget* view, const QString& value);

} // namespace Corvane::Viewer
