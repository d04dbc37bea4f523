#include <plugins/common/GdalReadFilter.h>

#include <plugins/common/GdalAccess.h>

#include <QRegularExpression>
#include <QStringList>

namespace Corvane::Map {

namespace {

bool reads(GDALDriverH driver, const char* capability)
{
    return GDALGetMetadataItem(driver, capability, nullptr) &&
           GDALGetMetadataItem(driver, GDAL_DCAP_OPEN, nullptr);
}

QStringList extensionsOf(GDALDriverH driver)
{
    static const QRegularExpression fileEnding(QStringLiteral("^[A-Za-z0-9_.]+$"));
    const QString extensions =
        QString::fromUtf8(GDALGetMetadataItem(driver, GDAL_DMD_EXTENSIONS, nullptr));
    QStringList plain;
    for (QString extension : extensions.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        while (extension.startsWith(QLatin1Char('.'))) {
            extension.remove(0, 1);
        }
        if (fileEnding.match(extension).hasMatch()) {
            plain.append(extension.toLower());
        }
    }
    plain.removeDuplicates();
    return plain;
}

// The patterns are looked for in the first parentheses.
QString descriptionOf(GDALDriverH driver)
{
    static const QRegularExpression aside(QStringLiteral("\\s*\\([^)]*\\)?"));
    QString description = QString::fromUtf8(GDALGetDriverLongName(driver));
    description.remove(aside);
    description = description.remove(QLatin1Char(')')).trimmed();
    return description.isEmpty() ? QString::fromUtf8(GDALGetDriverShortName(driver)) : description;
}

} // namespace

QStringList gdalExtensions(const char* capability)
{
    setUpGdal();
    QStringList all;
    for (int i = 0; i < GDALGetDriverCount(); ++i) {
        GDALDriverH driver = GDALGetDriver(i);
        if (reads(driver, capability)) {
            all.append(extensionsOf(driver));
        }
    }
    all.removeDuplicates();
    return all;
}

QString gdalReadFilter(const char* capability, const std::function<bool(const QString&)>& isLeftOut)
{
    setUpGdal();
    QStringList filters;
    for (int i = 0; i < GDALGetDriverCount(); ++i) {
        GDALDriverH driver = GDALGetDriver(i);
        QStringList patterns;
        for (const QString& extension : extensionsOf(driver)) {
            if (!isLeftOut(extension)) {
                patterns.append(QStringLiteral("*.") + extension);
            }
        }
        if (reads(driver, capability) && !patterns.isEmpty()) {
            filters.append(QStringLiteral("%1 (%2)").arg(descriptionOf(driver),
                                                         patterns.join(QLatin1Char(' '))));
        }
    }
    filters.removeDuplicates();
    filters.sort(Qt::CaseInsensitive);
    return filters.join(QStringLiteral(";;"));
}

bool isChieflyVector(const QString& extension)
{
    static const QStringList formats = {QStringLiteral("gpkg"), QStringLiteral("json"),
                                        QStringLiteral("kml"), QStringLiteral("kmz"),
                                        QStringLiteral("sqlite")};
    return formats.contains(extension);
}

} // namespace Corvane::Map
