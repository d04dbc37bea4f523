#include <viewer/output/MapPicture.h>

#include <corvane/map/GeoPainter.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

namespace Corvane::Viewer {
namespace {

constexpr int jpegQuality = 92;

} // namespace

QImage paintMapPicture(Map::MapView& view, qreal devicePixelRatio)
{
    QImage picture(view.size() * devicePixelRatio, QImage::Format_RGB32);
    if (picture.isNull()) {
        return picture;
    }
    picture.setDevicePixelRatio(devicePixelRatio);

    QRectF world = view.getBounds();
    QRect device = view.rect();
    GeoPainter painter(&picture, world, device);
    painter.fillRect(device, view.getBackgroundColor());
    view.getMapCanvas()->paint(painter, &world, &device);
    return picture;
}

// Any thread.
QStringList pictureSuffixes()
{
    return {"png", "jpg", "jpeg"};
}

bool hasPictureSuffix(const QString& fileName)
{
    return pictureSuffixes().contains(QFileInfo(fileName).suffix().toLower());
}

bool writePicture(const QImage& picture, const QString& fileName, QString* error)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        *error = file.errorString();
        return false;
    }
    QImageWriter writer(&file, QFileInfo(fileName).suffix().toLower().toLatin1());
    if (writer.format().startsWith("jp")) {
        writer.setQuality(jpegQuality);
    }
    if (!writer.write(picture)) {
        *error = writer.errorString();
        return false;
    }
    if (!file.commit()) {
        *error = file.errorString();
        return false;
    }
    return true;
}

bool canWrite(const QString& fileName, QString* error)
{
    QSaveFile file(fileName);
    const bool writable = file.open(QIODevice::WriteOnly);
    if (!writable) {
        *error = file.errorString();
    }
    return writable;
}

} // namespace Corvane::Viewer
