#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <chrono>

class QAction;
class QPrinter;
class QProgressDialog;
class QWidget;

namespace Corvane::Viewer {

class MapPrinting;
class MapWindow;

/// Puts the map of the active window on paper: the actions and their dialogs, which stand over the
/// map and wait for nobody; only the loading of the page keeps the user from everything else. GUI
/// thread only.
class PrintCommands : public QObject
{
    Q_OBJECT
public:
    /// owner becomes the parent of the actions.
    explicit PrintCommands(QWidget* owner);

    /// The window to work on; null for none.
    void setMapWindow(MapWindow* newWindow);
    /// Print, print preview, export as PDF.
    QList<QAction*> getActions() const;

    /// How long a print waits for layers while nothing of them comes.
    void setPatience(std::chrono::milliseconds time);

private:
    QAction* addAction(const QString& name);
    void print();
    void preview();
    void exportPdf();
    void writePdf(MapWindow* map, const QString& fileName);
    void printOn(MapWindow* map, QPrinter& printer);
    bool load(MapWindow* map, MapPrinting& printing, const QPrinter& printer, QStringList* missing);
    QProgressDialog* showProgress(MapWindow* map, const QString& text) const;
    void tellWhatIsMissing(QWidget* parent, const QStringList& missing);
    void showFailure(MapWindow* map, const QString& text);
    void showBox(QWidget* parent, const QString& name, const QString& text);

    QPointer<MapWindow> window;
    QList<QAction*> actions;
    std::chrono::milliseconds patience;
};

} // namespace Corvane::Viewer
