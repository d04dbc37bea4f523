#include <corvane/map/HistogramT.h>

namespace Corvane::Map {

template class HistogramT<unsigned long long>;

} // namespace Corvane::Map
