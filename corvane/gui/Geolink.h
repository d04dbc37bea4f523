#pragma once

#include <corvane/core/Export.h>
#include <corvane/core/IMdiAreaPlugin.h>
#include <corvane/map/IClient.h>

#include <QPointer>
#include <QWidget>

class QMdiArea;
class QMdiSubWindow;

namespace Corvane::Map {
class MapView;
}

namespace Ui {
class Geolink;
}

namespace Corvane::Gui {

/// Couples map windows: those with the link mode and the spatial reference of the active one follow
/// it as it is panned and zoomed, while the panel is visible. The modes stand in the views.
/// The host connects QMdiArea::subWindowActivated to onSubWindowActivated. GUI thread only.
class CORVANE_EXPORT Geolink : public QWidget, protected IMdiAreaPlugin
{
    Q_OBJECT
    Q_INTERFACES(Corvane::IMdiAreaPlugin)
public:
    /// The parent owns it; it may be null.
    explicit Geolink(QWidget* parent = nullptr);
    ~Geolink() override; ///< leaves the modes of the views as they are

public slots:
    /// The area whose map windows are linked; not owned, null for none. Connects nothing.
    void setWorkSpace(QMdiArea* pWorkSpace) override;
    /// Puts the active map window in the mode; those that share it from now on follow at once.
    void setGeolinkMode(Map::IClient::GeolinkMode mode);
    void setGeolinkNone();   ///< setGeolinkMode(GeolinkNone): the active map is not linked
    void setGeolinkWindow(); ///< setGeolinkMode(GeolinkWindow)
    void setGeolinkScreen(); ///< setGeolinkMode(GeolinkScreen)
    /// Lets the others follow the view that sent the signal. Does nothing while the panel is hidden.
    void onMapExtentsChanged(double tlx, double tly, double brx, double bry);
    /// Takes the window as the one that the others follow. bSendEvents also shows its mode.
    void onSubWindowActivated(QMdiSubWindow* window, bool bSendEvents = true);
    /// Puts all map windows in the mode that is checked; they follow the active one at once.
    void applyToAll();

private:
    void showMode(Map::IClient::GeolinkMode mode);
    Map::IClient::GeolinkMode checkedMode() const;

    Ui::Geolink* ui; // owned
    QPointer<QMdiArea> workSpace;
    QPointer<Map::MapView> connectedView; // the one whose mapExtentsChanged arrives here
};

} // namespace Corvane::Gui
