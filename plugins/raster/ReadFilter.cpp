#include <plugins/raster/ReadFilter.h>

#include <plugins/raster/GdalSupport.h>

#include <QRegularExpression>
#include <QStringList>

namespace Corvane::Map {

namespace {

bool reads(GDALDriverH driver)
{
    return GDALGetMetadataItem(driver, GDAL_DCAP_RASTER, nullptr) &&
           GDALGetMetadataItem(driver, GDAL_DCAP_OPEN, nullptr);
}

QStringList patternsOf(GDALDriverH driver)
{
    static const QRegularExpression fileEnding(QStringLiteral("^[A-Za-z0-9_.]+$"));
    const QString extensions =
        QString::fromUtf8(GDALGetMetadataItem(driver, GDAL_DMD_EXTENSIONS, nullptr));
    QStringList patterns;
    for (QString extension : extensions.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        while (extension.startsWith(QLatin1Char('.'))) {
            extension.remove(0, 1);
        }
        if (fileEnding.match(extension).hasMatch()) {
            patterns.append(QStringLiteral("*.") + extension.toLower());
        }
    }
    patterns.removeDuplicates();
    return patterns;
}

// The patterns are looked for in the first parentheses.
QString descriptionOf(GDALDriverH driver)
{
    static const QRegularExpression aside(QStringLiteral("\\s*\\([^)]*\\)?"));
    QString description = QString::fromUtf8(GDALGetDriverLongName(driver));
    description.remove(aside);
    description.remove(QLatin1Char(')'));
    return description.trimmed();
}

} // namespace

QString rasterReadFilter()
{
    setUpGdal();
    QStringList filters;
    for (int i = 0; i < GDALGetDriverCount(); ++i) {
        GDALDriverH driver = GDALGetDriver(i);
        const QStringList patterns = patternsOf(driver);
        if (reads(driver) && !patterns.isEmpty()) {
            filters.append(QStringLiteral("%1 (%2)").arg(descriptionOf(driver),
                                                         patterns.join(QLatin1Char(' '))));
        }
    }
    filters.removeDuplicates();
    filters.sort(Qt::CaseInsensitive);
    return filters.join(QStringLiteral(";;"));
}

} // namespace Corvane::Map
