#include <viewer/batch/BatchSources.h>
#include <viewer/batch/CommandLine.h>
#include <viewer/batch/ConsoleLog.h>
#include <viewer/batch/FileInfo.h>
#include <viewer/batch/InfoText.h>
#include <viewer/batch/PluginListing.h>
#include <viewer/batch/SnapshotRenderer.h>
#include <viewer/batch/Startup.h>
#include <viewer/frame/Languages.h>
#include <viewer/log/LogBook.h>
#include <viewer/maps/DocumentThreads.h>
#include <viewer/opening/FolderContents.h>
#include <viewer/opening/InstanceLink.h>
#include <viewer/preferences/ColorScheme.h>
#include <viewer/preferences/SettingsFile.h>
#include <viewer/session/SessionFolder.h>
#include <viewer/session/SessionKeeper.h>
#include <viewer/sources/Sources.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QGuiApplication>
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

ViewerOptions withImagesOfFolders(ViewerOptions options)
{
    options.files = batchSources(options.files, options.timeout);
    return options;
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
    QJsonArray files;
    const ExitCode code = info.run(&files);
    if (options.json || !writesToTerminal()) {
        print(QJsonDocument(files).toJson(QJsonDocument::Indented));
    } else {
        print(infoText(files).toLocal8Bit());
    }
    if (info.isUnderWay()) {
        endNow(code);
    }
    return code;
}

int runWindow(const QStringList& sources)
{
    const auto translations = loadTranslations();
    applyColorScheme();
    ViewerWindow window;
    InstanceLink link(&window);
    QObject::connect(&link, &InstanceLink::received, &window, &ViewerWindow::open);
    SessionKeeper session(
        &window, SessionFolder::rootFor(Application::instance()->getSettings()->fileName()));
    window.show();
    session.start();
    window.open(sources);
    const int code = QCoreApplication::exec();
    session.end();
    return code;
}

/// A read that hangs in a server does not keep the program alive behind its closed window; a
/// picture or a map that is being saved has this time to be finished.
int showWindow(const ViewerOptions& options)
{
    QStringList sources;
    for (const QString& file : options.files) {
        sources << absoluteSource(file);
    }
    if (!options.newInstance && InstanceLink::handOver(sources)) {
        return Done;
    }
    const int code = runWindow(sources);
    const bool documentsDone = documentThreads().waitForDone(longestFarewellMilliseconds) &&
                               sessionThread().waitForDone(longestFarewellMilliseconds) &&
                               folderThreads().waitForDone(longestFarewellMilliseconds);
    if (!QThreadPool::globalInstance()->waitForDone(longestFarewellMilliseconds) || !documentsDone)
    {
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
        return printInfo(withImagesOfFolders(options));
    case ViewerOptions::Snapshot:
        return renderSnapshot(withImagesOfFolders(options));
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
    ConsoleLog log;     // before the application object, whose end waits for threads that log
    LogBook book(&log); // the same
    const QString configFile = configFileOf(argc, argv);
    QString reason;
    if (!configFile.isEmpty() && !canKeepSettings(configFile, &reason)) {
        printError(QString("cannot keep settings in %1: %2").arg(configFile, reason));
        return WrongUsage;
    }
    Application::useSettingsFile(configFile);
    Application application(argc, argv, programName);
    QGuiApplication::setDesktopFileName("org.corvane.Viewer"); // whose icon Wayland shows

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
    Application::installLogMessageHandler(&book);
    return run(options);
}
