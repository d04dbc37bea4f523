#pragma once

#include <viewer/window/ViewerWindow.h>

#include <QObject>
#include <QPoint>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class QAction;

namespace Corvane::Viewer {
class MapWindow;
}

/// What the tests of the program's window begin with: the window, and the images "metres.tif" and
/// "degrees.tif". With SECOND_RUN in the surroundings it stands as the run before left it.
class WindowStage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

protected:
    QString path(const QString& name) const { return folder.filePath(name); }
    QList<Corvane::Viewer::MapWindow*> mapWindows() const;
    Corvane::Viewer::MapWindow* openMap(const QString& name);
    QAction* action(const QString& name) const;
    QString statusText(const QString& label) const;
    QString shownScale() const;
    /// The mouse as the window system reports it: positions in the view, buttons as they are held.
    void press(QWidget* view, const QPoint& position) const;
    void move(QWidget* view, const QPoint& position) const;
    void release(QWidget* view, const QPoint& position) const;
    void chooseIn(const QString& dialogName, const QStringList& files);

    QTemporaryDir folder;
    std::unique_ptr<Corvane::Viewer::ViewerWindow> window;
};
