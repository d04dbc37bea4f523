#include <corvane/core/Config.h>

#include <QCoreApplication>
#include <QDir>
#include <QLocale>
#include <QString>

namespace Corvane {

QDir Config::GetDirectory(ConfigDirType type)
{
    const QString application = QCoreApplication::applicationDirPath();
    const QString separator = QDir::separator();
    switch (type) {
    case ConfigDirLibrary:
        return application + QStringLiteral("/lib/");
    case ConfigDirConfig:
        return application + separator + QStringLiteral("config") + separator + GetLanguage() +
               separator;
    case ConfigDirScripts:
        return application + separator + QStringLiteral("scripts") + separator;
    case ConfigDirIcons:
        return application + separator + QStringLiteral("icons") + separator;
    case ConfigDirRoot:
        return QDir(application + separator + QStringLiteral("../../")).canonicalPath();
    case ConfigDirPlugins:
        return application + QStringLiteral("/tvviewerplugins/");
    case ConfigDirHome:
        return QDir::homePath();
    case ConfigDirTemp:
        return QDir::tempPath();
    case ConfigDirDefault:
    case ConfigDirApplication:
        break;
    }
    return application;
}

QString Config::GetLanguage()
{
    return QLocale::languageToString(QLocale::system().language()).toLower();
}

bool Config::AddDatasetSearchPath(QString path)
{
    if (!QDir(path).exists()) {
        return false;
    }
    datasetSearchPath.append(QDir::cleanPath(path));
    return true;
}

bool Config::RemoveDatasetSearchPath(QString path)
{
    const QString cleaned = QDir::cleanPath(path);
    if (!datasetSearchPath.contains(cleaned, Qt::CaseInsensitive)) {
        return false;
    }
    // A path that differs in case alone fails here.
    const int index = datasetSearchPath.indexOf(cleaned);
    if (index < 0) {
        return false;
    }
    datasetSearchPath.removeAt(index);
    return true;
}

QStringList Config::GetDatasetSearchPath()
{
    return datasetSearchPath;
}

QString Config::GetDatasetSearchPathAsString()
{
    return datasetSearchPath.join(QLatin1Char(';'));
}

} // namespace Corvane
