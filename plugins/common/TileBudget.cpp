#include <plugins/common/TileBudget.h>

#include <corvane/core/Application.h>
#include <corvane/core/System.h>

#include <QSettings>

#include <algorithm>

namespace Corvane::Map {

namespace {

constexpr qint64 keptTenths = 9; // of the limit, after a round
constexpr qint64 leastMegabytes = 256;

} // namespace

TileBudget& TileBudget::instance()
{
    static TileBudget budget;
    return budget;
}

qint64 TileBudget::limitFor(const QString& pluginName)
{
    Application* const application = Application::instance();
    const QString key = QStringLiteral("Plugins/%1/MemoryBudgetMB").arg(pluginName);
    const qint64 wanted = application ? application->getSettings()->value(key, 0).toLongLong() : 0;
    const qint64 quarter = std::max<qint64>(System::getTotalRAM() / 4, leastMegabytes);
    return (wanted > 0 ? wanted : quarter) * (qint64{1} << 20);
}

void TileBudget::setLimit(qint64 bytes)
{
    limit = bytes;
}

qint64 TileBudget::heldBytes() const
{
    qint64 bytes = 0;
    for (const ITileHolder* holder : holders) {
        bytes += holder->heldBytes();
    }
    return bytes;
}

void TileBudget::add(ITileHolder* holder)
{
    holders.push_back(holder);
}

void TileBudget::remove(ITileHolder* holder)
{
    holders.erase(std::remove(holders.begin(), holders.end(), holder), holders.end());
}

void TileBudget::viewed(ITileHolder* holder)
{
    const auto entry = std::find(holders.begin(), holders.end(), holder);
    if (entry != holders.end()) {
        std::rotate(entry, entry + 1, holders.end());
    }
}

void TileBudget::enforce()
{
    const qint64 held = heldBytes();
    if (limit <= 0 || held <= limit) {
        return;
    }
    qint64 excess = held - limit / 10 * keptTenths;
    for (ITileHolder* holder : holders) {
        excess -= excess > 0 ? holder->giveBackOtherLevels(excess) : 0;
    }
    for (ITileHolder* holder : holders) {
        excess -= excess > 0 ? holder->giveBackOutOfView(excess) : 0;
    }
}

} // namespace Corvane::Map
