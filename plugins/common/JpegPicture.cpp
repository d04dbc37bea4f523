#include <plugins/common/JpegPicture.h>

#include <turbojpeg.h>

#include <QtEndian>

namespace Corvane::Map {

namespace {

// Format_RGB32 is a 32-bit word with blue in its lowest byte.
constexpr int pixelFormat = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? TJPF_BGRX : TJPF_XRGB;

const unsigned char* dataOf(const QByteArray& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

unsigned long lengthOf(const QByteArray& bytes)
{
    return static_cast<unsigned long>(bytes.size());
}

} // namespace

void JpegPicture::Closer::operator()(void* handle) const
{
    tjDestroy(handle);
}

JpegPicture::JpegPicture(const QByteArray& file) : bytes(file), decoder(tjInitDecompress())
{
    int width = 0;
    int height = 0;
    int sampling = 0;
    int colours = 0;
    const bool wasRead = decoder && tjDecompressHeader3(decoder.get(), dataOf(file), lengthOf(file),
                                                        &width, &height, &sampling, &colours) == 0;
    isUsual = wasRead && colours != TJCS_CMYK && colours != TJCS_YCCK;
    size = QSize(width, height);
}

JpegPicture::~JpegPicture() = default;

bool JpegPicture::isJpeg(const QByteArray& file)
{
    return file.startsWith("\xff\xd8\xff");
}

// Remarks between the markers are a warning, and no reason to refuse what every browser shows.
QImage JpegPicture::decode()
{
    QImage picture(size, QImage::Format_RGB32);
    if (!isUsual || picture.isNull()) {
        return QImage();
    }
    const bool ok =
        tjDecompress2(decoder.get(), dataOf(bytes), lengthOf(bytes), picture.bits(), size.width(),
                      picture.bytesPerLine(), size.height(), pixelFormat, 0) == 0;
    return ok || tjGetErrorCode(decoder.get()) == TJERR_WARNING ? picture : QImage();
}

} // namespace Corvane::Map
