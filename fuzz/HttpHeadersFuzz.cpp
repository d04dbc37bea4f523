#include <plugins/common/Freshness.h>
#include <plugins/common/HttpFetch.h>

#include <cstddef>
#include <cstdint>

using namespace Corvane::Map;

// The header lines of a tile server's answer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr qint64 now = 1700000000000; // milliseconds since 1970
    constexpr qint64 day = 24LL * 3600 * 1000;
    FetchResult result;
    result.status = 200;
    result.head = QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const Freshness freshness = freshnessOf(result, now);
    const qint64 retry = retryTimeOf(result, now);
    httpTime(result.head);
    if (retry < 0 || retry > now + day || freshness.expires > now + 366 * day) {
        __builtin_trap(); // beyond what the reader promises
    }
    return 0;
}
