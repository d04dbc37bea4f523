#include <plugins/raster/PluginRoot.h>
