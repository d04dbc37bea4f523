#pragma once

#include <QLabel>

class QAction;
class QMdiArea;

namespace Corvane::Viewer {

/// Says in an empty work space how to open something; gone while there is a map. Lets clicks and drops
/// through. GUI thread only.
class OpenHint : public QLabel
{
    Q_OBJECT
public:
    /// Goes with the area. The key of the command is named, if it has one.
    OpenHint(QMdiArea* area, QAction* openCommand);

protected:
    /// Of the area's viewport, whose children are the map windows.
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void look();

private:
    QMdiArea* area;       // not owned
    QAction* openCommand; // not owned
};

} // namespace Corvane::Viewer
