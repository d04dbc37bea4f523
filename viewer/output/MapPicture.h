#pragma once

#include <QImage>
#include <QStringList>

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// The map of a view as a picture of the view's size: background and layers as on the screen,
/// without rubber bands and without the logo of an empty map. The ratio says how many pixels of the
/// picture make one of the view. Null where there is no memory for it.
QImage paintMapPicture(Map::MapView& view, qreal devicePixelRatio);

/// The picture formats that are written, by file name suffix, lower case.
QStringList pictureSuffixes();
/// Whether a picture can be written to a file of this name.
bool hasPictureSuffix(const QString& fileName);

/// Writes a picture in the format of the file's suffix. A file that is there is replaced only when
/// the new one is whole. False with *error set on failure. Any thread.
bool writePicture(const QImage& picture, const QString& fileName, QString* error);

/// Whether a file of this name could be written, found out by opening it; the file itself stays as
/// it is.
bool canWrite(const QString& fileName, QString* error);

} // namespace Corvane::Viewer
