// corvane-bench-views FILE [VIEWS [REPS]]
//
// Shows the views of the text file VIEWS one after the other in a 1920 x 1080 map view off screen
// and prints a line of JSON per view and state: cold (fresh layer), session (one sitting), warm
// (the same view again). A line of VIEWS: name, group, left and top in source pixels, source
// pixels per view pixel, separated by blanks or commas; # begins a comment. Without VIEWS it
// prints the time from no layer to the first complete frame.

#include <bench/BenchResult.h>
#include <bench/BenchStage.h>
#include <corvane/map/RasterLayer.h>

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextStream>

#include <cstdio>
#include <optional>

using namespace Corvane;
using namespace Corvane::Bench;

namespace {

constexpr int defaultRepetitions = 5;

struct View
{
    QString name;
    double left = 0.0;
    double top = 0.0;
    double pixelsPerPixel = 1.0;
    std::vector<double> cold;
    std::vector<double> session;
    std::vector<double> warm;
};

std::optional<View> parseView(const QString& line)
{
    static const QRegularExpression separator("[\\s,]+");
    const QStringList fields = line.split(separator, Qt::SkipEmptyParts);
    if (fields.size() != 5) {
        return std::nullopt;
    }
    bool leftIsNumber = false;
    bool topIsNumber = false;
    bool scaleIsNumber = false;
    View view;
    view.name = fields[0];
    view.left = fields[2].toDouble(&leftIsNumber);
    view.top = fields[3].toDouble(&topIsNumber);
    view.pixelsPerPixel = fields[4].toDouble(&scaleIsNumber);
    if (!leftIsNumber || !topIsNumber || !scaleIsNumber || view.pixelsPerPixel <= 0.0) {
        return std::nullopt;
    }
    return view;
}

std::optional<std::vector<View>> readViews(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        return std::nullopt;
    }
    std::vector<View> views;
    QTextStream lines(&file);
    for (int number = 1; !lines.atEnd(); ++number) {
        const QString line = lines.readLine().section('#', 0, 0).trimmed();
        if (line.isEmpty()) {
            continue;
        }
        const std::optional<View> view = parseView(line);
        if (!view) {
            std::fprintf(stderr,
                         "%s:%d: expected name, group, left, top, source pixels per view pixel\n",
                         qPrintable(path), number);
            return std::nullopt;
        }
        views.push_back(*view);
    }
    return views;
}

void measureOpen(BenchStage& stage, const QString& file, int repetitions)
{
    BenchResult result{"open.corvane.page_cached." + QFileInfo(file).fileName(), "ms", {}, {}, {}};
    for (int i = 0; i <= repetitions; ++i) {
        stage.reset();
        const Stopwatch watch;
        Map::RasterLayer* layer = stage.open(file).release();
        stage.view().addLayer(layer, -1);
        stage.complete(*layer);
        if (i > 0) { // the first run brings the file into the page cache
            result.samples.push_back(watch.milliseconds());
        }
    }
    result.print();
}

void measureViews(BenchStage& stage, const QString& file, std::vector<View>& views, int repetitions)
{
    for (int i = 0; i < repetitions; ++i) {
        for (View& view : views) {
            Map::RasterLayer* layer = stage.stage(file);
            view.cold.push_back(stage.show(
                *layer, BenchStage::window(*layer, view.left, view.top, view.pixelsPerPixel)));
        }
        Map::RasterLayer* layer = stage.stage(file);
        for (View& view : views) {
            const QRectF window =
                BenchStage::window(*layer, view.left, view.top, view.pixelsPerPixel);
            view.session.push_back(stage.show(*layer, window));
            view.warm.push_back(stage.show(*layer, window));
        }
    }
    for (const View& view : views) {
        BenchResult{"view.corvane.cold." + view.name, "ms", view.cold, {}, {}}.print();
        BenchResult{"view.corvane.session." + view.name, "ms", view.session, {}, {}}.print();
        BenchResult{"view.corvane.warm." + view.name, "ms", view.warm, {}, {}}.print();
    }
}

} // namespace

int main(int argc, char** argv)
{
    BenchStage stage(argc, argv);
    const QStringList arguments = Application::arguments();
    const int repetitions = arguments.size() > 3 ? arguments[3].toInt() : defaultRepetitions;
    if (arguments.size() < 2 || arguments.size() > 4 || repetitions < 1) {
        std::fprintf(stderr, "usage: corvane-bench-views FILE [VIEWS [REPS]]\n");
        return 1;
    }
    if (arguments.size() == 2) {
        measureOpen(stage, arguments[1], repetitions);
        return 0;
    }
    std::optional<std::vector<View>> views = readViews(arguments[2]);
    if (!views) {
        return 1;
    }
    measureViews(stage, arguments[1], *views, repetitions);
    return 0;
}
