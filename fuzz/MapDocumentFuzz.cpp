#include <viewer/maps/MapDocumentReader.h>

#include <QByteArray>
#include <QDomDocument>

#include <cstddef>
#include <cstdint>

using namespace Corvane::Viewer;

// A map document of any origin.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QDomDocument document;
    QString reason;
    if (parseMapDocument(text, &document, &reason) == MapReading::Refused && reason.isEmpty()) {
        __builtin_trap(); // refused without a reason
    }
    document.toByteArray();
    return 0;
}
