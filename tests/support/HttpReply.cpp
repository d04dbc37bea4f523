#include <tests/support/HttpReply.h>

#include <array>
#include <cstdint>

namespace {

// The check sum of gzip, bit by bit.
std::uint32_t crc32(const QByteArray& bytes)
{
    constexpr std::uint32_t polynomial = 0xEDB88320U;
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0U ? (crc >> 1U) ^ polynomial : crc >> 1U;
        }
    }
    return ~crc;
}

QByteArray littleEndian(std::uint32_t value)
{
    QByteArray bytes;
    for (unsigned int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>((value >> shift) & 0xFFU);
    }
    return bytes;
}

// qCompress writes a length (4 bytes) and a zlib stream (2 bytes of head, 4 of check sum) around
// the deflated data, gzip has a head and a tail of its own.
QByteArray gzip(const QByteArray& bytes)
{
    constexpr int before = 4 + 2;
    constexpr int after = 4;
    constexpr std::array<char, 10> head{'\x1f', '\x8b', 8, 0, 0, 0, 0, 0, 0, 3};
    const QByteArray packed = qCompress(bytes);
    return QByteArray(head.data(), int(head.size())) +
           packed.mid(before, packed.size() - before - after) + littleEndian(crc32(bytes)) +
           littleEndian(static_cast<std::uint32_t>(bytes.size()));
}

} // namespace

HttpReply HttpReply::data(const QByteArray& body, const char* contentType)
{
    HttpReply reply;
    reply.body = body.toStdString();
    return reply.header("Content-Type", contentType);
}

HttpReply HttpReply::withStatus(int status, const QByteArray& body)
{
    HttpReply reply = data(body, "text/plain");
    reply.status = status;
    return reply;
}

HttpReply HttpReply::redirect(const QByteArray& target, int status)
{
    return withStatus(status, "moved").header("Location", target);
}

HttpReply HttpReply::raw(const QByteArray& bytes)
{
    HttpReply reply;
    reply.form = Form::Raw;
    reply.body = bytes.toStdString();
    return reply;
}

HttpReply HttpReply::endless(const QByteArray& piece)
{
    HttpReply reply = data(piece);
    reply.form = Form::Endless;
    return reply;
}

HttpReply HttpReply::reset()
{
    HttpReply reply;
    reply.form = Form::Reset;
    return reply;
}

HttpReply& HttpReply::header(const char* name, const QByteArray& value)
{
    headers.emplace_back(name, value.toStdString());
    return *this;
}

HttpReply& HttpReply::gzipped()
{
    body = gzip(QByteArray::fromStdString(body)).toStdString();
    return header("Content-Encoding", "gzip");
}

HttpReply& HttpReply::chunked(int chunkBytes)
{
    form = Form::Chunked;
    chunkSize = static_cast<std::size_t>(chunkBytes);
    return *this;
}

HttpReply& HttpReply::cutAfter(int bodyBytes)
{
    cutAt = bodyBytes;
    return *this;
}

HttpReply& HttpReply::held()
{
    holdBeforeHead = true;
    return *this;
}

HttpReply& HttpReply::heldAfter(int bodyBytes)
{
    holdAt = bodyBytes;
    return *this;
}
