#include <viewer/batch/CommandLine.h>

#include <viewer/output/MapPicture.h>
#include <viewer/output/PdfFile.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace Corvane::Viewer {
namespace {

// Below two pixels a view has no span to map; beyond this the raster painter loses coordinates.
constexpr int smallestSide = 2;
constexpr int largestSide = 32767;

constexpr double longestTimeoutSeconds = 1.0e6;

struct ViewerOptionSet
{
    QCommandLineOption snapshot{
        "snapshot",
        QString("Render the map to FILE (PNG, JPEG or PDF), then end. Needs no "
                "display."),
        "FILE"};
    QCommandLineOption render{
        "render",
        QString("The same, with everything that the picture lacks named on standard error: layers "
                "that failed, tiles that are missing."),
        "FILE"};
    QCommandLineOption size{
        "size",
        QString("Size of the snapshot in pixels, of a PDF page in points, 1280x720 unless told."),
        "WxH"};
    QCommandLineOption extent{"extent",
                              QString("World rectangle of the snapshot in map units, grown to its "
                                      "shape; that of a map, or everything, unless told."),
                              "tlx,tly,brx,bry"};
    QCommandLineOption timeout{
        "timeout", QString("How long to wait for the files in seconds, 60 unless told."),
        "SECONDS"};
    QCommandLineOption info{"info",
                            QString("Print what is known of each file and map, then end: text "
                                    "on a terminal, else JSON.")};
    QCommandLineOption json{"json", QString("With --info: JSON on a terminal, too.")};
    QCommandLineOption newInstance{
        "new-instance", QString("Open the files here, even where a window is open that would.")};
    QCommandLineOption config{
        "config", QString("Keep the settings in FILE, in INI format, instead of the user's own."),
        "FILE"};
    QCommandLineOption listPlugins{"list-plugins", QString("Name the layer plugins, then end.")};
    QCommandLineOption verbose{"verbose", QString("Log everything, the tile engine's lines too.")};
    QCommandLineOption version{{"v", "version"}, QString("Print the version, then end.")};
    QCommandLineOption help{{"h", "help"}, QString("Print this help, then end.")};
};

void declare(QCommandLineParser& parser, const ViewerOptionSet& set)
{
    parser.setApplicationDescription(QString(
        "Shows georeferenced imagery far larger than memory.\n\n"
        "Ends with 0 when done, 1 for wrong usage, 2 when a source could not be opened,\n"
        "3 when the picture was not complete in time, or with --render has gaps; it is written all the "
        "same."));
    parser.addPositionalArgument(
        "files", QString("Files, folders, addresses or maps (.cmap) to open."), "[files...]");
    parser.addOptions({set.snapshot, set.render, set.size, set.extent, set.timeout, set.info,
                       set.json, set.listPlugins, set.newInstance, set.config, set.verbose,
                       set.version, set.help});
}

} // namespace

bool CommandLine::parse(const QStringList& arguments)
{
    options = ViewerOptions();
    error.clear();

    const ViewerOptionSet set;
    QCommandLineParser parser;
    declare(parser, set);
    if (!parser.parse(arguments)) {
        return fail(parser.errorText());
    }

    options.files = parser.positionalArguments();
    options.verbose = parser.isSet(set.verbose);
    if (parser.isSet(set.help)) {
        options.mode = ViewerOptions::Help;
        return true;
    }
    if (parser.isSet(set.version)) {
        options.mode = ViewerOptions::Version;
        return true;
    }

    if (!readMode(parser) ||
        (parser.isSet(set.config) && !readConfigFile(parser.value(set.config)))) {
        return false;
    }
    const bool snapshot = options.mode == ViewerOptions::Snapshot;
    const bool info = options.mode == ViewerOptions::Info;
    if (!snapshot && (parser.isSet(set.size) || parser.isSet(set.extent))) {
        return fail(QString("--size and --extent go with --snapshot or --render."));
    }
    if (!info && parser.isSet(set.json)) {
        return fail(QString("--json goes with --info."));
    }
    if (info && options.files.isEmpty()) {
        return fail(QString("--info needs a file to tell of."));
    }
    options.json = parser.isSet(set.json);
    options.newInstance = parser.isSet(set.newInstance);

    return (!parser.isSet(set.size) || readSize(parser.value(set.size))) &&
           (!parser.isSet(set.extent) || readExtent(parser.value(set.extent))) &&
           (!parser.isSet(set.timeout) || readTimeout(parser.value(set.timeout)));
}

