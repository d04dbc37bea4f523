#include <corvane/core/System.h>

#include <QtGlobal>

#if defined(Q_OS_WIN)
#include <windows.h>
#elif defined(Q_OS_MACOS)
#include <sys/sysctl.h>
#else
#include <unistd.h>
#endif

namespace Corvane::System {

namespace {

constexpr int mebibyteShift = 20;

} // namespace

long long getTotalRAM()
{
#if defined(Q_OS_WIN)
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof status;
    if (!GlobalMemoryStatusEx(&status)) {
        return -1;
    }
    return static_cast<long long>(status.ullTotalPhys >> mebibyteShift);
#elif defined(Q_OS_MACOS)
    unsigned long long bytes = 0;
    size_t size = sizeof bytes;
    if (sysctlbyname("hw.memsize", &bytes, &size, nullptr, 0) != 0) {
        return -1;
    }
    return static_cast<long long>(bytes >> mebibyteShift);
#else
    const long long pages = sysconf(_SC_PHYS_PAGES);
    const long long pageSize = sysconf(_SC_PAGESIZE);
    if (pages < 0 || pageSize < 0) {
        return -1;
    }
    return (pages * pageSize) >> mebibyteShift;
#endif
}

} // namespace Corvane::System
