#include <server/GdalLimits.h>

#include <server/Jp2Header.h>

#include <cpl_error.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

namespace Corvane::Server {

namespace {

using Open = GDALDataset* (*)(GDALOpenInfo*);

// Filled once, before the first file is opened.
std::map<const GDALDriver*, Open>& openers()
{
    static std::map<const GDALDriver*, Open> all;
    return all;
}

struct FileCloser
{
    void operator()(VSILFILE* file) const { VSIFCloseL(file); }
};

// False with GDAL's error set.
bool mayDecode(const char* name)
{
    const std::unique_ptr<VSILFILE, FileCloser> file(VSIFOpenL(name, "rb"));
    if (!file || VSIFSeekL(file.get(), 0, SEEK_END) != 0) {
        return true; // what cannot be read is no danger
    }
    const auto bytes = static_cast<qint64>(VSIFTellL(file.get()));
    const auto header = Jp2Header::read(
        [&file](qint64 place, char* target, int count) {
            return VSIFSeekL(file.get(), static_cast<vsi_l_offset>(place), SEEK_SET) == 0
                       ? static_cast<int>(
                             VSIFReadL(target, 1, static_cast<std::size_t>(count), file.get()))
                       : 0;
        },
        bytes);
    if (!header) {
        CPLError(CE_Failure, CPLE_AppDefined, "it has no head of JPEG 2000");
        return false;
    }
    const qint64 needed = header->decoderBytes();
    if (needed > Jp2Header::decoderLimit) {
        CPLError(CE_Failure, CPLE_OutOfMemory, "decoding one of its tiles takes %lld MB",
                 static_cast<long long>(needed >> 20));
        return false;
    }
    return true;
}

// Whose files are decoded as a whole for the first of their blocks.
const char* const wholeFormats[] = {"WEBP", "GRIB"};

// Bands that lie pixel by pixel are read together.
qint64 blockBytes(GDALDriver& driver, GDALDataset& dataset)
{
    const bool whole =
        std::any_of(std::begin(wholeFormats), std::end(wholeFormats), [&driver](const char* name) {
            return std::strcmp(driver.GetDescription(), name) == 0;
        });
    const char* const order = dataset.GetMetadataItem("INTERLEAVE", "IMAGE_STRUCTURE");
    const bool together = whole || (order && std::strcmp(order, "PIXEL") == 0);
    qint64 all = 0;
    qint64 largest = 0;
    for (int i = 1; i <= dataset.GetRasterCount(); ++i) {
        GDALRasterBand* const band = dataset.GetRasterBand(i);
        int width = 0;
        int height = 0;
        band->GetBlockSize(&width, &height);
        height = whole ? band->GetYSize() : height;
        const qint64 bytes =
            qint64{width} * height * GDALGetDataTypeSizeBytes(band->GetRasterDataType());
        all += bytes;
        largest = std::max(largest, bytes);
    }
    return together ? all : largest;
}

GDALDataset* openWithinLimits(GDALDriver* driver, GDALOpenInfo* info)
{
    const bool isJp2 = std::strcmp(driver->GetDescription(), "JP2OpenJPEG") == 0;
    if (isJp2 && (driver->pfnIdentify(info) == 0 || !mayDecode(info->pszFilename))) {
        return nullptr;
    }
    std::unique_ptr<GDALDataset> dataset(openers().at(driver)(info));
    const qint64 bytes = dataset ? blockBytes(*driver, *dataset) : 0;
    if (bytes > mostBlockBytes) {
        CPLError(CE_Failure, CPLE_OutOfMemory, "its blocks have %lld MB",
                 static_cast<long long>(bytes >> 20));
        return nullptr;
    }
    return dataset.release();
}

} // namespace

void limitGdal()
{
    for (int i = 0; i < GDALGetDriverCount(); ++i) {
        auto* const driver = GDALDriver::FromHandle(GDALGetDriver(i));
        if (driver->pfnOpen) {
            openers()[driver] = std::exchange(driver->pfnOpen, nullptr);
            driver->pfnOpenWithDriverArg = &openWithinLimits;
        }
    }
}

} // namespace Corvane::Server
