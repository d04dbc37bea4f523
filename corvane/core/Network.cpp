#include <corvane/core/Network.h>

#include <corvane/core/CertificateFile.h>
#include <corvane/core/TransferHandles_p.h>

#include <curl/curl.h>

#include <QBuffer>
#include <QImage>
#include <QString>
#include <QtDebug>

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <memory>
#include <mutex>

namespace Corvane::Network {

namespace {

constexpr char userAgent[] = "Corvane/1.0";
constexpr char protocols[] = "http,https,ftp";
constexpr char everyEncoding[] = "";       // all that curl can unpack
constexpr int urlLimit = 1024;             // UTF-16 units, the terminating one among them
constexpr std::size_t chunkSize = 1024;    // bytes
constexpr long receiveBufferSize = 131072; // bytes
constexpr long mostRedirects = 30;
constexpr qint64 mostBytes = std::numeric_limits<int>::max() / 2; // a QByteArray doubles its room

enum class Transport
{
    Unopened,
    Open,
    Finished
};

std::atomic<Transport> transport{Transport::Unopened};
std::once_flag opening;

/// Made after the TLS library, so it goes before it: by then no thread may hold a connection.
/// TransferHandlesTest and HttpUnloadTest hold it.
struct HandlesCloser
{
    ~HandlesCloser() { TransferHandles::instance().close(); }
};

struct ListCloser
{
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

using HeaderList = std::unique_ptr<curl_slist, ListCloser>;
using ErrorText = std::array<char, CURL_ERROR_SIZE>;

bool isPlain(char c)
{
    return c > ' ' && c <= '~';
}

/// Scheme and host as they stand; behind them spaces, controls and what is not ASCII is
/// percent-encoded.
QByteArray encoded(const QString& url)
{
    const QString endsOfHost = QStringLiteral("/?#");
    int path = url.indexOf(QLatin1String("://")) + 3;
    while (path < url.size() && !endsOfHost.contains(url.at(path))) {
        ++path;
    }
    QByteArray result = url.left(path).toUtf8();
    for (const char c : url.mid(path).toUtf8()) {
        result += isPlain(c) ? QByteArray(1, c) : '%' + QByteArray(1, c).toHex().toUpper();
    }
    return result;
}

std::size_t writeChunks(char* data, std::size_t size, std::size_t count, void* target)
{
    auto* const buffer = static_cast<QBuffer*>(target);
    const std::size_t total = size * count;
    for (std::size_t done = 0; done < total; done += chunkSize) {
        const std::size_t length = std::min(chunkSize, total - done);
        if (buffer->size() > mostBytes ||
            buffer->write(data + done, static_cast<qint64>(length)) < 0) {
            return done;
        }
    }
    return total;
}

void setOptions(CURL* handle, const QString& url, const curl_slist* headers, ErrorText& error,
                QBuffer& target)
{
    curl_easy_reset(handle); // the options; connections are kept
    curl_easy_setopt(handle, CURLOPT_URL, encoded(url).constData());
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, protocols);
    curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, mostRedirects);
    curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    curl_easy_setopt(handle, CURLOPT_USERAGENT, userAgent);
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, everyEncoding);
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L); // signals and threads do not mix
    const QByteArray authorities = certificateFile();
    if (!authorities.isEmpty()) {
        curl_easy_setopt(handle, CURLOPT_CAINFO, authorities.constData());
    }
    curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, receiveBufferSize);
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, error.data());
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &writeChunks);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &target);
}

CURLcode fetch(const QString& url, bool allowCache, ErrorText& error, QBuffer& target)
{
    // A transport that was finished is not opened again: programs end it once and for all.
    // NetworkFinishTest::afterFinishEveryFetchFails holds it.
    TransferHandles& handles = TransferHandles::instance();
    CURL* const handle = transport == Transport::Open ? handles.take() : nullptr;
    if (!handle) {
        return CURLE_FAILED_INIT;
    }
    const HeaderList headers(allowCache ? nullptr : curl_slist_append(nullptr, "Pragma: no-cache"));
    setOptions(handle, url, headers.get(), error, target);
    const CURLcode result = curl_easy_perform(handle);
    curl_easy_reset(handle); // lets go of what stands on this stack
    handles.giveBack();
    return result;
}

// The buffer stays allocated, without its bytes; tests/lsan.supp knows it by this function.
void loadFetched(const QString& url, QImage& image)
{
    // never from a cache, whatever the caller of getImage allows
    QBuffer* const buffer = getBuffer(url, false);
    image.loadFromData(buffer->data());
    buffer->setData(QByteArray());
}

} // namespace

bool initialize()
{
    std::call_once(opening, [] {
        if (curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK) {
            static const HandlesCloser handlesCloser;
            transport = Transport::Open;
        }
    });
    return transport != Transport::Unopened;
}

void finish()
{
    Transport open = Transport::Open;
    transport.compare_exchange_strong(open, Transport::Finished);
}

QBuffer* getBuffer(const QString& url, bool allowCache)
{
    auto* const buffer = new QBuffer;
    if (url.size() >= urlLimit) {
        qFatal("Network: the URL is %d characters long, more than %d: %s", int(url.size()),
               urlLimit - 1, qUtf8Printable(url));
    }
    if (!initialize()) {
        return buffer;
    }
    buffer->open(QIODevice::ReadWrite);
    ErrorText error{};
    const CURLcode result = fetch(url, allowCache, error, *buffer);
    buffer->close();
    if (result != CURLE_OK && buffer->data().isEmpty()) {
        qDebug("%s", error.front() != '\0' ? error.data() : curl_easy_strerror(result));
    }
    return buffer;
}

QImage* getImage(const QString& url, bool)
{
    auto* const image = new QImage;
    loadFetched(url, *image);
    return image;
}

} // namespace Corvane::Network
