#include <plugins/vector/PluginRoot.h>
