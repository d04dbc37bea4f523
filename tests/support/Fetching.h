#pragma once

#include <corvane/core/Network.h>
#include <tests/support/HttpTestServer.h>

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QString>

#include <memory>

/// The bytes of a URL, fetched on the calling thread.
inline QByteArray bytesOf(const QString& url)
{
    const std::unique_ptr<QBuffer> buffer(Corvane::Network::getBuffer(url, true));
    return buffer->data();
}

/// An image file in memory.
inline QByteArray encodedImage(const QImage& image, const char* format = "png")
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

/// A URL on the loopback that nobody listens to.
inline QString deadUrl()
{
    return HttpTestServer().url(QStringLiteral("/dead"));
}

/// The loopback is reached without a proxy, whatever the tests' surroundings say.
inline void forgetProxies()
{
    for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "ftp_proxy", "FTP_PROXY",
                             "all_proxy", "ALL_PROXY"})
    {
        qunsetenv(name);
    }
}
