#pragma once

#include <QString>

class QImage;
class QWidget;

namespace Corvane::Viewer::PictureSaver {

/// Asks for a file name and writes the picture there on another thread. Returns at once; a failure
/// is told in a box. name is proposed, without suffix. GUI thread only.
void askAndSave(const QImage& picture, const QString& name, QWidget* parent);

} // namespace Corvane::Viewer::PictureSaver
