#include <plugins/common/MarkedTile.h>

#include <QColor>
#include <QPainter>

#include <map>
#include <mutex>

namespace Corvane::Map {

namespace {

const char* const mark = "unreadable"; // travels with the pixels

QImage draw(int edge)
{
    QImage image(edge, edge, QImage::Format_RGB32);
    image.fill(QColor(0xc8, 0xc8, 0xc8));
    QPainter painter(&image);
    painter.fillRect(image.rect(), QBrush(QColor(0xa0, 0xa0, 0xa0), Qt::BDiagPattern));
    painter.setPen(QPen(QColor(0xc0, 0x20, 0x20), 3));
    painter.drawLine(0, 0, edge - 1, edge - 1);
    painter.drawLine(edge - 1, 0, 0, edge - 1);
    painter.end();
    image.setText(mark, mark);
    return image;
}

} // namespace

QImage markedTile(int edge)
{
    static std::mutex mutex;                          // guards images
    static auto& images = *new std::map<int, QImage>; // see PoolActivity
    {
        const std::lock_guard<std::mutex> guard(mutex);
        const auto entry = images.find(edge);
        if (entry != images.end()) {
            return entry->second;
        }
    }
    const QImage image = draw(edge);
    const std::lock_guard<std::mutex> guard(mutex);
    return images.emplace(edge, image).first->second;
}

bool isMarkedTile(const QImage& image)
{
    return !image.text(mark).isEmpty();
}

} // namespace Corvane::Map
