#include <corvane/core/ILayerDataBrowser.h>

namespace Corvane::Map {

ILayerDataBrowser::ILayerDataBrowser(QWidget* parent, Qt::WindowFlags flags)
    : QDialog(parent, flags)
{
}

ILayerDataBrowser::~ILayerDataBrowser() = default;

} // namespace Corvane::Map
