#pragma once

#include <QString>

namespace Corvane::Server {

/// "default" is the whole folder; every folder right below it that holds images is a service of its
/// own, in which paths begin at that folder. A path behind the name of its service is thus the path
/// in the default service.
namespace ServiceName {

inline QString usual()
{
    return QStringLiteral("default");
}

/// What stands before the paths of the service: a folder with its leading slash, or nothing.
inline QString folderOf(const QString& service)
{
    const QString name = service.trimmed();
    const bool isUsual = name.isEmpty() || name.compare(usual(), Qt::CaseInsensitive) == 0;
    return isUsual ? QString() : QLatin1Char('/') + name;
}

} // namespace ServiceName
} // namespace Corvane::Server
