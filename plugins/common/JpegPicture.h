#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <memory>

namespace Corvane::Map {

/// A JPEG file in memory, decoded straight into the pixels that are painted. The picture reader, which
/// makes rows of another format first, takes nearly twice the time. Any thread, one at a time.
class JpegPicture
{
public:
    /// Reads the header. The file outlives this.
    explicit JpegPicture(const QByteArray& file);
    ~JpegPicture();
    JpegPicture(const JpegPicture&) = delete;
    JpegPicture& operator=(const JpegPicture&) = delete;

    /// Whether a file begins as a JPEG does.
    static bool isJpeg(const QByteArray& file);

    /// Whether it can be decoded here: inks and lossless files are for the picture reader.
    bool canDecode() const { return isUsual; }
    /// In pixels, once it can be decoded.
    QSize getSize() const { return size; }
    /// In Format_RGB32; null where the file is damaged.
    QImage decode();

private:
    struct Closer
    {
        void operator()(void* handle) const;
    };

    const QByteArray& bytes;
    std::unique_ptr<void, Closer> decoder;
    QSize size;
    bool isUsual = false;
};

} // namespace Corvane::Map
