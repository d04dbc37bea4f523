#pragma once

#include <QWidget>

class QCheckBox;

namespace Corvane::Gui {
class ColorButton;
}

namespace Corvane::Viewer {

/// The page "Maps" of the preferences: what the map windows begin with that are opened from now on.
/// GUI thread only.
class MapPreferencesPage : public QWidget
{
    Q_OBJECT
public:
    explicit MapPreferencesPage(QWidget* parent = nullptr);

public slots:
    void apply();

private:
    Gui::ColorButton* background;
    QCheckBox* animation;
    QCheckBox* crosshair;
};

} // namespace Corvane::Viewer
