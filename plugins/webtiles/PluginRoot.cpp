#include <plugins/webtiles/PluginRoot.h>
