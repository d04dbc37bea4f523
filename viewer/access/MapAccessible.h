#pragma once

#include <QString>

class QWidget;

namespace Corvane::Viewer {

/// From now on map views are canvases for screen readers, with a value. Once or more often; GUI thread.
void makeMapsAccessible();
/// What a map view tells as its value to who asks. A screen reader is not told of the change: Qt's bridge
/// to those on Linux drops it for values that are no numbers.
void setAccessibleValue(QWidget* view, const QString& value);

} // namespace Corvane::Viewer
