#include <plugins/imageserver/PluginRoot.h>
