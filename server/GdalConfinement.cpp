#include <server/GdalConfinement.h>

#include <server/FolderGate.h>
#include <server/GateFile.h>
#include <server/GdalLimits.h>
#include <server/ProjConfinement.h>

#include <plugins/raster/GdalSupport.h>

#include <cpl_conv.h>
#include <cpl_http.h>
#include <cpl_string.h>
#include <cpl_vsi.h>
#include <cpl_vsi_virtual.h>
#include <gdal.h>
#include <ogr_srs_api.h>

#include <QByteArray>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace Corvane::Server {

namespace {

// What reads through GDAL's own file functions and asks no server.
const char* const allowedFormats[] = {
    "VRT",  "GTiff", "PNG",     "JPEG", "JP2OpenJPEG", "NITF",   "HFA",
    "ENVI", "EHdr",  "AAIGrid", "BIL",  "WEBP",        "GIF",    "BMP",
    "ERS",  "GRIB",  "USGSDEM", "DTED", "SRTMHGT",     "PCIDSK", "BIGGIF"};

// In memory, and windows into files that pass the gate themselves.
const char* const allowedFileSystems[] = {"/vsimem/", "/vsisubfile/"};

template <std::size_t count>
bool isAmong(const char* name, const char* const (&allowed)[count])
{
    return std::any_of(std::begin(allowed), std::end(allowed),
                       [name](const char* one) { return std::strcmp(name, one) == 0; });
}

// Null stands for a file system that holds nothing.
std::shared_ptr<const FolderGate>& passage()
{
    static std::shared_ptr<const FolderGate> gate;
    return gate;
}

int statFile(void* hasFiles, const char* name, VSIStatBufL* result, int)
{
    struct stat found = {};
    if (!hasFiles || !passage()->status(name, &found)) {
        return -1;
    }
    std::memset(result, 0, sizeof(*result));
    result->st_mode = found.st_mode;
    result->st_size = found.st_size;
    result->st_mtime = found.st_mtime;
    return 0;
}

void* openFile(void* hasFiles, const char* name, const char* access)
{
    const bool reads = access[0] == 'r' && !std::strchr(access, '+');
    return hasFiles && reads ? GateFile::open(*passage(), name).release() // closeFile deletes it
                             : nullptr;
}

vsi_l_offset tellFile(void* file)
{
    return static_cast<GateFile*>(file)->position();
}

int seekFile(void* file, vsi_l_offset offset, int from)
{
    return static_cast<GateFile*>(file)->seek(offset, from) ? 0 : -1;
}

std::size_t readFile(void* file, void* buffer, std::size_t size, std::size_t count)
{
    const std::size_t done = static_cast<GateFile*>(file)->read(buffer, size * count);
    return size > 0 ? done / size : 0;
}

int isAtEnd(void* file)
{
    return static_cast<GateFile*>(file)->isAtEnd() ? 1 : 0;
}

int closeFile(void* file)
{
    delete static_cast<GateFile*>(file);
    return 0;
}

// The empty prefix stands for plain file names. The text has to stay, and what is replaced stays, too:
// GDAL may still hold it somewhere.
void install(const char* prefix, bool hasFiles)
{
    static auto* const replaced = new std::vector<const VSIFilesystemHandler*>; // never deleted
    replaced->push_back(VSIFileManager::GetHandler(prefix));
    VSIFilesystemPluginCallbacksStruct* const calls = VSIAllocFilesystemPluginCallbacksStruct();
    static char mark = 0;
    calls->pUserData = hasFiles ? &mark : nullptr;
    calls->stat = &statFile;
    calls->open = &openFile;
    calls->tell = &tellFile;
    calls->seek = &seekFile;
    calls->read = &readFile;
    calls->eof = &isAtEnd;
    calls->close = &closeFile;
    VSIInstallPluginHandler(prefix, calls);
    VSIFreeFilesystemPluginCallbacksStruct(calls);
}

// Some texts that describe coordinate systems are asked of servers when they look like URLs.
CPLHTTPResult* fetchNothing(const char*, CSLConstList, GDALProgressFunc, void*,
                            CPLHTTPFetchWriteFunc, void*, void*)
{
    auto* const result = static_cast<CPLHTTPResult*>(CPLCalloc(1, sizeof(CPLHTTPResult)));
    result->nStatus = 1;
    result->pszErrBuf = CPLStrdup("servers are not asked");
    return result; // GDAL frees it
}

void switchOffFormats()
{
    for (int i = GDALGetDriverCount() - 1; i >= 0; --i) {
        GDALDriverH driver = GDALGetDriver(i);
        if (!isAmong(GDALGetDriverShortName(driver), allowedFormats)) {
            GDALDeregisterDriver(driver);
            GDALDestroyDriver(driver);
        }
    }
}

void closeFileSystems()
{
    static char** const prefixes = VSIGetFileSystemsPrefixes(); // GDAL keeps the texts, uncopied
    for (int i = 0; i < CSLCount(prefixes); ++i) {
        if (!isAmong(prefixes[i], allowedFileSystems)) {
            install(prefixes[i], false);
        }
    }
}

} // namespace

void confineGdal(std::shared_ptr<const FolderGate> gate)
{
    CPLSetConfigOption("GDAL_DRIVER_PATH", "disable"); // no formats from elsewhere
    CPLSetConfigOption("GDAL_VRT_ENABLE_PYTHON", "NO");
    CPLSetConfigOption("CPL_TMPDIR", "/vsimem/");
    confineProj();
    Map::setUpGdal();
    OSRSetPROJEnableNetwork(0);
    CPLHTTPSetFetchCallback(&fetchNothing, nullptr);
    CPLSetErrorHandler(&CPLQuietErrorHandler); // the reasons that matter are logged by us
    passage() = std::move(gate);
    switchOffFormats();
    limitGdal();
    closeFileSystems();
    install("", true);
}

} // namespace Corvane::Server
