#include <viewer/batch/Startup.h>

#include <QByteArray>
#include <QLoggingCategory>
#include <QtGlobal>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace Corvane::Viewer {
namespace {

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool isPlatformNamed(int argc, const char* const* argv)
{
    return std::any_of(argv, argv + argc, [](std::string_view word) {
        return isOneOf(word, {"-platform", "--platform"});
    });
}

} // namespace

bool asksForNoWindow(int argc, const char* const* argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--") {
            return false;
        }
        if (isOneOf(word, {"--snapshot", "--render", "--info", "--list-plugins", "--version", "-v",
                           "--help", "-h"}) ||
            word.substr(0, 11) == "--snapshot=" || word.substr(0, 9) == "--render=")
        {
            return true;
        }
    }
    return false;
}

QString configFileOf(int argc, const char* const* argv)
{
    constexpr std::string_view option = "--config";
    QString file;
    for (int i = 1; i < argc && std::string_view(argv[i]) != "--"; ++i) {
        const std::string_view word = argv[i];
        if (word == option && i + 1 < argc) {
            file = QString::fromLocal8Bit(argv[++i]);
        } else if (word.substr(0, option.size()) == option && word.size() > option.size() &&
                   word[option.size()] == '=')
        {
            file = QString::fromLocal8Bit(argv[i] + option.size() + 1);
        }
    }
    return file;
}

bool hasDisplay(int argc, const char* const* argv)
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    if (isPlatformNamed(argc, argv)) {
        return true;
    }
    // "xcb:option;wayland" names platforms in order of preference, with options
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM").split(';').first().split(':').first();
    const bool x11 = !qEnvironmentVariableIsEmpty("DISPLAY");
    const bool wayland = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (platform == "xcb") {
        return x11;
    }
    if (platform.startsWith("wayland")) {
        return wayland;
    }
    return !platform.isEmpty() || x11 || wayland;
#else
    Q_UNUSED(argc)
    Q_UNUSED(argv)
    return true;
#endif
}

bool writesToTerminal()
{
#ifdef Q_OS_UNIX
    return ::isatty(STDOUT_FILENO) == 1;
#else
    return false;
#endif
}

void setUpLogging(bool verbose)
{
    if (!verbose && !qEnvironmentVariableIsSet("QT_LOGGING_RULES")) {
        QLoggingCategory::setFilterRules("corvane.tiles.debug=false\ndefault.debug=false");
    }
}

void endNow(int exitCode)
{
    std::fflush(nullptr);
    std::_Exit(exitCode);
}

} // namespace Corvane::Viewer
