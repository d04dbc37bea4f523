#include <server/BasicAuth.h>
#include <server/Exchange.h>

#include <cstddef>
#include <cstdint>

using namespace Corvane::Server;

// The target of a request, and what a client sends as its credentials.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const BasicAuth auth("user", "password");
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const Request request = Request::of(bytes);
    if (request.path.contains(QChar(0))) {
        __builtin_trap(); // a file name would end there, and stand for something else
    }
    for (const char* name : {"request", "service", "layers", "sizex", "folder", "v", ""}) {
        request.item(name);
    }
    Reply::failure(404, request.path).header("Content-Type");
    if (auth.admits(BasicAuth::digestOf(bytes)) && !bytes.toLower().contains("basic")) {
        __builtin_trap(); // nobody else comes in
    }
    return 0;
}
