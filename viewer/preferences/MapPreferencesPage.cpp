#include <viewer/preferences/MapPreferencesPage.h>

#include <corvane/core/Application.h>
#include <corvane/gui/ColorButton.h>

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QSettings>

namespace Corvane::Viewer {
namespace {

// what a map view reads when it is made
const char* const backgroundKey = "Gui/MapView/BackgroundColor";
const char* const animationKey = "Gui/MapView/UseAnimation";
const char* const crosshairKey = "Gui/MapView/DrawZoomCrosshair";

} // namespace

MapPreferencesPage::MapPreferencesPage(QWidget* parent)
    : QWidget(parent),
      background(new Gui::ColorButton(this)),
      animation(new QCheckBox(tr("&Glide to a new view"), this)),
      crosshair(new QCheckBox(tr("Draw a &crosshair while zooming"), this))
{
    setObjectName("mapsPage");
    setWindowTitle(tr("Maps"));
    const QSettings* settings = Application::instance()->getSettings();
    background->setObjectName("backgroundButton");
    background->setAutoDefault(false);
    background->setColor(settings->value(backgroundKey, QColor(Qt::white)).value<QColor>());
    animation->setObjectName("animationCheckBox");
    animation->setChecked(settings->value(animationKey, true).toBool());
    crosshair->setObjectName("crosshairCheckBox");
    crosshair->setChecked(settings->value(crosshairKey, false).toBool());
    auto* const explanation =
        new QLabel(tr("This holds for maps that are opened from now on."), this);
    explanation->setWordWrap(true);
    auto* const form = new QFormLayout(this);
    form->addRow(tr("&Background:"), background);
    form->addRow(animation);
    form->addRow(crosshair);
    form->addRow(explanation);
}

void MapPreferencesPage::apply()
{
    QSettings* settings = Application::instance()->getSettings();
    settings->setValue(backgroundKey, background->getColor());
    settings->setValue(animationKey, animation->isChecked());
    settings->setValue(crosshairKey, crosshair->isChecked());
}

} // namespace Corvane::Viewer
