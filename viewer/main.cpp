#include <viewer/CommandLine.h>
#include <viewer/ConsoleLog.h>
#include <viewer/FileInfo.h>
#include <viewer/PluginListing.h>
#include <viewer/SnapshotRenderer.h>
#include <viewer/Startup.h>
#include <viewer/ViewerWindow.h>

#include <corvane/core/Application.h>

#include <QSettings>
#include <QThreadPool>

#include <cstdio>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

const char* const programName = "Corvane Viewer";
constexpr int longestFarewellMilliseconds = 3000;

void print(const QByteArray& text)
{
    std::fwrite(text.constData(), 1, std::size_t(text.size()), stdout);
}

int renderSnapshot(const ViewerOptions& options)
{
    SnapshotRenderer renderer(options);
    const ExitCode code = renderer.run();
    if (renderer.isUnderWay()) {
        endNow(code);
    }
    return code;
}

int printInfo(const ViewerOptions& options)
{
    FileInfo info(options);
    QByteArray json;
    const ExitCode code = info.run(&json);
    print(json);
    if (info.isUnderWay()) {
        endNow(code);
    }
    return code;
}

int runWindow(const ViewerOptions& options)
{
    ViewerWindow window;
    window.show();
    window.openFiles(options.files);
    return QCoreApplication::exec();
}

/// A read that hangs in a server does not keep the program alive behind its closed window; a
/// picture that is being saved has this time to be finished.
int showWindow(const ViewerOptions& options)
{
    const int code = runWindow(options);
    if (!QThreadPool::globalInstance()->waitForDone(longestFarewellMilliseconds)) {
        Application::instance()->getSettings()->sync();
        endNow(code);
    }
    return code;
}

int run(const ViewerOptions& options)
{
    switch (options.mode) {
    case ViewerOptions::Help:
        print(CommandLine::getHelpText().toLocal8Bit());
        return Done;
    case ViewerOptions::Version:
        print(QString("%1 %2\n").arg(programName, Application::applicationVersion()).toUtf8());
        return Done;
    case ViewerOptions::ListPlugins:
        for (const QString& line : listPlugins()) {
            print(line.toLocal8Bit() + '\n');
        }
        return Done;
    case ViewerOptions::Info:
        return printInfo(options);
    case ViewerOptions::Snapshot:
        return renderSnapshot(options);
    case ViewerOptions::ShowWindow:
        break;
    }
    return showWindow(options);
}

} // namespace

int main(int argc, char** argv)
{
    const bool display = hasDisplay(argc, argv);
    if (!display || asksForNoWindow(argc, argv)) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    ConsoleLog log; // before the application object, whose end waits for threads that log
    Application application(argc, argv, programName);

    CommandLine commandLine;
    if (!commandLine.parse(QCoreApplication::arguments())) {
        printError(commandLine.getError() + " See corvane-viewer --help.");
        return WrongUsage;
    }
    const ViewerOptions& options = commandLine.getOptions();
    if (options.mode == ViewerOptions::ShowWindow && !display) {
        printError("no display: set DISPLAY or WAYLAND_DISPLAY, or render with --snapshot FILE.");
        return WrongUsage;
    }

    setUpLogging(options.verbose);
    log.setLogLevel(options.verbose ? Debug : Warning);
    Application::installLogMessageHandler(&log);
    return run(options);
}
