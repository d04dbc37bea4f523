#include <server/PublishedImage.h>

#include <server/FolderGate.h>

#include <plugins/raster/BandPlan.h>
#include <plugins/raster/GdalHandlePool.h>
#include <plugins/raster/GdalSupport.h>

#include <cpl_string.h>
#include <ogr_srs_api.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>
#include <iterator>

namespace Corvane::Server {

namespace {

constexpr int stampLetters = 16;

// What stands beside an image and belongs to it.
const char* const companions[] = {".ovr", ".msk", ".aux.xml"};

const char* const streamedSuffixes[] = {"zwt", "jp2", "jpc", "jpf", "jpx", "j2c", "j2k", "ntf"};

bool isCompanion(const QString& file)
{
    return std::any_of(std::begin(companions), std::end(companions), [&file](const char* suffix) {
        return file.endsWith(QLatin1String(suffix), Qt::CaseInsensitive);
    });
}

// The sources that a virtual raster names and that do not lie in the folder.
QString sourceElsewhere(const FolderGate& gate, GDALDatasetH dataset, const QString& file)
{
    char** const xml = GDALGetMetadata(dataset, "xml:VRT");
    QXmlStreamReader reader(xml ? QByteArray(xml[0]) : QByteArray());
    const QString folder = QFileInfo(file).absolutePath() + QLatin1Char('/');
    while (!reader.atEnd()) {
        const bool names = reader.readNext() == QXmlStreamReader::StartElement &&
                           (reader.name() == QLatin1String("SourceFilename") ||
                            reader.name() == QLatin1String("SourceDataset"));
        if (!names) {
            continue;
        }
        const bool relative =
            reader.attributes().value(QLatin1String("relativeToVRT")).compare(QLatin1String("1")) ==
            0;
        const QString name =
            reader.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
        struct stat found = {};
        if (!gate.status(QFile::encodeName(relative ? folder + name : name), &found)) {
            return name;
        }
    }
    return QString();
}

QStringList filesOf(GDALDatasetH dataset, const QString& file)
{
    QStringList files(file);
    char** const list = GDALGetFileList(dataset);
    for (int i = 0; i < CSLCount(list); ++i) {
        files.append(QString::fromUtf8(list[i]));
    }
    CSLDestroy(list);
    files.removeDuplicates();
    return files;
}

QString unitsOf(const Map::RasterFacts& facts)
{
    OGRSpatialReferenceH system = OSRNewSpatialReference(nullptr);
    QByteArray wkt = facts.wkt.toUtf8();
    char* text = wkt.data();
    QString units = QStringLiteral("PIXELS");
    if (!wkt.isEmpty() && OSRImportFromWkt(system, &text) == OGRERR_NONE) {
        char* name = nullptr; // owned by system
        const bool degrees = OSRIsGeographic(system) != 0;
        if (degrees) {
            OSRGetAngularUnits(system, &name);
        } else {
            OSRGetLinearUnits(system, &name);
        }
        const QString unit = QString::fromUtf8(name).toUpper();
        units = unit == QLatin1String("METRE") || unit == QLatin1String("METER")
                    ? QStringLiteral("METERS")
                : unit == QLatin1String("DEGREE") ? QStringLiteral("DEGREES")
                                                  : unit;
    } else if (facts.isGeoreferenced) {
        units = QStringLiteral("UNKNOWN");
    }
    OSRDestroySpatialReference(system);
    return units;
}

// Down to the level that one tile holds.
int levelsOf(const Map::RasterFacts& facts)
{
    const int edge = static_cast<int>(facts.tileSize);
    std::size_t level = 0;
    while (level + 1 < facts.levels.size() &&
           (facts.levels[level].size.width() > edge || facts.levels[level].size.height() > edge))
    {
        ++level;
    }
    return static_cast<int>(level) + 1;
}

} // namespace

QString PublishedImage::name() const
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString PublishedImage::cellType() const
{
    const Map::BandFacts& band = facts.bands.front();
    if (band.type == GDT_Byte) {
        return band.isSignedByte ? QStringLiteral("INT8") : QStringLiteral("UINT8");
    }
    return QString::fromUtf8(GDALGetDataTypeName(band.type)).toUpper();
}

QString PublishedImage::colorSpace() const
{
    const auto plain =
        facts.bands.size() -
        (facts.alphaBand > 0 && facts.alphaBand <= static_cast<int>(facts.bands.size()) ? 1U : 0U);
    if (!facts.palette.isEmpty() || plain == 3) {
        return QStringLiteral("RGB");
    }
    return plain <= 1 ? QStringLiteral("Greyscale") : QStringLiteral("Multiband");
}

bool PublishedImage::canStream() const
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return std::any_of(std::begin(streamedSuffixes), std::end(streamedSuffixes),
                       [&suffix](const char* one) { return suffix == QLatin1String(one); });
}

