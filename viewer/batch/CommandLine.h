#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <array>
#include <chrono>

class QCommandLineParser;

namespace Corvane::Viewer {

/// What the command line asks for.
struct ViewerOptions
{
    enum Mode
    {
        ShowWindow,
        Snapshot,
        Info,
        ListPlugins,
        Version,
        Help
    };

    Mode mode = ShowWindow;
    QStringList files;
    QString snapshotFile;
    bool listsGaps = false; ///< of the snapshot: what it lacks is named, and makes it incomplete
    bool json = false;      ///< information as JSON, even on a terminal
    bool newInstance = false;
    QString configFile; ///< of the settings; empty for the user's own
    QSize size = {1280, 720};
    bool hasExtent = false;
    std::array<double, 4> extent = {}; ///< tlx, tly, brx, bry in map units
    std::chrono::milliseconds timeout = std::chrono::seconds(60);
    bool verbose = false;
};

/// The program's exit codes.
enum ExitCode : int
{
    Done = 0,
    WrongUsage = 1,
    SourceFailed = 2,
    NotComplete = 3
};

/// Reads the arguments of the program. Needs the application object for the help text only.
class CommandLine
{
public:
    /// The first argument is the program's name. False for wrong usage: getError says why.
    bool parse(const QStringList& arguments);

    const ViewerOptions& getOptions() const;
    QString getError() const;
    static QString getHelpText();

private:
    bool fail(const QString& reason);
    bool readMode(const QCommandLineParser& parser);
    bool readSize(const QString& text);
    bool readExtent(const QString& text);
    bool readTimeout(const QString& text);
    bool readSnapshotFile(const QString& text);
    bool readConfigFile(const QString& text);

    ViewerOptions options;
    QString error;
};

} // namespace Corvane::Viewer
