#include <plugins/imageserver/ImageGrid.h>
#include <plugins/imageserver/ImageServerAddress.h>

#include <cstddef>
#include <cstdint>

using namespace Corvane::Map;

namespace {

void readAddress(const QString& text)
{
    ImageServerAddress::isOne(text);
    if (const auto address = ImageServerAddress::parse(text)) {
        address->gridUrl();
        address->serverName();
        address->credentials.authorization();
    }
}

void readGrid(const QByteArray& json)
{
    QString error;
    const std::shared_ptr<ImageGrid> grid = ImageGrid::parse(json, &error);
    if (!grid) {
        if (error.isEmpty()) {
            __builtin_trap(); // refused without a reason
        }
        return;
    }
    grid->bounds();
    for (int level = 0; level < grid->levels; ++level) {
        const auto number = static_cast<unsigned int>(level);
        grid->sizeOf(number);
        grid->sizeOfTile(number, 0, 0);
        grid->sizeOfTile(number, 1000000, 4000000000U);
        grid->tileTarget(number, 0, 1);
    }
}

} // namespace

// The address of an image, which stands in map documents, and what its server says of its grid.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    readAddress(QString::fromUtf8(bytes));
    readGrid(bytes);
    return 0;
}
