#include <plugins/common/HttpFetch.h>

#include <plugins/common/PoolActivity.h>

#include <corvane/core/CertificateFile.h>

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <memory>
#include <mutex>

namespace Corvane::Map {

namespace {

constexpr char plainAgent[] = "Corvane/1.0";
constexpr char protocols[] = "http,https";
constexpr char everyEncoding[] = ""; // all that curl can unpack
constexpr long mostRedirects = 5;
constexpr long connectDeadline = 10000; // milliseconds
constexpr int mostBytes = 64 << 20;     // of a body, unpacked
constexpr int mostHeadBytes = 256 << 10;
constexpr std::chrono::milliseconds askingInterval(25);
constexpr long keptConnections = 1; // per fetch, and no more run at once than the pool has threads

struct EasyCloser
{
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct MultiCloser
{
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};
struct ListCloser
{
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, ListCloser>;
using ErrorText = std::array<char, CURL_ERROR_SIZE>;

/// What a fetch works with, with the options that are the same for all: the connections belong to
/// multi, so it goes last.
struct Handles
{
    std::unique_ptr<CURLM, MultiCloser> multi{curl_multi_init()};
    std::unique_ptr<CURL, EasyCloser> easy{curl_easy_init()};

    Handles();
};

/// The handles that no fetch works with, with the connections that they keep open. As many are made
/// as fetches run at once. Made after curl and its TLS library have been set up, so it goes before
/// they do, and with it all connections.
class IdleHandles
{
public:
    static IdleHandles& instance()
    {
        static std::once_flag once;
        std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
        static IdleHandles handles;
        return handles;
    }
    ~IdleHandles() { PoolActivity::end(); }

    std::unique_ptr<Handles> take()
    {
        {
            const std::lock_guard<std::mutex> guard(mutex);
            if (!idle.empty()) {
                std::unique_ptr<Handles> last = std::move(idle.back());
                idle.pop_back();
                return last;
            }
        }
        return std::make_unique<Handles>();
    }
    void giveBack(std::unique_ptr<Handles> handles)
    {
        const std::lock_guard<std::mutex> guard(mutex);
        idle.push_back(std::move(handles));
    }

private:
    std::mutex mutex; // guards idle
    std::vector<std::unique_ptr<Handles>> idle;
};

// Called by curl.
std::size_t takeBody(char* data, std::size_t size, std::size_t count, void* target)
{
    auto* const result = static_cast<FetchResult*>(target);
    const std::size_t bytes = size * count;
    if (bytes > static_cast<std::size_t>(mostBytes - result->body.size())) {
        return 0;
    }
    result->body.append(data, static_cast<int>(bytes));
    return bytes;
}

// Called by curl, once for each line; the heads of redirects come first.
std::size_t takeHeader(char* data, std::size_t size, std::size_t count, void* target)
{
    auto* const result = static_cast<FetchResult*>(target);
    const std::size_t bytes = size * count;
    if (qstrncmp(data, "HTTP/", 5) == 0) {
        result->head.clear();
        result->body.clear();
    } else if (bytes > static_cast<std::size_t>(mostHeadBytes - result->head.size())) {
        return 0;
    } else {
        result->head.append(data, static_cast<int>(bytes));
    }
    return bytes;
}

Handles::Handles()
{
    curl_multi_setopt(multi.get(), CURLMOPT_MAXCONNECTS, keptConnections);
    CURL* const handle = easy.get();
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, protocols);
    curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, mostRedirects);
    // HTTP/2 would not bring more: each thread has one request at a time
    curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, everyEncoding);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);   // signals and threads do not mix
    curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L); // a drop does not wait for the name server
    const QByteArray authorities = certificateFile();
    if (!authorities.isEmpty()) {
        curl_easy_setopt(handle, CURLOPT_CAINFO, authorities.constData());
    }
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, connectDeadline);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &takeBody);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &takeHeader);
}

void setOrder(CURL* easy, const FetchOrder& order, const curl_slist* headers, ErrorText& error,
              FetchResult& result)
{
    curl_easy_setopt(easy, CURLOPT_URL, order.url.constData());
    curl_easy_setopt(easy, CURLOPT_USERAGENT, order.userAgent.constData());
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(order.deadline));
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, error.data());
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &result);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &result);
}

