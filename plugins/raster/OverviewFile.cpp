#include <plugins/raster/OverviewFile.h>

#include <QFile>

namespace Corvane::Map {

OverviewFile OverviewFile::hold(const QString& file)
{
    auto held = std::make_shared<QFile>(file);
    if (!held->open(QIODevice::ReadOnly)) {
        return OverviewFile();
    }
    return {QStringLiteral("/proc/self/fd/%1").arg(held->handle()), held};
}

} // namespace Corvane::Map
