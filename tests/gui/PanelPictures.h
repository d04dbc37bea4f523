#pragma once

#include <QStringList>

class QWidget;

namespace Corvane::Tests {

/// Shows the widget on a light and on a dark palette and takes pictures of it at 96 and 192 dots per
/// inch, which are written as NAME-light-96.png and so on into the folder "pictures" beside the test
/// program. Returns what a user would complain of: texts that are cut off, texts that the background
/// swallows, pictures that show nothing. Empty if all is well.
QStringList takePictures(QWidget& widget, const QString& name);

/// The same complaints of the texts of a widget as it is shown now.
QStringList textComplaints(const QWidget& widget);

} // namespace Corvane::Tests
