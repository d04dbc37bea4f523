#include <corvane/browser/JsonReader.h>
#include <corvane/browser/JsonReader_p.h>
#include <corvane/browser/XmlReading_p.h>

#include <cstddef>
#include <cstdint>

using namespace Corvane::Gui;

// What image servers send to the browser: JSON of the catalog, XML of the discovery.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString text = QString::fromUtf8(bytes);
    bool success = true;
    JsonReader::parse(text, success);
    for (const auto routine : {JsonReader::parseValue, JsonReader::parseObject,
                               JsonReader::parseArray, JsonReader::parseString})
    {
        int index = 0;
        bool fine = true;
        if (!text.isEmpty()) {
            routine(text, index, fine);
        }
    }
    XmlReading reading(bytes);
    while (reading.readOn()) {
    }
    reading.takeDocument().elementsByTagName(QStringLiteral("folder"));
    return 0;
}