QString stampOf(const FolderGate& gate, const QStringList& files)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    QStringList all = files;
    for (const char* const companion : companions) {
        all.append(files.first() + QLatin1String(companion));
    }
    for (const QString& file : all) {
        struct stat found = {};
        if (gate.status(QFile::encodeName(file), &found)) {
            hash.addData(QStringLiteral("%1 %2 %3 %4 %5\n")
                             .arg(file)
                             .arg(found.st_size)
                             .arg(found.st_ino)
                             .arg(found.st_mtim.tv_sec)
                             .arg(found.st_mtim.tv_nsec)
                             .toUtf8());
        }
    }
    return QString::fromLatin1(hash.result().toHex().left(stampLetters));
}

bool looksLikeImage(const QString& file)
{
    const QByteArray suffix = QFileInfo(file).suffix().toLower().toUtf8();
    for (int i = 0; i < GDALGetDriverCount() && !suffix.isEmpty(); ++i) {
        const QByteArray all(GDALGetMetadataItem(GDALGetDriver(i), GDAL_DMD_EXTENSIONS, nullptr));
        if (all.toLower().split(' ').contains(suffix)) {
            return suffix != "xml" && suffix != "txt";
        }
    }
    return false;
}

std::shared_ptr<const PublishedImage> readImage(const FolderGate& gate, const QString& file,
                                                QString* reason)
{
    reason->clear();
    if (isCompanion(file)) {
        return nullptr;
    }
    struct stat found = {};
    if (!gate.status(QFile::encodeName(file), &found)) {
        if (looksLikeImage(file)) {
            *reason = QStringLiteral("it leads out of the published folder, or nowhere");
        }
        return nullptr;
    }
    const std::unique_ptr<Map::RasterHandle> handle = Map::openHandle(file, false, reason);
    if (!handle) {
        if (!looksLikeImage(file)) {
            reason->clear();
        } else if (reason->isEmpty()) {
            *reason = QStringLiteral("it holds no image");
        }
        return nullptr;
    }
    const QString elsewhere = sourceElsewhere(gate, handle->original.get(), file);
    if (!elsewhere.isEmpty()) {
        *reason =
            QStringLiteral("it refers to %1, which is not in the published folder").arg(elsewhere);
        return nullptr;
    }
    auto image = std::make_shared<PublishedImage>();
    image->facts = Map::readFacts(handle->original.get(), handle->shown());
    image->file = file;
    image->path = file.mid(QFile::decodeName(gate.root()).size());
    image->files = filesOf(handle->original.get(), file);
    image->stamp = stampOf(gate, image->files);
    image->modified = QFileInfo(file).lastModified().toMSecsSinceEpoch();
    image->units = unitsOf(image->facts);
    image->levels = levelsOf(image->facts);
    const Map::BandPlan plan = Map::planFor(image->facts, Map::usualBands(image->facts));
    const bool opaquePalette = std::all_of(image->facts.palette.begin(), image->facts.palette.end(),
                                           [](QRgb colour) { return qAlpha(colour) == 255; });
    image->isOpaque = !plan.usesAlpha && !plan.usesMask && !plan.usesNoData &&
                      (plan.look != Map::BandPlan::Look::Palette || opaquePalette);
    return image;
}

} // namespace Corvane::Server