bool CommandLine::readMode(const QCommandLineParser& parser)
{
    const ViewerOptionSet set;
    const bool render = parser.isSet(set.render);
    if (parser.isSet(set.snapshot) + render + parser.isSet(set.info) +
            parser.isSet(set.listPlugins) >
        1)
    {
        return fail(
            QString("--snapshot, --render, --info and --list-plugins exclude one another."));
    }
    if (parser.isSet(set.info)) {
        options.mode = ViewerOptions::Info;
    } else if (parser.isSet(set.listPlugins)) {
        options.mode = ViewerOptions::ListPlugins;
    } else if (render || parser.isSet(set.snapshot)) {
        options.mode = ViewerOptions::Snapshot;
        options.listsGaps = render;
        if (options.files.isEmpty()) {
            return fail(QString("%1 needs a file to render.")
                            .arg(render ? QString("--render") : QString("--snapshot")));
        }
        return readSnapshotFile(parser.value(render ? set.render : set.snapshot));
    }
    return true;
}

const ViewerOptions& CommandLine::getOptions() const
{
    return options;
}

QString CommandLine::getError() const
{
    return error;
}

QString CommandLine::getHelpText()
{
    QCommandLineParser parser;
    declare(parser, ViewerOptionSet());
    return parser.helpText();
}

bool CommandLine::fail(const QString& reason)
{
    error = reason;
    return false;
}

bool CommandLine::readSnapshotFile(const QString& text)
{
    if (!hasPictureSuffix(text) && !PdfFile::hasPdfSuffix(text)) {
        return fail(QString("cannot write %1: the name must end in .%2.")
                        .arg(text.isEmpty() ? QString("\"\"") : text,
                             (pictureSuffixes() << "pdf").join(", .")));
    }
    options.snapshotFile = text;
    return true;
}

bool CommandLine::readConfigFile(const QString& text)
{
    if (text.isEmpty()) {
        return fail(QString("--config needs the name of a file."));
    }
    options.configFile = QFileInfo(text).absoluteFilePath();
    return true;
}

bool CommandLine::readSize(const QString& text)
{
    const QRegularExpression shape("^([0-9]{1,5})[xX]([0-9]{1,5})$");
    const QRegularExpressionMatch match = shape.match(text);
    const int width = match.captured(1).toInt();
    const int height = match.captured(2).toInt();
    const bool inRange = width >= smallestSide && width <= largestSide && height >= smallestSide &&
                         height <= largestSide;
    if (!match.hasMatch() || !inRange) {
        return fail(QString("--size takes WIDTHxHEIGHT in pixels, from %1x%1 to %2x%2, not \"%3\".")
                        .arg(smallestSide)
                        .arg(largestSide)
                        .arg(text));
    }
    options.size = QSize(width, height);
    return true;
}

bool CommandLine::readExtent(const QString& text)
{
    const QString wanted = QString("--extent takes tlx,tly,brx,bry, four numbers, not \"%1\".");
    const QStringList parts = text.split(',');
    if (parts.size() != int(options.extent.size())) {
        return fail(wanted.arg(text));
    }
    for (int i = 0; i < parts.size(); ++i) {
        bool ok = false;
        options.extent[std::size_t(i)] = parts[i].trimmed().toDouble(&ok);
        if (!ok || !std::isfinite(options.extent[std::size_t(i)])) {
            return fail(wanted.arg(text));
        }
    }
    if (options.extent[0] == options.extent[2] && options.extent[1] == options.extent[3]) {
        return fail(QString("--extent \"%1\" is a single point.").arg(text));
    }
    options.hasExtent = true;
    return true;
}

bool CommandLine::readTimeout(const QString& text)
{
    bool ok = false;
    const double seconds = text.toDouble(&ok);
    if (!ok || !(seconds > 0.0 && seconds <= longestTimeoutSeconds)) {
        return fail(QString("--timeout takes a number of seconds above 0, not \"%1\".").arg(text));
    }
    options.timeout = std::chrono::milliseconds(std::llround(std::ceil(seconds * 1000.0)));
    return true;
}

} // namespace Corvane::Viewer