// Nothing that stands on the caller's stack is held on to.
void forgetOrder(CURL* easy)
{
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, nullptr);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, nullptr);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, nullptr);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, nullptr);
}

// Whether the transfer has ended, with how it did in code.
bool hasEnded(CURLM* multi, CURLcode* code)
{
    int left = 0;
    while (const CURLMsg* const message = curl_multi_info_read(multi, &left)) {
        if (message->msg == CURLMSG_DONE) {
            *code = message->data.result;
            return true;
        }
    }
    return false;
}

// False where it was dropped. A transfer that is taken off before its end loses its connection.
bool transfer(const Handles& handles, const std::function<bool()>& isUnwanted, CURLcode* code)
{
    using Clock = std::chrono::steady_clock;
    CURLM* const multi = handles.multi.get();
    curl_multi_add_handle(multi, handles.easy.get());
    auto askNext = Clock::now() + askingInterval;
    bool wanted = true;
    int running = 1;
    *code = CURLE_OK;
    while (wanted) {
        if (curl_multi_perform(multi, &running) != CURLM_OK) {
            *code = CURLE_FAILED_INIT;
            break;
        }
        if (hasEnded(multi, code)) {
            break;
        }
        const auto now = Clock::now();
        if (now >= askNext) {
            wanted = !isUnwanted();
            askNext = now + askingInterval;
        }
        if (wanted) {
            const auto rest = std::chrono::ceil<std::chrono::milliseconds>(askNext - now);
            curl_multi_poll(multi, nullptr, 0, static_cast<int>(rest.count()), nullptr);
        }
    }
    curl_multi_remove_handle(multi, handles.easy.get());
    return wanted;
}

HeaderList listOf(const std::vector<QByteArray>& headers)
{
    HeaderList list;
    for (const QByteArray& header : headers) {
        curl_slist* const longer = curl_slist_append(list.get(), header.constData());
        if (longer) {
            static_cast<void>(list.release());
            list.reset(longer);
        }
    }
    return list;
}

} // namespace

QByteArray FetchResult::header(const char* name) const
{
    const auto length = static_cast<int>(qstrlen(name));
    QByteArray all;
    for (int begin = 0; begin < head.size();) {
        int end = head.indexOf('\n', begin);
        end = end < 0 ? head.size() : end;
        const char* const line = head.constData() + begin;
        if (end - begin > length && line[length] == ':' &&
            qstrnicmp(line, name, static_cast<uint>(length)) == 0)
        {
            const QByteArray value =
                head.mid(begin + length + 1, end - begin - length - 1).trimmed();
            all += all.isNull() ? value : ", " + value;
        }
        begin = end + 1;
    }
    return all;
}

void FetchResult::addHeader(const QByteArray& name, const QByteArray& value)
{
    head += name + ": " + value + "\r\n";
}

QByteArray userAgentWith(const QString& suffix)
{
    const QByteArray simple = suffix.simplified().toUtf8();
    return simple.isEmpty() ? QByteArray(plainAgent) : plainAgent + (' ' + simple);
}

// On a pool thread.
FetchResult fetch(const FetchOrder& order, const std::function<bool()>& isUnwanted)
{
    FetchResult result;
    std::unique_ptr<Handles> handles = IdleHandles::instance().take();
    if (!handles->multi || !handles->easy) {
        result.failure = QStringLiteral("curl does not start");
        return result;
    }
    const HeaderList headers = listOf(order.headers);
    ErrorText error{};
    setOrder(handles->easy.get(), order, headers.get(), error, result);
    CURLcode code = CURLE_OK;
    result.wasDropped = !transfer(*handles, isUnwanted, &code);
    if (result.wasDropped || code != CURLE_OK) {
        const bool tooMuch = code == CURLE_WRITE_ERROR;
        const char* const text = error.front() != '\0' ? error.data() : curl_easy_strerror(code);
        result.failure =
            tooMuch ? QStringLiteral("the answer does not end") : QString::fromUtf8(text);
        result.body.clear();
    } else {
        long status = 0;
        curl_easy_getinfo(handles->easy.get(), CURLINFO_RESPONSE_CODE, &status);
        result.status = static_cast<int>(status);
    }
    forgetOrder(handles->easy.get());
    IdleHandles::instance().giveBack(std::move(handles));
    return result;
}

} // namespace Corvane::Map
