#include <server/ProjConfinement.h>

#include <server/FolderGate.h>
#include <server/GateFile.h>

#include <proj.h>

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <dlfcn.h>
#include <memory>
#include <vector>

namespace Corvane::Server {

namespace {

// Set once.
bool isConfined = false;

// To PROJ's data. Filled once; open from then on.
std::vector<std::unique_ptr<const FolderGate>>& passages()
{
    static std::vector<std::unique_ptr<const FolderGate>> gates;
    return gates;
}

GateFile* fileOf(PROJ_FILE_HANDLE* handle)
{
    return reinterpret_cast<GateFile*>(handle);
}

PROJ_FILE_HANDLE* openFile(PJ_CONTEXT*, const char* name, PROJ_OPEN_ACCESS access, void*)
{
    std::unique_ptr<GateFile> file;
    const auto opens = [&file, name](const std::unique_ptr<const FolderGate>& gate) {
        file = GateFile::open(*gate, name);
        return file != nullptr;
    };
    if (access == PROJ_OPEN_ACCESS_READ_ONLY) {
        static_cast<void>(std::any_of(passages().begin(), passages().end(), opens));
    }
    return reinterpret_cast<PROJ_FILE_HANDLE*>(file.release()); // closeFile deletes it
}

std::size_t readFile(PJ_CONTEXT*, PROJ_FILE_HANDLE* file, void* buffer, std::size_t bytes, void*)
{
    return fileOf(file)->read(buffer, bytes);
}

std::size_t writeNothing(PJ_CONTEXT*, PROJ_FILE_HANDLE*, const void*, std::size_t, void*)
{
    return 0;
}

int seekFile(PJ_CONTEXT*, PROJ_FILE_HANDLE* file, long long offset, int from, void*)
{
    return fileOf(file)->seek(static_cast<quint64>(offset), from) ? 1 : 0;
}

unsigned long long tellFile(PJ_CONTEXT*, PROJ_FILE_HANDLE* file, void*)
{
    return fileOf(file)->position();
}

void closeFile(PJ_CONTEXT*, PROJ_FILE_HANDLE* file, void*)
{
    delete fileOf(file);
}

int exists(PJ_CONTEXT*, const char* name, void*)
{
    const auto knows = [name](const std::unique_ptr<const FolderGate>& gate) {
        struct stat found = {};
        return gate->status(name, &found);
    };
    return std::any_of(passages().begin(), passages().end(), knows) ? 1 : 0;
}

int changeNothing(PJ_CONTEXT*, const char*, void*)
{
    return 0;
}

int renameNothing(PJ_CONTEXT*, const char*, const char*, void*)
{
    return 0;
}

const PROJ_FILE_API& fileCalls()
{
    static const PROJ_FILE_API calls = {
        1,          &openFile, &readFile,      &writeNothing,  &seekFile,     &tellFile,
        &closeFile, &exists,   &changeNothing, &changeNothing, &renameNothing};
    return calls;
}

// Where PROJ looks: beside its database, where the user has put more, and where the surroundings say.
QStringList dataFolders()
{
    PJ_CONTEXT* const context = proj_context_create();
    const char* const database = proj_context_get_database_path(context);
    QStringList folders;
    if (database) {
        folders.append(QFileInfo(QFile::decodeName(database)).absolutePath());
    }
    folders.append(QFile::decodeName(proj_context_get_user_writable_directory(context, 0)));
    proj_context_destroy(context);
    for (const char* const variable : {"PROJ_DATA", "PROJ_LIB"}) {
        folders += QFile::decodeName(qgetenv(variable)).split(QLatin1Char(':'));
    }
    folders.removeAll(QString());
    return folders;
}

} // namespace

void confineProj()
{
    for (const QString& folder : dataFolders()) {
        auto gate = std::make_unique<const FolderGate>(folder);
        if (gate->isOpen()) {
            passages().push_back(std::move(gate));
        }
    }
    isConfined = true;
    proj_context_set_fileapi(nullptr, &fileCalls(), nullptr);
}

} // namespace Corvane::Server

// GDAL makes a context of PROJ for each thread, and new ones do not take over how files are opened.
// A program's functions go before those of its libraries, so this one stands in for PROJ's own.
// ImageConfinementTest::gridsOfCoordinateSystemsAreNotOpened holds it.
extern "C" Q_DECL_EXPORT PJ_CONTEXT* proj_context_create()
{
    using namespace Corvane::Server;
    using Create = PJ_CONTEXT* (*)();
    static const auto create = reinterpret_cast<Create>(::dlsym(RTLD_NEXT, "proj_context_create"));
    PJ_CONTEXT* const context = create ? create() : nullptr;
    if (context && isConfined) {
        proj_context_set_fileapi(context, &fileCalls(), nullptr);
    }
    return context;
}
