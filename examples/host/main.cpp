// corvane-example-host CLASS SOURCE [PICTURE]
//
// A map window with one layer; with a third word it writes what the window shows to that file.

#include <corvane/core/Application.h>
#include <corvane/core/PluginManager.h>
#include <corvane/core/Version.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QPixmap>

#include <cstdio>

namespace {

constexpr int wrongUsage = 1;
constexpr int noLayer = 2;
constexpr int notWritten = 3;

int writePicture(Corvane::Map::MapView& view, const QString& fileName)
{
    const QImage picture = view.grab().toImage();
    int drawn = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            drawn += picture.pixelColor(x, y) != view.getBackgroundColor();
        }
    }
    if (!picture.save(fileName)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(fileName));
        return notWritten;
    }
    std::printf("wrote %s: %d x %d, %d pixels drawn\n", qPrintable(fileName), picture.width(),
                picture.height(), drawn);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    Corvane::Application application(argc, argv, "Corvane Example");
    const QStringList words = Corvane::Application::arguments();
    if (words.size() < 3) {
        std::fprintf(stderr, "usage: corvane-example-host CLASS SOURCE [PICTURE] (Corvane %s)\n",
                     CORVANE_VERSION);
        return wrongUsage;
    }
    Corvane::Map::Layer* layer = Corvane::PluginManager::createLayer(words[1], false);
    if (!layer || !layer->setDataSource(words[2])) {
        std::fprintf(stderr, "no layer: %s\n",
                     layer ? qPrintable(layer->getLastError()) : "no plugin makes this class");
        delete layer;
        return noLayer;
    }

    Corvane::Map::MapView view;
    view.setAttribute(Qt::WA_DeleteOnClose, false); // it stands on the stack
    view.resize(800, 400);
    view.show();
    view.addLayer(layer, -1); // the view owns it from here
    return words.size() > 3 ? writePicture(view, words[3]) : Corvane::Application::exec();
}
